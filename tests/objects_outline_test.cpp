// Outlines of masks as polygons: worked shapes, and properties of random
// masks checked against independent counts (areas, 8-connected objects,
// enclosed 4-connected background regions, boundary edges).
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

#include "Ostrel.h"
#include "VornelCoordPolygon.h"
#include "VornelException.h"
#include "VornelMemMgr.h"
#include "counting_mem_mgr.h"
#include "outline_check.h"

namespace {

using outline_check::Figure;

struct Traced {
  int result;
  std::vector<Figure> figures;
};

// Releases a polygon at the end of a scope.
struct PolygonHolder {
  PolygonHolder() { EXPECT_EQ(DllGetCoordPolygonSetRes("test", __LINE__, &p), kVornelOk); }
  ~PolygonHolder() { p->Release(); }
  ICoordPolygon *p = nullptr;
};

std::vector<Figure> Figures(ICoordPolygon *polygon) {
  long count = 0;
  EXPECT_EQ(polygon->GetFigureCount(&count), kVornelOk);
  std::vector<Figure> figures(static_cast<std::size_t>(count));
  for (long f = 0; f < count; ++f) {
    long first = 0, n = 0;
    EXPECT_EQ(polygon->GetFigure(f, &first, &n), kVornelOk);
    for (long i = first; i < first + n; ++i) {
      double x = 0, y = 0;
      EXPECT_EQ(polygon->GetXY(i, &x, &y), kVornelOk);
      figures[static_cast<std::size_t>(f)].emplace_back(static_cast<long long>(x),
                                                        static_cast<long long>(y));
    }
  }
  return figures;
}

// A mask drawn as text: '#' is an object pixel.
struct Mask {
  unsigned width = 0, height = 0;
  std::vector<unsigned char> pixels;

  explicit Mask(const std::vector<const char *> &rows) {
    height = static_cast<unsigned>(rows.size());
    width = static_cast<unsigned>(std::strlen(rows[0]));
    for (const char *row : rows) {
      for (unsigned i = 0; i < width; ++i) pixels.push_back(row[i] == '#' ? 200 : 0);
    }
  }
  Mask(unsigned w, unsigned h) : width(w), height(h), pixels(static_cast<std::size_t>(w) * h) {}
  bool At(long x, long y) const { return pixels[static_cast<std::size_t>(y) * width + x] != 0; }
};

Traced Trace(Mask &m, unsigned left = 0, unsigned top = 0, unsigned rw = ~0u, unsigned rh = ~0u) {
  PolygonHolder polygon;
  polygon.p->AddXY(-1, -1);  // emptied first
  const int result = GetContourPolygonFromBuffer2(m.pixels.data(), m.width, m.height, left, top, rw,
                                                  rh, polygon.p);
  return Traced{result, Figures(polygon.p)};
}

TEST(ObjectsOutline, WorkedShapes) {
  struct Case {
    const char *name;
    std::vector<const char *> rows;
    std::vector<Figure> figures;
  };
  const Case cases[] = {
      {"one pixel",
       {"....", "....", "....", "....", "....", "...#"},
       {{{3, 5}, {4, 5}, {4, 6}, {3, 6}}}},
      {"ring",
       {"###", "#.#", "###"},
       {{{0, 0}, {3, 0}, {3, 3}, {0, 3}}, {{1, 1}, {1, 2}, {2, 2}, {2, 1}}}},
      {"corner touch",
       {"#.", ".#"},
       {{{0, 0}, {1, 0}, {1, 1}, {2, 1}, {2, 2}, {1, 2}, {1, 1}, {0, 1}}}},
      {"checkerboard",
       {"#.#", ".#.", "#.#"},
       {{{0, 0}, {1, 0}, {1, 1}, {2, 1}, {2, 0}, {3, 0}, {3, 1}, {2, 1}, {2, 2}, {3, 2},
         {3, 3}, {2, 3}, {2, 2}, {1, 2}, {1, 3}, {0, 3}, {0, 2}, {1, 2}, {1, 1}, {0, 1}}}},
      // Two holes touching at a corner stay two figures; the hole that starts
      // lower comes later.
      {"holes touching at a corner",
       {"####", "#.##", "##.#", "####"},
       {{{0, 0}, {4, 0}, {4, 4}, {0, 4}},
        {{1, 1}, {1, 2}, {2, 2}, {2, 1}},
        {{2, 2}, {2, 3}, {3, 3}, {3, 2}}}},
      // An object inside a hole: outer, hole, inner object, by start vertex.
      {"island",
       {"#####", "#...#", "#.#.#", "#...#", "#####"},
       {{{0, 0}, {5, 0}, {5, 5}, {0, 5}},
        {{1, 1}, {1, 4}, {4, 4}, {4, 1}},
        {{2, 2}, {3, 2}, {3, 3}, {2, 3}}}},
  };
  for (const Case &c : cases) {
    Mask m(c.rows);
    const Traced t = Trace(m);
    EXPECT_EQ(t.result, static_cast<int>(c.figures.size())) << c.name;
    EXPECT_EQ(t.figures, c.figures) << c.name;
  }
}

TEST(ObjectsOutline, RegionsClipAndOffset) {
  Mask m({"######", "######", "######", "######"});
  // A region inside the buffer: outside pixels are background, vertices in
  // buffer coordinates.
  Traced t = Trace(m, 2, 1, 3, 2);
  EXPECT_EQ(t.result, 1);
  EXPECT_EQ(t.figures, (std::vector<Figure>{{{2, 1}, {5, 1}, {5, 3}, {2, 3}}}));
  // A region reaching past the buffer is cut at its edges.
  t = Trace(m, 4, 2, 100, 100);
  EXPECT_EQ(t.figures, (std::vector<Figure>{{{4, 2}, {6, 2}, {6, 4}, {4, 4}}}));
  // Empty regions (and a null mask) give no figures, but still empty the
  // polygon.
  for (const auto &r :
       std::vector<std::vector<unsigned>>{{6, 0, 1, 1}, {0, 4, 1, 1}, {0, 0, 0, 3}}) {
    t = Trace(m, r[0], r[1], r[2], r[3]);
    EXPECT_EQ(t.result, 0);
    EXPECT_TRUE(t.figures.empty());
  }
  PolygonHolder polygon;
  polygon.p->AddXY(1, 1);
  EXPECT_EQ(GetContourPolygonFromBuffer2(nullptr, 0, 0, 0, 0, 5, 5, polygon.p), 0);
  EXPECT_TRUE(Figures(polygon.p).empty());
  EXPECT_EQ(GetContourPolygonFromBuffer2(m.pixels.data(), 6, 4, 0, 0, 6, 4, nullptr), -1);
}

TEST(ObjectsOutline, RandomMasksHoldTheInvariants) {
  std::mt19937 rng(20261124);
  for (int round = 0; round < 400; ++round) {
    // Mostly small masks; every fourth one wide enough for rows that are
    // compared many cells at a time; a region inside the buffer now and then.
    const unsigned wide = round % 4 == 0 ? 160 : 24;
    Mask m(1 + rng() % wide, 1 + rng() % 24);
    const unsigned density = rng() % 100;
    for (auto &p : m.pixels)
      p = rng() % 100 < density ? static_cast<unsigned char>(1 + rng() % 255) : 0;
    const bool whole = round % 3 != 0;
    const unsigned left = whole ? 0 : rng() % m.width, top = whole ? 0 : rng() % m.height;
    const unsigned columns = whole ? m.width : 1 + rng() % (m.width - left);
    const unsigned rows = whole ? m.height : 1 + rng() % (m.height - top);
    const Traced t = Trace(m, left, top, columns, rows);
    const outline_check::Region region{m.pixels.data(), m.width, left, top, columns, rows};
    ASSERT_EQ(t.result, static_cast<int>(t.figures.size())) << "round " << round;
    ASSERT_EQ(outline_check::Check(region, t.figures), "")
        << "round " << round << ", " << m.width << "x" << m.height;
  }
}

// A polygon that refuses its vertices after a number of them.
class FailingPolygon final : public ICoordPolygon {
 public:
  explicit FailingPolygon(int accepted) : accepted_(accepted) {}
  VornelStatus VORNEL_STDCALL QueryInterface(const IID &, void **) override {
    return kVornelNoInterface;
  }
  unsigned long VORNEL_STDCALL AddRef() override { return 1; }
  unsigned long VORNEL_STDCALL Release() override { return 1; }
  VornelStatus VORNEL_STDCALL AddXY(double, double) override {
    return accepted_-- > 0 ? kVornelOk : kRefused;
  }
  VornelStatus VORNEL_STDCALL CloseFigure() override { return kVornelOk; }
  VornelStatus VORNEL_STDCALL RemoveAll() override { return kVornelOk; }
  VornelStatus VORNEL_STDCALL GetFigureCount(long *) override { return kVornelFail; }
  VornelStatus VORNEL_STDCALL GetFigure(long, long *, long *) override { return kVornelFail; }
  VornelStatus VORNEL_STDCALL GetPointCount(long *) override { return kVornelFail; }
  VornelStatus VORNEL_STDCALL GetXY(long, double *, double *) override { return kVornelFail; }
  static constexpr VornelStatus kRefused = -2147024809L;  // 0x80070057

