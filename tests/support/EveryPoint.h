// Something that happens wherever a command lets events through.
#pragma once

#include <QApplication>
#include <QTimer>

#include <functional>

namespace support {

class EveryPoint : public QObject {
 public:
  // The call gets the number of the point, from 0.
  void Start(std::function<void(int)> call) {
    call_ = std::move(call);
    points_ = 0;
    Next();
  }
  void Stop() { call_ = {}; }
  int points() const { return points_; }

 private:
  void Next() {
    QTimer::singleShot(0, this, [this] {
      if (!call_) return;
      call_(points_);
      ++points_;
      Next();
    });
  }
  std::function<void(int)> call_;
  int points_ = 0;
};

}  // namespace support
