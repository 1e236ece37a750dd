// Export and print as other programs see them: the size of what is drawn on paper.
#include <QComboBox>
#include <QDialog>
#include <QFileDialog>
#include <QImage>
#include <QPrinter>
#include <QTimer>
#include <cstdlib>
#include <fstream>

#include "core/adding.h"
#include "exchange/picture_page.h"
#include "geometry/opening_operations.h"
#include "shell/drawing_export.h"
#include "shell/export_sheet.h"
#include "shell/golden_picture.h"
#include "shell/help_window.h"
#include "shell/print_window.h"
#include "shell/qt_dialogs.h"
#include "window_fixture.h"

namespace ostrelon {
namespace {

struct ExportAndPrint : testing::WindowFixture {
  ExportAndPrint() {
    // Forty feet by twenty, which is ten inches by five at a quarter of an inch to the foot.
    addRectangle(sketch, {0, 0}, {40, 20});
  }
  static bool isInstalled(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
  }
  static ExportOptions onPaper(const char* paper, const char* scale) {
    ExportOptions options;
    setExportOption(options, "paper", paper);
    setExportOption(options, "scale", scale);
    return options;
  }
  std::string pdf(const ExportOptions& options) {
    std::string bytes;
    writePdf(picturePages(ExportFormat::pdf, sketch.entities(), sketch.drawing->wallSystemSpecs, options),
             sketch.entities(), sketch.drawing->wallSystemSpecs, options,
             [&](std::string_view piece) { bytes += piece; });
    return bytes;
  }
  QByteArray picture(ExportFormat format, const ExportOptions& options) {
    return drawingPicture(format, sketch.entities(), sketch.drawing->wallSystemSpecs, options);
  }
  /// The box of everything dark, from the middles of its lines, in inches.
  static QRectF inkOf(const QImage& image, double pixelsPerInch) {
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        if (qGray(image.pixel(x, y)) < 100) ink |= QRect(x, y, 1, 1);
      }
    }
    const double line = 1.5 / 72 * pixelsPerInch;
    return {(ink.left() + line / 2) / pixelsPerInch, (ink.top() + line / 2) / pixelsPerInch,
            (ink.width() - line) / pixelsPerInch, (ink.height() - line) / pixelsPerInch};
  }
  /// A page of a PDF as poppler draws it, 144 pixels to the inch.
  QImage popplersPage(const std::filesystem::path& pdf, int page) {
    const std::string out = (home / "page").string();
    const std::string command = "pdftoppm -r 144 -png -singlefile -f " + std::to_string(page) + " -l " +
                                std::to_string(page) + " " + pdf.string() + " " + out;
    if (std::system(command.c_str()) != 0) return {};
    return QImage(QString::fromStdString(out + ".png"));
  }
  void expectTenByFiveInches(const QImage& image, double pixelsPerInch) {
    ASSERT_FALSE(image.isNull());
    const QRectF ink = inkOf(image, pixelsPerInch);
    EXPECT_NEAR(ink.width(), 10, 0.02);
    EXPECT_NEAR(ink.height(), 5, 0.02);
    EXPECT_NEAR(ink.center().x(), image.width() / pixelsPerInch / 2, 0.02) << "in the middle of the sheet";
  }
};

TEST_F(ExportAndPrint, APdfIsAtTrueScale) {
  if (!isInstalled("pdftoppm")) GTEST_SKIP() << "poppler-utils is not installed";
  const auto path = home / "plan.pdf";
  testing::writeBytes(path, pdf(onPaper("Tabloid", "1/4in=1ft")));
  const QImage page = popplersPage(path, 1);
  EXPECT_EQ(page.size(), QSize(17 * 144, 11 * 144));
  expectTenByFiveInches(page, 144);
}

