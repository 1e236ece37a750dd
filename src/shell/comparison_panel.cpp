#include "shell/comparison_panel.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "core/difference_colors.h"
#include "shell/accessibility.h"
#include "shell/entity_list_model.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kEdge = 16;
constexpr int kInset = 8;
constexpr int kHeadingHeight = 28;
constexpr int kRowHeight = 44;
constexpr int kBlendSteps = 100;
constexpr int kBlendMilliseconds = 120;

QColor colorOf(DifferenceKind kind, const Theme& theme) {
  const DifferenceColors colors = differenceColors(theme.palette());
  switch (kind) {
    case DifferenceKind::removed:
      return qtColor(colors.removed);
    case DifferenceKind::changed:
      return qtColor(colors.changed);
    case DifferenceKind::added:
      return qtColor(colors.added);
  }
  return theme.foreground();
}

// The line of the kind, as the canvas has it.
void paintSample(QPainter& painter, const QRectF& box, DifferenceKind kind, const Theme& theme) {
  const QColor color = colorOf(kind, theme);
  const auto stroke = [&](double y, double width, const QList<qreal>& dash, double opacity) {
    QColor shade = color;
    shade.setAlphaF(static_cast<float>(opacity));
    QPen pen(shade, width);
    pen.setCapStyle(Qt::FlatCap);
    if (!dash.isEmpty()) pen.setDashPattern(dash);
    painter.setPen(pen);
    painter.drawLine(QPointF(box.left(), y), QPointF(box.right(), y));
  };
  const double middle = box.center().y();
  switch (kind) {
    case DifferenceKind::removed:
      stroke(middle, 1.75, {4, 2.5}, 1);
      return;
    case DifferenceKind::changed:
      stroke(middle - 3, 1.25, {2.4, 2.4}, 1);
      stroke(middle + 3, 1.75, {}, 1);
      return;
    case DifferenceKind::added:
      stroke(middle, 8, {}, 0.22);
      stroke(middle, 2, {}, 1);
      return;
  }
}

QString groupHeading(std::optional<std::size_t> group, std::size_t count) {
  const QString number = group ? QString::number(*group + 1) : QStringLiteral("Wall systems");
  return count == 1 ? number + QStringLiteral(" · 1 difference")
                    : number + QStringLiteral(" · %1 differences").arg(count);
}

}  // namespace

// --- The rows

int ComparisonListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant ComparisonListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const Row& shown = row(index.row());
  switch (role) {
    case Qt::DisplayRole:
      return shown.heading.isEmpty() ? shown.label + QStringLiteral(": ") + shown.words : shown.heading;
    case kIdentifierRole:
      return QStringLiteral("comparison.row.%1").arg(index.row());
    case kSelectedRole:
      return shown.heading.isEmpty() && current_ == shown.row;
    default:
      return {};
  }
}

