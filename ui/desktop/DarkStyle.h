// The desktop's style, with what the toolkit's own one paints black whatever the ground made visible on a dark one.
#pragma once

#include <QProxyStyle>

class QStyleOptionTitleBar;

namespace ui {

// Frames of check boxes and option buttons, title bars of document windows that are not active. On any ground a title
// bar that is too narrow shows the end of its title.
class DarkStyle final : public QProxyStyle {
  Q_OBJECT

 public:
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;

 private:
  bool IsDark(const QStyleOption& option) const;
  QString EndOfTitle(const QStyleOptionTitleBar& bar, const QWidget& window) const;
  void DrawTitleBar(const QStyleOptionTitleBar& bar, QPainter* painter, const QWidget* widget) const;
};

}  // namespace ui
