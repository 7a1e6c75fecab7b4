// The tone operations against a kernel that moves the same bytes through
// memory, and darken and lighten of colour pixels also against pixman, on
// 3840x2160 buffers.
//
// Every member runs in each form it has: fast (`exact` false; the fast form
// runs where the library's fast-form flag is set, which IsMMX() reports) and
// exact. Opacity 255, alpha and protection buffers present, tone tables and
// the palette random. One table (kMembers) says what each member reads and
// writes; the calls, the per-pixel models and the same-traffic kernels are
// driven by it.
//
// The "/traffic" pair prints ours against a plain loop that reads the
// member's source elements and alpha (or protection) bytes and reads and
// writes each destination element once (xor; the ink move also writes its
// source), which is all the memory traffic the member needs. Target 0.80.
//
// DarkerTRCToTRCWithAlpha and LighterTRCToTRCWithAlpha are also paired with
// pixman's PIXMAN_OP_DARKEN and PIXMAN_OP_LIGHTEN (the pair without a suffix
// after the form): an opaque a8r8g8b8 source through the alpha buffer as an
// a8 mask onto an x8r8g8b8 destination. With an opaque source and
// destination that is (1 - m) d + m min(s, d) (max for lighten), the
// library's rule with m as the coverage. Target: faster than pixman (1.00).
// Of pixman's two destination formats for this, x8r8g8b8 timed no slower
// than a8r8g8b8 (a darken of this size, best of 16 each, alternating: 130
// against 132 ms) and needs no opaque alpha byte in the destination, whose
// alpha byte the library must keep.
//
// The two sides of a pair do different jobs, so each is checked on its own
// before timing, on every 16th row and the last (all columns): ours bit for
// bit against a per-pixel model of its rule written here (source and
// destination, the destination's alpha byte included), pixman's colour
// channels within 2 of the formula above in doubles, the same-traffic kernel
// against its own xor.
#include <pixman.h>

#include <algorithm>
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

constexpr unsigned int kWidth = 3840, kHeight = 2160;
constexpr std::uint32_t kOpacity = 255;
// The recolouring: pixels within the tolerance of kFrom move toward kTo.
constexpr std::uint32_t kFrom = 0x00806040u, kTo = 0x003070C0u;
constexpr unsigned char kTolerance = 40;

constexpr double kOverTraffic = 0.8;
constexpr double kOverPixman = 1.0;
// pixman's result may differ from the formula in doubles by this much.
constexpr int kPixmanTolerance = 2;

using ostrel_bench::Mix;

// ---- The members ------------------------------------------------------------

enum class Job {
  kTone,         // TransferToneL08ToL08
  kMove,         // MoveToneL08ToL08Prot
  kRamp,         // TransferToneL08ToTRC
  kLuma,         // TransferToneTRCToL08
  kDarkerL08,    // DarkerL08ToL08WithAlpha
  kLighterL08,   // LighterL08ToL08WithAlpha
  kDarkerL12,    // DarkerL12ToL12WithAlpha
  kLighterL12,   // LighterL12ToL12WithAlpha
  kDarkerTrc,    // DarkerTRCToTRCWithAlpha
  kLighterTrc,   // LighterTRCToTRCWithAlpha
  kChangeColour  // ChangeColorOfTRCWithAlpha
};

// The elements of a buffer: none, bytes, 12-bit words or TRC pixels.
enum class Elem { kNone, kByte, kWord, kPixel };

struct Member {
  Job job;
  const char *name;
  Elem src;        // the source buffer (kNone: one-buffer member)
  Elem dst;        // the buffer written
  bool bytes;      // reads an alpha or protection byte per pixel
  bool writesSrc;  // the ink move writes its source too
  bool bothForms;  // has a fast form
  bool pixman;     // also paired with pixman's darken or lighten
};

