#include "shell/console_panel.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <cmath>

#include "shell/accessibility.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kHandleHeight = 9;
constexpr int kHeaderHeight = 28;
constexpr int kPadding = 12;
constexpr int kLineSpacing = 4;
constexpr int kInputHeight = 30;
constexpr int kRunWidth = 40;

// Cuts a text into lines of at most `columns` characters, at blanks where there are any. The font
// has one width, so that a count of characters is a width.
std::vector<QStringView> wrapped(QStringView text, int columns) {
  std::vector<QStringView> lines;
  for (QStringView piece : text.split(u'\n')) {
    while (piece.size() > columns) {
      qsizetype cut = columns;
      for (qsizetype i = columns; i > columns / 2; --i) {
        if (piece[i] == u' ') {
          cut = i;
          break;
        }
      }
      if (piece[cut].isLowSurrogate()) --cut;
      cut = std::max<qsizetype>(cut, 1);
      lines.push_back(piece.left(cut));
      piece = piece.mid(cut);
      if (piece.startsWith(u' ')) piece = piece.mid(1);
    }
    lines.push_back(piece);
  }
  return lines;
}

}  // namespace

// --- The grip

ConsoleResizeHandle::ConsoleResizeHandle(Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {
  setObjectName(QStringLiteral("console.resizeHandle"));
  setCursor(Qt::SizeVerCursor);
  setFocusPolicy(Qt::TabFocus);
  setAccessibleName(QStringLiteral("Resize console"));
  setAccessibleRole(*this, QAccessible::Grip);
  setAccessibleDescription(QStringLiteral("Drag to change console height."));
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void ConsoleResizeHandle::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  QColor grip = theme_.mutedForeground();
  grip.setAlphaF(0.55F);
  painter.setBrush(grip);
  painter.drawRoundedRect(QRectF((width() - 36) / 2.0, 4, 36, 3), 1.5, 1.5);
}

void ConsoleResizeHandle::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) lastMouseY_ = event->globalPosition().y();
}

void ConsoleResizeHandle::mouseMoveEvent(QMouseEvent* event) {
  if (!lastMouseY_) return;
  const double y = event->globalPosition().y();
  const double distanceUp = *lastMouseY_ - y;
  lastMouseY_ = y;
  if (distanceUp != 0) Q_EMIT dragged(distanceUp);
}

void ConsoleResizeHandle::mouseReleaseEvent(QMouseEvent* /*event*/) { lastMouseY_.reset(); }

void ConsoleResizeHandle::keyPressEvent(QKeyEvent* event) {
  constexpr double step = 20;
  if (event->key() == Qt::Key_Up) {
    Q_EMIT dragged(step);
  } else if (event->key() == Qt::Key_Down) {
    Q_EMIT dragged(-step);
  } else {
    QWidget::keyPressEvent(event);
  }
}

// --- The transcript

TranscriptView::TranscriptView(Theme& theme, ConsoleTranscriptModel& model, QWidget* parent)
    : RowsView(theme, parent),
      model_(model),
      characterWidth_(std::max(
          1, static_cast<int>(std::lround(QFontMetricsF(fontOf(TextStyle::mono)).horizontalAdvance(u'0'))))) {
  setSelectionMode(ExtendedSelection);
  setModel(&model);
}

bool TranscriptView::isAtEnd() const {
  return verticalScrollBar()->value() >= verticalScrollBar()->maximum() - 2;
}

