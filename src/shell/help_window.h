// A page of help in a window of its own: the manual, the keys.
#pragma once

#include <QTextBrowser>
#include <QWidget>

#include "shell/theme.h"

namespace ostrelon {

/// Shows Markdown in the colours and types of the theme. Pictures wider than the page are scaled to it.
class HelpPage final : public QTextBrowser {
 public:
  explicit HelpPage(Theme& theme, QWidget* parent = nullptr);

  /// `base`: where the page's pictures and links are found.
  void showMarkdown(const QString& markdown, const QUrl& base = {});

 protected:
  QVariant loadResource(int type, const QUrl& name) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void dress();

  Theme& theme_;
  QString markdown_;
  QUrl base_;
  int shownWidth_ = 0;
};

class HelpWindow final : public QWidget {
 public:
  HelpWindow(Theme& theme, const QString& title, const QString& identifier, QWidget* mainWindow);
  HelpPage& page() { return *page_; }
  void open();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  HelpPage* page_;
};

/// The manual that the program carries with it.
void showManual(HelpWindow& window);

}  // namespace ostrelon
