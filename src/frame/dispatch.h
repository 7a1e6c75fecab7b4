// The one dispatch point of the vector kernels.
//
// A compositing family keeps its inner loops in a table of row kernels (plain
// function pointers), with one table per instruction set of kIsas:
//
//   <Family>Scalar   portable C++, the reference the others must match
//   <Family>Sse2     SSE2, the x86 baseline
//   <Family>Avx2     AVX2, used when the processor has it
//
// OSTREL_KERNEL_FAMILY gathers them, in kIsas order, into <Family>ByIsa (null
// where the build compiles no table for a set). The exported function clips
// its region, then asks Active<Family>() for the table of the running
// processor (a set without a table falls back to the next lower one, and
// finally to scalar) and calls its kernels row by row. Adding a family means
// writing its table type, declaring it with OSTREL_KERNEL_FAMILY, and
// defining its tables; no plumbing is copied.
//
// The instruction set is chosen once, when the library is loaded. Tests can
// lower it (ScopedIsaLimit, over RunnableIsas()) to run the same calls
// through every table; kIsas names each set.
#ifndef OSTREL_FRAME_DISPATCH_H
#define OSTREL_FRAME_DISPATCH_H

#include <atomic>
#include <vector>

#if defined(__x86_64__) || defined(__i386__) || defined(_M_X64) || defined(_M_IX86)
#define OSTREL_X86 1
#else
#define OSTREL_X86 0
#endif

// OSTREL_KERNELS_X86 is 1 when the build compiles the SSE2 and AVX2 kernel
// files (an x86 target, configured with OSTREL_SIMD on), 0 when only the
// scalar tables exist. The build system decides and defines it.
#ifndef OSTREL_KERNELS_X86
#error "OSTREL_KERNELS_X86 must be defined by the build (0 or 1)"
#endif
#if OSTREL_KERNELS_X86 && !OSTREL_X86
#error "OSTREL_KERNELS_X86 needs an x86 target"
#endif

// Marks a function whose body uses AVX2 instructions. The rest of the
// library is compiled for the baseline, so nothing shared (inline functions,
// templates) is ever emitted with AVX2 instructions by accident.
#if OSTREL_X86 && (defined(__GNUC__) || defined(__clang__))
#define OSTREL_TARGET_AVX2 __attribute__((target("avx2")))
#else
#define OSTREL_TARGET_AVX2
#endif

// OSTREL_BEGIN_AVX2 ... OSTREL_END_AVX2: every function defined between the
// two (templates included) may use AVX2. An AVX2 kernel file includes its
// ordinary headers first and its vector code after OSTREL_BEGIN_AVX2, keeping
// that code in an unnamed namespace so that none of it is shared with other
// files.
#if OSTREL_X86 && defined(__clang__)
#define OSTREL_BEGIN_AVX2 \
  _Pragma("clang attribute push(__attribute__((target(\"avx2\"))), apply_to = function)")
#define OSTREL_END_AVX2 _Pragma("clang attribute pop")
#elif OSTREL_X86 && defined(__GNUC__)
#define OSTREL_BEGIN_AVX2 _Pragma("GCC push_options") _Pragma("GCC target(\"avx2\")")
#define OSTREL_END_AVX2 _Pragma("GCC pop_options")
#else
#define OSTREL_BEGIN_AVX2
#define OSTREL_END_AVX2
#endif