int ComparisonListModel::rowOf(std::optional<std::size_t> difference) const {
  if (!difference) return -1;
  const auto found = std::find_if(rows_.begin(), rows_.end(), [&](const Row& row) {
    return row.heading.isEmpty() && row.row == *difference;
  });
  return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

void ComparisonListModel::show(const ComparedDrawings& compared) {
  beginResetModel();
  rows_.clear();
  height_ = 0;
  const auto add = [&](Row row, int rowHeight) {
    row.top = height_;
    height_ += rowHeight;
    rows_.push_back(std::move(row));
  };
  for (std::size_t i = 0; i < compared.rows.size(); ++i) {
    const auto group = compared.groupOf(compared.rows[i]);
    if (i == 0 || group != compared.groupOf(compared.rows[i - 1])) {
      std::size_t count = 1;
      while (i + count < compared.rows.size() && compared.groupOf(compared.rows[i + count]) == group) ++count;
      add({groupHeading(group, count), i, 0, {}, {}, {}}, kHeadingHeight);
    }
    const ToldDifference& told = compared.rows[i].told;
    const QString text = qtText(told.text);
    const qsizetype colon = text.indexOf(QStringLiteral(": "));
    add({{}, i, 0, told.kind, text.left(colon), text.mid(colon + 2)}, kRowHeight);
  }
  if (compared.untold > 0) {
    add({QStringLiteral("… and %1 more").arg(compared.untold), compared.rows.size(), 0, {}, {}, {}},
        kHeadingHeight);
  }
  endResetModel();
}

void ComparisonListModel::setCurrent(std::optional<std::size_t> difference) {
  if (current_ == difference) return;
  current_ = difference;
  if (!rows_.empty()) Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

class ComparisonRowsView final : public RowsView {
 public:
  ComparisonRowsView(Theme& theme, ComparisonListModel& model, QWidget* parent)
      : RowsView(theme, parent), model_(model) {
    setModel(&model);
    setSelectionMode(SingleSelection);
  }
  bool isRowSelected(int row) const override {
    return model_.row(row).heading.isEmpty() && model_.current() == model_.row(row).row;
  }

 protected:
  int rowTop(int row) const override { return model_.row(row).top; }
  int rowHeight(int row) const override {
    return model_.row(row).heading.isEmpty() ? kRowHeight : kHeadingHeight;
  }
  int rowAt(int y) const override {
    int low = 0;
    int high = std::max(0, rowCount() - 1);
    while (low < high) {
      const int middle = (low + high + 1) / 2;
      if (model_.row(middle).top <= y) {
        low = middle;
      } else {
        high = middle - 1;
      }
    }
    return low;
  }
  int contentHeight() const override { return model_.height(); }

  void paintRow(QPainter& painter, const QRect& box, int row, bool isHovered) override {
    const ComparisonListModel::Row& shown = model_.row(row);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!shown.heading.isEmpty()) {
      painter.setFont(fontOf(TextStyle::tag));
      painter.setPen(theme().secondaryOnCard());
      painter.drawText(box.adjusted(8, 6, -8, 0), Qt::AlignVCenter | Qt::AlignLeft, shown.heading);
      return;
    }
    const bool isSelected = isRowSelected(row);
    const QRect inner = box.adjusted(0, 1, -1, -1);
    if (isSelected || isHovered) paintBox(painter, inner, 6, theme().muted(), QColor());
    if (isSelected)
      painter.fillRect(QRect(inner.left(), inner.top() + 6, 2, inner.height() - 12), theme().active());
    if (hasFocus() && currentIndex().row() == row)
      paintBox(painter, inner, 6, QColor(), theme().foreground());
    paintSample(painter, QRectF(box.left() + 10, box.top(), 24, box.height()), shown.kind, theme());
    const QRect words = wordsBox(box);
    painter.setFont(fontOf(TextStyle::smallStrong));
    painter.setPen(theme().foreground());
    painter.drawText(words.adjusted(0, 4, 0, -20), Qt::AlignVCenter | Qt::AlignLeft,
                     elided(shown.label, fontOf(TextStyle::smallStrong), Qt::ElideRight, words.width()));
    painter.setFont(fontOf(TextStyle::small));
    painter.setPen(isSelected || isHovered ? theme().foreground() : theme().secondaryOnCard());
    painter.drawText(words.adjusted(0, 21, 0, -3), Qt::AlignVCenter | Qt::AlignLeft,
                     elided(shown.words, fontOf(TextStyle::small), Qt::ElideRight, words.width()));
  }

  QString toolTipText(int row, const QRect& box) const override {
    const ComparisonListModel::Row& shown = model_.row(row);
    const QFontMetrics metrics(fontOf(TextStyle::small));
    return metrics.horizontalAdvance(shown.words) > wordsBox(box).width() ? shown.words : QString();
  }

  void keyPressEvent(QKeyEvent* event) override {
    if (!clickByReturn(*event)) RowsView::keyPressEvent(event);
  }

 private:
  static QRect wordsBox(const QRect& box) { return box.adjusted(44, 0, -8, 0); }

  ComparisonListModel& model_;
};

// --- The slider

BlendSlider::BlendSlider(Theme& theme, QWidget* parent) : QSlider(Qt::Horizontal, parent), theme_(theme) {
  setRange(0, kBlendSteps);
  setPageStep(kBlendSteps / 4);
  setFixedHeight(24);
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void BlendSlider::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  constexpr double kKnob = 7;
  const double middle = height() / 2.0;
  const double room = width() - 2 * kKnob - 2;
  const double x = kKnob + 1 + room * value() / kBlendSteps;
  painter.setPen(QPen(theme_.mutedForeground(), 1.5));
  painter.drawLine(QPointF(kKnob, middle), QPointF(width() - kKnob, middle));
  painter.drawLine(QPointF(width() / 2.0, middle - 4), QPointF(width() / 2.0, middle + 4));
  if (hasFocus()) {
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(QPointF(x, middle), kKnob + 2.5, kKnob + 2.5);
  }
  painter.setPen(QPen(theme_.foreground(), 1.5));
  painter.setBrush(theme_.card());
  painter.drawEllipse(QPointF(x, middle), kKnob, kKnob);
}

// The knob comes to the pointer at once.
void BlendSlider::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    constexpr double kKnob = 8;
    const double part = (event->position().x() - kKnob) / std::max(1.0, width() - 2 * kKnob);
    setValue(static_cast<int>(std::lround(std::clamp(part, 0.0, 1.0) * kBlendSteps)));
  }
  QSlider::mousePressEvent(event);
}

