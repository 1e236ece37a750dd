#include "shell/rows_view.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "shell/accessibility.h"
#include "shell/controls.h"

namespace ostrelon {

RowsView::RowsView(Theme& theme, QWidget* parent) : QAbstractItemView(parent), theme_(theme) {
  installAccessibility();
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollMode(ScrollPerPixel);
  setEditTriggers(NoEditTriggers);
  setFocusPolicy(Qt::TabFocus);
  viewport()->setMouseTracking(true);
  viewport()->setAutoFillBackground(false);
  connect(&theme, &Theme::changed, this, [this] { viewport()->update(); });
}

void RowsView::setModel(QAbstractItemModel* newModel) {
  QAbstractItemView::setModel(newModel);
  const auto refresh = [this] {
    updateRange();
    viewport()->update();
  };
  connect(newModel, &QAbstractItemModel::rowsInserted, this, refresh);
  connect(newModel, &QAbstractItemModel::rowsRemoved, this, refresh);
  connect(newModel, &QAbstractItemModel::modelReset, this, refresh);
  refresh();
}

bool RowsView::isRowSelected(int row) const {
  return selectionModel() != nullptr && selectionModel()->isRowSelected(row);
}

bool RowsView::clickByReturn(const QKeyEvent& event) {
  const bool isReturn = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
  if (!isReturn || !currentIndex().isValid()) return false;
  Q_EMIT clicked(currentIndex());
  return true;
}

int RowsView::rowCount() const { return model() != nullptr ? model()->rowCount(rootIndex()) : 0; }

QRect RowsView::visualRect(const QModelIndex& index) const {
  if (!index.isValid()) return {};
  return {0, rowTop(index.row()) - verticalOffset(), viewport()->width(), rowHeight(index.row())};
}

void RowsView::scrollTo(const QModelIndex& index, ScrollHint hint) {
  if (!index.isValid()) return;
  const int top = rowTop(index.row());
  const int bottom = top + rowHeight(index.row());
  const int page = viewport()->height();
  QScrollBar* bar = verticalScrollBar();
  switch (hint) {
    case PositionAtTop:
      bar->setValue(top);
      break;
    case PositionAtBottom:
      bar->setValue(bottom - page);
      break;
    case PositionAtCenter:
      bar->setValue((top + bottom - page) / 2);
      break;
    case EnsureVisible:
      if (top < bar->value()) {
        bar->setValue(top);
      } else if (bottom > bar->value() + page) {
        bar->setValue(bottom - page);
      }
      break;
  }
}

QModelIndex RowsView::indexAt(const QPoint& point) const {
  const int y = point.y() + verticalOffset();
  if (rowCount() == 0 || y < 0 || y >= contentHeight()) return {};
  return model()->index(rowAt(y), 0);
}

void RowsView::updateRange() {
  // Qt asks while the view is being built, when there are no heights yet.
  if (model() == nullptr) return;
  QScrollBar* bar = verticalScrollBar();
  const int page = viewport()->height();
  bar->setPageStep(page);
  bar->setSingleStep(24);
  bar->setRange(0, std::max(0, contentHeight() - page));
}

QModelIndex RowsView::moveCursor(CursorAction action, Qt::KeyboardModifiers /*modifiers*/) {
  const int count = rowCount();
  if (count == 0) return {};
  const int current = currentIndex().isValid() ? currentIndex().row() : -1;
  const int page = std::max(1, rowAt(rowTop(std::max(current, 0)) + viewport()->height()) - current);
  int row = std::max(current, 0);
  switch (action) {
    case MoveUp:
    case MoveLeft:
    case MovePrevious:
      row = current - 1;
      break;
    case MoveDown:
    case MoveRight:
    case MoveNext:
      row = current + 1;
      break;
    case MoveHome:
      row = 0;
      break;
    case MoveEnd:
      row = count - 1;
      break;
    case MovePageUp:
      row = current - page;
      break;
    case MovePageDown:
      row = current + page;
      break;
  }
  return model()->index(std::clamp(row, 0, count - 1), 0);
}

int RowsView::verticalOffset() const { return verticalScrollBar()->value(); }

void RowsView::setSelection(const QRect& box, QItemSelectionModel::SelectionFlags command) {
  if (rowCount() == 0) return;
  const QRect area = box.normalized();
  const int first = rowAt(area.top() + verticalOffset());
  const int last = rowAt(area.bottom() + verticalOffset());
  selectionModel()->select(QItemSelection(model()->index(first, 0), model()->index(last, 0)), command);
}

QRegion RowsView::visualRegionForSelection(const QItemSelection& selection) const {
  QRegion region;
  for (const QItemSelectionRange& range : selection) {
    const QRect first = visualRect(range.topLeft());
    const QRect last = visualRect(range.bottomRight());
    region += first.united(last).intersected(viewport()->rect());
  }
  return region;
}

void RowsView::updateGeometries() {
  updateRange();
  QAbstractItemView::updateGeometries();
}

void RowsView::paintEvent(QPaintEvent* event) {
  const int count = rowCount();
  if (count == 0) return;
  QPainter painter(viewport());
  painter.setRenderHint(QPainter::Antialiasing);
  const QRect area = event->rect();
  for (int row = rowAt(area.top() + verticalOffset()); row < count; ++row) {
    const QRect box(0, rowTop(row) - verticalOffset(), viewport()->width(), rowHeight(row));
    if (box.top() > area.bottom()) break;
    paintRow(painter, box, row, row == hoveredRow_);
  }
}

void RowsView::resizeEvent(QResizeEvent* event) {
  QAbstractItemView::resizeEvent(event);
  updateRange();
}

void RowsView::mouseMoveEvent(QMouseEvent* event) {
  const QModelIndex index = indexAt(event->pos());
  setHoveredRow(index.isValid() ? index.row() : -1);
  QAbstractItemView::mouseMoveEvent(event);
}

QString RowsView::toolTipText(int row, const QRect& /*box*/) const {
  return model()->index(row, 0).data(Qt::ToolTipRole).toString();
}

bool RowsView::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    const auto& help = *static_cast<QHelpEvent*>(event);
    const QModelIndex index = indexAt(help.pos());
    showToolTip(help, index.isValid() ? toolTipText(index.row(), visualRect(index)) : QString(), viewport());
    return true;
  }
  if (event->type() == QEvent::Leave) setHoveredRow(-1);
  return QAbstractItemView::viewportEvent(event);
}

void RowsView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QAbstractItemView::currentChanged(current, previous);
  if (!current.isValid() || !hasFocus()) return;
  QAccessibleEvent told(this, QAccessible::Focus);
  told.setChild(current.row());
  QAccessible::updateAccessibility(&told);
}

void RowsView::setHoveredRow(int row) {
  if (row == hoveredRow_) return;
  hoveredRow_ = row;
  viewport()->update();
}

}  // namespace ostrelon
