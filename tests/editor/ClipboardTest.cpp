#include "tests/editor/EditorFixture.h"
#include "ui/editing/exchange/EditorClipboard.h"
#include "ui/editor/RichTextBox.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QImage>
#include <gtest/gtest.h>

#include <functional>

namespace ui::test {
namespace {

TEST(Clipboard, OffersTextAndRtfThatOthersCanRead) {
  Editor editor("x[a\r\nb\xFF\U0001F600|y");
  editor.Press("Ctrl+C");
  const QMimeData& data = *editor.host.data[QClipboard::Clipboard];
  EXPECT_EQ(data.formats(), (QStringList{"text/rtf", "application/rtf", "text/html", "text/plain"}));
  EXPECT_EQ(data.text(), QStringLiteral("a\nb\uFFFD\U0001F600"));
  EXPECT_EQ(data.data(QStringLiteral("text/plain")), QByteArray("a\nb\xEF\xBF\xBD\xF0\x9F\x98\x80"));
  EXPECT_TRUE(data.data(QStringLiteral("text/rtf")).startsWith("{\\rtf1"));
  EXPECT_EQ(data.data(QStringLiteral("text/rtf")), data.data(QStringLiteral("application/rtf")));
  EXPECT_TRUE(data.html().contains("<p>b\uFFFD\U0001F600</p>")) << data.html().toStdString();
  editor.controller.SavesFormatsWhen([] { return false; });
  editor.Press("Ctrl+C");
  EXPECT_FALSE(editor.host.data[QClipboard::Clipboard]->hasHtml());
}

// What is offered is the text as it was when it was copied.
TEST(Clipboard, HoldsASnapshot) {
  Editor editor("[abc|");
  editor.Press("Ctrl+C 'z'");
  EXPECT_EQ(editor.host.data[QClipboard::Clipboard]->text(), QStringLiteral("abc"));
}

TEST(Clipboard, CopyWithoutSelectionKeepsWhatWasThere) {
  Editor editor("[a|bc");
  editor.Press("Ctrl+C Right Ctrl+C Ctrl+X");
  EXPECT_EQ(editor.host.data[QClipboard::Clipboard]->text(), QStringLiteral("a"));
}

// Between two documents the bytes and the formats go over without a detour through RTF.
TEST(Clipboard, CarriesStrayBytesAndFormatsToAnotherDocument) {
  Editor from("[ab\r\n\xFF|");
  text::CharFormatPatch patch;
  patch.setFlags = text::kBold;
  patch.font = from.document.formats().Intern(text::Font{"DejaVu Serif", 1, 1});
  from.controller.PatchChars(patch);
  from.Press("Ctrl+C");
  Editor to("<|>", text::LineEnd::kLf);
  to.document.formats().Intern(text::Font{"Another", 1, 0});
  to.controller.Insert(*from.host.data[QClipboard::Clipboard], false);
  EXPECT_EQ(to.Shown(), "<ab\n\xFF|>");
  EXPECT_EQ(to.Flagged(text::kBold), "ab\n\xFF,");
  const text::FormatTable& formats = to.document.formats();
  EXPECT_EQ(formats[formats[to.document.content().CharFormatAt(text::Units(1))].font].name, "DejaVu Serif");
}

// Two bytes that came one after the other are two characters, here and there.
TEST(Clipboard, KeepsStrayBytesApart) {
  Editor from("|");
  for (const char* byte : {"\xC3", "\xA9"}) ASSERT_TRUE(from.controller.Replace(from.controller.range(), byte));
  ASSERT_EQ(from.document.content().size(), text::Units(2));
  from.Press("Ctrl+A Ctrl+C");
  Editor to("<|>");
  to.controller.Insert(*from.host.data[QClipboard::Clipboard], false);
  EXPECT_EQ(to.document.content().size(), text::Units(4));
  EXPECT_EQ(to.Shown(), "<\xC3\xA9|>");
  to.document.content().CheckInvariants();
}

struct PasteCase {
  const char* name;
  const char* rtf;  // null: not offered
  const char* text;
  const char* html;
  bool plain;
  const char* after;
  const char* bold;
};

TEST(Clipboard, TakesTheRichestFormThatIsAskedFor) {
  const PasteCase cases[] = {
      {"rtf", "{\\rtf1 a{\\b b}}", "text", "<i>html</i>", false, "<ab|>", "b,"},
      {"plain of rtf", "{\\rtf1 a{\\b b}}", "text", nullptr, true, "<text|>", ""},
      {"html before text", nullptr, "text", "<b>html</b>", false, "<html|>", "html,"},
      {"plain of html", nullptr, "text", "<b>html</b>", true, "<text|>", ""},
      {"html", nullptr, nullptr, "<p>a &amp; b</p><p>c</p>", false, "<a & b\nc|>", ""},
      {"paragraphs", "{\\rtf1 a\\par b}", nullptr, nullptr, false, "<a\nb|>", ""},
      {"damaged rtf", "not rtf", "text", nullptr, false, "<text|>", ""},
      {"breaks", nullptr, "a\r\nb\rc\n", nullptr, false, "<a\nb\nc\n|>", ""},
      {"nothing", nullptr, nullptr, nullptr, false, "<|>", ""},
  };
  for (const auto& c : cases) {
    QMimeData data;
    if (c.rtf) data.setData(QStringLiteral("application/rtf"), c.rtf);
    if (c.text) data.setText(QString::fromUtf8(c.text));
    if (c.html) data.setHtml(QString::fromUtf8(c.html));
    Editor editor("<|>");
    editor.controller.Insert(data, c.plain);
    EXPECT_EQ(editor.Shown(), c.after) << c.name;
    EXPECT_EQ(editor.Flagged(text::kBold), c.bold) << c.name;
  }
}

TEST(Clipboard, APageComesInWithItsFormatsWhereTheyAreWanted) {
  QMimeData data;
  data.setHtml("<table><tr><td>1<td>2</table>a <b>b</b>");
  for (const bool wanted : {true, false}) {
    Editor editor("|");
    editor.controller.SavesFormatsWhen([wanted] { return wanted; });
    editor.controller.Insert(data, false);
    EXPECT_EQ(editor.Shown(), wanted ? "1\n2\na b|" : "1\t2\na b|");
    EXPECT_EQ(editor.Flagged(text::kBold), wanted ? "b," : "");
  }
}

QByteArray Encoded(const QImage& image, const char* format) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, format);
  return bytes;
}

