#include "repeat_render.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "band_split.h"

namespace ostrel_examples {
namespace {

// View tiles are at most this many view pixels square, and never cross a
// seam of the view repeat.
constexpr int kTileSize = 64;

int FloorDiv(long long a, long long b) {
  return static_cast<int>(a >= 0 ? a / b : -((-a + b - 1) / b));
}

int FloorMod(int a, int b) { return ((a % b) + b) % b; }

// The colours a grey layer is shown in: grey value g gives the ink at
// coverage g (its colour with alpha byte g), from bare paper at 0 to full
// ink at 255.
std::array<unsigned int, 256> InkRamp(unsigned int ink) {
  std::array<unsigned int, 256> ramp;
  for (unsigned int g = 0; g < 256; ++g) ramp[g] = g << 24 | (ink & 0xFFFFFFu);
  return ramp;
}

// A rectangle of the repeat buffer and where it lies in the tile's file
// rectangle (offX, offY from its top-left corner).
struct Piece {
  int bufX, bufY, width, height, offX, offY;
};

class BandRenderer {
 public:
  BandRenderer(const Design &design, const ViewSettings &view, unsigned int *out)
      : d_(design),
        v_(view),
        out_(out),
        kind_(EffectiveDropKind(view)),
        drop_(EffectiveDrop(view)),
        viewRepeatW_(static_cast<int>(design.width * view.zoom)),
        viewRepeatH_(static_cast<int>(design.height * view.zoom)),
        dropRatio_(static_cast<double>(drop_) /
                   (kind_ == eDropVertical ? design.height : design.width)) {
    for (const Layer &layer : design.layers) ramps_.push_back(InkRamp(layer.colour));
  }

  void Draw(unsigned int top, unsigned int bottom) {
    ChessboardFillTRCBuffer(out_, v_.width, v_.height, 0, top, v_.width, bottom - top, v_.scrollX,
                            v_.scrollY + static_cast<int>(top), v_.backdropColour1,
                            v_.backdropColour2, v_.backdropSquare);
    const long long yEndAll = static_cast<long long>(bottom) + v_.scrollY;
    const long long xEndAll = static_cast<long long>(v_.width) + v_.scrollX;
    for (long long vy = static_cast<long long>(top) + v_.scrollY; vy < yEndAll;) {
      const int cy = FloorDiv(vy, viewRepeatH_);
      const long long yEnd = std::min({(cy + 1LL) * viewRepeatH_, yEndAll, vy + kTileSize});
      for (long long vx = v_.scrollX; vx < xEndAll;) {
        const int cx = FloorDiv(vx, viewRepeatW_);
        const long long xEnd = std::min({(cx + 1LL) * viewRepeatW_, xEndAll, vx + kTileSize});
        DrawTile(cx, cy, static_cast<int>(vx - static_cast<long long>(cx) * viewRepeatW_),
                 static_cast<int>(xEnd - static_cast<long long>(cx) * viewRepeatW_),
                 static_cast<int>(vy - static_cast<long long>(cy) * viewRepeatH_),
                 static_cast<int>(yEnd - static_cast<long long>(cy) * viewRepeatH_));
        vx = xEnd;
      }
      vy = yEnd;
    }
  }

 private:
  // The file column (or row) that view pixel m of a view repeat shows.
  int FileIndex(int m) const { return static_cast<int>(static_cast<double>(m) / v_.zoom); }

  // The first view pixel of the repeat whose file index is at least target,
  // starting from the estimate and moving past the rounding of the zoom.
  int Settle(int m, int target, int limit) const {
    m = std::clamp(m, 0, limit);
    while (m > 0 && FileIndex(m - 1) >= target) --m;
    while (m < limit && FileIndex(m) < target) ++m;
    return m;
  }

  // The pieces of the repeat buffer that the file rectangle (fx, fy, fw, fh),
  // folded into the tile, covers. The rectangle lies within one repeat of
  // the endless design (column cx, row cy).
  int ListPieces(int cx, int cy, int fx, int fy, int fw, int fh, Piece *pieces) const {
    const int tileW = static_cast<int>(d_.width), tileH = static_cast<int>(d_.height);
    if (kind_ == eDropVertical) {
      int count = 0, px[5], pw[5], py[5], ph[5];
      CalcPosAndSizeInRepBuffer(fx, fy, fw, fh, d_.width, d_.height, eDropVertical,
                                static_cast<int>(drop_), &count, px, pw, py, ph, false);
      for (int i = 0; i < count; ++i)
        pieces[i] = {px[i], py[i], pw[i], ph[i], px[i] - fx, FloorMod(py[i] - fy, tileH)};
      return count;
    }
    // Horizontal drop: the rows run straight and every row segment is
    // folded on its own. A horizontal drop is a vertical drop with the axes
    // exchanged, so the segment's start is folded with them exchanged.
    int count = 0;
    const int rowY = cy * tileH + fy;
    for (int off = 0; off < fw && count < 5;) {
      int bufX = 0, bufY = 0;
      SetInRapp(rowY, cx * tileW + fx + off, d_.height, d_.width, drop_, eDropVertical, &bufY,
                &bufX);
      const int len = std::min(fw - off, tileW - bufX);
      pieces[count++] = {bufX, bufY, len, fh, off, 0};
      off += len;
    }
    return count;
  }

