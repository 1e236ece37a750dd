// The console's lines as list rows. Lines are only ever appended; the model counts what it has told
// and reads the texts where they are.
#pragma once

#include <QAbstractListModel>

#include "core/sketch_view_model.h"

namespace ostrelon {

class ConsoleTranscriptModel final : public QAbstractListModel {
  Q_OBJECT

 public:
  enum class LineKind { echo, reply, error };

  explicit ConsoleTranscriptModel(const SketchViewModel& sketch, QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  const ConsoleLine& line(int row) const { return sketch_.consoleLines.get()[static_cast<std::size_t>(row)]; }
  LineKind kind(int row) const;

  /// Tells the lines that have come since. True when there were any.
  bool update();

 private:
  const SketchViewModel& sketch_;
  int count_ = 0;
};

}  // namespace ostrelon
