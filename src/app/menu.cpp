#include "app/menu.h"

#include <array>

#include "app/application.h"
#include "console/command_interpreter.h"
#include "interaction/canvas_transform.h"

namespace ostrelon {
namespace {

constexpr std::array<std::string_view, 5> kMenuTitles{"File", "Edit", "Sketch", "Console", "View"};

bool hasSelection(const Application& app) { return !app.sketch().selectedEntityIDs->empty(); }
bool canUndo(const Application& app) { return !app.sketch().undoStack().undoSnapshots().empty(); }
bool canRedo(const Application& app) { return !app.sketch().undoStack().redoSnapshots().empty(); }

void showHelp(Application& app) { CommandInterpreter::executeCommandLine("help", app.sketch()); }
void duplicate(Application& app) { app.sketch().duplicateSelection(kDuplicateOffset.x, kDuplicateOffset.y); }
void zoomBy(Application& app, double factor) {
  const SketchSize canvas = app.sketch().canvasSize;
  app.sketch().zoomViewport(factor, {canvas.width * 0.5, canvas.height * 0.5});
}
void toggleGrid(Application& app) { app.sketch().setShowGrid(!*app.sketch().showGrid); }

constexpr std::array kMenuCommands{
    MenuCommand{"File", "New Document", "⌘N", [](Application& app) { app.sketch().newDocument(); }},
    MenuCommand{"Edit", "Undo", "⌘Z", [](Application& app) { app.sketch().undo(); }, canUndo},
    MenuCommand{"Edit", "Redo", "⇧⌘Z", [](Application& app) { app.sketch().redo(); }, canRedo},
    MenuCommand{"Sketch", "Inspect", "⌘I", [](Application& app) { app.sketch().showEntityInspector(); },
                hasSelection},
    MenuCommand{"Sketch", "Duplicate", "⌘D", duplicate, hasSelection},
    MenuCommand{"Sketch", "Clear Sketch", "⇧⌘K", [](Application& app) { app.sketch().clearSketch(); }},
    MenuCommand{"Sketch", "Toggle Grid", "⌘G", toggleGrid},
    MenuCommand{"Console", "Show Help", "", showHelp},
    MenuCommand{"View", "Zoom In", "⌘+", [](Application& app) { zoomBy(app, kZoomInFactor); }},
    MenuCommand{"View", "Zoom Out", "⌘-", [](Application& app) { zoomBy(app, kZoomOutFactor); }},
    MenuCommand{"View", "Zoom to Fit", "⌘0",
                [](Application& app) { app.sketch().zoomToFit(app.sketch().canvasSize); }},
    MenuCommand{"View", "Reset View", "⇧⌘0",
                [](Application& app) { app.sketch().resetViewport(app.sketch().canvasSize); }},
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
