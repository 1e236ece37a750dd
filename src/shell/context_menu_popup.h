// The menu of a secondary click, shown by Qt.
#pragma once

#include <QPoint>

#include "interaction/context_menu.h"

class QMenu;
class QWidget;

namespace ostrelon {

/// Adds the rows to a Qt menu; choosing one does what it stands for. `sketch` and `messages` must outlive the
/// menu.
void fillContextMenu(QMenu& menu, const ContextMenu& rows, Sketch& sketch, Messages& messages);

/// Pops the menu up. It goes by itself.
void popUpContextMenu(QWidget& parent, const ContextMenu& rows, Sketch& sketch, Messages& messages,
                      const QPoint& globalPosition);

}  // namespace ostrelon
