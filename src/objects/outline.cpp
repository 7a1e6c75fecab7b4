// Outlines of a mask as polygons: every boundary between object and
// background, traced along pixel edges into closed figures.
//
// The region is copied into a grid of flags with a one-pixel background
// frame, so that no step of a trace needs a bounds test. A scan over the
// horizontal pixel edges, row line by row line, finds each figure at its
// first edge not yet walked; that edge's left end is the figure's topmost,
// leftmost vertex, so figures come out in the order of their start vertices.
// The trace then walks from vertex to vertex with the object on its right
// and marks every horizontal edge it walks, so no figure is found twice.
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "Ostrel.h"
#include "VornelCoordPolygon.h"
#include "VornelException.h"
#include "VornelMemMgr.h"
#include "frame/checked.h"
#include "frame/region.h"

namespace ostrel {
namespace objects {
namespace {

// The flags of a grid cell (one region pixel, or the frame).
constexpr std::uint8_t kObject = 1;  // a nonzero mask pixel
constexpr std::uint8_t kWalked = 2;  // the cell's top edge belongs to a traced figure

// Directions of travel, in turning order: a right turn (y pointing down) is
// +1, a left turn -1 (mod 4).
enum Direction : int { kEast = 0, kSouth = 1, kWest = 2, kNorth = 3 };

// The grid: (columns + 2) x (rows + 2) cells, region pixel (i, j) at cell
// (i + 1, j + 1). A vertex (x, y) of the region, the top-left corner of
// pixel (x, y), is named by the index of the cell of that pixel; the cells
// around it are then v - stride - 1 (up-left), v - stride (up-right), v - 1
// (down-left) and v (down-right).
class Grid {
 public:
  Grid(std::uint8_t *cells, std::size_t stride) : cells_(cells), stride_(stride) {}

  std::uint8_t *Cells() const { return cells_; }
  std::size_t Stride() const { return stride_; }

  // The direction taken at vertex v when arriving with direction d: the cell
  // ahead on the left is object: turn left (two object pixels that touch at
  // a corner stay in one figure); else the one ahead on the right is
  // object: straight on; else turn right.
  int Turn(std::size_t v, int d) const {
    const std::ptrdiff_t s = static_cast<std::ptrdiff_t>(stride_);
    // Offsets of the cells ahead-left and ahead-right, per direction.
    const std::ptrdiff_t aheadLeft[4] = {-s, 0, -1, -s - 1};
    const std::ptrdiff_t aheadRight[4] = {0, -1, -s - 1, -s};
    if (cells_[v + aheadLeft[d]] & kObject) return (d + 3) & 3;
    if (cells_[v + aheadRight[d]] & kObject) return d;
    return (d + 1) & 3;
  }

  // The step from one vertex to the next in direction d. Horizontal steps
  // mark the edge they walk: it is the top edge of the cell below it.
  std::size_t Step(std::size_t v, int d) {
    switch (d) {
      case kEast: cells_[v] |= kWalked; return v + 1;
      case kWest: cells_[v - 1] |= kWalked; return v - 1;
      case kSouth: return v + stride_;
      default: return v - stride_;
    }
  }

 private:
  std::uint8_t *cells_;
  std::size_t stride_;
};

// The memory manager's block for the grid, given back on every path.
class Temporary {
 public:
  Temporary() = default;
  Temporary(const Temporary &) = delete;
  Temporary &operator=(const Temporary &) = delete;
  ~Temporary() {
    if (manager_ == nullptr) return;
    if (block_ != nullptr) manager_->Free(block_);
    manager_->Release();
  }

  // Asks for size bytes; a failure is raised with MakeException.
  std::uint8_t *Obtain(std::size_t size) {
    manager_ = DllGetMemMgr();
    if (manager_ == nullptr) MakeException(kVornelOutOfMemory, nullptr);
    const VornelStatus status = manager_->Allocate(size, &block_);
    if (status < 0 || block_ == nullptr) {
      block_ = nullptr;
      MakeException(status < 0 ? status : kVornelOutOfMemory, manager_);
    }
    return static_cast<std::uint8_t *>(block_);
  }

