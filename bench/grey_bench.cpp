// Grey compositing against its scalar definition and against a trivial
// kernel that moves the same bytes through memory.
//
// Image sizes 256x256 (fits in the core's cache) and 3840x2160 (does not);
// opacity 255. Jobs:
//
//   AlphaBlendDensityToL08  a density through a random alpha buffer, fast
//                           (exact = false) and exact
//   AlphaBlendL08ToL08      a grey layer through its alpha buffer (shared
//                           geometry, blendZero set, no twoLevel)
//   ApplyAlphaToL08         a grey buffer multiplied by an alpha buffer, fast
//                           and exact
//   ApplyLUTToL08           a grey buffer mapped through a 256-entry table
//   InvertAlphaL08          an applied alpha undone (its rule in double
//                           precision per pixel)
//   MotionCopyL08ToL08      a grey layer through its alpha buffer into a
//                           separate destination, top to bottom
//
// Each job has two pairs: ours against the scalar definition ("scalar": the
// rule written as a plain per-pixel loop, whose bytes must come out the
// same; the compiler is free to vectorise it, and does for the fast forms,
// whose shifts it can widen, but not for the exact divisions by 255), and ours against the
// same-traffic kernel ("/traffic": a loop that reads the job's source bytes and reads and writes
// each destination byte once, held to its own loop; ours is then held to the scalar definition).
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "Ostrel.h"
#include "ratio.h"

