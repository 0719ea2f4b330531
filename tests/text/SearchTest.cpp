#include "tests/text/NaiveText.h"
#include "text/search/CaseFold.h"
#include "text/search/Search.h"

#include <gtest/gtest.h>
#include <unicode/uchar.h>

namespace text::test {
namespace {

using namespace std::string_literals;

// The content's characters as its pieces have them: stray bytes of two pieces do not make up a character.
NaiveText ModelOf(const Content& content) {
  NaiveText model;
  content.ForEachPiece(content.all(), [&](const PieceView& piece) {
    const auto atoms = NaiveText::Parse(std::string(piece.bytes), piece.charFormat, piece.paraFormat);
    model.atoms.insert(model.atoms.end(), atoms.begin(), atoms.end());
    return true;
  });
  model.last = content.lastParaFormat();
  return model;
}

Content ContentOf(std::string_view bytes) {
  ContentBuilder builder(std::make_shared<TextStore>());
  builder.Append(bytes);
  return builder.Finish();
}

// --- The naive search: characters compared one by one

constexpr char32_t kBreak = 0xFFFFFFFF;

std::vector<char32_t> Characters(std::u16string_view units) {
  std::vector<char32_t> all;
  for (size_t i = 0; i < units.size(); ++i) {
    const bool pair = i + 1 < units.size() && (units[i] & 0xFC00) == 0xD800 && (units[i + 1] & 0xFC00) == 0xDC00;
    if (pair) {
      all.push_back(0x10000 + ((units[i] & 0x3FFu) << 10 | (units[i + 1] & 0x3FFu)));
      ++i;
    } else if (units[i] == u'\r' || units[i] == u'\n') {
      all.push_back(kBreak);
      if (units[i] == u'\r' && i + 1 < units.size() && units[i + 1] == u'\n') ++i;
    } else {
      all.push_back(units[i]);
    }
  }
  return all;
}

class NaiveSearch {
 public:
  NaiveSearch(const NaiveText& model, std::u16string_view needle, SearchOptions options)
      : options_(options), needle_(Characters(needle)) {
    for (const Atom& atom : model.atoms) {
      NaiveText one;
      one.atoms = {atom};
      text_.push_back(Characters(one.Units(false))[0]);
    }
  }
  // Whether the needle stands at the character of that index.
  bool Matches(size_t index) const {
    if (needle_.empty() || index + needle_.size() > text_.size()) return false;
    for (size_t i = 0; i < needle_.size(); ++i)
      if (Fold(text_[index + i]) != Fold(needle_[i])) return false;
    return !options_.wholeWord || (!IsWord(index - 1) && !IsWord(index + needle_.size()));
  }
  size_t length() const { return needle_.size(); }

 private:
  char32_t Fold(char32_t c) const {
    if (options_.matchCase || c > 0x10FFFF) return c;
    return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT));
  }
  bool IsWord(size_t index) const {
    return index < text_.size() && text_[index] != kBreak && IsWordCharacter(text_[index]);
  }

  SearchOptions options_;
  std::vector<char32_t> needle_, text_;
};

std::string Show(const std::vector<Range>& ranges) {
  std::string shown;
  for (const Range& range : ranges)
    shown += (shown.empty() ? "" : " ") + std::to_string(range.begin.value()) + "-" + std::to_string(range.end.value());
  return shown;
}

std::vector<Range> FindAll(const Content& content, std::u16string_view needle, SearchOptions options) {
  const Searcher searcher(needle, options);
  std::vector<Range> found;
  Units from;
  while (const auto match = searcher.FindNext(content, from, content.size())) {
    found.push_back(*match);
    from = match->end;
  }
  return found;
}

// --- Tables

constexpr SearchOptions kExact{true, false}, kAnyCase{false, false}, kWord{true, true}, kAnyCaseWord{false, true};

struct Row {
  const char* bytes;
  std::u16string needle;
  SearchOptions options;
  const char* expected;  // what is found one behind the other, in units
};

