// From coarse to fine: what both ends have in common, paragraphs that occur once on both sides, then words that do, and
// around each of these whatever else is equal there.
#include "text/ContentDiff.h"

#include "text/TextStore.h"
#include "text/Utf16.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace text {

namespace {

// Bytes of one format, at their place in the whole content.
struct FormatRun {
  const char* data = nullptr;
  size_t begin = 0, end = 0;
  CharFormatId chars = CharFormatId::kDefault;
  ParaFormatId para = ParaFormatId::kDefault;  // of its breaks
  bool breaks = false;
  int64_t units = 0;  // before it

  const char* at(size_t offset) const { return data + (offset - begin); }
};

std::vector<FormatRun> RunsOf(const Content& content) {
  std::vector<FormatRun> runs;
  size_t at = 0;
  int64_t units = 0;
  content.ForEachPiece(content.all(), [&](const PieceView& piece) {
    const size_t end = at + piece.bytes.size();
    const bool breaks = piece.sums.breaks.value() > 0;
    runs.push_back({piece.bytes.data(), at, end, piece.charFormat, piece.paraFormat, breaks, units});
    at = end;
    units += piece.sums.units.value();
    return true;
  });
  return runs;
}

// True when the offset may lie inside a character or a CR LF. Stray bytes make it true now and then without need.
bool MayCut(const std::vector<FormatRun>& runs, size_t offset) {
  if (runs.empty() || offset == 0 || offset >= runs.back().end) return false;
  const auto run =
      std::upper_bound(runs.begin(), runs.end(), offset, [](size_t at, const FormatRun& r) { return at < r.end; });
  const char* at = run->at(offset);
  return IsContinuation(*at) || (*at == '\n' && offset > run->begin && at[-1] == '\r');
}

size_t CommonPrefix(std::string_view a, std::string_view b) {
  const size_t most = std::min(a.size(), b.size());
  size_t i = 0;
  for (uint64_t x, y; i + 8 <= most; i += 8) {
    std::memcpy(&x, a.data() + i, 8);
    std::memcpy(&y, b.data() + i, 8);
    if (x != y) return i + static_cast<size_t>(std::countr_zero(x ^ y)) / 8;
  }
  while (i < most && a[i] == b[i]) ++i;
  return i;
}

size_t CommonSuffix(std::string_view a, std::string_view b) {
  const size_t most = std::min(a.size(), b.size());
  size_t i = 0;
  for (uint64_t x, y; i + 8 <= most; i += 8) {
    std::memcpy(&x, a.data() + a.size() - i - 8, 8);
    std::memcpy(&y, b.data() + b.size() - i - 8, 8);
    if (x != y) return i + static_cast<size_t>(std::countl_zero(x ^ y)) / 8;
  }
  while (i < most && a[a.size() - 1 - i] == b[b.size() - 1 - i]) ++i;
  return i;
}

// How much of two runs' parts that begin, or end, at the same place is equal in text and formats.
enum class From : uint8_t { kBegin, kEnd };
size_t CommonPart(From from, const FormatRun& a, std::string_view aPart, const FormatRun& b, std::string_view bPart) {
  if (a.chars != b.chars) return 0;
  const bool begin = from == From::kBegin;
  size_t common = std::min(aPart.size(), bPart.size());
  aPart = aPart.substr(begin ? 0 : aPart.size() - common, common);
  bPart = bPart.substr(begin ? 0 : bPart.size() - common, common);
  if (aPart.data() != bPart.data()) common = begin ? CommonPrefix(aPart, bPart) : CommonSuffix(aPart, bPart);
  if (a.para == b.para || !(a.breaks || b.breaks)) return common;
  // Only up to the first break.
  const std::string_view part = aPart.substr(begin ? 0 : aPart.size() - common, common);
  if (begin) return FindBreak(part);
  const size_t last = part.find_last_of("\r\n");
  return last == std::string_view::npos ? common : common - last - 1;
}

// The bytes at both beginnings that are equal in text and formats.
size_t CommonBeginning(const std::vector<FormatRun>& a, const std::vector<FormatRun>& b) {
  size_t at = 0;
  for (size_t i = 0, k = 0; i < a.size() && k < b.size();) {
    const std::string_view aPart(a[i].at(at), a[i].end - at);
    const std::string_view bPart(b[k].at(at), b[k].end - at);
    const size_t common = CommonPart(From::kBegin, a[i], aPart, b[k], bPart);
    at += common;
    if (common < std::min(aPart.size(), bPart.size())) break;
    i += a[i].end == at;
    k += b[k].end == at;
  }
  while (MayCut(a, at) || MayCut(b, at)) --at;
  return at;
}

// The same at both ends, at most `most` bytes.
size_t CommonEnding(const std::vector<FormatRun>& a, const std::vector<FormatRun>& b, size_t most) {
  size_t size = 0;
  for (size_t i = a.size(), k = b.size(); i > 0 && k > 0 && size < most;) {
    const FormatRun &x = a[i - 1], &y = b[k - 1];
    const std::string_view aPart(x.data, a.back().end - size - x.begin);
    const std::string_view bPart(y.data, b.back().end - size - y.begin);
    const size_t common = CommonPart(From::kEnd, x, aPart, y, bPart);
    size += common;
    if (common < std::min(aPart.size(), bPart.size())) break;
    i -= common == aPart.size();
    k -= common == bPart.size();
  }
  size = std::min(size, most);
  while (size > 0 && (MayCut(a, a.back().end - size) || MayCut(b, b.back().end - size))) --size;
  return size;
}

// The end of the last break that ends at or before the offset, which does not cut one.
size_t LastBreak(const std::vector<FormatRun>& runs, size_t offset) {
  auto run =
      std::lower_bound(runs.begin(), runs.end(), offset, [](const FormatRun& r, size_t at) { return r.begin < at; });
  while (run != runs.begin()) {
    --run;
    if (!run->breaks) continue;
    const std::string_view bytes(run->data, std::min(offset, run->end) - run->begin);
    if (const size_t at = bytes.find_last_of("\r\n"); at != std::string_view::npos) return run->begin + at + 1;
  }
  return 0;
}

// The end of the first break that begins at or behind the offset, or of everything.
size_t NextBreak(const std::vector<FormatRun>& runs, size_t offset) {
  auto run =
      std::upper_bound(runs.begin(), runs.end(), offset, [](size_t at, const FormatRun& r) { return at < r.end; });
  for (; run != runs.end(); ++run) {
    if (!run->breaks) continue;
    const size_t from = std::max(offset, run->begin);
    const std::string_view bytes(run->at(from), run->end - from);
    const size_t at = FindBreak(bytes);
    if (at < bytes.size()) return from + at + (bytes.substr(at).starts_with("\r\n") ? 2 : 1);
  }
  return runs.empty() ? 0 : runs.back().end;
}

// What the CR LF of a paragraph in a table has for its LF, so that it is no other break's equal; 0 for other
// paragraphs.
constexpr char kInCell = 3;
char TableByte(const ParaFormat& format) {
  if (format.row == RowId::kNone) return 0;
  return format.rowMark == RowMark::kNone ? kInCell : static_cast<char>(format.rowMark);
}

std::string BytesOf(const FormatTable& formats, const std::vector<FormatRun>& runs, size_t begin, size_t end) {
  std::string bytes;
  bytes.reserve(end - begin);
  for (const FormatRun& run : runs) {
    if (run.begin >= end || run.end <= begin) continue;
    const size_t from = std::max(begin, run.begin), at = bytes.size();
    bytes.append(run.at(from), std::min(end, run.end) - from);
    const char mark = run.breaks ? TableByte(formats[run.para]) : 0;
    if (mark == 0) continue;
    for (size_t cr = bytes.find("\r\n", at); cr != std::string::npos; cr = bytes.find("\r\n", cr)) bytes[cr + 1] = mark;
  }
  return bytes;
}

// The size of the break at the beginning of such bytes.
size_t BreakSize(std::string_view bytes) {
  return bytes.size() > 1 && bytes[0] == '\r' && (bytes[1] == '\n' || (bytes[1] > 0 && bytes[1] <= kInCell)) ? 2 : 1;
}

uint64_t Mix(uint64_t hash, uint64_t value) {
  hash = (hash ^ value) * 0x9E3779B97F4A7C15u;
  return hash ^ hash >> 29;
}

uint64_t HashOf(std::string_view bytes) {
  uint64_t hash = bytes.size(), word = 0;
  for (; bytes.size() >= 8; bytes.remove_prefix(8)) {
    std::memcpy(&word, bytes.data(), 8);
    hash = Mix(hash, word);
  }
  word = 0;
  std::memcpy(&word, bytes.data(), bytes.size());
  return Mix(hash, word);
}

// A paragraph with its break, or a word; begin is an offset into the bytes compared.
struct Item {
  size_t begin = 0;
  uint64_t text = 0;     // hash
  uint64_t formats = 0;  // hash of the text and its formats
};

struct Pair {
  size_t before, after;
};

// Both sides of a stretch under comparison, as indices of items or offsets of bytes.
struct Gap {
  size_t aBegin, aEnd, bBegin, bEnd;
  bool empty() const { return aBegin == aEnd || bBegin == bEnd; }
};

// The longest row of pairs that ascends on both sides, of pairs that ascend in `before`.
std::vector<Pair> LongestAscending(const std::vector<Pair>& pairs) {
  std::vector<size_t> ends, previous(pairs.size());  // ends[k]: of the row of k + 1 pairs that ends lowest
  for (size_t i = 0; i < pairs.size(); ++i) {
    const auto place = std::lower_bound(ends.begin(), ends.end(), pairs[i].after,
                                        [&](size_t end, size_t after) { return pairs[end].after < after; });
    previous[i] = place == ends.begin() ? i : *(place - 1);
    if (place == ends.end()) {
      ends.push_back(i);
    } else {
      *place = i;
    }
  }
  std::vector<Pair> row(ends.size());
  for (size_t k = ends.size(), at = ends.empty() ? 0 : ends.back(); k > 0; at = previous[at]) row[--k] = pairs[at];
  return row;
}

// Finds equal items between two rows of them.
class Aligner {
 public:
  using Key = uint64_t Item::*;
  Aligner(const std::vector<Item>& before, const std::vector<Item>& after, const std::function<bool()>& goOn)
      : a_(before), b_(after), goOn_(goOn) {}

