// Real files, edited and saved. Only where QUILLMARK_RTF_CORPUS names a corpus: a folder with in/. With
// QUILLMARK_RTF_CORPUS_OUT the edited files, those rewritten, those written anew and the edits are left there for
// tools/check_rtf_saves.py.
#include "tests/rtf/EditedDocument.h"
#include "text/rtfsyntax/RtfTokenizer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

namespace text::rtf {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> CorpusFiles() {
  std::vector<fs::path> files;
  const char* corpus = std::getenv("QUILLMARK_RTF_CORPUS");
  if (!corpus) return files;
  for (const auto& entry : fs::directory_iterator(fs::path(corpus) / "in"))
    if (entry.path().extension() == ".rtf") files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

TEST(RtfCorpus, ReadingAgainTellsTheContent) {
  const std::vector<fs::path> files = CorpusFiles();
  if (files.empty()) GTEST_SKIP() << "QUILLMARK_RTF_CORPUS names no corpus";
  for (const fs::path& file : files) {
    const ReadResult read = ReadNew(FileBytes(file));
    if (!read.isRtf) continue;
    EXPECT_EQ(ReadAgain(read), "") << file;
  }
}

TEST(RtfCorpus, RandomEdits) {
  const std::vector<fs::path> files = CorpusFiles();
  if (files.empty()) GTEST_SKIP() << "QUILLMARK_RTF_CORPUS names no corpus";
  int anew = 0, lost = 0, count = 0;
  for (const fs::path& file : files) {
    const std::string bytes = FileBytes(file);
    if (!LooksLikeRtf(bytes)) continue;
    for (uint32_t seed = 1; seed <= 20; ++seed) {
      std::mt19937 random(seed);
      Edited edited(bytes);
      for (uint32_t edits = 1 + seed % 3; edits > 0; --edits) EditAtRandom(edited, random);
      ++count;
      const std::string saved = edited.Saved();
      const std::string what = saved == "ANEW" ? "anew" : edited.LostParagraphWords(saved);
      if (what.empty()) continue;
      ++(saved == "ANEW" ? anew : lost);
      std::cout << file.filename() << " seed " << seed << ": " << what << "\n";
    }
  }
  std::cout << "anew " << anew << ", untouched paragraphs changed in " << lost << " of " << count << "\n";
  EXPECT_LE(anew, count / 100);
  EXPECT_LE(lost, count / 100);
}

void Leave(const char* kind, const fs::path& file, std::string_view bytes) {
  const char* out = std::getenv("QUILLMARK_RTF_CORPUS_OUT");
  if (!out) return;
  fs::create_directories(fs::path(out) / kind);
  std::ofstream(fs::path(out) / kind / file.filename(), std::ios::binary) << bytes;
}

std::map<std::string, int> ControlWords(const std::string& bytes) {
  std::map<std::string, int> words;
  RtfTokenizer tokenizer(bytes);
  for (Token token = tokenizer.Next(); token.kind != TokenKind::kEnd; token = tokenizer.Next())
    if (token.kind == TokenKind::kWord) ++words[std::string(token.text)];
  return words;
}

bool IsAscii(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char c) { return c > 0; });
}

