#include "shell/compare_sheet.h"

#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>

#include "shell/accessibility.h"
#include "shell/date_text.h"
#include "shell/entity_list_model.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kSheetWidth = 480;
constexpr int kSheetPadding = 32;
constexpr int kRowHeight = 44;
constexpr int kMostShownRows = 6;

QString detailOf(const ComparisonChoice& choice, Date now) {
  QStringList parts;
  switch (choice.kind) {
    case ComparisonChoice::Kind::lastSave:
      break;
    case ComparisonChoice::Kind::branch:
      parts << QStringLiteral("Branch");
      break;
    case ComparisonChoice::Kind::checkpoint:
      parts << QStringLiteral("Checkpoint");
      break;
  }
  if (!choice.detail.empty()) parts << qtText(choice.detail);
  if (choice.date) parts << relativeDateText(*choice.date, now);
  return parts.join(QStringLiteral(" · "));
}

class ChoiceModel final : public QAbstractListModel {
 public:
  ChoiceModel(const std::vector<ComparisonChoice>& choices, Date now, QObject* parent)
      : QAbstractListModel(parent), choices_(choices), now_(now) {}
  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : static_cast<int>(choices_.size());
  }
  QVariant data(const QModelIndex& index, int role) const override {
    if (!index.isValid()) return {};
    if (role == Qt::DisplayRole) return title(index.row());
    if (role == Qt::AccessibleTextRole) {
      return title(index.row()) + QStringLiteral(", ") + detail(index.row());
    }
    if (role == kIdentifierRole) return QStringLiteral("compare.row.%1").arg(index.row());
    return {};
  }
  QString title(int row) const { return qtText(choice(row).title); }
  QString detail(int row) const { return detailOf(choice(row), now_); }

 private:
  const ComparisonChoice& choice(int row) const { return choices_[static_cast<std::size_t>(row)]; }

  const std::vector<ComparisonChoice>& choices_;
  Date now_;
};

class ChoiceRowsView final : public RowsView {
 public:
  ChoiceRowsView(Theme& theme, ChoiceModel& model, QWidget* parent) : RowsView(theme, parent), model_(model) {
    setModel(&model);
    setSelectionMode(SingleSelection);
  }
  bool isRowSelected(int row) const override { return currentIndex().row() == row; }

 protected:
  int rowTop(int row) const override { return row * kRowHeight; }
  int rowHeight(int /*row*/) const override { return kRowHeight; }
  int rowAt(int y) const override { return std::clamp(y / kRowHeight, 0, std::max(0, rowCount() - 1)); }
  int contentHeight() const override { return rowCount() * kRowHeight; }
  void paintRow(QPainter& painter, const QRect& box, int row, bool isHovered) override {
    painter.setRenderHint(QPainter::Antialiasing);
    const bool onMuted = isRowSelected(row) || isHovered;
    const QRect inner = box.adjusted(0, 1, -1, -1);
    if (onMuted) paintBox(painter, inner, 6, theme().muted(), QColor());
    if (isRowSelected(row) && hasFocus()) paintBox(painter, inner, 6, QColor(), theme().foreground());
    const QRect words = box.adjusted(12, 0, -12, 0);
    const auto write = [&](TextStyle style, const QString& text, const QRect& line) {
      painter.setFont(fontOf(style));
      painter.drawText(line, Qt::AlignVCenter | Qt::AlignLeft,
                       elided(text, fontOf(style), Qt::ElideRight, line.width()));
    };
    painter.setPen(theme().foreground());
    const QString detail = model_.detail(row);
    if (detail.isEmpty()) {
      write(TextStyle::bodyStrong, model_.title(row), words);
      return;
    }
    write(TextStyle::bodyStrong, model_.title(row), words.adjusted(0, 4, 0, -20));
    painter.setPen(onMuted ? theme().foreground() : theme().secondaryOnCard());
    write(TextStyle::caption, detail, words.adjusted(0, 22, 0, -4));
  }

