// Binary objects against OpenCV, on 2048x2048 masks of three kinds:
//
//   noise   every pixel set with probability 1/2
//   blobs   a few large discs, each with round holes
//   text    rows of glyph-like strokes (bars, rings and slants of pen width
//           2..3), as in a scanned page
//
// Each mask keeps a clear 1-pixel border, as the library's contour tracing
// needs, so both sides see the same objects. Jobs:
//
//   ColorBinaryObjects<int>    4-connected labels from the mask; ours copies
//                              the mask into its int label buffer first (the
//                              call works in place), which is part of the job;
//                              peer: cv::connectedComponents, 4-connectivity
//   Fill                       the mask's largest object, refilled in place
//                              (1 and 2 alternately, so every run does the
//                              same work); peer: cv::floodFill, 4-connectivity
//   FollowContour              the outer contour of the largest blob, on a
//                              mask holding just that blob; peer:
//                              cv::findContours, external, no approximation
//   Fill/open/seeded-outside   on a mask with every pixel set, a fill seeded
//                              at (0, 0) outside its limits (left and top
//                              256, 1536 x 1536); the walk steps only toward
//                              the limits and fills columns and rows 0 ..
//                              1792; peer: the same fill seeded inside,
//                              limits 0 .. 1792 each way, which rewrites the
//                              same pixels (compared byte for byte)
//   MultiObjectFeatureExtract  count, centroid, perimeter and histogram of
//                              every object of a labelled buffer; peer:
//                              cv::connectedComponentsWithStats (labels,
//                              areas, boxes, centroids; no perimeter, no
//                              histogram); target on noise: at most 1.5x
//                              its time, information on the other kinds;
//                              also with the orientation on a 512x512
//                              noise mask (information)
//   GetContourPolygonFromBuffer2  every object and hole boundary as polygon
//                              figures, into the suite's stand-in polygon;
//                              peer: cv::findContours, RETR_CCOMP (outer
//                              contours and holes), CHAIN_APPROX_SIMPLE;
//                              target no slower on blobs and text, within
//                              1.5x on noise. Both count the same boundaries
//                              (8-connected objects, 4-connected holes); ours
//                              runs along pixel edges and OpenCV through
//                              pixel centres, so the vertex counts differ:
//                              both are printed when the pair is checked
//
// The two sides number objects differently, so the checks hold each side to
// a plain breadth-first labelling of the mask: the labels must make the same
// partition, the fill the same pixels, the contour as many points, and the
// features the reference's areas and centroids.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <random>
#include <sstream>
#include <string>
#include <unordered_map>
#include <vector>

#include "Ostrel.h"
#include "VornelCoordPolygon.h"
#include "ratio.h"

