// The files that an application folder is filled with.
#include "text/FormatTable.h"
#include "text/TextStore.h"
#include "text/rtf/Rtf.h"
#include "text/rtfsave/RtfSave.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

namespace data {
namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

// The index of the HTML Living Standard (https://html.spec.whatwg.org/multipage/indices.html), obsolete ones left out.
constexpr char kElements[] =
    "a abbr address area article aside audio b base bdi bdo blockquote body br button canvas caption cite code col "
    "colgroup data datalist dd del details dfn dialog div dl dt em embed fieldset figcaption figure footer form h1 h2 "
    "h3 h4 h5 h6 head header hgroup hr html i iframe img input ins kbd label legend li link main map mark math menu "
    "meta meter nav noscript object ol optgroup option output p picture pre progress q rp rt ruby s samp script search "
    "section select selectedcontent slot small source span strong style sub summary sup svg table tbody td template "
    "textarea tfoot th thead time title tr track u ul var video wbr";
constexpr char kVoidElements[] = "area base br col embed hr img input link meta source track wbr";

Names Split(const std::string& words) {
  std::istringstream in(words);
  return {std::istream_iterator<std::string>(in), {}};
}

// One tag: whether it closes, the name, the attributes.
const std::regex kTag(R"re(<(/?)([a-z][a-z0-9]*)((?: [A-Za-z-]+(?:="[^"<>]*")?)*)>)re");

std::string BytesOf(const std::string& name) {
  std::ifstream in(fs::path(QUILLMARK_BUILD_DATA) / name, std::ios::binary);
  EXPECT_TRUE(in) << name;
  return {std::istreambuf_iterator<char>(in), {}};
}

// As the program reads quotes and words: without the empty ones.
std::vector<std::string> LinesOf(const std::string& name) {
  std::vector<std::string> lines;
  std::istringstream in(BytesOf(name));
  for (std::string line; std::getline(in, line);) {
    if (line.ends_with('\r')) line.pop_back();
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

std::vector<std::string> AllFiles() {
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(QUILLMARK_BUILD_DATA))
    if (entry.is_regular_file()) names.push_back(entry.path().lexically_relative(QUILLMARK_BUILD_DATA).string());
  return names;
}

// The first run names these; what is missing would be missing for every new user.
TEST(ApplicationData, HoldsWhatTheFirstRunNames) {
  EXPECT_THAT(AllFiles(), testing::UnorderedElementsAre(
                              "Quillmark on the Web!.url", "Quillmark readme.txt", "Welcome.rtf",
                              "Templates/AutoComplete.txt", "Templates/HTMTemplate.htm", "Templates/LetterTemplate.rtf",
                              "Templates/Notes.txt", "Templates/Often Used Text Blocks.txt", "Templates/Quotes.txt"));
}

TEST(ApplicationData, TextIsUtf8WithCrLf) {
  for (const std::string& name : AllFiles()) {
    const std::string bytes = BytesOf(name);
    EXPECT_TRUE(bytes.ends_with("\r\n")) << name;
    for (size_t i = 0; i < bytes.size();) {
      const int length = text::Utf8Length(bytes.data() + i, bytes.data() + bytes.size());
      ASSERT_GT(length, 0) << name << ": byte " << i << " is no UTF-8";
      i += static_cast<size_t>(length);
    }
    EXPECT_FALSE(std::regex_search(bytes, std::regex("\r[^\n]|[^\r]\n"))) << name << ": a lone CR or LF";
  }
}

TEST(ApplicationData, NamesNoPlaceThatMightBeSomebodysOwn) {
  const std::regex address(R"((https?|ftp)://([^/"\s]+))");
  for (const std::string& name : AllFiles()) {
    const std::string bytes = BytesOf(name);
    for (std::sregex_iterator match(bytes.begin(), bytes.end(), address), end; match != end; ++match)
      EXPECT_THAT((*match)[2], testing::AnyOf("quillmark.example", "www.example.org")) << name;
  }
  EXPECT_EQ(BytesOf("Quillmark on the Web!.url"), "[InternetShortcut]\r\nURL=https://quillmark.example/\r\n");
}

