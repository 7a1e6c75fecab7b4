// The repeat view drawn tile by tile against the same view drawn pixel by
// pixel: every view pixel folded into the tile on its own and the layers
// composited with the blend arithmetic written out here, in the exact form
// and in the fast form where the processor runs it.
#include <gtest/gtest.h>

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
    const int step = !fast          ? product / 255
                     : product >= 0 ? product / 256
                                    : -((-product + 255) / 256);
    result |= static_cast<unsigned int>(d + step) << shift;
  }
  return result;
}

std::vector<unsigned int> ReferenceView(const Design &design, const ViewSettings &view) {
  std::vector<unsigned int> out(static_cast<std::size_t>(view.width) * view.height);
  const _EDropKind kind = EffectiveDropKind(view);
  const unsigned int drop = EffectiveDrop(design, view);
  const bool fast = !view.exact && IsMMX() != 0;
  const double ratio =
      static_cast<double>(drop) / (kind == eDropVertical ? design.height : design.width);
  for (unsigned int y = 0; y < view.height; ++y) {
    for (unsigned int x = 0; x < view.width; ++x) {
      const int vx = static_cast<int>(x) + view.scrollX, vy = static_cast<int>(y) + view.scrollY;
      const long long cellX = (vx >= 0 ? vx : vx - static_cast<int>(view.backdropSquare) + 1) /
                              static_cast<int>(view.backdropSquare);
      const long long cellY = (vy >= 0 ? vy : vy - static_cast<int>(view.backdropSquare) + 1) /
                              static_cast<int>(view.backdropSquare);
      unsigned int pixel = (cellX + cellY) % 2 == 0 ? view.backdropColour1 : view.backdropColour2;
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
  Design d;
  d.width = width;
  d.height = height;
  Layer grey, colour;
  colour.grey = false;
  colour.opacity = 200;
  grey.colour = 0xFF3060C0u;
  for (unsigned int y = 0; y < height; ++y)
    for (unsigned int x = 0; x < width; ++x) {
      grey.l08.push_back(static_cast<unsigned char>((x * 37 + y * 101) & 0xFF));
      colour.trc.push_back(((x * 59 + y * 13) & 0xFFu) << 24 | (x * 7 & 0xFF) << 16 |
                           (y * 11 & 0xFF) << 8 | ((x + y) * 5 & 0xFF));
    }
  d.layers = {grey, colour};
  return d;
}

void ExpectSameAsReference(const Design &design, const ViewSettings &view) {
  ASSERT_EQ(CheckView(design, view), "");
  const std::vector<unsigned int> drawn = RenderView(design, view),
                                  expected = ReferenceView(design, view);
  int wrong = 0;
  for (std::size_t i = 0; i < drawn.size() && wrong < 5; ++i)
    if (drawn[i] != expected[i]) {
      ++wrong;
      ADD_FAILURE() << "pixel (" << i % view.width << ", " << i / view.width << "): drawn "
                    << std::hex << drawn[i] << ", expected " << expected[i] << std::dec << "; kind "
                    << view.dropKind << " drop " << view.drop << " zoom " << view.zoom << " scroll "
                    << view.scrollX << "," << view.scrollY;
    }
}

ViewSettings MakeView(_EDropKind kind, unsigned int drop, double zoom, int scrollX, int scrollY,
                      unsigned int width, unsigned int height, unsigned int bands) {
  ViewSettings view;
  view.dropKind = kind;
  view.drop = drop;
  view.zoom = zoom;
  view.scrollX = scrollX;
  view.scrollY = scrollY;
  view.width = width;
  view.height = height;
  view.bands = bands;
  view.exact = true;
  return view;
}

TEST(RepeatView, EveryPixelMatchesThePerPixelFoldForEveryDropKind) {
  const Design design = NoisyDesign(23, 17);
  const _EDropKind kinds[] = {eDropNone, eDropVertical, eDropHorizontal};
  const double zooms[] = {1.0, 3.0, 0.5, 1.7, 2.25};
  const int scrolls[][2] = {{0, 0}, {-37, 11}, {150, -203}, {-1, -1}};
  for (const _EDropKind kind : kinds)
    for (const double zoom : zooms)
      for (const auto &scroll : scrolls) {
        ViewSettings view =
            MakeView(kind, kind == eDropHorizontal ? 9 : 6, zoom, scroll[0], scroll[1], 101, 77, 3);
        ExpectSameAsReference(design, view);
        view.exact = false;
        ExpectSameAsReference(design, view);
      }
}

TEST(RepeatView, BuiltInDesignMatchesWithLargeScrollsAndOneBand) {
  const Design design = SyntheticDesign();
  // A drop of more than the tile is reduced into it.
  ViewSettings view = MakeView(eDropHorizontal, 200, 1.3, -5000, 7777, 300, 200, 1);
  ExpectSameAsReference(design, view);
  view.dropKind = eDropVertical;
  view.bands = 7;
  ExpectSameAsReference(design, view);
}

}  // namespace
