// File → History…: all that exists of the open document at the left, what is chosen of it at the right, and
// what can be done with it.
//
// Everything is read away from the main thread, and anew whenever the document, its file or its history
// changes, and when the window comes to the front.
#pragma once

#include <QWidget>
#include <memory>
#include <optional>
#include <vector>

#include "app/application.h"
#include "app/history_rows.h"
#include "shell/controls.h"
#include "shell/observation.h"

namespace ostrelon {

class DrawingView;
class HistoryList;
class HistoryListModel;
class PictureShelf;

class HistoryWindow final : public QWidget {
  Q_OBJECT

 public:
  HistoryWindow(Application& application, Theme& theme, QWidget* mainWindow);
  ~HistoryWindow() override;
  void open();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  class Buttons;
  struct Reading;  // the rows, being read
  struct Loading;  // a drawing, being read

  QWidget* makeListPanel();
  QWidget* makeDetails();
  Button* addButton(Button::Kind kind, const QString& title, const char* identifier, const QString& toolTip,
                    void (HistoryWindow::*run)());

  void reload();
  void showGroups(HistoryGroups groups);
  void follow();
  void loadDrawing();
  void refreshDetails();
  void refreshStatus();
  const HistoryRow* chosenRow() const;
  /// The drawing of the chosen row, once it has been read.
  const OpenedDocument* chosenDrawing() const;

  void restore();
  void openAsNew();
  void compare();
  void branchFromHere();
  void switchBranch();
  void deleteKept();

  Application& application_;
  Theme& theme_;
  PictureShelf* shelf_;
  HistoryListModel* model_;
  HistoryList* list_;
  TextLabel* failure_ = nullptr;
  TextLabel* empty_ = nullptr;
  QWidget* listPanel_;
  DrawingView* view_;
  TextLabel* title_ = nullptr;
  TextLabel* facts_ = nullptr;
  TextLabel* status_ = nullptr;
  Buttons* buttons_ = nullptr;
  Button* restoreButton_ = nullptr;
  Button* openButton_ = nullptr;
  Button* compareButton_ = nullptr;
  Button* branchButton_ = nullptr;
  Button* switchButton_ = nullptr;
  Button* deleteButton_ = nullptr;

  HistoryGroups shown_;
  std::shared_ptr<Reading> reading_;  // under way
  bool isStale_ = true;               // something has changed since it began
  std::shared_ptr<Loading> loading_;  // under way
  std::shared_ptr<Loading> loaded_;
  /// The window goes once another document has been opened from it: the basis that the open one had.
  std::optional<std::uint64_t> basisBeforeOpening_;

  ScheduledUpdate documentUpdate_;
  ScheduledUpdate settingsUpdate_;
  ScheduledUpdate toastUpdate_;
};

}  // namespace ostrelon
