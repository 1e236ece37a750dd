#include "shell/top_bar.h"

#include <QPainter>
#include <algorithm>
#include <array>

#include "app/shortcut_text.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kGap = 8;
constexpr int kDot = 7;
constexpr int kBranchIcon = 14;
constexpr int kBranchGap = 6;
constexpr int kTightWidth = 800;

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

}  // namespace

DocumentTitle::DocumentTitle(Theme& theme, QWidget* parent) : QLabel(parent), theme_(theme) {
  setObjectName(QStringLiteral("topMenuBar.document"));
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void DocumentTitle::setDocument(const QString& name, bool isEdited, const QString& branch) {
  name_ = name;
  isEdited_ = isEdited;
  branch_ = branch;
  setAccessibleName(QStringLiteral("%1%2, branch %3").arg(name, isEdited ? ", edited" : "", branch));
  setToolTip(QStringLiteral("%1%2\nBranch %3").arg(name, isEdited ? " — edited" : "", branch));
  update();
}

void DocumentTitle::setBranchShown(bool shown) {
  isBranchShown_ = shown;
  update();
}

int DocumentTitle::fixedWidth() const {
  const QFontMetrics body(fontOf(TextStyle::body));
  int width = kGap + body.horizontalAdvance(u'·') + kGap + kBranchIcon;
  if (isBranchShown_) width += kBranchGap + body.horizontalAdvance(branch_);
  if (isEdited_) width += kGap + kDot;
  return width;
}

QSize DocumentTitle::sizeHint() const {
  return {QFontMetrics(fontOf(TextStyle::bodyStrong)).horizontalAdvance(name_) + 1 + fixedWidth(), 28};
}

void DocumentTitle::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QFont strong = fontOf(TextStyle::bodyStrong);
  const QString name =
      QFontMetrics(strong).elidedText(name_, Qt::ElideMiddle, std::max(0, width() - fixedWidth()));
  int x = 0;
  const auto drawWords = [&](const QString& words, const QColor& color) {
    painter.setPen(color);
    const int advance = painter.fontMetrics().horizontalAdvance(words);
    painter.drawText(QRect(x, 0, advance + 2, height()), Qt::AlignVCenter | Qt::AlignLeft, words);
    x += advance;
  };
  painter.setFont(strong);
  drawWords(name, theme_.foreground());
  if (isEdited_) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme_.active());
    painter.drawEllipse(QRectF(x + kGap, (height() - kDot) / 2.0, kDot, kDot));
    x += kGap + kDot;
  }
  x += kGap;
  painter.setFont(fontOf(TextStyle::body));
  drawWords(QStringLiteral("·"), theme_.secondaryOnCard());
  x += kGap;
  paintIcon(painter, Icon::branch, QRectF(x, 0, kBranchIcon, height()), kBranchIcon,
            theme_.secondaryOnCard());
  x += kBranchIcon + kBranchGap;
  if (isBranchShown_) drawWords(branch_, theme_.secondaryOnCard());
}

TopMenuBarView::TopMenuBarView(Application& application, Theme& theme, QWidget* parent)
    : Panel(theme, Qt::BottomEdge, parent),
      application_(application),
      menuBar_(new MenuBar(application, this)),
      title_(new DocumentTitle(theme, this)),
      divider_(new Hairline(theme, Qt::Vertical, this)),
      gridSwitch_(new Switch(theme, QStringLiteral("Grid"), this)),
      update_(application.sketch(),
              fieldMask(SketchField::documentName, SketchField::isDocumentDirty,
                        SketchField::documentHistoryState, SketchField::showGrid),
              this, [this] { refresh(); }) {
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
          [this](bool checked) { application_.sketch().setShowGrid(checked); });
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
  // In a very narrow bar the actions stand closer, and the switch and the branch lose their words, so
  // that something is left for the name.
  const bool isTight = width() < kTightWidth;
  for (Button* button : actions_) button->setPaddings(isTight ? 5 : 8, 28);
  gridSwitch_->setText(isTight ? QString() : QStringLiteral("Grid"));
  title_->setBranchShown(!isTight);
  const int middle = (kHeight - 1) / 2;
  const QSize menus = menuBar_->sizeHint();
  menuBar_->setGeometry(8, middle - 14, menus.width(), 28);
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
  // The name stands in the middle of what is left between the menus and the actions.
  const int left = 8 + menus.width() + 12;
  const int room = right - 12 - left;
  const int wanted = std::min(title_->sizeHint().width(), std::max(0, room));
  title_->setGeometry(left + std::max(0, (room - wanted) / 2), middle - 14, wanted, 28);
}

void TopMenuBarView::refresh() {
  const SketchViewModel& sketch = application_.sketch();
  const DocumentHistoryBranch* branch = sketch.documentHistoryState->currentBranch();
  title_->setDocument(qtText(*sketch.documentName), *sketch.isDocumentDirty,
                      branch != nullptr ? qtText(branch->name) : QStringLiteral("main"));
  gridSwitch_->setChecked(*sketch.showGrid);
  place();
}

}  // namespace ostrelon
