#include "shell/main_window.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTextEdit>
#include <QUrl>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

#include "app/key_handling.h"
#include "shell/accessibility.h"
#include "shell/context_menu_popup.h"
#include "shell/dialog_sheet.h"
#include "shell/key_events.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr QSize kDefaultSize(1200, 800);
constexpr QSize kSmallestSize(760, 560);
constexpr int kKeyHintsWidth = 1160;
constexpr int kWallPanelWidth = 1080;
constexpr int kNavigationWidth = 920;
constexpr int kShortHeight = 640;
/// What a console that was made tall leaves of the canvas.
constexpr int kCanvasLeastHeight = 200;

constexpr const char* kGeometryKey = "ostrel.mainWindowGeometry";
constexpr const char* kConsoleHeightKey = "ostrel.consoleHeight";

// "[*]" marks where Qt shows that a window is modified; a name may hold it too.
QString titleOf(const std::string& documentName) {
  return qtText(documentName).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")) +
         QStringLiteral("[*]");
}

bool isDocument(const QUrl& url) {
  return url.isLocalFile() && url.toLocalFile().endsWith(QStringLiteral(".ostrel"), Qt::CaseInsensitive);
}

bool isTextControl(const QWidget* widget) {
  if (const auto* combo = qobject_cast<const QComboBox*>(widget)) return combo->isEditable();
  return qobject_cast<const QLineEdit*>(widget) != nullptr ||
         qobject_cast<const QAbstractSpinBox*>(widget) != nullptr ||
         qobject_cast<const QTextEdit*>(widget) != nullptr ||
         qobject_cast<const QPlainTextEdit*>(widget) != nullptr;
}

FieldMask titleFields(const Workspace& workspace) {
  return fieldsOf(workspace.document.name, workspace.document.fileURL, workspace.sketch.isDirty);
}

// The shadow of a panel that lies over the canvas.
class PanelShadow final : public QWidget {
 public:
  PanelShadow(Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    const int reach = shadowReach(2);
    QPainter painter(this);
    paintShadow(painter, QRectF(rect()).adjusted(reach, reach, -reach, -reach), theme_, 2, 1);
  }

 private:
  Theme& theme_;
};

}  // namespace

MainWindow::MainWindow(Application& application, Theme& theme, QWidget* parent)
    : QWidget(parent),
      application_(application),
      theme_(theme),
      navigation_(new LeftNavView(application.workspace(), theme, this)),
      topBar_(new TopMenuBarView(application, theme, this)),
      canvas_(new CanvasWidget(application.workspace().board, this)),
      overlay_(new CanvasOverlay(application, theme, *canvas_)),
      console_(new ConsoleView(application.workspace(), theme, this)),
      wallSystems_(new WallSystemPanelView(application.workspace(), theme, this)),
      unfoldedShadow_(new PanelShadow(theme, this)),
      titleUpdate_(application.workspace(), titleFields(application.workspace()), this,
                   [this] { refreshTitle(); }),
      viewUpdate_(application.workspace(), fieldsOf(application.workspace().board.view), this,
                  [this] { centreNewView(); }) {
  setObjectName(QStringLiteral("main"));
  setAcceptDrops(true);
  setMinimumSize(kSmallestSize);
  resize(kDefaultSize);
  canvas_->setObjectName(QStringLiteral("canvas"));
  canvas_->setAccessibleName(QStringLiteral("Drawing"));
  setAccessibleRole(*canvas_, QAccessible::Canvas);
  canvas_->setProperty("noFocusHalo", true);
  canvas_->setThemePalette(theme.palette());
  connect(&theme, &Theme::changed, this, [this] { canvas_->setThemePalette(theme_.palette()); });
  connect(canvas_, &CanvasWidget::resized, overlay_, &CanvasOverlay::place);
  connect(canvas_, &CanvasWidget::contextMenuRequested, this,
          [this](const ContextMenu& menu, const QPoint& position) {
            Workspace& workspace = application_.workspace();
            popUpContextMenu(*this, menu, workspace.sketch, workspace.messages, position);
          });
  connect(console_, &ConsoleView::panelHeightChanged, this, [this] { place(); });
  connect(navigation_, &LeftNavView::unfoldRequested, this, [this] { unfold(navigation_); });
  connect(wallSystems_, &WallSystemPanelView::unfoldRequested, this, [this] { unfold(wallSystems_); });
  qApp->installEventFilter(this);
  refreshTitle();
}

