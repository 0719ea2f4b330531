// The sort's result is that of the written algorithm, equal texts included; this is that algorithm, line by line.
#include "files/Attributes.h"
#include "project/ProjectList.h"

#include <gmock/gmock.h>

#include <random>

namespace {

struct Line {
  std::string text;
  size_t data;
};

void ShellSort(std::vector<Line>& lines) {  // lines[0] never moves
  const auto greater = [](const Line& a, const Line& b) { return files::PathKey(a.text) > files::PathKey(b.text); };
  const int n = static_cast<int>(lines.size()) - 1;
  for (int gap = static_cast<int>(lines.size()) / 2; gap > 0; gap /= 2) {
    int limit = n - gap;
    int last;
    do {
      last = 0;
      for (int i = 1; i <= limit; ++i) {
        Line& a = lines[static_cast<size_t>(i)];
        Line& b = lines[static_cast<size_t>(i + gap)];
        if (!greater(a, b)) continue;
        std::swap(a, b);
        last = i;
      }
      limit = last - gap;
    } while (last != 0);
  }
}

TEST(Sort, GivesWhatTheWrittenAlgorithmGives) {
  for (unsigned seed = 0; seed < 300; ++seed) {
    std::mt19937 random(seed);
    std::vector<std::string> texts(random() % 60);
    for (std::string& text : texts) {
      for (size_t i = random() % 3 + 1; i > 0; --i) text += "abAB\xC3\x84"[random() % 5];
    }
    std::vector<Line> lines = {{"_Open new document", 0}};
    for (size_t i = 0; i < texts.size(); ++i) lines.push_back({texts[i], i});
    ShellSort(lines);
    std::vector<size_t> expected;
    for (size_t i = 1; i < lines.size(); ++i) expected.push_back(lines[i].data);
    ASSERT_EQ(project::SortedOrder(texts), expected) << "seed " << seed;
  }
}

TEST(Sort, TwentyThousandLinesInAnyOrder) {
  std::vector<std::string> texts(20000);
  for (size_t i = 0; i < texts.size(); ++i) texts[i] = std::to_string(i * 7919 % texts.size());
  const std::vector<size_t> order = project::SortedOrder(texts);
  for (size_t i = 1; i < order.size(); ++i) ASSERT_LE(texts[order[i - 1]], texts[order[i]]);
}

}  // namespace
