#include "shell/sheets.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/dialogs.h"
#include "platform/user_error.h"
#include "shell/accessibility.h"
#include "shell/date_text.h"
#include "shell/picture_shelf.h"
#include "shell/qt_text.h"

namespace ostrelon {
namespace {

constexpr int kSheetWidth = 480;
constexpr int kSheetPadding = 32;

TextLabel* addText(DialogSheet& sheet, Theme& theme, TextStyle style, const QString& text) {
  auto* label = new TextLabel(theme, style, TextLabel::Rank::primary, text);
  label->setWordWrap(true);
  sheet.content().addWidget(label);
  return label;
}

// The document that the offer is about.
class CandidateBox final : public QWidget {
 public:
  CandidateBox(Theme& theme, const AutoSaveRecoveryCandidate& candidate) : theme_(theme) {
    setFixedHeight(56);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 8, 16, 8);
    column->setSpacing(0);
    auto* name = new TextLabel(theme, TextStyle::bodyStrong, TextLabel::Rank::primary,
                               qtText(candidate.displayName), this);
    name->setObjectName(QStringLiteral("autoSaveRecovery.name"));
    name->setElision(Qt::ElideMiddle);
    column->addWidget(name);
    if (candidate.savedAt) {
      column->addWidget(new TextLabel(theme, TextStyle::small, TextLabel::Rank::primary,
                                      QStringLiteral("Autosaved ") + abbreviatedDateText(*candidate.savedAt),
                                      this));
    }
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBox(painter, rect(), 8, theme_.background(), theme_.border());
  }

 private:
  Theme& theme_;
};

constexpr std::size_t kMostJournalRows = 4;
constexpr int kJournalSheetWidth = 560;
constexpr QSize kJournalPictureSize(76, 56);

// What recovering a journal would bring back, drawn once it has been read.
class JournalPicture final : public QWidget {
 public:
  JournalPicture(Application& application, Theme& theme, PictureShelf& shelf, const RecoverableJournal& offer)
      : theme_(theme), shelf_(shelf), key_(qtText(offer.id)), read_(application.drawingOfJournal(offer.id)) {
    setFixedSize(shelf.size());
    setAccessibleRole(*this, QAccessible::Graphic);
    setAccessibleName(QStringLiteral("Picture of %1").arg(qtText(offer.documentName)));
    connect(&shelf, &PictureShelf::arrived, this, [this] {
      setAccessibleDescription(shelf_.content(key_));
      setToolTip(shelf_.content(key_));
      update();
    });
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    const SmallPicture* picture = shelf_.find(key_, read_, devicePixelRatioF());
    if (picture != nullptr && !picture->image.isNull()) {
      painter.drawImage(QPoint(0, 0), picture->image);
    } else {
      painter.fillRect(rect(), theme_.background());
    }
    paintBox(painter, rect(), 2, QColor(), theme_.border());
  }

 private:
  Theme& theme_;
  PictureShelf& shelf_;
  QString key_;
  PictureShelf::Read read_;
};

constexpr const char* kDiscard = "Discard";

QString journalText(const RecoverableJournal& offer) {
  QString text =
      offer.changes == 1 ? QStringLiteral("1 change") : QStringLiteral("%1 changes").arg(offer.changes);
  if (!offer.path) text += QStringLiteral(", never saved");
  return offer.changedAt ? text + QStringLiteral(", ") + abbreviatedDateText(*offer.changedAt) : text;
}

void tellFailure(Application& application, const UserError& error) {
  application.workspace().messages.showToast(error.what(), DocumentToastState::Style::error);
}

void recover(Application& application, const std::string& id) {
  try {
    application.recoverJournal(id);
  } catch (const UserError& error) {
    tellFailure(application, error);
    return;
  }
  // What else there is would take the place of what has just come back.
  application.keepJournalsForLater();
  application.skipAutoSaveRecovery();
}

void askAndDiscard(Application& application, const RecoverableJournal& offer) {
  const Alert alert{"Do you want to discard the unsaved changes of " + offer.documentName + "?",
                    "They cannot be brought back.",
                    {"Cancel", kDiscard},
                    0,
                    1};
  application.host().dialogs.ask(alert, [&application, id = offer.id](const DialogAnswer& answer) {
    if (answer != kDiscard) return;
    try {
      application.discardJournal(id);
    } catch (const UserError& error) {
      tellFailure(application, error);
    }
  });
}

}  // namespace

