// The command line, through the real program.
#include "shell/CommandLine.h"
#include "tests/program/ProgramTest.h"

#include <QImage>
#include <QProcess>

namespace {

struct Ran {
  int status = -1;
  std::string out, error;
};

class CommandLineTest : public ProgramTest {
 protected:
  static Ran Run(const std::vector<std::string>& arguments, const QStringList& without = {}) {
    const QString binary = qEnvironmentVariable("QUILLMARK_BINARY_DIR") + "/quillmark";
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString& name : without) environment.remove(name);
    process.setProcessEnvironment(environment);
    QStringList list;
    for (const std::string& argument : arguments) list += QString::fromStdString(argument);
    process.start(binary, list);
    if (!process.waitForFinished(60000)) {
      ADD_FAILURE() << "did not end: " << binary.toStdString();
      process.kill();
      process.waitForFinished();
    }
    Ran ran;
    ran.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    ran.out = process.readAllStandardOutput().toStdString();
    ran.error = process.readAllStandardError().toStdString();
    return ran;
  }
  Ran Convert(const files::Path& in, const files::Path& out) { return Run({"--convert", in.native(), out.native()}); }
  static void ExpectOneLine(const Ran& ran, const std::string& text) {
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(ran.out, "");
    EXPECT_EQ(ran.error, "quillmark: " + text + "\n");
  }
};

std::string OddBytes() {
  std::string bytes = "\xEF\xBB\xBF one\r\ntwo\nthree\r";
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  return bytes;
}

TEST_F(CommandLineTest, TextAndHtmlAreCopiedVerbatim) {
  const std::string cases[] = {"", "x", OddBytes(), std::string("\xFF\xFEh\0i", 5), std::string(3 << 20, '\r')};
  for (const std::string& bytes : cases) {
    for (const auto& [in, out] : {std::pair("a.txt", "b.txt"), {"a.txt", "b.html"}, {"a.HTM", "b.txt"}}) {
      const Ran ran = Convert(Put(in, bytes), At(out));
      EXPECT_EQ(ran.status, 0) << ran.error;
      EXPECT_EQ(ran.out + ran.error, "");
      EXPECT_EQ(Bytes(At(out)), bytes);
    }
  }
}

TEST_F(CommandLineTest, RichTextThroughTheReaderAndTheWriter) {
  const files::Path in = Put("a.rtf", "{\\rtf1\\ansi one {\\b two}\\par <three> & \xE9\\par}junk");
  EXPECT_EQ(Convert(in, At("a.txt")).status, 0);
  EXPECT_EQ(Bytes(At("a.txt")), "one two\r\n<three> & \xC3\xA9");
  EXPECT_EQ(Convert(in, At("b.rtf")).status, 0);
  EXPECT_EQ(Bytes(At("b.rtf")), "{\\rtf1\\ansi one {\\b two}\\par <three> & \\'e9\\par}");
  EXPECT_EQ(Convert(At("b.rtf"), At("c.rtf")).status, 0);
  EXPECT_EQ(Bytes(At("c.rtf")), Bytes(At("b.rtf"))) << "the writer's own output is a fixed point";
  EXPECT_EQ(Convert(At("b.rtf"), At("b.txt")).status, 0);
  EXPECT_EQ(Bytes(At("b.txt")), Bytes(At("a.txt")));
}

TEST_F(CommandLineTest, WhatIsLeftOutIsSaid) {
  std::string stops;
  for (int i = 0; i < 70; ++i) stops += "\\tx" + std::to_string(i);
  const Ran ran = Convert(Put("a.rtf", "{\\rtf1{\\*\\foo x}" + stops + " one}"), At("a.txt"));
  EXPECT_EQ(ran.status, 0);
  EXPECT_EQ(ran.error,
            "quillmark: " + At("a.rtf").native() + ": holds more than this program reads; some of it was left out\n");
  EXPECT_EQ(Bytes(At("a.txt")), "one");
  const Ran rewritten = Convert(At("a.rtf"), At("b.rtf"));
  EXPECT_EQ(rewritten.status, 0);
  EXPECT_EQ(rewritten.error, "") << "nothing is left out";
  EXPECT_EQ(Bytes(At("b.rtf")), Bytes(At("a.rtf")));
}

