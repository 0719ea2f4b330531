#include "text/rtf/RtfStyles.h"

#include "text/rtfsyntax/RtfLimits.h"

#include <vector>

namespace text::rtf {

namespace {

constexpr size_t kMaxChain = 64;  // styles based on each other; circles end there too

}  // namespace

Said SaidBy(const Keyword& word) {
  switch (word.op) {
    case Op::kCharFlag:
      return static_cast<Said>(word.value);
    case Op::kUnderlineOff:
      return text::kUnderline;
    case Op::kFont:
      return kSaidFont;
    case Op::kFontSize:
      return kSaidSize;
    case Op::kColor:
      return kSaidColor;
    case Op::kBackground:
      return kSaidBackground;
    case Op::kUp:
    case Op::kDown:
      return kSaidOffset;
    case Op::kScript:
      return kSaidScript;
    case Op::kLanguage:
      return kSaidLanguage;
    case Op::kAlign:
      return kSaidAlignment;
    case Op::kLeftIndent:
      return kSaidLeft;
    case Op::kFirstIndent:
      return kSaidFirst;
    case Op::kRightIndent:
      return kSaidRight;
    case Op::kSpaceBefore:
      return kSaidBefore;
    case Op::kSpaceAfter:
      return kSaidAfter;
    case Op::kLineSpacing:
      return kSaidLines;
    case Op::kLineSpacingMultiple:
      return kSaidMultiple;
    case Op::kDirection:
      return kSaidDirection;
    case Op::kTab:
      return kSaidTabs;
    case Op::kListOverride:
    case Op::kListLevel:
      return kSaidList;
    case Op::kParagraphShading:
      return kSaidBox;
    default:
      return 0;
  }
}

void Look::Take(const Look& from, Said what) {
  const auto flags = static_cast<uint16_t>(what & kAllCharFlags);
  said |= what;
  chars.flags = static_cast<uint16_t>((chars.flags & ~flags) | (from.chars.flags & flags));
  const auto take = [&](Said bit, auto& own, const auto& theirs) {
    if (what & bit) own = theirs;
  };
  take(kSaidFont, fontNumber, from.fontNumber);
  take(kSaidSize, chars.halfPoints, from.chars.halfPoints);
  take(kSaidColor, chars.color, from.chars.color);
  take(kSaidBackground, chars.background, from.chars.background);
  take(kSaidOffset, chars.offset, from.chars.offset);
  take(kSaidScript, script, from.script);
  take(kSaidAlignment, paragraph.alignment, from.paragraph.alignment);
  take(kSaidLeft, paragraph.leftIndent, from.paragraph.leftIndent);
  take(kSaidFirst, paragraph.firstIndent, from.paragraph.firstIndent);
  take(kSaidRight, paragraph.rightIndent, from.paragraph.rightIndent);
  take(kSaidBefore, paragraph.spaceBefore, from.paragraph.spaceBefore);
  take(kSaidAfter, paragraph.spaceAfter, from.paragraph.spaceAfter);
  take(kSaidLines, paragraph.lineSpacing, from.paragraph.lineSpacing);
  take(kSaidMultiple, paragraph.lineSpacingMultiple, from.paragraph.lineSpacingMultiple);
  take(kSaidDirection, paragraph.rightToLeft, from.paragraph.rightToLeft);
  take(kSaidBox, paragraph.box, from.paragraph.box);
  take(kSaidTabs, tabs, from.tabs);
  take(kSaidList, listOverride, from.listOverride);
  take(kSaidList, listLevel, from.listLevel);
}

// Naming a style once more, behind \pard, leaves what was said of characters.
void StyleUse::Name(int32_t style, size_t groups) {
  if (style != number || charsOff) *this = {};
  number = style;
  inForce = true;
  depth = static_cast<uint32_t>(groups);
}

void StyleUse::Say(Said what, size_t groups) {
  said |= what;
  if (groups == depth) repeated |= what & ~sealed;
}

// Directly behind the style's name it only takes back what was said before.
void StyleUse::Plain(size_t groups) {
  if ((sealed & kAboutChars) != 0 || groups != depth) charsOff = true;
  said &= ~kAboutChars;
  repeated &= ~kAboutChars;
}

void StyleUse::EndParagraphFormat() {
  inForce = false;
  said &= ~kAboutParagraphs;
  sealed &= ~kAboutParagraphs;
  repeated &= ~kAboutParagraphs;
}

bool RtfStyles::Finish(const Look& own) {
  if (kind_ == Kind::kOther || (own.said == 0 && base_ < 0)) return true;
  if (styles_.size() == kMaxStyles && !styles_.contains({kind_, number_})) return false;
  styles_.insert_or_assign({kind_, number_}, Style{base_, own, std::nullopt});
  return true;
}

const Look* RtfStyles::Find(Kind kind, int32_t number) {
  const auto found = styles_.find({kind, number});
  if (found == styles_.end()) return nullptr;
  Style& style = found->second;
  if (style.whole) return &*style.whole;
  std::vector<const Look*> chain = {&style.own};
  for (int32_t base = style.base; chain.size() < kMaxChain;) {
    const auto next = styles_.find({kind, base});
    if (next == styles_.end()) break;
    chain.push_back(&next->second.own);
    base = next->second.base;
  }
  Look& whole = style.whole.emplace();
  for (auto look = chain.rbegin(); look != chain.rend(); ++look) whole.Take(**look, (*look)->said);
  return &whole;
}

const Look* RtfStyles::InUse(Kind kind, const StyleUse& use, Said about) {
  if (!use.inForce || (about == kAboutChars && use.charsOff) || styles_.empty()) return nullptr;
  const Look* look = Find(kind, use.number);
  return look && (look->said & about) != 0 && (use.repeated & look->said & about) == 0 ? look : nullptr;
}

}  // namespace text::rtf
