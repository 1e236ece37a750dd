#include "app/comparison.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <unordered_set>
#include <utility>

#include "interaction/canvas_transform.h"
#include "platform/user_error.h"

namespace ostrelon {
namespace {

// More entities than this on both sides are compared away from the main thread.
constexpr std::size_t kManyEntities = 20'000;
// What is looked at takes this part of the canvas at most, and is shown no larger than this scale, view
// points to a sketch unit, unless the view is nearer already.
constexpr double kShownPart = 0.4;
constexpr double kLargestShownScale = 32;

bool isVisible(const SketchBox& box, const Board& board) {
  const SketchBox view = visibleSketchBox(board.view->canvasSize, board.viewport());
  const SketchPoint room{view.width() * (1 - kShownPart) / 4, view.height() * (1 - kShownPart) / 4};
  const SketchBox inner{view.minX + room.x, view.minY + room.y, view.maxX - room.x, view.maxY - room.y};
  const double part = std::max(box.width() / view.width(), box.height() / view.height());
  return inner.contains(box) && part > kShownPart / 8;
}

// Puts the box into the middle of the canvas, at a size at which it can be read; a view that shows it so
// already stays.
void showBox(Board& board, const SketchBox& box) {
  const SketchSize canvas = board.view->canvasSize;
  if (!isFinite(box) || !(canvas.width > 1) || isVisible(box, board)) return;
  const double fitting =
      std::min(canvas.width / std::max(box.width(), 1e-9), canvas.height / std::max(box.height(), 1e-9));
  const double scale = clampedViewportScale(std::min(fitting * kShownPart, kLargestShownScale));
  board.setViewport(viewportWith(box.center(), {canvas.width / 2, canvas.height / 2}, scale));
}

bool isSameRow(const ComparisonRow& a, const ComparisonRow& b) {
  return a.told.id == b.told.id && a.told.isWallSystem == b.told.isWallSystem;
}

// An entity of another drawing as the open one takes it: a wall's system by its name, or with its system.
SketchEntity adopted(SketchEntity entity, const Drawing& other, Drawing& open) {
  auto* wall = std::get_if<WallEntity>(&entity);
  if (wall == nullptr || open.wallSystem(wall->systemSpecID) != nullptr) return entity;
  const WallSystemPairs pairs = wallSystemPairs(open.wallSystemSpecs, other.wallSystemSpecs);
  const auto pair = pairs.find(wall->systemSpecID);
  if (pair != pairs.end()) {
    wall->systemSpecID = pair->second;
  } else if (const WallSystemSpec* system = other.wallSystem(wall->systemSpecID)) {
    open.wallSystemSpecs.push_back(*system);
  }
  return entity;
}

const WallSystemSpec* systemBefore(const DrawingDifference& difference, const UUID& id) {
  for (const WallSystemSpec& system : difference.removedSystems) {
    if (system.id == id) return &system;
  }
  for (const auto& [before, after] : difference.changedSystems) {
    if (after.id == id) return &before;
  }
  return nullptr;
}

}  // namespace

bool canTakeThis(const ComparisonRow& row) { return row.told.kind != DifferenceKind::added; }

bool canTakeBack(const ComparisonRow& row) {
  // Walls may use a wall system by now.
  if (row.told.isWallSystem && row.told.kind == DifferenceKind::added) return false;
  return row.told.kind != DifferenceKind::removed;
}

// What is read and compared, possibly on another thread, which touches nothing else.
struct Comparison::Job {
  std::optional<DrawingSource> source;  // to be read first
  bool isLastSave = false;
  std::uint64_t basisNumber = 0;
  Drawing other;
  std::optional<Drawing> rebased;
  Drawing open;
  ComparisonFilter filter;
  std::shared_ptr<const ComparedDrawings> result;
  std::string failure;

