// Shared pieces of the binary-object functions: region clamping and the
// flood-fill engine that Fill and ColorBinaryObjects run on.
#ifndef OSTREL_OBJECTS_OBJECTS_H
#define OSTREL_OBJECTS_OBJECTS_H

#include <cstddef>
#include <vector>

namespace ostrel {
namespace objects {

inline int ClampInt(int v, int lo, int hi) { return v < lo ? lo : (v > hi ? hi : v); }

// A region clamped into a width x height buffer: left and top into the
// buffer, the sizes into 0 .. width-1-left and 0 .. height-1-top. Taken as
// counts, the sizes never reach the buffer's last column or row.
struct ClampedRegion {
  int left;
  int top;
  int width;
  int height;
};

inline ClampedRegion ClampRegion(int bufferWidth, int bufferHeight, int left, int top,
                                 int regionWidth, int regionHeight) {
  ClampedRegion r;
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
  // component inside them. Returns the number of pixels rewritten.
  std::size_t Fill(T *buffer, int width, int x, int y, const FillLimits &limits, T target,
                   T fill) {
    return limits.Contains(x, y) ? FillSpans(buffer, width, x, y, limits, target, fill)
                                 : FillStepwise(buffer, width, x, y, limits, target, fill);
  }

 private:
  struct Seed {
    int x;
    int y;
  };

  static T *RowOf(T *buffer, int width, int y) {
    return buffer + static_cast<std::ptrdiff_t>(y) * width;
  }

  // Pushes one seed for every run of target pixels of row y in columns
  // first .. last.
  void PushRuns(T *row, int y, int first, int last, T target) {
    int i = first;
    while (i <= last) {
      if (row[i] == target) {
        stack_.push_back(Seed{i, y});
        while (i <= last && row[i] == target) ++i;
      } else {
        ++i;
      }
    }
  }

  // Scanline fill: each popped seed grows to its whole run within the
  // limits, which is filled at once; the rows above and below get one seed
  // per run of target pixels beside it.
  std::size_t FillSpans(T *buffer, int width, int x, int y, const FillLimits &limits, T target,
                        T fill) {
    std::size_t filled = 0;
    stack_.clear();
    stack_.push_back(Seed{x, y});
    while (!stack_.empty()) {
      const Seed s = stack_.back();
      stack_.pop_back();
      T *row = RowOf(buffer, width, s.y);
      if (row[s.x] != target) continue;  // filled since it was pushed
      int first = s.x, last = s.x;
      while (first > limits.left && row[first - 1] == target) --first;
      while (last < limits.right && row[last + 1] == target) ++last;
      for (int i = first; i <= last; ++i) row[i] = fill;
      filled += static_cast<std::size_t>(last - first + 1);
      if (s.y > limits.top) PushRuns(row - width, s.y - 1, first, last, target);
      if (s.y < limits.bottom) PushRuns(row + width, s.y + 1, first, last, target);
    }
    return filled;
  }

  // Pixel by pixel, with the step conditions tested at every pixel: for a
  // seed outside the limits, from which only the steps toward them are open.
  std::size_t FillStepwise(T *buffer, int width, int x, int y, const FillLimits &limits,
                           T target, T fill) {
    std::size_t filled = 1;
    RowOf(buffer, width, y)[x] = fill;
    stack_.clear();
    stack_.push_back(Seed{x, y});
    const auto visit = [&](int nx, int ny) {
      T &p = RowOf(buffer, width, ny)[nx];
      if (p != target) return;
      p = fill;
      ++filled;
      stack_.push_back(Seed{nx, ny});
    };
    while (!stack_.empty()) {
      const Seed s = stack_.back();
      stack_.pop_back();
      if (s.x < limits.right) visit(s.x + 1, s.y);
      if (s.x > limits.left) visit(s.x - 1, s.y);
      if (s.y < limits.bottom) visit(s.x, s.y + 1);
      if (s.y > limits.top) visit(s.x, s.y - 1);
    }
    return filled;
  }

  std::vector<Seed> stack_;
};

}  // namespace objects
}  // namespace ostrel

#endif  // OSTREL_OBJECTS_OBJECTS_H
