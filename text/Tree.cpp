#include "text/Tree.h"

#include <algorithm>
#include <cassert>

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

// Cut at a position inside the piece: 0 < units < piece.units.
std::pair<Piece, Piece> Cut(const Piece& piece, int64_t units) {
  const char* at = Block::Of(piece.data)->FindUnit(piece.data, units);
  Piece left = MakePiece(piece.data, at, piece.charFormat, piece.paraFormat);
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

// The tree's height bounds the recursion through ~Inner.
NodeRef::~NodeRef() {
  if (node_ && node_->references.fetch_sub(1, std::memory_order_acq_rel) == 1) Free(node_);
}

Piece MakePiece(const char* begin, const char* end, CharFormatId charFormat, ParaFormatId paraFormat) {
  assert(begin < end && static_cast<size_t>(end - begin) <= TreeConfig::kMaxPieceBytes);
  const Sums sums = Block::Of(begin)->SumsOf(begin, end);
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
  const FormatTable& formats = store_.formats();
  for (size_t i = 0; i < count; ++i) {
    const Piece& piece = leaf->piece[i] = pieces[i];
    leaf->sums = leaf->sums + piece.sums();
    if (i == 0 || piece.charFormat != pieces[i - 1].charFormat)
      leaf->chars = Combine(leaf->chars, SummaryOf(formats[piece.charFormat]));
    if (piece.breaks && (i == 0 || !pieces[i - 1].breaks || piece.paraFormat != pieces[i - 1].paraFormat))
      leaf->paras = Combine(leaf->paras, SummaryOf(formats[piece.paraFormat]));
  }
  return NodeRef(leaf);
}

NodeRef Tree::MakeInner(const NodeRef* children, size_t count) const {
  assert(count > 0 && count <= kFanout);
  auto* inner = new Inner;
  inner->count = static_cast<uint8_t>(count);
  inner->height = static_cast<uint8_t>(children[0]->height + 1);
  for (size_t i = 0; i < count; ++i) {
    inner->child[i] = children[i];
    inner->childSums[i] = children[i]->sums;
    inner->sums = inner->sums + children[i]->sums;
    inner->chars = Combine(inner->chars, children[i]->chars);
    inner->paras = Combine(inner->paras, children[i]->paras);
  }
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
      ++i, ++lefts, ++rights;
    }
    for (; i < pieces.size(); ++i) right[rights++] = pieces[i];
    return {MakeLeaf(left, lefts), rights ? MakeLeaf(right, rights) : NodeRef()};
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
