// Blends into 32-bit colour pixels against pixman's OVER operator and against
// a trivial kernel that moves the same bytes through memory.
//
// Image sizes 256x256 (fits in the core's cache) and 3840x2160 (does not);
// opacity 255 throughout, so the library's weight is the coverage alone, as
// in pixman's OVER. Jobs, each in its fast (exact = false) and exact form:
//
//   AlphaBlendTRCToTRC     a TRC layer with random alpha over a TRC picture;
//                          pixman: OVER of an a8r8g8b8 source onto x8r8g8b8
//   AlphaBlendColorToTRC   a solid colour through a random 8-bit mask;
//                          pixman: OVER of a solid fill through an a8 mask
//   AlphaBlendL08ToTRC     a colour through a random grey buffer as its
//                          coverage (no lookup table); pixman: as above
//
// Each job has two pairs: ours against pixman (the "<job>/<size>/<form>"
// lines) and ours against the same-traffic kernel ("/traffic"): a plain loop
// that reads the source (pixels or coverage bytes) and reads and writes the
// destination pixels once each, which is all the memory traffic a blend
// needs. At 3840x2160 that kernel is the bandwidth limit.
//
// The two sides of a pair do not compute the same bytes (pixman's OVER takes
// the source as premultiplied and rounds differently; the trivial kernel
// computes nothing useful), so the check holds each side to its own
// definition instead: ours to a per-pixel model of the library's blend
// arithmetic, bit for bit (destination alpha kept); pixman to a
// straightforward OVER in doubles, within 2 per colour channel; the trivial
// kernel to its own loop.
#include <pixman.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>

#include "Ostrel.h"
#include "ratio.h"

namespace {

using ostrel_bench::AlignedBuffer;
using ostrel_bench::Pair;

// The paint colour of the coverage jobs: opaque, so it is its own
// premultiplied form for pixman.
constexpr std::uint32_t kColour = 0xFF3A7FC4u;
constexpr unsigned char kOpacity = 255;

// Targets: ours / pixman, and ours / the same-traffic kernel at 3840x2160.
constexpr double kFastOverPixman = 1.5;
constexpr double kExactOverPixman = 1.0;
constexpr double kOverTraffic = 0.8;
// pixman's result may differ from the OVER computed in doubles by this much.
constexpr int kPixmanTolerance = 2;

// ---- Starting contents: a pure function of the pixel index ---------------

using ostrel_bench::Mix;

// Random alpha; each colour channel random in 0..alpha, so the pixel is also
// a valid premultiplied a8r8g8b8 pixel for pixman.
std::uint32_t SourcePixel(std::size_t i) {
  const std::uint32_t r = Mix(i * 4 + 1);
  const std::uint32_t alpha = r >> 24;
  std::uint32_t pixel = alpha << 24;
  for (int shift = 0; shift <= 16; shift += 8)
    pixel |= (((r >> shift) & 0xFFu) * (alpha + 1) >> 8) << shift;
  return pixel;
}
// All 32 bits random: the alpha byte must come through the library's blends
// unchanged.
std::uint32_t DestinationPixel(std::size_t i) { return Mix(i * 4 + 2); }
std::uint8_t CoverageByte(std::size_t i) { return static_cast<std::uint8_t>(Mix(i * 4 + 3)); }

std::uint32_t Channel(std::uint32_t pixel, int shift) { return (pixel >> shift) & 0xFFu; }

// ---- The library's blend arithmetic, per pixel ----------------------------

std::uint32_t ModelPixel(bool exact, std::uint32_t d, std::uint32_t s, std::uint32_t coverage) {
  const std::uint32_t product = coverage * kOpacity;
  const int weight = static_cast<int>(exact ? product / 255 : product >> 8);
  std::uint32_t out = d & 0xFF000000u;
  for (int shift = 0; shift <= 16; shift += 8) {
    const int dc = static_cast<int>(Channel(d, shift)), sc = static_cast<int>(Channel(s, shift));
    const int diff = (sc - dc) * weight;
    // exact: truncated toward zero; fast: floor.
    const int moved =
        exact ? diff / 255 : static_cast<int>(std::floor(static_cast<double>(diff) / 256));
    out |= static_cast<std::uint32_t>(dc + moved) << shift;
  }
  return out;
}

// ---- Straightforward OVER, premultiplied source, opaque destination ------

// s + d * (1 - sa), per colour channel, all values 0..255.
double Over(double s, double sa, double d) { return s + d * (255.0 - sa) / 255.0; }

enum class Job { kTrcToTrc, kColourToTrc, kL08ToTrc };

const char *JobName(Job job) {
  switch (job) {
    case Job::kTrcToTrc: return "AlphaBlendTRCToTRC";
    case Job::kColourToTrc: return "AlphaBlendColorToTRC";
    case Job::kL08ToTrc: return "AlphaBlendL08ToTRC";
  }
  return "";
}

// The buffers of one image size and pixman's images over them, shared by all
// of its pairs: pairs run one after another, and each check resets them.
struct Images {
  Images(unsigned int w, unsigned int h)
      : width(w), height(h), src(Pixels() * 4), dst(Pixels() * 4), coverage(Pixels()) {
    pixmanSrc = pixman_image_create_bits(PIXMAN_a8r8g8b8, static_cast<int>(w), static_cast<int>(h),
                                         Src(), static_cast<int>(w * 4));
    pixmanDst = pixman_image_create_bits(PIXMAN_x8r8g8b8, static_cast<int>(w), static_cast<int>(h),
                                         Dst(), static_cast<int>(w * 4));
    // Rows of w bytes; both widths are multiples of 4, as pixman needs.
    pixmanMask = pixman_image_create_bits(PIXMAN_a8, static_cast<int>(w), static_cast<int>(h),
                                          static_cast<std::uint32_t *>(coverage.data()),
                                          static_cast<int>(w));
    const auto wide = [](std::uint32_t byte) { return static_cast<std::uint16_t>(byte * 257); };
    const pixman_color_t colour = {wide(Channel(kColour, 16)), wide(Channel(kColour, 8)),
                                   wide(Channel(kColour, 0)), wide(Channel(kColour, 24))};
    pixmanSolid = pixman_image_create_solid_fill(&colour);
    if (!pixmanSrc || !pixmanDst || !pixmanMask || !pixmanSolid) std::abort();
  }
  ~Images() {
    pixman_image_unref(pixmanSrc);
    pixman_image_unref(pixmanDst);
    pixman_image_unref(pixmanMask);
    pixman_image_unref(pixmanSolid);
  }
  Images(const Images &) = delete;
  Images &operator=(const Images &) = delete;