  // Calls equal(pair) for pairs of items with the same key and unequal(gap) for what is left, all of it in order.
  template <class Equal, class Unequal>
  void Run(Gap gap, Key key, const Equal& equal, const Unequal& unequal) {
    key_ = key;
    std::vector<Task> tasks{{gap, 0}};
    while (!tasks.empty() && (!goOn_ || goOn_())) {
      const Task task = tasks.back();
      tasks.pop_back();
      if (task.pairs > 0) {
        for (size_t i = 0; i < task.pairs; ++i) equal(Pair{task.gap.aBegin + i, task.gap.bBegin + i});
        continue;
      }
      Divide(task, tasks, unequal);
    }
  }

 private:
  // A gap to be divided, or, with pairs > 0, so many items that are equal.
  struct Task {
    Gap gap;
    size_t pairs = 0;
    int depth = 0;
  };
  static constexpr int kMaxDepth = 12;

  bool Same(size_t i, size_t k) const { return a_[i].*key_ == b_[k].*key_; }

  template <class Unequal>
  void Divide(const Task& task, std::vector<Task>& tasks, const Unequal& unequal) {
    Gap gap = task.gap;
    const Gap whole = gap;
    while (!gap.empty() && Same(gap.aBegin, gap.bBegin)) ++gap.aBegin, ++gap.bBegin;
    while (!gap.empty() && Same(gap.aEnd - 1, gap.bEnd - 1)) --gap.aEnd, --gap.bEnd;
    const size_t head = gap.aBegin - whole.aBegin, tail = whole.aEnd - gap.aEnd;
    const std::vector<Pair> anchors =
        gap.empty() || task.depth == kMaxDepth ? std::vector<Pair>() : LongestAscending(Unique(gap));
    if (head == 0 && tail == 0 && anchors.empty()) return unequal(gap);
    // In reverse, since the last one pushed is done first.
    if (tail > 0) tasks.push_back({{gap.aEnd, whole.aEnd, gap.bEnd, whole.bEnd}, tail});
    Gap rest{gap.aBegin, gap.aEnd, gap.bBegin, gap.bEnd};
    for (size_t i = anchors.size(); i > 0; --i) {
      const Pair anchor = anchors[i - 1];
      tasks.push_back({{anchor.before + 1, rest.aEnd, anchor.after + 1, rest.bEnd}, 0, task.depth + 1});
      tasks.push_back({{anchor.before, anchor.before + 1, anchor.after, anchor.after + 1}, 1});
      rest.aEnd = anchor.before, rest.bEnd = anchor.after;
    }
    tasks.push_back({rest, 0, anchors.empty() ? kMaxDepth : task.depth + 1});
    if (head > 0) tasks.push_back({whole, head});
  }

