// How much is compared, whatever text and needle are.
#include "text/search/Needle.h"

#include <gtest/gtest.h>

namespace text::test {
namespace {

struct Walked {
  std::vector<int64_t> places;
  int64_t compared = 0;
};

Walked Walk(const Needle& needle, std::string_view text) {
  const std::vector<int64_t> none;
  const char* const end = text.data() + text.size();
  const Window window{text.data(), text.data(), end, end, 0, &none};
  Walked walked;
  for (const char* p = window.from; p < window.until;) {
    const auto match = needle.Next(window, p, &walked.compared);
    if (!match) continue;
    walked.places.push_back(window.OffsetOf(match->begin));
    ++p;
  }
  return walked;
}

std::string Repeated(std::string_view piece, size_t bytes) {
  std::string text;
  while (text.size() < bytes) text += piece;
  return text;
}

TEST(Needle, NearMissesAreComparedAboutOnce) {
  struct Case {
    const char* name;
    std::string piece;        // of the text
    std::u16string repeated;  // of the needle, without its last character
    char16_t last;
    bool matchCase;
  };
  const Case cases[] = {
      {"one letter", "a", u"A", u'b', false},
      {"a period of two", "ab", u"aB", u'c', false},
      {"spellings of two lengths", "k\u212A", u"kk", u'b', false},
      {"letters of two bytes", "\u00E4", u"\u00C4", u'b', false},
      {"line breaks", "\r\n", u"\r\n", u'b', true},
      {"stray bytes", "\xFF", u"\xDCFF", u'b', true},
  };
  for (const Case& c : cases) {
    constexpr size_t kTimes = 2000;
    std::u16string units;
    for (size_t i = 0; i < kTimes; ++i) units += c.repeated;
    const Needle needle(units + c.last, c.matchCase);
    const std::string misses = Repeated(c.piece, 300000);
    std::string text = misses;
    const auto begin = static_cast<int64_t>(text.size());
    text += "x" + misses + std::string(1, static_cast<char>(c.last)) + misses;
    const Walked walked = Walk(needle, text);
    ASSERT_EQ(walked.places.size(), 1u) << c.name;
    EXPECT_GT(walked.places[0], begin) << c.name;
    EXPECT_LT(walked.compared, 40 * static_cast<int64_t>(text.size())) << c.name;
  }
}

// Matches that follow each other closely do not begin it all again.
TEST(Needle, ManyMatchesAmongNearMisses) {
  std::u16string units(500, u'A');
  const Needle needle(units + u"b", false);
  std::string text;
  for (int i = 0; i < 100; ++i) text += std::string(3000, 'a') + "B";
  const Walked walked = Walk(needle, text);
  ASSERT_EQ(walked.places.size(), 100u);
  for (size_t i = 0; i < 100; ++i) EXPECT_EQ(walked.places[i], static_cast<int64_t>(i * 3001 + 2500));
  EXPECT_LT(walked.compared, 100 * static_cast<int64_t>(text.size()));
}

}  // namespace
}  // namespace text::test
