// What GetContourPolygonFromBuffer2 promises of its figures, checked
// against counts made here independently of the library: the unit tests and
// the outline fuzzer both hold the function to it.
#ifndef OSTREL_TESTS_OUTLINE_CHECK_H
#define OSTREL_TESTS_OUTLINE_CHECK_H

#include <cstdint>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace outline_check {

using Vertex = std::pair<long long, long long>;  // x, y in buffer coordinates
using Figure = std::vector<Vertex>;

// A mask region as the function sees it: the pixels (x, y) with left <= x <
// left + columns and top <= y < top + rows of a width-wide buffer; all else
// is background.
struct Region {
  const unsigned char *mask;
  long long width, left, top, columns, rows;

  bool Object(long long x, long long y) const {
    return x >= left && y >= top && x < left + columns && y < top + rows &&
           mask[y * width + x] != 0;
  }
};

// The parts written one after the other.
template <class... Parts>
std::string Say(const Parts &...parts) {
  std::ostringstream text;
  (text << ... << parts);
  return text.str();
}

// Twice the signed (shoelace) area of a figure.
inline long long TwiceArea(const Figure &f) {
  long long sum = 0;
  for (std::size_t i = 0; i < f.size(); ++i) {
    const Vertex &a = f[i], &b = f[(i + 1) % f.size()];
    sum += a.first * b.second - b.first * a.second;
  }
  return sum;
}

// 8-connected objects and the 4-connected background regions of the region
// that do not reach its border.
inline std::pair<long long, long long> CountComponents(const Region &r) {
  std::vector<char> seen(static_cast<std::size_t>(r.columns * r.rows), 0);
  long long objects = 0, holes = 0;
  std::vector<std::pair<long long, long long>> stack;
  for (long long j = 0; j < r.rows; ++j) {
    for (long long i = 0; i < r.columns; ++i) {
      if (seen[j * r.columns + i]) continue;
      const bool object = r.Object(r.left + i, r.top + j);
      bool border = false;
      stack.assign(1, {i, j});
      seen[j * r.columns + i] = 1;
      while (!stack.empty()) {
        const auto p = stack.back();
        stack.pop_back();
        border |=
            p.first == 0 || p.second == 0 || p.first + 1 == r.columns || p.second + 1 == r.rows;
        for (long long dy = -1; dy <= 1; ++dy) {
          for (long long dx = -1; dx <= 1; ++dx) {
            if (!object && dx != 0 && dy != 0) continue;  // background: 4 neighbours
            const long long nx = p.first + dx, ny = p.second + dy;
            if (nx < 0 || ny < 0 || nx >= r.columns || ny >= r.rows) continue;
            char &s = seen[ny * r.columns + nx];
            if (s || r.Object(r.left + nx, r.top + ny) != object) continue;
            s = 1;
            stack.emplace_back(nx, ny);
          }
        }
      }
      if (object) ++objects;
      if (!object && !border) ++holes;
    }
  }
  return {objects, holes};
}

// "" when the figures are the region's outlines, else what is wrong: one
// closed figure per object and per hole, along pixel edges with the object
// on the right, no collinear vertex, each boundary edge walked once, areas
// adding up to the object pixels, each figure starting at its topmost,
// leftmost vertex and the figures in the order of their starts.
inline std::string Check(const Region &r, const std::vector<Figure> &figures) {
  long long pixels = 0, boundaryEdges = 0, walkedEdges = 0, area = 0, outer = 0, holes = 0;
  for (long long y = r.top; y < r.top + r.rows; ++y) {
    for (long long x = r.left; x < r.left + r.columns; ++x) {
      if (!r.Object(x, y)) continue;
      ++pixels;
      boundaryEdges +=
          !r.Object(x, y - 1) + !r.Object(x - 1, y) + !r.Object(x, y + 1) + !r.Object(x + 1, y);
    }
  }
  Vertex previousStart{-1, -1};  // (y, x)
  for (std::size_t n = 0; n < figures.size(); ++n) {
    const Figure &f = figures[n];
    if (f.size() < 4) return Say("figure ", n, " has ", f.size(), " vertices");
    const long long a = TwiceArea(f);
    (a > 0 ? outer : holes) += 1;
    area += a;
    const Vertex start{f[0].second, f[0].first};
    for (const Vertex &v : f) {
      if (Vertex{v.second, v.first} < start)
        return Say("figure ", n, " does not start at its topmost, leftmost vertex");
    }
    if (!(previousStart < start)) return Say("figure ", n, " starts before the one ahead of it");
    previousStart = start;
    for (std::size_t i = 0; i < f.size(); ++i) {
      const Vertex &p = f[i], &q = f[(i + 1) % f.size()], &s = f[(i + 2) % f.size()];
      const long long dx = (q.first > p.first) - (q.first < p.first);
      const long long dy = (q.second > p.second) - (q.second < p.second);
      const long long ex = (s.first > q.first) - (s.first < q.first);
      const long long ey = (s.second > q.second) - (s.second < q.second);
      if ((dx == 0) == (dy == 0) || dx * ex + dy * ey != 0)
        return Say("figure ", n, " vertex ", i + 1, ": not a turn along the axes");
      // Each unit edge from (x, y) has the object on its right (y down: the
      // right of (dx, dy) is (-dy, dx)) and background on its left.
      for (long long x = p.first, y = p.second; x != q.first || y != q.second; x += dx, y += dy) {
        const long long rx = x - (dx < 0 || dy > 0), ry = y - (dx < 0 || dy < 0);
        const long long lx = x - (dx < 0 || dy < 0), ly = y - (dx > 0 || dy < 0);
        if (!r.Object(rx, ry) || r.Object(lx, ly))
          return Say("figure ", n, ": the edge from (", x, ", ", y, ") is no object boundary");
        ++walkedEdges;
      }
    }
  }
  if (area != 2 * pixels) return Say("areas add up to ", area / 2.0, ", not ", pixels);
  if (walkedEdges != boundaryEdges) return Say(walkedEdges, " edges walked of ", boundaryEdges);
  const auto counts = CountComponents(r);
  if (outer != counts.first || holes != counts.second)
    return Say(outer, " outer and ", holes, " hole figures for ", counts.first, " objects and ",
               counts.second, " holes");
  return "";
}

}  // namespace outline_check

#endif  // OSTREL_TESTS_OUTLINE_CHECK_H