  // Pairs of items whose key occurs once on each side.
  std::vector<Pair> Unique(const Gap& gap) {
    struct Entry {
      uint64_t key;
      size_t index;
      bool after;
      bool operator<(const Entry& other) const { return key < other.key; }
    };
    std::vector<Entry> entries;
    entries.reserve(gap.aEnd - gap.aBegin + gap.bEnd - gap.bBegin);
    for (size_t i = gap.aBegin; i < gap.aEnd; ++i) entries.push_back({a_[i].*key_, i, false});
    for (size_t i = gap.bBegin; i < gap.bEnd; ++i) entries.push_back({b_[i].*key_, i, true});
    std::sort(entries.begin(), entries.end());
    std::vector<Pair> pairs;
    for (size_t i = 0, next = 0; i < entries.size(); i = next) {
      while (next < entries.size() && entries[next].key == entries[i].key) ++next;
      if (next - i != 2 || entries[i].after == entries[i + 1].after) continue;
      const Entry &x = entries[i], &y = entries[i + 1];
      pairs.push_back(x.after ? Pair{y.index, x.index} : Pair{x.index, y.index});
    }
    std::sort(pairs.begin(), pairs.end(), [](const Pair& x, const Pair& y) { return x.before < y.before; });
    return pairs;
  }

