#include "shell/entity_list_model.h"

#include <algorithm>

#include "shell/qt_text.h"

namespace ostrelon {

EntityListModel::EntityListModel(const Sketch& sketch, QObject* parent)
    : QAbstractListModel(parent), sketch_(sketch), entities_(sketch.entities()) {}

int EntityListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(entities_.size());
}

QVariant EntityListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const int row = index.row();
  switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole: {
      const SketchEntity& entity = entities_[static_cast<std::size_t>(row)];
      return qtText(entityLabel(entity, row + 1, sketch_.drawing->wallSystemName(entity)));
    }
    case kIdentifierRole:
      return QStringLiteral("leftNav.entity.%1").arg(row + 1);
    case kSelectedRole:
      return isSelected(row);
    default:
      return {};
  }
}

Icon EntityListModel::icon(int row) const { return iconOf(entities_[static_cast<std::size_t>(row)]); }

const UUID& EntityListModel::entityAt(int row) const {
  return entityID(entities_[static_cast<std::size_t>(row)]);
}

bool EntityListModel::isSelected(int row) const { return sketch_.selection->contains(entityAt(row)); }

void EntityListModel::update() {
  const EntityList& current = sketch_.entities();
  if (entities_.sharesAllStorage(current)) return;
  const std::size_t shared = entities_.commonStart(current);
  const std::size_t most = std::min(entities_.size(), current.size()) - shared;
  const int start = static_cast<int>(shared);
  const int end = static_cast<int>(std::min(entities_.commonEnd(current), most));
  const int removed = static_cast<int>(entities_.size()) - start - end;
  const int added = static_cast<int>(current.size()) - start - end;
  // Rows that are still the same entities have only changed.
  bool onlyChanged = removed == added;
  for (int i = 0; onlyChanged && i < removed; ++i) {
    const auto position = static_cast<std::size_t>(start + i);
    onlyChanged = entityID(entities_[position]) == entityID(current[position]);
  }
  if (onlyChanged) {
    entities_ = current;
    if (added > 0) Q_EMIT dataChanged(index(start), index(start + added - 1));
    return;
  }
  if (start == 0 && end == 0 && removed > 0 && added > 0) {  // another document
    beginResetModel();
    entities_ = current;
    endResetModel();
    return;
  }
  if (removed > 0) {
    beginRemoveRows({}, start, start + removed - 1);
    if (added == 0) {
      entities_ = current;
    } else {
      std::vector<std::size_t> gone;
      for (int i = 0; i < removed; ++i) gone.push_back(static_cast<std::size_t>(start + i));
      entities_.removeAll(gone);
    }
    endRemoveRows();
  }
  if (added > 0) {
    beginInsertRows({}, start, start + added - 1);
    entities_ = current;
    endInsertRows();
  }
  // The numbers after an edit in the middle are new.
  if (removed != added && end > 0) Q_EMIT dataChanged(index(start + added), index(rowCount() - 1));
}

}  // namespace ostrelon
