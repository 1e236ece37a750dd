// What lies over the canvas: badges that show the state, the controls of the view, the align bar, the length
// label with its editor, and the toast.
#pragma once

#include <QVariantAnimation>

#include "app/application.h"
#include "shell/badge.h"
#include "shell/controls.h"
#include "shell/observation.h"

namespace ostrelon {

/// The label of the hovered entity near the pointer. `accent` fills it to stand out.
class EntityHoverLabel final : public Badge {
 public:
  EntityHoverLabel(Theme& theme, QWidget* parent);
  void show(const QString& label, bool accent);
};

/// The message that slides in over the canvas.
class ToastView final : public QLabel {
 public:
  ToastView(Theme& theme, QWidget* parent);
  /// `isKept`: a drawing has just been kept, which is told below the message, or alone.
  void setToast(std::optional<DocumentToastState> toast, bool isKept = false);
  /// Where the toast rests: the middle of its bottom edge, in the parent.
  void setAnchor(QPoint bottomMiddle, int canvasWidth);
  bool isShown() const { return toast_.has_value(); }
  /// The width that it takes on a canvas of this width, px.
  int wantedWidth(int canvasWidth) const;
  /// Its card without the shadow, in the parent.
  QRect card() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void timerEvent(QTimerEvent* event) override;

 private:
  void place();
  int cardHeight() const;

  Theme& theme_;
  std::optional<DocumentToastState> toast_;
  bool hasNote_ = false;
  QPoint anchor_;
  int canvasWidth_ = 720;
  QVariantAnimation slide_;
  int spinnerTimer_ = 0;
  int spinnerAngle_ = 0;
};

/// The plain button of the viewport cluster: 28 by 24.
class ViewportButton final : public Button {
 public:
  ViewportButton(Theme& theme, const QString& title, Icon icon, const QString& identifier, QWidget* parent);
  QSize sizeHint() const override { return {28, 24}; }
};

class CanvasOverlay final : public QObject {
  Q_OBJECT

 public:
  /// `canvas`: the widget over which everything lies.
  CanvasOverlay(Application& application, Theme& theme, QWidget& canvas);

  /// Places everything anew. The window calls it when the canvas has a new size.
  void place();

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void refresh();
  void refreshStatus();
  void refreshPointerBadges();
  void refreshSegmentLabel();
  void refreshViewport();
  void placePointerBadges();
  void beginLengthEdit();

  Application& application_;
  Workspace& workspace_;
  Theme& theme_;
  QWidget& canvas_;

  Badge* status_;
  Badge* coordinates_;
  Badge* trimInstruction_;
  Badge* snapFeedback_;
  Badge* measurement_;
  EntityHoverLabel* hoverLabel_;
  BadgeBox* alignBar_;
  Button* alignHorizontal_;
  Button* alignVertical_;
  BadgeBox* viewport_;
  TextLabel* gridScale_;
  TextLabel* percentage_;
  Button* lengthLabel_;
  Field* lengthEditor_;
  Badge* lengthError_;
  ToastView* toast_;
  ScheduledUpdate update_;
  Subscription keptNotice_;
};

}  // namespace ostrelon
