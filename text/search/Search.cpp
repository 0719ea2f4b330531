#include "text/search/Search.h"

#include "text/search/Replacer.h"
#include "text/search/SearchRun.h"

#include <algorithm>

namespace text {
namespace {

// Whether a CR and a LF would become neighbours.
bool Joins(const FoundBytes& match, std::string_view replacement) {
  const char first = replacement.empty() ? match.after : replacement.front();
  const char last = replacement.empty() ? match.before : replacement.back();
  return (match.before == '\r' && first == '\n') || (last == '\r' && match.after == '\n');
}

}  // namespace

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
                                        const SearchProgress& progress) const {
  std::optional<Range> found;
  SearchRun run(impl_->needle, impl_->options, SurfaceUnits(0), progress);
  run.Walk(content, {start, limit}, [&](const FoundBytes& match) {
    found = {content.PositionOfByte(Bytes(match.begin)), content.PositionOfByte(Bytes(match.end))};
    return false;
  });
  return found;
}

std::optional<Searcher::Replaced> Searcher::ReplaceAll(const Content& content, Range range,
                                                       std::string_view replacementBytes, const ReplaceRules& rules,
                                                       const SearchProgress& progress) const {
  Replacer replacer(content, replacementBytes);
  SearchRun run(impl_->needle, impl_->options, rules.gap, progress);
  const bool anyProtected = (content.Summarize(content.all()).someSet & kProtected) != 0;
  const bool anyTable = content.formats().hasRows();
  std::optional<Range> stopped;
  const bool done = run.Walk(content, range, [&](const FoundBytes& match) {
    const bool joins = rules.stopsAtHard && Joins(match, replacementBytes);
    if (rules.stopsAtHard && (joins || anyProtected || anyTable)) {
      const Range units{content.PositionOfByte(Bytes(match.begin)), content.PositionOfByte(Bytes(match.end))};
      const bool refused = anyProtected && content.Summarize(units).someSet & kProtected;
      const bool overCells = anyTable && content.ParagraphAt(units.begin) != content.ParagraphAt(units.end);
      if (joins || refused || overCells) stopped = units;
      if (stopped) return false;
    }
    replacer.Replace(match.begin, match.end);
    return true;
  });
  if (!done) return std::nullopt;
  const Replacer::Result result = replacer.Finish();
  if (result.count == 0) return Replaced{content, 0, {}, {}, stopped};
  // Where a CR and a LF have become neighbours the text is shorter than the sum of its parts: count from the ends.
  const Units oldEnd = result.replaced.end;
  const Units newEnd = result.content.size() - (content.size() - oldEnd);
  const Units begin = std::min(result.replaced.begin, newEnd);
  return Replaced{result.content, result.count, {begin, oldEnd - begin, newEnd - begin}, result.first, stopped};
}

}  // namespace text
