// Flood fill and object labelling (Fill, ColorBinaryObjects).
#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <vector>

#include "Ostrel.h"
#include "frame/checked.h"
#include "objects/objects.h"

namespace ostrel {
namespace objects {
namespace {

// The label after label, one up or down: modulo 256 for bytes, modulo 2^32
// for ints.
unsigned char StepLabel(unsigned char label, bool ascending) {
  return static_cast<unsigned char>(ascending ? label + 1u : label - 1u);
}
int StepLabel(int label, bool ascending) {
  const unsigned int u = static_cast<unsigned int>(label);
  return static_cast<int>(ascending ? u + 1u : u - 1u);
}

// The label steps after label, one up or down each.
unsigned char StepLabel(unsigned char label, bool ascending, std::uint64_t steps) {
  const unsigned int n = static_cast<unsigned int>(steps & 0xFFu);
  return static_cast<unsigned char>(ascending ? label + n : label - n);
}
int StepLabel(int label, bool ascending, std::uint64_t steps) {
  const unsigned int u = static_cast<unsigned int>(label);
  const unsigned int n = static_cast<unsigned int>(steps & 0xFFFFFFFFu);
  return static_cast<int>(ascending ? u + n : u - n);
}

// Labels as residues modulo 2^bits of the element type.
std::uint64_t LabelCode(unsigned char v) { return v; }
std::uint64_t LabelCode(int v) { return static_cast<unsigned int>(v); }

// The raster scan as it is defined: one fill per object pixel met, reserved
// labels used up without a fill (the read position running one further
// ahead of the column after each), the stop tests after every step. Starts
// at column c0 of row y0 with the read position at that column, holding
// label and count; returns the count.
template <typename T>
std::int64_t ScanAndFill(T *buffer, int width, const ClampedRegion &r, int y0, int c0, T label,
                         std::int64_t count, T backgroundValue, T objectValue, bool ascending,
                         int endLabel) {
  // Fill's inclusive limits for this region: one column and one row beyond
  // the scanned ones.
  const FillLimits limits = {r.left, r.top, r.left + r.width, r.top + r.height};
  FillEngine<T> engine;
  for (int y = y0, c0InRow = c0; y < r.top + r.height; ++y, c0InRow = 0) {
    T *row = buffer + static_cast<std::ptrdiff_t>(y) * width + r.left;
    // The column c counts fills and plain pixels; the read position also
    // counts the pixels that met a reserved label, so it runs ahead of c
    // after each of them until the row ends.
    const T *read = row + c0InRow;
    for (int c = c0InRow; c < r.width; ++read) {
      if (*read != objectValue) {
        ++c;
        continue;
      }
      if (label != objectValue && label != backgroundValue) {
        const T target = row[c];
        if (target != label) engine.Fill(buffer, width, r.left + c, y, limits, target, label);
        ++count;
        ++c;
      }
      label = StepLabel(label, ascending);
      if (ascending ? static_cast<int>(label) == endLabel : label == 1) return count;
    }
  }
  return count;
}

// How far the scan goes with labels firstLabel, firstLabel +- 1, ... given
// to the objects in turn, each by one fill of objectValue: up to the first
// label that is reserved (the first skip; from there the read position may
// run ahead of the column and a fill may start from another value) or until
// the stop after the last label used, whichever comes first. plain objects
// are labelled that way; stops tells that the scan then ends.
struct PlainLabels {
  std::uint64_t plain;
  bool stops;
};

template <typename T>
PlainLabels CountPlainLabels(T backgroundValue, T objectValue, T firstLabel, bool ascending,
                             int endLabel) {
  const std::uint64_t modulus = std::uint64_t{1} << (8 * sizeof(T));
  const std::uint64_t first = LabelCode(firstLabel);
  // The steps from firstLabel to the label v.
  const auto steps = [&](std::uint64_t v) {
    return (ascending ? v - first : first - v) & (modulus - 1);
  };
  const std::uint64_t skip =
      std::min(steps(LabelCode(objectValue)), steps(LabelCode(backgroundValue)));
  // The stop comes when a step reaches endLabel (ascending) or 1, so after
  // at least one step: a distance of 0 means a whole turn.
  std::uint64_t stop = UINT64_MAX;
  if (!ascending) {
    stop = steps(1);
  } else if (sizeof(T) > 1 || (endLabel >= 0 && endLabel <= 255)) {
    stop = steps(LabelCode(static_cast<T>(endLabel)));
  }
  if (stop == 0) stop = modulus;
  return PlainLabels{std::min(skip, stop), stop <= skip};
}

// Connected-component labelling over runs for the plain part of the scan.
// Runs of objectValue are collected row by row over Fill's limits (the
// scanned region and one column and row beyond), each joined (union-find,
// the smaller run number as root, so roots are first in raster order) with
// the runs of the row above that share a column: 4-connectivity, as the
// fill's. Objects are then numbered in raster order of their first run in
// the scanned region, which starts at the object's first pixel there, and
// the first `plain` objects get their labels written run by run. Nothing is
// written before every run is known, so giving up (too many runs for the
// memory allowed) leaves the buffer as it was.
class RunLabels {
 public:
  // The number of objects labelled, and whether there are more: then
  // (nextX, nextY) is the first pixel of the next.
  std::uint64_t labelled = 0;
  bool more = false;
  int nextX = 0;
  int nextY = 0;

