// A tree of lines.
#pragma once

#include <QTreeView>

namespace ui {

class TreeView : public QTreeView {
  Q_OBJECT

 public:
  explicit TreeView(QWidget* parent = nullptr);

  double fontSize() const { return font().pointSizeF(); }
  void SetFontSize(double points);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
};

}  // namespace ui
