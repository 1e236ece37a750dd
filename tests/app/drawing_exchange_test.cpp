// Export and import from the menus, as they are reported to the user.
#include "app/drawing_exchange.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/application.h"
#include "app/menu.h"
#include "core/adding.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"
#include "support/temporary_folder.h"
#include "updates/served_update_client.h"

namespace ostrelon {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

struct DrawingExchange : ::testing::Test {
  testing::TemporaryFolder home;
  VirtualScheduler scheduler{dateFromSeconds(1'767'225'600)};
  QueuedDialogs dialogs;
  DiskFileSystem files;
  MemoryUserDefaults defaults;
  ServedUpdateClient client{scheduler, home / "tmp"};
  std::string pictureOf;  // what was asked of the maker of pictures
  Application application{{.host = {scheduler, dialogs, files},
                           .defaults = defaults,
                           .updateClient = client,
                           .openInstaller = [](const FilePath&) { return true; },
                           .makePicture =
                               [this](ExportFormat format, const EntityList& entities,
                                      std::span<const WallSystemSpec>, const ExportOptions&) {
                                 pictureOf =
                                     std::string(fileEnding(format)) + std::to_string(entities.size());
                                 return std::string("picture");
                               }},
                          {.documentsFolder = home / "Documents", .updates = {}}};
  Sketch& sketch = application.workspace().sketch;
  Messages& messages = application.workspace().messages;

  std::string menu(const char* title) {
    const auto refusal = runMenuCommand(application, title);
    EXPECT_FALSE(refusal) << *refusal;
    return messages.lines->back().text;
  }
  std::string writeDxfFile(const char* name, const char* unit) {
    testing::writeBytes(home / name,
                        std::string("0\nSECTION\n2\nHEADER\n9\n$INSUNITS\n70\n") + unit +
                            "\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nLINE\n10\n0\n20\n0\n11\n3048\n"
                            "21\n0\n0\nENDSEC\n0\nEOF\n");
    return (home / name).string();
  }
  double lastLineLength() {
    const auto& line = std::get<LineEntity>(sketch.entities().back());
    return distanceBetween(line.from, line.to);
  }
};

TEST_F(DrawingExchange, ExportsToTheChosenPlaceInTheKindOfItsName) {
  addLine(sketch, {0, 0}, {1, 1});
  dialogs.queue((home / "plan.dxf").string());
  EXPECT_THAT(menu("File/Export…"), HasSubstr("Exported to"));
  EXPECT_THAT(testing::readBytes(home / "plan.dxf"), HasSubstr("LINE"));
  dialogs.queue((home / "plan.svg").string());
  menu("File/Export…");
  EXPECT_EQ(pictureOf, ".svg1");
  EXPECT_EQ(testing::readBytes(home / "plan.svg"), "picture");
  dialogs.queue((home / "plan").string());
  menu("File/Export…");
  EXPECT_THAT(testing::readBytes(home / "plan.pdf"), StartsWith("%PDF-")) << "the kind that was offered";
  EXPECT_EQ(std::get<ExportPanel>(dialogs.asked().back()).suggestedName, "Untitled Project.pdf");
}

TEST_F(DrawingExchange, AsksBeforeItReplacesWhatThePanelKnewNothingOf) {
  addLine(sketch, {0, 0}, {1, 1});
  dialogs.setConfirmsReplacing(true);
  testing::writeBytes(home / "plan.pdf", "theirs");
  dialogs.queue((home / "plan.").string());
  menu("File/Export…");
  EXPECT_EQ(std::get<Alert>(dialogs.asked().back()).buttons, (std::vector<std::string>{"Cancel", "Replace"}));
  EXPECT_EQ(testing::readBytes(home / "plan.pdf"), "theirs");
  dialogs.queue((home / "plan").string());
  dialogs.queue("Replace");
  EXPECT_THAT(menu("File/Export…"), HasSubstr("Exported to"));
  EXPECT_THAT(testing::readBytes(home / "plan.pdf"), StartsWith("%PDF-"));
}

TEST_F(DrawingExchange, AFailedExportSaysSoAndLeavesNothing) {
  dialogs.queue((home / "missing" / "plan.dxf").string());
  EXPECT_THAT(menu("File/Export…"), HasSubstr("Export failed: "));
  EXPECT_TRUE(messages.lines->back().isError);
  EXPECT_EQ((*messages.toast)->style, DocumentToastState::Style::error);
  dialogs.queue((home / "plan.bmp").string());
  EXPECT_THAT(menu("File/Export…"), HasSubstr("must end in .png, .svg, .pdf or .dxf"));
  EXPECT_FALSE(std::filesystem::exists(home / "plan.bmp"));
}

TEST_F(DrawingExchange, ImportAsksAboutUnitsOnlyWhereTheyDiffer) {
  dialogs.queue(writeDxfFile("feet.dxf", "2"));
  EXPECT_THAT(menu("File/Import DXF…"), HasSubstr("Imported 1 entity from \"feet.dxf\" in feet."));
  EXPECT_EQ(dialogs.asked().size(), 1U);

  dialogs.queue(writeDxfFile("metric.dxf", "4"));
  dialogs.queue("Convert to Feet");
  menu("File/Import DXF…");
  EXPECT_THAT(std::get<Alert>(dialogs.asked().back()).message, HasSubstr("millimeters"));
  EXPECT_NEAR(lastLineLength(), 10, 1e-9);

  dialogs.queue((home / "metric.dxf").string());
  dialogs.queue("Keep the Numbers");
  menu("File/Import DXF…");
  EXPECT_NEAR(lastLineLength(), 3048, 1e-9);

  dialogs.queue((home / "metric.dxf").string());
  dialogs.queue("Cancel");
  menu("File/Import DXF…");
  EXPECT_EQ(sketch.entities().size(), 3U);
}

TEST_F(DrawingExchange, AFileThatIsNoDrawingChangesNothing) {
  testing::writeBytes(home / "letter.dxf", "Dear Sir,\n");
  dialogs.queue((home / "letter.dxf").string());
  EXPECT_EQ(menu("File/Import DXF…"), "Import failed: This is not a DXF file.");
  EXPECT_TRUE(sketch.entities().empty());
  EXPECT_FALSE(*sketch.isDirty);
}

TEST_F(DrawingExchange, TheSamplePlanOpensAsADocumentOfItsOwn) {
  application.workspace().board.resizeCanvas({800, 600});
  menu("Help/Open Sample Plan");
  const DocumentSession& document = application.workspace().document;
  EXPECT_EQ(*document.name, "Cottage");
  EXPECT_GT(sketch.entities().size(), 50U);
  EXPECT_FALSE(document.fileURL->has_value());
  EXPECT_FALSE(document.isDirty());
  EXPECT_TRUE(sketch.undoStack->undoSnapshots().empty());
}

}  // namespace
}  // namespace ostrelon