const Member kMembers[] = {
    {Job::kTone, "TransferToneL08ToL08", Elem::kByte, Elem::kByte, false, false, true, false},
    {Job::kMove, "MoveToneL08ToL08Prot", Elem::kByte, Elem::kByte, true, true, false, false},
    {Job::kRamp, "TransferToneL08ToTRC", Elem::kByte, Elem::kPixel, false, false, true, false},
    {Job::kLuma, "TransferToneTRCToL08", Elem::kPixel, Elem::kByte, false, false, true, false},
    {Job::kDarkerL08, "DarkerL08ToL08WithAlpha", Elem::kByte, Elem::kByte, true, false, true,
     false},
    {Job::kLighterL08, "LighterL08ToL08WithAlpha", Elem::kByte, Elem::kByte, true, false, true,
     false},
    {Job::kDarkerL12, "DarkerL12ToL12WithAlpha", Elem::kWord, Elem::kWord, true, false, false,
     false},
    {Job::kLighterL12, "LighterL12ToL12WithAlpha", Elem::kWord, Elem::kWord, true, false, false,
     false},
    {Job::kDarkerTrc, "DarkerTRCToTRCWithAlpha", Elem::kPixel, Elem::kPixel, true, false, true,
     true},
    {Job::kLighterTrc, "LighterTRCToTRCWithAlpha", Elem::kPixel, Elem::kPixel, true, false, true,
     true},
    {Job::kChangeColour, "ChangeColorOfTRCWithAlpha", Elem::kNone, Elem::kPixel, true, false, true,
     false},
};

bool Lighter(Job job) {
  return job == Job::kLighterL08 || job == Job::kLighterL12 || job == Job::kLighterTrc;
}

std::uint32_t Channel(std::uint32_t pixel, int shift) { return (pixel >> shift) & 0xFFu; }

// ---- Starting contents: a pure function of the member and the index ---------

// The value an element of the kind can hold, from 32 random bits.
std::uint32_t AsElem(Elem kind, std::uint32_t bits) {
  switch (kind) {
    case Elem::kByte: return bits & 0xFFu;
    case Elem::kWord: return bits & 0xFFFu;
    case Elem::kPixel: return bits;
    default: return 0;
  }
}

// The bits an element of the kind stores.
std::uint32_t ElemMask(Elem kind) {
  return kind == Elem::kByte ? 0xFFu : kind == Elem::kWord ? 0xFFFFu : 0xFFFFFFFFu;
}

std::uint32_t StartSrc(const Member &m, std::size_t i) {
  const std::uint32_t bits = AsElem(m.src, Mix(i * 4 + 1));
  // Opaque, so the darken and lighten pixels mean the same to pixman; the
  // library ignores this byte.
  return m.pixman ? bits | 0xFF000000u : bits;
}

// All 32 bits random for TRC (the alpha byte must come through unchanged),
// except that the recolouring gets about half its pixels near kFrom.
std::uint32_t StartDst(const Member &m, std::size_t i) {
  const std::uint32_t bits = Mix(i * 4 + 2);
  if (m.job != Job::kChangeColour || (bits & 1u) == 0) return AsElem(m.dst, bits);
  const std::uint32_t offsets = Mix(i * 4 + 3);
  std::uint32_t pixel = bits & 0xFF000000u;
  for (int shift = 0; shift <= 16; shift += 8) {
    const int offset = static_cast<int>(Channel(offsets, shift) % 97) - 48;  // -48..48
    pixel |= static_cast<std::uint32_t>(static_cast<int>(Channel(kFrom, shift)) + offset) << shift;
  }
  return pixel;
}

// Alpha bytes, or for the ink move protection bytes, a quarter of them set.
std::uint32_t StartByte(const Member &m, std::size_t i) {
  const std::uint32_t bits = Mix(i * 4 + 4);
  if (m.job == Job::kMove) return (bits & 3u) == 0 ? (bits >> 8 & 0xFFu) | 1u : 0u;
  return bits & 0xFFu;
}

// ---- Buffers and pixman's images over them -----------------------------------

struct Images {
  Images() : src(Pixels() * 4), dst(Pixels() * 4), bytes(Pixels()) {
    for (std::size_t i = 0; i < 256; ++i) {
      tone[i] = static_cast<std::uint8_t>(Mix(i + 1000));
      palette[i] = Mix(i + 2000);
    }
    const int w = static_cast<int>(kWidth), h = static_cast<int>(kHeight);
    // x8r8g8b8: pixman takes the destination as opaque, as the library's
    // rule does, whatever its alpha byte holds (see the top of the file).
    pixmanSrc = pixman_image_create_bits(PIXMAN_a8r8g8b8, w, h, SrcPixels(), w * 4);
    pixmanDst = pixman_image_create_bits(PIXMAN_x8r8g8b8, w, h, DstPixels(), w * 4);
    pixmanMask =
        pixman_image_create_bits(PIXMAN_a8, w, h, static_cast<std::uint32_t *>(bytes.data()), w);
    if (!pixmanSrc || !pixmanDst || !pixmanMask) std::abort();
  }
  ~Images() {
    pixman_image_unref(pixmanSrc);
    pixman_image_unref(pixmanDst);
    pixman_image_unref(pixmanMask);
  }
  Images(const Images &) = delete;
  Images &operator=(const Images &) = delete;

