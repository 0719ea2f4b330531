#include "text/rtf/RtfReader.h"

#include "text/TextStore.h"

#include <algorithm>
#include <utility>

namespace text::rtf {

namespace {

constexpr size_t kProgressStep = 1 << 20;
constexpr size_t kDecodeAt = 4096;
constexpr int32_t kAttachment = 0xAC;  // stands behind the name of one, in any code page
constexpr char kLowestTrail = 0x30;    // of a second byte, in any double-byte code page

}  // namespace

RtfReader::RtfReader(std::shared_ptr<const std::string> owner, std::string_view bytes,
                     const std::shared_ptr<TextStore>& store)
    : owner_(std::move(owner)), bytes_(bytes), tokenizer_(bytes), output_(store), formats_(store->formats()) {
  result_.isRtf = true;
}

ReadResult RtfReader::Run(bool fragment, const Progress& progress) {
  stack_.reserve(64);
  stack_.emplace_back();
  tokenizer_.Next();  // the first brace
  size_t reportAt = progress ? kProgressStep : bytes_.size() + 1;
  while (!done_) {
    const Token token = tokenizer_.Next();
    if (token.kind == TokenKind::kEnd) break;
    Handle(token);
    if (tokenizer_.position() < reportAt) continue;
    reportAt = tokenizer_.position() + kProgressStep;
    if (!progress(static_cast<int64_t>(tokenizer_.position()))) {
      result_ = {};
      result_.isRtf = result_.cancelled = true;
      return std::move(result_);
    }
  }
  cut_ = !done_;
  while (!done_) CloseGroup();
  FlushSurrogate();
  if (output_.inParagraph()) tailParagraph_ = rows_.AtBreak(tailParagraph_, tailLevel_, output_.breaks());
  result_.content = output_.Finish(fragment, tailParagraph_, rows_.Finish());
  const Tables& tables = inForce_.tables();
  result_.properties.codePage = IsKnownCodePage(tables.codePage()) ? tables.codePage() : 1252;
  if (const auto found = tables.fonts.find(tables.defaultFont); found != tables.fonts.end())
    result_.properties.defaultFont = formats_.Intern(found->second.font);
  return std::move(result_);
}

void RtfReader::Handle(const Token& token) {
  const bool first = firstWord_;
  span_ = {tokenizer_.begin(), tokenizer_.position()};
  spanKind_ = RtfWatcher::Text::kWhole;
  if (starred_ && token.kind != TokenKind::kWord && tooDeep_ == 0) {
    SetMode(Mode::kMuted);
  }
  if (token.kind != TokenKind::kText && token.kind != TokenKind::kBytes && token.kind != TokenKind::kHex) FlushBytes();
  if (token.kind != TokenKind::kWord) recordingRow_ = false;
  switch (token.kind) {
    case TokenKind::kText:
      Text(token.text);
      break;
    case TokenKind::kBytes:
      RawBytes(token.text);
      break;
    case TokenKind::kHex:
      Hex(token.parameter);
      break;
    case TokenKind::kOpen:
      return OpenGroup();
    case TokenKind::kClose:
      CloseGroup();
      break;
    case TokenKind::kWord:
      Word(token);
      break;
    case TokenKind::kBinary:
      if (skipUnits_ > 0) TellSkipped(1, span_);
      break;
    case TokenKind::kSymbol:
      if (token.text == "*" && skipUnits_ == 0) {
        if (!first) return Skip();
        starred_ = true;
        return;
      }
      ControlSymbol(token.text.front());
      break;
    case TokenKind::kEnd:
      break;
  }
  firstWord_ = starred_ = false;
}

// Half a surrogate belongs to what was read before.
void RtfReader::SetMode(Mode mode) {
  if (mode != state().mode) FlushSurrogate();
  state().mode = mode;
}

void RtfReader::OpenGroup() {
  skipUnits_ = 0;
  firstWord_ = true;
  starred_ = false;
  groupBegin_ = tokenizer_.position() - 1;
  if (stack_.size() == kMaxDepth) {
    ++tooDeep_;
    result_.limited = true;
    return;
  }
  if (watcher_) watcher_->OnGroup(groupBegin_);
  stack_.push_back(stack_.back());
  const bool style = std::exchange(state().opened, Opened::kNothing) == Opened::kStyles;
  if (style) BeginStyle();
}

void RtfReader::CloseGroup() {
  skipUnits_ = 0;
  if (tooDeep_ > 0) {
    --tooDeep_;
    return;
  }
  FlushBytes();
  if (stack_.size() > 1 && stack_[stack_.size() - 2].mode != state().mode) FlushSurrogate();
  if (tailDepth_ == stack_.size()) RememberTail();
  switch (state().opened) {
    case Opened::kFonts:
      FinishFont();
      break;
    case Opened::kList:
      LimitUnless(lists_.FinishList());
      break;
    case Opened::kOverride:
      LimitUnless(lists_.FinishOverride());
      break;
    case Opened::kField:
      CloseField();
      break;
    case Opened::kNumbering:
      inForce_.FinishNumbering(stack_[stack_.size() - 2]);
      TellParagraphWord(false);
      break;
    case Opened::kStyle:
      LimitUnless(inForce_.styles().Finish(state()));
      break;
    case Opened::kNothing:
    case Opened::kStyles:
    case Opened::kNote:
    case Opened::kAlternative:
      break;
  }
  if (watcher_) TellClosing();
  if (stack_.size() == 1) {
    // Behind a table's last row there is a paragraph that no \par needs to close.
    if (output_.atRowEnd()) tailParagraph_ = CurrentParagraph();
    done_ = true;
    return;
  }
  const bool note = state().opened == Opened::kNote;
  stack_.pop_back();
  if (attachmentEnds_ > stack_.size()) attachmentEnds_ = 0;
  if (note) CloseNote();
  if (watcher_) watcher_->OnGroupEnd(tokenizer_.position());
}

void RtfReader::SawText() {
  sawText_ = true;
  state().style.sealed = state().charStyle.sealed = kAboutChars | kAboutParagraphs;
}

// A paragraph format ends with its group; a last paragraph without \par keeps the one its last text had.
void RtfReader::RememberTail() {
  tailParagraph_ = CurrentParagraph();
  tailLevel_ = state().level();
  tailDepth_ = 0;
}

void RtfReader::Word(const Token& token) {
  const Keyword* word = FindKeyword(token.text);
  if (skipUnits_ > 0) {
    if (word && word->kind == Kind::kSymbol && word->op == Op::kCharacter) return TellSkipped(1, span_);
    // Any other word is worth more than the fallback that some writers leave out.
    skipUnits_ = 0;
  }
  if (recordingRow_ || (word && word->kind == Kind::kRow)) RecordRow(word, token);
  const bool destination = word && word->kind == Kind::kDestination;
  const bool styleName = state().mode == Mode::kStyles && word && word->op == Op::kCharStyle;
  if (starred_ && !destination && !styleName) return Skip();
  if (watcher_ && (!word || word->kind == Kind::kRow) && !recordingRow_ && inBody()) watcher_->OnUnknownWord(span_);
  if (!word) return;
  if (destination) {
    // The data of pictures and objects is no text wherever its word stands.
    if (firstWord_ || word->op == Op::kPicture || word->op == Op::kNextGraphic || word->value != 0) Destination(*word);
    return;
  }
  if (word->kind == Kind::kSymbol) return Symbol(*word);
  if (word->op == Op::kUnicode) return Unicode(token.parameter);
  Property(*word, token);
}

void RtfReader::Text(std::string_view ascii) {
  if (skipUnits_ > 0) {
    const size_t skipped = std::min(ascii.size(), static_cast<size_t>(skipUnits_));
    TellSkipped(static_cast<int32_t>(skipped), SpanOf(ascii.substr(0, skipped)));
    ascii.remove_prefix(skipped);
    if (ascii.empty()) return;
  }
  if (!pendingBytes_.empty()) {
    if (expectTrail_ && ascii.front() >= kLowestTrail) {
      pendingBytes_ += ascii.front();
      expectTrail_ = false;
      ascii.remove_prefix(1);
      pendingSpan_.end = SpanOf(ascii).begin;
    }
    FlushBytes();
    if (ascii.empty()) return;
  }
  span_ = SpanOf(ascii);
  spanKind_ = RtfWatcher::Text::kBytes;
  switch (state().mode) {
    case Mode::kBody:
      return EmitBody(ascii);
    case Mode::kColors:
      return ColorText(ascii);
    case Mode::kFonts:
      return FontText(ascii);
    default:
      return Emit(ascii);
  }
}

void RtfReader::RawBytes(std::string_view bytes) {
  const size_t skipped = std::min(bytes.size(), static_cast<size_t>(skipUnits_));
  if (skipped > 0) TellSkipped(static_cast<int32_t>(skipped), SpanOf(bytes.substr(0, skipped)));
  bytes.remove_prefix(skipped);
  if (!bytes.empty() && static_cast<uint8_t>(bytes.front()) == kAttachment && EndAttachment(SpanOf(bytes.substr(0, 1))))
    bytes.remove_prefix(1);
  const CodePage& page = Page();
  if (page.multiByte()) {
    for (const char& byte : bytes) {
      span_ = SpanOf({&byte, 1});
      Byte(static_cast<uint8_t>(byte));
    }
    return;
  }
  span_ = SpanOf(bytes);
  spanKind_ = RtfWatcher::Text::kBytes;
  decoded_.clear();
  for (char byte : bytes) decoded_ += page.Character(static_cast<uint8_t>(byte));
  Emit(decoded_);
}

// The character that stands for an attachment behind its group is none.
bool RtfReader::EndAttachment(Span span) {
  if (attachmentEnds_ != stack_.size() || !pendingBytes_.empty()) return false;
  attachmentEnds_ = 0;
  if (watcher_) watcher_->OnFallback(span, true);
  return true;
}

void RtfReader::Hex(int32_t value) {
  if (skipUnits_ > 0) return TellSkipped(1, span_);
  if (value < 0) return;
  if (value == kAttachment && EndAttachment(span_)) return;
  if (state().mode == Mode::kLevelText) return lists_.LevelByte(static_cast<uint8_t>(value));
  if (value < 0x20) {
    FlushBytes();
    if (value == '\r' || value == '\n') return Paragraph();
    if (value != 0) Character(static_cast<char32_t>(value));
    return;
  }
  Byte(static_cast<uint8_t>(value));
}

const CodePage& RtfReader::Page() {
  const Mode mode = state().mode;
  if (mode == Mode::kFonts) {
    const Tables& tables = inForce_.tables();
    const int page = tables.CodePageOf(font_);
    // Names of symbol fonts are no symbols.
    return inForce_.Page(page != kSymbolCodePage ? page : tables.codePage());
  }
  if (mode == Mode::kLabelBefore || mode == Mode::kLabelAfter)
    if (const CodePage* page = inForce_.LabelFontOf(lists_.numberingFont()).codePage) return *page;
  return inForce_.Page(state());
}

void RtfReader::Byte(uint8_t byte) {
  const CodePage& page = Page();
  if (!page.multiByte()) return Emit(page.Character(byte));
  const bool full = pendingBytes_.size() >= kDecodeAt && !expectTrail_ && (byte & 0xC0) != 0x80;
  if (pendingPage_ != &page || full) FlushBytes();
  pendingPage_ = &page;
  if (pendingBytes_.empty()) pendingSpan_.begin = span_.begin;
  pendingSpan_.end = span_.end;
  pendingBytes_ += static_cast<char>(byte);
  expectTrail_ = !expectTrail_ && page.IsLead(byte);
}

void RtfReader::FlushBytes() {
  if (pendingBytes_.empty()) return;
  decoded_.clear();
  pendingPage_->Decode(pendingBytes_, decoded_);
  pendingBytes_.clear();
  expectTrail_ = false;
  const Span span = std::exchange(span_, pendingSpan_);
  spanKind_ = RtfWatcher::Text::kWhole;
  Emit(decoded_);
  span_ = span;
}

void RtfReader::FlushSurrogate() {
  if (highSurrogate_ == 0) return;
  highSurrogate_ = 0;
  const Span span = std::exchange(span_, surrogateSpan_);
  const RtfWatcher::Text kind = std::exchange(spanKind_, RtfWatcher::Text::kWhole);
  Emit("\xEF\xBF\xBD");
  span_ = span;
  spanKind_ = kind;
}

void RtfReader::Emit(std::string_view utf8) {
  if (!utf8.empty()) FlushSurrogate();
  switch (state().mode) {
    case Mode::kBody:
      return EmitBody(utf8);
    case Mode::kFonts: {
      // A little more than a name may hold, so that it is cut behind a whole character.
      std::string& name = font_.font.name;
      name += utf8.substr(0, kMaxNameBytes + 4 - name.size());
      return;
    }
    case Mode::kInstruction: {
      Field& field = fields_.back();
      field.tooLong |= field.instruction.size() + utf8.size() > kMaxInstructionBytes;
      if (!field.tooLong) field.instruction += utf8;
      return;
    }
    case Mode::kNote:
      LimitUnless(noteText_.size() + utf8.size() <= kMaxNoteBytes);
      if (noteText_.size() + utf8.size() <= kMaxNoteBytes) noteText_ += utf8;
      return;
    case Mode::kShapeName:
      if (shapeName_.size() + utf8.size() <= kMaxNameBytes) shapeName_ += utf8;
      return;
    case Mode::kLevelText:
      return lists_.LevelText(utf8);
    case Mode::kLabelBefore:
    case Mode::kLabelAfter:
      return lists_.NumberingText(utf8, state().mode == Mode::kLabelBefore);
    default:
      return;
  }
}

void RtfReader::EmitBody(std::string_view utf8) {
  if (utf8.empty()) return;
  FlushSurrogate();
  attachmentEnds_ = 0;
  if (watcher_) TellText(utf8);
  CharFormatId id = CurrentChars();
  if (symbolFont_) {
    CharFormat format = formats_[id];
    format.font = *symbolFont_;
    id = formats_.Intern(format);
  }
  output_.Text(utf8, id);
  tailDepth_ = stack_.size();
  SawText();
}

// One character that stands for the object.
void RtfReader::Anchor(EmbeddedObject object) {
  FlushSurrogate();
  attachmentEnds_ = 0;
  object.fallbackCount = state().fallbackCount;
  CharFormat format = formats_[CurrentChars()];
  if (watcher_) {
    TellObject(object);
  } else {
    format.object = formats_.Add(std::move(object));
  }
  output_.Text("\uFFFC", formats_.Intern(format));
  tailDepth_ = stack_.size();
  SawText();
}

bool LooksLikeRtf(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  const size_t begin = bytes.find_first_not_of(std::string_view(" \t\r\n\f\v\0", 7));
  if (begin == std::string_view::npos) return false;
  bytes.remove_prefix(begin);
  if (!bytes.starts_with("{\\rtf") && !bytes.starts_with("{\\urtf")) return false;
  const size_t behind = bytes.find('f') + 1;
  const char next = bytes.size() > behind ? bytes[behind] : ' ';
  return !((next >= 'a' && next <= 'z') || (next >= 'A' && next <= 'Z'));
}

namespace {

ReadResult ReadAny(std::shared_ptr<const std::string> owner, std::shared_ptr<TextStore> store, bool fragment,
                   const Progress& progress) {
  std::string_view bytes = *owner;
  if (!LooksLikeRtf(bytes)) {
    ReadResult result;
    result.isRtf = bytes.empty();
    result.content = Content(std::move(store));
    return result;
  }
  bytes.remove_prefix(bytes.find('{'));
  return RtfReader(std::move(owner), bytes, store).Run(fragment, progress);
}

}  // namespace

ReadResult Read(std::shared_ptr<const std::string> bytes, std::shared_ptr<TextStore> store, const Progress& progress) {
  ReadResult result = ReadAny(bytes, std::move(store), false, progress);
  if (result.isRtf && !result.cancelled)
    result.properties.source = std::make_shared<const Source>(Source{std::move(bytes), result.content});
  return result;
}

ReadResult Read(std::string bytes, std::shared_ptr<TextStore> store, const Progress& progress) {
  return Read(std::make_shared<const std::string>(std::move(bytes)), std::move(store), progress);
}

ReadResult ReadFragment(std::string_view bytes, std::shared_ptr<TextStore> store) {
  return ReadAny(std::make_shared<const std::string>(bytes), std::move(store), true, {});
}

}  // namespace text::rtf
