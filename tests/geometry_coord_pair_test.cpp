// Coordinate pairs: the stand-in factory and its pairs, a host's factory,
// and GetPosition writing into a pair.
#include <gtest/gtest.h>

#include <string>

#include "Ostrel.h"
#include "VornelCoordPair.h"
#include "VornelException.h"

namespace {

TEST(GeometryCoordPair, StandInPairTakesThePositionAndIsCounted) {
  ICoordPair *pair = nullptr;
  ASSERT_EQ(DllGetCoordPairSetRes("Ostrel", 930, &pair), kVornelOk);
  double x = -1, y = -1, px, py;
  EXPECT_EQ(pair->GetXY(&x, &y), kVornelOk);
  EXPECT_TRUE(x == 0 && y == 0) << x << "," << y;
  GetPosition(3, 33, pair);
  GetPosition(3, 33, &px, &py);
  EXPECT_EQ(pair->GetXY(&x, &y), kVornelOk);
  EXPECT_EQ(x, px);
  EXPECT_EQ(y, py);
  EXPECT_EQ(pair->AddRef(), 2u);
  EXPECT_EQ(pair->Release(), 1u);
  EXPECT_EQ(pair->Release(), 0u);  // deleted: a leak would show under the sanitizers
  EXPECT_EQ(DllGetCoordPairSetRes("Ostrel", 1, nullptr), kVornelFail);
}

// A pair that refuses every point.
class RefusingPair final : public ICoordPair {
 public:
  VornelStatus VORNEL_STDCALL QueryInterface(const IID &, void **) override { return kVornelNoInterface; }
  unsigned long VORNEL_STDCALL AddRef() override { return 1; }
  unsigned long VORNEL_STDCALL Release() override { return 1; }
  VornelStatus VORNEL_STDCALL SetXY(double, double) override { return kVornelOutOfMemory; }
  VornelStatus VORNEL_STDCALL GetXY(double *, double *) override { return kVornelFail; }
} g_refusing;

std::string g_tag;

VornelStatus HostFactory(const char *sourceName, int line, ICoordPair **pair) {
  g_tag = std::string(sourceName) + ":" + std::to_string(line);
  *pair = &g_refusing;
  return kVornelOk;
}

TEST(GeometryCoordPair, HostFactoryGetsTheTagAndARefusedPointIsRaised) {
  EXPECT_EQ(DllSetCoordPairFactory(HostFactory), nullptr);
  ICoordPair *pair = nullptr;
  EXPECT_EQ(DllGetCoordPairSetRes("Ostrel", 9960, &pair), kVornelOk);
  EXPECT_EQ(DllSetCoordPairFactory(nullptr), HostFactory);
  EXPECT_EQ(g_tag, "Ostrel:9960");
  ASSERT_EQ(pair, &g_refusing);
  try {
    GetPosition(1, 0, pair);
    ADD_FAILURE() << "no exception";
  } catch (const CVornelException &e) {
    EXPECT_EQ(e.GetStatus(), kVornelOutOfMemory);
  }
}

}  // namespace
