#include "shell/entity_picture.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <deque>
#include <future>
#include <thread>

#include "core/entity_bounds.h"
#include "core/entity_source.h"
#include "interaction/canvas_overlays.h"
#include "interaction/canvas_renderer.h"
#include "interaction/difference_layers.h"
#include "shell/pixel_canvas_painter.h"

namespace ostrelon {

namespace {

/// Between two looks at whether it is still wanted so many entities are painted.
constexpr int kEntitiesPerLook = 200;
/// With more changes than this the whole picture counts as changed.
constexpr std::size_t kMostEditsInPlace = 256;
// So many entities in chunks of the list that two drawings do not share: more have been edited than are
// painted in place.
constexpr std::size_t kMostUnshared = kMostEditsInPlace * 128;
/// So many entities are little enough to be painted at once.
constexpr std::size_t kLittle = 2000;
/// What is painted at once is painted in tiles of this side, device pixels, and the clock looked at
/// between them.
constexpr int kTileSide = 256;
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

/// The layer of a difference that a picture is of, if it is of one.
std::optional<DifferenceLayer> layerOf(EntityPicture::Kind kind) {
  switch (kind) {
    case EntityPicture::Kind::changedBefore:
      return DifferenceLayer::changedBefore;
    case EntityPicture::Kind::removed:
      return DifferenceLayer::removed;
    case EntityPicture::Kind::changedAfter:
      return DifferenceLayer::changedAfter;
    case EntityPicture::Kind::added:
      return DifferenceLayer::added;
    case EntityPicture::Kind::entitiesWithout:
    case EntityPicture::Kind::entitiesNamed:
    case EntityPicture::Kind::selection:
      return std::nullopt;
  }
  return std::nullopt;
}

bool isShown(EntityPicture::Kind kind, bool isNamed) {
  return layerOf(kind) || isNamed == (kind != EntityPicture::Kind::entitiesWithout);
}

/// Whether the entity at this position of the content is one of those that it names.
bool isNamed(const PictureContent& content, const SketchEntity& entity, std::size_t position) {
  const EntitySet& ids = content.ids;
  if (ids.empty()) return false;
  return ids.isOver(content.entities) ? ids.containsAt(position) : ids.contains(entityID(entity));
}

/// A box that holds whatever could leave a stroke in this part of the view, sketch units. Walls are
/// known by their centre lines, so the widest wall and the longest mitre count.
SketchBox sketchBoxAround(const SketchBox& part, const PictureView& view, const PictureContent& content) {
  double thickness = kUnknownWallThickness;
  for (const WallSystemSpec& spec : content.systems)
    thickness = std::max(thickness, std::abs(spec.thickness));
  const double reach = std::max(thickness / 2, content.look.joined.reach());
  const SketchBox reached = part.grown(kWidestReach + reach * view.transform.viewport.scale);
  return SketchBox::spanning(viewPointToSketch({reached.minX, reached.maxY}, view.transform.viewport),
                             viewPointToSketch({reached.maxX, reached.minY}, view.transform.viewport));
}

/// True as well where a bound is not a number.
bool mayTouch(const SketchBox& a, const SketchBox& b) {
  return !(a.maxX < b.minX || a.minX > b.maxX || a.maxY < b.minY || a.minY > b.maxY);
}

/// Paints entities of a picture's kind with one painter.
class Brush {
 public:
  Brush(EntityPicture::Kind kind, const CanvasFrame& frame, const PictureContent& content,
        CanvasPainter& painter)
      : kind_(kind),
        frame_(frame),
        content_(content),
        layer_(frame, content.systems, content.look),
        painter_(painter) {
    if (const auto layer = layerOf(kind)) difference_.emplace(frame, content.systems, *layer);
  }

