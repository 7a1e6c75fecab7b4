// Flood fill and object labelling (Fill, ColorBinaryObjects).
#include <cstdint>

#include "Ostrel.h"
#include "frame/checked.h"
#include "objects/objects.h"

namespace ostrel {
namespace objects {
namespace {

// The label after label, one up or down: modulo 256 for bytes, modulo 2^32
// for ints.
unsigned char StepLabel(unsigned char label, bool ascending) {
  return static_cast<unsigned char>(ascending ? label + 1u : label - 1u);
}
int StepLabel(int label, bool ascending) {
  const unsigned int u = static_cast<unsigned int>(label);
  return static_cast<int>(ascending ? u + 1u : u - 1u);
}

}  // namespace
}  // namespace objects
}  // namespace ostrel

namespace objects = ostrel::objects;

template <typename T>
int Fill(T *buffer, int width, int height, int seedX, int seedY, int left, int top, int regionWidth,
         int regionHeight, T fillValue, int *changedCount) {
  OSTREL_EXPECT(__func__, "width", width, width >= 1, "at least 1");
  OSTREL_EXPECT(__func__, "height", height, height >= 1, "at least 1");
  if (changedCount != nullptr) *changedCount = 1;
  if (width < 1 || height < 1) return 0;  // no pixel to seed at
  // The seed moves into the buffer, not into the region.
  if (seedX < 0 || seedX > width - 1) seedX = seedX < 0 ? 0 : width - 1;
  if (seedY < 0 || seedY > height - 1) seedY = seedY < 0 ? 0 : height - 1;
  objects::FillLimits limits;
  limits.left = objects::ClampInt(left, 0, width - 1);
  limits.top = objects::ClampInt(top, 0, height - 1);
  limits.right = limits.left + objects::ClampInt(regionWidth, 0, width - 1 - limits.left);
  limits.bottom = limits.top + objects::ClampInt(regionHeight, 0, height - 1 - limits.top);

  const T target = buffer[static_cast<std::ptrdiff_t>(seedY) * width + seedX];
  // Filling a region with its own value would change nothing.
  OSTREL_EXPECT(__func__, "fillValue", fillValue, fillValue != target,
                "a value other than the seed pixel's");
  if (fillValue == target) return 0;

  objects::FillEngine<T> engine;
  const std::size_t filled = engine.Fill(buffer, width, seedX, seedY, limits, target, fillValue);
  if (changedCount != nullptr) *changedCount = objects::SaturatedCount(std::uint64_t{1} + filled);
  return 0;
}

template <typename T>
int ColorBinaryObjects(T *buffer, int width, int height, int left, int top, int regionWidth,
                       int regionHeight, T backgroundValue, T objectValue, T firstLabel,
                       bool ascending, int endLabel) {
  OSTREL_EXPECT(__func__, "width", width, width >= 0, "not negative");
  OSTREL_EXPECT(__func__, "height", height, height >= 0, "not negative");
  const objects::ClampedRegion r =
      objects::ClampRegion(width, height, left, top, regionWidth, regionHeight);
  if (r.height < 1) return 0;
  // Fill's inclusive limits for this region: one column and one row beyond
  // the scanned ones.
  const objects::FillLimits limits = {r.left, r.top, r.left + r.width, r.top + r.height};

  objects::FillEngine<T> engine;
  T label = firstLabel;
  std::int64_t count = 0;
  for (int y = r.top; y < r.top + r.height; ++y) {
    T *row = buffer + static_cast<std::ptrdiff_t>(y) * width + r.left;
    // The column c counts fills and plain pixels; the read position also
    // counts the pixels that met a reserved label, so it runs ahead of c
    // after each of them until the row ends.
    const T *read = row;
    for (int c = 0; c < r.width; ++read) {
      if (*read != objectValue) {
        ++c;
        continue;
      }
      if (label != objectValue && label != backgroundValue) {
        const T target = row[c];
        if (target != label) engine.Fill(buffer, width, r.left + c, y, limits, target, label);
        ++count;
        ++c;
      }
      label = objects::StepLabel(label, ascending);
      if (ascending ? static_cast<int>(label) == endLabel : label == 1) {
        return objects::SaturatedCount(static_cast<std::uint64_t>(count));
      }
    }
  }
  return objects::SaturatedCount(static_cast<std::uint64_t>(count));
}

template OSTREL_API int Fill<unsigned char>(unsigned char *buffer, int width, int height, int seedX,
                                            int seedY, int left, int top, int regionWidth,
                                            int regionHeight, unsigned char fillValue,
                                            int *changedCount);
template OSTREL_API int Fill<int>(int *buffer, int width, int height, int seedX, int seedY,
                                  int left, int top, int regionWidth, int regionHeight,
                                  int fillValue, int *changedCount);
template OSTREL_API int ColorBinaryObjects<unsigned char>(
    unsigned char *buffer, int width, int height, int left, int top, int regionWidth,
    int regionHeight, unsigned char backgroundValue, unsigned char objectValue,
    unsigned char firstLabel, bool ascending, int endLabel);
template OSTREL_API int ColorBinaryObjects<int>(int *buffer, int width, int height, int left,
                                                int top, int regionWidth, int regionHeight,
                                                int backgroundValue, int objectValue,
                                                int firstLabel, bool ascending, int endLabel);
