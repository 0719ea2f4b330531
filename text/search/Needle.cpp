#include "text/search/Needle.h"

#include "text/Utf16.h"
#include "text/search/CaseFold.h"

#include <algorithm>
#include <cstring>

namespace text {
namespace {

// Only the rarest two bytes among so many are looked for.
constexpr size_t kConsidered = 64;
// What may be compared in vain before a slower way is taken that looks at each character but once or twice: so many,
// and so many for each byte passed.
#ifdef QUILLMARK_TINY_TREE
constexpr int64_t kFree = 4;
constexpr int64_t kFreePerByte = 1;
#else
constexpr int64_t kFree = 65536;
constexpr int64_t kFreePerByte = 16;
#endif

// Roughly how often a byte occurs in text; all together about kAllFrequencies.
constexpr int kAllFrequencies = 12000;
int Frequency(char c) {
  static constexpr std::string_view kOrder =
      " etaoinsrhldcumfpgwybv,.k\n\r0-1\"'2)(:/;_xT=ASICEjqz3MPNDRL>*5498O67BFHWU<GY\tV#K{}+[]&!?$@XJZQ%|\\~^`";
  if (static_cast<signed char>(c) < 0) return static_cast<unsigned char>(c) >= 0xC0 ? 200 : 100;
  const size_t rank = kOrder.find(c);
  return rank == std::string_view::npos ? 5 : 4000 / (4 + static_cast<int>(rank));
}

int Frequency(const AnchorScan::Test& test) {
  int sum = 0;
  for (int i = 0; i < test.count; ++i) sum += Frequency(test.values[static_cast<size_t>(i)]);
  return sum;
}

}  // namespace

size_t Needle::Element::fixedLength() const {
  const size_t length = spelling[0].length;
  for (int i = 1; i < count; ++i)
    if (spelling[i].length != length) return 0;
  return length;
}

size_t Needle::Element::longest() const {
  size_t longest = 0;
  for (int i = 0; i < count; ++i) longest = std::max<size_t>(longest, spelling[i].length);
  return longest;
}

Needle::Needle(std::u16string_view units, bool matchCase) {
  Compile(units, matchCase);
  possible_ = possible_ && !elements_.empty();
  if (!possible_) return;
  ChooseAnchor();
  FindFallbacks();
  bool literal = true;
  for (size_t i = 0; i < elements_.size(); ++i) {
    (i < anchor_ ? before_ : behind_) += elements_[i].longest();
    literal = literal && elements_[i].count == 1 && elements_[i].kind == Element::Kind::kCharacter;
  }
  if (literal)
    for (const Element& element : elements_) literal_ += element.spelling[0].view();
  // A character's length on both sides decides about borders and whole words.
  before_ += 4;
  behind_ += 4;
}

void Needle::Compile(std::u16string_view units, bool matchCase) {
  for (size_t i = 0; i < units.size(); ++i) {
    const char32_t unit = units[i];
    const char32_t next = i + 1 < units.size() ? units[i + 1] : 0;
    if (unit == '\r' || unit == '\n') {
      Element element;
      element.kind = Element::Kind::kBreak;
      for (const char* bytes : {"\r\n", "\n"}) AddSpelling(element, bytes);
      elements_.push_back(element);
      if (unit == '\r' && next == '\n') ++i;
    } else if (unit >= 0xD800 && unit < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
      AddCharacter(0x10000 + ((unit & 0x3FF) << 10 | (next & 0x3FF)), matchCase);
      ++i;
    } else if (unit >= 0xDC80 && unit < 0xDD00) {
      Element element;
      element.kind = Element::Kind::kStray;
      const char byte = static_cast<char>(unit & 0xFF);
      AddSpelling(element, {&byte, 1});
      elements_.push_back(element);
    } else if (unit >= 0xD800 && unit < 0xE000) {
      possible_ = false;
    } else {
      AddCharacter(unit, matchCase);
    }
  }
}

void Needle::AddCharacter(char32_t c, bool matchCase) {
  Element element;
  for (char32_t variant : matchCase ? std::u32string(1, c) : CaseVariants(c)) {
    std::string bytes;
    AppendUtf8(bytes, variant);
    AddSpelling(element, bytes);
  }
  elements_.push_back(element);
}

void Needle::AddSpelling(Element& element, std::string_view bytes) {
  if (element.count == AnchorScan::kMost) return;
  Spelling& spelling = element.spelling[element.count++];
  std::copy(bytes.begin(), bytes.end(), spelling.bytes);
  spelling.length = static_cast<uint8_t>(bytes.size());
}

// --- The anchor

// What is known of the bytes from the element's first one on, as far as their distance to it is fixed.
std::vector<AnchorScan::Test> Needle::TestsFrom(size_t first) const {
  std::vector<AnchorScan::Test> tests;
  size_t offset = 0;
  for (size_t i = first; i < elements_.size() && offset < kConsidered; ++i) {
    const Element& element = elements_[i];
    const size_t fixed = element.fixedLength();
    for (size_t byte = 0; byte < std::max<size_t>(1, fixed); ++byte) {
      AnchorScan::Test test;
      test.offset = offset + byte;
      for (int k = 0; k < element.count; ++k) {
        const char value = element.spelling[k].bytes[byte];
        const auto known = test.values.begin() + test.count;
        if (std::find(test.values.begin(), known, value) == known)
          test.values[static_cast<size_t>(test.count++)] = value;
      }
      tests.push_back(test);
    }
    if (fixed == 0) break;
    offset += fixed;
  }
  return tests;
}

void Needle::ChooseAnchor() {
  int best = -1;
  for (size_t i = 0; i < std::min(elements_.size(), kConsidered); ++i) {
    // Behind an element of fixed length the tests are among those of the element before.
    if (i > 0 && elements_[i - 1].fixedLength() != 0) continue;
    std::vector<AnchorScan::Test> tests = TestsFrom(i);
    std::sort(tests.begin(), tests.end(), [](const auto& a, const auto& b) {
      return Frequency(a) != Frequency(b) ? Frequency(a) < Frequency(b) : a.offset < b.offset;
    });
    const AnchorScan::Test& second = tests[tests.size() > 1 ? 1 : 0];
    const int cost = tests.size() > 1 ? Frequency(tests[0]) * Frequency(second) : Frequency(tests[0]) * kAllFrequencies;
    if (best >= 0 && cost >= best) continue;
    best = cost;
    anchor_ = i;
    scan_ = AnchorScan(tests[0], second);
  }
}

// --- Comparing

std::optional<ByteMatch> Needle::Next(const Window& window, const char*& p, int64_t* compared) const {
  const bool literal = !literal_.empty() && window.barriers->empty();
  const char* const start = p;
  int64_t work = 0;
  std::optional<ByteMatch> match;
  for (; (p = scan_.Next(p, window.until, window.end)) < window.until; ++p) {
    if (literal) {
      const bool found = window.end - p >= static_cast<ptrdiff_t>(literal_.size()) && IsLiteral(p);
      if (found) match = ByteMatch{p, p + literal_.size()};
      work += static_cast<int64_t>(elements_.size());
    } else {
      match = Compare(window, p, &work);
    }
    if (match || work > kFree + kFreePerByte * (p - start)) break;
  }
  if (!match && p < window.until) {
    ++p;
    match = literal ? NextByLibrary(window, p) : NextByFallbacks(window, p, &work);
  }
  if (compared) *compared += work;
  return match;
}

// p is followed by as many bytes as the needle has. Short needles are not worth a call.
bool Needle::IsLiteral(const char* p) const {
  const size_t size = literal_.size();
  if (size < 4) return p[0] == literal_[0] && p[size - 1] == literal_[size - 1] && p[size / 2] == literal_[size / 2];
  const auto load = [](const char* at) {
    uint32_t four;
    std::memcpy(&four, at, 4);
    return four;
  };
  if (load(p) != load(literal_.data()) || load(p + size - 4) != load(literal_.data() + size - 4)) return false;
  return size <= 8 || std::memcmp(p, literal_.data(), size) == 0;
}

// For text full of near misses: linear in the worst case.
std::optional<ByteMatch> Needle::NextByLibrary(const Window& window, const char*& p) const {
  const char* const stop =
      window.until + std::min<ptrdiff_t>(window.end - window.until, static_cast<ptrdiff_t>(literal_.size()) - 1);
  const void* const found =
      p < stop ? memmem(p, static_cast<size_t>(stop - p), literal_.data(), literal_.size()) : nullptr;
  p = found ? static_cast<const char*>(found) : window.until;
  if (!found) return std::nullopt;
  return ByteMatch{p, p + literal_.size()};
}

std::optional<ByteMatch> Needle::Compare(const Window& window, const char* place, int64_t* compared) const {
  ByteMatch match{place, place};
  for (size_t i = anchor_; i < elements_.size(); ++i) {
    ++*compared;
    match.end = MatchBehind(elements_[i], window, match.end);
    if (!match.end) return std::nullopt;
  }
  for (size_t i = anchor_; i-- > 0;) {
    ++*compared;
    match.begin = MatchBefore(elements_[i], window, match.begin);
    if (!match.begin) return std::nullopt;
  }
  return match;
}

// Where the element ends that begins at p, or null.
const char* Needle::MatchBehind(const Element& element, const Window& window, const char* p) {
  if (p == window.end) return nullptr;
  if (element.kind == Element::Kind::kBreak) {
    if (*p == '\r') return p + (p + 1 < window.end && p[1] == '\n' ? 2 : 1);
    return *p == '\n' && (p == window.begin || p[-1] != '\r') ? p + 1 : nullptr;
  }
  if (element.kind == Element::Kind::kStray)
    return *p == element.spelling[0].bytes[0] && window.IsStray(p) ? p + 1 : nullptr;
  for (int i = 0; i < element.count; ++i) {
    const std::string_view bytes = element.spelling[i].view();
    if (bytes[0] != *p) continue;
    if (bytes.size() == 1) return p + 1;
    if (std::string_view(p, static_cast<size_t>(window.end - p)).starts_with(bytes))
      return window.LengthAt(p) == static_cast<int>(bytes.size()) ? p + bytes.size() : nullptr;
  }
  return nullptr;
}

// Where the element begins that ends at p, or null.
const char* Needle::MatchBefore(const Element& element, const Window& window, const char* p) {
  if (p == window.begin) return nullptr;
  const char last = p[-1];
  if (element.kind == Element::Kind::kBreak) {
    if (last == '\n') return p - (p - 1 > window.begin && p[-2] == '\r' ? 2 : 1);
    return last == '\r' && (p == window.end || *p != '\n') ? p - 1 : nullptr;
  }
  if (element.kind == Element::Kind::kStray)
    return last == element.spelling[0].bytes[0] && window.IsStray(p - 1) ? p - 1 : nullptr;
  for (int i = 0; i < element.count; ++i) {
    const std::string_view bytes = element.spelling[i].view();
    if (bytes.back() != last) continue;
    if (bytes.size() == 1) return p - 1;
    if (std::string_view(window.begin, static_cast<size_t>(p - window.begin)).ends_with(bytes)) {
      const char* const begin = p - bytes.size();
      return window.LengthAt(begin) == static_cast<int>(bytes.size()) ? begin : nullptr;
    }
  }
  return nullptr;
}

}  // namespace text
