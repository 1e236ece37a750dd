// The forms of values in words, by their C++ types: `valueName<T>()` is what the list of operations tells of
// an argument or a result. A type without a name does not compile.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

#include "automation/json_values.h"

namespace ostrelon {

/// The name of a plain value or a record; lists, pairs and what may be absent are put together from it.
template <class T>
inline constexpr std::string_view kValueName{};

template <>
inline constexpr std::string_view kValueName<void> = "null";
template <>
inline constexpr std::string_view kValueName<Json> = "any value";
template <>
inline constexpr std::string_view kValueName<bool> = "true or false";
template <>
inline constexpr std::string_view kValueName<int> = "whole number";
template <>
inline constexpr std::string_view kValueName<std::int64_t> = "whole number";
template <>
inline constexpr std::string_view kValueName<double> = "number";
template <>
inline constexpr std::string_view kValueName<std::string> = "text";
template <>
inline constexpr std::string_view kValueName<std::string_view> = "text";
template <>
inline constexpr std::string_view kValueName<const char*> = "text";
template <>
inline constexpr std::string_view kValueName<FilePath> = "path";
template <>
inline constexpr std::string_view kValueName<UUID> = "identifier";
template <>
inline constexpr std::string_view kValueName<std::unordered_set<UUID>> = "list of identifiers";
template <>
inline constexpr std::string_view kValueName<EntitySet> = "list of identifiers";
template <>
inline constexpr std::string_view kValueName<Date> = "time";
template <>
inline constexpr std::string_view kValueName<SketchPoint> = "point";
template <>
inline constexpr std::string_view kValueName<SketchSize> = "size";
template <>
inline constexpr std::string_view kValueName<SketchBox> = "box";
template <>
inline constexpr std::string_view kValueName<SketchTool> = "tool";
template <>
inline constexpr std::string_view kValueName<SketchEntity> = "entity";
template <>
inline constexpr std::string_view kValueName<EntityList> = "entities";
template <>
inline constexpr std::string_view kValueName<EntityMetrics> = "measures";
template <>
inline constexpr std::string_view kValueName<WallSystemSpec> = "wall system";
template <>
inline constexpr std::string_view kValueName<SketchViewport> = "viewport";
template <>
inline constexpr std::string_view kValueName<SketchDraft> = "draft";
template <>
inline constexpr std::string_view kValueName<SelectMarqueeState> = "marquee";
template <>
inline constexpr std::string_view kValueName<SelectionHandle> = "handle";
template <>
inline constexpr std::string_view kValueName<Opening> = "opening";
template <>
inline constexpr std::string_view kValueName<PlanItem> = "plan item";
template <>
inline constexpr std::string_view kValueName<SketchUndoSnapshot> = "undo snapshot";
template <>
inline constexpr std::string_view kValueName<SketchCommandMutationState> = "command state";
template <>
inline constexpr std::string_view kValueName<EntitySnapTarget> = "snap target";
template <>
inline constexpr std::string_view kValueName<GridSnapTarget> = "grid snap";
template <>
inline constexpr std::string_view kValueName<SketchSnapResult> = "snap result";
template <>
inline constexpr std::string_view kValueName<SketchSnapping::TrackingCandidate> = "tracking candidate";
template <>
inline constexpr std::string_view kValueName<SegmentLengthIndicator> = "length indicator";
template <>
inline constexpr std::string_view kValueName<EntityPick> = "pick";
template <>
inline constexpr std::string_view kValueName<TrimOutcome> = "trim outcome";
template <>
inline constexpr std::string_view kValueName<TrimGeometry> = "trim geometry";
template <>
inline constexpr std::string_view kValueName<TrimResult> = "trim result";
template <>
inline constexpr std::string_view kValueName<SegmentCircleHit> = "hit";
template <>
inline constexpr std::string_view kValueName<DocumentCheckpoint> = "checkpoint";
template <>
inline constexpr std::string_view kValueName<DocumentHistoryBranch> = "branch";
template <>
inline constexpr std::string_view kValueName<DocumentHistoryState> = "history";
template <>
inline constexpr std::string_view kValueName<DocumentHistoryState::FoundCheckpoint> = "found checkpoint";
template <>
inline constexpr std::string_view kValueName<SketchDocumentV2> = "document";
template <>
inline constexpr std::string_view kValueName<LoadedSketchDocument> = "document";
template <>
inline constexpr std::string_view kValueName<AutoSaveRecoveryCandidate> = "recovery candidate";
template <>
inline constexpr std::string_view kValueName<RecoverableJournal> = "recoverable journal";
template <>
inline constexpr std::string_view kValueName<KeptDrawing> = "kept drawing";
template <>
inline constexpr std::string_view kValueName<ThemePalette> = "palette";
template <>
inline constexpr std::string_view kValueName<AppVersion> = "version";
template <>
inline constexpr std::string_view kValueName<AppUpdateRelease> = "release";
template <>
inline constexpr std::string_view kValueName<AppUpdateManifest> = "manifest";
template <>
inline constexpr std::string_view kValueName<AppUpdateAvailability> = "available update";
template <>
inline constexpr std::string_view kValueName<AppUpdateEvaluationResult> = "update evaluation";
template <>
inline constexpr std::string_view kValueName<AppUpdateChangeGroup> = "change group";

namespace value_names {

// How what is put together of other values is told.
template <class T>
struct Whole {
  static std::string text() {
    if constexpr (HasCaseNames<T>) {
      std::string cases;
      const auto names = CaseNames<T>::names();
      for (std::size_t i = 0; i < names.size(); ++i) {
        cases.append(i == 0 ? "" : i + 1 < names.size() ? ", " : " or ").append(names[i]);
      }
      return cases;
    } else {
      static_assert(!kValueName<T>.empty());
      return std::string(kValueName<T>);
    }
  }
};
template <class T>
struct Whole<std::optional<T>> {
  static std::string text() { return Whole<T>::text() + " or null"; }
};
template <class T>
struct Whole<const T*> : Whole<std::optional<T>> {};
template <>
struct Whole<const char*> : Whole<std::string> {};
template <class T>
struct Whole<std::vector<T>> {
  static std::string text() { return "list of (" + Whole<T>::text() + ")"; }
};
template <class A, class B>
struct Whole<std::pair<A, B>> {
  static std::string text() { return "[" + Whole<A>::text() + ", " + Whole<B>::text() + "]"; }
};
template <class T>
struct Whole<std::map<SelectionHandle, T>> {
  static std::string text() { return "list of [handle, " + Whole<T>::text() + "]"; }
};
template <class T>
struct Whole<std::unordered_map<UUID, T>> {
  static std::string text() { return "object of " + Whole<T>::text() + " by identifier"; }
};

}  // namespace value_names

/// A value of this type in words, such as `point`, `text or null` or `list of (identifier)`.
template <class T>
std::string valueName() {
  return value_names::Whole<std::remove_cvref_t<T>>::text();
}

}  // namespace ostrelon