TEST_F(CommandLineTest, RichTextToHtml) {
  const files::Path in = Put("a&b.rtf",
                             "{\\rtf1\\ansi{\\colortbl;\\red255\\green0\\blue16;}\\fs24 one {\\b two {\\i three}}\\par"
                             "\\qc <a> & \\cf1 red\\par}");
  ASSERT_EQ(Convert(in, At("a.html")).status, 0);
  const std::string html = Bytes(At("a.html"));
  EXPECT_TRUE(html.starts_with("<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>a&amp;b</title>"));
  EXPECT_NE(html.find("<p>one <b>two </b><b><i>three</i></b></p>\n"), std::string::npos) << html;
  EXPECT_NE(html.find("<p style=\"text-align:center\">&lt;a&gt; &amp; <span style=\"color:#ff0010\">red</span></p>\n"),
            std::string::npos)
      << html;
  EXPECT_TRUE(html.ends_with("</body>\n</html>\n"));
}

TEST_F(CommandLineTest, PlainTextToRichTextAndBack) {
  ASSERT_EQ(Convert(Put("a.txt", "one\ntw\xC3\xB6 {\\}\n"), At("a.rtf")).status, 0);
  EXPECT_TRUE(Bytes(At("a.rtf")).starts_with("{\\rtf1"));
  EXPECT_NE(Bytes(At("a.rtf")).find("Courier New"), std::string::npos);
  ASSERT_EQ(Convert(At("a.rtf"), At("b.txt")).status, 0);
  EXPECT_EQ(Bytes(At("b.txt")), "one\r\ntw\xC3\xB6 {\\}\r\n");
}