namespace {

using ostrel_bench::Pair;

constexpr int kSize = 2048;
constexpr std::size_t kPixels = static_cast<std::size_t>(kSize) * kSize;

// Targets, ours / OpenCV speed.
constexpr double kLabelTarget = 1.0;       // labelling; fills on blobs and text
constexpr double kLabelNoiseTarget = 0.5;  // fill on noise: within 2x
constexpr double kContourTarget = 1.0;
constexpr double kFillOutsideTarget = 0.5;  // seeded outside: within 2x of inside
// Feature extraction on noise: at most 1.5x the time of the peer, which
// computes less (no perimeter, no histogram); information on the other kinds.
constexpr double kFeatureNoiseTarget = 1 / 1.5;
constexpr double kOutlineTarget = 1.0;           // outlines on blobs and text
constexpr double kOutlineNoiseTarget = 1 / 1.5;  // on noise: within 1.5x

using Mask = std::vector<unsigned char>;

void Disc(Mask &m, int cx, int cy, int r, unsigned char v) {
  for (int y = std::max(1, cy - r); y <= std::min(kSize - 2, cy + r); ++y)
    for (int x = std::max(1, cx - r); x <= std::min(kSize - 2, cx + r); ++x)
      if ((x - cx) * (x - cx) + (y - cy) * (y - cy) <= r * r) m[y * kSize + x] = v;
}

Mask NoiseMask() {
  Mask m(kPixels, 0);
  std::mt19937 rng(1);
  for (int y = 1; y < kSize - 1; ++y)
    for (int x = 1; x < kSize - 1; ++x) m[y * kSize + x] = rng() & 1;
  return m;
}

Mask BlobMask() {
  Mask m(kPixels, 0);
  std::mt19937 rng(2);
  const int centres[][3] = {{520, 540, 420}, {1500, 480, 360}, {600, 1500, 400}, {1480, 1460, 480}};
  for (const auto &c : centres) {
    Disc(m, c[0], c[1], c[2], 1);
    for (int h = 0; h < 12; ++h) {
      const double a = h * 0.52, d = (0.2 + 0.05 * (h % 6)) * c[2];
      Disc(m, c[0] + static_cast<int>(d * std::cos(a)), c[1] + static_cast<int>(d * std::sin(a)),
           10 + static_cast<int>(rng() % 30), 0);
    }
  }
  return m;
}

Mask TextMask() {
  Mask m(kPixels, 0);
  std::mt19937 rng(3);
  for (int line = 0; line < 60; ++line) {
    const int top = 12 + line * 34;
    for (int x = 8; x < kSize - 24;) {
      const int w = 8 + rng() % 10, pen = 2 + rng() % 2;
      switch (rng() % 4) {
        case 0:  // vertical bar
          for (int y = top; y < top + 20; ++y)
            for (int p = 0; p < pen; ++p) m[y * kSize + x + p] = 1;
          break;
        case 1:  // ring
          for (int y = top + 6; y < top + 20; ++y)
            for (int xx = x; xx < x + w; ++xx) {
              const double dx = (xx - x - w / 2.0) / (w / 2.0), dy = (y - top - 13) / 7.0;
              const double r = dx * dx + dy * dy;
              if (r <= 1.0 && r >= 0.45) m[y * kSize + xx] = 1;
            }
          break;
        case 2:  // slant
          for (int y = top; y < top + 20; ++y)
            for (int p = 0; p < pen; ++p) m[y * kSize + x + (y - top) * w / 20 + p] = 1;
          break;
        default:  // bar with a foot
          for (int y = top + 6; y < top + 20; ++y)
            for (int p = 0; p < pen; ++p) m[y * kSize + x + p] = 1;
          for (int xx = x; xx < x + w; ++xx)
            for (int p = 0; p < pen; ++p) m[(top + 18 + p) * kSize + xx] = 1;
      }
      x += w + 3 + (rng() % 8 == 0 ? 12 : 0);
    }
  }
  return m;
}

// A plain breadth-first 4-connected labelling, 1 .. n in raster order of the
// objects' first pixels.
struct Reference {
  std::vector<int> labels;
  std::vector<std::int64_t> area;
  std::vector<double> sumX, sumY;
  int largest = 0;       // label of the largest object
  int largestFirst = 0;  // its first pixel
};

Reference Label(const Mask &m) {
  Reference r;
  r.labels.assign(kPixels, 0);
  r.area.push_back(0), r.sumX.push_back(0), r.sumY.push_back(0);
  std::vector<int> queue;
  for (int i = 0; i < static_cast<int>(kPixels); ++i) {
    if (m[i] == 0 || r.labels[i] != 0) continue;
    const int label = static_cast<int>(r.area.size());
    r.area.push_back(0), r.sumX.push_back(0), r.sumY.push_back(0);
    queue.assign(1, i);
    r.labels[i] = label;
    for (std::size_t q = 0; q < queue.size(); ++q) {
      const int p = queue[q];
      ++r.area[label], r.sumX[label] += p % kSize, r.sumY[label] += p / kSize;
      for (const int n : {p - 1, p + 1, p - kSize, p + kSize})
        if (m[n] != 0 && r.labels[n] == 0) r.labels[n] = label, queue.push_back(n);
    }
    if (r.area[label] > r.area[r.largest]) r.largest = label, r.largestFirst = i;
  }
  return r;
}

// "" when a and b (0 = background in both) make the same partition.
std::string SamePartition(const int *a, const int *b, const char *side) {
  std::unordered_map<int, int> ab, ba;
  for (std::size_t i = 0; i < kPixels; ++i) {
    if ((a[i] == 0) != (b[i] == 0)) return std::string(side) + ": background differs";
    if (a[i] == 0) continue;
    const auto x = ab.emplace(a[i], b[i]), y = ba.emplace(b[i], a[i]);
    if (x.first->second != b[i] || y.first->second != a[i])
      return std::string(side) + ": objects split or merged";
  }
  return "";
}

struct Scene {
  std::string name;
  Mask mask;
  Reference ref;
  std::vector<int> ours;  // label buffer of ColorBinaryObjects
  cv::Mat peerLabels;
  Mask fillOurs, fillPeer;  // masks refilled in place
};

void AddLabelling(const std::shared_ptr<Scene> &s) {
  Pair p;
  p.label = "ColorBinaryObjects<int>/" + s->name;
  p.peerName = "cv::connectedComponents";
  p.pixels = static_cast<std::int64_t>(kPixels);
  p.target = kLabelTarget;
  p.ours = [s] {
    int *b = s->ours.data();
    const unsigned char *m = s->mask.data();
    for (std::size_t i = 0; i < kPixels; ++i) b[i] = m[i];
    ColorBinaryObjects<int>(b, kSize, kSize, 0, 0, kSize, kSize, 0, 1, 2, true, 0);
  };
  p.peer = [s] {
    const cv::Mat m(kSize, kSize, CV_8U, s->mask.data());
    cv::connectedComponents(m, s->peerLabels, 4, CV_32S);
  };
  p.reset = [] {};
  p.verify = [s](bool ours) {
    return ours ? SamePartition(s->ours.data(), s->ref.labels.data(), "ours")
                : SamePartition(s->peerLabels.ptr<int>(), s->ref.labels.data(), "OpenCV");
  };
  ostrel_bench::AddPair(std::move(p));
}

// Refills the largest object with the value it does not hold.
void AddFill(const std::shared_ptr<Scene> &s) {
  const int seed = s->ref.largestFirst, sx = seed % kSize, sy = seed / kSize;
  Pair p;
  p.label = "Fill/" + s->name + "/largest";
  p.peerName = "cv::floodFill";
  p.pixels = s->ref.area[s->ref.largest];
  p.target = s->name == "noise" ? kLabelNoiseTarget : kLabelTarget;
  p.ours = [s, sx, sy, seed] {
    const unsigned char v = s->fillOurs[seed] == 1 ? 2 : 1;
    Fill<unsigned char>(s->fillOurs.data(), kSize, kSize, sx, sy, 0, 0, kSize, kSize, v, nullptr);
  };
  p.peer = [s, sx, sy, seed] {
    cv::Mat m(kSize, kSize, CV_8U, s->fillPeer.data());
    cv::floodFill(m, cv::Point(sx, sy), cv::Scalar(s->fillPeer[seed] == 1 ? 2 : 1), nullptr,
                  cv::Scalar(), cv::Scalar(), 4);
  };
  p.reset = [s] {
    s->fillOurs = s->mask;
    s->fillPeer = s->mask;
  };
  p.verify = [s](bool ours) -> std::string {
    const Mask &m = ours ? s->fillOurs : s->fillPeer;
    for (std::size_t i = 0; i < kPixels; ++i) {
      const int want = s->ref.labels[i] == s->ref.largest ? 2 : s->mask[i];
      if (m[i] != want) return ours ? "ours: wrong pixels filled" : "OpenCV: wrong pixels filled";
    }
    return "";
  };
  ostrel_bench::AddPair(std::move(p));
}

void AddContour(const std::shared_ptr<Scene> &s) {
  auto blob = std::make_shared<Mask>(kPixels, 0);
  for (std::size_t i = 0; i < kPixels; ++i) (*blob)[i] = s->ref.labels[i] == s->ref.largest;
  auto points = std::make_shared<std::vector<CPoint>>(4 * kPixels / 64);
  auto count = std::make_shared<int>(0);
  auto contours = std::make_shared<std::vector<std::vector<cv::Point>>>();
  const int start = s->ref.largestFirst;
  Pair p;
  p.label = "FollowContour/" + s->name + "/largest";
  p.peerName = "cv::findContours";
  p.target = kContourTarget;
  p.ours = [blob, points, count, start] {
    FollowContour<unsigned char>(blob->data(), blob->data() + start, kSize, kSize, 0, 0, kSize,
                                 kSize, 1, points->data(), count.get());
  };
  p.peer = [blob, contours] {
    const cv::Mat m(kSize, kSize, CV_8U, blob->data());
    cv::findContours(m, *contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_NONE);
  };
  p.reset = [] {};
  p.verify = [count, contours, start](bool ours) -> std::string {
    if (ours) return *count > 4 ? "" : "ours: no contour";
    if (contours->size() != 1) return "OpenCV: not one contour";
    const cv::Point first = (*contours)[0][0];
    return first.x == start % kSize && first.y == start / kSize ? "" : "OpenCV: another start";
  };
  // Both trace the outer 8-connected border once; the pixel count is the
  // work done, taken from OpenCV's contour.
  {
    std::vector<std::vector<cv::Point>> c;
    cv::findContours(cv::Mat(kSize, kSize, CV_8U, blob->data()), c, cv::RETR_EXTERNAL,
                     cv::CHAIN_APPROX_NONE);
    p.pixels = c.empty() ? 1 : static_cast<std::int64_t>(c[0].size());
  }
  ostrel_bench::AddPair(std::move(p));
}

void AddFeatures(const std::shared_ptr<Scene> &s) {
  auto labels = std::make_shared<std::vector<int>>(kPixels);
  auto values = std::make_shared<std::vector<int>>(kPixels);
  for (std::size_t i = 0; i < kPixels; ++i) {
    (*labels)[i] = s->ref.labels[i] != 0 ? s->ref.labels[i] + 1 : 0;
    (*values)[i] = static_cast<int>((i * 2654435761u) >> 24) & 255;
  }
  const int objects = static_cast<int>(s->ref.area.size()) - 1;
  auto features = std::make_shared<std::vector<SFeature>>(objects);
  auto stats = std::make_shared<cv::Mat>();
  auto centroids = std::make_shared<cv::Mat>();
  auto peerLabels = std::make_shared<cv::Mat>();
  Pair p;
  p.label = "MultiObjectFeatureExtract<int>/" + s->name;
  p.peerName = "cv::connectedComponentsWithStats";
  p.pixels = static_cast<std::int64_t>(kPixels);
  p.target = s->name == "noise" ? kFeatureNoiseTarget : 0;
  p.ours = [labels, values, features, objects] {
    unsigned char aborted;
    MultiObjectFeatureExtract<int>(
        labels->data(), kSize, kSize, 0, 0, kSize, kSize, values->data(), 2, objects,
        features->data(),
        static_cast<EFeaturesNeeded>(eFeatureBasic | eFeatureCentroid | eFeatureHistogram),
        &aborted);
  };
  p.peer = [s, stats, centroids, peerLabels] {
    const cv::Mat m(kSize, kSize, CV_8U, s->mask.data());
    cv::connectedComponentsWithStats(m, *peerLabels, *stats, *centroids, 4, CV_32S);
  };
  p.reset = [] {};
  p.verify = [s, features, stats, objects](bool ours) -> std::string {
    if (!ours) return stats->rows == objects + 1 ? "" : "OpenCV: another object count";
    for (int k = 0; k < objects; ++k) {
      const SFeature &f = (*features)[k];
      const double n = static_cast<double>(s->ref.area[k + 1]);
      if (f.pixelCount != s->ref.area[k + 1] ||
          std::fabs(f.centroidX - 0.5 - s->ref.sumX[k + 1] / n) > 1e-6 ||
          std::fabs(f.centroidY - 0.5 - s->ref.sumY[k + 1] / n) > 1e-6)
        return "ours: object " + std::to_string(k) + " measured wrong";
    }
    return "";
  };
  ostrel_bench::AddPair(std::move(p));
}

// A fill seeded outside its limits against one seeded inside, both
// rewriting columns and rows 0 .. 1792 of a mask with every pixel set (the
// values 1 and 2 alternate, so each run does the same work).
void AddFillOutside() {
  auto mask = std::make_shared<Mask>(kPixels, 1);
  constexpr int kInset = 256, kEnd = kSize - kInset;
  const auto fill = [mask](int seedX, int seedY, int left, int top, int size) {
    const unsigned char v = (*mask)[seedY * kSize + seedX] == 1 ? 2 : 1;
    Fill<unsigned char>(mask->data(), kSize, kSize, seedX, seedY, left, top, size, size, v,
                        nullptr);
  };
  Pair p;
  p.label = "Fill/open/seeded-outside";
  p.peerName = "seeded-inside";
  p.pixels = static_cast<std::int64_t>(kEnd + 1) * (kEnd + 1);
  p.target = kFillOutsideTarget;
  p.ours = [fill] { fill(0, 0, kInset, kInset, kEnd - kInset); };
  p.peer = [fill] { fill(kSize / 2, kSize / 2, 0, 0, kEnd); };
  p.reset = [mask] { std::fill(mask->begin(), mask->end(), 1); };
  p.output = {mask->data(), mask->size()};
  ostrel_bench::AddPair(std::move(p));
}

// The orientation on a 512x512 noise mask (its own labels, 360 angle steps),
// for information beside the peer's labelling of the same mask: ours checked
// to count every set pixel once and to give angles in -pi .. pi.
void AddOrientation() {
  constexpr int n = 512;
  auto mask = std::make_shared<Mask>(static_cast<std::size_t>(n) * n, 0);
  std::mt19937 rng(4);
  for (int y = 1; y < n - 1; ++y)
    for (int x = 1; x < n - 1; ++x) (*mask)[y * n + x] = rng() & 1;
  auto labels = std::make_shared<std::vector<int>>(mask->begin(), mask->end());
  const int objects = ColorBinaryObjects<int>(labels->data(), n, n, 0, 0, n, n, 0, 1, 2, true, 0);
  auto features = std::make_shared<std::vector<SFeature>>(objects);
  auto peerLabels = std::make_shared<cv::Mat>(), stats = std::make_shared<cv::Mat>(),
       centroids = std::make_shared<cv::Mat>();
  InitFeatureTables(1, 360.0);  // kept for the program's life
  Pair p;
  p.label = "MultiObjectFeatureExtract<int>/noise512/orientation";
  p.peerName = "cv::connectedComponentsWithStats";
  p.pixels = std::int64_t{n} * n;
  p.ours = [labels, features, objects] {
    unsigned char aborted;
    MultiObjectFeatureExtract<int>(
        labels->data(), n, n, 0, 0, n, n, labels->data(), 2, objects, features->data(),
        static_cast<EFeaturesNeeded>(eFeatureBasic | eFeatureCentroid | eFeatureOrientation),
        &aborted);
  };
  p.peer = [mask, peerLabels, stats, centroids] {
    const cv::Mat m(n, n, CV_8U, mask->data());
    cv::connectedComponentsWithStats(m, *peerLabels, *stats, *centroids, 4, CV_32S);
  };
  p.reset = [] {};
  p.verify = [mask, features, stats, objects](bool ours) -> std::string {
    if (!ours) return stats->rows == objects + 1 ? "" : "OpenCV: another object count";
    std::int64_t counted = 0, set = 0;
    for (const SFeature &f : *features) {
      counted += f.pixelCount;
      if (!(f.orientation >= -3.14159265358979323846 && f.orientation < 3.14159265358979323846))
        return "ours: orientation out of range";
    }
    for (const unsigned char v : *mask) set += v;
    return counted == set ? "" : "ours: pixel counts do not add up";
  };
  ostrel_bench::AddPair(std::move(p));
}

// The boundaries of a mask: 8-connected objects plus the 4-connected
// background regions that reach no border (the mask's border is clear).
std::int64_t BoundaryCount(const Mask &m) {
  std::vector<char> seen(kPixels, 0);
  std::vector<int> queue;
  std::int64_t count = 0;
  for (int i = 0; i < static_cast<int>(kPixels); ++i) {
    if (seen[i]) continue;
    const bool object = m[i] != 0;
    bool border = false;
    queue.assign(1, i);
    seen[i] = 1;
    for (std::size_t q = 0; q < queue.size(); ++q) {
      const int p = queue[q], x = p % kSize, y = p / kSize;
      if (x == 0 || y == 0 || x == kSize - 1 || y == kSize - 1) {
        border = true;
        if (object) continue;  // objects never touch it; background stops at it
      }
      for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx) {
          if ((dx == 0 && dy == 0) || (!object && dx != 0 && dy != 0)) continue;
          const int nx = x + dx, ny = y + dy, n = ny * kSize + nx;
          if (nx < 0 || ny < 0 || nx >= kSize || ny >= kSize || seen[n] || (m[n] != 0) != object)
            continue;
          seen[n] = 1;
          queue.push_back(n);
        }
    }
    count += object || !border;
  }
  return count;
}

