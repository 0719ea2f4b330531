// A document that was read and is edited as a user would, for the tests of saving.
#pragma once

#include "tests/rtf/RtfTestSupport.h"
#include "text/rtfsave/RtfSave.h"
#include "text/rtfsave/RtfSplice.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>

namespace text::rtf {

class Edited {
 public:
  explicit Edited(const std::string& source) : Edited(ReadNew(source)) {}

  Content content;
  FormatTable& formats() const { return content.formats(); }

  // The text of the edit is found by its bytes; "" is the end.
  Range Find(const std::string& text) const {
    const std::string all = TextOf(content);
    const size_t at = text.empty() ? all.size() : all.find(text);
    EXPECT_NE(at, std::string::npos) << text;
    return {content.PositionOfByte(Bytes(static_cast<int64_t>(at))),
            content.PositionOfByte(Bytes(static_cast<int64_t>(at + text.size())))};
  }
  // In the format of the text before it, or of that behind it at a paragraph's beginning, as typing does.
  void Type(Units at, const std::string& text) {
    const bool begin = at == Units(0) || content.ParagraphStart(content.ParagraphAt(at)) == at;
    const CharFormatId chars = content.CharFormatAt(begin ? at : at - Units(1));
    CharFormat format = formats()[chars];
    format.object = ObjectId::kNone;
    Put({at, at}, text, formats().Intern(format));
  }
  void Put(Range range, const std::string& text, CharFormatId chars) {
    ContentBuilder builder(content.store());
    ParaFormat paragraph = formats()[content.ParaFormatOf(content.ParagraphAt(range.begin))];
    paragraph.rowMark = RowMark::kNone;
    builder.Append(text, chars, formats().Intern(paragraph));
    content = content.WithReplaced(range, builder.Finish());
  }
  void Delete(const std::string& text) { content = content.WithReplaced(Find(text), Content(content.store())); }
  void Chars(const std::string& text, const std::function<void(CharFormat&)>& change) {
    content = content.WithCharFormats(Find(text), [&](CharFormatId id) {
      CharFormat format = formats()[id];
      change(format);
      return formats().Intern(format);
    });
  }
  void Paragraphs(const std::string& text, const std::function<void(ParaFormat&)>& change) {
    content = content.WithParaFormats(Find(text), [&](ParaFormatId id) {
      ParaFormat format = formats()[id];
      change(format);
      return formats().Intern(format);
    });
  }

  std::string Saved(const Progress& progress = {}) const {
    const rtf::Saved saved = Save(content, properties_, progress);
    if (saved.as == SavedAs::kCancelled) return "CANCELLED";
    return saved.as == SavedAs::kAnew ? "ANEW" : *saved.bytes;
  }

  // The first paragraph that nobody edited and whose words outside of the model are not what they were; empty: none.
  std::string LostParagraphWords(const std::string& saved) const;

  // What was tried when the file had to be written anew.
  std::string Tried() const {
    const std::string bytes = RtfSplice(*properties_.source, content).Run();
    return Describe(content) + "\n--- read from ---\n" + bytes + "\n--- is ---\n" + Describe(ReadNew(bytes).content);
  }

 private:
  explicit Edited(const ReadResult& read) : content(read.content), properties_(read.properties) {}
  DocumentProperties properties_;
};

// One edit of a kind and at a place that the numbers pick. Tables' cells and rows stay whole.
void EditAtRandom(Edited& edited, std::mt19937& random);

}  // namespace text::rtf