  void run() {
    try {
      if (source) other = source->read();
      result = std::make_shared<const ComparedDrawings>(
          comparedDrawings(other, rebased ? &*rebased : nullptr, open, filter));
    } catch (const std::exception& error) {
      failure = error.what();
    }
  }
  bool isLarge() const {
    return (source && source->isLarge) || other.entities.size() + open.entities.size() > kManyEntities;
  }
};

Comparison::Comparison(Workspace& workspace, bool inBackground)
    : workspace_(workspace), inBackground_(inBackground) {
  drawingSubscription_ = workspace_.observe(fieldsOf(workspace_.sketch.drawing, workspace_.sketch.isDirty),
                                            [this](FieldMask) { refreshSoon(); });
}

template <class Change>
void Comparison::change(Change change) {
  std::optional<ComparisonState> next = state.get();
  if (!next) return;
  change(*next);
  state = std::move(next);
}

// --- Beginning and ending

void Comparison::begin(DrawingSource other, bool isLastSave) {
  auto job = std::make_shared<Job>();
  job->source = std::move(other);
  job->isLastSave = isLastSave;
  job->basisNumber = workspace_.document.basisNumber();
  start(job);
}

void Comparison::beginWithLastSave() {
  begin({"the last save", std::nullopt, false, [basis = workspace_.document.basis()] { return basis; }},
        true);
}

void Comparison::beginWith(const std::string& name) {
  try {
    begin(drawingSource(workspace_.document, name));
  } catch (const UserError& error) {
    report(error.what());
  }
}

void Comparison::beginWithFile(const FilePath& path) {
  try {
    begin(fileDrawingSource(workspace_.document.host().files, path));
  } catch (const UserError& error) {
    report(error.what());
  }
}

void Comparison::end() {
  job_.cancel();
  clearToast();
  refreshTask_.cancel();
  isWorking_ = false;
  other_ = {};
  state = std::nullopt;
}

void Comparison::clearToast() {
  const auto& shown = *workspace_.messages.toast;
  if (!toast_.empty() && shown && shown->message == toast_) workspace_.messages.clearToast();
  toast_.clear();
}

void Comparison::report(const std::string& failure) {
  const std::string text = "Compare failed: " + failure;
  workspace_.messages.append(text, true, false);
  workspace_.messages.showToast(text, DocumentToastState::Style::error);
}

// --- Following

// Observers change nothing from within, and a chain of commands is one change.
void Comparison::refreshSoon() {
  if (!isOn()) return;
  refreshTask_ = workspace_.host().scheduler.after(Seconds(0), [this] { refresh(); });
}

void Comparison::refresh() {
  if (!isOn()) return;
  if (documentNumber_ != workspace_.documentsOpened()) {
    // A branch that was switched to is still the same document.
    if (!file_ || file_ != *workspace_.document.fileURL) {
      end();
      return;
    }
    documentNumber_ = workspace_.documentsOpened();
  }
  if (isWorking_) {
    isStale_ = true;
    return;
  }
  const ComparisonState& now = **state;
  const bool isSaved = isLastSave_ && basisNumber_ != workspace_.document.basisNumber();
  if (isSaved) {
    basisNumber_ = workspace_.document.basisNumber();
    other_ = workspace_.document.basis();
  } else if (now.compared->after == *workspace_.sketch.drawing && now.compared->filter == now.filter) {
    return;
  }
  auto job = std::make_shared<Job>();
  job->other = other_;
  if (!isSaved) job->rebased = now.compared->rebased;
  job->filter = now.filter;
  start(job);
}

void Comparison::start(const std::shared_ptr<Job>& job) {
  job_.cancel();
  isStale_ = false;
  job->open = workspace_.sketch.drawing;
  if (!inBackground_ || !job->isLarge()) {
    job->run();
    finish(*job);
    return;
  }
  isWorking_ = true;
  if (job->source) {
    toast_ = fmt::format("Comparing with {}…", job->source->name);
    workspace_.messages.showToast(toast_, DocumentToastState::Style::saving);
  }
  job_ = workspace_.host().scheduler.inBackground([job] { job->run(); }, [this, job] { finish(*job); });
}

void Comparison::finish(Job& job) {
  isWorking_ = false;
  clearToast();
  if (!job.failure.empty()) {
    report(job.failure);
    return;
  }
  if (job.source) {
    other_ = job.other;
    isLastSave_ = job.isLastSave;
    basisNumber_ = job.basisNumber;
    file_ = *workspace_.document.fileURL;
    documentNumber_ = workspace_.documentsOpened();
    ComparisonState begun;
    begun.name = job.source->name;
    begun.title = job.source->title;
    begun.compared = job.result;
    state = std::move(begun);
  } else {
    change([&](ComparisonState& next) {
      placeCurrent(*job.result, next);
      next.compared = job.result;
    });
  }
  if (std::exchange(isStale_, false)) refreshSoon();
}

// The row that is looked at stays so as long as it is there; what comes in its place is next then.
void Comparison::placeCurrent(const ComparedDrawings& compared, ComparisonState& next) const {
  if (!next.current) return;
  const ComparisonRow& row = next.compared->rows.at(*next.current);
  const auto same = std::find_if(compared.rows.begin(), compared.rows.end(),
                                 [&](const ComparisonRow& other) { return isSameRow(row, other); });
  if (same != compared.rows.end()) {
    next.current = static_cast<std::size_t>(same - compared.rows.begin());
    return;
  }
  next.resumeAt = *next.current;
  next.current.reset();
}

// --- Going through it

void Comparison::show(std::size_t row) {
  if (!isOn() || row >= (*state)->compared->rows.size()) return;
  const auto compared = (*state)->compared;
  change([&](ComparisonState& next) { next.current = row; });
  if (const auto& item = compared->rows[row].item)
    showBox(workspace_.board, compared->layers->items[*item].box);
}

bool Comparison::step(int by) {
  if (!isOn() || (*state)->compared->rows.empty()) return false;
  const ComparisonState& now = **state;
  const std::size_t count = now.compared->rows.size();
  // Without a row that is looked at, the way on leads to the one that took its place.
  const std::size_t from = now.current ? *now.current : now.resumeAt;
  const std::size_t onwards = now.current ? 1 : 0;
  show((from + (by > 0 ? onwards : count - 1)) % count);
  return true;
}

void Comparison::setFilter(const ComparisonFilter& filter) {
  if (!isOn() || (*state)->filter == filter) return;
  change([&](ComparisonState& next) { next.filter = filter; });
  refresh();
}

void Comparison::setBlend(double blend) {
  change([&](ComparisonState& next) { next.blend = std::clamp(blend, 0.0, 1.0); });
}

void Comparison::setBeforeHeld(bool isHeld) {
  change([&](ComparisonState& next) { next.isBeforeHeld = isHeld; });
}

// --- Taking

bool Comparison::takeThis() {
  const ComparisonRow* row = isOn() ? (*state)->currentRow() : nullptr;
  if (row == nullptr || !canTakeThis(*row)) return false;
  take(ComparisonRow(*row));
  return true;
}

bool Comparison::takeBack() {
  const ComparisonRow* row = isOn() ? (*state)->currentRow() : nullptr;
  if (row == nullptr || !canTakeBack(*row)) return false;
  take(ComparisonRow(*row));
  return true;
}

void Comparison::take(const ComparisonRow& row) {
  const auto compared = (*state)->compared;
  Sketch& sketch = workspace_.sketch;
  const auto scope = workspace_.change();
  if (row.told.isWallSystem) {
    const WallSystemSpec* system = systemBefore(compared->difference, row.told.id);
    sketch.edit(
        [&](Drawing& drawing) {
          const auto present = std::find_if(drawing.wallSystemSpecs.begin(), drawing.wallSystemSpecs.end(),
                                            [&](const auto& spec) { return spec.id == row.told.id; });
          if (present == drawing.wallSystemSpecs.end()) {
            drawing.wallSystemSpecs.push_back(*system);
          } else {
            const UUID id = present->id;
            *present = *system;
            present->id = id;
          }
        },
        UndoStep::none);
  } else {
    const DifferenceItem& item = compared->layers->items[*row.item];
    const SketchEntity* theirs = compared->layers->before(item);
    const auto position = sketch.positionOf(row.told.id);
    sketch.edit([&](Drawing& drawing) {
      if (theirs == nullptr) {
        if (position) drawing.entities.remove(*position);
        return;
      }
      SketchEntity entity = adopted(*theirs, compared->before, drawing);
      if (position && row.told.kind == DifferenceKind::changed) {
        drawing.entities.replace(*position, withEntityID(std::move(entity), row.told.id));
      } else {
        if (position) entity = withEntityID(std::move(entity), UUID::random());
        drawing.entities.append(std::move(entity));
      }
    });
    sketch.keepSelectionOfEntities();
  }
  workspace_.messages.append(fmt::format("As in {}: {}", (*state)->name, row.told.text), false, true);
}

}  // namespace ostrelon
