// Fills and copies of colour buffers against the plain memory routines that
// do the same stores: std::memset and std::memcpy of each row of the region.
//
// Image sizes 256x256 (fits in the core's cache) and 3840x2160 (does not),
// each with two regions:
//   whole   the whole buffer, which the library treats as one run of pixels
//   inset   left 16, top 16, width - 32, height - 32: row by row
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "Ostrel.h"
#include "ratio.h"

namespace {

using ostrel_bench::AlignedBuffer;
using ostrel_bench::Pair;

// Four equal bytes, so std::memset stores exactly the bytes of the fill.
constexpr unsigned int kFillColour = 0x7F7F7F7Fu;
constexpr unsigned char kFillByte = 0x7F;
// Every source pixel has alpha 0xFF, so this key (alpha 0) never occurs and
// the keyed copy does the same job as a plain copy.
constexpr unsigned int kKeyColour = 0x00FF00FFu;
constexpr unsigned int kBoardColour1 = 0xFF202020u;
constexpr unsigned int kBoardColour2 = 0xFFE0E0E0u;
constexpr unsigned int kSquare = 8;

struct Region {
  const char *name;
  unsigned int left, top, width, height;
};

// The buffers of one image size, shared by all of its pairs: pairs run one
// after another, and each pair's reset sets up everything its check reads.
struct Images {
  Images(unsigned int w, unsigned int h)
      : width(w),
        height(h),
        src(Pixels() * 4),
        dst(Pixels() * 4),
        board(Pixels() * 4),
        packed(Pixels() * 3) {}

  std::size_t Pixels() const { return static_cast<std::size_t>(width) * height; }
  unsigned int *Src() const { return static_cast<unsigned int *>(src.data()); }
  unsigned int *Dst() const { return static_cast<unsigned int *>(dst.data()); }
  unsigned int *Board() const { return static_cast<unsigned int *>(board.data()); }
  unsigned char *Packed() const { return static_cast<unsigned char *>(packed.data()); }

  // Distinct, irregular pixel values: opaque in the source, transparent in
  // the destination, so a skipped or misplaced store shows.
  void ResetSource() const {
    unsigned int *p = Src();
    for (std::size_t i = 0; i < Pixels(); ++i)
      p[i] = 0xFF000000u | (static_cast<unsigned int>(i) * 2654435761u >> 8);
  }
  void ResetDestination() const {
    unsigned int *p = Dst();
    for (std::size_t i = 0; i < Pixels(); ++i)
      p[i] = 0x00FFFFFFu & (static_cast<unsigned int>(i) * 40503u + 12345u);
  }
  // The checkerboard, computed from its definition for the whole buffer
  // (board anchored at the buffer's top-left corner).
  void ResetBoard() const {
    unsigned int *p = Board();
    for (unsigned int y = 0; y < height; ++y)
      for (unsigned int x = 0; x < width; ++x)
        p[static_cast<std::size_t>(y) * width + x] =
            ((x / kSquare + y / kSquare) & 1u) != 0 ? kBoardColour2 : kBoardColour1;
  }

