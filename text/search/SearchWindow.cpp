#include "text/search/SearchWindow.h"

#include "text/TextStore.h"
#include "text/Utf16.h"

#include <algorithm>

namespace text {
const std::vector<int64_t> WindowFeed::kNoBarriers;

void WindowFeed::NoteBarrier(std::string_view span) {
  if (!gathered_.empty() && IsContinuation(span.front()))
    barriers_.push_back(offset_ + static_cast<int64_t>(gathered_.size()));
}

void WindowFeed::DropSearched() {
  const size_t searched = gathered_.size() - behind_;
  const size_t dropped = searched > before_ ? searched - before_ : 0;
  gathered_.erase(0, dropped);
  offset_ += static_cast<int64_t>(dropped);
  from_ = searched - dropped;
  std::erase_if(barriers_, [this](int64_t barrier) { return barrier <= offset_; });
}

const char* Window::BarrierBehind(const char* p, const char* limit) const {
  if (barriers->empty()) return limit;
  const auto next = std::upper_bound(barriers->begin(), barriers->end(), OffsetOf(p));
  return next == barriers->end() ? limit : std::min(limit, begin + (*next - offset));
}

int Window::LengthAt(const char* p) const {
  return Utf8Length(p, BarrierBehind(p, end));
}

bool Window::IsStray(const char* p) const {
  if (LengthAt(p) > 0) return false;
  if (!IsContinuation(*p)) return true;
  for (const char* lead = p; lead > begin && p - lead < 3;) {
    --lead;
    if (!IsContinuation(*lead)) return LengthAt(lead) <= p - lead;
  }
  return true;
}

char32_t Window::Before(const char* border) const {
  if (border == begin) return 0;
  for (int length = 1; length <= 4 && border - length >= begin; ++length)
    if (LengthAt(border - length) == length) return Decode(border - length, border).scalar;
  return 0xDC00 + static_cast<char32_t>(static_cast<unsigned char>(border[-1]));
}

char32_t Window::Behind(const char* border) const {
  return border == end ? 0 : Decode(border, BarrierBehind(border, end)).scalar;
}

}  // namespace text
