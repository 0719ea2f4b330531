#include "text/TextStore.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cstring>
#include <new>
#include <sys/mman.h>
#if defined(__SSE2__) && !defined(QUILLMARK_TINY_TREE)
#include <emmintrin.h>
#define QUILLMARK_SIMD_SCAN 1
#endif

namespace text {
namespace {

constexpr bool IsAscii(char c) {
  return static_cast<signed char>(c) >= 0;
}

// One character at p: adds it to the counts and returns its length. A LF behind a CR has been counted with the CR.
inline int CountCharacter(const char* p, const char* end, ScanCounts& counts) {
  if (IsAscii(*p)) {
    if (*p == '\r') {
      ++counts.units, ++counts.breaks, ++counts.crs;
    } else if (*p == '\n') {
      if (p[-1] == '\r') {
        ++counts.crLfs;
      } else {
        ++counts.units, ++counts.breaks;
      }
    } else {
      ++counts.units;
    }
    return 1;
  }
  const int length = Utf8Length(p, end);
  if (length == 0) {
    ++counts.units, ++counts.strays;
    return 1;
  }
  counts.units += length == 4 ? 2 : 1;
  ++counts.multibyte;
  return length;
}

#ifdef QUILLMARK_SIMD_SCAN
int64_t SumOfBytes(__m128i v) {
  const __m128i sums = _mm_sad_epu8(v, _mm_setzero_si128());
  return _mm_cvtsi128_si64(sums) + _mm_cvtsi128_si64(_mm_srli_si128(sums, 8));
}

// A mask of the first `count` bytes, count <= 16.
__m128i FirstBytes(unsigned count) {
  alignas(16) static constexpr auto kBytes = [] {
    std::array<unsigned char, 32> bytes{};
    for (int i = 0; i < 16; ++i) bytes[static_cast<size_t>(i)] = 0xFF;
    return bytes;
  }();
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(kBytes.data() + 16 - count));
}

// What sixteen bytes are that begin at a character's border: how many of them are whole characters of one, two or three
// bytes that need no closer look, and which are their leads and continuations.
struct WideGroup {
  unsigned length;
  __m128i continuations;
  __m128i leads;
};

WideGroup LookAt(__m128i v, unsigned wide) {
  const auto below = [v](int byte) { return _mm_cmplt_epi8(v, _mm_set1_epi8(static_cast<char>(byte))); };
  const auto above = [v](int byte) { return _mm_cmpgt_epi8(v, _mm_set1_epi8(static_cast<char>(byte))); };
  const __m128i continuations = below(0xC0);  // as signed bytes; ASCII is above them all
  const __m128i leads2 = _mm_and_si128(above(0xC1), below(0xE0));
  const __m128i special = _mm_cmpeq_epi8(v, _mm_set1_epi8(static_cast<char>(0xED)));
  const __m128i leads3 = _mm_andnot_si128(special, _mm_and_si128(above(0xE0), below(0xF0)));
  const auto tails = static_cast<unsigned>(_mm_movemask_epi8(continuations));
  const auto two = static_cast<unsigned>(_mm_movemask_epi8(leads2));
  const auto three = static_cast<unsigned>(_mm_movemask_epi8(leads3));
  const unsigned expected = (two | three) << 1 | three << 2;
  const unsigned odd = ((tails ^ expected) & 0xFFFF) | (wide & ~(tails | two | three));
  unsigned length = odd ? static_cast<unsigned>(std::countr_zero(odd)) : 16;
  // Not into a character that goes on behind it.
  if (length > 0 && ((two | three) >> (length - 1) & 1)) {
    length -= 1;
  } else if (length > 1 && (three >> (length - 2) & 1)) {
    length -= 2;
  }
  return {length, continuations, _mm_or_si128(leads2, leads3)};
}

// Counts sixteen bytes at a time, and one by one the characters that are not common, up to sixteen bytes before `stop`.
// At most 255 steps, so that byte counters cannot overflow.
const char* ScanWide(const char* p, const char* stop, const char* end, ScanCounts& counts) {
  const __m128i cr = _mm_set1_epi8('\r');
  const __m128i lf = _mm_set1_epi8('\n');
  __m128i crs = _mm_setzero_si128(), lfs = crs, pairs = crs, tails = crs, leads = crs;
  int64_t bytes = 0;
  const char* const limit = stop - 15;
  for (int step = 0; step < 255 && p < limit; ++step) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i before = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p - 1));
    __m128i isCr = _mm_cmpeq_epi8(v, cr);
    __m128i isLf = _mm_cmpeq_epi8(v, lf);
    unsigned length = 16;
    if (const auto wide = static_cast<unsigned>(_mm_movemask_epi8(v))) {
      const WideGroup group = LookAt(v, wide);
      length = group.length;
      if (length == 0) {
        p += CountCharacter(p, end, counts);
        continue;
      }
      const __m128i mask = FirstBytes(length);
      isCr = _mm_and_si128(isCr, mask);
      isLf = _mm_and_si128(isLf, mask);
      tails = _mm_sub_epi8(tails, _mm_and_si128(group.continuations, mask));
      leads = _mm_sub_epi8(leads, _mm_and_si128(group.leads, mask));
    }
    crs = _mm_sub_epi8(crs, isCr);
    lfs = _mm_sub_epi8(lfs, isLf);
    pairs = _mm_sub_epi8(pairs, _mm_and_si128(isLf, _mm_cmpeq_epi8(before, cr)));
    p += length;
    bytes += length;
  }
  const int64_t crCount = SumOfBytes(crs), pairCount = SumOfBytes(pairs);
  counts.crs += crCount;
  counts.crLfs += pairCount;
  counts.breaks += crCount + SumOfBytes(lfs) - pairCount;
  counts.units += bytes - pairCount - SumOfBytes(tails);
  counts.multibyte += SumOfBytes(leads);
  return p;
}

