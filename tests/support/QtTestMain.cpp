// The main function of test programs that need Qt: off screen, English, with the program's own fonts.
#include <QApplication>
#include <QLocale>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
  QApplication application(argc, argv);
  QApplication::setApplicationName("Quillmark");
  return RUN_ALL_TESTS();
}
