// Fills and copies of colour buffers, the 32-to-24-bit packing and the BGR
// blends. The fuzzer picks the member, the geometry (region heights that wrap
// past 2^32, board phases at the ends of the int range, square sizes up to
// 0xFFFFFFFF, any scale), the pixels and colours. Each call runs under every
// instruction set and must leave the same bytes as the scalar kernels, and
// the result must be what the header says the call writes, pixel by pixel.
#include <cstdint>

#include "Ostrel.h"
#include "fuzz_util.h"

namespace {

using namespace fuzz;

enum Member { kFill, kChessboard, kCopy, kCopyIfNotKey, kPack24, kBgr24, kBgr32, kMemberCount };
const char *const kNames[kMemberCount] = {"FillTRCBuffer",
                                          "ChessboardFillTRCBuffer",
                                          "Copy2DTRCBufferToTRC",
                                          "CopyTRCToTRCIfNotKeyColor",
                                          "ConvertBufferFrom32To24Bits",
                                          "AlphaBlendBGR24AlphaToBGR24",
                                          "AlphaBlendBGR32AlphaToBGR32"};

// Floor division by a positive divisor.
std::int64_t FloorDiv(std::int64_t x, std::int64_t d) { return x / d - (x % d != 0 && x < 0); }

// The coverage index of destination index v, where trunc(v * scale) is a
// non-negative value below 2^32; -1 where it is not.
std::int64_t Sample(u32 v, double scale, u32 count) {
  const double t = std::trunc(v * scale);
  if (!(t >= 0 && t < 4294967296.0)) return -1;
  return std::min<std::int64_t>(static_cast<std::int64_t>(t), count - 1);
}

// Bytes of a row of w pixels of n bytes, padded to a multiple of 4.
std::size_t RowBytes(u32 w, u32 n) { return (std::size_t{w} * n + 3) & ~std::size_t{3}; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Input in(data, size);
  const int m = in.In(0, kMemberCount - 1);
  const u32 sw = in.In<u32>(0, 70), sh = in.In<u32>(0, 9);
  const u32 sl = in.Corner(sw), st = in.Corner(sh);
  const u32 dw = in.In<u32>(0, 70), dh = in.In<u32>(0, 9);
  // The fills clip rows only; their left column lies in the buffer.
  const bool fill = m == kFill || m == kChessboard;
  const u32 dl = fill ? in.In<u32>(0, dw) : in.Corner(dw), dt = in.Corner(dh);
  const u32 rw = in.Size(fill ? dw - dl : sw - sl), rh = in.Size(fill ? dh - dt : sh - st);
  const u32 colour1 = in.U32(), colour2 = in.U32();
  const i32 phaseX = in.Coord(80), phaseY = in.Coord(20);
  const u32 squareSize = in.Bool() ? in.In<u32>(1, 40) : std::max<u32>(1, in.Size(0));
  const u32 count = in.In<u32>(0, 200);
  const double scaleX = in.Real(), scaleY = in.Real();
  Describe(
      "%s: src %ux%u at (%u, %u), dst %ux%u at (%u, %u), region %ux%u, colours %08x %08x, "
      "phase (%d, %d), square %u, count %u, scale (%g, %g)",
      kNames[m], sw, sh, sl, st, dw, dh, dl, dt, rw, rh, colour1, colour2, phaseX, phaseY,
      squareSize, count, scaleX, scaleY);

  // The BGR members: the first buffer is the coverage picture (not empty),
  // the second the picture blended, both with padded rows.
  const u32 pixelBytes = m == kBgr24 ? 3 : 4;
  const bool bgr = m == kBgr24 || m == kBgr32, empty = sw == 0 || sh == 0;
  Buffer<u32> src(m == kPack24 ? count : bgr ? 0 : std::size_t{sw} * sh);
  Buffer<u32> dst(fill || m == kCopy || m == kCopyIfNotKey ? std::size_t{dw} * dh : 0);
  Buffer<u8> bytes(m == kPack24 ? 3 * std::size_t{count} : bgr ? RowBytes(dw, pixelBytes) * dh : 0);
  Buffer<u8> coverage(bgr ? RowBytes(sw, pixelBytes) * sh : 0);
  const bool keyed = in.Bool();
  in.Fill(src.Data(), src.Size(), keyed ? 3 : ~0u);  // few colours: the key often matches
  in.Fill(dst.Data(), dst.Size());
  in.Fill(bytes.Data(), bytes.Size());
  in.Fill(coverage.Data(), coverage.Size());
  const u32 key = keyed ? colour1 & 3 : colour1;
  const auto srcBefore = src.Copy();
  const auto coverageBefore = coverage.Copy();
  const auto dstBefore = dst.Copy();
  const auto bytesBefore = bytes.Copy();

  SameUnderEveryIsa({src, dst, bytes, coverage}, [&] {
    // clang-format off
    switch (m) {
      case kFill: FillTRCBuffer(dst.Data(), dw, dh, dl, dt, rw, rh, colour1); break;
      case kChessboard: ChessboardFillTRCBuffer(dst.Data(), dw, dh, dl, dt, rw, rh, phaseX, phaseY, colour1, colour2, squareSize); break;
      case kCopy: Copy2DTRCBufferToTRC(src.Data(), sw, sh, sl, st, dst.Data(), dw, dh, dl, dt, rw, rh); break;
      case kCopyIfNotKey: CopyTRCToTRCIfNotKeyColor(src.Data(), sw, sh, sl, st, dst.Data(), dw, dh, dl, dt, rw, rh, key); break;
      case kPack24: ConvertBufferFrom32To24Bits(src.Data(), bytes.Data(), count); break;
      case kBgr24: AlphaBlendBGR24AlphaToBGR24(coverage.Data(), sw, sh, colour1, bytes.Data(), dw, dh, scaleX, scaleY); break;
      case kBgr32: AlphaBlendBGR32AlphaToBGR32(coverage.Data(), sw, sh, colour1, bytes.Data(), dw, dh, scaleX, scaleY); break;
    }
    // clang-format on
  });
  FUZZ_CHECK(src.Copy() == srcBefore && coverage.Copy() == coverageBefore, "a source was written");

  if (m == kPack24) {
    for (u32 i = 0; i < count; ++i) {
      for (u32 c = 0; c < 3; ++c) {
        FUZZ_CHECK(bytes[3 * i + c] == static_cast<u8>(srcBefore[i] >> (8 * c)),
                   "byte %u of pixel %u", c, i);
      }
    }
    return 0;
  }
  if (bgr && empty) {
    FUZZ_CHECK(bytes.Copy() == bytesBefore, "an empty coverage picture changed the picture");
    return 0;
  }
  if (bgr) {
    for (u32 y = 0; y < dh; ++y) {
      const std::int64_t ay = Sample(y, scaleY, sh);
      for (u32 x = 0; x < dw; ++x) {
        const std::int64_t ax = Sample(x, scaleX, sw);
        for (u32 c = 0; c < pixelBytes; ++c) {
          const std::size_t i = y * RowBytes(dw, pixelBytes) + std::size_t{x} * pixelBytes + c;
          int want = bytesBefore[i];
          if (c == 3 || ax < 0 || ay < 0) {
            if (c < 3) continue;  // an index the model leaves to the call
          } else {
            const int a = coverageBefore[ay * RowBytes(sw, pixelBytes) + ax * pixelBytes];
            const int k = (colour1 >> (8 * c)) & 0xFF;
            want += (k - want) * a / 255;
          }
          FUZZ_CHECK(bytes[i] == want, "pixel (%u, %u) byte %u: %u, want %d", x, y, c, bytes[i],
                     want);
        }
      }
    }
    const std::size_t padded = RowBytes(dw, pixelBytes) * dh;
    for (u32 y = 0; y < dh; ++y) {
      for (std::size_t i = y * RowBytes(dw, pixelBytes) + std::size_t{dw} * pixelBytes;
           i < (y + 1) * RowBytes(dw, pixelBytes) && i < padded; ++i) {
        FUZZ_CHECK(bytes[i] == bytesBefore[i], "padding byte %zu of row %u written", i, y);
      }
    }
    return 0;
  }

  // Fills and copies: the region's pixels written row after row, left to
  // right; a fill row wider than the room right of left runs on into the
  // next rows, up to the buffer's last pixel.
  const std::size_t pixels = dst.Size();
  const u32 cols = fill ? rw : Span(dw, dl, Span(sw, sl, rw));
  const u32 rows = Span(dh, dt, fill ? rh : Span(sh, st, rh));
  // The board position X = phaseX + left + i, Y = phaseY + j, where the
  // int sums do not wrap.
  const bool board = std::int64_t{phaseX} + dl + std::min<std::size_t>(cols, pixels) <= INT_MAX &&
                     std::int64_t{phaseY} + rows <= INT_MAX;
  std::vector<u32> want = dstBefore;
  std::vector<bool> known(pixels, true);
  for (u32 j = 0; j < rows; ++j) {
    for (std::size_t i = 0; i < cols; ++i) {
      const std::size_t p = std::size_t{dt + j} * dw + dl + i;
      if (p >= pixels) break;
      const u32 from = fill ? 0 : srcBefore[std::size_t{st + j} * sw + sl + i];
      if (m == kFill) want[p] = colour1;
      if (m == kCopy || (m == kCopyIfNotKey && from != key)) want[p] = from;
      if (m == kChessboard) {
        const std::int64_t x = std::int64_t{phaseX} + dl + i, y = std::int64_t{phaseY} + j;
        want[p] = (FloorDiv(x, squareSize) + FloorDiv(y, squareSize)) & 1 ? colour2 : colour1;
        known[p] = board;
      }
    }
  }
  for (std::size_t p = 0; p < pixels; ++p) {
    FUZZ_CHECK(!known[p] || dst[p] == want[p], "pixel (%zu, %zu) is %08x, want %08x", p % dw,
               p / dw, dst[p], want[p]);
  }
  return 0;
}
