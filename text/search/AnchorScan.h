// Finds where two bytes of a needle stand at their distance: the fast filter in front of a comparison. Internal to
// text/.
#pragma once

#include <array>
#include <cstddef>

namespace text {

class AnchorScan {
 public:
  static constexpr int kMost = 4;
  // The byte at `offset` must be one of the first `count` values.
  struct Test {
    size_t offset = 0;
    int count = 0;
    std::array<char, kMost> values{};
    bool Holds(const char* place) const {
      for (int i = 0; i < count; ++i)
        if (place[offset] == values[static_cast<size_t>(i)]) return true;
      return false;
    }
  };

  AnchorScan() = default;
  AnchorScan(Test first, Test second);

  // The first place of [p, until) where both tests hold, or `until`. Bytes from `end` on are not read.
  const char* Next(const char* p, const char* until, const char* end) const;

 private:
  template <int Values>
  const char* NextWith(const char* p, const char* until, const char* end) const;

  Test first_, second_;
  size_t reach_ = 0;  // the greater offset
};

}  // namespace text
