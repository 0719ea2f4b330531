#include "text/rtf/RtfFormats.h"

#include <algorithm>

namespace text::rtf {

namespace {

size_t SlotOf(const CharFormat& format, size_t slots) {
  uint32_t hash = static_cast<uint32_t>(format.font) * 31 + format.halfPoints;
  hash = hash * 31 + format.flags;
  hash = hash * 31 + (format.color.rgb ^ format.color.rgb >> 12);
  hash = hash * 31 + (format.background.rgb ^ format.background.rgb >> 12);
  hash = hash * 31 + static_cast<uint32_t>(format.offset);
  hash = hash * 31 + static_cast<uint32_t>(format.link);
  return (hash ^ hash >> 7) % slots;
}

}  // namespace

void RtfFormats::LookUpFont(GroupState& group, int32_t number) {
  if (group.fontGeneration == tables_.fontGeneration && group.lookedUp == number) return;
  auto found = number < 0 ? tables_.fonts.end() : tables_.fonts.find(number);
  if (found == tables_.fonts.end()) found = tables_.fonts.find(tables_.defaultFont);
  int page = tables_.codePage();
  group.font = FontId::kDefault;
  if (found != tables_.fonts.end()) {
    FontEntry& entry = found->second;
    if (!entry.id) entry.id = formats_.Intern(entry.font);
    group.font = *entry.id;
    page = tables_.CodePageOf(entry);
  }
  group.codePage = &pages_[page];
  group.fontGeneration = tables_.fontGeneration;
  group.lookedUp = number;
}

CharFormat RtfFormats::StyledChars(GroupState& group, int8_t& script) {
  const Look* ofParagraph = styles_.InUse(RtfStyles::Kind::kParagraph, group.style, kAboutChars);
  const Look* ofChars = styles_.InUse(RtfStyles::Kind::kCharacter, group.charStyle, kAboutChars);
  CharFormat format = group.chars;
  int32_t font = group.fontNumber;
  script = group.script;
  if (ofParagraph || ofChars) {
    Look look = group;
    if (ofParagraph) look.Take(*ofParagraph, ofParagraph->said & kAboutChars & ~group.style.said);
    if (ofChars) look.Take(*ofChars, ofChars->said & kAboutChars & ~group.charStyle.said);
    format = look.chars;
    font = look.fontNumber;
    script = look.script;
  }
  LookUpFont(group, font);
  format.font = group.font;
  format.link = group.link;
  return format;
}

CharFormatId RtfFormats::Chars(GroupState& group) {
  if (group.charIdGood && group.fontGeneration == tables_.fontGeneration) return group.charId;
  int8_t script = 0;
  CharFormat format = StyledChars(group, script);
  if (script != 0) {
    // As word processors draw it: two thirds of the size, raised by a third or lowered by a sixth.
    const int32_t size = format.halfPoints;
    format.halfPoints = static_cast<uint16_t>(std::max(1, size * 2 / 3));
    format.offset += script > 0 ? size / 3 * 10 : -(size / 6 * 10);
  }
  CachedFormat& cached = cache_[SlotOf(format, cache_.size())];
  if (!cached.used || cached.format != format) cached = {format, formats_.Intern(format), true};
  group.charId = cached.id;
  group.charIdGood = true;
  return group.charId;
}

CharFormatId RtfFormats::CharsOfBreak(GroupState& group) {
  const CharFormatId current = Chars(group);
  if (group.link == LinkId::kNone) return current;
  CharFormat format = formats_[current];
  format.link = LinkId::kNone;
  return formats_.Intern(format);
}

bool RtfFormats::PlainChars(GroupState& group, CharFormat& plain) {
  int8_t script = 0;
  plain = StyledChars(group, script);
  return script != 0;
}

const CodePage& RtfFormats::Page(GroupState& group) {
  Chars(group);
  return *group.codePage;
}

// The indents of a list's level count where nothing else gives any.
ParaFormat RtfFormats::Finished(const Look& look, ListUse use) {
  if (look.listOverride != 0) use = lists_.Find(look.listOverride, look.listLevel, labelFonts()).value_or(use);
  ParaFormat paragraph = look.paragraph;
  paragraph.bullet = use.bullet;
  paragraph.list = use.list;
  paragraph.listLevel = use.level;
  if (use.leftIndent && !(look.said & kSaidLeft)) paragraph.leftIndent = *use.leftIndent;
  if (use.firstIndent && !(look.said & kSaidFirst)) paragraph.firstIndent = *use.firstIndent;
  if (ParaBox& box = paragraph.box; box.borders == 0) box = {0, 0, 0, {}, box.shading};
  paragraph.tabs = look.tabs ? formats_.Intern(*look.tabs) : TabsId::kNone;
  return paragraph;
}

ParaFormatId RtfFormats::Paragraph(GroupState& group) {
  if (group.paragraphIdGood) return group.paragraphId;
  const Look* style = styles_.InUse(RtfStyles::Kind::kParagraph, group.style, kAboutParagraphs);
  if (style) {
    Look look = group;
    look.Take(*style, style->said & kAboutParagraphs & ~group.style.said);
    group.paragraphId = formats_.Intern(Finished(look, group.numbering));
  } else {
    group.paragraphId = formats_.Intern(Finished(group, group.numbering));
  }
  group.paragraphIdGood = true;
  return group.paragraphId;
}

ParaFormat RtfFormats::OfStyle(const GroupState& group) {
  StyleUse use = group.style;
  use.repeated = 0;
  const Look* style = styles_.InUse(RtfStyles::Kind::kParagraph, use, kAboutParagraphs);
  return style ? Finished(*style, {}) : ParaFormat{};
}

LabelFont RtfFormats::LabelFontOf(int32_t number) {
  const auto found = tables_.fonts.find(number);
  if (found == tables_.fonts.end()) return {};
  FontEntry& entry = found->second;
  if (!entry.id) entry.id = formats_.Intern(entry.font);
  return {*entry.id, entry.charset == 2, &pages_[tables_.CodePageOf(entry)]};
}

void RtfFormats::FinishNumbering(GroupState& group) {
  group.numbering = lists_.FinishNumbering(labelFonts());
  group.style.said |= kSaidList;
  group.paragraphIdGood = false;
}

int32_t RtfFormats::NumberOf(ListId list) {
  return lists_.NumberOf(list, labelFonts());
}

}  // namespace text::rtf
