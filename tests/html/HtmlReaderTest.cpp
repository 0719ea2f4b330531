// What a page becomes as rich text.
#include "text/TextStore.h"
#include "text/html/HtmlReader.h"
#include "text/plain/PlainText.h"

#include <gtest/gtest.h>

namespace text::html {
namespace {

// The text with its formats as marks: *bold* /italic/ _underlined_ -struck- <link>, "|" for a line break in a
// paragraph, "^" for a picture; each paragraph behind its properties.
class Shown {
 public:
  explicit Shown(std::string_view html) : read_(Read(html, std::make_shared<TextStore>())), content_(read_.content) {}

  std::string Text() const {
    std::string shown;
    content_.ForEachPiece(content_.all(), [&](const PieceView& piece) {
      const CharFormat& format = formats()[piece.charFormat];
      std::string bytes(piece.bytes);
      Replace(bytes, "\r\n", EndOf(formats()[piece.paraFormat]));
      Replace(bytes, "\xE2\x80\xA8", "|");
      Replace(bytes, "\xEF\xBF\xBC", "^");
      std::string open, close;
      const auto mark = [&](bool on, std::string_view before, std::string_view after) {
        if (!on) return;
        open += before;
        close.insert(0, after);
      };
      mark(format.link != LinkId::kNone, "<" + formats()[format.link] + " ", ">");
      mark(format.flags & kBold, "*", "*");
      mark(format.flags & kItalic, "/", "/");
      mark(format.flags & kUnderline, "_", "_");
      mark(format.flags & kStrikeThru, "-", "-");
      shown += open + bytes + close;
      return true;
    });
    return shown;
  }
  CharFormat Chars() const { return formats()[content_.CharFormatAt(Units(0))]; }
  ParaFormat Paragraph(int64_t number = 0) const { return formats()[content_.ParaFormatOf(Breaks(number))]; }
  const FormatTable& formats() const { return content_.formats(); }
  const Content& content() const { return content_; }
  bool limited() const { return read_.limited; }

 private:
  static std::string EndOf(const ParaFormat& format) {
    return format.rowMark == RowMark::kRowEnd ? "]\n" : format.rowMark == RowMark::kCellEnd ? "," : "\n";
  }
  static void Replace(std::string& text, std::string_view what, std::string_view by) {
    for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
      text.replace(at, what.size(), by);
  }

