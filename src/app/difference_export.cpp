#include "app/difference_export.h"

#include <algorithm>

#include "exchange/dxf_writer.h"
#include "interaction/canvas_renderer.h"
#include "interaction/difference_layers.h"

namespace ostrelon {
namespace {

// Clouds of a DXF file: how far around a group, and how wide an arc is, as parts of the whole drawing.
constexpr double kCloudRoomPart = 0.006;
constexpr double kCloudChordPart = 0.01;
// What a cloud takes of a margin, points.
constexpr double kCloudMargin = 20;

EntityList unchangedOf(const Drawing& after, const DifferenceLayers& layers) {
  std::vector<SketchEntity> unchanged;
  for (const SketchEntity& entity : after.entities) {
    if (!layers.ids.contains(entityID(entity))) unchanged.push_back(entity);
  }
  return EntityList(std::move(unchanged));
}

// Everything that is painted, which a page has to hold.
EntityList allOf(const EntityList& unchanged, const DifferenceLayers& layers) {
  EntityList all = unchanged;
  for (const DifferenceLayer layer : kDifferenceLayers) {
    const EntityList& entities = layers.of(layer);
    all.append(std::vector<SketchEntity>(entities.begin(), entities.end()));
  }
  return all;
}

std::vector<WallSystemSpec> allSystems(const DifferenceLayers& layers) {
  std::vector<WallSystemSpec> systems = layers.systemsAfter;
  systems.insert(systems.end(), layers.systemsBefore.begin(), layers.systemsBefore.end());
  return systems;
}

EntityList cloudsOf(const EntityList& unchanged, const DifferenceLayers& layers) {
  const auto whole = paintedBounds(allOf(unchanged, layers), allSystems(layers));
  std::vector<SketchEntity> clouds;
  if (!whole) return {};
  const double size = std::max({whole->width(), whole->height(), 1e-6});
  for (const DifferenceGroup& group : layers.groups) {
    if (!isFinite(group.box)) continue;
    const SketchBox box = group.box.grown(size * kCloudRoomPart);
    clouds.emplace_back(PolygonEntity{UUID::random(), revisionCloud(box, size * kCloudChordPart)});
  }
  return EntityList(std::move(clouds));
}

void writeDifferenceDxf(const EntityList& unchanged, const DifferenceLayers& layers, DxfForm form,
                        const FileSystem::Writer& write) {
  std::vector<DxfLayerContent> contents{{"UNCHANGED", unchanged, layers.systemsAfter}};
  constexpr std::array<const char*, kDifferenceLayers.size()> names{"CHANGED-BEFORE", "REMOVED",
                                                                    "CHANGED-AFTER", "ADDED"};
  for (const DifferenceLayer layer : kDifferenceLayers) {
    contents.push_back({names[static_cast<std::size_t>(layer)], layers.of(layer), layers.systemsOf(layer)});
  }
  contents.push_back({"CLOUDS", cloudsOf(unchanged, layers), {}});
  writeDxfByLayer(contents, form, write);
}

}  // namespace

void exportDifference(const DrawingDifference& difference, const Drawing& before, const Drawing& after,
                      FileSystem& files, const FilePath& path, const ExportOptions& options,
                      const PagePictureMaker& makePicture) {
  const ExportFormat format = exportFormatOf(path);
  const DifferenceLayers layers = differenceLayers(difference, before.wallSystemSpecs, after.wallSystemSpecs);
  const EntityList unchanged = unchangedOf(after, layers);
  if (format == ExportFormat::dxf) {
    files.writeFile(path, [&](const FileSystem::Writer& write) {
      writeDifferenceDxf(unchanged, layers, options.dxf, write);
    });
    return;
  }
  auto pages = picturePages(format, allOf(unchanged, layers), allSystems(layers), options);
  // Clouds reach out of the drawing, into the margin of a sheet.
  for (PicturePage& page : pages) {
    if (!page.hasNeighbors) page.margin = std::max(0.0, page.margin - kCloudMargin);
  }
  const PagePaint paint = [&](CanvasPainter& painter, const PicturePage& page) {
    CanvasFrame frame = pictureFrame(page, options);
    frame.part = paintedPart(page);
    if (options.showGrid) paintGrid(painter, frame);
    paintDifference(painter, frame, layers, unchanged);
  };
  if (format == ExportFormat::pdf) {
    files.writeFile(path, [&](const FileSystem::Writer& write) { writePdf(pages, options, paint, write); });
    return;
  }
  if (!makePicture) {
    throw ExportOptionError("Pictures of pixels cannot be drawn here; PDF and DXF can be written.");
  }
  files.writeFile(path, makePicture(format, pages.front(), options, paint));
}

}  // namespace ostrelon
