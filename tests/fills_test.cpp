// Colour fills and copies: plain per-pixel models written here, pinned
// examples, and every function run under every instruction set on random
// buffers, comparing whole buffers with their guard elements.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "Ostrel.h"
#include "frame/dispatch.h"

namespace {

using u32 = std::uint32_t;
using Rng = std::mt19937;
namespace simd = ostrel::frame::simd;
constexpr std::size_t kGuard = 32;  // elements checked on each side of a buffer

u32 Pick(Rng &rng, u32 lo, u32 hi) { return std::uniform_int_distribution<u32>(lo, hi)(rng); }

template <class... T>
std::string Str(const T &...v) {
  std::ostringstream o;
  ((o << v << ' '), ...);
  return o.str();
}

// n random elements starting `offset` elements past a 32-byte boundary, with
// kGuard random elements on each side.
template <class T>
class Canvas {
 public:
  Canvas(std::size_t n, std::size_t offset, Rng &rng)
      : n_(n), store_(n + offset + 2 * kGuard + 32) {
    const auto addr = reinterpret_cast<std::uintptr_t>(store_.data() + kGuard);
    start_ = kGuard + (32 - addr % 32) % 32 / sizeof(T) + offset;
    for (std::size_t i = start_ - kGuard; i < start_ + n + kGuard; ++i)
      store_[i] = static_cast<T>(rng());
  }
  T *Data() { return store_.data() + start_; }
  // Guards and contents: element i at kGuard + i.
  std::vector<T> Window() const {
    return {store_.begin() + start_ - kGuard, store_.begin() + start_ + n_ + kGuard};
  }

