// The binary-object functions on fuzzer masks, held to what the header
// promises: Fill rewrites the 4-connected region its limits allow and counts
// it; labelling gives the 4-connected objects their labels in raster order
// and writes nothing outside Fill's limits; every point of a contour is an
// object pixel and its length matches its steps; feature extraction counts
// each object's pixels of the scanned region (so the counts add up to the
// object pixels there), its histogram and centroid, and traces its perimeter
// as FollowContour does; frames write only round the boundary pixels, as
// the distance table says. Geometry runs to the ends of the int range.
#include <cmath>
#include <cstdint>
#include <vector>

#include "Ostrel.h"
#include "fuzz_util.h"

namespace {

using namespace fuzz;

enum Op { kFill, kLabel, kContour, kFeatures, kFrames, kOpCount };
const char *const kOps[kOpCount] = {"Fill", "ColorBinaryObjects", "FollowContour",
                                    "MultiObjectFeatureExtract", "frames"};
const double kPi = 3.14159265358979323846;

i32 Clamp(std::int64_t v, std::int64_t lo, std::int64_t hi) {
  return static_cast<i32>(v < lo ? lo : v > hi ? hi : v);
}

// The region objects functions scan: clamped into the buffer, its sizes
// never reaching the last column or row.
struct Region {
  i32 left, top, width, height;
  Region(i32 w, i32 h, i32 l, i32 t, i32 rw, i32 rh)
      : left(Clamp(l, 0, w - 1)),
        top(Clamp(t, 0, h - 1)),
        width(Clamp(rw, 0, w - 1 - left)),
        height(Clamp(rh, 0, h - 1 - top)) {}
};

// Rewrites with fill the pixels of value target reachable from (x, y),
// stepping right while x < right, left while x > left, down while y <
// bottom, up while y > top: Fill's walk. Returns the pixels rewritten.
template <class T>
std::size_t FloodModel(std::vector<T> &b, i32 w, i32 x, i32 y, i32 left, i32 top, i32 right,
                       i32 bottom, T fill) {
  const T target = b[std::size_t(y) * w + x];
  std::vector<std::pair<i32, i32>> stack{{x, y}};
  b[std::size_t(y) * w + x] = fill;
  std::size_t count = 1;
  while (!stack.empty()) {
    const auto [px, py] = stack.back();
    stack.pop_back();
    const i32 next[4][3] = {{px < right, px + 1, py},
                            {px > left, px - 1, py},
                            {py < bottom, px, py + 1},
                            {py > top, px, py - 1}};
    for (const auto &n : next) {
      if (!n[0]) continue;
      T &p = b[std::size_t(n[2]) * w + n[1]];
      if (p != target) continue;
      p = fill;
      ++count;
      stack.push_back({n[1], n[2]});
    }
  }
  return count;
}

template <class T>
struct Mask {
  i32 w, h;
  Buffer<T> pixels;
  Mask(Input &in, i32 width, i32 height, unsigned values)
      : w(width), h(height), pixels(std::size_t(width) * height) {
    in.Fill(pixels.Data(), pixels.Size(), 0xFF);
    for (std::size_t i = 0; i < pixels.Size(); ++i) pixels[i] = T(pixels[i] % values);
  }
  T &At(i32 x, i32 y) { return pixels[std::size_t(y) * w + x]; }
};

template <class T>
void FuzzFill(Input &in, Mask<T> &m) {
  const i32 seedX = in.Coord(m.w), seedY = in.Coord(m.h);
  const i32 left = in.Coord(m.w), top = in.Coord(m.h), rw = in.Coord(m.w), rh = in.Coord(m.h);
  const T fill = T(in.In(0, 3));
  const bool counted = in.Bool();
  Describe("Fill<%zu>: %dx%d, seed (%d, %d), region (%d, %d) %dx%d, fill %d", sizeof(T), m.w, m.h,
           seedX, seedY, left, top, rw, rh, int(fill));
  // The walk's inclusive limits, and the seed moved into the buffer.
  const i32 l = Clamp(left, 0, m.w - 1), t = Clamp(top, 0, m.h - 1);
  const i32 r = l + Clamp(rw, 0, m.w - 1 - l), b = t + Clamp(rh, 0, m.h - 1 - t);
  const i32 x = Clamp(seedX, 0, m.w - 1), y = Clamp(seedY, 0, m.h - 1);
  std::vector<T> want = m.pixels.Copy();
  const std::size_t n =
      want[std::size_t(y) * m.w + x] == fill ? 0 : FloodModel(want, m.w, x, y, l, t, r, b, fill);
  int changed = -7;
  const int result = Fill<T>(m.pixels.Data(), m.w, m.h, seedX, seedY, left, top, rw, rh, fill,
                             counted ? &changed : nullptr);
  FUZZ_CHECK(result == 0, "Fill returned %d", result);
  FUZZ_CHECK(!counted || changed == int(n) + 1, "changedCount %d, want %zu + 1", changed, n);
  FUZZ_CHECK(m.pixels.Copy() == want, "Fill rewrote other pixels than the walk reaches");
}

// Labels the objects of value 1 from label first upward; returns the count.
template <class T>
int LabelModel(std::vector<T> &b, i32 w, const Region &r, T first) {
  T label = first;
  int count = 0;
  for (i32 y = r.top; y < r.top + r.height; ++y) {
    for (i32 x = r.left; x < r.left + r.width; ++x) {
      if (b[std::size_t(y) * w + x] != T(1)) continue;
      FloodModel(b, w, x, y, r.left, r.top, r.left + r.width, r.top + r.height, label);
      label = T(label + 1), ++count;
    }
  }
  return count;
}

// ColorBinaryObjects. Strict: objects of value 1 on background 0, labels
// from 2 up that meet neither (so the result is plain 4-connected
// labelling); otherwise any values, and only the pixels outside Fill's limits
// are known to stay.
template <class T>
int FuzzLabel(Input &in, Mask<T> &m, const Region &r, i32 left, i32 top, i32 rw, i32 rh,
              bool strict) {
  const T background = strict ? T(0) : T(in.In(0, 3)), object = strict ? T(1) : T(in.In(0, 3));
  const T first = strict ? T(2 + in.In(0, sizeof(T) == 1 ? 0 : 1000)) : T(in.In(0, 300));
  const bool ascending = strict || in.Bool();
  const int end = strict ? (sizeof(T) == 1 ? 256 : 1) : in.Coord(300);
  Describe(
      "ColorBinaryObjects<%zu>: %dx%d, region (%d, %d) %dx%d, background %d, object %d, "
      "first %d, ascending %d, end %d",
      sizeof(T), m.w, m.h, left, top, rw, rh, int(background), int(object), int(first), ascending,
      end);
  std::vector<T> want = m.pixels.Copy();
  const int count = ColorBinaryObjects<T>(m.pixels.Data(), m.w, m.h, left, top, rw, rh, background,
                                          object, first, ascending, end);
  FUZZ_CHECK(count >= 0, "ColorBinaryObjects returned %d", count);
  if (strict) {
    const int n = LabelModel(want, m.w, r, first);
    FUZZ_CHECK(count == n, "ColorBinaryObjects found %d objects, want %d", count, n);
    FUZZ_CHECK(m.pixels.Copy() == want, "labels differ from the 4-connected objects");
    return count;
  }
  for (i32 y = 0; y < m.h; ++y) {
    for (i32 x = 0; x < m.w; ++x) {
      const bool inside =
          x >= r.left && x <= r.left + r.width && y >= r.top && y <= r.top + r.height;
      FUZZ_CHECK(inside || m.At(x, y) == want[std::size_t(y) * m.w + x],
                 "pixel (%d, %d) outside the fill limits changed", x, y);
    }
  }
  return count;
}

template <class T>
void FuzzContour(Input &in, Mask<T> &m) {
  const i32 left = in.Coord(m.w), top = in.Coord(m.h), rw = in.Coord(m.w), rh = in.Coord(m.h);
  // The start: the chosen pixel if it is an object pixel, else the first one.
  std::size_t start = in.In<std::size_t>(0, m.pixels.Size() - 1);
  if (m.pixels[start] != T(1)) {
    start = 0;
    while (start < m.pixels.Size() && m.pixels[start] != T(1)) ++start;
    if (start == m.pixels.Size()) return;
  }
  // Room for regionWidth * regionHeight + 2 points, where that is not huge.
  const std::int64_t area = rw > 0 && rh > 0 ? std::int64_t{rw} * rh : 0;
  const bool withPoints = area <= 4096 && in.Bool();
  Buffer<CPoint> points(withPoints ? area + 2 : 0);
  Describe("FollowContour<%zu>: %dx%d, start %zu, region (%d, %d) %dx%d, points %d", sizeof(T), m.w,
           m.h, start, left, top, rw, rh, withPoints);
  const auto before = m.pixels.Copy();
  int count = -7;
  const double length =
      FollowContour<T>(m.pixels.Data(), m.pixels.Data() + start, m.w, m.h, left, top, rw, rh, T(1),
                       withPoints ? points.Data() : nullptr, &count);
  FUZZ_CHECK(m.pixels.Copy() == before, "FollowContour wrote the buffer");
  if (!withPoints) {
    FUZZ_CHECK(count == 0, "pointCount %d without points", count);
    return;
  }
  // Every step but the last is counted, 1 or sqrt(2) each.
  FUZZ_CHECK(count >= 0 && count <= area + 2, "pointCount %d for room %lld", count,
             static_cast<long long>(area + 2));
  const double steps = count > 0 ? count - 1 : 0;
  FUZZ_CHECK(length >= steps && length <= steps * std::sqrt(2.0) * (1 + 1e-12),
             "length %.17g for %d points", length, count);
  FUZZ_CHECK(count > 0 || length == 0, "length %.17g without points", length);
  for (int i = 0; i < count; ++i) {
    const std::int64_t at = std::int64_t{points[i].y} * m.w + points[i].x;
    FUZZ_CHECK(at >= 0 && at < std::int64_t(m.pixels.Size()) && m.pixels[at] == T(1),
               "point %d (%d, %d) is not an object pixel", i, points[i].x, points[i].y);
  }
  FUZZ_CHECK(count == 0 || points[0].y * m.w + points[0].x == i32(start),
             "the first point is not the start");
}

// How many polls of the Escape key pass before it is reported (-1: never).
long g_pollsLeft = -1;
int EscapeAfterPolls(int) { return g_pollsLeft >= 0 && g_pollsLeft-- == 0; }

template <class T>
void FuzzFeatures(Input &in, Mask<T> &m, i32 left, i32 top, i32 rw, i32 rh) {
  const Region r(m.w, m.h, left, top, rw, rh);
  // Labels from the labelling (all objects, from 2), or as they come.
  const bool labelled = in.Bool();
  if (labelled) {
    for (std::size_t i = 0; i < m.pixels.Size(); ++i) m.pixels[i] = T(m.pixels[i] == T(1));
  }
  T first = T(2);
  int objects = labelled ? FuzzLabel(in, m, r, left, top, rw, rh, true) : 0;
  if (!labelled) first = T(in.In(0, 3)), objects = in.In(-2, 6);
  std::vector<T> values(m.pixels.Size());
  in.Fill(values.data(), values.size(), 0xFF);
  int needed = in.In(0, 63);
  const bool orientation = (needed & 7) == 7;
  const double angleSteps = in.Bool() ? in.Real() : in.In(0, 720) / 2.0;
  // Tables are made for 7.5 .. 36000 steps only. Measuring the orientation
  // without tables stops the process by design.
  if (orientation) {
    const int made = InitFeatureTables(1, angleSteps);
    FUZZ_CHECK((made == 0) == (angleSteps >= 7.5 && angleSteps <= 36000),
               "InitFeatureTables(1, %g) returned %d", angleSteps, made);
    if (made != 0) needed &= ~4;
  }
  const long escapeAfter = in.Bool() ? in.In(0, 400) : -1;
  Buffer<SFeature> features(objects > 0 ? objects : 0);
  for (std::size_t k = 0; k < features.Size(); ++k) {
    features[k].centroidX = features[k].centroidY = -1;
    features[k].histogram[0] = -1;
  }
  Describe(
      "MultiObjectFeatureExtract<%zu>: %dx%d, region (%d, %d) %dx%d, labelled %d, first %d, "
      "objects %d, needed %d, angle steps %g, escape after %ld polls",
      sizeof(T), m.w, m.h, left, top, rw, rh, labelled, int(first), objects, needed, angleSteps,
      escapeAfter);
  g_pollsLeft = escapeAfter;
  SetKeyStateQuery(escapeAfter >= 0 ? EscapeAfterPolls : nullptr);
  unsigned char aborted = 7;
  const int result = MultiObjectFeatureExtract<T>(m.pixels.Data(), m.w, m.h, left, top, rw, rh,
                                                  values.data(), first, objects, features.Data(),
                                                  static_cast<EFeaturesNeeded>(needed), &aborted);
  SetKeyStateQuery(nullptr);
  ReleaseFeatureTables();
  const long scanned = long{r.width} * r.height;
  FUZZ_CHECK(aborted == (result == -1), "result %d with aborted %d", result, aborted);
  FUZZ_CHECK(result == 0 || (result == -1 && escapeAfter >= 0), "result %d", result);
  FUZZ_CHECK(objects <= 0 || escapeAfter < 0 || escapeAfter >= scanned || result == -1,
             "no abort after %ld polls of %ld pixels", escapeAfter, scanned);
  if (result != 0) return;

  const bool basic = needed & 1, centroid = basic && (needed & 2),
             histogram = basic && (needed & 32);
  long lit = 0, counted = 0;
  for (int k = 0; k < objects; ++k) {
    const SFeature &f = features[k];
    const T label = T(first + k);
    long n = 0, hist[256] = {};
    double sumX = 0, sumY = 0;
    i32 firstX = -1, firstY = -1;
    for (i32 y = 0; y < r.height; ++y) {
      for (i32 x = 0; x < r.width; ++x) {
        if (m.At(r.left + x, r.top + y) != label) continue;
        if (n++ == 0) firstX = r.left + x, firstY = r.top + y;
        sumX += x + 0.5, sumY += y + 0.5;
        ++hist[values[std::size_t(r.top + y) * m.w + r.left + x]];
      }
    }
    counted += n;
    FUZZ_CHECK(f.pixelCount == n, "object %d: %d pixels, want %ld", k, f.pixelCount, n);
    if (n > 0) {
      const double perimeter =
          FollowContour<T>(m.pixels.Data(), &m.At(firstX, firstY), m.w, m.h, r.left, r.top, r.width,
                           r.height, label, nullptr, nullptr);
      FUZZ_CHECK(f.perimeter == perimeter, "object %d: perimeter %.17g, FollowContour %.17g", k,
                 f.perimeter, perimeter);
    }
    for (int v = 0; histogram && v < 256; ++v) {
      FUZZ_CHECK(f.histogram[v] == hist[v], "object %d: histogram[%d] %d, want %ld", k, v,
                 f.histogram[v], hist[v]);
    }
    const double cx = centroid && n ? sumX / n + r.left : basic ? 0 : -1;
    const double cy = centroid && n ? sumY / n + r.top : basic ? 0 : -1;
    FUZZ_CHECK(std::fabs(f.centroidX - cx) <= 1e-9 * (1 + std::fabs(cx)) &&
                   std::fabs(f.centroidY - cy) <= 1e-9 * (1 + std::fabs(cy)),
               "object %d: centroid (%.17g, %.17g), want (%.17g, %.17g)", k, f.centroidX,
               f.centroidY, cx, cy);
    FUZZ_CHECK(basic || f.histogram[0] == -1, "object %d: histogram written", k);
    const bool measured = (needed & 7) == 7;
    FUZZ_CHECK(measured ? f.orientation >= -kPi && f.orientation < kPi : f.orientation == 0,
               "object %d: orientation %.17g", k, f.orientation);
  }
  if (labelled) {
    // Every lit pixel of the scanned region belongs to one labelled object.
    for (i32 y = 0; y < r.height; ++y) {
      for (i32 x = 0; x < r.width; ++x)
        lit += m.At(r.left + x, r.top + y) >= T(2) && m.At(r.left + x, r.top + y) < T(2 + objects);
    }
    FUZZ_CHECK(counted == lit, "objects hold %ld pixels of the %ld lit", counted, lit);
  }
}

// Soft, hard and down frames against the rule: each boundary pixel at least
// frameWidth from every edge updates the destination pixels within the
// table distance frameWidth (the whole 3 x 3 square for frameWidth 1).
void FuzzFrames(Input &in) {
  const u32 w = in.In<u32>(1, 30), h = in.In<u32>(1, 20), R = in.In<u32>(1, 6);
  const u32 fw = in.In<u32>(1, R);
  const int kind = in.In(0, 3);
  if (w <= 2 * fw || h <= 2 * fw) return;
  Describe("frames: %ux%u, R %u, frameWidth %u, kind %d", w, h, R, fw, kind);
  Buffer<u8> src(std::size_t{w} * h), dst(std::size_t{w} * h);
  in.Fill(src.Data(), src.Size());
  if (in.Bool()) {
    for (std::size_t i = 0; i < src.Size(); ++i) src[i] = src[i] & 1 ? src[i] : 0;
  }
  in.Fill(dst.Data(), dst.Size());
  const std::unique_ptr<int[]> table(CreateDistTableForSoftFrame(R));
  const i32 side = 2 * R + 1;
  for (i32 dy = -i32(R); dy <= i32(R); ++dy) {
    for (i32 dx = -i32(R); dx <= i32(R); ++dx) {
      const int d = table[(dy + i32(R)) * side + dx + i32(R)];
      FUZZ_CHECK(d == int(std::sqrt(double(dx * dx + dy * dy)) + 0.5), "table (%d, %d): %d", dx, dy,
                 d);
    }
  }
  std::vector<u8> want = dst.Copy();
  const auto before = src.Copy();
  const bool down = kind == 3;
  for (u32 y = fw; y < h - fw; ++y) {
    for (u32 x = fw; x < w - fw; ++x) {
      const std::size_t i = std::size_t{y} * w + x;
      const bool set = src[i] != 0;
      const bool zeroNeighbour = !src[i - 1] || !src[i + 1] || !src[i - w] || !src[i + w];
      const bool setNeighbour = src[i - 1] || src[i + 1] || src[i - w] || src[i + w];
      if (down ? set || !setNeighbour : !set || !zeroNeighbour) continue;
      for (i32 dy = -i32(fw); dy <= i32(fw); ++dy) {
        for (i32 dx = -i32(fw); dx <= i32(fw); ++dx) {
          const int d = table[(dy + i32(R)) * side + dx + i32(R)];
          if (fw != 1 && d > i32(fw)) continue;
          u8 &t = want[i + std::ptrdiff_t{dy} * w + dx];
          const u8 v = kind == 0   ? u8(((i32(fw) + 1 - d) * src[i]) / i32(fw))
                       : kind == 1 ? src[i]
                                   : 255;
          t = down ? 0 : std::max(t, v);
        }
      }
    }
  }
  if (kind == 0) SoftFrameL08toL08(src.Data(), dst.Data(), w, h, table.get(), R, fw);
  if (kind == 1 || kind == 2) {
    HardFrameL08toL08(src.Data(), dst.Data(), w, h, table.get(), R, fw, kind == 2);
  }
  if (down) HardFrameDownL08toL08(src.Data(), dst.Data(), w, h, table.get(), R, fw);
  FUZZ_CHECK(src.Copy() == before, "the source was written");
  for (std::size_t i = 0; i < want.size(); ++i) {
    FUZZ_CHECK(dst[i] == want[i], "pixel (%zu, %zu) is %u, want %u", i % w, i / w, dst[i], want[i]);
  }
}

template <class T>
void Run(Input &in, int op) {
  const i32 w = in.In(1, 24), h = in.In(1, 16);
  Mask<T> m(in, w, h, in.In(2, 4));
  if (op == kFill) return FuzzFill(in, m);
  if (op == kContour) return FuzzContour(in, m);
  const i32 left = in.Coord(w), top = in.Coord(h), rw = in.Coord(w), rh = in.Coord(h);
  if (op == kLabel) FuzzLabel(in, m, Region(w, h, left, top, rw, rh), left, top, rw, rh, in.Bool());
  if (op == kFeatures) FuzzFeatures(in, m, left, top, rw, rh);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Input in(data, size);
  const int op = in.In(0, kOpCount - 1);
  Describe("%s", kOps[op]);
  if (op == kFrames) {
    FuzzFrames(in);
  } else if (in.Bool()) {
    Run<unsigned char>(in, op);
  } else {
    Run<int>(in, op);
  }
  return 0;
}
