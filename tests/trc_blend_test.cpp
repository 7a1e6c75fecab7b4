// Blends into 32-bit colour: every member against per-pixel models written from the blend formulas,
// on edge geometries, random scenes and hand-worked values, under every instruction set (so the
// vector kernels are held to the same models as the scalar ones). Whole buffers are compared,
// guards included, so a write outside the region or into a source fails.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "Ostrel.h"
#include "frame/dispatch.h"
#include "frame/module.h"

namespace {

using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using Rng = std::mt19937;

// Every exported member; the last one once per path.
// clang-format off
enum Member {
  kTrcToTrc, kNoAlpha, kNoAlphaToTrc, kAlphaBuffer, kAlphaBufferOwn,             // colour to colour
  kL08, kL08Inverted, kL08EraseA, kQuickMask, kL08Grey, kL12,                    // grey to colour
  kConstAlpha, kColour, kColourInverted, kColourFlat, kOnBackground, kAlphaOnly, // solid colour
  kBlue, kBlueFlat, kBlueScaled, kMemberCount
};
constexpr int kFirstGrey = kL08, kFirstSolid = kConstAlpha;
// Without the AlphaBlend before most of them.
const char *const kNames[kMemberCount] = {
    "TRCToTRC", "TRCToTRCNoAlpha", "TRCNoAlphaToTRC", "TRCWithAlphaBufferToTRC",
    "TRCWithAlphaBufferToTRC (own)", "L08ToTRC", "L08ToTRCInverted", "L08ToTRCAndEraseA",
    "ApplyQuickMaskToTRC", "L08WithAlphaBufferToTRC", "L12ToTRC", "ColorWithConstAlphaToTRC",
    "ColorToTRC", "ColorToTRCInverted", "ColorToTRCFlat", "ColorOnBGToTRC", "AlphaToTRC",
    "ColorWithAlphaBlueOfTrcToTrc", "ColorWithAlphaBlueOfTrcToTrc (flat)",
    "ColorWithAlphaBlueOfTrcToTrc (scaleColour)"};
// clang-format on
bool HasFastForm(int m) {
  return m <= kAlphaBuffer || m == kL08 || m == kL08Inverted || m == kL12 ||
         (m >= kConstAlpha && m <= kColourInverted);
}
bool ClipsToDestinationOnly(int m) { return m >= kConstAlpha && m <= kOnBackground; }
bool TakesLookup(int m) { return m == kL08 || m == kL08EraseA; }

// Bytes and 16-bit words that are often one of the values where the arithmetic turns.
const u32 kByteTurns[] = {0, 1, 127, 128, 254, 255},
          kWordTurns[] = {0, 254, 255, 256, 4095, 4096, 65279, 65280, 65535};
template <std::size_t N>
u32 Turning(Rng &r, const u32 (&turns)[N], u32 mask) {
  return r() % 2 ? turns[r() % N] : r() & mask;
}
u32 Byte(Rng &r) { return Turning(r, kByteTurns, 0xFF); }

// n elements `offset` elements past a 32-byte boundary, with 16 guard elements on each side.
template <class T>
struct Canvas {
  std::vector<T> store;
  std::size_t start = 0, n = 0;
  template <class Gen>
  void Make(std::size_t count, std::size_t offset, Gen gen) {
    store.assign(count + offset + 64, 0);
    start = 16 + (32 - reinterpret_cast<std::uintptr_t>(store.data() + 16) % 32) % 32 / sizeof(T) +
            offset,
    n = count;
    for (std::size_t i = start - 16; i < start + n + 16; ++i) store[i] = static_cast<T>(gen());
  }
  T *Data() { return store.data() + start; }
  void Fill(u32 v) { std::fill(Data(), Data() + n, static_cast<T>(v)); }
};

struct Geometry {
  u32 sw, sh, sl, st, dw, dh, dl, dt, rw, rh;
};  // source (or mask), destination, region

struct Scene {
  int m = 0;
  Geometry g{};
  u32 aw = 13, ah = 1, al = 2, at = 1;  // own-geometry alpha buffer; its height is not used
  u32 colour = 0, background = 0;
  u8 opacity = 255;
  std::vector<u8> lookup;   // empty: none
  Canvas<u32> px, dst;      // colour source, destination
  Canvas<u8> bytes, alpha;  // grey or mask source, alpha buffer
  Canvas<u16> words;        // 12-bit grey source

