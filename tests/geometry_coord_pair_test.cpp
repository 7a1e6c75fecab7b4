// Coordinate pairs: the stand-in factory's pairs, a host's factory, and GetPosition writing into a
// pair.
#include <gtest/gtest.h>

#include <string>

#include "Ostrel.h"
#include "VornelCoordPair.h"
#include "VornelException.h"

namespace {

// A host's pair that refuses every point, from a factory that keeps the tag it is given.
struct RefusingPair final : ICoordPair {
  VornelStatus VORNEL_STDCALL QueryInterface(const IID &, void **) override {
    return kVornelNoInterface;
  }
  unsigned long VORNEL_STDCALL AddRef() override { return 1; }
  unsigned long VORNEL_STDCALL Release() override { return 1; }
  VornelStatus VORNEL_STDCALL SetXY(double, double) override { return kVornelOutOfMemory; }
  VornelStatus VORNEL_STDCALL GetXY(double *, double *) override { return kVornelFail; }
} g_refusing;
std::string g_tag;
VornelStatus HostFactory(const char *sourceName, int line, ICoordPair **pair) {
  g_tag = std::string(sourceName) + ":" + std::to_string(line);
  return *pair = &g_refusing, kVornelOk;
}

TEST(GeometryCoordPair, StandInAndHostPairs) {
  ICoordPair *pair = nullptr;
  double x = -1, y = -1, px, py;
  ASSERT_EQ(DllGetCoordPairSetRes("Ostrel", 930, &pair), kVornelOk);
  EXPECT_TRUE(pair->GetXY(&x, &y) == kVornelOk && x == 0 && y == 0) << x << "," << y;
  GetPosition(3, 33, pair), GetPosition(3, 33, &px, &py);
  EXPECT_TRUE(pair->GetXY(&x, &y) == kVornelOk && x == px && y == py) << x << "," << y;
  EXPECT_TRUE(pair->AddRef() == 2 && pair->Release() == 1 &&
              pair->Release() == 0);  // the last one deletes it
  EXPECT_EQ(DllGetCoordPairSetRes("Ostrel", 1, nullptr), kVornelFail);
  EXPECT_EQ(DllSetCoordPairFactory(HostFactory), nullptr);
  EXPECT_EQ(DllGetCoordPairSetRes("Ostrel", 9960, &pair), kVornelOk);
  EXPECT_EQ(DllSetCoordPairFactory(nullptr), HostFactory);
  ASSERT_TRUE(g_tag == "Ostrel:9960" && pair == &g_refusing) << g_tag;
  try {
    GetPosition(1, 0, pair);
    ADD_FAILURE() << "a refused point raised nothing";
  } catch (const CVornelException &e) {
    EXPECT_TRUE(e.GetStatus() == kVornelOutOfMemory &&
                std::string(e.GetSourceFile()) == "MakeException");
  }
}

}  // namespace
