// The writer's tables: fonts, colours and lists in use, and the header that gives them.
#include "text/Utf16.h"
#include "text/rtf/RtfLists.h"
#include "text/rtfsyntax/RtfCharacters.h"
#include "text/rtfsyntax/RtfCodePages.h"
#include "text/rtfsyntax/RtfLimits.h"
#include "text/rtfwrite/RtfWriter.h"

#include <algorithm>
#include <array>
#include <set>

namespace text::rtf {

void RtfWriter::CollectFormats(Range range, bool wholeDocument) {
  CollectFont(properties_.defaultFont);
  CollectFromSource(range, wholeDocument);
  // Characters first, so that the numbers do not depend on where the pieces end.
  content_.ForEachPiece(range, [this](const PieceView& piece) {
    CollectChars(piece.charFormat);
    if (piece.sums.breaks.value() > 0) {
      CollectParagraph(piece.paraFormat);
      plan_.Add(formats_, piece.paraFormat, piece.sums.breaks.value());
    }
    return true;
  });
  plan_.Finish();
  for (const RowId row : plan_.Rows())
    for (const TableCell& cell : formats_[row].cells) CollectColor(cell.shading);
  CollectParagraph(content_.ParaFormatOf(content_.ParagraphAt(range.end)));
  if (anyBullet_) numbers_.symbolFont = NumberFont({"Symbol", 2, 0}).value_or(0);
}

void RtfWriter::CollectChars(CharFormatId id) {
  const auto index = static_cast<size_t>(id);
  if (index >= seenChars_.size()) seenChars_.resize(index + 1);
  if (seenChars_[index]) return;
  seenChars_[index] = true;
  const CharFormat& format = formats_[id];
  CollectFont(format.font);
  CollectColor(format.color);
  CollectColor(format.background);
}

void RtfWriter::CollectParagraph(ParaFormatId id) {
  const auto index = static_cast<size_t>(id);
  if (index >= seenParagraphs_.size()) seenParagraphs_.resize(index + 1);
  if (seenParagraphs_[index]) return;
  seenParagraphs_[index] = true;
  const ParaFormat& format = formats_[id];
  if (format.bullet && format.list == ListId::kNone) anyBullet_ = true;
  if (format.list != ListId::kNone) CollectList(format.list);
  CollectColor(format.box.color);
  CollectColor(format.box.shading);
}

void RtfWriter::CollectList(ListId id) {
  for (const ListLevel& level : formats_[id].levels)
    if (level.font != FontId::kDefault) CollectFont(level.font);
  if (IsOldList(formats_[id])) {
    anyOldList_ = true;
    return;
  }
  if (listNumbers_.contains(id) || lists_.size() == kMaxLists) return;
  lists_.push_back(id);
  listNumbers_[id] = static_cast<int32_t>(lists_.size());
}

int32_t RtfWriter::ListNumber(ListId id) const {
  const auto found = listNumbers_.find(id);
  return found == listNumbers_.end() ? 0 : found->second + ListsBefore();
}

int32_t RtfWriter::ListsBefore() const {
  return anyBullet_ || anyOldList_ ? kOldLists : 0;
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
  font.family = std::min<uint8_t>(font.family, 7);
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
  ListTables();
  words_.Raw("{\\*\\generator ");
  words_.Raw(kGenerator);
  words_.Raw(";}");
  if (wholeDocument && !properties_.headerGroups.empty()) Group(properties_.headerGroups), words_.Raw("\r\n");
  words_.Raw("\\viewkind4\\uc1");
  if (properties_.defaultTab != 720) words_.Word("deftab", std::clamp(properties_.defaultTab, 1, kMaxLength));
  if (wholeDocument) words_.Raw(properties_.headerWords);
  words_.Raw("\r\n");
  for (const PageGroup& group : pageGroups_) Kept(group.bytes, group.fallbackCount, true), words_.Raw("\r\n");
}

void RtfWriter::FontTable() {
  words_.Raw("{\\fonttbl");
  for (size_t i = 0; i < fonts_.size(); ++i) words_.FontEntry(static_cast<int32_t>(i), fonts_[i]);
  words_.Raw("}\r\n");
}

void RtfWriter::ColorTable() {
  if (colors_.empty()) return;
  words_.Raw("{\\colortbl ;");
  for (const Color color : colors_) words_.ColorEntry(color);
  words_.Raw("}\r\n");
}

// Two lists that would share an id get different ones: readers count by it.
void RtfWriter::ListTables() {
  if (lists_.empty()) return;
  std::vector<int32_t> ids;
  std::set<int32_t> used = {0};
  for (const ListId id : lists_) {
    int32_t identity = formats_[id].identity;
    while (!used.insert(identity).second) identity = static_cast<int32_t>(static_cast<uint32_t>(identity) + 1);
    ids.push_back(identity);
  }
  words_.Raw("{\\*\\listtable");
  for (size_t i = 0; i < lists_.size(); ++i) words_.ListEntry(formats_[lists_[i]], ids[i], formats_, numbers_);
  words_.Raw("}{\\*\\listoverridetable");
  for (size_t i = 0; i < lists_.size(); ++i) words_.OverrideEntry(ids[i], ListsBefore() + static_cast<int32_t>(i) + 1);
  words_.Raw("}\r\n");
}

}  // namespace text::rtf
