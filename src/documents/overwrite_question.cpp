#include "documents/overwrite_question.h"

#include <utility>

#include "documents/document_save.h"
#include "platform/dialogs.h"

namespace ostrelon {
namespace {

constexpr const char* kOverwrite = "Overwrite";

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

}  // namespace ostrelon
