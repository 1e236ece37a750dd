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

CompareSheet::CompareSheet(Application& application, Theme& theme, QWidget& window)
    : DialogSheet(theme, window, kSheetWidth, kSheetPadding),
      application_(application),
      choices_(comparisonChoices(application)) {
  setObjectName(QStringLiteral("compare"));
  setAccessibleName(QStringLiteral("Compare with"));
  const auto addText = [&](TextStyle style, const QString& text) {
    auto* label = new TextLabel(theme, style, TextLabel::Rank::primary, text);
    label->setWordWrap(true);
    content().addWidget(label);
  };
  addText(TextStyle::display, QStringLiteral("Compare with"));
  content().addSpacing(8);
  if (choices_.empty()) {
    addText(TextStyle::body,
            QStringLiteral("A drawing that has been saved can be compared with its last save, "
                           "its branches and its checkpoints. Any drawing can be compared with "
                           "a file."));
  } else {
    addText(TextStyle::body, QStringLiteral("Shows what this drawing has that the other one has not, and the "
                                            "other way round. You can draw on meanwhile."));
    content().addSpacing(12);
    auto* model = new ChoiceModel(choices_, application.host().scheduler.now(), this);
    list_ = new ChoiceRowsView(theme, *model, nullptr);
    list_->setObjectName(QStringLiteral("compare.list"));
    list_->setAccessibleName(QStringLiteral("Drawings"));
    list_->setFixedHeight(std::min(kMostShownRows, model->rowCount()) * kRowHeight);
    list_->setCurrentIndex(model->index(0, 0));
    content().addWidget(list_);
    addToTabOrder(list_);
    connect(list_, &QAbstractItemView::doubleClicked, this, [this] { compare(); });
  }
  Button* file =
      addLeftButton(QStringLiteral("File…"), Button::Kind::outlined, QStringLiteral("compare.file"));
  connect(file, &QPushButton::clicked, this, [this] {
    hide();
    deleteLater();
    compareWithPanel(application_);
  });
  Button* cancel =
      addButton(QStringLiteral("Cancel"), Button::Kind::outlined, QStringLiteral("compare.cancel"));
  connect(cancel, &QPushButton::clicked, this, [this] {
    hide();
    deleteLater();
  });
  setCancelButton(cancel);
  if (list_ == nullptr) {
    setDefaultButton(file);
    setFirstFocus(file);
  } else {
    Button* compareButton =
        addButton(QStringLiteral("Compare"), Button::Kind::primary, QStringLiteral("compare.compare"));
    connect(compareButton, &QPushButton::clicked, this, [this] { compare(); });
    setDefaultButton(compareButton);
    setFirstFocus(list_);
  }
}

void CompareSheet::compare() {
  const int row = list_->currentIndex().row();
  if (row < 0) return;
  const ComparisonChoice choice = choices_.at(static_cast<std::size_t>(row));
  hide();
  deleteLater();
  compareWith(application_, choice);
}

}  // namespace ostrelon
