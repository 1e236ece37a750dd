#include "shell/merge_list.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QRadioButton>
#include <algorithm>
#include <array>

#include "shell/controls.h"
#include "shell/entity_list_model.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kEdge = 16;
constexpr int kInset = 8;
constexpr int kHeadingHeight = 40;
constexpr int kConflictHeight = 108;
constexpr int kIncomingHeight = 44;
constexpr int kBadge = 20;
constexpr int kBadgeGap = 8;
constexpr int kSegmentsTop = 74;
constexpr int kSegmentsHeight = 26;

struct ChoiceWord {
  MergeChoice choice;
  const char* word;
};
constexpr std::array kChoices{ChoiceWord{MergeChoice::ours, "Ours"},
                              ChoiceWord{MergeChoice::theirs, "Theirs"},
                              ChoiceWord{MergeChoice::both, "Both"}};

int positionOf(MergeChoice choice) {
  const auto* found = std::find_if(kChoices.begin(), kChoices.end(),
                                   [=](const ChoiceWord& word) { return word.choice == choice; });
  return static_cast<int>(found - kChoices.begin());
}
QString wordOf(MergeChoice choice) {
  return QString::fromUtf8(kChoices[static_cast<std::size_t>(positionOf(choice))].word);
}

// The three side by side in a box; segment i begins at i thirds of it.
QRect segmentBox(const QRect& box, int position) {
  const int left = box.left() + box.width() * position / 3;
  return {left, box.top(), box.left() + box.width() * (position + 1) / 3 - left, box.height()};
}

void paintSegments(QPainter& painter, const Theme& theme, const QRect& box,
                   const std::optional<MergeChoice>& choice) {
  paintBox(painter, box, 6, theme.card(), theme.border());
  for (int i = 0; i < 3; ++i) {
    const QRect segment = segmentBox(box, i);
    const bool isChosen = choice && positionOf(*choice) == i;
    if (isChosen) {
      paintBox(painter, segment.adjusted(2, 2, -2, -2), 4, theme.fill(), QColor());
    } else if (i > 0 && (!choice || positionOf(*choice) != i - 1)) {
      painter.fillRect(QRect(segment.left(), segment.top() + 7, 1, segment.height() - 14), theme.border());
    }
    painter.setFont(fontOf(isChosen ? TextStyle::smallStrong : TextStyle::badge));
    painter.setPen(isChosen ? theme.fillText() : theme.foreground());
    painter.drawText(segment, Qt::AlignCenter, QString::fromUtf8(kChoices[static_cast<std::size_t>(i)].word));
  }
}

QStringList conflictLines(const ConflictWords& words) {
  if (words.there.empty()) return {QStringLiteral("Here only: ") + qtText(words.here)};
  if (words.here.empty()) return {QStringLiteral("There only: ") + qtText(words.there)};
  return {QStringLiteral("Here: ") + qtText(words.here), QStringLiteral("There: ") + qtText(words.there)};
}

MergeListRow incomingRow(const ToldDifference& told, std::size_t number) {
  const QString text = qtText(told.text);
  const qsizetype colon = text.indexOf(QStringLiteral(": "));
  return {MergeListRow::Kind::incoming,
          number,
          text.left(colon),
          {colon < 0 ? QString() : text.mid(colon + 2)},
          {}};
}

}  // namespace

// --- The rows

int MergeListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant MergeListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const MergeListRow& shown = row(index.row());
  switch (role) {
    case Qt::DisplayRole:
      return shown.title;
    case Qt::AccessibleTextRole: {
      QStringList words{shown.title};
      words += shown.words;
      if (shown.kind == MergeListRow::Kind::conflict) {
        words.prepend(QStringLiteral("Conflict %1 of %2").arg(shown.number + 1).arg(conflicts_));
        words.append(shown.choice ? wordOf(*shown.choice) + QStringLiteral(" chosen")
                                  : QStringLiteral("undecided"));
      }
      return words.join(QStringLiteral(", "));
    }
    case kIdentifierRole:
      switch (shown.kind) {
        case MergeListRow::Kind::heading:
          return QStringLiteral("merge.heading.") + shown.title;
        case MergeListRow::Kind::conflict:
          return QStringLiteral("merge.conflict.%1").arg(shown.number + 1);
        case MergeListRow::Kind::incoming:
          return QStringLiteral("merge.incoming.%1").arg(shown.number + 1);
      }
      return {};
    default:
      return {};
  }
}

