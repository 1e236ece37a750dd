#include "app/menu.h"

#include <array>

#include "app/application.h"
#include "app/comparison_choices.h"
#include "app/inspector.h"
#include "console/command_interpreter.h"
#include "core/adding.h"
#include "core/plan_look.h"
#include "documents/document_store.h"
#include "documents/history_prompts.h"
#include "geometry/edit_operations.h"
#include "geometry/plan_item_operations.h"
#include "interaction/canvas_transform.h"
#include "platform/dialogs.h"

namespace ostrelon {
namespace {

constexpr std::array<std::string_view, 6> kMenuTitles{"File", "Edit", "Sketch", "Console", "View", "Help"};

bool hasSelection(const Application& app) { return !app.workspace().sketch.selection->ids.empty(); }
bool hasAnySelection(const Application& app) { return !app.workspace().sketch.selection->isNothing(); }
bool hasClipboard(const Application& app) { return !app.workspace().sketch.clipboard->empty(); }
bool hasEntities(const Application& app) { return !app.workspace().sketch.entities().empty(); }
bool canUndo(const Application& app) { return !app.workspace().sketch.undoStack->undoSnapshots().empty(); }
bool canRedo(const Application& app) { return !app.workspace().sketch.undoStack->redoSnapshots().empty(); }

void showHelp(Application& app) {
  CommandInterpreter::executeCommandLine("help", app.workspace().commands());
}
// Of entities or of an item of the plan, whichever is selected.
void duplicate(Application& app) {
  Workspace& workspace = app.workspace();
  duplicateSelection(workspace.sketch, workspace.messages, kDuplicateOffset.x, kDuplicateOffset.y);
  duplicateSelectedPlanItem(workspace.sketch, workspace.messages);
}
void zoomBy(Application& app, double factor) {
  const SketchSize canvas = app.workspace().board.view->canvasSize;
  app.workspace().board.zoom(factor, {canvas.width * 0.5, canvas.height * 0.5});
}
// What a console command does, reported in the console as that command reports it.
void runCommand(Application& app, std::string_view command) {
  const auto reply = CommandInterpreter::executeCommandLine(command, app.workspace().commands());
  if (reply.text) app.workspace().messages.append(*reply.text, false, true);
}
void copy(Application& app) { runCommand(app, "copy"); }
void cut(Application& app) {
  copy(app);
  deleteSelection(app.workspace().sketch, app.workspace().messages);
}
void paste(Application& app) { runCommand(app, "paste"); }
void toggleGrid(Application& app) {
  setShowGrid(app.workspace().sketch, !app.workspace().sketch.drawing->showGrid);
}

// A title that says which document, without its extension.
std::vector<MenuChoice> recentChoices(Application& app) {
  constexpr std::int64_t shown = 10;
  std::vector<MenuChoice> choices;
  try {
    for (const FilePath& url : recentDocuments(app.settings(), shown)) {
      choices.push_back(
          {url.stem().string(), true, false, [url](Application& to) { to.openDocumentAt(url); }});
    }
  } catch (const UserError&) {
    // With no projects folder, or one that cannot be read, there is nothing to offer.
  }
  if (choices.empty()) choices.push_back({"No Recent Documents", false, false, {}});
  return choices;
}

std::vector<MenuChoice> branchChoices(Application& app) {
  app.workspace().document.refreshHistory();
  const DocumentHistoryState& history = app.workspace().document.history;
  std::vector<MenuChoice> choices;
  for (const DocumentHistoryBranch& branch : history.metadata.branches) {
    const bool isCurrent = branch.id == history.metadata.currentBranchID;
    choices.push_back(
        {branch.name, !isCurrent, isCurrent, [id = branch.id](Application& to) { to.switchBranch(id); }});
  }
  return choices;
}

std::vector<MenuChoice> appearanceChoices(Application& app) {
  std::vector<MenuChoice> choices;
  for (const AppearanceMode mode : kAppearanceModes) {
    choices.push_back({std::string(displayName(mode)), true, app.settings().appearanceMode == mode,
                       [mode](Application& to) { to.settings().setAppearanceMode(mode); }});
  }
  return choices;
}

std::vector<MenuChoice> justificationChoices(Application& app) {
  std::vector<MenuChoice> choices;
  for (const auto& [justification, title] :
       {std::pair{WallJustification::middle, "Middle"}, std::pair{WallJustification::leftFace, "Left Face"},
        std::pair{WallJustification::rightFace, "Right Face"}}) {
    choices.push_back(
        {title, true, app.workspace().board.wallJustification == justification,
         [chosen = justification](Application& to) { to.workspace().board.setWallJustification(chosen); }});
  }
  return choices;
}

// Each row switches one part of the look and leaves the others.
std::vector<MenuChoice> planLookChoices(Application& app) {
  std::vector<MenuChoice> choices;
  for (const auto& [title, part] :
       {std::pair("Clean Walls", &PlanLook::cleanWalls), std::pair("Filled Walls", &PlanLook::filledWalls),
        std::pair("Line Weights", &PlanLook::lineWeights)}) {
    choices.push_back(
        {title, true, app.workspace().sketch.drawing->plan.look.*part, [part = part](Application& to) {
           PlanLook look = to.workspace().sketch.drawing->plan.look;
           look.*part = !(look.*part);
           setPlanLook(to.workspace().sketch, look);
         }});
  }
  return choices;
}

bool hasDimensionStrings(const Application& app) {
  return app.workspace().sketch.drawing->plan.look.dimensionStrings;
}
void toggleDimensionStrings(Application& app) {
  PlanLook look = app.workspace().sketch.drawing->plan.look;
  look.dimensionStrings = !look.dimensionStrings;
  setPlanLook(app.workspace().sketch, look);
}
std::vector<MenuChoice> drawingScaleChoices(Application& app) {
  std::vector<MenuChoice> choices;
  const DrawingScale now = drawingScale(app.workspace().sketch.drawing->plan);
  for (const DrawingScale scale : commonScales()) {
    choices.push_back({drawingScaleText(scale), true, scale == now,
                       [scale](Application& to) { setDrawingScale(to.workspace().sketch, scale); }});
  }
  return choices;
}

// Runs what a window does for the program; nothing where there is none.
void runIfThere(const std::function<void()>& action) {
  if (action) action();
}
void exportDrawingFromMenu(Application& app) {
  if (app.windowActions().showExport) {
    app.windowActions().showExport();
  } else {
    exportWithPanel(app, {});
  }
}

// Without a window, with a document that is asked for.
void compareFromMenu(Application& app) {
  if (app.windowActions().showCompare) {
    app.windowActions().showCompare();
  } else {
    compareWithPanel(app);
  }
}
void mergeFromMenu(Application& app) {
  if (app.windowActions().showMerge) {
    app.windowActions().showMerge();
    return;
  }
  const TextPrompt prompt{"Merge", "Name a branch, a checkpoint or a document.", "", "Merge"};
  app.host().dialogs.ask(prompt, [&app](const DialogAnswer& answer) {
    if (answer) mergeWith(app, *answer);
  });
}

constexpr MenuCommand row(std::string_view menu, std::string_view title, std::string_view shortcut,
                          void (*run)(Application&), bool (*enabled)(const Application&) = nullptr) {
  return {menu, title, shortcut, run, enabled, nullptr, nullptr};
}
constexpr MenuCommand toggle(std::string_view menu, std::string_view title, void (*run)(Application&),
                             bool (*isOn)(const Application&)) {
  return {menu, title, {}, run, nullptr, nullptr, isOn};
}
constexpr MenuCommand submenu(std::string_view menu, std::string_view title,
                              std::vector<MenuChoice> (*choices)(Application&)) {
  return {menu, title, {}, nullptr, nullptr, choices, nullptr};
}
constexpr MenuCommand separator(std::string_view menu) {
  return {menu, {}, {}, nullptr, nullptr, nullptr, nullptr};
}

constexpr std::array kMenuCommands{
    row("File", "New Document", "⌘N", [](Application& app) { app.newDocument(); }),
    row("File", "Open…", "⌘O", [](Application& app) { app.openDocumentWithPanel(); }),
    submenu("File", "Open Recent", recentChoices),
    separator("File"),
    row("File", "Save", "⌘S", [](Application& app) { app.save(); }),
    row("File", "Save As…", "⇧⌘S", [](Application& app) { app.saveAs(); }),
    separator("File"),
    row("File", "Save Checkpoint…", "",
        [](Application& app) { promptForCheckpoint(app.workspace().document); }),
    row("File", "Create Branch…", "", [](Application& app) { promptForBranch(app.workspace().document); }),
    submenu("File", "Switch Branch", branchChoices),
    row("File", "History…", "", [](Application& app) { runIfThere(app.windowActions().showHistory); }),
    row("File", "Compare with…", "", compareFromMenu),
    row("File", "Merge…", "", mergeFromMenu),
    separator("File"),
    row("File", "Revert to Last Autosave", "", [](Application& app) { app.revertToLastAutosave(); }),
    separator("File"),
    row("File", "Import DXF…", "", importWithPanel),
    row("File", "Export…", "⌘E", exportDrawingFromMenu),
    row("File", "Print…", "⌘P", [](Application& app) { runIfThere(app.windowActions().showPrint); }),
    separator("File"),
    row("File", "Settings…", "⌘,", [](Application& app) { runIfThere(app.windowActions().showSettings); }),
    row("File", "Quit", "⌘Q", [](Application& app) { runIfThere(app.windowActions().close); }),
    row(
        "Edit", "Undo", "⌘Z", [](Application& app) { app.workspace().board.undo(); }, canUndo),
    row(
        "Edit", "Redo", "⇧⌘Z", [](Application& app) { app.workspace().board.redo(); }, canRedo),
    separator("Edit"),
    row("Edit", "Cut", "⌘X", cut, hasSelection),
    row("Edit", "Copy", "⌘C", copy, hasSelection),
    row("Edit", "Paste", "⌘V", paste, hasClipboard),
    row(
        "Edit", "Select All", "⌘A", [](Application& app) { selectAll(app.workspace().sketch); }, hasEntities),
    row(
        "Sketch", "Inspect", "⌘I", [](Application& app) { showEntityInspector(app.workspace().sketch); },
        hasAnySelection),
    row("Sketch", "Duplicate", "⌘D", duplicate, hasAnySelection),
    separator("Sketch"),
    row("Sketch", "Clear Sketch", "⇧⌘K", [](Application& app) { app.workspace().board.clearSketch(); }),
    row("Sketch", "Toggle Grid", "⌘G", toggleGrid),
    separator("Sketch"),
    submenu("Sketch", "Wall Justification", justificationChoices),
    separator("Sketch"),
    row("Sketch", "Add Door", "",
        [](Application& app) { app.workspace().board.beginOpeningPlacing(OpeningKind::door); }),
    row("Sketch", "Add Window", "",
        [](Application& app) { app.workspace().board.beginOpeningPlacing(OpeningKind::window); }),
    row("Sketch", "Add Opening", "",
        [](Application& app) { app.workspace().board.beginOpeningPlacing(OpeningKind::opening); }),
    row("Sketch", "Add Dimension", "",
        [](Application& app) { app.workspace().board.beginDimensionPlacing(); }),
    row("Console", "Show Help", "", showHelp),
    submenu("View", "Appearance", appearanceChoices),
    separator("View"),
    row("View", "Zoom In", "⌘+", [](Application& app) { zoomBy(app, kZoomInFactor); }),
    row("View", "Zoom Out", "⌘-", [](Application& app) { zoomBy(app, kZoomOutFactor); }),
    row("View", "Zoom to Fit", "⌘0",
        [](Application& app) { app.workspace().board.zoomToFit(app.workspace().board.view->canvasSize); }),
    row("View", "Reset View", "⇧⌘0",
        [](Application& app) {
          app.workspace().board.resetViewport(app.workspace().board.view->canvasSize);
        }),
    separator("View"),
    submenu("View", "Plan Look", planLookChoices),
    toggle("View", "Dimension Strings", toggleDimensionStrings, hasDimensionStrings),
    submenu("View", "Drawing Scale", drawingScaleChoices),
    row("Help", "Manual", "", [](Application& app) { runIfThere(app.windowActions().showManual); }),
    row("Help", "Keyboard Shortcuts", "",
        [](Application& app) { runIfThere(app.windowActions().showShortcuts); }),
    row("Help", "Open Sample Plan", "", [](Application& app) { app.openSamplePlan(); }),
};

}  // namespace

std::span<const std::string_view> menuTitles() { return kMenuTitles; }

std::span<const MenuCommand> menuCommands() { return kMenuCommands; }

bool isEnabled(const MenuCommand& command, const Application& application) {
  return command.isEnabled == nullptr || command.isEnabled(application);
}

std::optional<std::string> runMenuCommand(Application& application, std::string_view path) {
  const std::string unknown = "No menu command is named \"" + std::string(path) + "\".";
  const std::string disabled = "The menu command \"" + std::string(path) + "\" is disabled.";
  for (const MenuCommand& command : menuCommands()) {
    if (command.title.empty()) continue;
    const std::string own = std::string(command.menu) + "/" + std::string(command.title);
    if (!path.starts_with(own)) continue;
    std::string_view rest = path.substr(own.size());
    if (rest.empty() && command.run != nullptr) {
      if (!isEnabled(command, application)) return disabled;
      command.run(application);
      return std::nullopt;
    }
    if (!rest.starts_with('/') || command.choices == nullptr) continue;
    rest.remove_prefix(1);
    for (const MenuChoice& choice : command.choices(application)) {
      if (choice.title != rest) continue;
      if (!choice.isEnabled || !choice.run) return disabled;
      choice.run(application);
      return std::nullopt;
    }
  }
  return unknown;
}

}  // namespace ostrelon
