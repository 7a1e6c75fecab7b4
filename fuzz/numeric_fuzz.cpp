// The repeat and geometry functions with integers and doubles at the ends
// of their ranges (INT_MIN, INT_MAX, 0xFFFFFFFF, infinities, NaN, huge and
// tiny values), under UndefinedBehaviorSanitizer: every call must return,
// with no undefined behaviour, writing only its outputs. Zero divisors,
// which the header makes the caller's error (the divide fault), are left
// out. Where the header promises a result the harness checks it: vertical
// folds land in the tile, the array forms give the one-point results,
// GetRapport and SetInRappAndCalcRapp agree, pieces fit their arrays.
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "Ostrel.h"
#include "fuzz_util.h"

namespace {

using namespace fuzz;

const char *const kOps[] = {"ggT",
                            "kgV",
                            "Fakultaet",
                            "NUeberK",
                            "GetRapport",
                            "CalcNrOfHDropRepeats",
                            "CalcParts",
                            "CalcParts2",
                            "SetInRapp",
                            "SetInRappDb",
                            "SetInRappMM",
                            "VPToFP",
                            "VPToFPDb",
                            "FPToVP",
                            "FPToSnappedSP",
                            "MMToSnappedSP",
                            "pieces",
                            "AdaptFileSize",
                            "angles",
                            "GetLinearInterpoliertenWert",
                            "CurveInterpolation",
                            "GetInterpolatedOverlayFactor"};
constexpr int kOpCount = sizeof kOps / sizeof kOps[0];

// A repeat or buffer size: small, at the ends of the range, or anything.
u32 Extent(Input &in) {
  static const u32 kEnds[] = {1, 2, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu};
  switch (in.In(0, 3)) {
    case 0: return in.Pick(kEnds);
    case 1: return in.U32();
    default: return in.In<u32>(0, 200);
  }
}

// The product m * (m + 1) * ... * n in 32 bits, as NUeberK's divisor.
u32 Product(std::uint64_t m, std::uint64_t n) {
  u32 p = 1;
  for (std::uint64_t i = m; i <= n && p != 0; ++i) p *= static_cast<u32>(i);
  return p;
}

// The view repeat: trunc(size * zoom), 0x80000000 out of the int range.
i32 ViewRepeat(u32 size, double zoom) {
  const double v = std::trunc(size * zoom);
  return v > -2147483649.0 && v < 2147483648.0 ? static_cast<i32>(v) : INT_MIN;
}

void ThrowInvalidParameter(const char *, const char *, const char *, unsigned int) {
  throw std::invalid_argument("invalid parameter");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Input in(data, size);
  const int op = in.In(0, kOpCount - 1);
  const i32 a = in.Coord(200), b = in.Coord(200), c = in.Coord(200), d = in.Coord(200);
  const u32 width = Extent(in), height = Extent(in), drop = Extent(in), e = Extent(in);
  const double p = in.Real(), q = in.Real(), r = in.Real(), s = in.Real(), t = in.Real();
  const double zoomX = in.Bool() ? in.In(1, 16) / 4.0 : in.Real();
  const double zoomY = in.Bool() ? in.In(1, 16) / 4.0 : in.Real();
  const int kindValue = in.In(0, 3);
  const auto kind = static_cast<_EDropKind>(kindValue);
  const bool flag = in.Bool();
  const u8 snap = in.Byte();
  Describe(
      "%s: ints %d %d %d %d, sizes %u %u %u %u, doubles %g %g %g %g %g, zoom %g %g, kind %d, "
      "flag %d, snap %u",
      kOps[op], a, b, c, d, width, height, drop, e, p, q, r, s, t, zoomX, zoomY, kindValue, flag,
      snap);
  const bool converts = kind == eDropVertical || kind == eDropHorizontal;
  const bool zeroSize = width == 0 || height == 0;
  int x = -7, y = -7, n = -7;

  switch (op) {
    case 0:
      if (b != 0) ggT(a, b);
      break;
    case 1:
      if (b != 0) kgV(a, b);
      break;
    case 2: Fakultaet(e); break;
    case 3: {
      // The divisor is the factorial of min(k, n - k), 0 once it wraps.
      const u32 nn = width, kk = e;
      if (nn > kk && Product(2, std::min(kk, nn - kk)) == 0) break;
      const u32 v = NUeberK(nn, kk);
      FUZZ_CHECK(nn > kk || v == 1, "NUeberK(%u, %u) = %u", nn, kk, v);
      break;
    }
    case 4: {
      if (ViewRepeat(1, q) == 0) break;  // trunc(repeatSize) is the divisor
      const int index = GetRapport(p, q, r);
      const int rest = SetInRappAndCalcRapp(p, q, r, &n);
      FUZZ_CHECK(n == index, "SetInRappAndCalcRapp's index %d, GetRapport's %d (rest %d)", n, index,
                 rest);
      break;
    }
    case 5: {
      const int v = CalcNrOfHDropRepeats(width, drop);
      FUZZ_CHECK(v == -1 || (drop == 0 && v == 1) || (v >= 2 && v <= 20), "%d repeats", v);
      break;
    }
    case 6: {
      Buffer<int> parts(3);
      CalcParts(a, b, c, d, in.Coord(200), &n, parts.Data());
      FUZZ_CHECK(n >= 1 && n <= 3, "%d parts", n);
      break;
    }
    case 7: {
      // Room for 2 + length / period parts, where that is not huge.
      const i32 period = a > 0 ? a : 0, length = c;
      const std::int64_t room =
          period == 0 ? 1 : std::max<std::int64_t>(1, 2 + std::int64_t{length} / period);
      if (room > 100000) break;
      Buffer<int> parts(room);
      CalcParts2(period, b, length, &n, parts.Data());
      FUZZ_CHECK(n >= 0 && n <= room, "%d parts for room %lld", n, static_cast<long long>(room));
      break;
    }
    case 8:
    case 9: {
      if (zeroSize) break;
      if (op == 8) SetInRapp(a, b, width, height, drop, kind, &x, &y);
      if (op == 9) SetInRappDb(a, b, width, height, p, q, r, kind, &x, &y);
      // A vertical drop folds every position into the tile.
      FUZZ_CHECK(kind != eDropVertical || width > INT_MAX || height > INT_MAX ||
                     (x >= 0 && u32(x) < width && y >= 0 && u32(y) < height),
                 "folded to (%d, %d)", x, y);
      FUZZ_CHECK(converts || (x == a && y == b), "kind %d moved the position", kindValue);
      break;
    }
    case 10: {
      double fx = 0, fy = 0;
      SetInRappMM(p, q, r, s, t, kind, &fx, &fy);
      FUZZ_CHECK(converts || ((fx == p || fx != fx) && (fy == q || fy != fy)), "moved");
      break;
    }
    case 11:
    case 12:
    case 13: {
      if (converts &&
          (zeroSize || ViewRepeat(width, zoomX) == 0 || ViewRepeat(height, zoomY) == 0)) {
        break;
      }
      if (op == 11) VPToFP(a, b, &x, &y, width, height, drop, kind, zoomX, zoomY, flag);
      if (op == 12) VPToFPDb(a, b, &x, &y, width, height, p, q, r, kind, zoomX, zoomY, flag);
      if (op == 13) FPToVP(a, b, &x, &y, width, height, drop, kind, zoomX, zoomY, flag);
      FUZZ_CHECK(converts || (x == 0 && y == 0), "kind %d gave (%d, %d)", kindValue, x, y);
      // Folded file positions lie in the tile in the drop's direction.
      FUZZ_CHECK(op == 13 || !flag || kind != eDropVertical || u32(y) < height, "y %d", y);
      FUZZ_CHECK(op == 13 || !flag || kind != eDropHorizontal || u32(x) < width, "x %d", x);
      break;
    }
    case 14:
    case 15: {
      if (op == 14 && converts && zeroSize) break;
      const int count = in.In(0, 4);
      Buffer<int> fxs(count), fys(count), sxs(count), sys(count);
      Buffer<double> mxs(count), mys(count);
      for (int i = 0; i < count; ++i)
        fxs[i] = i ? in.Coord(200) : a, fys[i] = i ? in.Coord(200) : b;
      for (int i = 0; i < count; ++i) mxs[i] = i ? p * i : p, mys[i] = i ? q / i : q;
      int *sx = sxs.Data(), *sy = sys.Data();
      const i32 scrollX = c, scrollY = d;
      if (op == 14) {
        FPToSnappedSP(a, b, &x, &y, scrollX, scrollY, e, width, height, drop, kind, zoomX, zoomY,
                      snap, flag);
        FPToSnappedSP(fxs.Data(), fys.Data(), count, &sx, &sy, scrollX, scrollY, e, width, height,
                      drop, kind, zoomX, zoomY, snap, flag);
      } else {
        MMToSnappedSP(p, q, &x, &y, scrollX, scrollY, e, width, height, drop, kind, r, s, zoomX,
                      zoomY, snap, flag);
        MMToSnappedSP(mxs.Data(), mys.Data(), count > 0 ? 1 : 0, &sx, &sy, scrollX, scrollY, e,
                      width, height, drop, kind, r, s, zoomX, zoomY, snap, flag);
      }
      FUZZ_CHECK(converts || (x == -7 && y == -7), "kind %d wrote (%d, %d)", kindValue, x, y);
      FUZZ_CHECK(!converts || count == 0 || (sxs[0] == x && sys[0] == y),
                 "the array form gives (%d, %d), the one-point form (%d, %d)", sxs[0], sys[0], x,
                 y);
      break;
    }
    case 16: {
      if (kind == eDropVertical && zeroSize) break;
      Buffer<int> px(5), pw(5), py(5), ph(5);
      if (flag) {
        CalcPosAndSizeInRepBuffer(a, b, drop, e, width, height, kind, c, &n, px.Data(), pw.Data(),
                                  py.Data(), ph.Data(), snap & 1);
      } else {
        CalcPosAndSizeInRepBufferInv(a, b, drop, e, width, height, kind, c, &n, px.Data(),
                                     pw.Data(), py.Data(), ph.Data());
      }
      FUZZ_CHECK(kind == eDropHorizontal ? n == -7 : n >= 0 && n <= 5, "%d pieces", n);
      FUZZ_CHECK(converts || n == 0, "%d pieces without a drop kind", n);
      break;
    }
    case 17: {
      u32 w = 7, h = 7;
      if (flag) AdaptFileSizeToViewSizeForViewSize(width, height, drop, e, p, q, &w, &h);
      if (!flag) AdaptFileSizeToFileSizeForViewSize(width, height, drop, e, p, q, &w, &h);
      break;
    }
    case 18: {
      double u = 0, v = 0;
      GetAngle(p, q, r, s);
      GetAngleRad(p, q, r, s);
      GetPosition(p, q, &u, &v);
      GetLength(p, q, r, s);
      GetIntersectionDistanceDb(p, q, r, s, t, zoomX, &u);
      GetSystemAngleFromUserAngle(p, static_cast<_EAngleMode>(kindValue));
      GetUserAngleFromSystemAngle(q, static_cast<_EAngleMode>(kindValue));
      GetFlexoSizeFromAngle(p, q, r);
      GetFlexoAngleFromSize(p, q, r);
      GetNiceGreaterValue(s);
      GetNiceSmallerValue(t);
      break;
    }
    case 19: {
      // Fewer than two points read nothing past the table: one gives its
      // value, none gives 0.
      const u32 count = in.In<u32>(0, 6);
      Buffer<double> xs(count), ys(count);
      const double values[] = {p, q, r, s, t, zoomX};
      for (u32 i = 0; i < count; ++i) xs[i] = in.Bool() ? values[i] : i, ys[i] = values[5 - i];
      const double v = GetLinearInterpoliertenWert(xs.Data(), ys.Data(), count, zoomY);
      FUZZ_CHECK(count > 1 || v == (count ? ys[0] : 0.0) || (count && v != v && ys[0] != ys[0]),
                 "%u points give %.17g", count, v);
      break;
    }
    case 20: {
      // Points as the fuzzer gives them; invalid ones reach the handler,
      // which throws before anything is written.
      const int values = in.In(0, 10), tableLength = in.In(-4, 600);
      const int maxValue = in.Bool() ? in.In(-2, 5000) : in.Coord(0);
      Buffer<u16> points(values);
      in.Fill(points.Data(), points.Size(), in.Bool() ? 0x3FF : 0xFFFF);
      const int k = values / 2;
      bool valid = k >= 2;
      for (int i = 1; i < k; ++i) valid = valid && points[2 * i - 2] <= points[2 * i];
      const int last = k >= 1 ? points[2 * k - 2] : 0;
      const std::size_t pairs = valid ? std::max(tableLength, last) - points[0] : 4;
      Buffer<u16> table(2 * pairs);
      const auto before = table.Copy();
      SetInvalidParameterHandler(ThrowInvalidParameter);
      bool thrown = false;
      try {
        CurveInterpolation(values, points.Data(), tableLength, maxValue, table.Data());
      } catch (const std::invalid_argument &) { thrown = true; }
      SetInvalidParameterHandler(nullptr);
      FUZZ_CHECK(thrown == !valid, "valid %d, thrown %d", valid, thrown);
      FUZZ_CHECK(valid || table.Copy() == before, "an invalid call wrote the table");
      for (std::size_t i = 0; valid && i < pairs; ++i) {
        FUZZ_CHECK(table[2 * i] == u16(points[0] + i), "pair %zu has level %u", i, table[2 * i]);
      }
      break;
    }
    case 21: {
      const int count = in.In(1, 6);
      Buffer<double> table(count);
      const double values[] = {p, q, r, s, t, zoomX};
      for (int i = 0; i < count; ++i) table[i] = values[i];
      GetInterpolatedOverlayFactor(a, table.Data(), count);
      break;
    }
  }
  return 0;
}
