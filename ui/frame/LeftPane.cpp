#include "ui/frame/LeftPane.h"

#include <QEvent>
#include <QLabel>
#include <QStyle>

#include <algorithm>

namespace ui {
namespace {

constexpr int kMargin = 6;           // pixels around the controls
constexpr int kWidthInLetters = 34;  // of average width

int Pixels(int twips) {
  return qRound(twips / double(kTwipsPerPixel));
}

}  // namespace

LeftPane::LeftPane(QWidget* parent)
    : QWidget(parent),
      List1_(new ListBox(this)),
      Toolbar2_(new ToolBar(this)),
      Picture1_(new PictureBox("font-size", this)),
      Label1_(new QLabel(tr("Folder tree"), this)),
      Drive1_(new DriveBox(this)),
      TreeView1_(new TreeView(this)),
      Toolbar3_(new ToolBar(this)) {
  const int icon = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
  for (ToolBar* bar : {Toolbar2_, Toolbar3_}) bar->setIconSize({icon, icon});
  const std::pair<QWidget*, const char*> names[] = {
      {List1_, "List1"},   {Toolbar2_, "Toolbar2"},   {Picture1_, "Picture1"}, {Label1_, "Label1"},
      {Drive1_, "Drive1"}, {TreeView1_, "TreeView1"}, {Toolbar3_, "Toolbar3"}};
  for (const auto& [widget, name] : names) widget->setObjectName(QLatin1String(name));
  List1_->setAccessibleName(tr("Project list"));
  Toolbar2_->setAccessibleName(tr("Project list toolbar"));
  Picture1_->setAccessibleName(tr("Font size of the lists"));
  Picture1_->setToolTip(tr("Larger font in the lists"));
  Drive1_->setAccessibleName(tr("Drive"));
  TreeView1_->setAccessibleName(tr("Folder tree"));
  Toolbar3_->setAccessibleName(tr("Folder tree toolbar"));
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
}

void LeftPane::SetListFontSize(double points) {
  List1_->SetFontSize(points);
  TreeView1_->SetFontSize(points);
}

QSize LeftPane::sizeHint() const {
  return {fontMetrics().averageCharWidth() * kWidthInLetters + 2 * kMargin, 0};
}

QSize LeftPane::minimumSizeHint() const {
  return {sizeHint().width(), 0};
}

// Toolbar1 and StatusBar1 lie outside the pane: what the one formula adds for them the other takes away.
PaneMetrics LeftPane::Metrics() const {
  // An empty toolbar keeps the place of its buttons.
  const auto bar = [this](const ToolBar& toolbar) {
    return kTwipsPerPixel * std::max(toolbar.sizeHint().height(), toolbar.iconSize().height() + 2 * kMargin);
  };
  return {.List1Top = kMargin * kTwipsPerPixel,
          .Toolbar2Height = bar(*Toolbar2_),
          .Label1Height = Label1_->sizeHint().height() * kTwipsPerPixel,
          .Drive1Height = Drive1_->sizeHint().height() * kTwipsPerPixel,
          .Toolbar3Height = bar(*Toolbar3_)};
}

void LeftPane::LayOut() {
  const PaneMetrics metrics = Metrics();
  const PanePlaces places = LayOutPanes(FrameHeightFor(height() * kTwipsPerPixel, metrics), metrics);
  const auto put = [this](QWidget* widget, int top, int high) {
    widget->setGeometry(kMargin, Pixels(top), width() - 2 * kMargin, Pixels(top + high) - Pixels(top));
  };
  put(List1_, metrics.List1Top, places.List1Height);
  put(Toolbar2_, places.Toolbar2Top, metrics.Toolbar2Height);
  const QSize picture = Picture1_->sizeHint();
  Toolbar2_->resize(Toolbar2_->width() - picture.width(), Toolbar2_->height());
  Picture1_->setGeometry(QRect(
      QPoint(Toolbar2_->geometry().right() + 1, Toolbar2_->geometry().center().y() - picture.height() / 2), picture));
  put(Label1_, places.Label1Top, metrics.Label1Height);
  put(Drive1_, places.Drive1Top, metrics.Drive1Height);
  put(TreeView1_, places.TreeView1Top, places.TreeView1Height);
  put(Toolbar3_, places.Toolbar3Top, metrics.Toolbar3Height);
}

void LeftPane::resizeEvent(QResizeEvent*) {
  if (!window()->isMinimized()) LayOut();
}

void LeftPane::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
  updateGeometry();
  LayOut();
}

}  // namespace ui
