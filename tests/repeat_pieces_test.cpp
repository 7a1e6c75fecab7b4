// Repeat buffer pieces and view sizes: piece orders, a kept zero-height piece, an unreduced drop
// and the drop kinds pinned; both piece lists checked pixel by pixel against the folded rectangle.
#include "repeat_test_util.h"

namespace {

// The count (-3 if not written) and entry 0 (-7s if not written), then x, y, width, height of
// each piece. mode 0 and 1: CalcPosAndSizeInRepBuffer, wholeTileIfLarger = mode; 2: the inverse.
std::vector<int> Split(int x, int y, int width, int height, int tileWidth, int tileHeight, int drop,
                       int mode, _EDropKind kind = eDropVertical) {
  int count = -3, px[6], pw[6], py[6], ph[6];
  for (int i = 0; i < 6; ++i) px[i] = pw[i] = py[i] = ph[i] = -7;
  if (mode == 2)
    CalcPosAndSizeInRepBufferInv(x, y, width, height, tileWidth, tileHeight, kind, drop, &count, px,
                                 pw, py, ph);
  else
    CalcPosAndSizeInRepBuffer(x, y, width, height, tileWidth, tileHeight, kind, drop, &count, px,
                              pw, py, ph, mode == 1);
  std::vector<int> out = {count, px[0], py[0], pw[0], ph[0]};
  for (int i = 0; i < count && i < 6; ++i) out.insert(out.end(), {px[i], py[i], pw[i], ph[i]});
  return out;
}

TEST(RepeatPieces, PiecesComeInTheirOrder) {
  const struct {
    int x, y, width, height, drop, mode;
    std::vector<int> want;  // x, y, width, height of each piece, in a 100 x 100 tile
  } cases[] = {
      // The dropped next column first (its top wraps to y 60), the main piece last.
      {90, 10, 20, 20, 50, 0, {0, 60, 10, 20, 90, 10, 10, 20}},
      // The next column split at its bottom seam, then below the tile, then the main piece.
      {90, 90, 20, 20, 95, 0, {0, 0, 10, 15, 0, 95, 10, 5, 90, 0, 10, 10, 90, 90, 10, 10}},
      // A drop beyond the tile's height is not reduced: the wrapped piece leaves the buffer.
      {90, 10, 20, 20, 150, 0, {0, -40, 10, 20, 90, 10, 10, 20}},
      {50, 50, 100, 10, 0, 1, {0, 0, 100, 100}},  // as wide as the tile: all of it ...
      {0, 0, 100, 10, 0, 1, {0, 0, 100, 10}},     // ... unless it fits
      {50, 50, 100, 100, 0, 0, {0, 50, 50, 50, 0, 0, 50, 50, 50, 0, 50, 50, 50, 50, 50, 50}},
      // Uncovered: left and right of the rectangle, then above and below it.
      {10, 10, 80, 80, 0, 2, {0, 0, 10, 100, 90, 0, 10, 100, 10, 0, 80, 10, 10, 90, 80, 10}},
      {0, 0, 100, 80, 0, 2, {0, 80, 100, 20}},  // no empty strips here
      {10, 90, 20, 20, 50, 2, {0, 0, 10, 100, 30, 0, 70, 100, 10, 10, 20, 80}},
      // Across the right seam at y 0: the strip above it has height 0 and is kept.
      {90, 0, 20, 20, 50, 2, {10, 0,  80, 100, 90, 0,  10, 0,  90, 20,
                              10, 80, 0,  0,   10, 50, 0,  70, 10, 30}}};
  for (const auto &c : cases) {
    const std::vector<int> got = Split(c.x, c.y, c.width, c.height, 100, 100, c.drop, c.mode);
    EXPECT_EQ(std::vector<int>(got.begin() + 5, got.end()), c.want) << c.x << ", " << c.y;
  }
  // Nothing uncovered, yet piece 0 is written as the tile.
  EXPECT_EQ(Split(50, 50, 100, 100, 100, 80, 0, 2), (std::vector<int>{0, 0, 0, 100, 80}));
  for (int mode : {0, 2})
    for (int kind : {2, 0, 3, -1})  // only the vertical kind splits; horizontal: not even a count
      EXPECT_EQ(Split(90, 10, 20, 20, 100, 100, 50, mode, _EDropKind(kind)),
                (std::vector<int>{kind == 2 ? -3 : 0, -7, -7, -7, -7}));
}

// How often the pieces cover each tile pixel; a piece outside the tile fails.
std::vector<int> Paint(const std::vector<int> &split, int tileWidth, int tileHeight) {
  std::vector<int> n(tileWidth * tileHeight, 0);
  for (std::size_t k = 5; k + 3 < split.size(); k += 4) {
    const int x = split[k], y = split[k + 1], w = split[k + 2], h = split[k + 3];
    if (x < 0 || y < 0 || w < 0 || h < 0 || x + w > tileWidth || y + h > tileHeight) {
      ADD_FAILURE() << "piece " << x << ", " << y << ", " << w << ", " << h << " leaves the tile";
      continue;
    }
    for (int i = 0; i < w * h; ++i) ++n[(y + i / w) * tileWidth + x + i % w];
  }
  return n;
}

TEST(RepeatPieces, PiecesCoverTheFoldedRectangleAndTheInverseTheRest) {
  for (const auto &t : {std::vector<int>{10, 8}, {7, 11}, {5, 5}})
    for (int drop = 0; drop < t[1]; ++drop)
      for (int x = -2 * t[0]; x < 2 * t[0]; ++x)
        for (int y = -2 * t[1]; y < 2 * t[1]; y += 3)
          for (int w = 1; w < t[0]; ++w)
            for (int h = 1; h < t[1]; ++h) {
              std::vector<int> want(t[0] * t[1], 0);
              for (int i = 0; i < w * h; ++i) {
                const auto f =
                    repeat_test::RefFold(x + i % w, y + i / w, t[0], t[1], drop, eDropVertical);
                ++want[f.second * t[0] + f.first];
              }
              // wholeTileIfLarger changes nothing for a rectangle smaller than the tile.
              const std::vector<int> cover = Split(x, y, w, h, t[0], t[1], drop, x & 1);
              const std::vector<int> inv = Split(x, y, w, h, t[0], t[1], drop, 2);
              std::vector<int> all = Paint(inv, t[0], t[1]);
              for (std::size_t p = 0; p < all.size(); ++p) all[p] += want[p];
              ASSERT_TRUE(cover[0] <= 5 && Paint(cover, t[0], t[1]) == want && inv[0] <= 5 &&
                          all == std::vector<int>(t[0] * t[1], 1))
                  << x << ", " << y << ", " << w << ", " << h << " drop " << drop;
            }
}

TEST(RepeatPieces, AdaptFileSizes) {
  const double cases[][10] = {
      // file, view, resolutions; the view-sized box; the grown file
      {1000, 500, 800, 800, 1, 1, 800, 400, 1000, 1000},
      {1000, 1000, 800, 800, 2, 1, 400, 800, 2000, 1000},
      {1000, 1000, 800, 800, 1, 2, 800, 400, 1000, 2000},
      {1000, 300, 640, 480, 1, 1, 640, 192, 1000, 750},
      {1, 1e9, 100, 1, 1, 1, 0, 1, 1215752192, 1e9}};  // 1e11: its low 32 bits
  for (const auto &c : cases) {
    unsigned s[4] = {7, 7, 7, 7};
    AdaptFileSizeToViewSizeForViewSize(c[0], c[1], c[2], c[3], c[4], c[5], &s[0], &s[1]);
    AdaptFileSizeToFileSizeForViewSize(c[0], c[1], c[2], c[3], c[4], c[5], &s[2], &s[3]);
    EXPECT_EQ(std::vector<double>(s, s + 4), std::vector<double>(c + 6, c + 10)) << c[0];
  }
}

}  // namespace
