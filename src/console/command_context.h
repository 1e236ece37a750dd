// What the commands of the console act on.
#pragma once

#include "core/messages.h"
#include "core/sketch.h"
#include "documents/document_session.h"
#include "interaction/board.h"

namespace ostrelon {

/// References to the parts of the running program; all outlive the commands.
struct CommandContext {
  Messages& messages;
  Sketch& sketch;
  Board& board;
  DocumentSession& document;
};

}  // namespace ostrelon
