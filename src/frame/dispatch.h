// The one dispatch point of the vector kernels.
//
// A compositing family keeps its inner loops in a table of row kernels (a
// struct of plain function pointers), one table per instruction set:
//
//   <Family>Scalar   portable C++, the reference the others must match
//   <Family><Suffix> one per vector set of isa_list.h (<Family>Sse2,
//                    <Family>Avx2, <Family>Neon), where the build compiles it
//
// OSTREL_KERNEL_FAMILY gathers them into <Family>ByIsa, in kIsas order, null
// where the build compiles no table. A vector table may also leave single
// entries null: every set's table is completed from the set below it in the
// same processor family, and finally from the scalar table, so a family
// writes only the kernels that pay on a set. The exported function clips its
// region, asks Active<Family>() for the completed table of the running
// processor and calls its kernels row by row.
//
// Adding a family means writing its table type, declaring it with
// OSTREL_KERNEL_FAMILY and defining its tables in its kernel files. Adding an
// instruction set means adding its line to isa_list.h and writing its kernel
// files (*_<suffix>.cpp, compiled by the build only for that processor).
//
// The instruction set is chosen once, when the library is loaded. Tests can
// lower it (ScopedIsaLimit, over RunnableIsas()) to run the same calls
// through every table; kIsas names each set.
#ifndef OSTREL_FRAME_DISPATCH_H
#define OSTREL_FRAME_DISPATCH_H

#include <atomic>
#include <cstring>
#include <type_traits>
#include <vector>

#include "frame/isa_list.h"

// The build (cmake/OstrelKernels.cmake) says which processor family it
// targets and which instruction sets of isa_list.h it compiles kernels for.
#if !defined(OSTREL_PROCESSOR_X86) || !defined(OSTREL_KERNELS_AVX2)
#error "the build must define OSTREL_PROCESSOR_<FAMILY> and OSTREL_KERNELS_<SET> (0 or 1)"
#endif

// Marks a function whose body uses AVX2 instructions. The rest of the
// library is compiled for the baseline, so nothing shared (inline functions,
// templates) is ever emitted with AVX2 instructions by accident.
#if OSTREL_KERNELS_AVX2 && (defined(__GNUC__) || defined(__clang__))
#define OSTREL_TARGET_AVX2 __attribute__((target("avx2")))
#else
#define OSTREL_TARGET_AVX2
#endif

// OSTREL_BEGIN_AVX2 ... OSTREL_END_AVX2: every function defined between the
// two (templates included) may use AVX2. An AVX2 kernel file includes its
// ordinary headers first and its vector code after OSTREL_BEGIN_AVX2, keeping
// that code in an unnamed namespace so that none of it is shared with other
// files.
#if OSTREL_KERNELS_AVX2 && defined(__clang__)
#define OSTREL_BEGIN_AVX2 \
  _Pragma("clang attribute push(__attribute__((target(\"avx2\"))), apply_to = function)")
#define OSTREL_END_AVX2 _Pragma("clang attribute pop")
#elif OSTREL_KERNELS_AVX2 && defined(__GNUC__)
#define OSTREL_BEGIN_AVX2 _Pragma("GCC push_options") _Pragma("GCC target(\"avx2\")")
#define OSTREL_END_AVX2 _Pragma("GCC pop_options")
#else
#define OSTREL_BEGIN_AVX2
#define OSTREL_END_AVX2
#endif

