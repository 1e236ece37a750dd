#include "interaction/annotation_painting.h"

#include "geometry/annotation_builder.h"
#include "geometry/annotations.h"
#include "geometry/opening_operations.h"
#include "interaction/drawing_look.h"

namespace ostrelon {
namespace {

constexpr double kLeastTextHeight = 2.5;  // of capitals, view points
constexpr double kPenMillimetres = 0.25;
constexpr double kDashMillimetres = 1.6;
constexpr double kCapitalsToType = 1 / 0.73;  // from the height of capitals to that of the type

}  // namespace

void paintAnnotations(CanvasPainter& painter, const CanvasFrame& frame,
                      std::span<const Annotation> annotations) {
  const Stroke solid{.color = frame.palette.foreground, .width = kPenMillimetres * frame.pointsPerMillimetre};
  const double dash = kDashMillimetres * frame.pointsPerMillimetre;
  const Fill fill{frame.palette.foreground};
  const SketchBox clip = frame.clipBox();
  const SketchBox painted = frame.paintedRect().grown(solid.width);
  CanvasPath path;
  const auto add = [&](const std::vector<SketchPoint>& points, bool isClosed) {
    path.begin();
    for (const SketchPoint point : points) path.add(frame.toView(point));
    if (isClosed) path.close();
  };
  for (const Annotation& annotation : annotations) {
    const SketchBox box = SketchBox::spanning(frame.toView({annotation.box.minX, annotation.box.minY}),
                                              frame.toView({annotation.box.maxX, annotation.box.maxY}));
    if (!isFinite(box) || !box.overlaps(painted)) continue;
    for (const AnnotationLine& line : annotation.lines) {
      path.clear();
      add(line.points, false);
      Stroke stroke = solid;
      if (line.isDashed) stroke.dash = {dash, dash / 2};
      if (clip.contains(box)) painter.strokePath(path, stroke);
    }
    for (const AnnotationFill& area : annotation.fills) {
      path.clear();
      add(area.outline, true);
      if (clip.contains(box)) painter.fillPath(path, fill);
    }
    for (const AnnotationText& text : annotation.texts) {
      const double height = text.height * frame.scale();
      const SketchPoint middle = frame.toView(text.middle);
      if (height < kLeastTextHeight || !clip.contains(middle)) continue;
      painter.drawText(text.text, middle, height * kCapitalsToType, fill, text.angle);
    }
  }
}

const RoomPlan* KeptAnnotations::rooms(const Drawing& drawing) {
  if (!needsRooms(drawing.plan) || drawing.entities.size() > kJoinedAtOnce) return nullptr;
  if (!entities_.sharesAllStorage(drawing.entities) || systems_ != drawing.wallSystemSpecs ||
      dividers_ != drawing.plan.roomDividers) {
    rooms_ = roomPlan(drawing);
    entities_ = drawing.entities;
    systems_ = drawing.wallSystemSpecs;
    dividers_ = drawing.plan.roomDividers;
  }
  return &rooms_;
}

const std::vector<Annotation>& KeptAnnotations::of(const Sketch& sketch) {
  if (writes_ != sketch.drawingWrites()) {
    writes_ = sketch.drawingWrites();
    const Drawing& drawing = sketch.drawing;
    const OpeningLayout openings = needsRooms(drawing.plan) ? openingLayout(sketch) : OpeningLayout();
    annotations_ = annotations(drawing, rooms(drawing), openings, unitsPerInch(drawing.plan));
  }
  return annotations_;
}

}  // namespace ostrelon
