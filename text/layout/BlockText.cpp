#include "text/layout/BlockText.h"

#include "text/layout/FormatFonts.h"
#include "text/layout/ParagraphBox.h"
#include "text/layout/ViewLayout.h"
#include "text/outline/SymbolFonts.h"

#include <QChar>

#include <algorithm>
#include <optional>

namespace text::layout {
namespace {

constexpr int64_t kDirectionUnits = 1024;
constexpr char16_t kObject = u'\uFFFC';
constexpr char16_t kObjectStandIn = u'\u25A1';  // any character of some width; the box is drawn by the painter
constexpr char16_t kReplacement = u'\uFFFD';
constexpr char16_t kWordJoiner = u'\u2060';  // of no width, and no line breaks beside it

bool IsRightToLeftChar(char32_t c) {
  switch (QChar::direction(c)) {
    case QChar::DirR:
    case QChar::DirAL:
    case QChar::DirAN:
    case QChar::DirRLE:
    case QChar::DirRLO:
    case QChar::DirRLI:
      return true;
    default:
      return false;
  }
}

// The character at a unit; `units` is set to how many units it takes.
char32_t CharAt(std::u16string_view text, size_t i, size_t* units) {
  const bool pair = QChar::isHighSurrogate(text[i]) && i + 1 < text.size() && QChar::isLowSurrogate(text[i + 1]);
  *units = pair ? 2 : 1;
  return pair ? QChar::surrogateToUcs4(text[i], text[i + 1]) : text[i];
}

// Whether the first strong character goes right to left; nothing without one.
std::optional<bool> FirstStrong(std::u16string_view text) {
  for (size_t i = 0, units = 1; i < text.size(); i += units) {
    const char32_t c = CharAt(text, i, &units);
    const QChar::Direction direction = QChar::direction(c);
    if (direction == QChar::DirL) return false;
    if (direction == QChar::DirR || direction == QChar::DirAL) return true;
  }
  return std::nullopt;
}

// What stands for a unit that cannot be shown as it is; the rest is unchanged.
char16_t ShownUnit(char16_t unit) {
  if (unit < 0x20) return unit == u'\t' ? unit : unit == u'\f' ? u'\u2028' : static_cast<char16_t>(0x2400 + unit);
  if (unit == 0x7F) return u'\u2421';
  if (unit < 0x80) return unit;
  if (unit < 0xA0) return kReplacement;
  if (unit == u'\u2029') return u'\u2028';
  if (unit == kObject) return kObjectStandIn;
  return unit;
}

void ShowText(std::u16string& text, BlockText& block) {
  for (size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    if (unit >= 0x20 && unit < 0x7F) continue;
    if (QChar::isSurrogate(unit)) {
      size_t units = 1;
      const char32_t c = CharAt(text, i, &units);
      if (units == 1) {
        text[i] = kReplacement;
      } else {
        block.mixed = block.mixed || IsRightToLeftChar(c);
        ++i;
      }
      continue;
    }
    if (unit == u'\t') block.tabs = true;
    if (unit == u'\f') block.pageBreaks.push_back(static_cast<int>(i));
    if (unit == kObject) block.objects.push_back(static_cast<int>(i));
    if (unit >= 0x590 && !block.mixed) block.mixed = IsRightToLeftChar(unit);
    text[i] = ShownUnit(unit);
  }
}

void ReadRuns(const Content& content, Range range, BlockText& block) {
  int at = 0;
  content.ForEachPiece(range, [&](const PieceView& piece) {
    const int end = at + static_cast<int>(piece.sums.units.value());
    if (!block.runs.empty() && block.runs.back().format == piece.charFormat) {
      block.runs.back().end = end;
    } else if (end > at) {
      block.runs.push_back({at, end, piece.charFormat});
    }
    at = end;
    return true;
  });
}

// What the format makes of the text: hidden, or characters of a symbol font.
void ShowFormats(const FormatTable& formats, std::u16string& text, const BlockText& block) {
  for (const BlockRun& run : block.runs) {
    const CharFormat& format = formats[run.format];
    const Font& font = formats[format.font];
    const auto begin = text.begin() + run.begin, end = text.begin() + run.end;
    if (format.flags & kHidden) {
      std::fill(begin, end, kWordJoiner);
    } else if (font.charset == kSymbolCharset) {
      std::transform(begin, end, begin, [&](char16_t unit) { return UnicodeOfSymbol(font.name, unit); });
    }
  }
}

void ShiftBehind(std::vector<int>& offsets, int from, int by) {
  for (int& offset : offsets) offset += offset >= from ? by : 0;
}

void InsertPreedit(const Preedit& preedit, int at, BlockText& block) {
  std::u16string shown = preedit.text.toStdU16String();
  BlockText scratch;
  ShowText(shown, scratch);
  block.mixed = block.mixed || scratch.mixed;
  const int length = static_cast<int>(shown.size());
  block.preeditBegin = at;
  block.preeditLength = length;
  block.text.insert(at, QString::fromStdU16String(shown));
  ShiftBehind(block.objects, at, length);
  ShiftBehind(block.pageBreaks, at, length);
  // It takes the format of the text before it, as what is typed does.
  bool taken = false;
  for (BlockRun& run : block.runs) {
    if (run.begin >= at && taken) run.begin += length;
    if (run.end >= at) run.end += length;
    taken = taken || run.end >= at;
  }
  if (block.runs.empty()) block.runs.push_back({0, length, block.endFormat});
  for (QTextLayout::FormatRange range : preedit.formats) {
    range.start = std::clamp(range.start, 0, length);
    range.length = std::clamp(range.length, 0, length - range.start);
    range.start += at;
    if (range.length > 0) block.preeditFormats.append(range);
  }
}

}  // namespace

bool IsParagraphRightToLeft(const Content& content, Range paragraph, const ParaFormat& format) {
  if (format.rightToLeft) return true;
  // Nearly always the first few characters decide.
  for (const int64_t units : {int64_t{32}, kDirectionUnits}) {
    const Units end = content.Snap(std::min(paragraph.end, paragraph.begin + Units(units)), Bias::kLeft);
    if (const auto rightToLeft = FirstStrong(content.Utf16({paragraph.begin, end}))) return *rightToLeft;
    if (end == paragraph.end) break;
  }
  return false;
}

BlockText ReadBlockText(const Document& document, const BlockSpan& span, const Preedit* preedit, const QString& label) {
  const Content& content = document.content();
  const FormatTable& formats = content.formats();
  BlockText block;
  block.paragraph = formats[content.ParaFormatOf(span.paragraphNumber)];
  block.label = label;
  block.boxJoins = BoxJoinsOf(content, span.paragraphNumber);
  block.startsParagraph = span.startsParagraph();
  block.endsParagraph = span.endsParagraph();
  std::u16string text = content.Utf16(span.range);
  ShowText(text, block);
  ReadRuns(content, span.range, block);
  ShowFormats(formats, text, block);
  block.endFormat = content.size() == Units(0) ? document.emptyCharFormat() : content.CharFormatAt(span.range.end);
  // Only text that has such characters, or a segment whose paragraph may begin with them, needs the second look.
  if (block.paragraph.rightToLeft || block.mixed || !block.startsParagraph) {
    block.rightToLeft = IsParagraphRightToLeft(content, span.paragraph, block.paragraph);
  }
  block.mixed = block.mixed || block.rightToLeft;
  block.text = QString::fromStdU16String(text);
  if (preedit) InsertPreedit(*preedit, static_cast<int>((preedit->position - span.range.begin).value()), block);
  return block;
}

}  // namespace text::layout