TEST_F(CommandLineTest, PagesNeedNoDisplay) {
  const QStringList display = {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"};
  const std::string page = "{\\rtf1\\paperw5000\\paperh6000\\margl500\\margr500 one\\page two}";
  for (const auto& [name, bytes] : {std::pair("a.rtf", page), {"b.txt", "one\ftwo"}, {"c.html", "<p>\f"}}) {
    const files::Path in = Put(name, bytes), out = At(std::string(name) + ".pdf");
    const Ran ran = Run({"--convert", in.native(), out.native()}, display);
    EXPECT_EQ(ran.status, 0) << ran.error;
    EXPECT_EQ(ran.out + ran.error, "");
    const QByteArray pdf = QByteArray::fromStdString(Bytes(out));
    EXPECT_TRUE(pdf.startsWith("%PDF") && pdf.endsWith("%%EOF\n"));
    EXPECT_EQ(pdf.count("/Type /Page\n"), 2) << name;
    EXPECT_EQ(pdf.contains("/MediaBox [0 0 250.000000 300.000000]"), std::string(name) == "a.rtf") << name;
  }
}

TEST_F(CommandLineTest, AnEmptyRichTextIsOne) {
  ASSERT_EQ(Convert(Put("a.rtf", ""), At("a.txt")).status, 0);
  EXPECT_EQ(Bytes(At("a.txt")), "");
}

TEST_F(CommandLineTest, ConversionsThatFail) {
  const std::string folderText = folder().native() + "/";
  Put("a.txt", "text");
  Put("not.rtf", "no rich text");
  Put("old.txt", "old");
  struct Row {
    const char* in;
    const char* out;
    std::string error;
  };
  const Row rows[] = {
      {"missing.txt", "b.txt", folderText + "missing.txt: No such file or directory"},
      {"a.txt", "no/b.txt", folderText + "no/b.txt: No such file or directory"},
      {"a.txt", "b.xyz", folderText + "b.xyz: cannot write this format (.txt, .html, .rtf and .pdf)"},
      {"a.doc", "b.txt", folderText + "a.doc: cannot read this format (.txt, .html and .rtf)"},
      {"a.pdf", "b.txt", folderText + "a.pdf: cannot read this format (.txt, .html and .rtf)"},
      {"a.txt", "no/b.pdf", folderText + "no/b.pdf: No such file or directory"},
      {"not.rtf", "old.txt", folderText + "not.rtf: is not rich text, although its name says so"},
      {"new\nline.txt", "b.txt", folderText + "new?line.txt: No such file or directory"},
  };
  for (const Row& row : rows) ExpectOneLine(Convert(At(row.in), At(row.out)), row.error);
  EXPECT_FALSE(Exists(At("b.txt")));
  EXPECT_EQ(Bytes(At("old.txt")), "old");
}

TEST_F(CommandLineTest, WrongOptions) {
  ExpectOneLine(Run({"--convert", "a.txt"}), "--convert needs two files, the one to read and the one to write");
  ExpectOneLine(Run({"--convert", "a.txt", "b.txt", "c.txt"}),
                "--convert needs two files, the one to read and the one to write");
  ExpectOneLine(Run({"--screenshot"}), "--screenshot needs the name of the picture");
  ExpectOneLine(Run({"--nonsense"}), "unknown option --nonsense (try --help)");
  ExpectOneLine(Run({"--help", "--version"}), "only one option can be used at a time");
}

TEST_F(CommandLineTest, HelpAndVersionNeedNoDisplay) {
  const QStringList display = {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"};
  const Ran help = Run({"--help"}, display);
  EXPECT_EQ(help.status, 0);
  EXPECT_TRUE(help.out.starts_with("Usage: quillmark "));
  EXPECT_EQ(help.error, "");
  const Ran version = Run({"--version"}, display);
  EXPECT_EQ(version.status, 0);
  EXPECT_TRUE(version.out.starts_with("Quillmark "));
}

TEST_F(CommandLineTest, WithoutADisplayItSaysSo) {
  ExpectOneLine(Run({}, {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}),
                "cannot reach a display (is DISPLAY or WAYLAND_DISPLAY set?)");
}

TEST_F(CommandLineTest, AScreenshotShowsTheFile) {
  const Ran ran = Run({"--screenshot", At("shot.png").native(), Put("a.txt", "some text").native()});
  EXPECT_EQ(ran.status, 0) << ran.error;
  const QImage shot(QString::fromStdString(At("shot.png").native()));
  ASSERT_FALSE(shot.isNull());
  const Ran empty = Run({"--screenshot", At("empty.png").native()});
  EXPECT_EQ(empty.status, 0) << empty.error;
  const QImage other(QString::fromStdString(At("empty.png").native()));
  EXPECT_EQ(shot.size(), other.size());
  EXPECT_NE(shot, other);
  const Ran failed = Run({"--screenshot", At("no/shot.png").native()});
  EXPECT_EQ(failed.status, 1);
  // The toolkit may have said something of its own before.
  EXPECT_TRUE(failed.error.ends_with("quillmark: " + At("no/shot.png").native() + ": No such file or directory\n"))
      << failed.error;
}

TEST_F(CommandLineTest, PathsOnTheCommandLine) {
  const files::CurrentDirectory directory(folder());
  Put("\"really quoted\"", "");
  struct Row {
    std::vector<std::string> arguments;
    std::vector<files::Path> paths;
  };
  const Row rows[] = {
      {{"a.txt"}, {At("a.txt")}},
      {{"/x/a.txt", "b"}, {"/x/a.txt", At("b")}},
      {{"\"a b.txt\""}, {At("a b.txt")}},
      {{"\"really quoted\""}, {At("\"really quoted\"")}},
      {{"file:///x/a%20b.txt"}, {"/x/a b.txt"}},
      {{"file:///x/%FF"}, {"/x/\xFF"}},
      {{"--", "--help", "-x"}, {At("--help"), At("-x")}},
      {{"-"}, {At("-")}},
      {{""}, {}},
      {{"x\xFF"}, {At("x\xFF")}},
  };
  for (const Row& row : rows) {
    const shell::CommandLine line = shell::ParseCommandLine(row.arguments, directory);
    EXPECT_EQ(line.action, shell::CommandLine::Action::kRun) << row.arguments[0];
    EXPECT_EQ(line.paths, row.paths) << row.arguments[0];
  }
}

}  // namespace
