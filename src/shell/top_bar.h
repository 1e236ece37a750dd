// The bar above the canvas: the menus, the document's name and branch, the actions used most, and
// the switch of the grid.
#pragma once

#include "app/application.h"
#include "shell/controls.h"
#include "shell/menu_bar.h"

namespace ostrelon {

/// The document's name, a dot while it has unsaved changes, and the branch. Where not both fit, the branch is
/// cut first, at its end, and then the name, in its middle; last the branch is shown by its icon alone. The
/// tooltip holds both as they are. The branch is a button.
class DocumentTitle final : public QLabel {
 public:
  explicit DocumentTitle(Theme& theme, QWidget* parent = nullptr);
  void setDocument(const QString& name, bool isEdited, const QString& branch);
  /// The branch, which can be pressed.
  QPushButton& branchButton();
  QSize sizeHint() const override;
  /// Below this width, px, the name or the branch is hard to read.
  int readableWidth() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  class BranchButton;
  struct Room {
    int name = 0;
    int branch = 0;  ///< none where no word fits
  };
  Room roomForWords(int width) const;
  Room wholeWords() const;
  /// What the marks take, and their gaps.
  int marksWidth() const;
  void placeBranch();

  Theme& theme_;
  BranchButton* branchButton_;
  QString name_;
  QString branch_;
  bool isEdited_ = false;
};

class TopMenuBarView final : public Panel {
 public:
  static constexpr int kHeight = 44;

  TopMenuBarView(Application& application, Theme& theme, QWidget* parent = nullptr);
  /// The key hints fold away in a narrow window.
  void setKeyHintsVisible(bool visible);
  MenuBar& menuBar() { return *menuBar_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void refresh();
  void refreshGrid();
  void place();
  /// Places what is to the right of the title. Gives the x at which the title has to end.
  int placeActions(bool isTight);

  Application& application_;
  MenuBar* menuBar_;
  DocumentTitle* title_;
  std::vector<Button*> actions_;
  Hairline* divider_;
  Switch* gridSwitch_;
  ScheduledUpdate update_;
  ScheduledUpdate gridUpdate_;
};

}  // namespace ostrelon