  const std::vector<Item>& a_;
  const std::vector<Item>& b_;
  const std::function<bool()>& goOn_;
  Key key_ = &Item::text;
};

// ASCII letters and digits and two-byte characters make words; everything else stands alone.
bool InWord(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= 0x80 && byte < 0xE0);
}

std::vector<Item> WordsOf(std::string_view bytes) {
  std::vector<Item> words;
  for (size_t at = 0; at < bytes.size();) {
    size_t end = at + 1;
    if (InWord(bytes[at])) {
      while (end < bytes.size() && InWord(bytes[end])) ++end;
    } else {
      while (end < bytes.size() && IsContinuation(bytes[end])) ++end;
      if (BreakSize(bytes.substr(at)) == 2) ++end;
    }
    words.push_back({at, HashOf(bytes.substr(at, end - at)), 0});
    at = end;
  }
  words.push_back({bytes.size(), 0, 0});
  return words;
}

class Comparison {
 public:
  Comparison(const Content& before, const Content& after, const std::function<bool()>& goOn)
      : formats_(before.formats()), aRuns_(RunsOf(before)), bRuns_(RunsOf(after)), goOn_(goOn) {}

  std::vector<Match> Run() {
    const size_t aSize = aRuns_.empty() ? 0 : aRuns_.back().end, bSize = bRuns_.empty() ? 0 : bRuns_.back().end;
    base_ = CommonBeginning(aRuns_, bRuns_);
    size_t ending = CommonEnding(aRuns_, bRuns_, std::min(aSize, bSize) - base_);
    if (base_ + ending < std::min(aSize, bSize)) {  // paragraphs are compared whole
      base_ = LastBreak(aRuns_, base_);
      ending = aSize - NextBreak(aRuns_, aSize - ending);
    }
    Put(0, 0, base_);
    a_ = BytesOf(formats_, aRuns_, base_, aSize - ending);
    b_ = BytesOf(formats_, bRuns_, base_, bSize - ending);
    if (!a_.empty() && !b_.empty()) Paragraphs();
    Put(aSize - ending, bSize - ending, ending);
    return Finish();
  }