  template <typename T>
  bool Label(T *buffer, int width, const ClampedRegion &r, T objectValue, T firstLabel,
             bool ascending, std::uint64_t plain) {
    if (!Collect(buffer, width, r, objectValue)) return false;
    NumberAndWrite(buffer, width, r, objectValue, firstLabel, ascending, plain);
    return true;
  }

 private:
  // Marks an object's number in parent_, above every run number.
  static constexpr std::uint32_t kNumbered = 0x80000000u;
  static constexpr int kStretch = 32;
  // Rows with a run for every kDenseRun columns or more are written pixel
  // by pixel.
  static constexpr std::uint64_t kDenseRun = 5;
  // The most runs labelled this way, at 12 bytes a run (the rest go to the
  // scan of fills): 768 MiB, or 48 MiB in a 32-bit process.
  static constexpr std::uint32_t kMaxRuns =
      sizeof(void *) >= 8 ? std::uint32_t{1} << 26 : std::uint32_t{1} << 22;

  std::uint32_t Find(std::uint32_t i) {
    while (parent_[i] != i) {
      parent_[i] = parent_[parent_[i]];
      i = parent_[i];
    }
    return i;
  }

  template <typename T>
  bool Collect(const T *buffer, int width, const ClampedRegion &r, T objectValue) {
    const int cols = r.width + 1, rows = r.height + 1;
    // A row wider than the runs allowed is left to the scan (and keeps the
    // sizes below within a 32-bit size_t).
    if (static_cast<std::uint32_t>(cols) > kMaxRuns) return false;
    // Room for as many runs as the rows can hold, up to kMaxRuns, and for
    // one row's column numbers beyond the last run; the pages are touched
    // only as runs are written.
    const std::size_t room = static_cast<std::size_t>(
        std::min<std::uint64_t>(kMaxRuns, static_cast<std::uint64_t>(cols / 2 + 1) * rows));
    bounds_.reset(new int[2 * room + static_cast<std::size_t>(cols) + 2]);
    parent_.reset(new std::uint32_t[room]);
    // The pairs of runs that meet between two rows: fewer than the runs of
    // both rows, so at most cols, and room for two noted beyond the last.
    pairs_.reset(new std::uint32_t[2 * static_cast<std::size_t>(cols) + 8]);
    turns_.reset(new std::uint32_t[2 * static_cast<std::size_t>(cols)]);
    rowStart_.assign(static_cast<std::size_t>(rows) + 1, 0);
    std::uint32_t n = 0;
    for (int y = 0; y < rows; ++y) {
      const T *row = buffer + static_cast<std::ptrdiff_t>(r.top + y) * width + r.left;
      // Every column where the row enters or leaves objectValue, written
      // without a branch per pixel: the runs' starts and ends by turns.
      // Stretches of kStretch pixels that all stay inside or all stay
      // outside are counted (a sum the compiler vectorises) and passed over.
      // turns[x] is the number of those columns up to and including x.
      int *b = bounds_.get() + 2 * static_cast<std::size_t>(n);
      std::uint32_t *turns = turns_.get() + (y & 1) * static_cast<std::size_t>(cols);
      std::uint32_t nb = 0;
      bool in = false;
      for (int x = 0; x < cols;) {
        if (cols - x >= kStretch) {
          int objects = 0;
          for (int i = 0; i < kStretch; ++i) objects += row[x + i] == objectValue;
          if (objects == (in ? kStretch : 0)) {
            for (int i = 0; i < kStretch; ++i) turns[x + i] = nb;
            x += kStretch;
            continue;
          }
        }
        for (const int e = std::min(cols, x + kStretch); x < e; ++x) {
          const bool object = row[x] == objectValue;
          b[nb] = x;
          nb += object != in;
          in = object;
          turns[x] = nb;
        }
      }
      b[nb] = cols;
      nb += in;
      const std::uint32_t found = nb / 2;
      if (found > room - n) return false;
      const std::uint32_t above = y > 0 ? rowStart_[y - 1] : 0;
      rowStart_[y] = n;
      // Each run joined with the runs above that share a column. The row
      // above's turns give them without a walk: before column x it has
      // turns[x] / 2 runs ended, up to x (turns[x] + 1) / 2 begun, so the
      // run over columns x1 .. stop - 1 meets the runs above from the first
      // not ended at x1 to the last begun at stop - 1. The pairs are noted
      // (the first two without a branch) and joined afterwards.
      const std::uint32_t end = n + found;
      std::uint32_t *pairs = pairs_.get();
      std::size_t np = 0;
      if (y > 0) {
        const std::uint32_t *aboveTurns =
            turns_.get() + ((y - 1) & 1) * static_cast<std::size_t>(cols);
        for (std::uint32_t i = n; i < end; ++i) {
          const int x1 = bounds_[2 * i], stop = bounds_[2 * i + 1];
          const std::uint32_t a = above + aboveTurns[x1] / 2;
          const std::uint32_t aEnd = above + (aboveTurns[stop - 1] + 1) / 2;
          pairs[np] = i;
          pairs[np + 1] = a;
          pairs[np + 2] = i;
          pairs[np + 3] = a + 1;
          np += 2 * std::min<std::uint32_t>(aEnd - a, 2);
          for (std::uint32_t k = a + 2; k < aEnd; ++k) {
            pairs[np] = i;
            pairs[np + 1] = k;
            np += 2;
          }
        }
      }
      for (std::uint32_t i = n; i < end; ++i) parent_[i] = i;
      // The pairs come run by run; a run's root is kept from one pair to the
      // next (only its own pairs can move it), and is the run itself at its
      // first pair.
      std::uint32_t run = end, root = 0;
      for (std::size_t p = 0; p < np; p += 2) {
        if (pairs[p] != run) run = root = pairs[p];
        const std::uint32_t ra = Find(pairs[p + 1]);
        if (ra < root) {
          parent_[root] = ra;
          root = ra;
        } else if (ra > root) {
          parent_[ra] = root;
        }
      }
      n = end;
    }
    rowStart_[rows] = n;
    return true;
  }

