// Blends into 32-bit colour (colour-to-colour, grey-to-colour, solid-colour):
// every member against per-pixel models written here from the blend formulas,
// on edge-case geometries, random scenes and hand-computed values. Whole
// buffers are compared, sources and guard elements included, so a write
// outside the region or into a source fails. The random scenes are also the
// ones trc_blend_simd_test.cpp runs under every instruction set.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "Ostrel.h"
#include "frame/dispatch.h"
#include "frame/module.h"

namespace ostrel_trc_test {  // TrcBlendRandomRun is shared with trc_blend_simd_test.cpp
namespace {

using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using Rng = std::mt19937;

// The calls under test: every exported member, the last one once per path.
enum Member {
  kTrcToTrc, kNoAlpha, kNoAlphaToTrc, kAlphaBuffer, kAlphaBufferOwn,           // colour to colour
  kL08, kL08Inverted, kL08EraseA, kQuickMask, kL08Grey, kL12,                  // grey to colour
  kConstAlpha, kColour, kColourInverted, kColourFlat, kOnBackground, kAlphaOnly,  // solid colour
  kBlue, kBlueFlat, kBlueScaled, kMemberCount
};
constexpr int kFirstGrey = kL08, kFirstSolid = kConstAlpha;
const char *const kNames[kMemberCount] = {
    "AlphaBlendTRCToTRC", "AlphaBlendTRCToTRCNoAlpha", "AlphaBlendTRCNoAlphaToTRC",
    "AlphaBlendTRCWithAlphaBufferToTRC (shared geometry)", "AlphaBlendTRCWithAlphaBufferToTRC (own geometry)",
    "AlphaBlendL08ToTRC", "AlphaBlendL08ToTRCInverted", "AlphaBlendL08ToTRCAndEraseA", "ApplyQuickMaskToTRC",
    "AlphaBlendL08WithAlphaBufferToTRC", "AlphaBlendL12ToTRC", "AlphaBlendColorWithConstAlphaToTRC",
    "AlphaBlendColorToTRC", "AlphaBlendColorToTRCInverted", "AlphaBlendColorToTRCFlat",
    "AlphaBlendColorOnBGToTRC", "AlphaBlendAlphaToTRC", "AlphaBlendColorWithAlphaBlueOfTrcToTrc",
    "AlphaBlendColorWithAlphaBlueOfTrcToTrc (flat)", "AlphaBlendColorWithAlphaBlueOfTrcToTrc (scaleColour)"};

bool HasFastForm(int m) {
  return m <= kAlphaBuffer || m == kL08 || m == kL08Inverted || m == kL12 ||
         (m >= kConstAlpha && m <= kColourInverted);
}
bool ClipsToDestinationOnly(int m) { return m >= kConstAlpha && m <= kOnBackground; }
bool TakesLookup(int m) { return m == kL08 || m == kL08EraseA; }


// A byte that is often one of the values where the arithmetic turns.
u32 Byte(Rng &r) {
  static const u8 kTurns[] = {0, 1, 127, 128, 254, 255};
  return r() % 2 ? kTurns[r() % 6] : r() & 0xFF;
}

// n elements `offset` elements past a 32-byte boundary, kGuard more on each side.
constexpr std::size_t kGuard = 16;
template <class T>
struct Canvas {
  std::vector<T> store;
  std::size_t start = 0, n = 0;
  template <class Gen>
  void Make(std::size_t count, std::size_t offset, Gen gen) {
    store.assign(count + offset + 2 * kGuard + 32, 0);
    const auto addr = reinterpret_cast<std::uintptr_t>(store.data() + kGuard);
    start = kGuard + (32 - addr % 32) % 32 / sizeof(T) + offset, n = count;
    for (std::size_t i = start - kGuard; i < start + n + kGuard; ++i) store[i] = static_cast<T>(gen());
  }
  T *Data() { return store.data() + start; }
  void Fill(u32 v) { std::fill(Data(), Data() + n, static_cast<T>(v)); }
  void AppendWindow(std::vector<u32> &out) const {
    out.insert(out.end(), store.begin() + (start - kGuard), store.begin() + (start + n + kGuard));
  }
};

struct Geometry {
  u32 sw, sh, sl, st, dw, dh, dl, dt, rw, rh;  // source (or mask) and destination groups, region
};

struct Scene {
  int m = 0;
  Geometry g{};
  u32 aw = 13, ah = 1, al = 2, at = 1;  // own-geometry alpha buffer; its height is not used
  u32 colour = 0, background = 0;
  u8 opacity = 255;
  std::vector<u8> lookup;  // empty: none
  Canvas<u32> px, dst;     // colour source, destination
  Canvas<u8> bytes, alpha;  // grey or mask source, alpha buffer
  Canvas<u16> words;        // 12-bit grey source

