#include "shell/date_text.h"

#include <QDateTime>
#include <QLocale>
#include <cmath>

namespace ostrelon {
namespace {

QDateTime localTime(Date date) {
  return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(std::floor(secondsSince1970(date) * 1000)));
}

QString dayText(const QDateTime& time) {
  return QLocale(QLocale::English).toString(time.date(), QStringLiteral("d MMM yyyy"));
}
// Hours and minutes. Where the desktop names no language the short format would have seconds.
QString hourText(const QDateTime& time) {
  const QLocale system = QLocale::system();
  return system.language() == QLocale::C ? time.time().toString(QStringLiteral("HH:mm"))
                                         : system.toString(time.time(), QLocale::ShortFormat);
}

}  // namespace

QString relativeDateText(Date date, Date now) {
  const QDateTime time = localTime(date);
  const qint64 days = time.date().daysTo(localTime(now).date());
  const QString day = days == 0   ? QStringLiteral("Today")
                      : days == 1 ? QStringLiteral("Yesterday")
                                  : dayText(time);
  return QStringLiteral("%1 at %2").arg(day, hourText(time));
}

QString abbreviatedDateText(Date date) {
  const QDateTime time = localTime(date);
  return QStringLiteral("%1, %2").arg(dayText(time), hourText(time));
}

}  // namespace ostrelon