  // Replaces each run's parent by its object's number (with kNumbered) or,
  // while the object has none, by the root, and writes the label of each
  // numbered run. Runs are taken in raster order and a parent always comes
  // before its child, so the parent's entry is already a number or a root.
  // An object first numbered after some of its runs (those in the unscanned
  // column, each the last of its row) has the number in its root's entry:
  // those runs are written at the end.
  template <typename T>
  void NumberAndWrite(T *buffer, int width, const ClampedRegion &r, T objectValue, T firstLabel,
                      bool ascending, std::uint64_t plain) {
    const int cols = r.width + 1;
    // A row's labels by run, from index 1 (0 stands before the first run),
    // objectValue for the runs left as they are.
    std::unique_ptr<T[]> rowLabels(new T[static_cast<std::size_t>(cols) / 2 + 3]);
    std::uint32_t next = 0;
    const auto write = [&](T *row, std::uint32_t j, std::uint32_t number) {
      const T label = StepLabel(firstLabel, ascending, number & ~kNumbered);
      // The ends first, then what lies between: on short runs the loop
      // is not entered.
      const int x1 = bounds_[2 * j], last = bounds_[2 * j + 1] - 1;
      row[x1] = label;
      row[last] = label;
      for (int x = x1 + 1; x < last; ++x) row[x] = label;
    };
    for (int y = 0; y <= r.height; ++y) {
      T *row = buffer + static_cast<std::ptrdiff_t>(r.top + y) * width + r.left;
      const bool scannedRow = y < r.height;
      const std::uint32_t first = rowStart_[y], last = rowStart_[y + 1];
      // Short runs close together are written pixel by pixel (no branch on
      // a run's length), the others by a fill each.
      const bool dense =
          static_cast<std::uint64_t>(last - first) * kDenseRun >= static_cast<std::uint64_t>(cols);
      for (std::uint32_t j = first; j < last; ++j) {
        // The parent's entry is a number or the root; the root's entry (the
        // run's own while it is a root) then a number or the root itself.
        // Taken without branches on which it is: the second load reads
        // some entry before j when the first was a number.
        const std::uint32_t up = parent_[parent_[j]];
        const std::uint32_t upEntry = parent_[up & ~kNumbered];
        const std::uint32_t found = (up & kNumbered) != 0 ? up : upEntry;
        const bool numbered = (found & kNumbered) != 0;
        const bool scanned = scannedRow && bounds_[2 * j] != r.width;
        const bool fresh = !numbered && scanned && next < plain;
        const std::uint32_t entry = fresh ? (next | kNumbered) : found;
        parent_[fresh ? found : j] = entry;
        parent_[j] = entry;
        next += fresh;
        const bool labelled = (entry & kNumbered) != 0;
        if (dense) {
          rowLabels[1 + (j - first)] =
              labelled ? StepLabel(firstLabel, ascending, entry & ~kNumbered) : objectValue;
        } else if (labelled) {
          write(row, j, entry);
        }
        if (!labelled && scanned && !more) {
          more = true;
          nextX = r.left + bounds_[2 * j];
          nextY = r.top + y;
        }
      }
      if (dense) {
        // Each pixel of objectValue takes its run's label (k counts the
        // runs begun), the others are stored back as they were: blended by
        // a mask rather than chosen, as a branch here would go either way
        // at random on noise.
        rowLabels[0] = objectValue;
        std::uint32_t k = 0, in = 0;
        for (int x = 0; x < cols; ++x) {
          const T v = row[x];
          const std::uint32_t object = v == objectValue;
          k += object & ~in;
          in = object;
          const T mask = static_cast<T>(0u - object);
          row[x] = static_cast<T>((rowLabels[k] & mask) | (v & static_cast<T>(~mask)));
        }
      }
    }
    labelled = next;
    for (int y = 0; y < r.height; ++y) {
      const std::uint32_t j = rowStart_[y + 1] - 1;
      if (rowStart_[y + 1] == rowStart_[y] || bounds_[2 * j] != r.width) continue;
      // Numbered already, or the root (perhaps the run itself) holds it.
      const std::uint32_t number = (parent_[j] & kNumbered) != 0 ? parent_[j] : parent_[parent_[j]];
      if ((number & kNumbered) != 0) {
        write(buffer + static_cast<std::ptrdiff_t>(r.top + y) * width + r.left, j, number);
      }
    }
  }

