#include "panes/QuotesFile.h"

#include <gtest/gtest.h>

namespace {

TEST(QuotesFile, EveryLineThatIsNotEmptyIsAQuoteAsItStands) {
  const struct {
    std::string_view bytes;
    std::vector<std::string> quotes;
  } kRows[] = {
      {"", {}},
      {"one\r\n\r\ntwo\r\n", {"one", "two"}},
      {"one\ntwo\rthree\r\n\n\r# four", {"one", "two", "three", "# four"}},
      {"  blanks \t\r\n \r\n", {"  blanks \t", " "}},
      {"\xEF\xBB\xBFmark\r\n\xFFstray \xC3\xA9\xC3\xA9\xC3\xA9", {"mark", "\xFFstray \xC3\xA9\xC3\xA9\xC3\xA9"}},
      {"caf\xE9 na\xEFve\r\n", {"caf\xC3\xA9 na\xC3\xAFve"}},
      {std::string_view("\xFF\xFEh\0\r\0\n\0\xD0\x05", 10), {"h", "\xD7\x90"}},
      {std::string_view("n\0l\nend", 7), {std::string("n\0l", 3), "end"}},
  };
  for (const auto& row : kRows) EXPECT_EQ(panes::ParseQuotesFile(row.bytes), row.quotes) << row.bytes;
}

}  // namespace
