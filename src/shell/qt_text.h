// Texts between the logic (UTF-8) and Qt.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace ostrelon {

inline QString qtText(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
/// The title of a menu row. A name in it marks no key by its "&" and no shortcut by its tab.
inline QString menuText(std::string_view text) {
  return qtText(text).replace('&', QStringLiteral("&&")).replace('\t', ' ');
}
inline std::string plainText(const QString& text) { return text.toStdString(); }

}  // namespace ostrelon