  static std::size_t Pixels() { return std::size_t{kWidth} * kHeight; }
  std::uint8_t *SrcBytes() const { return static_cast<std::uint8_t *>(src.data()); }
  std::uint16_t *SrcWords() const { return static_cast<std::uint16_t *>(src.data()); }
  unsigned int *SrcPixels() const { return static_cast<unsigned int *>(src.data()); }
  std::uint8_t *DstBytes() const { return static_cast<std::uint8_t *>(dst.data()); }
  std::uint16_t *DstWords() const { return static_cast<std::uint16_t *>(dst.data()); }
  unsigned int *DstPixels() const { return static_cast<unsigned int *>(dst.data()); }
  std::uint8_t *Bytes() const { return static_cast<std::uint8_t *>(bytes.data()); }

  static std::uint32_t Get(const AlignedBuffer &b, Elem kind, std::size_t i) {
    switch (kind) {
      case Elem::kByte: return static_cast<const std::uint8_t *>(b.data())[i];
      case Elem::kWord: return static_cast<const std::uint16_t *>(b.data())[i];
      case Elem::kPixel: return static_cast<const std::uint32_t *>(b.data())[i];
      default: return 0;
    }
  }
  static void Set(const AlignedBuffer &b, Elem kind, std::size_t i, std::uint32_t v) {
    switch (kind) {
      case Elem::kByte:
        static_cast<std::uint8_t *>(b.data())[i] = static_cast<std::uint8_t>(v);
        break;
      case Elem::kWord:
        static_cast<std::uint16_t *>(b.data())[i] = static_cast<std::uint16_t>(v);
        break;
      case Elem::kPixel: static_cast<std::uint32_t *>(b.data())[i] = v; break;
      default: break;
    }
  }

  void Reset(const Member &m) const {
    for (std::size_t i = 0; i < Pixels(); ++i) {
      Set(src, m.src, i, StartSrc(m, i));
      Set(dst, m.dst, i, StartDst(m, i));
      Bytes()[i] = static_cast<std::uint8_t>(StartByte(m, i));
    }
  }

  AlignedBuffer src, dst, bytes;
  std::uint8_t tone[256];
  std::uint32_t palette[256];
  pixman_image_t *pixmanSrc = nullptr, *pixmanDst = nullptr, *pixmanMask = nullptr;
};

// ---- The sides ----------------------------------------------------------------

void RunOurs(const Images &im, Job job, bool exact) {
  const unsigned int w = kWidth, h = kHeight;
  const unsigned char o = kOpacity;
  std::uint8_t *a = im.Bytes();
  switch (job) {
    case Job::kTone:
      TransferToneL08ToL08(im.SrcBytes(), w, h, 0, 0, im.DstBytes(), w, h, 0, 0, im.tone, o, w, h,
                           exact);
      break;
    case Job::kMove:
      MoveToneL08ToL08Prot(im.SrcBytes(), w, h, 0, 0, a, w, h, 0, 0, im.DstBytes(), w, h, 0, 0, o,
                           w, h);
      break;
    case Job::kRamp:
      TransferToneL08ToTRC(im.SrcBytes(), w, h, 0, 0, im.DstPixels(), w, h, 0, 0, im.palette, o, w,
                           h, exact);
      break;
    case Job::kLuma:
      TransferToneTRCToL08(im.SrcPixels(), w, h, 0, 0, im.DstBytes(), w, h, 0, 0, im.tone, o, w, h,
                           exact);
      break;
    case Job::kDarkerL08:
      DarkerL08ToL08WithAlpha(im.SrcBytes(), a, w, h, 0, 0, im.DstBytes(), w, h, 0, 0, o, w, h,
                              exact);
      break;
    case Job::kLighterL08:
      LighterL08ToL08WithAlpha(im.SrcBytes(), a, w, h, 0, 0, im.DstBytes(), w, h, 0, 0, o, w, h,
                               exact);
      break;
    case Job::kDarkerL12:
      DarkerL12ToL12WithAlpha(im.SrcWords(), a, w, h, 0, 0, im.DstWords(), w, h, 0, 0, o, w, h,
                              exact);
      break;
    case Job::kLighterL12:
      LighterL12ToL12WithAlpha(im.SrcWords(), a, w, h, 0, 0, im.DstWords(), w, h, 0, 0, o, w, h,
                               exact);
      break;
    case Job::kDarkerTrc:
      DarkerTRCToTRCWithAlpha(im.SrcPixels(), a, w, h, 0, 0, im.DstPixels(), w, h, 0, 0, o, w, h,
                              exact);
      break;
    case Job::kLighterTrc:
      LighterTRCToTRCWithAlpha(im.SrcPixels(), a, w, h, 0, 0, im.DstPixels(), w, h, 0, 0, o, w, h,
                               exact);
      break;
    case Job::kChangeColour:
      ChangeColorOfTRCWithAlpha(im.DstPixels(), a, w, h, 0, 0, kFrom, kTo, kTolerance, o, w, h,
                                exact);
      break;
  }
}

