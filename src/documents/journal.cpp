#include "documents/journal.h"

#include <algorithm>
#include <utility>

#include "documents/content_hash.h"
#include "documents/journal_bytes.h"

namespace ostrelon {
namespace {

constexpr std::string_view kAnyFirstLine = "OSTRELON JOURNAL ";
constexpr std::string_view kFirstLine = "OSTRELON JOURNAL 2\n";
constexpr std::string_view kFirstLineOfOpeningsOnly = "OSTRELON JOURNAL 1\n";
constexpr std::size_t kFrameHead = 16;
constexpr std::uint64_t kMostPlaceholders = 100'000'000;

enum class Kind : std::uint8_t { base = 1, record = 2, mark = 3 };

// What a record holds, as bits.
enum Part : std::uint8_t {
  kName = 1,
  kGrid = 2,
  kWallSystems = 4,
  kActiveSystem = 8,
  kFile = 16,
  kSnapshot = 32,
  kDate = 64,
  kPlan = 128,
};

// By the first line; absent for what is no journal, or one of another version.
std::optional<JournalForm> formOf(std::string_view bytes) {
  static_assert(kFirstLine.size() == kFirstLineOfOpeningsOnly.size());
  if (bytes.starts_with(kFirstLine)) return JournalForm::current;
  if (bytes.starts_with(kFirstLineOfOpeningsOnly)) return JournalForm::openingsOnly;
  return std::nullopt;
}

// --- Frames

std::uint32_t lengthCheck(std::uint32_t length, std::uint32_t number) {
  JournalOutput output;
  output.number(length);
  output.number(number);
  return static_cast<std::uint32_t>(contentHash(output.take()));
}

std::string framed(const std::string& content, std::uint32_t number) {
  const auto length = static_cast<std::uint32_t>(content.size());
  JournalOutput head;
  head.number(length);
  head.number(lengthCheck(length, number));
  head.number(contentHash(content));
  return head.take() + content;
}

struct Frame {
  std::string_view content;
  JournalContent::End end = JournalContent::End::whole;  // another one: there is no content
};

// Takes the frame of this number off the front of the bytes.
Frame takeFrame(std::string_view& bytes, std::uint32_t number) {
  using End = JournalContent::End;
  // A machine that loses its power may leave a file longer than what of it has reached the disk.
  if (bytes.find_first_not_of('\0') == std::string_view::npos) return {{}, End::torn};
  if (bytes.size() < kFrameHead) return {{}, End::torn};
  JournalInput head(bytes.substr(0, kFrameHead));
  const auto length = head.number<std::uint32_t>();
  const auto check = head.number<std::uint32_t>();
  const auto hash = head.number<std::uint64_t>();
  if (check != lengthCheck(length, number)) return {{}, End::damaged};
  if (length > bytes.size() - kFrameHead) return {{}, End::torn};
  const std::string_view content = bytes.substr(kFrameHead, length);
  bytes.remove_prefix(kFrameHead + length);
  if (contentHash(content) != hash) return {{}, bytes.empty() ? End::torn : End::damaged};
  return {content};
}

bool hasPlan(const JournalBase& base) {
  if (!base.plan.empty()) return true;
  return base.snapshot && std::any_of(base.snapshot->undo.begin(), base.snapshot->undo.end(),
                                      [](const SketchUndoSnapshot& step) { return !step.twin.empty(); });
}

void putBase(JournalOutput& output, const JournalBase& base) {
  output.number(static_cast<std::uint8_t>(Kind::base));
  output.number(static_cast<std::uint8_t>((base.file ? kFile : 0) | (base.snapshot ? kSnapshot : 0) |
                                          (base.file && base.file->savedAt ? kDate : 0) |
                                          (base.changedAt ? kName : 0) | (hasPlan(base) ? kPlan : 0)));
  if (base.file) {
    output.text(base.file->path.string());
    output.number(base.file->contentHash);
    if (base.file->savedAt) output.date(*base.file->savedAt);
  }
  output.text(base.name);
  output.number(base.entityCount);
  output.wallSystems(base.wallSystemSpecs);
  output.id(base.activeWallSystemSpecID);
  output.number(static_cast<std::uint8_t>(base.showGrid));
  output.number(base.changes);
  if (base.changedAt) output.date(*base.changedAt);
  if (hasPlan(base)) output.planChange(planChange({}, base.plan));
  if (!base.snapshot) return;
  output.entities(base.snapshot->entities);
  // Each step by what makes it of the one behind it.
  output.count(base.snapshot->undo.size());
  const EntityList* behind = &base.snapshot->entities;
  for (auto step = base.snapshot->undo.rbegin(); step != base.snapshot->undo.rend(); ++step) {
    output.splices(EntityList::splices(*behind, step->entities));
    behind = &step->entities;
    if (!hasPlan(base)) continue;
    const std::optional<Plan>& plan = step->twin.plan;
    output.twin(plan ? std::optional(planChange(base.plan, *plan)) : std::nullopt, step->twin.wallSystems);
  }
}

// What a step takes back beside the entities; `before`: the plan that it differs from. False where the step
// does not fit.
bool takeTwin(JournalUndoStep step, const Plan& before, UndoTwin& twin) {
  twin.wallSystems = std::move(step.wallSystems);
  if (!step.plan) return true;
  twin.plan = before;
  return applyPlanChange(*step.plan, *twin.plan);
}

std::optional<JournalBase> baseOf(std::string_view content, JournalForm form) {
  JournalInput input(content, form);
  if (input.number<std::uint8_t>() != static_cast<std::uint8_t>(Kind::base)) return std::nullopt;
  const auto parts = input.number<std::uint8_t>();
  JournalBase base;
  if ((parts & kFile) != 0) {
    base.file = JournalBase::File{};
    base.file->path = input.text();
    base.file->contentHash = input.number<std::uint64_t>();
    if ((parts & kDate) != 0) base.file->savedAt = input.date();
  }
  base.name = input.text();
  base.entityCount = input.number<std::uint64_t>();
  base.wallSystemSpecs = input.wallSystems();
  base.activeWallSystemSpecID = input.id();
  base.showGrid = input.number<std::uint8_t>() != 0;
  base.changes = input.number<std::uint64_t>();
  if ((parts & kName) != 0) base.changedAt = input.date();
  const bool hasPlan = (parts & kPlan) != 0;
  if (hasPlan && !applyPlanChange(input.planChange(), base.plan)) return std::nullopt;
  if ((parts & kSnapshot) != 0) {
    base.snapshot.emplace();
    base.snapshot->entities = EntityList(input.entities());
    EntityList behind = base.snapshot->entities;
    for (std::size_t steps = input.count(4); steps > 0; --steps) {
      if (!behind.apply(input.splices())) return std::nullopt;
      SketchUndoSnapshot step{behind};
      if (hasPlan && !takeTwin(input.twin(), base.plan, step.twin)) return std::nullopt;
      base.snapshot->undo.insert(base.snapshot->undo.begin(), std::move(step));
    }
  }
  if (!input.isAtEnd()) return std::nullopt;
  return base;
}

bool hasPlan(const JournalRecord& record) {
  return record.plan ||
         std::any_of(record.steps.begin(), record.steps.end(),
                     [](const JournalUndoStep& step) { return step.plan || !step.wallSystems.empty(); });
}

void putRecord(JournalOutput& output, const JournalRecord& record) {
  output.number(static_cast<std::uint8_t>(Kind::record));
  output.number(static_cast<std::uint8_t>((record.name ? kName : 0) | (record.showGrid ? kGrid : 0) |
                                          (record.wallSystemSpecs ? kWallSystems : 0) |
                                          (record.activeWallSystemSpecID ? kActiveSystem : 0) |
                                          (hasPlan(record) ? kPlan : 0)));
  output.date(record.at);
  output.number(static_cast<std::uint8_t>(record.step));
  output.splices(record.entities);
  output.count(record.steps.size());
  for (const JournalUndoStep& step : record.steps) output.splices(step.entities);
  if (record.name) output.text(*record.name);
  if (record.showGrid) output.number(static_cast<std::uint8_t>(*record.showGrid));
  if (record.wallSystemSpecs) output.wallSystems(*record.wallSystemSpecs);
  if (record.activeWallSystemSpecID) output.id(*record.activeWallSystemSpecID);
  if (!hasPlan(record)) return;
  output.twin(record.plan, {});
  for (const JournalUndoStep& step : record.steps) output.twin(step.plan, step.wallSystems);
}

std::optional<JournalEntry> entryOf(std::string_view content, JournalForm form) {
  JournalInput input(content, form);
  const auto kind = input.number<std::uint8_t>();
  if (kind == static_cast<std::uint8_t>(Kind::mark)) {
    JournalSaveMark mark{input.text()};
    mark.contentHash = input.number<std::uint64_t>();
    return input.isAtEnd() ? std::optional<JournalEntry>(mark) : std::nullopt;
  }
  if (kind != static_cast<std::uint8_t>(Kind::record)) return std::nullopt;
  const auto parts = input.number<std::uint8_t>();
  JournalRecord record;
  record.at = input.date();
  const auto step = input.number<std::uint8_t>();
  if (step > static_cast<std::uint8_t>(JournalStep::redo)) return std::nullopt;
  record.step = static_cast<JournalStep>(step);
  record.entities = input.splices();
  record.steps.resize(input.count(4));
  for (JournalUndoStep& taken : record.steps) taken.entities = input.splices();
  if ((parts & kName) != 0) record.name = input.text();
  if ((parts & kGrid) != 0) record.showGrid = input.number<std::uint8_t>() != 0;
  if ((parts & kWallSystems) != 0) record.wallSystemSpecs = input.wallSystems();
  if ((parts & kActiveSystem) != 0) record.activeWallSystemSpecID = input.id();
  if ((parts & kPlan) != 0) {
    record.plan = input.twin().plan;
    for (JournalUndoStep& taken : record.steps) {
      JournalUndoStep twin = input.twin();
      taken.plan = std::move(twin.plan);
      taken.wallSystems = std::move(twin.wallSystems);
    }
  }
  if (!input.isAtEnd()) return std::nullopt;
  return record;
}

// False where the record does not fit the state, which is then as it was.
bool replay(const JournalRecord& record, JournalState& state) {
  const EntityList before = state.drawing.entities;
  const Plan planBefore = state.drawing.plan;
  std::vector<SketchUndoSnapshot> steps;
  for (const JournalUndoStep& taken : record.steps) {
    SketchUndoSnapshot step{before};
    if (!step.entities.apply(taken.entities) || !takeTwin(taken, planBefore, step.twin)) return false;
    steps.push_back(std::move(step));
  }
  Plan plan = planBefore;
  if (record.plan && !applyPlanChange(*record.plan, plan)) return false;
  if (!state.drawing.entities.apply(record.entities)) return false;
  state.drawing.plan = std::move(plan);
  // What an undo or a redo takes back in turn.
  const auto back = [&] {
    SketchUndoSnapshot step{before};
    if (record.plan) step.twin.plan = planBefore;
    if (record.wallSystemSpecs) {
      step.twin.wallSystems = wallSystemChanges(state.drawing.wallSystemSpecs, *record.wallSystemSpecs);
    }
    return step;
  };
  switch (record.step) {
    case JournalStep::none:
      break;
    case JournalStep::edit:
      for (SketchUndoSnapshot& step : steps) state.undo.pushUndoSnapshot(std::move(step));
      break;
    case JournalStep::undo:
      // The base may have held fewer steps than the session: the drawing comes from the record itself.
      state.undo.popUndoSnapshot();
      state.undo.pushRedoSnapshot(back());
      break;
    case JournalStep::redo:
      state.undo.popRedoSnapshot();
      state.undo.appendUndoSnapshot(back());
      break;
  }
  if (record.name) state.name = *record.name;
  if (record.showGrid) state.drawing.showGrid = *record.showGrid;
  if (record.wallSystemSpecs) state.drawing.wallSystemSpecs = *record.wallSystemSpecs;
  if (record.activeWallSystemSpecID) state.drawing.activeWallSystemSpecID = *record.activeWallSystemSpecID;
  return true;
}

bool isPlaceholder(const SketchEntity& entity) { return entityID(entity) == UUID(); }

}  // namespace

bool JournalRecord::empty() const { return !isChange() && !activeWallSystemSpecID; }

bool JournalRecord::isChange() const {
  return !entities.empty() || step != JournalStep::none || name || showGrid || wallSystemSpecs || plan;
}

JournalUndoStep journalStepOf(const SketchUndoSnapshot& step, const Drawing& before) {
  JournalUndoStep taken{EntityList::splices(before.entities, step.entities), std::nullopt,
                        step.twin.wallSystems};
  if (step.twin.plan) taken.plan = planChange(before.plan, *step.twin.plan);
  return taken;
}

// --- Writing

std::string journalStart(const JournalBase& base) {
  JournalOutput output;
  putBase(output, base);
  return std::string(kFirstLine) + framed(output.take(), 0);
}

std::string journalFrame(const JournalEntry& entry, std::uint32_t number) {
  JournalOutput output;
  std::visit(Overloaded{[&](const JournalRecord& record) { putRecord(output, record); },
                        [&](const JournalSaveMark& mark) {
                          output.number(static_cast<std::uint8_t>(Kind::mark));
                          output.text(mark.path.string());
                          output.number(mark.contentHash);
                        }},
             entry);
  return framed(output.take(), number);
}

JournalBase journalSnapshot(const JournalState& state, const JournalBase& before) {
  JournalBase base = before;
  base.name = state.name;
  base.entityCount = state.drawing.entities.size();
  base.wallSystemSpecs = state.drawing.wallSystemSpecs;
  base.activeWallSystemSpecID = state.drawing.activeWallSystemSpecID;
  base.showGrid = state.drawing.showGrid;
  base.plan = state.drawing.plan;
  base.snapshot.emplace();
  base.snapshot->entities = state.drawing.entities;
  const auto& steps = state.undo.undoSnapshots();
  for (std::size_t i = steps.size() - std::min(steps.size(), kStoredUndoSnapshots); i < steps.size(); ++i) {
    base.snapshot->undo.push_back(steps[i]);
  }
  return base;
}

// --- Reading

std::uint64_t JournalContent::changes() const {
  return base.changes + static_cast<std::uint64_t>(
                            std::count_if(entries.begin(), entries.end(), [](const JournalEntry& entry) {
                              const auto* record = std::get_if<JournalRecord>(&entry);
                              return record != nullptr && record->isChange();
                            }));
}

std::optional<Date> JournalContent::changedAt() const {
  for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
    const auto* record = std::get_if<JournalRecord>(&*entry);
    if (record != nullptr && record->isChange()) return record->at;
  }
  return base.changedAt;
}

