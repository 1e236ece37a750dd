#include "app/history_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "app/application.h"
#include "documents/document_history.h"
#include "documents/kept_drawings.h"
#include "documents/sketch_document_io.h"

namespace ostrelon {
namespace {

/// The clock of the record and that of the disk agree within this.
constexpr double kSameSaveSeconds = 2;

std::optional<Date> newest(const HistoryGroup& group) { return group.rows.front().at; }

std::string quoted(const std::string& text) { return "“" + text + "”"; }

// The file, which an auto-save writes too.
std::optional<HistoryRow> fileRow(FileSystem& files, const HistoryQuery& query) {
  if (!query.file) return std::nullopt;
  const auto info = files.info(*query.file);
  if (!info) return std::nullopt;
  HistoryRow row{"Last save", {}, info->modifiedAt, query.documentName, HistoryFile{*query.file}};
  const auto& saved = query.lastAutoSave;
  const bool isAutoSave = saved && saved->url == *query.file && saved->savedAt && info->modifiedAt &&
                          std::abs(secondsBetween(*saved->savedAt, *info->modifiedAt)) < kSameSaveSeconds;
  if (isAutoSave) row.title = "Last auto-save";
  row.note = query.file->filename().string();
  return row;
}

// The last auto-save may have been one of another document.
std::optional<HistoryGroup> otherAutoSave(FileSystem& files, const HistoryQuery& query) {
  const auto& saved = query.lastAutoSave;
  if (!saved || saved->url == query.file || !files.exists(saved->url)) return std::nullopt;
  HistoryRow row{"Last auto-save", saved->url.filename().string(), saved->savedAt, saved->displayName,
                 HistoryFile{saved->url}};
  return HistoryGroup{saved->displayName, "Another document", std::nullopt, false, true, {std::move(row)}};
}

std::string startOf(const DocumentHistoryBranch& branch, const DocumentHistoryState& history) {
  if (!branch.sourceCheckpointID) return {};
  const auto source = history.findCheckpoint(*branch.sourceCheckpointID);
  if (!source) return {};
  return fmt::format("starts at {} of {}", quoted(source->checkpoint.message), source->branch.name);
}

std::string mergedInto(const DocumentCheckpoint& checkpoint, const DocumentHistoryState& history) {
  std::string text;
  for (const std::string& id : checkpoint.mergedCheckpointIDs) {
    const auto merged = history.findCheckpoint(id);
    if (merged) text += (text.empty() ? "with " : ", ") + quoted(merged->checkpoint.message);
  }
  return text.empty() ? text : text + " merged in";
}

// A branch, apart by the documents that its checkpoints are of.
void addBranch(FileSystem& files, const HistoryQuery& query, const DocumentHistoryState& history,
               const DocumentHistoryBranch& branch, std::vector<HistoryGroup>& groups) {
  const auto checkpoints = history.checkpointsByBranch.find(branch.id);
  if (checkpoints == history.checkpointsByBranch.end()) return;
  std::map<std::string, HistoryGroup> byDocument;
  for (auto at = checkpoints->second.rbegin(); at != checkpoints->second.rend(); ++at) {
    const std::string name =
        checkpointDocumentName(files, *query.file, branch.id, at->fileName).value_or(query.documentName);
    HistoryGroup& group = byDocument[name];
    group.rows.push_back({at->message, mergedInto(*at, history), at->createdAt, name,
                          HistoryCheckpoint{*query.file, at->id, branch.id, at->fileName}});
  }
  for (auto& [name, group] : byDocument) {
    group.branchID = branch.id;
    group.isCurrentBranch = branch.id == history.metadata.currentBranchID;
    group.isOfOtherDocument = name != query.documentName;
    group.title = group.isOfOtherDocument ? name + ", " + branch.name : branch.name;
    group.note = group.isOfOtherDocument ? "another document of this folder" : startOf(branch, history);
    groups.push_back(std::move(group));
  }
}

// Of a document that was never saved all those count that were never saved either.
void addKept(FileSystem& files, const HistoryQuery& query, std::vector<HistoryGroup>& groups) {
  if (query.keptFolder.empty()) return;
  HistoryGroup own{"Kept drawings", "kept before they were replaced", std::nullopt, false, false, {}};
  HistoryGroup others{"Kept drawings of other documents", {}, std::nullopt, false, true, {}};
  for (const KeptDrawing& kept : KeptDrawings(files, query.keptFolder).list()) {
    const bool isOwn = kept.path == query.file;
    HistoryRow row{kept.reason, {}, kept.keptAt, kept.name, HistoryKept{query.keptFolder, kept.id}};
    if (!isOwn) {
      row.title = kept.name;
      row.note = kept.reason;
    }
    (isOwn ? own : others).rows.push_back(std::move(row));
  }
  for (HistoryGroup* group : {&own, &others}) {
    if (!group->rows.empty()) groups.push_back(std::move(*group));
  }
}

// How groups are ordered, before it goes by time.
int rankOf(const HistoryGroup& group) {
  const bool isKept = group.rows.front().kept() != nullptr;
  if (group.isOfOtherDocument) return isKept ? 5 : 4;
  if (isKept) return 3;
  if (!group.branchID) return 0;
  return group.isCurrentBranch ? 1 : 2;
}

}  // namespace

HistoryQuery historyQuery(const Application& application) {
  const DocumentSession& document = application.workspace().document;
  return {document.name, document.fileURL, application.settings().lastAutoSave, application.keptFolder()};
}

HistoryGroups historyGroups(FileSystem& files, const HistoryQuery& query) {
  HistoryGroups all;
  std::vector<HistoryGroup>& groups = all.groups;
  if (auto row = fileRow(files, query)) {
    groups.push_back({"This document", {}, std::nullopt, false, false, {*std::move(row)}});
  }
  if (query.file) {
    try {
      const DocumentHistoryState history = loadDocumentHistory(files, *query.file);
      for (const DocumentHistoryBranch& branch : history.metadata.branches) {
        addBranch(files, query, history, branch, groups);
      }
    } catch (const UserError& error) {
      all.failure = error.what();
    }
  }
  if (auto group = otherAutoSave(files, query)) groups.push_back(*std::move(group));
  try {
    addKept(files, query, groups);
  } catch (const UserError& error) {
    all.failure += (all.failure.empty() ? "" : " ") + std::string(error.what());
  }
  std::stable_sort(groups.begin(), groups.end(), [](const HistoryGroup& a, const HistoryGroup& b) {
    if (rankOf(a) != rankOf(b)) return rankOf(a) < rankOf(b);
    return newest(a) > newest(b);
  });
  return all;
}

OpenedDocument readHistoryDrawing(FileSystem& files, const HistorySource& source) {
  std::string bytes = std::visit(
      Overloaded{
          [&](const HistoryFile& file) { return files.readFile(file.path); },
          [&](const HistoryCheckpoint& checkpoint) {
            return readCheckpoint(files, checkpoint.document, checkpoint.branchID, checkpoint.fileName);
          },
          [&](const HistoryKept& kept) { return KeptDrawings(files, kept.folder).read(kept.id); },
      },
      source);
  OpenedDocument document = openedDocument(SketchDocumentIO::decodeDocument(std::move(bytes)), Drawing());
  document.undo.clear();
  return document;
}

std::string entityCountsText(const EntityList& entities) {
  std::array<std::pair<std::size_t, std::string_view>, std::variant_size_v<SketchEntity>> counts;
  for (const SketchEntity& entity : entities) {
    auto& [count, kind] = counts[entity.index()];
    if (count++ == 0) kind = entityKindName(entity);
  }
  std::stable_sort(counts.begin(), counts.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
  std::string text;
  for (const auto& [count, kind] : counts) {
    if (count == 0) break;
    text += fmt::format("{}{} {}{}", text.empty() ? "" : ", ", count, kind, count == 1 ? "" : "s");
  }
  return text.empty() ? "Nothing drawn" : text;
}

}  // namespace ostrelon
