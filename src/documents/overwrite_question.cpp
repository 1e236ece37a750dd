#include "documents/overwrite_question.h"

#include <utility>

#include "documents/document_save.h"
#include "platform/dialogs.h"

namespace ostrelon {
namespace {

constexpr const char* kOverwrite = "Overwrite";
constexpr const char* kReplace = "Replace";

}  // namespace

std::string changedOnDiskText(const FilePath& url) {
  return quotedName(url) + " has been changed by another program and was not overwritten.";
}

void askBeforeOverwriting(DocumentSession& document,
                          std::function<void(std::optional<std::string> refusal)> answered) {
  if (!documentChangedOnDisk(document)) {
    answered(std::nullopt);
    return;
  }
  const FilePath url = document.fileURL->value();
  Alert question;
  question.message = quotedName(url) + " has been changed by another program.";
  question.informativeText = "If you overwrite it, what was changed there is lost.";
  question.buttons = {"Cancel", kOverwrite};
  question.cancelButton = 0;
  document.host().dialogs.ask(question, [url, answered = std::move(answered)](const DialogAnswer& answer) {
    if (answer == kOverwrite) {
      answered(std::nullopt);
    } else {
      answered(changedOnDiskText(url));
    }
  });
}

void askBeforeSwitching(DocumentSession& document, const std::string& nameOrID,
                        std::function<void(std::optional<std::string> refusal)> answered) {
  document.refreshHistory();
  const DocumentHistoryBranch* branch = document.history->findBranch(nameOrID);
  const bool writes =
      !document.isDirty() && branch != nullptr && branch->id != document.history->metadata.currentBranchID;
  if (writes) {
    askBeforeOverwriting(document, std::move(answered));
  } else {
    answered(std::nullopt);
  }
}

FilePath withEnding(FilePath path, const std::string& ending) {
  const FilePath present = path.extension();
  if (present.empty() || present == ".") path.replace_filename(path.stem().string() + ending);
  return path;
}

void askBeforeReplacing(const Host& host, const FilePath& given, const FilePath& completed,
                        std::function<void(bool mayReplace)> answered) {
  if (completed == given || !host.dialogs.confirmsReplacing() || !host.files.exists(completed)) {
    answered(true);
    return;
  }
  Alert question;
  question.message = quotedName(completed) + " already exists. Do you want to replace it?";
  question.informativeText = "If you replace it, what it holds is lost.";
  question.buttons = {"Cancel", kReplace};
  question.cancelButton = 0;
  host.dialogs.ask(question, [answered = std::move(answered)](const DialogAnswer& answer) {
    answered(answer == kReplace);
  });
}

}  // namespace ostrelon
