// The operations that `call` reaches, described: what {"op":"operations"} answers, and the table of
// docs/automation.md.
#pragma once

#include <string>
#include <string_view>

#include "automation/json_text.h"

namespace ostrelon {

/// What is known of an operation besides its types.
struct OperationText {
  std::string_view name;
  /// The names of its arguments, in order, parted by spaces.
  std::string_view arguments;
  /// What it does, a sentence.
  std::string_view sentence;
  /// The form of the result, where its type tells too little of it; else empty.
  std::string_view result{};
};

/// That of a name; null for a name that has none.
const OperationText* operationText(std::string_view name);

/// By name, sorted: objects of `name`, `arguments`, `result` and `sentence`; an argument has `name`, `type`
/// and `optional`.
Json operationList();

/// The same as rows of Markdown, each with its end of line.
std::string operationTable();

}  // namespace ostrelon
