// The canvas: paints the board's state and hands pointer events to it.
//
// Grid and entities are kept as pictures; hover, selection, drafts and snaps are painted live over
// them, so a pointer that moves costs two copies and a few strokes. The wheel scrolls, and zooms with
// Ctrl held; the middle button drags the view. Badges and controls are child
// widgets of the canvas; they lie over the drawing, and those that set
// `Qt::WA_TransparentForMouseEvents` let the pointer through.
#pragma once

#include <QRegion>
#include <QWidget>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>

#include "core/observable.h"
#include "core/theme_palette.h"
#include "geometry/openings.h"
#include "interaction/annotation_painting.h"
#include "interaction/canvas_gestures.h"
#include "interaction/difference_layers.h"
#include "shell/entity_picture.h"

namespace ostrelon {

class Board;

/// A difference that the canvas shows in the place of the plain entities. One side of it is the board's
/// drawing, of which the layers name what differs; the rest of the drawing is faded.
struct CanvasDifference {
  std::shared_ptr<const DifferenceLayers> layers;
  double blend = kBothSides;           ///< 0 for the drawing before, 1 for the one after
  std::optional<std::size_t> current;  ///< the item that is looked at
  friend bool operator==(const CanvasDifference&, const CanvasDifference&) = default;
};

class CanvasWidget : public QWidget {
  Q_OBJECT

 public:
  /// `board` must outlive the widget.
  explicit CanvasWidget(Board& board, QWidget* parent = nullptr);
  ~CanvasWidget() override;

  const ThemePalette& themePalette() const { return palette_; }
  void setThemePalette(const ThemePalette& palette);

  /// Shows a difference from now on, or none. Its layers are painted away from the main thread where they are
  /// large; another blend repaints nothing.
  void setDifference(std::optional<CanvasDifference> difference);
  const std::optional<CanvasDifference>& difference() const { return difference_; }

  /// Paints all that is still being painted in pieces. For tests and for pictures of the window.
  void finishPainting();
  /// The canvas shows its state exactly, with nothing left to be painted in pieces.
  bool isExact() const { return isExact_; }

 Q_SIGNALS:
  /// The canvas has a new size, which the board knows already. For laying out what lies over it.
  void resized();
  /// A secondary click on an entity, which is selected by now.
  void contextMenuRequested(const ContextMenu& menu, const QPoint& globalPosition);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  bool event(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  PictureView view() const;
  /// To be called from any thread.
  std::function<void()> repaintLater();
  void boardChanged(FieldMask fields);
  /// Follow the drag and the selection. True when other entities are dragged or selected than before.
  bool takeDragged();
  bool takeSelected();
  /// The selection is too large to be painted live.
  bool isSelectionPicture() const;
  void updateCursor();

  /// Brings the pictures up to the state, as far as that can be done within the time of a frame.
  void updatePictures(EntityPicture::Deadline deadline);
  void updateGrid(const PictureView& view);
  bool updateDifference(const PictureView& view, EntityPicture::Deadline deadline);
  void updateClouds(const PictureView& view);
  void paintDifference(QPainter& painter, const PictureView& view) const;
  /// What the picture of the entities leaves out.
  void leaveOut();
  std::array<EntityPicture*, 7> pictures();
  void paintLive(QPainter& painter, const PictureView& view);
  void paintOpeningsOver(QPainter& painter, const CanvasFrame& frame);
  /// What lies over the pictures now.
  QRegion overlayRegion() const;

  Board& board_;
  CanvasGestures gestures_;
  std::optional<QPointF> panFrom_;  // while the middle button drags the view
  bool isDoubleClick_ = false;      // from a double click's press to its release
  ThemePalette palette_;
  Subscription subscription_;

  QImage grid_;
  std::optional<PictureView> gridView_;
  bool gridShown_ = false;

  SketchLook look_;
  EntityPicture entities_;
  EntityPicture dragged_;
  EntityPicture selection_;
  EntitySet selected_;
  EntitySet draggedIDs_;
  EntitySet leftOutIDs_;  // what the picture of the entities leaves out
  std::optional<CanvasDifference> difference_;
  std::array<EntityPicture, kDifferenceLayers.size()> layers_;
  QImage clouds_;
  std::optional<std::pair<PictureView, CanvasDifference>> cloudsOf_;  // blend left at its default
  bool isExact_ = false;
  KeptAnnotations annotations_;
  OpeningLayout openings_;
  std::uint64_t openingsOf_ = 0;  // the writes of the drawing when these were laid out
  using CursorLook = std::tuple<SketchTool, ThemePalette, double>;
  std::optional<CursorLook> cursorLook_;  // of the cursor that is set
  QRegion overlay_;  // what lay over the pictures after the last change, widget coordinates
};

}  // namespace ostrelon
