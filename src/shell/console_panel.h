// The strip under the canvas: a grip to resize it, a heading with its buttons, the transcript, and
// the line where commands are typed.
#pragma once

#include "app/console_input.h"
#include "app/workspace.h"
#include "shell/console_transcript_model.h"
#include "shell/controls.h"
#include "shell/observation.h"
#include "shell/rows_view.h"

namespace ostrelon {

inline constexpr double kConsoleDefaultHeight = 180;
inline constexpr double kConsoleMinimumHeight = 120;
inline constexpr double kConsoleMaximumHeight = 560;

/// The strip with the grip. Drags are reported as distances upward, px.
class ConsoleResizeHandle final : public QWidget {
  Q_OBJECT

 public:
  explicit ConsoleResizeHandle(Theme& theme, QWidget* parent = nullptr);

 Q_SIGNALS:
  void dragged(double distanceUp);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  Theme& theme_;
  std::optional<double> lastMouseY_;
};

/// The lines of the transcript, wrapped to the width. Rows can be selected and copied.
class TranscriptView final : public RowsView {
 public:
  TranscriptView(Theme& theme, ConsoleTranscriptModel& model, QWidget* parent = nullptr);
  /// True while the last line is in sight, so that new lines are followed.
  bool isAtEnd() const;
  /// Measures lines that have come since, and shows the last one.
  void followEnd();

 protected:
  int rowTop(int row) const override;
  int rowHeight(int row) const override;
  int rowAt(int y) const override;
  int contentHeight() const override;
  void paintRow(QPainter& painter, const QRect& box, int row, bool isHovered) override;
  void resizeEvent(QResizeEvent* event) override;
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  void measure() const;
  void copySelected() const;
  int columns() const;

  ConsoleTranscriptModel& model_;
  int characterWidth_;
  mutable int measuredColumns_ = 0;
  mutable std::vector<int> bottoms_;  // where each row ends, the gap after it included
};

class ConsoleView final : public Panel {
  Q_OBJECT

 public:
  ConsoleView(Workspace& workspace, Theme& theme, QWidget* parent = nullptr);

  /// The height that the user gave the panel, px.
  double panelHeight() const { return height_; }
  void setPanelHeight(double height);
  QLineEdit* input() { return input_; }

 Q_SIGNALS:
  void panelHeightChanged();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void refresh();
  void run();
  bool handleInputKey(const QKeyEvent& event);
  void complete();
  void showInput(const QString& text);

  Workspace& workspace_;
  double height_ = kConsoleDefaultHeight;
  ConsoleRecall recall_;
  ConsoleCompleter completer_;
  ConsoleResizeHandle* handle_;
  TextLabel* heading_;
  Button* defaultHeightButton_;
  Button* focusButton_;
  ConsoleTranscriptModel* model_;
  TranscriptView* transcript_;
  Field* input_;
  Button* runButton_;
  ScheduledUpdate update_;
};

}  // namespace ostrelon
