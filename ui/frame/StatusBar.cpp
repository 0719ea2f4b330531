#include "ui/frame/StatusBar.h"

#include "ui/desktop/LockKeys.h"

#include <QApplication>
#include <QDateTime>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QStatusBar>
#include <QTimer>

#include <utility>

namespace ui {
namespace {

constexpr int kFirstPanelInLetters = 15;
constexpr int kBetweenKeyLooks = 1000;  // another program may have pressed a lock key; milliseconds

struct PanelStyle {
  Panel panel;
  const char* name;
  const char* text;
  int stretch;
};

constexpr PanelStyle kPanels[] = {
    {Panel::stsDate, "stsDate", "", 0},
    {Panel::stsTime, "stsTime", "", 0},
    {Panel::stsCaps, "stsCaps", QT_TRANSLATE_NOOP("StatusBar", "CAPS"), 0},
    {Panel::stsNum, "stsNum", QT_TRANSLATE_NOOP("StatusBar", "NUM"), 0},
    {Panel::stsInsert, "stsInsert", QT_TRANSLATE_NOOP("StatusBar", "INS"), 0},
    {Panel::stsScroll, "stsScroll", QT_TRANSLATE_NOOP("StatusBar", "SCRL"), 0},
    {Panel::stsFont, "stsFont", "", 1},
};

QString Tr(const char* text) {
  return *text ? QCoreApplication::translate("StatusBar", text) : QString();
}

bool IsLockKey(int key) {
  return key == Qt::Key_CapsLock || key == Qt::Key_NumLock || key == Qt::Key_ScrollLock;
}

}  // namespace

StatusBar::StatusBar(QStatusBar& bar) : QObject(&bar), clock_(new QTimer(this)), keys_(new QTimer(this)) {
  for (const PanelStyle& style : kPanels) {
    auto* label = new QLabel(Tr(style.text), &bar);
    label->setObjectName(QLatin1String(style.name));
    label->setTextFormat(Qt::PlainText);
    label->setMargin(3);
    bar.addWidget(label, style.stretch);
    labels_[static_cast<size_t>(style.panel)] = label;
  }
  // Wide enough for a button's description, so that the panels behind it stay where they are.
  QLabel& date = label(Panel::stsDate);
  date.setMinimumWidth(date.fontMetrics().averageCharWidth() * kFirstPanelInLetters);
  for (const Panel panel : {Panel::stsCaps, Panel::stsNum, Panel::stsInsert, Panel::stsScroll}) SetOn(panel, false);
  clock_->setSingleShot(true);
  connect(clock_, &QTimer::timeout, this, &StatusBar::Refresh);
  connect(keys_, &QTimer::timeout, this, &StatusBar::Refresh);
  keys_->start(kBetweenKeyLooks);
  qApp->installEventFilter(this);
  Refresh();
}

void StatusBar::SetText(Panel panel, const QString& text) {
  label(panel).setText(text);
}

QString StatusBar::text(Panel panel) const {
  return label(panel).text();
}

// The state is the widget's enabled state: the style knows how "off" looks, in dark palettes too.
void StatusBar::SetOn(Panel panel, bool on) {
  label(panel).setEnabled(on);
  // A disabled label alone does not say what it is.
  const QString name = (on ? Tr(QT_TRANSLATE_NOOP("StatusBar", "%1 on")) : Tr(QT_TRANSLATE_NOOP("StatusBar", "%1 off")))
                           .arg(text(panel));
  if (label(panel).accessibleName() != name) label(panel).setAccessibleName(name);
}

bool StatusBar::isOn(Panel panel) const {
  return label(panel).isEnabled();
}

void StatusBar::ShowDescription(const QString& description) {
  showsDate_ = false;
  SetText(Panel::stsDate, description);
}

void StatusBar::ShowDate() {
  if (std::exchange(showsDate_, true)) return;
  Refresh();
}

void StatusBar::Refresh() {
  const QDateTime now = QDateTime::currentDateTime();
  if (showsDate_) SetText(Panel::stsDate, QLocale().toString(now.date(), QLocale::ShortFormat));
  SetText(Panel::stsTime, now.toString(QStringLiteral("HH:mm")));
  const LockKeys keys = CurrentLockKeys();
  SetOn(Panel::stsCaps, keys.caps);
  SetOn(Panel::stsNum, keys.num);
  SetOn(Panel::stsScroll, keys.scroll);
  ScheduleNextMinute();
}

void StatusBar::ScheduleNextMinute() {
  const QTime now = QTime::currentTime();
  clock_->start((60 - now.second()) * 1000 - now.msec() + 10);
}

bool StatusBar::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
    const auto& key = *static_cast<QKeyEvent*>(event);
    NoteLockKeys(key);
    // The display changes the state behind the event.
    if (IsLockKey(key.key())) QTimer::singleShot(20, this, &StatusBar::Refresh);
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace ui
