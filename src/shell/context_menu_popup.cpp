#include "shell/context_menu_popup.h"

#include <QMenu>

#include "app/shortcut_text.h"
#include "shell/qt_text.h"

namespace ostrelon {

void fillContextMenu(QMenu& menu, const ContextMenu& rows, Sketch& sketch, Messages& messages) {
  for (const ContextMenuItem& row : rows) {
    if (row.isSeparator()) {
      menu.addSeparator();
      continue;
    }
    const QString title = menuText(row.title);
    if (const auto* submenu = std::get_if<ContextMenuSubmenu>(&row.content)) {
      fillContextMenu(*menu.addMenu(title), *submenu, sketch, messages);
      continue;
    }
    // The key is shown, and works through the menu bar.
    const QString key = qtText(desktopNotation(row.shortcut));
    QAction* action = menu.addAction(key.isEmpty() ? title : title + '\t' + key);
    if (const auto* choice = std::get_if<AssignWallSystemChoice>(&row.content)) {
      const auto& primary = sketch.selection->primary;
      const SketchEntity* entity = primary ? sketch.entity(*primary) : nullptr;
      const auto* wall = entity != nullptr ? std::get_if<WallEntity>(entity) : nullptr;
      action->setCheckable(true);
      action->setChecked(wall != nullptr && wall->systemSpecID == choice->wallSystemID);
    }
    QObject::connect(action, &QAction::triggered, &menu,
                     [row, &sketch, &messages] { runContextMenuItem(row, sketch, messages); });
  }
}

void popUpContextMenu(QWidget& parent, const ContextMenu& rows, Sketch& sketch, Messages& messages,
                      const QPoint& globalPosition) {
  auto* menu = new QMenu(&parent);
  menu->setObjectName(QStringLiteral("canvas.contextMenu"));
  menu->setAttribute(Qt::WA_DeleteOnClose);
  fillContextMenu(*menu, rows, sketch, messages);
  menu->popup(globalPosition);
}

}  // namespace ostrelon
