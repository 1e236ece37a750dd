#include "documents/document_store.h"

#include <algorithm>
#include <utility>

#include "documents/document_paths.h"
#include "documents/document_reading.h"
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

void saveAsIsOrAsk(SketchViewModel& sketch, AppSettings& settings, bool announce, const SaveDone& done) {
  if (sketch.documentFileURL->has_value()) {
    askBeforeOverwriting(sketch, [&sketch, &settings, announce, done](std::optional<std::string> refusal) {
      if (refusal) {
        reportSaveFailed(sketch, *refusal, announce);
        finish(done, SaveOutcome::cancelled);
        return;
      }
      const std::optional<FilePath> url = sketch.documentFileURL;
      finish(done, url ? outcomeOf(saveToURL(sketch, settings, *url, announce)) : SaveOutcome::cancelled);
    });
    return;
  }
  if (!settings.isProjectsFolderConfigured()) {
    if (announce) sketch.clearDocumentToast();
    saveDocumentAs(sketch, settings, announce, done);
    return;
  }
  finish(done, outcomeOf(saveToFreeName(sketch, settings, announce)));
}

// Runs the work once a toast has been drawn that says that it is under way.
void announceSaving(SketchViewModel& sketch, std::function<void()> work) {
  sketch.showDocumentToast("Saving…", Style::saving);
  sketch.host().scheduler.soon(std::move(work));
}

FilePath startingFolder(const SketchViewModel& sketch, const AppSettings& settings) {
  if (settings.isProjectsFolderConfigured()) return **settings.projectsFolderURL;
  if (sketch.documentFileURL->has_value()) return (*sketch.documentFileURL)->parent_path();
  return {};
}

struct RecentFile {
  FilePath path;
  std::int64_t modifiedNanoseconds = 0;
};

}  // namespace

void saveCurrentDocument(SketchViewModel& sketch, AppSettings& settings, bool announce, SaveDone done) {
  if (!announce) {
    saveAsIsOrAsk(sketch, settings, false, done);
    return;
  }
  announceSaving(
      sketch, [&sketch, &settings, done = std::move(done)] { saveAsIsOrAsk(sketch, settings, true, done); });
}

void saveDocumentAs(SketchViewModel& sketch, AppSettings& settings, bool announce, SaveDone done) {
  SavePanel panel;
  panel.startingFolder = startingFolder(sketch, settings);
  panel.suggestedName = sketch.documentName.get() + kDocumentExtension;
  sketch.setSaveDialogActive(true);
  sketch.host().dialogs.ask(
      panel, [&sketch, &settings, announce, done = std::move(done)](const DialogAnswer& answer) {
        if (!answer || answer->empty()) {
          sketch.setSaveDialogActive(false);
          finish(done, SaveOutcome::cancelled);
          return;
        }
        const FilePath url = withEnding(*answer, kDocumentExtension);
        askBeforeReplacing(sketch.host(), *answer, url, [&sketch, &settings, announce, done, url](bool may) {
          sketch.setSaveDialogActive(false);
          if (!may) {
            finish(done, SaveOutcome::cancelled);
            return;
          }
          const auto save = [&sketch, &settings, announce, done, url] {
            finish(done, outcomeOf(saveToURL(sketch, settings, url, announce)));
          };
          if (announce) {
            announceSaving(sketch, save);
          } else {
            save();
          }
        });
      });
}

std::optional<std::string> saveToURL(SketchViewModel& sketch, AppSettings& settings, const FilePath& url,
                                     bool announce) {
  try {
    sketch.saveDocumentFile(url);
  } catch (const UserError& error) {
    return reportSaveFailed(sketch, error.what(), announce);
  }
  reportSaved(sketch, settings, announce);
  return std::nullopt;
}

std::optional<std::string> saveToFreeName(SketchViewModel& sketch, AppSettings& settings, bool announce) {
  try {
    for (bool isSaved = false; !isSaved;) {
      try {
        sketch.saveDocumentFile(nextUntitledURL(settings.files(), **settings.projectsFolderURL));
        isSaved = true;
      } catch (const NameTakenError&) {
        // Another window was quicker: the next name may be free.
      }
    }
  } catch (const UserError& error) {
    return reportSaveFailed(sketch, error.what(), announce);
  }
  reportSaved(sketch, settings, announce);
  return std::nullopt;
}

void reportSaved(SketchViewModel& sketch, AppSettings& settings, bool announce) {
  settings.rememberDocumentBookmark(sketch.documentFileURL->value());
  sketch.refreshDocumentHistory();
  const std::string text = "Saved " + sketch.documentName.get();
  sketch.appendConsoleLine(text + ".", false, true);
  if (announce) sketch.showDocumentToast(text, Style::success);
}

std::string reportSaveFailed(SketchViewModel& sketch, const std::string& description, bool announce) {
  std::string text = "Save failed: " + description;
  sketch.appendConsoleLine(text, true, false);
  if (announce) sketch.showDocumentToast(text, Style::error);
  return text;
}

std::optional<std::string> openDocument(SketchViewModel& sketch, AppSettings& settings, const FilePath& url) {
  try {
    DocumentReading reading(url);
    reading.read(sketch.host().files);
    finishOpening(sketch, settings, reading);
    return std::nullopt;
  } catch (const UserError& error) {
    return reportOpenFailed(sketch, error.what());
  }
}

void finishOpening(SketchViewModel& sketch, AppSettings& settings, DocumentReading& reading) {
  sketch.finishDocumentOpening(reading);
  settings.rememberDocumentBookmark(sketch.documentFileURL->value());
  sketch.refreshDocumentHistory();
  sketch.appendConsoleLine("Opened " + sketch.documentName.get() + ".", false, true);
}

std::string reportOpenFailed(SketchViewModel& sketch, const std::string& description) {
  std::string text = "Open failed: " + description;
  sketch.appendConsoleLine(text, true, false);
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
