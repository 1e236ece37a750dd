#include "shell/settings_window.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QScrollArea>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "app/update_summary.h"
#include "platform/user_error.h"
#include "shell/date_text.h"
#include "shell/qt_text.h"
#include "shell/rows_view.h"

namespace ostrelon {
namespace {

constexpr int kTitleColumn = 152;
constexpr int kLabelColumn = 116;
constexpr std::size_t kChangeLines = 6;

const char* modeIdentifier(AppearanceMode mode) {
  switch (mode) {
    case AppearanceMode::system:
      return "settings.theme.system";
    case AppearanceMode::light:
      return "settings.theme.light";
    case AppearanceMode::dark:
      return "settings.theme.dark";
    case AppearanceMode::tansy:
      return "settings.theme.tansy";
  }
  return "";
}

// A board in small: panel, grid, walls, and a line under the hand.
void paintBoard(QPainter& painter, const QRectF& board, const ThemePalette& palette) {
  painter.fillRect(board, qtColor(palette.background));
  painter.setPen(QPen(qtColor(palette.border), 1));
  for (double x = board.left() + 42.5; x < board.right(); x += 16) {
    painter.drawLine(QPointF(x, board.top()), QPointF(x, board.bottom()));
  }
  for (double y = board.top() + 9.5; y < board.bottom(); y += 16) {
    painter.drawLine(QPointF(board.left() + 28, y), QPointF(board.right(), y));
  }
  const QRectF panel(board.left(), board.top(), 28, board.height());
  painter.fillRect(panel, qtColor(palette.card));
  painter.setPen(Qt::NoPen);
  painter.setBrush(qtColor(filledPair(palette).first));
  painter.drawRoundedRect(QRectF(panel.left() + 5, panel.top() + 15, 18, 6), 2, 2);
  painter.setBrush(qtColor(palette.mutedForeground));
  for (const auto& [y, width] : {std::pair{27.0, 12.0}, std::pair{35.0, 15.0}, std::pair{43.0, 11.0}}) {
    painter.drawRect(QRectF(panel.left() + 6, panel.top() + y, width, 2));
  }
  painter.setBrush(Qt::NoBrush);
  QPen wall(qtColor(palette.foreground), 2.5);
  wall.setJoinStyle(Qt::MiterJoin);
  wall.setCapStyle(Qt::FlatCap);
  painter.setPen(wall);
  const double left = board.left() + 42;
  const double top = board.top() + 24;
  QPainterPath walls(QPointF(left + 30, top + 34));
  walls.lineTo(left, top + 34);
  walls.lineTo(left, top);
  walls.lineTo(left + 56, top);
  walls.lineTo(left + 56, top + 34);
  walls.lineTo(left + 46, top + 34);
  painter.drawPath(walls);
  const QColor active = qtColor(palette.active);
  painter.setPen(QPen(active, 2.5));
  painter.drawLine(QPointF(left, top + 17), QPointF(left + 28, top + 17));
  painter.setPen(Qt::NoPen);
  painter.setBrush(active);
  for (const double x : {left, left + 28}) painter.drawEllipse(QPointF(x, top + 17), 2.6, 2.6);
}

}  // namespace

// --- The theme cards

ThemeCard::ThemeCard(Theme& theme, AppearanceMode mode, QWidget* parent)
    : QRadioButton(qtText(displayName(mode)), parent), theme_(theme), mode_(mode) {
  setObjectName(modeIdentifier(mode));
  setFocusPolicy(Qt::TabFocus);
  setProperty("focusRadius", 10);
  setFixedSize(sizeHint());
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void ThemeCard::keyPressEvent(QKeyEvent* event) {
  if (isPressingKey(*event)) {
    click();
    return;
  }
  QRadioButton::keyPressEvent(event);
}

void ThemeCard::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF board(4, 5, 112, 72);
  QPainterPath outline;
  outline.addRoundedRect(board, 6, 6);
  painter.save();
  painter.setClipPath(outline);
  switch (mode_) {
    case AppearanceMode::system:
      paintBoard(painter, board, lightPalette());
      painter.setClipRect(QRectF(board.center().x(), board.top(), board.width() / 2, board.height()),
                          Qt::IntersectClip);
      paintBoard(painter, board, darkPalette());
      break;
    case AppearanceMode::light:
      paintBoard(painter, board, lightPalette());
      break;
    case AppearanceMode::dark:
      paintBoard(painter, board, darkPalette());
      break;
    case AppearanceMode::tansy:
      paintBoard(painter, board, tansyPalette());
      break;
  }
  painter.restore();
  paintBox(painter, board, 6, QColor(), theme_.border());
  if (isChecked()) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(theme_.foreground(), 2));
    painter.drawRoundedRect(board.adjusted(-3, -4, 3, 4).adjusted(0, 0, 0, 0), 9, 9);
  }
  const QFont font = fontOf(isChecked() ? TextStyle::bodyStrong : TextStyle::body);
  painter.setFont(font);
  painter.setPen(theme_.foreground());
  const int words = QFontMetrics(font).horizontalAdvance(text());
  const int mark = isChecked() ? 14 + 4 : 0;
  int x = static_cast<int>(board.center().x()) - (words + mark) / 2;
  const int y = static_cast<int>(board.bottom()) + 8;
  if (isChecked()) {
    paintIcon(painter, Icon::check, QRectF(x, y, 14, 20), 14, theme_.foreground());
    x += mark;
  }
  painter.drawText(QRect(x, y, words + 4, 20), Qt::AlignVCenter | Qt::AlignLeft, text());
}

