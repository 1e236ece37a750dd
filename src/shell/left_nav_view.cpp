#include "shell/left_nav_view.h"

#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <utility>

#include "app/shortcut_text.h"
#include "geometry/edit_operations.h"
#include "interaction/key_routing.h"
#include "shell/accessibility.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kLogoHeight = 44;
constexpr int kEdge = 16;
constexpr int kInset = 8;
constexpr int kToolHeight = 30;
constexpr int kToolGap = 2;
constexpr int kHeadingHeight = 16;
constexpr int kEntityHeight = 26;
constexpr int kItemIndent = 16;  // of what is in a wall, beneath it
constexpr int kFoldColumn = 28;  // at the right of a wall that has something beneath it
constexpr int kCoordinatesHeight = 92;

FieldMask shownFields(const Workspace& workspace) {
  return fieldsOf(workspace.sketch.drawing, workspace.sketch.selection, workspace.board.tool);
}

// The keys that choose a tool, as "Space, S"; empty for most tools.
QString toolKeys(SketchTool tool) {
  QStringList keys;
  for (const KeyBinding& binding : keyBindings()) {
    if (binding.tool == tool) keys.append(qtText(desktopNotation(binding.keys)));
  }
  return keys.join(QStringLiteral(", "));
}

}  // namespace

// --- The tools

NavToolRow::NavToolRow(Theme& theme, SketchTool tool, QWidget* parent)
    : QPushButton(qtText(displayName(tool)), parent), theme_(theme), tool_(tool) {
  setObjectName(QStringLiteral("leftNav.tool.") + qtText(rawValue(tool)));
  setCheckable(true);
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_Hover);
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

QSize NavToolRow::sizeHint() const {
  return {(iconOnly_ ? LeftNavView::kRailWidth : LeftNavView::kWidth) - 2 * kInset, kToolHeight};
}

void NavToolRow::setIconOnly(bool iconOnly) {
  iconOnly_ = iconOnly;
  update();
}

void NavToolRow::keyPressEvent(QKeyEvent* event) {
  if (isPressingKey(*event)) {
    click();
    return;
  }
  QPushButton::keyPressEvent(event);
}

void NavToolRow::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QColor words = theme_.foreground();
  QColor drawing = theme_.mutedForeground();
  QColor fill;
  if (isChecked()) {
    fill = isDown()       ? theme_.overCard(theme_.fill(), 0.76)
           : underMouse() ? theme_.overCard(theme_.fill(), 0.88)
                          : theme_.fill();
    words = theme_.fillText();
    drawing = words;
  } else if (isDown()) {
    fill = theme_.border();
  } else if (underMouse()) {
    fill = theme_.muted();
    drawing = theme_.foreground();
  }
  if (fill.isValid()) paintBox(painter, rect(), 6, fill, QColor());
  const QRectF iconBox = iconOnly_ ? QRectF(rect()) : QRectF(8, 0, 18, height());
  paintIcon(painter, iconOf(tool_), iconBox, 18, drawing);
  if (iconOnly_) return;
  painter.setFont(fontOf(TextStyle::control));
  painter.setPen(words);
  painter.drawText(rect().adjusted(36, 0, -8, 0), Qt::AlignVCenter | Qt::AlignLeft, text());
}

// --- The mark

