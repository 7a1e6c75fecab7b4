// View, file and screen coordinates.
//
// Integer products and sums are 32-bit and wrap; a product of two integers
// that meets a double (repeatX * viewRepeatWidth) is formed in 32 bits first
// and then converted. Sums of doubles are evaluated left to right, in the documented
// order.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "Ostrel.h"
#include "frame/checked.h"
#include "frame/numeric.h"
#include "repeat/repeat_math.h"

namespace ostrel {
namespace repeat {
namespace {

bool Converts(std::int32_t dropKind) {
  return dropKind == kDropVertical || dropKind == kDropHorizontal;
}

// A repeat size in view pixels: trunc(size * zoom), the size taken as an
// unsigned value.
std::int32_t ViewRepeatSize(std::uint32_t repeatSize, double zoom) {
  return frame::TruncToInt32(static_cast<double>(repeatSize) * zoom);
}

// The drop of n repeats, as VPToFP subtracts it: n * drop in 32 bits.
struct IntegerDropTerm {
  std::uint32_t drop;
  std::int32_t operator()(std::int32_t n) const { return Mul(n, Signed(drop)); }
};

// The drop of n repeats, as VPToFPDb subtracts it: round(n * ratio * exact),
// multiplied left to right, rounded half away from zero.
struct RoundedDropTerm {
  double ratio;
  double exact;
  std::int32_t operator()(std::int32_t n) const { return RoundHalfAway(n * ratio * exact); }
};

template <class DropTerm>
void ViewToFile(const char *function, std::int32_t vx, std::int32_t vy, std::int32_t *fx,
                std::int32_t *fy, std::uint32_t repeatWidth, std::uint32_t repeatHeight,
                DropTerm verticalTerm, DropTerm horizontalTerm, std::int32_t dropKind, double zoomX,
                double zoomY, bool foldIntoRepeat) {
  const std::int32_t viewRepeatWidth = ViewRepeatSize(repeatWidth, zoomX);
  const std::int32_t viewRepeatHeight = ViewRepeatSize(repeatHeight, zoomY);
  const std::int32_t repeatX = FloorDiv(vx, viewRepeatWidth);
  const std::int32_t repeatY = FloorDiv(vy, viewRepeatHeight);
  if (!Converts(dropKind)) {
    *fx = 0;
    *fy = 0;
    return;
  }
  OSTREL_EXPECT(function, "viewRepeatWidth", viewRepeatWidth, viewRepeatWidth != 0, "not 0");
  OSTREL_EXPECT(function, "viewRepeatHeight", viewRepeatHeight, viewRepeatHeight != 0, "not 0");
  const std::int32_t ix = frame::TruncToInt32(FloorMod(vx, viewRepeatWidth) / zoomX);
  const std::int32_t iy = frame::TruncToInt32(FloorMod(vy, viewRepeatHeight) / zoomY);
  const std::int32_t width = Signed(repeatWidth), height = Signed(repeatHeight);
  if (!foldIntoRepeat) {
    *fx = Add(ix, Mul(repeatX, width));
    *fy = Add(iy, Mul(repeatY, height));
  } else if (dropKind == kDropVertical) {
    OSTREL_EXPECT(function, "repeatHeight", repeatHeight, repeatHeight != 0, "not 0");
    *fx = ix;
    *fy = Signed(FloorMod(Sub(Add(Mul(repeatY, height), iy), verticalTerm(repeatX)), repeatHeight));
  } else {
    OSTREL_EXPECT(function, "repeatWidth", repeatWidth, repeatWidth != 0, "not 0");
    *fx = Signed(FloorMod(Sub(Add(Mul(repeatX, width), ix), horizontalTerm(repeatY)), repeatWidth));
    *fy = iy;
  }
}

// What FPToSnappedSP and MMToSnappedSP share, computed once per call: the
// view repeat sizes, the snap offsets and the turn of y.
class ScreenMapping {
 public:
  ScreenMapping(std::int32_t scrollX, std::int32_t scrollY, std::uint32_t windowHeight,
                std::uint32_t repeatWidth, std::uint32_t repeatHeight, double zoomX, double zoomY,
                unsigned char snap, bool bottomUp)
      : viewRepeatWidth(ViewRepeatSize(repeatWidth, zoomX)),
        viewRepeatHeight(ViewRepeatSize(repeatHeight, zoomY)),
        scrollX_(scrollX),
        scrollY_(scrollY),
        windowHeight_(windowHeight),
        // The snap: right by trunc(zoom / 2 + 0.5), up by trunc(zoom / 2 - 0.5),
        // unequal on purpose.
        snapX_(zoomX > 1 && snap != 0 ? frame::TruncToInt32(zoomX * 0.5 + 0.5) : 0),
        snapY_(zoomY > 1 && snap != 0 ? frame::TruncToInt32(zoomY * 0.5 - 0.5) : 0),
        bottomUp_(bottomUp) {}

