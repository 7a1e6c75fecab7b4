// Multi-object feature extraction: per-object pixel count, centroid,
// orientation, perimeter, roundness and histogram in one pass over a label
// buffer, with the module-wide angle tables that the orientation needs.
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

#include "Ostrel.h"
#include "VornelMemMgr.h"
#include "frame/checked.h"
#include "frame/numeric.h"
#include "frame/platform.h"
#include "objects/objects.h"

static_assert(sizeof(SFeature) == 1104, "SFeature is shared with hosts of either word size");
static_assert(offsetof(SFeature, centroidX) == 8, "the doubles follow the padded count");
static_assert(offsetof(SFeature, roundness) == 40, "five doubles");
static_assert(offsetof(SFeature, histogram) == 48, "the histogram follows the doubles");
static_assert(offsetof(SFeature, reserved) == 1072, "256 bins before the host's tail");

namespace ostrel {
namespace objects {
namespace {

const double kPi = 3.14159265358979323846;

// The angle tables of the orientation: N bins per full turn, scale bins per
// radian, E bins per 45 degrees, angle[i] the bin of atan(i / E), and an
// accumulator of N + 1 bins. Module-wide and unguarded.
struct FeatureTables {
  int marker = 0;
  int n = 0;
  double scale = 0.0;
  int e = 0;
  int *angle = nullptr;
  double *accumulator = nullptr;
  // The bins that hold an entry, in the order they were first filled; the
  // accumulator is 0 everywhere else, so clearing it means clearing these.
  int *filled = nullptr;
  int filledCount = 0;

  // Adds an entry to a bin, noting the bin when it was empty.
  void Add(int bin, double weight) {
    double &entry = accumulator[bin];
    const bool wasEmpty = entry == 0.0;
    entry += weight;
    if (wasEmpty && entry != 0.0) filled[filledCount++] = bin;
  }
  void Clear() {
    for (int i = 0; i < filledCount; ++i) accumulator[filled[i]] = 0.0;
    filledCount = 0;
  }

  void Free() {
    delete[] angle;
    delete[] accumulator;
    delete[] filled;
    angle = nullptr;
    accumulator = nullptr;
    filled = nullptr;
    filledCount = 0;
  }
};

FeatureTables g_tables;

// The angleSteps InitFeatureTables accepts. Below 7.5, N is under 8 and E =
// N / 8 is 0: the angle table's atan(i / E) is 0 / 0 and, below 0.5, N = 0
// leaves the window search without bins. The upper bound, a hundredth of a
// degree per bin, keeps the tables small and the window search (about
// N * N / 5 additions per object) within reason. NaN fails both tests.
const double kMinAngleSteps = 7.5;
const double kMaxAngleSteps = 36000.0;

bool AcceptedAngleSteps(double angleSteps) {
  return angleSteps >= kMinAngleSteps && angleSteps <= kMaxAngleSteps;
}

bool EscapePressed() { return frame::platform::KeyPressed(frame::platform::kVirtualKeyEscape); }

// Index of an object label from firstLabel: bytes compared as unsigned
// values, ints in wrapping 32-bit arithmetic.
int LabelIndex(unsigned char label, unsigned char firstLabel) {
  return static_cast<int>(label) - static_cast<int>(firstLabel);
}
int LabelIndex(int label, int firstLabel) {
  return static_cast<int>(static_cast<unsigned int>(label) - static_cast<unsigned int>(firstLabel));
}
// Whether a value has a histogram bin, 0 .. 255; every byte has one.
bool InHistogram(unsigned char) { return true; }
bool InHistogram(int value) { return value >= 0 && value <= 255; }

unsigned char ObjectLabel(int k, unsigned char firstLabel) {
  return static_cast<unsigned char>(firstLabel + k);
}
int ObjectLabel(int k, int firstLabel) {
  return static_cast<int>(static_cast<unsigned int>(firstLabel) + static_cast<unsigned int>(k));
}

// Where each object's pixels lie inside the region: the bounding box of the
// pixels that carry one label value.
struct Box {
  int left = INT_MAX, top = INT_MAX, right = -1, bottom = -1;  // inclusive; right < left: empty
  void Add(int c, int row) {
    left = std::min(left, c), right = std::max(right, c);
    top = std::min(top, row), bottom = std::max(bottom, row);
  }
};

// The box of the pixels labelled ObjectLabel(k): byte labels by their value
// (objects 256 apart share a label), int labels by their index.
int BoxOf(unsigned char label, unsigned char /*firstLabel*/, int /*objectCount*/) { return label; }
int BoxOf(int label, int firstLabel, int objectCount) {
  const int k = LabelIndex(label, firstLabel);
  return k >= 0 && k < objectCount ? k : -1;
}
int BoxCount(unsigned char, int) { return 256; }
int BoxCount(int, int objectCount) { return objectCount; }

// The per-object temporaries, from the suite's memory manager; whatever was
// obtained goes back to it when the call ends.
class Temporaries {
 public:
  ~Temporaries() {
    if (manager_ == nullptr) return;
    manager_->Free(boxes);
    manager_->Free(sumY);
    manager_->Free(sumX);
    manager_->Free(counter);
    manager_->Free(done);
    manager_->Release();
  }

