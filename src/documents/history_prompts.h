// The history commands of the menus: they ask for what they need and report the result, in the console and in
// a toast.
#pragma once

#include <string>

#include "documents/document_session.h"

namespace ostrelon {

/// Asks for a message and saves a checkpoint with it.
void promptForCheckpoint(DocumentSession& document);
/// Asks for a name and creates a branch from the head of the current one.
void promptForBranch(DocumentSession& document);
/// The same from a checkpoint of any branch; `message` is what the question calls it.
void promptForBranchFrom(DocumentSession& document, const std::string& checkpointID,
                         const std::string& message);
/// Switches to a branch by its name or identifier.
void switchBranchFromMenu(DocumentSession& document, const std::string& nameOrID);

}  // namespace ostrelon
