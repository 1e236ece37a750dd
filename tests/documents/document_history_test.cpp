// Checkpoints and branches, on real files; their console commands and menu prompts.
#include "documents/document_history.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "core/adding.h"
#include "documents/history_files.h"
#include "documents/history_prompts.h"
#include "documents/sketch_document.h"
#include "documents/sketch_document_io.h"
#include "geometry/edit_operations.h"
#include "support/disk_workspace.h"

namespace ostrelon {
namespace {

using testing::DiskWorkspace;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;
using testing::readBytes;
using ::testing::StartsWith;
using testing::writeBytes;

std::string messageOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const UserError& error) {
    return error.what();
  }
  return "(no failure)";
}

struct DocumentHistoryTest : ::testing::Test, DiskWorkspace {
  FilePath plan = home / "plan.ostrel";
  FilePath store = home / ".ostrel-history";

  DocumentHistoryTest() {
    addLine(sketch, {0, 0}, {1, 1});
    document.save(plan);
  }
  std::string metadataText() { return readBytes(store / "meta.json"); }
  std::string head(const std::string& branch) {
    return *document.history->findBranch(branch)->headCheckpointID;
  }
};

TEST_F(DocumentHistoryTest, WritesItsFilesByTheLetter) {
  scheduler.advance(Seconds(0.75));
  const DocumentCheckpoint checkpoint = document.saveCheckpoint("  First \"milestone\"\n");
  EXPECT_THAT(checkpoint.id, MatchesRegex("cp-[0-9a-f-]{36}"));
  EXPECT_EQ(metadataText(), R"({
  "branches": [
    {
      "createdAt": "1970-01-01T00:00:00Z",
      "headCheckpointID": ")" + checkpoint.id +
                                R"(",
      "id": "main",
      "name": "main"
    }
  ],
  "currentBranchID": "main",
  "documentFileName": "plan.ostrel",
  "v": 1
})");
  EXPECT_EQ(readBytes(store / "branches/main/timeline.json"), R"({
  "branchID": "main",
  "checkpoints": [
    {
      "createdAt": "2026-01-01T00:00:00Z",
      "fileName": ")" + checkpoint.id + R"(.ostrel",
      "id": ")" + checkpoint.id + R"(",
      "message": "First \"milestone\""
    }
  ]
})");
  const std::string snapshot = readBytes(store / "branches/main/checkpoints" / checkpoint.fileName);
  EXPECT_THAT(snapshot, Not(HasSubstr("undo")));
  EXPECT_EQ(std::get<SketchDocumentV2>(SketchDocumentIO::decodeDocument(snapshot).document).e,
            sketch.entities());
  EXPECT_EQ(decodeHistoryMetadata(metadataText()), document.history->metadata);
}

TEST_F(DocumentHistoryTest, SharesTheStoreBetweenTheDocumentsOfAFolder) {
  document.saveCheckpoint("from plan");
  DiskWorkspace other;
  addCircle(other.sketch, {0, 0}, 1);
  other.document.save(home / "other.ostrel");
  other.document.saveCheckpoint("from other");
  document.saveCheckpoint("again");
  EXPECT_EQ(document.history->allCheckpoints().size(), 3U);
  EXPECT_EQ(document.history->metadata.documentFileName, "plan.ostrel");
}

TEST_F(DocumentHistoryTest, LeavesDocumentAndModelAloneWhenASwitchFails) {
  document.saveCheckpoint("one");
  document.createBranch("b");
  addLine(sketch, {0, 0}, {3, 3});
  document.save(plan);
  selectAll(sketch);
  const auto held = document.makeDocument(true);
  const std::string file = readBytes(plan);
  const auto expectUntouched = [&](const std::string& failure) {
    EXPECT_THAT(messageOf([&] { document.switchBranch("b"); }), HasSubstr(failure));
    EXPECT_EQ(document.makeDocument(true), held);
    EXPECT_EQ(sketch.selection->ids.size(), 2U);
    EXPECT_FALSE(document.isDirty());
    EXPECT_EQ(readBytes(plan), file);
    EXPECT_EQ(loadDocumentHistory(files, plan).metadata.currentBranchID, "main");
  };
  const FilePath snapshot = store / "branches/b/checkpoints" / (head("b") + ".ostrel");
  const std::string good = readBytes(snapshot);
  writeBytes(snapshot, "{\"v\":2,");
  expectUntouched("is damaged");
  std::filesystem::remove(snapshot);
  expectUntouched("does not exist");
  // A document's file that cannot be written: here because a folder has taken its place.
  writeBytes(snapshot, good);
  std::filesystem::rename(plan, home / "aside");
  files.createFolders(plan);
  EXPECT_THAT(messageOf([&] { document.switchBranch("b"); }), HasSubstr("it is a folder"));
  EXPECT_EQ(document.makeDocument(true), held);
  EXPECT_EQ(sketch.selection->ids.size(), 2U);
  std::filesystem::remove(plan);
  std::filesystem::rename(home / "aside", plan);
  EXPECT_EQ(document.switchBranch("b").name, "b");
}

