// Repeat buffer positions and view-size adaptation: the documented
// examples and piece orders pinned, and both piece lists checked pixel by
// pixel against the rectangle folded with SetInRapp.
#include <gtest/gtest.h>

#include <climits>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "Ostrel.h"

namespace {

struct Piece {
  int x, y, width, height;
  bool operator==(const Piece &o) const {
    return std::tie(x, y, width, height) == std::tie(o.x, o.y, o.width, o.height);
  }
};

std::ostream &operator<<(std::ostream &out, const Piece &p) {
  return out << "(" << p.x << ", " << p.y << ", " << p.width << ", " << p.height << ")";
}

using Pieces = std::vector<Piece>;

// The arrays start as -7 and the count as -3, so that untouched entries show.
struct Output {
  int count = -3;
  int x[6] = {-7, -7, -7, -7, -7, -7}, width[6] = {-7, -7, -7, -7, -7, -7};
  int y[6] = {-7, -7, -7, -7, -7, -7}, height[6] = {-7, -7, -7, -7, -7, -7};
  Pieces List() const {
    Pieces out;
    for (int i = 0; i < count; ++i) out.push_back({x[i], y[i], width[i], height[i]});
    return out;
  }
  Piece At(int i) const { return {x[i], y[i], width[i], height[i]}; }
};

Output Cover(int x, int y, unsigned width, unsigned height, unsigned repeatWidth,
             unsigned repeatHeight, _EDropKind kind, int drop, bool wholeTileIfLarger) {
  Output o;
  CalcPosAndSizeInRepBuffer(x, y, width, height, repeatWidth, repeatHeight, kind, drop, &o.count,
                            o.x, o.width, o.y, o.height, wholeTileIfLarger);
  return o;
}

Output Uncovered(int x, int y, unsigned width, unsigned height, unsigned repeatWidth,
                 unsigned repeatHeight, _EDropKind kind, int drop) {
  Output o;
  CalcPosAndSizeInRepBufferInv(x, y, width, height, repeatWidth, repeatHeight, kind, drop, &o.count,
                               o.x, o.width, o.y, o.height);
  return o;
}

TEST(RepeatPieces, ARectangleInsideTheTileIsOnePiece) {
  EXPECT_EQ(Cover(10, 10, 20, 20, 100, 100, eDropVertical, 50, false).List(),
            (Pieces{{10, 10, 20, 20}}));
  // Folded first: column -1 lies 50 higher, so (-90, 60) is (10, 10).
  EXPECT_EQ(Cover(-90, 60, 20, 20, 100, 100, eDropVertical, 50, false).List(),
            (Pieces{{10, 10, 20, 20}}));
  EXPECT_EQ(Cover(0, 0, 100, 100, 100, 100, eDropVertical, 50, false).List(),
            (Pieces{{0, 0, 100, 100}}));
}

TEST(RepeatPieces, SpecExamplesInOrder) {
  // The dropped next column first (its top wraps to y 60), the main piece last.
  EXPECT_EQ(Cover(90, 10, 20, 20, 100, 100, eDropVertical, 50, false).List(),
            (Pieces{{0, 60, 10, 20}, {90, 10, 10, 20}}));
  EXPECT_EQ(Cover(0, 90, 20, 20, 100, 100, eDropVertical, 0, false).List(),
            (Pieces{{0, 0, 20, 10}, {0, 90, 20, 10}}));
  // Next column split at its own bottom seam, then the part below the
  // tile's bottom, then the main piece.
  EXPECT_EQ(Cover(90, 90, 20, 20, 100, 100, eDropVertical, 95, false).List(),
            (Pieces{{0, 0, 10, 15}, {0, 95, 10, 5}, {90, 0, 10, 10}, {90, 90, 10, 10}}));
  EXPECT_EQ(Cover(90, 90, 20, 20, 100, 100, eDropVertical, 50, false).List(),
            (Pieces{{0, 40, 10, 20}, {90, 0, 10, 10}, {90, 90, 10, 10}}));
}

TEST(RepeatPieces, WholeTileIfLarger) {
  EXPECT_EQ(Cover(50, 50, 100, 100, 100, 100, eDropVertical, 0, true).List(),
            (Pieces{{0, 0, 100, 100}}));
  EXPECT_EQ(Cover(50, 50, 100, 10, 100, 100, eDropVertical, 0, true).List(),
            (Pieces{{0, 0, 100, 100}}));
  EXPECT_EQ(Cover(50, 50, 10, 300, 100, 100, eDropVertical, 0, true).List(),
            (Pieces{{0, 0, 100, 100}}));
  // Not taken for a rectangle that fits after folding, nor for a smaller one.
  EXPECT_EQ(Cover(0, 0, 100, 10, 100, 100, eDropVertical, 0, true).List(),
            (Pieces{{0, 0, 100, 10}}));
  EXPECT_EQ(Cover(90, 10, 20, 20, 100, 100, eDropVertical, 50, true).List(),
            (Pieces{{0, 60, 10, 20}, {90, 10, 10, 20}}));
  // false: split like any other.
  EXPECT_EQ(Cover(50, 50, 100, 100, 100, 100, eDropVertical, 0, false).List(),
            (Pieces{{0, 50, 50, 50}, {0, 0, 50, 50}, {50, 0, 50, 50}, {50, 50, 50, 50}}));
}

TEST(RepeatPieces, DropKinds) {
  for (bool inverse : {false, true}) {
    // Horizontal drop: nothing written, not even the count.
    Output o = inverse ? Uncovered(90, 10, 20, 20, 100, 100, eDropHorizontal, 50)
                       : Cover(90, 10, 20, 20, 100, 100, eDropHorizontal, 50, false);
    EXPECT_EQ(o.count, -3);
    EXPECT_EQ(o.At(0), (Piece{-7, -7, -7, -7}));
    for (int kind : {0, 3, -1}) {
      const auto k = static_cast<_EDropKind>(kind);
      o = inverse ? Uncovered(90, 10, 20, 20, 100, 100, k, 50)
                  : Cover(90, 10, 20, 20, 100, 100, k, 50, false);
      EXPECT_EQ(o.count, 0);
      EXPECT_EQ(o.At(0), (Piece{-7, -7, -7, -7}));
    }
  }
}

TEST(RepeatPieces, InverseSpecExamples) {
  EXPECT_EQ(Uncovered(10, 10, 80, 80, 100, 100, eDropVertical, 0).List(),
            (Pieces{{0, 0, 10, 100}, {90, 0, 10, 100}, {10, 0, 80, 10}, {10, 90, 80, 10}}));
  // Touching the edges leaves out the empty strips.
  EXPECT_EQ(Uncovered(0, 0, 100, 80, 100, 100, eDropVertical, 0).List(),
            (Pieces{{0, 80, 100, 20}}));
  EXPECT_EQ(Uncovered(0, 0, 100, 100, 100, 100, eDropVertical, 0).List(), Pieces{});
  // Across the right seam into the column dropped by 50.
  EXPECT_EQ(
      Uncovered(90, 10, 20, 20, 100, 100, eDropVertical, 50).List(),
      (Pieces{
          {10, 0, 80, 100}, {90, 0, 10, 10}, {90, 30, 10, 70}, {0, 0, 10, 60}, {0, 80, 10, 20}}));
  // Across the bottom seam only.
  EXPECT_EQ(Uncovered(10, 90, 20, 20, 100, 100, eDropVertical, 50).List(),
            (Pieces{{0, 0, 10, 100}, {30, 0, 70, 100}, {10, 10, 20, 80}}));
}

TEST(RepeatPieces, InverseOfALargerRectangleIsEmptyButWritesTheTile) {
  const Output o = Uncovered(50, 50, 100, 100, 100, 80, eDropVertical, 0);
  EXPECT_EQ(o.count, 0);
  EXPECT_EQ(o.At(0), (Piece{0, 0, 100, 80}));
  EXPECT_EQ(o.At(1), (Piece{-7, -7, -7, -7}));
}

// Counts, pixel by pixel, how often the pieces cover each tile pixel; a
// piece reaching outside the tile is reported.
std::vector<int> Paint(const Output &o, unsigned repeatWidth, unsigned repeatHeight,
                       std::string *error) {
  std::vector<int> count(repeatWidth * repeatHeight, 0);
  for (const Piece &p : o.List()) {
    if (p.width < 0 || p.height < 0 || p.x < 0 || p.y < 0 ||
        p.x + p.width > static_cast<int>(repeatWidth) ||
        p.y + p.height > static_cast<int>(repeatHeight)) {
      std::ostringstream s;
      s << "piece " << p << " leaves the tile";
      *error = s.str();
      continue;
    }
    for (int j = 0; j < p.height; ++j) {
      for (int i = 0; i < p.width; ++i) ++count[(p.y + j) * repeatWidth + p.x + i];
    }
  }
  return count;
}

TEST(RepeatPieces, PiecesCoverExactlyTheFoldedRectangle) {
  // For rectangles smaller than the tile and drops 0 .. repeatHeight-1, the
  // pieces cover each tile pixel that the folded rectangle covers once and
  // no other; the inverse pieces cover exactly the rest.
  const struct { unsigned width, height; } tiles[] = {{10, 8}, {7, 11}, {5, 5}};
  for (const auto &t : tiles) {
    for (int drop = 0; drop < static_cast<int>(t.height); ++drop) {
      for (int x = -2 * static_cast<int>(t.width); x < 2 * static_cast<int>(t.width); ++x) {
        for (int y = -2 * static_cast<int>(t.height); y < 2 * static_cast<int>(t.height); y += 3) {
          for (unsigned w = 1; w < t.width; ++w) {
            for (unsigned h = 1; h < t.height; ++h) {
              std::vector<int> want(t.width * t.height, 0);
              for (unsigned j = 0; j < h; ++j) {
                for (unsigned i = 0; i < w; ++i) {
                  int fx, fy;
                  SetInRapp(x + i, y + j, t.width, t.height, drop, eDropVertical, &fx, &fy);
                  ++want[fy * t.width + fx];
                }
              }
              std::string error;
              const Output o = Cover(x, y, w, h, t.width, t.height, eDropVertical, drop, false);
              ASSERT_LE(o.count, 5);
              const std::vector<int> got = Paint(o, t.width, t.height, &error);
              ASSERT_TRUE(error.empty() && got == want)
                  << error << " rectangle (" << x << ", " << y << ", " << w << ", " << h
                  << ") tile " << t.width << " x " << t.height << " drop " << drop;

              const Output inv = Uncovered(x, y, w, h, t.width, t.height, eDropVertical, drop);
              ASSERT_LE(inv.count, 5);
              const std::vector<int> rest = Paint(inv, t.width, t.height, &error);
              bool complement = true;
              for (std::size_t p = 0; p < rest.size(); ++p) {
                if (rest[p] + (want[p] != 0 ? 1 : 0) != 1) complement = false;
              }
              ASSERT_TRUE(error.empty() && complement)
                  << error << " inverse of (" << x << ", " << y << ", " << w << ", " << h
                  << ") tile " << t.width << " x " << t.height << " drop " << drop;
            }
          }
        }
      }
    }
  }
}

std::pair<unsigned, unsigned> ViewBox(unsigned fileWidth, unsigned fileHeight, unsigned viewWidth,
                                      unsigned viewHeight, double resolutionX, double resolutionY) {
  unsigned w = 7, h = 7;
  AdaptFileSizeToViewSizeForViewSize(fileWidth, fileHeight, viewWidth, viewHeight, resolutionX,
                                     resolutionY, &w, &h);
  return {w, h};
}

std::pair<unsigned, unsigned> FileBox(unsigned fileWidth, unsigned fileHeight, unsigned viewWidth,
                                      unsigned viewHeight, double resolutionX, double resolutionY) {
  unsigned w = 7, h = 7;
  AdaptFileSizeToFileSizeForViewSize(fileWidth, fileHeight, viewWidth, viewHeight, resolutionX,
                                     resolutionY, &w, &h);
  return {w, h};
}

using Size = std::pair<unsigned, unsigned>;

TEST(RepeatPieces, AdaptFileSizeToViewSizeForViewSize) {
  EXPECT_EQ(ViewBox(1000, 500, 800, 800, 1, 1), Size(800, 400));
  EXPECT_EQ(ViewBox(500, 1000, 800, 800, 1, 1), Size(400, 800));
  EXPECT_EQ(ViewBox(1000, 1000, 800, 600, 1, 1), Size(600, 600));  // the height limits
  EXPECT_EQ(ViewBox(800, 600, 800, 600, 1, 1), Size(800, 600));    // sy = sx
  EXPECT_EQ(ViewBox(1000, 1000, 800, 800, 2, 1), Size(400, 800));  // 500 x 1000 mm
  EXPECT_EQ(ViewBox(1000, 300, 640, 480, 1, 1), Size(640, 192));
  EXPECT_EQ(ViewBox(333, 1000, 100, 100, 1, 1), Size(33, 100));  // 33.3 truncated
  // 0 / 0 is NaN: the 64-bit truncation gives the integer-indefinite value,
  // whose low 32 bits are 0.
  EXPECT_EQ(ViewBox(0, 500, 800, 800, 0, 1), Size(800, 0));
}

TEST(RepeatPieces, AdaptFileSizeToFileSizeForViewSize) {
  EXPECT_EQ(FileBox(1000, 500, 800, 800, 1, 1), Size(1000, 1000));
  EXPECT_EQ(FileBox(500, 1000, 800, 400, 1, 1), Size(2000, 1000));
  EXPECT_EQ(FileBox(800, 600, 800, 600, 1, 1), Size(800, 600));      // tie: step 2
  EXPECT_EQ(FileBox(1000, 1000, 800, 800, 2, 1), Size(2000, 1000));  // 1000 x 1000 mm
  EXPECT_EQ(FileBox(1000, 1000, 800, 800, 1, 2), Size(1000, 2000));
  EXPECT_EQ(FileBox(1000, 300, 640, 480, 1, 1), Size(1000, 750));
  // 100 * 1e9 / 1 = 1e11 does not fit 32 bits: its low 32 bits are kept.
  EXPECT_EQ(FileBox(1, 1000000000, 100, 1, 1, 1), Size(1215752192u, 1000000000u));
}

}  // namespace
