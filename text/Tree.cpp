#include "text/Tree.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace text {
namespace {

constexpr size_t kFanout = Node::kFanout;
constexpr size_t kMinimum = kFanout / 2;

void Free(Node* node) {
  if (node->leaf()) {
    delete static_cast<Leaf*>(node);
  } else {
    delete static_cast<Inner*>(node);
  }
}

const Piece& LastPiece(const Node* node) {
  while (!node->leaf()) node = node->children().back().get();
  return node->pieces().back();
}

const Piece& FirstPiece(const Node* node) {
  while (!node->leaf()) node = node->children().front().get();
  return node->pieces().front();
}

bool SameFormats(const Piece& a, const Piece& b) {
  return a.charFormat == b.charFormat && (a.paraFormat == b.paraFormat || a.breaks == 0 || b.breaks == 0);
}

// Cut at a position inside the piece: 0 < units < piece.units. The left part is empty for the middle of a first pair.
std::pair<Piece, Piece> Cut(const Piece& piece, int64_t units) {
  Sums before;
  const char* at = Block::Of(piece.data)->FindUnit(piece.data, units, &before);
  Piece left = piece;
  left.bytes = static_cast<uint16_t>(before.bytes.value());
  left.units = static_cast<uint16_t>(before.units.value());
  left.breaks = static_cast<uint16_t>(before.breaks.value());
  if (left.breaks == 0) left.paraFormat = ParaFormatId::kDefault;
  Piece right = piece;
  right.data = at;
  right.bytes = static_cast<uint16_t>(piece.bytes - left.bytes);
  right.units = static_cast<uint16_t>(piece.units - left.units);
  right.breaks = static_cast<uint16_t>(piece.breaks - left.breaks);
  if (right.breaks == 0) right.paraFormat = ParaFormatId::kDefault;
  return {left, right};
}

}  // namespace

NodeRef::NodeRef(const NodeRef& other) : node_(other.node_) {
  if (node_) node_->references.fetch_add(1, std::memory_order_relaxed);
}

// The tree's height bounds the recursion through ~Inner. The analyzer does not follow atomic counts.
NodeRef::~NodeRef() {
  // NOLINTNEXTLINE(clang-analyzer-core.uninitialized.Branch, clang-analyzer-cplusplus.NewDelete)
  if (node_ && node_->references.fetch_sub(1, std::memory_order_acq_rel) == 1) Free(node_);
}

Piece MakePiece(const char* begin, const char* end, CharFormatId charFormat, ParaFormatId paraFormat) {
  return MakePiece(begin, Block::Of(begin)->SumsOf(begin, end), charFormat, paraFormat);
}

Piece MakePiece(const char* begin, Sums sums, CharFormatId charFormat, ParaFormatId paraFormat) {
  assert(sums.bytes.value() > 0 && static_cast<size_t>(sums.bytes.value()) <= TreeConfig::kMaxPieceBytes);
  Piece piece;
  piece.data = begin;
  piece.charFormat = charFormat;
  piece.paraFormat = sums.breaks.value() ? paraFormat : ParaFormatId::kDefault;
  piece.bytes = static_cast<uint16_t>(sums.bytes.value());
  piece.units = static_cast<uint16_t>(sums.units.value());
  piece.breaks = static_cast<uint16_t>(sums.breaks.value());
  return piece;
}

bool MergePieces(Piece& a, const Piece& b) {
  if (a.end() != b.data || size_t{a.bytes} + b.bytes > TreeConfig::kMaxPieceBytes || !SameFormats(a, b)) return false;
  if (Block::Of(a.data) != Block::Of(b.data)) return false;
  if (a.breaks == 0) a.paraFormat = b.paraFormat;
  a.bytes = static_cast<uint16_t>(a.bytes + b.bytes);
  a.units = static_cast<uint16_t>(a.units + b.units);
  a.breaks = static_cast<uint16_t>(a.breaks + b.breaks);
  return true;
}

