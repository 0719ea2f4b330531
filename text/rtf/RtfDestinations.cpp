// Destinations: what a group holds, and what to do at its end.
#include "text/rtf/RtfReader.h"

#include <algorithm>
#include <charconv>

namespace text::rtf {

namespace {

std::string_view Trimmed(std::string_view text) {
  const size_t begin = text.find_first_not_of(" \t");
  return begin == std::string_view::npos ? std::string_view() : text.substr(begin);
}

bool StartsWithName(std::string_view instruction, std::string_view name) {
  return instruction.size() >= name.size() &&
         std::equal(name.begin(), name.end(), instruction.begin(),
                    [](char a, char b) { return a == (b >= 'a' && b <= 'z' ? b - 'a' + 'A' : b); });
}

struct SymbolField {
  char32_t character = 0;  // 0: the instruction is no complete SYMBOL
  std::string font;        // empty: that of the text around
};

// SYMBOL 183 \f "Symbol" \s 10, the number also as 0xB7; with \u it is a Unicode character.
SymbolField ParseSymbol(std::string_view instruction) {
  SymbolField field;
  if (!StartsWithName(instruction, "SYMBOL")) return field;
  std::string_view rest = Trimmed(instruction.substr(6));
  const bool hexadecimal = rest.starts_with("0x") || rest.starts_with("0X");
  if (hexadecimal) rest.remove_prefix(2);
  uint32_t number = 0;
  const auto parsed = std::from_chars(rest.data(), rest.data() + rest.size(), number, hexadecimal ? 16 : 10);
  if (parsed.ec != std::errc()) return field;
  const bool unicode = rest.find("\\u") != std::string_view::npos;
  field.character = unicode || number > 0xFF ? number : 0xF000 + number;
  if (const size_t at = rest.find("\\f"); at != std::string_view::npos) {
    const std::string_view name = Trimmed(rest.substr(at + 2));
    if (name.starts_with('"')) field.font = name.substr(1, name.find('"', 1) - 1);
  }
  return field;
}

}  // namespace

void RtfReader::Destination(const Keyword& word) {
  const auto what = static_cast<Dropped>(word.value);
  const bool data = what == Dropped::kPictures || what == Dropped::kObjects;
  if (word.op == Op::kSkipGroup) return firstWord_ || data ? Skip(what) : void();
  if (word.op == Op::kKeepGroup) return KeepGroup();
  if (tooDeep_ > 0) return;
  if (word.op == Op::kTransparent) return Report(what);
  OpenDestination(word.op);
}

void RtfReader::OpenDestination(Op op) {
  const Mode mode = state().mode;
  const bool inText = mode == Mode::kBody || mode == Mode::kMuted;
  switch (op) {
    case Op::kOpenFonts:
      return inText ? Enter(Mode::kFonts, Opened::kFonts) : void();
    case Op::kOpenColors:
      return inText ? Enter(Mode::kColors, Opened::kNothing) : void();
    case Op::kOpenLists:
      return inText ? Enter(Mode::kLists, Opened::kNothing) : void();
    case Op::kOpenOverrides:
      return inText ? Enter(Mode::kOverrides, Opened::kNothing) : void();
    case Op::kOpenList:
      return mode == Mode::kLists ? Enter(mode, Opened::kList) : void();
    case Op::kOpenListLevel:
      if (mode == Mode::kLists) ++list_.levelCount;
      return;
    case Op::kOpenOverride:
      return mode == Mode::kOverrides ? Enter(mode, Opened::kOverride) : void();
    case Op::kOpenNumbering:
      if (mode != Mode::kBody) return Skip(Dropped::kNothing);
      numbering_ = ListKind::kNone;
      return Enter(Mode::kNumbering, Opened::kNumbering);
    case Op::kOpenField:
      return mode == Mode::kBody ? OpenField() : void();
    case Op::kOpenInstruction:
      if (mode != Mode::kBody || fields_.empty()) return Skip(Dropped::kNothing);
      return Enter(Mode::kInstruction, Opened::kInstruction);
    case Op::kOpenAlternative:
      return Enter(mode == Mode::kBody ? Mode::kMuted : mode, Opened::kAlternative);
    case Op::kOpenUnicode:
      return OpenUnicodeAlternative();
    default:
      return;
  }
}

void RtfReader::Enter(Mode mode, Opened opened) {
  SetMode(mode);
  state().opened = opened;
  if (mode == Mode::kColors) tables_.colors.clear(), color_ = Color{};
  if (opened == Opened::kList) list_ = ListEntry{}, listId_.reset();
  if (opened == Opened::kOverride) listId_.reset(), overrideNumber_.reset();
  if (opened == Opened::kFonts) fontNumber_.reset(), font_ = FontEntry{};
}

void RtfReader::Skip(Dropped what) {
  Report(what);
  tokenizer_.SkipGroup();
}

// The group's own bytes, closing brace included, unless the file's end cuts it off or raw data makes it unfit for
// 7-bit writing.
void RtfReader::KeepGroup() {
  const bool whole = firstWord_ && state().mode == Mode::kBody;
  tokenizer_.SkipGroup();
  const size_t end = tokenizer_.position();
  if (!whole || end >= bytes_.size()) return;
  std::string& kept = result_.properties.headerGroups;
  const std::string_view group = bytes_.substr(groupBegin_, end + 1 - groupBegin_);
  if (group.find("\\bin") != std::string_view::npos) return;
  if (kept.size() + group.size() > kMaxKeptHeader) {
    result_.limited = true;
    return;
  }
  kept += group;
}

// {\upr{old}{\*\ud{new}}}: the text of the second is that of the place where \upr stands.
void RtfReader::OpenUnicodeAlternative() {
  if (stack_.size() < 3 || stack_[stack_.size() - 2].opened != Opened::kAlternative) return;
  SetMode(stack_[stack_.size() - 3].mode);
}

void RtfReader::OpenField() {
  state().opened = Opened::kField;
  fields_.push_back({{}, output_.count()});
}

void RtfReader::CloseInstruction() {
  const std::string_view instruction = Trimmed(fields_.back().instruction);
  if (StartsWithName(instruction, "HYPERLINK")) {
    Report(Dropped::kLinks);
  } else if (!StartsWithName(instruction, "SYMBOL")) {
    Report(Dropped::kFields);
  }
}

// A field shows its result; only SYMBOL means something without one.
void RtfReader::CloseField() {
  const Field field = std::move(fields_.back());
  fields_.pop_back();
  if (output_.count() != field.textBefore) return;
  const SymbolField symbol = ParseSymbol(Trimmed(field.instruction));
  if (symbol.character == 0) return;
  CurrentChars();
  if (!symbol.font.empty()) {
    state().chars.font = formats_.Intern(Font{symbol.font, 2, 0});
    state().charIdGood = false;
  }
  if (symbol.character == '\r' || symbol.character == '\n') return Paragraph();
  Character(symbol.character);
}

void RtfReader::CloseNumbering() {
  GroupState& around = stack_[stack_.size() - 2];
  around.numbering = numbering_;
  around.paragraphIdGood = false;
}

}  // namespace text::rtf
