#include "shell/entity_picture.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "core/entity_source.h"
#include "interaction/canvas_overlays.h"
#include "interaction/canvas_renderer.h"
#include "shell/pixel_canvas_painter.h"

namespace ostrelon {

namespace {

/// Between two looks at the clock so many entities are painted.
constexpr int kEntitiesPerLook = 200;
/// With more changes than this the picture is painted anew, over several turns.
constexpr std::size_t kMostEditsInPlace = 256;
/// How far the widest stroke, a selection's glow, reaches beyond an outline, view points.
constexpr double kWidestReach = 5.0;

QSize deviceSize(const PictureView& view) {
  return {static_cast<int>(std::ceil(view.transform.canvasSize.width * view.pixelRatio)),
          static_cast<int>(std::ceil(view.transform.canvasSize.height * view.pixelRatio))};
}

/// Moves the pixels by (dx, dy); what comes in keeps some old value.
void shiftPixels(QImage& image, int dx, int dy) {
  const int width = image.width() - std::abs(dx);
  const auto bytes = static_cast<std::size_t>(width) * sizeof(QRgb);
  const int rows = image.height() - std::abs(dy);
  for (int i = 0; i < rows; ++i) {
    // Rows are taken in an order in which none is overwritten before it has been moved.
    const int row = dy > 0 ? rows - 1 - i : i;
    const uchar* source = image.constScanLine(row + std::max(0, -dy)) +
                          static_cast<std::ptrdiff_t>(std::max(0, -dx)) * std::ptrdiff_t{sizeof(QRgb)};
    uchar* target = image.scanLine(row + std::max(0, dy)) +
                    static_cast<std::ptrdiff_t>(std::max(0, dx)) * std::ptrdiff_t{sizeof(QRgb)};
    std::memmove(target, source, bytes);
  }
}

void clearPixels(QImage& image, const QRect& rect) {
  const QRect part = rect & image.rect();
  for (int y = part.top(); y <= part.bottom(); ++y) {
    auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
    std::fill_n(row + part.left(), part.width(), QRgb{0});
  }
}

/// The whole number that a movement in device pixels is, if it is one.
std::optional<int> wholePixels(double movement) {
  const double rounded = std::round(movement);
  if (!(std::abs(movement - rounded) < 1e-6) || std::abs(rounded) > 1e6) return std::nullopt;
  return static_cast<int>(rounded);
}

bool isShown(EntityPicture::Kind kind, const PictureContent& content, const UUID& id) {
  const bool named = content.ids && !content.ids->empty() && content.ids->contains(id);
  return named == (kind != EntityPicture::Kind::entitiesWithout);
}

/// A box that holds whatever could leave a stroke in this part of the view, sketch units. Walls are
/// known by their centre lines, so the widest wall counts.
SketchBox sketchBoxAround(const ViewRect& part, const PictureView& view,
                          const std::vector<WallSystemSpec>& systems) {
  double thickness = kUnknownWallThickness;
  for (const WallSystemSpec& spec : systems) thickness = std::max(thickness, std::abs(spec.thickness));
  const ViewRect reached = part.grown(kWidestReach + thickness / 2 * view.transform.viewport.scale);
  const SketchPoint a = viewPointToSketch({reached.minX, reached.maxY}, view.transform.viewport);
  const SketchPoint b = viewPointToSketch({reached.maxX, reached.minY}, view.transform.viewport);
  return {a.x, a.y, b.x, b.y};
}

/// Paints entities of a picture's kind with one painter.
class Brush {
 public:
  Brush(EntityPicture::Kind kind, const CanvasFrame& frame, const PictureContent& content,
        CanvasPainter& painter)
      : kind_(kind), frame_(frame), content_(content), layer_(frame, content.systems), painter_(painter) {}

  void paint(const SketchEntity& entity) {
    if (!isShown(kind_, content_, entityID(entity))) return;
    if (kind_ == EntityPicture::Kind::selection) {
      paintSelectedEntity(painter_, frame_, entity, content_.systems);
    } else {
      layer_.paint(painter_, entity);
    }
  }