 private:
  IMemMgr *manager_ = nullptr;
  void *block_ = nullptr;
};

void Check(VornelStatus status, ICoordPolygon *polygon) {
  if (status < 0) MakeException(status, polygon);
}

// Writes one figure, from start vertex v0 (grid cell index) whose region
// coordinates are (x0, y0), leaving it in direction d0. Vertices go to the
// polygon in buffer coordinates (offset by left, top) where the direction
// changes.
void TraceFigure(Grid &grid, std::size_t v0, std::int64_t x0, std::int64_t y0, int d0, double left,
                 double top, ICoordPolygon *polygon) {
  Check(polygon->AddXY(left + static_cast<double>(x0), top + static_cast<double>(y0)), polygon);
  // Unit moves of the vertex coordinates per direction.
  static const int kDx[4] = {1, 0, -1, 0};
  static const int kDy[4] = {0, 1, 0, -1};
  std::size_t v = v0;
  std::int64_t x = x0, y = y0;
  int d = d0;
  for (;;) {
    v = grid.Step(v, d);
    x += kDx[d];
    y += kDy[d];
    if (v == v0) break;  // a figure meets its start vertex only at its end
    const int next = grid.Turn(v, d);
    if (next != d) {
      Check(polygon->AddXY(left + static_cast<double>(x), top + static_cast<double>(y)), polygon);
      d = next;
    }
  }
  Check(polygon->CloseFigure(), polygon);
}

// Copies the region's rows into the grid's inner cells (1 for a nonzero
// pixel) and clears the frame.
void FillGrid(const frame::Plane<unsigned char> &mask, frame::Extent e, std::uint8_t *cells,
              std::size_t stride) {
  std::memset(cells, 0, stride);
  for (std::uint32_t j = 0; j < e.rows; ++j) {
    std::uint8_t *row = cells + (static_cast<std::size_t>(j) + 1) * stride;
    const unsigned char *m = mask.Row(j);
    row[0] = 0;
    for (std::uint32_t i = 0; i < e.columns; ++i) row[i + 1] = m[i] != 0 ? kObject : 0;
    row[stride - 1] = 0;
  }
  std::memset(cells + (static_cast<std::size_t>(e.rows) + 1) * stride, 0, stride);
}

// True when some cell of the two rows of n cells differs from its partner
// in the object flag: eight cells are compared at a time.
bool RowsDiffer(const std::uint8_t *a, const std::uint8_t *b, std::size_t n) {
  std::size_t i = 0;
  for (; i + 8 <= n; i += 8) {
    std::uint64_t wa, wb;
    std::memcpy(&wa, a + i, 8);
    std::memcpy(&wb, b + i, 8);
    if ((wa ^ wb) & 0x0101010101010101ull) return true;
  }
  for (; i < n; ++i) {
    if ((a[i] ^ b[i]) & kObject) return true;
  }
  return false;
}

}  // namespace
}  // namespace objects
}  // namespace ostrel

namespace frame = ostrel::frame;
namespace objects = ostrel::objects;

int GetContourPolygonFromBuffer2(unsigned char *mask, unsigned int width, unsigned int height,
                                 unsigned int left, unsigned int top, unsigned int regionWidth,
                                 unsigned int regionHeight, ICoordPolygon *polygon) {
  if (polygon == nullptr) return -1;
  const auto m = frame::MakePlane(mask, width, height, left, top, "");
  frame::Extent e = frame::ClipSingle(m, regionWidth, regionHeight, __func__);
  OSTREL_EXPECT(__func__, "mask", static_cast<const void *>(mask), e.Empty() || mask != nullptr,
                "not null");
  if (mask == nullptr) e = frame::Extent{0, 0};

  objects::Check(polygon->RemoveAll(), polygon);
  if (e.Empty()) return 0;

  // (columns + 2) * (rows + 2) cells; in a 32-bit build the count need not
  // fit in size_t, and then the temporaries cannot be had.
  const std::uint64_t stride64 = std::uint64_t{e.columns} + 2;
  const std::uint64_t cells64 = stride64 * (std::uint64_t{e.rows} + 2);
  if (cells64 > SIZE_MAX) MakeException(kVornelOutOfMemory, nullptr);
  const auto stride = static_cast<std::size_t>(stride64);
  objects::Temporary temporary;
  std::uint8_t *cells = temporary.Obtain(static_cast<std::size_t>(cells64));
  objects::FillGrid(m, e, cells, stride);

  objects::Grid grid(cells, stride);
  const double x0 = left, y0 = top;
  std::uint64_t figures = 0;
  // Row line y lies between region rows y - 1 and y: its edges are the top
  // edges of grid row y + 1, whose partners above are in grid row y.
  for (std::uint32_t y = 0; y <= e.rows; ++y) {
    const std::size_t below = (static_cast<std::size_t>(y) + 1) * stride + 1;
    if (!objects::RowsDiffer(cells + below - stride, cells + below, e.columns)) continue;
    for (std::uint32_t x = 0; x < e.columns; ++x) {
      const std::size_t v = below + x;
      const std::uint8_t under = cells[v], over = cells[v - stride];
      if (((under ^ over) & objects::kObject) == 0 || (under & objects::kWalked) != 0) continue;
      // An object below the edge: an outer figure, heading right from the
      // edge's left end. An object above: a hole's figure, which arrives at
      // that end heading left and goes on as the pixels there say (down).
      const int d = (under & objects::kObject) ? objects::kEast : grid.Turn(v, objects::kWest);
      objects::TraceFigure(grid, v, x, y, d, x0, y0, polygon);
      ++figures;
    }
  }
  return figures > static_cast<std::uint64_t>(INT_MAX) ? INT_MAX : static_cast<int>(figures);
}
