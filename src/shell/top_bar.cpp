#include "shell/top_bar.h"

#include <QPainter>
#include <algorithm>
#include <array>

#include "app/shortcut_text.h"
#include "core/adding.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kGap = 8;
constexpr int kDot = 7;
constexpr int kBranchIcon = 14;
constexpr int kBranchGap = 6;
constexpr int kBranchPadding = 6;
// The least that is left of a cut word, and what is readable of it without effort.
constexpr int kLeastName = 64;
constexpr int kLeastBranch = 36;
constexpr int kReadableName = 160;
constexpr int kReadableBranch = 48;

// A button of the bar: its title, its key, and the menu command that it stands for.
struct MenuBarAction {
  std::string_view title;
  std::string_view shortcut;
  std::string_view command;
};

constexpr std::array kActions{
    MenuBarAction{"New", "⌘N", "File/New Document"},
    MenuBarAction{"Open", "⌘O", "File/Open…"},
    MenuBarAction{"Save", "⌘S", "File/Save"},
    MenuBarAction{"Clear", "", "Sketch/Clear Sketch"},
};

FieldMask shownFields(const Workspace& workspace) {
  return fieldsOf(workspace.document.name, workspace.document.history, workspace.sketch.isDirty);
}

}  // namespace

// The branch of the title: its icon and as much of its name as there is room for.
class DocumentTitle::BranchButton final : public QPushButton {
 public:
  BranchButton(Theme& theme, QWidget* parent) : QPushButton(parent), theme_(theme) {
    setObjectName(QStringLiteral("topMenuBar.branch"));
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isDown() || underMouse()) {
      paintBox(painter, QRectF(rect()), 6, isDown() ? theme_.border() : theme_.muted(), QColor());
    }
    const QColor ink = isDown() || underMouse() ? theme_.foreground() : theme_.secondaryOnCard();
    paintIcon(painter, Icon::branch, QRectF(kBranchPadding, 0, kBranchIcon, height()), kBranchIcon, ink);
    const int left = kBranchPadding + kBranchIcon + kBranchGap;
    const QFont font = fontOf(TextStyle::body);
    painter.setFont(font);
    painter.setPen(ink);
    const int room = width() - left - kBranchPadding;
    if (room <= 0) return;
    painter.drawText(QRect(left, 0, room + 2, height()), Qt::AlignVCenter | Qt::AlignLeft,
                     elided(text(), font, Qt::ElideRight, room));
  }
  void keyPressEvent(QKeyEvent* event) override {
    if (isPressingKey(*event)) {
      click();
    } else {
      QPushButton::keyPressEvent(event);
    }
  }

 private:
  Theme& theme_;
};

DocumentTitle::DocumentTitle(Theme& theme, QWidget* parent)
    : QLabel(parent), theme_(theme), branchButton_(new BranchButton(theme, this)) {
  setObjectName(QStringLiteral("topMenuBar.document"));
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

QPushButton& DocumentTitle::branchButton() { return *branchButton_; }

void DocumentTitle::setDocument(const QString& name, bool isEdited, const QString& branch) {
  name_ = name;
  isEdited_ = isEdited;
  branch_ = branch;
  setAccessibleName(QStringLiteral("%1%2, branch %3").arg(name, isEdited ? ", edited" : "", branch));
  setToolTip(QStringLiteral("%1%2\nBranch %3").arg(name, isEdited ? " — edited" : "", branch));
  branchButton_->setText(branch);
  branchButton_->setAccessibleName(QStringLiteral("Branch %1, show the history").arg(branch));
  branchButton_->setToolTip(QStringLiteral("Branch %1: show the history").arg(branch));
  placeBranch();
  update();
}

void DocumentTitle::placeBranch() {
  const Room room = roomForWords(width());
  const int nameWidth =
      QFontMetrics(fontOf(TextStyle::bodyStrong))
          .horizontalAdvance(elided(name_, fontOf(TextStyle::bodyStrong), Qt::ElideMiddle, room.name));
  const int words = room.branch > 0 ? kBranchGap + room.branch : 0;
  branchButton_->setGeometry(nameWidth + marksWidth() - kBranchIcon - kBranchPadding, 2,
                             kBranchIcon + words + 2 * kBranchPadding, height() - 4);
}

void DocumentTitle::resizeEvent(QResizeEvent* event) {
  QLabel::resizeEvent(event);
  placeBranch();
}

int DocumentTitle::marksWidth() const {
  const int dot = isEdited_ ? kGap + kDot : 0;
  return dot + kGap + QFontMetrics(fontOf(TextStyle::body)).horizontalAdvance(u'·') + kGap + kBranchIcon;
}

DocumentTitle::Room DocumentTitle::wholeWords() const {
  return {QFontMetrics(fontOf(TextStyle::bodyStrong)).horizontalAdvance(name_) + 1,
          QFontMetrics(fontOf(TextStyle::body)).horizontalAdvance(branch_) + 1};
}

DocumentTitle::Room DocumentTitle::roomForWords(int width) const {
  const Room whole = wholeWords();
  const int room = std::max(0, width - marksWidth() - kBranchPadding);
  const int leastBranch = std::min(whole.branch, kLeastBranch);
  const int forBoth = room - kBranchGap;
  if (forBoth < std::min(whole.name, kLeastName) + leastBranch) return {.name = std::min(whole.name, room)};
  const int branch = std::clamp(forBoth - whole.name, leastBranch, whole.branch);
  return {.name = std::min(whole.name, forBoth - branch), .branch = branch};
}

QSize DocumentTitle::sizeHint() const {
  const Room whole = wholeWords();
  return {marksWidth() + whole.name + kBranchGap + whole.branch + kBranchPadding, 28};
}

int DocumentTitle::readableWidth() const {
  const Room whole = wholeWords();
  return marksWidth() + std::min(whole.name, kReadableName) + kBranchGap +
         std::min(whole.branch, kReadableBranch) + kBranchPadding;
}

void DocumentTitle::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Room room = roomForWords(width());
  const QFont strong = fontOf(TextStyle::bodyStrong);
  int x = 0;
  const auto drawWords = [&](const QString& words, const QColor& color) {
    painter.setPen(color);
    const int advance = painter.fontMetrics().horizontalAdvance(words);
    painter.drawText(QRect(x, 0, advance + 2, height()), Qt::AlignVCenter | Qt::AlignLeft, words);
    x += advance;
  };
  painter.setFont(strong);
  drawWords(elided(name_, strong, Qt::ElideMiddle, room.name), theme_.foreground());
  if (isEdited_) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme_.active());
    painter.drawEllipse(QRectF(x + kGap, (height() - kDot) / 2.0, kDot, kDot));
    x += kGap + kDot;
  }
  x += kGap;
  painter.setFont(fontOf(TextStyle::body));
  drawWords(QStringLiteral("·"), theme_.secondaryOnCard());
}

