// A button that shows the colour it stands for.
#pragma once

#include "ui/controls/DialogControls.h"

namespace ui {

class ColorButton final : public Button {
  Q_OBJECT

 public:
  // What the desktop's own colour is.
  enum class Automatic : bool { kText, kBase };

  ColorButton(const char* name, const QString& caption, Automatic automatic, std::function<void()> click);
  // Colours are 0x00BBGGRR; any below 0 is the automatic one.
  void SetColor(int64_t color);
  int64_t color() const { return color_; }
  int64_t shownColor() const;            // never below 0
  static QString NameOf(int64_t color);  // "#rrggbb" or "Automatic"

 private:
  const Automatic automatic_;
  int64_t color_ = -1;
};

}  // namespace ui