namespace {

using ostrel_bench::AlignedBuffer;
using ostrel_bench::Pair;

constexpr unsigned char kOpacity = 255;
constexpr unsigned char kDensity = 0x5C;
constexpr double kOverScalarInCache = 4.0;
constexpr double kOverTraffic = 0.8;

std::uint8_t Byte(std::uint64_t x) {
  x += 0x9E3779B97F4A7C15ull;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ull;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBull;
  return static_cast<std::uint8_t>((x ^ (x >> 31)) >> 24);
}

enum class Job { kDensity, kL08ToL08, kApplyAlpha, kLut, kMotionCopy, kInvertAlpha };

struct Images {
  Images(unsigned int w, unsigned int h)
      : width(w), height(h), src(Pixels()), alpha(Pixels()), dst(Pixels()) {
    for (int i = 0; i < 256; ++i) table[i] = static_cast<std::uint8_t>(255 - i / 2);
  }
  std::size_t Pixels() const { return static_cast<std::size_t>(width) * height; }
  std::uint8_t *Src() const { return static_cast<std::uint8_t *>(src.data()); }
  std::uint8_t *Alpha() const { return static_cast<std::uint8_t *>(alpha.data()); }
  std::uint8_t *Dst() const { return static_cast<std::uint8_t *>(dst.data()); }
  std::string Size() const { return std::to_string(width) + "x" + std::to_string(height); }
  static std::uint8_t Start(std::size_t i, int which) {
    return Byte(i * 3 + static_cast<std::uint64_t>(which));
  }
  void Reset() const {
    for (std::size_t i = 0; i < Pixels(); ++i) {
      Src()[i] = Start(i, 0);
      Alpha()[i] = Start(i, 1);
      Dst()[i] = Start(i, 2);
    }
  }
  unsigned int width, height;
  AlignedBuffer src, alpha, dst;
  std::uint8_t table[256];
};

const char *JobName(Job job) {
  switch (job) {
    case Job::kDensity: return "AlphaBlendDensityToL08";
    case Job::kL08ToL08: return "AlphaBlendL08ToL08";
    case Job::kApplyAlpha: return "ApplyAlphaToL08";
    case Job::kLut: return "ApplyLUTToL08";
    case Job::kMotionCopy: return "MotionCopyL08ToL08";
    case Job::kInvertAlpha: return "InvertAlphaL08";
  }
  return "";
}

bool HasForms(Job job) { return job == Job::kDensity || job == Job::kApplyAlpha; }

void RunOurs(const Images &im, Job job, bool exact) {
  const unsigned int w = im.width, h = im.height;
  switch (job) {
    case Job::kDensity:
      AlphaBlendDensityToL08(kDensity, im.Alpha(), w, h, 0, 0, im.Dst(), w, h, 0, 0, kOpacity, w, h,
                             exact);
      break;
    case Job::kL08ToL08:
      AlphaBlendL08ToL08(im.Src(), im.Alpha(), w, h, 0, 0, im.Dst(), w, h, 0, 0, kOpacity, 1, false,
                         w, h, exact);
      break;
    case Job::kApplyAlpha:
      ApplyAlphaToL08(im.Dst(), im.Alpha(), w, h, 0, 0, kOpacity, false, w, h, exact);
      break;
    case Job::kLut:
      ApplyLUTToL08(im.Dst(), w, h, 0, 0, w, h, const_cast<std::uint8_t *>(im.table));
      break;
    case Job::kMotionCopy:
      MotionCopyL08ToL08(im.Src(), w, h, 0, 0, im.Alpha(), w, h, 0, 0, im.Dst(), w, h, 0, 0,
                         kOpacity, false, w, h, eMotionCopyDownRight, exact);
      break;
    case Job::kInvertAlpha: InvertAlphaL08(im.Dst(), im.Alpha(), w, h, 0, 0, false, w, h); break;
  }
}

// The rule of each job, one pixel at a time. d, s: grey bytes; a: alpha.
std::uint8_t ScalarPixel(Job job, bool exact, const std::uint8_t *table, int d, int s, int a) {
  const int product = a * kOpacity;
  const int weight = exact ? product / 255 : product >> 8;
  switch (job) {
    case Job::kDensity:
      return static_cast<std::uint8_t>(exact ? d + (kDensity - d) * weight / 255
                                             : d + (((kDensity - d) * weight) >> 8));
    case Job::kApplyAlpha:
      return static_cast<std::uint8_t>(exact ? d * weight / 255 : (d * a) >> 8);
    case Job::kLut: return table[d];
    case Job::kInvertAlpha: {
      if (a == 0 || a == 255) return static_cast<std::uint8_t>(d);
      double q = d * (255.0 / a);
      if (q - d < 1.0) q += 1.0;
      return static_cast<std::uint8_t>(q > 255.0 ? 255.0 : q);
    }
    default:  // grey through alpha, exact form
      return static_cast<std::uint8_t>(d + (s - d) * (product / 255) / 255);
  }
}

// One plain loop per job and form, so each loop is compiled for its rule.
// It stays one pixel at a time: left to itself the compiler turns the
// simpler rules into vector code of its own, and the pair would then measure
// two vector kernels against each other rather than the per-pixel definition.
#if defined(__GNUC__) && !defined(__clang__)
#define OSTREL_BENCH_ONE_PIXEL_AT_A_TIME __attribute__((optimize("no-tree-vectorize")))
#else
#define OSTREL_BENCH_ONE_PIXEL_AT_A_TIME
#endif
template <Job job, bool exact>
OSTREL_BENCH_ONE_PIXEL_AT_A_TIME void ScalarLoop(const Images &im) {
  std::uint8_t *const dst = im.Dst();
  const std::uint8_t *const src = im.Src(), *const alpha = im.Alpha(), *const table = im.table;
  const std::size_t n = im.Pixels();
  for (std::size_t i = 0; i < n; ++i)
    dst[i] = ScalarPixel(job, exact, table, dst[i], src[i], alpha[i]);
}

void RunScalar(const Images &im, Job job, bool exact) {
  switch (job) {
    case Job::kDensity:
      return exact ? ScalarLoop<Job::kDensity, true>(im) : ScalarLoop<Job::kDensity, false>(im);
    case Job::kApplyAlpha:
      return exact ? ScalarLoop<Job::kApplyAlpha, true>(im)
                   : ScalarLoop<Job::kApplyAlpha, false>(im);
    case Job::kLut: return ScalarLoop<Job::kLut, true>(im);
    case Job::kInvertAlpha: return ScalarLoop<Job::kInvertAlpha, true>(im);
    default: return ScalarLoop<Job::kL08ToL08, true>(im);
  }
}

// The job's memory traffic and nothing else.
void RunTraffic(const Images &im, Job job) {
  std::uint8_t *dst = im.Dst();
  const std::uint8_t *src = im.Src(), *alpha = im.Alpha();
  const std::size_t n = im.Pixels();
  if (job == Job::kLut) {
    for (std::size_t i = 0; i < n; ++i) dst[i] ^= 0x5A;
  } else if (job == Job::kL08ToL08 || job == Job::kMotionCopy) {
    for (std::size_t i = 0; i < n; ++i) dst[i] ^= src[i] ^ alpha[i];
  } else {
    for (std::size_t i = 0; i < n; ++i) dst[i] ^= alpha[i];
  }
}

std::string VerifyOurs(const Images &im, Job job, bool exact) {
  for (std::size_t i = 0; i < im.Pixels(); ++i) {
    const int want = ScalarPixel(job, exact, im.table, Images::Start(i, 2), Images::Start(i, 0),
                                 Images::Start(i, 1));
    if (im.Dst()[i] != want) {
      return "pixel " + std::to_string(i) + " is " + std::to_string(im.Dst()[i]) + ", want " +
             std::to_string(want);
    }
  }
  return {};
}

std::string VerifyTraffic(const Images &im, Job job) {
  for (std::size_t i = 0; i < im.Pixels(); ++i) {
    const int s = Images::Start(i, 0), a = Images::Start(i, 1), d = Images::Start(i, 2);
    const int want = job == Job::kLut                                     ? d ^ 0x5A
                     : (job == Job::kL08ToL08 || job == Job::kMotionCopy) ? d ^ s ^ a
                                                                          : d ^ a;
    if (im.Dst()[i] != want) return "traffic kernel wrong at byte " + std::to_string(i);
  }
  return {};
}

void AddPairs(const std::shared_ptr<Images> &im, Job job, bool exact) {
  std::string label = std::string(JobName(job)) + "/" + im->Size();
  if (HasForms(job)) label += exact ? "/exact" : "/fast";
  const bool inCache = im->width == 256;

  Pair scalar;
  scalar.label = label;
  scalar.peerName = "scalar";
  scalar.ours = [=] { RunOurs(*im, job, exact); };
  scalar.peer = [=] { RunScalar(*im, job, exact); };
  scalar.bytes = static_cast<std::int64_t>(im->Pixels());
  scalar.target = inCache ? kOverScalarInCache : 0;
  scalar.reset = [=] { im->Reset(); };
  scalar.output = {im->Dst(), im->Pixels()};
  ostrel_bench::AddPair(std::move(scalar));

  Pair traffic;
  traffic.label = label + "/traffic";
  traffic.peerName = "traffic";
  traffic.ours = [=] { RunOurs(*im, job, exact); };
  traffic.peer = [=] { RunTraffic(*im, job); };
  traffic.bytes = static_cast<std::int64_t>(im->Pixels());
  traffic.target = inCache ? 0 : kOverTraffic;
  traffic.reset = [=] { im->Reset(); };
  traffic.verify = [=](bool ours) {
    return ours ? VerifyOurs(*im, job, exact) : VerifyTraffic(*im, job);
  };
  ostrel_bench::AddPair(std::move(traffic));
}

const bool kRegistered = [] {
  for (const auto &size : {std::pair<unsigned, unsigned>{256, 256}, {3840, 2160}}) {
    const auto im = std::make_shared<Images>(size.first, size.second);
    for (Job job : {Job::kDensity, Job::kL08ToL08, Job::kApplyAlpha, Job::kLut, Job::kMotionCopy,
                    Job::kInvertAlpha}) {
      AddPairs(im, job, false);
      if (HasForms(job)) AddPairs(im, job, true);
    }
  }
  return true;
}();

}  // namespace