  /// The joined walls come first, all of them: where there are any, whatever is painted is taken in before.
  bool hasJoinedWalls() const { return layer_.hasJoinedWalls(); }
  void takeIn(const SketchEntity& entity, std::size_t position) {
    if (isShown(kind_, isNamed(content_, entity, position))) layer_.takeIn(painter_, entity);
  }
  void paintJoinedWalls() { layer_.paintJoinedWalls(painter_); }

  void paint(const SketchEntity& entity, std::size_t position) {
    if (!isShown(kind_, isNamed(content_, entity, position))) return;
    if (difference_) {
      difference_->paint(painter_, entity);
    } else if (kind_ == EntityPicture::Kind::selection) {
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
  std::optional<DifferenceEntityPainter> difference_;
  CanvasPainter& painter_;
};

CanvasFrame frameOf(const PictureView& view, const QRect& deviceRect) {
  CanvasFrame frame{view.transform, view.palette};
  const double ratio = view.pixelRatio;
  frame.part = SketchBox{deviceRect.left() / ratio, deviceRect.top() / ratio,
                         (deviceRect.left() + deviceRect.width()) / ratio,
                         (deviceRect.top() + deviceRect.height()) / ratio};
  return frame;
}

/// What bounds in the view cover of the picture, device pixels; empty beside it.
QRect deviceBounds(SketchBox bounds, const PictureView& view) {
  bounds = bounds.grown(kWidestReach);
  const SketchBox canvas{0, 0, view.transform.canvasSize.width, view.transform.canvasSize.height};
  if (!bounds.overlaps(canvas)) return {};
  bounds = bounds.intersected(canvas);
  const QRectF device(QPointF(bounds.minX, bounds.minY) * view.pixelRatio,
                      QPointF(bounds.maxX, bounds.maxY) * view.pixelRatio);
  return device.toAlignedRect();
}

QRect deviceBounds(const SketchEntity& entity, const std::vector<WallSystemSpec>& systems,
                   const PictureView& view) {
  const auto* wall = std::get_if<WallEntity>(&entity);
  const double thickness = wall != nullptr ? paintedWallThickness(*wall, systems) : 0;
  return deviceBounds(entityViewBounds(entity, thickness, view.transform.viewport), view);
}

QRect deviceBounds(const JoinedWall& wall, const PictureView& view) {
  const auto toView = [&view](double x, double y) {
    return sketchPointToView({x, y}, view.transform.viewport);
  };
  const SketchBox& box = wall.body.box;
  return deviceBounds(SketchBox::spanning(toView(box.minX, box.minY), toView(box.maxX, box.maxY)), view);
}

/// The rectangle's tiles, row by row.
std::vector<QRect> tilesOf(const QRect& rect) {
  std::vector<QRect> tiles;
  for (int y = rect.top(); y <= rect.bottom(); y += kTileSide) {
    for (int x = rect.left(); x <= rect.right(); x += kTileSide) {
      tiles.push_back(QRect(x, y, kTileSide, kTileSide) & rect);
    }
  }
  return tiles;
}

/// How a picture follows from another one of the same scale by moving its pixels, if it does.
std::optional<QPoint> pixelsMoved(const PictureView& from, const PictureView& to) {
  const SketchPoint moved = to.transform.viewport.pan - from.transform.viewport.pan;
  const auto dx = wholePixels(moved.x * to.pixelRatio);
  const auto dy = wholePixels(moved.y * to.pixelRatio);
  const QSize size = deviceSize(to);
  if (!dx || !dy || std::abs(*dx) >= size.width() || std::abs(*dy) >= size.height()) return std::nullopt;
  return QPoint(*dx, *dy);
}

}  // namespace

// --- Painting on a thread of its own

class EntityPicture::Job {
 public:
  Job(Kind kind, Picture picture, const std::function<void()>& painted)
      : kind_(kind), picture_(std::move(picture)) {
    thread_ = std::async(std::launch::async, [this, painted] {
      run();
      isDone_ = true;
      if (!isCancelled_) painted();
    });
  }
  Job(const Job&) = delete;
  Job& operator=(const Job&) = delete;
  ~Job() {
    cancel();
    wait();
  }