 private:
  int accepted_;
};

TEST(ObjectsOutline, FailuresAreRaisedAndTemporariesGoBack) {
  CountingMemMgr manager;
  IMemMgr *previous = DllSetMemMgr(&manager);
  const int refsHeld = manager.refs;
  Mask m({"#.#", ".#.", "#.#"});  // 20 vertices in one figure
  for (const int accepted : {0, 1, 7, 19}) {
    FailingPolygon polygon(accepted);
    try {
      GetContourPolygonFromBuffer2(m.pixels.data(), 3, 3, 0, 0, 3, 3, &polygon);
      ADD_FAILURE() << "no exception after " << accepted << " vertices";
    } catch (const CVornelException &e) { EXPECT_EQ(e.GetStatus(), FailingPolygon::kRefused); }
    EXPECT_EQ(manager.out, 0) << accepted;
    EXPECT_EQ(manager.refs, refsHeld) << accepted;
  }
  FailingPolygon enough(20);
  EXPECT_EQ(GetContourPolygonFromBuffer2(m.pixels.data(), 3, 3, 0, 0, 3, 3, &enough), 1);
  // A memory manager that refuses: its status is raised, nothing is held.
  manager.failing = true;
  try {
    GetContourPolygonFromBuffer2(m.pixels.data(), 3, 3, 0, 0, 3, 3, &enough);
    ADD_FAILURE() << "no exception from a refusing memory manager";
  } catch (const CVornelException &e) { EXPECT_EQ(e.GetStatus(), kVornelOutOfMemory); }
  EXPECT_EQ(manager.refs, refsHeld);
  IMemMgr *mine = DllSetMemMgr(previous);
  if (previous != nullptr) previous->Release();
  EXPECT_EQ(mine, &manager);
}

}  // namespace