TEST(ApplicationData, WordsAreTheElementsOfHtml) {
  std::vector<std::string> words = LinesOf("Templates/AutoComplete.txt");
  std::erase_if(words, [](const std::string& line) { return line.starts_with('#'); });
  EXPECT_LE(words.size(), 999u);
  EXPECT_EQ(Names(words.begin(), words.end()).size(), words.size());
  Names opened, closed;
  for (const std::string& word : words) {
    std::smatch tag;
    if (std::regex_match(word, tag, kTag)) {
      (tag[1].length() ? closed : opened).insert(tag[2]);
      EXPECT_FALSE(tag[1].length() && tag[3].length()) << word;
    } else {
      EXPECT_TRUE(std::regex_match(word, std::regex("<!DOCTYPE html>|<!-- -->|&[A-Za-z0-9]+;"))) << word;
    }
  }
  const Names elements = Split(kElements), voids = Split(kVoidElements);
  Names toClose;
  std::set_difference(elements.begin(), elements.end(), voids.begin(), voids.end(),
                      std::inserter(toClose, toClose.end()));
  EXPECT_EQ(opened, elements);
  EXPECT_EQ(closed, toClose);
}

TEST(ApplicationData, WebPageIsBalanced) {
  const std::string page = BytesOf("Templates/HTMTemplate.htm");
  EXPECT_TRUE(page.starts_with("<!DOCTYPE html>\r\n<html lang=\"en\">"));
  for (const char* part : {"<meta charset=\"utf-8\">", "name=\"viewport\"", "<title>", "<main>"})
    EXPECT_THAT(page, testing::HasSubstr(part));
  const Names elements = Split(kElements), voids = Split(kVoidElements);
  std::vector<std::string> open;
  std::ptrdiff_t tags = 0;
  for (std::sregex_iterator match(page.begin(), page.end(), kTag), end; match != end; ++match, ++tags) {
    const std::string name = (*match)[2];
    EXPECT_TRUE(elements.contains(name)) << name;
    if ((*match)[1].length()) {
      ASSERT_FALSE(open.empty()) << match->str();
      ASSERT_EQ(open.back(), name);
      open.pop_back();
    } else if (!voids.contains(name)) {
      open.push_back(name);
    }
  }
  EXPECT_THAT(open, testing::IsEmpty());
  EXPECT_EQ(std::count(page.begin(), page.end(), '<'), tags + 1) << "a tag was not understood";
}

std::set<uint32_t> ColorsOf(const text::Content& content) {
  std::set<uint32_t> colors;
  content.ForEachPiece(content.all(), [&](const text::PieceView& piece) {
    const text::Color color = content.formats()[piece.charFormat].color;
    if (!color.isAuto()) colors.insert(color.rgb);
    return true;
  });
  return colors;
}

text::rtf::ReadResult ReadRtf(const std::string& name) {
  return text::rtf::Read(BytesOf(name), std::make_shared<text::TextStore>());
}

// The generator names the version that wrote the file.
std::string WithoutGenerator(const std::string& rtf) {
  return std::regex_replace(rtf, std::regex(R"(\{\\\*\\generator [^}]*\})"), "");
}

class RichText : public testing::TestWithParam<const char*> {};

TEST_P(RichText, IsReadWholeAndWrittenAsItStands) {
  const text::rtf::ReadResult read = ReadRtf(GetParam());
  ASSERT_TRUE(read.isRtf);
  EXPECT_FALSE(read.limited);
  std::string written;
  ASSERT_TRUE(text::rtf::Write(read.content, read.properties, [&](std::string_view part) {
    written += part;
    return true;
  }));
  EXPECT_EQ(WithoutGenerator(written), WithoutGenerator(BytesOf(GetParam())));
}

// By the contrast of the Web Content Accessibility Guidelines: 3 is enough for large and bold text.
double Luminance(uint32_t rgb) {
  const auto linear = [](uint32_t byte) {
    const double value = byte / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(rgb & 0xFF) + 0.7152 * linear(rgb >> 8 & 0xFF) + 0.0722 * linear(rgb >> 16 & 0xFF);
}

TEST_P(RichText, ColoursAreReadableOnLightAndDark) {
  for (const uint32_t color : ColorsOf(ReadRtf(GetParam()).content)) {
    for (const uint32_t ground : {0xFFFFFFu, 0x1E1E1Eu, 0x2D2D2Du}) {
      const auto [dark, light] = std::minmax({Luminance(color), Luminance(ground)});
      EXPECT_GT((light + 0.05) / (dark + 0.05), 3.0) << std::hex << color << " on " << ground;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(ApplicationData, RichText, testing::Values("Welcome.rtf", "Templates/LetterTemplate.rtf"),
                         [](const auto& file) { return fs::path(file.param).stem().string(); });

}  // namespace
}  // namespace data
