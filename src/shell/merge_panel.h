// The panel of a merge under review, in the place of the wall systems: what comes in, the conflicts to
// settle, and Merge and Cancel.
#pragma once

#include <QPointer>
#include <array>

#include "app/application.h"
#include "shell/merge_list.h"
#include "shell/observation.h"
#include "shell/review_panel.h"

namespace ostrelon {

class MainWindow;

class MergePanel final : public ReviewPanel {
  Q_OBJECT

 public:
  MergePanel(Application& application, Theme& theme, QWidget* parent = nullptr);
  MergeRowsView& list() override { return *list_; }
  const MergeListRow* currentRow() const;

 Q_SIGNALS:
  /// A row has been pressed.
  void shown(const ostrelon::MergeListRow& row);

 protected:
  void place() override;

 private:
  void refresh();

  MergeReview& review_;
  TextLabel* heading_;
  TextLabel* name_;
  TextLabel* summary_;
  std::array<Button*, 3> all_;
  MergeListModel* model_;
  MergeRowsView* list_;
  Hairline* line_;
  TextLabel* state_;
  Button* cancel_;
  Button* merge_;
  ScheduledUpdate update_;
};

/// Shows the panel and the preview on the canvas while a merge is under review.
class MergePresenter final : public QObject {
 public:
  MergePresenter(Application& application, Theme& theme, MainWindow& window);

 private:
  void refresh();
  void showOnCanvas();
  void zoomTo(const MergeListRow& row);

  Application& application_;
  Theme& theme_;
  MainWindow& window_;
  QPointer<MergePanel> panel_;
  ScheduledUpdate update_;
};

}  // namespace ostrelon
