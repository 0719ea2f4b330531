#include "text/rtfsyntax/RtfPictures.h"

#include "text/rtfsyntax/RtfDescription.h"
#include "text/rtfsyntax/RtfKeywords.h"
#include "text/rtfsyntax/RtfLimits.h"

#include <algorithm>
#include <array>
#include <optional>

namespace text::rtf {

namespace {

constexpr std::array<int8_t, 256> kHexValues = [] {
  std::array<int8_t, 256> values{};
  for (auto& value : values) value = -1;
  for (int i = 0; i < 10; ++i) values[static_cast<size_t>('0' + i)] = static_cast<int8_t>(i);
  for (int i = 0; i < 6; ++i)
    values[static_cast<size_t>('a' + i)] = values[static_cast<size_t>('A' + i)] = static_cast<int8_t>(10 + i);
  return values;
}();

// Numbers in a picture's header; 0 past the end.
uint32_t Little(std::string_view bytes, size_t at, size_t size) {
  uint32_t value = 0;
  for (size_t i = size; i-- > 0;)
    value = value << 8 | (at + i < bytes.size() ? static_cast<uint8_t>(bytes[at + i]) : 0);
  return value;
}
uint32_t Big(std::string_view bytes, size_t at, size_t size) {
  uint32_t value = 0;
  for (size_t i = 0; i < size; ++i)
    value = value << 8 | (at + i < bytes.size() ? static_cast<uint8_t>(bytes[at + i]) : 0);
  return value;
}

bool IsDib(std::string_view bytes) {
  const uint32_t header = Little(bytes, 0, 4);
  if (header == 12) return Little(bytes, 8, 2) == 1;
  return (header == 40 || header == 52 || header == 56 || header == 108 || header == 124) && Little(bytes, 12, 2) == 1;
}

// Segment by segment to the frame header.
PixelSize JpegPixels(std::string_view bytes) {
  for (size_t at = 2; at + 9 < bytes.size();) {
    if (static_cast<uint8_t>(bytes[at]) != 0xFF) return {};
    const auto marker = static_cast<uint8_t>(bytes[at + 1]);
    if (marker == 0xFF) {
      ++at;
      continue;
    }
    const bool frame = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
    if (frame) return {Big(bytes, at + 7, 2), Big(bytes, at + 5, 2)};
    at += 2 + std::max<uint32_t>(Big(bytes, at + 2, 2), 2);
  }
  return {};
}

PixelSize DibPixels(std::string_view bytes) {
  const bool old = Little(bytes, 0, 4) == 12;
  const auto side = [&](size_t at) {
    if (old) return int64_t{Little(bytes, 4 + at / 2, 2)};
    return std::abs(int64_t{static_cast<int32_t>(Little(bytes, 4 + at, 4))});
  };
  return {side(0), side(4)};
}

struct PictureWords {
  int32_t width = 0, height = 0;          // pixels, of metafiles 0.01 mm
  int32_t goalWidth = 0, goalHeight = 0;  // twips
  int32_t scaleX = 100, scaleY = 100;
  int32_t left = 0, top = 0, right = 0, bottom = 0;  // cropped, twips
  bool metafile = false;
  bool mac = false;
};

struct PictureWord {
  std::string_view word;
  int32_t PictureWords::*field;
};
constexpr PictureWord kPictureWords[] = {
    {"picw", &PictureWords::width},         {"pich", &PictureWords::height},
    {"picwgoal", &PictureWords::goalWidth}, {"pichgoal", &PictureWords::goalHeight},
    {"picscalex", &PictureWords::scaleX},   {"picscaley", &PictureWords::scaleY},
    {"piccropl", &PictureWords::left},      {"piccropt", &PictureWords::top},
    {"piccropr", &PictureWords::right},     {"piccropb", &PictureWords::bottom},
};

void TakeWord(PictureWords& words, const Token& token) {
  for (const PictureWord& known : kPictureWords)
    if (token.text == known.word) words.*known.field = std::clamp(token.parameter, -kMaxLength, kMaxLength);
  if (token.text == "wmetafile" || token.text == "emfblip") words.metafile = true;
  if (token.text == "macpict") words.mac = true;
}

struct Side {
  int32_t shown, cropBefore, cropAfter;
};

Side SideOf(const PictureWords& words, int32_t goal, int32_t own, int32_t before, int32_t after, int32_t scale) {
  int64_t whole = goal;
  if (whole <= 0) whole = words.metafile ? int64_t{own} * 1440 / 2540 : int64_t{own} * kTwipsPerPixel;
  if (whole <= 0) return {0, 0, 0};
  const auto share = [whole](int32_t crop) {
    return static_cast<int32_t>(std::clamp<int64_t>(int64_t{crop} * 10000 / whole, -100'000, 10'000));
  };
  Side side{0, share(before), share(after)};
  if (side.cropBefore + side.cropAfter >= 10000) side.cropBefore = side.cropAfter = 0, before = after = 0;
  const int64_t shown = (whole - before - after) * (scale > 0 ? scale : 100) / 100;
  side.shown = static_cast<int32_t>(std::clamp<int64_t>(shown, 1, kMaxLength));
  return side;
}

// Hex digits, of which each two are a byte; anything between them counts for nothing.
class HexBytes {
 public:
  void Add(std::string_view text) {
    for (const char c : text) {
      const int8_t digit = kHexValues[static_cast<unsigned char>(c)];
      if (digit < 0) continue;
      if (high_ < 0) {
        high_ = digit;
      } else {
        bytes_ += static_cast<char>(high_ << 4 | digit);
        high_ = -1;
      }
    }
  }
  size_t size() const { return bytes_.size(); }
  std::string Take() { return std::move(bytes_); }

