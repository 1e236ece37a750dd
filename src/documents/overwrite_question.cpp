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

void askBeforeOverwriting(SketchViewModel& sketch,
                          std::function<void(std::optional<std::string> refusal)> answered) {
  if (!documentChangedOnDisk(sketch)) {
    answered(std::nullopt);
    return;
  }
  const FilePath url = sketch.documentFileURL->value();
  Alert question;
  question.message = quotedName(url) + " has been changed by another program.";
  question.informativeText = "If you overwrite it, what was changed there is lost.";
  question.buttons = {"Cancel", kOverwrite};
  sketch.host().dialogs.ask(question, [url, answered = std::move(answered)](const DialogAnswer& answer) {
    if (answer == kOverwrite) {
      answered(std::nullopt);
    } else {
      answered(changedOnDiskText(url));
    }
  });
}

void askBeforeSwitching(SketchViewModel& sketch, const std::string& nameOrID,
                        std::function<void(std::optional<std::string> refusal)> answered) {
  sketch.refreshDocumentHistory();
  const DocumentHistoryBranch* branch = sketch.documentHistoryState->findBranch(nameOrID);
  const bool writes = !sketch.isDocumentDirty && branch != nullptr &&
                      branch->id != sketch.documentHistoryState->metadata.currentBranchID;
  if (writes) {
    askBeforeOverwriting(sketch, std::move(answered));
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
  host.dialogs.ask(question, [answered = std::move(answered)](const DialogAnswer& answer) {
    answered(answer == kReplace);
  });
}

}  // namespace ostrelon