  ReadResult read_;
  const Content& content_;
};

TEST(HtmlReader, TextAndParagraphs) {
  const std::pair<std::string, std::string> rows[] = {
      {"", ""},
      {" a \n\t b ", "a b"},
      {"<p>a<p>b", "a\nb"},
      {"<div>a<div>b</div></div>c", "a\nb\nc"},
      {"<html/><p>a</p><p>b</p>c", "a\nb\nc"},
      {"<html><body class=it's><p>don't</p>hello</body></html>", "don't\nhello"},
      {"a<br>b", "a|b"},
      {"<p>a<br></p>b", "a\nb"},
      {"<div>a</div><div><br></div><div>b</div>", "a\n\nb"},
      {"a <b> b </b> c", "a *b *c"},
      {"<pre>\na  b\n c\n</pre>d", "a  b| c\nd"},
      {"<pre>\ra\rb\r\nc\r\r</pre>d", "a|b|c|\nd"},
      {"a&nbsp;&lt;&#8364;&euro;&bogus;b", "a\u00A0<\u20AC\u20AC&bogus;b"},
      {"a<script>x<y</script><style>p{}</style><title>t</title><!-- <b> -->b", "ab"},
      {"x<span style='display:none'>hidden</span>y", "xy"},
      {"<html><body>no<!--StartFragment--><b>yes</b><!--EndFragment-->no</body></html>", "*yes*"},
      {"a<img src='http://example.com/x.png' alt='picture'>b", "apictureb"},
      {"<img src='file:///etc/passwd'>", ""},
      {"<img src='data:image/png;base64,iVBORw0KGgoAAA=='>", "^"},
      {"<img src='data:image/png;base64,AAAA' alt=none>", "none"},
      {"a<", "a"},
      {"a\xFF"
       "b",
       "a\u00FF"
       "b"},
  };
  for (const auto& [html, text] : rows) EXPECT_EQ(Shown(html).Text(), text) << html;
}

TEST(HtmlReader, CharacterFormats) {
  const std::pair<std::string, std::string> rows[] = {
      {"<b><i>x</i></b>y", "*/x/*y"},
      {"<span style='font-weight:700;font-style:italic'>x</span>", "*/x/*"},
      {"<b style='font-weight:normal'>x</b>", "x"},
      {"<u><s>x</s></u>", "_-x-_"},
      {"<a href='https://example.com/?a=1&amp;b=2'>x</a>", "<https://example.com/?a=1&b=2 x>"},
      {"<a href='../page.html'>x</a><a name=y>y</a>", "xy"},
      {"<a href='javascript:alert(1)'>x</a>", "<javascript:alert(1) x>"},
  };
  for (const auto& [html, text] : rows) EXPECT_EQ(Shown(html).Text(), text) << html;

  const Shown look("<font face='Arial, sans-serif' color=red size=5>x</font>");
  EXPECT_EQ(look.formats()[look.Chars().font].name, "Arial");
  EXPECT_EQ(look.Chars().color.rgb, 0x0000FFu);
  EXPECT_EQ(look.Chars().halfPoints, 36);
  const struct {
    std::string style;
    int halfPoints;
    uint32_t color, background;
  } styles[] = {
      {"font-size:16px", 24, Color::kAuto, Color::kAuto},
      {"font-size:150%", 36, Color::kAuto, Color::kAuto},
      {"font-size:9999pt", 3168, Color::kAuto, Color::kAuto},
      {"color:rgb(0, 0, 0);background:#ffffff", 24, Color::kAuto, Color::kAuto},
      {"color:#0f8; background-color: rgba(255,0,0,.5)", 24, 0x88FF00, 0x0000FF},
      {"background-color:transparent;color:rgb(10%,20%,)", 24, Color::kAuto, Color::kAuto},
  };
  for (const auto& row : styles) {
    const CharFormat format = Shown("<span style=\"" + row.style + "\">x</span>").Chars();
    EXPECT_EQ(format.halfPoints, row.halfPoints) << row.style;
    EXPECT_EQ(format.color.rgb, row.color) << row.style;
    EXPECT_EQ(format.background.rgb, row.background) << row.style;
  }
  EXPECT_EQ(Shown("<sup>x</sup>").Chars().offset, 80);
  EXPECT_EQ(Shown("<sub>x</sub>").Chars().halfPoints, 16);
}

TEST(HtmlReader, ParagraphFormats) {
  EXPECT_EQ(Shown("<p align=center>x").Paragraph().alignment, Alignment::kCenter);
  EXPECT_EQ(Shown("<div style='text-align:end'><p>x</div>").Paragraph().alignment, Alignment::kRight);
  const struct {
    const char* html;
    bool rightToLeft;
    Alignment alignment;
  } sides[] = {
      {"<p dir=rtl>x", true, Alignment::kRight},
      {"<p style='direction:rtl'>x", true, Alignment::kRight},
      {"<p dir=rtl style='text-align:left'>x", true, Alignment::kLeft},
      {"<p dir=rtl align=center>x", true, Alignment::kCenter},
      {"<div style='text-align:end'><p dir=rtl>x</div>", true, Alignment::kLeft},
      {"<div dir=rtl><p dir=ltr>x</div>", false, Alignment::kLeft},
      {"<p><span dir=rtl style='text-align:center'>x</span>", false, Alignment::kLeft},
      {"<div dir=rtl align=center><table><tr><td>x</table></div>", true, Alignment::kRight},
      {"<table><tbody style='text-align:center'><tr><td>x</table>", false, Alignment::kCenter},
      {"<span dir=rtl style='text-align:center'><p>x</p></span>", true, Alignment::kCenter},
      {"<my-box dir=rtl><p>x</my-box>", true, Alignment::kRight},
      {"<div dir=rtl><p dir=auto>x", true, Alignment::kRight},
      {"<span dir=rtl><table><tr><td>x</table></span>", true, Alignment::kRight},
      {"<bodyless dir=ltr><!-- <body dir=ltr> --><body class='a>b' id=a'b nodir DIR=rtl dir=ltr>x", true,
       Alignment::kRight},
      {"<html dir=rtl><body/>x", true, Alignment::kRight},
      {"<body style='direction:rtl'>x", true, Alignment::kRight},
      {"<HTML dir='rtl'><head></head><body><!--StartFragment-->x<!--EndFragment-->", true, Alignment::kRight},
  };
  for (const auto& row : sides) {
    EXPECT_EQ(Shown(row.html).Paragraph().rightToLeft, row.rightToLeft) << row.html;
    EXPECT_EQ(Shown(row.html).Paragraph().alignment, row.alignment) << row.html;
  }
  EXPECT_EQ(Shown("<p style='margin:10px 0 20px;text-indent:-1in;margin-left:1in'>x").Paragraph().spaceAfter, 300);
  EXPECT_EQ(Shown("<p style='text-indent:-1in;margin-left:1in'>x").Paragraph().firstIndent, -1440);

  EXPECT_TRUE(Shown("<ul><li><img src='data:image/png;base64,iVBORw0KGgoAAA=='>x</ul>").Paragraph().bullet);
  const Shown list("<ul><li>a<p>b</p><ol start=3><li>c<li><b>d</b></ol></ul>e");
  EXPECT_EQ(list.Text(), "a\nb\nc\n*d\n*e");
  const bool bullets[] = {true, false, false, false, false};
  const bool numbers[] = {false, false, true, true, false};
  const int levels[] = {0, 0, 1, 1, 0};
  for (int64_t i = 0; i < 5; ++i) {
    EXPECT_EQ(list.Paragraph(i).bullet, bullets[i]) << i;
    EXPECT_EQ(list.Paragraph(i).list != ListId::kNone, numbers[i]) << i;
    EXPECT_EQ(list.Paragraph(i).listLevel, levels[i]) << i;
  }
  EXPECT_EQ(list.Paragraph(2).list, list.Paragraph(3).list);
  EXPECT_EQ(list.formats()[list.Paragraph(2).list].levels[1].start, 3);
}

TEST(HtmlReader, Tables) {
  const std::pair<std::string, std::string> rows[] = {
      {"<table><tr><td>1<td>2<tr><td>3<td>4</table>", "1,2]\n3,4]\n"},
      {"a<table> <tr> <td>1</td> <td></td> </tr> </table>b", "a\n1,]\nb"},
      {"<table><tr><td colspan=2>1<td>2</table>", "1,,2]\n"},
      {"<table><tr><td><p>a</p><p>b</p></td><td>c</td></tr></table>", "a\nb,c]\n"},
      {"<table><tr><td>a<table><tr><td>x<td>y</table>b<td>c</table>", "a\nx\ny\nb,c]\n"},
      {"<tr><td>no table</td></tr>", "no table"},
  };
  for (const auto& [html, text] : rows) EXPECT_EQ(Shown(html).Text(), text) << html;

  const Shown table("<table><tr><td align=right>1<td colspan=2>2</table>");
  EXPECT_EQ(table.Paragraph(0).alignment, Alignment::kRight);
  EXPECT_EQ(table.Paragraph(1).alignment, Alignment::kLeft);
  const TableRow& row = table.formats()[table.Paragraph(0).row];
  ASSERT_EQ(row.cells.size(), 3u);
  EXPECT_TRUE(row.cells[2].joinsLeft && !row.cells[1].joinsLeft);
  EXPECT_LT(row.cells[0].right, row.cells[1].right);
  EXPECT_EQ(table.Paragraph(2).row, table.Paragraph(0).row);

  std::string plain;
  ASSERT_TRUE(WritePlainText(table.content(), {}, [&](std::string_view bytes) { return plain += bytes, true; },
                             {.fromRichText = true}));
  EXPECT_EQ(plain, "1\t2\t\r\n");
}

// What is nested too deep, or broken, still ends, and with a valid content.
TEST(HtmlReader, HostilePages) {
  const auto repeated = [](std::string_view part, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) all += part;
    return all;
  };
  const std::pair<std::string, std::string_view> pages[] = {
      {repeated("<div>", 900) + "x", "x"},
      {"x" + repeated("<b>", 200000), "x"},
      {repeated("<table><tr><td>", 300) + "x", "x]\n"},
      {"<table><tr>" + repeated("<td>", 3000) + "x", ""},
      {"<table><tr><td colspan=2000000000>x", ""},
      {repeated("<ul><li>", 400) + "x", "x"},
      {repeated("</b>", 100000) + "x", "x"},
      {"x<!-- never ends", "x"},
  };
  for (const auto& [page, text] : pages) {
    const Shown shown(page);
    EXPECT_NO_THROW(shown.content().CheckInvariants()) << page.substr(0, 40);
    EXPECT_EQ(shown.limited(), page.starts_with("x<b>")) << page.substr(0, 40);
    if (!text.empty()) {
      EXPECT_EQ(shown.Text(), text) << page.substr(0, 40);
    }
  }
}

}  // namespace
}  // namespace text::html
