#include "ui/desktop/ProgramStyle.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QStyleOption>
#include <QWidget>
#include <gtest/gtest.h>

namespace {

// The lightest pixel of what is painted with this palette.
template <class Option, class Paint>
int Lightest(const QPalette& palette, Option option, Paint paint) {
  const ui::ProgramStyle style;
  QImage image(120, 24, QImage::Format_RGB32);
  image.fill(palette.color(QPalette::Base));
  option.palette = palette;
  QPainter painter(&image);
  paint(style, option, painter);
  int lightest = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) lightest = std::max(lightest, QColor(image.pixel(x, y)).lightness());
  return lightest;
}

TEST(ProgramStyle, WhatIsBlackElsewhereIsSeen) {
  const QPalette dark(QColor(40, 40, 40), QColor(30, 30, 30));
  for (const auto element : {QStyle::PE_IndicatorCheckBox, QStyle::PE_IndicatorRadioButton}) {
    QStyleOptionButton box;
    box.rect = QRect(2, 2, 13, 13);
    box.state = QStyle::State_Enabled | QStyle::State_Off;
    EXPECT_GT(Lightest(dark, box,
                       [&](const auto& style, const auto& option, QPainter& painter) {
                         style.drawPrimitive(element, &option, &painter, nullptr);
                       }),
              110)
        << element;
  }
  QStyleOptionTitleBar bar;
  bar.rect = QRect(0, 0, 120, 24);
  bar.subControls = QStyle::SC_TitleBarCloseButton;
  bar.titleBarFlags = Qt::WindowSystemMenuHint | Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint | Qt::Window;
  EXPECT_GT(Lightest(dark, bar,
                     [](const auto& style, const auto& option, QPainter& painter) {
                       style.drawComplexControl(QStyle::CC_TitleBar, &option, &painter, nullptr);
                     }),
            150);
}

TEST(ProgramStyle, TheButtonsOfADocumentThatFillsTheAreaFollowThePalette) {
  const QPalette before = QApplication::palette();
  const QPalette dark(QColor(40, 40, 40), QColor(30, 30, 30));
  QApplication::setPalette(dark);
  for (const auto button : {QStyle::SC_MdiMinButton, QStyle::SC_MdiNormalButton, QStyle::SC_MdiCloseButton}) {
    QStyleOptionComplex buttons;
    buttons.rect = QRect(0, 0, 60, 22);
    buttons.subControls = button;
    EXPECT_GT(Lightest(dark, buttons,
                       [](const auto& style, const auto& option, QPainter& painter) {
                         style.drawComplexControl(QStyle::CC_MdiControls, &option, &painter, nullptr);
                       }),
              180)
        << button;
  }
  QApplication::setPalette(before);
}

TEST(ProgramStyle, ANarrowTitleBarShowsTheEnd) {
  const auto painted = [](const QString& title) {
    const ui::ProgramStyle style;
    QWidget window;
    window.setWindowTitle(title);
    QStyleOptionTitleBar bar;
    bar.rect = QRect(0, 0, 160, 24);
    bar.subControls = QStyle::SC_TitleBarLabel;
    bar.titleBarFlags = Qt::WindowSystemMenuHint | Qt::WindowTitleHint | Qt::Window;
    QImage image(160, 24, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    style.drawComplexControl(QStyle::CC_TitleBar, &bar, &painter, &window);
    return image;
  };
  const QString folder = "/home/me/texts/of/this/and/that/year/";
  EXPECT_EQ(painted(folder + "name.txt"), painted("/another" + folder + "name.txt"));
  EXPECT_NE(painted(folder + "name.txt"), painted(folder + "game.txt"));
}

}  // namespace