  void cancel() { isCancelled_ = true; }
  void wait() const { thread_.wait(); }
  /// The thread has come to its end, be it by a cancellation.
  bool isDone() const { return isDone_; }
  /// What is being painted. Its picture may be taken once the job is done.
  const PictureView& view() const { return picture_.view; }
  const PictureContent& content() const { return picture_.content; }
  const Picture& picture() const { return picture_; }
  Picture take() { return std::move(picture_); }

 private:
  void run() {
    QImage& image = picture_.image;
    if (image.isNull()) picture_.stale = {};
    // The lower half of every part is left to a second thread, where the machine has a core for it.
    const bool isShared = std::thread::hardware_concurrency() > 1;
    std::vector<QRect> uppers;
    std::vector<QRect> lowers;
    for (const QRect& rect : picture_.stale) {
      const int height = isShared ? (rect.height() + 1) / 2 : rect.height();
      uppers.emplace_back(rect.topLeft(), QSize(rect.width(), height));
      if (height < rect.height()) lowers.push_back(rect.adjusted(0, height, 0, 0));
    }
    uchar* pixels = image.bits();
    std::future<void> other;
    if (!lowers.empty()) other = std::async(std::launch::async, [&] { paintParts(pixels, lowers); });
    paintParts(pixels, uppers);
    if (other.valid()) other.wait();
    if (!isCancelled_) picture_.stale = {};
  }

  // A part of the picture with what paints it. Painters may not share a picture, but they may share its
  // memory, of which each keeps to its own rectangle.
  struct Part {
    Part(Kind kind, uchar* pixels, const Picture& picture, const QRect& rect)
        : image(pixels, picture.image.width(), picture.image.height(), picture.image.bytesPerLine(),
                picture.image.format()),
          painter(image, picture.view.pixelRatio, rect),
          frame(frameOf(picture.view, rect)),
          brush(kind, frame, picture.content, painter),
          reach(sketchBoxAround(*frame.part, picture.view, picture.content)) {
      clearPixels(image, rect);
    }
    QImage image;
    PixelCanvasPainter painter;
    CanvasFrame frame;
    Brush brush;
    SketchBox reach;  // what lies beside it leaves nothing in this part
  };

  // Paints all parts in one walk through the list, which is what costs most where they are small.
  void paintParts(uchar* pixels, const std::vector<QRect>& rects) {
    std::deque<Part> parts;
    for (const QRect& rect : rects) parts.emplace_back(kind_, pixels, picture_, rect);
    if (parts.empty()) return;
    if (parts.front().brush.hasJoinedWalls()) {
      visitParts(parts, [](Part& part, const SketchEntity& entity, std::size_t at) {
        part.brush.takeIn(entity, at);
      });
      for (Part& part : parts) {
        if (!isCancelled_) part.brush.paintJoinedWalls();
      }
    }
    visitParts(parts,
               [](Part& part, const SketchEntity& entity, std::size_t at) { part.brush.paint(entity, at); });
  }

  template <class Visit>
  void visitParts(std::deque<Part>& parts, const Visit& visit) {
    int untilLook = kEntitiesPerLook;
    std::size_t position = 0;
    for (const SketchEntity& entity : picture_.content.entities) {
      if (--untilLook == 0) {
        if (isCancelled_) return;
        untilLook = kEntitiesPerLook;
      }
      const SketchBox bounds = entityBounds(entity);
      for (Part& part : parts) {
        if (mayTouch(bounds, part.reach)) visit(part, entity, position);
      }
      ++position;
    }
  }

