#include "text/Content.h"

#include "text/Tree.h"
#include "text/Utf16.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <stdexcept>
#include <utility>

namespace text {
namespace {

// A piece and what comes before it.
struct Spot {
  const Piece* piece;
  Sums before;
};

template <class Measure>
int64_t Of(const Sums& sums, Measure measure) {
  return measure(sums).value();
}
constexpr auto kByBytes = [](const Sums& s) { return s.bytes; };
constexpr auto kByUnits = [](const Sums& s) { return s.units; };
constexpr auto kByBreaks = [](const Sums& s) { return s.breaks; };
constexpr auto kBySurface = [](const Sums& s) { return SurfaceUnits(s.units.value() + s.breaks.value()); };

// The piece that holds the byte, unit or break of that number; 0 <= number < the tree's total.
template <class Measure>
Spot Find(const Node* node, int64_t number, Measure measure) {
  Spot spot{nullptr, {}};
  while (!node->leaf()) {
    const auto* inner = static_cast<const Inner*>(node);
    int i = 0;
    for (; number >= Of(inner->childSums[i], measure); ++i) {
      number -= Of(inner->childSums[i], measure);
      spot.before = spot.before + inner->childSums[i];
    }
    node = inner->child[i].get();
  }
  const Piece* piece = node->pieces().data();
  for (; number >= Of(piece->sums(), measure); ++piece) {
    number -= Of(piece->sums(), measure);
    spot.before = spot.before + piece->sums();
  }
  spot.piece = piece;
  return spot;
}

Sums SumsInPiece(const Piece& piece, const char* end) {
  return end == piece.data ? Sums{} : Block::Of(piece.data)->SumsOf(piece.data, end);
}

// Where the break of that number begins, with what lies before it.
Sums BeforeBreak(const Node* root, int64_t number) {
  const Spot spot = Find(root, number, kByBreaks);
  const Piece& piece = *spot.piece;
  const char* at = Block::Of(piece.data)->FindBreak(piece.data, number - spot.before.breaks.value());
  return spot.before + SumsInPiece(piece, at);
}

// The piece cut to the positions [begin, end), relative to its own start.
Piece CutPiece(const Piece& piece, int64_t begin, int64_t end) {
  if (begin <= 0 && end >= piece.units) return piece;
  const Block* block = Block::Of(piece.data);
  const char* from = begin <= 0 ? piece.data : block->FindUnit(piece.data, begin);
  const char* to = end >= piece.units ? piece.end() : block->FindUnit(piece.data, end);
  return from == to ? Piece() : MakePiece(from, to, piece.charFormat, piece.paraFormat);
}

// Calls visit(piece) for the pieces of [begin, end), cut to it.
template <class Visit>
bool Walk(const Node* node, int64_t begin, int64_t end, const Visit& visit) {
  if (node->leaf()) {
    for (const Piece& piece : node->pieces()) {
      if (begin < piece.units && end > 0) {
        const Piece cut = CutPiece(piece, begin, end);
        if (cut.bytes && !visit(cut)) return false;
      }
      begin -= piece.units, end -= piece.units;
      if (end <= 0) break;
    }
    return true;
  }
  const auto* inner = static_cast<const Inner*>(node);
  for (int i = 0; i < inner->count && end > 0; ++i) {
    const int64_t units = inner->childSums[i].units.value();
    if (begin < units && !Walk(inner->child[i].get(), begin, end, visit)) return false;
    begin -= units, end -= units;
  }
  return true;
}

// Combines the summaries of [begin, end): whole nodes by theirs.
void Summarize(const FormatTable& formats, const Node* node, int64_t begin, int64_t end, CharSummary& chars,
               ParaSummary& paras) {
  if (end <= 0 || begin >= node->sums.units.value()) return;
  if (begin <= 0 && end >= node->sums.units.value()) {
    chars = Combine(chars, node->chars);
    paras = Combine(paras, node->paras);
    return;
  }
  if (node->leaf()) {
    for (const Piece& piece : node->pieces()) {
      if (begin < piece.units && end > 0) {
        chars = Combine(chars, SummaryOf(formats[piece.charFormat]));
        if (piece.breaks && CutPiece(piece, begin, end).breaks)
          paras = Combine(paras, SummaryOf(formats[piece.paraFormat]));
      }
      begin -= piece.units, end -= piece.units;
    }
    return;
  }
  const auto* inner = static_cast<const Inner*>(node);
  for (int i = 0; i < inner->count; ++i) {
    Summarize(formats, inner->child[i].get(), begin, end, chars, paras);
    begin -= inner->childSums[i].units.value(), end -= inner->childSums[i].units.value();
  }
}

}  // namespace

Content::Content() : Content(std::make_shared<TextStore>()) {}
Content::Content(std::shared_ptr<TextStore> store) : store_(std::move(store)) {}

FormatTable& Content::formats() const {
  return store_->formats();
}
Sums Content::sums() const {
  return root_ ? root_->sums : Sums{};
}
bool Content::SameAs(const Content& other) const {
  return root_.get() == other.root_.get() && lastParaFormat_ == other.lastParaFormat_;
}

// --- Places

Sums Content::SumsBefore(Units position) const {
  if (!root_ || position <= Units(0)) return {};
  if (position >= size()) return sums();
  const Spot spot = Find(root_.get(), position.value(), kByUnits);
  const char* const begin = spot.piece->data;
  Sums inPiece;
  Block::Of(begin)->FindUnit(begin, (position - spot.before.units).value(), &inPiece);
  return spot.before + inPiece;
}

Units Content::PositionOfByte(Bytes offset) const {
  if (!root_ || offset <= Bytes(0)) return Units(0);
  if (offset >= sums().bytes) return size();
  const Spot spot = Find(root_.get(), offset.value(), kByBytes);
  const Piece& piece = *spot.piece;
  const char* at = piece.data + (offset - spot.before.bytes).value();
  return spot.before.units + SumsInPiece(piece, Block::Of(piece.data)->CharacterStart(piece.data, at)).units;
}

Units Content::ParagraphStart(Breaks paragraph) const {
  if (paragraph <= Breaks(0)) return Units(0);
  return ParagraphEnd(paragraph - Breaks(1)) + Units(1);
}

Units Content::ParagraphEnd(Breaks paragraph) const {
  if (paragraph >= breaks()) return size();
  return BeforeBreak(root_.get(), paragraph.value()).units;
}

Units Content::Snap(Units position, Bias bias) const {
  if (position <= Units(0)) return Units(0);
  if (position >= size()) return size();
  const Units start = SumsBefore(position).units;
  return start == position || bias == Bias::kLeft ? start : position + Units(1);
}

Range Content::Whole(Range range) const {
  const Units begin = Snap(range.begin, Bias::kLeft);
  return {begin, range.empty() ? begin : Snap(range.end, Bias::kRight)};
}

Units Content::FromSurface(SurfaceUnits position, Bias bias) const {
  if (!root_ || position <= SurfaceUnits(0)) return Units(0);
  if (position >= surfaceSize()) return size();
  const Spot spot = Find(root_.get(), position.value(), kBySurface);
  const Piece& piece = *spot.piece;
  const Block* block = Block::Of(piece.data);
  const int64_t target = position.value() - kBySurface(spot.before).value();
  // The last unit of the piece whose surface position is not behind the target.
  int64_t low = 0, high = piece.units;
  while (low + 1 < high) {
    const int64_t middle = (low + high) / 2;
    if (kBySurface(SumsInPiece(piece, block->FindUnit(piece.data, middle))).value() <= target) {
      low = middle;
    } else {
      high = middle;
    }
  }
  const Sums before = SumsInPiece(piece, block->FindUnit(piece.data, low));
  const bool exact = kBySurface(before).value() == target;
  return spot.before.units + before.units + Units(!exact && bias == Bias::kRight ? low + 1 - before.units.value() : 0);
}

// --- Reading

void Content::ForEachPiece(Range range, const std::function<bool(const PieceView&)>& visit) const {
  if (!root_) return;
  Walk(root_.get(), range.begin.value(), range.end.value(), [&](const Piece& piece) {
    return visit({piece.view(), piece.sums(), piece.charFormat, piece.paraFormat});
  });
}

void Content::ForEachSpan(Range range, const std::function<bool(std::string_view)>& visit) const {
  if (!root_) return;
  std::string_view span;
  const bool all = Walk(root_.get(), range.begin.value(), range.end.value(), [&](const Piece& piece) {
    if (!span.empty() && span.data() + span.size() == piece.data && Block::Of(span.data()) == Block::Of(piece.data)) {
      span = {span.data(), span.size() + piece.bytes};
      return true;
    }
    const std::string_view done = std::exchange(span, piece.view());
    return done.empty() || visit(done);
  });
  if (all && !span.empty()) visit(span);
}

std::u16string Content::Utf16(Range range, BreakAs breakAs) const {
  std::u16string units;
  units.reserve(static_cast<size_t>(std::max<int64_t>(0, std::min(range.end, size()).value() - range.begin.value())));
  ForEachPiece(Whole(range), [&](const PieceView& piece) {
    AppendUtf16(units, piece.bytes, breakAs);
    return true;
  });
  return units;
}

std::string Content::ByteString(Range range) const {
  std::string bytes;
  ForEachSpan(range, [&](std::string_view span) {
    bytes.append(span);
    return true;
  });
  return bytes;
}

// --- Formats

CharFormatId Content::CharFormatAt(Units position) const {
  if (!root_) return CharFormatId::kDefault;
  const Units inside = std::clamp(position, Units(0), size() - Units(1));
  return Find(root_.get(), inside.value(), kByUnits).piece->charFormat;
}

ParaFormatId Content::ParaFormatOf(Breaks paragraph) const {
  if (paragraph >= breaks()) return lastParaFormat_;
  return Find(root_.get(), paragraph.value(), kByBreaks).piece->paraFormat;
}

CharSummary Content::Summarize(Range range) const {
  CharSummary chars;
  ParaSummary paras;
  if (root_ && !range.empty())
    text::Summarize(formats(), root_.get(), range.begin.value(), range.end.value(), chars, paras);
  return chars;
}

ParaSummary Content::SummarizeParagraphs(Range range) const {
  const Breaks first = ParagraphAt(range.begin), last = ParagraphAt(range.end);
  CharSummary chars;
  ParaSummary paras;
  if (root_) {
    const Units end = last < breaks() ? ParagraphEnd(last) + Units(1) : size();
    text::Summarize(formats(), root_.get(), ParagraphStart(first).value(), end.value(), chars, paras);
  }
  return last < breaks() ? paras : Combine(paras, SummaryOf(formats()[lastParaFormat_]));
}

// --- Edits

Content Content::WithReplaced(Range range, const Content& fragment) const {
  assert(range.begin <= range.end && (!fragment.root_ || fragment.store_ == store_));
  const Tree tree(*store_);
  const auto [begin, end] = Whole(range);
  Content result(store_);
  result.lastParaFormat_ = lastParaFormat_;
  if (!fragment.root_ || fragment.root_->leaf())
    result.root_ =
        tree.ReplaceInLeaf(root_, begin, end, fragment.root_ ? fragment.root_->pieces() : std::span<const Piece>());
  if (result.root_) return result;
  auto [front, rest] = tree.Split(root_, begin);
  NodeRef back = tree.Split(rest, end - begin).second;
  result.root_ = tree.Join(tree.Join(std::move(front), fragment.root_), std::move(back));
  return result;
}

Content Content::Slice(Range range) const {
  const Tree tree(*store_);
  const auto [begin, end] = Whole(range);
  Content result(store_);
  result.root_ = tree.Split(tree.Split(root_, begin).second, end - begin).first;
  result.lastParaFormat_ = ParaFormatOf(ParagraphAt(end));
  return result;
}

namespace {

// Remembers what the function gave for ids, so that runs of a few formats cost nothing.
template <class Id>
class Memo {
 public:
  explicit Memo(const std::function<Id(Id)>& map) : map_(map) {}
  Id operator()(Id id) {
    Entry& entry = entries_[static_cast<size_t>(id) % entries_.size()];
    if (!entry.known || entry.from != id) entry = {true, id, map_(id)};
    return entry.to;
  }

