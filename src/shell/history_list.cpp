#include "shell/history_list.h"

#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

#include "shell/controls.h"
#include "shell/date_text.h"
#include "shell/fonts.h"
#include "shell/icons.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kRowHeight = 72;
constexpr int kHeadingHeight = 40;
constexpr int kNotedHeadingHeight = 58;
constexpr int kInset = 8;
constexpr int kEdge = 16;
constexpr int kGap = 12;

int headingHeight(const HistoryGroup& group) {
  return group.note.empty() ? kHeadingHeight : kNotedHeadingHeight;
}

QString headingText(const HistoryGroup& group) {
  const QString title = qtText(group.title);
  return group.isCurrentBranch && !group.isOfOtherDocument ? title + QStringLiteral(" (current)") : title;
}

// The words beside the picture.
QRect wordsOf(const QRect& box, int pictureWidth) {
  return box.adjusted(kEdge + pictureWidth + kGap, 8, -kEdge, -8);
}

}  // namespace

QString pictureKey(const HistoryRow& row) {
  return std::visit(Overloaded{
                        [&](const HistoryFile& file) {
                          const QString at = row.at ? QString::number(secondsSince1970(*row.at), 'f', 6) : "";
                          return qtText(file.path.string()) + QStringLiteral("\n") + at;
                        },
                        [](const HistoryCheckpoint& checkpoint) {
                          return qtText((checkpoint.document.parent_path() / checkpoint.branchID).string() +
                                        "\n" + checkpoint.fileName);
                        },
                        [](const HistoryKept& kept) { return QStringLiteral("kept ") + qtText(kept.id); },
                    },
                    row.source);
}

// --- The model

HistoryListModel::HistoryListModel(Scheduler& scheduler, const PictureShelf& shelf, QObject* parent)
    : QAbstractListModel(parent), scheduler_(scheduler), shelf_(shelf) {}

void HistoryListModel::setGroups(std::vector<HistoryGroup> groups) {
  beginResetModel();
  groups_ = std::move(groups);
  lines_.clear();
  height_ = 0;
  for (std::size_t group = 0; group < groups_.size(); ++group) {
    lines_.push_back({group, std::nullopt, height_});
    height_ += headingHeight(groups_[group]);
    for (std::size_t row = 0; row < groups_[group].rows.size(); ++row) {
      lines_.push_back({group, row, height_});
      height_ += kRowHeight;
    }
  }
  endResetModel();
}

int HistoryListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(lines_.size());
}

const HistoryRow* HistoryListModel::row(int line) const {
  const Line& found = lines_[static_cast<std::size_t>(line)];
  return found.row ? &groups_[found.group].rows[*found.row] : nullptr;
}

int HistoryListModel::bottom(int line) const {
  const auto next = static_cast<std::size_t>(line) + 1;
  return next < lines_.size() ? lines_[next].top : height_;
}

int HistoryListModel::lineAt(int y) const {
  const auto after = std::upper_bound(lines_.begin(), lines_.end(), y,
                                      [](int at, const Line& line) { return at < line.top; });
  return std::max(0, static_cast<int>(after - lines_.begin()) - 1);
}

std::optional<int> HistoryListModel::lineOf(const HistorySource& source) const {
  for (int line = 0; line < rowCount(); ++line) {
    if (const HistoryRow* found = row(line); found != nullptr && found->source == source) return line;
  }
  return std::nullopt;
}

std::optional<int> HistoryListModel::firstRow() const {
  return lines_.empty() ? std::nullopt : std::optional(1);
}

QString HistoryListModel::timeText(const HistoryRow& row) const {
  return row.at ? relativeDateText(*row.at, scheduler_.now()) : QString();
}

QVariant HistoryListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const HistoryRow* found = row(index.row());
  if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) {
    if (found == nullptr) return headingText(group(index.row()));
    if (role == Qt::DisplayRole) return qtText(found->title);
    QStringList words{qtText(found->title), timeText(*found), shelf_.content(pictureKey(*found)),
                      qtText(found->note)};
    words.removeAll(QString());
    return words.join(QStringLiteral(", "));
  }
  if (role == Qt::AccessibleDescriptionRole) {
    return qtText(found == nullptr ? group(index.row()).note : group(index.row()).title);
  }
  return {};
}

Qt::ItemFlags HistoryListModel::flags(const QModelIndex& index) const {
  return index.isValid() && row(index.row()) == nullptr ? Qt::ItemIsEnabled
                                                        : QAbstractListModel::flags(index);
}

// --- The list

HistoryList::HistoryList(Theme& theme, FileSystem& files, PictureShelf& shelf, HistoryListModel& model,
                         QWidget* parent)
    : RowsView(theme, parent), files_(files), shelf_(shelf), model_(model) {
  setModel(&model);
  setSelectionMode(SingleSelection);
  setFocusPolicy(Qt::StrongFocus);
  connect(&shelf, &PictureShelf::arrived, this, [this] { viewport()->update(); });
}

void HistoryList::paintEvent(QPaintEvent* event) {
  shelf_.startWanting();
  RowsView::paintEvent(event);
}

