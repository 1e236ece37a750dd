#include "shell/inspector_window.h"

#include <QAbstractItemView>
#include <QCloseEvent>
#include <QCursor>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "app/shortcut_text.h"
#include "geometry/edit_operations.h"
#include "geometry/marquee.h"
#include "geometry/plan_item_operations.h"
#include "interaction/canvas_transform.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kPadding = 16;
constexpr int kRowHeight = 26;
constexpr int kButtonColumn = 76;
constexpr int kFromCanvasEdge = 24;
constexpr int kBelowBadges = 72;
constexpr int kMargin = 12;
constexpr int kTitleHeight = 30;

FieldMask shownFields(const Workspace& workspace) {
  return fieldsOf(workspace.sketch.drawing, workspace.sketch.selection);
}

QVBoxLayout* columnOf(QWidget& page, int spacing) {
  auto* column = new QVBoxLayout(&page);
  column->setContentsMargins(kPadding, kPadding, kPadding, kPadding);
  column->setSpacing(spacing);
  return column;
}

}  // namespace

// --- The view

EntityInspectorView::EntityInspectorView(Workspace& workspace, Theme& theme, QWidget* parent)
    : QWidget(parent),
      workspace_(workspace),
      theme_(theme),
      pages_(new QStackedWidget(this)),
      update_(workspace, shownFields(workspace), this, [this] { refresh(); }) {
  setObjectName(QStringLiteral("inspector"));
  setFixedWidth(kWidth);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(pages_);
  emptyPage_ = makeEmptyPage();
  manyPage_ = makeManyPage();
  onePage_ = makeOnePage();
  openingPage_ = new OpeningPage(workspace, theme, pages_);
  for (QWidget* page : {emptyPage_, manyPage_, onePage_, static_cast<QWidget*>(openingPage_)}) {
    pages_->addWidget(page);
  }
  connect(openingPage_, &OpeningPage::heightChanged, this, [this] { fitPage(); });
  connect(&theme, &Theme::changed, this, [this] {
    shownIcon_ = Icon::none;
    refresh();
  });
  refresh();
}

QWidget* EntityInspectorView::makeEmptyPage() {
  auto* page = new QWidget(pages_);
  auto* column = columnOf(*page, 4);
  column->setContentsMargins(24, 28, 24, 28);
  auto* drawing = new QLabel(page);
  drawing->setAlignment(Qt::AlignCenter);
  const auto paint = [this, drawing] {
    drawing->setPixmap(iconPixmap(Icon::select, 24, theme_.mutedForeground(), devicePixelRatioF()));
  };
  paint();
  connect(&theme_, &Theme::changed, drawing, paint);
  auto* title = new TextLabel(theme_, TextStyle::bodyStrong, TextLabel::Rank::primary,
                              QStringLiteral("No selection"), page);
  title->setObjectName(QStringLiteral("inspector.noSelection"));
  title->setAlignment(Qt::AlignCenter);
  auto* hint = new TextLabel(theme_, TextStyle::small, TextLabel::Rank::secondary,
                             qtText(desktopNotation("Select an entity on the canvas, then press ⌘I.")), page);
  hint->setAlignment(Qt::AlignCenter);
  hint->setWordWrap(true);
  column->addWidget(drawing);
  column->addSpacing(8);
  column->addWidget(title);
  column->addWidget(hint);
  column->addStretch();
  return page;
}