const Row kRows[] = {
    {"abcabc", u"", kExact, ""},
    {"abcabc", u"bc", kExact, "1-3 4-6"},
    {"aaaaa", u"aa", kExact, "0-2 2-4"},
    {"aBc ABC", u"abc", kAnyCase, "0-3 4-7"},
    {"a@b`", u"`", kAnyCase, "3-4"},
    {"[ { \x1B", u"[", kAnyCase, "0-1"},
    // Line breaks of any spelling, whole ones only
    {"a\r\nb\rc\nd", u"\n", kExact, "1-2 3-4 5-6"},
    {"a\r\r\n\nb", u"\n", kExact, "1-2 2-3 3-4"},
    {"a\r\n\r\nb", u"\n\r", kExact, "1-3"},
    {"a\r\nb a\nb a\rb", u"a\nB", kAnyCase, "0-3 4-7 8-11"},
    {"x\r\ny", u"\ny", kExact, "1-3"},
    // Stray bytes match as such only
    {"\xC3\xA9 \xC3 \xA9", u"\xDCC3", kExact, "2-3"},
    {"\xC3\xA9 \xC3 \xA9", u"\xDCA9", kExact, "4-5"},
    {"\xC3\xA9", u"\xDCC3\xDCA9", kExact, ""},
    {"\xE2\x82\xAC \xE2\x82", u"\xDCE2\xDC82", kExact, "2-4"},
    {"\xF0\x9F\x98\x80 \x98\x80", u"\xDC98\xDC80", kExact, "3-5"},
    {"\xF0\x9F\x98\x80", u"\xD83D", kExact, ""},
    // Simple case folding, lengths may differ
    {"k K \xE2\x84\xAA", u"K", kAnyCase, "0-1 2-3 4-5"},
    {"\xC3\x85 \xE2\x84\xAB \xC3\xA5", u"\u00E5", kAnyCase, "0-1 2-3 4-5"},
    {"\xC3\x9F \xE1\xBA\x9E ss", u"\u1E9E", kAnyCase, "0-1 2-3"},  // full folding would find "ss"
    {"\xF0\x90\x90\x80\xF0\x90\x90\xA8", u"\U00010428", kAnyCase, "0-2 2-4"},
    {"I i \xC4\xB0 \xC4\xB1", u"i", kAnyCase, "0-1 2-3"},
    // Whole words
    {"cat cats a_cat cat9 (cat)", u"cat", kWord, "0-3 21-24"},
    {"cat Cat CATS", u"CAT", kAnyCaseWord, "0-3 4-7"},
    {"\xC3\xA9"
     "cat cat\xC3\xA9 cat\xCC\x81 cat",
     u"cat", kWord, "15-18"},
    {"cat\r\ncat", u"cat", kWord, "0-3 4-7"},
    {"a+b a+bc", u"a+b", kWord, "0-3"},
    {"\xF0\x9D\x92\x9C"
     "cat \xF0\x9F\x98\x80"
     "cat",
     u"cat", kWord, "8-11"},  // a letter, a face
};

TEST(Search, FindsWhatTheTableSays) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(::testing::Message() << "\"" << row.bytes << "\" needle " << BytesOfUtf16(row.needle));
    EXPECT_EQ(Show(FindAll(ContentOf(row.bytes), row.needle, row.options)), row.expected);
    // The same far inside, over a block's end in a tree of long pieces.
    const std::string filler(70001, '.');
    std::vector<Range> far = FindAll(ContentOf(filler + row.bytes + filler), row.needle, row.options);
    for (Range& range : far) range = {range.begin - Units(70001), range.end - Units(70001)};
    EXPECT_EQ(Show(far), row.expected);
  }
}

TEST(Search, NulAndLongNeedles) {
  EXPECT_EQ(Show(FindAll(ContentOf("a\0b\0"s), u"\0"s, kExact)), "1-2 3-4");
  EXPECT_EQ(Show(FindAll(ContentOf("a\0b\0"s), u"\0B"s, kAnyCase)), "1-3");
  for (size_t size : {63u, 64u, 65u, 4096u, 20000u}) {
    const std::string bytes = std::string(size, 'a') + "b";
    const std::u16string needle = std::u16string(size, u'a') + u"b";
    const Range expected{Units(1000), Units(1001 + static_cast<int64_t>(size))};
    for (SearchOptions options : {kExact, kAnyCase, kWord})
      EXPECT_EQ(Show(FindAll(ContentOf(std::string(999, 'a') + "." + bytes + "."), needle, options)), Show({expected}));
  }
}

