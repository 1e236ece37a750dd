#include "console/history_commands.h"

#include <functional>
#include <memory>
#include <utility>

#include "documents/overwrite_question.h"
#include "platform/unicode.h"
#include "platform/user_error.h"

namespace ostrelon::CommandInterpreter {
namespace {

using Answered = std::function<void(std::optional<std::string> refusal)>;

// The reply of work that a question comes before. An answer at once makes it the command's reply; one
// that comes later has it written when it comes.
Reply replyBehindQuestion(SketchViewModel& sketch, const std::function<void(Answered)>& ask,
                          const std::string& failurePrefix, std::function<std::string()> work) {
  struct Waiting {
    bool isLate = false;
    Reply reply;
  };
  auto waiting = std::make_shared<Waiting>();
  ask([&sketch, waiting, failurePrefix, work = std::move(work)](const std::optional<std::string>& refusal) {
    std::string text;
    try {
      text = refusal ? failurePrefix + *refusal : work();
    } catch (const UserError& error) {
      text = failurePrefix + error.what();
    }
    if (waiting->isLate) {
      sketch.appendConsoleLine(std::move(text), false, false);
    } else {
      waiting->reply = std::move(text);
    }
  });
  waiting->isLate = true;
  return waiting->reply;
}

std::string joined(const std::vector<std::string>& words, std::size_t from) {
  std::string text;
  for (std::size_t index = from; index < words.size(); ++index) {
    if (index > from) text += ' ';
    text += words[index];
  }
  return text;
}

std::string historyText(SketchViewModel& sketch) {
  sketch.refreshDocumentHistory();
  return sketch.documentHistoryText();
}

// `arguments` are those of the whole line: "branch", "create", name, checkpoint.
Reply createBranchReply(const std::vector<std::string>& arguments, SketchViewModel& sketch) {
  if (arguments.size() != 3 && arguments.size() != 4) {
    return "Usage: branch create <name> [checkpoint-id]";
  }
  std::optional<std::string> source;
  if (arguments.size() == 4) source = arguments[3];
  try {
    return "Branch created: " + sketch.createHistoryBranch(arguments[2], source).name;
  } catch (const UserError& error) {
    return std::string("Branch failed: ") + error.what();
  }
}

Reply switchBranchReply(const std::vector<std::string>& arguments, SketchViewModel& sketch) {
  if (arguments.size() != 3) return "Usage: branch switch <name>";
  const std::string& name = arguments[2];
  return replyBehindQuestion(
      sketch, [&](Answered answered) { askBeforeSwitching(sketch, name, std::move(answered)); },
      "Switch branch failed: ",
      [&sketch, name] { return "Switched to branch " + sketch.switchBranch(name).name + "."; });
}

}  // namespace

Reply checkpointCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  return replyBehindQuestion(
      sketch, [&](Answered answered) { askBeforeOverwriting(sketch, std::move(answered)); },
      "Checkpoint failed: ",
      [&sketch, message = joined(command.arguments, 1)] {
        const DocumentCheckpoint checkpoint = sketch.saveCheckpoint(message);
        return "Checkpoint saved (" + checkpoint.id + "): " + checkpoint.message;
      });
}

Reply historyCommand(const ResolvedCommand&, SketchViewModel& sketch) { return historyText(sketch); }

Reply branchCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  const std::vector<std::string>& arguments = command.arguments;
  const std::string action = arguments.size() > 1 ? lowerCased(arguments[1]) : std::string();
  if (action == "list") return historyText(sketch);
  if (action == "create") return createBranchReply(arguments, sketch);
  if (action == "switch") return switchBranchReply(arguments, sketch);
  return "Usage: branch list | branch create <name> [checkpoint-id] | branch switch <name>";
}

}  // namespace ostrelon::CommandInterpreter