// --- The stepper

Stepper::Stepper(Theme& theme, int least, int most, const QString& suffix, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      minus_(new Button(theme, Button::Kind::plain, {}, this)),
      field_(new QSpinBox(this)),
      plus_(new Button(theme, Button::Kind::plain, {}, this)) {
  setFixedSize(31 + 65 + 32, 28);
  field_->setRange(least, most);
  field_->setSuffix(suffix);
  field_->setKeyboardTracking(false);
  field_->setButtonSymbols(QAbstractSpinBox::NoButtons);
  field_->setFrame(false);
  field_->setAlignment(Qt::AlignCenter);
  field_->setFont(fontOf(TextStyle::mono));
  field_->setStyleSheet(QStringLiteral("QSpinBox { background: transparent; border: none; }"));
  field_->setGeometry(32, 1, 64, 26);
  struct StepButton {
    Button* button;
    Icon icon;
    const char* name;
    int x;
    int step;
  };
  for (const StepButton& row :
       {StepButton{minus_, Icon::minus, "Less", 1, -1}, StepButton{plus_, Icon::plus, "More", 97, 1}}) {
    row.button->setIconDrawing(row.icon, 16);
    row.button->setAccessibleName(row.name);
    row.button->setRadius(5);
    row.button->setGeometry(row.x, 1, 30, 26);
    row.button->setAutoRepeat(true);
    connect(row.button, &QPushButton::clicked, this, [this, step = row.step] { stepBy(step); });
  }
  connect(field_, &QSpinBox::valueChanged, this, &Stepper::changed);
  connect(&theme, &Theme::changed, this, [this] { update(); });
}

void Stepper::setValue(int value) {
  const QSignalBlocker quiet(field_);
  field_->setValue(value);
}

void Stepper::stepBy(int steps) { field_->stepBy(steps); }

void Stepper::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paintBox(painter, rect(), 6, theme_.card(), theme_.border());
  painter.fillRect(QRect(31, 0, 1, height()), theme_.border());
  painter.fillRect(QRect(96, 0, 1, height()), theme_.border());
}

// --- Boxes

namespace {

// A box of the canvas' colour inside the window.
class Box final : public QWidget {
 public:
  Box(Theme& theme, bool isField, QWidget* parent) : QWidget(parent), theme_(theme), isField_(isField) {
    connect(&theme, &Theme::changed, this, [this] { update(); });
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isField_) {
      paintBox(painter, rect(), 6, theme_.card(), theme_.border());
      paintIcon(painter, Icon::folder, QRectF(9, 0, 16, height()), 16, theme_.mutedForeground());
    } else {
      paintBox(painter, rect(), 8, theme_.background(), theme_.border());
    }
  }

 private:
  Theme& theme_;
  bool isField_;
};

class ProgressLine final : public QProgressBar {
 public:
  ProgressLine(Theme& theme, QWidget* parent) : QProgressBar(parent), theme_(theme) {
    setTextVisible(false);
    setRange(0, 1000);
    setFixedHeight(4);
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBox(painter, rect(), 2, theme_.border(), QColor());
    const double part = static_cast<double>(value()) / std::max(1, maximum());
    if (part > 0)
      paintBox(painter, QRectF(0, 0, std::max(4.0, width() * part), height()), 2, theme_.accent(), QColor());
  }

 private:
  Theme& theme_;
};

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

QVBoxLayout* AppSettingsView::addSection(const QString& title, const QString& identifier, bool isLast) {
  auto* section = new QWidget(this);
  section->setObjectName(identifier);
  section->setAccessibleName(title);
  auto* row = new QHBoxLayout(section);
  row->setContentsMargins(32, 24, 32, 24);
  row->setSpacing(0);
  auto* heading = new TextLabel(theme_, TextStyle::title, TextLabel::Rank::primary, title, section);
  heading->setFixedWidth(kTitleColumn);
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

  changesBox_ = new Box(theme_, false, this);
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
    if (shownUpdate_ && shownUpdate_->latestRelease.releaseNotesURL) {
      QDesktopServices::openUrl(QUrl(qtText(*shownUpdate_->latestRelease.releaseNotesURL)));
    }
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
  QVBoxLayout& column =
      *addSection(QStringLiteral("Appearance"), QStringLiteral("settings.appearance"), false);
  column.addWidget(new TextLabel(theme_, TextStyle::body, TextLabel::Rank::secondary, "Theme", this));
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
  pathBox_ = new Box(theme_, true, this);
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
  const bool hasAlert = status == Case::failed;
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
  setFixedWidth(AppSettingsView::kWidth);
}

void SettingsWindow::open() {
  if (!isVisible()) {
    const int wanted = view_->sizeHint().height();
    const int room = screen() != nullptr ? screen()->availableGeometry().height() - 80 : wanted;
    resize(AppSettingsView::kWidth, std::min(wanted, room));
  }
  show();
  raise();
  activateWindow();
}

void SettingsWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
    return;
  }
  QWidget::keyPressEvent(event);
}

}  // namespace ostrelon
