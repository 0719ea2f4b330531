#include "text/print/PageTexts.h"

#include "text/rtfsyntax/RtfTokenizer.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <vector>

namespace text::layout {
namespace {

using rtf::RtfTokenizer;
using rtf::Token;
using rtf::TokenKind;

// What stands in a text for a number that is known only when it is printed.
constexpr char16_t kPageField = u'\uF8F0', kPagesField = u'\uF8F1', kNoteField = u'\uF8F2';
constexpr size_t kMostOfAGroup = 1 << 20;

std::string FieldText(char16_t field) {
  return "{\\uc1\\u" + std::to_string(static_cast<int16_t>(field)) + "?}";
}

std::optional<char16_t> FieldOf(std::string_view instruction) {
  const size_t begin = std::min(instruction.find_first_not_of(' '), instruction.size());
  const std::string_view name = instruction.substr(begin, instruction.find_first_of(" \\", begin) - begin);
  if (name == "PAGE") return kPageField;
  if (name == "NUMPAGES" || name == "SECTIONPAGES") return kPagesField;
  return std::nullopt;
}

// A group's bytes with marks in place of the numbers that it asks for.
class FieldMarker {
 public:
  explicit FieldMarker(std::string_view bytes) : bytes_(bytes), tokenizer_(bytes) {}
  std::string Run() {
    for (Token token = tokenizer_.Next(); token.kind != TokenKind::kEnd; token = tokenizer_.Next()) Take(token);
    return std::move(out_);
  }

 private:
  void Copy() { out_ += bytes_.substr(tokenizer_.begin(), tokenizer_.position() - tokenizer_.begin()); }
  void Take(const Token& token) {
    switch (token.kind) {
      case TokenKind::kOpen:
        ++depth_;
        return Copy();
      case TokenKind::kClose:
        Close();
        --depth_;
        return Copy();
      case TokenKind::kWord:
        return Word(token);
      case TokenKind::kText:
      case TokenKind::kHex:
      case TokenKind::kBytes:
        if (instructionAt_) instruction_ += token.text;
        return resultAt_ && field_ ? PutNumber() : Copy();
      default:
        return Copy();
    }
  }
  void Word(const Token& token) {
    const std::string_view word = token.text;
    if (word == "chpgn" || word == "chftn") {
      out_ += FieldText(word == "chpgn" ? kPageField : kNoteField);
      return;
    }
    if (word == "fldinst") {
      instructionAt_ = depth_;
      instruction_.clear();
    } else if (word == "fldrslt") {
      resultAt_ = depth_;
      put_ = false;
    }
    Copy();
  }
  void Close() {
    if (instructionAt_ == depth_) {
      field_ = FieldOf(instruction_);
      instructionAt_.reset();
    } else if (resultAt_ == depth_) {
      if (field_) PutNumber();
      resultAt_.reset();
      field_.reset();
    }
  }
  // In place of the result's first letters; the others go.
  void PutNumber() {
    if (!put_) out_ += FieldText(*field_);
    put_ = true;
  }

  std::string_view bytes_;
  RtfTokenizer tokenizer_;
  std::string out_;
  int depth_ = 0;
  std::optional<int> instructionAt_, resultAt_;
  std::string instruction_;
  std::optional<char16_t> field_;
  bool put_ = false;
};

bool IsHeadGroup(std::string_view name) {
  constexpr std::string_view kNames[] = {"fonttbl", "colortbl", "stylesheet", "listtable", "listoverridetable"};
  return std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames);
}

bool IsHeadWord(std::string_view name) {
  constexpr std::string_view kNames[] = {"mac", "pc", "pca", "ansicpg", "deff", "deftab"};
  return std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames);
}

bool IsPassedOver(std::string_view name) {
  constexpr std::string_view kNames[] = {"pict", "object", "objdata", "info", "themedata", "datastore", "footnote"};
  return std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames);
}

bool Asks(const Content& content, char16_t field) {
  return content.Utf16(content.all()).find(field) != std::u16string::npos;
}

}  // namespace

PageTexts::PageTexts(const rtf::DocumentProperties& properties, const PageWords& words) : words_(words) {
  if (!properties.source || !properties.source->bytes) return;
  Find(*properties.source->bytes);
  for (size_t which = 0; which < texts_.size(); ++which) {
    for (size_t side = 0; side < texts_[which].size(); ++side) {
      if (groups_[which][side].empty()) continue;
      texts_[which][side] = Read(groups_[which][side]);
      countPages_ = countPages_ || Asks(texts_[which][side]->content, kPagesField);
    }
  }
}

