#include "text/rtf/RtfReader.h"

#include "text/TextStore.h"

#include <algorithm>

namespace text::rtf {

namespace {

constexpr size_t kProgressStep = 1 << 20;
constexpr size_t kDecodeAt = 4096;
constexpr char kLowestTrail = 0x30;  // of a second byte, in any double-byte code page

}  // namespace

RtfReader::RtfReader(std::string_view bytes, const std::shared_ptr<TextStore>& store)
    : bytes_(bytes), tokenizer_(bytes), output_(store), formats_(store->formats()) {
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
  while (!done_) CloseGroup();
  FlushSurrogate();
  result_.content = output_.Finish(fragment, tailParagraph_);
  const int page = ansiCodePage_ > 0 ? ansiCodePage_ : characterSet_;
  result_.properties.codePage = IsKnownCodePage(page) ? page : 1252;
  if (const auto found = tables_.fonts.find(defaultFont_); found != tables_.fonts.end())
    result_.properties.defaultFont = formats_.Intern(found->second.font);
  return std::move(result_);
}

void RtfReader::Handle(const Token& token) {
  const bool first = firstWord_;
  if (starred_ && token.kind != TokenKind::kWord && tooDeep_ == 0) {
    if (token.kind != TokenKind::kClose) ReportLostText();
    SetMode(Mode::kMuted);
  }
  if (token.kind != TokenKind::kText && token.kind != TokenKind::kBytes && token.kind != TokenKind::kHex) FlushBytes();
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
      skipUnits_ = std::max(skipUnits_ - 1, 0);
      break;
    case TokenKind::kSymbol:
      if (token.text == "*" && skipUnits_ == 0) {
        if (!first) return SkipRest();
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

void RtfReader::Report(Dropped what) {
  if (what == Dropped::kNothing || reported_[static_cast<size_t>(what)]) return;
  reported_[static_cast<size_t>(what)] = true;
  result_.dropped.emplace_back(DroppedName(what));
}

// What stands behind a \* without a word may be text.
void RtfReader::ReportLostText() {
  if (state().mode == Mode::kBody) Report(Dropped::kUnknown);
}

// Behind a \* that is not the first thing in its group.
void RtfReader::SkipRest() {
  const size_t begin = tokenizer_.position();
  tokenizer_.SkipGroup();
  if (tokenizer_.position() > begin) ReportLostText();
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
  stack_.push_back(stack_.back());
  state().opened = Opened::kNothing;
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
      FinishList();
      break;
    case Opened::kOverride:
      FinishOverride();
      break;
    case Opened::kField:
      CloseField();
      break;
    case Opened::kInstruction:
      CloseInstruction();
      break;
    case Opened::kNumbering:
      CloseNumbering();
      break;
    case Opened::kNothing:
    case Opened::kAlternative:
      break;
  }
  if (stack_.size() == 1) {
    done_ = true;
    return;
  }
  stack_.pop_back();
}

// A paragraph format ends with its group; a last paragraph without \par keeps the one its last text had.
void RtfReader::RememberTail() {
  tailParagraph_ = CurrentParagraph();
  tailDepth_ = 0;
}

void RtfReader::Word(const Token& token) {
  const Keyword* word = FindKeyword(token.text);
  if (skipUnits_ > 0) {
    if (word && word->kind == Kind::kSymbol && word->op == Op::kCharacter) {
      --skipUnits_;
      return;
    }
    // Any other word is worth more than the fallback that some writers leave out.
    skipUnits_ = 0;
  }
  const bool destination = word && word->kind == Kind::kDestination;
  if (starred_ && !destination) return Skip(Dropped::kUnknown);
  if (!word) return;
  if (destination) {
    // Picture data is no text wherever its word stands.
    if (firstWord_ || word->op == Op::kSkipGroup) return Destination(*word);
    return;
  }
  if (word->kind == Kind::kSymbol) return Symbol(*word);
  if (word->op == Op::kUnicode) return Unicode(token.parameter);
  Property(*word, token);
}

void RtfReader::Text(std::string_view ascii) {
  if (skipUnits_ > 0) {
    const size_t skipped = std::min(ascii.size(), static_cast<size_t>(skipUnits_));
    skipUnits_ -= static_cast<int32_t>(skipped);
    ascii.remove_prefix(skipped);
    if (ascii.empty()) return;
  }
  if (!pendingBytes_.empty()) {
    if (expectTrail_ && ascii.front() >= kLowestTrail) {
      pendingBytes_ += ascii.front();
      expectTrail_ = false;
      ascii.remove_prefix(1);
    }
    FlushBytes();
    if (ascii.empty()) return;
  }
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
  skipUnits_ -= static_cast<int32_t>(skipped);
  bytes.remove_prefix(skipped);
  const CodePage& page = Page();
  if (page.multiByte()) {
    for (char byte : bytes) Byte(static_cast<uint8_t>(byte));
    return;
  }
  decoded_.clear();
  for (char byte : bytes) decoded_ += page.Character(static_cast<uint8_t>(byte));
  Emit(decoded_);
}

void RtfReader::Hex(int32_t value) {
  if (skipUnits_ > 0) {
    --skipUnits_;
    return;
  }
  if (value < 0) return;
  if (value < 0x20) {
    FlushBytes();
    if (value == '\r' || value == '\n') return Paragraph();
    if (value != 0) Character(static_cast<char32_t>(value));
    return;
  }
  Byte(static_cast<uint8_t>(value));
}

const CodePage& RtfReader::Page() {
  const int ansi = ansiCodePage_ > 0 ? ansiCodePage_ : characterSet_;
  if (state().mode == Mode::kFonts) {
    const int page = font_.codePage > 0 ? font_.codePage : CodePageOfCharset(font_.charset, ansi);
    return pages_[page == kSymbolCodePage ? ansi : page];  // names of symbol fonts are no symbols
  }
  if (state().fontGeneration != tables_.fontGeneration) LookUpFont();
  return *state().codePage;
}

void RtfReader::Byte(uint8_t byte) {
  const CodePage& page = Page();
  if (!page.multiByte()) return Emit(page.Character(byte));
  const bool full = pendingBytes_.size() >= kDecodeAt && !expectTrail_ && (byte & 0xC0) != 0x80;
  if (pendingPage_ != &page || full) FlushBytes();
  pendingPage_ = &page;
  pendingBytes_ += static_cast<char>(byte);
  expectTrail_ = !expectTrail_ && page.IsLead(byte);
}

void RtfReader::FlushBytes() {
  if (pendingBytes_.empty()) return;
  decoded_.clear();
  pendingPage_->Decode(pendingBytes_, decoded_);
  pendingBytes_.clear();
  expectTrail_ = false;
  Emit(decoded_);
}

void RtfReader::FlushSurrogate() {
  if (highSurrogate_ == 0) return;
  highSurrogate_ = 0;
  Emit("\xEF\xBF\xBD");
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
      std::string& instruction = fields_.back().instruction;
      if (instruction.size() + utf8.size() <= kMaxInstructionBytes) instruction += utf8;
      return;
    }
    default:
      return;
  }
}