  void DrawTile(int cx, int cy, int mx0, int mx1, int my0, int my1) {
    const int vx = cx * viewRepeatW_ + mx0, vy = cy * viewRepeatH_ + my0;
    int fx = 0, fy = 0;
    VPToFPDb(vx, vy, &fx, &fy, d_.width, d_.height, dropRatio_, d_.width, d_.height, kind_, v_.zoom,
             v_.zoom, true);
    const int ix0 = FileIndex(mx0), iy0 = FileIndex(my0);
    const int fw = FileIndex(mx1 - 1) - ix0 + 1, fh = FileIndex(my1 - 1) - iy0 + 1;
    // ix0 and iy0 are the unfolded corner inside the repeat; fx, fy the folded one.
    Piece pieces[5];
    const int count = ListPieces(cx, cy, kind_ == eDropVertical ? fx : ix0,
                                 kind_ == eDropVertical ? fy : iy0, fw, fh, pieces);
    for (int p = 0; p < count; ++p) DrawPiece(cx, cy, ix0, iy0, pieces[p], mx0, mx1, my0, my1);
  }

  void DrawPiece(int cx, int cy, int ix0, int iy0, const Piece &piece, int mx0, int mx1, int my0,
                 int my1) {
    const int tileW = static_cast<int>(d_.width), tileH = static_cast<int>(d_.height);
    // Where the piece's first and one-past-last file pixels land on screen.
    const int startX = ix0 + piece.offX, startY = iy0 + piece.offY;
    int sx0 = 0, sy0 = 0, sx1 = 0, sy1 = 0;
    FPToSnappedSP(cx * tileW + startX, cy * tileH + startY, &sx0, &sy0, v_.scrollX, v_.scrollY, 0,
                  d_.width, d_.height, drop_, kind_, v_.zoom, v_.zoom, 0, false);
    FPToSnappedSP(cx * tileW + startX + piece.width, cy * tileH + startY + piece.height, &sx1, &sy1,
                  v_.scrollX, v_.scrollY, 0, d_.width, d_.height, drop_, kind_, v_.zoom, v_.zoom, 0,
                  false);
    const int baseX = cx * viewRepeatW_ - v_.scrollX, baseY = cy * viewRepeatH_ - v_.scrollY;
    const int ax = std::max(mx0, Settle(sx0 - baseX, startX, viewRepeatW_));
    const int bx = std::min(mx1, Settle(sx1 - baseX, startX + piece.width, viewRepeatW_));
    const int ay = std::max(my0, Settle(sy0 - baseY, startY, viewRepeatH_));
    const int by = std::min(my1, Settle(sy1 - baseY, startY + piece.height, viewRepeatH_));
    if (ax >= bx || ay >= by) return;
    const unsigned int w = static_cast<unsigned int>(bx - ax),
                       h = static_cast<unsigned int>(by - ay);
    columns_.resize(w);
    rows_.resize(h);
    for (unsigned int i = 0; i < w; ++i)
      columns_[i] = FileIndex(ax + static_cast<int>(i)) - startX + piece.bufX;
    for (unsigned int j = 0; j < h; ++j)
      rows_[j] = FileIndex(ay + static_cast<int>(j)) - startY + piece.bufY;
    const unsigned int outX = static_cast<unsigned int>(baseX + ax);
    const unsigned int outY = static_cast<unsigned int>(baseY + ay);
    for (const Layer &layer : d_.layers) {
      if (layer.grey) {
        greyScratch_.resize(static_cast<std::size_t>(w) * h);
        for (unsigned int j = 0; j < h; ++j)
          for (unsigned int i = 0; i < w; ++i)
            greyScratch_[j * w + i] =
                layer.l08[static_cast<std::size_t>(rows_[j]) * d_.width + columns_[i]];
        TransferToneL08ToTRC(greyScratch_.data(), w, h, 0, 0, out_, v_.width, v_.height, outX, outY,
                             ramps_[&layer - d_.layers.data()].data(), layer.opacity, w, h,
                             v_.exact);
      } else {
        colourScratch_.resize(static_cast<std::size_t>(w) * h);
        for (unsigned int j = 0; j < h; ++j)
          for (unsigned int i = 0; i < w; ++i)
            colourScratch_[j * w + i] =
                layer.trc[static_cast<std::size_t>(rows_[j]) * d_.width + columns_[i]];
        AlphaBlendTRCToTRC(colourScratch_.data(), w, h, 0, 0, out_, v_.width, v_.height, outX, outY,
                           layer.opacity, w, h, v_.exact);
      }
    }
  }

