// The tests of the windows run with one application object, without a display.
#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  // Pictures are compared at one device pixel a view point, whatever the desktop is set to.
  qputenv("QT_SCALE_FACTOR", "1");
  ::testing::InitGoogleTest(&argc, argv);
  const QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