 private:
  ChoiceModel& model_;
};

}  // namespace

CompareSheet::Purpose CompareSheet::comparing(Application& application) {
  return {
      QStringLiteral("compare"),
      QStringLiteral("Compare with"),
      QStringLiteral("Compare"),
      QStringLiteral("Shows what this drawing has that the other one has not, and the other way round. You "
                     "can draw on meanwhile."),
      QStringLiteral("A drawing that has been saved can be compared with its last save, its branches and "
                     "its checkpoints. Any drawing can be compared with a file."),
      comparisonChoices(application),
      [&application](const ComparisonChoice& choice) { compareWith(application, choice); },
      [&application] { compareWithPanel(application); }};
}

CompareSheet::Purpose CompareSheet::merging(Application& application) {
  return {
      QStringLiteral("merge"),
      QStringLiteral("Merge"),
      QStringLiteral("Show Merge"),
      QStringLiteral("Shows what would come into this drawing, and what both sides have changed "
                     "differently. Nothing is merged before you say so."),
      QStringLiteral("There is no other branch or checkpoint of this drawing yet. Any file can be merged."),
      mergeChoices(application),
      [&application](const ComparisonChoice& choice) { mergeWith(application, choice.name); },
      [&application] { mergeWithPanel(application); }};
}

CompareSheet::CompareSheet(Application& application, Theme& theme, QWidget& window, Purpose purpose)
    : DialogSheet(theme, window, kSheetWidth, kSheetPadding), purpose_(std::move(purpose)) {
  const auto named = [this](const char* part) {
    return purpose_.identifier + u'.' + QString::fromLatin1(part);
  };
  setObjectName(purpose_.identifier);
  setAccessibleName(purpose_.title);
  const auto addText = [&](TextStyle style, const QString& text) {
    auto* label = new TextLabel(theme, style, TextLabel::Rank::primary, text);
    label->setWordWrap(true);
    content().addWidget(label);
  };
  addText(TextStyle::display, purpose_.title);
  content().addSpacing(8);
  if (purpose_.choices.empty()) {
    addText(TextStyle::body, purpose_.nothing);
  } else {
    addText(TextStyle::body, purpose_.explanation);
    content().addSpacing(12);
    auto* model = new ChoiceModel(purpose_.choices, application.host().scheduler.now(), this);
    list_ = new ChoiceRowsView(theme, *model, nullptr);
    list_->setObjectName(named("list"));
    list_->setAccessibleName(QStringLiteral("Drawings"));
    list_->setFixedHeight(std::min(kMostShownRows, model->rowCount()) * kRowHeight);
    list_->setCurrentIndex(model->index(0, 0));
    content().addWidget(list_);
    addToTabOrder(list_);
    connect(list_, &QAbstractItemView::doubleClicked, this, [this] { take(); });
  }
  Button* file = addLeftButton(QStringLiteral("File…"), Button::Kind::outlined, named("file"));
  connect(file, &QPushButton::clicked, this, [this] {
    hide();
    deleteLater();
    purpose_.chooseFile();
  });
  Button* cancel = addButton(QStringLiteral("Cancel"), Button::Kind::outlined, named("cancel"));
  connect(cancel, &QPushButton::clicked, this, [this] {
    hide();
    deleteLater();
  });
  setCancelButton(cancel);
  if (list_ == nullptr) {
    setDefaultButton(file);
    setFirstFocus(file);
  } else {
    Button* action = addButton(purpose_.action, Button::Kind::primary, named("take"));
    connect(action, &QPushButton::clicked, this, [this] { take(); });
    setDefaultButton(action);
    setFirstFocus(list_);
  }
}

void CompareSheet::take() {
  const int row = list_->currentIndex().row();
  if (row < 0) return;
  const ComparisonChoice choice = purpose_.choices.at(static_cast<std::size_t>(row));
  hide();
  deleteLater();
  purpose_.choose(choice);
}

}  // namespace ostrelon
