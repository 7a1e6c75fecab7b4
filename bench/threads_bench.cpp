// One large blend on one thread against the same blend cut into row bands
// over the library's worker pool (examples/band_split.h), as a host would run
// it. The ratio of a pair is the speed-up the pool gives.
//
//   AlphaBlendTRCToTRC/7680x4320/<form>/bands   a TRC layer with random alpha
//       over a TRC picture, opacity 255, in its fast and exact form; the peer
//       ("one-thread") is the single call over the whole picture.
//
// Both sides compute the same pixels, so their outputs are compared byte for
// byte.
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "../examples/band_split.h"
#include "Ostrel.h"
#include "ratio.h"

namespace {

using ostrel_bench::AlignedBuffer;
using ostrel_bench::Pair;

constexpr unsigned int kWidth = 7680;
constexpr unsigned int kHeight = 4320;
constexpr double kTarget = 1.8;  // on 2 processors

using ostrel_bench::Mix;

void Blend(const std::uint32_t *src, std::uint32_t *dst, unsigned int top, unsigned int rows,
           bool exact) {
  AlphaBlendTRCToTRC(const_cast<std::uint32_t *>(src), kWidth, kHeight, 0, top, dst, kWidth,
                     kHeight, 0, top, 255, kWidth, rows, exact);
}

const bool kRegistered = [] {
  const std::size_t pixels = std::size_t{kWidth} * kHeight;
  // Shared by both forms; the buffers live as long as the program.
  auto *src = new AlignedBuffer(pixels * 4);
  auto *dst = new AlignedBuffer(pixels * 4);
  auto *s = static_cast<std::uint32_t *>(src->data());
  auto *d = static_cast<std::uint32_t *>(dst->data());
  for (bool exact : {false, true}) {
    Pair p;
    p.label = std::string("AlphaBlendTRCToTRC/7680x4320/") + (exact ? "exact" : "fast") + "/bands";
    p.peerName = "one-thread";
    p.ours = [=] {
      ostrel_examples::RunInRowBands(
          kHeight, [=](unsigned int top, unsigned int rows) { Blend(s, d, top, rows, exact); });
    };
    p.peer = [=] { Blend(s, d, 0, kHeight, exact); };
    p.pixels = static_cast<std::int64_t>(pixels);
    p.target = kTarget;
    p.reset = [=] {
      for (std::size_t i = 0; i < pixels; ++i) {
        s[i] = Mix(2 * i + 1);
        d[i] = Mix(2 * i + 2);
      }
    };
    p.output = {d, pixels * 4};
    ostrel_bench::AddPair(std::move(p));
  }
  return true;
}();

}  // namespace
