#include "documents/document_store.h"

#include <algorithm>
#include <utility>

#include "documents/document_paths.h"
#include "documents/document_reading.h"
#include "documents/kept_question.h"
#include "documents/overwrite_question.h"
#include "platform/dialogs.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

using Style = DocumentToastState::Style;

void finish(const SaveDone& done, SaveOutcome outcome) {
  if (done) done(outcome);
}

SaveOutcome outcomeOf(const std::optional<std::string>& failure) {
  return failure ? SaveOutcome::failed : SaveOutcome::saved;
}

// Saves over what may have to be kept first.
void saveOver(DocumentSession& document, AppSettings& settings, const FilePath& url, bool announce,
              const SaveDone& done) {
  runKeepingOrAsking(
      document,
      [&document, &settings, url, announce, done] {
        document.save(url);
        reportSaved(document, settings, announce);
        finish(done, SaveOutcome::saved);
      },
      [&document, announce, done](const std::string& refusal) {
        reportSaveFailed(document, refusal, announce);
        finish(done, SaveOutcome::failed);
      });
}

void saveAsIsOrAsk(DocumentSession& document, AppSettings& settings, bool announce, const SaveDone& done) {
  if (document.fileURL->has_value()) {
    askBeforeOverwriting(document,
                         [&document, &settings, announce, done](std::optional<std::string> refusal) {
                           if (refusal) {
                             reportSaveFailed(document, *refusal, announce);
                             finish(done, SaveOutcome::cancelled);
                             return;
                           }
                           const std::optional<FilePath> url = document.fileURL;
                           if (url) {
                             saveOver(document, settings, *url, announce, done);
                           } else {
                             finish(done, SaveOutcome::cancelled);
                           }
                         });
    return;
  }
  if (!settings.isProjectsFolderConfigured()) {
    if (announce) document.messages().clearToast();
    saveDocumentAs(document, settings, announce, done);
    return;
  }
  finish(done, outcomeOf(saveToFreeName(document, settings, announce)));
}

// Runs the work once a toast has been drawn that says that it is under way.
void announceSaving(DocumentSession& document, std::function<void()> work) {
  document.messages().showToast("Saving…", Style::saving);
  document.host().scheduler.soon(std::move(work));
}

FilePath startingFolder(const DocumentSession& document, const AppSettings& settings) {
  if (settings.isProjectsFolderConfigured()) return **settings.projectsFolderURL;
  if (document.fileURL->has_value()) return (*document.fileURL)->parent_path();
  return {};
}

struct RecentFile {
  FilePath path;
  std::int64_t modifiedNanoseconds = 0;
};

}  // namespace

void saveCurrentDocument(DocumentSession& document, AppSettings& settings, bool announce, SaveDone done) {
  if (!announce) {
    saveAsIsOrAsk(document, settings, false, done);
    return;
  }
  announceSaving(document, [&document, &settings, done = std::move(done)] {
    saveAsIsOrAsk(document, settings, true, done);
  });
}

void saveDocumentAs(DocumentSession& document, AppSettings& settings, bool announce, SaveDone done) {
  SavePanel panel;
  panel.startingFolder = startingFolder(document, settings);
  panel.suggestedName = document.name.get() + kDocumentExtension;
  document.setSaveDialogActive(true);
  document.host().dialogs.ask(panel, [&document, &settings, announce,
                                      done = std::move(done)](const DialogAnswer& answer) {
    if (!answer || answer->empty()) {
      document.setSaveDialogActive(false);
      finish(done, SaveOutcome::cancelled);
      return;
    }
    const FilePath url = withEnding(*answer, kDocumentExtension);
    askBeforeReplacing(document.host(), *answer, url, [&document, &settings, announce, done, url](bool may) {
      document.setSaveDialogActive(false);
      if (!may) {
        finish(done, SaveOutcome::cancelled);
        return;
      }
      const auto save = [&document, &settings, announce, done, url] {
        saveOver(document, settings, url, announce, done);
      };
      if (announce) {
        announceSaving(document, save);
      } else {
        save();
      }
    });
  });
}

std::optional<std::string> saveToURL(DocumentSession& document, AppSettings& settings, const FilePath& url,
                                     bool announce) {
  try {
    document.save(url);
  } catch (const UserError& error) {
    return reportSaveFailed(document, error.what(), announce);
  }
  reportSaved(document, settings, announce);
  return std::nullopt;
}

