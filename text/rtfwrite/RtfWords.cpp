#include "text/rtfwrite/RtfWords.h"

#include "text/rtfsyntax/RtfCharacters.h"
#include "text/rtfsyntax/RtfCodePages.h"
#include "text/rtfsyntax/RtfLimits.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace text::rtf {

namespace {

struct FlagWord {
  uint16_t flag;
  std::string_view on, off;
};
constexpr FlagWord kFlagWords[] = {
    {text::kBold, "b", "b0"},
    {text::kItalic, "i", "i0"},
    {text::kUnderline, "ul", "ulnone"},
    {text::kStrikeThru, "strike", "strike0"},
    {text::kProtected, "protect", "protect0"},
    {text::kHidden, "v", "v0"},
};

struct LengthWord {
  int32_t ParaFormat::*field;
  std::string_view word;
};
constexpr LengthWord kLengthWords[] = {
    {&ParaFormat::firstIndent, "fi"}, {&ParaFormat::leftIndent, "li"}, {&ParaFormat::rightIndent, "ri"},
    {&ParaFormat::spaceBefore, "sb"}, {&ParaFormat::spaceAfter, "sa"},
};

struct SideWord {
  ParaBox::Side side;
  std::string_view word;
};
constexpr SideWord kSideWords[] = {
    {ParaBox::kTop, "brdrt"},   {ParaBox::kLeft, "brdrl"},      {ParaBox::kBottom, "brdrb"},
    {ParaBox::kRight, "brdrr"}, {ParaBox::kBetween, "brdrbtw"},
};

// By Alignment.
constexpr std::string_view kAlignments[] = {"ql", "qr", "qc", "qj"};

// By TabKind, by TabLeader.
constexpr std::string_view kTabKinds[] = {"", "tqc", "tqr", "tqdec"};
constexpr std::string_view kTabLeaders[] = {"", "tldot", "tlmdot", "tlhyph", "tlul", "tlth", "tleq"};

bool IsPlain(char c) {
  return c >= ' ' && c < 0x7F && c != '\\' && c != '{' && c != '}';
}

bool SameLines(const ParaFormat& a, const ParaFormat& b) {
  return ClampLength(a.lineSpacing) == ClampLength(b.lineSpacing) && a.lineSpacingMultiple == b.lineSpacingMultiple;
}

}  // namespace

bool ContinuesWord(std::string_view bytes) {
  if (bytes.empty()) return false;
  const char c = bytes.front();
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == ' ';
}

CharFormat UnknownChars() {
  CharFormat format;
  format.font = kUnknownFont;
  format.halfPoints = 0;
  return format;
}

CharFormat Writable(CharFormat format) {
  format.halfPoints = static_cast<uint16_t>(std::clamp<int32_t>(format.halfPoints, 1, kMaxHalfPoints));
  const int32_t steps = std::min((std::abs(ClampLength(format.offset)) + 5) / 10, kMaxHalfPoints);
  format.offset = format.offset < 0 ? -steps * 10 : steps * 10;
  return format;
}

void RtfWords::Word(std::string_view word, int64_t number) {
  Word(word);
  out_ += std::to_string(number);
}

void RtfWords::Hex(uint8_t byte) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const char escaped[] = {'\\', '\'', kDigits[byte >> 4], kDigits[byte & 15]};
  Raw({escaped, sizeof escaped});
}

std::string_view RtfWords::Text(std::string_view utf8, const TextCoding& coding, size_t most) {
  const size_t begin = out_.size();
  while (!utf8.empty() && out_.size() - begin < most) {
    size_t plain = 0;
    while (plain < utf8.size() && !coding.onlyUnicode && IsPlain(utf8[plain])) ++plain;
    if (plain > 0) {
      if (needsDelimiter_ && ContinuesWord(utf8)) out_ += ' ';
      Raw(utf8.substr(0, plain));
      utf8.remove_prefix(plain);
    } else {
      Character(TakeCharacter(utf8), coding);
    }
  }
  return utf8;
}

void RtfWords::Character(char32_t c, const TextCoding& coding) {
  switch (c) {
    case 0:  // no reader of rich text keeps it
      return;
    case '\\':
      return Raw("\\\\");
    case '{':
      return Raw("\\{");
    case '}':
      return Raw("\\}");
    case '\t':
      return Word("tab");
    case '\f':
      return Word("page");
    case 0x2028:
      return Word("line");
    case 0xA0:
      return Raw("\\~");
    case 0x2011:
      return Raw("\\_");
    case 0xAD:
      return Raw("\\-");
    default:
      break;
  }
  if (c < 0x20) return Hex(static_cast<uint8_t>(c));
  if (coding.onlyUnicode && c < 0x80) return UnicodeWord(c, coding.fallbackCount);
  if (coding.codePage == kSymbolCodePage && c >= 0xF020 && c <= 0xF0FF) return Hex(static_cast<uint8_t>(c & 0xFF));
  if (const uint8_t byte = coding.codePage == 1252 ? Windows1252Byte(c) : 0) return Hex(byte);
  if (c < 0x10000) return UnicodeWord(c, coding.fallbackCount);
  UnicodeWord(0xD800 + ((c - 0x10000) >> 10), coding.fallbackCount);
  UnicodeWord(0xDC00 + (c & 0x3FF), coding.fallbackCount);
}

void RtfWords::UnicodeWord(char32_t unit, int32_t fallbackCount) {
  Word("u", static_cast<int16_t>(unit));
  if (fallbackCount > 0) Raw(std::string(static_cast<size_t>(fallbackCount), '?'));
}

