// Flags, toggles and values: what they change in the group's state.
#include "text/rtf/RtfReader.h"

#include <algorithm>
#include <utility>

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
  s.said &= ~kAboutChars;
  s.charStyle.inForce = false;
}

void ResetParagraph(GroupState& s) {
  s.paragraph = ParaFormat{};
  s.numbering = {};
  s.listOverride = s.listLevel = 0;
  s.inTable = false;
  s.tableLevel = 0;
  s.tabs.reset();
  s.nextTab = {0};
  s.startIndent = s.endIndent = false;
  s.said &= ~kAboutParagraphs;
  if (s.style.inForce) s.charIdGood = false;
  s.style.EndParagraphFormat();
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
  if (const Said said = SaidBy(word)) Say(said);
  if (CharacterProperty(word, on, number) || ParagraphProperty(word, number) || StyleProperty(word, number)) return;
  if (state().mode != Mode::kStyles || word.op == Op::kFallbackCount) DocumentProperty(word, token);
}

void RtfReader::Say(Said said) {
  GroupState& s = state();
  s.said |= said;
  s.style.Say(said, stack_.size());
  s.charStyle.Say(said, stack_.size());
}

// In the style sheet these words say what style is being defined.
bool RtfReader::StyleProperty(const Keyword& word, int32_t number) {
  using StyleKind = RtfStyles::Kind;
  const bool defines = state().mode == Mode::kStyles;
  RtfStyles& styles = inForce_.styles();
  GroupState& s = state();
  switch (word.op) {
    case Op::kParagraphStyle:
      if (defines) return styles.Number(StyleKind::kParagraph, number), true;
      s.style.Name(number, stack_.size());
      s.paragraphIdGood = false;
      TellParagraphWord(false);
      break;
    case Op::kCharStyle:
      if (defines) return styles.Number(StyleKind::kCharacter, number), true;
      s.charStyle.Name(number, stack_.size());
      break;
    case Op::kOtherStyle:
      if (defines) styles.Number(StyleKind::kOther, number);
      return true;
    case Op::kStyleBase:
      if (defines) styles.BasedOn(number);
      return true;
    default:
      return false;
  }
  s.charIdGood = false;
  return true;
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
      s.fontNumber = number;
      break;
    case Op::kFontSize:
      if (number > 0) s.chars.halfPoints = static_cast<uint16_t>(std::min(number, kMaxHalfPoints));
      break;
    case Op::kColor:
      s.chars.color = inForce_.tables().ColorAt(number);
      break;
    // Unlike the others, 0 here means none even if the table gives that place a colour.
    case Op::kBackground:
      s.chars.background = number == 0 ? Color{} : inForce_.tables().ColorAt(number);
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
      s.style.Plain(stack_.size());
      break;
    case Op::kLanguage:
      return true;
    default:
      return false;
  }
  s.charIdGood = false;
  return true;
}

bool RtfReader::IndentProperty(const Keyword& word, int32_t number) {
  GroupState& s = state();
  if (word.op == Op::kStartIndent) {
    OtherIndent(kSaidLeft, number, s.startIndent, s.paragraph.leftIndent);
  } else if (word.op == Op::kEndIndent) {
    OtherIndent(kSaidRight, number, s.endIndent, s.paragraph.rightIndent);
  } else if (int32_t* length = LengthOf(s.paragraph, word.op)) {
    *length = ClampLength(number);
    if (word.op == Op::kLeftIndent) s.startIndent = false;
    if (word.op == Op::kRightIndent) s.endIndent = false;
  } else {
    return false;
  }
  return true;
}

bool RtfReader::TabProperty(const Keyword& word, int32_t number) {
  TabStop& next = state().nextTab;
  switch (word.op) {
    case Op::kTab:
      AddTab(number);
      return true;
    case Op::kBarTab:
      next = {0};
      return true;
    case Op::kTabKind:
      next.kind = static_cast<TabKind>(word.value);
      return true;
    case Op::kTabLeader:
      next.leader = static_cast<TabLeader>(word.value);
      return true;
    default:
      return false;
  }
}

bool RtfReader::TableProperty(const Keyword& word, int32_t number) {
  if (word.op != Op::kInTable && word.op != Op::kTableLevel) return false;
  if (word.op == Op::kInTable) state().inTable = true;
  if (word.op == Op::kTableLevel)
    state().tableLevel = static_cast<uint8_t>(std::clamp<int32_t>(number, 0, kMaxTableLevel));
  TellParagraphWord(false);
  return true;
}

