// The panel at the left: the mark, the tools, the entities of the document, and what the coordinates
// mean. In a narrow window it folds to a rail of tool icons.
#pragma once

#include <algorithm>
#include <optional>
#include <vector>

#include "app/workspace.h"
#include "shell/controls.h"
#include "shell/entity_list_model.h"
#include "shell/observation.h"
#include "shell/rows_view.h"

namespace ostrelon {

class EntityRowsView;

/// The row of one tool.
class NavToolRow final : public QPushButton {
 public:
  NavToolRow(Theme& theme, SketchTool tool, QWidget* parent = nullptr);
  SketchTool tool() const { return tool_; }
  void setIconOnly(bool iconOnly);
  QSize sizeHint() const override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  Theme& theme_;
  SketchTool tool_;
  bool iconOnly_ = false;
};

/// The mark and the name of the program.
class OstrelLogoView final : public QWidget {
 public:
  explicit OstrelLogoView(Theme& theme, QWidget* parent = nullptr);
  void setMarkOnly(bool markOnly);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Theme& theme_;
  bool markOnly_ = false;
};

class LeftNavView final : public Panel {
  Q_OBJECT

 public:
  static constexpr int kWidth = 220;
  static constexpr int kRailWidth = 52;

  LeftNavView(Workspace& workspace, Theme& theme, QWidget* parent = nullptr);

  /// As a rail it shows the icons of the tools, and an icon at its foot that asks for the whole panel.
  void setRail(bool rail);
  bool isRail() const { return rail_; }

 Q_SIGNALS:
  void unfoldRequested();

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void refresh();
  void place();
  void chooseRow(int row);

  Workspace& workspace_;
  bool rail_ = false;
  OstrelLogoView* logo_;
  Hairline* logoLine_;
  TextLabel* toolsHeading_;
  std::vector<NavToolRow*> toolRows_;
  TextLabel* entitiesHeading_;
  TextLabel* emptyText_;
  EntityListModel* model_;
  EntityRowsView* list_ = nullptr;
  Hairline* coordinatesLine_;
  TextLabel* coordinatesHeading_;
  TextLabel* originText_;
  TextLabel* gesturesText_;
  Button* unfoldButton_ = nullptr;
  std::optional<UUID> shownSelection_;  // what the list has scrolled to last
  ScheduledUpdate update_;
};

}  // namespace ostrelon
