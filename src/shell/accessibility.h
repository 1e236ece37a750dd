// What a screen reader is told beyond what Qt knows by itself: windows, panels and drawings that are
// plain widgets to Qt, and lists with, made only when asked for, each of their rows.
#pragma once

#include <QAccessible>

class QWidget;

namespace ostrelon {

/// Makes the widgets known to Qt's accessibility. Calling it again changes nothing.
void installAccessibility();

/// Declares what a plain widget is. Without that a window is a window or a dialog, and what has an accessible
/// name is a group of controls.
void setAccessibleRole(QWidget& widget, QAccessible::Role role);

}  // namespace ostrelon
