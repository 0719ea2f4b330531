#include "ui/controls/ColorButton.h"

#include "ui/dialogs/ColorNumber.h"

#include <QPainter>

namespace ui {

ColorButton::ColorButton(const char* name, const QString& caption, Automatic automatic, std::function<void()> click)
    : Button(name, caption, std::move(click)), automatic_(automatic) {}

int64_t ColorButton::shownColor() const {
  if (color_ >= 0) return color_;
  return FromQColor(palette().color(automatic_ == Automatic::kText ? QPalette::Text : QPalette::Base));
}

void ColorButton::SetColor(int64_t color) {
  color_ = color;
  QPixmap swatch(32, 16);
  swatch.fill(ToQColor(shownColor()));
  // Seen too where the colour is that of the button.
  QPainter painter(&swatch);
  painter.setPen(palette().color(QPalette::Mid));
  painter.drawRect(swatch.rect().adjusted(0, 0, -1, -1));
  setIconSize(swatch.size());
  setIcon(swatch);
  setAccessibleDescription(NameOf(color));
}

QString ColorButton::NameOf(int64_t color) {
  return color < 0 ? tr("Automatic") : ToQColor(color).name();
}

}  // namespace ui
