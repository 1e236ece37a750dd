#include "shell/help_window.h"

#include <QAbstractTextDocumentLayout>
#include <QDesktopServices>
#include <QFile>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>
#include <QVBoxLayout>

#include "shell/fonts.h"

namespace ostrelon {
namespace {

constexpr int kMargin = 32;
const char* const kManualBase = "qrc:/manual/";
const char* const kManualFile = ":/manual/manual.md";

}  // namespace

HelpPage::HelpPage(Theme& theme, QWidget* parent) : QTextBrowser(parent), theme_(theme) {
  setObjectName(QStringLiteral("help.page"));
  setFrameShape(QFrame::NoFrame);
  setOpenLinks(false);
  setFont(fontOf(TextStyle::body));
  document()->setDocumentMargin(kMargin);
  setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  connect(&theme, &Theme::changed, this, [this] { showMarkdown(markdown_, base_); });
  connect(this, &QTextBrowser::anchorClicked, this, [this](const QUrl& link) {
    if (link.scheme().startsWith(QStringLiteral("http"))) {
      QDesktopServices::openUrl(link);
    } else if (link.hasFragment()) {
      // A heading's anchor is its text in lower case with hyphens.
      for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        if (block.blockFormat().headingLevel() == 0) continue;
        const QString anchor = block.text().toLower().replace(' ', '-');
        if (anchor != link.fragment()) continue;
        verticalScrollBar()->setValue(
            static_cast<int>(document()->documentLayout()->blockBoundingRect(block).top() - kMargin));
      }
    }
  });
}

void HelpPage::showMarkdown(const QString& markdown, const QUrl& base) {
  markdown_ = markdown;
  base_ = base;
  shownWidth_ = viewport()->width();
  const int scrolled = verticalScrollBar()->value();
  document()->setBaseUrl(base);
  setMarkdown(markdown);
  dress();
  verticalScrollBar()->setValue(scrolled);
}

void HelpPage::dress() {
  setStyleSheet(QStringLiteral("QTextBrowser { background: %1; color: %2; }")
                    .arg(theme_.card().name(), theme_.foreground().name()));
  QTextCursor cursor(document());
  for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
    QTextBlockFormat format = block.blockFormat();
    const int level = format.headingLevel();
    format.setTopMargin(level > 0 ? 20 : 4);
    format.setBottomMargin(level > 0 ? 6 : 4);
    // A picture is a line of its own height, and would get as much space below.
    const auto first = block.begin();
    const bool isPicture = !first.atEnd() && first.fragment().charFormat().isImageFormat();
    if (isPicture) format.setBottomMargin(16);
    format.setLineHeight(isPicture ? 100 : 130, QTextBlockFormat::ProportionalHeight);
    cursor.setPosition(block.position());
    cursor.setBlockFormat(format);
    for (auto part = block.begin(); !part.atEnd(); ++part) {
      const QTextFragment fragment = part.fragment();
      QTextCharFormat words = fragment.charFormat();
      if (words.isImageFormat()) continue;
      if (level > 0) words.setFont(fontOf(level == 1 ? TextStyle::display : TextStyle::title));
      if (words.fontFixedPitch()) words.setFont(fontOf(TextStyle::mono));
      words.setForeground(theme_.foreground());
      if (words.isAnchor()) words.setFontUnderline(true);
      cursor.setPosition(fragment.position());
      cursor.setPosition(fragment.position() + fragment.length(), QTextCursor::KeepAnchor);
      cursor.setCharFormat(words);
    }
  }
  for (QTextFrame* frame : document()->rootFrame()->childFrames()) {
    auto* table = qobject_cast<QTextTable*>(frame);
    if (table == nullptr) continue;
    QTextTableFormat format = table->format();
    format.setBorder(1);
    format.setBorderCollapse(true);
    format.setBorderBrush(theme_.border());
    format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
    format.setCellPadding(6);
    format.setCellSpacing(0);
    format.setTopMargin(8);
    format.setBottomMargin(8);
    // All tables of a page end at the same edge, and those of two columns break at the same place.
    format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
    if (table->columns() == 2) {
      format.setColumnWidthConstraints(
          {QTextLength(QTextLength::PercentageLength, 25), QTextLength(QTextLength::PercentageLength, 75)});
    }
    table->setFormat(format);
  }
  cursor.setPosition(0);
  setTextCursor(cursor);
}

QVariant HelpPage::loadResource(int type, const QUrl& name) {
  if (type != QTextDocument::ImageResource) return QTextBrowser::loadResource(type, name);
  const QUrl url = base_.resolved(name);
  QPixmap picture(url.scheme() == QStringLiteral("qrc") ? ":" + url.path() : url.toLocalFile());
  // The bar at the side comes only once the text is there.
  const int room = width() - verticalScrollBar()->sizeHint().width() - 2 * kMargin;
  if (picture.isNull() || room <= 0 || picture.width() <= room) return picture;
  const double ratio = devicePixelRatioF();
  QPixmap scaled = picture.scaledToWidth(static_cast<int>(room * ratio), Qt::SmoothTransformation);
  scaled.setDevicePixelRatio(ratio);
  return scaled;
}

void HelpPage::resizeEvent(QResizeEvent* event) {
  QTextBrowser::resizeEvent(event);
  if (viewport()->width() != shownWidth_ && !markdown_.isEmpty()) showMarkdown(markdown_, base_);
}

HelpWindow::HelpWindow(Theme& theme, const QString& title, const QString& identifier, QWidget* mainWindow)
    : QWidget(mainWindow, Qt::Window), page_(new HelpPage(theme, this)) {
  setObjectName(identifier);
  setWindowTitle(title);
  resize(760, 720);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(page_);
}

void HelpWindow::open() {
  show();
  raise();
  activateWindow();
}

void HelpWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
    return;
  }
  QWidget::keyPressEvent(event);
}

void showManual(HelpWindow& window) {
  QFile file(QString::fromUtf8(kManualFile));
  const QString text =
      file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QStringLiteral("# Manual\n");
  window.page().showMarkdown(text, QUrl(QString::fromUtf8(kManualBase)));
}

}  // namespace ostrelon
