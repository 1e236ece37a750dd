// The entities of the document as list rows. The model shares the document's list and computes a label only
// when one is asked for; an edit is reported as the rows that it touched.
#pragma once

#include <QAbstractListModel>

#include "core/sketch.h"
#include "shell/icons.h"

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
  const UUID& entityAt(int row) const;
  bool isSelected(int row) const;

  /// Takes over what the document holds now. Called once an operation has ended.
  void update();

 private:
  const Sketch& sketch_;
  EntityList entities_;
};

}  // namespace ostrelon
