// Stand-in for the coordinate-pair part of the suite's globals library.
#include <atomic>
#include <new>

#include "VornelCoordPair.h"
#include "ref_counted.h"

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

VornelStatus CreateStandInPair(const char * /*sourceName*/, int /*line*/, ICoordPair **pair) {
  if (pair == nullptr) return kVornelFail;
  *pair = new (std::nothrow) CoordPair;
  return *pair != nullptr ? kVornelOk : kVornelOutOfMemory;
}

std::atomic<VornelCoordPairFactory> g_factory{nullptr};

}  // namespace

VornelStatus DllGetCoordPairSetRes(const char *sourceName, int line, ICoordPair **pair) {
  const VornelCoordPairFactory factory = g_factory.load();
  return (factory != nullptr ? factory : CreateStandInPair)(sourceName, line, pair);
}

VornelCoordPairFactory DllSetCoordPairFactory(VornelCoordPairFactory factory) {
  return g_factory.exchange(factory);
}
