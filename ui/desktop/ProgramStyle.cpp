#include "ui/desktop/ProgramStyle.h"

#include "ui/controls/Icons.h"

#include <QPainter>
#include <QStyleOption>
#include <QWidget>

#include <map>

namespace ui {
namespace {

constexpr int kDark = 128, kFrameAlpha = 140;
constexpr int kTitleInset = 16;                      // the styles keep some of the label's place free
const QString kToolkits = QStringLiteral("fusion");  // other styles know dark grounds

}  // namespace

bool ProgramStyle::IsDark(const QStyleOption& option) const {
  return option.palette.color(QPalette::Base).lightness() < kDark && baseStyle()->name() == kToolkits;
}

void ProgramStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const {
  QProxyStyle::drawPrimitive(element, option, painter, widget);
  const bool round = element == PE_IndicatorRadioButton;
  if ((!round && element != PE_IndicatorCheckBox) || !IsDark(*option)) return;
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing, round);
  QColor color = option->palette.color(QPalette::Text);
  color.setAlpha(kFrameAlpha);
  painter->setPen(color);
  painter->setBrush(Qt::NoBrush);
  const QRectF frame = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
  round ? painter->drawEllipse(frame) : painter->drawRect(frame);
  painter->restore();
}

void ProgramStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                      const QWidget* widget) const {
  const auto* const bar = qstyleoption_cast<const QStyleOptionTitleBar*>(option);
  if (control != CC_TitleBar || !bar) return QProxyStyle::drawComplexControl(control, option, painter, widget);
  QStyleOptionTitleBar shown = *bar;
  if (widget) shown.text = EndOfTitle(*bar, *widget);
  DrawTitleBar(shown, painter, widget);
}

QIcon ProgramStyle::standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const {
  if (baseStyle()->name() != kToolkits) return QProxyStyle::standardIcon(icon, option, widget);
  // Asked for at each painting.
  static const std::map<StandardPixmap, QIcon> icons = {{SP_TitleBarMinButton, ThemedIcon("window-minimize")},
                                                        {SP_TitleBarMaxButton, ThemedIcon("window-maximize")},
                                                        {SP_TitleBarNormalButton, ThemedIcon("window-restore")},
                                                        {SP_TitleBarCloseButton, ThemedIcon("window-close")}};
  const auto found = icons.find(icon);
  return found == icons.end() ? QProxyStyle::standardIcon(icon, option, widget) : found->second;
}

// The end of a path is the file's name.
QString ProgramStyle::EndOfTitle(const QStyleOptionTitleBar& bar, const QWidget& window) const {
  // Twice in a title the toolkit's mark means itself.
  const QString title = window.windowTitle().replace(QLatin1String("[*][*]"), QLatin1String("[*]"));
  const int room = proxy()->subControlRect(CC_TitleBar, &bar, SC_TitleBarLabel, &window).width();
  return bar.fontMetrics.elidedText(title, Qt::ElideLeft, room - kTitleInset);
}

// The buttons and the text of an active one are light, so it is painted as active, in the colour of one that is not.
void ProgramStyle::DrawTitleBar(const QStyleOptionTitleBar& bar, QPainter* painter, const QWidget* widget) const {
  if (bar.titleBarState & State_Active || !IsDark(bar))
    return QProxyStyle::drawComplexControl(CC_TitleBar, &bar, painter, widget);
  QStyleOptionTitleBar light = bar;
  light.state |= State_Active;
  light.titleBarState |= State_Active;
  for (const auto role : {QPalette::Highlight, QPalette::Window})
    light.palette.setColor(QPalette::Active, role, bar.palette.color(QPalette::Inactive, QPalette::Window));
  light.palette.setCurrentColorGroup(QPalette::Active);
  QProxyStyle::drawComplexControl(CC_TitleBar, &light, painter, widget);
}

}  // namespace ui
