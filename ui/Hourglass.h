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

}  // namespace ui
