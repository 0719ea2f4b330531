// A text box with a list of the texts that were used before.
#pragma once

#include <QComboBox>

namespace ui {

class ComboBox : public QComboBox {
  Q_OBJECT

 public:
  explicit ComboBox(const char* name);

  // So many units of text fit in.
  static constexpr int kMostText = 32767;

  QString Text() const;  // its line breaks are CR LF
  void SetText(const QString& text);
  // Selects the list's entry that is exactly the text; without one the text becomes the first entry. Tells no change.
  void AddTextToList();

 Q_SIGNALS:
  void Change();

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool clickedInto_ = false;
};

}  // namespace ui
