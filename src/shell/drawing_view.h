// A drawing to look at: the wheel zooms, dragging moves it, and so do the keys + − 0 and the arrows. It is
// painted as on the canvas, what is much on a thread of its own.
#pragma once

#include <QWidget>
#include <memory>
#include <optional>

#include "core/drawing.h"
#include "core/entity_index.h"
#include "shell/controls.h"
#include "shell/entity_picture.h"

namespace ostrelon {

class BadgeBox;

class DrawingView final : public QWidget {
  Q_OBJECT

 public:
  explicit DrawingView(Theme& theme, QWidget* parent = nullptr);
  ~DrawingView() override;

  /// Shows the drawing. A view that was moved stays where it is, as long as it shows any of this drawing.
  void setDrawing(Drawing drawing);
  /// Shows a sentence in the place of a drawing.
  void setNotice(const QString& sentence);
  const SketchViewport& viewport() const { return view_; }
  void zoom(double factor, QPointF about);
  void fit();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool event(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  class Joining;
  void joinWalls();
  SketchSize canvasSize() const { return {static_cast<double>(width()), static_cast<double>(height())}; }
  void moveBy(QPointF points);
  bool showsAnything() const;

  Theme& theme_;
  std::optional<Drawing> drawing_;
  DrawingLook look_;
  std::unique_ptr<Joining> joining_;  // while the walls of a large drawing are being joined
  std::optional<SketchBox> bounds_;   // of the drawing
  QString notice_;
  SketchViewport view_;
  bool isFitted_ = true;  // follows the size of the window
  std::optional<QPointF> dragFrom_;
  EntityIndex index_;  // over nothing: large drawings are painted by a thread
  EntityPicture picture_;
  BadgeBox* buttons_;
};

}  // namespace ostrelon
