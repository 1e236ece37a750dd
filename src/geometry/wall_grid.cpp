#include "geometry/wall_grid.h"

#include <bit>

namespace ostrelon {

WallGrid::WallGrid(std::span<const SketchBox> boxes, double cellSize)
    : cellSize_(cellSize), boxCount_(boxes.size()) {
  const std::size_t buckets = std::bit_ceil(2 * boxes.size() + 1);
  mask_ = buckets - 1;
  begins_.assign(buckets + 1, 0);
  for (std::uint32_t number = 0; number < boxes.size(); ++number) {
    const Cells cells = cellsOf(boxes[number]);
    if (cells.count() > kMostCells) {
      large_.push_back(number);
    } else {
      visitCells(cells, [this](std::size_t bucket) { ++begins_[bucket]; });
    }
  }
  std::uint32_t total = 0;
  for (std::uint32_t& begin : begins_) total = begin += total;
  numbers_.resize(total);
  // From the end of each bucket to its begin, so that no second list of places is needed.
  for (std::uint32_t number = 0; number < boxes.size(); ++number) {
    const Cells cells = cellsOf(boxes[number]);
    if (cells.count() > kMostCells) continue;
    visitCells(cells, [this, number](std::size_t bucket) { numbers_[--begins_[bucket]] = number; });
  }
}

}  // namespace ostrelon