void TranscriptView::followEnd() {
  updateRange();
  verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

int TranscriptView::columns() const {
  const double width = QFontMetricsF(fontOf(TextStyle::mono)).horizontalAdvance(u'0');
  return std::max(8, static_cast<int>((viewport()->width() - 2 * kPadding) / width));
}

void TranscriptView::measure() const {
  const int now = columns();
  if (now != measuredColumns_ || bottoms_.size() > static_cast<std::size_t>(rowCount())) {
    measuredColumns_ = now;
    bottoms_.clear();
  }
  const int lineHeight = lineHeightOf(TextStyle::mono);
  int bottom = bottoms_.empty() ? kPadding / 2 : bottoms_.back();
  for (int row = static_cast<int>(bottoms_.size()); row < rowCount(); ++row) {
    const QString text = qtText(model_.line(row).text);
    bottom += static_cast<int>(wrapped(text, now).size()) * lineHeight + kLineSpacing;
    bottoms_.push_back(bottom);
  }
}

int TranscriptView::rowTop(int row) const {
  measure();
  return row == 0 ? kPadding / 2 : bottoms_[static_cast<std::size_t>(row - 1)];
}

int TranscriptView::rowHeight(int row) const {
  return bottoms_[static_cast<std::size_t>(row)] - rowTop(row) - kLineSpacing;
}

int TranscriptView::rowAt(int y) const {
  measure();
  const auto found = std::upper_bound(bottoms_.begin(), bottoms_.end(), y);
  return std::clamp(static_cast<int>(found - bottoms_.begin()), 0, std::max(0, rowCount() - 1));
}

int TranscriptView::contentHeight() const {
  measure();
  return bottoms_.empty() ? 0 : bottoms_.back();
}

void TranscriptView::paintRow(QPainter& painter, const QRect& box, int row, bool /*isHovered*/) {
  using LineKind = ConsoleTranscriptModel::LineKind;
  const LineKind kind = model_.kind(row);
  const bool isSelected = selectionModel()->isSelected(model_.index(row));
  if (isSelected) painter.fillRect(box.adjusted(kPadding - 4, -2, 0, 2), theme().muted());
  QFont font = fontOf(TextStyle::mono);
  switch (kind) {
    case LineKind::echo:
      painter.setPen(isSelected ? theme().foreground() : theme().secondaryOnCard());
      break;
    case LineKind::reply:
      painter.setPen(theme().foreground());
      break;
    case LineKind::error:
      font.setWeight(QFont::DemiBold);
      painter.setPen(theme().destructive());
      painter.fillRect(QRect(4, box.top(), 2, box.height()), theme().destructive());
      break;
  }
  painter.setFont(font);
  const int lineHeight = lineHeightOf(TextStyle::mono);
  const QString text = qtText(model_.line(row).text);
  int y = box.top();
  for (const QStringView line : wrapped(text, measuredColumns_)) {
    painter.drawText(QRect(kPadding, y, box.width() - kPadding, lineHeight),
                     Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, line.toString());
    y += lineHeight;
  }
}

void TranscriptView::resizeEvent(QResizeEvent* event) {
  // What stood at the end stays there while the panel changes its size.
  const bool wasAtEnd = isAtEnd();
  RowsView::resizeEvent(event);
  if (wasAtEnd) followEnd();
}

bool TranscriptView::event(QEvent* event) {
  // With the focus here these keys mean its lines, not the drawing.
  if (event->type() == QEvent::ShortcutOverride) {
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->matches(QKeySequence::Copy) || key->matches(QKeySequence::SelectAll)) {
      event->accept();
      return true;
    }
  }
  return RowsView::event(event);
}

void TranscriptView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) {
    copySelected();
    return;
  }
  RowsView::keyPressEvent(event);
}

void TranscriptView::contextMenuEvent(QContextMenuEvent* event) {
  QMenu menu(this);
  QAction* copy = menu.addAction(QStringLiteral("Copy"), this, [this] { copySelected(); });
  copy->setEnabled(selectionModel()->hasSelection());
  menu.addAction(QStringLiteral("Select All"), this, [this] { selectAll(); });
  menu.exec(event->globalPos());
}

void TranscriptView::copySelected() const {
  std::vector<int> rows;
  for (const QModelIndex& index : selectionModel()->selectedIndexes()) rows.push_back(index.row());
  std::sort(rows.begin(), rows.end());
  QStringList texts;
  for (const int row : rows) texts.append(qtText(model_.line(row).text));
  if (!texts.isEmpty()) QGuiApplication::clipboard()->setText(texts.join('\n'));
}

