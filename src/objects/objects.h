// Shared pieces of the binary-object functions: region clamping and the
// flood-fill engine that Fill and ColorBinaryObjects run on.
#ifndef OSTREL_OBJECTS_OBJECTS_H
#define OSTREL_OBJECTS_OBJECTS_H

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "frame/checked.h"

namespace ostrel {
namespace objects {

inline int ClampInt(int v, int lo, int hi) { return v < lo ? lo : (v > hi ? hi : v); }

// A count returned as an int: n itself, or INT_MAX when n does not fit.
inline int SaturatedCount(std::uint64_t n) {
  return n > static_cast<std::uint64_t>(INT_MAX) ? INT_MAX : static_cast<int>(n);
}

// Adds one to a count that stops at INT_MAX.
inline void CountUp(int &n) {
  if (n != INT_MAX) ++n;
}

#if OSTREL_CHECKED
// Reports an element of a buffer argument as "name[index] is value,
// expected ...", for the checked build.
[[noreturn]] inline void ReportElement(const char *function, const char *name, std::int64_t index,
                                       frame::ArgValue value, const char *expected) {
  char argument[64];
  std::snprintf(argument, sizeof argument, "%s[%lld]", name, static_cast<long long>(index));
  frame::ReportCallerError(function, frame::ArgName{argument, ""}, value, expected);
}

// Reports an argument whose bound derives from others as "name is value,
// expected <what> (<bound>)", for the checked build.
[[noreturn]] inline void ReportBound(const char *function, const char *name, frame::ArgValue value,
                                     const char *what, std::uint64_t bound) {
  char expected[96];
  std::snprintf(expected, sizeof expected, "%s (%llu)", what,
                static_cast<unsigned long long>(bound));
  frame::ReportCallerError(function, frame::ArgName{name, ""}, value, expected);
}
#endif

// The index of p in a width x height buffer, or -1 when p is not one of its
// pixels (also when the buffer has none). Taken from the addresses, so that
// a pointer outside the buffer is seen without forming one from the other.
template <class T>
std::int64_t PixelIndex(const T *buffer, const T *p, int width, int height) {
  if (width < 1 || height < 1) return -1;
  const std::uintptr_t first = reinterpret_cast<std::uintptr_t>(buffer);
  const std::uintptr_t at = reinterpret_cast<std::uintptr_t>(p);
  if (at < first || (at - first) % sizeof(T) != 0) return -1;
  const std::uint64_t i = (at - first) / sizeof(T);
  return i < static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height)
             ? static_cast<std::int64_t>(i)
             : -1;
}

// A region clamped into a width x height buffer: left and top into the
// buffer, the sizes into 0 .. width-1-left and 0 .. height-1-top. Taken as
// counts, the sizes never reach the buffer's last column or row. A buffer
// without pixels (width or height below 1) gives an empty region at 0, 0.
struct ClampedRegion {
  int left;
  int top;
  int width;
  int height;
};

inline ClampedRegion ClampRegion(int bufferWidth, int bufferHeight, int left, int top,
                                 int regionWidth, int regionHeight) {
  ClampedRegion r = {0, 0, 0, 0};
  if (bufferWidth < 1 || bufferHeight < 1) return r;
  r.left = ClampInt(left, 0, bufferWidth - 1);
  r.top = ClampInt(top, 0, bufferHeight - 1);
  r.width = ClampInt(regionWidth, 0, bufferWidth - 1 - r.left);
  r.height = ClampInt(regionHeight, 0, bufferHeight - 1 - r.top);
  return r;
}

// Inclusive limits of a fill walk: columns left .. right, rows top .. bottom.
struct FillLimits {
  int left;
  int top;
  int right;
  int bottom;

