#include "shell/entity_list_model.h"

#include <algorithm>

#include "shell/qt_text.h"

namespace ostrelon {

EntityListModel::EntityListModel(const Sketch& sketch, QObject* parent)
    : QAbstractListModel(parent), sketch_(sketch), rows_(sketch, {}), plan_(sketch.drawing->plan) {}

int EntityListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_.count() - hidden_;
}

QVariant EntityListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const int row = index.row();
  const ListedRows::Row place = placeOf(row);
  switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole: {
      if (place.item != nullptr) {
        return qtText(role == Qt::DisplayRole ? planItemTitle(*place.item)
                                              : planItemLabel(sketch_, *place.item));
      }
      const SketchEntity& entity = rows_.entities()[place.position];
      QString words = qtText(
          entityLabel(entity, static_cast<int>(place.position) + 1, sketch_.drawing->wallSystemName(entity)));
      if (role == Qt::AccessibleTextRole && place.hasItems) {
        words += place.isFolded ? QStringLiteral(", folded") : QStringLiteral(", unfolded");
      }
      return words;
    }
    case kIdentifierRole:
      return place.item != nullptr ? QStringLiteral("leftNav.item.") + qtText(planItemID(*place.item).text())
                                   : QStringLiteral("leftNav.entity.%1").arg(place.position + 1);
    case kSelectedRole:
      return isSelected(row);
    default:
      return {};
  }
}

Icon EntityListModel::icon(int row) const {
  const ListedRows::Row place = placeOf(row);
  return place.item != nullptr ? iconOf(*place.item) : iconOf(rows_.entities()[place.position]);
}

UUID EntityListModel::entityAt(int row) const {
  const std::size_t position = placeOf(row).position;
  return position < rows_.entities().size() ? entityID(rows_.entities()[position]) : UUID();
}

bool EntityListModel::isSelected(int row) const {
  const ListedRows::Row place = placeOf(row);
  if (place.item != nullptr) return sketch_.selection->planItem == planItemID(*place.item);
  const EntitySet& selected = sketch_.selection->ids;
  return selected.isOver(rows_.entities()) ? selected.containsAt(place.position)
                                           : selected.contains(entityID(rows_.entities()[place.position]));
}

int EntityListModel::selectedRow() const {
  const Selection& selection = sketch_.selection;
  if (selection.planItem) return rows_.rowOfItem(*selection.planItem);
  const auto position = selection.primary ? sketch_.positionOf(*selection.primary) : std::nullopt;
  return position ? rows_.rowOf(*position) : -1;
}

void EntityListModel::update() {
  const Plan& plan = sketch_.drawing->plan;
  if (rows_.entities().sharesAllStorage(sketch_.entities()) && plan_ == plan) return;
  plan_ = plan;
  take(ListedRows(sketch_, folded_));
}

void EntityListModel::toggleFold(int row) {
  if (row < 0 || row >= rowCount() || !placeOf(row).hasItems) return;
  const UUID wall = entityAt(row);
  if (folded_.erase(wall) == 0) folded_.insert(wall);
  take(ListedRows(sketch_, folded_));
}

void EntityListModel::tellChanged(int from, int end) {
  if (from < end) Q_EMIT dataChanged(index(from), index(end - 1));
}

void EntityListModel::take(ListedRows rows) {
  const ListedRows::Difference difference = rows_.differenceTo(rows);
  const auto [from, removed, added, changedFrom, changedEnd] = difference;
  if (removed > 0 && added > 0 && removed == rowCount() && added == rows.count()) {  // another document
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
    return;
  }
  if (removed > 0) beginRemoveRows({}, from, from + removed - 1);
  if (removed == 0 && added > 0) beginInsertRows({}, from, from + added - 1);
  rows_ = std::move(rows);
  if (removed > 0) {
    hiddenFrom_ = from;
    hidden_ = added;
    endRemoveRows();
    if (added > 0) beginInsertRows({}, from, from + added - 1);
    hidden_ = 0;
  }
  if (added > 0) endInsertRows();
  if (removed == 0 && added == 0) {
    tellChanged(changedFrom, changedEnd);
    return;
  }
  tellChanged(changedFrom, from);
  // The numbers behind what has come or gone are new.
  tellChanged(from + added, rowCount());
}

}  // namespace ostrelon