// --- The panel

ConsoleView::ConsoleView(Workspace& workspace, Theme& theme, QWidget* parent)
    : Panel(theme, Qt::TopEdge, parent),
      workspace_(workspace),
      handle_(new ConsoleResizeHandle(theme, this)),
      heading_(new TextLabel(theme, TextStyle::heading, TextLabel::Rank::secondary, "CONSOLE", this)),
      defaultHeightButton_(new Button(theme, Button::Kind::plain, "Default height", this)),
      focusButton_(new Button(theme, Button::Kind::plain, "Focus", this)),
      model_(new ConsoleTranscriptModel(workspace.messages, this)),
      transcript_(new TranscriptView(theme, *model_, this)),
      input_(new Field(theme, true, this)),
      runButton_(new Button(theme, Button::Kind::outlined, QString(), this)),
      update_(workspace, fieldsOf(workspace.messages.lines, workspace.console.input), this,
              [this] { refresh(); }) {
  setObjectName(QStringLiteral("console"));
  setAccessibleName(QStringLiteral("Console"));
  connect(handle_, &ConsoleResizeHandle::dragged, this,
          [this](double distanceUp) { setPanelHeight(height_ + distanceUp); });

  defaultHeightButton_->setObjectName(QStringLiteral("console.defaultHeight"));
  defaultHeightButton_->setTextStyle(TextStyle::badge);
  defaultHeightButton_->setPaddings(8, 24);
  defaultHeightButton_->setToolTip(QStringLiteral("Back to the default height"));
  connect(defaultHeightButton_, &QPushButton::clicked, this,
          [this] { setPanelHeight(kConsoleDefaultHeight); });
  focusButton_->setObjectName(QStringLiteral("console.focus"));
  focusButton_->setTextStyle(TextStyle::badge);
  focusButton_->setPaddings(8, 24);
  focusButton_->setToolTip(QStringLiteral("Type a command"));
  connect(focusButton_, &QPushButton::clicked, this, [this] { input_->setFocus(Qt::ShortcutFocusReason); });

  transcript_->setObjectName(QStringLiteral("console.transcript"));
  transcript_->setAccessibleName(QStringLiteral("Console transcript"));

  input_->setObjectName(QStringLiteral("console.commandInput"));
  input_->setAccessibleName(QStringLiteral("Command"));
  input_->setPrefix(QStringLiteral(">"));
  input_->setItalicPlaceholder(QStringLiteral("wall 0 0 120 0"));
  input_->setHint(QStringLiteral("help and more list the commands"));
  input_->setFixedHeight(kInputHeight);
  input_->installEventFilter(this);
  connect(input_, &QLineEdit::textChanged, this, [this](const QString& text) {
    workspace_.console.setInput(plainText(text));
    runButton_->setKind(text.isEmpty() ? Button::Kind::outlined : Button::Kind::primary);
  });
  connect(input_, &QLineEdit::returnPressed, this, [this] { run(); });

  runButton_->setObjectName(QStringLiteral("console.run"));
  runButton_->setIconDrawing(Icon::run, 16);
  runButton_->setAccessibleName(QStringLiteral("Run"));
  runButton_->setToolTip(QStringLiteral("Run the command (Return)"));
  connect(runButton_, &QPushButton::clicked, this, [this] { run(); });

  setTabOrder(defaultHeightButton_, focusButton_);
  setTabOrder(focusButton_, transcript_);
  setTabOrder(transcript_, input_);
  setTabOrder(input_, runButton_);
  defaultHeightButton_->hide();
  refresh();
}

void ConsoleView::setPanelHeight(double height) {
  const double held = std::min(std::max(height, kConsoleMinimumHeight), kConsoleMaximumHeight);
  if (held == height_) return;
  height_ = held;
  defaultHeightButton_->setVisible(std::abs(height_ - kConsoleDefaultHeight) > 0.5);
  Q_EMIT panelHeightChanged();
}

