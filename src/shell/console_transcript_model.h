// The console's lines as list rows. Lines are only ever appended; the model counts what it has reported and
// reads the texts where they are.
#pragma once

#include <QAbstractListModel>

#include "core/messages.h"

namespace ostrelon {

class ConsoleTranscriptModel final : public QAbstractListModel {
  Q_OBJECT

 public:
  enum class LineKind { echo, reply, error };

  explicit ConsoleTranscriptModel(const Messages& messages, QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  const ConsoleLine& line(int row) const { return messages_.lines.get()[static_cast<std::size_t>(row)]; }
  LineKind kind(int row) const;

  /// Reports the lines that have come since the last call. True when there were any.
  bool update();

 private:
  const Messages& messages_;
  int count_ = 0;
};

}  // namespace ostrelon