TEST(Search, NearMissesEverywhereTakeNoLongTime) {
  // 16 MB of text in which every place begins half of the needle: comparing all would take 10^11 steps.
  const Content content = ContentOf(std::string(size_t{16} << 20, 'a'));
  const std::u16string half(8192, u'a');
  EXPECT_EQ(FindAll(content, half + u"b" + half, kExact).size(), 0u);
  EXPECT_EQ(FindAll(content, half, kExact).size(), (size_t{16} << 20) / 8192);
}

// Bytes that would be a character together, had they not come from different places.
TEST(Search, StrayBytesThatMeetAtASeam) {
  Content empty;
  CharFormat bold;
  bold.flags = kBold;
  ContentBuilder builder(empty.store());
  builder.Append("a\xC3");
  builder.Append("\xA9z\xC3\xA9.", empty.formats().Intern(bold));
  const Content content = builder.Finish();
  EXPECT_EQ(Show(FindAll(content, u"\u00E9", kExact)), "4-5");
  EXPECT_EQ(Show(FindAll(content, u"\u00C9", kAnyCase)), "4-5");
  EXPECT_EQ(Show(FindAll(content, u"\xDCC3\xDCA9", kExact)), "1-3");
  EXPECT_EQ(Show(FindAll(content, u"z", kWord)), "");
  EXPECT_EQ(Show(FindAll(content, u"a\xDCC3", kWord)), "0-2");
  // The same when a replacement brings them together.
  const Content apart = ContentOf("a\xC3-\xA9z");
  const auto result = Searcher(u"-", kExact).ReplaceAll(apart, apart.all(), "");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->content.Utf16(result->content.all()), u"a\xDCC3\xDCA9z");
}

TEST(Search, StartAndLimit) {
  const Content content = ContentOf(
      "ab\xF0\x9F\x98\x80"
      "ab\r\nab");
  const Searcher ab(u"ab", kExact), face(u"\U0001F600", kExact), word(u"b", kWord);
  struct {
    const Searcher& searcher;
    int64_t start, limit;
    const char* expected;
  } const kCases[] = {
      {ab, 0, 9, "0-2"},   {ab, 1, 9, "4-6"}, {ab, 0, 1, ""},   {ab, 3, 6, "4-6"}, {ab, 3, 5, ""},
      {ab, 5, 9, "7-9"},   {ab, 7, 8, ""},    {ab, 9, 9, ""},   {ab, 9, 99, ""},   {ab, -5, 99, "0-2"},
      {face, 2, 4, "2-4"}, {face, 3, 9, ""},  {face, 0, 3, ""}, {word, 1, 2, ""},  {word, 0, 9, ""},
  };
  for (const auto& row : kCases) {
    const auto found = row.searcher.FindNext(content, Units(row.start), Units(row.limit));
    EXPECT_EQ(found ? Show({*found}) : "", row.expected) << row.start << " to " << row.limit;
  }
}

TEST(Search, ACancelledSearchFindsNothing) {
  const Content content = ContentOf(std::string(size_t{4} << 20, 'k') + "x");
  const Searcher searcher(u"x", kExact);
  EXPECT_FALSE(searcher.ReplaceAll(content, content.all(), "y", {}, [](int64_t) { return false; }));
  int64_t seen = 0;
  const auto cancel = [&seen](int64_t bytes) { return (seen = bytes) < (1 << 20); };
  EXPECT_FALSE(searcher.FindNext(content, Units(0), content.size(), cancel));
  EXPECT_GE(seen, 1 << 20);
  EXPECT_LT(seen, 2 << 20);
}