  const Design &d_;
  const ViewSettings &v_;
  unsigned int *out_;
  _EDropKind kind_;
  unsigned int drop_;
  int viewRepeatW_, viewRepeatH_;
  double dropRatio_;
  std::vector<int> columns_, rows_;
  std::vector<std::array<unsigned int, 256>> ramps_;  // one per layer (grey layers use theirs)
  std::vector<unsigned char> greyScratch_;
  std::vector<unsigned int> colourScratch_;
};

}  // namespace

Design SyntheticDesign() {
  Design d;
  d.width = 120;
  d.height = 90;
  const std::size_t n = static_cast<std::size_t>(d.width) * d.height;
  Layer stripes, discs, diamond;
  stripes.colour = 0xFF2B4C9Bu;  // blue diagonal stripes with soft edges
  stripes.l08.assign(n, 0);
  discs.colour = 0xFFD9502Eu;  // orange discs at 85% opacity
  discs.opacity = 217;
  discs.l08.assign(n, 0);
  diamond.grey = false;  // a yellow diamond fading out toward its corners
  diamond.trc.assign(n, 0);
  for (int y = 0; y < static_cast<int>(d.height); ++y) {
    for (int x = 0; x < static_cast<int>(d.width); ++x) {
      const std::size_t i = static_cast<std::size_t>(y) * d.width + x;
      const int s = (x + 2 * y) % 30;
      stripes.l08[i] = static_cast<unsigned char>(s < 8 ? 255 : s < 13 ? 255 - (s - 7) * 42 : 0);
      const double r1 = std::hypot(x - 78.5, y - 38.5), r2 = std::hypot(x - 20.5, y - 70.5);
      const double cover =
          std::max(std::clamp(26.0 - r1, 0.0, 1.0), std::clamp(12.0 - r2, 0.0, 1.0));
      discs.l08[i] = static_cast<unsigned char>(cover * 255.0 + 0.5);
      const int manhattan = std::abs(x - 35) + std::abs(y - 30);
      if (manhattan < 24)
        diamond.trc[i] = (static_cast<unsigned int>(255 - manhattan * 8) << 24) | 0xF2C230u;
    }
  }
  d.layers = {stripes, discs, diamond};
  return d;
}

_EDropKind EffectiveDropKind(const ViewSettings &view) {
  return view.dropKind == eDropHorizontal ? eDropHorizontal : eDropVertical;
}

unsigned int EffectiveDrop(const ViewSettings &view) {
  return view.dropKind == eDropNone ? 0 : view.drop;
}

std::string CheckView(const Design &design, const ViewSettings &view) {
  if (design.width == 0 || design.height == 0) return "the design tile is empty";
  if (view.width == 0 || view.height == 0) return "the view size must be positive";
  if (view.width > 8192 || view.height > 8192) return "the view is larger than 8192 pixels";
  if (!(view.zoom > 0) || view.zoom > 64) return "the zoom must be above 0 and at most 64";
  if (static_cast<long long>(design.width * view.zoom) < 1 ||
      static_cast<long long>(design.height * view.zoom) < 1)
    return "the zoom makes the view repeat smaller than one pixel";
  if (std::abs(static_cast<long long>(view.scrollX)) > 1000000 ||
      std::abs(static_cast<long long>(view.scrollY)) > 1000000)
    return "the scroll offset is beyond +-1000000 pixels";
  if (view.backdropSquare == 0) return "the backdrop square size must be positive";
  if (view.dropKind != eDropNone) {
    const bool vertical = view.dropKind == eDropVertical;
    const unsigned int side = vertical ? design.height : design.width;
    if (view.drop >= side)
      return "bad drop " + std::to_string(view.drop) + ": a " +
             (vertical ? "vertical drop must be 0 to " : "horizontal drop must be 0 to ") +
             std::to_string(side - 1) + ", below the tile's " + (vertical ? "height" : "width");
  }
  for (const Layer &layer : design.layers) {
    const std::size_t n = static_cast<std::size_t>(design.width) * design.height;
    if ((layer.grey ? layer.l08.size() : layer.trc.size()) != n)
      return "a layer does not match the tile size";
  }
  return "";
}

std::vector<unsigned int> RenderView(const Design &design, const ViewSettings &view) {
  std::vector<unsigned int> out(static_cast<std::size_t>(view.width) * view.height, 0);
  // Row bands over the library's worker pool; each band draws its own
  // backdrop and tiles, so the bands write disjoint rows.
  RunInRowBands(
      view.height,
      [&](unsigned int top, unsigned int rows) {
        BandRenderer(design, view, out.data()).Draw(top, top + rows);
      },
      view.bands);
  return out;
}

}  // namespace ostrel_examples
