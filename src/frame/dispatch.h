// The one dispatch point of the vector kernels.
//
// A compositing family keeps its inner loops in a table of row kernels (plain
// function pointers), with one table per instruction set:
//
//   <Family>Scalar   portable C++, the reference the others must match
//   <Family>Sse2     SSE2, the x86 baseline
//   <Family>Avx2     AVX2, used when the processor has it
//
// The exported function clips its region, then asks Active<Family>() for the
// table of the running processor and calls its kernels row by row. Adding a
// family means writing its table type, declaring it with
// OSTREL_KERNEL_FAMILY, and defining the three tables; no plumbing is copied.
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

template <class Table>
const Table &Pick(const Table &scalar, const Table *sse2, const Table *avx2) {
  switch (ActiveIsa()) {
    case Isa::kAvx2:
      if (avx2 != nullptr) return *avx2;
      [[fallthrough]];
    case Isa::kSse2:
      if (sse2 != nullptr) return *sse2;
      [[fallthrough]];
    default: return scalar;
  }
}

}  // namespace simd
}  // namespace frame
}  // namespace ostrel

// Declares the three tables of a kernel family and Active<Table>().
#if OSTREL_KERNELS_X86
#define OSTREL_KERNEL_FAMILY(Table)                                                       \
  extern const Table Table##Scalar;                                                       \
  extern const Table Table##Sse2;                                                         \
  extern const Table Table##Avx2;                                                         \
  inline const Table &Active##Table() {                                                   \
    return ::ostrel::frame::simd::Pick<Table>(Table##Scalar, &Table##Sse2, &Table##Avx2); \
  }
#else
#define OSTREL_KERNEL_FAMILY(Table)                                             \
  extern const Table Table##Scalar;                                             \
  inline const Table &Active##Table() {                                         \
    return ::ostrel::frame::simd::Pick<Table>(Table##Scalar, nullptr, nullptr); \
  }
#endif

#endif  // OSTREL_FRAME_DISPATCH_H
