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

// SSE2 is the baseline of every x86 build (the build says which processor it
// targets; see cmake/OstrelKernels.cmake).
#if OSTREL_PROCESSOR_X86
#include <emmintrin.h>
#endif

#include "Ostrel.h"
#include "VornelCoordPolygon.h"
#include "VornelException.h"
#include "VornelMemMgr.h"
#include "frame/checked.h"
#include "frame/region.h"

namespace ostrel {
namespace objects {
namespace {

// Directions of travel, in turning order: a right turn (y pointing down) is
// +1, a left turn -1 (mod 4).
enum Direction : int { kEast = 0, kSouth = 1, kWest = 2, kNorth = 3 };

// The turn rule for every arrangement of the four cells around a vertex
// (bits: up-left 0, up-right 1, down-left 2, down-right 3) and direction of
// arrival d: the cell ahead on the left is object: turn left; else the one
// ahead on the right is: straight on; else turn right. The cells ahead, left
// and right: east up-right and down-right, south down-right and down-left,
// west down-left and up-left, north up-left and up-right.
constexpr int TurnFor(int d, unsigned around) {
  const int aheadLeft[4] = {1, 3, 2, 0}, aheadRight[4] = {3, 2, 0, 1};
  if ((around >> aheadLeft[d]) & 1u) return (d + 3) & 3;
  if ((around >> aheadRight[d]) & 1u) return d;
  return (d + 1) & 3;
}

struct TurnTable {
  int turn[4][16];
};

constexpr TurnTable MakeTurnTable() {
  TurnTable t{};
  for (int d = 0; d < 4; ++d) {
    for (unsigned a = 0; a < 16; ++a) t.turn[d][a] = TurnFor(d, a);
  }
  return t;
}

constexpr TurnTable kTurnTable = MakeTurnTable();

// The region as two bit planes with a one-cell background frame: which
// cells are object pixels, and which cells' top edges a traced figure has
// walked. Region pixel (x, y) is cell (x + 1, y + 1); bit k of byte j of a
// plane row is cell 8j + k. Rows are `stride` bytes, and one spare byte
// follows the last row, so that two neighbouring cells can always be read
// as one 16-bit value.
class Grid {
 public:
  Grid(std::uint8_t *block, std::size_t stride, std::size_t rows)
      : object_(block), walked_(block + stride * rows + 1), stride_(stride) {}

  static std::size_t Stride(std::uint32_t columns) { return (std::size_t{columns} + 2 + 7) / 8; }
  // Bytes of both planes for a region of columns x rows pixels (rows + 2
  // grid rows each), or 0 when that does not fit in size_t.
  static std::size_t Bytes(std::uint32_t columns, std::uint32_t rows) {
    const std::uint64_t plane = std::uint64_t{Stride(columns)} * (std::uint64_t{rows} + 2) + 1;
    return 2 * plane > SIZE_MAX ? 0 : static_cast<std::size_t>(2 * plane);
  }

  std::uint8_t *ObjectRow(std::size_t r) const { return object_ + r * stride_; }
  std::uint8_t *WalkedRow(std::size_t r) const { return walked_ + r * stride_; }
  std::size_t RowBytes() const { return stride_; }

  // The direction taken at vertex (x, y) (region coordinates) when arriving
  // with direction d, from the four cells around the vertex: the cell ahead
  // on the left is object: turn left (two object pixels that touch at a
  // corner stay in one figure); else the one ahead on the right is object:
  // straight on; else turn right.
  int Turn(std::uint32_t x, std::uint32_t y, int d) const {
    // The cells around vertex (x, y) are cells x and x + 1 of grid rows y
    // and y + 1: up-left (bit 0), up-right (1), down-left (2), down-right (3).
    const unsigned around = Pair(object_ + y * stride_, x) | Pair(object_ + (y + 1) * stride_, x)
                                                                 << 2;
    return kTurnTable.turn[d][around];
  }

  // Marks the top edge of cell (c, r) walked.
  void Walk(std::uint32_t c, std::uint32_t r) {
    walked_[r * stride_ + c / 8] |= static_cast<std::uint8_t>(1u << (c % 8));
  }

 private:
  // Cells c and c + 1 of a plane row, as bits 0 and 1.
  static unsigned Pair(const std::uint8_t *row, std::uint32_t c) {
    const unsigned v = row[c / 8] | static_cast<unsigned>(row[c / 8 + 1]) << 8;
    return (v >> (c % 8)) & 3u;
  }