  Kind kind_;
  Picture picture_;
  std::atomic<bool> isCancelled_ = false;
  std::atomic<bool> isDone_ = false;
  std::future<void> thread_;
};

// --- Following the state

EntityPicture::EntityPicture(Kind kind, std::function<void()> painted)
    : kind_(kind), painted_(std::move(painted)) {}

EntityPicture::~EntityPicture() = default;

void EntityPicture::clear() {
  picture_.reset();
  dropJob();
}

void EntityPicture::wait() {
  if (job_) job_->wait();
}

bool EntityPicture::update(const PictureView& view, const PictureContent& content, const EntityIndex& index,
                           Deadline deadline) {
  std::erase_if(dropped_, [](const auto& job) { return job->isDone(); });
  const bool isOnTheWay = job_ && leadsTo(job_->picture(), view, content);
  if (job_ && !isOnTheWay) dropJob();
  if (job_ && job_->isDone()) {
    picture_ = job_->take();
    job_.reset();
  }
  if (!picture_ || !leadsTo(*picture_, view, content)) {
    if (job_) return false;
    Picture fresh{{deviceSize(view), QImage::Format_ARGB32_Premultiplied}, view, content, {}};
    fresh.stale = fresh.image.rect();
    if (!paintLittle(fresh, index, deadline)) {
      startJob(std::move(fresh));
      return false;
    }
    picture_ = std::move(fresh);
    return true;
  }
  shift(view);
  markEdits(content, index);
  if (picture_->stale.isEmpty()) {
    dropJob();
    return true;
  }
  if (job_) return false;
  if (paintLittle(*picture_, index, deadline)) return true;
  Picture rest = *picture_;
  rest.image = picture_->image.copy();
  startJob(std::move(rest));
  return false;
}

bool EntityPicture::leadsTo(const Picture& picture, const PictureView& view,
                            const PictureContent& content) const {
  const PictureView& from = picture.view;
  return from.transform.canvasSize == view.transform.canvasSize && from.palette == view.palette &&
         from.pixelRatio == view.pixelRatio &&
         from.transform.viewport.scale == view.transform.viewport.scale &&
         picture.content.systems == content.systems && picture.content.look.plan == content.look.plan &&
         (picture.content.look.joined.size() == 0) == (content.look.joined.size() == 0) &&
         (kind_ == Kind::entitiesWithout || picture.content.ids == content.ids) &&
         pixelsMoved(from, view).has_value();
}

void EntityPicture::shift(const PictureView& view) {
  const QPoint by = *pixelsMoved(picture_->view, view);
  picture_->view = view;
  if (by.isNull()) return;
  QImage& image = picture_->image;
  if (image.isNull()) return;
  shiftPixels(image, by.x(), by.y());
  const QRegion all = image.rect();
  picture_->stale = (picture_->stale.translated(by) & all) + (all - all.translated(by));
}

void EntityPicture::markEdits(const PictureContent& content, const EntityIndex& index) {
  Picture& picture = *picture_;
  const bool sameIDs = picture.content.ids == content.ids;
  if (sameIDs && picture.content.entities.sharesAllStorage(content.entities)) return;
  // Another document has come, much was edited, or another large group is named: there is no use in comparing
  // entity by entity.
  const EntityList& shown = picture.content.entities;
  const bool isOther =
      std::max(content.entities.unsharedSize(shown), shown.unsharedSize(content.entities)) > kMostUnshared;
  if (isOther || (!sameIDs && std::max(picture.content.ids.size(), content.ids.size()) > kMostEditsInPlace)) {
    picture.stale = picture.image.rect();
    picture.content = content;
    return;
  }

  // What is dragged is shown neither before nor after, so its edits cost nothing here.
  const auto isAmong = [&](const EntitySet& ids, const UUID& id) {
    if (ids.empty()) return false;
    if (!ids.isOver(index.list())) return ids.contains(id);
    const auto position = index.positionOf(id);
    return position && ids.containsAt(*position);
  };
  std::vector<const SketchEntity*> touched;
  const auto touch = [&](const SketchEntity& entity) {
    const UUID& id = entityID(entity);
    const bool isNow = isShown(kind_, isAmong(content.ids, id));
    if (isNow || (!sameIDs && isShown(kind_, isAmong(picture.content.ids, id)))) touched.push_back(&entity);
  };
  const auto edits = EntityList::difference(picture.content.entities, content.entities);
  for (const auto& entity : edits.removed) touch(entity);
  for (const auto& entity : edits.added) touch(entity);
  for (const auto& [before, after] : edits.changed) {
    touch(before);
    touch(after);
  }
  // Those that are no longer named, or only now, look different. The index gives their places; where it does
  // not know the list, everything counts as changed.
  bool isEverything = touched.size() > kMostEditsInPlace;
  const auto touchNamed = [&](const PictureContent& named, const PictureContent& other) {
    if (named.ids.empty() || isEverything) return;
    isEverything = !index.list().sharesAllStorage(content.entities);
    if (isEverything) return;
    for (const UUID& id : named.ids) {
      if (other.ids.contains(id)) continue;
      if (const SketchEntity* entity = index.find(id)) touched.push_back(entity);
    }
  };
  if (!sameIDs) {
    touchNamed(picture.content, content);
    touchNamed(content, picture.content);
  }
  QRegion changed;
  JoinedWalls::visitChanges(picture.content.look.joined, content.look.joined,
                            [&](const JoinedWall* before, const JoinedWall* after) {
                              for (const JoinedWall* wall : {before, after}) {
                                if (wall != nullptr && !isEverything)
                                  changed += deviceBounds(*wall, picture.view);
                              }
                              isEverything |= changed.rectCount() > static_cast<int>(kMostEditsInPlace);
                            });
  if (isEverything) {
    changed = picture.image.rect();
  } else {
    for (const SketchEntity* entity : touched) {
      changed += deviceBounds(*entity, content.systems, picture.view);
    }
    // Many small pieces cost more than the box around them.
    if (changed.rectCount() > 8) changed = changed.boundingRect();
  }
  picture.stale += changed & picture.image.rect();
  picture.content = content;
}

bool EntityPicture::paintLittle(Picture& picture, const EntityIndex& index, Deadline deadline) const {
  if (picture.image.isNull()) picture.stale = {};
  const EntityList& entities = picture.content.entities;
  const bool isShort = entities.size() <= kLittle;
  if (!isShort && !index.list().sharesAllStorage(entities)) return picture.stale.isEmpty();
  const QRegion stale = picture.stale;
  std::vector<EntityIndex::Candidate> candidates;
  for (const QRect& rect : stale) {
    for (const QRect& tile : tilesOf(rect)) {
      if (std::chrono::steady_clock::now() >= deadline) return false;
      const CanvasFrame frame = frameOf(picture.view, tile);
      candidates.clear();
      if (!isShort && !index.candidatesIn(sketchBoxAround(*frame.part, picture.view, picture.content),
                                          candidates, kLittle)) {
        return false;
      }
      clearPixels(picture.image, tile);
      PixelCanvasPainter painter(picture.image, picture.view.pixelRatio, tile);
      Brush brush(kind_, frame, picture.content, painter);
      const auto ordered =
          isShort ? decltype(index.inListOrder(candidates))() : index.inListOrder(candidates);
      const auto visit = [&](const auto& paint) {
        if (isShort) {
          std::size_t position = 0;
          for (const SketchEntity& entity : entities) paint(entity, position++);
        } else {
          for (const auto& [position, entity] : ordered) paint(*entity, position);
        }
      };
      if (brush.hasJoinedWalls()) {
        visit([&brush](const SketchEntity& entity, std::size_t at) { brush.takeIn(entity, at); });
        brush.paintJoinedWalls();
      }
      visit([&brush](const SketchEntity& entity, std::size_t at) { brush.paint(entity, at); });
      picture.stale -= tile;
    }
  }
  return true;
}

void EntityPicture::startJob(Picture picture) {
  dropJob();
  job_ = std::make_unique<Job>(kind_, std::move(picture), painted_);
}

void EntityPicture::dropJob() {
  if (!job_) return;
  job_->cancel();
  dropped_.push_back(std::move(job_));
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
