// The main window: navigation at the left, the bar above, the canvas with its console strip, and the
// wall systems at the right. It is laid out by arithmetic, since its panels fold by the window's width.
#pragma once

#include <QWidget>
#include <memory>

#include "app/application.h"
#include "app/swallowed_letters.h"
#include "shell/canvas_overlay.h"
#include "shell/canvas_widget.h"
#include "shell/console_panel.h"
#include "shell/left_nav_view.h"
#include "shell/review_panel.h"
#include "shell/top_bar.h"
#include "shell/wall_system_panel.h"

namespace ostrelon {

class MainWindow final : public QWidget {
  Q_OBJECT

 public:
  MainWindow(Application& application, Theme& theme, QWidget* parent = nullptr);
  ~MainWindow() override;

  CanvasWidget& canvas() { return *canvas_; }
  ConsoleView& console() { return *console_; }
  TopMenuBarView& topBar() { return *topBar_; }
  LeftNavView& navigation() { return *navigation_; }
  WallSystemPanelView& wallSystems() { return *wallSystems_; }

  /// Puts a panel in the place of the wall systems, instead of one that is there, which is deleted; null
  /// brings the wall systems back.
  void setReviewPanel(ReviewPanel* panel);
  ReviewPanel* reviewPanel() { return review_; }
  /// Shows it whole where it has folded to its rail, and gives its list the focus.
  void unfoldReviewPanel();

  /// The size and place of the window and its panels, as the last run left them.
  void restoreLayout();
  void saveLayout();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void place();
  void refreshTitle();
  void centreNewView();
  void unfold(QWidget* panel);
  void foldBack();
  bool takesClickToFold(const QEvent& event);
  bool routeKey(QKeyEvent& event, QWidget* receiver);
  bool typeIntoConsole(const QKeyEvent& event);

  Application& application_;
  Theme& theme_;
  LeftNavView* navigation_;
  TopMenuBarView* topBar_;
  CanvasWidget* canvas_;
  CanvasOverlay* overlay_;
  ConsoleView* console_;
  WallSystemPanelView* wallSystems_;
  ReviewPanel* review_ = nullptr;
  QWidget* unfolded_ = nullptr;  // a folded panel that lies unfolded over the canvas
  bool isFoldingClick_ = false;  // the button is held with which a panel was folded
  SwallowedLetters swallowedLetters_;
  QWidget* unfoldedShadow_;
  bool hasAppeared_ = false;
  bool mayClose_ = false;  // the question has been answered
  ScheduledUpdate titleUpdate_;
  ScheduledUpdate viewUpdate_;
};

}  // namespace ostrelon