void PutPicture(const QByteArray& bytes, text::PictureType type, Editor& editor) {
  text::EmbeddedObject object;
  object.type = type;
  object.picture = text::SharedBytes(bytes.toStdString());
  text::CharFormat format;
  format.object = editor.document.formats().Add(object);
  editor.document.Replace({text::Units(1), text::Units(1)}, "\uFFFC", editor.document.formats().Intern(format),
                          text::EditKind::kCommand, {});
}

TEST(Clipboard, APictureAloneIsOfferedAsOne) {
  QImage red(30, 20, QImage::Format_RGB32);
  red.fill(Qt::red);
  const QByteArray jpeg = Encoded(red, "jpeg");
  Editor editor("a|b");
  PutPicture(jpeg, text::PictureType::kJpeg, editor);
  editor.controller.Select({text::Units(1), text::Units(2)});
  editor.Press("Ctrl+C");
  const QMimeData& data = *editor.host.data[QClipboard::Clipboard];
  EXPECT_TRUE(data.hasImage());
  EXPECT_FALSE(data.hasText());
  EXPECT_EQ(data.data("image/jpeg"), jpeg);
  EXPECT_EQ(QImage::fromData(data.data("image/png")).size(), red.size());
  EXPECT_EQ(data.imageData().value<QImage>().size(), red.size());
  EXPECT_TRUE(data.data("text/rtf").contains("\\pict"));
  Editor to("|");
  to.controller.Insert(data, false);
  EXPECT_EQ(to.document.content().size(), text::Units(1));
  editor.controller.Select({text::Units(0), text::Units(3)});
  editor.Press("Ctrl+C");
  const QMimeData& mixed = *editor.host.data[QClipboard::Clipboard];
  EXPECT_FALSE(mixed.hasImage());
  EXPECT_EQ(mixed.text(), "ab");
  Editor plain("|");
  plain.controller.Insert(mixed, true);
  EXPECT_EQ(plain.Shown(), "ab|") << "an object is nothing in plain text";
}

