// Reading and writing 10 MB of formatted RTF in memory.
#include "text/TextStore.h"
#include "text/rtf/Rtf.h"
#include "text/rtfsave/RtfSave.h"
#include "text/rtfwrite/RtfWrite.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <string>

namespace {

using namespace text;

constexpr size_t kBytes = 10 << 20;

// Paragraphs as a word processor writes them: a change of format every few words, some characters past ASCII.
std::string FormattedRtf() {
  constexpr const char* kWords[] = {"the ", "quill ", "marks ", "another ", "page, ", "and ", "caf\\'e9 ", "rests. "};
  constexpr const char* kFormats[] = {"\\b ",   "\\b0 ",  "\\i ",  "\\i0 ",       "\\ul ",
                                      "\\cf1 ", "\\cf0 ", "\\f1 ", "\\f0\\fs20 ", "\\fs28 "};
  std::mt19937 random(7);
  std::string rtf =
      "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\fswiss\\fcharset0 Arial;}{\\f1\\froman\\fcharset0 Times;}}"
      "{\\colortbl ;\\red255\\green0\\blue0;}\\uc1\r\n";
  while (rtf.size() < kBytes) {
    if (random() % 8 == 0) rtf += random() % 2 ? "\\pard\\qc\\li720 " : "\\pard\\sa200\\sl276\\slmult1 ";
    for (int run = 0; run < 8; ++run) {
      rtf += kFormats[random() % std::size(kFormats)];
      for (int word = 0; word < 5; ++word) rtf += kWords[random() % std::size(kWords)];
    }
    rtf += "\\u8364? {\\i in a group}\\par\r\n";
  }
  return rtf + "}";
}

// Long stretches of one format.
std::string PlainRtf() {
  std::string rtf = "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\fcharset0 Arial;}}\\pard\\f0\\fs22\r\n";
  while (rtf.size() < kBytes) rtf += "The quick quill marks another page of the long story and never rests.\\par\r\n";
  return rtf + "}";
}

void ReadRtf(benchmark::State& state, const std::string& bytes) {
  const auto shared = std::make_shared<const std::string>(bytes);
  for (auto _ : state) {
    const rtf::ReadResult result = rtf::Read(shared, std::make_shared<TextStore>());
    benchmark::DoNotOptimize(result.content.size());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}

// Without the file that was read, from which unchanged text would only be copied.
void WriteRtf(benchmark::State& state, const std::string& bytes) {
  rtf::ReadResult result = rtf::Read(bytes, std::make_shared<TextStore>());
  result.properties.source = nullptr;
  size_t written = 0;
  for (auto _ : state) {
    written = 0;
    rtf::WriteAnew(result.content, result.properties, [&](std::string_view part) {
      written += part.size();
      return true;
    });
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * written));
}

// An edited save: a word in the middle, or every "quill" another word.
void SaveRtf(benchmark::State& state, const std::string& bytes, bool everywhere) {
  const rtf::ReadResult result = rtf::Read(bytes, std::make_shared<TextStore>());
  const std::string text = result.content.ByteString(result.content.all());
  Content edited = result.content;
  const size_t first = everywhere ? 0 : text.size() / 2;
  ContentBuilder builder(edited.store());
  size_t done = 0;
  const auto place = [&](size_t at) { return result.content.PositionOfByte(Bytes(static_cast<int64_t>(at))); };
  for (size_t at = text.find("quill", first); at != std::string::npos; at = text.find("quill", done)) {
    builder.Append(result.content, {place(done), place(at)});
    builder.Append("pen", result.content.CharFormatAt(place(at)));
    done = at + 5;
    if (!everywhere) break;
  }
  builder.Append(result.content, {place(done), result.content.size()});
  edited = builder.Finish(result.content.lastParaFormat());
  for (auto _ : state)
    if (rtf::Save(edited, result.properties).as != rtf::SavedAs::kSpliced) state.SkipWithError("not spliced");
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}

}  // namespace

int main(int argc, char** argv) {
  const std::string formatted = FormattedRtf(), plain = PlainRtf();
  for (const auto& [name, bytes] : {std::pair{"formatted", &formatted}, std::pair{"plain", &plain}}) {
    const auto add = [&](const char* what, auto function) {
      benchmark::RegisterBenchmark((std::string(what) + "/" + name).c_str(), function, *bytes)
          ->Unit(benchmark::kMillisecond)
          ->Repetitions(7)
          ->ReportAggregatesOnly();
    };
    add("read", ReadRtf);
    add("write", WriteRtf);
    add("save one edit", [](benchmark::State& state, const std::string& rtf) { SaveRtf(state, rtf, false); });
    add("save many edits", [](benchmark::State& state, const std::string& rtf) { SaveRtf(state, rtf, true); });
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