TopMenuBarView::TopMenuBarView(Application& application, Theme& theme, QWidget* parent)
    : Panel(theme, Qt::BottomEdge, parent),
      application_(application),
      menuBar_(new MenuBar(application, this)),
      title_(new DocumentTitle(theme, this)),
      divider_(new Hairline(theme, Qt::Vertical, this)),
      gridSwitch_(new Switch(theme, QStringLiteral("Grid"), this)),
      update_(application.workspace(), shownFields(application.workspace()), this, [this] { refresh(); }),
      gridUpdate_(application.workspace(), fieldsOf(application.workspace().sketch.drawing), this,
                  [this] { refreshGrid(); }) {
  setObjectName(QStringLiteral("topMenuBar"));
  setAccessibleName(QStringLiteral("Document"));
  for (const MenuBarAction& action : kActions) {
    auto* button = new Button(theme, Button::Kind::plain, qtText(action.title), this);
    button->setObjectName(QStringLiteral("topMenuBar.") + qtText(action.title).toLower());
    if (!action.shortcut.empty()) button->setKeyHint(qtText(desktopNotation(action.shortcut)));
    const std::string_view title = action.command.substr(action.command.find('/') + 1);
    button->setToolTip(toolTipWithKey(qtText(title), action.shortcut));
    connect(button, &QPushButton::clicked, this,
            [this, command = action.command] { runMenuCommand(application_, command); });
    actions_.push_back(button);
  }
  gridSwitch_->setObjectName(QStringLiteral("topMenuBar.grid"));
  gridSwitch_->setAccessibleName(QStringLiteral("Grid"));
  gridSwitch_->setToolTip(toolTipWithKey(QStringLiteral("Show the grid"), "⌘G"));
  connect(gridSwitch_, &QCheckBox::clicked, this,
          [this](bool checked) { setShowGrid(application_.workspace().sketch, checked); });
  connect(&title_->branchButton(), &QPushButton::clicked, this,
          [this] { runMenuCommand(application_, "File/History…"); });
  setTabOrder(actions_.back(), gridSwitch_);
  refresh();
}

void TopMenuBarView::setKeyHintsVisible(bool visible) {
  for (Button* button : actions_) button->setKeyHintVisible(visible);
  place();
}

void TopMenuBarView::resizeEvent(QResizeEvent* event) {
  Panel::resizeEvent(event);
  place();
}

void TopMenuBarView::place() {
  // The name is in the middle of what is left between the menus and the actions. Where that is too little to
  // read it, the actions move closer and the switch loses its title.
  const int left = 8 + menuBar_->sizeHint().width() + 12;
  int right = placeActions(false);
  if (right - left < title_->readableWidth()) right = placeActions(true);
  const int middle = (kHeight - 1) / 2;
  menuBar_->setGeometry(8, middle - 14, menuBar_->sizeHint().width(), 28);
  const int room = std::max(0, right - left);
  const int wanted = std::min(title_->sizeHint().width(), room);
  title_->setGeometry(left + (room - wanted) / 2, middle - 14, wanted, 28);
}

int TopMenuBarView::placeActions(bool isTight) {
  for (Button* button : actions_) button->setPaddings(isTight ? 5 : 8, 28);
  gridSwitch_->setText(isTight ? QString() : QStringLiteral("Grid"));
  const int middle = (kHeight - 1) / 2;
  int right = width() - 16;
  const QSize grid = gridSwitch_->sizeHint();
  right -= grid.width();
  gridSwitch_->setGeometry(right, middle - grid.height() / 2, grid.width(), grid.height());
  right -= 13;
  divider_->setGeometry(right, middle - 9, 1, 18);
  right -= 12 - 8;
  for (auto button = actions_.rbegin(); button != actions_.rend(); ++button) {
    const QSize size = (*button)->sizeHint();
    right -= size.width();
    (*button)->setGeometry(right, middle - 14, size.width(), 28);
  }
  return right - 12;
}

void TopMenuBarView::refresh() {
  const Workspace& workspace = application_.workspace();
  const DocumentHistoryBranch* branch = workspace.document.history->currentBranch();
  title_->setDocument(qtText(*workspace.document.name), workspace.document.isDirty(),
                      branch != nullptr ? qtText(branch->name) : QStringLiteral("main"));
  refreshGrid();
  place();
}

// By itself, since the drawing changes with each move of a drag.
void TopMenuBarView::refreshGrid() {
  gridSwitch_->setChecked(application_.workspace().sketch.drawing->showGrid);
}

}  // namespace ostrelon
