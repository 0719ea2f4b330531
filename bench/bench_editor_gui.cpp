// From a key event to the painted frame, off screen, in the middle of large texts.
// Arguments: megabytes of the texts (default 100 1024), 0 for one of 100 MB in a single line, -1 for one paragraph of
// short formatted lines.
#include "bench/support/MeasureKeys.h"
#include "text/plain/PlainText.h"
#include "ui/editor/RichTextBox.h"

#include <cstdlib>
#include <utility>

namespace {

// One paragraph of 4000 lines with two looks in each.
std::string FormattedLines() {
  std::string rtf = "{\\rtf1 ";
  for (int i = 0; i < 4000; ++i) rtf += "\\b a\\b0\\line ";
  return rtf + "}";
}

// `load` puts the text into the box.
template <typename Load>
void Measure(const char* name, const Load& load) {
  ui::RichTextBox box;
  bench::PaintWatch watch;
  box.viewport()->installEventFilter(&watch);
  box.resize(1000, 900);
  const double shown = bench::Seconds([&] {
    load(box);
    box.show();
    while (watch.paints == 0) QApplication::processEvents();
  });
  box.activateWindow();
  box.setFocus();
  std::printf("%s: shown in %.1f ms\n", name, shown * 1e3);
  bench::MeasureKeys(box, watch);
}

void Measure(int64_t size) {
  if (size < 0) {
    return Measure("4000 formatted lines", [](ui::RichTextBox& box) {
      box.LoadRtf(text::rtf::Read(FormattedLines(), box.document().content().store()));
    });
  }
  text::LoadedText loaded = text::ReadPlainText(bench::Words((size == 0 ? 100 : size) * bench::kMega, size == 0));
  const std::string name = size == 0 ? "100 MB in one line" : std::to_string(size) + " MB";
  Measure(name.c_str(), [&](ui::RichTextBox& box) { box.LoadPlain(loaded); });
}

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  std::vector<int64_t> sizes;
  for (int i = 1; i < argc; ++i) sizes.push_back(std::atoll(argv[i]));
  if (sizes.empty()) sizes = {-1, 100, 0, 1024};
  for (const int64_t size : sizes) Measure(size);
  std::printf("peak memory %.0f MB\n", bench::PeakMemory() / bench::kMega);
}
