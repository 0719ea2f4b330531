// Help files, good ones and such as somebody made to harm.
#include "ui/help/HelpBook.h"
#include "ui/help/HelpHtml.h"
#include "ui/help/HelpView.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

namespace {

using ui::ChmEntries;
using ui::HelpBook;
using ui::HelpPlace;

files::Path MakeFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "quillmark-help-XXXXXX").native();
  return mkdtemp(name.data());
}

std::string Little(std::initializer_list<uint32_t> numbers) {
  std::string bytes;
  for (uint32_t number : numbers)
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>(number >> 8 * i);
  return bytes;
}

std::string Chapter(const std::string& title, const std::string& page) {
  return "<li><object type=\"text/sitemap\"><param name=\"Name\" value=\"" + title +
         "\"><param name=\"Local\" value=\"" + page + "\"></object>";
}

ChmEntries Entries() {
  return {
      {"a.htm", "<title>A</title><p>Apples &amp; pears<script>hidden</script>"},
      {"sub/b.html", "<html><body><h1 id=x>B</h1><img src=\"../p.png\"><table><tr><td>one<td>two</table>"},
      {"go.html", "<head><meta http-equiv=Refresh content=\"0; url=sub/b.html#x\"></head><body>apples"},
      {"texts.txt", ".topic 7\r\nSeven\r\nlines\r\n.topic 8\r\nEight\r\n"},
      {"um.hhc",
       "<ul>" + Chapter("First &amp; best", "a.htm") + "<ul>" + Chapter("Second", "Sub\\B.html") + "</ul></ul>"},
      {"#ivb", Little({24, 1, 0, 2, 6, 3, 14, 4, 9999})},
      {"#strings", std::string("a.htm\0go.html\0/made/at/sub/b.html\0", 34)},
  };
}

TEST(HelpBookTest, TopicsContentsAndTexts) {
  const HelpBook book(Entries());
  EXPECT_EQ(book.TopicPlace(1), (HelpPlace{"a.htm", {}}));
  EXPECT_EQ(book.TopicPlace(2), (HelpPlace{"sub/b.html", "x"})) << "a page that leads on";
  EXPECT_EQ(book.TopicPlace(3), (HelpPlace{"sub/b.html", {}})) << "a name with the path of its compiler";
  for (const int64_t number : {int64_t{4}, int64_t{5}, int64_t{-1}}) EXPECT_FALSE(book.TopicPlace(number)) << number;
  EXPECT_EQ(book.TextOf(7), "Seven\nlines");
  EXPECT_EQ(book.TextOf(1), "Apples & pears") << "of the page, where there is no text";
  ASSERT_EQ(book.contents().size(), 2u);
  EXPECT_EQ(book.contents()[0].title, "First & best");
  EXPECT_EQ(book.contents()[1].depth, 1);
  EXPECT_EQ(book.start(), (HelpPlace{"a.htm", {}}));
}

TEST(HelpBookTest, LinksLeadNowhereElse) {
  const HelpBook book(Entries());
  const struct {
    const char* from;
    const char* link;
    std::optional<HelpPlace> place;
  } kRows[] = {
      {"a.htm", "sub/b.html#x", HelpPlace{"sub/b.html", "x"}},
      {"sub/b.html", "../a.htm", HelpPlace{"a.htm", {}}},
      {"sub/b.html", "#x", HelpPlace{"sub/b.html", "x"}},
      {"sub/b.html", "/A.HTM", HelpPlace{"a.htm", {}}},
      {"a.htm", "mk:@MSITStore:UM.chm::/a.htm", HelpPlace{"a.htm", {}}},
      {"a.htm", "../../../etc/passwd", std::nullopt},
      {"a.htm", "file:///etc/passwd", std::nullopt},
      {"a.htm", "https://quillmark.example/", std::nullopt},
  };
  for (const auto& row : kRows) EXPECT_EQ(book.Resolve(row.from, row.link), row.place) << row.link;
}