  std::uint8_t *object_;
  std::uint8_t *walked_;
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

// Writes one figure, from its start vertex (x0, y0) (region coordinates),
// leaving it in direction d0. Vertices go to the polygon in buffer
// coordinates (offset by left, top) where the direction changes; every
// horizontal edge walked is marked.
void TraceFigure(Grid &grid, std::uint32_t x0, std::uint32_t y0, int d0, double left, double top,
                 ICoordPolygon *polygon) {
  Check(polygon->AddXY(left + x0, top + y0), polygon);
  std::uint32_t x = x0, y = y0;
  int d = d0;
  for (;;) {
    switch (d) {  // the edge from (x, y) is the top edge of cell (x + 1, y + 1) or (x, y + 1)
      case kEast: grid.Walk(x + 1, y + 1), ++x; break;
      case kWest: grid.Walk(x, y + 1), --x; break;
      case kSouth: ++y; break;
      default: --y;
    }
    if (x == x0 && y == y0) break;  // a figure meets its start vertex only at its end
    const int next = grid.Turn(x, y, d);
    if (next != d) {
      Check(polygon->AddXY(left + x, top + y), polygon);
      d = next;
    }
  }
  Check(polygon->CloseFigure(), polygon);
}

// The index of the lowest set bit of v (not 0).
unsigned LowestBit(unsigned v) {
  unsigned k = 0;
  while ((v & 1u) == 0) v >>= 1, ++k;
  return k;
}

// One bit per byte of p[0..7]: bit k set when p[k] is not 0.
std::uint8_t NonzeroBits(const unsigned char *p) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
  unsigned bits = 0;
  for (int k = 0; k < 8; ++k) bits |= (p[k] != 0 ? 1u : 0u) << k;
  return static_cast<std::uint8_t>(bits);
#else
  // Byte k of v is p[k]. Its top bit becomes "p[k] != 0" (adding 0x7F to
  // the low seven bits carries into the top bit unless they are all 0);
  // the multiplication then gathers the eight flags into the top byte, flag
  // k at bit 56 + k (each flag lands on its own bit, so nothing carries).
  std::uint64_t v;
  std::memcpy(&v, p, 8);
  const std::uint64_t low7 = 0x7F7F7F7F7F7F7F7Full;
  const std::uint64_t flags = (((v & low7) + low7) | v) & ~low7;
  return static_cast<std::uint8_t>(((flags >> 7) * 0x0102040810204080ull) >> 56);
#endif
}

// Sets the object plane from the region's rows (cell x + 1 of grid row
// j + 1 for pixel (x, j)) and clears both planes elsewhere.
void FillGrid(const frame::Plane<unsigned char> &mask, frame::Extent e, Grid &grid,
              std::uint8_t *block, std::size_t bytes) {
  std::memset(block, 0, bytes);
  for (std::uint32_t j = 0; j < e.rows; ++j) {
    const unsigned char *m = mask.Row(j);
    std::uint8_t *row = grid.ObjectRow(std::size_t{j} + 1);
    // Pixels 8k .. 8k + 7 are cells 8k + 1 .. 8k + 8: bits 1..7 of byte k
    // and bit 0 of byte k + 1. carry holds the bit that moves on.
    std::uint32_t x = 0;
    unsigned carry = 0;
#if OSTREL_PROCESSOR_X86
    const __m128i zero = _mm_setzero_si128();
    for (; x + 16 <= e.columns; x += 16) {
      const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(m + x));
      const unsigned bits =
          ~static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, zero))) & 0xFFFFu;
      row[x / 8] = static_cast<std::uint8_t>(bits << 1 | carry);
      row[x / 8 + 1] = static_cast<std::uint8_t>(bits >> 7);
      carry = bits >> 15;
    }
#endif
    for (; x + 8 <= e.columns; x += 8) {
      const unsigned bits = NonzeroBits(m + x);
      row[x / 8] = static_cast<std::uint8_t>(bits << 1 | carry);
      carry = bits >> 7;
    }
    row[x / 8] = static_cast<std::uint8_t>(carry);
    for (; x < e.columns; ++x) {
      if (m[x] != 0) row[(x + 1) / 8] |= static_cast<std::uint8_t>(1u << ((x + 1) % 8));
    }
  }
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

  // Both planes; in a 32-bit build their size need not fit in size_t, and
  // then the temporaries cannot be had.
  const std::size_t bytes = objects::Grid::Bytes(e.columns, e.rows);
  if (bytes == 0) MakeException(kVornelOutOfMemory, nullptr);
  objects::Temporary temporary;
  std::uint8_t *block = temporary.Obtain(bytes);
  objects::Grid grid(block, objects::Grid::Stride(e.columns), std::size_t{e.rows} + 2);
  objects::FillGrid(m, e, grid, block, bytes);

  const double x0 = left, y0 = top;
  const std::size_t rowBytes = grid.RowBytes();
  std::uint64_t figures = 0;
  // Row line y lies between region rows y - 1 and y: its edges are the top
  // edges of grid row y + 1's cells, whose partners above are in grid row y.
  // An edge starts a figure when exactly one of its two cells is object and
  // no figure has walked it yet; frame cells are background on both sides.
  for (std::uint32_t y = 0; y <= e.rows; ++y) {
    const std::uint8_t *over = grid.ObjectRow(y), *under = grid.ObjectRow(std::size_t{y} + 1);
    const std::uint8_t *walked = grid.WalkedRow(std::size_t{y} + 1);
    std::size_t j = 0;
    while (j < rowBytes) {
      // Eight bytes of the rows at a time while nothing differs.
      if (j + 8 <= rowBytes) {
        std::uint64_t a, b;
        std::memcpy(&a, over + j, 8);
        std::memcpy(&b, under + j, 8);
        if (a == b) {
          j += 8;
          continue;
        }
      }
      unsigned starts = (over[j] ^ under[j]) & ~walked[j] & 0xFFu;
      while (starts != 0) {
        const unsigned k = objects::LowestBit(starts);
        const std::uint32_t x = static_cast<std::uint32_t>(8 * j + k - 1);  // cell 8j + k
        // Tracing the figure may walk later edges of this byte.
        if ((walked[j] >> k & 1u) == 0) {
          // An object below the edge: an outer figure, heading right from
          // the edge's left end. An object above: a hole's figure, which
          // arrives at that end heading left and goes on as the pixels
          // there say (down).
          const int d = (under[j] >> k & 1u) ? objects::kEast : grid.Turn(x, y, objects::kWest);
          objects::TraceFigure(grid, x, y, d, x0, y0, polygon);
          ++figures;
        }
        starts &= starts - 1;
      }
      ++j;
    }
  }
  return figures > static_cast<std::uint64_t>(INT_MAX) ? INT_MAX : static_cast<int>(figures);
}