Piece RepairSeam(Piece& left, Piece& right, const char* crLf) {
  Piece both = left;
  both.data = crLf;
  both.bytes = 2;
  both.units = both.breaks = 1;
  for (Piece* piece : {&left, &right}) {
    --piece->bytes, --piece->units, --piece->breaks;
    if (piece->breaks == 0) piece->paraFormat = ParaFormatId::kDefault;
  }
  ++right.data;
  return both;
}

// --- Nodes

NodeRef Tree::MakeLeaf(const Piece* pieces, size_t count) const {
  assert(count > 0 && count <= kFanout);
  auto* leaf = new Leaf;
  leaf->count = static_cast<uint8_t>(count);
  leaf->charFormat = pieces[0].charFormat;
  bool anyBreak = false;
  for (size_t i = 0; i < count; ++i) {
    const Piece& piece = leaf->piece[i] = pieces[i];
    leaf->sums = leaf->sums + piece.sums();
    leaf->oneCharFormat &= piece.charFormat == leaf->charFormat;
    if (!piece.breaks) continue;
    if (!std::exchange(anyBreak, true)) leaf->paraFormat = piece.paraFormat;
    leaf->oneParaFormat &= piece.paraFormat == leaf->paraFormat;
  }
  const FormatTable& formats = store_.formats();
  leaf->chars = SummaryOf(formats[leaf->charFormat]);
  if (anyBreak) leaf->paras = SummaryOf(formats[leaf->paraFormat]);
  for (size_t i = 1; i < count && !leaf->oneCharFormat; ++i)
    if (pieces[i].charFormat != pieces[i - 1].charFormat)
      leaf->chars = Combine(leaf->chars, SummaryOf(formats[pieces[i].charFormat]));
  for (size_t i = 0; i < count && !leaf->oneParaFormat; ++i)
    if (pieces[i].breaks) leaf->paras = Combine(leaf->paras, SummaryOf(formats[pieces[i].paraFormat]));
  return NodeRef(leaf);
}

NodeRef Tree::MakeInner(const NodeRef* children, size_t count) const {
  assert(count > 0 && count <= kFanout);
  auto* inner = new Inner;
  inner->count = static_cast<uint8_t>(count);
  inner->height = static_cast<uint8_t>(children[0]->height + 1);
  inner->charFormat = children[0]->charFormat;
  bool anyBreak = false;
  for (size_t i = 0; i < count; ++i) {
    const Node& child = *children[i].get();
    inner->child[i] = children[i];
    inner->childSums[i] = child.sums;
    inner->sums = inner->sums + child.sums;
    inner->oneCharFormat &= child.oneCharFormat && child.charFormat == inner->charFormat;
    if (child.sums.breaks == Breaks(0)) continue;
    if (!std::exchange(anyBreak, true)) inner->paraFormat = child.paraFormat, inner->paras = child.paras;
    inner->oneParaFormat &= child.oneParaFormat && child.paraFormat == inner->paraFormat;
  }
  inner->chars = children[0]->chars;
  for (size_t i = 1; i < count && !inner->oneCharFormat; ++i) inner->chars = Combine(inner->chars, children[i]->chars);
  for (size_t i = 0; i < count && !inner->oneParaFormat; ++i) inner->paras = Combine(inner->paras, children[i]->paras);
  return NodeRef(inner);
}

NodeRef Tree::Root(Pair pair) const {
  if (!pair.second) return std::move(pair.first);
  const NodeRef both[] = {std::move(pair.first), std::move(pair.second)};
  return MakeInner(both, 2);
}

// Up to twice the fan-out into one or two well-filled nodes.
Tree::Pair Tree::Distribute(const NodeRef* children, size_t count) const {
  if (count <= kFanout) return {MakeInner(children, count), {}};
  return {MakeInner(children, count / 2), MakeInner(children + count / 2, count - count / 2)};
}

Tree::Pair Tree::Distribute(const Piece* pieces, size_t count) const {
  if (count <= kFanout) return {MakeLeaf(pieces, count), {}};
  return {MakeLeaf(pieces, count / 2), MakeLeaf(pieces + count / 2, count - count / 2)};
}

