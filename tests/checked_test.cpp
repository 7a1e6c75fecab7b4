// The checked build: caller errors stop the process with a message naming the
// exported function and the failed condition; valid calls, edge cases
// included, run through.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <vector>

#include "Ostrel.h"

namespace {

unsigned int g_a[64], g_b[64];

TEST(CheckedBuildDeathTest, CallerErrorsAbortNamingFunctionAndCondition) {
  const struct {
    std::function<void()> call;
    const char *message;
  } errors[] = {
      {[] { FillTRCBuffer(g_a, 8, 8, 2, 0, 7, 1, 0); },
       "Ostrel: caller error in FillTRCBuffer: .*left.* \\+ regionWidth <= .*width"},
      {[] { FillTRCBuffer(g_a, 8, 8, 0, 9, 1, 1, 0); },
       "Ostrel: caller error in FillTRCBuffer: .*top <= .*height"},
      {[] { ChessboardFillTRCBuffer(g_a, 8, 8, 0, 0, 8, 8, 0, 0, 1, 2, 0); },
       "Ostrel: caller error in ChessboardFillTRCBuffer: squareSize != 0"},
      {[] { ChessboardFillTRCBuffer(g_a, 8, 8, 1, 0, 8, 8, 0, 0, 1, 2, 4); },
       "Ostrel: caller error in ChessboardFillTRCBuffer: .*left.* \\+ regionWidth <= .*width"},
      {[] { Copy2DTRCBufferToTRC(g_a, 8, 8, 9, 0, g_b, 8, 8, 0, 0, 1, 1); },
       "Ostrel: caller error in Copy2DTRCBufferToTRC: .*src.left <= src.width"},
      {[] { Copy2DTRCBufferToTRC(g_a, 8, 8, 0, 0, g_b, 8, 8, 0, 9, 1, 1); },
       "Ostrel: caller error in Copy2DTRCBufferToTRC: .*dst.top <= dst.height"},
      {[] { CopyTRCToTRCIfNotKeyColor(g_a, 8, 8, 0, 0, g_b, 8, 8, 9, 0, 1, 1, 0); },
       "Ostrel: caller error in CopyTRCToTRCIfNotKeyColor: .*dst.left <= dst.width"},
      {[] { CopyTRCToTRCIfNotKeyColor(g_a, 8, 8, 0, 9, g_b, 8, 8, 0, 0, 1, 1, 0); },
       "Ostrel: caller error in CopyTRCToTRCIfNotKeyColor: .*src.top <= src.height"},
      {[] {
         int x, y;
         SetInRapp(-5, 3, 0, 80, 0, eDropVertical, &x, &y);
       },
       "Ostrel: caller error in SetInRapp: repeatWidth != 0"},
      {[] {
         int count, x[5], w[5], y[5], h[5];
         CalcPosAndSizeInRepBuffer(-5, 3, 1, 1, 0, 80, eDropVertical, 0, &count, x, w, y, h, false);
       },
       "Ostrel: caller error in CalcPosAndSizeInRepBuffer: repeatWidth != 0"},
      {[] { kgV(6, 0); }, "Ostrel: caller error in kgV: b != 0"},
      {[] {
         unsigned char grey[64] = {};
         AlphaBlendDensityWithAlphaBlueOfTrcToL08(g_a, 8, 8, 9, 0, 1, grey, 255, 8, 8, 0, 0, 1, 1,
                                                  false, false);
       },
       "Ostrel: caller error in AlphaBlendDensityWithAlphaBlueOfTrcToL08: .*src.left <= src.width"},
      {[] {
         const double xs[] = {1.0}, ys[] = {2.0};
         GetLinearInterpoliertenWert(xs, ys, 1, 0.5);
       },
       "Ostrel: caller error in GetLinearInterpoliertenWert: count >= 2"},
      {[] {
         unsigned char mask[4] = {5, 5, 5, 5};
         Fill<unsigned char>(mask, 2, 2, 0, 0, 0, 0, 1, 1, 5, nullptr);
       },
       "Ostrel: caller error in Fill: fillValue != target"},
      {[] {
         int labels[16] = {};
         SFeature f;
         unsigned char aborted;
         MultiObjectFeatureExtract<int>(labels, 4, 4, 0, 0, 4, 4, labels, 1, 1, &f,
                                        static_cast<EFeaturesNeeded>(7), &aborted);
       },
       "Ostrel: caller error in MultiObjectFeatureExtract: .*accumulator != nullptr"},
  };
  for (const auto &e : errors) EXPECT_DEATH(e.call(), e.message);
}

TEST(CheckedBuildDeathTest, ValidCallsRunThrough) {
  EXPECT_EXIT(
      {
        FillTRCBuffer(g_a, 8, 8, 0, 0, 8, 8, 1);  // whole buffer
        FillTRCBuffer(g_a, 8, 8, 3, 6, 5, 9, 1);  // rows overhang the bottom
        FillTRCBuffer(g_a, 8, 8, 8, 8, 0, 1, 1);  // corner at the far edges
        FillTRCBuffer(g_a, 8, 8, 2, 8, 9, 1, 1);  // no rows: columns not checked
        ChessboardFillTRCBuffer(g_a, 8, 8, 1, 2, 7, 9, -5, -3, 1, 2, 3);
        Copy2DTRCBufferToTRC(g_a, 8, 8, 8, 8, g_b, 8, 8, 8, 8, 5, 5);
        Copy2DTRCBufferToTRC(g_a, 8, 8, 5, 6, g_b, 4, 16, 1, 0, 9, 9);
        CopyTRCToTRCIfNotKeyColor(g_a, 4, 16, 3, 15, g_b, 8, 8, 0, 0, 9, 9, 1);
        ConvertBufferFrom32To24Bits(g_a, reinterpret_cast<unsigned char *>(g_b), 64);
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "");
}

}  // namespace