  bool Obtain(int objectCount, bool sums, std::size_t boxCount) {
    // The largest block, objectCount doubles, must have a size that size_t
    // holds (in 32-bit builds it need not): nothing is asked for otherwise.
    const std::size_t n = static_cast<std::size_t>(objectCount);
    if (n > SIZE_MAX / sizeof(double) || boxCount > SIZE_MAX / sizeof(Box)) return false;
    manager_ = DllGetMemMgr();
    if (manager_ == nullptr) return false;
    if (!Cleared(n, &done) || !Cleared(n, &counter)) return false;
    if (sums && !(Cleared(n, &sumX) && Cleared(n, &sumY))) return false;
    return boxCount == 0 || Cleared(boxCount, &boxes);
  }

  // Not read: an object's first pixel is the one met with its count still
  // 0. Still asked for, so that the blocks asked of the memory manager do
  // not depend on how the pass tells first pixels.
  unsigned char *done = nullptr;
  std::int64_t *counter = nullptr;
  double *sumX = nullptr;
  double *sumY = nullptr;
  Box *boxes = nullptr;  // the orientation's object boxes

 private:
  template <class E>
  bool Cleared(std::size_t n, E **block) {
    void *p = nullptr;
    if (manager_->Allocate(n * sizeof(E), &p) < 0 || p == nullptr) return false;
    *block = static_cast<E *>(p);
    for (std::size_t i = 0; i < n; ++i) (*block)[i] = E();
    return true;
  }

