// The persistent tree of pieces behind Content. Internal to text/.
//
// A leaf holds 1 .. kFanout pieces, an inner node 2 .. kFanout children of one height (a root may be any of these,
// every other node holds at least kFanout / 2). Nodes are immutable once they are reachable from a Content.
// Seam rule: no piece ends in CR when the next one begins with LF; both bytes then live in one piece.
#pragma once

#include "text/TextStore.h"

#include <functional>
#include <span>

namespace text {

// A run of a block's bytes with one character format. All its breaks carry one paragraph format, which is kDefault when
// there are none, so that equal pieces compare equal.
struct Piece {
  const char* data = nullptr;
  CharFormatId charFormat = CharFormatId::kDefault;
  ParaFormatId paraFormat = ParaFormatId::kDefault;
  uint16_t bytes = 0;  // 1 .. kMaxPieceBytes
  uint16_t units = 0;
  uint16_t breaks = 0;

  const char* end() const { return data + bytes; }
  std::string_view view() const { return {data, bytes}; }
  Sums sums() const { return {Bytes(bytes), Units(units), Breaks(breaks)}; }
};

// `sums.bytes` bytes of one block, at most kMaxPieceBytes.
Piece MakePiece(const char* begin, Sums sums, CharFormatId charFormat, ParaFormatId paraFormat);
// The bytes [begin, end) of one block, counted here.
Piece MakePiece(const char* begin, const char* end, CharFormatId charFormat, ParaFormatId paraFormat);

inline Sums operator+(const Sums& a, const Sums& b) {
  return {a.bytes + b.bytes, a.units + b.units, a.breaks + b.breaks};
}
inline Sums operator-(const Sums& a, const Sums& b) {
  return {a.bytes - b.bytes, a.units - b.units, a.breaks - b.breaks};
}

class Node {
 public:
  static constexpr int kFanout = TreeConfig::kFanout;

  std::atomic<uint32_t> references = 1;
  uint8_t height = 0;  // 0 = leaf
  uint8_t count = 0;
  bool oneCharFormat = true;  // everything below has charFormat; likewise for the breaks
  bool oneParaFormat = true;
  CharFormatId charFormat = CharFormatId::kDefault;
  ParaFormatId paraFormat = ParaFormatId::kDefault;
  Sums sums;
  CharSummary chars;  // of everything below
  ParaSummary paras;  // of the paragraphs whose breaks are below

  bool leaf() const { return height == 0; }
  inline std::span<const Piece> pieces() const;
  inline std::span<const NodeRef> children() const;
};

class Leaf : public Node {
 public:
  Piece piece[kFanout];
};

class Inner : public Node {
 public:
  Sums childSums[kFanout];  // copies, so that a descent touches one node a level
  NodeRef child[kFanout];
};

inline std::span<const Piece> Node::pieces() const {
  return {static_cast<const Leaf*>(this)->piece, count};
}
inline std::span<const NodeRef> Node::children() const {
  return {static_cast<const Inner*>(this)->child, count};
}

// The operations on trees of one store. Null is the empty tree. Positions in units, 0 .. sums.units.
class Tree {
 public:
  explicit Tree(TextStore& store) : store_(store) {}

  NodeRef Make(std::span<const Piece> pieces) const;  // any number, seams in order
  // a then b, with the seam repaired: CR|LF joined, neighbouring memory of equal formats merged.
  NodeRef Join(NodeRef a, NodeRef b) const;
  // Inside a surrogate pair it splits before the pair.
  std::pair<NodeRef, NodeRef> Split(const NodeRef& tree, Units position) const;
  // Replaces [begin, end) where that touches the inside of one leaf only: one copied path instead of splits and joins.
  // Null when it does not apply. The positions must not lie inside a surrogate pair.
  NodeRef ReplaceInLeaf(const NodeRef& tree, Units begin, Units end, std::span<const Piece> with) const;
  // All pieces through the function, which may change their formats.
  NodeRef Map(const NodeRef& tree, const std::function<void(Piece&)>& change) const;

  NodeRef MakeLeaf(const Piece* pieces, size_t count) const;
  NodeRef MakeInner(const NodeRef* children, size_t count) const;

 private:
  struct Pair {
    NodeRef first, second;  // second may be null
  };
  Pair ReplacedInLeaf(const NodeRef& node, bool root, int64_t begin, int64_t end, std::span<const Piece> with) const;
  Pair ReplacedPieces(std::span<const Piece> pieces, bool root, int64_t begin, int64_t end,
                      std::span<const Piece> with) const;
  NodeRef Root(Pair pair) const;
  NodeRef Concat(NodeRef a, NodeRef b) const;
  Pair ConcatNodes(const NodeRef& a, const NodeRef& b) const;
  Pair Distribute(const NodeRef* children, size_t count) const;
  Pair Distribute(const Piece* pieces, size_t count) const;
  NodeRef Group(const NodeRef* children, size_t count) const;
  std::pair<NodeRef, Piece> PopBack(const NodeRef& tree) const;
  std::pair<NodeRef, Piece> PopFront(const NodeRef& tree) const;

  TextStore& store_;
};

// Joins two neighbouring pieces into `a` when they are one run of memory with the same formats.
bool MergePieces(Piece& a, const Piece& b);
// The one piece for a CR|LF seam; trims both (either may become empty: bytes == 0).
Piece RepairSeam(Piece& left, Piece& right, const char* crLf);
inline bool BrokenSeam(const Piece& a, const Piece& b) {
  return a.end()[-1] == '\r' && *b.data == '\n';
}

// A short row of pieces with its seams in order.
class PieceRow {
 public:
  static constexpr size_t kMost = 2 * TreeConfig::kFanout + 2;
  explicit PieceRow(TextStore& store) : store_(store) {}
  void Add(const Piece& piece);  // at most kMost times
  std::span<const Piece> pieces() const { return {pieces_, count_}; }

 private:
  TextStore& store_;
  Piece pieces_[2 * kMost];
  size_t count_ = 0;
};

// Builds a tree bottom-up from pieces in order, in O(1) amortised for each, repairing seams.
class TreeBuilder {
 public:
  explicit TreeBuilder(TextStore& store) : tree_(store), store_(store) {}
  void Add(const Piece& piece);
  NodeRef Finish();

 private:
  void Put(const Piece& piece);
  void Push(size_t level, NodeRef node);

  Tree tree_;
  TextStore& store_;
  Piece last_;  // not yet put; bytes == 0 = none
  std::vector<Piece> pieces_;
  std::vector<std::vector<NodeRef>> levels_;
};

}  // namespace text
