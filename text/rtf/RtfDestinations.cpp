// Destinations: what a group holds, and what to do at its end.
#include "text/rtf/RtfReader.h"
#include "text/rtfsyntax/RtfDescription.h"
#include "text/rtfsyntax/RtfFields.h"
#include "text/rtfsyntax/RtfPictures.h"

#include <algorithm>
#include <utility>

namespace text::rtf {

void RtfReader::Destination(const Keyword& word) {
  if (word.op == Op::kSkipGroup) {
    Skip();
    if (watcher_ && inBody() && (word.word == "pntext" || word.word == "listtext")) watcher_->OnLabel(ThisGroup());
    return;
  }
  if (word.op == Op::kKeepGroup) return KeepGroup();
  if (word.op == Op::kPicture) return Picture();
  if (word.op == Op::kNextGraphic) return Attachment();
  if (tooDeep_ > 0 || word.op == Op::kTransparent) return;
  if (!OpenTable(word.op) && !OpenList(word.op)) OpenText(word.op);
}

// Fonts, colours, lists.
bool RtfReader::OpenTable(Op op) {
  const Mode mode = state().mode;
  const bool inText = mode == Mode::kBody || mode == Mode::kMuted;
  switch (op) {
    case Op::kOpenFonts:
      if (inText) Enter(Mode::kFonts, Opened::kFonts);
      return true;
    case Op::kOpenColors:
      if (inText) Enter(Mode::kColors, Opened::kNothing);
      return true;
    case Op::kOpenStyles:
      if (inText) Enter(Mode::kStyles, Opened::kStyles);
      return true;
    case Op::kOpenLists:
      if (inText) Enter(Mode::kLists, Opened::kNothing);
      return true;
    case Op::kOpenOverrides:
      if (inText) Enter(Mode::kOverrides, Opened::kNothing);
      return true;
    default:
      return false;
  }
}

// What is inside the tables of lists, and the numbering of single paragraphs; elsewhere it is no text either.
bool RtfReader::OpenList(Op op) {
  const Mode mode = state().mode;
  const bool overrides = mode == Mode::kOverrides, lists = mode == Mode::kLists;
  switch (op) {
    case Op::kOpenList:
      lists ? Enter(mode, Opened::kList) : Skip();
      return true;
    case Op::kOpenListLevel:
      lists || overrides ? LimitUnless(lists_.BeginLevel(overrides)) : Skip();
      return true;
    case Op::kOpenLevelText:
      lists || overrides ? Enter(Mode::kLevelText, Opened::kNothing) : Skip();
      return true;
    case Op::kOpenOverride:
      overrides ? Enter(mode, Opened::kOverride) : Skip();
      return true;
    case Op::kOpenOverrideLevel:
      overrides ? lists_.BeginOverrideLevel() : Skip();
      return true;
    case Op::kOpenNumbering:
      mode == Mode::kBody ? Enter(Mode::kNumbering, Opened::kNumbering) : Skip();
      return true;
    case Op::kOpenLabelBefore:
    case Op::kOpenLabelAfter:
      if (mode != Mode::kNumbering) {
        Skip();
      } else {
        Enter(op == Op::kOpenLabelBefore ? Mode::kLabelBefore : Mode::kLabelAfter, Opened::kNothing);
      }
      return true;
    default:
      return false;
  }
}

bool RtfReader::OpenText(Op op) {
  const Mode mode = state().mode;
  switch (op) {
    case Op::kOpenField:
      if (mode == Mode::kBody) OpenField();
      return true;
    case Op::kOpenInstruction:
      if (mode != Mode::kBody || fields_.empty()) {
        Skip();
      } else {
        Enter(Mode::kInstruction, Opened::kNothing);
      }
      return true;
    case Op::kOpenResult:
      if (mode == Mode::kBody && !fields_.empty()) OpenResult();
      return true;
    case Op::kOpenNote:
      OpenNote();
      return true;
    case Op::kObject:
      Object();
      return true;
    case Op::kOpenShapePicture:
      sawShapePicture_ = true;
      if (watcher_ && inBody()) watcher_->OnField(groupBegin_);
      return true;
    case Op::kOpenOldPicture:
      if (!std::exchange(sawShapePicture_, false)) return true;
      Skip();
      if (watcher_ && inBody()) watcher_->OnOldPicture(ThisGroup());
      return true;
    case Op::kOpenShapeProperty:
      shapeName_.clear();
      SetMode(mode == Mode::kBody ? Mode::kShape : Mode::kMuted);
      return true;
    case Op::kOpenShapeValue:
      if (mode == Mode::kBody) Skip();
      return true;
    case Op::kOpenShapeName:
      SetMode(mode == Mode::kShape ? Mode::kShapeName : Mode::kMuted);
      return true;
    case Op::kOpenNestedRow:
      state().nestedRow = true;
      return true;
    case Op::kOpenAlternative:
      Enter(mode == Mode::kBody ? Mode::kMuted : mode, Opened::kAlternative);
      return true;
    case Op::kOpenUnicode:
      OpenUnicodeAlternative();
      return true;
    default:
      return false;
  }
}

void RtfReader::Enter(Mode mode, Opened opened) {
  SetMode(mode);
  state().opened = opened;
  if (mode == Mode::kColors) inForce_.tables().colors.clear(), color_ = Color{};
  if (opened == Opened::kList) lists_.BeginList();
  if (opened == Opened::kOverride) lists_.BeginOverride();
  if (opened == Opened::kNumbering) lists_.BeginNumbering();
  if (opened == Opened::kFonts) fontNumber_.reset(), font_ = FontEntry{};
}

// Each group of the style sheet is a style of its own.
void RtfReader::BeginStyle() {
  static_cast<Look&>(state()) = {};
  state().opened = Opened::kStyle;
  inForce_.styles().Begin();
}

// The group's own bytes, closing brace included, unless the file's end cuts it off or raw data makes it unfit for
// 7-bit writing.
void RtfReader::KeepGroup() {
  const bool whole = firstWord_ && state().mode == Mode::kBody;
  Skip();
  if (!whole) return;
  const std::string_view group = WholeGroup().bytes;
  std::string& kept = result_.properties.headerGroups;
  if (group.empty() || group.find("\\bin") != std::string_view::npos) return;
  if (kept.size() + group.size() > kMaxKeptHeader) {
    result_.limited = true;
    return;
  }
  const int count = state().fallbackCount;
  if (count != 1) kept += "\\uc" + std::to_string(count);
  kept += group;
  if (count != 1) kept += "\\uc1 ";
}

// From the brace that opened the innermost group to the one that is about to close it; empty when either is missing.
SharedBytes RtfReader::WholeGroup() const {
  const size_t end = tokenizer_.position();
  if (end >= bytes_.size()) return {};
  return {owner_, bytes_.substr(groupBegin_, end + 1 - groupBegin_)};
}

// {\upr{old}{\*\ud{new}}}: the text of the second is that of the place where \upr stands.
void RtfReader::OpenUnicodeAlternative() {
  if (stack_.size() < 3 || stack_[stack_.size() - 2].opened != Opened::kAlternative) return;
  SetMode(stack_[stack_.size() - 3].mode);
}

void RtfReader::OpenField() {
  state().opened = Opened::kField;
  fields_.push_back({{}, false, {}, output_.count(), groupBegin_});
  if (watcher_) watcher_->OnField(groupBegin_);
}

void RtfReader::OpenResult() {
  Field& field = fields_.back();
  if (!field.link) {
    const std::string target = field.tooLong ? std::string() : LinkTarget(field.instruction);
    field.link = formats_.InternLink(target);
  }
  if (field.link == LinkId::kNone) return;
  state().link = *field.link;
  state().charIdGood = false;
}

// A field shows its result; only SYMBOL means something without one.
void RtfReader::CloseField() {
  const Field field = std::move(fields_.back());
  fields_.pop_back();
  if (output_.count() != field.textBefore) return;
  const SymbolField symbol = ParseSymbol(field.instruction);
  if (symbol.character == 0) return;
  span_ = {field.begin, tokenizer_.position()};
  spanKind_ = RtfWatcher::Text::kGroup;
  if (symbol.character == '\r' || symbol.character == '\n') return Paragraph();
  if (!symbol.font.empty()) symbolFont_ = formats_.Intern(Font{symbol.font, 2, 0});
  Character(symbol.character);
  symbolFont_.reset();
}

// A note within a note, or in what is no text, is passed over.
void RtfReader::OpenNote() {
  if (state().mode != Mode::kBody) return Skip();
  Enter(Mode::kNote, Opened::kNote);
  noteText_.clear();
  noteBegin_ = groupBegin_;
}

void RtfReader::CloseNote() {
  EmbeddedObject note;
  note.kind = ObjectKind::kNote;
  const size_t begin = noteText_.find_first_not_of(" \t\n");
  if (begin != std::string::npos) note.name = noteText_.substr(begin, noteText_.find_last_not_of(" \t\n") + 1 - begin);
  const size_t end = tokenizer_.position();
  if (!cut_) note.rtf = {owner_, bytes_.substr(noteBegin_, end - noteBegin_)};
  Anchor(std::move(note));
}

void RtfReader::Picture() {
  const bool ofShape = state().mode == Mode::kShape && shapeName_ == "pib";
  if (tooDeep_ > 0 || (state().mode != Mode::kBody && !ofShape)) return Skip();
  const bool whole = firstWord_;
  ReadingPictures reading{owner_, inForce_.Page(state()), state().fallbackCount};
  EmbeddedObject picture = ReadPicture(tokenizer_, reading);
  LimitUnless(!reading.limited);
  // The description stands in a property behind that of the picture; picture, value and property must end before.
  if (ofShape && picture.name.empty())
    picture.name = FindDescription(tokenizer_, 4, descriptionScan_, reading.page, reading.fallbackCount);
  if (whole) picture.rtf = WholeGroup();
  Anchor(std::move(picture));
}

// An object is one character, unless its result is text that wants to be read.
void RtfReader::Object() {
  if (state().mode != Mode::kBody || state().inObject) return;
  ReadingPictures reading{owner_, inForce_.Page(state()), state().fallbackCount};
  ScannedObject scanned = ScanObject(tokenizer_, reading);
  if (scanned.showsText) {
    state().inObject = true;
    if (watcher_) watcher_->OnField(groupBegin_);
    return;
  }
  LimitUnless(!reading.limited);
  Skip();
  scanned.object.rtf = WholeGroup();
  Anchor(std::move(scanned.object));
}

void RtfReader::Attachment() {
  if (tooDeep_ > 0 || state().mode != Mode::kBody) return Skip();
  const bool whole = firstWord_;
  EmbeddedObject picture = ReadAttachment(tokenizer_);
  if (whole) picture.rtf = WholeGroup();
  Anchor(std::move(picture));
  attachmentEnds_ = stack_.size() - 1;
}

}  // namespace text::rtf
