// Edit sequences from bytes: after each edit the tree's invariants hold and its text is that of the same edit on a
// string; at the end everything is undone.
#include "text/Document.h"
#include "text/TextStore.h"

#include <cstdlib>

namespace {

using namespace text;

// Takes bytes off the input; zeros when it has run out.
class Input {
 public:
  Input(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  bool empty() const { return size_ == 0; }
  uint8_t Byte() { return size_ ? --size_, *data_++ : uint8_t{0}; }
  Units Position(const Content& content) {
    const int high = Byte(), low = Byte();
    return Units((high * 256 + low) % (content.size().value() + 1));
  }
  std::string_view Bytes(size_t most) {
    const size_t count = std::min(size_, most);
    const std::string_view bytes(reinterpret_cast<const char*>(data_), count);
    data_ += count, size_ -= count;
    return bytes;
  }

 private:
  const uint8_t* data_;
  size_t size_;
};

// The same replacement in plain bytes: the text without its tree.
void ReplaceIn(std::string& model, const Content& content, Range range, std::string_view bytes) {
  const auto [begin, end] = content.Whole(range);
  const auto from = static_cast<size_t>(content.SumsBefore(begin).bytes.value());
  const auto to = static_cast<size_t>(content.SumsBefore(end).bytes.value());
  model.replace(from, to - from, bytes);
}

void Step(Document& document, std::string& model, Input& input) {
  const uint8_t what = input.Byte();
  const auto text = [&] { return document.content().ByteString(document.content().all()); };
  Range range{input.Position(document.content()), Units(0)};
  range.end = std::min(document.content().size(), range.begin + Units(what >> 4));
  switch (what & 7) {
    case 0: {
      CharFormatPatch patch;
      patch.setFlags = input.Byte() & kAllCharFlags;
      document.PatchChars(range, patch, {});
      break;
    }
    case 1: {
      ParaFormatPatch patch;
      patch.alignment = static_cast<Alignment>(input.Byte() & 3);
      document.PatchParagraphs(range, patch, {});
      break;
    }
    case 2: {
      const Content copy = document.content().Slice(range);
      const Units at = input.Position(document.content());
      ReplaceIn(model, document.content(), {at, at}, copy.ByteString(copy.all()));
      document.Replace({at, at}, copy, EditKind::kCommand, {});
      break;
    }
    case 3:
      document.Undo();
      model = text();
      break;
    case 4:
      document.Redo();
      model = text();
      break;
    default: {
      const std::string_view bytes = input.Bytes(input.Byte() % 64);
      ReplaceIn(model, document.content(), range, bytes);
      document.Replace(range, bytes, CharFormatId::kDefault, EditKind::kTyping, {});
    }
  }
  if (model != text()) std::abort();
}

void RequireSurfaceRoundTrip(const Content& content, Units position) {
  const Units whole = content.Snap(position, Bias::kLeft);
  if (content.FromSurface(content.ToSurface(whole), Bias::kLeft) != whole) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  Document document;
  std::string model;
  while (!input.empty()) {
    Step(document, model, input);
    const Content& content = document.content();
    content.CheckInvariants();
    RequireSurfaceRoundTrip(content, input.Position(content));
  }
  while (document.Undo()) document.content().CheckInvariants();
  if (document.content().size() != Units(0)) std::abort();
  return 0;
}