  const std::int32_t viewRepeatWidth;
  const std::int32_t viewRepeatHeight;

  // sx from the view x: the scroll is subtracted before the truncation.
  std::int32_t X(double viewX) const { return Add(frame::TruncToInt32(viewX - scrollX_), snapX_); }

  // sy from the view y, through t = viewY - scrollY: bottom-up through a
  // 64-bit truncation of which the low 32 bits count; the snap goes up in
  // both orientations.
  std::int32_t Y(double viewY) const {
    const double t = viewY - scrollY_;
    const std::uint32_t y =
        bottomUp_ ? windowHeight_ - TruncLow32(t) - 1 : Bits(frame::TruncToInt32(t));
    return Signed(y - Bits(snapY_));
  }

 private:
  const std::int32_t scrollX_;
  const std::int32_t scrollY_;
  const std::uint32_t windowHeight_;
  const std::int32_t snapX_;
  const std::int32_t snapY_;
  const bool bottomUp_;
};

void FileToScreen(const char *function, const ScreenMapping &map, std::int32_t fx, std::int32_t fy,
                  std::uint32_t repeatWidth, std::uint32_t repeatHeight, double zoomX, double zoomY,
                  std::int32_t *sx, std::int32_t *sy) {
  OSTREL_EXPECT(function, "repeatWidth", repeatWidth, repeatWidth != 0, "not 0");
  OSTREL_EXPECT(function, "repeatHeight", repeatHeight, repeatHeight != 0, "not 0");
  const std::int32_t repeatX = FloorDiv(fx, repeatWidth);
  const std::int32_t repeatY = FloorDiv(fy, repeatHeight);
  *sx = map.X(Mul(repeatX, map.viewRepeatWidth) + FloorMod(fx, repeatWidth) * zoomX);
  *sy = map.Y(Mul(repeatY, map.viewRepeatHeight) + FloorMod(fy, repeatHeight) * zoomY);
}

// repeatCount(v, p) of MMToSnappedSP: a floor division counted by steps of
// p, in a 32-bit counter. Below 2^53 in magnitude every step is exact (v and
// the whole number p are multiples of v's last place, and the sum shrinks),
// so the sum after k steps is v + k * p exactly: the count skips straight to
// a few steps short of the end and steps the rest, with the stepped result.
// From 2^53 on a step may round (or change nothing), so the count is the
// quotient rounded in double precision; a non-finite v counts 0 repeats.
std::int32_t RepeatCount(double v, double p) {
  if (p == 0 || !std::isfinite(v)) return 0;
  constexpr double kExactLimit = 9007199254740992.0;  // 2^53
  constexpr double kCounterRange = 4294967296.0;      // 2^32
  const double magnitude = std::fabs(v);
  const auto wrap = [&](double count) {  // a whole count, modulo 2^32
    return static_cast<std::uint32_t>(std::fmod(count, kCounterRange));
  };
  if (magnitude >= kExactLimit) {
    const std::uint32_t steps = wrap(v < 0 ? std::ceil(magnitude / p) : std::floor(v / p));
    return v < 0 ? Signed(0u - steps) : Signed(steps);
  }
  // Whole steps certainly within the count: the quotient is off by less than
  // 1 here, so two fewer cannot pass the end.
  const double skip = std::max(0.0, std::floor(magnitude / p) - 2);
  std::uint32_t steps = wrap(skip);
  if (v < 0) {
    for (double sum = v + skip * p; sum < 0; sum += p) ++steps;
    return Signed(0u - steps);
  }
  if (v > 0) {
    double rest = v - skip * p;
    for (; rest > 0; rest -= p) ++steps;
    return Signed(rest < 0 ? steps - 1 : steps);
  }
  return 0;
}

void MillimetresToScreen(const ScreenMapping &map, double mmX, double mmY,
                         std::uint32_t repeatWidth, std::uint32_t repeatHeight, double resolutionX,
                         double resolutionY, double zoomX, double zoomY, std::int32_t *sx,
                         std::int32_t *sy) {
  // The added and removed 1 quantises very small values; it stays.
  const double px = (mmX * resolutionX + 1) - 1;
  const double py = (mmY * resolutionY + 1) - 1;
  const double width = repeatWidth, height = repeatHeight;
  const std::int32_t repeatX = RepeatCount(px, width);
  const std::int32_t repeatY = RepeatCount(py, height);
  // A second, independent rule for the position inside the repeat.
  const double remainderX = px - std::floor(px / width) * width;
  const double remainderY = py - std::floor(py / height) * height;
  *sx = map.X(remainderX * zoomX + Mul(repeatX, map.viewRepeatWidth));
  *sy = map.Y(remainderY * zoomY + Mul(repeatY, map.viewRepeatHeight));
}

}  // namespace
}  // namespace repeat
}  // namespace ostrel

