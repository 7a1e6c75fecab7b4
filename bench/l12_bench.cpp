// The 12-bit grey members against their 8-bit siblings and against a kernel
// that moves the same words through memory, on 3840x2160 buffers.
//
// A 12-bit member moves twice the bytes of its 8-bit sibling, so it should
// take at most twice its time: the "/vs-L08" pair prints ours (the 12-bit
// call) against the sibling (the 8-bit call with the same flags on buffers
// of the same size), target ratio 0.5. The two sides do different jobs, so
// the pair checks each side against a per-pixel model of its own rule.
//
// The "/traffic" pair prints ours against a loop that reads the job's source
// words and coverage bytes and reads and writes each destination element
// once (xor, held to its own model), and holds ours to a per-pixel model of
// its rule. Opacity 255, exact form, words 0..4095, no two-level forcing.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "Ostrel.h"
#include "ratio.h"

namespace {

using ostrel_bench::AlignedBuffer;
using ostrel_bench::Pair;

constexpr unsigned char kOpacity = 255;
constexpr unsigned short kDensity12 = 0x5C3;
constexpr unsigned char kDensity8 = 0x5C;
constexpr unsigned int kColour = 0xFF2080E0u;
constexpr double kOverSibling = 0.5;  // at most twice the 8-bit sibling's time
constexpr double kOverTraffic = 0.8;

using ostrel_bench::Mix;

enum class Job {
  kL12Shared,     // AlphaBlendL12ToL12, alpha sharing the source's geometry
  kL12Own,        // AlphaBlendL12ToL12, alpha with its own geometry
  kL12Flat,       // AlphaBlendL12ToL12FlatAlpha
  kDensity,       // AlphaBlendDensityToL12 (coverage 255 - alpha)
  kDensityInv,    // AlphaBlendDensityToL12Inverted (coverage alpha)
  kDensityFlat,   // AlphaBlendDensityToL12Flat
  kMotionCopy,    // MotionCopyL12ToL12, top to bottom
  kApplyAlpha,    // ApplyAlphaToL12
  kLut,           // ApplyLUTToL12
  kTwoLevel,      // ConvertL12To2LevelL12 in place
  kTwoLevelCopy,  // ConvertL12To2LevelL12 into another buffer
  kTwoLevelL08,   // ConvertL12To2LevelL08
  kToL08,         // ConvertL012ToL08
  kToTrc,         // AlphaBlendL12ToTRC
};

const Job kJobs[] = {Job::kL12Shared,  Job::kL12Own,      Job::kL12Flat,      Job::kDensity,
                     Job::kDensityInv, Job::kDensityFlat, Job::kMotionCopy,   Job::kApplyAlpha,
                     Job::kLut,        Job::kTwoLevel,    Job::kTwoLevelCopy, Job::kTwoLevelL08,
                     Job::kToL08,      Job::kToTrc};

// What the job writes: 16-bit words, bytes or 32-bit colour pixels.
enum class Out { kWords, kBytes, kPixels };

Out OutputOf(Job job) {
  switch (job) {
    case Job::kTwoLevelL08:
    case Job::kToL08: return Out::kBytes;
    case Job::kToTrc: return Out::kPixels;
    default: return Out::kWords;
  }
}

// Reads a source buffer (words) besides the coverage and the destination.
bool ReadsSource(Job job) {
  return job == Job::kL12Shared || job == Job::kL12Own || job == Job::kL12Flat ||
         job == Job::kMotionCopy || job == Job::kTwoLevelCopy || job == Job::kTwoLevelL08 ||
         job == Job::kToL08 || job == Job::kToTrc;
}

// Reads alpha bytes.
bool ReadsAlpha(Job job) {
  return job == Job::kL12Shared || job == Job::kL12Own || job == Job::kL12Flat ||
         job == Job::kDensity || job == Job::kDensityInv || job == Job::kDensityFlat ||
         job == Job::kMotionCopy || job == Job::kApplyAlpha;
}

const char *JobName(Job job) {
  switch (job) {
    case Job::kL12Shared: return "AlphaBlendL12ToL12/shared";
    case Job::kL12Own: return "AlphaBlendL12ToL12/own";
    case Job::kL12Flat: return "AlphaBlendL12ToL12FlatAlpha";
    case Job::kDensity: return "AlphaBlendDensityToL12";
    case Job::kDensityInv: return "AlphaBlendDensityToL12Inverted";
    case Job::kDensityFlat: return "AlphaBlendDensityToL12Flat";
    case Job::kMotionCopy: return "MotionCopyL12ToL12";
    case Job::kApplyAlpha: return "ApplyAlphaToL12";
    case Job::kLut: return "ApplyLUTToL12";
    case Job::kTwoLevel: return "ConvertL12To2LevelL12/in-place";
    case Job::kTwoLevelCopy: return "ConvertL12To2LevelL12/copy";
    case Job::kTwoLevelL08: return "ConvertL12To2LevelL08";
    case Job::kToL08: return "ConvertL012ToL08";
    case Job::kToTrc: return "AlphaBlendL12ToTRC";
  }
  return "";
}

const char *SiblingName(Job job) {
  switch (job) {
    case Job::kL12Shared:
    case Job::kL12Own: return "AlphaBlendL08ToL08";
    case Job::kL12Flat: return "AlphaBlendL08ToL08FlatAlpha";
    case Job::kDensity: return "AlphaBlendDensityToL08";
    case Job::kDensityInv: return "AlphaBlendDensityToL08Inverted";
    case Job::kDensityFlat: return "AlphaBlendDensityToL08Flat";
    case Job::kMotionCopy: return "MotionCopyL08ToL08";
    case Job::kApplyAlpha: return "ApplyAlphaToL08";
    case Job::kLut: return "ApplyLUTToL08";
    case Job::kTwoLevel:
    case Job::kTwoLevelCopy:
    case Job::kTwoLevelL08:
    case Job::kToL08: return "ConvertL08To2LevelL08";
    case Job::kToTrc: return "AlphaBlendL08ToTRC";
  }
  return "";
}

struct Images {
  Images(unsigned int w, unsigned int h)
      : width(w),
        height(h),
        src(Pixels() * 2),
        dst(Pixels() * 4),
        alpha(Pixels()),
        src8(Pixels()),
        dst8(Pixels() * 4),
        table(65536 * 2) {
    for (std::size_t i = 0; i < 65536; ++i) Table()[i] = static_cast<std::uint16_t>(Mix(i) & 0xFFF);
    for (int i = 0; i < 256; ++i) table8[i] = static_cast<std::uint8_t>(255 - i / 2);
  }
  std::size_t Pixels() const { return static_cast<std::size_t>(width) * height; }
  std::string Size() const { return std::to_string(width) + "x" + std::to_string(height); }

