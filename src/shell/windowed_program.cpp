#include "shell/windowed_program.h"

#include <fcntl.h>
#include <unistd.h>

#include <QApplication>
#include <QSocketNotifier>
#include <QTimer>
#include <array>
#include <cerrno>
#include <csignal>

#include "app/settings_notes.h"
#include "app/shortcut_page.h"
#include "build_information.h"
#include "platform/disk_file_system.h"
#include "platform/json_user_defaults.h"
#include "platform/user_paths.h"
#include "shell/app_update_network_client.h"
#include "shell/compare_sheet.h"
#include "shell/comparison_panel.h"
#include "shell/drawing_export.h"
#include "shell/export_sheet.h"
#include "shell/icons.h"
#include "shell/import_sheet.h"
#include "shell/installer_opener.h"
#include "shell/merge_panel.h"
#include "shell/print_window.h"
#include "shell/qt_scheduler.h"
#include "shell/qt_text.h"
#include "shell/session_end.h"

namespace ostrelon {

namespace {

// The system asks the program to end: by a signal that says so, or because its terminal is gone. The handler
// may do no more than write; what is to be done follows on the main thread.
class EndSignals {
 public:
  explicit EndSignals(std::function<void()> asked) {
    if (::pipe2(pipe().data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
    notifier_ = std::make_unique<QSocketNotifier>(pipe()[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [asked = std::move(asked)] {
      char byte = 0;
      while (::read(pipe()[0], &byte, 1) > 0) {
      }
      asked();
    });
    struct sigaction action {};
    action.sa_handler = [](int) {
      const int error = errno;
      [[maybe_unused]] const auto written = ::write(pipe()[1], "", 1);
      errno = error;
    };
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGHUP, &action, nullptr);
  }

 private:
  // A handler reaches what is static alone.
  static std::array<int, 2>& pipe() {
    static std::array<int, 2> ends{-1, -1};
    return ends;
  }
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace

WindowedProgram::WindowedProgram(Application& application, Theme& theme, QtDialogs& dialogs)
    : application_(application), theme_(theme), dialogs_(dialogs) {
  theme.setPalette(application.settings().activePalette);
  mainWindow_ = std::make_unique<MainWindow>(application, theme);
  inspector_ = new InspectorWindow(application.workspace(), theme, mainWindow_.get());
  new SheetPresenter(application, theme, *mainWindow_);
  new ComparisonPresenter(application, theme, *mainWindow_);
  new MergePresenter(application, theme, *mainWindow_);
  dialogs.setWindow(mainWindow_.get());
  paletteSubscription_ =
      application.settings().observe(fieldsOf(application.settings().activePalette), [this](FieldMask) {
        QTimer::singleShot(0, &theme_, [this] { theme_.setPalette(application_.settings().activePalette); });
      });
  application.setWindowActions(
      {.showSettings = [this] { settings().open(); },
       .showExport = [this] { (new ExportSheet(application_, theme_, *mainWindow_))->open(); },
       .showImport =
           [this](std::shared_ptr<const DrawingImport> import) {
             (new ImportSheet(application_, theme_, *mainWindow_, std::move(import)))->open();
           },
       .showPrint = [this] { (new PrintWindow(application_, theme_, mainWindow_.get()))->open(); },
       .showCompare =
           [this] {
             (new CompareSheet(application_, theme_, *mainWindow_, CompareSheet::comparing(application_)))
                 ->open();
           },
       .showMerge =
           [this] {
             (new CompareSheet(application_, theme_, *mainWindow_, CompareSheet::merging(application_)))
                 ->open();
           },
       .showManual = [this] { manual().open(); },
       .showShortcuts = [this] { shortcuts().open(); },
       .showHistory = [this] { history().open(); },
       .close = [this] { mainWindow_->close(); }});
}

HelpWindow& WindowedProgram::manual() {
  if (manual_ == nullptr) {
    manual_ = new HelpWindow(theme_, QStringLiteral("Ostrelon Manual"), QStringLiteral("help.manual"),
                             mainWindow_.get());
    showManual(*manual_);
  }
  return *manual_;
}

HelpWindow& WindowedProgram::shortcuts() {
  if (shortcuts_ == nullptr) {
    shortcuts_ = new HelpWindow(theme_, QStringLiteral("Keyboard Shortcuts"),
                                QStringLiteral("help.shortcuts"), mainWindow_.get());
    shortcuts_->resize(560, 720);
    shortcuts_->page().showMarkdown(qtText(shortcutPage()));
  }
  return *shortcuts_;
}

HistoryWindow& WindowedProgram::history() {
  if (history_ == nullptr) {
    history_ = new HistoryWindow(application_, theme_, mainWindow_.get());
    dialogs_.addWindow(history_);
  }
  return *history_;
}

SettingsWindow& WindowedProgram::settings() {
  if (settings_ == nullptr) settings_ = new SettingsWindow(application_, theme_, {}, mainWindow_.get());
  return *settings_;
}

void WindowedProgram::show() {
  mainWindow_->restoreLayout();
  mainWindow_->show();
}

int runWithWindows(int& argc, char** argv, const WindowStart& start) {
  QApplication::setApplicationName(QStringLiteral("Ostrelon"));
  QApplication::setApplicationVersion(QString::fromUtf8(kBuildVersion));
  QApplication::setDesktopFileName(QStringLiteral("org.ostrelon.Ostrelon"));
  QApplication qt(argc, argv);
  QApplication::setWindowIcon(programIcon());

  DiskFileSystem files;
  const UserPaths paths =
      start.home ? userPathsBelow(*start.home) : userPaths(files, [](const std::string& name) {
        return qEnvironmentVariable(name.c_str()).toStdString();
      });
  JsonUserDefaults defaults(files, paths.settingsFile);
  QtScheduler scheduler;
  Theme theme;
  QtDialogs dialogs(theme, qtText(paths.documentsFolder.string()));
  AppUpdateNetworkClient client(paths.temporaryFolder);
  Application application({.host = {scheduler, dialogs, files},
                           .defaults = defaults,
                           .updateClient = client,
                           .openInstaller = openInstallerWithDesktop,
                           .makePicture = drawingPictureBytes},
                          {.documentsFolder = paths.documentsFolder,
                           .updates = updateConfiguration(kBuildVersion, kBuildNumber, kOstrelonUpdateFeedURL,
                                                          kOstrelonUpdateSigningPublicKey),
                           .isUITesting = start.isUITesting,
                           .asksInWindow = true,
                           .opensInBackground = true,
                           .stateFolder = paths.stateFolder});
  application.workspace().sketch.setWorkRunner(
      [&scheduler](const std::function<void()>& work) { scheduler.run(work); });
  // The desktop's scheme is read before the program sets its own colours.
  const ColorSchemeWatcher colorScheme(
      [&application](ColorScheme scheme) { application.settings().updateColorScheme(scheme); });
  installBaseStyle(theme);
  WindowedProgram program(application, theme, dialogs);
  keepTellingSettingsNotes(defaults, application.workspace());
  program.show();
  if (start.document) {
    QTimer::singleShot(0, &theme,
                       [&application, document = *start.document] { application.openDocumentAt(document); });
  }
  if (start.drawing) {
    QTimer::singleShot(0, &theme, [&application, drawing = *start.drawing] {
      importFrom(application, standardizedPath(drawing));
    });
  }
  bool endsBySystem = false;
  const EndSignals endSignals([&] {
    // What cannot be kept is asked about, as a close does.
    endsBySystem = application.endBySystem();
    if (endsBySystem) {
      QApplication::exit(0);
    } else {
      program.mainWindow().close();
    }
  });
  const SessionEnd sessionEnd(application);
  const int status = QApplication::exec();
  if (!endsBySystem && !sessionEnd.hasEnded()) application.willTerminate();
  return status;
}

}  // namespace ostrelon