void HistoryList::paintHeading(QPainter& painter, const QRect& box, const HistoryGroup& group) const {
  const int left = box.left() + kEdge;
  int wordsLeft = left;
  const QRect line(left, box.top() + 12, box.width() - 2 * kEdge, 20);
  if (group.branchID) {
    paintIcon(painter, Icon::branch, QRectF(left, line.top(), 14, line.height()), 14,
              theme().mutedForeground());
    wordsLeft += 20;
  }
  const QFont font = fontOf(TextStyle::bodyStrong);
  painter.setFont(font);
  painter.setPen(theme().foreground());
  const int room = line.right() - wordsLeft;
  painter.drawText(QRect(wordsLeft, line.top(), room, line.height()), Qt::AlignVCenter,
                   elided(headingText(group), font, Qt::ElideRight, room));
  if (group.note.empty()) return;
  const QFont small = fontOf(TextStyle::small);
  painter.setFont(small);
  painter.setPen(theme().secondaryOnCard());
  painter.drawText(QRect(left, line.bottom() + 1, line.width(), 18), Qt::AlignVCenter,
                   elided(qtText(group.note), small, Qt::ElideRight, line.width()));
}

void HistoryList::paintPicture(QPainter& painter, const QRect& box, const HistoryRow& row) {
  const auto read = [&files = files_, source = row.source] {
    return readHistoryDrawing(files, source).drawing;
  };
  const SmallPicture* picture = shelf_.find(pictureKey(row), read, devicePixelRatioF());
  if (picture == nullptr || picture->image.isNull()) {
    painter.fillRect(box, theme().background());
    if (picture != nullptr) paintIcon(painter, Icon::alert, QRectF(box), 18, theme().destructive());
  } else {
    painter.drawImage(box.topLeft(), picture->image);
  }
  paintBox(painter, box, 2, QColor(), theme().border());
}

void HistoryList::paintRow(QPainter& painter, const QRect& box, int line, bool isHovered) {
  const HistoryRow* row = model_.row(line);
  if (row == nullptr) return paintHeading(painter, box, model_.group(line));
  const bool isSelected = isRowSelected(line);
  const QRect inner = box.adjusted(kInset, 1, -kInset, -1);
  if (isSelected || isHovered) paintBox(painter, inner, 6, theme().muted(), QColor());
  if (isSelected) painter.fillRect(QRect(inner.left(), box.center().y() - 7, 2, 16), theme().active());
  if (hasFocus() && currentIndex().row() == line) paintBox(painter, inner, 6, QColor(), theme().foreground());

  const QSize size = shelf_.size();
  paintPicture(painter,
               QRect(QPoint(box.left() + kEdge, box.top() + (box.height() - size.height()) / 2), size), *row);
  const QRect words = wordsOf(box, size.width());
  const auto drawLine = [&](int at, TextStyle style, const QColor& color, const QString& text) {
    painter.setFont(fontOf(style));
    painter.setPen(color);
    painter.drawText(QRect(words.left(), words.top() + at, words.width(), 18), Qt::AlignVCenter,
                     elided(text, fontOf(style), Qt::ElideRight, words.width()));
  };
  const QColor secondary = isSelected || isHovered ? theme().foreground() : theme().secondaryOnCard();
  drawLine(0, TextStyle::smallStrong, theme().foreground(), qtText(row->title));
  drawLine(19, TextStyle::small, theme().foreground(), model_.timeText(*row));
  QStringList facts{shelf_.content(pictureKey(*row)), qtText(row->note)};
  facts.removeAll(QString());
  drawLine(38, TextStyle::small, secondary, facts.join(QStringLiteral("  ·  ")));
}

QString HistoryList::toolTipText(int line, const QRect& /*box*/) const {
  const HistoryRow* row = model_.row(line);
  const QString note = qtText(row == nullptr ? model_.group(line).note : row->note);
  const QString title = model_.index(line).data(Qt::DisplayRole).toString();
  return note.isEmpty() ? title : title + QStringLiteral("\n") + note;
}

// Headings are passed over.
QModelIndex HistoryList::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
  const QModelIndex moved = RowsView::moveCursor(action, modifiers);
  if (!moved.isValid() || model_.row(moved.row()) != nullptr) return moved;
  const bool goesUp = currentIndex().isValid() && moved.row() < currentIndex().row();
  const int next = moved.row() + (goesUp && moved.row() > 0 ? -1 : 1);
  return next < rowCount() ? model_.index(next) : currentIndex();
}

// The heading comes into sight with the first row below it.
void HistoryList::scrollTo(const QModelIndex& index, ScrollHint hint) {
  const bool isFirst = index.isValid() && index.row() > 0 && model_.row(index.row() - 1) == nullptr;
  if (isFirst && hint == EnsureVisible) RowsView::scrollTo(model_.index(index.row() - 1), hint);
  RowsView::scrollTo(index, hint);
}

void HistoryList::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      Q_EMIT chosen();
      return;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
      Q_EMIT deletionAsked();
      return;
    case Qt::Key_Escape:
      event->ignore();
      return;
    default:
      RowsView::keyPressEvent(event);
  }
}

}  // namespace ostrelon
