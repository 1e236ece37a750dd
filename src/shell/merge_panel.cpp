#include "shell/merge_panel.h"

#include <algorithm>

#include "app/merge_layers.h"
#include "interaction/drawing_bounds.h"
#include "shell/main_window.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kEdge = 16;
constexpr int kButtonGap = 8;

QString counted(std::size_t count, const char* one, const char* many) {
  const QString number = count == 0 ? QStringLiteral("No") : QString::number(count);
  return number + u' ' + QString::fromUtf8(count == 1 ? one : many);
}

struct AllText {
  MergeChoice choice;
  const char* title;
  const char* identifier;
  const char* hint;
};
constexpr std::array<AllText, 3> kAllTexts{
    AllText{MergeChoice::ours, "All Ours", "merge.allOurs", "Keep what is here in every conflict"},
    AllText{MergeChoice::theirs, "All Theirs", "merge.allTheirs", "Take what is there in every conflict"},
    AllText{MergeChoice::both, "All Both", "merge.allBoth",
            "Keep what is here, and put what is there beside it"}};

}  // namespace

MergePanel::MergePanel(Application& application, Theme& theme, QWidget* parent)
    : ReviewPanel(theme, QStringLiteral("Merge"), QStringLiteral("merge"), Icon::branch, parent),
      review_(application.mergeReview()),
      heading_(new TextLabel(theme, TextStyle::heading, TextLabel::Rank::secondary, "MERGE", this)),
      name_(new TextLabel(theme, TextStyle::bodyStrong, TextLabel::Rank::primary, {}, this)),
      summary_(new TextLabel(theme, TextStyle::small, TextLabel::Rank::secondary, {}, this)),
      all_{},
      model_(new MergeListModel(this)),
      list_(nullptr),
      line_(nullptr),
      state_(nullptr),
      cancel_(nullptr),
      merge_(nullptr),
      update_(review_, kAllFields, this, [this] { refresh(); }) {
  name_->setObjectName(QStringLiteral("merge.name"));
  name_->setElision(Qt::ElideMiddle);
  summary_->setObjectName(QStringLiteral("merge.summary"));
  summary_->setElision(Qt::ElideRight);
  // Made from top to bottom, since Tab goes in the order of making.
  for (std::size_t i = 0; i < all_.size(); ++i) {
    all_[i] = new Button(theme, Button::Kind::outlined, QString::fromUtf8(kAllTexts[i].title), this);
    all_[i]->setObjectName(QString::fromUtf8(kAllTexts[i].identifier));
    all_[i]->setToolTip(QString::fromUtf8(kAllTexts[i].hint));
    all_[i]->setPaddings(4, 28);
    connect(all_[i], &QPushButton::clicked, this, [this, i] { review_.chooseAll(kAllTexts[i].choice); });
  }
  list_ = new MergeRowsView(theme, *model_, this);
  list_->setObjectName(QStringLiteral("merge.list"));
  list_->setAccessibleName(QStringLiteral("Conflicts, and what comes in"));
  connect(list_, &MergeRowsView::chosen, this,
          [this](std::size_t conflict, MergeChoice choice) { review_.choose(conflict, choice); });
  connect(list_, &QAbstractItemView::clicked, this,
          [this](const QModelIndex& index) { Q_EMIT shown(model_->row(index.row())); });
  line_ = new Hairline(theme, Qt::Horizontal, this);
  state_ = new TextLabel(theme, TextStyle::small, TextLabel::Rank::primary, {}, this);
  state_->setObjectName(QStringLiteral("merge.state"));
  cancel_ = new Button(theme, Button::Kind::outlined, QStringLiteral("Cancel"), this);
  cancel_->setObjectName(QStringLiteral("merge.cancel"));
  cancel_->setToolTip(QStringLiteral("Leave the drawing as it is"));
  connect(cancel_, &QPushButton::clicked, this, [this] { review_.cancel(); });
  merge_ = new Button(theme, Button::Kind::primary, QStringLiteral("Merge"), this);
  merge_->setObjectName(QStringLiteral("merge.take"));
  connect(merge_, &QPushButton::clicked, this, [this] { review_.take(); });
  refresh();
}

