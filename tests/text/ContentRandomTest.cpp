// Seeded random edits, compared step by step with the naive model; at the end everything is undone and redone.
#include "tests/text/NaiveText.h"

#include <gtest/gtest.h>

namespace text::test {
namespace {

class RandomEdits : public ::testing::TestWithParam<unsigned> {
 protected:
  // Text and formats, character by character.
  void ExpectEqual() {
    const Content& content = document.content();
    ASSERT_NO_THROW(content.CheckInvariants());
    ASSERT_EQ(content.ByteString(content.all()), model.Bytes());
    ASSERT_EQ(content.Utf16(content.all()), model.Units(false));
    ASSERT_EQ(content.size().value(), model.size());
    ASSERT_EQ(content.lastParaFormat(), model.last);
    std::vector<Atom> atoms;
    content.ForEachPiece(content.all(), [&](const PieceView& piece) {
      for (Atom& atom : NaiveText::Parse(std::string(piece.bytes), piece.charFormat, piece.paraFormat))
        atoms.push_back(std::move(atom));
      return true;
    });
    ASSERT_TRUE(atoms == model.atoms) << "formats differ";
  }
  void ExpectEqualAt(int64_t position);
  void ExpectEqualRange(int64_t begin, int64_t end);
  void Step();
  CharFormatId RandomChars() {
    CharFormat format;
    format.flags = static_cast<uint16_t>(random() % 4);
    format.halfPoints = static_cast<uint16_t>(20 + random() % 3);
    return document.formats().Intern(format);
  }
  ParaFormatId RandomPara() {
    ParaFormat format;
    format.alignment = static_cast<Alignment>(random() % 3);
    return document.formats().Intern(format);
  }