QWidget* EntityInspectorView::makeManyPage() {
  auto* page = new QWidget(pages_);
  auto* column = columnOf(*page, 8);
  manyHeading_ = new TextLabel(theme_, TextStyle::bodyStrong, TextLabel::Rank::primary, {}, page);
  manyHeading_->setObjectName(QStringLiteral("inspector.selectionHeading"));
  manyHeading_->setWordWrap(true);
  auto* hint = new TextLabel(
      theme_, TextStyle::small, TextLabel::Rank::secondary,
      QStringLiteral("Shift-click or drag a marquee to add or remove entities from the selection."), page);
  hint->setWordWrap(true);
  column->addWidget(manyHeading_);
  column->addWidget(hint);
  column->addSpacing(8);
  auto* duplicate =
      addAction(*page, Button::Kind::outlined, QStringLiteral("Duplicate All"), "inspector.duplicateAll");
  connect(duplicate, &QPushButton::clicked, this, [this] {
    duplicateSelection(workspace_.sketch, workspace_.messages, kDuplicateOffset.x, kDuplicateOffset.y);
  });
  auto* remove =
      addAction(*page, Button::Kind::dangerous, QStringLiteral("Delete All"), "inspector.deleteAll");
  remove->setIconDrawing(Icon::bin, 16);
  connect(remove, &QPushButton::clicked, this,
          [this] { deleteSelection(workspace_.sketch, workspace_.messages); });
  column->addStretch();
  return page;
}

Button* EntityInspectorView::addAction(QWidget& page, Button::Kind kind, const QString& title,
                                       const char* identifier) {
  auto* button = new Button(theme_, kind, title, &page);
  button->setObjectName(identifier);
  static_cast<QVBoxLayout*>(page.layout())->addWidget(button);
  return button;
}