void MergeListModel::show(const MergeReview& review) {
  const std::shared_ptr<const MergeProposal>& proposal = review.proposal;
  if (proposal != shown_) {
    std::vector<MergeListRow> rows;
    if (proposal) {
      using Kind = MergeListRow::Kind;
      conflicts_ = proposal->merge.conflicts.size();
      if (conflicts_ > 0) rows.push_back({Kind::heading, 0, QStringLiteral("CONFLICTS"), {}, {}});
      for (std::size_t i = 0; i < conflicts_; ++i) {
        const ConflictWords words =
            conflictWords(proposal->merge.conflicts[i], proposal->ours, proposal->theirs.drawing);
        rows.push_back({Kind::conflict, i, qtText(words.subject), conflictLines(words), {}});
      }
      if (!proposal->told.empty()) rows.push_back({Kind::heading, 1, QStringLiteral("COMES IN"), {}, {}});
      for (std::size_t i = 0; i < proposal->told.size(); ++i)
        rows.push_back(incomingRow(proposal->told[i], i));
      if (const std::size_t more = proposal->incoming.count() - proposal->told.size(); more > 0) {
        rows.push_back({Kind::heading, 2, QStringLiteral("… and %1 more").arg(more), {}, {}});
      }
    }
    shown_ = proposal;
    replace(std::move(rows));
  }
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    MergeListRow& shown = rows_[i];
    if (shown.kind != MergeListRow::Kind::conflict || shown.number >= review.choices->size()) continue;
    if (shown.choice == review.choices.get()[shown.number]) continue;
    shown.choice = review.choices.get()[shown.number];
    const QModelIndex changed = index(static_cast<int>(i));
    Q_EMIT dataChanged(changed, changed);
  }
}

// An edit of the drawing leaves most lists as they were, and then the place in the list too.
void MergeListModel::replace(std::vector<MergeListRow> rows) {
  const bool isAlike = std::equal(rows.begin(), rows.end(), rows_.begin(), rows_.end(),
                                  [](const auto& a, const auto& b) { return a.kind == b.kind; });
  if (isAlike) {
    rows_ = std::move(rows);
    if (!rows_.empty()) Q_EMIT dataChanged(index(0), index(rowCount() - 1));
    return;
  }
  beginResetModel();
  rows_ = std::move(rows);
  endResetModel();
}

// --- The choice of the current row, as controls

