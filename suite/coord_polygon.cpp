// Stand-in for the coordinate-polygon part of the suite's globals library.
#include <climits>
#include <cstddef>
#include <vector>

#include "VornelCoordPolygon.h"
#include "stand_in.h"

namespace {

// Vertices in one list; figures as the indices where each one starts.
// Deletes itself when its last reference is released.
class CoordPolygon final : public vornel_stand_in::RefCounted<CoordPolygon, ICoordPolygon> {
 public:
  VornelStatus VORNEL_STDCALL AddXY(double x, double y) override {
    // Both the vertex and a possible new figure must fit in a long.
    if (points_.size() >= static_cast<std::size_t>(LONG_MAX)) return kVornelFail;
    try {
      // Room for the vertex first (growing geometrically), so that the
      // push_back below cannot fail once a new figure is recorded.
      if (points_.size() == points_.capacity()) points_.reserve(2 * points_.size() + 16);
      if (!open_) starts_.push_back(points_.size());
    } catch (const std::bad_alloc &) { return kVornelOutOfMemory; }
    open_ = true;
    points_.push_back(Point{x, y});  // capacity reserved above: cannot throw
    return kVornelOk;
  }
  VornelStatus VORNEL_STDCALL CloseFigure() override {
    open_ = false;
    return kVornelOk;
  }
  VornelStatus VORNEL_STDCALL RemoveAll() override {
    points_.clear();
    starts_.clear();
    open_ = false;
    return kVornelOk;
  }
  VornelStatus VORNEL_STDCALL GetFigureCount(long *count) override {
    if (count == nullptr) return kVornelFail;
    *count = static_cast<long>(starts_.size());
    return kVornelOk;
  }
  VornelStatus VORNEL_STDCALL GetFigure(long index, long *first, long *count) override {
    if (first == nullptr || count == nullptr || index < 0 ||
        static_cast<unsigned long>(index) >= starts_.size()) {
      return kVornelFail;
    }
    const std::size_t i = static_cast<std::size_t>(index);
    const std::size_t end = i + 1 < starts_.size() ? starts_[i + 1] : points_.size();
    *first = static_cast<long>(starts_[i]);
    *count = static_cast<long>(end - starts_[i]);
    return kVornelOk;
  }
  VornelStatus VORNEL_STDCALL GetPointCount(long *count) override {
    if (count == nullptr) return kVornelFail;
    *count = static_cast<long>(points_.size());
    return kVornelOk;
  }
  VornelStatus VORNEL_STDCALL GetXY(long index, double *x, double *y) override {
    if (x == nullptr || y == nullptr || index < 0 ||
        static_cast<unsigned long>(index) >= points_.size()) {
      return kVornelFail;
    }
    *x = points_[static_cast<std::size_t>(index)].x;
    *y = points_[static_cast<std::size_t>(index)].y;
    return kVornelOk;
  }

 private:
  struct Point {
    double x, y;
  };

  friend class vornel_stand_in::RefCounted<CoordPolygon, ICoordPolygon>;  // deletes it
  ~CoordPolygon() = default;

  std::vector<Point> points_;
  std::vector<std::size_t> starts_;  // first vertex of each figure
  bool open_ = false;                // the last figure takes more vertices
};

vornel_stand_in::Factory<CoordPolygon, ICoordPolygon> g_factory;

}  // namespace

VornelStatus DllGetCoordPolygonSetRes(const char *sourceName, int line, ICoordPolygon **polygon) {
  return g_factory.Create(sourceName, line, polygon);
}

VornelCoordPolygonFactory DllSetCoordPolygonFactory(VornelCoordPolygonFactory factory) {
  return g_factory.Install(factory);
}
