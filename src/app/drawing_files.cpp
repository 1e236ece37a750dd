#include "app/drawing_files.h"

#include <fmt/format.h>

#include <optional>
#include <utility>

#include "documents/merge.h"
#include "documents/number_text.h"
#include "documents/opened_document.h"
#include "documents/sketch_document_io.h"

namespace ostrelon {
namespace {

constexpr std::string_view kNoFile = "/dev/null";

// A document that version control says is not there.
bool isNoFile(const FilePath& path) { return path == FilePath(kNoFile); }

OpenedDocument readDocument(FileSystem& files, const FilePath& given) {
  const FilePath path = standardizedPath(given);
  try {
    return openedDocument(SketchDocumentIO::decodeDocument(files.readFile(path)), Drawing());
  } catch (const DocumentFormatError& error) {
    throw UserError(fmt::format("Could not read {}: {}", quotedName(path), error.what()));
  }
}

Drawing readDrawing(FileSystem& files, const FilePath& path) {
  if (!isNoFile(path)) return readDocument(files, path).drawing;
  Drawing none;
  none.wallSystemSpecs.clear();
  return none;
}

std::optional<Drawing> readBase(FileSystem& files, const FilePath& path) {
  if (isNoFile(path)) return std::nullopt;
  const auto info = files.info(standardizedPath(path));
  if (info && info->isRegularFile && info->size == 0) return std::nullopt;
  return readDocument(files, path).drawing;
}

// The sign of a negative zero stays in a file, and says nothing.
std::string numberText(double number) { return number32Text(number == 0 ? 0 : number); }

std::string pointText(SketchPoint point) { return numberText(point.x) + ' ' + numberText(point.y); }

std::string shapeText(const SketchEntity& entity, const Drawing& drawing) {
  return std::visit(
      Overloaded{[](const LineEntity& line) { return pointText(line.from) + ' ' + pointText(line.to); },
                 [&](const WallEntity& wall) {
                   const WallSystemSpec* system = drawing.wallSystem(wall.systemSpecID);
                   return pointText(wall.from) + ' ' + pointText(wall.to) + ' ' +
                          (system == nullptr ? "unknown" : quotedText(system->name));
                 },
                 [](const CircleEntity& circle) {
                   return pointText(circle.center) + ' ' + numberText(circle.radius);
                 },
                 [](const ArcEntity& arc) {
                   return pointText(arc.center) + ' ' + numberText(arc.radius) + ' ' +
                          numberText(arc.startAngle) + ' ' + numberText(arc.endAngle);
                 },
                 [](const RectangleEntity& rectangle) {
                   return pointText(rectangle.origin) + ' ' + numberText(rectangle.size.width) + ' ' +
                          numberText(rectangle.size.height);
                 },
                 [](const PolygonEntity& polygon) {
                   std::string text;
                   for (const SketchPoint vertex : polygon.vertices) {
                     text += (text.empty() ? "" : " ") + pointText(vertex);
                   }
                   return text;
                 }},
      entity);
}

}  // namespace

int compareFiles(const CommandLine& line, FileSystem& files, const PrintLine& print,
                 const PagePictureMaker& makePicture) {
  const Drawing before = readDrawing(files, line.files.at(0));
  const Drawing after = readDrawing(files, line.files.at(1));
  const DrawingDifference difference = compareDrawings(before, after, NumberPrecision::asInFiles);
  for (const FilePath& path : line.exports) {
    exportDifference(difference, before, after, files, standardizedPath(path), line.exportOptions,
                     makePicture);
  }
  print(differenceCounts(difference));
  for (const std::string& text : differenceLines(difference, before, after)) print(text);
  return difference.empty() ? 0 : 1;
}

int mergeFiles(const CommandLine& line, FileSystem& files, const PrintLine& print) {
  const std::optional<Drawing> base = readBase(files, line.files.at(0));
  OpenedDocument ours = readDocument(files, line.files.at(1));
  const Drawing theirs = readDocument(files, line.files.at(2)).drawing;
  const Merge merge =
      mergeDrawings(base ? &*base : nullptr, ours.drawing, theirs, NumberPrecision::asInFiles);
  if (!merge.conflicts.empty() && !line.prefer) {
    const std::size_t count = merge.conflicts.size();
    print(fmt::format("{} conflict{}:", count, count == 1 ? "" : "s"));
    for (const MergeConflict& conflict : merge.conflicts) print(conflictText(conflict, ours.drawing, theirs));
    return 1;
  }
  const Drawing merged = mergedDrawing(
      merge, ours.drawing, [&](const MergeConflict&) { return line.prefer.value_or(MergeChoice::ours); });
  const DrawingDifference taken = compareDrawings(ours.drawing, merged);
  if (!merge.empty()) {
    Drawing before = std::exchange(ours.drawing, merged);
    UndoTwin twin;
    if (before.plan != merged.plan) twin.plan = std::move(before.plan);
    ours.undo.push_back({std::move(before.entities), std::move(twin)});
  }
  const SketchDocumentV2 document = documentOf(std::move(ours.name), ours.drawing, ours.viewport, ours.undo);
  files.writeFile(standardizedPath(*line.saveAs), [&](const FileSystem::Writer& write) {
    SketchDocumentIO::encodeDocument(document, write);
  });
  print(taken.empty() ? "Nothing to merge." : "Merged: " + differenceCounts(taken));
  return 0;
}

void describeDrawing(const Drawing& drawing, const PrintLine& print) {
  for (const WallSystemSpec& system : drawing.wallSystemSpecs) {
    print(fmt::format("wall-system {} {} thickness {} height {} notes {}", system.id.text(),
                      quotedText(system.name), numberText(system.thickness), numberText(system.height),
                      quotedText(system.assemblyNotes)));
  }
  for (const SketchEntity& entity : drawing.entities) {
    print(
        fmt::format("{} {} {}", entityKindName(entity), entityID(entity).text(), shapeText(entity, drawing)));
  }
  const Plan& plan = drawing.plan;
  for (const Opening& opening : plan.openings) {
    print(fmt::format("{} {} wall {} distance {} width {} hinge {} swing {}", openingKindName(opening.kind),
                      opening.id.text(), opening.wallID.text(), number64Text(opening.distance),
                      number64Text(opening.width), hingeName(opening.hinge), swingName(opening.swing)));
  }
  if (plan.look != PlanLook()) {
    const auto word = [](bool isOn) { return isOn ? "on" : "off"; };
    print(fmt::format("look clean {} fill {} weights {}", word(plan.look.cleanWalls),
                      word(plan.look.filledWalls), word(plan.look.lineWeights)));
  }
}

int describeFile(const CommandLine& line, FileSystem& files, const PrintLine& print) {
  describeDrawing(readDrawing(files, line.files.at(0)), print);
  return 0;
}

}  // namespace ostrelon
