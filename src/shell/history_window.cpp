#include "shell/history_window.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPointer>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/history_actions.h"
#include "platform/user_error.h"
#include "shell/drawing_view.h"
#include "shell/history_list.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr QSize kDefaultSize(1080, 720);
constexpr QSize kSmallestSize(640, 480);
constexpr QSize kPictureSize(76, 56);
constexpr int kNarrowestList = 256;
constexpr int kWidestList = 380;
constexpr int kPadding = 16;
constexpr int kButtonGap = 8;

FieldMask documentFields(const Workspace& workspace) {
  const DocumentSession& document = workspace.document;
  return fieldsOf(document.name, document.fileURL, document.history, document.lastSavedAt);
}

}  // namespace

// Buttons from the right, in as many rows as they need.
class HistoryWindow::Buttons final : public QWidget {
 public:
  using QWidget::QWidget;

  void add(Button* button) { buttons_.push_back(button); }

  void place() {
    std::vector<std::vector<Button*>> rows(1);
    int left = width();
    for (Button* button : buttons_) {
      if (button->isHidden()) continue;
      const int wanted = button->sizeHint().width();
      if (wanted > left && !rows.back().empty()) {
        rows.emplace_back();
        left = width();
      }
      rows.back().push_back(button);
      left -= wanted + kButtonGap;
    }
    int y = 0;
    for (const auto& row : rows) {
      int x = width();
      for (auto button = row.rbegin(); button != row.rend(); ++button) {
        const QSize size = (*button)->sizeHint();
        x -= size.width();
        (*button)->setGeometry(x, y, size.width(), size.height());
        x -= kButtonGap;
      }
      if (!row.empty()) y += row.front()->sizeHint().height() + kButtonGap;
    }
    setFixedHeight(std::max(28, y - kButtonGap));
  }

 protected:
  void resizeEvent(QResizeEvent* event) override {
    QWidget::resizeEvent(event);
    place();
  }

 private:
  std::vector<Button*> buttons_;
};

struct HistoryWindow::Reading {
  HistoryQuery query;
  HistoryGroups found;
  ScheduledTask task;
};

struct HistoryWindow::Loading {
  HistoryRow row;
  OpenedDocument document;
  std::string failure;  // empty where it could be read
  ScheduledTask task;
};

HistoryWindow::HistoryWindow(Application& application, Theme& theme, QWidget* mainWindow)
    : QWidget(mainWindow, Qt::Window),
      application_(application),
      theme_(theme),
      shelf_(new PictureShelf(application.host().scheduler, theme, kPictureSize, this)),
      model_(new HistoryListModel(application.host().scheduler, *shelf_, this)),
      list_(new HistoryList(theme, application.host().files, *shelf_, *model_, this)),
      listPanel_(makeListPanel()),
      view_(new DrawingView(theme, this)),
      documentUpdate_(application.workspace(), documentFields(application.workspace()), this,
                      [this] { follow(); }),
      settingsUpdate_(application.settings(), fieldsOf(application.settings().lastAutoSave), this,
                      [this] { follow(); }),
      toastUpdate_(application.workspace(), fieldsOf(application.workspace().messages.toast), this,
                   [this] { refreshStatus(); }) {
  setObjectName(QStringLiteral("history"));
  setMinimumSize(kSmallestSize);
  resize(kDefaultSize);
  view_->setObjectName(QStringLiteral("history.view"));
  auto* columns = new QHBoxLayout(this);
  columns->setContentsMargins(0, 0, 0, 0);
  columns->setSpacing(0);
  columns->addWidget(listPanel_);
  columns->addWidget(new Hairline(theme, Qt::Vertical, this));
  auto* right = new QVBoxLayout;
  right->setSpacing(0);
  right->addWidget(view_, 1);
  right->addWidget(new Hairline(theme, Qt::Horizontal, this));
  right->addWidget(makeDetails());
  columns->addLayout(right, 1);

  connect(list_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { loadDrawing(); });
  connect(list_, &HistoryList::chosen, this, &HistoryWindow::restore);
  connect(list_, &HistoryList::deletionAsked, this, &HistoryWindow::deleteKept);
  refreshDetails();
}

HistoryWindow::~HistoryWindow() = default;

QWidget* HistoryWindow::makeListPanel() {
  auto* panel = new QWidget(this);
  auto* column = new QVBoxLayout(panel);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  failure_ = new TextLabel(theme_, TextStyle::small, TextLabel::Rank::primary, {}, panel);
  failure_->setObjectName(QStringLiteral("history.failure"));
  empty_ = new TextLabel(theme_, TextStyle::body, TextLabel::Rank::secondary, {}, panel);
  empty_->setObjectName(QStringLiteral("history.empty"));
  for (TextLabel* text : {failure_, empty_}) {
    text->setWordWrap(true);
    text->setContentsMargins(kPadding, kPadding, kPadding, 0);
    text->hide();
    column->addWidget(text);
  }
  list_->setObjectName(QStringLiteral("history.list"));
  list_->setAccessibleName(QStringLiteral("History"));
  column->addWidget(list_, 1);
  return panel;
}

