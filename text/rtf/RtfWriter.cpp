#include "text/rtf/RtfWriter.h"

#include "text/rtf/RtfCharacters.h"
#include "text/rtf/RtfCodePages.h"
#include "text/rtf/RtfLimits.h"

#include <algorithm>
#include <cstdlib>

namespace text::rtf {

namespace {

constexpr size_t kSendAt = 1 << 16;
constexpr std::string_view kGenerator = "Quillmark 0.1.0";

constexpr std::string_view kFamilies[] = {"fnil", "froman", "fswiss", "fmodern", "fscript", "fdecor", "ftech", "fbidi"};

}  // namespace

RtfWriter::RtfWriter(const Content& content, const DocumentProperties& properties, const ByteSink& sink)
    : content_(content), formats_(content.formats()), properties_(properties), sink_(sink) {
  numbers_.font = [this](FontId id) { return FontNumber(id); };
  numbers_.color = [this](Color color) { return ColorNumber(color); };
}

bool RtfWriter::Run(Range range, bool wholeDocument) {
  CollectFormats(range);
  Header(wholeDocument);
  Body(range);
  const bool openEnd = wholeDocument || !paragraph_.empty();
  if (openEnd && !refused_)
    Paragraph(content_.ParaFormatOf(content_.ParagraphAt(range.end)), wholeDocument, std::nullopt);
  words_.Raw(wholeDocument ? "}\r\n" : "}");
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
  numbers_.symbolFont = NumberFont({"Symbol", 2, 0}).value_or(0);
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
  if (id == kUnknownFont) return -1;
  if (id == FontId::kDefault) id = properties_.defaultFont;
  const auto found = fontNumbers_.find(id);
  return found == fontNumbers_.end() ? 0 : found->second;
}

int32_t RtfWriter::ColorNumber(Color color) const {
  if (color.isAuto()) return 0;
  const auto found = colorNumbers_.find(color.rgb & 0xFFFFFF);
  return found == colorNumbers_.end() ? 0 : found->second;
}

void RtfWriter::Header(bool wholeDocument) {
  words_.Raw("{\\rtf1\\ansi");
  words_.Word("ansicpg", properties_.codePage);
  words_.Raw("\\deff0\\nouicompat");
  if (properties_.defaultLanguage != 0) words_.Word("deflang", properties_.defaultLanguage);
  FontTable();
  ColorTable();
  words_.Raw("{\\*\\generator ");
  words_.Raw(kGenerator);
  words_.Raw(";}");
  if (wholeDocument) KeptGroups();
  words_.Raw("\\viewkind4\\uc1");
  if (properties_.defaultTab != 720) words_.Word("deftab", std::clamp(properties_.defaultTab, 1, kMaxLength));
  if (wholeDocument) words_.Raw(properties_.headerWords);
  words_.Raw("\r\n");
}

void RtfWriter::FontTable() {
  words_.Raw("{\\fonttbl");
  for (size_t i = 0; i < fonts_.size(); ++i) {
    words_.Raw("{");
    words_.Word("f", static_cast<int64_t>(i));
    words_.Word(kFamilies[fonts_[i].family]);
    words_.Word("fcharset", fonts_[i].charset);
    words_.Raw(" ");
    words_.Name(fonts_[i].name);
    words_.Raw(";}");
  }
  words_.Raw("}\r\n");
}

void RtfWriter::ColorTable() {
  if (colors_.empty()) return;
  words_.Raw("{\\colortbl ;");
  for (const Color color : colors_) {
    words_.Word("red", color.rgb & 0xFF);
    words_.Word("green", color.rgb >> 8 & 0xFF);
    words_.Word("blue", color.rgb >> 16 & 0xFF);
    words_.Raw(";");
  }
  words_.Raw("}\r\n");
}

void RtfWriter::KeptGroups() {
  for (char c : properties_.headerGroups) {
    const auto byte = static_cast<uint8_t>(c);
    if (byte >= 0x80) {
      words_.Hex(byte);
    } else {
      out_ += byte == 0 ? '\n' : c;  // either ends a word and is no text
    }
  }
  if (!properties_.headerGroups.empty()) words_.Raw("\r\n");
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
    if (formats_[format].bullet) words_.Bullet(numbers_);
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
  words_.Raw("\\par\r\n");
  SendIfLarge();
}

bool RtfWriter::ParagraphFormat(const ParaFormat& format) {
  const size_t begin = out_.size();
  words_.Paragraph(format, formats_, numbers_);
  // Formats may differ in what RTF cannot hold.
  const std::string_view words = std::string_view(out_).substr(begin);
  if (words == paragraphWords_) {
    words_.CutTo(begin);
    return false;
  }
  paragraphWords_ = words;
  return true;
}

void RtfWriter::Chars(CharFormatId id) {
  if (anyChars_ && id == currentId_) return;
  const CharFormat& next = formats_[id];
  words_.Chars(current_, next, numbers_);
  anyChars_ = true;
  currentId_ = id;
  current_ = next;
  const auto font = static_cast<size_t>(FontNumber(next.font));
  coding_.codePage = CodePageOfCharset(fonts_[font].charset, properties_.codePage);
}

void RtfWriter::Text(std::string_view bytes) {
  while (!bytes.empty() && !refused_) {
    bytes = words_.Text(bytes, coding_, kSendAt);
    SendIfLarge();
  }
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