namespace frame = ostrel::frame;
namespace repeat = ostrel::repeat;

void VPToFP(int vx, int vy, int *fx, int *fy, unsigned int repeatWidth, unsigned int repeatHeight,
            unsigned int drop, _EDropKind dropKind, double zoomX, double zoomY,
            bool foldIntoRepeat) {
  const repeat::IntegerDropTerm term{drop};
  repeat::ViewToFile(__func__, vx, vy, fx, fy, repeatWidth, repeatHeight, term, term, dropKind,
                     zoomX, zoomY, foldIntoRepeat);
}

void VPToFPDb(int vx, int vy, int *fx, int *fy, unsigned int repeatWidth, unsigned int repeatHeight,
              double dropRatio, double repeatWidthExact, double repeatHeightExact,
              _EDropKind dropKind, double zoomX, double zoomY, bool foldIntoRepeat) {
  repeat::ViewToFile(__func__, vx, vy, fx, fy, repeatWidth, repeatHeight,
                     repeat::RoundedDropTerm{dropRatio, repeatHeightExact},
                     repeat::RoundedDropTerm{dropRatio, repeatWidthExact}, dropKind, zoomX, zoomY,
                     foldIntoRepeat);
}

void FPToVP(int fx, int fy, int *vx, int *vy, unsigned int repeatWidth, unsigned int repeatHeight,
            unsigned int drop, _EDropKind dropKind, double zoomX, double zoomY,
            bool foldIntoRepeat) {
  const std::int32_t viewRepeatWidth = repeat::ViewRepeatSize(repeatWidth, zoomX);
  const std::int32_t viewRepeatHeight = repeat::ViewRepeatSize(repeatHeight, zoomY);
  const std::int32_t repeatX = repeat::FloorDiv(fx, repeatWidth);
  const std::int32_t repeatY = repeat::FloorDiv(fy, repeatHeight);
  if (!repeat::Converts(dropKind)) {
    *vx = 0;
    *vy = 0;
    return;
  }
  OSTREL_EXPECT(__func__, "repeatWidth", repeatWidth, repeatWidth != 0, "not 0");
  OSTREL_EXPECT(__func__, "repeatHeight", repeatHeight, repeatHeight != 0, "not 0");
  const double insideX = repeat::FloorMod(fx, repeatWidth);  // fx mod repeatWidth
  const double insideY = repeat::FloorMod(fy, repeatHeight);
  if (!foldIntoRepeat) {
    *vx = frame::TruncToInt32(zoomX * insideX + repeat::Mul(repeatX, viewRepeatWidth));
    *vy = frame::TruncToInt32(zoomY * insideY + repeat::Mul(repeatY, viewRepeatHeight));
  } else if (dropKind == repeat::kDropVertical) {
    OSTREL_EXPECT(__func__, "viewRepeatHeight", viewRepeatHeight, viewRepeatHeight != 0, "not 0");
    *vx = frame::TruncToInt32(zoomX * insideX);
    *vy = repeat::FloorMod(frame::TruncToInt32(repeat::Mul(repeatY, viewRepeatHeight) +
                                               insideY * zoomY - zoomY * drop * repeatX),
                           viewRepeatHeight);
  } else {
    OSTREL_EXPECT(__func__, "viewRepeatWidth", viewRepeatWidth, viewRepeatWidth != 0, "not 0");
    *vx = repeat::FloorMod(frame::TruncToInt32(repeat::Mul(repeatX, viewRepeatWidth) +
                                               insideX * zoomX - zoomX * drop * repeatY),
                           viewRepeatWidth);
    *vy = frame::TruncToInt32(zoomY * insideY);
  }
}

