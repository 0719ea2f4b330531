// Searching and bulk replacement in 100 MB. Medians of runs in turn within one process.
#include "text/plain/PlainText.h"
#include "text/search/Search.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kRuns = 9;
constexpr size_t kSize = size_t{100} << 20;

double Milliseconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "wrong result: %s\n", what);
  std::exit(1);
}

// Lines of 32 bytes, so that a word of each line occurs 3.2 million times.
std::string Lines(const char* lineEnd) {
  std::mt19937 random(1);
  std::string bytes;
  bytes.reserve(kSize + 64);
  while (bytes.size() < kSize) {
    std::string line = "the word ";
    while (line.size() + std::strlen(lineEnd) < 32)
      line += static_cast<char>("etaoin shrdlu cmfwyp vbgkjq xz"[random() % 30]);
    bytes += line + lineEnd;
  }
  return bytes;
}

void AgainstMemmem(const char* name, const std::string& bytes, const text::Content& content, const std::string& needle,
                   text::SearchOptions options) {
  const text::Searcher searcher(text::Utf16OfBytes(needle), options);
  std::vector<double> library, own;
  for (int i = 0; i < kRuns; ++i) {
    library.push_back(
        Milliseconds([&] { Require(!memmem(bytes.data(), bytes.size(), needle.data(), needle.size()), "memmem"); }));
    own.push_back(
        Milliseconds([&] { Require(!searcher.FindNext(content, text::Units(0), content.size()), "absent string"); }));
  }
  std::printf("%-40s memmem %6.1f ms   search %6.1f ms   ratio %.2f\n", name, Median(library), Median(own),
              Median(own) / Median(library));
}

void Replacing(const char* name, const text::Content& content, const std::u16string& needle,
               const std::string& replacement, text::SearchOptions options) {
  std::vector<double> replace, undo;
  int64_t count = 0;
  for (int i = 0; i < kRuns; ++i) {
    text::Document document(content);
    replace.push_back(Milliseconds([&] {
      auto result = text::Searcher(needle, options).ReplaceAll(content, content.all(), replacement);
      count = result->count;
      document.Commit(std::move(result->content), result->change, text::EditKind::kCommand, {});
    }));
    undo.push_back(Milliseconds([&] { document.Undo(); }));
    Require(document.content().SameAs(content), "undo");
  }
  std::printf("%-40s %lld in %6.1f ms   undo %.4f ms\n", name, static_cast<long long>(count), Median(replace),
              Median(undo));
}

// Scattered by a hundred thousand edits, then searched again.
text::Content Edited(const text::Content& content) {
  text::Document document(content);
  std::mt19937_64 random(2);
  for (int i = 0; i < 100000; ++i) {
    const text::Units at(static_cast<int64_t>(random() % static_cast<uint64_t>(document.content().size().value())));
    document.Replace({at, at}, ".", text::CharFormatId::kDefault, text::EditKind::kCommand, {});
  }
  return document.content();
}

}  // namespace

int main() {
  const std::string bytes = Lines("\r\n");
  const text::Content content = text::ReadPlainText(std::string_view(bytes)).content;
  constexpr text::SearchOptions kExact{true, false}, kAnyCase{false, false}, kWord{true, true};
  AgainstMemmem("absent, 8 bytes", bytes, content, "zebra-ox", kExact);
  AgainstMemmem("absent, 8 bytes of frequent letters", bytes, content, "tetanost", kExact);
  AgainstMemmem("absent, 8 bytes, any case", bytes, content, "tetanost", kAnyCase);
  AgainstMemmem("absent, 8 bytes, any case, k and s", bytes, content, "kisskiss", kAnyCase);
  AgainstMemmem("absent, 8 bytes, 100,000 edits before", bytes, Edited(content), "zebra-ox", kExact);
  Replacing("replace \"word\" by \"term\"", content, u"word", "term", kExact);
  Replacing("replace \"word\" by \"longer words\"", content, u"word", "longer words", kExact);
  Replacing("replace \"WORD\" by \"term\", any case", content, u"WORD", "term", kAnyCase);
  Replacing("replace \"word\" by \"term\", whole words", content, u"word", "term", kWord);
  Replacing("replace CR LF by LF", content, u"\n", "\n", kExact);
}
