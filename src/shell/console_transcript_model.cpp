#include "shell/console_transcript_model.h"

#include "shell/qt_text.h"

namespace ostrelon {

ConsoleTranscriptModel::ConsoleTranscriptModel(const Messages& messages, QObject* parent)
    : QAbstractListModel(parent), messages_(messages), count_(static_cast<int>(messages.lines->size())) {}

int ConsoleTranscriptModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : count_;
}

QVariant ConsoleTranscriptModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= count_) return {};
  const QString text = qtText(line(index.row()).text);
  switch (role) {
    case Qt::DisplayRole:
      return text;
    case Qt::AccessibleTextRole:
      return kind(index.row()) == LineKind::error ? QStringLiteral("Error: ") + text : text;
    default:
      return {};
  }
}

ConsoleTranscriptModel::LineKind ConsoleTranscriptModel::kind(int row) const {
  const ConsoleLine& shown = line(row);
  if (shown.isError) return LineKind::error;
  return !shown.isSystem && shown.text.starts_with("> ") ? LineKind::echo : LineKind::reply;
}

bool ConsoleTranscriptModel::update() {
  const int now = static_cast<int>(messages_.lines->size());
  if (now == count_) return false;
  if (now < count_) {
    beginResetModel();
    count_ = now;
    endResetModel();
    return true;
  }
  beginInsertRows({}, count_, now - 1);
  count_ = now;
  endInsertRows();
  return true;
}

}  // namespace ostrelon
