// The checked build: caller errors stop the process with a message naming the
// exported function, the caller's argument, its value and what was expected;
// valid calls, edge cases included, run through.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "Ostrel.h"
#include "VornelCoordPolygon.h"

namespace {

unsigned int g_a[64], g_b[64];

TEST(CheckedBuildDeathTest, CallerErrorsAbortNamingFunctionAndCondition) {
  const struct {
    std::function<void()> call;
    const char *message;
  } errors[] = {
      {[] { FillTRCBuffer(g_a, 8, 8, 2, 0, 7, 1, 0); },
       "FillTRCBuffer: regionWidth is 7, expected at most width - left \\(6\\)"},
      {[] { FillTRCBuffer(g_a, 8, 8, 0, 9, 1, 1, 0); },
       "FillTRCBuffer: top is 9, expected at most height \\(8\\)"},
      {[] { ChessboardFillTRCBuffer(g_a, 8, 8, 0, 0, 8, 8, 0, 0, 1, 2, 0); },
       "ChessboardFillTRCBuffer: squareSize is 0, expected not 0"},
      {[] { ChessboardFillTRCBuffer(g_a, 8, 8, 1, 0, 8, 8, 0, 0, 1, 2, 4); },
       "ChessboardFillTRCBuffer: regionWidth is 8, expected at most width - left \\(7\\)"},
      {[] { Copy2DTRCBufferToTRC(g_a, 8, 8, 9, 0, g_b, 8, 8, 0, 0, 1, 1); },
       "Copy2DTRCBufferToTRC: srcLeft is 9, expected at most srcWidth \\(8\\)"},
      {[] { Copy2DTRCBufferToTRC(g_a, 8, 8, 0, 0, g_b, 8, 8, 0, 9, 1, 1); },
       "Copy2DTRCBufferToTRC: dstTop is 9, expected at most dstHeight \\(8\\)"},
      {[] { CopyTRCToTRCIfNotKeyColor(g_a, 8, 8, 0, 0, g_b, 8, 8, 9, 0, 1, 1, 0); },
       "CopyTRCToTRCIfNotKeyColor: dstLeft is 9, expected at most dstWidth \\(8\\)"},
      {[] { CopyTRCToTRCIfNotKeyColor(g_a, 8, 8, 0, 9, g_b, 8, 8, 0, 0, 1, 1, 0); },
       "CopyTRCToTRCIfNotKeyColor: srcTop is 9, expected at most srcHeight \\(8\\)"},
      {[] {
         int x, y;
         SetInRapp(-5, 3, 0, 80, 0, eDropVertical, &x, &y);
       },
       "SetInRapp: repeatWidth is 0, expected not 0"},
      {[] {
         int count, x[5], w[5], y[5], h[5];
         CalcPosAndSizeInRepBuffer(-5, 3, 1, 1, 0, 80, eDropVertical, 0, &count, x, w, y, h, false);
       },
       "CalcPosAndSizeInRepBuffer: repeatWidth is 0, expected not 0"},
      {[] { kgV(6, 0); }, "kgV: b is 0, expected not 0"},
      {[] {
         unsigned char grey[64] = {};
         AlphaBlendDensityWithAlphaBlueOfTrcToL08(g_a, 8, 8, 9, 0, 1, grey, 255, 8, 8, 0, 0, 1, 1,
                                                  false, false);
       },
       "AlphaBlendDensityWithAlphaBlueOfTrcToL08: trcLeft is 9, expected at most trcWidth \\(8\\)"},
      {[] {
         const double xs[] = {1.0}, ys[] = {2.0};
         GetLinearInterpoliertenWert(xs, ys, 1, 0.5);
       },
       "GetLinearInterpoliertenWert: count is 1, expected at least 2"},
      {[] {
         unsigned char mask[4] = {5, 5, 5, 5};
         Fill<unsigned char>(mask, 2, 2, 0, 0, 0, 0, 1, 1, 5, nullptr);
       },
       "Fill: fillValue is 5, expected a value other than the seed pixel's"},
      {[] {
         int labels[16] = {};
         SFeature f;
         unsigned char aborted;
         MultiObjectFeatureExtract<int>(labels, 4, 4, 0, 0, 4, 4, labels, 1, 1, &f,
                                        static_cast<EFeaturesNeeded>(7), &aborted);
       },
       "MultiObjectFeatureExtract: needed is 7, expected no eFeatureOrientation before "
       "InitFeatureTables has built the angle tables"},
      // Arguments of other buffers and derived values name the caller's
      // argument.
      {[] {
         unsigned char alpha[64] = {}, grey[64] = {};
         AlphaBlendDensityToL08(1, alpha, 8, 8, 9, 0, grey, 8, 8, 0, 0, 255, 1, 1, true);
       },
       "AlphaBlendDensityToL08: alphaLeft is 9, expected at most alphaWidth \\(8\\)"},
      {[] { NUeberK(80, 40); }, "NUeberK: n is 80, expected below k \\+ 34"},
      {[] { GetRapport(3.0, 0.5, 0.0); }, "GetRapport: repeatSize is 0.5, expected a whole part"},
      {[] {
         unsigned int n, p, b;
         unsigned char *buffer;
         CalcAndGetFixedBufferForThreads(64, 4, 4, 0, &n, &p, &b, &buffer, true);
       },
       "CalcAndGetFixedBufferForThreads: threadCount is 0, expected not 0"},
      // Regions of buffers that take no part in clipping must lie inside them.
      {[] {
         unsigned char mask[16] = {};
         AlphaBlendColorToTRC(0, mask, 4, 4, 2, 0, g_b, 8, 8, 0, 0, 255, 3, 2, true);
       },
       "AlphaBlendColorToTRC: maskLeft is 2, expected at most maskWidth - the region's clipped "
       "width \\(1\\)"},
      {[] {
         unsigned char alpha[16] = {};
         unsigned short s[64] = {}, d[64] = {};
         AlphaBlendL12ToL12(s, 8, 8, 0, 0, alpha, 4, 4, 0, 2, d, 8, 8, 0, 0, 255, 1, false, 4, 3,
                            true);
       },
       "AlphaBlendL12ToL12: alphaTop is 2, expected at most alphaHeight - the region's clipped "
       "height \\(1\\)"},
      {[] {
         unsigned char s[64] = {};
         DrawContourOfL08toTRC(s, 8, 8, 0, 0, g_b, 8, 8, 0, 0, 5, 1, 0);
       },
       "DrawContourOfL08toTRC: regionHeight is 1, expected a region of at least 2 rows"},
      // Objects: each bound's accepted side first, then the refused one.
      {[] {
         InitFeatureTables(1, 7.5), ReleaseFeatureTables(), InitFeatureTables(1, 36000.0);
         ReleaseFeatureTables(), InitFeatureTables(1, std::nextafter(7.5, 0.0));
       },
       "InitFeatureTables: angleSteps is 7.4999999999999991, expected from 7.5 to 36000"},
      {[] { InitFeatureTables(1, std::nextafter(36000.0, 1e9)); },
       "InitFeatureTables: angleSteps is 36000.000000000007, expected from 7.5 to 36000"},
      {[] { InitFeatureTables(0, 360.0); }, "InitFeatureTables: marker is 0, expected not 0"},
      {[] {
         unsigned char m[1] = {4};
         Fill<unsigned char>(m, 0, 1, 0, 0, 0, 0, 1, 1, 9, nullptr);
       },
       "Fill: width is 0, expected at least 1"},
      {[] {
         int b[4] = {};
         ColorBinaryObjects<int>(b, 2, -2, 0, 0, 2, 2, 0, 1, 2, true, 9);
       },
       "ColorBinaryObjects: height is -2, expected not negative"},
      {[] {
         int b[4] = {1, 1, 1, 1};
         FollowContour<int>(b, b, 2, 2, 0, 0, 2, 2, 1, nullptr, nullptr);
         FollowContour<int>(b, b + 4, 2, 2, 0, 0, 2, 2, 1, nullptr, nullptr);
       },
       "FollowContour: start is 0x"
#ifdef GTEST_USES_SIMPLE_RE  // GoogleTest's own expressions (Windows): no brackets
       "\\w+"
#else
       "[0-9a-f]+"
#endif
       ", expected a pixel of buffer"},
      {[] {
         ICoordPolygon *polygon = nullptr;
         DllGetCoordPolygonSetRes("test", __LINE__, &polygon);
         GetContourPolygonFromBuffer2(nullptr, 8, 8, 8, 0, 4, 4, polygon);  // no columns: runs
         GetContourPolygonFromBuffer2(nullptr, 8, 8, 0, 0, 4, 4, polygon);
       },
       "GetContourPolygonFromBuffer2: mask is .*, expected not null"},
      {[] {
         int b[4] = {};
         FollowContour<int>(b, b, 0, 2, 0, 0, 2, 2, 1, nullptr, nullptr);
       },
       "FollowContour: width is 0, expected at least 1"},
      {[] {
         int labels[9] = {1, 1, 0, 1, 1}, values[9] = {0, 255, 300, 300, 7};
         SFeature f;
         unsigned char aborted;
         MultiObjectFeatureExtract<int>(labels, 3, 3, 0, 0, 3, 3, values, 1, 1, &f,
                                        static_cast<EFeaturesNeeded>(33), &aborted);
       },
       "MultiObjectFeatureExtract: values\\[3\\] is 300, expected 0 \\.\\. 255"},
      {[] {
         SFeature f;
         unsigned char aborted;
         MultiObjectFeatureExtract<int>(nullptr, -1, 2, 0, 0, 3, 2, nullptr, 1, 1, &f,
                                        eFeatureBasic, &aborted);
       },
       "MultiObjectFeatureExtract: width is -1, expected not negative"},
      {[] {
         double table[1] = {50};
         GetInterpolatedOverlayFactor(20, table, 1), GetInterpolatedOverlayFactor(20, table, 0);
       },
       "GetInterpolatedOverlayFactor: count is 0, expected at least 1"},
      {[] {
         unsigned char s[81] = {}, d[81] = {};
         int t[49] = {};
         SoftFrameL08toL08(s, d, 9, 9, t, 3, 0);
       },
       "SoftFrameL08toL08: frameWidth is 0, expected at least 1"},
      {[] {
         unsigned char s[81] = {}, d[81] = {};
         int t[49] = {};
         HardFrameL08toL08(s, d, 9, 9, t, 3, 3, true), HardFrameL08toL08(s, d, 9, 9, t, 3, 4, true);
       },
       "HardFrameL08toL08: frameWidth is 4, expected at most R \\(3\\)"},
      {[] {
         unsigned char s[81] = {}, d[81] = {};
         int t[49] = {};
         HardFrameDownL08toL08(s, d, 5, 9, t, 3, 2), HardFrameDownL08toL08(s, d, 4, 9, t, 3, 2);
       },
       "HardFrameDownL08toL08: width is 4, expected more than 2 \\* frameWidth \\(4\\)"},
      {[] { TransferToneL08ToTRC(nullptr, 8, 8, 0, 0, g_b, 8, 8, 0, 0, g_a, 255, 1, 1, true); },
       "TransferToneL08ToTRC: src is .*, expected not null"},
      {[] {
         TransferToneL08ToTRC(reinterpret_cast<unsigned char *>(g_a), 8, 8, 0, 0, g_b, 8, 8, 0, 0,
                              nullptr, 255, 1, 1, true);
       },
       "TransferToneL08ToTRC: palette is .*, expected not null"},
      {[] { ChangeColorOfTRCWithAlpha(nullptr, nullptr, 8, 8, 0, 0, 0, 0, 0, 255, 1, 1, true); },
       "ChangeColorOfTRCWithAlpha: buffer is .*, expected not null"},
      {[] {
         auto *bytes = reinterpret_cast<unsigned char *>(g_a);  // rows 1-2 against rows 0-1
         MoveToneL08ToL08Prot(bytes, 8, 8, 0, 1, nullptr, 0, 0, 0, 0, bytes, 8, 8, 2, 0, 255, 4, 2);
       },
       "MoveToneL08ToL08Prot: dst is .*, expected a region that shares no memory"},
  };
  for (const auto &e : errors) {
    EXPECT_DEATH(e.call(), std::string("Ostrel: caller error in ") + e.message);
  }
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
        Copy2DTRCBufferToTRC(g_a, 8, 8, 1, 2, g_b, 8, 8, 0, 0, 0xFFFFFFFF,
                             0xFFFFFFFF);  // to the edge
        unsigned char mask[16] = {};       // a mask region that just fits
        AlphaBlendColorToTRC(0, mask, 4, 4, 1, 2, g_b, 8, 8, 0, 0, 255, 3, 2, true);
        ConvertBufferFrom32To24Bits(g_a, reinterpret_cast<unsigned char *>(g_b), 64);
        auto *bytes = reinterpret_cast<unsigned char *>(g_a);  // side by side in one buffer
        MoveToneL08ToL08Prot(bytes, 8, 8, 0, 0, nullptr, 0, 0, 0, 0, bytes, 8, 8, 4, 0, 255, 4, 8);
        TransferToneL08ToTRC(nullptr, 8, 8, 8, 0, g_b, 8, 8, 0, 0, nullptr, 255, 5, 5, true);
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "");
}

}  // namespace
