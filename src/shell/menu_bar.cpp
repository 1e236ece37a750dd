#include "shell/menu_bar.h"

#include <QMenu>

#include "app/shortcut_text.h"
#include "shell/fonts.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

FieldMask enablingFields(const Workspace& workspace) {
  return fieldsOf(workspace.sketch.drawing, workspace.sketch.selection, workspace.sketch.undoStack,
                  workspace.sketch.clipboard, workspace.document.history, workspace.document.fileURL);
}

QList<QKeySequence> keySequences(std::string_view shortcut) {
  QList<QKeySequence> keys{QKeySequence(qtText(desktopNotation(shortcut)), QKeySequence::PortableText)};
  // Plus shares its key with the equals sign on most keyboards, and nobody holds Shift to zoom.
  if (shortcut == "⌘+") keys.append(QKeySequence(Qt::CTRL | Qt::Key_Equal));
  return keys;
}

}  // namespace

MenuBar::MenuBar(Application& application, QWidget* parent)
    : QMenuBar(parent),
      application_(application),
      update_(application.workspace(), enablingFields(application.workspace()), this, [this] { refresh(); }) {
  setNativeMenuBar(false);
  setObjectName(QStringLiteral("menuBar"));
  setFont(fontOf(TextStyle::body));
  for (const std::string_view title : menuTitles()) {
    QMenu* menu = addMenu(menuText(title));
    menu->setObjectName(QStringLiteral("menu.") + qtText(title));
    connect(menu, &QMenu::aboutToShow, this, [this] { refresh(); });
    for (const MenuCommand& command : menuCommands()) {
      if (command.menu != title) continue;
      if (command.title.empty()) {
        menu->addSeparator();
        continue;
      }
      if (command.choices != nullptr) {
        QMenu* submenu = menu->addMenu(menuText(command.title));
        connect(submenu, &QMenu::aboutToShow, this,
                [this, submenu, row = &command] { fillSubmenu(*submenu, *row); });
        rows_.push_back({&command, submenu->menuAction()});
        continue;
      }
      QAction* action = menu->addAction(menuText(command.title));
      if (!command.shortcut.empty()) action->setShortcuts(keySequences(command.shortcut));
      connect(action, &QAction::triggered, this, [this, row = &command] {
        if (ostrelon::isEnabled(*row, application_)) row->run(application_);
      });
      rows_.push_back({&command, action});
    }
  }
  refresh();
}

void MenuBar::refresh() {
  for (const Row& row : rows_) {
    row.action->setEnabled(ostrelon::isEnabled(*row.command, application_));
    if (row.command->isOn == nullptr) continue;
    const bool isOn = row.command->isOn(application_);
    row.action->setCheckable(isOn);
    row.action->setChecked(isOn);
  }
}

void MenuBar::fillSubmenu(QMenu& menu, const MenuCommand& command) {
  menu.clear();
  for (MenuChoice& choice : command.choices(application_)) {
    QAction* action = menu.addAction(menuText(choice.title));
    action->setEnabled(choice.isEnabled);
    action->setCheckable(choice.isChecked);
    action->setChecked(choice.isChecked);
    if (choice.run) {
      connect(action, &QAction::triggered, this, [this, run = std::move(choice.run)] { run(application_); });
    }
  }
}

}  // namespace ostrelon
