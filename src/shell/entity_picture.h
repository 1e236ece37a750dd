// A picture of many entities that is kept, so that a frame costs a copy. It follows the state in
// small steps: a pan shifts it and leaves the strips that come in to be painted, an edit leaves what
// changed, and a new zoom everything.
//
// What is left is painted at once where it is little. Where it is much, a thread of its own paints it, and
// the old picture, shifted or scaled, is shown meanwhile; no frame waits for it. The thread reads values
// alone: the list that it paints shares its storage with the one on the screen, which is copied where it is
// edited, and it is released on the main thread.
#pragma once

#include <QImage>
#include <QPainter>
#include <QRegion>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "core/entity_index.h"
#include "core/entity_list.h"
#include "core/entity_set.h"
#include "core/wall_system.h"
#include "interaction/canvas_frame.h"
#include "interaction/drawing_look.h"

namespace ostrelon {

/// How a picture looks at the sketch.
struct PictureView {
  CanvasTransform transform;
  ThemePalette palette;
  double pixelRatio = 1;  ///< device pixels a view point
  friend bool operator==(const PictureView&, const PictureView&) = default;
};

/// What a picture shows. Copies are cheap.
struct PictureContent {
  EntityList entities;
  std::vector<WallSystemSpec> systems;
  EntitySet ids;
  DrawingLook look = {};  ///< of the selection's picture: none
};

class EntityPicture {
 public:
  using Deadline = std::chrono::steady_clock::time_point;

  enum class Kind {
    entitiesWithout,  ///< the entity layer, without the entities named by `ids`
    entitiesNamed,    ///< the entity layer of the entities named by `ids` alone
    selection,        ///< the selection highlight of the entities named by `ids`
    // The layers of the difference of two drawings, each with all of its entities
    changedBefore,
    removed,
    changedAfter,
    added,
  };

  /// `painted` is called, on another thread, whenever a painting that took longer has ended: then it is
  /// time for the next `update`.
  EntityPicture(Kind kind, std::function<void()> painted);
  ~EntityPicture();

  /// Brings the picture up to the state, or nearer to it. True once it is there; until then it goes on
  /// by itself and calls `painted`. What little there is to paint is painted at once, through `index`
  /// where it is one over the content, and until the deadline.
  bool update(const PictureView& view, const PictureContent& content, const EntityIndex& index,
              Deadline deadline);
  /// Waits for what is being painted.
  void wait();
  /// Draws the picture, scaled where it is still that of another view.
  void paint(QPainter& painter, const PictureView& view) const;
  /// Releases the picture.
  void clear();

 private:
  struct Picture {
    QImage image;
    PictureView view;
    PictureContent content;
    QRegion stale;  // device pixels that are still to be painted
  };
  class Job;

  bool leadsTo(const Picture& picture, const PictureView& view, const PictureContent& content) const;
  void shift(const PictureView& view);
  void markEdits(const PictureContent& content, const EntityIndex& index);
  bool paintLittle(Picture& picture, const EntityIndex& index, Deadline deadline) const;
  void startJob(Picture picture);
  void dropJob();

  Kind kind_;
  std::function<void()> painted_;
  std::optional<Picture> picture_;
  std::unique_ptr<Job> job_;                   // a picture that is being painted
  std::vector<std::unique_ptr<Job>> dropped_;  // those that are no longer wanted, until they have stopped
};

}  // namespace ostrelon
