// The repeat view drawn tile by tile against the same view drawn pixel by
// pixel: every view pixel folded into the tile on its own and the layers
// composited with the blend arithmetic written out here, in the exact form
// and in the fast form where the processor runs it. A grey value g covers
// with the layer's ink at coverage g: the entry of the ink ramp the view
// draws the grey layer through.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>

#include "repeat_render.h"

using namespace ostrel_examples;

namespace {

// Exact form: weight (c * o) / 255, step truncated toward the destination.
// Fast form: weight (c * o) >> 8, step floored after dividing by 256.
unsigned int BlendChannelwise(unsigned int dst, unsigned int src, unsigned int coverage,
                              unsigned int opacity, bool fast) {
  const int weight = static_cast<int>(fast ? (coverage * opacity) >> 8 : coverage * opacity / 255);
  unsigned int result = dst & 0xFF000000u;
  for (int shift = 0; shift < 24; shift += 8) {
    const int d = static_cast<int>((dst >> shift) & 0xFF),
              s = static_cast<int>((src >> shift) & 0xFF);
    const int product = (s - d) * weight;
    const int step = fast ? static_cast<int>(std::floor(product / 256.0)) : product / 255;
    result |= static_cast<unsigned int>(d + step) << shift;
  }
  return result;
}

std::vector<unsigned int> ReferenceView(const Design &design, const ViewSettings &view) {
  std::vector<unsigned int> out(static_cast<std::size_t>(view.width) * view.height);
  const _EDropKind kind = EffectiveDropKind(view);
  const unsigned int drop = EffectiveDrop(view);
  const bool fast = !view.exact && IsMMX() != 0;
  const double square = view.backdropSquare;
  const double ratio =
      static_cast<double>(drop) / (kind == eDropVertical ? design.height : design.width);
  for (unsigned int y = 0; y < view.height; ++y) {
    for (unsigned int x = 0; x < view.width; ++x) {
      const int vx = static_cast<int>(x) + view.scrollX, vy = static_cast<int>(y) + view.scrollY;
      const double cells = std::floor(vx / square) + std::floor(vy / square);
      unsigned int pixel = std::fmod(cells, 2.0) == 0 ? view.backdropColour1 : view.backdropColour2;
      int fx = -1, fy = -1;
      VPToFPDb(vx, vy, &fx, &fy, design.width, design.height, ratio, design.width, design.height,
               kind, view.zoom, view.zoom, true);
      const std::size_t at = static_cast<std::size_t>(fy) * design.width + fx;
      for (const Layer &layer : design.layers)
        pixel =
            layer.grey
                ? BlendChannelwise(pixel, layer.colour, layer.l08[at], layer.opacity, fast)
                : BlendChannelwise(pixel, layer.trc[at], layer.trc[at] >> 24, layer.opacity, fast);
      out[static_cast<std::size_t>(y) * view.width + x] = pixel;
    }
  }
  return out;
}

// A small design whose every pixel differs from its neighbours, so a view
// pixel taken from the wrong file pixel shows.
Design NoisyDesign(unsigned int width, unsigned int height) {
  Design d{width, height, {Layer{}, Layer{}}};
  Layer &grey = d.layers[0], &colour = d.layers[1];
  colour.grey = false;
  colour.opacity = 200;
  grey.colour = 0xFF3060C0u;
  for (unsigned int y = 0; y < height; ++y)
    for (unsigned int x = 0; x < width; ++x) {
      grey.l08.push_back(static_cast<unsigned char>((x * 37 + y * 101) & 0xFF));
      colour.trc.push_back(((x * 59 + y * 13) & 0xFFu) << 24 | (x * 7 & 0xFF) << 16 |
                           (y * 11 & 0xFF) << 8 | ((x + y) * 5 & 0xFF));
    }
  return d;
}

// Draws the view in the exact form and again in the fast form.
void ExpectSameAsReference(const Design &design, ViewSettings view) {
  for (const bool exact : {true, false}) {
    view.exact = exact;
    ASSERT_EQ(CheckView(design, view), "");
    const std::vector<unsigned int> drawn = RenderView(design, view),
                                    expected = ReferenceView(design, view);
    const std::size_t i =
        std::mismatch(drawn.begin(), drawn.end(), expected.begin()).first - drawn.begin();
    EXPECT_EQ(i, drawn.size()) << "first wrong pixel (" << i % view.width << ", " << i / view.width
                               << "); exact " << exact << " kind " << view.dropKind << " drop "
                               << view.drop << " zoom " << view.zoom << " scroll " << view.scrollX
                               << "," << view.scrollY;
  }
}

TEST(RepeatView, EveryPixelMatchesThePerPixelFoldForEveryDropKind) {
  const Design design = NoisyDesign(23, 17);
  const int scrolls[][2] = {{0, 0}, {-37, 11}, {150, -203}, {-1, -1}};
  for (const _EDropKind kind : {eDropNone, eDropVertical, eDropHorizontal})
    for (const double zoom : {1.0, 3.0, 0.5, 1.7, 2.25})
      for (const auto &s : scrolls)
        ExpectSameAsReference(design, ViewSettings{kind, kind == eDropHorizontal ? 9u : 6u, zoom,
                                                   s[0], s[1], 101, 77, false, 3});
}

// The largest drops the 120 x 90 tile takes; one band and seven.
TEST(RepeatView, BuiltInDesignMatchesWithLargeScrollsAndBands) {
  const Design design = SyntheticDesign();
  for (const auto &[kind, drop, bands] :
       {std::tuple{eDropHorizontal, 119u, 1u}, std::tuple{eDropVertical, 89u, 7u}})
    ExpectSameAsReference(design,
                          ViewSettings{kind, drop, 1.3, -5000, 7777, 300, 200, false, bands});
}

}  // namespace