// Counts the ASCII characters of [p, stop), fewer than sixteen; false when there are others. What lies up to sixteen
// bytes before p must be readable, which the head of every block sees to.
bool ScanShort(const char* p, const char* stop, ScanCounts& counts) {
  const auto count = static_cast<unsigned>(stop - p);
  const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(stop - 16));
  const __m128i before = _mm_loadu_si128(reinterpret_cast<const __m128i*>(stop - 17));
  if (static_cast<unsigned>(_mm_movemask_epi8(v)) >> (16 - count)) return false;
  const __m128i one = _mm_andnot_si128(FirstBytes(16 - count), _mm_set1_epi8(1));
  const __m128i cr = _mm_set1_epi8('\r');
  const __m128i isCr = _mm_and_si128(one, _mm_cmpeq_epi8(v, cr));
  const __m128i isLf = _mm_and_si128(one, _mm_cmpeq_epi8(v, _mm_set1_epi8('\n')));
  const int64_t pairs = SumOfBytes(_mm_and_si128(isLf, _mm_cmpeq_epi8(before, cr)));
  const int64_t crs = SumOfBytes(isCr);
  counts.crs += crs;
  counts.crLfs += pairs;
  counts.breaks += crs + SumOfBytes(isLf) - pairs;
  counts.units += static_cast<int64_t>(count) - pairs;
  return true;
}
#endif

// Counts the characters that begin in [p, stop); returns the first border at or behind stop. p[-1] must be readable.
const char* Scan(const char* p, const char* stop, const char* end, ScanCounts& counts) {
  while (p < stop) {
#ifdef QUILLMARK_SIMD_SCAN
    if (stop - p >= 16) {
      p = ScanWide(p, stop, end, counts);
      continue;
    }
    if (ScanShort(p, stop, counts)) {
      p = stop;
      break;
    }
#endif
    p += CountCharacter(p, end, counts);
  }
  if (p < end && *p == '\n' && p[-1] == '\r') p += CountCharacter(p, end, counts);
  return p;
}

}  // namespace

ScanCounts& ScanCounts::operator+=(const ScanCounts& other) {
  units += other.units;
  breaks += other.breaks;
  crLfs += other.crLfs;
  crs += other.crs;
  strays += other.strays;
  multibyte += other.multibyte;
  return *this;
}

int Utf8Length(const char* p, const char* end) {
  const auto lead = static_cast<unsigned char>(*p);
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  const int length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (end - p < length) return 0;
  const auto second = static_cast<unsigned char>(p[1]);
  const unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  if (second < low || second > high) return 0;
  for (int i = 2; i < length; ++i)
    if (!IsContinuation(p[i])) return 0;
  return length;
}

