// Export options by name and text, and the pages that they make.
#include "exchange/export_options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ostrelon {
namespace {

using ::testing::HasSubstr;

ExportOptions with(std::initializer_list<std::pair<const char*, const char*>> told) {
  ExportOptions options;
  for (const auto& [name, value] : told) setExportOption(options, name, value);
  return options;
}

std::string refusal(std::initializer_list<std::pair<const char*, const char*>> told) {
  try {
    with(told);
  } catch (const ExportOptionError& error) {
    return error.what();
  }
  return "";
}

const EntityList kFortyFeet{LineEntity{UUID::random(), {0, 0}, {40, 20}}};

std::string layoutRefusal(ExportFormat format, const ExportOptions& options) {
  try {
    picturePages(format, kFortyFeet, {}, options);
  } catch (const UserError& error) {
    return error.what();
  }
  return "";
}

TEST(ExportOptions, AreToldByNameAndText) {
  const ExportOptions options = with({{"size", "640x480"},
                                      {"pixel-ratio", "3x"},
                                      {"paper", "arch d"},
                                      {"scale", "1:50"},
                                      {"orientation", "landscape"},
                                      {"theme", "tansy"},
                                      {"grid", "on"},
                                      {"dxf", "r12"},
                                      {"dxf-layers", "kind"},
                                      {"dxf-units", "mm"}});
  EXPECT_EQ(options.size, (SketchSize{640, 480}));
  EXPECT_EQ(options.pixelRatio, 3);
  EXPECT_EQ(options.paper->name, "ARCH D");
  EXPECT_EQ(options.scale->ratio, 50);
  EXPECT_EQ(options.orientation, PageOrientation::landscape);
  EXPECT_EQ(options.theme, ExportTheme::tansy);
  EXPECT_TRUE(options.showGrid);
  EXPECT_EQ(options.dxf.version, DxfVersion::r12);
  EXPECT_EQ(options.dxf.layering, DxfLayering::byKind);
  EXPECT_EQ(options.dxf.unit, DxfExportUnit::millimeters);
  for (const std::string_view name : exportOptionNames()) {
    EXPECT_THAT(refusal({{std::string(name).c_str(), "?"}}), HasSubstr("\"?\"")) << name;
  }
  EXPECT_THAT(refusal({{"colour", "red"}}), HasSubstr("no export option \"colour\""));
  EXPECT_THAT(refusal({{"paper", "napkin"}}), HasSubstr("ARCH D, ARCH E, A4"));
  EXPECT_NE(refusal({{"pixel-ratio", "5"}}), "");
}

TEST(ExportOptions, TheKindOfFileIsTheEndingOfItsName) {
  EXPECT_EQ(exportFormatOf("a/b.PNG"), ExportFormat::png);
  EXPECT_EQ(exportFormatOf("b.dxf"), ExportFormat::dxf);
  EXPECT_EQ(fileEnding(ExportFormat::svg), ".svg");
  EXPECT_THROW(exportFormatOf("plan"), ExportOptionError);
  EXPECT_THROW(exportFormatOf("plan.dwg"), ExportOptionError);
}

TEST(PicturePages, AreOfTheSizeOfTheSheetOrOfTheDrawing) {
  const auto bySize = picturePages(ExportFormat::png, kFortyFeet, {}, with({{"size", "300x200"}}));
  EXPECT_EQ(bySize.front().size, (SketchSize{300, 200}));
  ExportOptions several = with({{"paper", "Letter"}, {"scale", "1/4in=1ft"}, {"orientation", "portrait"}});
  several.documentName = "House";
  EXPECT_THAT(picturePages(ExportFormat::pdf, kFortyFeet, {}, several).back().label,
              HasSubstr("House, page 2 of 2, row 1, column 2, 1/4"));
  const auto onPaper =
      picturePages(ExportFormat::pdf, kFortyFeet, {}, with({{"paper", "Letter"}, {"scale", "1:24"}}));
  EXPECT_EQ(onPaper.size(), 3U) << "20 inches by 10, on upright sheets of 7.5 by 10";
  EXPECT_DOUBLE_EQ(onPaper[0].viewport.scale, 36);
  const auto own = picturePages(ExportFormat::svg, kFortyFeet, {}, with({{"scale", "1/4in"}}));
  EXPECT_DOUBLE_EQ(own.front().size.width, 720 + 36);
  EXPECT_DOUBLE_EQ(own.front().size.height, 360 + 36);
  EXPECT_DOUBLE_EQ(pixelsPerPoint(with({{"pixel-ratio", "2"}})), 2);
  EXPECT_DOUBLE_EQ(pixelsPerPoint(with({{"pixel-ratio", "3"}, {"paper", "A4"}})), 4)
      << "96 to the inch, thrice";
}

TEST(PicturePages, SayWhatDoesNotFit) {
  EXPECT_THAT(layoutRefusal(ExportFormat::png, with({{"paper", "Letter"}, {"scale", "1:24"}})),
              HasSubstr("takes 3 sheets of Letter, and only a PDF has pages"));
  EXPECT_THAT(layoutRefusal(ExportFormat::png, with({{"size", "16000x100"}, {"pixel-ratio", "2"}})),
              HasSubstr("32000 pixels long"));
  EXPECT_THAT(layoutRefusal(ExportFormat::pdf, with({{"scale", "1:1"}})), HasSubstr("more than 200 inches"));
  EXPECT_THAT(layoutRefusal(ExportFormat::pdf, with({{"orientation", "portrait"}})),
              HasSubstr("only with a sheet"));
}

}  // namespace
}  // namespace ostrelon