QWidget* EntityInspectorView::makeOnePage() {
  auto* page = new QWidget(pages_);
  auto* column = columnOf(*page, 8);

  auto* titleRow = new QHBoxLayout;
  titleRow->setSpacing(10);
  kindIcon_ = new QLabel(page);
  name_ = new TextLabel(theme_, TextStyle::title, TextLabel::Rank::primary, {}, page);
  name_->setObjectName(QStringLiteral("inspector.title"));
  name_->setElision(Qt::ElideRight);
  titleRow->addWidget(kindIcon_);
  titleRow->addWidget(name_, 1);
  column->addLayout(titleRow);

  metrics_ = new QGridLayout;
  metrics_->setHorizontalSpacing(8);
  metrics_->setVerticalSpacing(0);
  metrics_->setColumnStretch(1, 1);
  column->addLayout(metrics_);
  auto* systemRow = new QHBoxLayout;
  systemLabel_ = new TextLabel(theme_, TextStyle::small, TextLabel::Rank::secondary, "Wall system", page);
  systemPicker_ = new Picker(theme_, page);
  systemPicker_->setObjectName(QStringLiteral("inspector.wallSystem"));
  systemPicker_->setAccessibleName(QStringLiteral("Wall system"));
  systemPicker_->setFixedWidth(128);
  connect(systemPicker_, &QComboBox::activated, this, [this](int index) {
    if (const auto id = UUID::parse(plainText(systemPicker_->itemData(index).toString()))) {
      applyInspectorWallSystem(workspace_, *id);
    }
  });
  systemRow->addWidget(systemLabel_);
  systemRow->addStretch();
  systemRow->addWidget(systemPicker_);
  column->addLayout(systemRow);

  column->addSpacing(8);
  column->addWidget(new Hairline(theme_, Qt::Horizontal, page));
  column->addSpacing(8);
  column->addWidget(new TextLabel(theme_, TextStyle::bodyStrong, TextLabel::Rank::primary, "Adjust", page));

  lengthRow_ = new QWidget(page);
  auto* lengthColumns = new QHBoxLayout(lengthRow_);
  lengthColumns->setContentsMargins(0, 0, 0, 0);
  lengthColumns->setSpacing(8);
  lengthField_ = new Field(theme_, true, lengthRow_);
  lengthField_->setObjectName(QStringLiteral("inspector.length"));
  lengthField_->setAccessibleName(QStringLiteral("Length in feet and inches"));
  auto* apply = new Button(theme_, Button::Kind::outlined, QStringLiteral("Apply"), lengthRow_);
  apply->setObjectName(QStringLiteral("inspector.applyLength"));
  apply->setFixedWidth(kButtonColumn);
  lengthColumns->addWidget(lengthField_, 1);
  lengthColumns->addWidget(apply);
  column->addWidget(lengthRow_);
  const auto applyLength = [this] {
    // What was refused stays, to be put right.
    if (!applyInspectorLength(workspace_, plainText(lengthField_->text()))) return;
    if (const SketchEntity* entity = workspace_.sketch.selectedEntity()) {
      lengthField_->setText(qtText(inspectorLengthText(*entity)));
    }
  };
  connect(apply, &QPushButton::clicked, this, applyLength);
  connect(lengthField_, &QLineEdit::returnPressed, this, applyLength);

  auto* nudgeRow = new QHBoxLayout;
  nudgeRow->setSpacing(8);
  nudgeX_ = new Field(theme_, true, page);
  nudgeY_ = new Field(theme_, true, page);
  nudgeX_->setPrefix(QStringLiteral("x"));
  nudgeY_->setPrefix(QStringLiteral("y"));
  nudgeX_->setObjectName(QStringLiteral("inspector.nudgeX"));
  nudgeY_->setObjectName(QStringLiteral("inspector.nudgeY"));
  nudgeX_->setAccessibleName(QStringLiteral("Nudge along x"));
  nudgeY_->setAccessibleName(QStringLiteral("Nudge along y"));
  auto* nudge = new Button(theme_, Button::Kind::outlined, QStringLiteral("Nudge"), page);
  nudge->setObjectName(QStringLiteral("inspector.nudge"));
  nudge->setFixedWidth(kButtonColumn);
  nudgeRow->addWidget(nudgeX_, 1);
  nudgeRow->addWidget(nudgeY_, 1);
  nudgeRow->addWidget(nudge);
  column->addLayout(nudgeRow);
  const auto applyNudge = [this] {
    applyInspectorNudge(workspace_, plainText(nudgeX_->text()), plainText(nudgeY_->text()));
  };
  connect(nudge, &QPushButton::clicked, this, applyNudge);
  connect(nudgeX_, &QLineEdit::returnPressed, this, applyNudge);
  connect(nudgeY_, &QLineEdit::returnPressed, this, applyNudge);

  convertButton_ = addAction(*page, Button::Kind::outlined, {}, "inspector.convert");
  connect(convertButton_, &QPushButton::clicked, this, [this] { applyInspectorConvert(workspace_); });

  column->addSpacing(8);
  column->addWidget(new Hairline(theme_, Qt::Horizontal, page));
  column->addSpacing(8);
  const auto onShown = [this](auto action) {
    return [this, action] {
      if (shown_) action(UUID(entityID(*shown_)));
    };
  };
  auto* duplicate =
      addAction(*page, Button::Kind::outlined, QStringLiteral("Duplicate"), "inspector.duplicate");
  connect(duplicate, &QPushButton::clicked, this, onShown([this](const UUID& id) {
            duplicateEntity(workspace_.sketch, workspace_.messages, id, kDuplicateOffset.x,
                            kDuplicateOffset.y);
          }));
  auto* log = addAction(*page, Button::Kind::outlined, QStringLiteral("Log Details to Console"),
                        "inspector.logDetails");
  connect(log, &QPushButton::clicked, this, onShown([this](const UUID& id) {
            printEntityDescription(workspace_.sketch, workspace_.messages, id);
          }));
  auto* remove = addAction(*page, Button::Kind::dangerous, QStringLiteral("Delete"), "inspector.delete");
  remove->setIconDrawing(Icon::bin, 16);
  connect(remove, &QPushButton::clicked, this,
          onShown([this](const UUID& id) { deleteEntity(workspace_.sketch, workspace_.messages, id); }));
  column->addStretch();
  return page;
}

void EntityInspectorView::refresh() {
  const std::size_t count = workspace_.sketch.selection->ids.size();
  const SketchEntity* entity = workspace_.sketch.selectedEntity();
  const auto opening = inspectedOpening(workspace_);
  QWidget* page = opening ? openingPage_ : count > 1 ? manyPage_ : entity != nullptr ? onePage_ : emptyPage_;
  if (opening) openingPage_->showOpening(*opening);
  if (page == manyPage_) manyHeading_->setText(qtText(inspectorSelectionHeading(workspace_)));
  if (page == onePage_ && entity != nullptr) {
    showEntity(*entity);
  } else {
    shown_.reset();
  }
  pages_->setCurrentWidget(page);
  fitPage();
}

