// Edits in the middle of a large text, formatting all of it, undo. Prints medians and percentiles.
// usage: bench_engine [megabytes, default 1000]
#include "bench/support/Measure.h"
#include "text/Document.h"
#include "text/TextStore.h"

#include <cstdlib>
#include <random>

namespace {

using namespace text;

// Lines of 20 to 100 characters, ending in CR LF.
Content MakeText(int64_t bytes) {
  std::mt19937 random(1);
  std::string chunk;
  while (chunk.size() < 1 << 20) {
    for (size_t i = 20 + random() % 80; i > 0; --i)
      chunk += static_cast<char>(random() % 6 ? 'a' + random() % 26 : ' ');
    chunk += "\r\n";
  }
  ContentBuilder builder(std::make_shared<TextStore>());
  for (int64_t done = 0; done < bytes; done += static_cast<int64_t>(chunk.size())) builder.Append(chunk);
  return builder.Finish();
}

void Insertions(const char* name, Document& document, bool sealed, const std::function<Units(int)>& place) {
  constexpr int kEdits = 20000;
  std::vector<double> seconds;
  seconds.reserve(kEdits);
  for (int i = 0; i < kEdits; ++i) {
    const Units at = place(i);
    seconds.push_back(bench::Seconds([&] {
      if (sealed) document.SealStep();
      document.Replace({at, at}, "x", CharFormatId::kDefault, EditKind::kTyping, {at, at});
    }));
  }
  std::printf("%-44s median %7.2f us   p99 %7.2f us\n", name, bench::Median(seconds) * 1e6,
              bench::Percentile(seconds, 0.99) * 1e6);
}

// Runs of 20 to 50 bytes, every other one bold.
Content MakeRuns(int64_t bytes) {
  auto store = std::make_shared<TextStore>();
  ContentBuilder runs(store);
  CharFormat italic;
  italic.flags = kItalic;
  const CharFormatId formats[] = {CharFormatId::kDefault, store->formats().Intern(italic)};
  std::mt19937 random(3);
  const std::string text(60, 'r');
  for (int64_t done = 0, i = 0; done < bytes; ++i) {
    const size_t size = 20 + random() % 30;
    runs.Append({text.data(), size}, formats[i % 2]);
    done += static_cast<int64_t>(size);
  }
  return runs.Finish();
}

void Formatting(const char* name, const Content& content) {
  Document document(content);
  CharFormatPatch bold;
  bold.setFlags = kBold;
  std::vector<double> format, undo;
  for (int run = 0; run < 7; ++run) {
    format.push_back(bench::Seconds([&] { document.PatchChars(content.all(), bold, {}); }));
    undo.push_back(bench::Seconds([&] { document.Undo(); }));
  }
  std::printf("%-44s median %7.2f ms, undo %7.3f us (%lld bytes)\n", name, bench::Median(format) * 1e3,
              bench::Median(undo) * 1e6, static_cast<long long>(content.sums().bytes.value()));
}

}  // namespace

int main(int argc, char** argv) {
  const int64_t megabytes = argc > 1 ? std::atoll(argv[1]) : 1000;
  {
    const double before = bench::PeakMemory();
    const Content runs = MakeRuns(int64_t{100} << 20);
    std::printf("%-44s %.0f bytes a run beyond its text\n", "3 million formatted runs",
                (bench::PeakMemory() - before - 104857600.0) / (104857600.0 / 34.5));
    Formatting("bold on everything, 3 million runs", runs);
  }
  const Content content = MakeText(megabytes << 20);
  {
    Document document(content);
    const Units middle(content.size().value() / 2);
    Insertions("typing in the middle", document, false, [&](int i) { return middle + Units(i); });
  }
  {
    Document document(content);
    std::mt19937_64 random(2);
    Insertions("random places, every state kept", document, true, [&](int) {
      return Units(static_cast<int64_t>(random() % static_cast<uint64_t>(content.size().value())));
    });
  }
  {
    const Content hundred = content.Slice({Units(0), Units(content.size().value() * 100 / megabytes)});
    Formatting("bold on everything, unedited", hundred);
  }
}