class ChoiceGroup final : public QWidget {
 public:
  ChoiceGroup(Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {
    for (std::size_t i = 0; i < kChoices.size(); ++i) {
      segments_[i] = new Segment(QString::fromUtf8(kChoices[i].word), this);
      segments_[i]->setObjectName(QStringLiteral("merge.choice.") + segments_[i]->text().toLower());
      connect(segments_[i], &QRadioButton::toggled, this, [this, i](bool isOn) {
        if (isOn && !isShowing_ && choose_) choose_(kChoices[i].choice);
        update();
      });
    }
    hide();
  }

  void setChosen(std::function<void(MergeChoice)> choose) { choose_ = std::move(choose); }
  /// `reached`: one of them has got the focus.
  void setReached(std::function<void()> reached) { reached_ = std::move(reached); }
  void showRow(const MergeListRow& row) {
    isShowing_ = true;
    setAccessibleName(QStringLiteral("Choice for conflict %1, %2").arg(row.number + 1).arg(row.title));
    for (std::size_t i = 0; i < kChoices.size(); ++i) {
      segments_[i]->setAutoExclusive(false);
      segments_[i]->setChecked(row.choice == kChoices[i].choice);
    }
    for (QRadioButton* segment : segments_) segment->setAutoExclusive(true);
    choice_ = row.choice;
    isShowing_ = false;
    update();
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintSegments(painter, theme_, rect(), choice_);
    for (const Segment* segment : segments_) {
      if (!segment->hasFocus()) continue;
      paintBox(painter, QRectF(segment->geometry()).adjusted(0.5, 0.5, -0.5, -0.5), 6, QColor(),
               theme_.foreground());
    }
  }
  void resizeEvent(QResizeEvent* /*event*/) override {
    for (int i = 0; i < 3; ++i) segments_[static_cast<std::size_t>(i)]->setGeometry(segmentBox(rect(), i));
  }

 private:
  // The group paints it.
  class Segment final : public QRadioButton {
   public:
    using QRadioButton::QRadioButton;

   protected:
    void paintEvent(QPaintEvent* /*event*/) override {}
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    // Qt's own arrow keys choose nothing while nothing is chosen yet. Space belongs to the tools.
    void keyPressEvent(QKeyEvent* event) override {
      switch (event->key()) {
        case Qt::Key_Left:
        case Qt::Key_Up:
          group().press(*this, -1);
          return;
        case Qt::Key_Right:
        case Qt::Key_Down:
          group().press(*this, 1);
          return;
        default:
          if (isPressingKey(*event)) {
            click();
          } else {
            QRadioButton::keyPressEvent(event);
          }
      }
    }
    void focusInEvent(QFocusEvent* event) override {
      QRadioButton::focusInEvent(event);
      group().update();
      if (group().reached_) group().reached_();
    }
    void focusOutEvent(QFocusEvent* event) override {
      QRadioButton::focusOutEvent(event);
      group().update();
    }

   private:
    ChoiceGroup& group() { return static_cast<ChoiceGroup&>(*parentWidget()); }
  };

  // Chooses the one beside it, and from the end the first.
  void press(Segment& from, int step) {
    const auto at = std::find(segments_.begin(), segments_.end(), &from) - segments_.begin();
    const auto count = static_cast<std::ptrdiff_t>(segments_.size());
    Segment& next = *segments_[static_cast<std::size_t>((at + step + count) % count)];
    next.setFocus(Qt::TabFocusReason);
    next.click();
  }

  Theme& theme_;
  std::array<Segment*, 3> segments_{};
  std::optional<MergeChoice> choice_;
  bool isShowing_ = false;
  std::function<void(MergeChoice)> choose_;
  std::function<void()> reached_;
};

// --- The list

MergeRowsView::MergeRowsView(Theme& theme, MergeListModel& model, QWidget* parent)
    : RowsView(theme, parent), model_(model), group_(new ChoiceGroup(theme, viewport())) {
  connect(&model, &QAbstractItemModel::modelReset, this, [this] { measure(); });
  setModel(&model);
  setSelectionMode(SingleSelection);
  connect(&model, &QAbstractItemModel::dataChanged, this, [this] { placeGroup(); });
  group_->setReached([this] { scrollTo(currentIndex()); });
  group_->setChosen([this](MergeChoice choice) {
    if (currentIndex().isValid()) Q_EMIT chosen(model_.row(currentIndex().row()).number, choice);
  });
}

void MergeRowsView::measure() {
  tops_.assign(1, 0);
  for (int i = 0; i < model_.rowCount(); ++i) {
    const int height = model_.row(i).kind == MergeListRow::Kind::heading    ? kHeadingHeight
                       : model_.row(i).kind == MergeListRow::Kind::conflict ? kConflictHeight
                                                                            : kIncomingHeight;
    tops_.push_back(tops_.back() + height);
  }
}

int MergeRowsView::rowHeight(int row) const {
  return tops_[static_cast<std::size_t>(row) + 1] - tops_[static_cast<std::size_t>(row)];
}

int MergeRowsView::rowAt(int y) const {
  const auto next = std::upper_bound(tops_.begin(), tops_.end(), y);
  return std::clamp(static_cast<int>(next - tops_.begin()) - 1, 0, std::max(0, rowCount() - 1));
}

namespace {

QRect segmentsBox(const QRect& row) {
  return {kEdge, row.top() + kSegmentsTop, row.width() - 2 * kEdge, kSegmentsHeight};
}
QRect wordsBox(const QRect& row, bool isConflict) {
  return row.adjusted(kEdge + (isConflict ? kBadge + kBadgeGap : 0), 0, -kEdge, 0);
}

}  // namespace

void MergeRowsView::paintRow(QPainter& painter, const QRect& box, int number, bool isHovered) {
  const MergeListRow& row = model_.row(number);
  if (row.kind == MergeListRow::Kind::heading) {
    painter.setFont(fontOf(TextStyle::heading));
    painter.setPen(theme().secondaryOnCard());
    painter.drawText(box.adjusted(kEdge, 0, -kEdge, -8), Qt::AlignBottom | Qt::AlignLeft, row.title);
    return;
  }
  const QRect inner = box.adjusted(kInset, 0, -kInset, -2);
  const bool isCurrent = isRowSelected(number);
  if (isCurrent || isHovered) paintBox(painter, inner, 6, theme().muted(), QColor());
  if (hasFocus() && isCurrent) paintBox(painter, inner, 6, QColor(), theme().foreground());
  const bool isConflict = row.kind == MergeListRow::Kind::conflict;
  if (isConflict) paintConflict(painter, box, row);
  const QRect words = wordsBox(box, isConflict);
  painter.setPen(theme().foreground());
  painter.setFont(fontOf(isConflict ? TextStyle::bodyStrong : TextStyle::badge));
  painter.drawText(QRect(words.left(), box.top() + (isConflict ? 7 : 3), words.width(), 20),
                   Qt::AlignVCenter | Qt::AlignLeft,
                   elided(row.title, painter.font(), Qt::ElideRight, words.width()));
  painter.setFont(fontOf(TextStyle::small));
  if (!isCurrent && !isHovered) painter.setPen(theme().secondaryOnCard());
  int y = box.top() + (isConflict ? 30 : 21);
  const QRect lines = isConflict ? box.adjusted(kEdge, 0, -kEdge, 0) : words;
  for (const QString& line : row.words) {
    painter.drawText(QRect(lines.left(), y, lines.width(), 18), Qt::AlignVCenter | Qt::AlignLeft,
                     elided(line, painter.font(), Qt::ElideRight, lines.width()));
    y += 19;
  }
}

// Its number as on the canvas, a bar where it is undecided, and what can be chosen.
void MergeRowsView::paintConflict(QPainter& painter, const QRect& box, const MergeListRow& row) {
  if (!row.choice) painter.fillRect(QRect(kInset, box.top() + 9, 2, 16), theme().active());
  const QString number = QString::number(row.number + 1);
  painter.setFont(fontOf(TextStyle::tag));
  const QRectF badge(kEdge, box.top() + 7.5, kBadge, kBadge);
  paintBox(painter, badge, kBadge / 2.0, theme().card(), theme().foreground());
  painter.setPen(theme().foreground());
  painter.drawText(badge, Qt::AlignCenter, number);
  paintSegments(painter, theme(), segmentsBox(box), row.choice);
}

QString MergeRowsView::toolTipText(int number, const QRect& box) const {
  const MergeListRow& row = model_.row(number);
  if (row.kind == MergeListRow::Kind::heading) return {};
  const int width = box.width() - 2 * kEdge;
  const QFontMetrics metrics(fontOf(TextStyle::small));
  const bool isCut = std::any_of(row.words.begin(), row.words.end(), [&](const QString& line) {
    return metrics.horizontalAdvance(line) > width;
  });
  return isCut ? (QStringList(row.title) + row.words).join('\n') : QString();
}

std::optional<std::pair<int, MergeChoice>> MergeRowsView::choiceAt(const QPoint& point) const {
  const QModelIndex index = indexAt(point);
  if (!index.isValid() || model_.row(index.row()).kind != MergeListRow::Kind::conflict) return std::nullopt;
  const QRect box = segmentsBox(visualRect(index));
  if (!box.contains(point)) return std::nullopt;
  int i = 0;
  while (i < 2 && !segmentBox(box, i).contains(point)) ++i;
  return std::pair(index.row(), kChoices[static_cast<std::size_t>(i)].choice);
}

void MergeRowsView::mousePressEvent(QMouseEvent* event) {
  const auto choice = choiceAt(event->pos());
  if (!choice || event->button() != Qt::LeftButton) {
    RowsView::mousePressEvent(event);
    return;
  }
  setCurrentIndex(model_.index(choice->first));
  Q_EMIT chosen(model_.row(choice->first).number, choice->second);
}

// A press on a choice is no click on its row.
void MergeRowsView::mouseReleaseEvent(QMouseEvent* event) {
  if (!choiceAt(event->pos())) RowsView::mouseReleaseEvent(event);
}

void MergeRowsView::keyPressEvent(QKeyEvent* event) {
  if (clickByReturn(*event)) return;
  const QModelIndex current = currentIndex();
  const bool isConflict = current.isValid() && model_.row(current.row()).kind == MergeListRow::Kind::conflict;
  if (isConflict && (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right)) {
    const MergeListRow& row = model_.row(current.row());
    const int step = event->key() == Qt::Key_Right ? 1 : -1;
    const int next = row.choice ? std::clamp(positionOf(*row.choice) + step, 0, 2) : step > 0 ? 0 : 2;
    Q_EMIT chosen(row.number, kChoices[static_cast<std::size_t>(next)].choice);
  } else {
    RowsView::keyPressEvent(event);
  }
}

void MergeRowsView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  RowsView::currentChanged(current, previous);
  viewport()->update();
  placeGroup();
}

void MergeRowsView::updateGeometries() {
  RowsView::updateGeometries();
  placeGroup();
}

void MergeRowsView::scrollContentsBy(int dx, int dy) {
  RowsView::scrollContentsBy(dx, dy);
  placeGroup();
}

void MergeRowsView::placeGroup() {
  const QModelIndex current = currentIndex();
  const bool isConflict = current.isValid() && current.row() < model_.rowCount() &&
                          model_.row(current.row()).kind == MergeListRow::Kind::conflict;
  group_->setVisible(isConflict);
  if (!isConflict) return;
  group_->setGeometry(segmentsBox(visualRect(current)));
  group_->showRow(model_.row(current.row()));
}

}  // namespace ostrelon
