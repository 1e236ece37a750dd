// A panel that takes the place of the wall systems at the right of the main window while something is looked
// through: what differs, or what a merge would bring. In a narrow window it folds to a rail with one icon, as
// the wall systems do.
//
//   class ComparisonPanel final : public ReviewPanel { … void place() override; };
//   mainWindow.setReviewPanel(panel);    // the window owns it from now on
//   mainWindow.setReviewPanel(nullptr);  // and deletes it; the wall systems are back
#pragma once

#include <QAbstractItemView>

#include "shell/controls.h"

namespace ostrelon {

class ReviewPanel : public Panel {
  Q_OBJECT

 public:
  static constexpr int kWidth = 300;
  static constexpr int kRailWidth = 44;

  /// `name`: what the panel is called, as "Comparison". `identifier`: its object name; its rail's button is
  /// `identifier`.unfold.
  ReviewPanel(Theme& theme, const QString& name, const QString& identifier, Icon icon, QWidget* parent);
  /// Folds to the rail, or back.
  void setRail(bool rail);
  bool isRail() const { return rail_; }
  /// What is looked through.
  virtual QAbstractItemView& list() = 0;

 Q_SIGNALS:
  /// The rail's button has been pressed.
  void unfoldRequested();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  /// Gives the parts their places, and shows those that are to be seen. Called with every new size, and only
  /// while the panel is unfolded.
  virtual void place() = 0;

 private:
  void settle();

  bool rail_ = false;
  Button* unfoldButton_;
};

}  // namespace ostrelon