OstrelLogoView::OstrelLogoView(Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {
  setAccessibleName(QStringLiteral("Ostrelon"));
  setAccessibleRole(*this, QAccessible::Graphic);
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void OstrelLogoView::setMarkOnly(bool markOnly) {
  markOnly_ = markOnly;
  update();
}

void OstrelLogoView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const int mark = 22;
  const int x = markOnly_ ? (width() - mark) / 2 : kEdge;
  painter.drawPixmap(QPoint(x, (height() - mark) / 2), logoPixmap(mark, theme_, devicePixelRatioF()));
  if (markOnly_) return;
  painter.setFont(fontOf(TextStyle::wordmark));
  painter.setPen(theme_.foreground());
  painter.drawText(rect().adjusted(x + mark + 10, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft,
                   QStringLiteral("Ostrelon"));
}

// --- The entities

class EntityRowsView final : public RowsView {
 public:
  EntityRowsView(Theme& theme, EntityListModel& model, QWidget* parent)
      : RowsView(theme, parent), model_(model) {
    setModel(&model);
    setSelectionMode(SingleSelection);
  }
  bool isRowSelected(int row) const override { return model_.isSelected(row); }

 protected:
  int rowTop(int row) const override { return row * kEntityHeight; }
  int rowHeight(int /*row*/) const override { return kEntityHeight; }
  int rowAt(int y) const override { return std::clamp(y / kEntityHeight, 0, std::max(0, rowCount() - 1)); }
  int contentHeight() const override { return rowCount() * kEntityHeight; }

  void paintRow(QPainter& painter, const QRect& box, int row, bool isHovered) override {
    const bool isSelected = model_.isSelected(row);
    QRect inner = box.adjusted(kInset, 0, -1, 0);
    inner.setRight(std::min(inner.right(), width() - kInset));
    if (isSelected || isHovered) paintBox(painter, inner, 4, theme().muted(), QColor());
    if (isSelected) {
      painter.fillRect(QRect(inner.left(), box.top() + 5, 2, 16), theme().active());
    }
    if (hasFocus() && currentIndex().row() == row) {
      paintBox(painter, inner, 4, QColor(), theme().foreground());
    }
    const QColor drawing = isSelected || isHovered ? theme().foreground() : theme().mutedForeground();
    const ListedRows::Row place = model_.place(row);
    const int left = kEdge + (place.item != nullptr ? kItemIndent : 0);
    paintIcon(painter, model_.icon(row), QRectF(left, box.top(), 14, box.height()), 14, drawing);
    if (place.hasItems) {
      paintIcon(painter, place.isFolded ? Icon::chevronRight : Icon::chevronDown,
                QRectF(width() - kFoldColumn, box.top(), 14, box.height()), 14, drawing);
    }
    painter.setFont(rowFont(row));
    painter.setPen(theme().foreground());
    painter.drawText(wordsBox(row, box), Qt::AlignVCenter | Qt::AlignLeft, shownLabel(row, box));
  }

  QString toolTipText(int row, const QRect& box) const override {
    return shownLabel(row, box) == label(row) ? QString() : label(row);
  }

  void keyPressEvent(QKeyEvent* event) override {
    if (!foldByKey(*event) && !clickByReturn(*event)) RowsView::keyPressEvent(event);
  }
  void mousePressEvent(QMouseEvent* event) override {
    const int row = indexAt(event->position().toPoint()).row();
    const bool isOnFold = event->button() == Qt::LeftButton && row >= 0 && model_.place(row).hasItems &&
                          event->position().x() >= width() - kFoldColumn;
    isFolding_ = isOnFold;
    if (isOnFold) {
      model_.toggleFold(row);
    } else {
      RowsView::mousePressEvent(event);
    }
  }
  void mouseReleaseEvent(QMouseEvent* event) override {
    if (!std::exchange(isFolding_, false)) RowsView::mouseReleaseEvent(event);
  }
  void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }

 private:
  // Left folds a wall, or goes from what is in it to the wall; Right unfolds it.
  bool foldByKey(const QKeyEvent& event) {
    if (!currentIndex().isValid() || (event.key() != Qt::Key_Left && event.key() != Qt::Key_Right)) {
      return false;
    }
    const int row = currentIndex().row();
    const ListedRows::Row place = model_.place(row);
    if (place.item != nullptr && event.key() == Qt::Key_Left) {
      int above = row;
      while (model_.place(above).item != nullptr) --above;
      setCurrentIndex(model_.index(above));
    } else if (place.hasItems && place.isFolded == (event.key() == Qt::Key_Right)) {
      model_.toggleFold(row);
    }
    return place.item != nullptr || place.hasItems;
  }
  QRect wordsBox(int row, const QRect& box) const {
    const ListedRows::Row place = model_.place(row);
    return box.adjusted(kEdge + 24 + (place.item != nullptr ? kItemIndent : 0), 0,
                        place.hasItems ? -kFoldColumn - 2 : -8, 0);
  }
  QFont rowFont(int row) const {
    return fontOf(model_.isSelected(row) ? TextStyle::smallStrong : TextStyle::small);
  }
  QString label(int row) const { return model_.data(model_.index(row), Qt::DisplayRole).toString(); }
  QString shownLabel(int row, const QRect& box) const {
    return elided(label(row), rowFont(row), Qt::ElideRight, wordsBox(row, box).width());
  }

  EntityListModel& model_;
  bool isFolding_ = false;  // the press in progress was on the mark that folds
};

// --- The panel

LeftNavView::LeftNavView(Workspace& workspace, Theme& theme, QWidget* parent)
    : Panel(theme, Qt::RightEdge, parent),
      workspace_(workspace),
      logo_(new OstrelLogoView(theme, this)),
      logoLine_(new Hairline(theme, Qt::Horizontal, this)),
      toolsHeading_(new TextLabel(theme, TextStyle::heading, TextLabel::Rank::secondary, "TOOLS", this)),
      entitiesHeading_(
          new TextLabel(theme, TextStyle::heading, TextLabel::Rank::secondary, "ENTITIES", this)),
      emptyText_(new TextLabel(theme, TextStyle::small, TextLabel::Rank::secondary, "No entities", this)),
      model_(new EntityListModel(workspace.sketch, this)),
      coordinatesLine_(new Hairline(theme, Qt::Horizontal, this)),
      coordinatesHeading_(
          new TextLabel(theme, TextStyle::heading, TextLabel::Rank::secondary, "COORDINATES", this)),
      originText_(new TextLabel(theme, TextStyle::caption, TextLabel::Rank::secondary,
                                QStringLiteral("0,0 at center  ·  Y ↑"), this)),
      gesturesText_(new TextLabel(theme, TextStyle::caption, TextLabel::Rank::secondary,
                                  QStringLiteral("two-finger pan  ·  pinch zoom"), this)),
      update_(workspace, shownFields(workspace), this, [this] { refresh(); }) {
  setObjectName(QStringLiteral("leftNav"));
  setAccessibleName(QStringLiteral("Navigation"));
  for (const SketchTool tool : kAllSketchTools) {
    auto* row = new NavToolRow(theme, tool, this);
    connect(row, &QPushButton::clicked, this, [this, row] {
      workspace_.board.activateTool(row->tool());
      refresh();
    });
    toolRows_.push_back(row);
  }
  // Made after the tools, since Tab goes in the order of making.
  list_ = new EntityRowsView(theme, *model_, this);
  unfoldButton_ = new Button(theme, Button::Kind::plain, QString(), this);
  emptyText_->setObjectName(QStringLiteral("leftNav.noEntities"));
  list_->setObjectName(QStringLiteral("leftNav.entities"));
  list_->setAccessibleName(QStringLiteral("Entities"));
  connect(list_, &QAbstractItemView::clicked, this,
          [this](const QModelIndex& index) { chooseRow(index.row()); });
  originText_->setObjectName(QStringLiteral("leftNav.coordinates.centerOrigin"));
  gesturesText_->setObjectName(QStringLiteral("leftNav.coordinates.gestures"));
  unfoldButton_->setObjectName(QStringLiteral("leftNav.unfold"));
  unfoldButton_->setIconDrawing(Icon::stack, 18);
  unfoldButton_->setPaddings(9, 30);
  unfoldButton_->setAccessibleName(QStringLiteral("Show entities and coordinates"));
  unfoldButton_->setToolTip(QStringLiteral("Show entities and coordinates"));
  connect(unfoldButton_, &QPushButton::clicked, this, &LeftNavView::unfoldRequested);
  setRail(false);
  refresh();
}

void LeftNavView::setRail(bool rail) {
  rail_ = rail;
  logo_->setMarkOnly(rail);
  for (NavToolRow* row : toolRows_) {
    row->setIconOnly(rail);
    const QString keys = toolKeys(row->tool());
    if (!keys.isEmpty()) {
      row->setToolTip(QStringLiteral("%1 (%2)").arg(row->text(), keys));
    } else {
      row->setToolTip(rail ? row->text() : QString());
    }
  }
  for (QWidget* widget : {static_cast<QWidget*>(toolsHeading_), static_cast<QWidget*>(entitiesHeading_),
                          static_cast<QWidget*>(coordinatesLine_), static_cast<QWidget*>(coordinatesHeading_),
                          static_cast<QWidget*>(originText_), static_cast<QWidget*>(gesturesText_)}) {
    widget->setVisible(!rail);
  }
  unfoldButton_->setVisible(rail);
  refresh();
  place();
}

void LeftNavView::resizeEvent(QResizeEvent* event) {
  Panel::resizeEvent(event);
  place();
}

void LeftNavView::place() {
  const int inner = width() - 1;
  logo_->setGeometry(0, 0, inner, kLogoHeight - 1);
  logoLine_->setGeometry(0, kLogoHeight - 1, inner, 1);
  int y = kLogoHeight + kEdge;
  if (!rail_) {
    toolsHeading_->setGeometry(kEdge, y, inner - 2 * kEdge, kHeadingHeight);
    y += kHeadingHeight + 8;
  } else {
    y = kLogoHeight + kInset;
  }
  for (NavToolRow* row : toolRows_) {
    row->setGeometry(kInset, y, inner - 2 * kInset, kToolHeight);
    y += kToolHeight + kToolGap;
  }
  y += 24 - kToolGap;
  entitiesHeading_->setGeometry(kEdge, y, inner - 2 * kEdge, kHeadingHeight);
  y += kHeadingHeight + 8;
  const int foot = std::max(y, height() - kCoordinatesHeight);
  list_->setGeometry(0, y, inner - 1, std::max(0, foot - y));
  emptyText_->setGeometry(kEdge, y, inner - 2 * kEdge, 18);
  coordinatesLine_->setGeometry(0, foot, inner, 1);
  coordinatesHeading_->setGeometry(kEdge, foot + 16, inner - 2 * kEdge, kHeadingHeight);
  originText_->setGeometry(kEdge, foot + 40, inner - kEdge, 16);
  gesturesText_->setGeometry(kEdge, foot + 58, inner - kEdge, 16);
  unfoldButton_->setGeometry(kInset, height() - kToolHeight - kInset, inner - 2 * kInset, kToolHeight);
}

void LeftNavView::chooseRow(int row) {
  if (const PlanItem* item = model_->place(row).item) {
    const UUID id = planItemID(*item);
    shownSelection_ = id;
    workspace_.board.activateSelectTool();
    workspace_.sketch.selectPlanItem(id);
    return;
  }
  const UUID id = model_->entityAt(row);
  const SketchEntity* entity = workspace_.sketch.entity(id);
  if (entity == nullptr) return;
  const bool isWall = std::holds_alternative<WallEntity>(*entity);
  if (isWall && workspace_.board.tool != SketchTool::select) workspace_.board.activateSelectTool();
  shownSelection_ = id;  // the row is in sight: it was clicked
  selectSingleEntity(workspace_.sketch, id);
}

void LeftNavView::refresh() {
  for (NavToolRow* row : toolRows_) row->setChecked(row->tool() == workspace_.board.tool.get());
  model_->update();
  const bool isEmpty = model_->rowCount() == 0;
  emptyText_->setVisible(!rail_ && isEmpty);
  list_->setVisible(!rail_ && !isEmpty);
  list_->viewport()->update();
  const Selection& selection = workspace_.sketch.selection;
  const auto& selected = selection.planItem ? selection.planItem : selection.primary;
  if (selected == shownSelection_) return;
  shownSelection_ = selected;
  if (const int row = model_->selectedRow(); row >= 0) {
    const QModelIndex index = model_->index(row);
    list_->setCurrentIndex(index);
    list_->scrollTo(index);
  }
}

}  // namespace ostrelon
