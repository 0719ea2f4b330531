// Any content, stray bytes and all, in formats that the input picks: what is written must be read back as the same
// text (breaks as CR LF, stray bytes as characters), and writing that must give the same file. Fragments likewise.
#include "fuzz/RtfFuzzing.h"
#include "text/rtfsave/RtfSave.h"
#include "text/rtfwrite/RtfWrite.h"

namespace {

using namespace text;

// Takes the input apart from its end.
class Choices {
 public:
  Choices(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  bool empty() const { return size_ == 0; }
  int32_t Next() { return size_ == 0 ? 0 : data_[--size_]; }
  int32_t Wide() { return (Next() << 8 | Next()) - 0x4000; }
  std::string Bytes(size_t count) {
    count = std::min(count, size_);
    size_ -= count;
    std::string bytes(reinterpret_cast<const char*>(data_ + size_), count);
    std::erase(bytes, '\0');  // no file keeps it
    return bytes;
  }

 private:
  const uint8_t* data_;
  size_t size_;
};

CharFormat PickChars(Choices& choices, FormatTable& formats) {
  CharFormat format;
  if (const int32_t font = choices.Next() % 6; font > 0)
    format.font = formats.Intern(Font{"F;" + std::to_string(font), static_cast<uint8_t>(choices.Next()), 2});
  format.flags = static_cast<uint16_t>(choices.Next() & kAllCharFlags);
  format.halfPoints = static_cast<uint16_t>(choices.Wide());
  if (choices.Next() & 1) format.color.rgb = static_cast<uint32_t>(choices.Next() << 16 | choices.Next());
  if (choices.Next() & 1) format.background.rgb = static_cast<uint32_t>(choices.Next());
  format.offset = choices.Wide();
  if (choices.Next() % 8 == 0)
    format.link = formats.InternLink("http://" + std::to_string(choices.Next() % 3) + "\\\"#");
  if (choices.Next() % 8 == 0) {
    EmbeddedObject object;
    object.kind = static_cast<ObjectKind>(choices.Next() % 3);
    object.name = "n";
    object.width = choices.Next();
    format.object = formats.Add(object);
  }
  return format;
}

ParaFormat PickParagraph(Choices& choices, FormatTable& formats) {
  ParaFormat format;
  format.alignment = static_cast<Alignment>(choices.Next() % 4);
  format.bullet = choices.Next() & 1;
  format.rightToLeft = choices.Next() & 1;
  format.leftIndent = choices.Wide() * 1000;
  format.firstIndent = choices.Wide();
  format.lineSpacing = choices.Wide();
  format.lineSpacingMultiple = choices.Next() & 1;
  Tabs tabs;
  for (int32_t i = choices.Next() % 4; i > 0; --i) {
    const int32_t kind = choices.Next();
    tabs.push_back({choices.Wide(), static_cast<TabKind>(kind % 4), static_cast<TabLeader>(kind / 4 % 7)});
  }
  format.tabs = formats.Intern(tabs);
  if (choices.Next() % 4 == 0) {
    const auto kind = static_cast<NumberStyle>(choices.Next() % 7);
    const std::string label = choices.Next() & 1 ? std::string("(\0.", 3) : "\u25AA";
    List list{choices.Next() % 3, {}};
    for (int32_t i = choices.Next() % 3; i >= 0; --i) list.levels.push_back({kind, choices.Next(), label, {}});
    format.bullet = label.back() != '.';
    format.listLevel = static_cast<uint8_t>(choices.Next() % list.levels.size());
    format.list = formats.Intern(list);
  }
  if (choices.Next() % 4 == 0) {
    TableRow row;
    row.level = static_cast<uint8_t>(1 + choices.Next() % 3);
    for (int32_t i = choices.Next() % 3; i >= 0; --i) row.cells.emplace_back().right = choices.Next();
    format.row = formats.Intern(row);
    format.rowMark = static_cast<RowMark>(choices.Next() % 3);
  }
  return format;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto store = std::make_shared<TextStore>();
  Choices choices(data, size);
  ContentBuilder builder(store);
  while (!choices.empty()) {
    const CharFormatId chars = store->formats().Intern(PickChars(choices, store->formats()));
    const ParaFormatId paragraph = store->formats().Intern(PickParagraph(choices, store->formats()));
    builder.Append(choices.Bytes(static_cast<size_t>(choices.Next())), chars, paragraph);
  }
  const Content content = builder.Finish();
  const rtf::DocumentProperties properties;
  const std::string written = fuzzing::Written(content, properties);
  const rtf::ReadResult first = rtf::Read(written, std::make_shared<TextStore>());
  first.content.CheckInvariants();
  if (first.limited) std::abort();
  if (first.content.size() != content.size() || first.content.breaks() != content.breaks())
    fuzzing::MustEqual(fuzzing::TextOf(content), fuzzing::TextOf(first.content) + "\n" + written, "texts");
  const std::string again = fuzzing::Written(first.content, first.properties);
  fuzzing::MustEqual(written, again, "files");

  const int64_t length = content.size().value();
  const Range range{content.Snap(Units(length / 3), Bias::kLeft), content.Snap(Units(length / 3 * 2), Bias::kLeft)};
  const std::string fragment = rtf::WriteFragment(content, range, properties);
  const rtf::ReadResult part = rtf::ReadFragment(fragment, std::make_shared<TextStore>());
  const Content slice = content.Slice(range);
  if (part.content.size() != slice.size() || part.content.breaks() != slice.breaks()) std::abort();
  return 0;
}