// Each destination element gets the xor of the member's inputs; the ink move
// also xors its protection bytes into its source.
template <class D, class S>
void XorLoop(D *d, const S *s, const std::uint8_t *bytes, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) d[i] ^= static_cast<D>(s[i] ^ bytes[i]);
}
template <class D, class S>
void XorLoop(D *d, const S *s, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) d[i] ^= static_cast<D>(s[i]);
}

void RunTraffic(const Images &im, Job job) {
  const std::size_t n = Images::Pixels();
  const std::uint8_t *a = im.Bytes();
  switch (job) {
    case Job::kTone: return XorLoop(im.DstBytes(), im.SrcBytes(), n);
    case Job::kMove: {
      std::uint8_t *s = im.SrcBytes(), *d = im.DstBytes();
      for (std::size_t i = 0; i < n; ++i) {
        d[i] ^= static_cast<std::uint8_t>(s[i] ^ a[i]);
        s[i] ^= a[i];
      }
      return;
    }
    case Job::kRamp: return XorLoop(im.DstPixels(), im.SrcBytes(), n);
    case Job::kLuma: return XorLoop(im.DstBytes(), im.SrcPixels(), n);
    case Job::kDarkerL08:
    case Job::kLighterL08: return XorLoop(im.DstBytes(), im.SrcBytes(), a, n);
    case Job::kDarkerL12:
    case Job::kLighterL12: return XorLoop(im.DstWords(), im.SrcWords(), a, n);
    case Job::kDarkerTrc:
    case Job::kLighterTrc: return XorLoop(im.DstPixels(), im.SrcPixels(), a, n);
    case Job::kChangeColour: return XorLoop(im.DstPixels(), a, n);
  }
}

void RunPixman(const Images &im, Job job) {
  const int w = static_cast<int>(kWidth), h = static_cast<int>(kHeight);
  pixman_image_composite32(Lighter(job) ? PIXMAN_OP_LIGHTEN : PIXMAN_OP_DARKEN, im.pixmanSrc,
                           im.pixmanMask, im.pixmanDst, 0, 0, 0, 0, 0, 0, w, h);
}

// ---- The library's rules, per pixel -------------------------------------------

// The form the call runs. IsMMX() asks the processor each time, so once.
bool RunsFast(bool exact) {
  static const bool mmx = IsMMX() != 0;
  return !exact && mmx;
}

std::int32_t Weight(bool fast, std::uint32_t coverage) {
  const std::uint32_t product = coverage * kOpacity;
  return static_cast<std::int32_t>(fast ? product >> 8 : product / 255);
}

// d toward t: exact truncates toward zero, fast rounds down.
std::int32_t Toward(bool fast, std::int32_t d, std::int32_t t, std::int32_t weight) {
  const std::int32_t diff = (t - d) * weight;
  if (!fast) return d + diff / 255;
  return d + (diff >= 0 ? diff / 256 : -((-diff + 255) / 256));
}

