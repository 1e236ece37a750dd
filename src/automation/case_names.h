// The names of enumerations' cases, as requests and replies write them: one table for each, used both ways.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "core/document_toast.h"
#include "core/entity_edits.h"
#include "core/plan.h"
#include "documents/app_settings.h"
#include "documents/merge.h"
#include "exchange/dxf_import.h"
#include "geometry/trim.h"
#include "interaction/select_drag_state.h"
#include "interaction/sketch_tool.h"
#include "interaction/snap_types.h"

namespace ostrelon {

/// `names()` of an enumeration whose cases count up from zero: an array of texts in the order of the cases.
template <class Enumeration>
struct CaseNames;

template <class Enumeration>
concept HasCaseNames = requires {
  CaseNames<Enumeration>::names();
};

template <HasNamedCases Enumeration>
struct CaseNames<Enumeration> {
  static constexpr auto names() { return caseNamesOf(Enumeration()); }
};

template <>
struct CaseNames<AxisSnap> {
  static constexpr auto names() {
    return std::to_array<std::string_view>({"horizontal", "vertical", "diagonalUp", "diagonalDown"});
  }
};

template <>
struct CaseNames<EntitySnapKind> {
  static constexpr auto names() {
    return std::to_array<std::string_view>({"endpoint", "midpoint", "center", "quadrant", "tangent", "corner",
                                            "edgeMidpoint", "faceCorner", "face", "jamb"});
  }
};

template <>
struct CaseNames<EntityConversionTarget> {
  static constexpr auto names() { return std::to_array<std::string_view>({"line", "wall"}); }
};

template <>
struct CaseNames<EntityEditResult> {
  static constexpr auto names() {
    return std::to_array<std::string_view>(
        {"applied", "unchanged", "noSelection", "invalidValue", "unsupported"});
  }
};

template <>
struct CaseNames<DxfUnitSource> {
  static constexpr auto names() { return std::to_array<std::string_view>({"given", "declared", "likely"}); }
};

template <>
struct CaseNames<DxfReason> {
  static constexpr auto names() {
    return std::to_array<std::string_view>({"drawn", "unknownKind", "tilted", "noSize", "noBlock", "ownBlock",
                                            "tooFar", "onPaper", "invisible", "layerOff", "layerFrozen",
                                            "layerNotTaken"});
  }
};

template <>
struct CaseNames<OpeningKind> {
  static constexpr auto names() { return std::to_array<std::string_view>({"door", "window", "opening"}); }
};

template <>
struct CaseNames<DoorHinge> {
  static constexpr auto names() { return std::to_array<std::string_view>({"left", "right"}); }
};

template <>
struct CaseNames<DoorSwing> {
  static constexpr auto names() { return std::to_array<std::string_view>({"in", "out"}); }
};

template <>
struct CaseNames<MergeChoice> {
  static constexpr auto names() { return std::to_array<std::string_view>({"ours", "theirs", "both"}); }
};

template <>
struct CaseNames<AlignmentAxis> {
  static constexpr auto names() { return std::to_array<std::string_view>({"horizontal", "vertical"}); }
};

template <>
struct CaseNames<DocumentToastState::Style> {
  static constexpr auto names() { return std::to_array<std::string_view>({"saving", "success", "error"}); }
};

template <>
struct CaseNames<AppearanceMode> {
  static auto names() {
    std::array<std::string_view, std::size(kAppearanceModes)> all;
    std::transform(std::begin(kAppearanceModes), std::end(kAppearanceModes), all.begin(),
                   [](AppearanceMode mode) { return rawValue(mode); });
    return all;
  }
};

template <>
struct CaseNames<ColorScheme> {
  static constexpr auto names() { return std::to_array<std::string_view>({"light", "dark"}); }
};

template <>
struct CaseNames<TrimFailure> {
  static constexpr auto names() {
    return std::to_array<std::string_view>({"noIntersection", "intersectionAtEndpoint"});
  }
};

template <>
struct CaseNames<SelectionHandle::Kind> {
  static constexpr auto names() {
    return std::to_array<std::string_view>({"polygonVertex", "lineStart", "lineEnd", "circleCenter",
                                            "circleRadius", "rectMinXMinY", "rectMaxXMinY", "rectMaxXMaxY",
                                            "rectMinXMaxY"});
  }
};

}  // namespace ostrelon