ProjectsFolderSetupView::ProjectsFolderSetupView(Application& application, Theme& theme, QWidget& window)
    : DialogSheet(theme, window, kSheetWidth, kSheetPadding) {
  setObjectName(QStringLiteral("projectsFolderSetup"));
  setAccessibleName(QStringLiteral("Welcome to Ostrelon"));
  auto* logo = new QLabel;
  logo->setFixedHeight(40);
  const auto paint = [this, logo, &theme] { logo->setPixmap(logoPixmap(40, theme, devicePixelRatioF())); };
  paint();
  connect(&theme, &Theme::changed, logo, paint);
  content().addWidget(logo);
  content().addSpacing(16);
  addText(*this, theme, TextStyle::display, QStringLiteral("Welcome to Ostrelon"));
  content().addSpacing(8);
  addText(
      *this, theme, TextStyle::body,
      QStringLiteral("Choose where new projects are saved. Auto-save and untitled projects use this folder. "
                     "You can change it later in Settings."));
  error_ = addText(*this, theme, TextStyle::small, {});
  error_->setObjectName(QStringLiteral("projectsFolderSetup.error"));
  error_->hide();

  Button* choose = addButton(QStringLiteral("Choose Another Folder…"), Button::Kind::outlined,
                             QStringLiteral("projectsFolderSetup.chooseFolder"));
  Button* useDefault = addButton(QStringLiteral("Use default projects folder"), Button::Kind::primary,
                                 QStringLiteral("projectsFolderSetup.useDefault"));
  setDefaultButton(useDefault);
  setFirstFocus(useDefault);
  const auto set = [this, &application](const std::function<void()>& setFolder) {
    try {
      setFolder();
    } catch (const UserError& error) {
      // The sheet stays until a folder has been set.
      showError(QString::fromUtf8(error.what()));
      return;
    }
    application.completeProjectsFolderSetup();
  };
  connect(useDefault, &QPushButton::clicked, this,
          [set, &application] { set([&] { application.settings().useDefaultProjectsFolder(); }); });
  connect(choose, &QPushButton::clicked, this, [set, &application] {
    application.chooseProjectsFolder([set, &application](const FilePath& folder) {
      set([&] { application.settings().setCustomProjectsFolder(folder); });
    });
  });
}

void ProjectsFolderSetupView::showError(const QString& sentence) {
  error_->setText(sentence);
  error_->show();
  content().invalidate();
  open();
}

AutoSaveRecoverySheet::AutoSaveRecoverySheet(Application& application, Theme& theme, QWidget& window)
    : DialogSheet(theme, window, kSheetWidth, kSheetPadding) {
  setObjectName(QStringLiteral("autoSaveRecovery"));
  setAccessibleName(QStringLiteral("Restore autosave?"));
  addText(*this, theme, TextStyle::display, QStringLiteral("Restore autosave?"));
  content().addSpacing(8);
  addText(*this, theme, TextStyle::body,
          QStringLiteral(
              "Ostrelon did not shut down cleanly last time. You can restore the last autosaved document "
              "or continue with a new session."));
  if (const auto& candidate = *application.settings().autoSaveRecoveryCandidate) {
    content().addSpacing(16);
    auto* box = new CandidateBox(theme, *candidate);
    box->setObjectName(QStringLiteral("autoSaveRecovery.candidate"));
    content().addWidget(box);
  }
  Button* skip =
      addButton(QStringLiteral("Skip"), Button::Kind::outlined, QStringLiteral("autoSaveRecovery.skip"));
  Button* restore = addButton(QStringLiteral("Restore Autosave"), Button::Kind::primary,
                              QStringLiteral("autoSaveRecovery.restore"));
  setDefaultButton(restore);
  setFirstFocus(restore);
  connect(skip, &QPushButton::clicked, this, [&application] { application.skipAutoSaveRecovery(); });
  connect(restore, &QPushButton::clicked, this, [&application] { application.restoreAutoSaveFromOffer(); });
}