void FPToSnappedSP(int fx, int fy, int *sx, int *sy, int scrollX, int scrollY,
                   unsigned int windowHeight, unsigned int repeatWidth, unsigned int repeatHeight,
                   unsigned int /*drop*/, _EDropKind dropKind, double zoomX, double zoomY,
                   unsigned char snap, bool bottomUp) {
  if (!repeat::Converts(dropKind)) return;
  const repeat::ScreenMapping map(scrollX, scrollY, windowHeight, repeatWidth, repeatHeight, zoomX,
                                  zoomY, snap, bottomUp);
  repeat::FileToScreen(__func__, map, fx, fy, repeatWidth, repeatHeight, zoomX, zoomY, sx, sy);
}

void FPToSnappedSP(int *fxs, int *fys, int count, int **sxs, int **sys, int scrollX, int scrollY,
                   unsigned int windowHeight, unsigned int repeatWidth, unsigned int repeatHeight,
                   unsigned int /*drop*/, _EDropKind dropKind, double zoomX, double zoomY,
                   unsigned char snap, bool bottomUp) {
  if (!repeat::Converts(dropKind)) return;
  const repeat::ScreenMapping map(scrollX, scrollY, windowHeight, repeatWidth, repeatHeight, zoomX,
                                  zoomY, snap, bottomUp);
  int *const outX = *sxs;
  int *const outY = *sys;
  for (int i = 0; i < count; ++i) {
    repeat::FileToScreen(__func__, map, fxs[i], fys[i], repeatWidth, repeatHeight, zoomX, zoomY,
                         &outX[i], &outY[i]);
  }
}

void MMToSnappedSP(double mmX, double mmY, int *sx, int *sy, int scrollX, int scrollY,
                   unsigned int windowHeight, unsigned int repeatWidth, unsigned int repeatHeight,
                   unsigned int /*drop*/, _EDropKind dropKind, double resolutionX,
                   double resolutionY, double zoomX, double zoomY, unsigned char snap,
                   bool bottomUp) {
  if (!repeat::Converts(dropKind)) return;
  const repeat::ScreenMapping map(scrollX, scrollY, windowHeight, repeatWidth, repeatHeight, zoomX,
                                  zoomY, snap, bottomUp);
  repeat::MillimetresToScreen(map, mmX, mmY, repeatWidth, repeatHeight, resolutionX, resolutionY,
                              zoomX, zoomY, sx, sy);
}

void MMToSnappedSP(double *mmXs, double *mmYs, int count, int **sxs, int **sys, int scrollX,
                   int scrollY, unsigned int windowHeight, unsigned int repeatWidth,
                   unsigned int repeatHeight, unsigned int /*drop*/, _EDropKind dropKind,
                   double resolutionX, double resolutionY, double zoomX, double zoomY,
                   unsigned char snap, bool bottomUp) {
  if (!repeat::Converts(dropKind)) return;
  const repeat::ScreenMapping map(scrollX, scrollY, windowHeight, repeatWidth, repeatHeight, zoomX,
                                  zoomY, snap, bottomUp);
  int *const outX = *sxs;
  int *const outY = *sys;
  for (int i = 0; i < count; ++i) {
    repeat::MillimetresToScreen(map, mmXs[i], mmYs[i], repeatWidth, repeatHeight, resolutionX,
                                resolutionY, zoomX, zoomY, &outX[i], &outY[i]);
  }
}