namespace ostrel {
namespace frame {
namespace simd {

// The instruction sets as levels: scalar first, then isa_list.h in order.
#define OSTREL_ISA_ENUMERATOR(arg, Suffix, NAME, processor, feature) k##Suffix,
enum class Isa : int { kScalar = 0, OSTREL_FOR_EACH_VECTOR_ISA(OSTREL_ISA_ENUMERATOR, ~) };
#undef OSTREL_ISA_ENUMERATOR

// The active instruction set, as an Isa value (set at load).
extern std::atomic<int> g_activeIsa;

// The best instruction set the processor runs and the build has kernels for
// (kScalar in a build without vector kernels).
Isa SupportedIsa();

// The instruction set the kernels run with: SupportedIsa(), unless a test
// lowered it.
inline Isa ActiveIsa() { return static_cast<Isa>(g_activeIsa.load(std::memory_order_relaxed)); }

// Runs the kernels with the highest set that the processor runs, the build
// has kernels for, and is at most `limit`. For tests; not exported.
void LimitIsaForTesting(Isa limit);

// The instruction sets, lowest first, with the names that tests, fuzzers and
// benchmarks print, and whether this build compiles their kernels.
struct IsaInfo {
  Isa isa;
  const char *name;
  bool built;
};
#define OSTREL_ISA_INFO(arg, Suffix, NAME, processor, feature) \
  {Isa::k##Suffix, #NAME, OSTREL_KERNELS_##NAME != 0},
inline constexpr IsaInfo kIsas[] = {{Isa::kScalar, "scalar", true},
                                    OSTREL_FOR_EACH_VECTOR_ISA(OSTREL_ISA_INFO, ~)};
#undef OSTREL_ISA_INFO
constexpr int kIsaCount = sizeof(kIsas) / sizeof(kIsas[0]);

inline const char *IsaName(Isa isa) {
  for (const IsaInfo &info : kIsas) {
    if (info.isa == isa) return info.name;
  }
  return "unknown";
}

// Whether this processor runs the set and the build has kernels for it
// (always true for scalar).
bool Runs(Isa isa);

// The instruction sets this processor runs and the build has kernels for,
// scalar first.
inline std::vector<IsaInfo> RunnableIsas() {
  std::vector<IsaInfo> runnable;
  for (const IsaInfo &info : kIsas) {
    if (Runs(info.isa)) runnable.push_back(info);
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

// A family's tables, one per instruction set in kIsas order; null where the
// build has none for that set (the scalar table always exists).
template <class Table>
using Tables = const Table *const[kIsaCount];

// A kernel table is a struct of function pointers (arrays of them included),
// so it is read here as an array of entry slots of one size.
using KernelSlot = void (*)();

// `below` with each entry that `above` has (is not null) taken from `above`.
template <class Table>
Table Overlay(Table below, const Table &above) {
  static_assert(std::is_trivially_copyable<Table>::value &&
                    sizeof(Table) % sizeof(KernelSlot) == 0 &&
                    alignof(Table) == alignof(KernelSlot),
                "a kernel table holds function pointers and nothing else");
  constexpr std::size_t kSlots = sizeof(Table) / sizeof(KernelSlot);
  KernelSlot low[kSlots], high[kSlots];
  std::memcpy(low, &below, sizeof below);
  std::memcpy(high, &above, sizeof above);
  for (std::size_t i = 0; i < kSlots; ++i) {
    if (high[i] != nullptr) low[i] = high[i];
  }
  std::memcpy(&below, low, sizeof below);
  return below;
}

// Every level's completed table: the scalar table, then each set's own
// entries over the completed table of the level below (a set the build has
// no table for, or that belongs to another processor family, repeats the
// level below).
template <class Table>
struct CompletedTables {
  explicit CompletedTables(Tables<Table> &tables) {
    level[0] = *tables[0];
    for (int i = 1; i < kIsaCount; ++i) {
      level[i] = tables[i] != nullptr ? Overlay(level[i - 1], *tables[i]) : level[i - 1];
    }
  }
  Table level[kIsaCount];
};

// The completed tables of a family, made the first time they are asked for.
// Each family has one <Family>ByIsa, so one instance per table type serves.
template <class Table>
const CompletedTables<Table> &Completed(Tables<Table> &tables) {
  static const CompletedTables<Table> completed(tables);
  return completed;
}

// The completed table the kernels run with at `isa`, and at the active set.
template <class Table>
const Table &ForIsa(Tables<Table> &tables, Isa isa) {
  return Completed(tables).level[static_cast<int>(isa)];
}
template <class Table>
const Table &Pick(Tables<Table> &tables) {
  return ForIsa(tables, ActiveIsa());
}

}  // namespace simd
}  // namespace frame
}  // namespace ostrel

// One family's table for one vector set: declared for every set of the list,
// taken (by address) only where the build compiles the set, so a set's
// tables need not exist elsewhere.
#define OSTREL_DECLARE_ISA_TABLE(Table, Suffix, NAME, processor, feature) \
  extern const Table Table##Suffix;
#define OSTREL_ISA_TABLE(Table, Suffix, NAME, processor, feature) \
  []() -> const Table * {                                         \
    if constexpr (OSTREL_KERNELS_##NAME != 0) {                   \
      return &Table##Suffix;                                      \
    } else {                                                      \
      return nullptr;                                             \
    }                                                             \
  }(),

// Declares the tables of a kernel family, Table##ForIsa (the completed table
// of a set) and Active##Table() (the completed table the kernels run with).
#define OSTREL_KERNEL_FAMILY(Table)                                         \
  extern const Table Table##Scalar;                                         \
  OSTREL_FOR_EACH_VECTOR_ISA(OSTREL_DECLARE_ISA_TABLE, Table)               \
  inline const ::ostrel::frame::simd::Tables<Table> Table##ByIsa = {        \
      &Table##Scalar, OSTREL_FOR_EACH_VECTOR_ISA(OSTREL_ISA_TABLE, Table)}; \
  inline const Table &Table##ForIsa(::ostrel::frame::simd::Isa isa) {       \
    return ::ostrel::frame::simd::ForIsa(Table##ByIsa, isa);                \
  }                                                                         \
  inline const Table &Active##Table() { return ::ostrel::frame::simd::Pick(Table##ByIsa); }

#endif  // OSTREL_FRAME_DISPATCH_H