  IMemMgr *manager_ = nullptr;
};

// The accumulator bin of the offset (dx, dy) from the centroid, measured from
// the positive x axis toward positive y over the full turn. On the diagonals
// the bin is angle[E] plus 0, 3E, 5E or 7E, which puts three of them one
// octant further on; hosts' results depend on it.
int AngleBin(double dx, double dy) {
  const FeatureTables &t = g_tables;
  const int e = t.e;
  const double ax = std::fabs(dx), ay = std::fabs(dy);
  const bool right = dx > 0, below = dy > 0;
  if (ax == ay) {
    const int diagonal = t.angle[e];
    if (right && below) return diagonal;
    if (below) return diagonal + 3 * e;
    if (!right) return diagonal + 5 * e;
    return diagonal + 7 * e;
  }
  const double a = ax > ay ? ay / ax : ax / ay;
  const int step = t.angle[frame::TruncToInt32(a * e + 0.5)];
  if (ax > ay) {  // flat octants
    if (right && below) return step;
    if (below) return 4 * e - step;
    if (!right) return 4 * e + step;
    return 8 * e - step;
  }
  if (right && below) return 2 * e - step;  // steep octants
  if (below) return 2 * e + step;
  if (!right) return 6 * e - step;
  return 6 * e + step;
}

// The start of the heaviest window of 2 * (N / 10) bins round the turn (the
// first one on ties), as an angle in -pi .. pi.
double HeaviestDirection() {
  FeatureTables &t = g_tables;
  const int n = t.n;
  const int w = n / 10;
  // Each window sums acc[(s + j + n) % n] for j = -w .. w - 1, in that order.
  // The entries are never negative, so leaving out the empty bins changes no
  // sum by a bit: only the filled ones are added, in the same order. Bin N
  // (which AngleBin can give) is read by no window.
  std::sort(t.filled, t.filled + t.filledCount);
  const int count =
      static_cast<int>(std::lower_bound(t.filled, t.filled + t.filledCount, n) - t.filled);
  const int *const first = t.filled, *const last = t.filled + count;
  const auto addRange = [&](double sum, int from, int to) {  // the filled bins in [from, to)
    for (const int *b = std::lower_bound(first, last, from); b != last && *b < to; ++b) {
      sum += t.accumulator[*b];
    }
    return sum;
  };
  const auto windowSum = [&](int s) {
    const int start = (s - w + n) % n, end = start + 2 * w;
    double sum = addRange(0.0, start, end < n ? end : n);
    if (end > n) sum = addRange(sum, 0, end - n);
    return sum;
  };
  int best = 0;
  double bestSum = 0.0;
  if (count == 0) return best / t.scale - kPi;
  // A window holds bin b for the starts b - w + 1 .. b + w (round the turn),
  // so its filled bins, and the order they are added in, change only at the
  // starts where some bin comes in or goes out: every start in between sums
  // to the same bits as the one before it and, ties going to the first,
  // cannot win. Only 0 and those starts are weighed (start N is start 0
  // again). They are gathered behind the filled bins when there is room.
  int *const starts = t.filled + t.filledCount;
  if (t.filledCount + 2 * count + 1 <= n + 1) {
    int m = 0;
    starts[m++] = 0;
    for (const int *b = first; b != last; ++b) {
      starts[m++] = (*b - w + 1 + n) % n;
      starts[m++] = (*b + w + 1) % n;
    }
    std::sort(starts, starts + m);
    m = static_cast<int>(std::unique(starts, starts + m) - starts);
    for (int i = 0; i < m; ++i) {
      const double sum = windowSum(starts[i]);
      if (i == 0 || sum > bestSum) {
        best = starts[i];
        bestSum = sum;
      }
    }
  } else {
    for (int s = 0; s <= n; ++s) {
      const double sum = windowSum(s);
      if (s == 0 || sum > bestSum) {
        best = s;
        bestSum = sum;
      }
    }
  }
  return best / t.scale - kPi;
}

// The orientation of every object. The offsets take the region's column and
// row against the centroid in buffer coordinates, so a region away from the
// origin shifts them by left and top; hosts' results depend on that too.
// Returns false on Escape. Without tables it stops the process as the
// division by N would.
template <class T>
bool MeasureOrientations(const T *labels, int width, const ClampedRegion &r, T firstLabel,
                         int objectCount, SFeature *features, Box *boxes) {
  FeatureTables &t = g_tables;
  if (t.accumulator == nullptr) frame::platform::RaiseIntegerDivideFault();
  const auto rowOf = [&](int row) {
    return labels + static_cast<std::ptrdiff_t>(r.top + row) * width + r.left;
  };
  // One pass finds every object's box, so that each object is then measured
  // over its own box instead of the whole region: the same pixels in the
  // same order, so the same sums.
  for (int row = 0; row < r.height; ++row) {
    const T *p = rowOf(row);
    for (int c = 0; c < r.width; ++c) {
      if (EscapePressed()) return false;
      const int b = BoxOf(p[c], firstLabel, objectCount);
      if (b >= 0) boxes[b].Add(c, row);
    }
  }
  for (int k = 0; k < objectCount; ++k) {
    if (EscapePressed()) return false;
    t.Clear();  // also the bins an Escape left filled
    const T label = ObjectLabel(k, firstLabel);
    const int b = BoxOf(label, firstLabel, objectCount);
    const Box box = b >= 0 ? boxes[b] : Box();
    const double cx = features[k].centroidX, cy = features[k].centroidY;
    for (int row = box.top; row <= box.bottom; ++row) {
      const T *p = rowOf(row);
      for (int c = box.left; c <= box.right; ++c) {
        if (EscapePressed()) return false;
        if (p[c] != label) continue;
        double dy = cy - (row + 0.5);
        double dx = cx - (c + 0.5);
        if (dy < 0) dy = dy + 1.0;
        if (dx < 0) dx = dx + 1.0;
        t.Add(AngleBin(dx, dy), dx * dx + dy * dy);
      }
    }
    features[k].orientation = HeaviestDirection();
  }
  return true;
}

// The perimeter of the object of value whose first pixel in raster order is
// labels[start], at column x and row y of the buffer: FollowContour's
// length, walked here without its per-step care for the buffer's edges.
// While the walk stands in the region and off column 0 and row 0 (the
// region never reaches the last column or row), every neighbour lies inside
// the buffer in its own row, so each is read directly; on reaching column 0
// or row 0 the walk is left to FollowContour from the start.
const double g_sqrt2 = std::sqrt(2.0);
const int kStepX[8] = {-1, 0, 1, 1, 1, 0, -1, -1};  // clockwise from the upper left
const int kStepY[8] = {-1, -1, -1, 0, 1, 1, 1, 0};
const double kStepLength[8] = {g_sqrt2, 1.0, g_sqrt2, 1.0, g_sqrt2, 1.0, g_sqrt2, 1.0};

// For a search from direction d over a set of object neighbours (bit i:
// direction i), the first object direction clockwise from d; 8 for none.
struct TurnTable {
  unsigned char to[8][256];
  constexpr TurnTable() : to() {
    for (int d = 0; d < 8; ++d) {
      for (int m = 0; m < 256; ++m) {
        int i = 0;
        while (i < 8 && (m >> ((d + i) & 7) & 1) == 0) ++i;
        to[d][m] = static_cast<unsigned char>(i == 8 ? 8 : (d + i) & 7);
      }
    }
  }
};
constexpr TurnTable kTurn;

template <class T>
double Perimeter(T *labels, int width, int height, const ClampedRegion &r, int x, int y, T value) {
  const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(y) * width + x;
  const std::ptrdiff_t up = -static_cast<std::ptrdiff_t>(width), down = width;
  std::ptrdiff_t offset[8];
  for (int d = 0; d < 8; ++d)
    offset[d] = kStepY[d] * static_cast<std::ptrdiff_t>(width) + kStepX[d];
  const double limit = static_cast<double>(r.width) * static_cast<double>(r.height);
  const std::int64_t pixels = std::int64_t{width} * height;
  std::ptrdiff_t at = start;
  double length = 0.0;
  std::int64_t steps = 0;
  unsigned int d = 3;  // the first search begins to the right
  for (;;) {
    if (x < 1 || y < 1) {
      return FollowContour(labels, labels + start, width, height, r.left, r.top, r.width, r.height,
                           value, nullptr, nullptr);
    }
    // All eight neighbours at once, then the first object one clockwise
    // from d: on a noisy mask the direction is random, and one table look-up
    // costs less than the mispredicted tests of a search.
    const T *const p = labels + at;
    const auto is = [p, value](std::ptrdiff_t o, int bit) {
      return static_cast<unsigned int>(p[o] == value) << bit;
    };
    const unsigned int around = is(up - 1, 0) | is(up, 1) | is(up + 1, 2) | is(1, 3) |
                                is(down + 1, 4) | is(down, 5) | is(down - 1, 6) | is(-1, 7);
    d = kTurn.to[d][around];
    if (d == 8) return length;  // no object neighbour at all
    x += kStepX[d];
    y += kStepY[d];
    at += offset[d];
    // The step that leaves the region (x and y are at least left - 1 and
    // top - 1), closes the contour or passes the guards is not counted.
    if (static_cast<unsigned int>(x - r.left) >= static_cast<unsigned int>(r.width) ||
        static_cast<unsigned int>(y - r.top) >= static_cast<unsigned int>(r.height)) {
      break;
    }
    if (at == start) break;
    if (length > limit) break;
    if (++steps / 8 > pixels) break;
    length += kStepLength[d];
    d = (d + 5) & 7u;  // one clockwise past the pixel just left
  }
  return length;
}

// The first pass: every object's pixel count, coordinate sums, histogram and
// perimeter, with Escape polled before every pixel. A histogram is cleared
// when its object's first pixel is met (the count still 0), so that it is
// written while the object's pixels are near; the records of the objects
// not met are cleared afterwards (ClearUnmet after an Escape). Returns false
// on Escape.
template <class T, bool kCentroid, bool kHistogram>
bool MeasurePixels(T *labels, int width, int height, const ClampedRegion &r, const T *values,
                   T firstLabel, int objectCount, SFeature *features, std::int64_t *counter,
                   double *sumX, double *sumY) {
  const unsigned int objects = static_cast<unsigned int>(objectCount);
  for (int row = 0; row < r.height; ++row) {
    const std::ptrdiff_t rowStart = static_cast<std::ptrdiff_t>(r.top + row) * width + r.left;
    const T *const p = labels + rowStart;
    const T *const v = kHistogram ? values + rowStart : nullptr;
    const double y = row + 0.5;
    for (int c = 0; c < r.width; ++c) {
      if (EscapePressed()) return false;
      const unsigned int k = static_cast<unsigned int>(LabelIndex(p[c], firstLabel));
      if (k >= objects) continue;
      SFeature &f = features[k];
      if (kCentroid) {
        sumX[k] += c + 0.5;
        sumY[k] += y;
      }
      const bool first = counter[k] == 0;
      if (kHistogram) {
#if OSTREL_CHECKED
        if (!InHistogram(v[c]))
          ReportElement("MultiObjectFeatureExtract", "values", rowStart + c, v[c], "0 .. 255");
#endif
        if (first) {
          // Stored, not added to: the bin is not read back right after the
          // clearing stores.
          std::memset(f.histogram, 0, sizeof(f.histogram));
          if (InHistogram(v[c])) f.histogram[v[c]] = 1;
        } else if (InHistogram(v[c])) {
          CountUp(f.histogram[v[c]]);
        }
      }
      if (first) {
        // The object's first pixel in raster order starts its contour.
        f.perimeter = Perimeter(labels, width, height, r, r.left + c, r.top + row,
                                ObjectLabel(static_cast<int>(k), firstLabel));
      }
      ++counter[k];
    }
  }
  return true;
}

// Asks for the cache line at p ahead of a write, where the compiler can.
inline void PrefetchForWrite(const void *p) {
#if defined(__GNUC__) || defined(__clang__)
  __builtin_prefetch(p, 1);
#else
  static_cast<void>(p);
#endif
}

void ClearUnmet(int objectCount, const std::int64_t *counter, SFeature *features) {
  for (int k = 0; k < objectCount; ++k) {
    if (counter[k] == 0) std::memset(features[k].histogram, 0, sizeof(features[k].histogram));
  }
}

}  // namespace
}  // namespace objects
}  // namespace ostrel

