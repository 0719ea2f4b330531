#include "text/plain/Encodings.h"

#include "text/TextStore.h"
#include "text/Utf16.h"

#include <algorithm>
#include <array>

namespace text {
namespace {

// Bytes 80 to 9F; the rest of the page is Latin 1.
constexpr std::array<char16_t, 32> kHighControls = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr size_t kGathered = 65536;

bool IsAscii(char c) {
  return static_cast<signed char>(c) >= 0;
}

const char* FindHigh(const char* p, const char* end) {
  return std::find_if(p, end, [](char c) { return !IsAscii(c); });
}

// UTF-16 bytes to UTF-8, in portions that may break anywhere.
class Utf16Decoder {
 public:
  explicit Utf16Decoder(bool bigEndian) : bigEndian_(bigEndian) {}

  // False for a unit that is no part of a character.
  bool Take(std::string_view bytes, std::string& out) {
    for (char c : bytes) {
      if (!halfUnit_) {
        first_ = static_cast<unsigned char>(c);
        halfUnit_ = true;
        continue;
      }
      const auto second = static_cast<unsigned char>(c);
      halfUnit_ = false;
      if (!TakeUnit(static_cast<char16_t>(bigEndian_ ? first_ << 8 | second : second << 8 | first_), out)) return false;
    }
    return true;
  }
  bool complete() const { return !halfUnit_ && high_ == 0; }
  const LineEndCounts& lineEnds() const { return lineEnds_; }

 private:
  bool TakeUnit(char16_t unit, std::string& out) {
    const bool low = (unit & 0xFC00) == 0xDC00;
    if ((high_ != 0) != low) return false;
    if (low) {
      AppendUtf8(out, 0x10000 + ((high_ & 0x3FFu) << 10 | (unit & 0x3FFu)));
      high_ = 0;
    } else if ((unit & 0xFC00) == 0xD800) {
      high_ = unit;
    } else {
      AppendUtf8(out, unit);
      CountLineEnd(unit);
    }
    return true;
  }
  void CountLineEnd(char16_t unit) {
    if (unit == '\r') ++lineEnds_.crs;
    if (unit == '\n') {
      if (lastUnit_ == '\r') {
        --lineEnds_.crs;
        ++lineEnds_.crLfs;
      } else {
        ++lineEnds_.lfs;
      }
    }
    lastUnit_ = unit;
  }

  bool bigEndian_;
  bool halfUnit_ = false;
  unsigned first_ = 0;
  char16_t high_ = 0;  // a surrogate that waits for its other half
  char16_t lastUnit_ = 0;
  LineEndCounts lineEnds_;
};

void AppendUtf16Unit(std::string& out, char32_t unit, bool bigEndian) {
  const char high = static_cast<char>(unit >> 8), low = static_cast<char>(unit & 0xFF);
  out += bigEndian ? high : low;
  out += bigEndian ? low : high;
}

bool AppendUtf16Character(std::string& out, char32_t c, bool bigEndian) {
  if (c >= 0xD800 && c < 0xE000) return false;
  if (c < 0x10000) {
    AppendUtf16Unit(out, c, bigEndian);
  } else {
    AppendUtf16Unit(out, 0xD800 + ((c - 0x10000) >> 10), bigEndian);
    AppendUtf16Unit(out, 0xDC00 + ((c - 0x10000) & 0x3FF), bigEndian);
  }
  return true;
}

bool AppendWindows1252(std::string& out, char32_t c) {
  if (c >= 0xDC80 && c < 0xDD00) {
    out += static_cast<char>(c - 0xDC00);
    return true;
  }
  const auto byte = ToWindows1252(c);
  if (byte) out += static_cast<char>(*byte);
  return byte.has_value();
}

}  // namespace

char32_t FromWindows1252(unsigned char byte) {
  return byte >= 0x80 && byte < 0xA0 ? kHighControls[byte - 0x80u] : byte;
}

std::optional<unsigned char> ToWindows1252(char32_t c) {
  if (c < 0x80 || (c >= 0xA0 && c < 0x100)) return static_cast<unsigned char>(c);
  const auto found = std::find(kHighControls.begin(), kHighControls.end(), c);
  if (found == kHighControls.end()) return std::nullopt;
  return static_cast<unsigned char>(0x80 + (found - kHighControls.begin()));
}

LineEnd LineEndCounts::Prevailing() const {
  if (crLfs >= lfs && crLfs >= crs) return LineEnd::kCrLf;
  return lfs >= crs ? LineEnd::kLf : LineEnd::kCr;
}

Content DecodeWindows1252(const Content& raw, bool fewBytesChange) {
  constexpr ptrdiff_t kShare = 4096;
  ContentBuilder builder(fewBytesChange ? raw.store() : std::make_shared<TextStore>());
  std::string gathered;
  const auto flush = [&] {
    builder.Append(gathered);
    gathered.clear();
  };
  raw.ForEachSpan(raw.all(), [&](std::string_view span) {
    const char* const end = span.data() + span.size();
    for (const char* p = span.data(); p < end;) {
      const char* const high = FindHigh(p, end);
      if (fewBytesChange && high - p >= kShare) {
        flush();
        builder.AppendCommitted(p, high);
      } else {
        gathered.append(p, high);
      }
      for (p = high; p < end && !IsAscii(*p); ++p)
        AppendUtf8(gathered, FromWindows1252(static_cast<unsigned char>(*p)));
      if (gathered.size() >= kGathered) flush();
    }
    return true;
  });
  flush();
  return builder.Finish();
}

std::optional<DecodedText> DecodeUtf16(const Content& raw, bool bigEndian) {
  ContentBuilder builder(std::make_shared<TextStore>());
  Utf16Decoder decoder(bigEndian);
  std::string gathered;
  size_t mark = 2;
  bool good = true;
  raw.ForEachSpan(raw.all(), [&](std::string_view span) {
    const size_t skipped = std::min(mark, span.size());
    mark -= skipped;
    span.remove_prefix(skipped);
    while (good && !span.empty()) {
      const size_t count = std::min(kGathered, span.size());
      good = decoder.Take(span.substr(0, count), gathered);
      span.remove_prefix(count);
      builder.Append(gathered);
      gathered.clear();
    }
    return good;
  });
  if (!good || !decoder.complete()) return std::nullopt;
  return DecodedText{builder.Finish(), decoder.lineEnds()};
}

size_t AppendEncoded(std::string& out, std::string_view bytes, Encoding encoding) {
  if (encoding == Encoding::kUtf8) {
    out.append(bytes);
    return std::string_view::npos;
  }
  const char* const end = bytes.data() + bytes.size();
  for (const char* p = bytes.data(); p < end;) {
    const Decoded decoded = Decode(p, end);
    const bool written = encoding == Encoding::kWindows1252
                             ? AppendWindows1252(out, decoded.scalar)
                             : AppendUtf16Character(out, decoded.scalar, encoding == Encoding::kUtf16Be);
    if (!written) return static_cast<size_t>(p - bytes.data());
    p += decoded.length;
  }
  return std::string_view::npos;
}

}  // namespace text
