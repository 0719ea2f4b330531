// Font, size, emphasis and colour in one dialog.
#pragma once

#include "ui/Dialogs.h"
#include "ui/dialogs/ModalForm.h"

class QFontDialog;

namespace ui {

class ColorButton;

class FontForm : public ModalForm {
  Q_OBJECT

 public:
  // `custom` is that of the colour dialog and outlives the form.
  FontForm(const FontChoice& initial, CustomColors& custom, QWidget* owner = nullptr);

  // What the user changed, everything else as it was given: a family that is not installed stays as it is named.
  FontChoice choice() const;
  QFontDialog& fonts() { return *fonts_; }
  void SetColor(int64_t color);
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void KeepEmphasis(const QFont& now);
  void AddColorRow();
  void HideEffects();
  void PickColor();

  const FontChoice initial_;
  CustomColors& custom_;
  QFont shown_;  // what the dialog made of the initial choice
  QFont last_;   // what it showed last
  QFontDialog* fonts_;
  ColorButton* colorButton_;
};

}  // namespace ui
