#include "documents/history_files.h"

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>

#include "documents/sketch_document_io.h"
#include "platform/nul_byte.h"

namespace ostrelon {
namespace {

using nlohmann::json;

constexpr const char* kMetadataFile = "meta.json";
constexpr const char* kTimelineFile = "timeline.json";

// One value of a history file with its place in the file, for messages.
class Node {
 public:
  Node(const json& value, std::string place) : value_(value), place_(std::move(place)) {}

  [[noreturn]] void fail(const std::string& what) const {
    throw DocumentFormatError("The history is damaged in " + place_ + ": " + what + ".");
  }

  Node required(const char* key) const {
    if (!value_.is_object()) fail("expected an object");
    const auto found = value_.find(key);
    if (found == value_.end()) fail("the key \"" + std::string(key) + "\" is missing");
    return {*found, place_ + ", " + key};
  }

  std::optional<Node> optional(const char* key) const {
    const auto found = value_.find(key);
    if (found == value_.end() || found->is_null()) return std::nullopt;
    return Node(*found, place_ + ", " + key);
  }

  template <class Each>
  void forEach(Each&& each) const {
    if (!value_.is_array()) fail("expected an array");
    std::size_t index = 0;
    for (const json& element : value_) each(Node(element, place_ + '[' + std::to_string(index++) + ']'));
  }

  std::string text() const {
    if (!value_.is_string()) fail("expected a text");
    return value_.get<std::string>();
  }

  // A text that will be part of a path.
  std::string plainName() const {
    std::string name = text();
    if (!isPlainName(name)) fail("the name leads out of the history folder");
    return name;
  }

  Date date() const {
    const auto date = parseISO8601(text());
    if (!date) fail("expected a date");
    return *date;
  }

  int integer() const {
    if (!value_.is_number()) fail("expected an integer");
    const auto number = value_.get<double>();
    if (number != std::trunc(number)) fail("expected an integer");
    if (std::abs(number) > std::numeric_limits<int>::max()) fail("the integer is too large");
    return static_cast<int>(number);
  }

 private:
  const json& value_;
  std::string place_;
};

std::optional<std::string> optionalText(const std::optional<Node>& node) {
  if (!node) return std::nullopt;
  return node->text();
}

json parsed(std::string_view bytes, const char* file) {
  const auto damageAt = [file](std::size_t place) {
    return DocumentFormatError(std::string("The history is damaged in ") + file + " at byte " +
                               std::to_string(place) + ": it is not JSON.");
  };
  if (const auto place = nulByteIn(bytes)) throw damageAt(*place);
  try {
    return json::parse(bytes);
  } catch (const json::parse_error& error) {
    throw damageAt(error.byte == 0 ? 0 : error.byte - 1);
  } catch (const json::exception&) {
    throw DocumentFormatError(std::string("The history is damaged in ") + file + ": a number is too large.");
  }
}

DocumentHistoryBranch branchOf(const Node& node) {
  DocumentHistoryBranch branch;
  branch.id = node.required("id").plainName();
  branch.name = node.required("name").text();
  branch.createdAt = node.required("createdAt").date();
  branch.sourceCheckpointID = optionalText(node.optional("sourceCheckpointID"));
  branch.headCheckpointID = optionalText(node.optional("headCheckpointID"));
  return branch;
}

DocumentCheckpoint checkpointOf(const Node& node) {
  DocumentCheckpoint checkpoint;
  checkpoint.id = node.required("id").text();
  checkpoint.message = node.required("message").text();
  checkpoint.createdAt = node.required("createdAt").date();
  checkpoint.fileName = node.required("fileName").plainName();
  checkpoint.sourceCheckpointID = optionalText(node.optional("sourceCheckpointID"));
  if (const auto merged = node.optional("mergedCheckpointIDs")) {
    merged->forEach([&](const Node& id) { checkpoint.mergedCheckpointIDs.push_back(id.text()); });
  }
  return checkpoint;
}

void setOptional(json& object, const char* key, const std::optional<std::string>& value) {
  if (value) object[key] = *value;
}

std::string dumped(const json& value) { return value.dump(2, ' ', false, json::error_handler_t::replace); }

}  // namespace

bool isPlainName(std::string_view text) {
  return !text.empty() && text != "." && text != ".." &&
         text.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos;
}

DocumentHistoryMetadata decodeHistoryMetadata(std::string_view bytes) {
  const json value = parsed(bytes, kMetadataFile);
  const Node root(value, kMetadataFile);
  DocumentHistoryMetadata metadata;
  metadata.v = root.required("v").integer();
  metadata.documentFileName = optionalText(root.optional("documentFileName"));
  metadata.currentBranchID = root.required("currentBranchID").plainName();
  metadata.branches.clear();
  root.required("branches").forEach([&](const Node& node) { metadata.branches.push_back(branchOf(node)); });
  return metadata;
}

DocumentBranchTimeline decodeBranchTimeline(std::string_view bytes) {
  const json value = parsed(bytes, kTimelineFile);
  const Node root(value, kTimelineFile);
  DocumentBranchTimeline timeline;
  timeline.branchID = root.required("branchID").text();
  root.required("checkpoints").forEach([&](const Node& node) {
    timeline.checkpoints.push_back(checkpointOf(node));
  });
  return timeline;
}

std::string encodeHistoryMetadata(const DocumentHistoryMetadata& metadata) {
  json branches = json::array();
  for (const DocumentHistoryBranch& branch : metadata.branches) {
    json object{{"id", branch.id}, {"name", branch.name}, {"createdAt", iso8601Text(branch.createdAt)}};
    setOptional(object, "sourceCheckpointID", branch.sourceCheckpointID);
    setOptional(object, "headCheckpointID", branch.headCheckpointID);
    branches.push_back(std::move(object));
  }
  json object{{"v", metadata.v}, {"currentBranchID", metadata.currentBranchID}};
  object["branches"] = std::move(branches);
  setOptional(object, "documentFileName", metadata.documentFileName);
  return dumped(object);
}

std::string encodeBranchTimeline(const DocumentBranchTimeline& timeline) {
  json checkpoints = json::array();
  for (const DocumentCheckpoint& checkpoint : timeline.checkpoints) {
    json object{{"id", checkpoint.id},
                {"message", checkpoint.message},
                {"createdAt", iso8601Text(checkpoint.createdAt)},
                {"fileName", checkpoint.fileName}};
    setOptional(object, "sourceCheckpointID", checkpoint.sourceCheckpointID);
    if (!checkpoint.mergedCheckpointIDs.empty())
      object["mergedCheckpointIDs"] = checkpoint.mergedCheckpointIDs;
    checkpoints.push_back(std::move(object));
  }
  json object{{"branchID", timeline.branchID}};
  object["checkpoints"] = std::move(checkpoints);
  return dumped(object);
}

}  // namespace ostrelon
