// Which boxes of a fixed set touch a box: a grid of square cells whose cells are found through a hash table.
// Made once and asked often, from several threads at a time.
#pragma once

#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include "core/sketch_box.h"

namespace ostrelon {

class WallGrid {
 public:
  /// `boxes` must be finite. `cellSize`: above 0; about the size of a box is best.
  WallGrid(std::span<const SketchBox> boxes, double cellSize);

  /// Calls `visit(number)` for every box that may touch the box; some more than once, and some that do not.
  template <class Visit>
  void visitNear(const SketchBox& box, Visit visit) const {
    for (const std::uint32_t number : large_) visit(number);
    const Cells cells = cellsOf(box);
    if (cells.count() > kMostCells) {
      for (std::uint32_t number = 0; number < boxCount_; ++number) visit(number);
      return;
    }
    visitCells(cells, [&](std::size_t bucket) {
      for (std::uint32_t i = begins_[bucket]; i < begins_[bucket + 1]; ++i) visit(numbers_[i]);
    });
  }

 private:
  static constexpr double kMostCells = 256;

  struct Cells {
    double minX = 0, minY = 0, maxX = 0, maxY = 0;
    double count() const { return (maxX - minX + 1) * (maxY - minY + 1); }
  };
  Cells cellsOf(const SketchBox& box) const {
    return {std::floor(box.minX / cellSize_), std::floor(box.minY / cellSize_),
            std::floor(box.maxX / cellSize_), std::floor(box.maxY / cellSize_)};
  }
  std::size_t bucketOf(double x, double y) const {
    const auto mixed = static_cast<std::uint64_t>(static_cast<std::int64_t>(x)) * 0x9E3779B97F4A7C15ULL +
                       static_cast<std::uint64_t>(static_cast<std::int64_t>(y)) * 0xD6E8FEB86659FD93ULL;
    return static_cast<std::size_t>(mixed ^ (mixed >> 29)) & mask_;
  }
  template <class Visit>
  void visitCells(const Cells& cells, Visit visit) const {
    if (!(cells.count() >= 1)) return;  // no numbers
    const int columns = static_cast<int>(cells.maxX - cells.minX) + 1;
    const int rows = static_cast<int>(cells.maxY - cells.minY) + 1;
    for (int row = 0; row < rows; ++row) {
      for (int column = 0; column < columns; ++column) visit(bucketOf(cells.minX + column, cells.minY + row));
    }
  }

  double cellSize_;
  std::size_t boxCount_;
  std::size_t mask_ = 0;
  std::vector<std::uint32_t> begins_;   // of each bucket, into the numbers
  std::vector<std::uint32_t> numbers_;  // of the boxes, bucket by bucket
  std::vector<std::uint32_t> large_;    // boxes of very many cells
};

}  // namespace ostrelon