// A tree of siblings: nothing, the child itself, or a root above them.
NodeRef Tree::Group(const NodeRef* children, size_t count) const {
  if (count == 0) return {};
  return count == 1 ? children[0] : MakeInner(children, count);
}

// --- Joining

// One or two nodes of the greater height. Every node but a root is at least half full before and after.
Tree::Pair Tree::ConcatNodes(const NodeRef& a, const NodeRef& b) const {
  if (a->height == b->height) {
    if (a->count >= kMinimum && b->count >= kMinimum && size_t{a->count} + b->count > kFanout) return {a, b};
    if (a->leaf()) {
      Piece pieces[2 * kFanout];
      const auto end = std::copy(a->pieces().begin(), a->pieces().end(), pieces);
      std::copy(b->pieces().begin(), b->pieces().end(), end);
      return Distribute(pieces, size_t{a->count} + b->count);
    }
    NodeRef children[2 * kFanout];
    const auto end = std::copy(a->children().begin(), a->children().end(), children);
    std::copy(b->children().begin(), b->children().end(), end);
    return Distribute(children, size_t{a->count} + b->count);
  }
  NodeRef children[kFanout + 1];
  size_t count = 0;
  if (a->height > b->height) {
    for (const NodeRef& child : a->children()) children[count++] = child;
    Pair last = ConcatNodes(children[count - 1], b);
    children[count - 1] = std::move(last.first);
    if (last.second) children[count++] = std::move(last.second);
  } else {
    Pair first = ConcatNodes(a, b->children().front());
    children[count++] = std::move(first.first);
    if (first.second) children[count++] = std::move(first.second);
    for (const NodeRef& child : b->children().subspan(1)) children[count++] = child;
  }
  return Distribute(children, count);
}

NodeRef Tree::Concat(NodeRef a, NodeRef b) const {
  if (!a) return b;
  if (!b) return a;
  return Root(ConcatNodes(a, b));
}

NodeRef Tree::Join(NodeRef a, NodeRef b) const {
  if (!a) return b;
  if (!b) return a;
  const Piece& last = LastPiece(a.get());
  const Piece& first = FirstPiece(b.get());
  if (BrokenSeam(last, first)) {
    auto [front, left] = PopBack(a);
    auto [back, right] = PopFront(b);
    const Piece both = RepairSeam(left, right, store_.crLf());
    Piece seam[3];
    size_t count = 0;
    if (left.bytes) seam[count++] = left;
    seam[count++] = both;
    if (right.bytes) seam[count++] = right;
    return Concat(Concat(std::move(front), Make({seam, count})), std::move(back));
  }
  if (Piece merged = last; MergePieces(merged, first)) {
    NodeRef back = PopFront(b).first;
    NodeRef front = PopBack(a).first;
    return Concat(Concat(std::move(front), MakeLeaf(&merged, 1)), std::move(back));
  }
  return Concat(std::move(a), std::move(b));
}

NodeRef Tree::Make(std::span<const Piece> pieces) const {
  NodeRef tree;
  for (; !pieces.empty(); pieces = pieces.subspan(std::min(pieces.size(), kFanout)))
    tree = Concat(std::move(tree), MakeLeaf(pieces.data(), std::min(pieces.size(), kFanout)));
  return tree;
}

// --- Replacing within a leaf

NodeRef Tree::ReplaceInLeaf(const NodeRef& tree, Units begin, Units end, std::span<const Piece> with) const {
  if (!tree || with.size() > 2) return {};
  Pair pair = ReplacedInLeaf(tree, true, begin.value(), end.value(), with);
  return pair.first ? Root(std::move(pair)) : NodeRef();
}