 private:
  struct Stretch {  // of equal bytes, at offsets in the whole contents
    size_t before, after, size;
  };

  void Put(size_t before, size_t after, size_t size) {
    if (size == 0) return;
    if (!stretches_.empty()) {
      Stretch& last = stretches_.back();
      if (last.before + last.size == before && last.after + last.size == after) {
        last.size += size;
        return;
      }
    }
    stretches_.push_back({before, after, size});
  }
  // Offsets in the bytes compared. Equal hashes may lie.
  void PutIfEqual(const Gap& gap) {
    const std::string_view a = std::string_view(a_).substr(gap.aBegin, gap.aEnd - gap.aBegin);
    if (a == std::string_view(b_).substr(gap.bBegin, gap.bEnd - gap.bBegin))
      Put(base_ + gap.aBegin, base_ + gap.bBegin, a.size());
  }

  // The paragraphs of the bytes compared and, last, their end.
  static std::vector<Item> ParagraphsOf(const std::string& bytes, size_t base, const std::vector<FormatRun>& runs) {
    std::vector<Item> items;
    auto run =
        std::upper_bound(runs.begin(), runs.end(), base, [](size_t at, const FormatRun& r) { return at < r.end; });
    for (size_t at = 0; at < bytes.size();) {
      size_t end = FindBreak(bytes, at);
      const size_t textEnd = end;
      if (end < bytes.size()) end += BreakSize(std::string_view(bytes).substr(end));
      Item item{at, HashOf(std::string_view(bytes).substr(at, end - at)), 0};
      uint64_t formats = item.text;
      size_t from = at;
      while (true) {
        const size_t to = std::min(end, run->end - base);
        formats = Mix(Mix(formats, static_cast<uint64_t>(run->chars)), to - from);
        from = to;
        if (from == end) break;
        ++run;
      }
      if (textEnd < end) formats = Mix(formats, static_cast<uint64_t>(run->para));
      if (run->end - base == end) ++run;
      item.formats = formats;
      items.push_back(item);
      at = end;
    }
    items.push_back({bytes.size(), 0, 0});
    return items;
  }

  void Paragraphs() {
    const std::vector<Item> a = ParagraphsOf(a_, base_, aRuns_), b = ParagraphsOf(b_, base_, bRuns_);
    Aligner exact(a, b, goOn_), byText(a, b, goOn_);
    const auto equal = [&](const Pair& pair) { PutIfEqual(BytesOfItems(a, b, pair)); };
    const auto characters = [&](const Gap& gap) { EditedParagraphs(a, b, gap); };
    exact.Run({0, a.size() - 1, 0, b.size() - 1}, &Item::formats, equal,
              [&](const Gap& gap) { byText.Run(gap, &Item::text, equal, characters); });
  }

  static Gap BytesOfItems(const std::vector<Item>& a, const std::vector<Item>& b, const Pair& pair) {
    return {a[pair.before].begin, a[pair.before + 1].begin, b[pair.after].begin, b[pair.after + 1].begin};
  }