 private:
  std::size_t n_, start_;
  std::vector<T> store_;
};

// ---- Models -------------------------------------------------------------

// (A fill is a board of one colour.)
void ModelChessboard(u32 *b, u32 width, u32 height, u32 left, u32 top, u32 rw, u32 rh, int phaseX,
                     int phaseY, u32 c1, u32 c2, u32 size) {
  for (u32 y = top; y < height && y - top < rh; ++y) {
    for (u32 i = 0; i < rw; ++i) {
      const double cx = std::floor((double(phaseX) + left + i) / size),
                   cy = std::floor((double(phaseY) + y - top) / size);
      b[y * width + left + i] = std::fmod(std::fabs(cx + cy), 2.0) == 0 ? c1 : c2;
    }
  }
}

struct Pair {
  u32 sw, sh, sl, st, dw, dh, dl, dt, rw, rh;
};

// The region keeps what fits right of both lefts and below both tops.
void ModelCopy(const u32 *s, u32 *d, const Pair &p, bool keyed, u32 key) {
  const u32 cols = std::min({p.rw, p.sw - p.sl, p.dw - p.dl}),
            rows = std::min({p.rh, p.sh - p.st, p.dh - p.dt});
  for (u32 j = 0; j < rows; ++j) {
    for (u32 i = 0; i < cols; ++i) {
      const u32 v = s[(p.st + j) * p.sw + p.sl + i];
      if (!keyed || v != key) d[(p.dt + j) * p.dw + p.dl + i] = v;
    }
  }
}

// ---- Pinned examples ----------------------------------------------------

// Pins the model (the library follows it below): buffer 24 x 24, squares of 8,
// region 16 x 16. Columns count from the buffer's left edge, rows from the
// region's top; phases shift the board, negative ones included.
TEST(Chessboard, PinnedCells) {
  const u32 kC1 = 0xA1B2C3D4u, kC2 = 0x11223344u;
  const struct {
    u32 left, top;
    int phaseX, phaseY;
    u32 i, j, want;  // region column and row, and the expected colour
  } cases[] = {
      {0, 0, 0, 0, 7, 7, kC1},  {0, 0, 0, 0, 8, 0, kC2},  {0, 0, 0, 0, 0, 8, kC2},
      {0, 0, 0, 0, 8, 8, kC1},  {5, 5, 0, 0, 2, 0, kC1},  {5, 5, 0, 0, 3, 0, kC2},
      {5, 5, 0, 0, 0, 7, kC1},  {5, 5, 0, 0, 0, 8, kC2},  {0, 0, -1, 0, 0, 0, kC2},
      {0, 0, -1, 0, 1, 0, kC1}, {0, 0, 0, -1, 0, 0, kC2}, {0, 0, -9, 0, 1, 0, kC2},
  };
  for (const auto &c : cases) {
    std::vector<u32> model(24 * 24, 0);
    ModelChessboard(model.data(), 24, 24, c.left, c.top, 16, 16, c.phaseX, c.phaseY, kC1, kC2, 8);
    EXPECT_EQ(model[(c.top + c.j) * 24 + c.left + c.i], c.want) << "case " << (&c - cases);
  }
}

// ---- Every instruction set against the models ---------------------------

// one(seed, useModel, description) builds the same buffers from the seed and
// returns their windows after the model or the library ran. Counts scalar
// runs that differ from the model and vector runs that differ from scalar.
template <class One>
void CheckEveryIsa(One one) {
  long modelBad = 0, isaBad = 0;
  std::string first;
  const auto isas = simd::RunnableIsas();
  for (int seed = 1; seed <= 3000; ++seed) {
    std::string what;
    const auto model = one(seed, true, what);
    std::remove_const_t<decltype(model)> scalar;
    for (const auto &info : isas) {
      const simd::ScopedIsaLimit limit(info.isa);
      const auto got = one(seed, false, what);
      if (info.isa == simd::Isa::kScalar) {
        scalar = got;
        if (got != model && modelBad++ == 0 && first.empty()) first = "scalar: " + what;
      } else if (got != scalar && isaBad++ == 0 && first.empty()) {
        first = Str(info.name, ":", what);
      }
    }
  }
  EXPECT_EQ(modelBad, 0) << "scalar differs from the model; first: " << first;
  EXPECT_EQ(isaBad, 0) << "vector kernels differ from scalar; first: " << first;
}

// One buffer at a random offset; region inside the columns (whole rows in a
// quarter of the cases), rows may overhang the bottom. A quarter of the
// buffers are wide, for runs past the fill kernels' long-run threshold.
std::vector<u32> RunSingle(int seed, bool model, std::string &what, bool chess) {
  Rng rng(seed);
  const u32 cap = Pick(rng, 0, 3) == 0 ? 700 : 67, w = Pick(rng, 1, cap + 3), h = Pick(rng, 1, 6);
  const u32 rw = Pick(rng, 0, 3) == 0 ? w : Pick(rng, 0, std::min(w, cap));
  const u32 left = Pick(rng, 0, w - rw), top = Pick(rng, 0, h), rh = Pick(rng, 0, h + 2);
  const u32 size = Pick(rng, 1, cap == 67 ? 20 : 700), c1 = rng(), c2 = rng();
  const int px = int(Pick(rng, 0, 200)) - 100, py = int(Pick(rng, 0, 200)) - 100;
  Canvas<u32> b(std::size_t(w) * h, Pick(rng, 0, 3), rng);
  std::vector<u32> out = b.Window();
  what = Str("buffer", w, "x", h, "region", rw, "x", rh, "at", left, top, "phase", px, py, "square",
             size);
  if (model)
    ModelChessboard(out.data() + kGuard, w, h, left, top, rw, rh, px, py, c1, chess ? c2 : c1,
                    size);
  if (!model && chess)
    ChessboardFillTRCBuffer(b.Data(), w, h, left, top, rw, rh, px, py, c1, c2, size);
  if (!model && !chess) FillTRCBuffer(b.Data(), w, h, left, top, rw, rh, c1);
  return model ? out : b.Window();
}

TEST(FillAndChessboard, EveryIsaMatchesModel) {
  for (bool chess : {false, true})
    CheckEveryIsa([=](int seed, bool model, std::string &what) {
      return RunSingle(seed, model, what, chess);
    });
}

// A region wider than the room right of left runs on into the next rows, as
// rows do in memory, but stops at the buffer's last pixel: the model spills
// into spare room past the buffer, which the library must leave alone.
TEST(FillAndChessboard, WideRegionsStopAtTheBuffersEnd) {
  constexpr u32 kSpare = 64, kMark = 0xDEADBEEF;
  const struct {
    u32 w, h, left, top, rw, rh;
  } cases[] = {{5, 3, 2, 2, 6, 1}, {5, 3, 0, 1, 5 * 7, 9}, {4, 4, 3, 0, 4, 4}, {7, 2, 6, 1, 40, 1}};
  for (const auto &c : cases) {
    for (bool chess : {false, true}) {
      std::vector<u32> got(c.w * c.h + kSpare, kMark), want = got;
      ModelChessboard(want.data(), c.w, c.h + kSpare, c.left, c.top, c.rw,
                      std::min(c.rh, c.h - c.top), -3, 2, 1, chess ? 2 : 1, 3);
      std::fill(want.begin() + c.w * c.h, want.end(), kMark);
      if (chess)
        ChessboardFillTRCBuffer(got.data(), c.w, c.h, c.left, c.top, c.rw, c.rh, -3, 2, 1, 2, 3);
      else FillTRCBuffer(got.data(), c.w, c.h, c.left, c.top, c.rw, c.rh, 1);
      EXPECT_EQ(got, want) << "case " << (&c - cases) << (chess ? ", chessboard" : ", fill");
    }
  }
}

// Source and destination anywhere (left <= width, top <= height) at random
// offsets; the region overhangs the right and bottom edges of either. Returns
// both windows. Keyed sources hold the key, near-keys (one bit off, alpha
// included) and other values.
std::vector<u32> RunPair(int seed, bool model, std::string &what, bool keyed) {
  Rng rng(seed);
  Pair p;
  p.sw = Pick(rng, 1, 70), p.sh = Pick(rng, 1, 6), p.sl = Pick(rng, 0, p.sw),
  p.st = Pick(rng, 0, p.sh);
  p.dw = Pick(rng, 1, 70), p.dh = Pick(rng, 1, 6), p.dl = Pick(rng, 0, p.dw),
  p.dt = Pick(rng, 0, p.dh);
  p.rw = Pick(rng, 0, 67), p.rh = Pick(rng, 0, 8);
  const u32 key = rng();
  Canvas<u32> s(std::size_t(p.sw) * p.sh, Pick(rng, 0, 3), rng),
      d(std::size_t(p.dw) * p.dh, Pick(rng, 0, 3), rng);
  for (u32 i = 0, kind; keyed && i < p.sw * p.sh; ++i) {
    if ((kind = Pick(rng, 0, 3)) < 2)
      s.Data()[i] = kind == 0 ? key : key ^ (1u << Pick(rng, 0, 31));
  }
  what = Str("src", p.sw, "x", p.sh, "at", p.sl, p.st, "dst", p.dw, "x", p.dh, "at", p.dl, p.dt,
             "region", p.rw, "x", p.rh);
  std::vector<u32> sw = s.Window(), dw = d.Window();
  if (model) {
    ModelCopy(sw.data() + kGuard, dw.data() + kGuard, p, keyed, key);
  } else {
    if (keyed)
      CopyTRCToTRCIfNotKeyColor(s.Data(), p.sw, p.sh, p.sl, p.st, d.Data(), p.dw, p.dh, p.dl, p.dt,
                                p.rw, p.rh, key);
    else
      Copy2DTRCBufferToTRC(s.Data(), p.sw, p.sh, p.sl, p.st, d.Data(), p.dw, p.dh, p.dl, p.dt, p.rw,
                           p.rh);
    sw = s.Window(), dw = d.Window();
  }
  sw.insert(sw.end(), dw.begin(), dw.end());
  return sw;
}

TEST(Copy, PlainAndKeyedEveryIsaMatchesModel) {
  for (bool keyed : {false, true})
    CheckEveryIsa(
        [=](int seed, bool model, std::string &what) { return RunPair(seed, model, what, keyed); });
}

TEST(Pack24, EveryIsaMatchesModel) {
  CheckEveryIsa([](int seed, bool model, std::string &what) {
    Rng rng(seed);
    const u32 n = Pick(rng, 0, 67), doff = Pick(rng, 0, 31);
    Canvas<u32> s(n, Pick(rng, 0, 3), rng);
    Canvas<std::uint8_t> d(3 * std::size_t(n), doff, rng);
    std::vector<std::uint8_t> out = d.Window();
    what = Str(n, "pixels, dst +", doff, "bytes");
    if (!model) ConvertBufferFrom32To24Bits(s.Data(), d.Data(), n);
    for (u32 i = 0; model && i < 3 * n; ++i)
      out[kGuard + i] = std::uint8_t(s.Data()[i / 3] >> (8 * (i % 3)));
    return model ? out : d.Window();
  });
}

}  // namespace
