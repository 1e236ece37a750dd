// Hands a verified installer to the desktop, which opens it with the program for its kind.
#pragma once

#include <QDesktopServices>
#include <QUrl>

#include "platform/file_system.h"
#include "shell/qt_text.h"

namespace ostrelon {

/// False when the desktop has nothing to open it with.
inline bool openInstallerWithDesktop(const FilePath& installer) {
  return QDesktopServices::openUrl(QUrl::fromLocalFile(qtText(installer.string())));
}

}  // namespace ostrelon