TEST_F(ExportAndPrint, APdfOnSeveralSheetsGoesOnAtTheirEdges) {
  if (!isInstalled("pdftoppm")) GTEST_SKIP() << "poppler-utils is not installed";
  const auto path = home / "plan.pdf";
  ExportOptions options = onPaper("Letter", "1/4in=1ft");
  setExportOption(options, "orientation", "portrait");
  testing::writeBytes(path, pdf(options));
  const QRectF left = inkOf(popplersPage(path, 1), 144);
  const QRectF right = inkOf(popplersPage(path, 2), 144);
  EXPECT_NEAR(left.width() + right.width(), 10, 0.05) << "half of it on each";
  EXPECT_NEAR(left.right(), 8, 0.03) << "up to the margin";
  EXPECT_NEAR(right.left(), 0.5, 0.03);
}

TEST_F(ExportAndPrint, AnSvgIsAtTrueScaleToo) {
  if (!isInstalled("rsvg-convert")) GTEST_SKIP() << "librsvg2-bin is not installed";
  testing::writeBytes(home / "plan.svg",
                      picture(ExportFormat::svg, onPaper("Tabloid", "1:48")).toStdString());
  const std::string png = (home / "plan.png").string();
  ASSERT_EQ(std::system(("rsvg-convert --dpi-x 144 --dpi-y 144 --background-color white -o " + png + " " +
                         (home / "plan.svg").string())
                            .c_str()),
            0);
  expectTenByFiveInches(QImage(QString::fromStdString(png)), 144);
}

TEST_F(ExportAndPrint, APngHasThePixelsThatWereAskedFor) {
  ExportOptions options;
  setExportOption(options, "size", "300x200");
  setExportOption(options, "pixel-ratio", "3");
  EXPECT_EQ(QImage::fromData(picture(ExportFormat::png, options)).size(), QSize(900, 600));
  const QImage sheet = QImage::fromData(picture(ExportFormat::png, onPaper("Tabloid", "1/4in")));
  EXPECT_EQ(sheet.size(), QSize(17 * 96, 11 * 96));
  EXPECT_NEAR(sheet.dotsPerMeterX() * 0.0254, 96, 0.1) << "so that it prints at its size";
  expectTenByFiveInches(sheet, 96);
}

TEST_F(ExportAndPrint, APrintIsAtTrueScale) {
  if (!isInstalled("pdftoppm")) GTEST_SKIP() << "poppler-utils is not installed";
  const auto path = home / "print.pdf";
  QPrinter printer(QPrinter::HighResolution);
  printer.setOutputFormat(QPrinter::PdfFormat);
  printer.setOutputFileName(QString::fromStdString(path.string()));
  EXPECT_EQ(printDrawing(printer, workspace, onPaper("Tabloid", "1/4in")), 1);
  expectTenByFiveInches(popplersPage(path, 1), 144);
}

TEST_F(ExportAndPrint, TheSheetAsksAndTheFileIsWritten) {
  QWidget window;
  window.resize(900, 700);
  present(window);
  auto* sheet = new ExportSheet(application, theme, window);
  sheet->open();
  const auto choose = [&](const char* identifier, const char* data) {
    auto* picker = find<QComboBox>(window, identifier);
    const int index = picker->findData(QString::fromUtf8(data));
    ASSERT_GE(index, 0) << data;
    picker->setCurrentIndex(index);
  };
  choose("export.kind", "dxf");
  EXPECT_FALSE(find<QWidget>(window, "export.grid")->isVisible());
  choose("export.dxf", "r12");
  dialogs.queue((home / "plan.dxf").string());
  press(window, "export.confirm");
  EXPECT_NE(testing::readBytes(home / "plan.dxf").find("AC1009"), std::string::npos) << lastLine();
}

