// A program on a virtual clock with windows that are never shown to anyone, for tests of the windows.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QTest>

#include "shell/theme.h"
#include "support/test_application.h"

namespace ostrelon::testing {

/// The theme of the whole test program: the base style keeps to it as long as the application lives.
inline Theme& sharedTheme() {
  static Theme* theme = [] {
    auto* made = new Theme(QCoreApplication::instance());
    installBaseStyle(*made);
    made->setPalette(lightPalette());
    return made;
  }();
  return *theme;
}

struct WindowFixture : ::testing::Test, TestApplication {
  Theme& theme = sharedTheme();

  /// Lets everything run that is due on Qt's loop and, at the present moment, on the clock.
  void settle() {
    for (int i = 0; i < 3; ++i) {
      scheduler.advance(Seconds(0));
      QApplication::processEvents();
      QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
  }
  void run(const char* line) {
    submit(line);
    settle();
  }
  std::string lastLine() const { return messages.lines->back().text; }

  /// Shows a window and gives it the focus.
  static void present(QWidget& window) {
    window.show();
    window.activateWindow();
    static_cast<void>(QTest::qWaitForWindowActive(&window, 1000));
  }
  template <class Widget = QAbstractButton>
  static Widget* find(const QWidget& window, const char* identifier) {
    auto* found = window.findChild<Widget*>(identifier);
    EXPECT_NE(found, nullptr) << identifier;
    return found;
  }
  void press(const QWidget& window, const char* identifier) {
    if (auto* button = find(window, identifier)) QTest::mouseClick(button, Qt::LeftButton);
    settle();
  }
  static void type(QWidget& field, const char* text) { QTest::keyClicks(&field, text); }
};

}  // namespace ostrelon::testing