// Blue, green and red of d toward those of t; d's alpha byte kept.
std::uint32_t TowardPixel(bool fast, std::uint32_t d, std::uint32_t t, std::int32_t weight) {
  std::uint32_t out = d & 0xFF000000u;
  for (int shift = 0; shift <= 16; shift += 8) {
    const std::int32_t moved = Toward(fast, static_cast<std::int32_t>(Channel(d, shift)),
                                      static_cast<std::int32_t>(Channel(t, shift)), weight);
    out |= static_cast<std::uint32_t>(moved) << shift;
  }
  return out;
}

std::uint32_t Extreme(bool lighter, std::uint32_t s, std::uint32_t d) {
  return lighter ? (s > d ? s : d) : (s < d ? s : d);
}

// Source and destination element after the call.
struct After {
  std::uint32_t src, dst;
};

After Model(const Images &im, const Member &m, bool exact, std::size_t i) {
  const bool fast = m.bothForms && RunsFast(exact);
  const std::uint32_t s = StartSrc(m, i), d = StartDst(m, i), c = StartByte(m, i);
  const auto di = static_cast<std::int32_t>(d);
  switch (m.job) {
    case Job::kTone:
      return {s, static_cast<std::uint32_t>(Toward(fast, di, im.tone[s], Weight(fast, 255)))};
    case Job::kMove: {
      if (c != 0) return {s, d};
      const std::uint32_t wanted = s * kOpacity / 255, room = 255 - d;
      const std::uint32_t moved = wanted < room ? wanted : room;
      return {s - moved, d + moved};
    }
    case Job::kRamp: {
      const std::uint32_t k = im.palette[s];
      return {s, TowardPixel(fast, d, k, Weight(fast, k >> 24))};
    }
    case Job::kLuma: {
      const std::uint32_t y =
          (77 * Channel(s, 16) + 150 * Channel(s, 8) + 29 * Channel(s, 0) + 128) >> 8;
      return {s, static_cast<std::uint32_t>(Toward(fast, di, im.tone[y], Weight(fast, s >> 24)))};
    }
    case Job::kDarkerL08:
    case Job::kLighterL08:
    case Job::kDarkerL12:
    case Job::kLighterL12: {
      const auto t = static_cast<std::int32_t>(Extreme(Lighter(m.job), s, d));
      return {s, static_cast<std::uint32_t>(Toward(fast, di, t, Weight(fast, c)))};
    }
    case Job::kDarkerTrc:
    case Job::kLighterTrc: {
      std::uint32_t t = 0;
      for (int shift = 0; shift <= 16; shift += 8)
        t |= Extreme(Lighter(m.job), Channel(s, shift), Channel(d, shift)) << shift;
      return {s, TowardPixel(fast, d, t, Weight(fast, c))};
    }
    case Job::kChangeColour: {
      std::uint32_t t = 0;
      for (int shift = 0; shift <= 16; shift += 8) {
        const int e = static_cast<int>(Channel(d, shift)) - static_cast<int>(Channel(kFrom, shift));
        if (e > kTolerance || -e > kTolerance) return {s, d};
        const int v = static_cast<int>(Channel(kTo, shift)) + e;
        t |= static_cast<std::uint32_t>(v < 0 ? 0 : v > 255 ? 255 : v) << shift;
      }
      return {s, TowardPixel(fast, d, t, Weight(fast, c))};
    }
  }
  return {s, d};
}

// ---- Checks against the starting contents --------------------------------------

std::string Describe(const char *buffer, std::size_t i, std::uint32_t got, std::uint32_t want) {
  std::ostringstream text;
  text << buffer << " (" << i % kWidth << ", " << i / kWidth << ") is 0x" << std::hex << got
       << ", want 0x" << want;
  return text.str();
}

// The source is compared too: only the ink move may change it.
std::string CheckAgainst(const Images &im, const Member &m, const After &want, std::size_t i) {
  const std::uint32_t dst = Images::Get(im.dst, m.dst, i);
  if (dst != want.dst) return Describe("dst", i, dst, want.dst);
  const std::uint32_t src = Images::Get(im.src, m.src, i);
  if (src != want.src) return Describe("src", i, src, want.src);
  return {};
}

// Rows of the check: every kCheckRowStep-th and the last, every column. All
// rows start at the same alignment (3840 pixels of any element size is a
// whole number of 64-byte lines), so a kernel that gets a row wrong gets the
// sampled rows wrong too. Checking every pixel took about half the time of a
// quick pass (--benchmark_min_time=0.001).
constexpr unsigned int kCheckRowStep = 16;

