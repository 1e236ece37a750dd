// The short message that slides over the canvas.
#pragma once

#include <string>

namespace ostrelon {

struct DocumentToastState {
  enum class Style { saving, success, error };

  std::string message;
  Style style = Style::success;
  friend bool operator==(const DocumentToastState&, const DocumentToastState&) = default;
};

}  // namespace ostrelon
