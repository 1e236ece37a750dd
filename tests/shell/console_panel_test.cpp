#include "shell/console_panel.h"

#include <QClipboard>
#include <QGlyphRun>
#include <QRawFont>
#include <QScrollBar>
#include <QTextLayout>
#include <ctime>

#include "window_fixture.h"

namespace ostrelon {
namespace {

struct ConsolePanelTest : testing::WindowFixture {
  ConsoleView panel{workspace, theme};
  QLineEdit* input = nullptr;
  TranscriptView* transcript = nullptr;
  QWidget* handle = nullptr;

  void SetUp() override {
    panel.resize(700, 180);
    present(panel);
    input = panel.input();
    input->setFocus();
    transcript = dynamic_cast<TranscriptView*>(find<QAbstractItemView>(panel, "console.transcript"));
    handle = find<QWidget>(panel, "console.resizeHandle");
  }
  void drag(int up) {
    const QPoint start = handle->rect().center();
    QTest::mousePress(handle, Qt::LeftButton, {}, start);
    QTest::mouseMove(handle, start - QPoint(0, up / 2));
    QTest::mouseMove(handle, start - QPoint(0, up));
    QTest::mouseRelease(handle, Qt::LeftButton, {}, start - QPoint(0, up));
  }
};

TEST_F(ConsolePanelTest, ReturnAndTheButtonRunTheLine) {
  type(*input, "line 0 0 10 0");
  EXPECT_EQ(*console.input, "line 0 0 10 0");
  QTest::keyClick(input, Qt::Key_Return);
  settle();
  EXPECT_EQ(sketch.entities().size(), 1U);
  EXPECT_EQ(input->text(), "");
  EXPECT_EQ(lastLine(), "Line added.");

  type(*input, "circle 0 0 4");
  press(panel, "console.run");
  EXPECT_EQ(sketch.entities().size(), 2U);
  const std::size_t lines = messages.lines->size();
  press(panel, "console.run");
  EXPECT_EQ(messages.lines->size(), lines) << "an empty line leaves no trace";
}

TEST_F(ConsolePanelTest, TheFieldFollowsTheModelAndTellsItsFocus) {
  console.setInput("from elsewhere");
  settle();
  EXPECT_EQ(input->text(), "from elsewhere");
  EXPECT_TRUE(*console.isFocused);
  input->clearFocus();
  EXPECT_FALSE(*console.isFocused);
  press(panel, "console.focus");
  EXPECT_TRUE(*console.isFocused);
  EXPECT_TRUE(input->hasFocus());
}

TEST_F(ConsolePanelTest, DragsAreHeldBetweenTheLeastAndTheMostHeight) {
  drag(100);
  EXPECT_EQ(panel.panelHeight(), 280);
  drag(-1000);
  EXPECT_EQ(panel.panelHeight(), 120);
  drag(2000);
  EXPECT_EQ(panel.panelHeight(), 560);
  EXPECT_EQ(handle->accessibleName(), "Resize console");
  EXPECT_EQ(handle->accessibleDescription(), "Drag to change console height.");
}

TEST_F(ConsolePanelTest, TheDefaultHeightIsOfferedWhereItDiffers) {
  auto* button = find(panel, "console.defaultHeight");
  EXPECT_TRUE(button->isHidden());
  panel.setPanelHeight(180.4);
  EXPECT_TRUE(button->isHidden());
  panel.setPanelHeight(180.6);
  EXPECT_FALSE(button->isHidden());
  button->click();
  EXPECT_EQ(panel.panelHeight(), 180);
  EXPECT_TRUE(button->isHidden());
}

TEST_F(ConsolePanelTest, UpAndDownRecallTheLinesThatWereRun) {
  for (const char* line : {"line 0 0 1 1", "help"}) {
    type(*input, line);
    QTest::keyClick(input, Qt::Key_Return);
  }
  type(*input, "ci");
  QTest::keyClick(input, Qt::Key_Up);
  EXPECT_EQ(input->text(), "help");
  QTest::keyClick(input, Qt::Key_Up);
  EXPECT_EQ(input->text(), "line 0 0 1 1");
  QTest::keyClick(input, Qt::Key_Up);
  EXPECT_EQ(input->text(), "line 0 0 1 1");
  QTest::keyClick(input, Qt::Key_Down);
  QTest::keyClick(input, Qt::Key_Down);
  EXPECT_EQ(input->text(), "ci");
  EXPECT_EQ(*console.input, "ci");
}

TEST_F(ConsolePanelTest, TabCompletesAndThenListsWhatFits) {
  type(*input, "cir");
  QTest::keyClick(input, Qt::Key_Tab);
  EXPECT_EQ(input->text(), "circle ");
  EXPECT_TRUE(input->hasFocus());
  input->clear();
  type(*input, "spec ");
  QTest::keyClick(input, Qt::Key_Tab);
  EXPECT_EQ(lastLine(), "list  show  use");
  const std::size_t lines = messages.lines->size();
  for (const char* next : {"spec list", "spec show", "spec use", "spec list"}) {
    QTest::keyClick(input, Qt::Key_Tab);
    EXPECT_EQ(input->text(), next);
  }
  EXPECT_EQ(messages.lines->size(), lines) << "they are listed once";
  input->clear();
  QTest::keyClick(input, Qt::Key_Tab);
  EXPECT_FALSE(input->hasFocus()) << "an empty line has nothing to complete";
}

TEST_F(ConsolePanelTest, TheTranscriptWrapsFollowsItsEndAndCanBeCopied) {
  run("help");
  const QModelIndex last = transcript->model()->index(transcript->model()->rowCount() - 1, 0);
  EXPECT_GT(transcript->visualRect(last).height(), 30 * 18) << "a text of many lines is one row";
  EXPECT_TRUE(transcript->isAtEnd());
  transcript->verticalScrollBar()->setValue(0);
  messages.append("Saved elsewhere.", false, true);
  settle();
  EXPECT_EQ(transcript->verticalScrollBar()->value(), 0) << "scrolled up by hand it stays";
  type(*input, "nonsense");
  QTest::keyClick(input, Qt::Key_Return);
  EXPECT_TRUE(transcript->isAtEnd());
  const int rows = transcript->model()->rowCount();
  EXPECT_TRUE(
      transcript->model()->index(rows - 1, 0).data(Qt::AccessibleTextRole).toString().startsWith("Error: "));
  transcript->selectAll();
  QTest::keyClick(transcript, Qt::Key_C, Qt::ControlModifier);
  EXPECT_TRUE(QGuiApplication::clipboard()->text().contains("> nonsense\nUnknown command"));
}

TEST_F(ConsolePanelTest, EveryCharacterIsShownAsItWasTyped) {
  const QString text = QStringLiteral("->>=!===");
  QTextLayout layout(text, input->font());
  layout.beginLayout();
  layout.createLine();
  layout.endLayout();
  const QGlyphRun run = layout.glyphRuns().front();
  EXPECT_EQ(run.glyphIndexes(), run.rawFont().glyphIndexesForString(text)) << "no ligatures";
}

TEST_F(ConsolePanelTest, AHundredThousandLinesStayQuick) {
  for (int i = 0; i < 100'000; ++i) messages.append("Wall added (W2-INT).", false, true);
  settle();
  const std::clock_t start = std::clock();
  messages.append("One more.", false, true);
  settle();
  EXPECT_TRUE(transcript->isAtEnd());
  EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC / 4) << "one line costs what one line costs";
}

}  // namespace
}  // namespace ostrelon
