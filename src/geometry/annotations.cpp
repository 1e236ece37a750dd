#include "geometry/annotations.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <utility>

#include "geometry/annotation_builder.h"
#include "geometry/dimension_annotation.h"
#include "geometry/dimension_strings.h"
#include "geometry/entity_geometry.h"
#include "geometry/marquee.h"
#include "geometry/outline.h"

namespace ostrelon {
namespace {

// Inches of paper.
constexpr double kLabelRoom = 1.0 / 16;  // around a label
constexpr double kArrow = 3.0 / 32;      // the length of an arrow, three times its width
constexpr int kLabelDirections = 16;
constexpr int kLabelSteps = 48;

SketchBox boxAround(SketchPoint middle, SketchSize size) {
  return {middle.x - size.width / 2, middle.y - size.height / 2, middle.x + size.width / 2,
          middle.y + size.height / 2};
}

bool crosses(const std::vector<SketchPoint>& outline, const SketchBox& box) {
  for (std::size_t i = 0; i < outline.size(); ++i) {
    if (segmentIntersectsRect(outline[i], outline[(i + 1) % outline.size()], box)) return true;
  }
  return false;
}

bool fits(const Room& room, const SketchBox& box, const std::vector<SketchBox>& taken) {
  if (!room.box.contains(box) || !room.contains(box.center()) || crosses(room.outline, box)) return false;
  if (std::any_of(room.islands.begin(), room.islands.end(),
                  [&](const auto& island) { return crosses(island, box); })) {
    return false;
  }
  return std::none_of(taken.begin(), taken.end(),
                      [&](const SketchBox& other) { return other.overlaps(box); });
}

Annotation roomLabel(const NamedRoom& named, double unitsPerInch, std::vector<SketchBox>& taken) {
  AnnotationBuilder builder(AnnotationKind::room, named.name->id, unitsPerInch);
  const std::vector<std::string> lines = roomLabelLines(named);
  const double around = 2 * builder.onPaper(kLabelRoom);
  SketchSize size = builder.blockSize(lines);
  size = {size.width + around, size.height + around};
  SketchPoint middle = named.name->place + named.name->labelOffset;
  const bool isPlacedByHand = named.name->labelOffset != SketchPoint{};
  if (named.room != nullptr && !isPlacedByHand) middle = labelPlace(*named.room, middle, size, taken);
  taken.push_back(boxAround(middle, size));
  builder.block(lines, middle);
  return builder.take();
}

Annotation dividerLine(const RoomDivider& divider, double unitsPerInch) {
  AnnotationBuilder builder(AnnotationKind::divider, divider.id, unitsPerInch);
  builder.line(divider.start, divider.end, true);
  return builder.take();
}

Annotation noteText(const Note& note, double unitsPerInch) {
  AnnotationBuilder builder(AnnotationKind::note, note.id, unitsPerInch);
  const std::vector<std::string> lines = textLines(note.text);
  builder.block(lines, note.place);
  if (!note.target) return builder.take();
  // From the side of the text that faces the target, so that the line never runs through it.
  SketchSize size = builder.blockSize(lines);
  size = {size.width + builder.textHeight(), size.height + builder.textHeight()};
  const SketchPoint toward = *note.target - note.place;
  const double reach =
      std::max(std::abs(toward.x) / (size.width / 2), std::abs(toward.y) / (size.height / 2));
  if (!(reach > 1)) return builder.take();
  const SketchPoint start = note.place + toward * (1 / reach);
  const double length = distanceBetween(start, *note.target);
  builder.line(start, *note.target);
  const double arrow = std::min(builder.onPaper(kArrow), length);
  if (length > 0) {
    const SketchPoint back = (start - *note.target) * (arrow / length);
    const SketchPoint side = perpendicular(back) * (1.0 / 6);
    builder.fill({*note.target, *note.target + back + side, *note.target + back - side});
  }
  return builder.take();
}

}  // namespace

SketchPoint labelPlace(const Room& room, SketchPoint place, SketchSize size,
                       const std::vector<SketchBox>& taken) {
  if (!isFinite(place) || fits(room, boxAround(place, size), taken)) return place;
  const double step = std::max(room.box.width(), room.box.height()) / kLabelSteps;
  for (int ring = 1; ring <= kLabelSteps; ++ring) {
    for (int i = 0; i < kLabelDirections; ++i) {
      const double angle = i * 2 * std::numbers::pi / kLabelDirections;
      const SketchPoint there = place + SketchPoint{std::cos(angle), std::sin(angle)} * (ring * step);
      if (fits(room, boxAround(there, size), taken)) return there;
    }
  }
  return place;
}

std::vector<Annotation> annotations(const Drawing& drawing, const RoomPlan* rooms,
                                    const OpeningLayout& openings, double unitsPerInch) {
  const Plan& plan = drawing.plan;
  std::vector<Annotation> all;
  const auto add = [&all](std::vector<Annotation> more) {
    all.insert(all.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
  };
  const TextWidth width = [](std::string_view text) { return annotationTextWidth(text); };
  if (plan.look.dimensionStrings && rooms != nullptr) {
    add(stringAnnotations(dimensionStrings(drawing, *rooms, openings, unitsPerInch), unitsPerInch, width));
  }
  for (const RoomDivider& divider : plan.roomDividers) all.push_back(dividerLine(divider, unitsPerInch));
  const RoomPlan none;
  std::vector<SketchBox> taken;
  if (!plan.roomNames.empty()) {
    for (const PlacedOpening& placed : openings.all()) {
      taken.push_back(openingBounds(openingShape(placed.opening, placed.wall)));
    }
  }
  for (const NamedRoom& named : namedRooms(rooms == nullptr ? none : *rooms, plan.roomNames)) {
    all.push_back(roomLabel(named, unitsPerInch, taken));
  }
  add(dimensionAnnotations(plan.dimensions, unitsPerInch, width));
  for (const Note& note : plan.notes) all.push_back(noteText(note, unitsPerInch));
  return all;
}

bool needsRooms(const Plan& plan) { return !plan.roomNames.empty() || plan.look.dimensionStrings; }

}  // namespace ostrelon
