// Two windows of the program, or another program, may work on one document. Before a command of the
// user writes over a file that somebody else has changed, it asks.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/sketch_view_model.h"

namespace ostrelon {

/// Why a file that somebody else has changed is not overwritten.
std::string changedOnDiskText(const FilePath& url);

/// Calls `answered` once: with nothing when the document's file may be written, at once where nobody
/// else has changed it, else after the user has agreed; or with the reason why it may not.
void askBeforeOverwriting(SketchViewModel& sketch,
                          std::function<void(std::optional<std::string> refusal)> answered);

/// The same before a switch to this branch, which writes over the document's file. There is no question
/// where the switch would be refused or nothing would change.
void askBeforeSwitching(SketchViewModel& sketch, const std::string& nameOrID,
                        std::function<void(std::optional<std::string> refusal)> answered);

}  // namespace ostrelon