std::optional<std::string> saveToFreeName(DocumentSession& document, AppSettings& settings, bool announce) {
  try {
    for (bool isSaved = false; !isSaved;) {
      try {
        document.save(nextUntitledURL(settings.files(), **settings.projectsFolderURL));
        isSaved = true;
      } catch (const NameTakenError&) {
        // Another window was quicker: the next name may be free.
      }
    }
  } catch (const UserError& error) {
    return reportSaveFailed(document, error.what(), announce);
  }
  reportSaved(document, settings, announce);
  return std::nullopt;
}

void reportSaved(DocumentSession& document, AppSettings& settings, bool announce) {
  settings.rememberDocumentBookmark(document.fileURL->value());
  document.refreshHistory();
  const std::string text = "Saved " + document.name.get();
  document.messages().append(text + ".", false, true);
  if (announce) document.messages().showToast(text, Style::success);
}

std::string reportSaveFailed(DocumentSession& document, const std::string& description, bool announce) {
  std::string text = "Save failed: " + description;
  document.messages().append(text, true, false);
  if (announce) document.messages().showToast(text, Style::error);
  return text;
}

std::optional<std::string> openDocument(DocumentSession& document, AppSettings& settings,
                                        const FilePath& url) {
  try {
    const auto reading = std::make_shared<DocumentReading>(url);
    reading->read(document.host().files);
    return finishOpening(document, settings, reading);
  } catch (const UserError& error) {
    return reportOpenFailed(document, error.what());
  }
}

std::optional<std::string> finishOpening(DocumentSession& document, AppSettings& settings,
                                         const std::shared_ptr<DocumentReading>& reading) {
  const auto failure = std::make_shared<std::optional<std::string>>();
  runKeepingOrAsking(
      document,
      [&document, &settings, reading] {
        document.finishOpening(*reading);
        settings.rememberDocumentBookmark(document.fileURL->value());
        document.refreshHistory();
        document.messages().append("Opened " + document.name.get() + ".", false, true);
      },
      [&document, failure](const std::string& refusal) { *failure = reportOpenFailed(document, refusal); });
  return *failure;
}

std::string reportOpenFailed(DocumentSession& document, const std::string& description) {
  std::string text = "Open failed: " + description;
  document.messages().append(text, true, false);
  return text;
}

FilePath nextUntitledURL(FileSystem& files, const FilePath& folder) {
  FilePath url = folder / (std::string(kUntitledName) + kDocumentExtension);
  for (int number = 1; files.isTaken(url); ++number) {
    url = folder / (std::string(kUntitledName) + " (" + std::to_string(number) + ")" + kDocumentExtension);
  }
  return url;
}

std::vector<FilePath> recentDocuments(const AppSettings& settings, std::int64_t limit) {
  if (!settings.isProjectsFolderConfigured()) {
    throw DocumentFileStoreError(DocumentFileStoreError::Case::projectsFolderNotConfigured);
  }
  if (limit < 1) return {};
  const FilePath folder = **settings.projectsFolderURL;
  FileSystem& files = settings.files();
  std::vector<RecentFile> found;
  for (const std::string& name : files.list(folder)) {
    if (name.starts_with('.') || !hasDocumentExtension(name)) continue;
    const auto info = files.info(folder / name);
    if (!info || !info->isRegularFile) continue;
    found.push_back({standardizedPath(folder / name), info->modifiedNanoseconds});
  }
  const auto isBefore = [](const RecentFile& a, const RecentFile& b) {
    if (a.modifiedNanoseconds != b.modifiedNanoseconds) return a.modifiedNanoseconds > b.modifiedNanoseconds;
    return compareForPeople(a.path.filename().string(), b.path.filename().string()) < 0;
  };
  const auto count =
      static_cast<std::ptrdiff_t>(std::min<std::uint64_t>(found.size(), static_cast<std::uint64_t>(limit)));
  std::partial_sort(found.begin(), found.begin() + count, found.end(), isBefore);
  std::vector<FilePath> recent;
  for (std::ptrdiff_t index = 0; index < count; ++index) {
    recent.push_back(std::move(found[static_cast<std::size_t>(index)].path));
  }
  return recent;
}

}  // namespace ostrelon