Tree::Pair Tree::ReplacedInLeaf(const NodeRef& node, bool root, int64_t begin, int64_t end,
                                std::span<const Piece> with) const {
  if (!node->leaf()) {
    const auto* inner = static_cast<const Inner*>(node.get());
    int i = 0;
    for (; begin >= inner->childSums[i].units.value(); ++i) {
      begin -= inner->childSums[i].units.value(), end -= inner->childSums[i].units.value();
      if (i + 1 == inner->count) return {};
    }
    if (begin == 0 || end >= inner->childSums[i].units.value()) return {};
    Pair replaced = ReplacedInLeaf(inner->child[i], false, begin, end, with);
    if (!replaced.first) return {};
    NodeRef children[kFanout + 1];
    size_t count = static_cast<size_t>(std::copy_n(inner->child, i, children) - children);
    children[count++] = std::move(replaced.first);
    if (replaced.second) children[count++] = std::move(replaced.second);
    for (int k = i + 1; k < inner->count; ++k) children[count++] = inner->child[k];
    return Distribute(children, count);
  }
  return ReplacedPieces(node->pieces(), root, begin, end, with);
}

Tree::Pair Tree::ReplacedPieces(std::span<const Piece> pieces, bool root, int64_t begin, int64_t end,
                                std::span<const Piece> with) const {
  size_t first = 0;
  for (; first < pieces.size() && begin >= pieces[first].units; ++first)
    begin -= pieces[first].units, end -= pieces[first].units;
  size_t last = first;
  int64_t lastEnd = end;
  for (; last < pieces.size() && lastEnd > pieces[last].units; ++last) lastEnd -= pieces[last].units;
  // A first or last piece that is touched at its outer border has a seam with another leaf.
  if (last >= pieces.size() || (first == 0 && begin == 0)) return {};
  if (last + 1 == pieces.size() && lastEnd == pieces[last].units) return {};
  PieceRow row(store_);
  for (size_t i = 0; i < first; ++i) row.Add(pieces[i]);
  if (begin > 0) row.Add(Cut(pieces[first], begin).first);
  for (const Piece& piece : with) row.Add(piece);
  if (lastEnd == 0) {
    row.Add(pieces[last]);
  } else if (lastEnd < pieces[last].units) {
    row.Add(Cut(pieces[last], lastEnd).second);
  }
  for (size_t i = last + 1; i < pieces.size(); ++i) row.Add(pieces[i]);
  const size_t count = row.pieces().size();
  if (count == 0 || count > 2 * kFanout || (!root && count < kMinimum)) return {};
  return Distribute(row.pieces().data(), count);
}

void PieceRow::Add(const Piece& piece) {
  assert(piece.bytes > 0);
  if (count_ > 0) {
    Piece& before = pieces_[count_ - 1];
    if (MergePieces(before, piece)) return;
    if (BrokenSeam(before, piece)) {
      Piece right = piece;
      const Piece both = RepairSeam(before, right, store_.crLf());
      if (before.bytes == 0) --count_;
      pieces_[count_++] = both;
      if (right.bytes) pieces_[count_++] = right;
      return;
    }
  }
  pieces_[count_++] = piece;
}

// --- Splitting

std::pair<NodeRef, NodeRef> Tree::Split(const NodeRef& tree, Units position) const {
  if (!tree || position <= Units(0)) return {NodeRef(), tree};
  if (position >= tree->sums.units) return {tree, NodeRef()};
  int64_t rest = position.value();
  if (tree->leaf()) {
    const auto pieces = tree->pieces();
    size_t i = 0;
    for (; rest >= pieces[i].units; ++i) rest -= pieces[i].units;
    Piece left[kFanout], right[kFanout];
    size_t lefts = static_cast<size_t>(std::copy_n(pieces.begin(), i, left) - left), rights = 0;
    if (rest > 0) {
      std::tie(left[lefts], right[0]) = Cut(pieces[i], rest);
      if (left[lefts].bytes) ++lefts;
      ++i, ++rights;
    }
    for (; i < pieces.size(); ++i) right[rights++] = pieces[i];
    return {lefts ? MakeLeaf(left, lefts) : NodeRef(), rights ? MakeLeaf(right, rights) : NodeRef()};
  }
  const auto* inner = static_cast<const Inner*>(tree.get());
  size_t i = 0;
  for (; rest >= inner->childSums[i].units.value(); ++i) rest -= inner->childSums[i].units.value();
  auto [left, right] = Split(inner->child[i], Units(rest));
  return {Concat(Group(inner->child, i), std::move(left)),
          Concat(std::move(right), Group(inner->child + i + 1, inner->count - i - 1))};
}

