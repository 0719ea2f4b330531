#include "text/rtf/RtfWriter.h"

#include "text/rtf/RtfCharacters.h"
#include "text/rtf/RtfLimits.h"

#include <algorithm>
#include <cstdlib>

namespace text::rtf {

namespace {

constexpr size_t kSendAt = 1 << 16;
constexpr std::string_view kGenerator = "Quillmark 0.1.0";

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

constexpr std::string_view kFamilies[] = {"fnil", "froman", "fswiss", "fmodern", "fscript", "fdecor", "ftech", "fbidi"};

// By Alignment.
constexpr std::string_view kAlignments[] = {"ql", "qr", "qc", "qj"};

// What RTF can hold of a format, so that a change too small to be written is none.
CharFormat Writable(CharFormat format) {
  format.halfPoints = static_cast<uint16_t>(std::clamp<int32_t>(format.halfPoints, 1, kMaxHalfPoints));
  const int32_t steps = std::min((std::abs(ClampLength(format.offset)) + 5) / 10, kMaxHalfPoints);
  format.offset = format.offset < 0 ? -steps * 10 : steps * 10;
  return format;
}

}  // namespace

RtfWriter::RtfWriter(const Content& content, const DocumentProperties& properties, const ByteSink& sink)
    : content_(content), formats_(content.formats()), properties_(properties), sink_(sink) {}

bool RtfWriter::Run(Range range, bool wholeDocument) {
  CollectFormats(range);
  Header(wholeDocument);
  Body(range);
  const bool openEnd = wholeDocument || !paragraph_.empty();
  if (openEnd && !refused_)
    Paragraph(content_.ParaFormatOf(content_.ParagraphAt(range.end)), wholeDocument, std::nullopt);
  Raw(wholeDocument ? "}\r\n" : "}");
  if (!refused_ && !sink_(out_)) refused_ = true;
  return !refused_;
}

void RtfWriter::CollectFormats(Range range) {
  CollectFont(properties_.defaultFont);
  content_.ForEachPiece(range, [this](const PieceView& piece) {
    const auto id = static_cast<size_t>(piece.charFormat);
    if (id >= seenChars_.size()) seenChars_.resize(id + 1);
    if (piece.sums.breaks.value() > 0 && formats_[piece.paraFormat].bullet) anyBullet_ = true;
    if (seenChars_[id]) return true;
    seenChars_[id] = true;
    const CharFormat& format = formats_[piece.charFormat];
    CollectFont(format.font);
    CollectColor(format.color);
    CollectColor(format.background);
    return true;
  });
  if (formats_[content_.ParaFormatOf(content_.ParagraphAt(range.end))].bullet) anyBullet_ = true;
  if (!anyBullet_) return;
  symbolFont_ = NumberFont({"Symbol", 2, 0}).value_or(0);
}

// The font without a name is the document's default, whatever its number.
void RtfWriter::CollectFont(FontId id) {
  if (id == FontId::kDefault) id = properties_.defaultFont;
  if (fontNumbers_.contains(id)) return;
  if (const auto number = NumberFont(formats_[id])) fontNumbers_[id] = *number;
}

// Fonts that are written alike share a number.
std::optional<int32_t> RtfWriter::NumberFont(Font font) {
  font.name = CleanFontName(font.name);
  font.family = std::min<uint8_t>(font.family, std::size(kFamilies) - 1);
  if (fonts_.size() == kMaxFonts) return std::nullopt;
  const auto next = static_cast<int32_t>(fonts_.size());
  const auto [place, isNew] = fontsByValue_.try_emplace({font.name, font.charset, font.family}, next);
  if (isNew) fonts_.push_back(std::move(font));
  return place->second;
}

void RtfWriter::CollectColor(Color color) {
  if (color.isAuto() || colors_.size() >= kMaxColors - 1) return;
  color.rgb &= 0xFFFFFF;
  if (colorNumbers_.contains(color.rgb)) return;
  colors_.push_back(color);
  colorNumbers_[color.rgb] = static_cast<int32_t>(colors_.size());
}

int32_t RtfWriter::FontNumber(FontId id) const {
  const auto found = fontNumbers_.find(id);
  return found == fontNumbers_.end() ? 0 : found->second;
}

int32_t RtfWriter::ColorNumber(Color color) const {
  if (color.isAuto()) return 0;
  const auto found = colorNumbers_.find(color.rgb & 0xFFFFFF);
  return found == colorNumbers_.end() ? 0 : found->second;
}

void RtfWriter::Header(bool wholeDocument) {
  Raw("{\\rtf1\\ansi");
  Word("ansicpg", properties_.codePage);
  Raw("\\deff0\\nouicompat");
  if (properties_.defaultLanguage != 0) Word("deflang", properties_.defaultLanguage);
  FontTable();
  ColorTable();
  Raw("{\\*\\generator ");
  Raw(kGenerator);
  Raw(";}");
  if (wholeDocument) KeptGroups();
  Raw("\\viewkind4\\uc1");
  if (properties_.defaultTab != 720) Word("deftab", std::clamp(properties_.defaultTab, 1, kMaxLength));
  if (wholeDocument) Raw(properties_.headerWords);
  Raw("\r\n");
}

void RtfWriter::FontTable() {
  Raw("{\\fonttbl");
  for (size_t i = 0; i < fonts_.size(); ++i) {
    Raw("{");
    Word("f", static_cast<int64_t>(i));
    Word(kFamilies[fonts_[i].family]);
    Word("fcharset", fonts_[i].charset);
    Raw(" ");
    Name(fonts_[i].name);
    Raw(";}");
  }
  Raw("}\r\n");
}

void RtfWriter::ColorTable() {
  if (colors_.empty()) return;
  Raw("{\\colortbl ;");
  for (const Color color : colors_) {
    Word("red", color.rgb & 0xFF);
    Word("green", color.rgb >> 8 & 0xFF);
    Word("blue", color.rgb >> 16 & 0xFF);
    Raw(";");
  }
  Raw("}\r\n");
}

void RtfWriter::KeptGroups() {
  for (char c : properties_.headerGroups) {
    const auto byte = static_cast<uint8_t>(c);
    if (byte >= 0x80) {
      Hex(byte);
    } else {
      out_ += byte == 0 ? '\n' : c;  // either ends a word and is no text
    }
  }
  if (!properties_.headerGroups.empty()) Raw("\r\n");
}

void RtfWriter::Body(Range range) {
  content_.ForEachPiece(range, [this](const PieceView& piece) {
    SplitParagraphs(piece);
    return !refused_;
  });
}

// A paragraph's format is known only at its end, so its text is gathered first.
void RtfWriter::SplitParagraphs(const PieceView& piece) {
  std::string_view rest = piece.bytes;
  while (!rest.empty() && !refused_) {
    const size_t end = piece.sums.breaks.value() > 0 ? rest.find_first_of("\r\n") : std::string_view::npos;
    if (end != 0) paragraph_.push_back({rest.substr(0, end), piece.charFormat});
    if (end == std::string_view::npos) return;
    Paragraph(piece.paraFormat, true, piece.charFormat);
    rest.remove_prefix(end + (rest.substr(end).starts_with("\r\n") ? 2 : 1));
  }
}

void RtfWriter::Paragraph(ParaFormatId format, bool close, std::optional<CharFormatId> breakFormat) {
  if ((anyParagraph_ && format == currentParagraph_) || !ParagraphFormat(formats_[format])) {
    if (formats_[format].bullet) Bullet();
  }
  anyParagraph_ = true;
  currentParagraph_ = format;
  for (const Stretch& stretch : paragraph_) {
    if (refused_) break;
    Chars(stretch.format);
    Text(stretch.bytes);
  }
  paragraph_.clear();
  if (!close) return;
  if (breakFormat) Chars(*breakFormat);
  Raw("\\par\r\n");
  SendIfLarge();
}

void RtfWriter::Bullet() {
  Raw("{"), Word("pntext"), Word("f", symbolFont_), Raw("\\'B7\\tab}");
}

bool RtfWriter::ParagraphFormat(const ParaFormat& format) {
  const size_t begin = out_.size();
  Word("pard");
  if (format.bullet) {
    Bullet();
    Raw("{\\*\\pn\\pnlvlblt"), Word("pnf", symbolFont_), Raw("\\pnindent0{\\pntxtb\\'B7}}");
  }
  if (format.rightToLeft) Word("rtlpar");
  const auto length = [this](std::string_view word, int32_t twips) {
    if (twips != 0) Word(word, ClampLength(twips));
  };
  length("fi", format.firstIndent);
  length("li", format.leftIndent);
  length("ri", format.rightIndent);
  length("sb", format.spaceBefore);
  length("sa", format.spaceAfter);
  if (format.lineSpacing != 0 || format.lineSpacingMultiple) {
    Word("sl", ClampLength(format.lineSpacing));
    Word("slmult", format.lineSpacingMultiple ? 1 : 0);
  }
  for (int32_t tab : formats_[format.tabs])
    if (tab >= 0) Word("tx", ClampLength(tab));
  if (format.alignment != Alignment::kLeft) Word(kAlignments[static_cast<size_t>(format.alignment)]);
  // Formats may differ in what RTF cannot hold.
  const std::string_view words = std::string_view(out_).substr(begin);
  if (words == paragraphWords_) {
    out_.resize(begin);
    needsDelimiter_ = false;
    return false;
  }
  paragraphWords_ = words;
  return true;
}

void RtfWriter::Chars(CharFormatId id) {
  if (anyChars_ && id == currentId_) return;
  const CharFormat next = Writable(formats_[id]);
  const FontId fontId = next.font == FontId::kDefault ? properties_.defaultFont : next.font;
  const int32_t font = FontNumber(fontId);
  for (const FlagWord& word : kFlagWords)
    if ((next.flags ^ current_.flags) & word.flag) Word(next.flags & word.flag ? word.on : word.off);
  if (!anyChars_ || font != currentFont_) Word("f", font);
  if (!anyChars_ || next.halfPoints != current_.halfPoints) Word("fs", next.halfPoints);
  if (next.color != current_.color) ChangeColor("cf", ColorNumber(next.color), currentColor_);
  if (next.background != current_.background)
    ChangeColor("highlight", ColorNumber(next.background), currentBackground_);
  if (next.offset != current_.offset) Word(next.offset < 0 ? "dn" : "up", std::abs(next.offset) / 10);
  anyChars_ = true;
  currentId_ = id;
  current_ = next;
  currentFont_ = font;
  charset_ = fonts_[static_cast<size_t>(font)].charset;
}

void RtfWriter::ChangeColor(std::string_view word, int32_t number, int32_t& current) {
  if (number != current) Word(word, number);
  current = number;
}

void RtfWriter::SendIfLarge() {
  if (out_.size() < kSendAt || refused_) return;
  refused_ = !sink_(out_);
  out_.clear();
}

bool Write(const Content& content, const DocumentProperties& properties, const ByteSink& sink) {
  return RtfWriter(content, properties, sink).Run(content.all(), true);
}

std::string WriteFragment(const Content& content, Range range, const DocumentProperties& properties) {
  std::string bytes;
  const ByteSink append = [&bytes](std::string_view part) {
    bytes += part;
    return true;
  };
  RtfWriter(content, properties, append).Run(range, false);
  return bytes;
}

}  // namespace text::rtf