TEST(Clipboard, TakesThePictureThatLosesNothing) {
  QImage clear(9, 9, QImage::Format_ARGB32);
  clear.fill(Qt::transparent);
  QMimeData data;
  data.setData("image/jpeg", Encoded(clear, "jpeg"));
  Editor editor("|");
  const auto type = [&] {
    const auto fragment = PictureFragment(data, editor.document, {});
    const text::FormatTable& formats = editor.document.formats();
    return fragment ? formats[formats[fragment->CharFormatAt(text::Units(0))].object].type : text::PictureType::kNone;
  };
  data.setImageData(clear);
  EXPECT_EQ(type(), text::PictureType::kJpeg);
  data.setData("image/bmp", "BM");
  EXPECT_EQ(type(), text::PictureType::kPng) << "made of the image";
  data.setData("image/png", Encoded(clear, "png"));
  EXPECT_EQ(type(), text::PictureType::kPng);
}

// The text typed next goes on as the text before it did, whatever came between.
TEST(Clipboard, WhatSaysNothingOfItsLookTakesThatOfItsPlace) {
  QImage dot(1, 1, QImage::Format_RGB32);
  dot.fill(Qt::red);
  QMimeData picture, words, page;
  picture.setImageData(dot);
  words.setHtml("a<code>b</code>");
  page.setHtml("<h1>a</h1>");
  const auto object = [](Editor& editor) {
    text::ContentBuilder builder(editor.document.content().store());
    text::CharFormat format;
    format.object = editor.document.formats().Add({});
    builder.Append("\uFFFC", editor.document.formats().Intern(format));
    editor.controller.InsertObjects({builder.Finish()});
  };
  const struct {
    const char* what;
    std::function<void(Editor&)> insert;
    const char* font;  // of the text typed next
    int halfPoints;
    bool isObject;
  } rows[] = {
      {"picture", [&](Editor& editor) { editor.controller.Insert(picture, false); }, "Mono", 20, true},
      {"dropped picture", [&](Editor& editor) { editor.controller.InsertPicture(picture); }, "Mono", 20, true},
      {"object", object, "Mono", 20, true},
      {"words", [&](Editor& editor) { editor.controller.Insert(words, false); }, "Courier New", 20, false},
      {"heading", [&](Editor& editor) { editor.controller.Insert(page, false); }, "Mono", 40, false},
  };
  for (const auto& row : rows) {
    for (const char* place : {"[x|", "x|", "|"}) {
      Editor editor(place);
      text::CharFormatPatch patch;
      patch.font = editor.document.formats().Intern(text::Font{"Mono"});
      patch.halfPoints = 20;
      const text::Selection selection = editor.controller.selection();
      editor.controller.SelectAll();
      editor.controller.PatchChars(patch);
      if (std::string_view(place) != "|") editor.controller.Select(selection);
      row.insert(editor);
      const text::FormatTable& formats = editor.document.formats();
      const text::Units last = editor.controller.range().end - text::Units(1);
      EXPECT_EQ(formats[editor.document.content().CharFormatAt(last)].object != text::ObjectId::kNone, row.isObject);
      EXPECT_EQ(formats[editor.controller.InsertFormat().font].name, row.font) << row.what << " at " << place;
      EXPECT_EQ(editor.controller.InsertFormat().halfPoints, row.halfPoints) << row.what << " at " << place;
    }
  }
}

TEST(Clipboard, AnEmptyParagraphBecomesTheLastOneThatIsPasted) {
  const struct {
    const char *before, *html, *rtf, *after;
    const char* kinds;  // of the paragraphs: Number, Right, "-" or, as before, Center
  } rows[] = {
      {"|", "<ol><li>c<li>d</ol>", nullptr, "c\nd|", "NN"},
      {"x\n|\ny", "<ol><li>c<li>d</ol>", nullptr, "x\nc\nd|\ny", "CNNC"},
      {"[x|", "<ol><li>c<li>d</ol>", nullptr, "c\nd|", "NN"},
      {"x|", "<ol><li>c<li>d</ol>", nullptr, "xc\nd|", "NC"},
      {"|", "<ol><li>c</ol>", nullptr, "c|", "N"},
      {"|", "<b>c</b>", nullptr, "c|", "C"},
      {"|", "<p>c</p>", nullptr, "c|", "-"},
      {"|", "c<div>d</div>", nullptr, "c\nd|", "--"},
      {"|", nullptr, "{\\rtf1\\pard\\qr c\\par d}", "c\nd|", "RR"},
      {"|", nullptr, "{\\rtf1\\pard\\qr c\\par}", "c\n|", "RC"},
      {"|", nullptr, "{\\rtf1\\pard\\qr c}", "c|", "C"},
  };
  for (const auto& row : rows) {
    QMimeData data;
    if (row.html) data.setHtml(QString::fromUtf8(row.html));
    if (row.rtf) data.setData(QStringLiteral("text/rtf"), row.rtf);
    Editor editor(row.before);
    const text::Selection selection = editor.controller.selection();
    editor.controller.SelectAll();
    text::ParaFormatPatch centered;
    centered.alignment = text::Alignment::kCenter;
    editor.controller.PatchParagraphs(centered);
    editor.controller.Select(selection);
    const text::Content before = editor.document.content();
    editor.controller.Insert(data, false);
    EXPECT_EQ(editor.Shown(), row.after);
    std::string kinds;
    const text::Content& content = editor.document.content();
    for (text::Breaks at(0); at <= content.breaks(); at = at + text::Breaks(1)) {
      const text::ParaFormat& format = content.formats()[content.ParaFormatOf(at)];
      kinds += format.list != text::ListId::kNone ? 'N' : "-RC"[static_cast<size_t>(format.alignment)];
    }
    EXPECT_EQ(kinds, row.kinds) << row.after;
    editor.Press("Ctrl+Z");
    EXPECT_TRUE(editor.document.content().SameAs(before)) << "one step: " << row.after;
    editor.Press("Ctrl+Y");
    EXPECT_EQ(editor.Shown(), row.after);
  }
}