// A header or footer, unless there was one before; the slice is without its braces and first word.
bool PageTexts::Keep(std::string_view name, std::string_view group) {
  const bool header = name.starts_with("header"), footer = name.starts_with("footer");
  if ((!header && !footer) || name.size() > 7) return false;
  const char last = name.size() == 7 ? name.back() : ' ';
  const Side side = last == 'l' ? kLeft : last == 'r' ? kRight : last == 'f' ? kFirst : kAll;
  if (last != ' ' && side == kAll) return false;
  std::string_view& kept = groups_[header ? 0 : 1][side];
  if (kept.empty() && group.size() <= kMostOfAGroup) kept = group;
  return true;
}

void PageTexts::Find(std::string_view bytes) {
  // A text without them is not read to its end.
  const bool beside = bytes.find("{\\header") != bytes.npos || bytes.find("{\\footer") != bytes.npos;
  RtfTokenizer tokenizer(bytes);
  int depth = 0;
  size_t begin = 0;
  bool atBegin = false, any = false;  // of a group
  for (Token token = tokenizer.Next(); token.kind != TokenKind::kEnd; token = tokenizer.Next()) {
    const bool first = atBegin;
    atBegin = token.kind == TokenKind::kOpen || (first && token.kind == TokenKind::kSymbol && token.text == "*");
    if (token.kind == TokenKind::kOpen) {
      ++depth;
      begin = tokenizer.begin();
    } else if (token.kind == TokenKind::kClose && --depth <= 0) {
      return;
    }
    if (token.kind != TokenKind::kWord) continue;
    if ((token.text == "sect" && any) || (token.text == "par" && !beside)) return;
    const size_t inside = tokenizer.position();
    if (!first && depth == 1 && IsHeadWord(token.text)) {
      head_ += bytes.substr(tokenizer.begin(), inside - tokenizer.begin());
    } else if (first && IsPassedOver(token.text)) {
      tokenizer.SkipGroup();
    } else if (first && depth > 1 && IsHeadGroup(token.text)) {  // also within \upr
      tokenizer.SkipGroup();
      head_ += std::string(bytes.substr(begin, tokenizer.position() - begin)) + "}";
    } else if (first && depth > 1 && (token.text.starts_with("header") || token.text.starts_with("footer"))) {
      tokenizer.SkipGroup();
      any = Keep(token.text, bytes.substr(inside, tokenizer.position() - inside)) || any;
    }
  }
}

std::unique_ptr<PageText> PageTexts::Read(std::string_view group) const {
  std::string bytes = "{\\rtf1\\ansi" + head_ + "\\pard\\plain ";
  bytes += FieldMarker(group).Run();
  bytes += '}';
  auto text = std::make_unique<PageText>();
  text->content = rtf::Read(std::move(bytes), Content().store()).content;
  return text;
}

std::unique_ptr<PageText> PageTexts::Note(const EmbeddedObject& note) const {
  std::string_view group = note.rtf.bytes;
  if (group.starts_with("{\\footnote") && group.ends_with('}') && group.size() <= kMostOfAGroup) {
    group.remove_prefix(std::string_view("{\\footnote").size());
    group.remove_suffix(1);
    auto text = Read(group);
    if (Asks(text->content, kNoteField)) return text;
    Document numbered(text->content);
    numbered.Replace({}, "\uF8F2 ", text->content.CharFormatAt(Units(0)), EditKind::kCommand, {});
    text->content = numbered.content();
    return text;
  }
  ContentBuilder builder(Content().store());
  builder.Append("\uF8F2 " + note.name);
  auto text = std::make_unique<PageText>();
  text->content = builder.Finish();
  return text;
}

PageText* PageTexts::Of(size_t which, int page) const {
  const auto& texts = texts_[which];
  if (page == 1 && words_.firstDiffers) return texts[kFirst].get();
  const Side side = words_.sidesDiffer && page % 2 == 0 ? kLeft : kRight;
  if (words_.sidesDiffer && texts[side]) return texts[side].get();
  return texts[kAll] ? texts[kAll].get() : texts[kRight].get();
}

Document Filled(const Content& text, const PageNumbers& numbers) {
  Document document(text);
  const std::u16string shown = text.Utf16(text.all());
  for (size_t at = shown.size(); at-- > 0;) {
    const int number = shown[at] == kPageField    ? numbers.page
                       : shown[at] == kPagesField ? numbers.pages
                       : shown[at] == kNoteField  ? numbers.note
                                                  : -1;
    if (number < 0) continue;
    const Units place(static_cast<int64_t>(at));
    document.Replace({place, place + Units(1)}, std::to_string(number), text.CharFormatAt(place), EditKind::kCommand,
                     {});
  }
  return document;
}

}  // namespace text::layout