void EntityInspectorView::fitPage() {
  QWidget* page = pages_->currentWidget();
  // The stack is as high as the page in front, not as the highest one.
  page->layout()->activate();
  const int wanted = page->layout()->hasHeightForWidth() ? page->layout()->heightForWidth(kWidth)
                                                         : page->sizeHint().height();
  if (wanted != height()) {
    setFixedHeight(wanted);
    Q_EMIT heightChanged();
  }
}

void EntityInspectorView::showEntity(const SketchEntity& entity) {
  const Icon drawing = iconOf(entity);
  if (drawing != shownIcon_) {
    kindIcon_->setPixmap(iconPixmap(drawing, 18, theme_.foreground(), devicePixelRatioF()));
    shownIcon_ = drawing;
  }
  const QString label = qtText(workspace_.sketch.labelOf(entityID(entity)).value_or(""));
  name_->setText(label);

  const auto* wall = std::get_if<WallEntity>(&entity);
  const WallSystemSpec* system =
      wall != nullptr ? workspace_.sketch.drawing->wallSystem(wall->systemSpecID) : nullptr;
  auto rows =
      inspectorMetricRows(entity, system != nullptr ? std::optional(system->thickness) : std::nullopt);
  if (const std::string openings = wallOpeningsText(workspace_, entityID(entity)); !openings.empty()) {
    rows.push_back({"Openings", openings});
  }
  showMetricRows(rows);

  systemLabel_->setVisible(wall != nullptr);
  systemPicker_->setVisible(wall != nullptr);
  if (wall != nullptr) {
    systemPicker_->clear();
    int current = -1;
    for (const WallSystemSpec& spec : workspace_.sketch.drawing->wallSystemSpecs) {
      if (spec.id == wall->systemSpecID) current = systemPicker_->count();
      systemPicker_->addItem(qtText(spec.name), qtText(spec.id.text()));
    }
    systemPicker_->setCurrentIndex(current);
  }

  lengthRow_->setVisible(inspectorSupportsLength(entity));
  const QString convert = qtText(inspectorConvertTitle(workspace_, entity));
  convertButton_->setText(convert);
  convertButton_->setVisible(!convert.isEmpty());
  if (!shown_ || !(*shown_ == entity)) {
    const bool isAnother = !shown_ || entityID(*shown_) != entityID(entity);
    if (isAnother || !(lengthField_->hasFocus() && lengthField_->isModified())) {
      lengthField_->setText(qtText(inspectorLengthText(entity)));
    }
    shown_ = entity;
  }
}

void EntityInspectorView::showMetricRows(const std::vector<InspectorMetricRow>& rows) {
  while (metricLabels_.size() < rows.size()) {
    const int row = static_cast<int>(metricLabels_.size());
    auto* label = new TextLabel(theme_, TextStyle::small, TextLabel::Rank::secondary, {}, onePage_);
    auto* value = new TextLabel(theme_, TextStyle::mono, TextLabel::Rank::primary, {}, onePage_);
    value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    value->setTextInteractionFlags(Qt::TextSelectableByMouse);
    value->setElision(Qt::ElideRight);
    for (TextLabel* text : {label, value}) text->setFixedHeight(kRowHeight);
    metrics_->addWidget(label, row, 0);
    metrics_->addWidget(value, row, 1);
    metricLabels_.push_back(label);
    metricValues_.push_back(value);
  }
  for (std::size_t i = 0; i < metricLabels_.size(); ++i) {
    const bool isUsed = i < rows.size();
    metricLabels_[i]->setVisible(isUsed);
    metricValues_[i]->setVisible(isUsed);
    if (!isUsed) continue;
    metricLabels_[i]->setText(qtText(rows[i].label));
    metricValues_[i]->setText(qtText(rows[i].value));
    metricValues_[i]->setObjectName(QStringLiteral("inspector.metric.") + qtText(rows[i].label));
    metricValues_[i]->setAccessibleName(qtText(rows[i].label + ": " + rows[i].value));
  }
}