void ConsoleView::resizeEvent(QResizeEvent* event) {
  Panel::resizeEvent(event);
  handle_->setGeometry(0, 1, width(), kHandleHeight - 1);
  heading_->setGeometry(kPadding, kHandleHeight, 120, kHeaderHeight);
  int right = width() - kPadding + 8;
  for (Button* button : {focusButton_, defaultHeightButton_}) {
    const QSize size = button->sizeHint();
    right -= size.width();
    button->setGeometry(right, kHandleHeight + (kHeaderHeight - size.height()) / 2, size.width(),
                        size.height());
    right -= 4;
  }
  const int inputTop = height() - kInputHeight - 10;
  transcript_->setGeometry(0, kHandleHeight + kHeaderHeight, width() - 2,
                           std::max(0, inputTop - 6 - kHandleHeight - kHeaderHeight));
  input_->setGeometry(kPadding, inputTop, width() - 2 * kPadding - kRunWidth - 8, kInputHeight);
  runButton_->setGeometry(width() - kPadding - kRunWidth, inputTop, kRunWidth, kInputHeight);
}

bool ConsoleView::eventFilter(QObject* object, QEvent* event) {
  if (object == input_) {
    if (event->type() == QEvent::FocusIn) workspace_.console.setFocused(true);
    if (event->type() == QEvent::FocusOut) workspace_.console.setFocused(false);
    // While nothing is being typed, undo is the drawing's, even where typing could be taken back.
    if (event->type() == QEvent::ShortcutOverride && input_->text().isEmpty()) {
      const auto* key = static_cast<QKeyEvent*>(event);
      if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo)) {
        event->ignore();
        return true;
      }
    }
    if (event->type() == QEvent::KeyPress && handleInputKey(*static_cast<QKeyEvent*>(event))) return true;
  }
  return Panel::eventFilter(object, event);
}

bool ConsoleView::handleInputKey(const QKeyEvent& event) {
  if (event.modifiers() != Qt::NoModifier && event.modifiers() != Qt::KeypadModifier) return false;
  std::optional<std::string> recalled;
  switch (event.key()) {
    case Qt::Key_Up:
      recalled = recall_.previous(plainText(input_->text()));
      break;
    case Qt::Key_Down:
      recalled = recall_.next();
      break;
    case Qt::Key_Tab:
      // An empty line has nothing to complete: the key goes on to the next control.
      if (input_->text().isEmpty()) return false;
      complete();
      return true;
    default:
      return false;
  }
  if (recalled) showInput(qtText(*recalled));
  return true;
}

void ConsoleView::complete() {
  const std::string before = plainText(input_->text().left(input_->cursorPosition()));
  const ConsoleCompletion completion =
      completer_.complete(plainText(input_->text()), before.size(), workspace_.commands());
  if (completion.candidates.empty()) return;
  const bool isUnchanged = completion.text == plainText(input_->text());
  showInput(qtText(completion.text));
  input_->setCursorPosition(static_cast<int>(qtText(completion.text.substr(0, completion.cursor)).size()));
  if (isUnchanged && completion.candidates.size() > 1) {
    std::string list;
    for (const std::string& candidate : completion.candidates) list += (list.empty() ? "" : "  ") + candidate;
    workspace_.messages.appendSystem(std::move(list));
  }
}

void ConsoleView::showInput(const QString& text) {
  if (input_->text() != text) input_->setText(text);
}

void ConsoleView::run() {
  recall_.record(*workspace_.console.input);
  workspace_.console.submit();
  refresh();
  transcript_->followEnd();
}

void ConsoleView::refresh() {
  const bool follows = transcript_->isAtEnd();
  if (model_->update() && follows) transcript_->followEnd();
  showInput(qtText(*workspace_.console.input));
}

}  // namespace ostrelon
