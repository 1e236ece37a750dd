// The sheets of the start: where projects are kept, and the offers to bring back what a crash has left: the
// journals of unsaved changes, and the last auto-save.
#pragma once

#include <QPointer>

#include "app/application.h"
#include "shell/dialog_sheet.h"

namespace ostrelon {

/// Asks for a projects folder. Stays until one has been set.
class ProjectsFolderSetupView final : public DialogSheet {
 public:
  ProjectsFolderSetupView(Application& application, Theme& theme, QWidget& window);

 private:
  void showError(const QString& sentence);
  TextLabel* error_;
};

/// Offers the last auto-saved document after a session that did not end cleanly.
class AutoSaveRecoverySheet final : public DialogSheet {
 public:
  AutoSaveRecoverySheet(Application& application, Theme& theme, QWidget& window);
};

/// Offers the unsaved changes of programs that have died, each to recover or to discard.
class JournalRecoverySheet final : public DialogSheet {
 public:
  JournalRecoverySheet(Application& application, Theme& theme, QWidget& window);
};

/// Shows the sheets that the application asks for, the first-run sheet first, the last auto-save last.
class SheetPresenter final : public QObject {
 public:
  SheetPresenter(Application& application, Theme& theme, QWidget& window);

 private:
  void refresh();

  Application& application_;
  Theme& theme_;
  QWidget& window_;
  QPointer<DialogSheet> setup_;
  QPointer<DialogSheet> journals_;
  std::vector<RecoverableJournal> shownJournals_;
  QPointer<DialogSheet> recovery_;
  Subscription subscription_;
};

}  // namespace ostrelon
