// A needle compiled for comparing it with the engine's bytes. Internal to text/.
#pragma once

#include "text/search/AnchorScan.h"
#include "text/search/SearchWindow.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace text {

// Bytes of the content.
struct ByteMatch {
  const char* begin;
  const char* end;
};

class Needle {
 public:
  Needle(std::u16string_view units, bool matchCase);

  // False for a needle that no text can hold: an empty one, or one with half of a surrogate pair.
  bool possible() const { return possible_; }
  // How far the text around a place must be readable.
  size_t before() const { return before_; }
  size_t behind() const { return behind_; }

  // The first match whose place (the first byte of the anchor) is in [p, window.until), and that place in `p`; when
  // nothing is returned `p` is where to go on: window.until, or less when much has been compared in vain. Linear: adds
  // to `compared`, if given, how many characters were compared.
  std::optional<ByteMatch> Next(const Window& window, const char*& p, int64_t* compared = nullptr) const;

 private:
  struct Spelling {
    char bytes[4];
    uint8_t length;
    std::string_view view() const { return {bytes, length}; }
  };
  // One character: a code point with all its spellings, a stray byte, or a line break (CR LF, CR or LF).
  struct Element {
    enum class Kind : uint8_t { kCharacter, kStray, kBreak } kind = Kind::kCharacter;
    uint8_t count = 0;
    Spelling spelling[AnchorScan::kMost];
    // The length that all spellings have, or 0.
    size_t fixedLength() const;
    size_t longest() const;
    bool Equals(const Element& other) const;  // in any order of the spellings
  };

  void Compile(std::u16string_view units, bool matchCase);
  void AddCharacter(char32_t c, bool matchCase);
  void AddSpelling(Element& element, std::string_view bytes);
  void ChooseAnchor();
  std::vector<AnchorScan::Test> TestsFrom(size_t element) const;

  bool IsLiteral(const char* p) const;
  std::optional<ByteMatch> NextByLibrary(const Window& window, const char*& p) const;
  std::optional<ByteMatch> Compare(const Window& window, const char* place, int64_t* compared) const;
  // NeedleLinear.cpp
  void FindFallbacks();
  std::optional<ByteMatch> NextByFallbacks(const Window& window, const char*& p, int64_t* compared) const;
  static const char* MatchBehind(const Element& element, const Window& window, const char* p);
  static const char* MatchBefore(const Element& element, const Window& window, const char* p);

  bool possible_ = true;
  std::vector<Element> elements_;
  std::string literal_;  // when every element has one spelling and none is a stray byte
  size_t anchor_ = 0;    // the element at the place that the scan finds
  AnchorScan scan_;
  std::vector<uint32_t> fallback_;  // of k matched elements: the longest end of them that begins the needle
  size_t before_ = 0;
  size_t behind_ = 0;
};

}  // namespace text