  // As many paragraphs on both sides are most likely the same ones, edited.
  void EditedParagraphs(const std::vector<Item>& a, const std::vector<Item>& b, const Gap& gap) {
    if (gap.empty()) return;
    const size_t count = gap.aEnd - gap.aBegin;
    if (count != gap.bEnd - gap.bBegin)
      return Characters({a[gap.aBegin].begin, a[gap.aEnd].begin, b[gap.bBegin].begin, b[gap.bEnd].begin});
    for (size_t i = 0; i < count; ++i) Characters(BytesOfItems(a, b, {gap.aBegin + i, gap.bBegin + i}));
  }

  // What both ends have in common, then words.
  void Characters(Gap gap) {
    const size_t head = TrimHead(gap), tail = TrimTail(gap);
    Put(base_ + gap.aBegin - head, base_ + gap.bBegin - head, head);
    if (!gap.empty()) Words(gap);
    Put(base_ + gap.aEnd, base_ + gap.bEnd, tail);
  }

  void Words(const Gap& gap) {
    const std::vector<Item> a = WordsOf(std::string_view(a_).substr(gap.aBegin, gap.aEnd - gap.aBegin));
    const std::vector<Item> b = WordsOf(std::string_view(b_).substr(gap.bBegin, gap.bEnd - gap.bBegin));
    const auto bytes = [&](const Gap& items) {
      return Gap{gap.aBegin + a[items.aBegin].begin, gap.aBegin + a[items.aEnd].begin,
                 gap.bBegin + b[items.bBegin].begin, gap.bBegin + b[items.bEnd].begin};
    };
    Aligner(a, b, goOn_)
        .Run(
            {0, a.size() - 1, 0, b.size() - 1}, &Item::text,
            [&](const Pair& pair) {
              PutIfEqual(bytes({pair.before, pair.before + 1, pair.after, pair.after + 1}));
            },
            [&](const Gap& items) {
              Gap rest = bytes(items);
              const size_t head = TrimHead(rest), tail = TrimTail(rest);
              Put(base_ + rest.aBegin - head, base_ + rest.bBegin - head, head);
              Put(base_ + rest.aEnd, base_ + rest.bEnd, tail);
            });
  }

  // Takes what both begin with off the gap: whole characters, a CR LF not cut.
  size_t TrimHead(Gap& gap) const {
    const std::string_view a = std::string_view(a_).substr(gap.aBegin, gap.aEnd - gap.aBegin);
    const std::string_view b = std::string_view(b_).substr(gap.bBegin, gap.bEnd - gap.bBegin);
    size_t head = CommonPrefix(a, b);
    while (head > 0 && (InCharacter(a_, gap.aBegin + head) || InCharacter(b_, gap.bBegin + head))) --head;
    gap.aBegin += head, gap.bBegin += head;
    return head;
  }
  size_t TrimTail(Gap& gap) const {
    const std::string_view a = std::string_view(a_).substr(gap.aBegin, gap.aEnd - gap.aBegin);
    const std::string_view b = std::string_view(b_).substr(gap.bBegin, gap.bEnd - gap.bBegin);
    size_t tail = CommonSuffix(a, b);
    while (tail > 0 && (InCharacter(a_, gap.aEnd - tail) || InCharacter(b_, gap.bEnd - tail))) --tail;
    gap.aEnd -= tail, gap.bEnd -= tail;
    return tail;
  }
  static bool InCharacter(const std::string& bytes, size_t at) {
    if (at == 0 || at >= bytes.size()) return false;
    return IsContinuation(bytes[at]) || BreakSize(std::string_view(bytes).substr(at - 1)) == 2;
  }

  std::vector<Match> Finish() const;

  const FormatTable& formats_;
  std::vector<FormatRun> aRuns_, bRuns_;
  const std::function<bool()>& goOn_;
  size_t base_ = 0;    // where the bytes compared begin in both
  std::string a_, b_;  // the bytes compared
  std::vector<Stretch> stretches_;
};