MainWindow::~MainWindow() { qApp->removeEventFilter(this); }

// --- Layout

void MainWindow::place() {
  const int w = width();
  const int h = height();
  const bool navigationFolds = w < kNavigationWidth;
  const bool rightFolds = w < kWallPanelWidth;
  QWidget* rightPanel = wallSystems_;
  if (review_ != nullptr) rightPanel = review_;
  topBar_->setKeyHintsVisible(w >= kKeyHintsWidth);
  if ((unfolded_ == navigation_ && !navigationFolds) || (unfolded_ == rightPanel && !rightFolds))
    unfolded_ = nullptr;
  navigation_->setRail(navigationFolds && unfolded_ != navigation_);
  const bool isRail = rightFolds && unfolded_ != rightPanel;
  if (review_ != nullptr) {
    review_->setRail(isRail);
  } else {
    wallSystems_->setRail(isRail);
  }

  const int left = navigationFolds ? LeftNavView::kRailWidth : LeftNavView::kWidth;
  static_assert(ReviewPanel::kRailWidth == WallSystemPanelView::kRailWidth);
  const int rightWidth = review_ != nullptr ? ReviewPanel::kWidth : WallSystemPanelView::kWidth;
  const int right = rightFolds ? WallSystemPanelView::kRailWidth : rightWidth;
  const int top = TopMenuBarView::kHeight;
  const int wanted = static_cast<int>(std::lround(console_->panelHeight()));
  // A short window shows the console at its least height; its own comes back once it fits.
  constexpr int least = static_cast<int>(kConsoleMinimumHeight);
  const int consoleHeight =
      h < kShortHeight ? least : std::clamp(wanted, least, std::max(least, h - top - kCanvasLeastHeight));
  const int canvasWidth = w - left - right;

  navigation_->setGeometry(0, 0, unfolded_ == navigation_ ? LeftNavView::kWidth : left, h);
  topBar_->setGeometry(left, 0, w - left, top);
  canvas_->setGeometry(left, top, canvasWidth, h - top - consoleHeight);
  console_->setGeometry(left, h - consoleHeight, canvasWidth, consoleHeight);
  const int shownWidth = unfolded_ == rightPanel ? rightWidth : right;
  rightPanel->setGeometry(w - shownWidth, top, shownWidth, h - top);
  unfoldedShadow_->setVisible(unfolded_ != nullptr);
  if (unfolded_ != nullptr) {
    const int reach = shadowReach(2);
    unfoldedShadow_->setGeometry(unfolded_->geometry().adjusted(-reach, -reach, reach, reach));
    unfoldedShadow_->raise();
    unfolded_->raise();
  }
}

void MainWindow::setReviewPanel(ReviewPanel* panel) {
  if (panel == review_) return;
  QWidget* before = review_;
  if (before == nullptr) before = wallSystems_;
  const bool wasUnfolded = unfolded_ == before;
  const bool hadFocus = before->isAncestorOf(QApplication::focusWidget());
  if (wasUnfolded) unfolded_ = nullptr;
  if (review_ != nullptr) {
    review_->hide();
    review_->deleteLater();
  }
  review_ = panel;
  wallSystems_->setVisible(review_ == nullptr);
  if (review_ != nullptr) {
    review_->setParent(this);
    connect(review_, &ReviewPanel::unfoldRequested, this, &MainWindow::unfoldReviewPanel);
    review_->show();
  }
  if (hadFocus) console_->input()->setFocus(Qt::OtherFocusReason);
  place();
}

void MainWindow::unfoldReviewPanel() {
  if (review_ == nullptr) return;
  unfold(review_);
  review_->list().setFocus(Qt::OtherFocusReason);
}

