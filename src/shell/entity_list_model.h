// The entities of the document as list rows, and beneath each wall the doors, windows and openings in it,
// which fold away. The model shares the document's list and computes a label only when one is asked for; an
// edit is reported as the rows that it touched.
#pragma once

#include <QAbstractListModel>
#include <unordered_set>

#include "shell/icons.h"
#include "shell/listed_rows.h"

namespace ostrelon {

/// Rows carry their control identifier in this role.
inline constexpr int kIdentifierRole = Qt::UserRole + 1;
/// True for rows that show as selected.
inline constexpr int kSelectedRole = Qt::UserRole + 2;

class EntityListModel final : public QAbstractListModel {
  Q_OBJECT

 public:
  /// `sketch` must outlive the model.
  explicit EntityListModel(const Sketch& sketch, QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  Icon icon(int row) const;
  ListedRows::Row place(int row) const { return placeOf(row); }
  /// The entity, or the wall that the item is in; null for an item that stands by itself.
  UUID entityAt(int row) const;
  bool isSelected(int row) const;
  /// The row of the item that is selected, else of the primary entity; -1 without either.
  int selectedRow() const;

  /// Takes over what the document holds now. Called once an operation has ended.
  void update();
  /// Shows or hides what is beneath an entity's row; nothing where that is nothing.
  void toggleFold(int row);

 private:
  void take(ListedRows rows);
  ListedRows::Row placeOf(int row) const { return rows_.at(row < hiddenFrom_ ? row : row + hidden_); }
  void tellChanged(int from, int end);

  const Sketch& sketch_;
  ListedRows rows_;
  // While rows go and others come: those that have not come yet.
  int hiddenFrom_ = 0;
  int hidden_ = 0;
  Plan plan_;  // as the rows show it
  std::unordered_set<UUID> folded_;
};

}  // namespace ostrelon
