// The panel of a comparison: what differs, in rows by group, what to show of it, and what can be taken.
#pragma once

#include <QAbstractListModel>
#include <QPointer>
#include <QSlider>
#include <QVariantAnimation>
#include <vector>

#include "app/application.h"
#include "shell/main_window.h"
#include "shell/observation.h"
#include "shell/picker.h"
#include "shell/review_panel.h"
#include "shell/rows_view.h"

namespace ostrelon {

class ComparisonRowsView;

/// The rows of the list: the heading of each group, and its differences.
class ComparisonListModel final : public QAbstractListModel {
  Q_OBJECT

 public:
  struct Row {
    QString heading;      ///< of a group; empty for a difference
    std::size_t row = 0;  ///< among those of the comparison: the difference, or a group's first
    int top = 0;          ///< px
    DifferenceKind kind = DifferenceKind::changed;
    QString label;  ///< "Wall 18"
    QString words;  ///< "moved 2' right, 1' longer"
  };

  explicit ComparisonListModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}
  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  const Row& row(int row) const { return rows_[static_cast<std::size_t>(row)]; }
  int height() const { return height_; }
  /// The list row of a difference; -1 where there is none.
  int rowOf(std::optional<std::size_t> difference) const;
  std::optional<std::size_t> current() const { return current_; }

  void show(const ComparedDrawings& compared);
  void setCurrent(std::optional<std::size_t> difference);

 private:
  std::vector<Row> rows_;
  int height_ = 0;
  std::optional<std::size_t> current_;
};

/// A slider of one pixel's track and a round knob.
class BlendSlider final : public QSlider {
 public:
  explicit BlendSlider(Theme& theme, QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  Theme& theme_;
};

class ComparisonPanel final : public ReviewPanel {
  Q_OBJECT

 public:
  ComparisonPanel(Comparison& comparison, Theme& theme, QWidget* parent = nullptr);
  QAbstractItemView& list() override;

 protected:
  void place() override;

 private:
  void refresh();
  void applyFilter();

  Comparison& comparison_;
  TextLabel* heading_;
  Button* endButton_;
  TextLabel* title_;
  TextLabel* counts_;
  Picker* kinds_;
  Picker* entities_;
  ComparisonListModel* model_;
  ComparisonRowsView* list_;
  TextLabel* emptyText_;
  TextLabel* otherLabel_;
  TextLabel* openLabel_;
  BlendSlider* blend_;
  Button* previous_;
  Button* next_;
  Button* takeThis_;
  Button* takeBack_;
  std::shared_ptr<const ComparedDrawings> shown_;
  ScheduledUpdate update_;
};

/// Shows the application's comparison in the main window: on the canvas, and in a panel.
class ComparisonPresenter final : public QObject {
 public:
  ComparisonPresenter(Application& application, Theme& theme, MainWindow& window);

 private:
  void refresh();
  void showBlend(double blend);

  Application& application_;
  Theme& theme_;
  MainWindow& window_;
  QPointer<ComparisonPanel> panel_;
  QVariantAnimation blending_;
  bool wasBeforeHeld_ = false;
  ScheduledUpdate update_;
};

}  // namespace ostrelon