TEST(CaseVariants, AreAllThatFoldAlike) {
  std::vector<std::u32string> byFold(0x110000);
  for (char32_t c = 0; c < 0x110000; ++c)
    byFold[static_cast<size_t>(u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT))] += c;
  for (std::u32string& expected : byFold) {
    ASSERT_LE(expected.size(), 4u);
    for (char32_t c : expected) {
      if (expected.size() == 1 && c % 16 != 0) continue;  // most characters have no case
      std::u32string variants = CaseVariants(c);
      std::sort(variants.begin(), variants.end());
      ASSERT_EQ(variants, expected) << static_cast<uint32_t>(c);
    }
  }
}

TEST(IsWordCharacter, Table) {
  for (char32_t c : U"aZ09_\u00E9\u0416\u0301\u0663\u203F\u4E2D\U0001D49C")
    EXPECT_TRUE(c == 0 || IsWordCharacter(c)) << static_cast<uint32_t>(c);
  for (char32_t c : {U' ', U'-', U'@', U'[', U'`', U'{', U'\0', U'\u00A0', U'\u20AC', U'\uFFFC', U'\U0001F600',
                     static_cast<char32_t>(0xDCE9)})
    EXPECT_FALSE(IsWordCharacter(c)) << static_cast<uint32_t>(c);
}

// --- Random texts against the naive search

class RandomSearch : public ::testing::TestWithParam<unsigned> {
 protected:
  CharFormatId RandomChars() {
    CharFormat format;
    format.flags = static_cast<uint16_t>(random() % 3 | (random() % 8 ? 0 : kHidden) | (random() % 8 ? 0 : kProtected));
    if (random() % 4 == 0) format.object = ObjectId{1};
    return document.formats().Intern(format);
  }
  ParaFormatId RandomPara() {
    ParaFormat format;
    format.leftIndent = static_cast<int32_t>(random() % 3);
    return document.formats().Intern(format);
  }
  std::string RandomText(int characters);
  void MakeDocument();
  std::u16string RandomNeedle();
  void ExpectFinds(std::u16string_view needle, SearchOptions options);
  void ExpectReplaces(std::u16string_view needle, SearchOptions options);

  std::mt19937 random{GetParam()};
  Document document;
};

std::string RandomSearch::RandomText(int characters) {
  static const std::string kFolding[] = {"k",        "K",        "\xE2\x84\xAA",    "s", "S", "\xC5\xBF", "A", "a",
                                         "\xC3\x89", "\xC3\xA9", "\xF0\x9F\x98\x80"};
  std::string bytes;
  for (int i = 0; i < characters; ++i)
    bytes += random() % 2 ? kFolding[random() % std::size(kFolding)] : RandomBytes(random, 1);
  return bytes;
}

// Many small pieces of different formats, some long ones, and seams where stray bytes meet.
void RandomSearch::MakeDocument() {
  const int parts = 1 + static_cast<int>(random() % 20);
  ContentBuilder builder(document.content().store());
  for (int i = 0; i < parts; ++i)
    builder.Append(RandomText(static_cast<int>(random() % (random() % 8 ? 30 : 3000))), RandomChars(), RandomPara());
  document.Reset(builder.Finish(RandomPara()));
  for (int i = 0; i < 10; ++i) {
    const auto size = static_cast<uint64_t>(document.content().size().value());
    const Units begin(static_cast<int64_t>(random() % (size + 1)));
    const Units end = std::min(document.content().size(), begin + Units(static_cast<int64_t>(random() % 4)));
    document.Replace({begin, end}, RandomText(static_cast<int>(random() % 4)), RandomChars(), EditKind::kCommand, {});
  }
}

// Mostly something that occurs.
std::u16string RandomSearch::RandomNeedle() {
  const Content& content = document.content();
  if (random() % 5 == 0) return Utf16OfBytes(RandomText(1 + static_cast<int>(random() % 3)));
  const Units begin(static_cast<int64_t>(random() % static_cast<uint64_t>(content.size().value() + 1)));
  const Units length(1 + static_cast<int64_t>(random() % (random() % 6 ? 3 : 40)));
  return content.Utf16({begin, std::min(content.size(), begin + length)}, random() % 2 ? BreakAs::kLf : BreakAs::kCrLf);
}