std::optional<JournalContent> readJournal(std::string_view bytes) {
  const auto form = formOf(bytes);
  if (!form) return std::nullopt;
  bytes.remove_prefix(kFirstLine.size());
  std::uint32_t number = 0;
  const Frame first = takeFrame(bytes, number);
  if (first.end != JournalContent::End::whole) return std::nullopt;
  auto base = baseOf(first.content, *form);
  if (!base) return std::nullopt;
  JournalContent journal{std::move(*base), {}, JournalContent::End::whole};
  while (!bytes.empty()) {
    const Frame frame = takeFrame(bytes, ++number);
    journal.end = frame.end;
    if (frame.end != JournalContent::End::whole) break;
    auto entry = entryOf(frame.content, *form);
    if (!entry) {
      journal.end = JournalContent::End::damaged;
      break;
    }
    journal.entries.push_back(std::move(*entry));
  }
  return journal;
}

bool isJournalOfAnotherVersion(std::string_view bytes) {
  return bytes.starts_with(kAnyFirstLine) && bytes.size() >= kFirstLine.size() && !formOf(bytes);
}

bool settleOnFile(JournalContent& journal, const HashOfFile& hashOfFile) {
  JournalBase& base = journal.base;
  for (std::size_t i = journal.entries.size(); i > 0; --i) {
    const auto* mark = std::get_if<JournalSaveMark>(&journal.entries[i - 1]);
    if (mark == nullptr || hashOfFile(mark->path) != mark->contentHash) continue;
    base.file = JournalBase::File{mark->path, mark->contentHash, std::nullopt};
    base.snapshot.reset();
    base.changes = 0;
    base.changedAt.reset();
    journal.entries.erase(journal.entries.begin(), journal.entries.begin() + static_cast<std::ptrdiff_t>(i));
    return true;
  }
  return base.file && hashOfFile(base.file->path) == base.file->contentHash;
}

