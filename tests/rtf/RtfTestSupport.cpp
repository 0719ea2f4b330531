#include "tests/rtf/RtfTestSupport.h"

#include "text/rtf/RtfReader.h"
#include "text/rtfwrite/RtfWrite.h"

#include <cstdio>
#include <fstream>
#include <utility>

namespace text::rtf {

namespace {

std::string Hex(Color color) {
  char digits[8];
  std::snprintf(digits, sizeof digits, "%06x", color.rgb);
  return digits;
}

std::string DescribeObject(const EmbeddedObject& object) {
  constexpr const char* kKinds[] = {"picture", "embedded", "note"};
  constexpr const char* kTypes[] = {"", "/png", "/jpeg", "/dib", "/wmf", "/emf", "/mac"};
  std::string words = kKinds[static_cast<size_t>(object.kind)];
  words += kTypes[static_cast<size_t>(object.type)];
  if (object.width || object.height) words += "/" + std::to_string(object.width) + "x" + std::to_string(object.height);
  if (object.cropLeft || object.cropTop || object.cropRight || object.cropBottom)
    words += "/crop" + std::to_string(object.cropLeft) + "," + std::to_string(object.cropTop) + "," +
             std::to_string(object.cropRight) + "," + std::to_string(object.cropBottom);
  if (!object.name.empty()) words += "/'" + object.name + "'";
  return words + " ";
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
  if (format.link != LinkId::kNone) words += "->" + formats[format.link] + " ";
  if (format.object != ObjectId::kNone) words += DescribeObject(formats[format.object]);
  if (!words.empty()) words.pop_back();
  return "<" + words + ">";
}

std::string DescribeList(const FormatTable& formats, const ParaFormat& format) {
  constexpr const char* kStyles[] = {"1", "I", "i", "A", "a", "1st", "-"};
  const List& list = formats[format.list];
  std::string words = "list" + std::to_string(list.identity) + "/" + std::to_string(format.listLevel);
  for (const ListLevel& level : list.levels) {
    words += "/" + std::string(kStyles[static_cast<size_t>(level.style)]) + "@" + std::to_string(level.start) + "'";
    for (const char c : level.label) words += c >= 0 && c < 9 ? "%" + std::to_string(c + 1) : std::string(1, c);
    words += "'" + formats[level.font].name;
  }
  return words + " ";
}

std::string DescribeRow(const TableRow& row) {
  std::string words = "row" + std::to_string(row.level) + "/" + std::to_string(row.left);
  if (row.gap != 0) words += "/gap" + std::to_string(row.gap);
  if (row.height != 0) words += "/high" + std::to_string(row.height);
  for (const TableCell& cell : row.cells) {
    words += "/" + std::to_string(cell.right);
    if (cell.borders != 0) words += "b" + std::to_string(cell.borders);
    if (!cell.shading.isAuto()) words += "#" + Hex(cell.shading);
    if (cell.joinsLeft) words += "<";
    if (cell.joinsAbove) words += "^";
  }
  return words + " ";
}

std::string DescribeBox(const ParaBox& box) {
  std::string words =
      "box" + std::to_string(box.borders) + "/" + std::to_string(box.width) + "/" + std::to_string(box.space);
  for (const Color& color : {box.color, box.shading}) words += "/" + (color.isAuto() ? "-" : Hex(color));
  return words + " ";
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
  for (const TabStop& tab : formats[format.tabs]) {
    constexpr const char* kKinds[] = {"tx", "txc", "txr", "txd"};
    words += kKinds[static_cast<size_t>(tab.kind)] + std::to_string(tab.position);
    if (tab.leader != TabLeader::kNone) words += "/" + std::to_string(static_cast<int>(tab.leader));
    words += ' ';
  }
  if (!format.box.empty()) words += DescribeBox(format.box);
  if (format.list != ListId::kNone) words += DescribeList(formats, format);
  if (format.row != RowId::kNone) words += DescribeRow(formats[format.row]);
  if (words.empty()) return {};
  words.back() = ']';
  return "[" + words;
}

// What the reader tells must be the content that it gave.
class Replay : public RtfWatcher {
 public:
  Replay(const Source& source) : source_(source), reader_(source.bytes, Bytes(), source.content.store()) {
    reader_.Watch(*this);
  }
  std::string text;
  std::string complaint;

