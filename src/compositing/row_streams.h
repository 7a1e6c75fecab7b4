// What every kernel family shares around its row kernels: the loop over a
// clipped region that fills a row record per row (RunRows), and the pieces of
// the vector row drivers: a row in whole steps with an overlapping last step
// (RunSteps), and a short row or a row's tail run as one step on local rows
// (RunTail, with RowFrom and LocalRows).
//
// A row record (TrcRow, GreyRow, WordRow) is n elements of a destination and
// of the inputs its kernel reads, each a pointer that may be null when the
// kernel reads no such input. It lists them once:
//
//   static constexpr auto Streams() { return std::make_tuple(&Row::dst, ...); }
//   static constexpr std::size_t kWrittenStreams = ...;  // the first ones
//
// and RunRows, RowFrom, LocalRows and RunTail work on any such record.
#ifndef OSTREL_COMPOSITING_ROW_STREAMS_H
#define OSTREL_COMPOSITING_ROW_STREAMS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <tuple>
#include <type_traits>
#include <utility>

#include "frame/region.h"

// Marks a function that must be inlined into its caller. The row helpers
// below are compiled for the baseline instruction set; a vector row driver
// (AVX2, say) that calls them with its own step functions needs them inlined
// into its body, where the steps inline in turn and keep their registers
// (a call across the boundary passes every register through memory).
#if defined(__GNUC__) || defined(__clang__)
#define OSTREL_ALWAYS_INLINE inline __attribute__((always_inline))
#elif defined(_MSC_VER)
#define OSTREL_ALWAYS_INLINE __forceinline
#else
#define OSTREL_ALWAYS_INLINE inline
#endif

namespace ostrel {
namespace compositing {

// One input stream of a row record: the member it fills and the plane whose
// rows fill it.
template <class Member, class Pixel>
struct RowInput {
  Member member;
  const frame::Plane<Pixel> &plane;
};
template <class Member, class Pixel>
RowInput<Member, Pixel> In(Member member, const frame::Plane<Pixel> &plane) {
  return {member, plane};
}

// Calls kernel(row, params) for each row j of the clipped region e, top to
// bottom: the row record holds dst's row j, e.columns long, and row j of
// each input's plane (its other streams null).
template <class Row, class Kernel, class Params, class Dst, class... Inputs>
void RunRows(frame::Extent e, Kernel &&kernel, const Params &params, const frame::Plane<Dst> &dst,
             const Inputs &...inputs) {
  for (std::uint32_t j = 0; j < e.rows; ++j) {
    Row row{};
    row.dst = dst.Row(j);
    row.n = e.columns;
    ((row.*inputs.member = inputs.plane.Row(j)), ...);
    kernel(row, params);
  }
}

// Copies n (at most kMax) bytes between buffers that do not overlap, without
// a library call: whole 16-byte blocks and a last block that overlaps the one
// before, or two overlapping halves of a shorter copy.
template <std::size_t kMax>
inline void CopyShort(void *to, const void *from, std::size_t n) {
  auto *t = static_cast<unsigned char *>(to);
  const auto *f = static_cast<const unsigned char *>(from);
  if constexpr (kMax >= 16) {
    if (n >= 16) {
      for (std::size_t k = 0; k + 16 < n; k += 16) std::memcpy(t + k, f + k, 16);
      std::memcpy(t + n - 16, f + n - 16, 16);
      return;
    }
  }
  if constexpr (kMax >= 8) {
    if (n >= 8) {
      std::memcpy(t, f, 8);
      std::memcpy(t + n - 8, f + n - 8, 8);
      return;
    }
  }
  if constexpr (kMax >= 4) {
    if (n >= 4) {
      std::memcpy(t, f, 4);
      std::memcpy(t + n - 4, f + n - 4, 4);
      return;
    }
  }
  if (n != 0) {
    t[0] = f[0];
    t[n / 2] = f[n / 2];
    t[n - 1] = f[n - 1];
  }
}

// The element type of a stream member (T for `const T *Row::*`).
template <class Member>
struct StreamElement;
template <class Row, class T>
struct StreamElement<T * Row::*> {
  using type = std::remove_const_t<T>;
};

// Calls f(member) for each stream of Row, in its list's order.
template <class Row, class F>
void ForEachStream(F &&f) {
  std::apply([&](auto... member) { (f(member), ...); }, Row::Streams());
}

// The same row without its first i elements.
template <class Row>
Row RowFrom(const Row &row, std::size_t i) {
  Row rest = row;
  rest.n = row.n - i;
  ForEachStream<Row>([&](auto member) {
    if (row.*member != nullptr) rest.*member = row.*member + i;
  });
  return rest;
}

// Runs store(i, load(i)) over a row of n elements, n at least kStep, a step
// of kStep elements at a time. When n is not a whole number of steps, one
// more step ends the row at n - kStep, its inputs read before any store: it
// stores again, for the elements it shares with the step before, the results
// that step stored (the same inputs, so the same results).
template <std::size_t kStep, class Load, class Store>
OSTREL_ALWAYS_INLINE void RunSteps(std::size_t n, Load &&load, Store &&store) {
  const std::size_t last = n - kStep;
  const auto lastInputs = load(last);
  std::size_t i = 0;
  for (; i <= last; i += kStep) store(i, load(i));
  if (i != n) store(last, lastInputs);
}

// A row of at most k elements copied into local rows of k elements each
// (zero past the row's end), for a kernel that works k elements at a time;
// WriteBack copies the written streams' first n elements back.
template <class Row, std::size_t k>
class LocalRows {
 public:
  explicit LocalRows(const Row &row) : from_(row), row_(row), n_(row.n < k ? row.n : k) {
    row_.n = k;
    Copy(std::make_index_sequence<std::tuple_size<decltype(Row::Streams())>::value>());
  }
  LocalRows(const LocalRows &) = delete;
  LocalRows &operator=(const LocalRows &) = delete;

