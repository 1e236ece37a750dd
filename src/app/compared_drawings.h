// A comparison worked out: what another drawing and the open one differ in, as rows of words that are gone
// through and as layers to be shown. The other drawing is the one before, the open one the one after.
//
// All of it is a value that is made from values, on whichever thread.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "interaction/difference_layers.h"

namespace ostrelon {

/// Which differences are listed and shown.
struct ComparisonFilter {
  bool removed = true;
  bool changed = true;
  bool added = true;
  /// The one kind of entity, by its place in `SketchEntity`; absent: all kinds, and wall systems.
  std::optional<std::size_t> entityKind;

  bool isWhole() const { return *this == ComparisonFilter(); }
  friend bool operator==(const ComparisonFilter&, const ComparisonFilter&) = default;
};

struct ComparisonRow {
  ToldDifference told;
  std::optional<std::size_t> item;  ///< among those of the layers; a wall system has none
};

struct ComparedDrawings {
  Drawing before;
  Drawing after;
  ComparisonFilter filter;
  DrawingDifference difference;  ///< whatever the filter is
  /// What the filter lets through.
  std::shared_ptr<const DifferenceLayers> layers;
  /// The wall systems, then group by group.
  std::vector<ComparisonRow> rows;
  std::size_t untold = 0;  ///< differences beyond the longest list of rows, which are shown all the same
  /// The drawing before, as edits of the one after, so that comparing again costs what differs.
  Drawing rebased;

  /// The group of a row; absent for a wall system.
  std::optional<std::size_t> groupOf(const ComparisonRow& row) const;
};

inline constexpr std::size_t kMostComparisonRows = 20'000;

/// `rebased`: that of an earlier comparison with the same drawing, if there was one. Numbers are compared as
/// files hold them.
ComparedDrawings comparedDrawings(const Drawing& before, const Drawing* rebased, const Drawing& after,
                                  const ComparisonFilter& filter);

}  // namespace ostrelon