TEST(Clipboard, AParagraphGoesIntoAnEmptyItem) {
  for (const char* html : {"<p>c</p>", "<ul><li>c</ul>"}) {
    QMimeData data;
    data.setHtml(QString::fromUtf8(html));
    Editor editor("|");
    text::ParaFormatPatch item;
    item.bullet = true;
    editor.controller.PatchParagraphs(item);
    editor.controller.Insert(data, false);
    EXPECT_EQ(editor.Shown(), "c|");
    EXPECT_TRUE(editor.document.formats()[editor.document.content().lastParaFormat()].bullet) << html;
  }
}

// All of the text without its look, or nothing, rather than the beginning with it.
TEST(Clipboard, APageThatIsNestedTooDeep) {
  for (const bool hasText : {true, false}) {
    QMimeData data;
    data.setHtml("a" + QStringLiteral("<b>").repeated(2000) + "b");
    if (hasText) data.setText("ab");
    Editor editor("|");
    editor.controller.SavesFormatsWhen([] { return true; });
    editor.controller.Insert(data, false);
    EXPECT_EQ(editor.Shown(), hasText ? "ab|" : "|");
    EXPECT_EQ(editor.host.refusals, hasText ? 0 : 1);
  }
}

// Through the real clipboard, from one control to another.
TEST(Clipboard, GoesFromOneBoxToAnother) {
  RichTextBox from, to;
  from.SetSelText(QStringLiteral("one\r\ntwo"));
  from.SetSelStart(5);
  from.SetSelLength(3);
  from.SetSelItalic(true);
  from.SelectAll();
  from.Cut();
  EXPECT_EQ(from.Text(), QString());
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("one\ntwo"));
  to.Paste();
  EXPECT_EQ(to.Text(), QStringLiteral("one\r\ntwo"));
  to.SetSelStart(5);
  to.SetSelLength(3);
  EXPECT_EQ(to.SelItalic(), true);
  to.PastePlainText();
  EXPECT_EQ(to.Text(), QStringLiteral("one\r\none\r\ntwo"));
}

TEST(Drag, OtherProgramsGetNoMoreThanADisplayTakes) {
  Editor editor("[" + std::string(100'000, 'x') + "|");
  const auto data = editor.controller.CopyOfSelection();
  int refused = 0;
  data->LimitTo([&] { ++refused; });
  EXPECT_EQ(data->text().size(), 100'000);
  EXPECT_EQ(refused, 0);
  Editor big("[" + std::string(5'000'000, '\x80') + "|");  // three bytes each as text
  const auto much = big.controller.CopyOfSelection();
  much->LimitTo([&] { ++refused; });
  EXPECT_TRUE(much->text().isEmpty());
  EXPECT_TRUE(much->data(QStringLiteral("text/rtf")).isEmpty());
  EXPECT_EQ(refused, 2);
  Editor target("|");
  target.controller.Insert(*much, false);
  EXPECT_EQ(target.document.content().size(), text::Units(5'000'000)) << "within the program there is no limit";
}

}  // namespace
}  // namespace ui::test