void MergePanel::place() {
  const int inner = width() - 2 * kEdge;
  const bool hasConflicts = !review_.choices->empty();
  int y = kEdge;
  heading_->setGeometry(kEdge, y, inner, 16);
  y += 16 + 8;
  name_->setGeometry(kEdge, y, inner, 20);
  y += 20;
  summary_->setGeometry(kEdge, y, inner, 18);
  y += 18 + 12;
  const int third = (inner - 2 * kButtonGap) / 3;
  for (std::size_t i = 0; i < all_.size(); ++i) {
    all_[i]->setVisible(hasConflicts);
    all_[i]->setGeometry(kEdge + static_cast<int>(i) * (third + kButtonGap), y, third, 28);
  }
  if (hasConflicts) y += 28 + 8;
  const int foot = height() - kEdge - 28 - 8 - 18 - 12 - 1;
  list_->setGeometry(1, y, width() - 2, std::max(0, foot - y));
  line_->setGeometry(1, foot, width() - 1, 1);
  y = foot + 1 + 12;
  state_->setGeometry(kEdge, y, inner, 18);
  y += 18 + 8;
  const int half = (inner - kButtonGap) / 2;
  cancel_->setGeometry(kEdge, y, half, 28);
  merge_->setGeometry(width() - kEdge - half, y, half, 28);
}

void MergePanel::refresh() {
  if (!review_.isOpen()) return;  // the panel is about to go
  const MergeProposal& proposal = **review_.proposal;
  const std::size_t conflicts = proposal.merge.conflicts.size();
  const std::size_t undecided = review_.undecided();
  name_->setText(qtText(proposal.theirs.title));
  summary_->setText(counted(conflicts, "conflict", "conflicts") + QStringLiteral(" · ") +
                    counted(proposal.incoming.count(), "change comes in", "changes come in"));
  model_->show(review_);
  const QString left = counted(undecided, "conflict is", "conflicts are") + QStringLiteral(" undecided");
  if (review_.isWorking) {
    state_->setText(QStringLiteral("Merging…"));
  } else {
    state_->setText(undecided > 0 ? left + '.' : QStringLiteral("Ready to merge as one step."));
  }
  merge_->setEnabled(review_.canTake());
  merge_->setToolTip(undecided > 0 ? left : QStringLiteral("Take the merged drawing, as one step of undo"));
  if (!isRail()) place();
}

const MergeListRow* MergePanel::currentRow() const {
  const QModelIndex current = list_->currentIndex();
  return current.isValid() ? &model_->row(current.row()) : nullptr;
}

// --- Panel and canvas together

MergePresenter::MergePresenter(Application& application, Theme& theme, MainWindow& window)
    : QObject(&window),
      application_(application),
      theme_(theme),
      window_(window),
      update_(application.mergeReview(), kAllFields, this, [this] { refresh(); }) {
  refresh();
}

void MergePresenter::refresh() {
  const MergeReview& review = application_.mergeReview();
  if (!review.isOpen()) {
    if (panel_ == nullptr) return;
    if (window_.reviewPanel() == panel_) {
      window_.setReviewPanel(nullptr);
      window_.canvas().setDifference(std::nullopt);
    }
    return;
  }
  if (panel_ == nullptr) {
    panel_ = new MergePanel(application_, theme_);
    connect(panel_, &MergePanel::shown, this, [this](const MergeListRow& row) { zoomTo(row); });
    connect(panel_->list().selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this] { showOnCanvas(); });
    window_.setReviewPanel(panel_);
    // There is something to decide.
    window_.unfoldReviewPanel();
  }
  showOnCanvas();
}

void MergePresenter::showOnCanvas() {
  const MergeReview& review = application_.mergeReview();
  if (panel_ == nullptr || !review.isOpen()) return;
  const auto& layers = (*review.preview)->layers;
  const MergeListRow* row = panel_->currentRow();
  CanvasDifference difference{layers, kBothSides, std::nullopt};
  if (row != nullptr && row->kind == MergeListRow::Kind::conflict && row->number < layers->items.size()) {
    difference.current = row->number;
  }
  window_.canvas().setDifference(difference);
}

void MergePresenter::zoomTo(const MergeListRow& row) {
  const MergeReview& review = application_.mergeReview();
  if (!review.isOpen()) return;
  const MergeProposal& proposal = **review.proposal;
  std::optional<SketchBox> box;
  if (row.kind == MergeListRow::Kind::conflict && row.number < proposal.merge.conflicts.size()) {
    box = conflictBounds(proposal.merge.conflicts[row.number], proposal.ours, proposal.theirs.drawing);
  } else if (row.kind == MergeListRow::Kind::incoming && row.number < proposal.told.size()) {
    box = incomingBounds(proposal, proposal.told[row.number]);
  }
  Board& board = application_.workspace().board;
  const SketchSize canvas = board.view->canvasSize;
  if (!box || !(canvas.width > 1)) return;
  const SketchBox around = box->grown(std::max({box->width(), box->height(), 4.0}) * 0.75);
  const RectangleEntity frame{UUID(), {around.minX, around.minY}, {around.width(), around.height()}};
  board.setViewport(fittedViewport({frame}, canvas));
}

}  // namespace ostrelon