std::pair<NodeRef, Piece> Tree::PopBack(const NodeRef& tree) const {
  if (tree->leaf()) {
    const auto pieces = tree->pieces();
    return {pieces.size() > 1 ? MakeLeaf(pieces.data(), pieces.size() - 1) : NodeRef(), pieces.back()};
  }
  const auto* inner = static_cast<const Inner*>(tree.get());
  auto [rest, piece] = PopBack(inner->child[inner->count - 1]);
  return {Concat(Group(inner->child, inner->count - 1u), std::move(rest)), piece};
}

std::pair<NodeRef, Piece> Tree::PopFront(const NodeRef& tree) const {
  if (tree->leaf()) {
    const auto pieces = tree->pieces();
    return {pieces.size() > 1 ? MakeLeaf(pieces.data() + 1, pieces.size() - 1) : NodeRef(), pieces.front()};
  }
  const auto* inner = static_cast<const Inner*>(tree.get());
  auto [rest, piece] = PopFront(inner->child[0]);
  return {Concat(std::move(rest), Group(inner->child + 1, inner->count - 1u)), piece};
}

// --- Mapping and building

namespace {

void AddMapped(const Node* node, const std::function<void(Piece&)>& change, TreeBuilder& builder) {
  if (node->leaf()) {
    for (Piece piece : node->pieces()) {
      change(piece);
      builder.Add(piece);
    }
    return;
  }
  for (const NodeRef& child : node->children()) AddMapped(child.get(), change, builder);
}

}  // namespace

NodeRef Tree::Map(const NodeRef& tree, const std::function<void(Piece&)>& change) const {
  if (!tree) return {};
  TreeBuilder builder(store_);
  AddMapped(tree.get(), change, builder);
  return builder.Finish();
}

void TreeBuilder::Add(const Piece& piece) {
  if (last_.bytes == 0) {
    last_ = piece;
    return;
  }
  if (MergePieces(last_, piece)) return;
  if (BrokenSeam(last_, piece)) {
    Piece left = last_, right = piece;
    const Piece both = RepairSeam(left, right, store_.crLf());
    if (left.bytes) Put(left);
    if (right.bytes) {
      Put(both);
      last_ = right;
    } else {
      last_ = both;
    }
    return;
  }
  Put(last_);
  last_ = piece;
}

void TreeBuilder::Put(const Piece& piece) {
  pieces_.push_back(piece);
  // The last kFanout pieces are held back, so that the end can be shared out evenly.
  if (pieces_.size() == 2 * kFanout) {
    Push(0, tree_.MakeLeaf(pieces_.data(), kFanout));
    pieces_.erase(pieces_.begin(), pieces_.begin() + kFanout);
  }
}

void TreeBuilder::Push(size_t level, NodeRef node) {
  if (levels_.size() == level) levels_.emplace_back();
  auto& nodes = levels_[level];
  nodes.push_back(std::move(node));
  if (nodes.size() == 2 * kFanout) {
    NodeRef parent = tree_.MakeInner(nodes.data(), kFanout);
    nodes.erase(nodes.begin(), nodes.begin() + kFanout);
    Push(level + 1, std::move(parent));
  }
}

NodeRef TreeBuilder::Finish() {
  if (last_.bytes) pieces_.push_back(last_);
  last_ = {};
  NodeRef tree;
  for (size_t level = levels_.size(); level-- > 0;)
    for (NodeRef& node : levels_[level]) tree = tree_.Join(std::move(tree), std::move(node));
  levels_.clear();
  tree = tree_.Join(std::move(tree), tree_.Make(pieces_));
  pieces_.clear();
  return tree;
}

}  // namespace text
