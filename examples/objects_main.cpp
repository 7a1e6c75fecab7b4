// ostrel-objects: labels the objects of a mask, measures them, and writes a
// picture with their outlines, a CSV of their features and the outlines as
// an SVG path (the vector file a cutter or an embroidery program takes).
#include <Ostrel.h>
#include <VornelCoordPolygon.h>
#include <VornelException.h>

#include <chrono>
#include <climits>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "cli_util.h"
#include "png_io.h"

using namespace ostrel_examples;

namespace {

static_assert(kMaxPictureSide == 16384, "the usage text names the size limit");
const char kUsage[] =
    "usage: ostrel-objects [options]\n"
    "  --mask FILE     grey PNG without alpha, 1 to 8 bits a pixel, at most 16384\n"
    "                  pixels a side; non-zero pixels are objects\n"
    "                  (default: a built-in mask of a few shapes)\n"
    "  --frame N       width of the soft frame round the objects, 1..32 (default 6)\n"
    "  --output FILE   picture to write (default out/objects.png)\n"
    "  --csv FILE      features to write (default out/objects.csv)\n"
    "  --svg FILE      outlines to write (default out/objects.svg)\n"
    "Missing output folders are created. All three files are written, or none.\n";

int Fail(const std::string &message) {
  std::fprintf(stderr, "ostrel-objects: %s\n", message.c_str());
  return 1;
}

// A 320 x 200 mask: a rectangle, a disc, a ring, a tilted bar, an L and a row
// of small squares.
Picture SyntheticMask() {
  Picture m;
  m.width = 320;
  m.height = 200;
  m.grey = true;
  m.l08.assign(static_cast<std::size_t>(m.width) * m.height, 0);
  for (int y = 0; y < 200; ++y)
    for (int x = 0; x < 320; ++x) {
      const double disc = std::hypot(x - 140.0, y - 60.0), ring = std::hypot(x - 255.0, y - 62.0);
      const double u = (x - 80) * 0.8 + (y - 145) * 0.6, v = -(x - 80) * 0.6 + (y - 145) * 0.8;
      const bool inside = (x >= 20 && x < 70 && y >= 20 && y < 50) || disc < 28 ||
                          (ring >= 20 && ring < 34) || (std::fabs(u) < 45 && std::fabs(v) < 9) ||
                          (x >= 160 && x < 176 && y >= 110 && y < 180) ||
                          (x >= 160 && x < 220 && y >= 164 && y < 180) ||
                          (y >= 120 && y < 130 && x >= 240 && x < 310 && (x - 240) % 18 < 10);
      if (inside) m.l08[static_cast<std::size_t>(y) * 320 + x] = 255;
    }
  return m;
}

// The outlines of the mask's objects and holes as one SVG path in pixel
// units, filled by the even-odd rule so that holes stay open. Every figure
// runs along pixel edges, so each vertex after the first moves along one
// axis: H or V.
bool OutlinesSvg(Picture &mask, std::string *svg, std::string *error) {
  ICoordPolygon *polygon = nullptr;
  if (DllGetCoordPolygonSetRes("ostrel-objects", __LINE__, &polygon) < 0) {
    *error = "cannot create a polygon";
    return false;
  }
  char text[160];
  std::snprintf(text, sizeof text,
                "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%u\" height=\"%u\" "
                "viewBox=\"0 0 %u %u\">\n",
                mask.width, mask.height, mask.width, mask.height);
  *svg = text;
  *svg +=
      "<rect width=\"100%\" height=\"100%\" fill=\"#1c1f2a\"/>\n"
      "<path fill=\"#3fb8e8\" fill-rule=\"evenodd\" stroke=\"#ffffff\" "
      "stroke-width=\"0.5\" d=\"";
  try {
    GetContourPolygonFromBuffer2(mask.l08.data(), mask.width, mask.height, 0, 0, mask.width,
                                 mask.height, polygon);
    long figures = 0;
    MakeException(polygon->GetFigureCount(&figures), polygon);
    for (long f = 0; f < figures; ++f) {
      long first = 0, count = 0;
      MakeException(polygon->GetFigure(f, &first, &count), polygon);
      double py = 0;
      for (long i = 0; i < count; ++i) {
        double x = 0, y = 0;
        MakeException(polygon->GetXY(first + i, &x, &y), polygon);
        if (i == 0) std::snprintf(text, sizeof text, "M%.0f %.0f", x, y);
        else if (y == py) std::snprintf(text, sizeof text, "H%.0f", x);
        else std::snprintf(text, sizeof text, "V%.0f", y);
        *svg += text;
        py = y;
      }
      *svg += "Z";
    }
  } catch (const CVornelException &e) {
    polygon->Release();
    *error = std::string("cannot trace the outlines: ") + e.what();
    return false;
  }
  polygon->Release();
  *svg += "\"/>\n</svg>\n";
  return true;
}

}  // namespace

