// Two windows of the program, or another program, may work on one document. Before a command of the user
// writes over a file that another one has changed, it asks.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "documents/document_session.h"

namespace ostrelon {

/// Why a file that another program has changed is not overwritten.
std::string changedOnDiskText(const FilePath& url);

/// Calls `answered` once: with nothing when the document's file may be written, at once where no other
/// program has changed it, else after the user has agreed; or with the reason why it may not.
void askBeforeOverwriting(DocumentSession& document,
                          std::function<void(std::optional<std::string> refusal)> answered);

/// The same before a switch to this branch, which writes over the document's file. There is no question
/// where the switch would be refused or nothing would change.
void askBeforeSwitching(DocumentSession& document, const std::string& nameOrID,
                        std::function<void(std::optional<std::string> refusal)> answered);

/// The path that a save panel gave, with this ending where its name has none; a dot alone is none.
FilePath withEnding(FilePath path, const std::string& ending);

/// Calls `answered` once: with true when a file may be written to `completed`, which was made of the path
/// that a save panel gave. Where they differ and a file is there, the panel could not ask about it, and the
/// user is asked here; never on a host whose panels do not ask either.
void askBeforeReplacing(const Host& host, const FilePath& given, const FilePath& completed,
                        std::function<void(bool mayReplace)> answered);

}  // namespace ostrelon