  // Source buffers hold every element a member may read: the mask members
  // read as many rows and columns as the destination allows.
  void Allocate(Rng &rng, bool unaligned) {
    const u32 rows = std::min(g.dh, g.dt + g.rh) - g.dt, cols = std::min(g.dw, g.dl + g.rw) - g.dl;
    auto need = [&](u32 w, u32 h, u32 l, u32 t) {
      return std::max<std::size_t>(std::size_t(w) * h, rows ? std::size_t(t + rows - 1) * w + l + cols : 0);
    };
    auto off = [&](u32 lo, u32 hi) { return unaligned ? lo + rng() % (hi - lo + 1) : 0; };
    auto pixel = [&] { return (rng() & 0x00FFFF00u) | Byte(rng) | Byte(rng) << 24; };
    auto byte = [&] { return Byte(rng); };
    auto word = [&] {
      static const u16 kTurns[] = {0, 254, 255, 256, 4095, 4096, 65279, 65280, 65535};
      return rng() % 2 ? kTurns[rng() % 9] : rng() & 0xFFFF;
    };
    px.Make(need(g.sw, g.sh, g.sl, g.st), off(1, 3), pixel);
    dst.Make(std::size_t(g.dw) * g.dh, off(1, 3), rng);
    bytes.Make(need(g.sw, g.sh, g.sl, g.st), off(0, 31), byte);
    alpha.Make(m == kAlphaBufferOwn ? need(aw, ah, al, at) : need(g.sw, g.sh, g.sl, g.st), off(0, 31), byte);
    words.Make(need(g.sw, g.sh, g.sl, g.st), off(0, 15), word);
  }
  std::vector<u32> Windows() const {
    std::vector<u32> out;
    px.AppendWindow(out), dst.AppendWindow(out), bytes.AppendWindow(out), alpha.AppendWindow(out);
    words.AppendWindow(out);
    return out;
  }
  std::string Describe(int mode) const {
    std::ostringstream o;
    o << kNames[m] << (mode == 0 ? ", exact" : mode == 1 ? ", fast" : ", fast asked, flag clear")
      << ", source " << g.sw << "x" << g.sh << " at " << g.sl << "," << g.st << ", destination " << g.dw << "x"
      << g.dh << " at " << g.dl << "," << g.dt << ", region " << g.rw << "x" << g.rh << ", opacity "
      << int(opacity) << std::hex << ", colour 0x" << colour << ", background 0x" << background
      << (lookup.empty() ? "" : ", with lookup");
    return o.str();
  }
};

// ---- The library and the models ---------------------------------------

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
    case kOnBackground: AlphaBlendColorOnBGToTRC(k, s.background, B, SRC, DST, o, REGION, ex); break;
    case kAlphaOnly: AlphaBlendAlphaToTRC(u8(k >> 24), B, SRC, DST, o, REGION, ex); break;
    default:
      AlphaBlendColorWithAlphaBlueOfTrcToTrc(P, SRC, k, D, o, g.dw, g.dh, g.dl, g.dt, REGION, s.m == kBlueFlat,
                                             s.m == kBlueScaled);
  }
#undef SRC
#undef DST
#undef REGION
  ostrel::frame::SetFastFormFlagForTesting(loadFlag);
}

