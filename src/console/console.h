// The console's input line, and the only path from it into the program: a submitted line is echoed, offered
// to the numeric input of the draft in progress, and else run as a command.
#pragma once

#include <string>

#include "console/command.h"
#include "console/command_context.h"

namespace ostrelon {

class Console {
 public:
  /// `tracker` and what the context refers to must outlive the object.
  Console(ChangeTracker& tracker, CommandContext context);
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

 private:
  ChangeTracker& tracker_;
  template <class T>
  using Field = Observable<T, Console>;

 public:
  Field<std::string> input{tracker_};
  Field<bool> isFocused{tracker_};

  const CommandContext& context() const { return context_; }
  void setInput(std::string text) { input = std::move(text); }
  void setFocused(bool focused) { isFocused = focused; }
  /// Runs the input line and empties it. A line of white space leaves no trace.
  void submit() { runInput(); }
  /// Likewise; gives what came of it. What a question that is answered later comes before counts as done.
  CommandInterpreter::ReplyKind runInput();

 private:
  CommandContext context_;
};

}  // namespace ostrelon
