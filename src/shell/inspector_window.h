// The floating window that shows what is selected and offers edits on it.
#pragma once

#include <QStackedWidget>
#include <vector>

#include "app/inspector.h"
#include "shell/controls.h"
#include "shell/observation.h"
#include "shell/opening_page.h"
#include "shell/picker.h"

class QGridLayout;

namespace ostrelon {

class EntityInspectorView final : public QWidget {
  Q_OBJECT

 public:
  static constexpr int kWidth = 304;

  EntityInspectorView(Workspace& workspace, Theme& theme, QWidget* parent = nullptr);

 Q_SIGNALS:
  /// The content asks for another height.
  void heightChanged();

 private:
  QWidget* makeEmptyPage();
  QWidget* makeManyPage();
  QWidget* makeOnePage();
  void refresh();
  void showEntity(const SketchEntity& entity);
  void fitPage();
  void showMetricRows(const std::vector<InspectorMetricRow>& rows);
  Button* addAction(QWidget& page, Button::Kind kind, const QString& title, const char* identifier);

  Workspace& workspace_;
  Theme& theme_;
  QStackedWidget* pages_;

  QWidget* emptyPage_ = nullptr;
  QWidget* manyPage_ = nullptr;
  QWidget* onePage_ = nullptr;
  OpeningPage* openingPage_ = nullptr;

  TextLabel* manyHeading_ = nullptr;

  QLabel* kindIcon_ = nullptr;
  Icon shownIcon_ = Icon::none;
  TextLabel* name_ = nullptr;
  QGridLayout* metrics_ = nullptr;
  std::vector<TextLabel*> metricLabels_;
  std::vector<TextLabel*> metricValues_;
  TextLabel* systemLabel_ = nullptr;
  Picker* systemPicker_ = nullptr;
  QWidget* lengthRow_ = nullptr;
  Field* lengthField_ = nullptr;
  Field* nudgeX_ = nullptr;
  Field* nudgeY_ = nullptr;
  Button* convertButton_ = nullptr;
  std::optional<SketchEntity> shown_;
  ScheduledUpdate update_;
};

/// The window around it: a tool window over the main one.
class InspectorWindow final : public QWidget {
  Q_OBJECT

 public:
  InspectorWindow(Workspace& workspace, Theme& theme, QWidget* mainWindow);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void followFlag();
  void placeClear();
  void fitContent();

  Workspace& workspace_;
  EntityInspectorView* view_;
  bool wasPlaced_ = false;
  ScheduledUpdate update_;
};

}  // namespace ostrelon