  unsigned int width, height;
  AlignedBuffer src, dst, board, packed;
};

std::string Label(const char *function, const Images &im, const Region &r) {
  return std::string(function) + "/" + std::to_string(im.width) + "x" + std::to_string(im.height) +
         "/" + r.name;
}

// Offset of the region's row j in a buffer of the image's width.
std::size_t RowOffset(const Images &im, const Region &r, unsigned int j) {
  return static_cast<std::size_t>(r.top + j) * im.width + r.left;
}

void AddFill(const std::shared_ptr<Images> &im, const Region &r) {
  Pair p;
  p.label = Label("FillTRCBuffer", *im, r);
  p.peerName = "memset";
  p.ours = [im, r] {
    FillTRCBuffer(im->Dst(), im->width, im->height, r.left, r.top, r.width, r.height, kFillColour);
  };
  p.peer = [im, r] {
    for (unsigned int j = 0; j < r.height; ++j)
      std::memset(im->Dst() + RowOffset(*im, r, j), kFillByte, std::size_t{r.width} * 4);
  };
  p.bytes = std::int64_t{r.width} * r.height * 4;
  p.target = 0.90;
  p.reset = [im] { im->ResetDestination(); };
  p.output = {im->Dst(), im->dst.size()};
  ostrel_bench::AddPair(std::move(p));
}

// Pairs a library function that writes the region of Dst() with std::memcpy
// of each region row from `from` (a buffer of the same size) to Dst().
Pair CopyPair(const std::shared_ptr<Images> &im, const Region &r, const char *function,
              unsigned int *from) {
  Pair p;
  p.label = Label(function, *im, r);
  p.peerName = "memcpy";
  p.peer = [im, r, from] {
    for (unsigned int j = 0; j < r.height; ++j) {
      const std::size_t at = RowOffset(*im, r, j);
      std::memcpy(im->Dst() + at, from + at, std::size_t{r.width} * 4);
    }
  };
  p.bytes = std::int64_t{r.width} * r.height * 4;
  p.output = {im->Dst(), im->dst.size()};
  return p;
}

void AddCopy(const std::shared_ptr<Images> &im, const Region &r) {
  Pair p = CopyPair(im, r, "Copy2DTRCBufferToTRC", im->Src());
  p.ours = [im, r] {
    Copy2DTRCBufferToTRC(im->Src(), im->width, im->height, r.left, r.top, im->Dst(), im->width,
                         im->height, r.left, r.top, r.width, r.height);
  };
  p.target = 0.90;
  p.reset = [im] {
    im->ResetSource();
    im->ResetDestination();
  };
  ostrel_bench::AddPair(std::move(p));
}

void AddKeyedCopy(const std::shared_ptr<Images> &im, const Region &r) {
  Pair p = CopyPair(im, r, "CopyTRCToTRCIfNotKeyColor", im->Src());
  p.label += "/nokey";
  p.ours = [im, r] {
    CopyTRCToTRCIfNotKeyColor(im->Src(), im->width, im->height, r.left, r.top, im->Dst(), im->width,
                              im->height, r.left, r.top, r.width, r.height, kKeyColour);
  };
  p.reset = [im] {
    im->ResetSource();
    im->ResetDestination();
  };
  ostrel_bench::AddPair(std::move(p));
}

void AddChessboard(const std::shared_ptr<Images> &im, const Region &r) {
  Pair p = CopyPair(im, r, "ChessboardFillTRCBuffer", im->Board());
  p.label += "/square8";
  p.ours = [im, r] {
    // phaseY = top anchors the board to the buffer, like the reference.
    ChessboardFillTRCBuffer(im->Dst(), im->width, im->height, r.left, r.top, r.width, r.height, 0,
                            static_cast<int>(r.top), kBoardColour1, kBoardColour2, kSquare);
  };
  p.reset = [im] {
    im->ResetBoard();
    im->ResetDestination();
  };
  ostrel_bench::AddPair(std::move(p));
}

void AddPack24(const std::shared_ptr<Images> &im) {
  Pair p;
  p.label =
      "ConvertBufferFrom32To24Bits/" + std::to_string(im->width) + "x" + std::to_string(im->height);
  p.peerName = "plain-loop";
  p.ours = [im] {
    ConvertBufferFrom32To24Bits(im->Src(), im->Packed(), static_cast<unsigned int>(im->Pixels()));
  };
  p.peer = [im] {
    const unsigned int *from = im->Src();
    unsigned char *to = im->Packed();
    for (std::size_t i = 0; i < im->Pixels(); ++i) {
      to[3 * i + 0] = static_cast<unsigned char>(from[i]);
      to[3 * i + 1] = static_cast<unsigned char>(from[i] >> 8);
      to[3 * i + 2] = static_cast<unsigned char>(from[i] >> 16);
    }
  };
  p.pixels = static_cast<std::int64_t>(im->Pixels());
  p.reset = [im] {
    im->ResetSource();
    std::memset(im->Packed(), 0xCD, im->packed.size());
  };
  p.output = {im->Packed(), im->packed.size()};
  ostrel_bench::AddPair(std::move(p));
}

[[maybe_unused]] const bool kRegistered = [] {
  const unsigned int sizes[][2] = {{256, 256}, {3840, 2160}};
  for (const auto &size : sizes) {
    auto im = std::make_shared<Images>(size[0], size[1]);
    const Region regions[] = {{"whole", 0, 0, im->width, im->height},
                              {"inset", 16, 16, im->width - 32, im->height - 32}};
    for (const Region &r : regions) AddFill(im, r);
    for (const Region &r : regions) AddCopy(im, r);
    for (const Region &r : regions) AddChessboard(im, r);
    for (const Region &r : regions) AddKeyedCopy(im, r);
    AddPack24(im);
  }
  return true;
}();

}  // namespace