QWidget* HistoryWindow::makeDetails() {
  auto* panel = new QWidget(this);
  panel->setObjectName(QStringLiteral("history.details"));
  panel->setAccessibleName(QStringLiteral("Chosen state"));
  auto* column = new QVBoxLayout(panel);
  column->setContentsMargins(kPadding, 12, kPadding, kPadding);
  column->setSpacing(0);
  title_ = new TextLabel(theme_, TextStyle::title, TextLabel::Rank::primary, {}, panel);
  title_->setObjectName(QStringLiteral("history.title"));
  facts_ = new TextLabel(theme_, TextStyle::small, TextLabel::Rank::secondary, {}, panel);
  facts_->setObjectName(QStringLiteral("history.facts"));
  status_ = new TextLabel(theme_, TextStyle::small, TextLabel::Rank::primary, {}, panel);
  status_->setObjectName(QStringLiteral("history.status"));
  for (TextLabel* text : {title_, facts_, status_}) {
    text->setElision(Qt::ElideRight);
    column->addWidget(text);
  }
  status_->setFixedHeight(lineHeightOf(TextStyle::small));
  column->addSpacing(8);
  buttons_ = new Buttons(panel);
  deleteButton_ = addButton(Button::Kind::dangerous, QStringLiteral("Delete"), "history.delete",
                            QStringLiteral("Delete this kept drawing"), &HistoryWindow::deleteKept);
  deleteButton_->setIconDrawing(Icon::bin, 16);
  branchButton_ =
      addButton(Button::Kind::outlined, QStringLiteral("New Branch from Here"), "history.branch",
                QStringLiteral("Begin a branch with this checkpoint"), &HistoryWindow::branchFromHere);
  switchButton_ = addButton(Button::Kind::outlined, QStringLiteral("Switch"), "history.switch", {},
                            &HistoryWindow::switchBranch);
  compareButton_ = addButton(Button::Kind::outlined, QStringLiteral("Compare"), "history.compare",
                             QStringLiteral("Show in the main window what differs from the open drawing"),
                             &HistoryWindow::compare);
  openButton_ =
      addButton(Button::Kind::outlined, QStringLiteral("Open as New Document"), "history.open",
                QStringLiteral("Open this drawing without changing the document"), &HistoryWindow::openAsNew);
  restoreButton_ = addButton(Button::Kind::primary, QStringLiteral("Restore"), "history.restore",
                             QStringLiteral("Put this drawing in place of the open one; undo takes it back"),
                             &HistoryWindow::restore);
  column->addWidget(buttons_);
  return panel;
}

Button* HistoryWindow::addButton(Button::Kind kind, const QString& title, const char* identifier,
                                 const QString& toolTip, void (HistoryWindow::*run)()) {
  auto* button = new Button(theme_, kind, title, buttons_);
  button->setObjectName(QString::fromUtf8(identifier));
  button->setToolTip(toolTip);
  connect(button, &QPushButton::clicked, this, run);
  buttons_->add(button);
  return button;
}

void HistoryWindow::open() {
  show();
  raise();
  activateWindow();
  list_->setFocus(Qt::OtherFocusReason);
  reload();
}

// --- Following the document

void HistoryWindow::follow() {
  const DocumentSession& document = application_.workspace().document;
  if (basisBeforeOpening_ && *basisBeforeOpening_ != document.basisNumber() &&
      !document.fileURL->has_value()) {
    basisBeforeOpening_.reset();
    close();
    parentWidget()->activateWindow();
    return;
  }
  if (isVisible()) reload();
}

void HistoryWindow::reload() {
  setWindowTitle(qtText(*application_.workspace().document.name) + QStringLiteral(" — History"));
  isStale_ = true;
  if (reading_) return;
  isStale_ = false;
  reading_ = std::make_shared<Reading>();
  reading_->query = historyQuery(application_);
  FileSystem& files = application_.host().files;
  reading_->task = application_.host().scheduler.inBackground(
      [reading = reading_, &files] { reading->found = historyGroups(files, reading->query); },
      [this] {
        const auto reading = std::exchange(reading_, nullptr);
        showGroups(std::move(reading->found));
        if (isStale_) reload();
      });
}

void HistoryWindow::showGroups(HistoryGroups groups) {
  failure_->setText(qtText(groups.failure));
  failure_->setVisible(!groups.failure.empty());
  if (groups != shown_) {
    const HistoryRow* before = chosenRow();
    const std::optional<HistorySource> chosen = before ? std::optional(before->source) : std::nullopt;
    shown_ = std::move(groups);
    model_->setGroups(shown_.groups);
    std::optional<int> line = chosen ? model_->lineOf(*chosen) : std::nullopt;
    if (!line) line = model_->firstRow();
    if (line) list_->setCurrentIndex(model_->index(*line));
    loadDrawing();
  }
  const bool isEmpty = shown_.groups.empty();
  empty_->setText(application_.workspace().document.fileURL->has_value()
                      ? QStringLiteral("Nothing is there of this document.")
                      : QStringLiteral("This document has not been saved yet. What is saved of it, and its "
                                       "checkpoints, will be listed here."));
  empty_->setVisible(isEmpty && shown_.failure.empty());
  list_->setVisible(!isEmpty);
  listPanel_->layout()->setAlignment(isEmpty ? Qt::AlignTop : Qt::Alignment());
  if (isEmpty) view_->setNotice({});
}

