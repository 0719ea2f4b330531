// What an edited content still has of the one it was made from.
#include "tests/text/NaiveText.h"
#include "text/ContentDiff.h"

#include <gtest/gtest.h>

#include <array>

namespace text::test {
namespace {

CharFormatId Bold(TextStore& store) {
  CharFormat format;
  format.flags = kBold;
  return store.formats().Intern(format);
}

ParaFormatId Centered(TextStore& store) {
  ParaFormat format;
  format.alignment = Alignment::kCenter;
  return store.formats().Intern(format);
}

// "*" switches bold; "|" is a line break, "^" one that ends a centred paragraph.
Content ContentOf(const std::shared_ptr<TextStore>& store, const std::string& text) {
  ContentBuilder builder(store);
  bool bold = false;
  for (char c : text) {
    if (c == '*') {
      bold = !bold;
      continue;
    }
    const CharFormatId chars = bold ? Bold(*store) : CharFormatId::kDefault;
    const bool isBreak = c == '|' || c == '^';
    builder.Append(isBreak ? "\r\n" : std::string(1, c), chars, c == '^' ? Centered(*store) : ParaFormatId::kDefault);
  }
  return builder.Finish();
}

// What went in "[]", what came in "{}", what has other formats in "<>".
std::string Shown(const Content& before, const Content& after) {
  std::string shown;
  Units a(0), b(0);
  const auto text = [](const Content& content, Units begin, Units end) {
    std::string part = content.ByteString({begin, end});
    for (size_t at; (at = part.find("\r\n")) != std::string::npos;) part.replace(at, 2, "|");
    return part;
  };
  const auto gap = [&](Units aEnd, Units bEnd) {
    if (a < aEnd) shown += "[" + text(before, a, aEnd) + "]";
    if (b < bEnd) shown += "{" + text(after, b, bEnd) + "}";
  };
  for (const Match& match : Compare(before, after)) {
    gap(match.before.begin, match.after.begin);
    const std::string part = text(before, match.before.begin, match.before.end);
    shown += match.sameFormats ? part : "<" + part + ">";
    a = match.before.end, b = match.after.end;
  }
  gap(before.size(), after.size());
  return shown;
}

TEST(ContentDiff, Table) {
  const struct {
    const char *before, *after, *shown;
  } kCases[] = {
      {"", "", ""},
      {"a b", "a b", "a b"},
      {"", "new", "{new}"},
      {"old", "", "[old]"},
      {"The quick fox", "The slow fox", "The [quick]{slow} fox"},
      {"One word, two words, three", "One herd, two words, there", "One [wo]{he}rd, two words, th[re]{er}e"},
      {"a|b|c|d", "a|x|b|d", "a|{x|}b|[c|]d"},
      {"a|b|c", "a|bc", "a|b[|]c"},
      {"same|same|same|same", "same|same|same", "same|same|same[|same]"},
      {"plain", "*plain*", "<plain>"},
      {"one two|three", "one *two|th*ree", "one <two><|><th>ree"},
      {"a|b|c", "a^b^c", "a<|>b<|>c"},
      {"*a*b", "a*b*", "<a><b>"},
      {"move this|up|down", "up|move this|down", "[move this|]up|{move this|}down"},
  };
  for (const auto& row : kCases) {
    const auto store = std::make_shared<TextStore>();
    EXPECT_EQ(Shown(ContentOf(store, row.before), ContentOf(store, row.after)), row.shown);
  }
}

// Text and formats of a range, character by character.
std::vector<Atom> AtomsOf(const Content& content, Range range) {
  std::vector<Atom> atoms;
  content.ForEachPiece(range, [&](const PieceView& piece) {
    for (Atom& atom : NaiveText::Parse(std::string(piece.bytes), piece.charFormat, piece.paraFormat))
      atoms.push_back(std::move(atom));
    return true;
  });
  return atoms;
}

void CheckMatches(const Content& before, const Content& after, const std::vector<Match>& matches) {
  Units a(0), b(0);
  for (const Match& match : matches) {
    ASSERT_LE(a, match.before.begin);
    ASSERT_LE(b, match.after.begin);
    ASSERT_LT(match.before.begin, match.before.end);
    std::vector<Atom> x = AtomsOf(before, match.before), y = AtomsOf(after, match.after);
    ASSERT_EQ(x.size(), y.size());
    ASSERT_EQ(x == y, match.sameFormats);
    for (size_t i = 0; i < x.size(); ++i) {
      ASSERT_EQ(x[i].bytes, y[i].bytes);
      if (match.sameFormats) continue;
      ASSERT_TRUE(x[i].chars == x[0].chars && y[i].chars == y[0].chars);
      ASSERT_TRUE(x[i].para == x[0].para && y[i].para == y[0].para);
    }
    a = match.before.end, b = match.after.end;
  }
  ASSERT_LE(a, before.size());
  ASSERT_LE(b, after.size());
}

void CheckRandomEdits(unsigned seed) {
  std::mt19937 random(seed);
  const auto below = [&](int64_t limit) { return static_cast<int64_t>(random() % static_cast<uint64_t>(limit)); };
  const auto store = std::make_shared<TextStore>();
  const std::array chars{CharFormatId::kDefault, Bold(*store)};
  const std::array paras{ParaFormatId::kDefault, Centered(*store)};
  const auto piece = [&](int characters) {
    ContentBuilder builder(store);
    builder.Append(RandomBytes(random, characters), chars[random() % 2], paras[random() % 2]);
    return builder.Finish();
  };
  ContentBuilder builder(store);
  for (int i = 0; i < 20; ++i) {
    const Content part = piece(static_cast<int>(below(40)));
    builder.Append(part, part.all());
  }
  const Content before = builder.Finish();
  Content after = before;
  for (int64_t edits = below(6); edits > 0; --edits) {
    Range range{Units(below(after.size().value() + 1)), Units(0)};
    range.end = std::min(range.begin + Units(below(12)), after.size());
    switch (below(4)) {
      case 0:
        after = after.WithCharFormats(range, [&](CharFormatId) { return chars[0]; });
        break;
      case 1:
        after = after.WithParaFormats(range, [&](ParaFormatId) { return paras[1]; });
        break;
      default:
        after = after.WithReplaced(range, piece(static_cast<int>(below(10))));
    }
  }
  CheckMatches(before, after, Compare(before, after));
  CheckMatches(after, before, Compare(after, before));
}

TEST(ContentDiff, RandomEdits) {
  for (unsigned seed = 0; seed < 300 && !::testing::Test::HasFatalFailure(); ++seed) {
    SCOPED_TRACE(seed);
    CheckRandomEdits(seed);
  }
}

// Each edit leaves what is around it alone, and the whole text is seen as kept but for these.
TEST(ContentDiff, FarEditsMakeFewGaps) {
  std::mt19937 random(5);
  const auto store = std::make_shared<TextStore>();
  std::string text;
  for (int i = 0; i < 30000; ++i) text += "word" + std::to_string(random() % 5000) + (random() % 9 ? " " : "|");
  const Content before = ContentOf(store, text);
  Content after = before;
  constexpr int64_t kEdits = 200;
  int64_t inserted = 0;
  for (int64_t i = 0; i < kEdits; ++i) {
    const Units at(before.size().value() / kEdits * i + inserted);
    const Content word = ContentOf(store, i % 2 ? "XX" : "Y|Y");
    after = after.WithReplaced({at, at}, word);
    inserted += word.size().value();
  }
  const std::vector<Match> matches = Compare(before, after);
  CheckMatches(before, after, matches);
  EXPECT_LE(matches.size(), kEdits + 1);
  int64_t kept = 0;
  for (const Match& match : matches) kept += match.before.size().value();
  EXPECT_EQ(kept, before.size().value());
}

}  // namespace
}  // namespace text::test
