// A host of the installed library: fills and copies colour buffers through
// the exported functions and catches the suite's exception across the
// library boundary. Returns nonzero on any wrong result.
#include <Ostrel.h>
#include <VornelException.h>

#include <cstdio>

namespace {

const unsigned int kW = 7, kH = 5;
const unsigned int kBackground = 0xFF102030u, kPatch = 0x80A0B0C0u, kUntouched = 0x01010101u;

int Check(bool ok, const char *what) {
  if (!ok) std::fprintf(stderr, "ostrel consumer: %s\n", what);
  return ok ? 0 : 1;
}

}  // namespace

int main() {
  // Source: background with a 3x2 patch at column 2, row 1.
  unsigned int src[kW * kH];
  FillTRCBuffer(src, kW, kH, 0, 0, kW, kH, kBackground);
  FillTRCBuffer(src, kW, kH, 2, 1, 3, 2, kPatch);
  int failures = 0;
  for (unsigned int y = 0; y < kH; ++y) {
    for (unsigned int x = 0; x < kW; ++x) {
      const bool inPatch = x >= 2 && x < 5 && y >= 1 && y < 3;
      failures += Check(src[y * kW + x] == (inPatch ? kPatch : kBackground), "fill");
    }
  }

  // Copy a 5x4 region from (1, 0) of the source to (3, 2) of the destination:
  // cut at the destination's right and bottom edges, 4 columns and 3 rows
  // (part background, part patch) are written; the rest stays untouched.
  unsigned int dst[kW * kH];
  for (unsigned int &p : dst) p = kUntouched;
  Copy2DTRCBufferToTRC(src, kW, kH, 1, 0, dst, kW, kH, 3, 2, 5, 4);
  for (unsigned int y = 0; y < kH; ++y) {
    for (unsigned int x = 0; x < kW; ++x) {
      const bool copied = x >= 3 && y >= 2;
      const unsigned int expected = copied ? src[(y - 2) * kW + (x - 3 + 1)] : kUntouched;
      failures += Check(dst[y * kW + x] == expected, "copy");
    }
  }

  // A failed status thrown inside the library is caught here by its type.
  const VornelStatus failed = -2147467259L;  // 0x80004005 as a 32-bit status
  try {
    MakeException(failed, nullptr);
    failures += Check(false, "MakeException did not throw");
  } catch (const CVornelException &e) {
    failures += Check(e.GetCode() == 1 && e.GetStatus() == failed, "exception contents");
  }
  return failures == 0 ? 0 : 1;
}
