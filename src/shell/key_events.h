// Qt's key events as the drawing board's. On this desktop the Command key is Ctrl and the Control key
// is Meta, as Qt maps them everywhere.
#pragma once

#include <QKeyEvent>

#include "interaction/key_routing.h"

namespace ostrelon {

/// The key and its modifiers; focus and window are for the caller to add.
KeyEvent keyEventOf(const QKeyEvent& event);

}  // namespace ostrelon
