#include "text/TextStore.h"
#include "ui/editor/RichTextBox.h"

#include <QApplication>
#include <QInputMethodQueryEvent>
#include <gtest/gtest.h>

namespace ui::test {
namespace {

// As UTF-8 whatever the bytes are: a few stray ones alone would be taken for an 8-bit text.
void Load(RichTextBox& box, std::string_view bytes) {
  text::ContentBuilder builder(box.document().content().store());
  builder.Append(bytes);
  text::LoadedText loaded;
  loaded.content = builder.Finish();
  loaded.properties.lineEnd = bytes.find("\r\n") == std::string::npos ? text::LineEnd::kLf : text::LineEnd::kCrLf;
  box.LoadPlain(loaded);
}

void Select(RichTextBox& box, int64_t start, int64_t length) {
  box.SetSelStart(start);
  box.SetSelLength(length);
}

// --- Positions at the surface

TEST(Surface, EveryBreakCountsTwo) {
  struct Case {
    const char* bytes;
    int64_t start, length;        // as set
    int64_t gotStart, gotLength;  // as read back
    const char16_t* selected;
  };
  const Case cases[] = {
      {"ab\r\ncd", 4, 1, 4, 1, u"c"},
      {"ab\ncd", 4, 1, 4, 1, u"c"},
      {"ab\rcd", 4, 1, 4, 1, u"c"},
      {"a\r\nb\nc\rd", 3, 6, 3, 6, u"b\r\nc\r\n"},
      {"ab\ncd", 3, 0, 2, 0, u""},
      {"ab\ncd", 2, 1, 2, 2, u"\r\n"},
      {"ab\ncd", 0, 99, 0, 6, u"ab\r\ncd"},
      {"ab", -5, 1, 0, 1, u"a"},
      {"ab", 99, 1, 2, 0, u""},
      {"a\U0001F600b", 2, 2, 1, 2, u"\U0001F600"},
      {"a\U0001F600b", 3, 1, 3, 1, u"b"},
      {"ab", 1, -1, 1, 0, u""},
  };
  for (const Case& c : cases) {
    RichTextBox box;
    Load(box, c.bytes);
    Select(box, c.start, c.length);
    EXPECT_EQ(box.SelStart(), c.gotStart) << c.bytes << " " << c.start;
    EXPECT_EQ(box.SelLength(), c.gotLength) << c.bytes << " " << c.start;
    EXPECT_EQ(box.SelText(), QString::fromUtf16(c.selected)) << c.bytes << " " << c.start;
    EXPECT_EQ(box.SelText().size(), box.SelLength());
  }
}

TEST(Surface, SelTextReplacesAndStandsBehind) {
  struct Case {
    const char* bytes;
    int64_t start, length;
    QString text;
    const char* after;
    int64_t caret;
  };
  const Case cases[] = {
      {"ab\r\ncd", 1, 4, QStringLiteral("x\r\ny\r\n"), "ax\r\ny\r\nd", 7},
      {"ab\ncd\n", 4, 0, QStringLiteral("x\r\ny"), "ab\nx\nycd\n", 8},
      {"ab", 1, 0, QString(QChar(0xDCFE)), "a\xFE\x62", 2},
      {"ab", 0, 2, QString(), "", 0},
  };
  for (const Case& c : cases) {
    RichTextBox box;
    Load(box, c.bytes);
    Select(box, c.start, c.length);
    box.SetSelText(c.text);
    EXPECT_EQ(box.document().content().ByteString(box.document().content().all()), c.after);
    EXPECT_EQ(box.SelStart(), c.caret) << c.bytes;
    EXPECT_EQ(box.SelLength(), 0);
    box.Undo();
    EXPECT_EQ(box.document().content().ByteString(box.document().content().all()), c.bytes);
    EXPECT_EQ(box.SelStart(), c.start);
    EXPECT_FALSE(box.CanUndo());
  }
}

// --- Formats: "one two" with a property set on the first word, then on nothing, then on all.

struct Property {
  const char* name;
  std::function<QVariant(const RichTextBox&)> get;  // invalid = mixed
  std::function<void(RichTextBox&, QVariant)> set;
  QVariant before, value;
};

template <class T>
QVariant Boxed(const std::optional<T>& value) {
  return value ? QVariant::fromValue(*value) : QVariant();
}

template <class T, class Get, class Set>
Property Make(const char* name, Get get, Set set, const T& before, const T& value) {
  return {name, [get](const RichTextBox& box) { return Boxed(std::invoke(get, box)); },
          [set](RichTextBox& box, const QVariant& v) { std::invoke(set, box, v.value<T>()); },
          QVariant::fromValue(before), QVariant::fromValue(value)};
}
#define PROPERTY(NAME, TYPE, BEFORE, VALUE) \
  Make<TYPE>(#NAME, &RichTextBox::NAME, &RichTextBox::Set##NAME, BEFORE, VALUE)

std::vector<Property> CharProperties() {
  return {PROPERTY(SelBold, bool, false, true),
          PROPERTY(SelItalic, bool, false, true),
          PROPERTY(SelUnderline, bool, false, true),
          PROPERTY(SelStrikeThru, bool, false, true),
          PROPERTY(SelProtected, bool, false, true),
          PROPERTY(SelFontSize, double, 12.0, 17.5),
          PROPERTY(SelFontName, QString, QApplication::font().family(), QStringLiteral("DejaVu Serif")),
          PROPERTY(SelColor, int64_t, -1, 0x0000FF),
          PROPERTY(SelCharOffset, int, 0, -90)};
}

std::vector<Property> ParagraphProperties() {
  return {PROPERTY(SelAlignment, int, 0, 2), PROPERTY(SelIndent, int, 0, 850), PROPERTY(SelHangingIndent, int, 0, 300),
          PROPERTY(SelRightIndent, int, 0, 700), PROPERTY(SelBullet, bool, false, true)};
}

TEST(CharFormats, AreReadBackMixedAndUndone) {
  for (const Property& p : CharProperties()) {
    SCOPED_TRACE(p.name);
    RichTextBox box;
    Load(box, "one two");
    int changes = 0;
    QObject::connect(&box, &RichTextBox::Change, [&] { ++changes; });
    Select(box, 0, 3);
    EXPECT_EQ(p.get(box), p.before);
    p.set(box, p.value);
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(box.document().changed());
    EXPECT_EQ(p.get(box), p.value);
    EXPECT_EQ(box.SelText(), "one") << "a format keeps the selection";
    box.SelectAll();
    EXPECT_FALSE(p.get(box).isValid()) << "mixed";
    Select(box, 4, 3);
    EXPECT_EQ(p.get(box), p.before);
    box.Undo();
    Select(box, 0, 7);
    EXPECT_EQ(p.get(box), p.before);
    EXPECT_FALSE(box.document().changed());
    EXPECT_FALSE(box.CanUndo()) << "one step";
  }
}

TEST(CharFormats, WithoutSelectionAreForTheNextText) {
  for (const Property& p : CharProperties()) {
    SCOPED_TRACE(p.name);
    RichTextBox box;
    Load(box, "one two");
    box.SetSelStart(3);
    p.set(box, p.value);
    EXPECT_EQ(p.get(box), p.value);
    EXPECT_FALSE(box.document().changed());
    box.SetSelText(QStringLiteral("X"));
    Select(box, 3, 1);
    EXPECT_EQ(p.get(box), p.value);
    Select(box, 0, 3);
    EXPECT_EQ(p.get(box), p.before);
  }
}

TEST(ParagraphFormats, AreOfTheParagraphsThatTheSelectionTouches) {
  for (const Property& p : ParagraphProperties()) {
    SCOPED_TRACE(p.name);
    RichTextBox box;
    Load(box, "one\r\ntwo\r\nthree");
    Select(box, 1, 4);  // up to the second paragraph's start: only the first is meant
    EXPECT_EQ(p.get(box), p.before);
    p.set(box, p.value);
    EXPECT_EQ(p.get(box), p.value);
    box.SetSelStart(5);
    EXPECT_EQ(p.get(box), p.before);
    box.SelectAll();
    EXPECT_FALSE(p.get(box).isValid()) << "mixed";
    p.set(box, p.value);
    EXPECT_EQ(p.get(box), p.value);
    box.SetSelStart(99);
    EXPECT_EQ(p.get(box), p.value) << "the last paragraph too";
    box.Undo();
    box.Undo();
    box.SelectAll();
    EXPECT_EQ(p.get(box), p.before);
    EXPECT_FALSE(box.CanUndo());
  }
}

TEST(ParagraphFormats, IndentsAreOfTheFirstLineAndOfTheFollowingOnes) {
  RichTextBox box;
  Load(box, "one");
  box.SetSelIndent(500);
  box.SetSelHangingIndent(200);
  const text::Content& content = box.document().content();
  const auto format = [&] { return content.formats()[content.lastParaFormat()]; };
  EXPECT_EQ(format().leftIndent, 700);
  EXPECT_EQ(format().firstIndent, -200);
  box.SetSelIndent(100);
  EXPECT_EQ(format().leftIndent, 300);
  EXPECT_EQ(box.SelHangingIndent(), 200);
  box.SetBulletIndent(400);
  box.SetSelBullet(true);
  EXPECT_EQ(format().leftIndent, 500);
  EXPECT_EQ(format().firstIndent, -400);
  EXPECT_EQ(box.SelIndent(), 100);
  box.SetSelBullet(false);
  EXPECT_EQ(box.SelIndent(), 100);
  EXPECT_EQ(box.SelHangingIndent(), 0);
  box.SetSelIndent(1 << 30);
  EXPECT_EQ(box.SelIndent(), 31680) << "22 inches at most";
}

TEST(CharFormats, SizesAreClamped) {
  RichTextBox box;
  for (const auto& [set, got] : {std::pair{10.26, 10.5}, {0.0, 0.5}, {-3.0, 0.5}, {1e9, 1638.0}}) {
    box.SetSelFontSize(set);
    EXPECT_EQ(box.SelFontSize(), got);
  }
}

// --- RTF

TEST(Rtf, ASelectionGoesRoundWithItsFormats) {
  RichTextBox from;
  Load(from, "one two\r\nthree");
  Select(from, 4, 3);
  from.SetSelBold(true);
  from.SetSelColor(0x0000FF);
  from.SelectAll();
  const QByteArray rtf = from.SelRTF();
  RichTextBox to;
  Load(to, "<>");
  to.SetSelStart(1);
  to.SetSelRTF(rtf);
  EXPECT_EQ(to.Text(), "<one two\r\nthree>");
  EXPECT_EQ(to.SelStart(), 15);
  Select(to, 5, 3);
  EXPECT_EQ(to.SelBold(), true);
  EXPECT_EQ(to.SelColor(), 0x0000FF);
  Select(to, 0, 4);
  EXPECT_EQ(to.SelBold(), false);
  to.Undo();
  EXPECT_EQ(to.Text(), "<>");
}

TEST(Rtf, WhatIsNotRtfGoesInAsText) {
  RichTextBox box;
  box.SetSelBold(true);
  box.SetSelRTF("a < b\n\xC3\xA9");
  EXPECT_EQ(box.Text(), QStringLiteral("a < b\r\n\u00E9"));
  box.SelectAll();
  EXPECT_EQ(box.SelBold(), true);
}

// --- Finding

TEST(Finding, CountsAsTheSurfaceDoes) {
  RichTextBox box;
  Load(box, "one\ntwo\none two");
  EXPECT_EQ(box.Find(QStringLiteral("two"), 0, kFindMatchCase), 5);
  EXPECT_EQ(box.SelStart(), 5);
  EXPECT_EQ(box.SelText(), "two");
  EXPECT_EQ(box.Find(QStringLiteral("two"), 6, kFindMatchCase), 14);
  EXPECT_EQ(box.Find(QStringLiteral("two"), 15, kFindMatchCase), -1);
  EXPECT_EQ(box.SelStart(), 14) << "a search in vain selects nothing";
  EXPECT_EQ(box.Find(QStringLiteral("one"), -7, kFindNoHighlight | kFindMatchCase), 0);
  EXPECT_EQ(box.SelStart(), 14);
  EXPECT_EQ(box.Find(QStringLiteral("one"), 99, 0), -1);
  EXPECT_EQ(box.Find(QString(), 0, 0), -1);
}

TEST(Finding, ShowsTheMatchWithLinesAroundIt) {
  RichTextBox box;
  box.resize(300, 200);
  std::string lines;
  for (int i = 0; i < 300; ++i) lines += "line\n";
  Load(box, lines + "needle\n" + lines);
  ASSERT_GT(box.Find(QStringLiteral("needle"), 0, kFindMatchCase), 0);
  QInputMethodQueryEvent query(Qt::ImCursorRectangle);
  QApplication::sendEvent(&box, &query);
  const QRectF caret = query.value(Qt::ImCursorRectangle).toRectF();
  EXPECT_GT(caret.top(), 2 * caret.height());
  EXPECT_LT(caret.bottom(), box.viewport()->height() - 2 * caret.height());
}

// --- Loading

TEST(Loading, ReplacesEverythingAndIsNoEdit) {
  RichTextBox box;
  int changes = 0, selections = 0;
  box.SetSelText(QStringLiteral("old"));
  QObject::connect(&box, &RichTextBox::Change, [&] { ++changes; });
  QObject::connect(&box, &RichTextBox::SelChange, [&] { ++selections; });
  Load(box, "new\ntext");
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(selections, 1);
  EXPECT_EQ(box.SelStart(), 0);
  EXPECT_FALSE(box.CanUndo());
  EXPECT_FALSE(box.document().changed());
  EXPECT_FALSE(box.isRichText());
}

TEST(Loading, TheDefaultFormatIsNeitherEditNorChange) {
  RichTextBox box;
  box.SetDefaultFormat(QStringLiteral("DejaVu Sans"), 10);
  EXPECT_EQ(box.SelFontSize(), 10);
  EXPECT_EQ(box.SelFontName(), QStringLiteral("DejaVu Sans"));
  Load(box, "plain");
  box.SelectAll();
  EXPECT_EQ(box.SelFontSize(), 10);
  EXPECT_FALSE(box.document().changed());
  EXPECT_FALSE(box.CanUndo());
  EXPECT_TRUE(box.SelRTF().contains("DejaVu Sans")) << "plain text keeps its font when it becomes rich";
  box.LoadRtf(text::rtf::Read("{\\rtf1{\\fonttbl{\\f0 Courier;}}\\f0\\fs40 rich}", box.document().content().store()));
  EXPECT_TRUE(box.isRichText());
  box.SelectAll();
  EXPECT_EQ(box.SelFontSize(), 20);
  EXPECT_EQ(box.SelFontName(), QStringLiteral("Courier"));
}

// As it would be read again after saving.
TEST(Loading, AnEmptyFilesTextHasTheFontThatItNames) {
  const char* rtf = "{\\rtf1\\deff0{\\fonttbl{\\f0 Courier;}}}";
  for (const char* font : {"", "DejaVu Sans"}) {
    RichTextBox box;
    if (*font) box.SetDefaultFormat(font, 10);
    box.LoadRtf(text::rtf::Read(rtf, box.document().content().store()));
    const std::string shown = box.SelFontName().value_or("").toStdString();
    EXPECT_EQ(shown, *font ? font : "Courier");
    box.SetSelText("x");
    box.SelectAll();
    const auto again = text::rtf::Read(box.SelRTF().toStdString(), std::make_shared<text::TextStore>());
    const text::FormatTable& formats = again.content.formats();
    EXPECT_EQ(formats[formats[again.content.CharFormatAt(text::Units(0))].font].name, shown);
  }
}

TEST(Loading, BytesComeBackAsTheyWere) {
  const std::string bytes = std::string("a\r\nb\nc\r\xFF\xC3(", 9) + std::string(1, '\0') + "\xED\xA0\x80";
  RichTextBox box;
  Load(box, bytes);
  EXPECT_EQ(box.document().content().ByteString(box.document().content().all()), bytes);
  box.SetSelStart(0);
  box.SetSelText(QStringLiteral("x"));
  EXPECT_EQ(box.document().content().ByteString(box.document().content().all()), "x" + bytes);
  // The whole text set back as UTF-16 keeps the stray bytes; only the breaks take the prevailing spelling.
  const QString all = box.Text();
  box.SelectAll();
  box.SetSelText(all);
  EXPECT_EQ(box.Text(), all);
}

// Neither the default format's size nor that of rich text goes away with the text.
TEST(Formats, StayWhenTheWholeTextIsDeleted) {
  RichTextBox plain, rich;
  plain.SetDefaultFormat("DejaVu Sans", 20);
  Load(plain, "abc");
  rich.LoadRtf(text::rtf::Read("{\\rtf1{\\fonttbl{\\f0 Courier;}}\\f0\\fs40 rich}", rich.document().content().store()));
  for (RichTextBox* box : {&plain, &rich}) {
    const auto font = box->SelFontName();
    box->SelectAll();
    box->DeleteSelection();
    EXPECT_EQ(box->SelFontSize(), 20);
    EXPECT_EQ(box->SelFontName(), font);
    box->SetSelText("x");
    box->SelectAll();
    EXPECT_EQ(box->SelFontSize(), 20);
    EXPECT_EQ(box->SelFontName(), font);
  }
}

}  // namespace
}  // namespace ui::test
