// The menu of a secondary click, shown by Qt.
#pragma once

#include <QPoint>

#include "interaction/context_menu.h"

class QMenu;
class QWidget;

namespace ostrelon {

/// Adds the rows to a Qt menu; choosing one does what it stands for. `sketch` must outlive the menu.
void fillContextMenu(QMenu& menu, const ContextMenu& rows, SketchViewModel& sketch);

/// Pops the menu up. It goes by itself.
void popUpContextMenu(QWidget& parent, const ContextMenu& rows, SketchViewModel& sketch,
                      const QPoint& globalPosition);

}  // namespace ostrelon
