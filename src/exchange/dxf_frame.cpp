#include "exchange/dxf_frame.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "exchange/dxf_own_data.h"

namespace ostrelon {
namespace {

// Every object of a 2000 file has a number; these are those of the fixed ones.
constexpr DxfHandle kNothing{0};
constexpr DxfHandle kViewportTable{0x8};
constexpr DxfHandle kLineTypeTable{0x5};
constexpr DxfHandle kLayerTable{0x2};
constexpr DxfHandle kStyleTable{0x3};
constexpr DxfHandle kViewTable{0x6};
constexpr DxfHandle kUcsTable{0x7};
constexpr DxfHandle kApplicationTable{0x9};
constexpr DxfHandle kDimensionStyleTable{0xA};
constexpr DxfHandle kBlockRecordTable{0x1};
constexpr DxfHandle kRootDictionary{0xC};
constexpr DxfHandle kGroupDictionary{0xD};
constexpr DxfHandle kPlotStyleDictionary{0xE};
constexpr DxfHandle kNormalPlotStyle{0xF};
constexpr DxfHandle kBaseLayer{0x10};
constexpr DxfHandle kStandardStyle{0x11};
constexpr DxfHandle kApplication{0x12};
constexpr DxfHandle kOwnApplication{0x13};
constexpr DxfHandle kByBlock{0x14};
constexpr DxfHandle kByLayer{0x15};
constexpr DxfHandle kContinuous{0x16};
constexpr DxfHandle kCenter{0x17};
constexpr DxfHandle kLayoutDictionary{0x1A};
constexpr DxfHandle kPaperSpace{0x1B};
constexpr DxfHandle kPaperBlock{0x1C};
constexpr DxfHandle kPaperBlockEnd{0x1D};
constexpr DxfHandle kPaperLayout{0x1E};
constexpr DxfHandle kModelBlock{0x20};
constexpr DxfHandle kModelBlockEnd{0x21};
constexpr DxfHandle kModelLayout{0x22};
constexpr DxfHandle kActiveViewport{0x29};
constexpr DxfHandle kStandardDimensionStyle{0x27};
constexpr DxfHandle kFirstFree{0x30};

// The units of the file, by the numbers of $INSUNITS.
struct FileUnit {
  DxfExportUnit unit;
  int number;
  double perFoot;
  bool isMetric;
  std::string_view comment;
};
constexpr std::array kUnits{FileUnit{DxfExportUnit::feet, 2, 1, false, "Units: feet"},
                            FileUnit{DxfExportUnit::inches, 1, 12, false, "Units: inches"},
                            FileUnit{DxfExportUnit::millimeters, 4, 304.8, true, "Units: millimeters"}};

const FileUnit& unitOf(DxfExportUnit unit) {
  return *std::find_if(kUnits.begin(), kUnits.end(),
                       [unit](const FileUnit& known) { return known.unit == unit; });
}

constexpr int kForeground = 7;
constexpr std::array kWallColors{5, 1, 3, 6, 4, 30};  // of the format's numbered colours

bool is2000(const DxfFrame& frame) { return frame.form.version == DxfVersion::r2000; }

void beginSection(DxfOutput& out, std::string_view name) { out.groups({{0, "SECTION"}, {2, name}}); }
void endSection(DxfOutput& out) { out.text(0, "ENDSEC"); }

void writeHeader(DxfOutput& out, const DxfFrame& frame) {
  const FileUnit& unit = unitOf(frame.form.unit);
  // R12 has no variable for it.
  if (!is2000(frame)) out.text(999, unit.comment);
  beginSection(out, "HEADER");
  out.groups({{9, "$ACADVER"}, {1, is2000(frame) ? "AC1015" : "AC1009"}});
  if (is2000(frame)) {
    out.groups({{9, "$DWGCODEPAGE"}, {3, "ANSI_1252"}, {9, "$HANDSEED"}, {5, frame.firstFree}});
    out.groups({{9, "$INSUNITS"}, {70, unit.number}, {9, "$MEASUREMENT"}, {70, unit.isMetric ? 1 : 0}});
    // Programs that print a file as it is take their sheet from here, in the unit of the drawing.
    out.text(9, "$PLIMMIN");
    out.point(10, {0, 0});
    out.text(9, "$PLIMMAX");
    out.point(10, SketchPoint{11.0 / 12, 8.5 / 12} * unit.perFoot);
  }
  out.text(9, "$INSBASE");
  out.flatPoint(10, {0, 0});
  out.text(9, "$EXTMIN");
  out.flatPoint(10, {frame.bounds.minX, frame.bounds.minY});
  out.text(9, "$EXTMAX");
  out.flatPoint(10, {frame.bounds.maxX, frame.bounds.maxY});
  out.groups({{9, "$LTSCALE"}, {40, unit.perFoot}});
  endSection(out);
}

// The two kinds of objects below that the format does not know by itself.
void writeClasses(DxfOutput& out) {
  constexpr std::array<std::array<std::string_view, 2>, 2> classes{
      {{"ACDBDICTIONARYWDFLT", "AcDbDictionaryWithDefault"}, {"ACDBPLACEHOLDER", "AcDbPlaceHolder"}}};
  beginSection(out, "CLASSES");
  for (const auto& [name, className] : classes) {
    out.groups({{0, "CLASS"}, {1, name}, {2, className}, {3, "ObjectDBX Classes"}});
    out.groups({{90, 0}, {280, 0}, {281, 0}});
  }
  endSection(out);
}

void beginTable(DxfOutput& out, const DxfFrame& frame, std::string_view name, DxfHandle handle, int count) {
  out.groups({{0, "TABLE"}, {2, name}});
  if (is2000(frame)) out.groups({{5, handle}, {330, kNothing}, {100, "AcDbSymbolTable"}});
  out.integer(70, count);
}

void endTable(DxfOutput& out) { out.text(0, "ENDTAB"); }

// The start of a table's row. A 2000 file gives its number, its table and its class.
void beginRow(DxfOutput& out, const DxfFrame& frame, std::string_view kind, DxfHandle handle, DxfHandle table,
              std::string_view className) {
  out.text(0, kind);
  if (!is2000(frame)) return;
  out.groups({{5, handle}, {330, table}, {100, "AcDbSymbolTableRecord"}, {100, className}});
}

void writeViewports(DxfOutput& out, const DxfFrame& frame) {
  const SketchBox& box = frame.bounds;
  const double width = std::max(box.width(), 1.0);
  const double height = std::max(box.height(), 1.0);
  beginTable(out, frame, "VPORT", kViewportTable, 1);
  beginRow(out, frame, "VPORT", kActiveViewport, kViewportTable, "AcDbViewportTableRecord");
  out.groups({{2, "*ACTIVE"}, {70, 0}});
  out.point(10, {0, 0});
  out.point(11, {1, 1});
  out.point(12, {(box.minX + box.maxX) / 2, (box.minY + box.maxY) / 2});
  out.point(13, {0, 0});
  out.point(14, {1, 1});
  out.point(15, {1, 1});
  out.groups({{16, 0.0}, {26, 0.0}, {36, 1.0}});
  out.flatPoint(17, {0, 0});
  // The height of the view, for a window twice as wide as high.
  out.groups({{40, std::max(height, width / 2) * 1.1}, {41, 2.0}, {42, 50.0}, {43, 0.0}, {44, 0.0}});
  out.groups({{50, 0.0}, {51, 0.0}, {71, 0}, {72, 1000}, {73, 1}, {74, 3}});
  out.groups({{75, 0}, {76, 0}, {77, 0}, {78, 0}});
  endTable(out);
}

void writeLineTypes(DxfOutput& out, const DxfFrame& frame) {
  const auto solid = [&](std::string_view name, DxfHandle handle, std::string_view text) {
    beginRow(out, frame, "LTYPE", handle, kLineTypeTable, "AcDbLinetypeTableRecord");
    out.groups({{2, name}, {70, 0}, {3, text}, {72, 65}, {73, 0}, {40, 0.0}});
  };
  beginTable(out, frame, "LTYPE", kLineTypeTable, is2000(frame) ? 4 : 2);
  if (is2000(frame)) {
    solid("ByBlock", kByBlock, "");
    solid("ByLayer", kByLayer, "");
  }
  solid(is2000(frame) ? "Continuous" : "CONTINUOUS", kContinuous, "Solid line");
  beginRow(out, frame, "LTYPE", kCenter, kLineTypeTable, "AcDbLinetypeTableRecord");
  // One long and one short dash, feet.
  constexpr std::array dashes{1.25, -0.25, 0.25, -0.25};
  out.groups({{2, kDxfCenterLineType}, {70, 0}, {3, "Center ____ _ ____ _ ____"}, {72, 65}});
  out.groups({{73, static_cast<int>(dashes.size())}, {40, 2.0}});
  for (const double dash : dashes) {
    out.real(49, dash);
    if (is2000(frame)) out.integer(74, 0);
  }
  endTable(out);
}

void writeLayers(DxfOutput& out, const DxfFrame& frame) {
  const auto& names = frame.layers.names();
  const auto layer = [&](std::string_view name, DxfHandle handle, int color) {
    beginRow(out, frame, "LAYER", handle, kLayerTable, "AcDbLayerTableRecord");
    out.groups({{2, name}, {70, 0}, {62, color}, {6, is2000(frame) ? "Continuous" : "CONTINUOUS"}});
    if (is2000(frame)) out.handle(390, kNormalPlotStyle);
  };
  beginTable(out, frame, "LAYER", kLayerTable, static_cast<int>(names.size()) + 1);
  layer(kDxfBaseLayer, kBaseLayer, kForeground);
  for (std::size_t i = 0; i < names.size(); ++i) {
    // A negative colour turns a layer off.
    const int color = kWallColors[i % kWallColors.size()];
    layer(names[i], DxfHandle{kFirstFree.value + i}, names[i] == kDxfCenterLineLayer ? -color : color);
  }
  endTable(out);
}

void writeStyle(DxfOutput& out, const DxfFrame& frame) {
  beginTable(out, frame, "STYLE", kStyleTable, 1);
  beginRow(out, frame, "STYLE", kStandardStyle, kStyleTable, "AcDbTextStyleTableRecord");
  out.groups({{2, is2000(frame) ? "Standard" : "STANDARD"}, {70, 0}, {40, 0.0}, {41, 1.0}, {50, 0.0}});
  out.groups({{71, 0}, {42, 1.0}, {3, "txt"}, {4, ""}});
  endTable(out);
}

void writeEmptyTable(DxfOutput& out, const DxfFrame& frame, std::string_view name, DxfHandle handle) {
  beginTable(out, frame, name, handle, 0);
  endTable(out);
}

void writeApplications(DxfOutput& out, const DxfFrame& frame) {
  beginTable(out, frame, "APPID", kApplicationTable, 2);
  beginRow(out, frame, "APPID", kApplication, kApplicationTable, "AcDbRegAppTableRecord");
  out.groups({{2, "ACAD"}, {70, 0}});
  beginRow(out, frame, "APPID", kOwnApplication, kApplicationTable, "AcDbRegAppTableRecord");
  out.groups({{2, kDxfOwnApplication}, {70, 0}});
  endTable(out);
}

void writeDimensionStyles(DxfOutput& out) {
  out.groups({{0, "TABLE"}, {2, "DIMSTYLE"}, {5, kDimensionStyleTable}, {330, kNothing}});
  out.groups({{100, "AcDbSymbolTable"}, {70, 1}, {100, "AcDbDimStyleTable"}, {71, 0}});
  out.groups({{0, "DIMSTYLE"}, {105, kStandardDimensionStyle}, {330, kDimensionStyleTable}});
  out.groups({{100, "AcDbSymbolTableRecord"}, {100, "AcDbDimStyleTableRecord"}});
  out.groups({{2, "Standard"}, {70, 0}});
  endTable(out);
}

void writeBlockRecords(DxfOutput& out, const DxfFrame& frame) {
  const auto record = [&](std::string_view name, DxfHandle handle, DxfHandle layout) {
    beginRow(out, frame, "BLOCK_RECORD", handle, kBlockRecordTable, "AcDbBlockTableRecord");
    out.groups({{2, name}, {340, layout}});
  };
  beginTable(out, frame, "BLOCK_RECORD", kBlockRecordTable, 2);
  record("*Model_Space", kDxfModelSpace, kModelLayout);
  record("*Paper_Space", kPaperSpace, kPaperLayout);
  endTable(out);
}

void writeTables(DxfOutput& out, const DxfFrame& frame) {
  beginSection(out, "TABLES");
  writeViewports(out, frame);
  writeLineTypes(out, frame);
  writeLayers(out, frame);
  writeStyle(out, frame);
  writeEmptyTable(out, frame, "VIEW", kViewTable);
  writeEmptyTable(out, frame, "UCS", kUcsTable);
  writeApplications(out, frame);
  if (is2000(frame)) {
    writeDimensionStyles(out);
    writeBlockRecords(out, frame);
  }
  endSection(out);
}

void writeBlocks(DxfOutput& out, const DxfFrame& frame) {
  const auto block = [&](std::string_view name, DxfHandle space, DxfHandle begin, DxfHandle end,
                         bool isPaper) {
    out.groups({{0, "BLOCK"}, {5, begin}, {330, space}, {100, "AcDbEntity"}});
    if (isPaper) out.integer(67, 1);
    out.groups({{8, kDxfBaseLayer}, {100, "AcDbBlockBegin"}, {2, name}, {70, 0}});
    out.flatPoint(10, {0, 0});
    out.groups({{3, name}, {1, ""}, {0, "ENDBLK"}, {5, end}, {330, space}, {100, "AcDbEntity"}});
    if (isPaper) out.integer(67, 1);
    out.groups({{8, kDxfBaseLayer}, {100, "AcDbBlockEnd"}});
  };
  beginSection(out, "BLOCKS");
  if (is2000(frame)) {
    block("*Model_Space", kDxfModelSpace, kModelBlock, kModelBlockEnd, false);
    block("*Paper_Space", kPaperSpace, kPaperBlock, kPaperBlockEnd, true);
  }
  endSection(out);
}

void writeLayout(DxfOutput& out, const DxfFrame& frame, std::string_view name, DxfHandle handle,
                 DxfHandle space, int order) {
  const bool isModel = order == 0;
  out.groups({{0, "LAYOUT"}, {5, handle}, {330, kLayoutDictionary}, {100, "AcDbPlotSettings"}});
  out.groups({{1, ""}, {2, ""}, {4, ""}, {6, ""}, {40, 0.0}, {41, 0.0}, {42, 0.0}, {43, 0.0}});
  // A sheet of 17 by 11 inches, given in millimetres.
  out.groups({{44, 431.8}, {45, 279.4}, {46, 0.0}, {47, 0.0}, {48, 0.0}, {49, 0.0}});
  out.groups({{140, 0.0}, {141, 0.0}, {142, 1.0}, {143, 1.0}, {70, isModel ? 1024 : 0}});
  out.groups({{72, 0}, {73, 0}, {74, 5}, {7, ""}, {75, 16}, {147, 1.0}, {148, 0.0}, {149, 0.0}});
  out.groups({{100, "AcDbLayout"}, {1, name}, {70, 1}, {71, order}});
  out.point(10, {0, 0});
  out.point(11, {17, 11});
  out.flatPoint(12, {0, 0});
  out.flatPoint(14, {frame.bounds.minX, frame.bounds.minY});
  out.flatPoint(15, {frame.bounds.maxX, frame.bounds.maxY});
  out.real(146, 0);
  out.flatPoint(13, {0, 0});
  out.flatPoint(16, {1, 0});
  out.flatPoint(17, {0, 1});
  out.groups({{76, 0}, {330, space}});
}

void beginDictionary(DxfOutput& out, DxfHandle handle, DxfHandle owner) {
  out.groups({{0, "DICTIONARY"}, {5, handle}, {330, owner}, {100, "AcDbDictionary"}, {281, 1}});
}

void writeObjects(DxfOutput& out, const DxfFrame& frame) {
  beginSection(out, "OBJECTS");
  beginDictionary(out, kRootDictionary, kNothing);
  out.groups({{3, "ACAD_GROUP"}, {350, kGroupDictionary}, {3, "ACAD_LAYOUT"}, {350, kLayoutDictionary}});
  out.groups({{3, "ACAD_PLOTSTYLENAME"}, {350, kPlotStyleDictionary}});
  beginDictionary(out, kGroupDictionary, kRootDictionary);
  beginDictionary(out, kLayoutDictionary, kRootDictionary);
  out.groups({{3, "Model"}, {350, kModelLayout}, {3, "Layout1"}, {350, kPaperLayout}});
  out.groups({{0, "ACDBDICTIONARYWDFLT"}, {5, kPlotStyleDictionary}, {330, kRootDictionary}});
  out.groups({{100, "AcDbDictionary"}, {281, 1}, {3, "Normal"}, {350, kNormalPlotStyle}});
  out.groups({{100, "AcDbDictionaryWithDefault"}, {340, kNormalPlotStyle}});
  out.groups({{0, "ACDBPLACEHOLDER"}, {5, kNormalPlotStyle}, {330, kPlotStyleDictionary}});
  writeLayout(out, frame, "Model", kModelLayout, kDxfModelSpace, 0);
  writeLayout(out, frame, "Layout1", kPaperLayout, kPaperSpace, 1);
  endSection(out);
}

}  // namespace

double dxfUnitsPerFoot(DxfExportUnit unit) { return unitOf(unit).perFoot; }

DxfHandle firstEntityHandle(const DxfLayers& layers) { return {kFirstFree.value + layers.names().size()}; }

void writeDxfHead(DxfOutput& out, const DxfFrame& frame) {
  writeHeader(out, frame);
  if (is2000(frame)) writeClasses(out);
  writeTables(out, frame);
  writeBlocks(out, frame);
  beginSection(out, "ENTITIES");
}

void writeDxfTail(DxfOutput& out, const DxfFrame& frame) {
  endSection(out);
  if (is2000(frame)) writeObjects(out, frame);
  out.text(0, "EOF");
}

}  // namespace ostrelon