 private:
  EntityPicture::Kind kind_;
  const CanvasFrame& frame_;
  const PictureContent& content_;
  EntityLayerPainter layer_;
  CanvasPainter& painter_;
};

}  // namespace

void EntityPicture::clear() {
  picture_.reset();
  job_.reset();
}

bool EntityPicture::update(const PictureView& view, const PictureContent& content, const EntityIndex& index,
                           Deadline deadline) {
  if (picture_ && follows(view, content) && pan(view, index)) {
    job_.reset();
    applyEdits(content, index);
    if (!job_) return true;
  } else if (!job_ || job_->picture.view != view || job_->picture.content.ids != content.ids ||
             job_->picture.content.systems != content.systems ||
             !job_->picture.content.entities.sharesAllStorage(content.entities)) {
    startJob(view, content);
  }
  return runJob(deadline);
}

bool EntityPicture::follows(const PictureView& view, const PictureContent& content) const {
  const PictureView& mine = picture_->view;
  return mine.transform.canvasSize == view.transform.canvasSize && mine.palette == view.palette &&
         mine.pixelRatio == view.pixelRatio &&
         mine.transform.viewport.scale == view.transform.viewport.scale &&
         picture_->content.systems == content.systems &&
         (kind_ == Kind::entitiesWithout || picture_->content.ids == content.ids);
}

bool EntityPicture::pan(const PictureView& view, const EntityIndex& index) {
  const SketchPoint moved = view.transform.viewport.pan - picture_->view.transform.viewport.pan;
  if (moved == SketchPoint{}) return true;
  const auto dx = wholePixels(moved.x * view.pixelRatio);
  const auto dy = wholePixels(moved.y * view.pixelRatio);
  QImage& image = picture_->image;
  if (!dx || !dy || std::abs(*dx) >= image.width() || std::abs(*dy) >= image.height()) return false;
  picture_->view = view;
  shiftPixels(image, *dx, *dy);
  const QRect all = image.rect();
  for (const QRect& strip : QRegion(all) - QRegion(all.translated(*dx, *dy))) repaint(strip, index);
  return true;
}

void EntityPicture::applyEdits(const PictureContent& content, const EntityIndex& index) {
  Picture& picture = *picture_;
  const bool sameIDs = picture.content.ids == content.ids;
  if (sameIDs && picture.content.entities.sharesAllStorage(content.entities)) return;

  // What is dragged is shown neither before nor after, so its edits cost nothing here.
  std::vector<const SketchEntity*> touched;
  const auto touch = [&](const SketchEntity& entity) {
    const UUID& id = entityID(entity);
    if (isShown(kind_, picture.content, id) || isShown(kind_, content, id)) touched.push_back(&entity);
  };
  const auto edits = EntityList::difference(picture.content.entities, content.entities);
  for (const auto& entity : edits.removed) touch(entity);
  for (const auto& entity : edits.added) touch(entity);
  for (const auto& [before, after] : edits.changed) {
    touch(before);
    touch(after);
  }
  const auto touchNamed = [&](const PictureContent& named, const PictureContent& other) {
    if (!named.ids || touched.size() > kMostEditsInPlace) return;
    for (const UUID& id : *named.ids) {
      if (other.ids && other.ids->contains(id)) continue;
      if (const SketchEntity* entity = picture.content.entities.find(id)) touched.push_back(entity);
      if (const SketchEntity* entity = content.entities.find(id)) touched.push_back(entity);
      if (touched.size() > kMostEditsInPlace) return;
    }
  };
  if (!sameIDs) {
    touchNamed(picture.content, content);
    touchNamed(content, picture.content);
  }
  if (touched.size() > kMostEditsInPlace) {
    startJob(picture.view, content);
    return;
  }
  QRegion dirty;
  for (const SketchEntity* entity : touched) dirty += deviceBounds(*entity, content.systems);
  picture.content = content;
  // Many small pieces cost more than the box around them.
  if (dirty.rectCount() > 8) dirty = dirty.boundingRect();
  for (const QRect& rect : dirty) repaint(rect, index);
}

QRect EntityPicture::deviceBounds(const SketchEntity& entity,
                                  const std::vector<WallSystemSpec>& systems) const {
  const auto* wall = std::get_if<WallEntity>(&entity);
  const double thickness = wall != nullptr ? paintedWallThickness(*wall, systems) : 0;
  const PictureView& view = picture_->view;
  ViewRect bounds = entityViewBounds(entity, thickness, view.transform.viewport).grown(kWidestReach);
  const ViewRect canvas{0, 0, view.transform.canvasSize.width, view.transform.canvasSize.height};
  if (!bounds.touches(canvas)) return {};
  bounds = {std::max(bounds.minX, canvas.minX), std::max(bounds.minY, canvas.minY),
            std::min(bounds.maxX, canvas.maxX), std::min(bounds.maxY, canvas.maxY)};
  const QRectF device(QPointF(bounds.minX, bounds.minY) * view.pixelRatio,
                      QPointF(bounds.maxX, bounds.maxY) * view.pixelRatio);
  return device.toAlignedRect();
}

CanvasFrame EntityPicture::frameOf(const PictureView& view, const std::optional<QRect>& deviceRect) const {
  CanvasFrame frame{view.transform, view.palette};
  if (deviceRect) {
    const double ratio = view.pixelRatio;
    frame.part = ViewRect{deviceRect->left() / ratio, deviceRect->top() / ratio,
                          (deviceRect->left() + deviceRect->width()) / ratio,
                          (deviceRect->top() + deviceRect->height()) / ratio};
  }
  return frame;
}

void EntityPicture::repaint(const QRect& deviceRect, const EntityIndex& index) {
  Picture& picture = *picture_;
  clearPixels(picture.image, deviceRect);
  PixelCanvasPainter painter(picture.image, picture.view.pixelRatio, deviceRect);
  const CanvasFrame frame = frameOf(picture.view, deviceRect);
  Brush brush(kind_, frame, picture.content, painter);
  const bool isIndexed = index.list().sharesAllStorage(picture.content.entities);
  const EntitySource source = isIndexed ? EntitySource(index) : EntitySource(picture.content.entities);
  source.visitNear(sketchBoxAround(*frame.part, picture.view, picture.content.systems),
                   [&brush](const SketchEntity& entity, std::size_t) { brush.paint(entity); });
}

void EntityPicture::startJob(const PictureView& view, const PictureContent& content) {
  QImage image(deviceSize(view), QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  job_.emplace(Job{{std::move(image), view, content}, {}});
  job_->next = job_->picture.content.entities.begin();
}

bool EntityPicture::runJob(Deadline deadline) {
  Picture& picture = job_->picture;
  if (!picture.image.isNull()) {
    PixelCanvasPainter painter(picture.image, picture.view.pixelRatio);
    const CanvasFrame frame = frameOf(picture.view, std::nullopt);
    Brush brush(kind_, frame, picture.content, painter);
    const EntityList::Iterator end = picture.content.entities.end();
    int untilLook = kEntitiesPerLook;
    for (; job_->next != end; ++job_->next) {
      if (--untilLook == 0) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        untilLook = kEntitiesPerLook;
      }
      brush.paint(*job_->next);
    }
  }
  picture_ = std::move(picture);
  job_.reset();
  return true;
}

void EntityPicture::paint(QPainter& painter, const PictureView& view) const {
  if (!picture_ || picture_->image.isNull()) return;
  const SketchViewport& mine = picture_->view.transform.viewport;
  const SketchViewport& wanted = view.transform.viewport;
  const double zoom = wanted.scale / mine.scale;
  const QPointF origin(wanted.pan.x - mine.pan.x * zoom, wanted.pan.y - mine.pan.y * zoom);
  const QSizeF size = QSizeF(picture_->image.size()) / picture_->view.pixelRatio * zoom;
  painter.drawImage(QRectF(origin, size), picture_->image);
}

}  // namespace ostrelon