namespace frame = ostrel::frame;
namespace objects = ostrel::objects;

int InitFeatureTables(int marker, double angleSteps) {
  OSTREL_EXPECT(__func__, "marker", marker, marker != 0, "not 0");
  OSTREL_EXPECT(__func__, "angleSteps", angleSteps, objects::AcceptedAngleSteps(angleSteps),
                "from 7.5 to 36000");
  // Refused before anything changes: tables built before stay, and without
  // them the marker stays 0, so a later call with good arguments builds them.
  if (marker == 0 || !objects::AcceptedAngleSteps(angleSteps)) return -1;
  objects::FeatureTables &t = objects::g_tables;
  if (t.marker != 0) return -1;
  t.marker = marker;
  t.n = frame::TruncToInt32(angleSteps + 0.5);  // 8 .. 36000
  t.scale = angleSteps / (2.0 * objects::kPi);
  t.e = frame::TruncToInt32(t.n * 0.125);  // 1 .. 4500
  t.Free();
  t.angle = new (std::nothrow) int[static_cast<std::size_t>(t.e) + 1];
  t.accumulator = new (std::nothrow) double[static_cast<std::size_t>(t.n) + 1]();  // all 0
  t.filled = new (std::nothrow) int[static_cast<std::size_t>(t.n) + 1];
  if (t.angle == nullptr || t.accumulator == nullptr || t.filled == nullptr) {
    // The marker stays: further calls fail until the tables are released.
    t.Free();
    t.n = 0;
    t.e = 0;
    t.scale = 0.0;
    return -1;
  }
  for (int i = 0; i <= t.e; ++i) {
    t.angle[i] = frame::TruncToInt32(std::atan(static_cast<double>(i) / t.e) * t.scale + 0.5);
  }
  return 0;
}