void RandomSearch::ExpectFinds(std::u16string_view needle, SearchOptions options) {
  const Content& content = document.content();
  const NaiveText model = ModelOf(content);
  const NaiveSearch naive(model, needle, options);
  std::vector<int64_t> unitsBefore{0};
  for (const Atom& atom : model.atoms) unitsBefore.push_back(unitsBefore.back() + atom.units());
  const auto start =
      random() % 3 ? 0 : static_cast<int64_t>(random() % static_cast<uint64_t>(content.size().value() + 1));
  const auto limit = random() % 3 ? content.size().value() : start + static_cast<int64_t>(random() % 200);
  std::vector<Range> expected, found;
  for (size_t i = 0; i < model.atoms.size();) {
    const bool inside =
        unitsBefore[i] >= start && i + naive.length() <= model.atoms.size() && unitsBefore[i + naive.length()] <= limit;
    if (inside && naive.Matches(i)) {
      expected.push_back({Units(unitsBefore[i]), Units(unitsBefore[i + naive.length()])});
      i += naive.length();
    } else {
      ++i;
    }
  }
  const Searcher searcher(needle, options);
  Units at(start);
  while (const auto match = searcher.FindNext(content, at, Units(limit))) {
    found.push_back(*match);
    at = match->end;
  }
  ASSERT_EQ(Show(found), Show(expected));
}

void RandomSearch::ExpectReplaces(std::u16string_view needle, SearchOptions options) {
  const Content& content = document.content();
  const NaiveText model = ModelOf(content);
  const NaiveSearch naive(model, needle, options);
  const std::string replacement = random() % 3 ? RandomText(static_cast<int>(random() % 4)) : "";
  const int64_t gap = random() % 3 ? 0 : static_cast<int64_t>(random() % 12);
  NaiveText expected;
  expected.last = model.last;
  int64_t count = 0;
  for (size_t i = 0; i < model.atoms.size();) {
    if (!naive.Matches(i)) {
      expected.atoms.push_back(model.atoms[i++]);
      continue;
    }
    size_t end = i;
    while (end < model.atoms.size() && !model.atoms[end].isBreak()) ++end;
    CharFormat format = content.formats()[model.atoms[i].chars];
    format.object = ObjectId::kNone;
    format.flags &= kAllCharFlags & ~(kHidden | kProtected);
    const auto put = NaiveText::Parse(replacement, content.formats().Intern(format),
                                      end < model.atoms.size() ? model.atoms[end].para : model.last);
    expected.atoms.insert(expected.atoms.end(), put.begin(), put.end());
    ++count;
    i += naive.length();
    for (int64_t left = gap; left > 0 && i < model.atoms.size(); ++i) {
      left -= model.atoms[i].isBreak() ? 2 : model.atoms[i].units();
      expected.atoms.push_back(model.atoms[i]);
    }
  }
  expected.JoinBreaks();
  const auto result = Searcher(needle, options).ReplaceAll(content, content.all(), replacement, {SurfaceUnits(gap)});
  ASSERT_TRUE(result);
  ASSERT_NO_THROW(result->content.CheckInvariants());
  ASSERT_EQ(result->count, count);
  ASSERT_TRUE(ModelOf(result->content).atoms == expected.atoms) << "got\n"
                                                                << ModelOf(result->content).Bytes() << "\nexpected\n"
                                                                << expected.Bytes();
  ASSERT_EQ(result->content.lastParaFormat(), content.lastParaFormat());
  const Change& change = result->change;
  ASSERT_GE(change.inserted, Units(0));
  ASSERT_EQ(content.size() - change.removed + change.inserted, result->content.size());
  const Units oldEnd = change.position + change.removed, newEnd = change.position + change.inserted;
  ASSERT_EQ(content.Utf16({oldEnd, content.size()}), result->content.Utf16({newEnd, result->content.size()}));
  ASSERT_TRUE(count > 0 || result->content.SameAs(content));
}