const HistoryRow* HistoryWindow::chosenRow() const {
  const QModelIndex index = list_->currentIndex();
  return index.isValid() ? model_->row(index.row()) : nullptr;
}

const OpenedDocument* HistoryWindow::chosenDrawing() const {
  const HistoryRow* row = chosenRow();
  const bool isLoaded = row != nullptr && loaded_ && loaded_->row == *row && loaded_->failure.empty();
  return isLoaded ? &loaded_->document : nullptr;
}

// One at a time: what was passed by on the way to another row is not read.
void HistoryWindow::loadDrawing() {
  refreshDetails();
  const HistoryRow* row = chosenRow();
  if (row == nullptr || loading_ || (loaded_ && loaded_->row == *row)) return;
  loading_ = std::make_shared<Loading>();
  loading_->row = *row;
  FileSystem& files = application_.host().files;
  loading_->task = application_.host().scheduler.inBackground(
      [loading = loading_, &files] {
        try {
          loading->document = readHistoryDrawing(files, loading->row.source);
        } catch (const std::exception& error) {
          loading->failure = error.what();
        }
      },
      [this] {
        loaded_ = std::exchange(loading_, nullptr);
        if (loaded_->failure.empty()) {
          view_->setDrawing(loaded_->document.drawing);
        } else {
          view_->setNotice(qtText(loaded_->failure));
        }
        loadDrawing();
      });
}

// --- What is chosen

void HistoryWindow::refreshDetails() {
  const HistoryRow* row = chosenRow();
  const OpenedDocument* drawing = chosenDrawing();
  HistoryActions actions;
  QStringList facts;
  if (row != nullptr) {
    const HistoryGroup& group = model_->group(list_->currentIndex().row());
    actions = historyActions(group, *row);
    switchButton_->setToolTip(
        QStringLiteral("Go on with the newest checkpoint of %1").arg(qtText(group.title)));
    facts << model_->timeText(*row) << (drawing ? qtText(entityCountsText(drawing->drawing.entities)) : "")
          << qtText(row->note);
    facts.removeAll(QString());
  }
  title_->setText(row != nullptr ? qtText(row->title) : QString());
  facts_->setText(facts.join(QStringLiteral("  ·  ")));
  view_->setAccessibleName(QStringLiteral("Drawing of %1").arg(title_->text()));
  view_->setAccessibleDescription(facts_->text());
  branchButton_->setVisible(actions.newBranch);
  switchButton_->setVisible(actions.switchBranch);
  deleteButton_->setVisible(actions.deletion);
  for (Button* button : {compareButton_, openButton_, restoreButton_}) {
    button->setVisible(row != nullptr);
    button->setEnabled(drawing != nullptr);
  }
  buttons_->place();
}

void HistoryWindow::refreshStatus() {
  const auto& toast = *application_.workspace().messages.toast;
  status_->setText(toast ? qtText(toast->message) : QString());
}

// --- What can be done with it

void HistoryWindow::restore() {
  const OpenedDocument* drawing = chosenDrawing();
  if (drawing != nullptr) restoreFromHistory(application_, *chosenRow(), drawing->drawing);
}

void HistoryWindow::compare() {
  const OpenedDocument* drawing = chosenDrawing();
  if (drawing == nullptr) return;
  compareFromHistory(application_, *chosenRow(), drawing->drawing);
  hide();
}

void HistoryWindow::openAsNew() {
  const OpenedDocument* drawing = chosenDrawing();
  if (drawing == nullptr) return;
  basisBeforeOpening_ = application_.workspace().document.basisNumber();
  openFromHistory(application_, *chosenRow(), *drawing);
}

void HistoryWindow::branchFromHere() {
  if (const HistoryRow* row = chosenRow()) branchFromHistory(application_, *row);
}

void HistoryWindow::switchBranch() {
  if (const HistoryRow* row = chosenRow()) switchFromHistory(application_, *row);
}

void HistoryWindow::deleteKept() {
  const HistoryRow* row = chosenRow();
  if (row == nullptr) return;
  deleteFromHistory(application_, *row, [self = QPointer<HistoryWindow>(this)] {
    if (self != nullptr) self->reload();
  });
}

// --- The window

void HistoryWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
    return;
  }
  QWidget::keyPressEvent(event);
}

void HistoryWindow::resizeEvent(QResizeEvent* event) {
  listPanel_->setFixedWidth(std::clamp(width() * 36 / 100, kNarrowestList, kWidestList));
  QWidget::resizeEvent(event);
}

// Other windows and programs may have added to the history meanwhile.
void HistoryWindow::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::ActivationChange && isActiveWindow() && isVisible()) reload();
}

}  // namespace ostrelon
