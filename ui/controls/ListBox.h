// A list of lines.
#pragma once

#include <QListView>

namespace ui {

class ListBox : public QListView {
  Q_OBJECT

 public:
  explicit ListBox(QWidget* parent = nullptr);

  double fontSize() const { return font().pointSizeF(); }
  void SetFontSize(double points);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
};

}  // namespace ui
