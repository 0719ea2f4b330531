#include "text/rtfsyntax/RtfPackage.h"

#include "text/Utf16.h"
#include "text/plain/Encodings.h"
#include "text/rtfsyntax/RtfCharacters.h"
#include "text/rtfsyntax/RtfLimits.h"
#include "text/rtfsyntax/RtfPictures.h"

#include <algorithm>
#include <utility>

namespace text::rtf {

namespace {

constexpr std::string_view kClass = "Package";
constexpr uint32_t kVersion = 0x501, kEmbedded = 2;
constexpr uint16_t kSignature = 2, kFile = 3;
constexpr size_t kHead = 2048;                         // bytes that hold header and name
constexpr size_t kMaxData = kMaxPackageBytes + 65536;  // with its names

int Digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = static_cast<char>(c | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Hex or raw data from behind \objdata to the group's end, at most so many bytes.
std::string ReadData(RtfTokenizer& tokenizer, size_t most) {
  std::string data;
  int high = -1;
  for (Token token = tokenizer.Next(); data.size() < most; token = tokenizer.Next()) {
    if (token.kind == TokenKind::kBinary) {
      data += token.text.substr(0, most - data.size());
    } else if (token.kind == TokenKind::kText) {
      for (const char c : token.text) {
        const int digit = Digit(c);
        if (digit < 0) continue;
        if (high >= 0) data += static_cast<char>(high << 4 | digit);
        high = high >= 0 ? -1 : digit;
      }
    } else {
      break;
    }
  }
  return data;
}

// Little-endian numbers and texts; past the end everything is zero, empty and not good.
class Fields {
 public:
  explicit Fields(std::string_view bytes) : rest_(bytes) {}

  bool good() const { return good_; }
  bool atEnd() const { return rest_.empty(); }
  std::string_view Take(size_t count) {
    good_ = good_ && count <= rest_.size();
    if (!good_) return {};
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return taken;
  }
  uint32_t Number(size_t bytes) {
    uint32_t number = 0;
    const std::string_view taken = Take(bytes);
    for (size_t i = 0; i < taken.size(); ++i) number |= uint32_t{static_cast<uint8_t>(taken[i])} << (8 * i);
    return number;
  }
  std::string_view Counted() {
    std::string_view text = Take(Number(4));
    return text.substr(0, text.find('\0'));
  }
  std::string_view Terminated() {
    const size_t end = rest_.find('\0');
    if (end == std::string_view::npos) good_ = false;
    const std::string_view text = Take(good_ ? end + 1 : 0);
    return good_ ? text.substr(0, end) : text;
  }
  std::u16string CountedUnits() {
    const std::string_view bytes = Take(size_t{Number(4)} * 2);
    std::u16string units;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2)
      units += static_cast<char16_t>(static_cast<uint8_t>(bytes[i]) | static_cast<uint8_t>(bytes[i + 1]) << 8);
    return units.substr(0, units.find(u'\0'));
  }

 private:
  std::string_view rest_;
  bool good_ = true;
};

std::string FromAnsi(std::string_view bytes) {
  std::string utf8;
  for (const char c : bytes) AppendUtf8(utf8, FromWindows1252(static_cast<uint8_t>(c)));
  return utf8;
}

// Header and label of a package that holds a file; not good for anything else.
struct Head {
  explicit Head(std::string_view data) : fields(data) {
    const bool embedded = fields.Number(4) != 0 && fields.Number(4) == kEmbedded && fields.Counted() == kClass;
    fields.Counted(), fields.Counted();
    fields.Number(4);
    uint32_t signature = fields.Number(2);
    if (signature != kSignature) fields.Number(2), signature = fields.Number(2);  // some write the size once more
    label = fields.Terminated();
    fields.Terminated();
    fields.Number(2);
    good = embedded && signature == kSignature && fields.Number(2) == kFile && fields.good();
  }
  Fields fields;
  std::string_view label;
  bool good = false;
};

// Behind the word, which is the first of its group or follows "\*" there.
bool FindData(RtfTokenizer& tokenizer) {
  for (Token token = tokenizer.Next(); token.kind != TokenKind::kEnd; token = tokenizer.Next())
    if (token.kind == TokenKind::kWord && token.text == "objdata") return true;
  return false;
}

void AppendNumber(std::string& data, uint32_t number, size_t bytes) {
  for (size_t i = 0; i < bytes; ++i) data += static_cast<char>(number >> (8 * i) & 0xFF);
}

void AppendCounted(std::string& data, std::string_view text) {
  AppendNumber(data, text.empty() ? 0 : static_cast<uint32_t>(text.size() + 1), 4);
  if (!text.empty()) data.append(text).push_back('\0');
}

std::string Ansi(std::string_view utf8) {
  std::string ansi;
  while (!utf8.empty()) {
    const char32_t c = TakeCharacter(utf8);
    const uint8_t byte = c < 0x80 ? static_cast<uint8_t>(c) : Windows1252Byte(c);
    ansi += byte < 0x20 ? '_' : static_cast<char>(byte);
  }
  return ansi;
}

void AppendUnits(std::string& data, std::string_view utf8) {
  std::u16string units;
  while (!utf8.empty()) {
    const char32_t c = TakeCharacter(utf8);
    if (c >= 0x10000) units += static_cast<char16_t>(0xD7C0 + (c >> 10));
    units += static_cast<char16_t>(c >= 0x10000 ? 0xDC00 + (c & 0x3FF) : c);
  }
  AppendNumber(data, static_cast<uint32_t>(units.size()), 4);
  for (const char16_t unit : units) AppendNumber(data, unit, 2);
}

void AppendHex(std::string& rtf, std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  constexpr size_t kLine = 64;
  rtf.reserve(rtf.size() + bytes.size() * 2 + bytes.size() / kLine * 2);
  for (size_t i = 0; i < bytes.size(); ++i) {
    if (i > 0 && i % kLine == 0) rtf += "\r\n";
    const auto byte = static_cast<uint8_t>(bytes[i]);
    rtf += kDigits[byte >> 4];
    rtf += kDigits[byte & 15];
  }
}

void AppendName(std::string& rtf, std::string_view utf8) {
  while (!utf8.empty()) {
    const char32_t c = TakeCharacter(utf8);
    if (c < 0x80) {
      if (c == '\\' || c == '{' || c == '}') rtf += '\\';
      rtf += c < 0x20 ? ' ' : static_cast<char>(c);
      continue;
    }
    const auto unit = [&rtf](char32_t number) { rtf += "\\u" + std::to_string(static_cast<int16_t>(number)) + "?"; };
    if (c >= 0x10000) unit(0xD7C0 + (c >> 10));
    unit(c >= 0x10000 ? 0xDC00 + (c & 0x3FF) : c);
  }
}

struct SideWords {
  const char *goal, *before, *after;
};

// The picture's own length, from what is seen of it, and what is cut off.
void AppendSide(std::string& rtf, const SideWords& words, int32_t shown, int32_t cropBefore, int32_t cropAfter) {
  constexpr int64_t kWhole = 10000;
  const int64_t seen = std::max<int64_t>(1, kWhole - cropBefore - cropAfter);
  const int64_t goal = shown * kWhole / seen;
  rtf += words.goal + std::to_string(goal);
  if (cropBefore != 0) rtf += words.before + std::to_string(goal * cropBefore / kWhole);
  if (cropAfter != 0) rtf += words.after + std::to_string(goal * cropAfter / kWhole);
}

}  // namespace

std::optional<std::string> LabelInData(RtfTokenizer data) {
  const std::string begin = ReadData(data, kHead);
  const Head head(begin);
  if (!head.good) return std::nullopt;
  return FromAnsi(head.label);
}

std::optional<std::string> PackageLabel(std::string_view group) {
  RtfTokenizer tokenizer(group);
  if (!FindData(tokenizer)) return std::nullopt;
  return LabelInData(tokenizer);
}

std::optional<Package> ReadPackage(std::string_view group) {
  RtfTokenizer tokenizer(group);
  if (!FindData(tokenizer)) return std::nullopt;
  const std::string data = ReadData(tokenizer, kMaxData);
  Head head(data);
  Fields& fields = head.fields;
  if (!head.good) return std::nullopt;
  Package package{FromAnsi(head.label), {}};
  fields.Counted();
  package.bytes = fields.Take(fields.Number(4));
  if (!fields.good() || package.bytes.size() > kMaxPackageBytes) return std::nullopt;
  fields.CountedUnits();
  const std::u16string label = fields.CountedUnits();
  if (fields.good() && !label.empty()) package.name = BytesOfUtf16(label);
  return package;
}

std::string ReadObjectName(RtfTokenizer tokenizer) {
  std::u16string units;
  int32_t skip = 0;
  for (; !tokenizer.AtClose() && units.size() < kMaxNameBytes;) {
    const Token token = tokenizer.Next();
    if (token.kind == TokenKind::kOpen) break;
    if (token.kind == TokenKind::kWord && token.text == "u") {
      units += static_cast<char16_t>(token.parameter & 0xFFFF), skip = 1;
    } else if (token.kind == TokenKind::kHex) {
      if (std::exchange(skip, 0) == 0 && token.parameter >= 0x20)
        units += static_cast<char16_t>(FromWindows1252(static_cast<uint8_t>(token.parameter)));
    } else if (token.kind == TokenKind::kText || token.kind == TokenKind::kBytes || token.kind == TokenKind::kSymbol) {
      for (const char c : token.text.substr(std::min(token.text.size(), static_cast<size_t>(std::exchange(skip, 0)))))
        units += static_cast<char16_t>(FromWindows1252(static_cast<uint8_t>(c)));
    }
  }
  // Half a character, and what would be a break, cannot be shown.
  std::string name = BytesOfUtf16(units);
  std::string clean;
  for (std::string_view rest = name; !rest.empty();) {
    const char32_t c = TakeCharacter(rest);
    AppendUtf8(clean, c < 0x20 ? ' ' : c);
  }
  return clean;
}

std::string PackageGroup(std::string_view name, std::string_view bytes, const EmbeddedObject& shown) {
  const std::string ansi = Ansi(name);
  std::string data;
  data.reserve(bytes.size() + 4096);
  AppendNumber(data, kVersion, 4), AppendNumber(data, kEmbedded, 4);
  AppendCounted(data, kClass), AppendCounted(data, {}), AppendCounted(data, {});
  const size_t size = data.size();
  AppendNumber(data, 0, 4);
  AppendNumber(data, kSignature, 2);
  data.append(ansi).push_back('\0');
  data.append(ansi).push_back('\0');
  AppendNumber(data, 0, 2), AppendNumber(data, kFile, 2);
  AppendNumber(data, static_cast<uint32_t>(ansi.size() + 1), 4);
  data.append(ansi).push_back('\0');
  AppendNumber(data, static_cast<uint32_t>(bytes.size()), 4);
  data.append(bytes);
  for (int i = 0; i < 3; ++i) AppendUnits(data, name);  // a path, the label, the path it came from
  std::string length;
  AppendNumber(length, static_cast<uint32_t>(data.size() - size - 4), 4);
  data.replace(size, 4, length);
  AppendNumber(data, kVersion, 4), AppendNumber(data, 0, 4);  // no picture of its own

  std::string rtf = "{\\object\\objemb\\objw" + std::to_string(shown.width) + "\\objh" + std::to_string(shown.height);
  rtf += "{\\*\\objclass Package}{\\*\\objname ";
  AppendName(rtf, name);
  rtf += "}{\\*\\objdata\r\n";
  AppendHex(rtf, data);
  rtf += "}{\\result{\\pict";
  rtf += shown.type == PictureType::kJpeg ? "\\jpegblip" : "\\pngblip";
  const PixelSize pixels = PixelsOf(shown.type, shown.picture.bytes);
  rtf += "\\picw" + std::to_string(pixels.width) + "\\pich" + std::to_string(pixels.height);
  AppendSide(rtf, {"\\picwgoal", "\\piccropl", "\\piccropr"}, shown.width, shown.cropLeft, shown.cropRight);
  AppendSide(rtf, {"\\pichgoal", "\\piccropt", "\\piccropb"}, shown.height, shown.cropTop, shown.cropBottom);
  rtf += "\r\n";
  AppendHex(rtf, shown.picture.bytes);
  return rtf += "}}}";
}

}  // namespace text::rtf
