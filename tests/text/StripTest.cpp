// The three ways to clean up text.
#include "text/TextStore.h"
#include "text/Utf16.h"
#include "text/plain/Strip.h"

#include <gtest/gtest.h>

namespace text {
namespace {

// Each character in a piece of its own, so that every pair lies across an edge.
Content InPieces(std::string_view bytes) {
  const auto store = std::make_shared<TextStore>();
  ContentBuilder builder(store);
  CharFormat bold;
  bold.flags = kBold;
  const CharFormatId formats[] = {CharFormatId::kDefault, store->formats().Intern(bold)};
  for (size_t i = 0, end = 0, count = 0; i < bytes.size(); i = end) {
    for (end = i + 1; end < bytes.size() && IsContinuation(bytes[end]);) ++end;
    builder.Append(bytes.substr(i, end - i), formats[count++ % 2]);
  }
  return builder.Finish();
}

struct Row {
  std::string before, after;
};

template <class Strip>
void ExpectRows(const std::vector<Row>& rows, const Strip& strip) {
  for (const Row& row : rows) {
    const Content content = InPieces(row.before);
    EXPECT_EQ(strip(content, content.all()).value_or("none"), row.after) << row.before;
  }
}

TEST(Strip, JoinsLines) {
  const std::vector<Row> rows = {
      {"", ""},
      {"one\r\ntwo\r\n\r\nthree", "one two \r\nthree"},
      {"a\r\nb", "a b"},
      {"a\nb\rc", "a b c"},
      {"a\r\n b", "a b"},
      {"a\r\n", "a "},
      {"\r\na", "\r\na"},
      {"x\r\ny", "x y"},
      {"a\r\n\r\n\n\rb", "a \r\n\n\rb"},
      {"a\r\n\r\n b", "a \r\n b"},
      {"a \r\nb", "a  b"},
  };
  ExpectRows(rows, [](const Content& content, Range range) { return JoinedLines(content, range); });
}

TEST(Strip, TakesACharacterAway) {
  const std::vector<Row> rows = {
      {"1,234,,5", "12345"}, {",,,", ""}, {"", ""}, {"none", "none"}, {"a,\r\n,b", "a\r\nb"},
  };
  ExpectRows(rows, [](const Content& content, Range range) { return WithoutCharacter(content, range, ','); });
  // Part of another character, and a stray byte, are not it.
  const Content accents = InPieces("\xC3\xA9-\xC3\xA8-\xC3\xA9\xC3-\xE9");
  EXPECT_EQ(WithoutCharacter(accents, accents.all(), 0xE9), "-\xC3\xA8-\xC3-\xE9");
  const Content euros = InPieces(
      "1\xE2\x82\xAC"
      "2\xE2\x82\xAD\xE2\x82\xE2\x82\xAC\xE2\x82");
  EXPECT_EQ(WithoutCharacter(euros, euros.all(), 0x20AC), "12\xE2\x82\xAD\xE2\x82\xE2\x82");
  const Content breaks = InPieces("a\r\nb");
  EXPECT_EQ(WithoutCharacter(breaks, breaks.all(), '\r'), "a\r\nb");
}

TEST(Strip, CollapsesBlanks) {
  const std::vector<Row> rows = {
      {"  Hello   world.   Next  ", "Hello world.  Next "},
      {"a. b", "a.  b"},
      {"   ", ""},
      {"a\t \tb", "a\t \tb"},
      {"a  \r\n  b", "a \r\n b"},
      {". . .", ".  .  ."},
      {"", ""},
  };
  ExpectRows(rows, [](const Content& content, Range range) { return CollapsedBlanks(content, range); });
}

TEST(Strip, OnlyTheRangeAndOnlyUntilCancelled) {
  const Content content = InPieces("  a  b  c");
  EXPECT_EQ(CollapsedBlanks(content, {Units(3), Units(6)}), "b");
  const auto store = std::make_shared<TextStore>();
  ContentBuilder builder(store);
  builder.Append(std::string(40 << 20, 'x'));
  const Content large = builder.Finish();
  int calls = 0;
  EXPECT_EQ(JoinedLines(large, large.all(), [&](int64_t) { return ++calls < 2; }), std::nullopt);
  EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace text
