// What rich text becomes in HTML.
#include "text/TextStore.h"
#include "text/html/HtmlWriter.h"
#include "text/rtf/Rtf.h"

#include <gtest/gtest.h>

namespace text::html {
namespace {

std::string Html(std::string_view rtf, const Options& options = {}) {
  const rtf::ReadResult read = rtf::Read(rtf, std::make_shared<TextStore>());
  std::string html;
  EXPECT_TRUE(Write(read.content, options, [&](std::string_view part) {
    html += part;
    return true;
  }));
  return html;
}

// What stands between two marks, the first of which must be there.
std::string Between(const std::string& html, std::string_view begin, std::string_view end) {
  const size_t at = html.find(begin);
  if (at == std::string::npos) return "no " + std::string(begin) + " in " + html;
  const size_t from = at + begin.size();
  return html.substr(from, html.find(end, from) - from);
}

struct Row {
  std::string rtf;   // inside "{\rtf1\fs24" and "}"
  std::string body;  // without the line ends between elements
};

TEST(HtmlWriter, LinesParagraphsAndPages) {
  const Row rows[] = {
      {"", "<p><br></p>"},
      {" one\\par two", "<p>one</p><p>two</p>"},
      {" one\\par\\par\\par", "<p>one</p><p><br></p>"},
      {" one\\line two\\u8233?three", "<p>one<br>two<br>three</p>"},
      {"{\\b one\\line}\\line two", "<p><b>one<br></b><br>two</p>"},
      {" one\\line\\par two", "<p>one<br><br></p><p>two</p>"},
      {"{\\b one\\line}", "<p><b>one<br></b><br></p>"},
      {" one\\line two\\page three", "<p>one<br>two</p><p style=\"break-before:page\">three</p>"},
      {" one\\par\\page two\\par three", "<p>one</p><p style=\"break-before:page\">two</p><p>three</p>"},
      {" one\\par\\page", "<p>one</p><p style=\"break-before:page\"><br></p>"},
      {"\\page", "<p style=\"break-before:page\"><br></p>"},
      {" a\\page\\page b", "<p>a</p><p style=\"break-before:page\"><br></p><p style=\"break-before:page\">b</p>"},
      {"\\ql x\\par\\qc{\\i a\\page b}\\par\\qr c",
       "<p>x</p><p style=\"text-align:center\"><i>a</i></p>"
       "<p style=\"text-align:center;break-before:page\"><i>b</i></p><p style=\"text-align:right\">c</p>"},
      {"\\qc a\\page b", "<p style=\"text-align:center\">a</p><p style=\"text-align:center;break-before:page\">b</p>"},
  };
  for (const Row& row : rows) {
    std::string body = Between(Html("{\\rtf1\\fs24" + row.rtf + "}"), "<body>\n", "</body>");
    std::erase(body, '\n');
    EXPECT_EQ(body, row.body) << row.rtf;
  }
}

TEST(HtmlWriter, FontNames) {
  const std::pair<std::string, std::string> rows[] = {
      {"Arial", "'Arial'"},
      {"O'Font", "'O\\27 Font'"},
      {"a\\b\"c", "'a\\5c b\\22 c'"},
      {"</style>&", "'\\3c /style\\3e \\26 '"},
      {"Schr\xC3\xB6"
       "der\r\n",
       "'Schr\xC3\xB6"
       "der'"},
      {"\xE4", "'\xEF\xBF\xBD'"},
  };
  for (const auto& [name, css] : rows) {
    const auto store = std::make_shared<TextStore>();
    CharFormat format;
    format.font = store->formats().Intern(Font{name, 0, 0});
    ContentBuilder builder(store);
    builder.Append("x", store->formats().Intern(format));
    const Content content = builder.Finish();
    for (const bool isDefault : {true, false}) {
      std::string html;
      EXPECT_TRUE(Write(content, {.title = "", .defaultFont = isDefault ? name : ""}, [&](std::string_view part) {
        html += part;
        return true;
      }));
      const std::string run = isDefault ? "x" : "<span style=\"font-family:" + css + "\">x</span>";
      EXPECT_EQ(Between(html, "<p>", "</p>"), run) << name;
      EXPECT_EQ(Between(html, "body { ", " }\n"),
                isDefault ? "font-size: 12pt; font-family: " + css : "font-size: 12pt")
          << name;
    }
  }
}

TEST(HtmlWriter, StopsWhenTheSinkRefuses) {
  std::string rtf = "{\\rtf1 ";
  for (int i = 0; i < 50000; ++i) rtf += "some text\\par ";
  const rtf::ReadResult read = rtf::Read(rtf + "}", std::make_shared<TextStore>());
  for (const int accepted : {0, 1, 3}) {
    int calls = 0;
    EXPECT_FALSE(Write(read.content, {}, [&](std::string_view) { return calls++ < accepted; }));
    EXPECT_EQ(calls, accepted + 1);
  }
}

}  // namespace
}  // namespace text::html
