// The pictures of the user's manual, taken of the program itself.
#pragma once

#include <QString>

namespace ostrelon {

/// Writes them into the folder. False when one could not be written. Needs a QApplication.
bool makeManualPictures(const QString& folder);

}  // namespace ostrelon
