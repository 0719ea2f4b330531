// The pointer of a program that is at work.
#pragma once

namespace ui {

// Shown while one lives.
class Hourglass {
 public:
  Hourglass();
  ~Hourglass();
  Hourglass(const Hourglass&) = delete;
  Hourglass& operator=(const Hourglass&) = delete;
};

// While one lives no hourglass is shown: the user is asked something.
class NoHourglass {
 public:
  NoHourglass();
  ~NoHourglass();
  NoHourglass(const NoHourglass&) = delete;
  NoHourglass& operator=(const NoHourglass&) = delete;

 private:
  int taken_ = 0;
};

}  // namespace ui
