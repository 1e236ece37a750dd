#include "console/history_commands.h"

#include <functional>
#include <memory>
#include <utility>

#include "console/command_words.h"
#include "documents/kept_question.h"
#include "documents/overwrite_question.h"
#include "platform/user_error.h"

namespace ostrelon::CommandInterpreter {
namespace {

using Answered = std::function<void(std::optional<std::string> refusal)>;

// The reply of work that a question comes before. An answer at once makes it the command's reply; one
// that comes later has it written when it comes.
Reply replyBehindQuestion(DocumentSession& document, const std::function<void(Answered)>& ask,
                          const std::string& failurePrefix, std::function<std::string()> work) {
  struct Waiting {
    bool isLate = false;
    Reply reply;
  };
  auto waiting = std::make_shared<Waiting>();
  const auto answer = [&messages = document.messages(), waiting](Reply reply) {
    if (waiting->isLate) {
      messages.appendReply(*std::move(reply.text));
    } else {
      waiting->reply = std::move(reply);
    }
  };
  const auto refuse = [answer, failurePrefix](const std::string& refusal) {
    answer(Reply::refused(failurePrefix + refusal));
  };
  ask([&document, answer, refuse, work = std::move(work)](const std::optional<std::string>& refusal) {
    if (refusal) {
      refuse(*refusal);
    } else {
      runKeepingOrAsking(
          document, [answer, work] { answer(Reply::done(work())); }, refuse);
    }
  });
  waiting->isLate = true;
  return waiting->reply;
}

}  // namespace

ParseResult parseCheckpoint(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  return SaveCheckpoint{joinedWords(words, 1)};
}

ParseResult parseHistory(const Words& /*words*/, const ParseState& /*state*/, Place /*place*/) {
  return ShowHistory{};
}

ParseResult parseBranch(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  const std::string what = lowerCasedWord(words, 1);
  if (what == "list") return ShowHistory{};
  if (what == "create") {
    if (words.size() != 3 && words.size() != 4) return WrongUse{"branch create <name> [checkpoint-id]"};
    return CreateBranch{words[2], words.size() == 4 ? std::optional(words[3]) : std::nullopt};
  }
  if (what == "switch") {
    if (words.size() != 3) return WrongUse{"branch switch <name>"};
    return SwitchBranch{words[2]};
  }
  return WrongUse{};
}

Reply run(const SaveCheckpoint& save, const CommandContext& context) {
  DocumentSession& document = context.document;
  return replyBehindQuestion(
      document, [&](Answered answered) { askBeforeOverwriting(document, std::move(answered)); },
      "Checkpoint failed: ",
      [&document, message = save.message] {
        const DocumentCheckpoint checkpoint = document.saveCheckpoint(message);
        return "Checkpoint saved (" + checkpoint.id + "): " + checkpoint.message;
      });
}

Reply run(const SwitchBranch& change, const CommandContext& context) {
  DocumentSession& document = context.document;
  return replyBehindQuestion(
      document,
      [&](Answered answered) { askBeforeSwitching(document, change.nameOrID, std::move(answered)); },
      "Switch branch failed: ",
      [&document, nameOrID = change.nameOrID] {
        return "Switched to branch " + document.switchBranch(nameOrID).name + ".";
      });
}

Reply run(const ShowHistory& /*show*/, const CommandContext& context) {
  context.document.refreshHistory();
  return Reply::done(context.document.historyText());
}

Reply run(const CreateBranch& create, const CommandContext& context) {
  try {
    return Reply::done("Branch created: " +
                       context.document.createBranch(create.name, create.checkpointID).name);
  } catch (const UserError& error) {
    return Reply::refused(std::string("Branch failed: ") + error.what());
  }
}

}  // namespace ostrelon::CommandInterpreter