// Exact: W = (c * o) / 255 and d + ((s - d) * W) / 255 truncated toward zero.
// Fast:  w = (c * o) >> 8 and d + floor(((s - d) * w) / 256).
// Channels are stored as bytes; blue, green and red move, alpha stays.
int Weight(int c, int o, bool fast) { return c * o / (fast ? 256 : 255); }
int MixChannel(int d, int s, int w, bool fast) {
  const int p = (s - d) * w;
  return (d + (!fast ? p / 255 : p >= 0 ? p / 256 : -((255 - p) / 256))) & 0xFF;
}
u32 Mix(u32 d, u32 s, int w, bool fast) {
  u32 out = d & 0xFF000000u;
  for (int sh = 0; sh < 24; sh += 8) out |= u32(MixChannel(d >> sh & 0xFF, s >> sh & 0xFF, w, fast)) << sh;
  return out;
}

// p: source pixel; a: alpha-buffer byte.
u32 ColourModel(const Scene &s, bool fast, u32 d, u32 p, u32 a) {
  switch (s.m) {
    case kTrcToTrc: return Mix(d, p, Weight(p >> 24, s.opacity, fast), fast);
    case kNoAlpha: return Mix(d, p, Weight(255, s.opacity, fast), fast);
    case kNoAlphaToTrc: return Mix(d, p, s.opacity, fast);
    default: return Mix(d, p, Weight(a, s.opacity, fast), fast);
  }
}

// v: grey value; a: alpha-buffer byte; word: 16-bit grey.
u32 GreyModel(const Scene &s, bool fast, u32 d, u32 v, u32 a, u32 word) {
  const u32 k = s.colour;
  const int o = s.opacity;
  if (!s.lookup.empty() && TakesLookup(s.m)) v = s.lookup[v];
  switch (s.m) {
    case kL08: return Mix(d, k, Weight(v, o, fast), fast);
    case kL08Inverted: return Mix(d, k, Weight(255 - v, o, fast), fast);
    case kL08EraseA: return v == 0 ? d : Mix(d, k, Weight(v, o, false), false) & 0x00FFFFFFu;
    case kQuickMask: return v == 0 ? k : Mix(d, k, Weight(255 - v, o, false), false);
    case kL08Grey: return Mix(d, v * 0x010101u, Weight(a, o, false), false);
    default: return Mix(d, k, Weight(fast ? word >> 8 : word / 255, o, fast), fast);
  }
}

// v: mask byte; p: source pixel (its blue byte is the coverage).
u32 SolidModel(const Scene &s, bool fast, u32 d, u32 v, u32 p, bool oddLast) {
  const u32 k = s.colour, b = p & 0xFF;
  const int o = s.opacity;
  switch (s.m) {
    case kConstAlpha: return Mix(d, k, k >> 24, fast);
    case kColour: return Mix(d, k, Weight(v, o, fast), fast);
    case kColourInverted: return Mix(d, k, Weight(fast && !oddLast ? 255 - v : v, o, fast), fast);
    case kColourFlat: return Mix(d, k, Weight(v ? 255 : 0, o, false), false);
    case kOnBackground: return v == 0 ? d : Mix(d, Mix(s.background, k, v, false), o, false);
    case kAlphaOnly: {
      const int a = d >> 24, value = k >> 24, w = Weight(v, o, false);
      return (d & 0x00FFFFFFu) | u32(a + (value - a) * w / 255) << 24;
    }
    case kBlueFlat: return b ? (d & 0xFF000000u) | (k & 0x00FFFFFFu) : d;
    case kBlueScaled:
      if (o == 255) {
        u32 out = d & 0xFF000000u;
        for (int sh = 0; sh < 24; sh += 8) out |= (b * ((k >> sh) & 0xFF) / 255) << sh;
        return b ? out : d;
      }
      return Mix(d, k, Weight(b, o, false), false);
    default: return Mix(d, k, Weight(b, o, false), false);
  }
}