TEST_F(DocumentHistoryTest, TellsOfHeadsThatAreMissing) {
  document.saveCheckpoint("one");
  document.createBranch("b");
  DocumentHistoryMetadata metadata = document.history->metadata;
  metadata.branches[1].headCheckpointID = "cp-gone";
  writeHistoryMetadata(files, plan, metadata);
  EXPECT_EQ(reply("branch switch b"), "Switch branch failed: No checkpoint named cp-gone exists.");
  metadata.branches[1].headCheckpointID = std::nullopt;
  writeHistoryMetadata(files, plan, metadata);
  EXPECT_EQ(reply("branch switch b"),
            "Switch branch failed: Branch b does not have a checkpoint to switch to.");
  std::filesystem::remove(store / "branches/b/timeline.json");
  EXPECT_TRUE(loadDocumentHistory(files, plan).checkpointsByBranch.at("b").empty());
}

TEST_F(DocumentHistoryTest, RefusesNamesThatLeadOutOfTheStore) {
  document.saveCheckpoint("one");
  document.createBranch("b");
  const DocumentHistoryMetadata good = document.history->metadata;
  const auto before = files.list(home.path());
  const std::string withNul("a\0b", 3);
  for (const std::string& bad : {std::string(), std::string("."), std::string(".."), std::string("../x"),
                                 std::string("a/b"), std::string("/etc"), std::string("a\\b"), withNul}) {
    DocumentHistoryMetadata metadata = good;
    metadata.branches[1].id = bad;
    writeHistoryMetadata(files, plan, metadata);
    EXPECT_THAT(reply("checkpoint x"), HasSubstr("leads out of the history folder")) << bad;
    EXPECT_THAT(reply("branch switch b"), HasSubstr("leads out of the history folder")) << bad;
    metadata = good;
    metadata.currentBranchID = bad;
    writeHistoryMetadata(files, plan, metadata);
    EXPECT_THAT(reply("checkpoint x"), HasSubstr("leads out of the history folder")) << bad;
  }
  writeHistoryMetadata(files, plan, good);
  const FilePath timelineFile = store / "branches/b/timeline.json";
  DocumentBranchTimeline timeline = decodeBranchTimeline(readBytes(timelineFile));
  timeline.checkpoints[0].fileName = "../../../../plan.ostrel";
  writeBytes(timelineFile, encodeBranchTimeline(timeline));
  EXPECT_THAT(reply("branch switch b"), HasSubstr("leads out of the history folder"));
  EXPECT_THAT(reply("branch create c " + timeline.checkpoints[0].id), HasSubstr("leads out"));
  EXPECT_EQ(files.list(home.path()), before);
}

TEST_F(DocumentHistoryTest, FollowsNoLinkOutOfTheStore) {
  document.saveCheckpoint("one");
  document.createBranch("b");
  const std::string source = head("b");
  const std::string file = source + ".ostrel";
  for (const std::string name : {"", "meta.json", "branches", "branches/b", "branches/b/timeline.json",
                                 "branches/b/checkpoints", "branches/b/checkpoints/"}) {
    SCOPED_TRACE(name);
    const FilePath inside = standardizedPath(store / (name.ends_with('/') ? name + file : name));
    const FilePath outside = home / "outside";
    std::filesystem::rename(inside, outside);
    std::filesystem::create_symlink(outside, inside);
    EXPECT_THAT(reply("branch switch b"), HasSubstr("leads out of the history folder"));
    EXPECT_THAT(reply("branch create c " + source), HasSubstr("leads out of the history folder"));
    std::filesystem::remove(inside);
    std::filesystem::rename(outside, inside);
  }
  // A link that leads nowhere would be written through.
  std::filesystem::rename(store / "branches/main", home / "aside");
  files.createFolders(store / "branches/main");
  std::filesystem::create_symlink(home / "planted", store / "branches/main/timeline.json");
  EXPECT_THAT(reply("checkpoint two"), HasSubstr("leads out of the history folder"));
  std::filesystem::rename(store / "meta.json", home / "meta.json");
  std::filesystem::create_symlink(home / "planted", store / "meta.json");
  EXPECT_THAT(reply("checkpoint two"), HasSubstr("leads out of the history folder"));
  EXPECT_FALSE(files.exists(home / "planted"));
}

