// The window of preferences: updates, appearance, auto-save, and the projects folder.
#pragma once

#include <functional>
#include <vector>

#include "app/application.h"
#include "shell/controls.h"
#include "shell/settings_controls.h"

class QVBoxLayout;
class QScrollArea;

namespace ostrelon {

class AppSettingsView final : public QWidget {
  Q_OBJECT

 public:
  static constexpr int kWidth = 720;

  /// `projectsFolderChanged` runs after another folder has been set.
  AppSettingsView(Application& application, Theme& theme, std::function<void()> projectsFolderChanged,
                  QWidget* parent = nullptr);

 private:
  /// A row of title and content. The content may reach `outset` px beyond its column on both sides.
  QVBoxLayout* addSection(const QString& title, const QString& identifier, bool isLast, int outset = 0);
  void makeUpdates();
  void makeAppearance();
  void makeAutoSave();
  void makeProjectsFolder();
  TextLabel* addValueRow(QVBoxLayout& column, const QString& label, const QString& identifier);
  void refreshUpdates();
  void refreshSettings();
  void showChanges();
  void setFolder(const std::function<void()>& set);

  Application& application_;
  Theme& theme_;
  std::function<void()> projectsFolderChanged_;
  QVBoxLayout* sections_;

  TextLabel* currentVersion_ = nullptr;
  TextLabel* latestVersion_ = nullptr;
  TextLabel* lastChecked_ = nullptr;
  QLabel* statusMark_ = nullptr;
  TextLabel* status_ = nullptr;
  QWidget* progressRow_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QWidget* changesBox_ = nullptr;
  QVBoxLayout* changes_ = nullptr;
  TextLabel* omitted_ = nullptr;
  Button* fullNotes_ = nullptr;
  Button* checkButton_ = nullptr;
  Button* postponeButton_ = nullptr;
  Button* installButton_ = nullptr;
  std::optional<AppUpdateAvailability> shownUpdate_;

  std::vector<ThemeCard*> themeCards_;
  Switch* autoSaveSwitch_ = nullptr;
  Stepper* interval_ = nullptr;
  QWidget* pathBox_ = nullptr;
  TextLabel* path_ = nullptr;
  TextLabel* folderError_ = nullptr;

  QTimer* settingsTimer_;
  QTimer* updatesTimer_;
  Subscription settingsSubscription_;
  Subscription updatesSubscription_;
};

class SettingsWindow final : public QWidget {
 public:
  SettingsWindow(Application& application, Theme& theme, std::function<void()> projectsFolderChanged,
                 QWidget* mainWindow);
  void open();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void fitContent();

  QScrollArea* scroll_;
  AppSettingsView* view_;
};

}  // namespace ostrelon
