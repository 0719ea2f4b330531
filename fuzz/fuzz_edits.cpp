// Edit sequences from bytes: after each edit the tree's invariants hold; at the end everything is undone.
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

void Step(Document& document, Input& input) {
  const uint8_t what = input.Byte();
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
      document.Replace({at, at}, copy, EditKind::kCommand, {});
      break;
    }
    case 3:
      document.Undo();
      break;
    case 4:
      document.Redo();
      break;
    default:
      document.Replace(range, input.Bytes(input.Byte() % 64), CharFormatId::kDefault, EditKind::kTyping, {});
  }
}

void RequireSurfaceRoundTrip(const Content& content, Units position) {
  const Units whole = content.Snap(position, Bias::kLeft);
  if (content.FromSurface(content.ToSurface(whole), Bias::kLeft) != whole) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  Document document;
  while (!input.empty()) {
    Step(document, input);
    const Content& content = document.content();
    content.CheckInvariants();
    if (Utf16OfBytes(content.ByteString(content.all())).empty() != (content.size() == Units(0))) std::abort();
    RequireSurfaceRoundTrip(content, input.Position(content));
  }
  while (document.Undo()) document.content().CheckInvariants();
  if (document.content().size() != Units(0)) std::abort();
  return 0;
}
