// Marking and level conversion: the level tables of every converter, the
// marks over TRC pixels, and contours drawn from small hand-made masks.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Ostrel.h"
#include "grey_test_util.h"

namespace {

using namespace grey_test;

TEST(Marking, LevelConversions) {
  std::vector<u16> words = {0, 1, 15, 16, 4095, 4096, 65535}, inPlace = words, out12(7, 9);
  std::vector<u8> out8(7, 9), narrowed(7, 9);
  ConvertL12To2LevelL12(inPlace.data(), 7, 1, 0, 0, 7, 1);
  ConvertL12To2LevelL12(words.data(), 7, 1, 0, 0, out12.data(), 7, 1, 0, 0, 7, 1);
  ConvertL12To2LevelL08(words.data(), 7, 1, 0, 0, out8.data(), 7, 1, 0, 0, 7, 1);
  ConvertL012ToL08(words.data(), 7, 1, 0, 0, narrowed.data(), 7, 1, 0, 0, 7, 1);
  EXPECT_EQ(inPlace, (std::vector<u16>{0, 255, 255, 255, 255, 255, 255}));
  EXPECT_EQ(out12, (std::vector<u16>{0, 4095, 4095, 4095, 4095, 4095, 4095}));
  EXPECT_EQ(out8, (std::vector<u8>{0, 255, 255, 255, 255, 255, 255}));
  EXPECT_EQ(narrowed, (std::vector<u8>{0, 0, 0, 1, 255, 0, 255}));  // 4096 >> 4 wraps to 0

  // 8-bit, in place and to a destination clipped one column narrower.
  std::vector<u8> grey = {0, 7, 0, 255, 0, 1}, two(4, 9);
  ConvertL08To2LevelL08(grey.data(), 3, 2, 1, 0, two.data(), 2, 2, 1, 0, 5, 5);
  EXPECT_EQ(two, (std::vector<u8>{9, 255, 9, 0}));
  ConvertL08To2LevelL08(grey.data(), 3, 2, 1, 1, 5, 5);
  EXPECT_EQ(grey, (std::vector<u8>{0, 7, 0, 255, 0, 255}));
}

TEST(Marking, MarksOverColour) {
  bool selected[256] = {};
  selected[5] = true;
  std::vector<u8> grey = {5, 6, 5, 0};
  std::vector<u32> view(4, 0xAB102030u);
  MarkL08ToTRC(grey.data(), 4, 1, 0, 0, selected, 0xFFC0FF00u, 255, view.data(), 4, 1, 0, 0, 3, 1);
  EXPECT_EQ(view, (std::vector<u32>{0xABC0FF00u, 0xAB102030u, 0xABC0FF00u, 0xAB102030u}));
  std::vector<u32> half(1, 0x00000010u);
  MarkL08ToTRC(grey.data(), 4, 1, 0, 0, selected, 0x000000F0u, 128, half.data(), 1, 1, 0, 0, 1, 1);
  EXPECT_EQ(half[0], 0x10u + (0xF0u - 0x10u) * 128 / 255);

  // Background: marked only where neither of masks 0 and 2 is set (mask 1 is
  // not taken part).
  u8 m0[] = {1, 0, 0, 0}, m1[] = {0, 0, 0, 9}, m2[] = {0, 0, 3, 0}, *masks[] = {m0, m1, m2};
  int indices[] = {0, 2};
  std::vector<u32> bg(4, 0x7F000000u);
  MarkBG(masks, indices, 2, 4, 1, 0, 0, 0x00FFFFFFu, 255, bg.data(), 4, 1, 0, 0, 4, 1);
  EXPECT_EQ(bg, (std::vector<u32>{0x7F000000u, 0x7FFFFFFFu, 0x7F000000u, 0x7FFFFFFFu}));

  std::vector<u8> values = {0, 5, 10, 200, 201};
  std::vector<u32> limits(5, 0x11223344u);
  MarkL08LimitsToTRCHighBit(values.data(), 5, 1, 0, 0, 10, 200, limits.data(), 5, 1, 0, 0, 5, 1);
  EXPECT_EQ(limits,
            (std::vector<u32>{0x11223344u, 0x80223344u, 0x11223344u, 0x11223344u, 0x40223344u}));
}

// Draws the contour of a mask given as text rows ('#' nonzero) into a
// destination two smaller, returned as text ('o' coloured).
std::vector<std::string> Contour(const std::vector<std::string> &mask, u32 dstLeft = 0,
                                 u32 regionRows = 0) {
  const u32 w = u32(mask[0].size()), h = u32(mask.size()), dw = w - 2 + dstLeft;
  std::vector<u8> src;
  for (const auto &row : mask)
    for (char c : row) src.push_back(c == '#' ? 200 : 0);
  std::vector<u32> dst(dw * (h - 2), 1);
  DrawContourOfL08toTRC(src.data(), w, h, 0, 0, dst.data(), dw, h - 2, dstLeft, 0, w,
                        regionRows ? regionRows : h, 0xFF00FF00u);
  std::vector<std::string> out(h - 2);
  for (u32 i = 0; i < dst.size(); ++i)
    out[i / dw] += dst[i] == 1 ? '.' : dst[i] == 0xFF00FF00u ? 'o' : '?';
  return out;
}

TEST(Marking, ContourOfMasks) {
  // A filled 3x3 square: its eight outer pixels, not the centre.
  EXPECT_EQ(Contour({".......", ".......", "..###..", "..###..", "..###..", ".......", "......."}),
            (std::vector<std::string>{".....", ".ooo.", ".o.o.", ".ooo.", "....."}));
  // A run reaching the end of the inner row is not closed on the right; one
  // starting in the border is opened without a left edge.
  EXPECT_EQ(Contour({"......", "..####", "..####", "######", "......"}),
            (std::vector<std::string>{".ooo", ".o..", "oooo"}));
  // A run that ends on the border pixel has its right edge one column left
  // of the destination region.
  EXPECT_EQ(Contour({"....", "#...", "...."}, 1), (std::vector<std::string>{"o.."}));
  // A region of two rows: nothing, though a third row would open a run.
  EXPECT_EQ(Contour({"...", ".#.", ".#."}, 0, 2), (std::vector<std::string>{"."}));
}

}  // namespace