int ReleaseFeatureTables() {
  objects::FeatureTables &t = objects::g_tables;
  t.Free();
  t.n = 0;
  t.e = 0;
  t.scale = 0.0;
  t.marker = 0;
  return 0;
}

template <typename T>
int MultiObjectFeatureExtract(T *labels, int width, int height, int left, int top, int regionWidth,
                              int regionHeight, T *values, T firstLabel, int objectCount,
                              SFeature *features, EFeaturesNeeded needed, unsigned char *aborted) {
  OSTREL_EXPECT(__func__, "width", width, width >= 0, "not negative");
  OSTREL_EXPECT(__func__, "height", height, height >= 0, "not negative");
  if (aborted == nullptr) return -1;
  *aborted = 0;
  if (features == nullptr) return -1;
  if (objectCount <= 0) return 0;
  const objects::ClampedRegion r =
      objects::ClampRegion(width, height, left, top, regionWidth, regionHeight);
  const bool basic = (needed & eFeatureBasic) != 0;
  const bool centroid = basic && (needed & eFeatureCentroid) != 0;
  const bool orientation = centroid && (needed & eFeatureOrientation) != 0;
  const bool histogram = basic && (needed & eFeatureHistogram) != 0;
  // Tables built by InitFeatureTables always hold N >= 8 bins, so their
  // presence is all the orientation needs.
  OSTREL_EXPECT(__func__, "needed", static_cast<int>(needed),
                !orientation || objects::g_tables.accumulator != nullptr,
                "no eFeatureOrientation before InitFeatureTables has built the angle tables");

  objects::Temporaries tmp;
  if (!tmp.Obtain(
          objectCount, centroid,
          orientation ? static_cast<std::size_t>(objects::BoxCount(T(), objectCount)) : 0)) {
    return -1;
  }
  const auto pass = centroid ? (histogram ? objects::MeasurePixels<T, true, true>
                                          : objects::MeasurePixels<T, true, false>)
                             : (histogram ? objects::MeasurePixels<T, false, true>
                                          : objects::MeasurePixels<T, false, false>);
  const bool finished = pass(labels, width, height, r, values, firstLabel, objectCount, features,
                             tmp.counter, tmp.sumX, tmp.sumY);
  if (!finished) {
    if (histogram) objects::ClearUnmet(objectCount, tmp.counter, features);
    *aborted = 1;
    return -1;
  }

  // One pass over the records, fetching them ahead: with many objects they
  // have left the cache since their first pixel.
  const int ahead = 16;
  for (int k = 0; k < objectCount; ++k) {
    if (k < objectCount - ahead) objects::PrefetchForWrite(&features[k + ahead]);
    SFeature &f = features[k];
    const std::int64_t count = tmp.counter[k];
    if (histogram && count == 0) std::memset(f.histogram, 0, sizeof(f.histogram));
    f.pixelCount = objects::SaturatedCount(static_cast<std::uint64_t>(count));
    // An object without pixels divides by zero here; its roundness is not
    // a number then.
    f.roundness = f.perimeter / (2.0 * objects::kPi * std::sqrt(count / objects::kPi));
    if (centroid && count != 0) {
      f.centroidX = tmp.sumX[k] / count + r.left;
      f.centroidY = tmp.sumY[k] / count + r.top;
    } else if (basic) {
      f.centroidX = 0.0;
      f.centroidY = 0.0;
    }
    if (!orientation) f.orientation = 0.0;
  }

  if (orientation && !objects::MeasureOrientations(labels, width, r, firstLabel, objectCount,
                                                   features, tmp.boxes)) {
    *aborted = 1;
    return -1;
  }
  return 0;
}