  // The 12-bit side: source and destination words, the destination also
  // seen as bytes or colour pixels.
  std::uint16_t *Src() const { return static_cast<std::uint16_t *>(src.data()); }
  std::uint16_t *Dst() const { return static_cast<std::uint16_t *>(dst.data()); }
  std::uint8_t *DstBytes() const { return static_cast<std::uint8_t *>(dst.data()); }
  unsigned int *DstPixels() const { return static_cast<unsigned int *>(dst.data()); }
  std::uint8_t *Alpha() const { return static_cast<std::uint8_t *>(alpha.data()); }
  std::uint16_t *Table() const { return static_cast<std::uint16_t *>(table.data()); }
  // The 8-bit sibling's own buffers (the alpha buffer is shared: it is only read).
  std::uint8_t *Src8() const { return static_cast<std::uint8_t *>(src8.data()); }
  std::uint8_t *Dst8() const { return static_cast<std::uint8_t *>(dst8.data()); }
  unsigned int *Dst8Pixels() const { return static_cast<unsigned int *>(dst8.data()); }

  static std::uint16_t StartWord(std::size_t i, int which) {
    return static_cast<std::uint16_t>(Mix(i * 5 + static_cast<std::uint64_t>(which)) & 0xFFF);
  }
  static std::uint8_t StartByte(std::size_t i) {
    return static_cast<std::uint8_t>(Mix(i * 5 + 2) >> 8);
  }
  static std::uint32_t StartPixel(std::size_t i) { return Mix(i * 5 + 3) * 0x9E3779B1u; }
  void Reset(Job job) const {
    const Out out = OutputOf(job);
    for (std::size_t i = 0; i < Pixels(); ++i) {
      Src()[i] = StartWord(i, 0);
      Alpha()[i] = StartByte(i);
      if (out == Out::kPixels) {
        DstPixels()[i] = StartPixel(i);
      } else if (out == Out::kBytes) {
        DstBytes()[i] = static_cast<std::uint8_t>(StartWord(i, 1));
      } else {
        Dst()[i] = StartWord(i, 1);
      }
      Src8()[i] = static_cast<std::uint8_t>(StartWord(i, 0) >> 4);
      if (out == Out::kPixels) {
        Dst8Pixels()[i] = StartPixel(i);
      } else {
        Dst8()[i] = static_cast<std::uint8_t>(StartWord(i, 1) >> 4);
      }
    }
  }