JournalRecoverySheet::JournalRecoverySheet(Application& application, Theme& theme, QWidget& window)
    : DialogSheet(theme, window, kJournalSheetWidth, kSheetPadding) {
  setObjectName(QStringLiteral("journalRecovery"));
  setAccessibleName(QStringLiteral("Recover unsaved changes?"));
  addText(*this, theme, TextStyle::display, QStringLiteral("Recover unsaved changes?"));
  content().addSpacing(8);
  addText(
      *this, theme, TextStyle::body,
      QStringLiteral("Ostrelon ended before these changes were saved. Recovering leaves the files as they "
                     "are until you save."));
  const std::vector<RecoverableJournal>& offers = *application.journalOffers;
  auto* shelf = new PictureShelf(application.host().scheduler, theme, kJournalPictureSize, this);
  const auto addRowButton = [&](QHBoxLayout& row, const char* title, const QString& name, auto clicked) {
    auto* button = new Button(theme, Button::Kind::outlined, QString::fromUtf8(title));
    button->setObjectName(name);
    row.addWidget(button);
    addToTabOrder(button);
    connect(button, &QPushButton::clicked, this, clicked);
    return button;
  };
  for (std::size_t i = 0; i < std::min(offers.size(), kMostJournalRows); ++i) {
    const RecoverableJournal offer = offers[i];
    const QString name = QStringLiteral("journalRecovery.%1").arg(i + 1);
    content().addSpacing(16);
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    auto* picture = new JournalPicture(application, theme, *shelf, offer);
    picture->setObjectName(name + QStringLiteral(".picture"));
    row->addWidget(picture);
    row->addSpacing(4);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addStretch();
    auto* title =
        new TextLabel(theme, TextStyle::bodyStrong, TextLabel::Rank::primary, qtText(offer.documentName));
    title->setObjectName(name + QStringLiteral(".name"));
    title->setElision(Qt::ElideMiddle);
    if (offer.path) title->setToolTip(qtText(offer.path->string()));
    texts->addWidget(title);
    auto* story = new TextLabel(theme, TextStyle::small, TextLabel::Rank::primary, journalText(offer));
    story->setElision(Qt::ElideRight);
    texts->addWidget(story);
    texts->addStretch();
    row->addLayout(texts, 1);
    addRowButton(*row, kDiscard, name + QStringLiteral(".discard"),
                 [&application, offer] { askAndDiscard(application, offer); });
    Button* first = addRowButton(*row, "Recover", name + QStringLiteral(".recover"),
                                 [&application, id = offer.id] { recover(application, id); });
    if (i == 0) setFirstFocus(first);
    content().addLayout(row);
  }
  if (offers.size() > kMostJournalRows) {
    content().addSpacing(16);
    addText(*this, theme, TextStyle::small,
            QStringLiteral("%1 more are offered by the next start.").arg(offers.size() - kMostJournalRows));
  }
  Button* later = addButton(QStringLiteral("Keep for Later"), Button::Kind::outlined,
                            QStringLiteral("journalRecovery.later"));
  setCancelButton(later);
  connect(later, &QPushButton::clicked, this, [&application] { application.keepJournalsForLater(); });
}

SheetPresenter::SheetPresenter(Application& application, Theme& theme, QWidget& window)
    : QObject(&window), application_(application), theme_(theme), window_(window) {
  subscription_ =
      application.observe([this](FieldMask) { QTimer::singleShot(0, this, [this] { refresh(); }); });
  refresh();
}

void SheetPresenter::refresh() {
  const bool setupIsDue = *application_.showProjectsFolderSetup;
  const bool journalsAreDue = !application_.journalOffers->empty() && !setupIsDue;
  const bool recoveryIsDue = *application_.showAutoSaveRecoveryOffer && !setupIsDue && !journalsAreDue;
  const auto follow = [](QPointer<DialogSheet>& sheet, bool isDue, auto make) {
    if (isDue && sheet == nullptr) {
      sheet = make();
      sheet->open();
    } else if (!isDue && sheet != nullptr) {
      sheet->hide();
      sheet->deleteLater();
      sheet = nullptr;
    }
  };
  follow(setup_, setupIsDue, [this] { return new ProjectsFolderSetupView(application_, theme_, window_); });
  // One that was discarded goes from the sheet.
  if (application_.journalOffers.get() != shownJournals_) follow(journals_, false, [] { return nullptr; });
  shownJournals_ = application_.journalOffers;
  follow(journals_, journalsAreDue,
         [this] { return new JournalRecoverySheet(application_, theme_, window_); });
  follow(recovery_, recoveryIsDue,
         [this] { return new AutoSaveRecoverySheet(application_, theme_, window_); });
}

}  // namespace ostrelon