namespace ostrel {
namespace frame {
namespace simd {

enum class Isa : int { kScalar = 0, kSse2 = 1, kAvx2 = 2 };

// The active instruction set, as an Isa value (set at load).
extern std::atomic<int> g_activeIsa;

// The best instruction set the processor offers and the build has kernels
// for (kScalar off x86, and in a build without vector kernels).
Isa SupportedIsa();

// The instruction set the kernels run with: SupportedIsa(), unless a test
// lowered it.
inline Isa ActiveIsa() { return static_cast<Isa>(g_activeIsa.load(std::memory_order_relaxed)); }

// Runs the kernels with at most `limit` (never more than SupportedIsa()).
// For tests; not exported.
void LimitIsaForTesting(Isa limit);

// The instruction sets, lowest first, with the names that tests, fuzzers and
// benchmarks print.
struct IsaInfo {
  Isa isa;
  const char *name;
};
inline constexpr IsaInfo kIsas[] = {
    {Isa::kScalar, "scalar"}, {Isa::kSse2, "SSE2"}, {Isa::kAvx2, "AVX2"}};

inline const char *IsaName(Isa isa) {
  for (const IsaInfo &info : kIsas) {
    if (info.isa == isa) return info.name;
  }
  return "unknown";
}

// The instruction sets this processor runs (and the build has kernels for),
// scalar first.
inline std::vector<IsaInfo> RunnableIsas() {
  std::vector<IsaInfo> runnable;
  for (const IsaInfo &info : kIsas) {
    if (static_cast<int>(info.isa) <= static_cast<int>(SupportedIsa())) runnable.push_back(info);
  }
  return runnable;
}

// Runs the kernels with at most `limit` while it lives, then restores the
// instruction set that was active before. For tests.
class ScopedIsaLimit {
 public:
  explicit ScopedIsaLimit(Isa limit) : saved_(ActiveIsa()) { LimitIsaForTesting(limit); }
  ~ScopedIsaLimit() { LimitIsaForTesting(saved_); }
  ScopedIsaLimit(const ScopedIsaLimit &) = delete;
  ScopedIsaLimit &operator=(const ScopedIsaLimit &) = delete;

 private:
  Isa saved_;
};

constexpr int kIsaCount = sizeof(kIsas) / sizeof(kIsas[0]);

// A family's tables, one per instruction set in kIsas order; null where the
// build has none for that set (the scalar table always exists).
template <class Table>
using Tables = const Table *const[kIsaCount];

// The table of the highest instruction set, up to the active one, that the
// family has: a set without a table falls back to the one below it, and
// finally to scalar.
template <class Table>
const Table &Pick(Tables<Table> &tables) {
  for (int level = static_cast<int>(ActiveIsa()); level > 0; --level) {
    if (tables[level] != nullptr) return *tables[level];
  }
  return *tables[0];
}

}  // namespace simd
}  // namespace frame
}  // namespace ostrel

// The vector tables a family may have, in kIsas order after the scalar one,
// as the build compiles them (OSTREL_KERNELS_X86).
#if OSTREL_KERNELS_X86
#define OSTREL_VECTOR_TABLES(Table) &Table##Sse2, &Table##Avx2
#define OSTREL_DECLARE_VECTOR_TABLES(Table) \
  extern const Table Table##Sse2;           \
  extern const Table Table##Avx2;
#else
#define OSTREL_VECTOR_TABLES(Table) nullptr, nullptr
#define OSTREL_DECLARE_VECTOR_TABLES(Table)
#endif

// Declares the tables of a kernel family, Table##ForIsa (a set's table, or
// null) and Active##Table() (the table the kernels run with).
#define OSTREL_KERNEL_FAMILY(Table)                                                               \
  extern const Table Table##Scalar;                                                               \
  OSTREL_DECLARE_VECTOR_TABLES(Table)                                                             \
  inline const ::ostrel::frame::simd::Tables<Table> Table##ByIsa = {&Table##Scalar,               \
                                                                    OSTREL_VECTOR_TABLES(Table)}; \
  inline const Table *Table##ForIsa(::ostrel::frame::simd::Isa isa) {                             \
    return Table##ByIsa[static_cast<int>(isa)];                                                   \
  }                                                                                               \
  inline const Table &Active##Table() { return ::ostrel::frame::simd::Pick(Table##ByIsa); }

#endif  // OSTREL_FRAME_DISPATCH_H
