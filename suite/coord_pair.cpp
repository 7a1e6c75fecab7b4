// Stand-in for the coordinate-pair part of the suite's globals library.

#include "VornelCoordPair.h"
#include "stand_in.h"

namespace {

// One point; deletes itself when its last reference is released.
class CoordPair final : public vornel_stand_in::RefCounted<CoordPair, ICoordPair> {
 public:
  VornelStatus VORNEL_STDCALL SetXY(double x, double y) override {
    x_ = x;
    y_ = y;
    return kVornelOk;
  }
  VornelStatus VORNEL_STDCALL GetXY(double *x, double *y) override {
    if (x == nullptr || y == nullptr) return kVornelFail;
    *x = x_;
    *y = y_;
    return kVornelOk;
  }

 private:
  friend class vornel_stand_in::RefCounted<CoordPair, ICoordPair>;  // deletes it
  ~CoordPair() = default;

  double x_ = 0, y_ = 0;
};

vornel_stand_in::Factory<CoordPair, ICoordPair> g_factory;

}  // namespace

VornelStatus DllGetCoordPairSetRes(const char *sourceName, int line, ICoordPair **pair) {
  return g_factory.Create(sourceName, line, pair);
}

VornelCoordPairFactory DllSetCoordPairFactory(VornelCoordPairFactory factory) {
  return g_factory.Install(factory);
}