 private:
  struct Entry {
    bool known = false;
    Id from{}, to{};
  };
  const std::function<Id(Id)>& map_;
  std::array<Entry, 64> entries_{};
};

}  // namespace

Content Content::WithCharFormats(Range range, const std::function<CharFormatId(CharFormatId)>& map) const {
  const Tree tree(*store_);
  Memo memo(map);
  const auto [begin, end] = Whole(range);
  auto [front, rest] = tree.Split(root_, begin);
  auto [middle, back] = tree.Split(rest, end - begin);
  Content result(store_);
  result.root_ = tree.Join(
      tree.Join(std::move(front), tree.Map(middle, [&](Piece& piece) { piece.charFormat = memo(piece.charFormat); })),
      std::move(back));
  result.lastParaFormat_ = lastParaFormat_;
  return result;
}

Content Content::WithParaFormats(Range range, const std::function<ParaFormatId(ParaFormatId)>& map) const {
  const Tree tree(*store_);
  Memo memo(map);
  const Breaks first = ParagraphAt(range.begin), last = ParagraphAt(range.end);
  const Units begin = ParagraphStart(first);
  const Units end = last < breaks() ? ParagraphEnd(last) + Units(1) : size();
  auto [front, rest] = tree.Split(root_, begin);
  auto [middle, back] = tree.Split(rest, end - begin);
  Content result(store_);
  result.root_ = tree.Join(tree.Join(std::move(front), tree.Map(middle,
                                                                [&](Piece& piece) {
                                                                  if (piece.breaks)
                                                                    piece.paraFormat = memo(piece.paraFormat);
                                                                })),
                           std::move(back));
  result.lastParaFormat_ = last < breaks() ? lastParaFormat_ : map(lastParaFormat_);
  return result;
}

Content Content::WithLastParaFormat(ParaFormatId format) const {
  Content result = *this;
  result.lastParaFormat_ = format;
  return result;
}

// --- Checking

namespace {

void Require(bool holds, const char* invariant) {
  if (!holds) throw std::logic_error(invariant);
}

void CheckPiece(const Piece& piece, const char* previousEnd) {
  Require(piece.bytes > 0 && piece.bytes <= TreeConfig::kMaxPieceBytes, "piece size");
  Require(piece.breaks || piece.paraFormat == ParaFormatId::kDefault, "paragraph format without a break");
  Require(!previousEnd || previousEnd[-1] != '\r' || *piece.data != '\n', "CR LF split by a seam");
  Sums naive;
  const char* p = piece.data;
  while (p < piece.end()) {
    int length = std::max(1, Utf8Length(p, piece.end()));
    if (*p == '\r' && p + 1 < piece.end() && p[1] == '\n') length = 2;
    const bool isBreak = *p == '\r' || *p == '\n';
    naive = naive + Sums{Bytes(length), Units(length == 4 ? 2 : 1), Breaks(isBreak)};
    p += length;
  }
  Require(naive == piece.sums(), "piece sums");
}

void CheckNode(const FormatTable& formats, const Node* node, bool root, const char*& previousEnd) {
  Require(node->count <= Node::kFanout && node->count >= (root ? (node->leaf() ? 1 : 2) : Node::kFanout / 2),
          "node size");
  Sums sums;
  CharSummary chars;
  ParaSummary paras;
  if (node->leaf()) {
    for (const Piece& piece : node->pieces()) {
      CheckPiece(piece, previousEnd);
      previousEnd = piece.end();
      sums = sums + piece.sums();
      chars = Combine(chars, SummaryOf(formats[piece.charFormat]));
      if (piece.breaks) paras = Combine(paras, SummaryOf(formats[piece.paraFormat]));
    }
  } else {
    const auto* inner = static_cast<const Inner*>(node);
    for (int i = 0; i < inner->count; ++i) {
      const Node* child = inner->child[i].get();
      Require(child->height + 1 == node->height, "balance");
      Require(child->sums == inner->childSums[i], "child sums");
      CheckNode(formats, child, false, previousEnd);
      sums = sums + child->sums;
      chars = Combine(chars, child->chars);
      paras = Combine(paras, child->paras);
    }
  }
  Require(sums == node->sums, "node sums");
  Require(chars == node->chars && paras == node->paras, "node summary");
}

}  // namespace

void Content::CheckInvariants() const {
  const char* previousEnd = nullptr;
  if (root_) CheckNode(formats(), root_.get(), true, previousEnd);
}

}  // namespace text