  const Row &row() const { return row_; }

  void WriteBack() const { Back(std::make_index_sequence<Row::kWrittenStreams>()); }

 private:
  template <class Tuple>
  struct Buffers;
  template <class... Member>
  struct Buffers<std::tuple<Member...>> {
    using type = std::tuple<std::array<typename StreamElement<Member>::type, k>...>;
  };

  template <std::size_t... s>
  void Copy(std::index_sequence<s...>) {
    (CopyIn<s>(), ...);
  }
  template <std::size_t s>
  void CopyIn() {
    constexpr auto member = std::get<s>(Row::Streams());
    if (from_.*member == nullptr) return;
    auto &local = std::get<s>(local_);
    CopyShort<sizeof local>(local.data(), from_.*member, n_ * sizeof local[0]);
    row_.*member = local.data();
  }
  template <std::size_t... s>
  void Back(std::index_sequence<s...>) const {
    (BackOne<s>(), ...);
  }
  template <std::size_t s>
  void BackOne() const {
    constexpr auto member = std::get<s>(Row::Streams());
    if (from_.*member != nullptr) {
      const auto &local = std::get<s>(local_);
      CopyShort<sizeof local>(from_.*member, local.data(), n_ * sizeof local[0]);
    }
  }

  const Row &from_;
  Row row_;
  std::size_t n_;  // from_.n, which is at most k
  typename Buffers<decltype(Row::Streams())>::type local_{};
};

// Runs step(local) once on the elements of row from i on (fewer than k),
// copied into local rows of k elements, and copies the written ones back.
// A driver hands it the row record it was called with, not its own copy of
// it: the copy then never has its address taken and stays in registers
// (copying a record whose fields the caller has just stored, as a whole,
// stalls the processor on every row).
template <std::size_t k, class Row, class Step>
void RunTail(const Row &row, std::size_t i, Step &&step) {
  const Row rest = RowFrom(row, i);
  const LocalRows<Row, k> local(rest);
  step(local.row());
  local.WriteBack();
}

}  // namespace compositing
}  // namespace ostrel

#endif  // OSTREL_COMPOSITING_ROW_STREAMS_H
