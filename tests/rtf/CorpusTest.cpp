// Reads a corpus of real files with the text that other readers agree on. Only where the variable
// QUILLMARK_RTF_CORPUS names one: a folder with manifest.tsv, in/ and expected/. With QUILLMARK_RTF_CORPUS_OUT the
// texts read are left there.
#include "tests/rtf/RtfTestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace text::rtf {
namespace {

namespace fs = std::filesystem;

struct CorpusFile {
  fs::path path, expected;
  std::string match;
};

std::vector<CorpusFile> Manifest(const fs::path& corpus) {
  std::vector<CorpusFile> files;
  std::istringstream lines(FileBytes(corpus / "manifest.tsv"));
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line)) {
    std::vector<std::string> fields;
    std::istringstream columns(line);
    for (std::string field; std::getline(columns, field, '\t');) fields.push_back(field);
    if (fields.size() > 4) files.push_back({corpus / fields[0], corpus / fields[1], fields[4]});
  }
  return files;
}

// Rougher than the corpus's own comparison, which knows lists' labels: letters and digits only, so that spacing, list
// labels and punctuation do not count; bytes past ASCII are letters.
std::map<std::string, int> Words(std::string_view text) {
  std::map<std::string, int> words;
  std::string word;
  for (char c : text) {
    const bool letter = static_cast<unsigned char>(c) >= 0x80 || std::isalnum(static_cast<unsigned char>(c));
    if (letter) word += c;
    if (!letter && !word.empty()) ++words[std::exchange(word, {})];
  }
  if (!word.empty()) ++words[word];
  return words;
}

double WordScore(std::string_view a, std::string_view b) {
  const auto wordsA = Words(a), wordsB = Words(b);
  int countA = 0, countB = 0, common = 0;
  for (const auto& [word, count] : wordsA) {
    countA += count;
    if (const auto found = wordsB.find(word); found != wordsB.end()) common += std::min(count, found->second);
  }
  for (const auto& [word, count] : wordsB) countB += count;
  return countA + countB == 0 ? 1.0 : 2.0 * common / (countA + countB);
}

TEST(RtfCorpus, TextsAgree) {
  const char* corpus = std::getenv("QUILLMARK_RTF_CORPUS");
  if (!corpus) GTEST_SKIP() << "QUILLMARK_RTF_CORPUS names no corpus";
  const char* out = std::getenv("QUILLMARK_RTF_CORPUS_OUT");
  size_t passed = 0;
  const std::vector<CorpusFile> files = Manifest(corpus);
  ASSERT_FALSE(files.empty());
  for (const CorpusFile& file : files) {
    const ReadResult result = ReadNew(FileBytes(file.path));
    const std::string text = PlainLines(result.content);
    if (out && result.isRtf)
      std::ofstream(fs::path(out) / (file.path.stem().string() + ".txt"), std::ios::binary) << text;
    if (file.match == "reject") {
      EXPECT_FALSE(result.isRtf) << file.path;
      continue;
    }
    const double score = WordScore(text, FileBytes(file.expected));
    passed += score >= 0.95;
    if (score < 0.95) std::cout << file.path.filename().string() << ": " << score << "\n";
    result.content.CheckInvariants();
    const std::string written = Written(result.content, result.properties);
    const ReadResult again = ReadNew(written);
    EXPECT_EQ(Written(again.content, again.properties), written) << file.path;
  }
  EXPECT_GE(static_cast<double>(passed), 0.94 * static_cast<double>(files.size()));
}

}  // namespace
}  // namespace text::rtf