// Words of ASCII letters in a paragraph, away from its ends.
std::vector<Range> InnerWords(const Content& content) {
  const std::u16string text = content.Utf16(content.all());
  const auto letter = [](char16_t c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  std::vector<Range> words;
  for (size_t at = 1; at < text.size();) {
    size_t end = at;
    while (end < text.size() && letter(text[end])) ++end;
    if (end > at && text[at - 1] == ' ' && end < text.size() && text[end] == ' ')
      words.push_back({Units(static_cast<int64_t>(at)), Units(static_cast<int64_t>(end))});
    at = end + 1;
  }
  return words;
}

// Paragraphs put in behind everything, and at places that the seed picks words put in and taken out, a word made bold
// and a paragraph divided. Returns the word that is gone, or nothing where the text has too few.
std::string EditLikeAUser(Edited& edited, uint32_t seed) {
  std::mt19937 random(seed);
  const auto pick = [&](const std::vector<Range>& words) { return words[random() % words.size()]; };
  std::vector<Range> words = InnerWords(edited.content);
  edited.Type(edited.content.size(), "\r\nquillmarkthree\r\nquillmarkfour");
  edited.Paragraphs("quillmarkthree\r\nquillmarkfour", [](ParaFormat& format) {
    format.list = ListId::kNone;
    format.bullet = false;
  });
  if (words.size() < 4) {
    edited.Type(edited.content.size(), " quillmarkone quillmarktwo");
    return {};
  }
  edited.Type(pick(words).end, " quillmarkone quillmarktwo");
  const Range bold = pick(InnerWords(edited.content));
  edited.content = edited.content.WithCharFormats(bold, [&](CharFormatId id) {
    CharFormat format = edited.formats()[id];
    format.flags ^= kBold;
    return edited.formats().Intern(format);
  });
  edited.Type(pick(InnerWords(edited.content)).begin, "\r\n");
  words = InnerWords(edited.content);
  std::erase_if(words, [&](Range w) { return edited.content.ByteString(w).starts_with("quillmark"); });
  if (words.empty()) return {};
  const Range gone = pick(words);
  std::string word = edited.content.ByteString(gone);
  edited.content = edited.content.WithReplaced(gone, Content(edited.content.store()));
  return word;
}

TEST(RtfCorpus, EditsKeepAllWords) {
  const std::vector<fs::path> files = CorpusFiles();
  if (files.empty()) GTEST_SKIP() << "QUILLMARK_RTF_CORPUS names no corpus";
  std::string list;
  size_t kept = 0, count = 0;
  for (const fs::path& file : files) {
    const std::string bytes = FileBytes(file);
    if (!LooksLikeRtf(bytes)) continue;
    ++count;
    Edited edited(bytes);
    const std::string gone = EditLikeAUser(edited, 1);
    const std::string saved = edited.Saved();
    std::map<std::string, int> after = ControlWords(saved);
    const auto before = ControlWords(bytes);
    const auto lost =
        std::find_if(before.begin(), before.end(), [&](const auto& w) { return after[w.first] < w.second; });
    if (lost == before.end()) ++kept;
    if (lost != before.end()) std::cout << file.filename() << " lost \\" << lost->first << "\n";
    const ReadResult read = ReadNew(bytes);
    Leave("anew", file, Written(read.content, read.properties));
    Leave("edited", file, saved);
    list += file.filename().string() + "\t" + gone + "\n";
  }
  Leave(".", "edits.tsv", list);
  std::cout << "all words kept in " << kept << " of " << count << "\n";
  EXPECT_GE(kept * 100, count * 95);
}

// All of the text written again: the same content and words, no byte above 0x7F but of \bin, and doing it again changes
// nothing.
TEST(RtfCorpus, RewrittenFilesKeepAllWords) {
  const std::vector<fs::path> files = CorpusFiles();
  if (files.empty()) GTEST_SKIP() << "QUILLMARK_RTF_CORPUS names no corpus";
  for (const fs::path& file : files) {
    const std::string bytes = FileBytes(file);
    if (!LooksLikeRtf(bytes)) continue;
    const ReadResult read = ReadNew(bytes);
    const Saved saved = Rewrite(read.content, read.properties);
    ASSERT_EQ(saved.as, SavedAs::kSpliced) << file;
    Leave("rewritten", file, *saved.bytes);
    const ReadResult again = ReadNew(*saved.bytes);
    EXPECT_TRUE(Describe(again.content) == Describe(read.content)) << file;
    const Saved twice = Rewrite(again.content, again.properties);
    ASSERT_TRUE(twice.bytes) << file;
    EXPECT_TRUE(*twice.bytes == *saved.bytes) << file;
    std::map<std::string, int> before = ControlWords(bytes), after = ControlWords(*saved.bytes);
    for (const std::string word : {"u", "uc"}) before.erase(word);
    for (const auto& [word, count] : before) EXPECT_LE(count, after[word]) << file << " \\" << word;
    if (bytes.find("\\bin") != std::string::npos) continue;
    EXPECT_TRUE(IsAscii(*saved.bytes)) << file;
    EXPECT_TRUE(!IsAscii(bytes) || saved.bytes->size() <= 2 * bytes.size()) << file;
  }
}

}  // namespace
}  // namespace text::rtf