// --- The panel

ComparisonPanel::ComparisonPanel(Comparison& comparison, Theme& theme, QWidget* parent)
    : ReviewPanel(theme, QStringLiteral("Comparison"), QStringLiteral("comparison"), Icon::stack, parent),
      comparison_(comparison),
      heading_(new TextLabel(theme, TextStyle::heading, TextLabel::Rank::secondary, "COMPARISON", this)),
      endButton_(new Button(theme, Button::Kind::plain, {}, this)),
      title_(new TextLabel(theme, TextStyle::bodyStrong, TextLabel::Rank::primary, {}, this)),
      counts_(new TextLabel(theme, TextStyle::small, TextLabel::Rank::secondary, {}, this)),
      kinds_(new Picker(theme, this)),
      entities_(new Picker(theme, this)),
      model_(new ComparisonListModel(this)),
      list_(new ComparisonRowsView(theme, *model_, this)),
      emptyText_(new TextLabel(theme, TextStyle::small, TextLabel::Rank::secondary, {}, this)),
      otherLabel_(
          new TextLabel(theme, TextStyle::caption, TextLabel::Rank::secondary, "Other drawing", this)),
      openLabel_(new TextLabel(theme, TextStyle::caption, TextLabel::Rank::secondary, "This drawing", this)),
      blend_(new BlendSlider(theme, this)),
      previous_(new Button(theme, Button::Kind::outlined, QStringLiteral("Previous"), this)),
      next_(new Button(theme, Button::Kind::outlined, QStringLiteral("Next"), this)),
      takeThis_(new Button(theme, Button::Kind::outlined, QStringLiteral("Take This"), this)),
      takeBack_(new Button(theme, Button::Kind::outlined, QStringLiteral("Take Back"), this)),
      update_(comparison, fieldsOf(comparison.state), this, [this] { refresh(); }) {
  title_->setObjectName(QStringLiteral("comparison.title"));
  title_->setElision(Qt::ElideMiddle);
  counts_->setObjectName(QStringLiteral("comparison.counts"));
  counts_->setWordWrap(true);
  emptyText_->setWordWrap(true);
  openLabel_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  endButton_->setIconDrawing(Icon::close, 16);
  endButton_->setPaddings(4, 24);
  endButton_->setAccessibleName(QStringLiteral("End comparison"));
  endButton_->setToolTip(QStringLiteral("End the comparison (Escape)"));
  kinds_->addItems({QStringLiteral("All changes"), QStringLiteral("Added"), QStringLiteral("Removed"),
                    QStringLiteral("Changed")});
  kinds_->setAccessibleName(QStringLiteral("Kind of difference"));
  entities_->addItems({QStringLiteral("All entities"), QStringLiteral("Lines"), QStringLiteral("Walls"),
                       QStringLiteral("Circles"), QStringLiteral("Arcs"), QStringLiteral("Rectangles"),
                       QStringLiteral("Polygons")});
  entities_->setAccessibleName(QStringLiteral("Kind of entity"));
  list_->setObjectName(QStringLiteral("comparison.list"));
  list_->setAccessibleName(QStringLiteral("Differences"));
  blend_->setAccessibleName(QStringLiteral("Blend from the other drawing to this one"));
  blend_->setToolTip(QStringLiteral("Hold B to see the other drawing alone"));
  previous_->setToolTip(QStringLiteral("Previous difference (Shift+N)"));
  next_->setToolTip(QStringLiteral("Next difference (N)"));
  takeThis_->setToolTip(QStringLiteral("Take what the other drawing has here"));
  takeBack_->setToolTip(QStringLiteral("Take back what this drawing has added or changed here"));
  const std::pair<QWidget*, const char*> names[] = {
      {endButton_, "comparison.end"},     {kinds_, "comparison.kinds"},
      {entities_, "comparison.entities"}, {blend_, "comparison.blend"},
      {previous_, "comparison.previous"}, {next_, "comparison.next"},
      {takeThis_, "comparison.takeThis"}, {takeBack_, "comparison.takeBack"}};
  for (const auto& [widget, name] : names) widget->setObjectName(name);

  connect(endButton_, &QPushButton::clicked, this, [this] { comparison_.end(); });
  connect(kinds_, &QComboBox::activated, this, [this] { applyFilter(); });
  connect(entities_, &QComboBox::activated, this, [this] { applyFilter(); });
  connect(list_, &QAbstractItemView::clicked, this,
          [this](const QModelIndex& index) { comparison_.show(model_->row(index.row()).row); });
  connect(blend_, &QSlider::valueChanged, this,
          [this](int value) { comparison_.setBlend(static_cast<double>(value) / kBlendSteps); });
  connect(previous_, &QPushButton::clicked, this, [this] { comparison_.previous(); });
  connect(next_, &QPushButton::clicked, this, [this] { comparison_.next(); });
  connect(takeThis_, &QPushButton::clicked, this, [this] { comparison_.takeThis(); });
  connect(takeBack_, &QPushButton::clicked, this, [this] { comparison_.takeBack(); });
  refresh();
}

