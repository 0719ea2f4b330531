// The text of a document as an immutable value: cheap to copy, every edit gives a new one that shares nearly
// everything with the old. Reading from several threads at once is safe.
//
// Text is the bytes of the file, UTF-8 but for stray bytes. Positions are Units: UTF-16 code units, every line break
// one. Valid positions are 0 .. size(); a position between the halves of a surrogate pair is snapped left. A line break
// is CR LF, a lone CR or a lone LF. As UTF-16 a stray byte b is the unit 0xDC00 + b.
//
// Costs are O(log n) unless stated. n = pieces.
#pragma once

#include "text/FormatTable.h"
#include "text/Units.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace text {

class TextStore;
class Node;

// Intrusive shared ownership of a tree node; the count is atomic.
class NodeRef {
 public:
  NodeRef() = default;
  explicit NodeRef(Node* adopted) : node_(adopted) {}
  NodeRef(const NodeRef& other);
  NodeRef(NodeRef&& other) noexcept : node_(other.node_) { other.node_ = nullptr; }
  NodeRef& operator=(NodeRef other) noexcept { return std::swap(node_, other.node_), *this; }
  ~NodeRef();
  Node* get() const { return node_; }
  Node* operator->() const { return node_; }
  explicit operator bool() const { return node_ != nullptr; }

 private:
  Node* node_ = nullptr;
};

struct Sums {
  Bytes bytes;
  Units units;
  Breaks breaks;
  bool operator==(const Sums&) const = default;
};

// A stretch of text with one character format. Its breaks, if any, all carry one paragraph format.
struct PieceView {
  std::string_view bytes;  // whole characters only
  Sums sums;
  CharFormatId charFormat;
  ParaFormatId paraFormat;  // means something only where sums.breaks > 0
};

enum class LineEnd : uint8_t { kCrLf, kLf, kCr };
// How AppendUtf16 spells line breaks: as one LF (the engine's counting) or as CR LF (the control's surface).
enum class BreakAs : uint8_t { kLf, kCrLf };

class Content {
 public:
  Content();  // empty, with a store of its own
  explicit Content(std::shared_ptr<TextStore> store);

  const std::shared_ptr<TextStore>& store() const { return store_; }
  FormatTable& formats() const;

  // --- Size and places
  Sums sums() const;
  Units size() const { return sums().units; }
  Breaks breaks() const { return sums().breaks; }  // paragraphs = breaks + 1
  Range all() const { return {Units(0), size()}; }

  Sums SumsBefore(Units position) const;     // bytes, units and breaks before the (snapped) position
  Units PositionOfByte(Bytes offset) const;  // a byte inside a character gives the character's position
  Breaks ParagraphAt(Units position) const { return SumsBefore(position).breaks; }
  Units ParagraphStart(Breaks paragraph) const;  // 0 .. breaks()
  Units ParagraphEnd(Breaks paragraph) const;    // before its break, or size()
  Units Snap(Units position, Bias bias) const;   // out of a surrogate pair; clamps to 0 .. size()

  SurfaceUnits ToSurface(Units position) const {
    return SurfaceUnits(position.value() + SumsBefore(position).breaks.value());
  }
  SurfaceUnits surfaceSize() const { return SurfaceUnits(size().value() + breaks().value()); }
  // The whole characters that the range touches; an empty range stays empty.
  Range Whole(Range range) const;
  // A surface position inside a CR LF goes before (kLeft) or behind it (kRight). Clamps.
  Units FromSurface(SurfaceUnits position, Bias bias) const;

  // --- Reading. O(log n + size of what is read)
  std::u16string Utf16(Range range, BreakAs breakAs = BreakAs::kLf) const;
  std::string ByteString(Range range) const;  // the file's own bytes
  // Calls visit for each piece of the range in order, cut to the range, until it returns false. Ends of the range
  // inside a surrogate pair are snapped left.
  void ForEachPiece(Range range, const std::function<bool(const PieceView&)>& visit) const;
  // As above, but over whole stretches of memory whatever their formats: never more pieces than ForEachPiece.
  void ForEachSpan(Range range, const std::function<bool(std::string_view)>& visit) const;

  // --- Formats
  CharFormatId CharFormatAt(Units position) const;  // of the character behind the position; at the end, of the last
  ParaFormatId ParaFormatOf(Breaks paragraph) const;
  ParaFormatId lastParaFormat() const { return lastParaFormat_; }
  CharSummary Summarize(Range range) const;
  ParaSummary SummarizeParagraphs(Range range) const;  // of all paragraphs the range touches

  // --- Edits: each gives a new value
  // The range is replaced by the fragment, which must have been made in the same store. A CR and a LF that become
  // neighbours are one break afterwards. The fragment's breaks keep their paragraph formats; its lastParaFormat is not
  // used, so a replacement without a break leaves the paragraph at its end as it is.
  Content WithReplaced(Range range, const Content& fragment) const;
  Content Slice(Range range) const;
  // The formats of every character in the range go through the function, called once, or seldom more, for each
  // different format.
  Content WithCharFormats(Range range, const std::function<CharFormatId(CharFormatId)>& map) const;
  // The same for every paragraph that the range touches.
  Content WithParaFormats(Range range, const std::function<ParaFormatId(ParaFormatId)>& map) const;
  Content WithLastParaFormat(ParaFormatId format) const;

  // True when both are the very same value (one pointer comparison), not merely equal text.
  bool SameAs(const Content& other) const;

  // Throws std::logic_error naming the first broken invariant. O(size). For tests and debug builds.
  void CheckInvariants() const;

 private:
  friend class ContentBuilder;
  std::shared_ptr<TextStore> store_;
  NodeRef root_;  // null = empty
  ParaFormatId lastParaFormat_ = ParaFormatId::kDefault;
};

// Builds a content from its beginning to its end in one bottom-up pass: loading, RTF reading, replace all, pasting.
// Adjacent text of equal formats is joined into full-sized pieces.
class ContentBuilder {
 public:
  explicit ContentBuilder(std::shared_ptr<TextStore> store);
  ~ContentBuilder();

  // Copies the bytes into the store. They may break anywhere, even inside a character or a CR LF.
  void Append(std::string_view bytes, CharFormatId charFormat = CharFormatId::kDefault,
              ParaFormatId paraFormat = ParaFormatId::kDefault);
  // Stray bytes on both sides of this place stay characters of their own. Costs a piece.
  void Separate();
  // Shares the pieces of another content of the same store (short ones are copied together).
  void Append(const Content& content, Range range);
  // Shares bytes that are committed in a block of this store: [begin, end), whole characters, one block.
  void AppendCommitted(const char* begin, const char* end, CharFormatId charFormat = CharFormatId::kDefault,
                       ParaFormatId paraFormat = ParaFormatId::kDefault);
  // A paragraph's format is known at its end: append its text without the break, then the break with the format.
  Content Finish(ParaFormatId lastParaFormat = ParaFormatId::kDefault);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

// UTF-16 to engine bytes: U+DC80 .. U+DCFF become the stray byte again, any other lone surrogate U+FFFD. With a line
// end given, every CR LF, CR or LF is written that way.
std::string BytesOfUtf16(std::u16string_view units, std::optional<LineEnd> lineEnd = std::nullopt);
// Engine bytes to UTF-16 (stray byte b = 0xDC00 + b), breaks spelled as asked.
std::u16string Utf16OfBytes(std::string_view bytes, BreakAs breakAs = BreakAs::kLf);

}  // namespace text
