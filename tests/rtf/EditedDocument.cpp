#include "tests/rtf/EditedDocument.h"

#include "text/rtfwrite/RtfParagraphWords.h"

#include <set>

namespace text::rtf {

namespace {

class RandomEdit {
 public:
  RandomEdit(Edited& edited, std::mt19937& random) : edited_(edited), random_(random) {}

  void Run() {
    switch (Below(8)) {
      case 0:
      case 1:
        return Type();
      case 2:
        return Delete();
      case 3:
        return Replace();
      case 4:
        return Break();
      case 5:
        return Join();
      case 6:
        return Chars();
      default:
        return Paragraphs();
    }
  }

 private:
  int64_t Below(int64_t limit) {
    return limit <= 0 ? 0 : static_cast<int64_t>(random_() % static_cast<uint64_t>(limit));
  }
  const Content& content() const { return edited_.content; }

  Units Place() { return content().Snap(Units(Below(content().size().value() + 1)), Bias::kLeft); }

  // A stretch of one paragraph.
  Range Stretch() {
    const Units begin = Place();
    const Units end = content().ParagraphEnd(content().ParagraphAt(begin));
    return {begin, content().Snap(std::min(end, begin + Units(Below(12))), Bias::kLeft)};
  }

  bool InTable(Breaks paragraph) const {
    return edited_.formats()[content().ParaFormatOf(paragraph)].row != RowId::kNone;
  }

  std::string Text() {
    constexpr const char* kTexts[] = {"new", "5", " ", "a b", "{x}", "é", "Ж", "😀", "\t", "\u2028", "-1"};
    return kTexts[Below(std::size(kTexts))];
  }

  void Type() { edited_.Type(Place(), Text()); }
  void Delete() { edited_.content = content().WithReplaced(Stretch(), Content(content().store())); }
  void Replace() {
    const Range range = Stretch();
    CharFormatId chars = content().CharFormatAt(range.begin);
    CharFormat format = edited_.formats()[chars];
    format.object = ObjectId::kNone;
    edited_.Put(range, Text(), edited_.formats().Intern(format));
  }
  void Break() { edited_.Type(Place(), Below(2) ? "\r\n" : "x\r\ny\r\n"); }
  void Join() {
    const Breaks paragraph(Below(content().breaks().value()));
    if (content().breaks() == Breaks(0) || InTable(paragraph) || InTable(paragraph + Breaks(1))) return;
    const Units end = content().ParagraphEnd(paragraph);
    edited_.content = content().WithReplaced({end, end + Units(1)}, Content(content().store()));
  }

  void Chars() {
    const Range range = Stretch();
    const int64_t what = Below(6);
    const auto changed = [&](CharFormatId id) {
      CharFormat format = edited_.formats()[id];
      if (what == 0) format.flags ^= kBold;
      if (what == 1) format.flags ^= kItalic;
      if (what == 2) format.halfPoints = 30;
      if (what == 3) format.color.rgb = 0x8000;
      if (what == 4)
        format.link = format.link == LinkId::kNone ? edited_.formats().InternLink("http://new") : LinkId::kNone;
      if (what == 5) format.font = edited_.formats().Intern(Font{"New", 0, 1});
      return edited_.formats().Intern(format);
    };
    edited_.content = content().WithCharFormats(range, changed);
  }

  void Paragraphs() {
    const Range range{Place(), Place()};
    const int64_t what = Below(4);
    const auto changed = [&](ParaFormatId id) {
      ParaFormat format = edited_.formats()[id];
      if (what == 0) format.alignment = Alignment::kRight;
      if (what == 1) format.leftIndent = 300;
      if (what == 2) format.tabs = edited_.formats().Intern(Tabs{500});
      if (what == 3) format.bullet = !format.bullet, format.list = ListId::kNone, format.listLevel = 0;
      return edited_.formats().Intern(format);
    };
    edited_.content =
        content().WithParaFormats({std::min(range.begin, range.end), std::max(range.begin, range.end)}, changed);
  }

  Edited& edited_;
  std::mt19937& random_;
};

// The words about paragraphs in force at every break.
class WordsAtBreaks : public RtfWatcher {
 public:
  explicit WordsAtBreaks(const Source& source)
      : bytes_(std::string_view(*source.bytes).substr(source.bytes->find('{'))),
        reader_(source.bytes, bytes_, source.content.store()),
        formats_(source.content.formats()),
        words_(bytes_) {
    reader_.Watch(*this);
  }
  std::vector<std::set<std::string>> breaks;

 private:
  void OnText(Span, std::string_view, Text) override {}
  void OnFallback(Span, bool) override {}
  void OnBreak(Span, bool joins) override {
    if (joins) return;
    const ParaFormat format = reader_.inForce().paragraph;
    std::set<std::string>& words = breaks.emplace_back();
    RtfTokenizer tokenizer(kept_ = words_.Replay(format, format, formats_).words);
    for (Token token = tokenizer.Next(); token.kind != TokenKind::kEnd; token = tokenizer.Next())
      words.insert(std::string(token.text) + std::to_string(token.parameter));
  }
  void OnLabel(Span) override {}
  void OnOldPicture(Span) override {}
  void OnGroup(size_t) override { words_.OnGroup(); }
  void OnGroupEnd(size_t) override { words_.OnGroupEnd(); }
  void OnField(size_t) override {}
  void OnParagraphWord(Span span, bool reset) override { reset ? words_.OnReset() : words_.OnWord(span); }
  void OnUnknownWord(Span span) override { words_.OnWord(span); }
  void OnTableEnd(Table, size_t) override {}
  void OnEnd(size_t) override {}

  std::string_view bytes_;
  RtfReader reader_;
  FormatTable& formats_;
  ParagraphWords words_;
  std::string kept_;
};

}  // namespace

void EditAtRandom(Edited& edited, std::mt19937& random) {
  RandomEdit(edited, random).Run();
}

std::string Edited::LostParagraphWords(const std::string& saved) const {
  const Source& source = *properties_.source;
  const auto was = WordsAtBreaks(source).breaks;
  const auto is = WordsAtBreaks(*ReadNew(saved).properties.source).breaks;
  for (const Match& match : Compare(source.content, content)) {
    if (!match.sameFormats) continue;
    const Breaks end = source.content.ParagraphAt(match.before.end);
    Breaks after = content.ParagraphAt(match.after.begin);
    for (Breaks before = source.content.ParagraphAt(match.before.begin); before < end; ++before, ++after) {
      const auto a = static_cast<size_t>(before.value()), b = static_cast<size_t>(after.value());
      if (a < was.size() && b < is.size() && was[a] != is[b]) return "paragraph " + std::to_string(a);
    }
  }
  return {};
}

}  // namespace text::rtf
