#include "text/Search.h"

#include "text/Replacer.h"
#include "text/SearchRun.h"

#include <algorithm>

namespace text {

struct Searcher::Impl {
  Needle needle;
  SearchOptions options;
};

Searcher::Searcher(std::u16string_view needle, SearchOptions options)
    : impl_(new Impl{Needle(needle, options.matchCase), options}) {}
Searcher::~Searcher() = default;
Searcher::Searcher(Searcher&&) noexcept = default;
Searcher& Searcher::operator=(Searcher&&) noexcept = default;

std::optional<Range> Searcher::FindNext(const Content& content, Units start, Units limit,
                                        const std::atomic<bool>* cancel) const {
  std::optional<Range> found;
  SearchRun run(impl_->needle, impl_->options, Units(0), cancel);
  run.Walk(content, {start, limit}, [&](int64_t begin, int64_t end) {
    found = {content.PositionOfByte(Bytes(begin)), content.PositionOfByte(Bytes(end))};
    return false;
  });
  return found;
}

std::optional<Searcher::Replaced> Searcher::ReplaceAll(const Content& content, Range range,
                                                       std::string_view replacementBytes, Units gap,
                                                       const std::atomic<bool>* cancel) const {
  Replacer replacer(content, replacementBytes);
  SearchRun run(impl_->needle, impl_->options, gap, cancel);
  const bool done = run.Walk(content, range, [&](int64_t begin, int64_t end) {
    replacer.Replace(begin, end);
    return true;
  });
  if (!done) return std::nullopt;
  const Replacer::Result result = replacer.Finish();
  if (result.count == 0) return Replaced{content, 0, {}};
  // Where a CR and a LF have become neighbours the text is shorter than the sum of its parts: count from the ends.
  const Units oldEnd = result.replaced.end;
  const Units newEnd = result.content.size() - (content.size() - oldEnd);
  const Units begin = std::min(result.replaced.begin, newEnd);
  return Replaced{result.content, result.count, {begin, oldEnd - begin, newEnd - begin}};
}

}  // namespace text