bool RtfReader::ParagraphProperty(const Keyword& word, int32_t number) {
  if (TableProperty(word, number)) return true;
  if (!IndentProperty(word, number) && !TabProperty(word, number) && !OtherParagraphProperty(word, number))
    return false;
  state().paragraphIdGood = false;
  TellParagraphWord(word.op == Op::kParagraphDefault);
  return true;
}

bool RtfReader::OtherParagraphProperty(const Keyword& word, int32_t number) {
  GroupState& s = state();
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
    case Op::kParagraphShading:
      s.paragraph.box.shading = number == 0 ? Color{} : inForce_.tables().ColorAt(number);
      break;
    case Op::kParagraphDefault:
      ResetParagraph(s);
      break;
    default:
      return false;
  }
  return true;
}

void RtfReader::DocumentProperty(const Keyword& word, const Token& token) {
  const int32_t number = token.hasParameter ? token.parameter : word.value;
  switch (word.op) {
    case Op::kFallbackCount:
      state().fallbackCount = static_cast<uint8_t>(std::clamp(number, 0, 255));
      return;
    case Op::kAnsiCodePage:
      inForce_.tables().ansiCodePage = number;
      break;
    case Op::kCharacterSet:
      inForce_.tables().characterSet = word.value;
      break;
    case Op::kDefaultFont:
      inForce_.tables().defaultFont = number;
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
  ++inForce_.tables().fontGeneration;
}

void RtfReader::KeepHeaderWord(const Keyword& word, const Token& token) {
  std::string& words = result_.properties.headerWords;
  if (sawText_ || stack_.size() != 1) return;
  if (words.size() > kMaxHeaderWords) return LimitUnless(false);
  words += '\\';
  words += word.word;
  if (token.hasParameter) words += std::to_string(token.parameter);
}

void RtfReader::RowWord(const Keyword& word, int32_t number) {
  if (state().mode == Mode::kStyles && word.word == "ts") inForce_.styles().Number(RtfStyles::Kind::kOther, number);
  if (state().mode != Mode::kBody && state().mode != Mode::kStyles) return;
  const Color color = number == 0 ? Color{} : inForce_.tables().ColorAt(number);
  if (BoxWord(word, number, color) || state().mode == Mode::kStyles) return;
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
  Say(kSaidBox);
  state().paragraphIdGood = false;
  TellParagraphWord(false);
  return true;
}

// Words that nothing here understands belong to the definition as long as no others come between. \chftn and its like
// are text.
void RtfReader::RecordRow(const Keyword* word, const Token& token) {
  if (state().mode != Mode::kBody || tooDeep_ > 0) return;
  const bool ofBorder = !word || word->op == Op::kBorderStyle || word->op == Op::kBorderWidth ||
                        word->op == Op::kBorderSpace || word->op == Op::kBorderColor;
  if (boxSides_ != 0 && ofBorder) return;
  const bool inTable = word && (word->op == Op::kInTable || word->op == Op::kTableLevel);
  const bool colors =
      word && (word->op == Op::kCellColor || word->op == Op::kCellPatternColor || word->op == Op::kCellPattern ||
               word->op == Op::kRowPassing || word->op == Op::kBorderColor);
  const bool ofParagraph = word && word->op == Op::kOtherBorder && word->value != 0;
  const bool text = !word && (token.text.starts_with("ch") || token.text == "sectnum");
  if (text || (word && word->kind != Kind::kRow && !inTable)) {
    recordingRow_ = false;
  } else if (!inTable && !colors && !ofParagraph && !(word && word->op == Op::kRowDefault)) {
    rows_.definition(state().nestedRow).Record(token);
  }
}

// \lin and \rin count where \li and \ri do not stand.
void RtfReader::OtherIndent(Said about, int32_t number, bool& inForce, int32_t& indent) {
  if ((state().said & about) != 0 && !inForce) return;
  Say(about);
  inForce = true;
  indent = ClampLength(number);
}

void RtfReader::AddTab(int32_t position) {
  GroupState& s = state();
  TabStop stop = std::exchange(s.nextTab, {0});
  if (position < 0) return;
  stop.position = ClampLength(position);
  if (!s.tabs) {
    s.tabs = std::make_shared<Tabs>();
  } else if (s.tabs.use_count() > 1) {
    s.tabs = std::make_shared<Tabs>(*s.tabs);
  }
  const auto place = std::lower_bound(s.tabs->begin(), s.tabs->end(), stop.position,
                                      [](const TabStop& other, int32_t at) { return other.position < at; });
  if (place != s.tabs->end() && place->position == stop.position) {
    *place = stop;
    return;
  }
  if (s.tabs->size() == kMaxTabs) {
    result_.limited = true;
    return;
  }
  s.tabs->insert(place, stop);
}

}  // namespace text::rtf