// Cuts the stretches where formats begin or cease to be equal, and counts their units.
class Matches {
 public:
  Matches(const std::vector<FormatRun>& before, const std::vector<FormatRun>& after) : aRuns_(before), bRuns_(after) {}

  void Add(size_t before, size_t after, size_t size) {
    for (const size_t end = before + size; before < end;) {
      while (aRuns_[i_].end <= before) ++i_;
      while (bRuns_[k_].end <= after) ++k_;
      const size_t part = std::min({end - before, aRuns_[i_].end - before, bRuns_[k_].end - after});
      // Characters are cut only where stray bytes on one side are a whole character on the other.
      const bool cut = std::memcmp(aRuns_[i_].at(before), bRuns_[k_].at(after), part) != 0 ||
                       IsContinuation(*aRuns_[i_].at(before)) ||
                       (before + part < end && (MayCut(aRuns_, before + part) || MayCut(bRuns_, after + part)));
      if (!cut) Split({before, after, part, {}});
      before += part, after += part;
    }
  }
  std::vector<Match> Take() { return std::move(matches_); }

 private:
  // What both formats of a stretch are where they differ.
  struct Formats {
    CharFormatId aChars{}, bChars{};
    ParaFormatId aPara{}, bPara{};
    bool same = true, isBreak = false;
    bool operator==(const Formats&) const = default;
  };
  struct Part {
    size_t before, after, size;
    Formats formats;
  };

  // Where formats differ, every break and the text between two make a match.
  void Split(Part part) {
    const FormatRun &a = aRuns_[i_], &b = bRuns_[k_];
    const bool sameChars = a.chars == b.chars;
    if (sameChars && (a.para == b.para || !(a.breaks || b.breaks))) return Put(part);
    const std::string_view bytes(a.at(part.before), part.size);
    const Formats text = sameChars ? Formats{} : Formats{a.chars, b.chars, {}, {}, false, false};
    const Formats aBreak =
        sameChars && a.para == b.para ? Formats{} : Formats{a.chars, b.chars, a.para, b.para, false, true};
    for (size_t at = 0; at < bytes.size();) {
      size_t end = FindBreak(bytes, at);
      const bool isBreak = end == at;
      if (isBreak) end += bytes.substr(at).starts_with("\r\n") ? 2 : 1;
      Put({part.before + at, part.after + at, end - at, isBreak ? aBreak : text});
      at = end;
    }
  }

  void Put(const Part& part) {
    const Range before = UnitsOf(aRuns_[i_], part.before, part.size),
                after = UnitsOf(bRuns_[k_], part.after, part.size);
    if (before.size() != after.size()) return;  // stray bytes again
    if (!matches_.empty() && last_ == part.formats && matches_.back().before.end == before.begin &&
        matches_.back().after.end == after.begin) {
      matches_.back().before.end = before.end;
      matches_.back().after.end = after.end;
      return;
    }
    last_ = part.formats;
    matches_.push_back({before, after, part.formats.same});
  }

  static Range UnitsOf(const FormatRun& run, size_t offset, size_t size) {
    const Block* block = Block::Of(run.data);
    const int64_t begin = run.units + block->SumsOf(run.data, run.at(offset)).units.value();
    return {Units(begin), Units(begin) + block->SumsOf(run.at(offset), run.at(offset) + size).units};
  }

  const std::vector<FormatRun>&aRuns_, &bRuns_;
  size_t i_ = 0, k_ = 0;
  std::vector<Match> matches_;
  Formats last_;
};

std::vector<Match> Comparison::Finish() const {
  Matches matches(aRuns_, bRuns_);
  for (const Stretch& stretch : stretches_) matches.Add(stretch.before, stretch.after, stretch.size);
  return matches.Take();
}

}  // namespace

std::vector<Match> Compare(const Content& before, const Content& after, const std::function<bool()>& goOn) {
  return Comparison(before, after, goOn).Run();
}

}  // namespace text