  std::size_t Pixels() const { return static_cast<std::size_t>(width) * height; }
  std::uint32_t *Src() const { return static_cast<std::uint32_t *>(src.data()); }
  std::uint32_t *Dst() const { return static_cast<std::uint32_t *>(dst.data()); }
  std::uint8_t *Coverage() const { return static_cast<std::uint8_t *>(coverage.data()); }
  std::string Size() const { return std::to_string(width) + "x" + std::to_string(height); }

  void Reset() const {
    for (std::size_t i = 0; i < Pixels(); ++i) {
      Src()[i] = SourcePixel(i);
      Dst()[i] = DestinationPixel(i);
      Coverage()[i] = CoverageByte(i);
    }
  }

  unsigned int width, height;
  AlignedBuffer src, dst, coverage;
  pixman_image_t *pixmanSrc = nullptr, *pixmanDst = nullptr, *pixmanMask = nullptr,
                 *pixmanSolid = nullptr;
};

// ---- The three sides ------------------------------------------------------

void RunOurs(const Images &im, Job job, bool exact) {
  const unsigned int w = im.width, h = im.height;
  switch (job) {
    case Job::kTrcToTrc:
      AlphaBlendTRCToTRC(im.Src(), w, h, 0, 0, im.Dst(), w, h, 0, 0, kOpacity, w, h, exact);
      break;
    case Job::kColourToTrc:
      AlphaBlendColorToTRC(kColour, im.Coverage(), w, h, 0, 0, im.Dst(), w, h, 0, 0, kOpacity, w, h,
                           exact);
      break;
    case Job::kL08ToTrc:
      AlphaBlendL08ToTRC(im.Coverage(), w, h, 0, 0, kColour, im.Dst(), w, h, 0, 0, kOpacity, w, h,
                         exact, nullptr);
      break;
  }
}

void RunPixman(const Images &im, Job job) {
  const int w = static_cast<int>(im.width), h = static_cast<int>(im.height);
  if (job == Job::kTrcToTrc) {
    pixman_image_composite32(PIXMAN_OP_OVER, im.pixmanSrc, nullptr, im.pixmanDst, 0, 0, 0, 0, 0, 0,
                             w, h);
  } else {
    pixman_image_composite32(PIXMAN_OP_OVER, im.pixmanSolid, im.pixmanMask, im.pixmanDst, 0, 0, 0,
                             0, 0, 0, w, h);
  }
}

// Reads the source (4 bytes a pixel, or 1 coverage byte) and reads and
// writes each destination pixel once: a blend's memory traffic.
void RunTraffic(const Images &im, Job job) {
  std::uint32_t *dst = im.Dst();
  const std::size_t n = im.Pixels();
  if (job == Job::kTrcToTrc) {
    const std::uint32_t *src = im.Src();
    for (std::size_t i = 0; i < n; ++i) dst[i] ^= src[i];
  } else {
    const std::uint8_t *bytes = im.Coverage();
    for (std::size_t i = 0; i < n; ++i) dst[i] ^= bytes[i];
  }
}

// ---- Checks against the starting contents --------------------------------

std::string Describe(std::size_t i, const Images &im, std::uint32_t got, std::uint32_t want) {
  std::ostringstream text;
  text << std::hex << "pixel (" << std::dec << i % im.width << ", " << i / im.width << std::hex
       << ") is 0x" << got << ", want 0x" << want;
  return text.str();
}

std::string VerifyOurs(const Images &im, Job job, bool exact) {
  for (std::size_t i = 0; i < im.Pixels(); ++i) {
    const std::uint32_t d = DestinationPixel(i);
    const std::uint32_t want = job == Job::kTrcToTrc
                                   ? ModelPixel(exact, d, SourcePixel(i), SourcePixel(i) >> 24)
                                   : ModelPixel(exact, d, kColour, CoverageByte(i));
    if (im.Dst()[i] != want) return Describe(i, im, im.Dst()[i], want);
  }
  return {};
}

// Colour channels only: the top byte of an x8r8g8b8 pixel has no meaning.
std::string VerifyPixman(const Images &im, Job job) {
  for (std::size_t i = 0; i < im.Pixels(); ++i) {
    const std::uint32_t d = DestinationPixel(i);
    std::uint32_t want = 0;
    bool near = true;
    for (int shift = 0; shift <= 16; shift += 8) {
      double value;
      if (job == Job::kTrcToTrc) {
        const std::uint32_t s = SourcePixel(i);
        value = Over(Channel(s, shift), s >> 24, Channel(d, shift));
      } else {
        // The opaque colour scaled by the mask is the premultiplied source.
        const double m = CoverageByte(i);
        value = Over(Channel(kColour, shift) * m / 255.0, m, Channel(d, shift));
      }
      const long rounded = std::lround(value);
      want |= static_cast<std::uint32_t>(rounded) << shift;
      near = near && std::labs(static_cast<long>(Channel(im.Dst()[i], shift)) - rounded) <=
                         kPixmanTolerance;
    }
    if (!near) {
      return Describe(i, im, im.Dst()[i] & 0xFFFFFFu, want) + " (OVER, colour channels, within " +
             std::to_string(kPixmanTolerance) + ")";
    }
  }
  return {};
}

std::string VerifyTraffic(const Images &im, Job job) {
  for (std::size_t i = 0; i < im.Pixels(); ++i) {
    const std::uint32_t want =
        DestinationPixel(i) ^ (job == Job::kTrcToTrc ? SourcePixel(i) : CoverageByte(i));
    if (im.Dst()[i] != want) return Describe(i, im, im.Dst()[i], want);
  }
  return {};
}

// ---- Pairs ----------------------------------------------------------------

void AddPairs(const std::shared_ptr<Images> &im, Job job, bool exact) {
  const std::string label =
      std::string(JobName(job)) + "/" + im->Size() + (exact ? "/exact" : "/fast");
  const bool large = im->Pixels() > 256 * 256;

  Pair vsPixman;
  vsPixman.label = label;
  vsPixman.peerName = "pixman";
  vsPixman.ours = [im, job, exact] { RunOurs(*im, job, exact); };
  vsPixman.peer = [im, job] { RunPixman(*im, job); };
  vsPixman.pixels = static_cast<std::int64_t>(im->Pixels());
  vsPixman.target = exact ? kExactOverPixman : kFastOverPixman;
  vsPixman.reset = [im] { im->Reset(); };
  vsPixman.verify = [im, job, exact](bool ours) {
    return ours ? VerifyOurs(*im, job, exact) : VerifyPixman(*im, job);
  };
  ostrel_bench::AddPair(std::move(vsPixman));

  Pair vsTraffic;
  vsTraffic.label = label + "/traffic";
  vsTraffic.peerName = "same-traffic";
  vsTraffic.ours = [im, job, exact] { RunOurs(*im, job, exact); };
  vsTraffic.peer = [im, job] { RunTraffic(*im, job); };
  vsTraffic.pixels = static_cast<std::int64_t>(im->Pixels());
  vsTraffic.target = large ? kOverTraffic : 0;
  vsTraffic.reset = [im] { im->Reset(); };
  vsTraffic.verify = [im, job, exact](bool ours) {
    return ours ? VerifyOurs(*im, job, exact) : VerifyTraffic(*im, job);
  };
  ostrel_bench::AddPair(std::move(vsTraffic));
}

[[maybe_unused]] const bool kRegistered = [] {
  const unsigned int sizes[][2] = {{256, 256}, {3840, 2160}};
  for (const auto &size : sizes) {
    auto im = std::make_shared<Images>(size[0], size[1]);
    for (Job job : {Job::kTrcToTrc, Job::kColourToTrc, Job::kL08ToTrc}) {
      AddPairs(im, job, false);
      AddPairs(im, job, true);
    }
  }
  return true;
}();

}  // namespace
