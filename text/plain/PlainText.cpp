#include "text/plain/PlainText.h"

#include "text/plain/BlockReader.h"
#include "text/plain/Encodings.h"

#include <algorithm>
#include <new>

namespace text {
namespace {

constexpr std::string_view kObject = "\xEF\xBF\xBC";
constexpr std::string_view kSoftBreak = "\xE2\x80\xA8";
// Spans from this size on go to the sink as they are; smaller ones are gathered.
constexpr size_t kStraightThrough = 16384;
constexpr size_t kGathered = 65536;

std::string_view Spelling(LineEnd lineEnd) {
  return lineEnd == LineEnd::kCrLf ? "\r\n" : lineEnd == LineEnd::kLf ? "\n" : "\r";
}

// The rule in the header.
bool LooksLikeWindows1252(const ScanCounts& counts) {
  return counts.strays > 0 && counts.multibyte * 20 < counts.strays + counts.multibyte;
}

std::optional<Encoding> Utf16Mark(const Content& raw) {
  const std::string start = raw.ByteString({Units(0), std::min(raw.size(), Units(2))});
  if (start.starts_with("\xFF\xFE")) return Encoding::kUtf16Le;
  if (start.starts_with("\xFE\xFF")) return Encoding::kUtf16Be;
  return std::nullopt;
}

LoadedText Interpret(RawText raw) {
  LoadedText loaded;
  loaded.error = raw.error;
  if (raw.error) return loaded;
  const ScanCounts& counts = raw.counts;
  const LineEndCounts lineEnds{counts.crLfs, counts.breaks - counts.crs, counts.crs - counts.crLfs};
  loaded.properties.lineEnd = lineEnds.Prevailing();
  loaded.properties.byteOrderMark = raw.utf8Mark;
  const auto utf16 = raw.utf8Mark ? std::nullopt : Utf16Mark(raw.content);
  if (utf16) {
    if (auto decoded = DecodeUtf16(raw.content, *utf16 == Encoding::kUtf16Be)) {
      loaded.properties = {*utf16, true, decoded->lineEnds.Prevailing()};
      raw.content = std::move(decoded->content);
    }
  } else if (!raw.utf8Mark && LooksLikeWindows1252(counts)) {
    const bool few = counts.strays + counts.multibyte < raw.content.sums().bytes.value() / 4096;
    raw.content = DecodeWindows1252(raw.content, few);
    loaded.properties.encoding = Encoding::kWindows1252;
  }
  loaded.content = std::move(raw.content);
  return loaded;
}

LoadedText OutOfMemory() {
  LoadedText loaded;
  loaded.error = ENOMEM;
  return loaded;
}

// Calls put(bytes) for what of each piece is written, in order, until it returns false.
template <class Put>
bool ForEachWritten(const Content& content, std::string_view lineEnd, WriteOptions options, const Put& put) {
  const FormatTable& formats = content.formats();
  bool good = true;
  content.ForEachPiece(content.all(), [&](const PieceView& piece) {
    const bool objects = formats[piece.charFormat].object != ObjectId::kNone;
    const bool cells =
        options.fromRichText && piece.sums.breaks > Breaks(0) && formats[piece.paraFormat].rowMark == RowMark::kCellEnd;
    std::string_view rest = piece.bytes;
    while (good && !rest.empty()) {
      const size_t object = objects ? rest.find(kObject) : std::string_view::npos;
      const size_t softBreak = options.fromRichText ? rest.find(kSoftBreak) : std::string_view::npos;
      const size_t cellEnd = cells ? rest.find_first_of("\r\n") : std::string_view::npos;
      const size_t stop = std::min({object, softBreak, cellEnd, rest.size()});
      good = stop == 0 || put(rest.substr(0, stop));
      size_t taken = stop == rest.size() ? 0 : kObject.size();
      if (good && stop == softBreak) good = put(lineEnd);
      if (stop == cellEnd) {
        good = good && put("\t");
        taken = rest.substr(stop).starts_with("\r\n") ? 2 : 1;
      }
      rest.remove_prefix(stop + taken);
    }
    return good;
  });
  return good;
}

// Gathers small stretches, so that the sink gets few and big ones.
class Gatherer {
 public:
  explicit Gatherer(const ByteSink& sink) : sink_(sink) {}
  bool Put(std::string_view bytes) {
    if (bytes.size() >= kStraightThrough) return Flush() && sink_(bytes);
    buffer_.append(bytes);
    return buffer_.size() < kGathered || Flush();
  }
  bool PutEncoded(std::string_view bytes, Encoding encoding) {
    if (encoding == Encoding::kUtf8) return Put(bytes);
    return AppendEncoded(buffer_, bytes, encoding) == std::string_view::npos && (buffer_.size() < kGathered || Flush());
  }
  bool Flush() {
    const bool good = buffer_.empty() || sink_(buffer_);
    buffer_.clear();
    return good;
  }

 private:
  const ByteSink& sink_;
  std::string buffer_;
};

}  // namespace

LoadedText ReadPlainText(int descriptor, const Progress& progress) {
  try {
    return Interpret(ReadBlocks(descriptor, progress));
  } catch (const std::bad_alloc&) {
    return OutOfMemory();
  }
}

LoadedText ReadPlainText(std::string_view bytes) {
  try {
    return Interpret(ReadBlocks(bytes));
  } catch (const std::bad_alloc&) {
    return OutOfMemory();
  }
}

bool WritePlainText(const Content& content, const TextProperties& properties, const ByteSink& sink,
                    WriteOptions options) {
  Gatherer gatherer(sink);
  const Encoding encoding = properties.encoding;
  if (properties.byteOrderMark && encoding != Encoding::kWindows1252) gatherer.PutEncoded("\xEF\xBB\xBF", encoding);
  bool good = true;
  if (encoding == Encoding::kUtf8 && !options.fromRichText && !content.Summarize(content.all()).anyObject) {
    content.ForEachSpan(content.all(), [&](std::string_view span) { return good = gatherer.Put(span); });
  } else {
    good = ForEachWritten(content, Spelling(properties.lineEnd), options,
                          [&](std::string_view bytes) { return gatherer.PutEncoded(bytes, encoding); });
  }
  return good && gatherer.Flush();
}

std::optional<Units> FirstUnencodable(const Content& content, Encoding encoding, WriteOptions options) {
  if (encoding == Encoding::kUtf8) return std::nullopt;
  const FormatTable& formats = content.formats();
  std::optional<Units> found;
  Bytes before;
  std::string ignored;
  content.ForEachPiece(content.all(), [&](const PieceView& piece) {
    ignored.clear();
    std::string_view rest = piece.bytes;
    const auto skippable = [&] {
      return (formats[piece.charFormat].object != ObjectId::kNone && rest.starts_with(kObject)) ||
             (options.fromRichText && rest.starts_with(kSoftBreak));
    };
    while (!found) {
      const size_t bad = AppendEncoded(ignored, rest, encoding);
      if (bad == std::string_view::npos) break;
      rest.remove_prefix(bad);
      if (skippable()) {
        rest.remove_prefix(kObject.size());
      } else {
        found = content.PositionOfByte(before + Bytes(rest.data() - piece.bytes.data()));
      }
    }
    before += Bytes(static_cast<int64_t>(piece.bytes.size()));
    return !found;
  });
  return found;
}

}  // namespace text