  // Sources hold every element a member may read: the mask members read as far as the destination
  // allows.
  void Allocate(Rng &rng, bool unaligned) {
    const u32 rows = std::min(g.dh, g.dt + g.rh) - g.dt, cols = std::min(g.dw, g.dl + g.rw) - g.dl;
    auto need = [&](u32 w, u32 h, u32 l, u32 t) {
      return std::max<std::size_t>(std::size_t(w) * h,
                                   rows ? std::size_t(t + rows - 1) * w + l + cols : 0);
    };
    auto off = [&](u32 lo, u32 hi) { return unaligned ? lo + rng() % (hi - lo + 1) : 0; };
    const std::size_t source = need(g.sw, g.sh, g.sl, g.st);
    px.Make(source, off(1, 3), [&] { return (rng() & 0x00FFFF00u) | Byte(rng) | Byte(rng) << 24; });
    dst.Make(std::size_t(g.dw) * g.dh, off(1, 3), rng);
    bytes.Make(source, off(0, 31), [&] { return Byte(rng); });
    alpha.Make(m == kAlphaBufferOwn ? need(aw, ah, al, at) : source, off(0, 31),
               [&] { return Byte(rng); });
    words.Make(source, off(0, 15), [&] { return Turning(rng, kWordTurns, 0xFFFF); });
  }
  std::vector<u32> Buffers() const {
    std::vector<u32> out;
    auto add = [&](const auto &c) {
      out.insert(out.end(), &c.store[c.start - 16], &c.store[c.start + c.n + 16]);
    };
    add(px), add(dst), add(bytes), add(alpha), add(words);
    return out;
  }
  std::string Describe(int mode) const {
    static const char *const kModes[] = {", exact", ", fast", ", fast asked, flag clear"};
    std::ostringstream o;
    o << kNames[m] << kModes[mode] << ", geometry";
    for (u32 v : {g.sw, g.sh, g.sl, g.st, g.dw, g.dh, g.dl, g.dt, g.rw, g.rh}) o << ' ' << v;
    o << ", opacity " << int(opacity) << std::hex << ", colour 0x" << colour << ", background 0x"
      << background << (lookup.empty() ? "" : ", with lookup");
    return o.str();
  }
};

// Modes: 0 exact; 1 fast asked with the fast-form flag set; 2 fast asked with it clear.
void RunLibrary(Scene &s, int mode) {
  static const int loadFlag = ostrel::frame::g_fastFormFlag;
  ostrel::frame::SetFastFormFlagForTesting(mode == 2 ? 0 : 1);
  const Geometry &g = s.g;
  const bool ex = mode == 0;
  const u8 o = s.opacity;
  const u32 k = s.colour;
  u32 *P = s.px.Data(), *D = s.dst.Data();
  u8 *B = s.bytes.Data(), *A = s.alpha.Data(), *L = s.lookup.empty() ? nullptr : s.lookup.data();
#define SRC g.sw, g.sh, g.sl, g.st
#define DST D, g.dw, g.dh, g.dl, g.dt
#define REGION g.rw, g.rh
  switch (s.m) {
    case kTrcToTrc: AlphaBlendTRCToTRC(P, SRC, DST, o, REGION, ex); break;
    case kNoAlpha: AlphaBlendTRCToTRCNoAlpha(P, SRC, DST, o, REGION, ex); break;
    case kNoAlphaToTrc: AlphaBlendTRCNoAlphaToTRC(P, SRC, DST, o, REGION, ex); break;
    case kAlphaBuffer: AlphaBlendTRCWithAlphaBufferToTRC(P, A, SRC, DST, o, REGION, ex); break;
    case kAlphaBufferOwn:
      AlphaBlendTRCWithAlphaBufferToTRC(P, SRC, A, s.aw, s.ah, s.al, s.at, DST, o, REGION, ex);
      break;
    case kL08: AlphaBlendL08ToTRC(B, SRC, k, DST, o, REGION, ex, L); break;
    case kL08Inverted: AlphaBlendL08ToTRCInverted(B, SRC, k, DST, o, REGION, ex); break;
    case kL08EraseA: AlphaBlendL08ToTRCAndEraseA(B, SRC, k, DST, o, REGION, L); break;
    case kQuickMask: ApplyQuickMaskToTRC(B, SRC, k, DST, o, REGION); break;
    case kL08Grey: AlphaBlendL08WithAlphaBufferToTRC(B, A, SRC, DST, o, REGION, ex); break;
    case kL12: AlphaBlendL12ToTRC(s.words.Data(), SRC, k, DST, o, REGION, ex); break;
    case kConstAlpha: AlphaBlendColorWithConstAlphaToTRC(k, DST, REGION, ex); break;
    case kColour: AlphaBlendColorToTRC(k, B, SRC, DST, o, REGION, ex); break;
    case kColourInverted: AlphaBlendColorToTRCInverted(k, B, SRC, DST, o, REGION, ex); break;
    case kColourFlat: AlphaBlendColorToTRCFlat(k, B, SRC, DST, o, REGION, ex); break;
    case kOnBackground:
      AlphaBlendColorOnBGToTRC(k, s.background, B, SRC, DST, o, REGION, ex);
      break;
    case kAlphaOnly: AlphaBlendAlphaToTRC(u8(k >> 24), B, SRC, DST, o, REGION, ex); break;
    default:
      AlphaBlendColorWithAlphaBlueOfTrcToTrc(P, SRC, k, D, o, g.dw, g.dh, g.dl, g.dt, REGION,
                                             s.m == kBlueFlat, s.m == kBlueScaled);
  }
#undef SRC
#undef DST
#undef REGION
  ostrel::frame::SetFastFormFlagForTesting(loadFlag);
}

// Exact: W = (c * o) / 255 and d + ((s - d) * W) / 255 truncated toward zero.
// Fast:  w = (c * o) >> 8 and d + floor(((s - d) * w) / 256).
// Blue, green and red move and are stored as bytes; alpha stays.
int Weight(int c, int o, bool fast) { return c * o / (fast ? 256 : 255); }
u32 Mix(u32 d, u32 s, int w, bool fast) {
  u32 out = d & 0xFF000000u;
  for (int sh = 0; sh < 24; sh += 8) {
    const int from = d >> sh & 0xFF, p = (int(s >> sh & 0xFF) - from) * w;
    out |= (u32(from + (!fast ? p / 255 : p >= 0 ? p / 256 : -((255 - p) / 256))) & 0xFF) << sh;
  }
  return out;
}

// d: destination pixel; p: source pixel (b its blue byte); v: grey or mask byte; a: alpha-buffer
// byte; word: 16-bit grey; oddLast: the pixel ends a row of odd length.
u32 Model(const Scene &s, bool fast, u32 d, u32 p, u32 v, u32 a, u32 word, bool oddLast) {
  const u32 k = s.colour, b = p & 0xFF;
  const int o = s.opacity;
  if (!s.lookup.empty() && TakesLookup(s.m)) v = s.lookup[v];
  switch (s.m) {
    case kTrcToTrc: return Mix(d, p, Weight(p >> 24, o, fast), fast);
    case kNoAlpha: return Mix(d, p, Weight(255, o, fast), fast);
    case kNoAlphaToTrc: return Mix(d, p, o, fast);
    case kAlphaBuffer:
    case kAlphaBufferOwn: return Mix(d, p, Weight(a, o, fast), fast);
    case kL08:
    case kColour: return Mix(d, k, Weight(v, o, fast), fast);
    case kL08Inverted: return Mix(d, k, Weight(255 - v, o, fast), fast);
    case kL08EraseA: return v == 0 ? d : Mix(d, k, Weight(v, o, false), false) & 0x00FFFFFFu;
    case kQuickMask: return v == 0 ? k : Mix(d, k, Weight(255 - v, o, false), false);
    case kL08Grey: return Mix(d, v * 0x010101u, Weight(a, o, false), false);
    case kL12: return Mix(d, k, Weight(fast ? word >> 8 : word / 255, o, fast), fast);
    case kConstAlpha: return Mix(d, k, k >> 24, fast);
    case kColourInverted: return Mix(d, k, Weight(fast && !oddLast ? 255 - v : v, o, fast), fast);
    case kColourFlat: return Mix(d, k, Weight(v ? 255 : 0, o, false), false);
    case kOnBackground: return v == 0 ? d : Mix(d, Mix(s.background, k, v, false), o, false);
    case kAlphaOnly:
      return (d & 0x00FFFFFFu) | Mix(d >> 24, k >> 24, Weight(v, o, false), false)
                                     << 24;  // as blue
    case kBlueFlat: return b ? (d & 0xFF000000u) | (k & 0x00FFFFFFu) : d;
    case kBlueScaled:
      if (o == 255)
        return b ? Mix(d & 0xFF000000u, k, b, false) : d;  // (b * k) / 255: k over black
      [[fallthrough]];
    default: return Mix(d, k, Weight(b, o, false), false);
  }
}

void RunModel(Scene &s, int mode) {
  const Geometry &g = s.g;
  u32 cols = std::min(g.rw, g.dw - g.dl), rows = std::min(g.rh, g.dh - g.dt);
  if (!ClipsToDestinationOnly(s.m))
    cols = std::min(cols, g.sw - g.sl), rows = std::min(rows, g.sh - g.st);
  for (u32 j = 0; j < rows; ++j) {
    for (u32 i = 0; i < cols; ++i) {
      const std::size_t si = std::size_t(g.st + j) * g.sw + g.sl + i;
      const std::size_t ai = s.m == kAlphaBufferOwn ? std::size_t(s.at + j) * s.aw + s.al + i : si;
      u32 &d = s.dst.Data()[std::size_t(g.dt + j) * g.dw + g.dl + i];
      d = Model(s, mode == 1 && HasFastForm(s.m), d, s.px.Data()[si], s.bytes.Data()[si],
                s.alpha.Data()[ai], s.words.Data()[si], cols % 2 == 1 && i == cols - 1);
    }
  }
}

std::vector<u8> RandomTable(Rng &rng) {
  std::vector<u8> table(256);
  for (u8 &e : table) e = u8(Byte(rng));
  return table;
}

// A region of up to 67 columns and 4 rows, buffers that hold it or end up to 3 columns or 2 rows
// short of it, pointers 1..3 pixels past a 32-byte boundary (byte and word buffers at any offset).
Scene RandomScene(int m, unsigned seed) {
  Rng rng(seed * 7919u + u32(m));
  Scene s;
  s.m = m;
  auto edge = [&](u32 region, u32 slack, u32 &pos, u32 &size) {
    const int lo = -int(std::min(region, slack));
    pos = rng() % (slack + 1);
    size = std::max(1u, pos + u32(int(region) + lo + int(rng() % (slack + 1 - lo))));
  };
  Geometry &g = s.g;
  g.rw = rng() % 10 ? 1 + rng() % 67 : 0, g.rh = rng() % 10 ? 1 + rng() % 4 : 0;
  edge(g.rw, 3, g.sl, g.sw), edge(g.rh, 2, g.st, g.sh), edge(g.rw, 3, g.dl, g.dw),
      edge(g.rh, 2, g.dt, g.dh);
  s.aw = g.rw + 3 + rng() % 3, s.ah = 1 + rng() % 3, s.al = rng() % 4, s.at = rng() % (s.ah + 1);
  auto colour = [&] { return Byte(rng) | Byte(rng) << 8 | Byte(rng) << 16 | rng() << 24; };
  s.colour = colour(), s.background = colour(), s.opacity = u8(Byte(rng));
  if (TakesLookup(m) && rng() % 3 != 0) s.lookup = RandomTable(rng);
  s.Allocate(rng, true);
  return s;
}

// For the members [first, last) and the scenes make(m, n) for n < count (skipped when make clears
// m), under every instruction set and in the three modes: the library must leave its buffers as the
// model does, and extra(library, n, mode) must find nothing wrong. Counts mismatches and reports
// the first.
template <class Make, class Extra>
void CheckAgainstModel(int first, int last, unsigned count, Make make, Extra extra) {
  long bad = 0;
  std::string report;
  for (const auto &info : ostrel::frame::simd::RunnableIsas()) {
    const ostrel::frame::simd::ScopedIsaLimit limit(info.isa);
    for (int m = first; m < last; ++m) {
      for (unsigned n = 0; n < count; ++n) {
        const Scene scene = make(m, n);
        for (int mode = 0; mode < 3 && scene.m == m; ++mode) {
          Scene lib = scene, model = scene;
          RunLibrary(lib, mode), RunModel(model, mode);
          std::string wrong =
              lib.Buffers() != model.Buffers() ? "differs from the model" : extra(lib, n, mode);
          if (!wrong.empty() && bad++ == 0)
            report = std::string(info.name) + ", " + lib.Describe(mode) + ": " + wrong;
        }
      }
    }
  }
  EXPECT_EQ(bad, 0) << "first: " << report;
}

// Inside with odd, one or no columns; source left at its width, source top at its height,
// destination top at its height; past only the destination's or the source's right edge (mask rows
// overlap), past only the source's or the destination's bottom; rows longer than a lookup stretch.
// clang-format off
const Geometry kGeometries[] = {
    {9, 5, 1, 1, 8, 6, 2, 1, 5, 3}, {9, 5, 1, 1, 8, 6, 2, 1, 1, 4}, {9, 5, 1, 1, 8, 6, 2, 1, 0, 3},
    {9, 5, 9, 1, 8, 6, 2, 1, 5, 3}, {9, 5, 1, 5, 8, 6, 2, 1, 5, 3}, {9, 5, 1, 1, 8, 6, 2, 6, 5, 3},
    {20, 5, 1, 1, 8, 6, 4, 1, 7, 3}, {8, 5, 4, 1, 20, 6, 2, 1, 7, 3},
    {9, 2, 1, 1, 8, 6, 2, 1, 5, 4}, {9, 6, 1, 1, 8, 3, 2, 1, 5, 4},
    {2100, 2, 3, 0, 2103, 3, 1, 1, 2100, 2}};
// clang-format on
constexpr unsigned kPerGeometry = 3, kGeometryScenes = kPerGeometry * std::size(kGeometries);

// A 3 x 1 region of identical pixels: src is the source pixel, grey or mask byte or 16-bit word;
// aux the alpha-buffer byte or the background. Pixel 2 ends a row of odd length. The lookup members
// get the lookup 255 - g.
struct Pin {
  int m;
  u8 opacity;
  u32 src, aux, dst, colour, exact, fast, fastOddLast;
};
// clang-format off
const Pin kPins[] = {
  {kTrcToTrc, 255, 0xFFFFFFFF, 0, 0x7F000000, 0, 0x7FFFFFFF, 0x7FFDFDFD, 0x7FFDFDFD},
  {kNoAlpha, 255, 0x00FFFFFF, 0, 0x12000000, 0, 0x12FFFFFF, 0x12FDFDFD, 0x12FDFDFD},
  {kNoAlphaToTrc, 255, 0x00FFFFFF, 0, 0x12000000, 0, 0x12FFFFFF, 0x12FEFEFE, 0x12FEFEFE},
  {kL08, 255, 0, 0, 0x33000000, 0xAAFFFFFF, 0x33FFFFFF, 0x33FDFDFD, 0x33FDFDFD},
  {kL08EraseA, 0, 1, 0, 0xAB123456, 0xFF000000, 0x00123456, 0x00123456, 0x00123456},
  {kQuickMask, 0, 0, 0, 0x01020304, 0xA1B2C3D4, 0xA1B2C3D4, 0xA1B2C3D4, 0xA1B2C3D4},
  {kL12, 255, 4095, 0, 0x00000000, 0x00FFFFFF, 0x00101010, 0x000D0D0D, 0x000D0D0D},
  // W = (65535 / 255) * 255 / 255 = 257: the channel leaves 0..255 and keeps its low byte.
  {kL12, 255, 65535, 0, 0x00000000, 0x00FFFFFF, 0x00010101, 0x00FDFDFD, 0x00FDFDFD},
  {kConstAlpha, 255, 0, 0, 0x5A000000, 0xFFFFFFFF, 0x5AFFFFFF, 0x5AFEFEFE, 0x5AFEFEFE},
  {kColourInverted, 255, 0, 0, 0x3C000000, 0x00FFFFFF, 0x3C000000, 0x3CFDFDFD, 0x3C000000},
  {kColourFlat, 255, 1, 0, 0x3C000000, 0x00FFFFFF, 0x3CFFFFFF, 0x3CFFFFFF, 0x3CFFFFFF},
  {kOnBackground, 255, 128, 0x00402010, 0x3C000000, 0x00C0A080, 0x3C806048, 0x3C806048, 0x3C806048},
  {kAlphaOnly, 255, 255, 0, 0xC8123456, 0x00000000, 0x00123456, 0x00123456, 0x00123456},
  {kBlueFlat, 128, 0x12345680, 0, 0x77323232, 0x00C8C8C8, 0x77C8C8C8, 0x77C8C8C8, 0x77C8C8C8},
  {kBlueScaled, 255, 0x12345680, 0, 0x77323232, 0x00C8C8C8, 0x77646464, 0x77646464, 0x77646464},
  {kBlue, 255, 0x12345680, 0, 0x77323232, 0x00C8C8C8, 0x777D7D7D, 0x777D7D7D, 0x777D7D7D},
};
// clang-format on

constexpr unsigned kPinScenes = std::size(kPins);

// The pins; then each geometry with random contents and no, an identity or a random lookup; then
// 200 random scenes (enough to reach the vector kernels' steps and row tails at every length).
void CheckMembers(int first, int last) {
  std::vector<u8> identity(256), inverse(256);
  std::iota(identity.begin(), identity.end(), 0), std::iota(inverse.rbegin(), inverse.rend(), 0);
  auto make = [&](int m, unsigned n) {
    Rng rng(n * 31 + m);
    Scene s = RandomScene(m, n);
    if (n < kPinScenes) {
      const Pin &p = kPins[n];
      s = Scene(), s.m = p.m == m ? m : -1, s.g = {3, 1, 0, 0, 3, 1, 0, 0, 3, 1};
      s.aw = 3, s.al = s.at = 0, s.opacity = p.opacity, s.colour = p.colour, s.background = p.aux;
      if (TakesLookup(m)) s.lookup = inverse;
      s.Allocate(rng, false);
      s.px.Fill(p.src), s.bytes.Fill(p.src), s.words.Fill(p.src), s.alpha.Fill(p.aux),
          s.dst.Fill(p.dst);
    } else if (n < kPinScenes + kGeometryScenes) {
      const unsigned k = n - kPinScenes;
      s.g = kGeometries[k / kPerGeometry], s.aw = 13, s.ah = 1, s.al = 2, s.at = 1;
      s.lookup = !TakesLookup(m) || k % 3 == 0 ? std::vector<u8>()
                 : k % 3 == 1                  ? identity
                                               : RandomTable(rng);
      s.Allocate(rng, false);
    }
    return s;
  };
  const unsigned count = kPinScenes + kGeometryScenes + 200;
  CheckAgainstModel(first, last, count, make, [](Scene &lib, unsigned n, int mode) {
    std::ostringstream o;
    for (int i = 0; n < kPinScenes && i < 3; ++i) {
      const u32 want = mode != 1 ? kPins[n].exact : i == 2 ? kPins[n].fastOddLast : kPins[n].fast;
      if (lib.dst.Data()[i] != want)
        o << std::hex << " pinned pixel " << i << " 0x" << lib.dst.Data()[i] << ", not 0x" << want;
    }
    return o.str();
  });
}

TEST(ColourToColourBlend, EveryMemberMatchesModelAndPins) { CheckMembers(0, kFirstGrey); }
TEST(GreyToColourBlend, EveryMemberMatchesModelAndPins) { CheckMembers(kFirstGrey, kFirstSolid); }
TEST(SolidColourBlend, EveryMemberMatchesModelAndPins) { CheckMembers(kFirstSolid, kMemberCount); }

}  // namespace
