// The desktop's style, with what the toolkit's own one paints black whatever the ground made visible on a dark one.
#pragma once

#include <QProxyStyle>

namespace ui {

// Frames of check boxes and option buttons, title bars of document windows that are not active.
class DarkStyle final : public QProxyStyle {
  Q_OBJECT

 public:
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;

 private:
  bool IsDark(const QStyleOption& option) const;
};

}  // namespace ui