  unsigned int width, height;
  AlignedBuffer src, dst, alpha, src8, dst8, table;
  std::uint8_t table8[256];
};

void RunOurs(const Images &im, Job job) {
  const unsigned int w = im.width, h = im.height;
  std::uint16_t *s = im.Src(), *d = im.Dst();
  std::uint8_t *a = im.Alpha();
  switch (job) {
    case Job::kL12Shared:
      AlphaBlendL12ToL12(s, a, w, h, 0, 0, d, w, h, 0, 0, kOpacity, 1, false, w, h, true);
      break;
    case Job::kL12Own:
      AlphaBlendL12ToL12(s, w, h, 0, 0, a, w, h, 0, 0, d, w, h, 0, 0, kOpacity, 1, false, w, h,
                         true);
      break;
    case Job::kL12Flat:
      AlphaBlendL12ToL12FlatAlpha(s, a, w, h, 0, 0, d, w, h, 0, 0, kOpacity, 1, false, w, h, true);
      break;
    case Job::kDensity:
      AlphaBlendDensityToL12(kDensity12, a, w, h, 0, 0, d, w, h, 0, 0, kOpacity, w, h, true);
      break;
    case Job::kDensityInv:
      AlphaBlendDensityToL12Inverted(kDensity12, a, w, h, 0, 0, d, w, h, 0, 0, kOpacity, w, h,
                                     true);
      break;
    case Job::kDensityFlat:
      AlphaBlendDensityToL12Flat(kDensity12, a, w, h, 0, 0, d, w, h, 0, 0, w, h);
      break;
    case Job::kMotionCopy:
      MotionCopyL12ToL12(s, w, h, 0, 0, a, w, h, 0, 0, d, w, h, 0, 0, kOpacity, false, w, h,
                         eMotionCopyDownRight, true);
      break;
    case Job::kApplyAlpha: ApplyAlphaToL12(d, a, w, h, 0, 0, kOpacity, w, h, true); break;
    case Job::kLut: ApplyLUTToL12(d, w, h, 0, 0, w, h, im.Table()); break;
    case Job::kTwoLevel: ConvertL12To2LevelL12(d, w, h, 0, 0, w, h); break;
    case Job::kTwoLevelCopy: ConvertL12To2LevelL12(s, w, h, 0, 0, d, w, h, 0, 0, w, h); break;
    case Job::kTwoLevelL08:
      ConvertL12To2LevelL08(s, w, h, 0, 0, im.DstBytes(), w, h, 0, 0, w, h);
      break;
    case Job::kToL08: ConvertL012ToL08(s, w, h, 0, 0, im.DstBytes(), w, h, 0, 0, w, h); break;
    case Job::kToTrc:
      AlphaBlendL12ToTRC(s, w, h, 0, 0, kColour, im.DstPixels(), w, h, 0, 0, kOpacity, w, h, true);
      break;
  }
}

void RunSibling(const Images &im, Job job) {
  const unsigned int w = im.width, h = im.height;
  std::uint8_t *s = im.Src8(), *d = im.Dst8(), *a = im.Alpha();
  switch (job) {
    case Job::kL12Shared:
      AlphaBlendL08ToL08(s, a, w, h, 0, 0, d, w, h, 0, 0, kOpacity, 1, false, w, h, true);
      break;
    case Job::kL12Own:
      AlphaBlendL08ToL08(s, w, h, 0, 0, a, w, h, 0, 0, d, w, h, 0, 0, kOpacity, 1, false, w, h,
                         true);
      break;
    case Job::kL12Flat:
      AlphaBlendL08ToL08FlatAlpha(s, a, w, h, 0, 0, d, w, h, 0, 0, kOpacity, 1, false, w, h, true);
      break;
    case Job::kDensity:
      AlphaBlendDensityToL08(kDensity8, a, w, h, 0, 0, d, w, h, 0, 0, kOpacity, w, h, true);
      break;
    case Job::kDensityInv:
      AlphaBlendDensityToL08Inverted(kDensity8, a, w, h, 0, 0, d, w, h, 0, 0, kOpacity, w, h, true);
      break;
    case Job::kDensityFlat:
      AlphaBlendDensityToL08Flat(kDensity8, a, w, h, 0, 0, d, w, h, 0, 0, w, h);
      break;
    case Job::kMotionCopy:
      MotionCopyL08ToL08(s, w, h, 0, 0, a, w, h, 0, 0, d, w, h, 0, 0, kOpacity, false, w, h,
                         eMotionCopyDownRight, true);
      break;
    case Job::kApplyAlpha: ApplyAlphaToL08(d, a, w, h, 0, 0, kOpacity, false, w, h, true); break;
    case Job::kLut:
      ApplyLUTToL08(d, w, h, 0, 0, w, h, const_cast<std::uint8_t *>(im.table8));
      break;
    case Job::kTwoLevel: ConvertL08To2LevelL08(d, w, h, 0, 0, w, h); break;
    case Job::kTwoLevelCopy:
    case Job::kTwoLevelL08:
    case Job::kToL08: ConvertL08To2LevelL08(s, w, h, 0, 0, d, w, h, 0, 0, w, h); break;
    case Job::kToTrc:
      AlphaBlendL08ToTRC(s, w, h, 0, 0, kColour, im.Dst8Pixels(), w, h, 0, 0, kOpacity, w, h, true,
                         nullptr);
      break;
  }
}

// d moved toward s by the weight, exact form.
std::int32_t Toward(std::int32_t d, std::int32_t s, std::int32_t weight) {
  return d + (s - d) * weight / 255;
}

// What pixel i of ours holds after the job, from the starting contents.
std::uint32_t Model(const Images &im, Job job, std::size_t i) {
  const std::int32_t s = Images::StartWord(i, 0), d = Images::StartWord(i, 1);
  const std::int32_t a = Images::StartByte(i);  // opacity 255: the weight is the coverage
  switch (job) {
    case Job::kL12Shared: return static_cast<std::uint16_t>(Toward(d, s / 255, a));
    case Job::kL12Own:
    case Job::kMotionCopy: return static_cast<std::uint16_t>(Toward(d, s, a));
    case Job::kL12Flat: return static_cast<std::uint16_t>(Toward(d, s / 255, a != 0 ? 255 : 0));
    case Job::kDensity: return static_cast<std::uint16_t>(Toward(d, kDensity12, 255 - a));
    case Job::kDensityInv: return static_cast<std::uint16_t>(Toward(d, kDensity12, a));
    case Job::kDensityFlat: return a != 0 ? kDensity12 : static_cast<std::uint16_t>(d);
    case Job::kApplyAlpha: return static_cast<std::uint16_t>(d * a / 255);
    case Job::kLut: return im.Table()[d];
    case Job::kTwoLevel: return d != 0 ? 255u : 0u;
    case Job::kTwoLevelCopy: return s != 0 ? 4095u : 0u;
    case Job::kTwoLevelL08: return s != 0 ? 255u : 0u;
    case Job::kToL08: return static_cast<std::uint32_t>(s >> 4);
    case Job::kToTrc: {
      const std::uint32_t p = Images::StartPixel(i);
      std::uint32_t out = p & 0xFF000000u;
      for (int shift = 0; shift <= 16; shift += 8) {
        const std::int32_t dc = static_cast<std::int32_t>((p >> shift) & 0xFF);
        const std::int32_t kc = static_cast<std::int32_t>((kColour >> shift) & 0xFF);
        out |= (static_cast<std::uint32_t>(Toward(dc, kc, s / 255)) & 0xFFu) << shift;
      }
      return out;
    }
  }
  return 0;
}

// What pixel i of the 8-bit sibling holds after its call.
std::uint32_t SiblingModel(const Images &im, Job job, std::size_t i) {
  const std::int32_t s = Images::StartWord(i, 0) >> 4, d = Images::StartWord(i, 1) >> 4;
  const std::int32_t a = Images::StartByte(i);
  switch (job) {
    case Job::kL12Shared:
    case Job::kL12Own:
    case Job::kMotionCopy: return static_cast<std::uint8_t>(Toward(d, s, a));
    case Job::kL12Flat: return static_cast<std::uint8_t>(Toward(d, s, a != 0 ? 255 : 0));
    case Job::kDensity: return static_cast<std::uint8_t>(Toward(d, kDensity8, a));
    case Job::kDensityInv: return static_cast<std::uint8_t>(Toward(d, kDensity8, 255 - a));
    case Job::kDensityFlat: return a != 0 ? kDensity8 : static_cast<std::uint8_t>(d);
    case Job::kApplyAlpha: return static_cast<std::uint8_t>(d * a / 255);
    case Job::kLut: return im.table8[d];
    case Job::kTwoLevel: return d != 0 ? 255u : 0u;
    case Job::kTwoLevelCopy:
    case Job::kTwoLevelL08:
    case Job::kToL08: return s != 0 ? 255u : 0u;
    case Job::kToTrc: {
      const std::uint32_t p = Images::StartPixel(i);
      std::uint32_t out = p & 0xFF000000u;
      for (int shift = 0; shift <= 16; shift += 8) {
        const std::int32_t dc = static_cast<std::int32_t>((p >> shift) & 0xFF);
        const std::int32_t kc = static_cast<std::int32_t>((kColour >> shift) & 0xFF);
        out |= (static_cast<std::uint32_t>(Toward(dc, kc, s)) & 0xFFu) << shift;
      }
      return out;
    }
  }
  return 0;
}

std::uint32_t OutputAt(const Images &im, Job job, std::size_t i) {
  switch (OutputOf(job)) {
    case Out::kBytes: return im.DstBytes()[i];
    case Out::kPixels: return im.DstPixels()[i];
    default: return im.Dst()[i];
  }
}

// The job's memory traffic and nothing else: each destination element gets
// the xor of the job's inputs.
std::uint32_t TrafficInput(Job job, std::size_t i) {
  if (!ReadsSource(job) && !ReadsAlpha(job)) return 0x5A;
  std::uint32_t x = 0;
  if (ReadsSource(job)) x ^= Images::StartWord(i, 0);
  if (ReadsAlpha(job)) x ^= Images::StartByte(i);
  return x;
}

void RunTraffic(const Images &im, Job job) {
  const std::size_t n = im.Pixels();
  const std::uint16_t *s = im.Src();
  const std::uint8_t *a = im.Alpha();
  const bool readsSource = ReadsSource(job), readsAlpha = ReadsAlpha(job);
  const auto input = [&](std::size_t i) -> std::uint32_t {
    if (readsSource && readsAlpha) return s[i] ^ a[i];
    return readsSource ? s[i] : readsAlpha ? a[i] : 0x5Au;
  };
  switch (OutputOf(job)) {
    case Out::kBytes: {
      std::uint8_t *d = im.DstBytes();
      for (std::size_t i = 0; i < n; ++i) d[i] ^= static_cast<std::uint8_t>(input(i));
      break;
    }
    case Out::kPixels: {
      unsigned int *d = im.DstPixels();
      for (std::size_t i = 0; i < n; ++i) d[i] ^= input(i);
      break;
    }
    default: {
      std::uint16_t *d = im.Dst();
      for (std::size_t i = 0; i < n; ++i) d[i] ^= static_cast<std::uint16_t>(input(i));
      break;
    }
  }
}

std::string VerifyOurs(const Images &im, Job job) {
  for (std::size_t i = 0; i < im.Pixels(); ++i) {
    const std::uint32_t want = Model(im, job, i), got = OutputAt(im, job, i);
    if (got != want) {
      return "pixel " + std::to_string(i) + " is " + std::to_string(got) + ", want " +
             std::to_string(want);
    }
  }
  return {};
}

std::string VerifySibling(const Images &im, Job job) {
  for (std::size_t i = 0; i < im.Pixels(); ++i) {
    const std::uint32_t want = SiblingModel(im, job, i);
    const std::uint32_t got = job == Job::kToTrc ? im.Dst8Pixels()[i] : im.Dst8()[i];
    if (got != want) {
      return std::string(SiblingName(job)) + " pixel " + std::to_string(i) + " is " +
             std::to_string(got) + ", want " + std::to_string(want);
    }
  }
  return {};
}

std::string VerifyTraffic(const Images &im, Job job) {
  for (std::size_t i = 0; i < im.Pixels(); ++i) {
    std::uint32_t start = Images::StartWord(i, 1), mask = 0xFFFF;
    if (OutputOf(job) == Out::kBytes) start &= 0xFF, mask = 0xFF;
    if (OutputOf(job) == Out::kPixels) start = Images::StartPixel(i), mask = 0xFFFFFFFFu;
    if (OutputAt(im, job, i) != ((start ^ TrafficInput(job, i)) & mask)) {
      return "traffic kernel wrong at element " + std::to_string(i);
    }
  }
  return {};
}

std::int64_t DstBytes(const Images &im, Job job) {
  const std::size_t size = OutputOf(job) == Out::kBytes ? 1 : OutputOf(job) == Out::kPixels ? 4 : 2;
  return static_cast<std::int64_t>(im.Pixels() * size);
}

void AddPairs(const std::shared_ptr<Images> &im, Job job) {
  const std::string label = std::string(JobName(job)) + "/" + im->Size();

  Pair sibling;
  sibling.label = label + "/vs-L08";
  sibling.peerName = SiblingName(job);
  sibling.ours = [=] { RunOurs(*im, job); };
  sibling.peer = [=] { RunSibling(*im, job); };
  sibling.pixels = static_cast<std::int64_t>(im->Pixels());
  sibling.target = kOverSibling;
  sibling.reset = [=] { im->Reset(job); };
  sibling.verify = [=](bool ours) { return ours ? VerifyOurs(*im, job) : VerifySibling(*im, job); };
  ostrel_bench::AddPair(std::move(sibling));

  Pair traffic;
  traffic.label = label + "/traffic";
  traffic.peerName = "traffic";
  traffic.ours = [=] { RunOurs(*im, job); };
  traffic.peer = [=] { RunTraffic(*im, job); };
  traffic.bytes = DstBytes(*im, job);
  traffic.target = kOverTraffic;
  traffic.reset = [=] { im->Reset(job); };
  traffic.verify = [=](bool ours) { return ours ? VerifyOurs(*im, job) : VerifyTraffic(*im, job); };
  ostrel_bench::AddPair(std::move(traffic));
}

const bool kRegistered = [] {
  const auto im = std::make_shared<Images>(3840, 2160);
  for (Job job : kJobs) AddPairs(im, job);
  return true;
}();

}  // namespace