int main(int argc, char **argv) {
  std::string maskPath, output = "out/objects.png", csvPath = "out/objects.csv",
                        svgPath = "out/objects.svg";
  long frameWidth = 6;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--help" || arg == "-h") {
      std::fputs(kUsage, stdout);
      return 0;
    }
    if (i + 1 >= argc) return Fail("missing value after " + arg + "\n" + kUsage);
    const std::string value = argv[++i];
    if (arg == "--mask") maskPath = value;
    else if (arg == "--output") output = value;
    else if (arg == "--csv") csvPath = value;
    else if (arg == "--svg") svgPath = value;
    else if (arg == "--frame") {
      if (!ParseInt(value, &frameWidth) || frameWidth < 1 || frameWidth > 32)
        return Fail("bad frame width '" + value + "': 1 to 32");
    } else {
      return Fail("unknown option " + arg + "\n" + kUsage);
    }
  }

  std::string error = CheckOutputPaths({output, csvPath, svgPath});
  if (!error.empty()) return Fail(error);
  Picture mask;
  if (maskPath.empty()) mask = SyntheticMask();
  else if (!ReadPicture(maskPath, PictureKinds::kGrey, &mask, &error)) return Fail(error);

  const auto start = std::chrono::steady_clock::now();
  // The mask is worked on inside a background border wide enough for the
  // frame: labelling and contours never reach a buffer's last column or
  // row, and the frame only tests pixels frameWidth from every edge.
  const unsigned int frame = static_cast<unsigned int>(frameWidth);
  const unsigned int pad = frame + 2, w = mask.width, h = mask.height;
  const unsigned int pw = w + 2 * pad, ph = h + 2 * pad;
  const std::size_t padded = static_cast<std::size_t>(pw) * ph;
  std::vector<int> labels(padded, 0), values(padded, 0);
  std::vector<unsigned char> outline(padded, 0), frameSource(padded, 0), glow(padded, 0);
  // The frame's value at distance 0 is (frame + 1) / frame times the mask
  // value; this level keeps it within a byte.
  const unsigned char frameLevel = static_cast<unsigned char>(255 * frame / (frame + 1));
  for (unsigned int y = 0; y < h; ++y)
    for (unsigned int x = 0; x < w; ++x) {
      const unsigned char v = mask.l08[static_cast<std::size_t>(y) * w + x];
      const std::size_t at = static_cast<std::size_t>(y + pad) * pw + x + pad;
      values[at] = v;
      if (v != 0) {
        labels[at] = 1;
        outline[at] = 255;
        frameSource[at] = frameLevel;
      }
    }
  const int firstLabel = 2;
  const int count = ColorBinaryObjects<int>(
      labels.data(), static_cast<int>(pw), static_cast<int>(ph), 0, 0, static_cast<int>(pw) - 1,
      static_cast<int>(ph) - 1, 0, 1, firstLabel, true, INT_MAX);
  std::vector<SFeature> features(static_cast<std::size_t>(count > 0 ? count : 1));
  if (count > 0) {
    if (InitFeatureTables(1, 360.0) != 0) return Fail("cannot build the feature tables");
    unsigned char aborted = 0;
    const int result = MultiObjectFeatureExtract<int>(
        labels.data(), static_cast<int>(pw), static_cast<int>(ph), 0, 0, static_cast<int>(pw) - 1,
        static_cast<int>(ph) - 1, values.data(), firstLabel, count, features.data(),
        static_cast<EFeaturesNeeded>(eFeatureBasic | eFeatureCentroid | eFeatureOrientation |
                                     eFeatureHistogram),
        &aborted);
    ReleaseFeatureTables();
    if (result != 0)
      return Fail(aborted ? "feature extraction aborted" : "feature extraction failed");
  }

  // The picture: a dark ground, a soft glow round the objects, the objects
  // in colours by label, their outlines in white.
  std::vector<unsigned int> picture(static_cast<std::size_t>(w) * h);
  FillTRCBuffer(picture.data(), w, h, 0, 0, w, h, 0xFF1C1F2Au);
  int *table = CreateDistTableForSoftFrame(frame);
  SoftFrameL08toL08(frameSource.data(), glow.data(), pw, ph, table, frame, frame);
  delete[] table;
  AlphaBlendL08ToTRC(glow.data(), pw, ph, pad, pad, 0xFF3FB8E8u, picture.data(), w, h, 0, 0, 255, w,
                     h, false, nullptr);
  static const unsigned int palette[] = {0xE8505B, 0xF9A03F, 0x6BCB77,
                                         0x4D96FF, 0xB983FF, 0xFFD93D};
  std::vector<unsigned int> fills(picture.size(), 0);
  for (unsigned int y = 0; y < h; ++y)
    for (unsigned int x = 0; x < w; ++x) {
      const int label = labels[static_cast<std::size_t>(y + pad) * pw + x + pad];
      if (label >= firstLabel)
        fills[static_cast<std::size_t>(y) * w + x] =
            0xD0000000u | palette[(label - firstLabel) % 6];
    }
  AlphaBlendTRCToTRC(fills.data(), w, h, 0, 0, picture.data(), w, h, 0, 0, 255, w, h, false);
  DrawContourOfL08toTRC(outline.data(), pw, ph, pad - 1, pad - 1, picture.data(), w, h, 0, 0, w + 2,
                        h + 2, 0xFFFFFFFFu);
  std::string svg;
  if (!OutlinesSvg(mask, &svg, &error)) return Fail(error);
  const double ms =
      std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();

  std::string csv = "label,pixels,centroid_x,centroid_y,orientation_deg,perimeter,roundness\n";
  const double pi = std::acos(-1.0);
  for (int i = 0; i < count; ++i) {
    const SFeature &f = features[static_cast<std::size_t>(i)];
    char line[256];
    std::snprintf(line, sizeof line, "%d,%d,%.3f,%.3f,%.2f,%.3f,%.4f\n", firstLabel + i,
                  f.pixelCount, f.centroidX - pad, f.centroidY - pad, f.orientation * 180.0 / pi,
                  f.perimeter, f.roundness);
    csv += line;
  }
  OutputFiles outputs;
  if (!outputs.AddTrcPng(output, picture, w, h, &error) || !outputs.AddText(csvPath, csv, &error) ||
      !outputs.AddText(svgPath, svg, &error) || !outputs.Commit(&error))
    return Fail(error);
  std::printf("objects: %ux%u mask, %d objects found, %.1f ms -> %s, %s, %s\n", w, h, count, ms,
              output.c_str(), csvPath.c_str(), svgPath.c_str());
  return 0;
}
