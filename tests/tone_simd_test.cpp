// The grey tone members through every instruction set the processor offers,
// in both forms, on random layouts (overhanging regions, offsets, rows up to
// 2500 pixels so the lookup stretches turn over, null tone, alpha and
// protection, and in-place calls): each call's buffers must come out as under
// the scalar kernels, and those as the same region run one column at a time,
// whose rows are too narrow for any kernel and run the row functions.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Ostrel.h"
#include "frame/dispatch.h"
#include "grey_test_util.h"

namespace {

using namespace grey_test;
using ostrel::frame::simd::Isa;

enum Member { kTone, kLuma, kDarker, kLighter, kMove };
const char *const kNames[] = {"TransferToneL08ToL08", "TransferToneTRCToL08",
                              "DarkerL08ToL08WithAlpha", "LighterL08ToL08WithAlpha",
                              "MoveToneL08ToL08Prot"};

// src (or trc, for the luminance) and aux (alpha or protection) share one
// geometry; dst has its own, or is src itself for an in-place call.
struct Call {
  Member m;
  bool exact, auxNull, toneNull, inPlace;
  u8 opacity;
  u32 sw, sh, sl, st, dw, dh, dl, dt, rw, rh;
};

struct Buffers {
  std::vector<u8> src, aux, dst;
  std::vector<u32> trc;
  bool operator==(const Buffers &o) const {
    return src == o.src && aux == o.aux && dst == o.dst && trc == o.trc;
  }
};

// Runs columns [column, column + width) of the call's region.
void RunColumns(const Call &c, Buffers &b, const u8 *tone, u32 column, u32 width) {
  u8 *const src = b.src.data(), *const aux = c.auxNull ? nullptr : b.aux.data();
  u8 *const dst = c.inPlace ? src : b.dst.data();
  const u8 *const t = c.toneNull ? nullptr : tone;
  const u32 sl = c.sl + column, dl = c.dl + column;
  // clang-format off
  switch (c.m) {
    case kTone: TransferToneL08ToL08(src, c.sw, c.sh, sl, c.st, dst, c.dw, c.dh, dl, c.dt, t, c.opacity, width, c.rh, c.exact); break;
    case kLuma: TransferToneTRCToL08(b.trc.data(), c.sw, c.sh, sl, c.st, dst, c.dw, c.dh, dl, c.dt, t, c.opacity, width, c.rh, c.exact); break;
    case kDarker: DarkerL08ToL08WithAlpha(src, aux, c.sw, c.sh, sl, c.st, dst, c.dw, c.dh, dl, c.dt, c.opacity, width, c.rh, c.exact); break;
    case kLighter: LighterL08ToL08WithAlpha(src, aux, c.sw, c.sh, sl, c.st, dst, c.dw, c.dh, dl, c.dt, c.opacity, width, c.rh, c.exact); break;
    case kMove: MoveToneL08ToL08Prot(src, c.sw, c.sh, sl, c.st, aux, c.sw, c.sh, sl, c.st, dst, c.dw, c.dh, dl, c.dt, c.opacity, width, c.rh); break;
  }
  // clang-format on
}

std::string Describe(const Call &c) {
  return std::string(kNames[c.m]) + (c.exact ? " exact" : " fast") + ", opacity " +
         std::to_string(c.opacity) + (c.auxNull ? ", aux null" : "") +
         (c.toneNull ? ", tone null" : "") + (c.inPlace ? ", in place" : "") + ", src " +
         std::to_string(c.sw) + "x" + std::to_string(c.sh) + " at " + std::to_string(c.sl) + "," +
         std::to_string(c.st) + ", dst " + std::to_string(c.dw) + "x" + std::to_string(c.dh) +
         " at " + std::to_string(c.dl) + "," + std::to_string(c.dt) + ", region " +
         std::to_string(c.rw) + "x" + std::to_string(c.rh);
}

TEST(ToneKernels, EveryIsaMatchesScalarAndTheRowFunctions) {
  const FastFlag fast(1);
  std::mt19937 rng(61);
  const auto tone = Random<u8>(256, [&] { return rng(); });
  const u8 opacities[] = {255, 0, 1, 128, 200};
  for (int round = 0; round < 1500; ++round) {
    Call c{};
    c.m = static_cast<Member>(round % 5);
    c.exact = c.m == kMove || rng() % 2 == 0;
    c.auxNull = rng() % 4 == 0;
    c.toneNull = rng() % 4 == 0;
    c.inPlace = (c.m == kTone || c.m == kDarker || c.m == kLighter) && rng() % 6 == 0;
    c.opacity = opacities[rng() % 5];
    const bool wide = round % 25 < 2;
    c.sw = wide ? 1000 + rng() % 1500 : 1 + rng() % 70;
    c.sh = wide ? 2 : 1 + rng() % 6;
    c.sl = rng() % (wide ? 8 : c.sw + 2);
    c.st = rng() % (c.sh + 1);
    c.dw = c.inPlace ? c.sw : wide ? c.sw + rng() % 8 : 1 + rng() % 70;
    c.dh = c.inPlace ? c.sh : 1 + rng() % 6;
    c.dl = c.inPlace && rng() % 2 ? c.sl : rng() % (wide ? 8 : c.dw + 2);
    c.dt = c.inPlace ? c.st : rng() % (c.dh + 1);
    c.rw = wide ? c.sw : 1 + rng() % 75;
    c.rh = c.inPlace ? 1 : 1 + rng() % 7;  // in place: one row, so column order is pixel order
    Buffers start;
    start.src = TurnBytes(c.sw * c.sh, rng);
    start.aux = Random<u8>(c.sw * c.sh, [&] { return rng() % 2 ? 0 : TurnByte(rng); });
    start.dst = TurnBytes(c.dw * c.dh, rng);
    if (c.m == kLuma) {
      start.trc = Random<u32>(c.sw * c.sh, [&] {
        return TurnByte(rng) << 24 | TurnByte(rng) << 16 | TurnByte(rng) << 8 | TurnByte(rng);
      });
    }
    Buffers byColumn = start;
    for (u32 column = 0; column < c.rw; ++column) RunColumns(c, byColumn, tone.data(), column, 1);
    Buffers scalar;
    for (const auto &info : ostrel::frame::simd::RunnableIsas()) {
      const ostrel::frame::simd::ScopedIsaLimit limit(info.isa);
      Buffers got = start;
      RunColumns(c, got, tone.data(), 0, c.rw);
      if (info.isa == Isa::kScalar) {
        scalar = got;
        ASSERT_TRUE(got == byColumn) << "scalar kernels against the row functions: " << Describe(c);
      } else {
        ASSERT_TRUE(got == scalar) << info.name << ": " << Describe(c);
      }
    }
  }
}

}  // namespace