void MainWindow::unfold(QWidget* panel) {
  unfolded_ = panel;
  place();
}

void MainWindow::foldBack() {
  if (unfolded_ == nullptr) return;
  if (unfolded_->isAncestorOf(QApplication::focusWidget())) console_->input()->setFocus(Qt::OtherFocusReason);
  unfolded_ = nullptr;
  place();
}

// A click outside of an unfolded panel folds it, and is over. It is looked at before it is decided which
// control it is for, since that would take the focus.
bool MainWindow::takesClickToFold(const QEvent& event) {
  switch (event.type()) {
    case QEvent::MouseButtonPress: {
      const auto& press = static_cast<const QMouseEvent&>(event);
      isFoldingClick_ = unfolded_ != nullptr && !unfolded_->geometry().contains(press.position().toPoint()) &&
                        DialogSheet::inFrontOf(*this) == nullptr;
      if (isFoldingClick_) foldBack();
      return isFoldingClick_;
    }
    case QEvent::MouseMove:
      return isFoldingClick_;
    case QEvent::MouseButtonRelease:
      return std::exchange(isFoldingClick_, false);
    default:
      return false;
  }
}

void MainWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  place();
}

void MainWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  place();
  if (hasAppeared_) return;
  hasAppeared_ = true;
  console_->input()->setFocus(Qt::OtherFocusReason);
  application_.mainViewAppeared();
}

void MainWindow::restoreLayout() {
  if (const auto geometry = application_.defaults().text(kGeometryKey)) {
    restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(*geometry)));
  }
  const auto height = application_.defaults().value(kConsoleHeightKey);
  if (height && std::holds_alternative<double>(*height)) console_->setPanelHeight(std::get<double>(*height));
}

void MainWindow::saveLayout() {
  application_.defaults().set(kGeometryKey, saveGeometry().toBase64().toStdString());
  application_.defaults().set(kConsoleHeightKey, console_->panelHeight());
}

// A new document is centred at once; an opened one keeps the view that it was saved with.
void MainWindow::centreNewView() {
  Workspace& workspace = application_.workspace();
  if (workspace.board.view->isInitialized || workspace.board.view->canvasSize.width <= 1) return;
  const SketchViewport saved = workspace.board.viewport();
  const bool isOpened = workspace.document.fileURL->has_value();
  workspace.board.resizeCanvas(workspace.board.view->canvasSize);
  if (isOpened) workspace.board.setViewport(saved);
}

void MainWindow::refreshTitle() {
  const Workspace& workspace = application_.workspace();
  const auto& file = *workspace.document.fileURL;
  setWindowFilePath(file ? qtText(file->string()) : QString());
  setWindowTitle(titleOf(*workspace.document.name));
  setWindowModified(workspace.document.isDirty());
}

// --- Closing and dropping

void MainWindow::closeEvent(QCloseEvent* event) {
  saveLayout();
  event->accept();
  if (mayClose_) return;
  // The answer may come within this call or, with a sheet on the screen, later.
  const auto isWithinCall = std::make_shared<bool>(true);
  const QPointer<MainWindow> self(this);
  event->ignore();
  const auto closeNow = [self] {
    if (self == nullptr) return;
    self->mayClose_ = true;
    self->close();
  };
  application_.windowShouldClose(
      [event, isWithinCall, closeNow](CloseQuestion::Reply reply) {
        if (reply != CloseQuestion::Reply::allowed) return;
        if (*isWithinCall) {
          event->accept();
        } else {
          closeNow();
        }
      },
      closeNow);
  *isWithinCall = false;
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  for (const QUrl& url : event->mimeData()->urls()) {
    if (isDocument(url)) {
      event->acceptProposedAction();
      return;
    }
  }
}

void MainWindow::dropEvent(QDropEvent* event) {
  for (const QUrl& url : event->mimeData()->urls()) {
    if (!isDocument(url)) continue;
    event->acceptProposedAction();
    application_.openDocumentAt(FilePath(plainText(url.toLocalFile())));
    return;
  }
}

