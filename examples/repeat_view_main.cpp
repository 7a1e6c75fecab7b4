// ostrel-repeat-view: draws a window of an endless repeated design into a PNG.
#include <chrono>
#include <cstdio>
#include <string>

#include "cli_util.h"
#include "png_io.h"
#include "repeat_render.h"

using namespace ostrel_examples;

namespace {

static_assert(kMaxPictureSide == 16384, "the usage text names the size limit");
const char kUsage[] =
    "usage: ostrel-repeat-view [options]\n"
    "  --design FILE       design tile PNG, at most 16384 pixels a side: grey without\n"
    "                      alpha (1 to 8 bits a pixel) or colour with alpha (8 bits a\n"
    "                      channel, or a palette with transparency)\n"
    "                      (default: a built-in design of three layers)\n"
    "  --drop-kind KIND    none, vertical or horizontal (default vertical)\n"
    "  --drop N            drop in file pixels, below the tile's height (vertical)\n"
    "                      or width (horizontal); default half of it; none\n"
    "                      ignores it\n"
    "  --zoom Z            view pixels per file pixel (default 2)\n"
    "  --scroll X,Y        view position of the top-left pixel (default 0,0)\n"
    "  --size WxH          view size in pixels (default 640x400)\n"
    "  --exact             exact blend arithmetic instead of the fast form\n"
    "  --bands N           row bands drawn in parallel (default: one per processor)\n"
    "  --output FILE       PNG to write (default out/repeat-view.png; missing\n"
    "                      folders are created)\n";

int Fail(const std::string &message) {
  std::fprintf(stderr, "ostrel-repeat-view: %s\n", message.c_str());
  return 1;
}

}  // namespace

int main(int argc, char **argv) {
  ViewSettings view;
  view.zoom = 2.0;
  view.width = 640;
  view.height = 400;
  std::string designPath, output = "out/repeat-view.png";
  bool dropGiven = false;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--help" || arg == "-h") {
      std::fputs(kUsage, stdout);
      return 0;
    }
    if (arg == "--exact") {
      view.exact = true;
      continue;
    }
    if (i + 1 >= argc) return Fail("missing value after " + arg + "\n" + kUsage);
    const std::string value = argv[++i];
    long a = 0, b = 0;
    if (arg == "--design") {
      designPath = value;
    } else if (arg == "--output") {
      output = value;
    } else if (arg == "--drop-kind") {
      if (value == "none") view.dropKind = eDropNone;
      else if (value == "vertical") view.dropKind = eDropVertical;
      else if (value == "horizontal") view.dropKind = eDropHorizontal;
      else return Fail("unknown drop kind '" + value + "' (none, vertical, horizontal)");
    } else if (arg == "--drop") {
      // The tile sets the upper bound, which CheckView applies.
      if (!ParseInt(value, &a) || a < 0 || a > 2147483647)
        return Fail("bad drop '" + value + "': a whole number of pixels, 0 or more");
      view.drop = static_cast<unsigned int>(a);
      dropGiven = true;
    } else if (arg == "--zoom") {
      if (!ParseDouble(value, &view.zoom) || view.zoom <= 0)
        return Fail("bad zoom '" + value + "': a number above 0");
    } else if (arg == "--scroll") {
      if (!ParsePair(value, ',', &a, &b) || a < -1000000 || a > 1000000 || b < -1000000 ||
          b > 1000000)
        return Fail("bad scroll '" + value + "': X,Y within +-1000000");
      view.scrollX = static_cast<int>(a);
      view.scrollY = static_cast<int>(b);
    } else if (arg == "--size") {
      if (!ParsePair(value, 'x', &a, &b)) return Fail("bad size '" + value + "': WxH");
      if (a <= 0 || b <= 0) return Fail("bad size '" + value + "': zero or negative");
      if (a > 8192 || b > 8192) return Fail("bad size '" + value + "': at most 8192x8192");
      view.width = static_cast<unsigned int>(a);
      view.height = static_cast<unsigned int>(b);
    } else if (arg == "--bands") {
      if (!ParseInt(value, &a) || a <= 0 || a > 256)
        return Fail("bad band count '" + value + "': 1 to 256");
      view.bands = static_cast<unsigned int>(a);
    } else {
      return Fail("unknown option " + arg + "\n" + kUsage);
    }
  }

  std::string error = CheckOutputPaths({output});
  if (!error.empty()) return Fail(error);
  Design design;
  if (designPath.empty()) {
    design = SyntheticDesign();
  } else {
    Picture tile;
    if (!ReadPicture(designPath, PictureKinds::kGreyOrColourWithAlpha, &tile, &error))
      return Fail(error);
    design.width = tile.width;
    design.height = tile.height;
    Layer layer;
    layer.grey = tile.grey;
    layer.l08 = std::move(tile.l08);
    layer.trc = std::move(tile.trc);
    layer.colour = 0xFF2B4C9Bu;
    design.layers.push_back(std::move(layer));
  }
  if (!dropGiven) view.drop = (view.dropKind == eDropHorizontal ? design.width : design.height) / 2;
  error = CheckView(design, view);
  if (!error.empty()) return Fail(error);

  const auto start = std::chrono::steady_clock::now();
  const std::vector<unsigned int> pixels = RenderView(design, view);
  const double ms =
      std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  if (!WriteTrcPng(output, pixels, view.width, view.height, &error)) return Fail(error);
  static const char *const kinds[] = {"no drop (straight)", "vertical drop", "horizontal drop"};
  std::printf("repeat view %ux%u of a %ux%u tile, %s %u, zoom %g, scroll %d,%d: %.1f ms -> %s\n",
              view.width, view.height, design.width, design.height,
              kinds[static_cast<int>(view.dropKind)], EffectiveDrop(view), view.zoom, view.scrollX,
              view.scrollY, ms, output.c_str());
  return 0;
}