TEST_P(RandomSearch, EqualsTheNaiveOne) {
  MakeDocument();
  ASSERT_NO_THROW(document.content().CheckInvariants());
  for (int i = 0; i < 60; ++i) {
    const std::u16string needle = RandomNeedle();
    const SearchOptions options{random() % 2 == 0, random() % 3 == 0};
    SCOPED_TRACE(::testing::Message() << "seed " << GetParam() << " round " << i << " needle "
                                      << ::testing::PrintToString(needle) << (options.matchCase ? "" : " any case")
                                      << (options.wholeWord ? " whole word" : ""));
    ExpectFinds(needle, options);
    ASSERT_FALSE(HasFatalFailure());
    ExpectReplaces(needle, options);
    ASSERT_FALSE(HasFatalFailure());
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomSearch, ::testing::Range(1u, 41u));

// --- Bulk replacement

TEST(ReplaceAll, OnlyInTheRange) {
  const Content content = ContentOf("ab ab ab ab");
  const auto result = Searcher(u"ab", kExact)
                          .ReplaceAll(content, {Units(1), Units(10)},
                                      "\xC3\xA9"
                                      "x");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->content.ByteString(result->content.all()), "ab \xC3\xA9x \xC3\xA9x ab");
  EXPECT_EQ(result->count, 2);
  EXPECT_EQ(result->change.position, Units(3));
  EXPECT_EQ(result->change.removed, Units(5));
  EXPECT_EQ(result->change.inserted, Units(5));
}

TEST(ReplaceAll, BreaksThatBecomeOne) {
  const Content content = ContentOf("a\rX\nb");
  const auto result = Searcher(u"X", kExact).ReplaceAll(content, content.all(), "");
  ASSERT_TRUE(result);
  EXPECT_EQ(result->content.size(), Units(3));
  Document document(content);
  document.Commit(result->content, result->change, EditKind::kCommand, {});
  EXPECT_EQ(document.content().Utf16(document.content().all()), u"a\nb");
  document.Undo();
  EXPECT_TRUE(document.content().SameAs(content));
}

// Each row: the text, what replaces "X", and where the replacing ends early; -1: nowhere.
TEST(ReplaceAll, StopsWhereAnEditWouldDoSomethingElse) {
  struct {
    const char* bytes;
    const char* replacement;
    int64_t stopped;
    const char* expected;
  } const kCases[] = {
      {"aX\rX\nX", "", 3, "a\rX\nX"}, {"X\rX\n", "\n", 2, "\n\rX\n"},    {"X\rX\n", "\r", 2, "\r\rX\n"},
      {"X.X\n", "\r", 2, "\r.X\n"},   {"X\r\nX", "\n", -1, "\n\r\n\n"},  {"X\rXa", "\r\n", -1, "\r\n\r\r\na"},
      {"X\rX\n", "-", -1, "-\r-\n"},  {"\r\nX\r\n", "", -1, "\r\n\r\n"}, {"X\r", "\r", -1, "\r\r"},
      {"\rX", "\n", 1, "\rX"},
  };
  for (const auto& row : kCases) {
    const Content content = ContentOf(row.bytes);
    const auto result = Searcher(u"X", kExact).ReplaceAll(content, content.all(), row.replacement, {{}, true});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->stopped ? result->stopped->begin.value() : -1, row.stopped) << row.bytes;
    EXPECT_EQ(result->content.ByteString(result->content.all()), row.expected) << row.bytes;
  }
}

TEST(ReplaceAll, LongStretchesAreSharedNotCopied) {
  const std::string line(3 * TreeConfig::kMaxPieceBytes, 'x');
  const Content content = ContentOf(line + "needle" + line);
  const auto result = Searcher(u"needle", kExact).ReplaceAll(content, content.all(), "pin");
  ASSERT_TRUE(result);
  const auto firstByte = [](const Content& of, Units at) {
    const char* first = nullptr;
    of.ForEachPiece({at, of.size()}, [&](const PieceView& piece) {
      first = piece.bytes.data();
      return false;
    });
    return first;
  };
  const Units before(static_cast<int64_t>(line.size()));
  EXPECT_EQ(firstByte(content, Units(0)), firstByte(result->content, Units(0)));
  EXPECT_EQ(firstByte(content, before + Units(6)), firstByte(result->content, before + Units(3)));
}

}  // namespace
}  // namespace text::test