void RunModel(Scene &s, int mode) {
  const bool fast = mode == 1 && HasFastForm(s.m);
  const Geometry &g = s.g;
  u32 cols = std::min(g.rw, g.dw - g.dl), rows = std::min(g.rh, g.dh - g.dt);
  if (!ClipsToDestinationOnly(s.m)) cols = std::min(cols, g.sw - g.sl), rows = std::min(rows, g.sh - g.st);
  for (u32 j = 0; j < rows; ++j) {
    for (u32 i = 0; i < cols; ++i) {
      const std::size_t si = std::size_t(g.st + j) * g.sw + g.sl + i;
      const std::size_t ai = s.m == kAlphaBufferOwn ? std::size_t(s.at + j) * s.aw + s.al + i : si;
      u32 &d = s.dst.Data()[std::size_t(g.dt + j) * g.dw + g.dl + i];
      const u32 p = s.px.Data()[si], v = s.bytes.Data()[si], a = s.alpha.Data()[ai];
      d = s.m < kFirstGrey    ? ColourModel(s, fast, d, p, a)
          : s.m < kFirstSolid ? GreyModel(s, fast, d, v, a, s.words.Data()[si])
                              : SolidModel(s, fast, d, v, p, cols % 2 == 1 && i == cols - 1);
    }
  }
}

// ---- Scenes ----------------------------------------------------------------

std::vector<u8> RandomTable(Rng &rng) {
  std::vector<u8> table(256);
  for (u8 &e : table) e = u8(Byte(rng));
  return table;
}

// A region of up to 67 columns and 4 rows, buffers that hold it or end up to
// 3 columns or 2 rows short of it, pointers 1..3 pixels past a 32-byte
// boundary (byte and word buffers at any offset).
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
  edge(g.rw, 3, g.sl, g.sw), edge(g.rh, 2, g.st, g.sh), edge(g.rw, 3, g.dl, g.dw), edge(g.rh, 2, g.dt, g.dh);
  s.aw = g.rw + 3 + rng() % 3, s.ah = 1 + rng() % 3, s.al = rng() % 4, s.at = rng() % (s.ah + 1);
  auto colour = [&] { return Byte(rng) | Byte(rng) << 8 | Byte(rng) << 16 | rng() << 24; };
  s.colour = colour(), s.background = colour(), s.opacity = u8(Byte(rng));
  if (TakesLookup(m) && rng() % 3 != 0) s.lookup = RandomTable(rng);
  s.Allocate(rng, true);
  return s;
}

}  // namespace

std::vector<std::uint32_t> TrcBlendRandomRun(int member, bool exact, unsigned seed, std::string *what) {
  Scene s = RandomScene(member, seed);
  if (what) *what = s.Describe(exact ? 0 : 1);
  RunLibrary(s, exact ? 0 : 1);
  return s.Windows();
}
int TrcBlendMemberCount() { return kMemberCount; }

