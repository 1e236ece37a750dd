// One line of the console transcript.
#pragma once

#include <string>

#include "platform/uuid.h"

namespace ostrelon {

struct ConsoleLine {
  UUID id;
  std::string text;       ///< possibly of several lines
  bool isError = false;   ///< shown in the error colour
  bool isSystem = false;  ///< output of the system rather than an echo of the user's input
  friend bool operator==(const ConsoleLine&, const ConsoleLine&) = default;
};

}  // namespace ostrelon
