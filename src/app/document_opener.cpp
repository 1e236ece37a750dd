#include "app/document_opener.h"

#include <optional>
#include <utility>

#include "documents/document_reading.h"
#include "documents/document_store.h"

namespace ostrelon {
namespace {

/// Bytes above which a document is read away from the main thread.
constexpr std::uint64_t kLargeDocument = 2 << 20;
/// Work that takes longer is announced by a toast.
constexpr Seconds kLongWork(0.3);

}  // namespace

struct DocumentOpener::Opening {
  explicit Opening(const FilePath& url) : reading(url), name(url.stem().string()) {}

  std::string toast() const { return "Opening " + name + "…"; }

  DocumentReading reading;
  std::string name;
  std::optional<std::string> failure;
  bool hasContentChanged = false;  // since the opening began
  Subscription changes;
};

void DocumentOpener::open(const FilePath& url) {
  giveUp();
  const auto info = settings_.files().info(url);
  if (inBackground_ && info && info->size > kLargeDocument) {
    openInBackground(url);
  } else {
    openDocument(workspace_.document, settings_, url);
  }
}

void DocumentOpener::giveUp() {
  if (!opening_) return;
  task_.cancel();
  clearToast();
  workspace_.messages.append("Stopped opening " + opening_->name + ".", false, true);
  opening_.reset();
}

void DocumentOpener::openInBackground(const FilePath& url) {
  try {
    opening_ = std::make_shared<Opening>(url);
  } catch (const UserError& error) {
    reportOpenFailed(workspace_.document, error.what());
    return;
  }
  opening_->changes =
      workspace_.observe(fieldsOf(workspace_.sketch.drawing),
                         [opening = opening_.get()](FieldMask) { opening->hasContentChanged = true; });
  Scheduler& scheduler = workspace_.host().scheduler;
  toastTask_ = scheduler.after(kLongWork, [this] {
    workspace_.messages.showToast(opening_->toast(), DocumentToastState::Style::saving);
  });
  FileSystem& files = settings_.files();
  task_ = scheduler.inBackground(
      [opening = opening_, &files] {
        try {
          opening->reading.read(files);
        } catch (const std::exception& error) {
          opening->failure = error.what();
        }
      },
      [this, opening = opening_] { finish(opening); });
}

void DocumentOpener::finish(const std::shared_ptr<Opening>& opening) {
  opening->changes = {};
  clearToast();
  opening_.reset();
  if (opening->failure) {
    reportOpenFailed(workspace_.document, *opening->failure);
    return;
  }
  const auto takeOver = [this, opening] {
    // It is part of the opening, and lives as long.
    finishOpening(workspace_.document, settings_,
                  std::shared_ptr<DocumentReading>(opening, &opening->reading));
  };
  if (opening->hasContentChanged) {
    question_.beforeReplacing(takeOver);
  } else {
    takeOver();
  }
}

void DocumentOpener::clearToast() {
  toastTask_.cancel();
  const auto& toast = *workspace_.messages.toast;
  if (toast && toast->message == opening_->toast()) workspace_.messages.clearToast();
}

}  // namespace ostrelon