size_t UnfinishedTail(std::string_view bytes) {
  if (bytes.empty()) return 0;
  if (bytes.back() == '\r') return 1;
  for (size_t back = 1; back <= std::min<size_t>(3, bytes.size()); ++back) {
    const char* lead = bytes.data() + bytes.size() - back;
    if (IsAscii(*lead)) return 0;
    if (IsContinuation(*lead)) continue;
    if (Utf8Length(lead, bytes.data() + bytes.size())) return 0;
    // Could any continuation complete it?
    char completed[4] = {lead[0], '\x80', '\x80', '\x80'};
    std::copy(lead, lead + back, completed);
    if (Utf8Length(completed, completed + 4)) return back;
    if (back == 1) {
      for (char second : {'\x80', '\x90', '\xA0', '\xBF'}) {
        completed[1] = second;
        if (Utf8Length(completed, completed + 4)) return back;
      }
    }
    return 0;
  }
  return 0;
}

// --- Block

Block* Block::Create(bool wantHugePages) {
  constexpr size_t kSize = TreeConfig::kBlockBytes;
  static_assert(sizeof(Block) + kCheckpoints * sizeof(Checkpoint) + 16 <= kDataOffset);
  // Twice the size always holds an aligned block; what lies around it is given back.
  void* mapped = mmap(nullptr, 2 * kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (mapped == MAP_FAILED) throw std::bad_alloc();
  char* const begin = static_cast<char*>(mapped);
  char* const aligned = reinterpret_cast<char*>((reinterpret_cast<uintptr_t>(begin) + kSize - 1) & ~(kSize - 1));
  if (aligned > begin) munmap(begin, static_cast<size_t>(aligned - begin));
  if (aligned < begin + kSize) munmap(aligned + kSize, static_cast<size_t>(begin + kSize - aligned));
  madvise(aligned, kSize, wantHugePages ? MADV_HUGEPAGE : MADV_NOHUGEPAGE);
  return new (aligned) Block;
}

void Block::Destroy() {
  munmap(reinterpret_cast<char*>(this), TreeConfig::kBlockBytes);
}

ScanCounts Block::Commit(size_t count) {
  assert(count <= space());
  const size_t used = this->used();
  const char* p = data() + used;
  const char* const end = p + count;
  ScanCounts counts;
  Checkpoint* const checkpoints = checkpoint_;
  for (size_t next = filled() + 1; next * TreeConfig::kCheckpointBytes <= used + count; ++next) {
    const char* const stop = data() + next * TreeConfig::kCheckpointBytes;
    p = Scan(p, stop, end, counts);
    checkpoints[next - 1] = {static_cast<uint32_t>(units_ + counts.units) & 0x3FFFFFFFu,
                             static_cast<uint32_t>(p - stop) & 3u, static_cast<uint32_t>(breaks_ + counts.breaks)};
  }
  Scan(p, end, end, counts);
  units_ += counts.units;
  breaks_ += counts.breaks;
  used_.store(used + count, std::memory_order_release);
  return counts;
}

const char* Block::Append(std::string_view bytes) {
  if (used() > 0 && !bytes.empty()) {
    const char last = data()[used() - 1];
    const char first = bytes.front();
    if ((last == '\r' && first == '\n') || IsContinuation(first)) {
      data()[used()] = '\0';
      Commit(1);
    }
  }
  char* const place = data() + used();
  std::memcpy(place, bytes.data(), bytes.size());
  Commit(bytes.size());
  return place;
}

Block::Place Block::Checkpointed(size_t index) const {
  if (index == 0) return {data(), 0, 0};
  const Checkpoint& c = checkpoint_[index - 1];
  return {data() + index * TreeConfig::kCheckpointBytes + c.skip, c.units, c.breaks};
}

Block::Place Block::PlaceOf(const char* border) const {
  Place place = Checkpointed(static_cast<size_t>(border - data()) / TreeConfig::kCheckpointBytes);
  if (place.p > border) place = Checkpointed(static_cast<size_t>(border - data()) / TreeConfig::kCheckpointBytes - 1);
  ScanCounts counts;
  Scan(place.p, border, data() + used(), counts);
  return {border, place.units + counts.units, place.breaks + counts.breaks};
}

Sums Block::SumsOf(const char* begin, const char* end) const {
  if (end - begin <= static_cast<ptrdiff_t>(TreeConfig::kCheckpointBytes)) {
    ScanCounts counts;
    Scan(begin, end, end, counts);
    return {Bytes(end - begin), Units(counts.units), Breaks(counts.breaks)};
  }
  const Place a = PlaceOf(begin), b = PlaceOf(end);
  return {Bytes(end - begin), Units(b.units - a.units), Breaks(b.breaks - a.breaks)};
}

const char* Block::FindUnit(const char* begin, int64_t units, Sums* before) const {
  const Place from = PlaceOf(begin);
  Place place = from;
  const int64_t target = from.units + units;
  size_t low = static_cast<size_t>(begin - data()) / TreeConfig::kCheckpointBytes + 1, high = filled() + 1;
  while (low < high) {  // the first checkpoint past the target
    const size_t middle = (low + high) / 2;
    if (Checkpointed(middle).units <= target) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  if (const Place nearer = Checkpointed(low - 1); nearer.p > place.p) place = nearer;
  const char* const end = data() + used();
  const char* p = place.p;
  ScanCounts counts;
  if (low <= filled() && Checkpointed(low).units - place.units == Checkpointed(low).p - place.p) {
    // As many units as bytes: each byte is one.
    p += target - place.units;
    if (before) Scan(place.p, p, end, counts);
  } else {
    while (p < end && place.units + counts.units <= target) {
      const ScanCounts soFar = counts;
      const int length = *p == '\r' && p + 1 < end && p[1] == '\n' ? 2 : CountCharacter(p, end, counts);
      if (length == 2 && *p == '\r') ++counts.units, ++counts.breaks;
      if (place.units + counts.units > target) {
        counts = soFar;
        break;
      }
      p += length;
    }
  }
  if (before)
    *before = {Bytes(p - begin), Units(place.units + counts.units - from.units),
               Breaks(place.breaks + counts.breaks - from.breaks)};
  return p;
}

const char* Block::FindBreak(const char* begin, int64_t breaks) const {
  Place place = PlaceOf(begin);
  const int64_t target = place.breaks + breaks;
  size_t low = static_cast<size_t>(begin - data()) / TreeConfig::kCheckpointBytes + 1, high = filled() + 1;
  while (low < high) {
    const size_t middle = (low + high) / 2;
    if (Checkpointed(middle).breaks <= target) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  if (const Place before = Checkpointed(low - 1); before.p > place.p) place = before;
  const char* const end = data() + used();
  int64_t at = place.breaks;
  for (const char* p = place.p; p < end; ++p) {
    if (*p != '\r' && (*p != '\n' || p[-1] == '\r')) continue;
    if (at++ == target) return p;
  }
  assert(!"break not in this block");
  return end;
}

const char* Block::CharacterStart(const char* begin, const char* p) const {
  if (*p == '\n') return p > begin && p[-1] == '\r' ? p - 1 : p;
  if (!IsContinuation(*p)) return p;
  const char* lead = p;
  while (lead > begin && p - lead < 3 && IsContinuation(*lead)) --lead;
  return Utf8Length(lead, data() + used()) > p - lead ? lead : p;
}

// --- TextStore

TextStore::~TextStore() {
  for (Block* block : blocks_) block->Destroy();
}

Block* TextStore::Lease(size_t space, bool wantHugePages) {
  assert(space <= Block::kCapacity);
  {
    std::lock_guard lock(mutex_);
    for (auto it = open_.rbegin(); it != open_.rend(); ++it) {
      if ((*it)->space() < space) continue;
      Block* block = *it;
      open_.erase(std::next(it).base());
      return block;
    }
  }
  Block* block = Block::Create(wantHugePages);
  std::lock_guard lock(mutex_);
  blocks_.push_back(block);
  return block;
}

void TextStore::Return(Block* block) {
  constexpr size_t kWorthKeeping = Block::kCapacity / 64;
  std::lock_guard lock(mutex_);
  if (block->space() >= kWorthKeeping) open_.push_back(block);
}

const char* TextStore::crLf() {
  {
    std::lock_guard lock(mutex_);
    if (crLf_) return crLf_;
  }
  Block* block = Lease(3);
  const char* place = block->Append("\r\n");
  Return(block);
  std::lock_guard lock(mutex_);
  return crLf_ ? crLf_ : crLf_ = place;
}

}  // namespace text