  // Run j covers the columns bounds_[2j] up to, not including,
  // bounds_[2j + 1], counted from the region's left.
  std::unique_ptr<int[]> bounds_;
  std::unique_ptr<std::uint32_t[]> parent_;
  std::unique_ptr<std::uint32_t[]> pairs_;
  std::unique_ptr<std::uint32_t[]> turns_;  // two rows' turns, by row parity
  std::vector<std::uint32_t> rowStart_;     // each row's first run, and the end
};

}  // namespace
}  // namespace objects
}  // namespace ostrel

namespace objects = ostrel::objects;

template <typename T>
int Fill(T *buffer, int width, int height, int seedX, int seedY, int left, int top, int regionWidth,
         int regionHeight, T fillValue, int *changedCount) {
  OSTREL_EXPECT(__func__, "width", width, width >= 1, "at least 1");
  OSTREL_EXPECT(__func__, "height", height, height >= 1, "at least 1");
  if (changedCount != nullptr) *changedCount = 1;
  if (width < 1 || height < 1) return 0;  // no pixel to seed at
  // The seed moves into the buffer, not into the region.
  if (seedX < 0 || seedX > width - 1) seedX = seedX < 0 ? 0 : width - 1;
  if (seedY < 0 || seedY > height - 1) seedY = seedY < 0 ? 0 : height - 1;
  objects::FillLimits limits;
  limits.left = objects::ClampInt(left, 0, width - 1);
  limits.top = objects::ClampInt(top, 0, height - 1);
  limits.right = limits.left + objects::ClampInt(regionWidth, 0, width - 1 - limits.left);
  limits.bottom = limits.top + objects::ClampInt(regionHeight, 0, height - 1 - limits.top);

  const T target = buffer[static_cast<std::ptrdiff_t>(seedY) * width + seedX];
  // Filling a region with its own value would change nothing.
  OSTREL_EXPECT(__func__, "fillValue", fillValue, fillValue != target,
                "a value other than the seed pixel's");
  if (fillValue == target) return 0;

  objects::FillEngine<T> engine;
  const std::size_t filled = engine.Fill(buffer, width, seedX, seedY, limits, target, fillValue);
  if (changedCount != nullptr) *changedCount = objects::SaturatedCount(std::uint64_t{1} + filled);
  return 0;
}

