#include "shell/settings_window.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "app/update_summary.h"
#include "platform/user_error.h"
#include "shell/date_text.h"
#include "shell/qt_text.h"
#include "updates/web_address.h"

namespace ostrelon {
namespace {

constexpr int kTitleColumn = 152;
constexpr int kLabelColumn = 116;
/// What is left of the screen's height for the window's frame and the desktop's bars.
constexpr int kScreenMargin = 80;
constexpr std::size_t kChangeLines = 6;

}  // namespace

// --- The view

AppSettingsView::AppSettingsView(Application& application, Theme& theme,
                                 std::function<void()> projectsFolderChanged, QWidget* parent)
    : QWidget(parent),
      application_(application),
      theme_(theme),
      projectsFolderChanged_(std::move(projectsFolderChanged)),
      sections_(new QVBoxLayout(this)),
      settingsTimer_(new QTimer(this)),
      updatesTimer_(new QTimer(this)) {
  setObjectName(QStringLiteral("settings"));
  sections_->setContentsMargins(0, 0, 0, 0);
  sections_->setSpacing(0);
  makeUpdates();
  makeAppearance();
  makeAutoSave();
  makeProjectsFolder();
  sections_->addStretch();
  for (QTimer* timer : {settingsTimer_, updatesTimer_}) {
    timer->setSingleShot(true);
    timer->setInterval(0);
  }
  connect(settingsTimer_, &QTimer::timeout, this, [this] { refreshSettings(); });
  connect(updatesTimer_, &QTimer::timeout, this, [this] { refreshUpdates(); });
  settingsSubscription_ =
      application.settings().observe(kAllFields, [timer = settingsTimer_](FieldMask) { timer->start(); });
  updatesSubscription_ =
      application.updates().observe(kAllFields, [timer = updatesTimer_](FieldMask) { timer->start(); });
  connect(&theme, &Theme::changed, this, [this] { refreshUpdates(); });
  refreshUpdates();
  refreshSettings();
}

QVBoxLayout* AppSettingsView::addSection(const QString& title, const QString& identifier, bool isLast,
                                         int outset) {
  auto* section = new QWidget(this);
  section->setObjectName(identifier);
  section->setAccessibleName(title);
  auto* row = new QHBoxLayout(section);
  row->setContentsMargins(32, 24, 32 - outset, 24);
  row->setSpacing(0);
  auto* heading = new TextLabel(theme_, TextStyle::title, TextLabel::Rank::primary, title, section);
  heading->setFixedWidth(kTitleColumn - outset);
  heading->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  row->addWidget(heading, 0, Qt::AlignTop);
  auto* column = new QVBoxLayout;
  column->setSpacing(8);
  row->addLayout(column, 1);
  sections_->addWidget(section);
  if (!isLast) sections_->addWidget(new Hairline(theme_, Qt::Horizontal, this));
  return column;
}

TextLabel* AppSettingsView::addValueRow(QVBoxLayout& column, const QString& label,
                                        const QString& identifier) {
  auto* row = new QHBoxLayout;
  row->setSpacing(0);
  auto* words = new TextLabel(theme_, TextStyle::body, TextLabel::Rank::secondary, label, this);
  words->setFixedWidth(kLabelColumn);
  auto* value = new TextLabel(theme_, TextStyle::body, TextLabel::Rank::primary, {}, this);
  value->setObjectName(identifier);
  value->setWordWrap(true);
  row->addWidget(words, 0, Qt::AlignTop);
  row->addWidget(value, 1);
  column.addLayout(row);
  return value;
}

void AppSettingsView::makeUpdates() {
  QVBoxLayout& column = *addSection(QStringLiteral("Updates"), QStringLiteral("settings.updates"), false);
  column.setSpacing(4);
  currentVersion_ = addValueRow(column, QStringLiteral("Current version"), "settings.currentVersion");
  latestVersion_ = addValueRow(column, QStringLiteral("Latest version"), "settings.latestVersion");
  lastChecked_ = addValueRow(column, QStringLiteral("Last checked"), "settings.lastChecked");

  auto* statusRow = new QHBoxLayout;
  statusRow->setSpacing(0);
  auto* statusLabel = new TextLabel(theme_, TextStyle::body, TextLabel::Rank::secondary, "Status", this);
  statusLabel->setFixedWidth(kLabelColumn);
  statusMark_ = new QLabel(this);
  statusMark_->setObjectName(QStringLiteral("settings.statusMark"));
  status_ = new TextLabel(theme_, TextStyle::bodyStrong, TextLabel::Rank::primary, {}, this);
  status_->setObjectName(QStringLiteral("settings.status"));
  status_->setWordWrap(true);
  statusMark_->setFixedHeight(20);
  statusRow->addWidget(statusLabel, 0, Qt::AlignTop);
  statusRow->addWidget(statusMark_, 0, Qt::AlignTop);
  statusRow->addWidget(status_, 1);
  column.addLayout(statusRow);

  progressRow_ = new QWidget(this);
  auto* progressColumns = new QHBoxLayout(progressRow_);
  progressColumns->setContentsMargins(0, 4, 0, 0);
  progressColumns->setSpacing(0);
  auto* progressLabel =
      new TextLabel(theme_, TextStyle::body, TextLabel::Rank::secondary, "Download progress", progressRow_);
  progressLabel->setFixedWidth(kLabelColumn + 8);
  progress_ = new ProgressLine(theme_, progressRow_);
  progress_->setObjectName(QStringLiteral("settings.downloadProgress"));
  progress_->setAccessibleName(QStringLiteral("Download progress"));
  progressColumns->addWidget(progressLabel);
  progressColumns->addWidget(progress_, 1);
  column.addWidget(progressRow_);

  changesBox_ = new SettingsBox(theme_, false, this);
  changesBox_->setObjectName(QStringLiteral("settings.changes"));
  auto* box = new QVBoxLayout(changesBox_);
  box->setContentsMargins(16, 14, 16, 14);
  box->setSpacing(2);
  box->addWidget(
      new TextLabel(theme_, TextStyle::bodyStrong, TextLabel::Rank::primary, "What's changed", changesBox_));
  changes_ = new QVBoxLayout;
  changes_->setSpacing(2);
  box->addLayout(changes_);
  box->addSpacing(8);
  auto* notesRow = new QHBoxLayout;
  omitted_ = new TextLabel(theme_, TextStyle::small, TextLabel::Rank::primary, {}, changesBox_);
  omitted_->setObjectName(QStringLiteral("settings.omittedChanges"));
  fullNotes_ = new Button(theme_, Button::Kind::plain, QStringLiteral("Full notes"), changesBox_);
  fullNotes_->setObjectName(QStringLiteral("settings.fullNotes"));
  fullNotes_->setTextStyle(TextStyle::badge);
  fullNotes_->setUnderlined(true);
  fullNotes_->setPaddings(0, 20);
  connect(fullNotes_, &QPushButton::clicked, this, [this] {
    if (!shownUpdate_) return;
    const auto& notes = shownUpdate_->latestRelease.releaseNotesURL;
    if (notes && isSecureWebAddress(*notes)) QDesktopServices::openUrl(QUrl(qtText(*notes)));
  });
  notesRow->addWidget(omitted_, 1);
  notesRow->addWidget(fullNotes_);
  box->addLayout(notesRow);
  column.addSpacing(8);
  column.addWidget(changesBox_);

  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  checkButton_ = new Button(theme_, Button::Kind::outlined, QStringLiteral("Check for Updates"), this);
  checkButton_->setObjectName(QStringLiteral("settings.checkForUpdates"));
  postponeButton_ = new Button(theme_, Button::Kind::outlined, QStringLiteral("Remind Me Later"), this);
  postponeButton_->setObjectName(QStringLiteral("settings.remindMeLater"));
  installButton_ = new Button(theme_, Button::Kind::primary, QStringLiteral("Download and Install"), this);
  installButton_->setObjectName(QStringLiteral("settings.downloadAndInstall"));
  connect(checkButton_, &QPushButton::clicked, this,
          [this] { application_.updates().checkForUpdates(true); });
  connect(postponeButton_, &QPushButton::clicked, this, [this] { application_.updates().postponeUpdate(); });
  connect(installButton_, &QPushButton::clicked, this,
          [this] { application_.updates().downloadAndInstall(); });
  buttons->addWidget(checkButton_);
  buttons->addStretch();
  buttons->addWidget(postponeButton_);
  buttons->addWidget(installButton_);
  column.addSpacing(8);
  column.addLayout(buttons);
  auto* note = new TextLabel(
      theme_, TextStyle::caption, TextLabel::Rank::secondary,
      QStringLiteral("Update checks send only a standard HTTPS request for signed release metadata."), this);
  column.addSpacing(8);
  column.addWidget(note);
}

void AppSettingsView::makeAppearance() {
  QVBoxLayout& column = *addSection(QStringLiteral("Appearance"), QStringLiteral("settings.appearance"),
                                    false, ThemeCard::kRing);
  // The cards leave space for the ring of the chosen one; their boards are flush with the column.
  auto* label = new TextLabel(theme_, TextStyle::body, TextLabel::Rank::secondary, "Theme", this);
  label->setContentsMargins(ThemeCard::kRing, 0, 0, 0);
  column.addWidget(label);
  auto* picker = new QWidget(this);
  picker->setObjectName(QStringLiteral("settings.theme"));
  picker->setAccessibleName(QStringLiteral("Theme"));
  auto* row = new QHBoxLayout(picker);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(10);
  for (const AppearanceMode mode : kAppearanceModes) {
    auto* card = new ThemeCard(theme_, mode, picker);
    connect(card, &QRadioButton::clicked, this,
            [this, mode] { application_.settings().setAppearanceMode(mode); });
    row->addWidget(card);
    themeCards_.push_back(card);
  }
  row->addStretch();
  column.addWidget(picker);
}

void AppSettingsView::makeAutoSave() {
  QVBoxLayout& column = *addSection(QStringLiteral("Auto-save"), QStringLiteral("settings.autoSave"), false);
  auto* first = new QHBoxLayout;
  first->addWidget(new TextLabel(theme_, TextStyle::body, TextLabel::Rank::primary, "Enable auto-save", this),
                   1);
  autoSaveSwitch_ = new Switch(theme_, {}, this);
  autoSaveSwitch_->setObjectName(QStringLiteral("settings.autoSaveEnabled"));
  autoSaveSwitch_->setAccessibleName(QStringLiteral("Enable auto-save"));
  connect(autoSaveSwitch_, &QCheckBox::clicked, this,
          [this](bool enabled) { application_.settings().setAutoSaveEnabled(enabled); });
  first->addWidget(autoSaveSwitch_);
  column.addLayout(first);
  auto* second = new QHBoxLayout;
  second->addWidget(new TextLabel(theme_, TextStyle::body, TextLabel::Rank::primary, "Save every", this), 1);
  interval_ =
      new Stepper(theme_, kShortestAutoSaveMinutes, kLongestAutoSaveMinutes, QStringLiteral(" min"), this);
  interval_->setObjectName(QStringLiteral("settings.autoSaveInterval"));
  interval_->field()->setAccessibleName(QStringLiteral("Save every, minutes"));
  connect(interval_, &Stepper::changed, this,
          [this](int minutes) { application_.settings().setAutoSaveIntervalMinutes(minutes); });
  second->addWidget(interval_);
  column.addLayout(second);
}

void AppSettingsView::makeProjectsFolder() {
  QVBoxLayout& column =
      *addSection(QStringLiteral("Projects folder"), QStringLiteral("settings.projectsFolder"), true);
  pathBox_ = new SettingsBox(theme_, true, this);
  pathBox_->setFixedHeight(32);
  auto* inside = new QHBoxLayout(pathBox_);
  inside->setContentsMargins(33, 0, 10, 0);
  path_ = new TextLabel(theme_, TextStyle::mono, TextLabel::Rank::primary, {}, pathBox_);
  path_->setObjectName(QStringLiteral("settings.projectsFolderPath"));
  path_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  inside->addWidget(path_, 1);
  column.addWidget(pathBox_);

  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  auto* choose = new Button(theme_, Button::Kind::outlined, QStringLiteral("Choose Folder…"), this);
  choose->setObjectName(QStringLiteral("settings.chooseFolder"));
  const QString defaultName = qtText(application_.settings().defaultProjectsFolder().filename().string());
  auto* useDefault =
      new Button(theme_, Button::Kind::outlined, QStringLiteral("Use Default (%1)").arg(defaultName), this);
  useDefault->setObjectName(QStringLiteral("settings.useDefaultFolder"));
  connect(choose, &QPushButton::clicked, this, [this] {
    application_.chooseProjectsFolder([this](const FilePath& folder) {
      setFolder([this, folder] { application_.settings().setCustomProjectsFolder(folder); });
    });
  });
  connect(useDefault, &QPushButton::clicked, this,
          [this] { setFolder([this] { application_.settings().useDefaultProjectsFolder(); }); });
  buttons->addWidget(choose);
  buttons->addWidget(useDefault);
  buttons->addStretch();
  column.addLayout(buttons);
  folderError_ = new TextLabel(theme_, TextStyle::small, TextLabel::Rank::primary, {}, this);
  folderError_->setObjectName(QStringLiteral("settings.projectsFolderError"));
  folderError_->setWordWrap(true);
  folderError_->hide();
  column.addWidget(folderError_);
}

void AppSettingsView::setFolder(const std::function<void()>& set) {
  try {
    set();
    folderError_->hide();
    if (projectsFolderChanged_) projectsFolderChanged_();
  } catch (const UserError& error) {
    folderError_->setText(QString::fromUtf8(error.what()));
    folderError_->show();
  }
}

void AppSettingsView::refreshUpdates() {
  using Case = AppUpdateStatus::Case;
  const AppUpdateManager& updates = application_.updates();
  const auto showValue = [](TextLabel& label, const QString& value, const char* missing) {
    label.setText(value.isEmpty() ? QString(missing) : value);
    label.setRank(value.isEmpty() ? TextLabel::Rank::secondary : TextLabel::Rank::primary);
  };
  showValue(*currentVersion_, qtText(updates.currentDisplayVersion()), "Unknown");
  showValue(*latestVersion_, qtText(updates.latestVersion->value_or("")), "Unknown");
  const auto& checked = *updates.lastCheckedAt;
  showValue(*lastChecked_,
            checked ? relativeDateText(*checked, application_.host().scheduler.now()) : QString(), "Never");

  const Case status = updates.status->value;
  const bool isAvailable = status == Case::updateAvailable || status == Case::postponed;
  status_->setText(qtText(updates.statusText()));
  const bool hasDot = status == Case::updateAvailable;
  // A build that has no feed to ask has not failed at anything.
  const bool hasFeed = updates.feedURL().has_value();
  const bool hasAlert = status == Case::failed && hasFeed;
  status_->setRank(hasFeed ? TextLabel::Rank::primary : TextLabel::Rank::secondary);
  statusMark_->setVisible(hasDot || hasAlert);
  if (hasDot || hasAlert) {
    const qreal ratio = devicePixelRatioF();
    QPixmap mark(QSize(22, 20) * ratio);
    mark.setDevicePixelRatio(ratio);
    mark.fill(Qt::transparent);
    QPainter painter(&mark);
    painter.setRenderHint(QPainter::Antialiasing);
    if (hasDot) {
      painter.setPen(Qt::NoPen);
      painter.setBrush(theme_.active());
      painter.drawEllipse(QRectF(0, 6.5, 7, 7));
      statusMark_->setFixedWidth(15);
    } else {
      paintIcon(painter, Icon::alert, QRectF(0, 0, 16, 20), 16, theme_.destructive());
      statusMark_->setFixedWidth(22);
    }
    painter.end();
    statusMark_->setPixmap(mark);
  }
  progressRow_->setVisible(updates.downloadProgress->has_value());
  progress_->setValue(static_cast<int>(std::lround(updates.downloadProgress->value_or(0) * 1000)));

  // After a failed download the update is still there, and the user may try again.
  const bool canInstall = updates.availableUpdate->has_value() && (isAvailable || status == Case::failed);
  const bool isBusy = updates.isBusy();
  checkButton_->setEnabled(!isBusy);
  postponeButton_->setVisible(updates.availableUpdate->has_value() && isAvailable);
  installButton_->setVisible(canInstall || (isBusy && updates.availableUpdate->has_value()));
  installButton_->setEnabled(canInstall && !isBusy);
  showChanges();
}

void AppSettingsView::showChanges() {
  const auto& available = *application_.updates().availableUpdate;
  changesBox_->setVisible(available.has_value());
  if (available == shownUpdate_) return;
  shownUpdate_ = available;
  while (QLayoutItem* item = changes_->takeAt(0)) {
    if (item->widget() != nullptr) item->widget()->deleteLater();
    delete item;
  }
  if (!available) return;
  const UpdateSummary summary = updateSummary(*available, kChangeLines);
  for (const AppUpdateChangeGroup& group : summary.groups) {
    changes_->addSpacing(6);
    changes_->addWidget(new TextLabel(theme_, TextStyle::smallStrong, TextLabel::Rank::primary,
                                      QStringLiteral("Version ") + qtText(group.version), changesBox_));
    for (const std::string& change : group.changes) {
      auto* line = new TextLabel(theme_, TextStyle::small, TextLabel::Rank::primary,
                                 QStringLiteral("–  ") + qtText(change), changesBox_);
      line->setWordWrap(true);
      changes_->addWidget(line);
    }
  }
  omitted_->setText(summary.omittedChanges == 0
                        ? QString()
                        : QStringLiteral("%1 more in full release notes").arg(summary.omittedChanges));
  fullNotes_->setVisible(summary.fullNotesURL.has_value());
}

void AppSettingsView::refreshSettings() {
  const AppSettings& settings = application_.settings();
  for (ThemeCard* card : themeCards_) card->setChecked(card->mode() == *settings.appearanceMode);
  autoSaveSwitch_->setChecked(*settings.autoSaveEnabled);
  interval_->setEnabled(*settings.autoSaveEnabled);
  interval_->setValue(*settings.autoSaveIntervalMinutes);
  const auto& folder = *settings.projectsFolderURL;
  const QString text = folder ? qtText(folder->string())
                              : QStringLiteral("Not set — required for auto-save of new documents.");
  path_->setFont(fontOf(folder ? TextStyle::mono : TextStyle::small));
  path_->setRank(folder ? TextLabel::Rank::primary : TextLabel::Rank::secondary);
  path_->setToolTip(text);
  path_->setText(path_->fontMetrics().elidedText(text, Qt::ElideMiddle, kWidth - 2 * 32 - kTitleColumn - 46));
}

// --- The window

SettingsWindow::SettingsWindow(Application& application, Theme& theme,
                               std::function<void()> projectsFolderChanged, QWidget* mainWindow)
    : QWidget(mainWindow,
              Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::CustomizeWindowHint),
      scroll_(new QScrollArea(this)),
      view_(new AppSettingsView(application, theme, std::move(projectsFolderChanged))) {
  setObjectName(QStringLiteral("settingsWindow"));
  setWindowTitle(QStringLiteral("Settings"));
  scroll_->setWidget(view_);
  scroll_->setWidgetResizable(true);
  scroll_->setFrameShape(QFrame::NoFrame);
  scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll_->viewport()->setAutoFillBackground(false);
  view_->setAutoFillBackground(false);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(scroll_);
  view_->installEventFilter(this);
}

void SettingsWindow::open() {
  fitContent();
  show();
  raise();
  activateWindow();
}

// As high as what it shows, as far as that fits on the screen; the rest is scrolled to.
void SettingsWindow::fitContent() {
  const int wanted = view_->sizeHint().height();
  const int room = screen() != nullptr ? screen()->availableGeometry().height() - kScreenMargin : wanted;
  const int scrollBar = wanted > room ? scroll_->verticalScrollBar()->sizeHint().width() : 0;
  setFixedSize(AppSettingsView::kWidth + scrollBar, std::min(wanted, room));
}

// An update that is found, or a download that begins, changes the height.
bool SettingsWindow::eventFilter(QObject* object, QEvent* event) {
  if (object == view_ && event->type() == QEvent::LayoutRequest) {
    QTimer::singleShot(0, this, [this] { fitContent(); });
  }
  return QWidget::eventFilter(object, event);
}

void SettingsWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
    return;
  }
  QWidget::keyPressEvent(event);
}

}  // namespace ostrelon
