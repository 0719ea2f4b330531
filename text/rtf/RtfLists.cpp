#include "text/rtf/RtfLists.h"

#include "text/Utf16.h"
#include "text/rtfsyntax/RtfCharacters.h"
#include "text/rtfsyntax/RtfLimits.h"

#include <algorithm>
#include <utility>

namespace text::rtf {

namespace {

// \levelnfc
constexpr int32_t kNoKind = 255;

NumberStyle StyleOf(int32_t kind) {
  constexpr NumberStyle kStyles[] = {NumberStyle::kDecimal,     NumberStyle::kUpperRoman,  NumberStyle::kLowerRoman,
                                     NumberStyle::kUpperLetter, NumberStyle::kLowerLetter, NumberStyle::kOrdinal,
                                     NumberStyle::kDecimal,     NumberStyle::kOrdinal};
  if (kind == kBulletKind || kind == kNoKind) return NumberStyle::kNone;
  return kind >= 0 && static_cast<size_t>(kind) < std::size(kStyles) ? kStyles[kind] : NumberStyle::kDecimal;
}

constexpr bool IsPlaceholder(char c) {
  return c >= 0 && static_cast<size_t>(c) < kMaxListLevels;
}

bool IsControl(char c) {
  return static_cast<unsigned char>(c) < 0x20;
}

// As many characters as fit, in whatever portions they come.
void AppendLabel(std::string& label, std::string_view utf8) {
  while (!utf8.empty()) {
    const std::string_view rest = utf8;
    TakeCharacter(utf8);
    const std::string_view character = rest.substr(0, rest.size() - utf8.size());
    if (label.size() + character.size() <= kMaxLabelBytes) label += character;
  }
}

// Bytes that would count for placeholders are none in text.
void AppendText(std::string& label, std::string_view utf8) {
  while (!utf8.empty()) {
    const auto stop = std::find_if(utf8.begin(), utf8.end(), IsControl);
    const auto good = static_cast<size_t>(stop - utf8.begin());
    AppendLabel(label, utf8.substr(0, good));
    utf8.remove_prefix(std::min(utf8.size(), good + 1));
  }
}

// As the font shows it: in a symbol font every letter is a symbol.
std::string InFont(std::string_view label, const LabelFont& font) {
  std::string out, utf8;
  while (!label.empty()) {
    const char32_t c = TakeCharacter(label);
    utf8.clear();
    if (font.symbol && c > 0x20 && c < 0x7F) {
      AppendUtf8(utf8, 0xF000 + c);
    } else if (!font.symbol && c >= 0xF080 && c <= 0xF0FF && font.codePage && !font.codePage->multiByte()) {
      utf8 = font.codePage->Character(static_cast<uint8_t>(c & 0xFF));
    } else {
      AppendUtf8(utf8, c);
    }
    AppendLabel(out, utf8);
  }
  return out;
}

}  // namespace

bool IsBullet(const ListLevel& level) {
  return std::none_of(level.label.begin(), level.label.end(), IsPlaceholder);
}

bool RtfLists::BeginLevel(bool overrides) {
  level_ = &ignored_;
  ignored_ = {};
  if (overrides) {
    if (override_.levelCount > 0 && override_.levelCount <= kMaxListLevels)
      level_ = &(override_.levels[override_.levelCount - 1] = {});
    return true;
  }
  if (list_.size() == kMaxListLevels) return false;
  list_.reserve(kMaxListLevels);
  level_ = &list_.emplace_back();
  return true;
}

void RtfLists::Word(const Keyword& word, int32_t number, bool overrides) {
  switch (word.op) {
    case Op::kListId:
      listId_ = number;
      return;
    case Op::kListOverride:
      overrideNumber_ = number;
      return;
    case Op::kLevelKind:
      if (level_) level_->kind = number;
      return;
    case Op::kFont:
      if (level_) level_->font = number;
      return;
    case Op::kLeftIndent:
      if (level_) level_->leftIndent = ClampLength(number);
      return;
    case Op::kFirstIndent:
      if (level_) level_->firstIndent = ClampLength(number);
      return;
    case Op::kLevelStart:
      if (overrides && override_.levelCount > 0 && override_.levelCount <= kMaxListLevels)
        override_.starts[override_.levelCount - 1] = number;
      if (level_) level_->start = number;
      return;
    default:
      return;
  }
}

// The label begins with its length, which nobody needs, and ends with a semicolon.
void RtfLists::LevelText(std::string_view utf8) {
  if (!level_) return;
  level_->counted = true;
  AppendText(level_->label, utf8);
}

void RtfLists::LevelByte(uint8_t raw) {
  if (!level_) return;
  const bool isCount = !std::exchange(level_->counted, true) && raw < 0x20;
  if (isCount) return;
  std::string utf8;
  AppendUtf8(utf8, raw < 0x80 ? raw : 0xF000u + raw);
  if (raw >= 0x20 || IsPlaceholder(static_cast<char>(raw))) AppendLabel(level_->label, utf8);
}

bool RtfLists::FinishList() {
  level_ = nullptr;
  found_.clear(), numbersKnown_ = false;
  if (!listId_) return true;
  if (lists_.size() == kMaxLists) return false;
  lists_.insert_or_assign(*listId_, std::move(list_));
  return true;
}

bool RtfLists::FinishOverride() {
  level_ = nullptr;
  found_.clear(), numbersKnown_ = false;
  if (!listId_ || !overrideNumber_) return true;
  if (overrides_.size() == kMaxLists) return false;
  override_.list = *listId_;
  overrides_.insert_or_assign(*overrideNumber_, std::move(override_));
  return true;
}

void RtfLists::NumberingWord(const Keyword& word, int32_t number) {
  switch (word.op) {
    case Op::kNumbering:
      numbering_.kind = static_cast<PnKind>(word.value);
      return;
    case Op::kNumberStyle:
      numbering_.style = static_cast<NumberStyle>(word.value);
      return;
    case Op::kNumberStart:
      numbering_.start = number;
      return;
    case Op::kNumberFont:
      numbering_.font = number;
      return;
    default:
      return;
  }
}

void RtfLists::NumberingText(std::string_view utf8, bool before) {
  AppendText(before ? numbering_.before : numbering_.after, utf8);
}

ListUse RtfLists::FinishNumbering(const LabelFonts& fonts) {
  const Numbering& pn = numbering_;
  if (pn.kind == PnKind::kNone) return {};
  const LabelFont font = pn.font < 0 ? LabelFont{} : fonts(pn.font);
  ListLevel level;
  level.font = font.id;
  if (pn.kind == PnKind::kBullet) {
    level.style = NumberStyle::kNone;
    level.label = InFont(pn.before + pn.after, font);
  } else {
    level.style = pn.style;
    level.start = pn.start;
    level.label = InFont(pn.before, font) + '\0' + InFont(pn.after, font);
  }
  return UseOf({0, {level}}, 0, true);
}

bool RtfLists::IsUsualBullet(const ListLevel& level) const {
  if (level.label.empty() || level.label == "\u2022" || level.label == "\u00B7") return true;
  const std::string& name = formats_[level.font].name;
  return level.label == "\uF0B7" && (name.empty() || name == "Symbol");
}

ListUse RtfLists::UseOf(List list, uint8_t level, bool shown) {
  ListUse use;
  const ListLevel& own = list.levels[level];
  if (!shown || (own.style == NumberStyle::kNone && own.label == " ")) return use;
  use.bullet = IsBullet(own);
  if (use.bullet && IsUsualBullet(own)) return use;
  use.level = level;
  use.list = formats_.Intern(list);
  return use;
}

ListLevel RtfLists::LevelOf(const Level& level, const LabelFonts& fonts) {
  const LabelFont font = level.font < 0 ? LabelFont{} : fonts(level.font);
  std::string_view label = level.label;
  if (label.ends_with(';')) label.remove_suffix(1);
  return {StyleOf(level.kind), level.start, InFont(label, font), font.id};
}

std::optional<ListUse> RtfLists::Find(int32_t number, int32_t level, const LabelFonts& fonts) {
  if (const auto known = found_.find({number, level}); known != found_.end()) return known->second;
  const auto override = overrides_.find(number);
  if (override == overrides_.end()) return std::nullopt;
  const auto found = lists_.find(override->second.list);
  if (found == lists_.end() || found->second.empty()) return std::nullopt;
  std::vector<Level> levels = found->second;
  for (const auto& [index, changed] : override->second.levels)
    if (index < levels.size()) levels[index] = changed;
  for (const auto& [index, start] : override->second.starts)
    if (index < levels.size()) levels[index].start = start;
  // An override that begins anew counts for itself.
  List list{override->second.list, {}};
  if (override->second.levelCount > 0)
    list.identity = static_cast<int32_t>(static_cast<uint32_t>(list.identity) * 31u + static_cast<uint32_t>(number));
  if (list.identity == 0) list.identity = 1;
  for (const Level& one : levels) list.levels.push_back(LevelOf(one, fonts));
  const auto at = static_cast<uint8_t>(std::clamp<int32_t>(level, 0, static_cast<int32_t>(levels.size()) - 1));
  const bool isBullet = levels[at].kind == kBulletKind;
  const bool shown = isBullet || !list.levels[at].label.empty();
  ListUse use = UseOf(std::move(list), at, shown);
  use.leftIndent = levels[at].leftIndent;
  use.firstIndent = levels[at].firstIndent;
  return found_[{number, level}] = use;
}

// A level may have the usual bullet, which is no list of its own.
int32_t RtfLists::NumberOf(ListId list, const LabelFonts& fonts) {
  if (!std::exchange(numbersKnown_, true)) {
    numbers_.clear();
    for (const auto& [number, override] : overrides_)
      for (int32_t level = 0; level < static_cast<int32_t>(kMaxListLevels); ++level)
        if (const auto use = Find(number, level, fonts)) numbers_.try_emplace(use->list, number);
  }
  const auto found = list == ListId::kNone ? numbers_.end() : numbers_.find(list);
  return found == numbers_.end() ? 0 : found->second;
}

}  // namespace text::rtf