TEST(HelpBookTest, NamesThatAreTooLongAndAStartThatIsMissing) {
  std::string names;
  for (int i = 0; i < 200'000; ++i) names += "a/";
  std::string numbers = Little({0});
  for (uint32_t i = 0; i < 5000; ++i) numbers += Little({i, 2 * i});
  const HelpBook book(
      {{"b.htm", "<p>b"}, {"um.hhc", Chapter("Gone", "gone.htm")}, {"#ivb", numbers}, {"#strings", names}});
  EXPECT_FALSE(book.TopicPlace(3));
  EXPECT_EQ(book.start(), (HelpPlace{"b.htm", {}}));
}

TEST(HelpBookTest, Search) {
  HelpBook book(Entries());
  const struct {
    const char* words;
    std::vector<std::string> pages;
  } kRows[] = {
      {"APPLES", {"a.htm"}},
      {"pears apples", {"a.htm"}},
      {"two second", {"sub/b.html"}},
      {"apples two", {}},
      {"hidden", {}},
      {"  ", {}},
  };
  for (const auto& row : kRows) {
    std::vector<std::string> pages;
    for (const auto& found : book.Search(row.words)) pages.push_back(found.place.page);
    EXPECT_EQ(pages, row.pages) << row.words;
  }
}

TEST(SafePageTest, KnownElementsOnlyAndEachClosed) {
  const struct {
    const char* page;
    const char* safe;
  } kRows[] = {
      {"<p>a<p>b", "<p>a</p><p>b</p>"},
      {"<b><i>x</b>y</i>", "<b><i>x</i></b>y"},
      {"<ul><li>1<li>2<ul><li>3</ul></ul>", "<ul><li>1</li><li>2<ul><li>3</li></ul></li></ul>"},
      {"<table><tr><td>1<td>2<tr><td>3</table>z", "<table><tr><td>1</td><td>2</td></tr><tr><td>3</td></tr></table>z"},
      {"<td></table></p>x", "<td>x</td>"},
      {"a<iframe src=x onload=y>b<style>c</style><!-- d --></iframe><script>e", "ab"},
      {"<a href='x\"y' onclick=z>1 < 2 &lt; 3", "<a href=\"x&quot;y\">1 &lt; 2 &lt; 3</a>"},
      {"<td colspan=99999999>", "<td colspan=\"50\"></td>"},
      {"<p", "<p></p>"},
  };
  for (const auto& row : kRows) EXPECT_EQ(ui::SafePage(row.page).toStdString(), row.safe) << row.page;
}

TEST(SafePageTest, NoWordIsTooLongForTheLayout) {
  const struct {
    const char* repeated;
    int times;
    bool isWhole;
    qsizetype longest = ui::kLongestWord + 20;
  } kRows[] = {
      {"letters", 50'000, false},
      {"&letters", 50'000, false},
      {";", 400'000, false},
      {"&", 400'000, false},
      {"&letters;", 40'000, false, 10 * ui::kLongestWord},  // each may be one character
      {"&#26085;", 900, true},
      {"letters ", 50'000, true},
  };
  for (const auto& row : kRows) {
    const QString page = QString(row.repeated).repeated(row.times), safe = ui::SafePage(page);
    qsizetype longest = 0;
    for (const QString& word : safe.split(u' ')) longest = std::max(longest, word.size());
    EXPECT_LE(longest, row.isWhole ? page.size() : row.longest) << row.repeated;
    EXPECT_EQ(safe == page, row.isWhole) << row.repeated;
    EXPECT_EQ(QString(safe).remove(u' '), QString(page).remove(u' ')) << row.repeated;
  }
}

// What would take minutes, or all of the stack, when it is shown as it stands.
TEST(SafePageTest, HostilePagesAreShown) {
  const struct {
    const char* before;
    const char* repeated;
    int times;
    const char* shown;
  } kRows[] = {
      {"", "<div>", 10000, "end"},
      {"", "<table><tr><td>", 10000, "end"},
      {"", "<b>", 10000, "end"},
      {"", "<ul><li>", 10000, "end"},
      {"", "<font>", 10000, "end"},
      {"", "<blockquote>", 10000, "end"},
      {"", "</b>", 10000, "end"},
      {"", "< ", 10000, "end"},
      {"", "<table><tr><td rowspan=50 colspan=50>", 9000, "end"},
      {"<table>", "<tr><td rowspan=50 colspan=50>x<tr><td>y<table>", 4500, "end"},
      {"", "<table><tr><td>x<tr><td>y</table>", 9000, "end"},
      {"<table>", "<tr><td>x", 19000, "end"},
      {"", "letters", 560000, "left out"},
      {"", "some words ", 360000, "left out"},
  };
  for (const auto& row : kRows) {
    const QString page = row.before + QString(row.repeated).repeated(row.times) + "end";
    const HelpBook book({{"a.html", page.toStdString()}});
    ui::HelpView view;
    view.resize(600, 400);
    view.show();
    view.Show(book, {"a.html", {}});
    QApplication::processEvents();
    EXPECT_GT(view.document()->documentLayout()->documentSize().height(), 0) << row.repeated;
    EXPECT_TRUE(view.toPlainText().contains(row.shown)) << row.repeated;
  }
}

TEST(HelpViewTest, EachBookShowsItsOwnPage) {
  const HelpBook first(ChmEntries{{"a.html", "one"}}), second(ChmEntries{{"a.html", "two words"}});
  ui::HelpView view;
  view.Show(first, {"a.html", {}});
  view.Show(second, {"a.html", {}});
  EXPECT_EQ(view.toPlainText(), "two words");
  view.Mark({"words", "o"});
  EXPECT_EQ(view.extraSelections().size(), 3);
  EXPECT_EQ(view.textCursor().position(), 2);
  QPalette dark = view.palette();
  dark.setColor(QPalette::Base, Qt::black);
  view.setPalette(dark);  // laid out again
  EXPECT_EQ(view.extraSelections().size(), 3);
  EXPECT_EQ(view.textCursor().position(), 2);
  view.Forget();
  view.Show(first, {"a.html", {}});
  EXPECT_EQ(view.toPlainText(), "one");
  EXPECT_TRUE(view.extraSelections().empty());
}

TEST(HelpViewTest, LoadsNothingFromElsewhere) {
  const files::Path folder = MakeFolder();
  std::ofstream(folder / "p.png", std::ios::binary) << "secret";
  const std::string path = (folder / "p.png").native();
  const HelpBook book({{"a.html", "<img src=\"file://" + path + "\"><img src=\"" + path + "\">"}});
  ui::HelpView view;
  view.Show(book, {"a.html", {}});
  for (const std::string& name : {"file://" + path, path}) {
    const QVariant found = view.document()->resource(QTextDocument::ImageResource, QUrl(QString::fromStdString(name)));
    EXPECT_FALSE(found.toByteArray().contains("secret")) << name;
  }
  std::filesystem::remove_all(folder);
}

// --- Files

std::string Manual() {
  std::ostringstream bytes;
  bytes
      << std::ifstream(std::string(qgetenv("QUILLMARK_BINARY_DIR")) + "/application/UM.chm", std::ios::binary).rdbuf();
  return bytes.str();
}

class ChmFileTest : public ::testing::Test {
 protected:
  ~ChmFileTest() override { std::filesystem::remove_all(folder_); }
  files::Result<ChmEntries> Read(const std::string& bytes) const {
    const files::Path path = folder_ / "a.chm";
    std::ofstream(path, std::ios::binary) << bytes;
    return ui::ReadChm(path, [] { return true; });
  }
  const files::Path folder_ = MakeFolder();
};

TEST_F(ChmFileTest, TheManual) {
  const auto read = Read(Manual());
  ASSERT_TRUE(read) << read.error().text;
  const HelpBook book(read.value());
  EXPECT_EQ(book.title(), "Quillmark manual");
  EXPECT_TRUE(book.TopicPlace(4000) && book.TopicPlace(10000));
  EXPECT_TRUE(book.TextOf(50).value_or("").contains("drag", Qt::CaseInsensitive));
  EXPECT_EQ(ui::ReadChm(folder_ / "a.chm", [] { return false; }).error().number, 5) << "cancelled";
  EXPECT_EQ(ui::ReadChm(folder_ / "missing", [] { return true; }).error().number, 53);
}

TEST_F(ChmFileTest, DamagedFilesAreErrorsOrRead) {
  const std::string whole = Manual();
  ASSERT_FALSE(whole.empty());
  EXPECT_FALSE(Read(""));
  EXPECT_FALSE(Read("ITSF"));
  for (const size_t size : {size_t{90}, size_t{4000}, whole.size() / 2, whole.size() * 99 / 100, whole.size() - 1})
    EXPECT_FALSE(Read(whole.substr(0, size))) << size;
  EXPECT_TRUE(Read(whole + "a signature"));
  const auto seed = std::random_device{}();
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  for (int i = 0; i < 60; ++i) {
    std::string damaged = whole;
    // The tables at the beginning say where everything is and how much of it.
    for (int j = 0; j < 6; ++j) {
      const size_t at = random() % (i % 3 == 0 ? damaged.size() : 600);
      damaged.replace(at, 4, i % 2 ? Little({0x3FFFFFFF}) : Little({static_cast<uint32_t>(random())}));
    }
    const auto read = Read(damaged);
    if (!read) continue;
    HelpBook book(read.value());
    book.Search("trash");
  }
}

}  // namespace
