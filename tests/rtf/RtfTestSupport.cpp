#include "tests/rtf/RtfTestSupport.h"

#include <cstdio>
#include <utility>

namespace text::rtf {

namespace {

std::string Hex(Color color) {
  char digits[8];
  std::snprintf(digits, sizeof digits, "%06x", color.rgb);
  return digits;
}

std::string DescribeChars(const FormatTable& formats, const CharFormat& format) {
  constexpr std::pair<CharFlag, const char*> kFlags[] = {{text::kBold, "b "},         {text::kItalic, "i "},
                                                         {text::kUnderline, "ul "},   {text::kStrikeThru, "strike "},
                                                         {text::kProtected, "prot "}, {text::kHidden, "v "}};
  std::string words;
  for (const auto& [flag, word] : kFlags)
    if (format.flags & flag) words += word;
  const Font& font = formats[format.font];
  if (font != Font{}) words += font.name + "/" + std::to_string(font.charset) + "/" + std::to_string(font.family) + " ";
  if (format.halfPoints != 24) words += "fs" + std::to_string(format.halfPoints) + " ";
  if (!format.color.isAuto()) words += "cf" + Hex(format.color) + " ";
  if (!format.background.isAuto()) words += "bg" + Hex(format.background) + " ";
  if (format.offset != 0) words += "up" + std::to_string(format.offset) + " ";
  if (!words.empty()) words.pop_back();
  return "<" + words + ">";
}

std::string DescribeParagraph(const FormatTable& formats, const ParaFormat& format) {
  constexpr const char* kAlignments[] = {"", "right ", "center ", "justify "};
  std::string words = kAlignments[static_cast<size_t>(format.alignment)];
  if (format.bullet) words += "bullet ";
  if (format.rightToLeft) words += "rtl ";
  const auto number = [&](const char* name, int32_t value) {
    if (value != 0) words += name + std::to_string(value) + " ";
  };
  number("fi", format.firstIndent);
  number("li", format.leftIndent);
  number("ri", format.rightIndent);
  number("sb", format.spaceBefore);
  number("sa", format.spaceAfter);
  number(format.lineSpacingMultiple ? "slm" : "sl", format.lineSpacing);
  for (int32_t tab : formats[format.tabs]) words += "tx" + std::to_string(tab) + " ";
  if (words.empty()) return {};
  words.back() = ']';
  return "[" + words;
}

}  // namespace

std::string Describe(const Content& content) {
  const FormatTable& formats = content.formats();
  std::string line, last = "<>";
  content.ForEachPiece(content.all(), [&](const PieceView& piece) {
    std::string chars = DescribeChars(formats, formats[piece.charFormat]);
    if (chars != last) line += chars;
    last = std::move(chars);
    for (size_t i = 0; i < piece.bytes.size(); ++i) {
      const char c = piece.bytes[i];
      if (c == '\r' && piece.bytes.substr(i).starts_with("\r\n")) continue;
      line += c;
      if (c == '\r' || c == '\n') line += DescribeParagraph(formats, formats[piece.paraFormat]);
    }
    return true;
  });
  const std::string tail = DescribeParagraph(formats, formats[content.lastParaFormat()]);
  return tail.empty() ? line : line + "$" + tail;
}

std::string PlainLines(const Content& content) {
  std::string lines = TextOf(content);
  for (const std::string_view end : {"\r\n", "\xE2\x80\xA8"})
    for (size_t at = 0; (at = lines.find(end, at)) != std::string::npos; ++at) lines.replace(at, end.size(), "\n");
  return lines;
}

std::string Written(const Content& content, const DocumentProperties& properties) {
  std::string bytes;
  Write(content, properties, [&](std::string_view part) {
    bytes += part;
    return true;
  });
  return bytes;
}

std::string Written(const ReadResult& result) {
  return Written(result.content, result.properties);
}

}  // namespace text::rtf