TEST_F(DocumentHistoryTest, SaysWhatIsWrongWithItsFilesAndShowsNone) {
  document.saveCheckpoint("one");
  const std::string good = metadataText();
  const auto failureOf = [&](const std::string& text) {
    writeBytes(store / "meta.json", text);
    return messageOf([&] { loadDocumentHistory(files, plan); });
  };
  EXPECT_EQ(failureOf("{\"v\":1,"), "The history is damaged in meta.json at byte 7: it is not JSON.");
  EXPECT_EQ(failureOf(good + '\0' + "{}"), "The history is damaged in meta.json at byte " +
                                               std::to_string(good.size()) + ": it is not JSON.");
  EXPECT_EQ(failureOf("[]"), "The history is damaged in meta.json: expected an object.");
  EXPECT_EQ(failureOf("{}"), "The history is damaged in meta.json: the key \"v\" is missing.");
  EXPECT_EQ(failureOf(R"({"v":1.5})"), "The history is damaged in meta.json, v: expected an integer.");
  EXPECT_EQ(failureOf(R"({"v":1e99})"), "The history is damaged in meta.json, v: the integer is too large.");
  EXPECT_EQ(failureOf(R"({"v":1e999})"), "The history is damaged in meta.json: a number is too large.");
  EXPECT_EQ(
      failureOf(
          R"({"v":1.0,"documentFileName":null,"currentBranchID":"main","branches":[{"id":"main","name":"main","createdAt":"yesterday"}]})"),
      "The history is damaged in meta.json, branches[0], createdAt: expected a date.");
  EXPECT_EQ(failureOf(std::string(200'000, '[')),
            "The history is damaged in meta.json at byte 200000: it is not JSON.");
  document.refreshHistory();
  EXPECT_TRUE(document.history->allCheckpoints().empty());
  EXPECT_EQ(document.history->metadata.documentFileName, "plan.ostrel");
  EXPECT_THAT(reply("checkpoint x"), StartsWith("Checkpoint failed: The history is damaged in meta.json"));
  // Dates may hold an offset and a fraction; unknown keys are passed over.
  std::string text = good;
  text.replace(text.find("1970-01-01T00:00:00Z"), 20, "1970-01-01T01:00:00.250+01:00\",\"x\":\"y");
  EXPECT_EQ(failureOf(text), "(no failure)");
}

TEST_F(DocumentHistoryTest, AsksBeforeACheckpointOrASwitchOverwritesAnothersWork) {
  document.saveCheckpoint("one");
  document.createBranch("b");
  DiskWorkspace other;
  other.document.open(plan);
  addLine(other.sketch, {0, 0}, {9, 9});
  other.document.save(plan);
  const std::string theirs = readBytes(plan);
  const std::string refusal = "“plan.ostrel” has been changed by another program and was not overwritten.";
  EXPECT_EQ(reply("checkpoint mine"), "Checkpoint failed: " + refusal);
  EXPECT_EQ(reply("branch switch b"), "Switch branch failed: " + refusal);
  EXPECT_EQ(readBytes(plan), theirs);
  EXPECT_EQ(dialogs.asked().size(), 2U);
  // No question where nothing would be written.
  EXPECT_EQ(reply("branch switch main"), "Switched to branch main.");
  EXPECT_EQ(reply("branch switch none"), "Switch branch failed: No branch named none exists.");
  EXPECT_EQ(dialogs.asked().size(), 2U);
  dialogs.queue("Overwrite");
  EXPECT_THAT(reply("checkpoint mine"), StartsWith("Checkpoint saved"));
}

}  // namespace
}  // namespace ostrelon