void RtfReader::EmitBody(std::string_view utf8) {
  if (utf8.empty()) return;
  FlushSurrogate();
  output_.Text(utf8, CurrentChars());
  tailDepth_ = stack_.size();
  sawText_ = true;
}

bool LooksLikeRtf(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  const size_t begin = bytes.find_first_not_of(std::string_view(" \t\r\n\f\v\0", 7));
  if (begin == std::string_view::npos) return false;
  bytes.remove_prefix(begin);
  if (!bytes.starts_with("{\\rtf")) return false;
  const char next = bytes.size() > 5 ? bytes[5] : ' ';
  return !((next >= 'a' && next <= 'z') || (next >= 'A' && next <= 'Z'));
}

namespace {

ReadResult ReadAny(std::string_view bytes, std::shared_ptr<TextStore> store, bool fragment, const Progress& progress) {
  if (!LooksLikeRtf(bytes)) {
    ReadResult result;
    result.isRtf = bytes.empty();
    result.content = Content(std::move(store));
    return result;
  }
  bytes.remove_prefix(bytes.find('{'));
  return RtfReader(bytes, store).Run(fragment, progress);
}

}  // namespace

ReadResult Read(std::string_view bytes, std::shared_ptr<TextStore> store, const Progress& progress) {
  return ReadAny(bytes, std::move(store), false, progress);
}

ReadResult ReadFragment(std::string_view bytes, std::shared_ptr<TextStore> store) {
  return ReadAny(bytes, std::move(store), true, {});
}

}  // namespace text::rtf
