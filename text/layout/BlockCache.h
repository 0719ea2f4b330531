// The blocks that were laid out last, found by where they begin.
#pragma once

#include "text/layout/LayoutBlock.h"

#include <memory>
#include <vector>

namespace text::layout {

// What a block was made from. A kept block is used only for an equal description, so borders that moved and paragraph
// formats that changed are noticed whatever caused them.
struct BlockKey {
  BlockSpan span;
  ParaFormatId paragraph = ParaFormatId::kDefault;
  bool rightToLeft = false;  // of a segment behind the first: its paragraph's direction
};

class BlockCache {
 public:
  static constexpr size_t kMaxBlocks = 512;
  static constexpr int64_t kMaxUnits = 256 * 1024;

  // The block, or null.
  std::shared_ptr<const LayoutBlock> Find(const BlockKey& key);
  void Put(const BlockKey& key, std::shared_ptr<const LayoutBlock> block);
  // Takes in a change: drops the blocks it touches, moves those behind it.
  void Apply(const Change& change);
  // Drops the blocks that the position lies in or at the edge of.
  void DropAt(Units position);
  void Clear();
  // The least recently used go when there are more; at least so many as are shown at once are kept.
  void SetCapacity(size_t blocks) { capacity_ = std::max(blocks, kMaxBlocks); }
  size_t size() const { return entries_.size(); }

 private:
  struct Entry {
    Units begin, end;
    bool startsParagraph, endsParagraph, rightToLeft;
    ParaFormatId paragraph;
    uint64_t used;
    std::shared_ptr<const LayoutBlock> block;
  };
  std::vector<Entry>::iterator At(Units begin);
  void Shrink();

  std::vector<Entry> entries_;  // ascending by begin, without overlap
  int64_t units_ = 0;           // of all entries
  uint64_t clock_ = 0;
  size_t capacity_ = kMaxBlocks;
};

}  // namespace text::layout
