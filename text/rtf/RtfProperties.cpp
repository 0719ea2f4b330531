// Flags, toggles and values: what they change in the group's state.
#include "text/rtf/RtfReader.h"

#include <algorithm>

namespace text::rtf {

namespace {

constexpr size_t kMaxHeaderWords = 4096;

uint16_t WithFlag(uint16_t flags, int32_t flag, bool on) {
  return static_cast<uint16_t>(on ? flags | flag : flags & ~flag);
}

int32_t TwipsOf(int32_t halfPoints) {
  return std::clamp(halfPoints, -kMaxHalfPoints, kMaxHalfPoints) * 10;
}

// Null for a word that sets no length.
int32_t* LengthOf(ParaFormat& format, Op op) {
  switch (op) {
    case Op::kLeftIndent:
      return &format.leftIndent;
    case Op::kFirstIndent:
      return &format.firstIndent;
    case Op::kRightIndent:
      return &format.rightIndent;
    case Op::kSpaceBefore:
      return &format.spaceBefore;
    case Op::kSpaceAfter:
      return &format.spaceAfter;
    case Op::kLineSpacing:
      return &format.lineSpacing;
    default:
      return nullptr;
  }
}

void ResetChars(GroupState& s) {
  s.chars = CharFormat{};
  s.script = 0;
  s.fontNumber = -1;
  s.fontGeneration = 0;
}

void ResetParagraph(GroupState& s) {
  s.paragraph = ParaFormat{};
  s.numbering = {};
  s.listOverride = s.listLevel = 0;
  s.inTable = false;
  s.tableLevel = 0;
  s.tabs.reset();
}

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

void RtfReader::Property(const Keyword& word, const Token& token) {
  if (tooDeep_ > 0) return;
  const bool on = !token.hasParameter || token.parameter != 0;
  const int32_t number = token.hasParameter || word.kind != Kind::kValue ? token.parameter : word.value;
  switch (state().mode) {
    case Mode::kFonts:
      return FontWord(word, token.parameter);
    case Mode::kColors:
      return ColorWord(word, token.parameter);
    case Mode::kLists:
    case Mode::kOverrides:
      return lists_.Word(word, number, state().mode == Mode::kOverrides);
    case Mode::kNumbering:
      return lists_.NumberingWord(word, number);
    default:
      break;
  }
  if (word.kind == Kind::kRow) return RowWord(word, number);
  if (CharacterProperty(word, on, number) || ParagraphProperty(word, number)) return;
  DocumentProperty(word, token);
}

bool RtfReader::CharacterProperty(const Keyword& word, bool on, int32_t number) {
  GroupState& s = state();
  switch (word.op) {
    case Op::kCharFlag:
      s.chars.flags = WithFlag(s.chars.flags, word.value, on);
      break;
    case Op::kUnderlineOff:
      s.chars.flags = WithFlag(s.chars.flags, text::kUnderline, false);
      break;
    case Op::kFont:
      s.fontNumber = number, s.fontGeneration = 0;
      break;
    case Op::kFontSize:
      if (number > 0) s.chars.halfPoints = static_cast<uint16_t>(std::min(number, kMaxHalfPoints));
      break;
    case Op::kColor:
      s.chars.color = ColorAt(number);
      break;
    // Unlike the others, 0 here means none even if the table gives that place a colour.
    case Op::kBackground:
      s.chars.background = number == 0 ? Color{} : ColorAt(number);
      break;
    case Op::kUp:
    case Op::kDown:
      s.chars.offset = word.op == Op::kUp ? TwipsOf(number) : -TwipsOf(number);
      break;
    case Op::kScript:
      s.script = static_cast<int8_t>(on ? word.value : 0);
      break;
    case Op::kPlain:
      ResetChars(s);
      break;
    default:
      return false;
  }
  s.charIdGood = false;
  return true;
}

bool RtfReader::ParagraphProperty(const Keyword& word, int32_t number) {
  GroupState& s = state();
  if (int32_t* length = LengthOf(s.paragraph, word.op)) {
    *length = ClampLength(number);
    s.paragraphIdGood = false;
    TellParagraphWord(false);
    return true;
  }
  switch (word.op) {
    case Op::kAlign:
      s.paragraph.alignment = static_cast<Alignment>(word.value);
      break;
    case Op::kDirection:
      s.paragraph.rightToLeft = word.value != 0;
      break;
    case Op::kLineSpacingMultiple:
      s.paragraph.lineSpacingMultiple = number != 0;
      break;
    case Op::kListOverride:
      s.listOverride = number;
      break;
    case Op::kListLevel:
      s.listLevel = std::clamp(number, 0, static_cast<int32_t>(kMaxListLevels) - 1);
      break;
    case Op::kTab:
      AddTab(number);
      break;
    case Op::kParagraphShading:
      s.paragraph.box.shading = number == 0 ? Color{} : ColorAt(number);
      break;
    case Op::kInTable:
      s.inTable = true;
      TellParagraphWord(false);
      return true;
    case Op::kTableLevel:
      s.tableLevel = static_cast<uint8_t>(std::clamp<int32_t>(number, 0, kMaxTableLevel));
      TellParagraphWord(false);
      return true;
    case Op::kParagraphDefault:
      ResetParagraph(s);
      break;
    default:
      return false;
  }
  s.paragraphIdGood = false;
  TellParagraphWord(word.op == Op::kParagraphDefault);
  return true;
}

void RtfReader::DocumentProperty(const Keyword& word, const Token& token) {
  const int32_t number = token.hasParameter ? token.parameter : word.value;
  switch (word.op) {
    case Op::kFallbackCount:
      state().fallbackCount = static_cast<uint8_t>(std::clamp(number, 0, 255));
      return;
    case Op::kAnsiCodePage:
      ansiCodePage_ = number;
      break;
    case Op::kCharacterSet:
      characterSet_ = word.value;
      break;
    case Op::kDefaultFont:
      defaultFont_ = number;
      break;
    case Op::kDefaultTab:
      result_.properties.defaultTab = std::clamp(number, 1, kMaxLength);
      return;
    case Op::kDefaultLanguage:
      result_.properties.defaultLanguage = std::clamp(number, 0, 0xFFFF);
      return;
    case Op::kHeaderWord:
      KeepHeaderWord(word, token);
      return;
    default:
      return;
  }
  ++tables_.fontGeneration;
  return;
}

void RtfReader::KeepHeaderWord(const Keyword& word, const Token& token) {
  std::string& words = result_.properties.headerWords;
  if (sawText_ || stack_.size() != 1 || words.size() > kMaxHeaderWords) return;
  words += '\\';
  words += word.word;
  if (token.hasParameter) words += std::to_string(token.parameter);
}

void RtfReader::RowWord(const Keyword& word, int32_t number) {
  if (state().mode != Mode::kBody) return;
  const Color color = number == 0 ? Color{} : ColorAt(number);
  if (BoxWord(word, number, color)) return;
  RowDefinition& row = rows_.definition(state().nestedRow);
  if (word.op != Op::kRowDefault) return row.Word(word, number, color);
  row.Begin();
  recordingRow_ = true;
}

// The words about a line are the same for paragraphs, cells, rows and pages; what they are about stands before them.
bool RtfReader::BoxWord(const Keyword& word, int32_t number, Color color) {
  ParaBox& box = state().paragraph.box;
  const auto length = static_cast<uint16_t>(std::clamp<int32_t>(number, 0, kMaxBoxTwips));
  switch (word.op) {
    case Op::kOtherBorder:
      boxSides_ = static_cast<uint8_t>(word.value);
      return false;
    case Op::kBorderStyle:
      if (boxSides_ == 0) return false;
      box.borders = static_cast<uint8_t>(word.value != 0 ? box.borders | boxSides_ : box.borders & ~boxSides_);
      break;
    case Op::kBorderWidth:
      if (boxSides_ != 0) box.width = length;
      break;
    case Op::kBorderSpace:
      if (boxSides_ != 0) box.space = length;
      break;
    case Op::kBorderColor:
      if (boxSides_ != 0) box.color = color;
      break;
    default:
      boxSides_ = 0;
      return false;
  }
  if (boxSides_ == 0) return true;
  state().paragraphIdGood = false;
  TellParagraphWord(false);
  return true;
}

// Words that nothing here understands belong to the definition as long as no others come between.
void RtfReader::RecordRow(const Keyword* word, const Token& token) {
  if (state().mode != Mode::kBody || tooDeep_ > 0 || boxSides_ != 0) return;
  const bool inTable = word && (word->op == Op::kInTable || word->op == Op::kTableLevel);
  const bool colors =
      word && (word->op == Op::kCellColor || word->op == Op::kCellPatternColor || word->op == Op::kCellPattern ||
               word->op == Op::kRowPassing || word->op == Op::kBorderColor);
  if (word && word->kind != Kind::kRow && !inTable) {
    recordingRow_ = false;
  } else if (!inTable && !colors && !(word && word->op == Op::kRowDefault)) {
    rows_.definition(state().nestedRow).Record(token);
  }
}

void RtfReader::AddTab(int32_t position) {
  GroupState& s = state();
  if (position < 0) return;
  position = ClampLength(position);
  if (!s.tabs) {
    s.tabs = std::make_shared<Tabs>();
  } else if (s.tabs.use_count() > 1) {
    s.tabs = std::make_shared<Tabs>(*s.tabs);
  }
  const auto place = std::lower_bound(s.tabs->begin(), s.tabs->end(), position);
  if (place != s.tabs->end() && *place == position) return;
  if (s.tabs->size() == kMaxTabs) {
    result_.limited = true;
    return;
  }
  s.tabs->insert(place, position);
}

void RtfReader::LookUpFont() {
  GroupState& s = state();
  auto found = s.fontNumber < 0 ? tables_.fonts.end() : tables_.fonts.find(s.fontNumber);
  if (found == tables_.fonts.end()) found = tables_.fonts.find(defaultFont_);
  int page = ansiCodePage_ > 0 ? ansiCodePage_ : characterSet_;
  s.chars.font = FontId::kDefault;
  if (found != tables_.fonts.end()) {
    FontEntry& entry = found->second;
    if (!entry.id) entry.id = formats_.Intern(entry.font);
    s.chars.font = *entry.id;
    page = PageOf(entry);
  }
  s.codePage = &pages_[page];
  s.fontGeneration = tables_.fontGeneration;
  s.charIdGood = false;
}

Color RtfReader::ColorAt(int32_t index) const {
  if (index < 0 || static_cast<size_t>(index) >= tables_.colors.size()) return {};
  return tables_.colors[static_cast<size_t>(index)];
}

CharFormatId RtfReader::CurrentChars() {
  GroupState& s = state();
  if (s.fontGeneration != tables_.fontGeneration) LookUpFont();
  if (s.charIdGood) return s.charId;
  CharFormat format = s.chars;
  format.link = s.link;
  if (s.script != 0) {
    // As word processors draw it: two thirds of the size, raised by a third or lowered by a sixth.
    const int32_t size = format.halfPoints;
    format.halfPoints = static_cast<uint16_t>(std::max(1, size * 2 / 3));
    format.offset += s.script > 0 ? size / 3 * 10 : -(size / 6 * 10);
  }
  CachedFormat& cached = cache_[SlotOf(format, cache_.size())];
  if (!cached.used || cached.format != format) cached = {format, formats_.Intern(format), true};
  s.charId = cached.id;
  s.charIdGood = true;
  return s.charId;
}

CharFormatId RtfReader::CharsOfBreak() {
  const CharFormatId current = CurrentChars();
  if (state().link == LinkId::kNone) return current;
  CharFormat format = formats_[current];
  format.link = LinkId::kNone;
  return formats_.Intern(format);
}

ListUse RtfReader::ListOf(const GroupState& group) {
  if (group.listOverride == 0) return group.numbering;
  return lists_.Find(group.listOverride, group.listLevel, [this](int32_t f) { return LabelFontOf(f); })
      .value_or(group.numbering);
}

ParaFormatId RtfReader::CurrentParagraph() {
  GroupState& s = state();
  if (s.paragraphIdGood) return s.paragraphId;
  const ListUse use = ListOf(s);
  s.paragraph.bullet = use.bullet;
  s.paragraph.list = use.list;
  s.paragraph.listLevel = use.level;
  if (ParaBox& box = s.paragraph.box; box.borders == 0) box = {0, 0, 0, {}, box.shading};
  s.paragraph.tabs = s.tabs ? formats_.Intern(*s.tabs) : TabsId::kNone;
  s.paragraphId = formats_.Intern(s.paragraph);
  s.paragraphIdGood = true;
  return s.paragraphId;
}

}  // namespace text::rtf
