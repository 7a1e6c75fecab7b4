// GetContourPolygonFromBuffer2 on fuzzer masks and regions, held to what the
// header promises (tests/outline_check.h: one figure per 8-connected object
// and per enclosed 4-connected hole, along pixel edges with the object on
// the right, areas adding up to the object pixels, figures in the order of
// their start vertices), with the mask unchanged and the polygon emptied
// first. Region geometry runs to the ends of the unsigned range.
#include <cstdint>
#include <vector>

#include "../tests/outline_check.h"
#include "Ostrel.h"
#include "VornelCoordPolygon.h"
#include "fuzz_util.h"

namespace {

using namespace fuzz;

std::vector<outline_check::Figure> Figures(ICoordPolygon *polygon) {
  long count = 0;
  FUZZ_CHECK(polygon->GetFigureCount(&count) >= 0, "GetFigureCount failed");
  std::vector<outline_check::Figure> figures(static_cast<std::size_t>(count));
  for (long f = 0; f < count; ++f) {
    long first = 0, n = 0;
    FUZZ_CHECK(polygon->GetFigure(f, &first, &n) >= 0, "GetFigure(%ld) failed", f);
    for (long i = first; i < first + n; ++i) {
      double x = 0, y = 0;
      FUZZ_CHECK(polygon->GetXY(i, &x, &y) >= 0, "GetXY(%ld) failed", i);
      figures[static_cast<std::size_t>(f)].emplace_back(static_cast<long long>(x),
                                                        static_cast<long long>(y));
    }
  }
  return figures;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Input in(data, size);
  const u32 w = in.In<u32>(1, 48), h = in.In<u32>(1, 32);
  const u32 left = in.Corner(w), top = in.Corner(h);
  const u32 rw = in.Size(left < w ? w - left : 0), rh = in.Size(top < h ? h - top : 0);
  Buffer<u8> mask(std::size_t{w} * h);
  in.Fill(mask.Data(), mask.Size());
  // Sparse, dense and speckled masks: most bytes 0 or most set.
  const int kind = in.In(0, 2);
  for (std::size_t i = 0; i < mask.Size(); ++i) {
    if (kind == 0) mask[i] = mask[i] < 160 ? 0 : mask[i];
    if (kind == 1) mask[i] = mask[i] < 60 ? 0 : mask[i];
  }
  Describe("outline: %ux%u, region (%u, %u) %ux%u", w, h, left, top, rw, rh);

  ICoordPolygon *polygon = nullptr;
  FUZZ_CHECK(DllGetCoordPolygonSetRes("fuzz", __LINE__, &polygon) >= 0, "no polygon");
  polygon->AddXY(-5, -5);  // must be removed
  const auto before = mask.Copy();
  const int result = GetContourPolygonFromBuffer2(mask.Data(), w, h, left, top, rw, rh, polygon);
  FUZZ_CHECK(mask.Copy() == before, "the mask was written");
  const auto figures = Figures(polygon);
  polygon->Release();
  FUZZ_CHECK(result == static_cast<int>(figures.size()), "returned %d for %zu figures", result,
             figures.size());

  const outline_check::Region region{before.data(),   w, left, top, Span(w, left, rw),
                                     Span(h, top, rh)};
  const std::string fault = outline_check::Check(region, figures);
  FUZZ_CHECK(fault.empty(), "%s", fault.c_str());
  return 0;
}
