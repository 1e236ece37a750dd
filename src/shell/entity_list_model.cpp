#include "shell/entity_list_model.h"

#include <algorithm>

#include "shell/qt_text.h"

namespace ostrelon {
namespace {

// How many entities two lists have in common at their start, shared chunks skipped in one step.
int commonStart(const EntityList& a, const EntityList& b) {
  const auto chunksA = a.chunks();
  const auto chunksB = b.chunks();
  std::size_t shared = 0;
  std::size_t chunk = 0;
  while (chunk < std::min(chunksA.size(), chunksB.size()) && chunksA[chunk] == chunksB[chunk]) {
    shared += chunksA[chunk++]->size();
  }
  const std::size_t end = std::min(a.size(), b.size());
  if (chunk < chunksA.size() && chunk < chunksB.size()) {
    // From here the chunks differ; what follows is compared one by one.
    std::size_t offset = 0;
    const auto& own = *chunksA[chunk];
    const auto& other = *chunksB[chunk];
    while (offset < std::min(own.size(), other.size()) && own[offset] == other[offset]) ++offset;
    shared += offset;
  }
  return static_cast<int>(std::min(shared, end));
}

int commonEnd(const EntityList& a, const EntityList& b, int start) {
  const auto chunksA = a.chunks();
  const auto chunksB = b.chunks();
  std::size_t shared = 0;
  std::size_t fromEnd = 0;
  while (fromEnd < std::min(chunksA.size(), chunksB.size())) {
    const auto& own = chunksA[chunksA.size() - 1 - fromEnd];
    const auto& other = chunksB[chunksB.size() - 1 - fromEnd];
    if (own == other) {
      shared += own->size();
      ++fromEnd;
      continue;
    }
    std::size_t offset = 0;
    while (offset < std::min(own->size(), other->size()) &&
           (*own)[own->size() - 1 - offset] == (*other)[other->size() - 1 - offset]) {
      ++offset;
    }
    shared += offset;
    break;
  }
  const auto room = static_cast<int>(std::min(a.size(), b.size())) - start;
  return std::min(static_cast<int>(shared), room);
}

}  // namespace

EntityListModel::EntityListModel(const SketchViewModel& sketch, QObject* parent)
    : QAbstractListModel(parent), sketch_(sketch), entities_(sketch.entities) {}

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
      return qtText(entityLabel(entity, row + 1, sketch_.wallSystemName(entity)));
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

bool EntityListModel::isSelected(int row) const { return sketch_.selectedEntityIDs->contains(entityAt(row)); }

void EntityListModel::update() {
  const EntityList& current = sketch_.entities;
  if (entities_.sharesAllStorage(current)) return;
  const int start = commonStart(entities_, current);
  const int end = commonEnd(entities_, current, start);
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
  // The numbers behind an edit in the middle are new.
  if (removed != added && end > 0) Q_EMIT dataChanged(index(start + added), index(rowCount() - 1));
}

}  // namespace ostrelon
