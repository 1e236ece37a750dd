// The program's values as JSON, by their C++ types: `toJson(value)` for results, and
// `Reader<T>::read(json, context)` for arguments, which throws `ArgumentError` with what was expected.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <variant>
#include <vector>

#include "app/edit_journal.h"
#include "automation/case_names.h"
#include "automation/json_text.h"
#include "automation/mutation_state.h"
#include "documents/app_settings.h"
#include "documents/document_history_state.h"
#include "documents/sketch_document.h"
#include "geometry/entity_edits.h"
#include "geometry/hit_testing.h"
#include "geometry/marquee.h"
#include "geometry/selection_handles.h"
#include "geometry/trim.h"
#include "interaction/canvas_transform.h"
#include "interaction/sketch_snapping.h"
#include "platform/user_error.h"
#include "updates/app_update_manager.h"
#include "updates/app_version.h"

namespace ostrelon {

/// An argument that does not fit: the text is the whole sentence of the reply.
class ArgumentError : public UserError {
 public:
  using UserError::UserError;
};

// --- Results

inline Json toJson(const Json& value) { return value; }
inline Json toJson(bool value) { return value; }
inline Json toJson(int value) { return value; }
inline Json toJson(std::int64_t value) { return value; }
inline Json toJson(std::uint64_t value) { return value; }
inline Json toJson(double value) { return value; }
inline Json toJson(const std::string& value) { return value; }
inline Json toJson(std::string_view value) { return std::string(value); }
inline Json toJson(const char* value) { return value; }
Json toJson(const FilePath& value);
Json toJson(const UUID& value);
Json toJson(Date value);
Json toJson(SketchPoint value);
Json toJson(SketchSize value);

Json toJson(SketchTool value);
template <HasCaseNames Enumeration>
Json toJson(Enumeration value) {
  return CaseNames<Enumeration>::names()[static_cast<std::size_t>(value)];
}

Json toJson(const SketchEntity& value);
Json toJson(const EntityList& value);
Json toJson(const EntityMetrics& value);
Json toJson(const WallSystemSpec& value);
Json toJson(const ConsoleLine& value);
Json toJson(const SketchViewport& value);
Json toJson(const SketchDraft& value);
Json toJson(const PolygonDraft& value);
Json toJson(const SelectMarqueeState& value);
Json toJson(const SelectionHandle& value);
Json toJson(const SelectDragState& value);
Json toJson(const Opening& value);
Json toJson(const RoomName& value);
Json toJson(const RoomDivider& value);
Json toJson(const Dimension& value);
Json toJson(const Note& value);
Json toJson(const PlanSheet& value);
Json toJson(const PlanItem& value);
Json toJson(const Plan& value);
/// With "plan" where the snapshot holds one that is not empty.
Json toJson(const SketchUndoSnapshot& value);
Json toJson(const SketchUndoStack& value);
Json toJson(const SketchCommandMutationState& value);
Json toJson(const DocumentToastState& value);
Json toJson(const EntitySnapTarget& value);
Json toJson(const GridSnapTarget& value);
Json toJson(const SketchSnapResult& value);
Json toJson(const SketchSnapping::TrackingCandidate& value);
Json toJson(const SegmentLengthIndicator& value);
Json toJson(const EntityPick& value);
Json toJson(const SketchBox& value);
Json toJson(const TrimOutcome& value);
Json toJson(const TrimGeometry& value);
Json toJson(const TrimResult& value);
Json toJson(const SegmentCircleHit& value);
Json toJson(const DocumentCheckpoint& value);
Json toJson(const DocumentHistoryBranch& value);
Json toJson(const DocumentHistoryMetadata& value);
Json toJson(const DocumentHistoryState& value);
Json toJson(const DocumentHistoryState::FoundCheckpoint& value);
Json toJson(const SketchDocumentV2& value);
Json toJson(const LoadedSketchDocument& value);
Json toJson(const AutoSaveRecoveryCandidate& value);
Json toJson(const RecoverableJournal& value);
Json toJson(const KeptDrawing& value);
Json toJson(const Color& value);
Json toJson(const ThemePalette& value);
Json toJson(const AppVersion& value);
Json toJson(const AppUpdateRelease& value);
Json toJson(const AppUpdateManifest& value);
Json toJson(const AppUpdateAvailability& value);
Json toJson(const AppUpdateEvaluationResult& value);
Json toJson(const AppUpdateChangeGroup& value);

template <class T>
Json toJson(const std::optional<T>& value) {
  return value ? toJson(*value) : Json();
}
template <class T>
Json toJson(const T* value) {
  return value != nullptr ? toJson(*value) : Json();
}
template <class A, class B>
Json toJson(const std::pair<A, B>& value) {
  return Json::array({toJson(value.first), toJson(value.second)});
}
template <class T>
Json toJson(const std::vector<T>& values) {
  Json list = Json::array();
  for (const auto& value : values) list.push_back(toJson(value));
  return list;
}
/// Sorted.
Json toJson(const EntitySet& values);
template <class T>
Json toJson(const std::map<std::string, T>& values) {
  Json object = Json::object();
  for (const auto& [key, value] : values) object[key] = toJson(value);
  return object;
}
/// By identifier, sorted.
template <class T>
Json toJson(const std::unordered_map<UUID, T>& values) {
  std::map<std::string, T> sorted;
  for (const auto& [key, value] : values) sorted.emplace(key.text(), value);
  return toJson(sorted);
}
/// A list of [handle, point].
Json toJson(const std::map<SelectionHandle, SketchPoint>& values);

// --- Arguments

/// Where an argument may look things up: an entity can be given by the identifier of one in the
/// document.
struct ReadContext {
  const Sketch& sketch;
};

template <class T>
struct Reader {
  static T read(const Json& json, const ReadContext& context);
};

template <class T>
struct Reader<std::optional<T>> {
  static std::optional<T> read(const Json& json, const ReadContext& context) {
    if (json.is_null()) return std::nullopt;
    return Reader<T>::read(json, context);
  }
};

template <class T>
struct Reader<std::vector<T>> {
  static std::vector<T> read(const Json& json, const ReadContext& context) {
    if (!json.is_array()) throw ArgumentError("expected a list");
    std::vector<T> values;
    values.reserve(json.size());
    for (const Json& element : json) values.push_back(Reader<T>::read(element, context));
    return values;
  }
};

template <class A, class B>
struct Reader<std::pair<A, B>> {
  static std::pair<A, B> read(const Json& json, const ReadContext& context) {
    if (!json.is_array() || json.size() != 2) throw ArgumentError("expected a pair");
    return {Reader<A>::read(json[0], context), Reader<B>::read(json[1], context)};
  }
};

/// The position of a case that is given by its name, or by that position itself.
std::size_t readCasePosition(const Json& json, std::span<const std::string_view> names);

template <HasCaseNames Enumeration>
struct Reader<Enumeration> {
  static Enumeration read(const Json& json, const ReadContext&) {
    const auto names = CaseNames<Enumeration>::names();
    return static_cast<Enumeration>(readCasePosition(json, names));
  }
};

/// The member of an object, or null when it is missing.
const Json& memberOf(const Json& object, const char* key);

}  // namespace ostrelon