QAbstractItemView& ComparisonPanel::list() { return *list_; }

void ComparisonPanel::applyFilter() {
  ComparisonFilter filter;
  const int kind = kinds_->currentIndex();
  filter.added = kind == 0 || kind == 1;
  filter.removed = kind == 0 || kind == 2;
  filter.changed = kind == 0 || kind == 3;
  if (entities_->currentIndex() > 0)
    filter.entityKind = static_cast<std::size_t>(entities_->currentIndex() - 1);
  comparison_.setFilter(filter);
}

void ComparisonPanel::refresh() {
  if (!comparison_.isOn()) return;
  const ComparisonState& state = **comparison_.state;
  if (shown_ != state.compared) {
    shown_ = state.compared;
    const int scrolled = list_->verticalScrollBar()->value();
    model_->setCurrent(std::nullopt);
    model_->show(*shown_);
    list_->verticalScrollBar()->setValue(scrolled);
    title_->setText(QStringLiteral("With ") + qtText(state.title));
    counts_->setText(qtText(differenceCounts(shown_->difference)));
    emptyText_->setText(shown_->difference.empty() ? QStringLiteral("The two drawings are the same.")
                                                   : QStringLiteral("The filter lets nothing through."));
    if (!isRail()) place();
  }
  if (model_->current() != state.current) {
    model_->setCurrent(state.current);
    const int row = model_->rowOf(state.current);
    if (row >= 0) list_->setCurrentIndex(model_->index(row));
  }
  const ComparisonRow* row = state.currentRow();
  takeThis_->setEnabled(row != nullptr && canTakeThis(*row));
  takeBack_->setEnabled(row != nullptr && canTakeBack(*row));
  previous_->setEnabled(!shown_->rows.empty());
  next_->setEnabled(!shown_->rows.empty());
  const QSignalBlocker blocker(blend_);
  blend_->setValue(static_cast<int>(std::lround(state.blend * kBlendSteps)));
  list_->viewport()->update();
}

