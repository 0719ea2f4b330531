// Keys take effect in the order in which they were pressed, also beside a screen reader.
#pragma once

#include <QObject>

#include <deque>

class QEventLoop;

namespace ui {

// With a screen reader the toolkit asks it about every key and delivers the key when the answer has come, but it does
// not ask about keys that are shortcuts: Ctrl+S would save without the last letters. Here such a key waits for those
// before it.
class KeyOrder : public QObject {
  Q_OBJECT

 public:
  KeyOrder();  // of the application, which must exist

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void WaitForKeys();

  std::deque<int> underWay_;  // keys that were pressed, until they are delivered or were shortcuts
  QEventLoop* waiting_ = nullptr;
};

}  // namespace ui