  std::mt19937 random{GetParam()};
  Document document;
  NaiveText model;
};

void RandomEdits::ExpectEqualAt(int64_t position) {
  const Content& content = document.content();
  const size_t index = model.IndexOf(position, Bias::kLeft);
  int64_t bytes = 0, breaks = 0;
  for (size_t i = 0; i < index; ++i)
    bytes += static_cast<int64_t>(model.atoms[i].bytes.size()), breaks += model.atoms[i].isBreak();
  const Sums before{Bytes(bytes), Units(model.UnitsBefore(index)), Breaks(breaks)};
  ASSERT_EQ(content.SumsBefore(Units(position)), before);
  ASSERT_EQ(content.Snap(Units(position), Bias::kRight).value(),
            model.UnitsBefore(model.IndexOf(position, Bias::kRight)));
  ASSERT_EQ(content.PositionOfByte(before.bytes), before.units);
  const SurfaceUnits surface = content.ToSurface(before.units);
  ASSERT_EQ(surface.value(), before.units.value() + breaks);
  ASSERT_EQ(content.FromSurface(surface, Bias::kLeft), before.units);
  ASSERT_EQ(content.FromSurface(surface, Bias::kRight), before.units);
  if (index < model.atoms.size()) {
    ASSERT_EQ(content.CharFormatAt(before.units), model.atoms[index].chars);
    if (model.atoms[index].isBreak()) {
      ASSERT_EQ(content.FromSurface(surface + SurfaceUnits(1), Bias::kLeft), before.units);
      ASSERT_EQ(content.FromSurface(surface + SurfaceUnits(1), Bias::kRight), before.units + Units(1));
      ASSERT_EQ(content.ParagraphEnd(Breaks(breaks)), before.units);
      ASSERT_EQ(content.ParagraphStart(Breaks(breaks + 1)), before.units + Units(1));
      ASSERT_EQ(content.ParaFormatOf(Breaks(breaks)), model.atoms[index].para);
    }
  }
}

void RandomEdits::ExpectEqualRange(int64_t begin, int64_t end) {
  const Content& content = document.content();
  const FormatTable& formats = document.formats();
  CharSummary chars;
  ParaSummary paras;
  bool open = true;  // the last paragraph that the range touches has not ended yet
  for (size_t i = 0; i < model.atoms.size(); ++i) {
    const int64_t at = model.UnitsBefore(i);
    if (at + model.atoms[i].units() > begin && at < end)
      chars = Combine(chars, SummaryOf(formats[model.atoms[i].chars]));
    if (model.atoms[i].isBreak() && at >= begin && open) {
      paras = Combine(paras, SummaryOf(formats[model.atoms[i].para]));
      open = at < end;
    }
  }
  if (open) paras = Combine(paras, SummaryOf(formats[model.last]));
  ASSERT_EQ(content.Summarize({Units(begin), Units(end)}), chars);
  ASSERT_EQ(content.SummarizeParagraphs({Units(begin), Units(end)}), paras);
  ASSERT_EQ(content.Utf16({Units(begin), Units(end)}, BreakAs::kCrLf),
            content.Slice({Units(begin), Units(end)}).Utf16({Units(0), Units(end)}, BreakAs::kCrLf));
}

void RandomEdits::Step() {
  const int64_t size = model.size();
  int64_t begin = static_cast<int64_t>(random() % static_cast<uint64_t>(size + 1));
  int64_t end = std::min<int64_t>(size, begin + static_cast<int64_t>(random() % (random() % 8 == 0 ? 60 : 6)));
  const Range range{Units(begin), Units(end)};
  const Selection selection{range.begin, range.end};
  const Bias ends = begin == end ? Bias::kLeft : Bias::kRight;
  const size_t from = model.IndexOf(begin, Bias::kLeft), to = model.IndexOf(end, ends);
  switch (random() % 8) {
    case 0: {  // character formats
      CharFormatPatch patch;
      patch.setFlags = kBold, patch.clearFlags = kItalic;
      document.PatchChars(range, patch, selection);
      for (size_t i = from; i < to; ++i)
        model.atoms[i].chars = document.formats().Intern(patch.Apply(document.formats()[model.atoms[i].chars]));
      break;
    }
    case 1: {  // paragraph formats
      ParaFormatPatch patch;
      patch.leftIndent = static_cast<int32_t>(random() % 3) * 100;
      const auto apply = [&](ParaFormatId& id) { id = document.formats().Intern(patch.Apply(document.formats()[id])); };
      document.PatchParagraphs(range, patch, selection);
      size_t i = model.IndexOf(begin, Bias::kLeft);
      for (bool open = true; open; ++i) {
        if (i == model.atoms.size()) {
          apply(model.last);
          break;
        }
        if (!model.atoms[i].isBreak()) continue;
        open = model.UnitsBefore(i) < end;
        apply(model.atoms[i].para);
      }
      break;
    }
    case 2: {  // a piece of the document itself, formats and all
      const Content copy = document.content().Slice(range);
      const int64_t at = static_cast<int64_t>(random() % static_cast<uint64_t>(size + 1));
      std::vector<Atom> atoms(model.atoms.begin() + static_cast<ptrdiff_t>(from),
                              model.atoms.begin() + static_cast<ptrdiff_t>(to));
      document.Replace({Units(at), Units(at)}, copy, EditKind::kCommand, selection);
      model.Replace(at, at, atoms);
      break;
    }
    default: {
      const std::string bytes =
          random() % 4 == 0 ? "" : RandomBytes(random, static_cast<int>(random() % (random() % 10 == 0 ? 80 : 5)));
      const CharFormatId format = RandomChars();
      ContentBuilder builder(document.content().store());
      const ParaFormatId para = RandomPara();
      builder.Append(bytes, format, para);
      const int64_t sizeBefore = model.size(), snappedEnd = model.UnitsBefore(to);
      const Range inserted =
          document.Replace(range, builder.Finish(), random() % 2 ? EditKind::kTyping : EditKind::kCommand, selection);
      model.Replace(begin, end, NaiveText::Parse(bytes, format, para));
      ASSERT_LE(inserted.begin, inserted.end);
      ASSERT_EQ(document.content().size() - inserted.end, Units(sizeBefore - snappedEnd));
    }
  }
}

// Every step is sealed, so each that changed something is one state to come back to, also within the run.
TEST_P(RandomEdits, EqualTheNaiveModel) {
  std::vector<NaiveText> states{model};
  size_t at = 0;
  const auto swap = [&](bool redo) {
    ASSERT_EQ(document.canUndo(), at > 0);
    ASSERT_EQ(document.canRedo(), at + 1 < states.size());
    if (redo ? document.Redo() : document.Undo()) redo ? ++at : --at;
    model = states[at];
    ExpectEqual();
  };
  for (int step = 0; step < 150; ++step) {
    SCOPED_TRACE(::testing::Message() << "seed " << GetParam() << " step " << step);
    if (const unsigned way = random() % 10; way < 2) {
      ASSERT_NO_FATAL_FAILURE(swap(way == 1));
      continue;
    }
    const Revision before = document.revision();
    ASSERT_NO_FATAL_FAILURE(Step());
    document.SealStep();
    if (document.revision() != before) {
      states.resize(++at);
      states.push_back(model);
    }
    ASSERT_NO_FATAL_FAILURE(ExpectEqual());
    for (int i = 0; i < 4; ++i) {
      const auto place = static_cast<int64_t>(random() % static_cast<uint64_t>(model.size() + 1));
      ASSERT_NO_FATAL_FAILURE(ExpectEqualAt(place));
      const int64_t begin = model.UnitsBefore(model.IndexOf(place, Bias::kLeft));
      const int64_t end = model.UnitsBefore(model.IndexOf(std::min<int64_t>(model.size(), place + 20), Bias::kRight));
      ASSERT_NO_FATAL_FAILURE(ExpectEqualRange(begin, end));
    }
  }
  while (at > 0) ASSERT_NO_FATAL_FAILURE(swap(false));
  EXPECT_EQ(document.content().size(), Units(0));
  EXPECT_FALSE(document.changed());
  while (at + 1 < states.size()) ASSERT_NO_FATAL_FAILURE(swap(true));
}

// Steps that merge as they like: each undo leads to a state that was there, later ones to earlier ones.
TEST_P(RandomEdits, ComeBackToEarlierStatesWhenStepsMerge) {
  std::vector<NaiveText> states{model};
  for (int step = 0; step < 60; ++step) {
    SCOPED_TRACE(::testing::Message() << "seed " << GetParam() << " step " << step);
    ASSERT_NO_FATAL_FAILURE(Step());
    ASSERT_NO_FATAL_FAILURE(ExpectEqual());
    states.push_back(model);
  }
  for (size_t at = states.size() - 1; document.canUndo();) {
    const std::string bytes = [&] {
      document.Undo();
      return document.content().ByteString(document.content().all());
    }();
    while (at > 0 && states[at].Bytes() != bytes) --at;
    model = states[at];
    ASSERT_EQ(model.Bytes(), bytes) << "seed " << GetParam();
    ASSERT_NO_THROW(document.content().CheckInvariants());
  }
  EXPECT_EQ(document.content().size(), Units(0));
  while (document.Redo()) continue;
  model = states.back();
  ExpectEqual();
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEdits, ::testing::Range(1u, 41u));

// Building in pieces that break anywhere gives the same as building at once.
TEST(ContentBuilder, AppendsMayBreakAnywhere) {
  for (unsigned seed = 1; seed <= 30; ++seed) {
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    const std::string bytes = seed % 2 ? RandomBytes(random, 3000) : RandomForeignBytes(random, 3000);
    ContentBuilder builder(std::make_shared<TextStore>());
    for (size_t i = 0; i < bytes.size();) {
      const size_t count = std::min(bytes.size() - i, static_cast<size_t>(random() % 40));
      builder.Append(std::string_view(bytes).substr(i, count));
      i += count;
    }
    const Content content = builder.Finish();
    NaiveText model;
    model.atoms = NaiveText::Parse(bytes, CharFormatId::kDefault, ParaFormatId::kDefault);
    ASSERT_NO_THROW(content.CheckInvariants());
    ASSERT_EQ(content.ByteString(content.all()), bytes);
    ASSERT_EQ(content.Utf16(content.all(), BreakAs::kCrLf), model.Units(true));
  }
}

}  // namespace
}  // namespace text::test