 private:
  std::string bytes_;
  int high_ = -1;
};

bool TooLarge(PixelSize size) {
  return size.width > kMaxPicturePixels || size.height > kMaxPicturePixels ||
         size.width * size.height > kMaxPicturePixels;
}

// A picture in hand: its type by its bytes; one that is too large stays a frame.
void TakeBytes(EmbeddedObject& object, SharedBytes data, const PictureWords& words, ReadingPictures& reading) {
  if (data.bytes.starts_with("BM") && IsDib(data.bytes.substr(std::min<size_t>(14, data.bytes.size()))))
    data.bytes.remove_prefix(14);
  object.type = SniffPicture(data.bytes);
  if (object.type == PictureType::kNone && words.mac && data.bytes.size() > 512) object.type = PictureType::kMac;
  if (object.type == PictureType::kNone) return;
  if (data.bytes.size() > kMaxPictureBytes || TooLarge(PixelsOf(object.type, data.bytes))) {
    object.type = PictureType::kNone;
    reading.limited = true;
    return;
  }
  object.picture = std::move(data);
}

void TakeSize(EmbeddedObject& object, const PictureWords& words) {
  const Side across = SideOf(words, words.goalWidth, words.width, words.left, words.right, words.scaleX);
  const Side down = SideOf(words, words.goalHeight, words.height, words.top, words.bottom, words.scaleY);
  object.width = across.shown;
  object.height = down.shown;
  object.cropLeft = across.cropBefore;
  object.cropRight = across.cropAfter;
  object.cropTop = down.cropBefore;
  object.cropBottom = down.cropAfter;
}

void AppendAscii(std::string& text, const Token& token, size_t most) {
  if (token.kind == TokenKind::kText && text.size() < most) text += token.text.substr(0, most - text.size());
}

bool IsPropertiesNext(RtfTokenizer tokenizer) {
  const Token token = tokenizer.Next();
  return token.kind == TokenKind::kWord && token.text == "picprop";
}

}  // namespace

PictureType SniffPicture(std::string_view bytes) {
  if (bytes.starts_with("\x89PNG\r\n\x1A\n")) return PictureType::kPng;
  if (bytes.starts_with("\xFF\xD8\xFF")) return PictureType::kJpeg;
  if (Little(bytes, 0, 4) == 1 && bytes.size() > 44 && bytes.substr(40, 4) == " EMF") return PictureType::kEmf;
  if (Little(bytes, 0, 4) == 0x9AC6CDD7) return PictureType::kWmf;  // with the header that says where it goes
  const uint32_t kind = Little(bytes, 0, 2);
  if ((kind == 1 || kind == 2) && Little(bytes, 2, 2) == 9 && bytes.size() > 18) return PictureType::kWmf;
  return IsDib(bytes) ? PictureType::kDib : PictureType::kNone;
}

PixelSize PixelsOf(PictureType type, std::string_view bytes) {
  switch (type) {
    case PictureType::kPng:
      return {Big(bytes, 16, 4), Big(bytes, 20, 4)};
    case PictureType::kJpeg:
      return JpegPixels(bytes);
    case PictureType::kDib:
      return DibPixels(bytes);
    default:
      return {};
  }
}

// Groups inside hold properties; one without a destination is but a wrapping of data.
EmbeddedObject ReadPicture(RtfTokenizer& tokenizer, ReadingPictures& reading) {
  EmbeddedObject object;
  PictureWords words;
  HexBytes hex;
  std::optional<std::string_view> binary;
  DescriptionScan description(reading.page, reading.fallbackCount);
  size_t properties = 0;  // the depth that they end above
  for (size_t depth = 0; depth > 0 || !tokenizer.AtClose();) {
    const Token token = tokenizer.Next();
    if (token.kind == TokenKind::kEnd) break;
    if (token.kind == TokenKind::kOpen) ++depth;
    if (token.kind == TokenKind::kClose) --depth;
    if (depth < properties) properties = 0;
    if (token.kind == TokenKind::kWord && token.text == "picprop") properties = depth;
    if (properties > 0) {
      description.Take(token);
      continue;
    }
    const Keyword* word = token.kind == TokenKind::kWord ? FindKeyword(token.text) : nullptr;
    const bool starred = token.kind == TokenKind::kSymbol && token.text == "*";
    if (starred && IsPropertiesNext(tokenizer)) continue;
    if (depth > 0 && (starred || (word && word->kind == Kind::kDestination))) tokenizer.SkipGroup();
    if (token.kind == TokenKind::kWord) TakeWord(words, token);
    if (token.kind == TokenKind::kText && hex.size() <= kMaxPictureBytes) hex.Add(token.text);
    if (token.kind == TokenKind::kBinary && !binary) binary = token.text;
  }
  TakeBytes(object, binary && !binary->empty() ? SharedBytes(reading.owner, *binary) : SharedBytes(hex.Take()), words,
            reading);
  object.name = description.Finish();
  TakeSize(object, words);
  return object;
}

EmbeddedObject ReadAttachment(RtfTokenizer& tokenizer) {
  EmbeddedObject object;
  for (size_t depth = 0; depth > 0 || !tokenizer.AtClose();) {
    const Token token = tokenizer.Next();
    if (token.kind == TokenKind::kEnd) break;
    if (token.kind == TokenKind::kOpen) ++depth;
    if (token.kind == TokenKind::kClose) --depth;
    if (depth == 0) AppendAscii(object.name, token, kMaxNameBytes);
    if (token.kind == TokenKind::kWord && token.text == "width")
      object.width = std::clamp(token.parameter, 0, kMaxLength);
    if (token.kind == TokenKind::kWord && token.text == "height")
      object.height = std::clamp(token.parameter, 0, kMaxLength);
  }
  while (object.name.ends_with(' ')) object.name.pop_back();
  return object;
}

bool IsAttachment(std::string_view group) {
  RtfTokenizer tokenizer(group);
  tokenizer.Next();
  Token token = tokenizer.Next();
  if (token.kind == TokenKind::kSymbol && token.text == "*") token = tokenizer.Next();
  return token.kind == TokenKind::kWord && token.text == "NeXTGraphic";
}

}  // namespace text::rtf