float GetInterpolatedOverlayFactor(int value, double *table, int count) {
  OSTREL_EXPECT(__func__, "count", count, count >= 1, "at least 1");
  if (count < 1) return 0.0f;  // an empty table is not read
  const auto percent = [table](int i) { return static_cast<float>(table[i] / 100); };
  const std::int64_t last = count - 1, end = last * 100;  // past INT_MAX for large counts
  if (value <= 0) return percent(0);
  if (value >= end) return percent(count - 1);
  const float pos = static_cast<float>(value) / static_cast<float>(end) * static_cast<float>(last);
  int lo = count - 1;
  while (static_cast<float>(lo) > pos) --lo;
  int hi = 0;
  while (static_cast<float>(hi) < pos) ++hi;
  float f = pos - static_cast<float>(lo);
  if (f < 0.0f) f = 0.0f;
  if (f > 1.0f) f = 1.0f;
  const float low = percent(lo);
  return (percent(hi) - low) * f + low;
}

template OSTREL_API int MultiObjectFeatureExtract<unsigned char>(
    unsigned char *labels, int width, int height, int left, int top, int regionWidth,
    int regionHeight, unsigned char *values, unsigned char firstLabel, int objectCount,
    SFeature *features, EFeaturesNeeded needed, unsigned char *aborted);
template OSTREL_API int MultiObjectFeatureExtract<int>(int *labels, int width, int height, int left,
                                                       int top, int regionWidth, int regionHeight,
                                                       int *values, int firstLabel, int objectCount,
                                                       SFeature *features, EFeaturesNeeded needed,
                                                       unsigned char *aborted);