// --- Keys and clicks

bool MainWindow::eventFilter(QObject* object, QEvent* event) {
  if (object == windowHandle() && takesClickToFold(*event)) return true;
  auto* widget = qobject_cast<QWidget*>(object);
  if (widget == nullptr) return false;
  switch (event->type()) {
    case QEvent::KeyPress:
      return routeKey(*static_cast<QKeyEvent*>(event), widget);
    case QEvent::KeyRelease:
      if (!static_cast<QKeyEvent*>(event)->isAutoRepeat()) {
        handleKeyReleased(keyEventOf(*static_cast<QKeyEvent*>(event)), application_);
      }
      return false;
    case QEvent::WindowDeactivate:
      // The key may be let go over another window.
      application_.comparison().setBeforeHeld(false);
      return false;
    case QEvent::Wheel:
      swallowedLetters_.forget();
      return false;
    case QEvent::MouseButtonPress:
      swallowedLetters_.forget();
      // The canvas leaves the focus with the console, where numbers are typed while drawing; other
      // fields give it up.
      if (widget == canvas_ && QApplication::focusWidget() != console_->input()) {
        canvas_->setFocus(Qt::MouseFocusReason);
      }
      return false;
    default:
      return false;
  }
}

bool MainWindow::routeKey(QKeyEvent& event, QWidget* receiver) {
  // Each key is looked at once, on its way to the control that has the focus.
  QWidget* focus = QApplication::focusWidget();
  if (QApplication::activePopupWidget() != nullptr || QApplication::activeModalWidget() != nullptr)
    return false;
  if (focus != nullptr ? receiver != focus : receiver != this) return false;
  if (DialogSheet::inFrontOf(*this) != nullptr) return false;

  if (unfolded_ != nullptr && receiver->window() == this && event.key() == Qt::Key_Escape) {
    foldBack();
    return true;
  }
  KeyEvent key = keyEventOf(event);
  key.documentWindow = receiver->window() == this;
  key.textFocus = isTextControl(focus);
  key.consoleFocus = focus == console_->input();
  // In the smaller windows Space presses the button that has the focus.
  if (!key.documentWindow && key.key == KeyName::space && qobject_cast<QAbstractButton*>(focus) != nullptr)
    return false;
  const bool onEmptyLine = key.documentWindow && application_.workspace().console.input->empty() &&
                           (key.consoleFocus || !key.textFocus);
  const bool isText = !event.text().isEmpty() && event.text().front().isPrint();
  const bool mayBeTyping = onEmptyLine && isText;
  const Date now = application_.host().scheduler.now();
  std::optional<SwallowedLetters::Before> before;
  if (mayBeTyping) {
    before = SwallowedLetters::stateOf(application_.workspace());
  } else if (event.key() != Qt::Key_Shift) {
    swallowedLetters_.forget();
  }
  if (handleKey(key, application_) == KeyOutcome::consumed) {
    if (before) swallowedLetters_.swallowed(plainText(event.text()), now, std::move(*before));
    return true;
  }
  if (mayBeTyping) {
    // What follows a shortcut's letter may show it to be the beginning of a command.
    const std::string beginning =
        swallowedLetters_.takeBeginning(plainText(event.text()), now, application_.workspace());
    if (!beginning.empty()) console_->input()->setText(qtText(beginning));
  }
  return key.documentWindow && typeIntoConsole(event);
}

// Words typed with no field focused go to the console.
bool MainWindow::typeIntoConsole(const QKeyEvent& event) {
  const Qt::KeyboardModifiers held = event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
  QWidget* focus = QApplication::focusWidget();
  const bool onCanvas = focus == nullptr || focus == canvas_ || focus == this;
  if (held != Qt::NoModifier || !onCanvas || event.text().isEmpty() || !event.text().front().isPrint())
    return false;
  console_->input()->setFocus(Qt::ShortcutFocusReason);
  console_->input()->setText(console_->input()->text() + event.text());
  return true;
}

}  // namespace ostrelon
