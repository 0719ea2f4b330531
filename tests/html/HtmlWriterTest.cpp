// What rich text becomes in HTML.
#include "text/TextStore.h"
#include "text/html/HtmlReader.h"
#include "text/html/HtmlWriter.h"
#include "text/rtf/Rtf.h"

#include <gtest/gtest.h>

namespace text::html {
namespace {

std::string Html(std::string_view rtf, const Options& options = {}) {
  const rtf::ReadResult read = rtf::Read(std::string(rtf), std::make_shared<TextStore>());
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
      {"\\rtlpar\\qr x\\par\\ql y", "<p dir=\"rtl\">x</p><p dir=\"rtl\" style=\"text-align:left\">y</p>"},
      {"\\qc a\\page b", "<p style=\"text-align:center\">a</p><p style=\"text-align:center;break-before:page\">b</p>"},
  };
  for (const Row& row : rows) {
    std::string body = Between(Html("{\\rtf1\\fs24" + row.rtf + "}"), "<body>\n", "</body>");
    std::erase(body, '\n');
    EXPECT_EQ(body, row.body) << row.rtf;
  }
}

// Pages that are read and written again.
TEST(HtmlWriter, ListsTablesLinksAndPictures) {
  const std::string png = "iVBORw0KGgoAAA==";
  const std::pair<std::string, std::string> rows[] = {
      {"<a href='https://example.com/?a&amp;b'>x</a>", "<p><a href=\"https://example.com/?a&amp;b\">x</a></p>"},
      {"<a href='JavaScript:alert(1)'>x</a>", "<p>x</p>"},
      {"<img src='data:image/png;base64," + png + "' alt='a\"b' width=10 height=20>",
       "<p><img alt=\"a&quot;b\" style=\"width:7.5pt;height:15pt\" src=\"data:image/png;base64," + png + "\"></p>"},
      {"<ul><li>a<ul><li>b</ul><li>c</ul>d", "<ul><li>a<ul><li>b</li></ul></li><li>c</li></ul><p>d</p>"},
      {"<ul><li dir=rtl>a<ul><li dir=ltr>b<li align=center>c</ul><li>d</ul>",
       "<ul><li dir=\"rtl\">a<ul><li dir=\"ltr\" style=\"text-align:left\">b</li><li dir=\"rtl\" "
       "style=\"text-align:center\">c</li></ul></li><li>d</li></ul>"},
      {"<ol type=A><li>a<li>b</ol>", "<ol type=\"A\"><li>a</li><li>b</li></ol>"},
      {"<ol start=3><li>a</ol>", "<ol start=\"3\"><li>a</li></ol>"},
      {"<ol><li>a<div>b</div><li>c</ol>",
       "<ol><li>a</li></ol><p style=\"margin-left:36pt\">b</p><ol start=\"2\"><li>c</li></ol>"},
      {"<table><tr><td>1<td><p>2</table>",
       "<table><tr><td style=\"border:1px solid\"><p>1</p></td><td style=\"border:1px solid\">"
       "<p style=\"margin-bottom:8pt\">2</p></td></tr></table>"},
      {"<table><tr><td colspan=2>1<td><li>2</table>",
       "<table><tr><td colspan=\"2\" style=\"border:1px solid\"><p>1</p></td><td style=\"border:1px solid\">"
       "<p>2</p></td></tr></table>"},
  };
  for (const auto& [page, body] : rows) {
    std::string html;
    EXPECT_TRUE(Write(Read(page, std::make_shared<TextStore>()).content, {}, [&](std::string_view part) {
      html += part;
      return true;
    }));
    html = Between(html, "<body>\n", "</body>");
    std::erase(html, '\n');
    EXPECT_EQ(html, body) << page;
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
