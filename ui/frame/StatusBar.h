// The status bar's panels: date, time, the state of the lock keys and of insertion, and the selection's font.
#pragma once

#include <QObject>
#include <QString>

#include <array>
#include <cstdint>

class QLabel;
class QStatusBar;
class QTimer;

namespace ui {

enum class Panel : uint8_t { stsDate, stsTime, stsCaps, stsNum, stsInsert, stsScroll, stsFont };
constexpr size_t kPanelCount = 7;

class StatusBar : public QObject {
  Q_OBJECT

 public:
  explicit StatusBar(QStatusBar& bar);

  void SetText(Panel panel, const QString& text);
  QString text(Panel panel) const;
  // The first panel in text style, until ShowDate() brings it back to date style.
  void ShowDescription(const QString& description);
  void ShowDate();
  bool showsDate() const { return showsDate_; }
  // A key's panel shows its name clearly when on and faintly when off.
  void SetOn(Panel panel, bool on);
  bool isOn(Panel panel) const;
  // Looks at the clock and the keyboard; also done by itself from time to time and on every lock key.
  void Refresh();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QLabel& label(Panel panel) const { return *labels_[static_cast<size_t>(panel)]; }
  void ScheduleNextMinute();

  std::array<QLabel*, kPanelCount> labels_{};
  QTimer* clock_;
  QTimer* keys_;
  bool showsDate_ = true;
};

}  // namespace ui
