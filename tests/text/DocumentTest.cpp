#include "text/Document.h"

#include <gtest/gtest.h>

namespace text {
namespace {

std::string TextOf(const Document& document) {
  return document.content().ByteString(document.content().all());
}

Range Type(Document& document, int64_t at, const char* bytes, EditKind kind = EditKind::kTyping) {
  return document.Replace({Units(at), Units(at)}, bytes, CharFormatId::kDefault, kind, {Units(at), Units(at)});
}

void Erase(Document& document, int64_t begin, int64_t end, EditKind kind, int64_t caret) {
  document.Replace({Units(begin), Units(end)}, Content(document.content().store()), kind, {Units(caret), Units(caret)});
}

TEST(History, MergesOneKindInOnePlace) {
  using Act = std::function<void(Document&)>;
  struct Case {
    const char* name;
    std::vector<Act> acts;
    std::vector<const char*> undone;  // the text after each undo
  };
  const auto type = [](int64_t at, const char* text) -> Act { return [=](Document& d) { Type(d, at, text); }; };
  const auto back = [](int64_t at) -> Act {
    return [=](Document& d) { Erase(d, at - 1, at, EditKind::kBackspacing, at); };
  };
  const auto erase = [](int64_t at) -> Act {
    return [=](Document& d) { Erase(d, at, at + 1, EditKind::kDeleting, at); };
  };
  const Act seal = [](Document& d) { d.SealStep(); };
  const Act save = [](Document& d) { d.SetSaved(); };
  const Case cases[] = {
      {"typing on", {type(0, "a"), type(1, "b"), type(2, "c")}, {""}},
      {"typing elsewhere", {type(0, "a"), type(0, "b")}, {"a", ""}},
      {"a caret move between", {type(0, "a"), seal, type(1, "b")}, {"a", ""}},
      {"a save between", {type(0, "a"), save, type(1, "b")}, {"a", ""}},
      {"backspacing", {type(0, "abc"), back(3), back(2)}, {"abc", ""}},
      {"deleting", {type(0, "abc"), erase(0), erase(0)}, {"abc", ""}},
      {"backspacing then typing", {type(0, "abc"), back(3), type(2, "x")}, {"ab", "abc", ""}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Document document;
    for (const Act& act : c.acts) act(document);
    const std::string end = TextOf(document);
    for (const char* text : c.undone) {
      ASSERT_TRUE(document.Undo());
      EXPECT_EQ(TextOf(document), text);
    }
    EXPECT_FALSE(document.canUndo());
    while (document.Redo()) continue;
    EXPECT_EQ(TextOf(document), end);
  }
}

TEST(History, AGroupIsOneStepAndBringsTheSelectionBack) {
  Document document;
  Type(document, 0, "one two");
  document.BeginGroup();
  Type(document, 7, "!", EditKind::kCommand);
  document.BeginGroup();
  Type(document, 0, "x", EditKind::kCommand);
  document.EndGroup();
  Type(document, 3, "y", EditKind::kCommand);
  document.EndGroup();
  EXPECT_EQ(TextOf(document), "xonye two!");
  const auto selection = document.Undo();
  ASSERT_TRUE(selection);
  EXPECT_EQ(selection->caret, Units(7));
  EXPECT_EQ(TextOf(document), "one two");
  EXPECT_EQ(document.Redo()->caret, Units(4));
}

TEST(History, ChangedFollowsTheSavedState) {
  Document document;
  EXPECT_FALSE(document.changed());
  Type(document, 0, "a");
  EXPECT_TRUE(document.changed());
  document.Undo();
  EXPECT_FALSE(document.changed());
  document.Redo();
  document.SetSaved();
  EXPECT_FALSE(document.changed());
  document.Undo();
  EXPECT_TRUE(document.changed());
  Type(document, 0, "b");  // the saved state can never come back
  document.Undo();
  EXPECT_TRUE(document.changed());
  document.SetSaved();
  document.ForceChanged();
  EXPECT_TRUE(document.changed());
  document.SetSaved();
  EXPECT_FALSE(document.changed());
}

TEST(History, PatchesThatChangeNothingMakeNoStep) {
  Document document;
  Type(document, 0, "text\r\nmore");
  const Range all = document.content().all();
  CharFormatPatch bold;
  bold.setFlags = kBold;
  document.PatchChars(all, bold, {});
  const Revision revision = document.revision();
  document.PatchChars(all, bold, {});
  document.PatchParagraphs(all, ParaFormatPatch{}, {});
  EXPECT_EQ(document.revision(), revision);
  document.Undo();
  EXPECT_EQ(document.content().Summarize(all).Flag(kBold), std::optional<bool>(false));
}

TEST(Changes, MapPositions) {
  const Change replace{Units(3), Units(2), Units(5)};  // [3, 5) becomes [3, 8)
  const Change insert{Units(3), Units(0), Units(2)};
  const struct {
    Change change;
    int64_t position;
    Bias bias;
    int64_t mapped;
  } cases[] = {
      {replace, 2, Bias::kRight, 2}, {replace, 3, Bias::kLeft, 3},  {replace, 4, Bias::kLeft, 3},
      {replace, 4, Bias::kRight, 8}, {replace, 5, Bias::kRight, 8}, {replace, 9, Bias::kLeft, 12},
      {insert, 3, Bias::kLeft, 3},   {insert, 3, Bias::kRight, 5},  {insert, 4, Bias::kLeft, 6},
  };
  for (const auto& c : cases)
    EXPECT_EQ(MapPosition(Units(c.position), c.change, c.bias), Units(c.mapped)) << c.position;
}

TEST(Changes, AreToldSinceARevisionAsLongAsTheyAreKnown) {
  Document document;
  const Revision empty = document.revision();
  Type(document, 0, "abc");
  const Revision typed = document.revision();
  Type(document, 3, "d");
  document.Undo();
  const auto changes = document.ChangesSince(typed);
  ASSERT_TRUE(changes);
  // The undo takes the merged step back as a whole.
  Units size(3);
  for (const Change& change : *changes) size = size - change.removed + change.inserted;
  EXPECT_EQ(size, document.content().size());
  EXPECT_EQ(document.ChangesSince(document.revision())->size(), 0u);
  for (int i = 0; i < 5000; ++i) Type(document, 0, "x");
  EXPECT_FALSE(document.ChangesSince(empty));
  const Revision before = document.revision();
  document.Reset(Content());
  EXPECT_FALSE(document.ChangesSince(before));
}

TEST(Edits, JoinedBreaksAreCountedFromTheEnds) {
  struct Case {
    const char* text;
    Range range;
    const char* with;
    const char* result;
    Range inserted;
  };
  const auto at = [](int64_t begin, int64_t end) { return Range{Units(begin), Units(end)}; };
  const Case cases[] = {
      {"a\rb", at(2, 2), "\n", "a\r\nb", at(2, 2)},
      {"a\nb", at(1, 1), "\r", "a\r\nb", at(1, 1)},
      {"a\rx\nb", at(2, 3), "", "a\r\nb", at(1, 1)},
      {"a\r\nb", at(1, 2), "", "ab", at(1, 1)},
      {"a\r\nb", at(1, 1), "\r", "a\r\r\nb", at(1, 2)},
      {"\xF0\x9F\x98\x80", at(1, 1), "x", "x\xF0\x9F\x98\x80", at(0, 1)},
      {"\xF0\x9F\x98\x80z", at(1, 2), "x", "xz", at(0, 1)},
  };
  for (const Case& c : cases) {
    Document document;
    Type(document, 0, c.text);
    const Range inserted = document.Replace(c.range, c.with, CharFormatId::kDefault, EditKind::kCommand, {});
    document.content().CheckInvariants();
    EXPECT_EQ(TextOf(document), c.result);
    EXPECT_EQ(inserted, c.inserted) << c.result;
  }
}

TEST(Edits, ABreakTakesItsParagraphsFormatAlong) {
  Document document;
  Type(document, 0, "one\r\ntwo\r\nthree");
  ParaFormatPatch centre;
  centre.alignment = Alignment::kCenter;
  document.PatchParagraphs({Units(5), Units(5)}, centre, {});
  const auto alignments = [&] {
    std::string row;
    for (Breaks p; p <= document.content().breaks(); ++p)
      row += "lrcj"[static_cast<int>(document.formats()[document.content().ParaFormatOf(p)].alignment)];
    return row;
  };
  EXPECT_EQ(alignments(), "lcl");
  Type(document, 5, "\r\n", EditKind::kCommand);  // a new paragraph within the centred one
  EXPECT_EQ(alignments(), "lccl");
  Erase(document, 3, 4, EditKind::kCommand, 3);  // the first paragraph's end: what follows keeps its own
  EXPECT_EQ(alignments(), "ccl");
}

}  // namespace
}  // namespace text
