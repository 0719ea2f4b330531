// Embedded objects: what their result shows. Of their data only a package's name is looked at.
#include "text/rtfsyntax/RtfKeywords.h"
#include "text/rtfsyntax/RtfLimits.h"
#include "text/rtfsyntax/RtfPackage.h"
#include "text/rtfsyntax/RtfPictures.h"

#include <algorithm>
#include <utility>

namespace text::rtf {

namespace {

class ObjectScan {
 public:
  ObjectScan(RtfTokenizer tokenizer, ReadingPictures& reading) : tokenizer_(tokenizer), reading_(reading) {}

  ScannedObject Run() {
    while (depth_ > 0 && !scanned_.showsText) {
      const bool first = std::exchange(first_, false);
      const bool starred = std::exchange(starred_, false);
      Take(tokenizer_.Next(), first, starred);
    }
    EmbeddedObject& object = scanned_.object;
    object.kind = ObjectKind::kEmbedded;
    if (object.width == 0) object.width = width_;
    if (object.height == 0) object.height = height_;
    if (object.name == "Package" && !fileName_.empty()) object.name = std::move(fileName_);
    while (object.name.ends_with(' ')) object.name.pop_back();
    return std::move(scanned_);
  }

 private:
  void Take(const Token& token, bool first, bool starred) {
    switch (token.kind) {
      case TokenKind::kEnd:
        depth_ = 0;
        return;
      case TokenKind::kOpen:
        ++depth_;
        first_ = true;
        return;
      case TokenKind::kClose:
        --depth_;
        if (depth_ < resultDepth_) resultDepth_ = 0;
        return;
      case TokenKind::kSymbol:
        first_ = starred_ = first && token.text == "*";
        return;
      case TokenKind::kText:
        scanned_.showsText = InResult() && token.text.find_first_not_of(" \t") != std::string_view::npos;
        return;
      case TokenKind::kBytes:
      case TokenKind::kHex:
        scanned_.showsText = InResult();
        return;
      case TokenKind::kBinary:
        return;
      case TokenKind::kWord:
        return Word(token, first, starred);
    }
  }

  void Word(const Token& token, bool first, bool starred) {
    const Keyword* word = FindKeyword(token.text);
    if (token.text == "objw") width_ = std::clamp(token.parameter, 0, kMaxLength);
    if (token.text == "objh") height_ = std::clamp(token.parameter, 0, kMaxLength);
    if (first && token.text == "objclass") return TakeClass();
    if (first && token.text == "objname") fileName_ = ReadObjectName(tokenizer_);
    if (first && token.text == "objdata" && fileName_.empty()) fileName_ = LabelInData(tokenizer_).value_or("");
    if (word && word->op == Op::kPicture) return TakePicture();
    if (word && word->op == Op::kUnicode) scanned_.showsText = InResult();
    if (first && token.text == "result") {
      if (resultDepth_ == 0) resultDepth_ = depth_;
      return;
    }
    const bool shown = word && (word->op == Op::kOpenShapePicture || word->op == Op::kOpenUnicode);
    const bool destination = word && word->kind == Kind::kDestination;
    const bool skipped = destination && (word->op == Op::kSkipGroup || word->op == Op::kOpenInstruction ||
                                         word->op == Op::kOpenOldPicture || word->op == Op::kOpenNote);
    if ((starred && !shown) || (first && skipped)) tokenizer_.SkipGroup();
  }

  bool InResult() const { return resultDepth_ > 0; }

  void TakeClass() {
    const Token token = tokenizer_.Next();
    if (token.kind == TokenKind::kText) scanned_.object.name = token.text.substr(0, kMaxNameBytes);
    if (token.kind == TokenKind::kClose) --depth_;
    if (token.kind == TokenKind::kOpen) ++depth_;
    if (token.kind == TokenKind::kEnd) depth_ = 0;
  }

  void TakePicture() {
    EmbeddedObject picture = ReadPicture(tokenizer_, reading_);
    if (InResult() && scanned_.object.type == PictureType::kNone) {
      picture.name = std::move(scanned_.object.name);
      scanned_.object = std::move(picture);
    }
  }

  RtfTokenizer tokenizer_;
  ReadingPictures& reading_;
  ScannedObject scanned_;
  size_t depth_ = 1, resultDepth_ = 0;
  bool first_ = false, starred_ = false;
  int32_t width_ = 0, height_ = 0;
  std::string fileName_;  // of a package
};

}  // namespace

ScannedObject ScanObject(RtfTokenizer tokenizer, ReadingPictures& reading) {
  return ObjectScan(tokenizer, reading).Run();
}

}  // namespace text::rtf