// Readers take it in the code page of the font, so only ASCII stands for itself.
void RtfWords::Name(std::string_view utf8) {
  while (!utf8.empty()) {
    const char32_t c = TakeCharacter(utf8);
    if (c == ';') {
      Hex(';');
    } else if (c < 0x80 && IsPlain(static_cast<char>(c))) {
      out_ += static_cast<char>(c);
    } else {
      Character(c, {});
    }
  }
}

void RtfWords::FontEntry(int32_t number, const Font& font) {
  constexpr std::array<std::string_view, 8> kFamilies{"fnil",    "froman", "fswiss", "fmodern",
                                                      "fscript", "fdecor", "ftech",  "fbidi"};
  Raw("{");
  Word("f", number);
  Word(kFamilies[std::min<size_t>(font.family, kFamilies.size() - 1)]);
  Word("fcharset", font.charset);
  Raw(" ");
  Name(font.name);
  Raw(";}");
}

void RtfWords::ColorEntry(Color color) {
  if (!color.isAuto())
    Word("red", color.rgb & 0xFF), Word("green", color.rgb >> 8 & 0xFF), Word("blue", color.rgb >> 16 & 0xFF);
  Raw(";");
}

void RtfWords::Chars(const CharFormat& wasFormat, const CharFormat& toFormat, const TableNumbers& numbers) {
  const CharFormat was = Writable(wasFormat), to = Writable(toFormat);
  for (const FlagWord& word : kFlagWords)
    if ((to.flags ^ was.flags) & word.flag) Word(to.flags & word.flag ? word.on : word.off);
  const auto number = [this](std::string_view word, int32_t before, int32_t after) {
    if (before != after) Word(word, after);
  };
  const bool known = was.font != kUnknownFont;
  if (to.font != was.font) number("f", known ? numbers.font(was.font) : -1, numbers.font(to.font));
  number("fs", known ? was.halfPoints : 0, to.halfPoints);
  if (to.color != was.color) number("cf", numbers.color(was.color), numbers.color(to.color));
  // The first colour means none even where it is one.
  const auto background = [&](Color color) { return color.isAuto() ? 0 : numbers.color(color); };
  if (to.background != was.background) number("highlight", background(was.background), background(to.background));
  if (to.offset != was.offset) Word(to.offset < 0 ? "dn" : "up", std::abs(to.offset) / 10);
}

void RtfWords::Stop(const TabStop& stop) {
  if (stop.kind != TabKind::kLeft) Word(kTabKinds[static_cast<size_t>(stop.kind)]);
  if (stop.leader != TabLeader::kNone) Word(kTabLeaders[static_cast<size_t>(stop.leader)]);
  Word("tx", ClampLength(stop.position));
}

void RtfWords::Box(const ParaBox& box, const TableNumbers& numbers) {
  for (const SideWord& side : kSideWords) {
    if ((box.borders & side.side) == 0) continue;
    Word(side.word);
    Word("brdrs");
    if (box.width > 0) Word("brdrw", box.width);
    if (box.space > 0) Word("brsp", box.space);
    if (!box.color.isAuto()) Word("brdrcf", numbers.color(box.color));
  }
  if (!box.shading.isAuto()) Word("cbpat", numbers.color(box.shading));
}

bool GivesIndents(const ParaFormat& format, const FormatTable& formats) {
  return format.list != ListId::kNone && !IsOldList(formats[format.list]);
}

bool RtfWords::ParagraphChange(const ParaFormat& from, const ParaFormat& to, const FormatTable& formats,
                               const TableNumbers& numbers, const ParaFormat& style) {
  if (from.box != to.box && !from.box.empty()) return false;
  if (from.bullet != to.bullet || from.list != to.list || from.listLevel != to.listLevel || from.row != to.row)
    return false;
  constexpr ParaFormat kUsual;
  const Tabs& had = formats[style.tabs == TabsId::kNone ? from.tabs : TabsId::kNone];
  const Tabs& wanted = formats[to.tabs];
  if (!std::includes(wanted.begin(), wanted.end(), had.begin(), had.end())) return false;
  if (from.rightToLeft != to.rightToLeft || style.rightToLeft) Word(to.rightToLeft ? "rtlpar" : "ltrpar");
  for (const LengthWord& word : kLengthWords)
    if (ClampLength(from.*word.field) != ClampLength(to.*word.field) || style.*word.field != 0)
      Word(word.word, ClampLength(to.*word.field));
  if (!SameLines(from, to) || !SameLines(style, kUsual)) {
    Word("sl", ClampLength(to.lineSpacing));
    Word("slmult", to.lineSpacingMultiple ? 1 : 0);
  }
  for (const TabStop& tab : wanted)
    if (tab.position >= 0 && !std::binary_search(had.begin(), had.end(), tab)) Stop(tab);
  if (from.box != to.box || !style.box.empty()) Box(to.box, numbers);
  if (from.alignment != to.alignment || style.alignment != kUsual.alignment)
    Word(kAlignments[static_cast<size_t>(to.alignment)]);
  return true;
}

void RtfWords::Paragraph(const ParaFormat& format, const FormatTable& formats, const TableNumbers& numbers,
                         const ParagraphWords::Kept& kept, const ParaFormat& style) {
  Word("pard");
  Words(kept.words);
  if (format.row != RowId::kNone) {
    Word("intbl");
    if (formats[format.row].level > 1) Word("itap", formats[format.row].level);
  }
  if (kept.list.empty()) GiveList(format, formats, numbers);
  ParaFormat unset;
  unset.bullet = format.bullet;
  unset.list = format.list;
  unset.listLevel = format.listLevel;
  unset.row = format.row;
  unset.tabs = kept.stops;
  if (kept.box) unset.box = format.box;
  ParaFormat given = style;
  if (GivesIndents(format, formats)) given.leftIndent = given.firstIndent = 1;
  ParagraphChange(unset, format, formats, numbers, given);
}

}  // namespace text::rtf