  bool Contains(int x, int y) const { return x >= left && x <= right && y >= top && y <= bottom; }
};

// Flood fills of one element type. The work stack is kept between fills, so
// a labelling pass that fills many objects allocates it once.
template <class T>
class FillEngine {
 public:
  // Rewrites with fill the pixels reachable from the seed (x, y) over pixels
  // of the seed's value target (fill != target), stepping right only while
  // x < right, left only while x > left, down only while y < bottom and up
  // only while y > top: for a seed within the limits the 4-connected
  // component inside them; for a seed outside them, only the steps toward
  // them are open while a coordinate is outside. Returns the number of
  // pixels rewritten.
  //
  // Scanline fill. The seed's run is filled first; each stack entry then
  // names a row to scan and the run of the row it came from (dy: the step
  // from that row to this one). Every run found there that touches the
  // parent run is grown as far as the steps allow, filled, and hands on the
  // row beyond it; where the new run overhangs its parent, the overhang is
  // also looked at in the parent's row, which is all the rescanning needed:
  // a run can only overhang on a side where its parent's growth was stopped
  // by a pixel not of the target value (the limit was still ahead of it
  // there), so the parent row's pixel just outside the parent run is never
  // of the target value.
  //
  // The step conditions depend on one coordinate each, so a run is grown
  // left only while its end is right of the left limit and right only while
  // it is left of the right limit; a row above is entered only while it is
  // not above the top limit, a row below only while it is not below the
  // bottom one (from outside the limits that leaves the one step toward
  // them). A run that starts outside the limits is not grown away from them,
  // and a run stopped by the right limit may have a pixel of the target
  // value next to it, under the parent run: the scan goes on there.
  std::size_t Fill(T *buffer, int width, int x, int y, const FillLimits &limits, T target, T fill) {
    stack_.clear();
    const auto push = [&](int row, int x1, int x2, int dy) {
      if (dy < 0 ? row >= limits.top : row <= limits.bottom)
        stack_.push_back(Span{row, x1, x2, dy});
    };
    T *row = RowOf(buffer, width, y);
    int first = x, last = x;
    while (first > limits.left && row[first - 1] == target) --first;
    while (last < limits.right && row[last + 1] == target) ++last;
    for (int i = first; i <= last; ++i) row[i] = fill;
    std::size_t filled = static_cast<std::size_t>(last - first + 1);
    push(y - 1, first, last, -1);
    push(y + 1, first, last, 1);
    while (!stack_.empty()) {
      const Span s = stack_.back();
      stack_.pop_back();
      row = RowOf(buffer, width, s.y);
      for (int i = s.x1; i <= s.x2;) {
        if (row[i] != target) {
          ++i;
          continue;
        }
        int l = i, r = i;
        if (i == s.x1) {
          while (l > limits.left && row[l - 1] == target) --l;
        }
        while (r < limits.right && row[r + 1] == target) ++r;
        for (int j = l; j <= r; ++j) row[j] = fill;
        filled += static_cast<std::size_t>(r - l + 1);
        push(s.y + s.dy, l, r, s.dy);
        if (l < s.x1 - 1) push(s.y - s.dy, l, s.x1 - 2, -s.dy);
        if (r > s.x2 + 1) push(s.y - s.dy, s.x2 + 2, r, -s.dy);
        // A run that reaches the parent's end ends the scan here: r + 2
        // would pass INT_MAX at the last column of a buffer INT_MAX wide.
        if (r >= s.x2) break;
        // r + 1 is not of the target value when the run stopped before the
        // right limit; past it, r + 1 is still to be looked at.
        i = r < limits.right ? r + 2 : r + 1;
      }
    }
    return filled;
  }

 private:
  struct Span {
    int y;   // the row to scan
    int x1;  // the filled run of row y - dy, next to it
    int x2;
    int dy;
  };

  static T *RowOf(T *buffer, int width, int y) {
    return buffer + static_cast<std::ptrdiff_t>(y) * width;
  }

  std::vector<Span> stack_;
};

}  // namespace objects
}  // namespace ostrel

#endif  // OSTREL_OBJECTS_OBJECTS_H