TEST_F(ExportAndPrint, TheSheetIsWalkedByTabAndOffersTheLastChoicesAgain) {
  QWidget window;
  window.resize(900, 700);
  QLineEdit elsewhere(&window);
  present(window);
  elsewhere.setFocus();
  (new ExportSheet(application, theme, window))->open();
  const auto walk = [&] {
    QStringList seen;
    while (!seen.contains(QApplication::focusWidget()->objectName())) {
      seen.append(QApplication::focusWidget()->objectName());
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    return seen.join(' ').remove("export.").toStdString();
  };
  EXPECT_EQ(walk(), "kind paper size theme grid cleanWalls filledWalls lineWeights cancel confirm");
  auto* paper = find<QComboBox>(window, "export.paper");
  const auto* colors = find<QWidget>(window, "export.theme");
  const QRect before = colors->geometry();
  paper->setFocus();
  paper->setCurrentIndex(paper->findData("Tabloid"));
  settle();
  EXPECT_EQ(colors->x(), before.x()) << "columns keep their widths";
  EXPECT_EQ(colors->width(), before.width());
  EXPECT_TRUE(paper->hasFocus()) << "a choice leaves it where it is";
  EXPECT_EQ(walk(),
            "paper scale orientation theme grid cleanWalls filledWalls lineWeights cancel confirm kind");
  find(window, "export.grid")->click();
  auto* scale = find<QComboBox>(window, "export.scale");
  scale->setCurrentIndex(scale->findData("1/8\" = 1'-0\""));
  dialogs.queue((home / "plan.pdf").string());
  press(window, "export.confirm");
  EXPECT_TRUE(elsewhere.hasFocus()) << "as before the sheet";

  (new ExportSheet(application, theme, window))->open();
  EXPECT_EQ(find<QComboBox>(window, "export.paper")->currentText(), "Tabloid");
  EXPECT_EQ(find<QComboBox>(window, "export.scale")->currentText(), "1/8\" = 1'-0\"");
  EXPECT_TRUE(find(window, "export.grid")->isChecked());
  EXPECT_FALSE(find<QWidget>(window, "export.size")->isVisible());
  press(window, "export.cancel");
  EXPECT_TRUE(elsewhere.hasFocus());
}

TEST_F(ExportAndPrint, TheFilePanelWritesTheKindThatWasChosenAndStartsInDocuments) {
  QWidget window;
  present(window);
  QtDialogs panels(theme, QString::fromStdString(home.path().string()));
  panels.setWindow(&window);
  DialogAnswer answer;
  panels.ask(ExportPanel{{}, "plan.svg"}, [&](DialogAnswer given) { answer = std::move(given); });
  auto* panel = window.findChild<QFileDialog*>("filePanel");
  ASSERT_NE(panel, nullptr);
  EXPECT_EQ(panel->nameFilters(), QStringList("SVG (*.svg *.SVG)"));
  EXPECT_EQ(panel->directory().path().toStdString(), home.path().string());
  panel->selectFile("other");
  static_cast<QDialog*>(panel)->accept();
  EXPECT_EQ(answer, (home / "other.svg").string());
}

TEST_F(ExportAndPrint, TheSheetTellsWhatDoesNotFitAndStays) {
  QWidget window;
  window.resize(900, 700);
  present(window);
  auto* sheet = new ExportSheet(application, theme, window);
  sheet->open();
  auto* paper = find<QComboBox>(window, "export.paper");
  paper->setCurrentIndex(paper->findData("Letter"));
  auto* scale = find<QComboBox>(window, "export.scale");
  scale->setCurrentIndex(scale->findData("other"));
  find<QLineEdit>(window, "export.otherScale")->setText("a lot");
  press(window, "export.confirm");
  EXPECT_TRUE(sheet->isVisible());
  EXPECT_TRUE(find<QLabel>(window, "export.error")->text().contains("\"a lot\" is not a scale"));
  EXPECT_TRUE(dialogs.asked().empty());
}

TEST_F(ExportAndPrint, ThePreviewTellsSheetsAndScale) {
  PrintWindow window(application, theme, nullptr);
  window.setAttribute(Qt::WA_DeleteOnClose, false);
  auto* status = find<QLabel>(window, "print.status");
  auto* scale = find<QComboBox>(window, "print.scale");
  EXPECT_EQ(scale->currentText(), "Fit to Sheet");
  EXPECT_TRUE(status->text().startsWith("1 sheet at ")) << status->text().toStdString();
  scale->setCurrentIndex(scale->findData("1/4\" = 1'-0\""));
  EXPECT_EQ(status->text(), "1 sheet at 1/4\" = 1'-0\"")
      << "ten inches just fit a Letter sheet with its margins";
  scale->setCurrentIndex(scale->findData("1/2\" = 1'-0\""));
  EXPECT_EQ(status->text(), "3 sheets at 1/2\" = 1'-0\"");
  auto* paper = find<QComboBox>(window, "print.paper");
  paper->setCurrentIndex(paper->findData("ARCH C"));
  EXPECT_EQ(status->text(), "1 sheet at 1/2\" = 1'-0\"");
}

TEST_F(ExportAndPrint, APrintToAFileIsOfferedInDocumentsUnderTheDocumentsName) {
  std::filesystem::create_directories(home / "Documents");
  PrintWindow window(application, theme, nullptr);
  window.setAttribute(Qt::WA_DeleteOnClose, false);
  QString offered;
  QTimer::singleShot(0, &window, [&] {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    ASSERT_NE(dialog, nullptr);
    if (auto* name = find<QLineEdit>(*dialog, "filename")) offered = name->text();
    dialog->reject();
  });
  press(window, "print.print");
  EXPECT_EQ(offered.toStdString(), (home / "Documents" / "Untitled Project.pdf").string());
}

TEST_F(ExportAndPrint, TheManualGoesWithTheProgram) {
  HelpWindow manual(theme, "Ostrelon Manual", "help.manual", nullptr);
  showManual(manual);
  const QString text = manual.page().toPlainText();
  EXPECT_TRUE(text.contains("The first room"));
  EXPECT_GT(text.size(), 4000);
}

struct HousePictures : testing::WindowFixture {
  ExportOptions options;
  HousePictures() {
    std::ifstream file(OSTRELON_SOURCE_DIR "/examples/house");
    for (std::string line; std::getline(file, line);) {
      workspace.console.setInput(line);
      workspace.console.submit();
    }
    options.look = sketch.drawing->plan.look;
    options.openings = std::make_shared<const OpeningLayout>(openingLayout(sketch));
  }
};

TEST_F(HousePictures, TheHouseLooksAsItDidOnPaperAndAsAPicture) {
  const auto& systems = sketch.drawing->wallSystemSpecs;
  setExportOption(options, "size", "840x600");
  const QByteArray png = drawingPicture(ExportFormat::png, sketch.entities(), systems, options);
  EXPECT_TRUE(testing::looksLikeGolden(QImage::fromData(png), "house"));
  setExportOption(options, "paper", "Letter");
  setExportOption(options, "scale", "1/8in=1ft");
  std::ofstream file(home / "house.pdf", std::ios::binary);
  writePdf(picturePages(ExportFormat::pdf, sketch.entities(), systems, options), sketch.entities(), systems,
           options, [&](std::string_view piece) { file << piece; });
  file.close();
  const std::string out = (home / "house").string();
  if (std::system(("pdftoppm -r 96 -png -singlefile " + out + ".pdf " + out + " 2>/dev/null").c_str()) != 0) {
    GTEST_SKIP() << "pdftoppm is not installed";
  }
  EXPECT_TRUE(testing::looksLikeGolden(QImage(QString::fromStdString(out + ".png")), "house-page"));
}

TEST_F(HousePictures, PagesHaveRoomForTheLeavesOfDoors) {
  const auto& systems = sketch.drawing->wallSystemSpecs;
  setExportOption(options, "scale", "1/4in=1ft");
  const auto sizeNow = [&] {
    return picturePages(ExportFormat::pdf, sketch.entities(), systems, options).front().size;
  };
  const SketchSize before = sizeNow();
  // Outwards through the lower wall, whose face lies 3 1/4" from its middle.
  workspace.console.setInput("door 1 29'3\" 2' out");
  workspace.console.submit();
  options.openings = std::make_shared<const OpeningLayout>(openingLayout(sketch));
  EXPECT_GT(sizeNow().height - before.height, (2 - 3.25 / 12) * 18 - 1);
  EXPECT_LT(sizeNow().height - before.height, 2.5 * 18);
}

}  // namespace
}  // namespace ostrelon
