#include "exchange/dxf_import.h"

#include <fmt/format.h>

#include <cmath>

#include "core/adding.h"
#include "core/entity_bounds.h"
#include "interaction/board.h"

namespace ostrelon {
namespace {

SketchEntity scaled(const SketchEntity& entity, double factor) {
  return std::visit(
      Overloaded{
          [&](const LineEntity& line) -> SketchEntity {
            return LineEntity{line.id, line.from * factor, line.to * factor};
          },
          [&](const WallEntity& wall) -> SketchEntity {
            return WallEntity{wall.id, wall.from * factor, wall.to * factor, wall.systemSpecID};
          },
          [&](const CircleEntity& circle) -> SketchEntity {
            return CircleEntity{circle.id, circle.center * factor, circle.radius * factor};
          },
          [&](const ArcEntity& arc) -> SketchEntity {
            return ArcEntity{arc.id, arc.center * factor, arc.radius * factor, arc.startAngle, arc.endAngle};
          },
          [&](const RectangleEntity& rectangle) -> SketchEntity {
            return RectangleEntity{rectangle.id,
                                   rectangle.origin * factor,
                                   {rectangle.size.width * factor, rectangle.size.height * factor}};
          },
          [&](const PolygonEntity& polygon) -> SketchEntity {
            std::vector<SketchPoint> vertices;
            vertices.reserve(polygon.vertices.size());
            for (const SketchPoint vertex : polygon.vertices) vertices.push_back(vertex * factor);
            return PolygonEntity{polygon.id, PolygonVertices(std::move(vertices))};
          },
      },
      entity);
}

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

std::string leftOutText(const DxfDrawing& drawing) {
  std::string kinds;
  for (const auto& [kind, count] : drawing.leftOut) {
    kinds += fmt::format("{}{} {}", kinds.empty() ? "" : ", ", kind, count);
  }
  return counted(drawing.leftOutCount(), "object", "objects") + " that cannot be drawn here: " + kinds;
}

}  // namespace

std::vector<SketchEntity> scaledEntities(std::vector<SketchEntity> entities, double factor) {
  for (SketchEntity& entity : entities) {
    entity = scaled(entity, factor);
    if (!isFinite(entityBounds(entity))) throw DxfError("The drawing is too large to convert.");
  }
  return entities;
}

std::string dxfImportSentence(const DxfDrawing& drawing, const std::string& fileName) {
  std::string sentence = fmt::format("Imported {} from \"{}\"",
                                     counted(drawing.entities.size(), "entity", "entities"), fileName);
  if (drawing.leftOutCount() > 0) sentence += "; left out " + leftOutText(drawing);
  return sentence + ".";
}

void importDxf(Board& board, DxfDrawing drawing, const std::string& fileName, bool convertToFeet) {
  if (drawing.entities.empty()) {
    throw DxfError(drawing.leftOutCount() == 0
                       ? "There is nothing in the file."
                       : "There is nothing in the file but " + leftOutText(drawing) + ".");
  }
  std::string sentence = dxfImportSentence(drawing, fileName);
  const double factor = convertToFeet && drawing.unit ? drawing.unit->feet : 1;
  std::vector<SketchEntity> entities =
      factor == 1 ? std::move(drawing.entities) : scaledEntities(std::move(drawing.entities), factor);
  const bool wasEmpty = board.sketch().entities().empty();
  addEntities(board.sketch(), std::move(entities));
  board.messages().append(std::move(sentence), false, true);
  if (wasEmpty) board.zoomToFit(board.view->canvasSize);
}

}  // namespace ostrelon