 private:
  std::string_view Bytes() const { return std::string_view(*source_.bytes).substr(source_.bytes->find('{')); }
  Units Here() const { return source_.content.PositionOfByte(text::Bytes(static_cast<int64_t>(text.size()))); }
  void Follow(Span span) {
    if (span.begin < end_ || span.end < span.begin || span.end > Bytes().size()) complaint += "spans\n";
    end_ = span.end;
  }
  void OnText(Span span, std::string_view utf8, Text kind) override {
    Follow(span);
    CharFormat format = source_.content.formats()[source_.content.CharFormatAt(Here())];
    format.object = ObjectId::kNone;
    if (kind != Text::kGroup && format != reader_.inForce().chars) complaint += "format of " + std::string(utf8) + "\n";
    if (kind == Text::kBytes && static_cast<unsigned char>(utf8[0]) < 0x80 &&
        utf8 != Bytes().substr(span.begin, span.size()))
      complaint += "bytes of " + std::string(utf8) + "\n";
    text += utf8;
  }
  void OnFallback(Span span, bool) override { Follow(span); }
  void OnBreak(Span span, bool joins) override {
    Follow(span);
    if (joins || Here() == source_.content.size()) return;
    ParaFormat format = source_.content.formats()[source_.content.ParaFormatOf(source_.content.ParagraphAt(Here()))];
    format.row = RowId::kNone;
    format.rowMark = RowMark::kNone;
    if (format != reader_.inForce().paragraph) complaint += "paragraph before " + std::to_string(span.begin) + "\n";
    text += "\r\n";
  }
  void OnLabel(Span span) override { Follow(span); }
  void OnOldPicture(Span span) override { Follow(span); }
  void OnGroup(size_t) override {}
  void OnGroupEnd(size_t) override {}
  void OnField(size_t) override {}
  void OnParagraphWord(Span, bool) override {}
  void OnUnknownWord(Span) override {}
  void OnTableEnd(Table, size_t) override {}
  void OnEnd(size_t) override {}

  const Source& source_;
  RtfReader reader_;
  size_t end_ = 0;
};

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
      const RowMark mark = formats[piece.paraFormat].rowMark;
      if (c == '\n' && mark != RowMark::kNone) {
        line += mark == RowMark::kCellEnd ? "|" : "||";
      } else {
        line += c;
      }
      if (c == '\r' || c == '\n') line += DescribeParagraph(formats, formats[piece.paraFormat]);
    }
    return true;
  });
  const std::string tail = DescribeParagraph(formats, formats[content.lastParaFormat()]);
  return tail.empty() ? line : line + "$" + tail;
}

std::string PlainLines(const Content& content) {
  std::string lines;
  WritePlainText(content, {.lineEnd = LineEnd::kLf},
                 [&](std::string_view part) {
                   lines += part;
                   return true;
                 },
                 {.fromRichText = true});
  std::erase(lines, '\r');
  return lines;
}

std::string Written(const Content& content, const DocumentProperties& properties) {
  std::string bytes;
  WriteAnew(content, properties, [&](std::string_view part) {
    bytes += part;
    return true;
  });
  return bytes;
}

std::string Written(const ReadResult& result) {
  DocumentProperties properties = result.properties;
  properties.source = nullptr;
  return Written(result.content, properties);
}

std::string FileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::string ReadAgain(const ReadResult& read) {
  const Replay replay(*read.properties.source);
  return replay.complaint + (replay.text == TextOf(read.content) ? "" : "text: " + replay.text);
}

}  // namespace text::rtf
