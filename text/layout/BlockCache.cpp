#include "text/layout/BlockCache.h"

#include <algorithm>

namespace text::layout {

std::vector<BlockCache::Entry>::iterator BlockCache::At(Units begin) {
  return std::lower_bound(entries_.begin(), entries_.end(), begin,
                          [](const Entry& entry, Units position) { return entry.begin < position; });
}

std::shared_ptr<const LayoutBlock> BlockCache::Find(const BlockKey& key) {
  const auto entry = At(key.span.range.begin);
  if (entry == entries_.end() || entry->begin != key.span.range.begin) return nullptr;
  const bool same = entry->end == key.span.range.end && entry->startsParagraph == key.span.startsParagraph() &&
                    entry->endsParagraph == key.span.endsParagraph() && entry->paragraph == key.paragraph &&
                    entry->rightToLeft == key.rightToLeft;
  if (!same) return nullptr;
  entry->used = ++clock_;
  return entry->block;
}

void BlockCache::Put(const BlockKey& key, std::shared_ptr<const LayoutBlock> block) {
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
  entries_.insert(first, {range.begin, range.end, key.span.startsParagraph(), key.span.endsParagraph(), key.rightToLeft,
                          key.paragraph, ++clock_, std::move(block)});
  Shrink();
}

void BlockCache::Shrink() {
  while (entries_.size() > capacity_ || (units_ > kMaxUnits && entries_.size() > 1)) {
    const auto oldest = std::min_element(entries_.begin(), entries_.end(),
                                         [](const Entry& a, const Entry& b) { return a.used < b.used; });
    units_ -= (oldest->end - oldest->begin).value();
    entries_.erase(oldest);
  }
}

void BlockCache::Apply(const Change& change) {
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

void BlockCache::DropAt(Units position) {
  Apply({position, Units(0), Units(0), true});
}

void BlockCache::Clear() {
  entries_.clear();
  units_ = 0;
}

}  // namespace text::layout
