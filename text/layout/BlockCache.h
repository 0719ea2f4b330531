// What was laid out last, found by where it begins.
#pragma once

#include "text/Document.h"
#include "text/outline/Segments.h"

#include <QString>

#include <algorithm>
#include <memory>
#include <vector>

namespace text::layout {

// What something was made from. It is used again only for an equal description, so borders that moved, paragraph
// formats and numbers that changed are noticed whatever caused them.
struct BlockKey {
  BlockSpan span;
  double width = 0;
  ParaFormatId paragraph = ParaFormatId::kDefault;
  bool rightToLeft = false;  // of a segment behind the first: its paragraph's direction
  QString label;             // of its list paragraphs
  uint32_t around = 0;       // what its neighbours make of it
};

template <class T>
class BlockCache {
 public:
  static constexpr size_t kMaxBlocks = 512;
  static constexpr int64_t kMaxUnits = 256 * 1024;

  // Null when there is none. `anyLabel`: also one that may show an old number.
  std::shared_ptr<const T> Find(const BlockKey& key, bool anyLabel = false) {
    const auto entry = At(key.span.range.begin);
    if (entry == entries_.end() || entry->begin != key.span.range.begin) return nullptr;
    const bool same = entry->end == key.span.range.end && entry->startsParagraph == key.span.startsParagraph() &&
                      entry->endsParagraph == key.span.endsParagraph() && entry->tableRow == key.span.tableRow &&
                      entry->paragraph == key.paragraph && entry->width == key.width &&
                      entry->rightToLeft == key.rightToLeft && entry->around == key.around &&
                      (anyLabel || entry->label == key.label);
    if (!same) return nullptr;
    entry->used = ++clock_;
    return entry->block;
  }

  void Put(const BlockKey& key, std::shared_ptr<const T> block) {
    const Range range = key.span.range;
    // What is in the way is out of date.
    auto first = At(range.begin);
    if (first != entries_.begin() && std::prev(first)->end > range.begin) --first;
    auto last = first;
    while (last != entries_.end() && (last->begin < range.end || last->begin == range.begin)) {
      units_ -= (last->end - last->begin).value();
      ++last;
    }
    first = entries_.erase(first, last);
    units_ += range.size().value();
    entries_.insert(first,
                    {range.begin, range.end, key.span.startsParagraph(), key.span.endsParagraph(), key.span.tableRow,
                     key.rightToLeft, key.width, key.paragraph, key.label, key.around, ++clock_, std::move(block)});
    Shrink();
  }

  // Takes in a change: drops what it touches, moves what is behind it.
  void Apply(const Change& change) {
    const Units removedEnd = change.position + change.removed;
    const Units shift = change.inserted - change.removed;
    std::erase_if(entries_, [&](Entry& entry) {
      const bool touched = entry.end >= change.position && entry.begin <= removedEnd;
      if (touched) {
        units_ -= (entry.end - entry.begin).value();
      } else if (entry.begin > removedEnd) {
        entry.begin += shift;
        entry.end += shift;
      }
      return touched;
    });
  }

  // Drops what the position lies in or at the edge of.
  void DropAt(Units position) { Apply({position, Units(0), Units(0), true}); }
  void Clear() {
    entries_.clear();
    units_ = 0;
  }
  // The least recently used go when there are more; at least so many as are shown at once are kept.
  void SetCapacity(size_t blocks) { capacity_ = std::max(blocks, kMaxBlocks); }
  size_t size() const { return entries_.size(); }

 private:
  struct Entry {
    Units begin, end;
    bool startsParagraph, endsParagraph, tableRow, rightToLeft;
    double width;
    ParaFormatId paragraph;
    QString label;
    uint32_t around;
    uint64_t used;
    std::shared_ptr<const T> block;
  };

  typename std::vector<Entry>::iterator At(Units begin) {
    return std::lower_bound(entries_.begin(), entries_.end(), begin,
                            [](const Entry& entry, Units position) { return entry.begin < position; });
  }
  void Shrink() {
    while (entries_.size() > capacity_ || (units_ > kMaxUnits && entries_.size() > 1)) {
      const auto oldest = std::min_element(entries_.begin(), entries_.end(),
                                           [](const Entry& a, const Entry& b) { return a.used < b.used; });
      units_ -= (oldest->end - oldest->begin).value();
      entries_.erase(oldest);
    }
  }

  std::vector<Entry> entries_;  // ascending by begin, without overlap
  int64_t units_ = 0;           // of all entries
  uint64_t clock_ = 0;
  size_t capacity_ = kMaxBlocks;
};

}  // namespace text::layout
