// Presents a content to a search as windows: stretches of contiguous memory with enough of the text around them.
// Internal to text/.
#pragma once

#include "text/Content.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace text {

// All places of [from, until) are to be looked at; the bytes of [begin, end) may be read. Windows come in the order of
// the text, and each place is in exactly one.
struct Window {
  const char* begin;
  const char* from;
  const char* until;
  const char* end;
  int64_t offset;  // of `begin` in the content, in bytes
  // Offsets in the content where bytes meet that do not make up a character together: a stray byte that begins a span.
  const std::vector<int64_t>* barriers;

  int64_t OffsetOf(const char* p) const { return offset + (p - begin); }
  // The first place at or behind p, at most `limit`, that a character before it does not reach over.
  const char* BarrierBehind(const char* p, const char* limit) const;
  // The length of the character at p < end; 0 for a stray byte.
  int LengthAt(const char* p) const;
  bool IsStray(const char* p) const;
  // The code points directly before and behind a border, 0 where there is none. A stray byte is 0xDC00 + byte.
  char32_t Before(const char* border) const;
  char32_t Behind(const char* border) const;
};

class WindowFeed {
 public:
  // A window holds at least `before` bytes in front of its places and `behind` bytes after them, unless the text begins
  // or ends there. The text begins at the byte `offset` of the content.
  WindowFeed(size_t before, size_t behind, int64_t offset)
      : before_(before), behind_(behind), offset_(offset), inPlace_(std::max(kSmallest, 4 * (before + behind))) {}

  // Takes the text's next stretch; calls visit(window) until it returns false. Small stretches are gathered.
  template <class Visit>
  bool Take(std::string_view span, const Visit& visit) {
    NoteBarrier(span);
    if (span.size() < inPlace_) {
      gathered_.append(span);
      if (gathered_.size() < enough_) return true;
      enough_ = std::min(kGathered, 2 * enough_) + before_ + behind_;
      const bool on = visit(Gathered(gathered_.size() - behind_));
      DropSearched();
      return on;
    }
    gathered_.append(span.substr(0, before_ + behind_));
    if (!visit(Gathered(gathered_.size() - behind_))) return false;
    const int64_t offset = offset_ + static_cast<int64_t>(gathered_.size() - before_ - behind_);
    const char* const end = span.data() + span.size();
    if (!visit(Window{span.data(), span.data() + before_, end - behind_, end, offset, &kNoBarriers})) return false;
    gathered_.assign(span.substr(span.size() - before_ - behind_));
    from_ = before_;
    offset_ = offset + static_cast<int64_t>(span.size() - gathered_.size());
    barriers_.clear();
    return true;
  }
  // What is left at the end of the text.
  template <class Visit>
  bool Finish(const Visit& visit) {
    return gathered_.empty() || visit(Gathered(gathered_.size()));
  }

 private:
#ifdef QUILLMARK_TINY_TREE
  static constexpr size_t kSmallest = 16;
  static constexpr size_t kGathered = 64;
#else
  static constexpr size_t kSmallest = 4096;
  static constexpr size_t kGathered = 65536;
#endif
  static const std::vector<int64_t> kNoBarriers;

  void NoteBarrier(std::string_view span);
  void DropSearched();
  Window Gathered(size_t until) const {
    const char* const data = gathered_.data();
    return {data, data + from_, data + std::max(from_, until), data + gathered_.size(), offset_, &barriers_};
  }

  const size_t before_, behind_;
  int64_t offset_;   // of gathered_'s beginning
  size_t from_ = 0;  // in gathered_: the first place not looked at
  size_t inPlace_;   // stretches from this size on are not copied
  size_t enough_ = kSmallest + before_ + behind_;
  std::string gathered_;
  std::vector<int64_t> barriers_;
};

}  // namespace text