namespace {

// Counts mismatches, keeps the first.
struct Tally {
  long bad = 0;
  std::string first;
  void Check(bool ok, const std::string &what) {
    if (!ok && bad++ == 0) first = what;
  }
};

// Runs body(name) under each instruction set the processor has.
template <class Body>
void UnderEveryIsa(Body body) {
  static const char *const kIsas[] = {"scalar", "SSE2", "AVX2"};
  for (int isa = 0; isa <= int(ostrel::simd::SupportedIsa()); ++isa) {
    ostrel::simd::LimitIsaForTesting(ostrel::simd::Isa(isa));
    body(std::string(kIsas[isa]) + ": ");
  }
  ostrel::simd::LimitIsaForTesting(ostrel::simd::Isa::kAvx2);
}

// ---- Every member on edge geometries and random scenes ---------------------

const Geometry kGeometries[] = {
    // sw sh sl st  dw dh dl dt  rw rh
    {9, 5, 1, 1, 8, 6, 2, 1, 5, 3},  // inside, odd columns
    {9, 5, 1, 1, 8, 6, 2, 1, 6, 3},  // inside, even columns
    {9, 5, 1, 1, 8, 6, 2, 1, 1, 4},  // one column
    {9, 5, 1, 1, 8, 6, 2, 1, 0, 3},  // no columns
    {9, 5, 1, 1, 8, 6, 2, 1, 5, 0},  // no rows
    {9, 5, 9, 1, 8, 6, 2, 1, 5, 3},  // source left at its width
    {9, 5, 1, 5, 8, 6, 2, 1, 5, 3},  // source top at its height
    {9, 5, 1, 1, 8, 6, 2, 6, 5, 3},  // destination top at its height
    {20, 5, 1, 1, 8, 6, 4, 1, 7, 3},  // past the destination's right edge only
    {8, 5, 4, 1, 20, 6, 2, 1, 7, 3},  // past the source's right edge only (mask rows overlap)
    {9, 2, 1, 1, 8, 6, 2, 1, 5, 4},   // past the source's bottom only
    {9, 6, 1, 1, 8, 3, 2, 1, 5, 4},   // past the destination's bottom only
    {2100, 2, 3, 0, 2103, 3, 1, 1, 2100, 2},  // rows longer than a lookup stretch
};
constexpr unsigned kPerGeometry = 3, kRandomScenes = 40;

// Each geometry with random contents and no, an identity or a random lookup,
// then random scenes; each in the three modes, under every instruction set.
void CheckFamily(int first, int last) {
  std::vector<u8> identity(256);
  std::iota(identity.begin(), identity.end(), 0);
  Tally t;
  UnderEveryIsa([&](const std::string &isa) {
    for (int m = first; m < last; ++m) {
      for (unsigned n = 0; n < kPerGeometry * std::size(kGeometries) + kRandomScenes; ++n) {
        Scene scene = RandomScene(m, n);
        if (n < kPerGeometry * std::size(kGeometries)) {
          Rng rng(n * 31 + m);
          scene.g = kGeometries[n / kPerGeometry], scene.aw = 13, scene.ah = 1, scene.al = 2, scene.at = 1;
          scene.lookup.clear();
          if (TakesLookup(m) && n % 3) scene.lookup = n % 3 == 1 ? identity : RandomTable(rng);
          scene.Allocate(rng, false);
        }
        for (int mode = 0; mode < 3; ++mode) {
          Scene lib = scene, model = scene, plain = scene;
          RunLibrary(lib, mode), RunModel(model, mode);
          t.Check(lib.Windows() == model.Windows(), isa + lib.Describe(mode));
          if (scene.lookup != identity) continue;
          plain.lookup.clear(), RunLibrary(plain, mode);
          t.Check(lib.Windows() == plain.Windows(), isa + "identity lookup != none, " + lib.Describe(mode));
        }
      }
    }
  });
  EXPECT_EQ(t.bad, 0) << "library differs from the model; first: " << t.first;
}

TEST(ColourToColourBlend, EveryMemberMatchesModel) { CheckFamily(0, kFirstGrey); }
TEST(GreyToColourBlend, EveryMemberMatchesModel) { CheckFamily(kFirstGrey, kFirstSolid); }
TEST(SolidColourBlend, EveryMemberMatchesModel) { CheckFamily(kFirstSolid, kMemberCount); }

// ---- Hand-computed values ----------------------------------------------------

// A 3 x 1 region of identical pixels: src is the source pixel, grey or mask
// byte or 16-bit word; aux the alpha-buffer byte or the background. Pixel 2
// ends a row of odd length. lut 1: the lookup 255 - g.
struct Pin {
  int m;
  u8 opacity;
  u32 src, aux, dst, colour, exact, fast, fastOddLast;
  int lut;
};
const Pin kPins[] = {
    {kTrcToTrc, 255, 0xFFFFFFFF, 0, 0x7F000000, 0, 0x7FFFFFFF, 0x7FFDFDFD, 0x7FFDFDFD, 0},  // 253 fast
    {kTrcToTrc, 255, 0x00FFFFFF, 0, 0x7F102030, 0, 0x7F102030, 0x7F102030, 0x7F102030, 0},  // alpha 0
    {kTrcToTrc, 0, 0xFFFFFFFF, 0, 0x7F102030, 0, 0x7F102030, 0x7F102030, 0x7F102030, 0},    // opacity 0
    {kTrcToTrc, 255, 0x80000000, 0, 0x01C8C8C8, 0, 0x01646464, 0x01646464, 0x01646464, 0},  // 200 -> 100
    {kTrcToTrc, 255, 0x7F000000, 0, 0x01C8C8C8, 0, 0x01656565, 0x01656565, 0x01656565, 0},  // W 127: 101
    {kNoAlpha, 255, 0x00FFFFFF, 0, 0x12000000, 0, 0x12FFFFFF, 0x12FDFDFD, 0x12FDFDFD, 0},
    {kNoAlphaToTrc, 255, 0x00FFFFFF, 0, 0x12000000, 0, 0x12FFFFFF, 0x12FEFEFE, 0x12FEFEFE, 0},
    {kNoAlpha, 128, 0x00FFFFFF, 0, 0x12000000, 0, 0x12808080, 0x127E7E7E, 0x127E7E7E, 0},
    {kNoAlphaToTrc, 128, 0x00FFFFFF, 0, 0x12000000, 0, 0x12808080, 0x127F7F7F, 0x127F7F7F, 0},
    {kAlphaBuffer, 255, 0x00FFFFFF, 255, 0x7F000000, 0, 0x7FFFFFFF, 0x7FFDFDFD, 0x7FFDFDFD, 0},
    {kAlphaBufferOwn, 255, 0x00FFFFFF, 255, 0x7F000000, 0, 0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF, 0},
    {kL08, 255, 255, 0, 0x33000000, 0xAAFFFFFF, 0x33FFFFFF, 0x33FDFDFD, 0x33FDFDFD, 0},
    {kL08, 255, 0, 0, 0x33000000, 0xAAFFFFFF, 0x33FFFFFF, 0x33FDFDFD, 0x33FDFDFD, 1},
    {kL08Inverted, 255, 0, 0, 0x33000000, 0xAAFFFFFF, 0x33FFFFFF, 0x33FDFDFD, 0x33FDFDFD, 0},
    {kL08Inverted, 255, 255, 0, 0x33102030, 0xAAFFFFFF, 0x33102030, 0x33102030, 0x33102030, 0},
    {kL08EraseA, 0, 1, 0, 0xAB123456, 0xFF000000, 0x00123456, 0x00123456, 0x00123456, 0},
    {kL08EraseA, 255, 0, 0, 0xAB123456, 0xFF000000, 0xAB123456, 0xAB123456, 0xAB123456, 0},
    {kL08EraseA, 0, 255, 0, 0xAB123456, 0xFF000000, 0xAB123456, 0xAB123456, 0xAB123456, 1},  // looked up: 0
    {kL08EraseA, 0, 0, 0, 0xAB123456, 0xFF000000, 0x00123456, 0x00123456, 0x00123456, 1},    // looked up: 255
    {kQuickMask, 0, 0, 0, 0x01020304, 0xA1B2C3D4, 0xA1B2C3D4, 0xA1B2C3D4, 0xA1B2C3D4, 0},
    {kQuickMask, 255, 255, 0, 0x01020304, 0xA1B2C3D4, 0x01020304, 0x01020304, 0x01020304, 0},
    {kL08Grey, 255, 200, 255, 0x44000000, 0, 0x44C8C8C8, 0x44C8C8C8, 0x44C8C8C8, 0},
    {kL12, 255, 4095, 0, 0x00000000, 0x00FFFFFF, 0x00101010, 0x000D0D0D, 0x000D0D0D, 0},
    {kL12, 255, 40000, 0, 0x00000000, 0x00FFFFFF, 0x009C9C9C, 0x009A9A9A, 0x009A9A9A, 0},
    // W = (65535 / 255) * 255 / 255 = 257: the channel leaves 0..255 and keeps its low byte.
    {kL12, 255, 65535, 0, 0x00000000, 0x00FFFFFF, 0x00010101, 0x00FDFDFD, 0x00FDFDFD, 0},
    {kConstAlpha, 255, 0, 0, 0x5A102030, 0x00FFFFFF, 0x5A102030, 0x5A102030, 0x5A102030, 0},
    {kConstAlpha, 255, 0, 0, 0x5A000000, 0xFFFFFFFF, 0x5AFFFFFF, 0x5AFEFEFE, 0x5AFEFEFE, 0},
    {kColour, 255, 255, 0, 0x3C000000, 0x00FFFFFF, 0x3CFFFFFF, 0x3CFDFDFD, 0x3CFDFDFD, 0},
    {kColourInverted, 255, 0, 0, 0x3C000000, 0x00FFFFFF, 0x3C000000, 0x3CFDFDFD, 0x3C000000, 0},
    {kColourFlat, 255, 1, 0, 0x3C000000, 0x00FFFFFF, 0x3CFFFFFF, 0x3CFFFFFF, 0x3CFFFFFF, 0},
    {kOnBackground, 255, 255, 0x00402010, 0x3C000000, 0x00C0A080, 0x3CC0A080, 0x3CC0A080, 0x3CC0A080, 0},
    {kOnBackground, 255, 128, 0x00402010, 0x3C000000, 0x00C0A080, 0x3C806048, 0x3C806048, 0x3C806048, 0},
    {kOnBackground, 255, 0, 0x00402010, 0x3C000000, 0x00C0A080, 0x3C000000, 0x3C000000, 0x3C000000, 0},
    {kAlphaOnly, 255, 255, 0, 0xC8123456, 0x00000000, 0x00123456, 0x00123456, 0x00123456, 0},
    {kBlueFlat, 128, 0x12345680, 0, 0x77323232, 0x00C8C8C8, 0x77C8C8C8, 0x77C8C8C8, 0x77C8C8C8, 0},
    {kBlueFlat, 255, 0x12345600, 0, 0x77323232, 0x00C8C8C8, 0x77323232, 0x77323232, 0x77323232, 0},
    {kBlue, 128, 0x12345680, 0, 0x77323232, 0x00C8C8C8, 0x77575757, 0x77575757, 0x77575757, 0},
    {kBlueScaled, 255, 0x12345680, 0, 0x77323232, 0x00C8C8C8, 0x77646464, 0x77646464, 0x77646464, 0},
    {kBlue, 255, 0x12345680, 0, 0x77323232, 0x00C8C8C8, 0x777D7D7D, 0x777D7D7D, 0x777D7D7D, 0},
};

void CheckPins(int first, int last) {
  std::vector<u8> inverse(256);
  std::iota(inverse.rbegin(), inverse.rend(), 0);
  Tally t;
  UnderEveryIsa([&](const std::string &isa) {
    for (const Pin &p : kPins) {
      for (int mode = 0; mode < 3 && p.m >= first && p.m < last; ++mode) {
        Rng rng(1);
        Scene lib;
        lib.m = p.m, lib.g = {3, 1, 0, 0, 3, 1, 0, 0, 3, 1}, lib.aw = 3, lib.al = lib.at = 0;
        lib.opacity = p.opacity, lib.colour = p.colour, lib.background = p.aux;
        if (p.lut) lib.lookup = inverse;
        lib.Allocate(rng, false);
        lib.px.Fill(p.src), lib.bytes.Fill(p.src), lib.words.Fill(p.src), lib.alpha.Fill(p.aux);
        lib.dst.Fill(p.dst);
        Scene model = lib;
        RunLibrary(lib, mode), RunModel(model, mode);
        for (int i = 0; i < 3; ++i) {
          const u32 want = mode != 1 ? p.exact : i == 2 ? p.fastOddLast : p.fast;
          std::ostringstream o;
          o << isa << "pin " << (&p - kPins) << " (" << lib.Describe(mode) << ") pixel " << i << std::hex
            << ": library 0x" << lib.dst.Data()[i] << ", model 0x" << model.dst.Data()[i] << ", want 0x"
            << want;
          t.Check(lib.dst.Data()[i] == want && model.dst.Data()[i] == want, o.str());
        }
      }
    }
  });
  EXPECT_EQ(t.bad, 0) << t.first;
}

TEST(ColourToColourBlend, PinnedValues) { CheckPins(0, kFirstGrey); }
TEST(GreyToColourBlend, PinnedValues) { CheckPins(kFirstGrey, kFirstSolid); }
TEST(SolidColourBlend, PinnedValues) { CheckPins(kFirstSolid, kMemberCount); }

}  // namespace
}  // namespace ostrel_trc_test