struct Outlines {
  ICoordPolygon *polygon = nullptr;
  int figures = 0;
  std::vector<std::vector<cv::Point>> contours;
  std::vector<cv::Vec4i> hierarchy;
  std::int64_t boundaries = 0;  // the independent count
  std::int64_t objectPixels = 0;
};

// Twice the signed area of all the polygon's figures.
long long TwiceArea(ICoordPolygon *polygon) {
  long figures = 0;
  polygon->GetFigureCount(&figures);
  long long sum = 0;
  for (long f = 0; f < figures; ++f) {
    long first = 0, n = 0;
    polygon->GetFigure(f, &first, &n);
    for (long i = 0; i < n; ++i) {
      double x0, y0, x1, y1;
      polygon->GetXY(first + i, &x0, &y0);
      polygon->GetXY(first + (i + 1) % n, &x1, &y1);
      sum += static_cast<long long>(x0 * y1 - x1 * y0);
    }
  }
  return sum;
}

void AddOutlines(const std::shared_ptr<Scene> &s) {
  auto o = std::make_shared<Outlines>();
  if (DllGetCoordPolygonSetRes("bench", __LINE__, &o->polygon) < 0) std::abort();
  o->boundaries = BoundaryCount(s->mask);
  for (const unsigned char v : s->mask) o->objectPixels += v != 0;
  Pair p;
  p.label = "GetContourPolygonFromBuffer2/" + s->name;
  p.peerName = "cv::findContours";
  p.pixels = static_cast<std::int64_t>(kPixels);
  p.target = s->name == "noise" ? kOutlineNoiseTarget : kOutlineTarget;
  p.ours = [s, o] {
    o->figures =
        GetContourPolygonFromBuffer2(s->mask.data(), kSize, kSize, 0, 0, kSize, kSize, o->polygon);
  };
  p.peer = [s, o] {
    const cv::Mat m(kSize, kSize, CV_8U, s->mask.data());
    cv::findContours(m, o->contours, o->hierarchy, cv::RETR_CCOMP, cv::CHAIN_APPROX_SIMPLE);
  };
  p.reset = [] {};
  // Each side's check also prints the work it did, for the reader.
  p.verify = [s, o](bool ours) -> std::string {
    if (!ours) {
      std::size_t points = 0;
      for (const auto &c : o->contours) points += c.size();
      std::printf("outlines of %s: cv::findContours %zu contours, %zu points\n", s->name.c_str(),
                  o->contours.size(), points);
      return static_cast<std::int64_t>(o->contours.size()) == o->boundaries
                 ? ""
                 : "OpenCV: not one contour per boundary";
    }
    long vertices = 0;
    o->polygon->GetPointCount(&vertices);
    std::printf("outlines of %s: ours %d figures, %ld vertices\n", s->name.c_str(), o->figures,
                vertices);
    if (o->figures != o->boundaries) return "ours: not one figure per boundary";
    return TwiceArea(o->polygon) == 2 * o->objectPixels ? "" : "ours: areas do not add up";
  };
  ostrel_bench::AddPair(std::move(p));
}

const bool kRegistered = [] {
  AddFillOutside();
  const struct {
    const char *name;
    Mask (*make)();
  } kinds[] = {{"noise", NoiseMask}, {"blobs", BlobMask}, {"text", TextMask}};
  for (const auto &k : kinds) {
    auto s = std::make_shared<Scene>();
    s->name = k.name;
    s->mask = k.make();
    s->ref = Label(s->mask);
    s->ours.resize(kPixels);
    AddLabelling(s);
    AddFill(s);
    if (s->name == "blobs") AddContour(s);
    AddFeatures(s);
    AddOutlines(s);
  }
  AddOrientation();
  return true;
}();

}  // namespace
