// Dates as the user reads them.
#pragma once

#include <QString>

#include "platform/date.h"

namespace ostrelon {

/// "Today at 09:30", "Yesterday at 18:05", "3 Mar 2026 at 12:00".
QString relativeDateText(Date date, Date now);
/// "3 Mar 2026, 12:00".
QString abbreviatedDateText(Date date);

}  // namespace ostrelon
