// Counts as types: a byte offset cannot be passed where a text position is meant.
#pragma once

#include <compare>
#include <cstdint>

namespace text {

// A signed 64-bit count that only mixes with its own kind.
template <class Tag>
class Count {
 public:
  constexpr Count() = default;
  constexpr explicit Count(int64_t value) : value_(value) {}
  constexpr int64_t value() const { return value_; }

  constexpr auto operator<=>(const Count&) const = default;
  constexpr Count& operator+=(Count other) { return value_ += other.value_, *this; }
  constexpr Count& operator-=(Count other) { return value_ -= other.value_, *this; }
  constexpr Count& operator++() { return ++value_, *this; }
  constexpr Count& operator--() { return --value_, *this; }
  friend constexpr Count operator+(Count a, Count b) { return Count(a.value_ + b.value_); }
  friend constexpr Count operator-(Count a, Count b) { return Count(a.value_ - b.value_); }

 private:
  int64_t value_ = 0;
};

// Bytes of the text as it stands in the file.
using Bytes = Count<struct BytesTag>;
// Positions and lengths inside the engine: UTF-16 code units, every line break (CR LF, CR or LF) counting one.
using Units = Count<struct UnitsTag>;
// Positions and lengths at the control's surface: as Units, but every line break counts two (CR LF).
using SurfaceUnits = Count<struct SurfaceUnitsTag>;
// Line breaks; also the number of a paragraph, the first being 0.
using Breaks = Count<struct BreaksTag>;

// Where a position goes that lies inside something indivisible, or at the place of an insertion.
enum class Bias : uint8_t { kLeft, kRight };

// A half-open stretch of text, begin <= end.
struct Range {
  Units begin;
  Units end;
  constexpr Units size() const { return end - begin; }
  constexpr bool empty() const { return begin == end; }
  constexpr bool operator==(const Range&) const = default;
};

}  // namespace text
