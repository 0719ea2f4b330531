// The style of the whole program: the desktop's, with what must be seen on a dark ground and in narrow title bars.
#pragma once

#include <QProxyStyle>

class QStyleOptionTitleBar;

namespace ui {

// Where the toolkit's own style paints black whatever the ground: frames of check boxes and option buttons, title bars
// of document windows that are not active, the buttons of one that fills the document area, on a dark one. On any
// ground a title bar that is too narrow shows the end of its title.
class ProgramStyle final : public QProxyStyle {
  Q_OBJECT

 public:
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;
  QIcon standardIcon(StandardPixmap icon, const QStyleOption* option = nullptr,
                     const QWidget* widget = nullptr) const override;

 private:
  bool IsDark(const QStyleOption& option) const;
  QString EndOfTitle(const QStyleOptionTitleBar& bar, const QWidget& window) const;
  void DrawTitleBar(const QStyleOptionTitleBar& bar, QPainter* painter, const QWidget* widget) const;
};

}  // namespace ui