// --- The window

InspectorWindow::InspectorWindow(Workspace& workspace, Theme& theme, QWidget* mainWindow)
    : QWidget(mainWindow,
              Qt::Tool | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::CustomizeWindowHint),
      workspace_(workspace),
      view_(new EntityInspectorView(workspace, theme, this)),
      update_(workspace, fieldsOf(workspace.sketch.selection), this, [this] { followFlag(); }) {
  setObjectName(QStringLiteral("entity-inspector"));
  setWindowTitle(QStringLiteral("Entity Inspector"));
  connect(view_, &EntityInspectorView::heightChanged, this, [this] { fitContent(); });
  fitContent();
  followFlag();
}

void InspectorWindow::fitContent() { setFixedSize(EntityInspectorView::kWidth, view_->height()); }

void InspectorWindow::followFlag() {
  const bool isWanted = workspace_.sketch.selection->isInspected;
  if (isWanted == isVisible()) return;
  if (!isWanted) {
    hide();
    return;
  }
  if (parentWidget() != nullptr) placeClear();
  show();
  raise();
}

// Where it was, or in a corner of the canvas: the first place that hides neither what is selected nor the
// pointer. Where there is none, the one that hides least.
void InspectorWindow::placeClear() {
  const QWidget* main = parentWidget()->window();
  const QWidget* canvas = main->findChild<QWidget*>(QStringLiteral("canvas"));
  if (canvas == nullptr) canvas = main;
  const QPoint origin = canvas->mapToGlobal(QPoint(0, 0));
  const QRect room(origin, canvas->size());
  const int left = room.left() + kFromCanvasEdge;
  const int right = room.right() - kFromCanvasEdge - width();
  const int top = room.top() + kBelowBadges;
  const int bottom = room.bottom() - kBelowBadges - height();
  std::vector<QPoint> places{{right, top}, {left, top}, {right, bottom}, {left, bottom}};
  if (wasPlaced_) places.insert(places.begin(), pos());
  // Beside the window, where that fits on the screen.
  const QRect frame = main->frameGeometry();
  places.emplace_back(frame.right() + kFromCanvasEdge, top);
  places.emplace_back(frame.left() - kFromCanvasEdge - width(), top);

  const QRect onScreen = screen() != nullptr ? screen()->availableGeometry() : room;
  std::optional<QPoint> best;
  std::size_t leastHidden = 0;
  for (QPoint place : places) {
    place.setX(std::clamp(place.x(), onScreen.left(), std::max(onScreen.left(), onScreen.right() - width())));
    place.setY(std::clamp(place.y(), onScreen.top(), std::max(onScreen.top(), onScreen.bottom() - height())));
    // Counted with the frame that the desktop adds.
    const QRect box = QRect(place, size()).adjusted(-kMargin, -kMargin - kTitleHeight, kMargin, kMargin);
    const auto inSketch = [&](QPoint global) {
      const QPointF inView = global - origin;
      return viewPointToSketch({inView.x(), inView.y()}, workspace_.board.viewport());
    };
    const SketchPoint low = inSketch(box.bottomLeft());
    const SketchPoint high = inSketch(box.topRight());
    std::size_t hidden = box.contains(QCursor::pos()) ? 1 : 0;
    workspace_.sketch.visitSelected([&](const SketchEntity& entity) {
      if (entityIntersectsRect(entity, {low.x, low.y, high.x, high.y})) ++hidden;
    });
    const auto item = selectedPlanItemBounds(workspace_.sketch);
    if (item && item->overlaps({low.x, low.y, high.x, high.y})) ++hidden;
    if (!best || hidden < leastHidden) {
      best = place;
      leastHidden = hidden;
    }
    if (hidden == 0) break;
  }
  move(best.value_or(places.front()));
  wasPlaced_ = true;
}

void InspectorWindow::closeEvent(QCloseEvent* event) {
  workspace_.sketch.setInspected(false);
  event->accept();
}

void InspectorWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
    return;
  }
  QWidget::keyPressEvent(event);
}

}  // namespace ostrelon
