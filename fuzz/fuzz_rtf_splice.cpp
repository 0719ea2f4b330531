// Any bytes as RTF, edited at places that the end of the input picks: what is saved must read as what was wanted, and
// an unedited document must be the very file.
#include "fuzz/RtfFuzzing.h"
#include "text/rtfsave/RtfSame.h"
#include "text/rtfsave/RtfSave.h"

#include <algorithm>

namespace {

using namespace text;

class Edits {
 public:
  Edits(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  std::string_view bytes() const { return {reinterpret_cast<const char*>(data_), size_}; }

  Content Apply(Content content) {
    for (int count = Next() % 4; count > 0; --count) content = Edited(content);
    return content;
  }

 private:
  int Next() { return size_ == 0 ? 0 : data_[--size_]; }
  Units Place(const Content& content) {
    const int64_t place = (Next() << 8 | Next()) % (content.size().value() + 1);
    return content.Snap(Units(place), Bias::kLeft);
  }

  Content Edited(const Content& content) {
    FormatTable& formats = content.formats();
    Range range{Place(content), Place(content)};
    if (range.end < range.begin) std::swap(range.begin, range.end);
    const int what = Next();
    if (what % 4 == 0)
      return content.WithCharFormats(range, [&](CharFormatId id) {
        CharFormat format = formats[id];
        format.flags ^= kBold;
        if (what & 4) format.color.rgb = 1;
        if (what & 8) format.link = formats.InternLink(format.link == LinkId::kNone ? "http://a/b c" : "");
        return formats.Intern(format);
      });
    if (what % 4 == 1)
      return content.WithParaFormats(range, [&](ParaFormatId id) {
        ParaFormat format = formats[id];
        format.alignment = Alignment::kCenter;
        if (what & 4) format.tabs = TabsId::kNone;
        if (what & 8) format.bullet = !format.bullet, format.list = ListId::kNone;
        return formats.Intern(format);
      });
    constexpr std::string_view kTexts[] = {"",   "x", "5\\{", "\r\n", "a\r\nb\r\n", "\xC3\xA9\xF0\x9F\x98\x80",
                                           "\t", " "};
    ContentBuilder builder(content.store());
    CharFormat format = formats[content.CharFormatAt(range.begin)];
    format.object = ObjectId::kNone;
    ParaFormat paragraph = formats[content.ParaFormatOf(content.ParagraphAt(range.begin))];
    paragraph.rowMark = RowMark::kNone;
    builder.Append(kTexts[static_cast<size_t>(what) / 4 % std::size(kTexts)], formats.Intern(format),
                   formats.Intern(paragraph));
    return content.WithReplaced(range, builder.Finish());
  }

  const uint8_t* data_;
  size_t size_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Edits edits(data, size);
  const std::string bytes = "{\\rtf1" + std::string(edits.bytes());
  const rtf::ReadResult read = rtf::Read(bytes, std::make_shared<TextStore>());
  if (!read.isRtf) return 0;
  const rtf::Saved same = rtf::Save(read.content, read.properties);
  if (same.as != rtf::SavedAs::kUnchanged) std::abort();
  fuzzing::MustEqual(*same.bytes, bytes, "files");

  const rtf::Saved rewritten = rtf::Rewrite(read.content, read.properties);
  const auto ascii = [](char c) { return c > 0; };
  if (rewritten.bytes && rewritten.bytes->find("\\bin") == std::string::npos &&
      !std::ranges::all_of(*rewritten.bytes, ascii))
    std::abort();

  const Content wanted = edits.Apply(read.content);
  const rtf::Saved saved = rtf::Save(wanted, read.properties);
  if (!saved.bytes) return 0;
  const rtf::ReadResult again = rtf::Read(*saved.bytes, std::make_shared<TextStore>());
  again.content.CheckInvariants();
  if (!rtf::MeansTheSame(wanted, read.properties.defaultFont, again.content, again.properties.defaultFont))
    std::abort();
  return 0;
}