// --- Replaying

std::optional<JournalState> snapshotState(const JournalBase& base) {
  if (!base.snapshot) return std::nullopt;
  JournalState state;
  state.name = base.name;
  state.drawing = {base.snapshot->entities, base.wallSystemSpecs, base.activeWallSystemSpecID, base.showGrid,
                   base.plan};
  for (const SketchUndoSnapshot& step : base.snapshot->undo) state.undo.appendUndoSnapshot(step);
  return state;
}

JournalState placeholderState(const JournalBase& base) {
  constexpr std::size_t kInChunk = 64;
  const auto count = static_cast<std::size_t>(std::min(base.entityCount, kMostPlaceholders));
  // One chunk stands for all: placeholders take no room of their own.
  const auto full = std::make_shared<const EntityList::Chunk>(kInChunk, LineEntity());
  std::vector<std::shared_ptr<const EntityList::Chunk>> chunks(count / kInChunk, full);
  chunks.push_back(std::make_shared<const EntityList::Chunk>(count % kInChunk, LineEntity()));
  JournalState state;
  state.name = base.name;
  state.drawing = {EntityList::fromChunks(std::move(chunks)), base.wallSystemSpecs,
                   base.activeWallSystemSpecID, base.showGrid, base.plan};
  return state;
}

void dropPlaceholders(JournalState& state) {
  std::vector<SketchEntity> own;
  for (const SketchEntity& entity : state.drawing.entities) {
    if (!isPlaceholder(entity)) own.push_back(entity);
  }
  state.drawing.entities = EntityList(std::move(own));
  state.undo.clear();
}

JournalReplay replayJournal(const std::vector<JournalEntry>& entries, JournalState base) {
  JournalReplay result{std::move(base)};
  for (const JournalEntry& entry : entries) {
    const auto* record = std::get_if<JournalRecord>(&entry);
    if (record == nullptr) continue;
    if (!replay(*record, result.state)) {
      result.isComplete = false;
      break;
    }
  }
  return result;
}

}  // namespace ostrelon
