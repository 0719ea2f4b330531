// Bytes are sacred: what was opened and not edited is saved as it was, and an edit changes nothing but itself.
#include "tests/program/ProgramTest.h"

namespace {

using documents::frmText;

std::string AllBytes() {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  return bytes;
}

struct BytesCase {
  const char* name;
  std::string bytes;
  std::string edited;  // after "+" was typed at the beginning
};

std::string Nul(std::string_view text) {
  std::string bytes;
  for (const char c : text) bytes += c == '@' ? '\0' : c;
  return bytes;
}

const std::vector<BytesCase>& Cases() {
  static const std::vector<BytesCase> cases = {
      {"Empty", "", "+"},
      {"NoFinalBreak", "one\r\ntwo", "+one\r\ntwo"},
      {"CrLf", "one\r\ntwo\r\n", "+one\r\ntwo\r\n"},
      {"Lf", "one\ntwo\n", "+one\ntwo\n"},
      {"Cr", "one\rtwo\r", "+one\rtwo\r"},
      {"Mixed", "a\r\nb\nc\rd\r\r\n\n\re", "+a\r\nb\nc\rd\r\r\n\n\re"},
      {"OnlyBreaks", "\n\n\r\n\r", "+\n\n\r\n\r"},
      {"Nul", Nul("a@b@@\r\n@"), Nul("+a@b@@\r\n@")},
      {"Utf8Mark", "\xEF\xBB\xBFtext\n", "\xEF\xBB\xBF+text\n"},
      {"MarkInside", "x\xEF\xBB\xBFy", "+x\xEF\xBB\xBFy"},
      {"Utf8", "gr\xC3\xBC\xC3\x9F \xF0\x9F\x98\x80\n", "+gr\xC3\xBC\xC3\x9F \xF0\x9F\x98\x80\n"},
      {"StrayBytes", "\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC \xFF\xC3( \xE2\x82",
       "+\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC \xFF\xC3( \xE2\x82"},
      {"Latin1", "caf\xE9 na\xEFve \x80\x81 \x93quoted\x94", "+caf\xE9 na\xEFve \x80\x81 \x93quoted\x94"},
      {"EveryByte", AllBytes(), "+" + AllBytes()},
      {"EveryByteTwice", AllBytes() + AllBytes(), "+" + AllBytes() + AllBytes()},
      {"Surrogates", "\xED\xA0\x80 \xED\xB0\x80 ok", "+\xED\xA0\x80 \xED\xB0\x80 ok"},
      {"Overlong", "\xC0\xAF \xF8\x88\x80\x80\x80 ok", "+\xC0\xAF \xF8\x88\x80\x80\x80 ok"},
      {"Utf16Le", Nul("\xFF\xFEh@i@\r@\n@"), Nul("\xFF\xFE+@h@i@\r@\n@")},
      {"Utf16Be", Nul("\xFE\xFF@h@i@\n"), Nul("\xFE\xFF@+@h@i@\n")},
      {"Utf16Odd", Nul("\xFF\xFEh@i"), {}},
      {"Controls", "\f page \v \x1B[0m \x7F\n", "+\f page \v \x1B[0m \x7F\n"},
      {"Html", "<p>a &amp; b\n", "+<p>a &amp; b\n"},
  };
  return cases;
}

class BytesTest : public ProgramTest, public ::testing::WithParamInterface<size_t> {
 protected:
  const BytesCase& TestCase() const { return Cases()[GetParam()]; }
};

TEST_P(BytesTest, OpenedAndSavedIsIdentical) {
  const files::Path path = Put("file.txt", TestCase().bytes);
  frmText* document = Open(path);
  ASSERT_TRUE(document);
  EXPECT_FALSE(Changed(*document));
  EXPECT_EQ(document->mnuSaveFile_Click(), documents::SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(path), TestCase().bytes);
}

TEST_P(BytesTest, AfterAnEditEverythingElseIsIdentical) {
  const files::Path path = Put("file.txt", TestCase().bytes);
  frmText* document = Open(path);
  ASSERT_TRUE(document);
  document->RichTextBox1().SetSelStart(0);
  Type(*document, "+");
  EXPECT_TRUE(Changed(*document));
  ASSERT_EQ(document->mnuSaveFile_Click(), documents::SaveOutcome::kSaved);
  // Of a text that is taken for no encoding only the end is told.
  if (TestCase().edited.empty()) {
    EXPECT_TRUE(Bytes(path).ends_with(TestCase().bytes));
  } else {
    EXPECT_EQ(Bytes(path), TestCase().edited);
  }
  document->mnuUndoItem_Click();
  ASSERT_EQ(document->mnuSaveFile_Click(), documents::SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(path), TestCase().bytes) << "undone";
}

INSTANTIATE_TEST_SUITE_P(Files, BytesTest, ::testing::Range<size_t>(0, Cases().size()),
                         [](const auto& tested) { return Cases()[tested.param].name; });

// Rich text keeps its own bytes as long as nothing is edited, whatever the writer would make of it.
class RichBytesTest : public ProgramTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(RichBytesTest, OpenedAndSavedIsIdentical) {
  const std::string bytes = GetParam();
  const files::Path path = Put("file.rtf", bytes);
  frmText* document = Open(path);
  ASSERT_TRUE(document);
  EXPECT_EQ(document->mnuSaveFile_Click(), documents::SaveOutcome::kSaved);
  EXPECT_EQ(Bytes(path), bytes);
}

INSTANTIATE_TEST_SUITE_P(Files, RichBytesTest,
                         ::testing::Values("", "{\\rtf1}", "{\\rtf1 unclosed {\\b text",
                                           "{\\rtf1\\unknown1{\\*\\x y}text\n}", "{\\rtf1 text}trailing bytes",
                                           "  {\\rtf1 blanks before}", "{\\rtf1{\\trowd\\cellx100 a\\cell\\row}}",
                                           "no rich text at all\n", "{\\rt almost", "\xFF\xFE"));

TEST_F(BytesTest, UndoingEverythingGivesTheRichBytesBack) {
  const std::string bytes = "{\\rtf1\\ansi{\\*\\generator x;}text}";
  const files::Path path = Put("file.rtf", bytes);
  frmText* document = Open(path);
  Type(*document, "more ");
  document->mnuSaveFile_Click();
  EXPECT_NE(Bytes(path), bytes);
  document->mnuUndoItem_Click();
  document->mnuSaveFile_Click();
  EXPECT_EQ(Bytes(path), bytes);
}

TEST_F(BytesTest, AnEditedRichTextComesBackWithItsFormats) {
  const files::Path path = Put("file.rtf", "{\\rtf1\\ansi plain {\\b bold}}");
  frmText* document = Open(path);
  Type(*document, "more ");
  ASSERT_EQ(document->mnuSaveFile_Click(), documents::SaveOutcome::kSaved);
  EXPECT_TRUE(Bytes(path).starts_with("{\\rtf1"));
  EXPECT_TRUE(document->Close());
  document = Open(path);
  EXPECT_EQ(document->RichTextBox1().Text(), "more plain bold");
  document->RichTextBox1().SetSelStart(12);
  document->RichTextBox1().SetSelLength(2);
  EXPECT_EQ(document->RichTextBox1().SelBold(), true);
}

}  // namespace