// check(i) for each checked pixel i: "" when right, else what is wrong (the
// first wrong pixel is reported).
template <class Check>
std::string ForCheckedPixels(Check &&check) {
  for (unsigned int y = 0;; y = std::min(y + kCheckRowStep, kHeight - 1)) {
    for (std::size_t i = std::size_t{y} * kWidth; i < std::size_t{y + 1} * kWidth; ++i) {
      std::string wrong = check(i);
      if (!wrong.empty()) return wrong;
    }
    if (y == kHeight - 1) return {};
  }
}

std::string VerifyOurs(const Images &im, const Member &m, bool exact) {
  return ForCheckedPixels(
      [&](std::size_t i) { return CheckAgainst(im, m, Model(im, m, exact, i), i); });
}

std::string VerifyTraffic(const Images &im, const Member &m) {
  const std::string wrong = ForCheckedPixels([&](std::size_t i) {
    const std::uint32_t s = StartSrc(m, i), c = m.bytes ? StartByte(m, i) : 0;
    const After want{m.writesSrc ? s ^ c : s, (StartDst(m, i) ^ s ^ c) & ElemMask(m.dst)};
    return CheckAgainst(im, m, want, i);
  });
  return wrong.empty() ? wrong : "traffic kernel: " + wrong;
}

// Colour channels only: x8r8g8b8 leaves the top byte to pixman.
std::string VerifyPixman(const Images &im, const Member &m) {
  return ForCheckedPixels([&](std::size_t i) -> std::string {
    const std::uint32_t s = StartSrc(m, i), d = StartDst(m, i), got = im.DstPixels()[i];
    const double coverage = StartByte(m, i) / 255.0;
    std::uint32_t want = 0;
    bool near = true;
    for (int shift = 0; shift <= 16; shift += 8) {
      const double t = Extreme(Lighter(m.job), Channel(s, shift), Channel(d, shift));
      const long rounded = std::lround((1 - coverage) * Channel(d, shift) + coverage * t);
      want |= static_cast<std::uint32_t>(rounded) << shift;
      near =
          near && std::labs(static_cast<long>(Channel(got, shift)) - rounded) <= kPixmanTolerance;
    }
    if (near) return {};
    return Describe("dst", i, got & 0xFFFFFFu, want) + " (colour channels, within " +
           std::to_string(kPixmanTolerance) + ")";
  });
}

// ---- Pairs ----------------------------------------------------------------------

void AddPairs(const std::shared_ptr<Images> &im, const Member &m, bool exact) {
  std::string label =
      std::string(m.name) + "/" + std::to_string(kWidth) + "x" + std::to_string(kHeight);
  if (m.bothForms) label += exact ? "/exact" : "/fast";
  const Job job = m.job;

  Pair traffic;
  traffic.label = label + "/traffic";
  traffic.peerName = "same-traffic";
  traffic.ours = [im, job, exact] { RunOurs(*im, job, exact); };
  traffic.peer = [im, job] { RunTraffic(*im, job); };
  traffic.pixels = static_cast<std::int64_t>(Images::Pixels());
  traffic.target = kOverTraffic;
  traffic.reset = [im, &m] { im->Reset(m); };
  traffic.verify = [im, &m, exact](bool ours) {
    return ours ? VerifyOurs(*im, m, exact) : VerifyTraffic(*im, m);
  };
  ostrel_bench::AddPair(std::move(traffic));

  if (!m.pixman) return;
  Pair vsPixman;
  vsPixman.label = label;
  vsPixman.peerName = "pixman";
  vsPixman.ours = [im, job, exact] { RunOurs(*im, job, exact); };
  vsPixman.peer = [im, job] { RunPixman(*im, job); };
  vsPixman.pixels = static_cast<std::int64_t>(Images::Pixels());
  vsPixman.target = kOverPixman;
  vsPixman.reset = [im, &m] { im->Reset(m); };
  vsPixman.verify = [im, &m, exact](bool ours) {
    return ours ? VerifyOurs(*im, m, exact) : VerifyPixman(*im, m);
  };
  ostrel_bench::AddPair(std::move(vsPixman));
}

[[maybe_unused]] const bool kRegistered = [] {
  const auto im = std::make_shared<Images>();
  for (const Member &m : kMembers) {
    if (m.bothForms) AddPairs(im, m, false);
    AddPairs(im, m, true);
  }
  return true;
}();

}  // namespace