template <typename T>
int ColorBinaryObjects(T *buffer, int width, int height, int left, int top, int regionWidth,
                       int regionHeight, T backgroundValue, T objectValue, T firstLabel,
                       bool ascending, int endLabel) {
  OSTREL_EXPECT(__func__, "width", width, width >= 0, "not negative");
  OSTREL_EXPECT(__func__, "height", height, height >= 0, "not negative");
  const objects::ClampedRegion r =
      objects::ClampRegion(width, height, left, top, regionWidth, regionHeight);
  if (r.height < 1 || r.width < 1) return 0;
  // Up to the first reserved label or the stop, each object is one fill of
  // objectValue: its 4-connected component within Fill's limits, labelled
  // in raster order of first pixels. That part is labelled over runs; from
  // the first skip on, the scan itself goes on from that object's first
  // pixel with the label and count it would have there.
  const objects::PlainLabels p =
      objects::CountPlainLabels(backgroundValue, objectValue, firstLabel, ascending, endLabel);
  T label = firstLabel;
  std::int64_t count = 0;
  int y0 = r.top, c0 = 0;
  if (p.plain > 0) {
    objects::RunLabels runs;
    bool labelled = false;
    try {
      labelled = runs.Label(buffer, width, r, objectValue, firstLabel, ascending, p.plain);
    } catch (const std::bad_alloc &) {
      // Not written yet: the scan below does it all.
    }
    if (labelled) {
      if (!runs.more || p.stops) return objects::SaturatedCount(runs.labelled);
      label = objects::StepLabel(firstLabel, ascending, runs.labelled);
      count = static_cast<std::int64_t>(runs.labelled);
      y0 = runs.nextY;
      c0 = runs.nextX - r.left;
    }
  }
  count = objects::ScanAndFill(buffer, width, r, y0, c0, label, count, backgroundValue, objectValue,
                               ascending, endLabel);
  return objects::SaturatedCount(static_cast<std::uint64_t>(count));
}

template OSTREL_API int Fill<unsigned char>(unsigned char *buffer, int width, int height, int seedX,
                                            int seedY, int left, int top, int regionWidth,
                                            int regionHeight, unsigned char fillValue,
                                            int *changedCount);
template OSTREL_API int Fill<int>(int *buffer, int width, int height, int seedX, int seedY,
                                  int left, int top, int regionWidth, int regionHeight,
                                  int fillValue, int *changedCount);
template OSTREL_API int ColorBinaryObjects<unsigned char>(
    unsigned char *buffer, int width, int height, int left, int top, int regionWidth,
    int regionHeight, unsigned char backgroundValue, unsigned char objectValue,
    unsigned char firstLabel, bool ascending, int endLabel);
template OSTREL_API int ColorBinaryObjects<int>(int *buffer, int width, int height, int left,
                                                int top, int regionWidth, int regionHeight,
                                                int backgroundValue, int objectValue,
                                                int firstLabel, bool ascending, int endLabel);
