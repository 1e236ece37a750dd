// The bar above the canvas: the menus, the document's name and branch, the actions used most, and
// the switch of the grid.
#pragma once

#include "app/application.h"
#include "shell/controls.h"
#include "shell/menu_bar.h"

namespace ostrelon {

/// The document's name, a dot while it has unsaved changes, and the branch. The name gives way in
/// its middle, the branch never.
class DocumentTitle final : public QLabel {
 public:
  explicit DocumentTitle(Theme& theme, QWidget* parent = nullptr);
  void setDocument(const QString& name, bool isEdited, const QString& branch);
  /// Without its words the branch is told by its icon, and by the tooltip.
  void setBranchShown(bool shown);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  int fixedWidth() const;

  Theme& theme_;
  QString name_;
  QString branch_;
  bool isEdited_ = false;
  bool isBranchShown_ = true;
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
  void place();

  Application& application_;
  MenuBar* menuBar_;
  DocumentTitle* title_;
  std::vector<Button*> actions_;
  Hairline* divider_;
  Switch* gridSwitch_;
  ScheduledUpdate update_;
};

}  // namespace ostrelon