void ComparisonPanel::place() {
  const int inner = width() - 2 * kEdge;
  int y = kEdge;
  heading_->setGeometry(kEdge, y, inner - 28, 16);
  endButton_->setGeometry(width() - kEdge - 20, y - 4, 24, 24);
  y += 16 + 10;
  title_->setGeometry(kEdge, y, inner, 20);
  y += 20 + 2;
  const int countsHeight = std::max(18, counts_->heightForWidth(inner));
  counts_->setGeometry(kEdge, y, inner, countsHeight);
  y += countsHeight + 10;
  const int half = (inner - 8) / 2;
  kinds_->setGeometry(kEdge, y, half, 28);
  entities_->setGeometry(kEdge + half + 8, y, inner - half - 8, 28);
  y += 28 + 10;
  constexpr int kFoot = 12 + 16 + 24 + 12 + 28 + 8 + 28 + 16;
  const int listHeight = std::max(60, height() - y - kFoot);
  const bool isEmpty = shown_ == nullptr || model_->rowCount() == 0;
  list_->setVisible(!isEmpty);
  emptyText_->setVisible(isEmpty);
  list_->setGeometry(kInset, y, width() - kInset - 1, listHeight);
  emptyText_->setGeometry(kEdge, y, inner, 36);
  y += listHeight + 12;
  otherLabel_->setGeometry(kEdge, y, half, 16);
  openLabel_->setGeometry(kEdge + half, y, inner - half, 16);
  y += 16;
  blend_->setGeometry(kEdge, y, inner, 24);
  y += 24 + 12;
  previous_->setGeometry(kEdge, y, half, 28);
  next_->setGeometry(kEdge + half + 8, y, inner - half - 8, 28);
  y += 28 + 8;
  takeThis_->setGeometry(kEdge, y, half, 28);
  takeBack_->setGeometry(kEdge + half + 8, y, inner - half - 8, 28);
}

// --- In the main window

ComparisonPresenter::ComparisonPresenter(Application& application, Theme& theme, MainWindow& window)
    : QObject(&window),
      application_(application),
      theme_(theme),
      window_(window),
      update_(application.comparison(), fieldsOf(application.comparison().state), this,
              [this] { refresh(); }) {
  connect(&blending_, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& value) { showBlend(value.toDouble()); });
}

void ComparisonPresenter::refresh() {
  const auto& state = *application_.comparison().state;
  if (!state) {
    blending_.stop();
    if (panel_ == nullptr) return;
    // A merge may have taken its place.
    if (window_.reviewPanel() == panel_) {
      window_.canvas().setDifference(std::nullopt);
      window_.setReviewPanel(nullptr);
    }
    panel_ = nullptr;
    return;
  }
  if (panel_ == nullptr || window_.reviewPanel() != panel_) {
    panel_ = new ComparisonPanel(application_.comparison(), theme_, &window_);
    window_.setReviewPanel(panel_);
  }
  const auto& shown = window_.canvas().difference();
  const double from = shown ? shown->blend : kBothSides;
  const ComparisonRow* row = state->currentRow();
  window_.canvas().setDifference(
      CanvasDifference{state->compared->layers, from, row != nullptr ? row->item : std::nullopt});
  // What is dragged follows at once; a key that is held or let go blends.
  const double wanted = state->shownBlend();
  if (from == wanted) return;
  const int duration = animationMilliseconds(kBlendMilliseconds);
  blending_.stop();
  if (duration == 0 || wasBeforeHeld_ == state->isBeforeHeld) {
    showBlend(wanted);
  } else {
    blending_.setStartValue(from);
    blending_.setEndValue(wanted);
    blending_.setDuration(duration);
    blending_.start();
  }
  wasBeforeHeld_ = state->isBeforeHeld;
}

void ComparisonPresenter::showBlend(double blend) {
  auto shown = window_.canvas().difference();
  if (!shown) return;
  shown->blend = blend;
  window_.canvas().setDifference(std::move(shown));
}

}  // namespace ostrelon
