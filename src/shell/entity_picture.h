// A picture of many entities that is kept, so that a frame costs a copy. It follows the state in
// small steps: a pan shifts it and paints the strips that come in, an edit repaints what changed, and
// a new zoom is painted anew over several turns while the old picture, scaled, stands in for it.
#pragma once

#include <QImage>
#include <QPainter>
#include <QRegion>
#include <chrono>
#include <memory>
#include <optional>
#include <unordered_set>
#include <vector>

#include "core/entity_index.h"
#include "core/entity_list.h"
#include "core/wall_system.h"
#include "interaction/canvas_frame.h"

namespace ostrelon {

/// How a picture looks at the sketch.
struct PictureView {
  CanvasTransform transform;
  ThemePalette palette;
  double pixelRatio = 1;  ///< device pixels a view point
  friend bool operator==(const PictureView&, const PictureView&) = default;
};

/// What a picture shows. Copies are cheap; a set of identifiers is the same only when it is the same
/// object.
struct PictureContent {
  EntityList entities;
  std::vector<WallSystemSpec> systems;
  std::shared_ptr<const std::unordered_set<UUID>> ids;
};

class EntityPicture {
 public:
  using Deadline = std::chrono::steady_clock::time_point;

  enum class Kind {
    entitiesWithout,  ///< the entity layer, without the entities named by `ids`
    entitiesNamed,    ///< the entity layer of the entities named by `ids` alone
    selection,        ///< the selection highlight of the entities named by `ids`
  };

  explicit EntityPicture(Kind kind) : kind_(kind) {}

  /// Brings the picture up to the state, or nearer to it until the deadline. True once it is there;
  /// until then call again. Small parts are painted through `index` where it is one over the content.
  bool update(const PictureView& view, const PictureContent& content, const EntityIndex& index,
              Deadline deadline);
  /// Draws the picture, scaled where it is still that of another view.
  void paint(QPainter& painter, const PictureView& view) const;
  /// Lets go of the picture.
  void clear();

 private:
  struct Picture {
    QImage image;
    PictureView view;
    PictureContent content;
  };
  // A picture that is being painted anew.
  struct Job {
    Picture picture;
    EntityList::Iterator next;
  };

  bool follows(const PictureView& view, const PictureContent& content) const;
  bool pan(const PictureView& view, const EntityIndex& index);
  void applyEdits(const PictureContent& content, const EntityIndex& index);
  void repaint(const QRect& deviceRect, const EntityIndex& index);
  void startJob(const PictureView& view, const PictureContent& content);
  bool runJob(Deadline deadline);
  QRect deviceBounds(const SketchEntity& entity, const std::vector<WallSystemSpec>& systems) const;
  CanvasFrame frameOf(const PictureView& view, const std::optional<QRect>& deviceRect) const;

  Kind kind_;
  std::optional<Picture> picture_;
  std::optional<Job> job_;
};

}  // namespace ostrelon
