// The style sheet, and which style's look a group has.
//
// RTF wants every paragraph and run to repeat the words of the style it names, so that readers need no style sheet, and
// a writer that follows this says by leaving a word out that it does not hold. Others only name the style. So where a
// group repeats at least one of a style's words, these alone count; where it repeats none, the style's do, with what
// the group says besides. Characters and paragraphs are judged apart.
#pragma once

#include "text/Formats.h"
#include "text/rtfsyntax/RtfKeywords.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace text::rtf {

// Which properties words have set. Those of the character flags are the bits of CharFlag.
using Said = uint32_t;
constexpr Said kSaidFont = 1 << 6, kSaidSize = 1 << 7, kSaidColor = 1 << 8, kSaidBackground = 1 << 9,
               kSaidOffset = 1 << 10, kSaidScript = 1 << 11, kSaidLanguage = 1 << 12;
constexpr Said kSaidAlignment = 1 << 16, kSaidLeft = 1 << 17, kSaidFirst = 1 << 18, kSaidRight = 1 << 19,
               kSaidBefore = 1 << 20, kSaidAfter = 1 << 21, kSaidLines = 1 << 22, kSaidMultiple = 1 << 23,
               kSaidDirection = 1 << 24, kSaidTabs = 1 << 25, kSaidList = 1 << 26, kSaidBox = 1 << 27;
constexpr Said kAboutChars = 0xFFFF, kAboutParagraphs = 0xFFFF0000;

// What the word sets; 0 for one that is no character's or paragraph's property.
Said SaidBy(const Keyword& word);

// The properties that words set, in a group or for a style. Tabs and label of `paragraph` follow from what is below it.
struct Look {
  Said said = 0;  // since \plain and \pard
  CharFormat chars;
  int32_t fontNumber = -1;  // -1 = the document's default font
  int8_t script = 0;        // \super 1, \sub -1
  ParaFormat paragraph;
  int32_t listOverride = 0;  // \ls; 0 = none
  int32_t listLevel = 0;
  std::shared_ptr<Tabs> tabs;  // shared until one of the groups or styles adds a tab

  void Take(const Look& from, Said what);
};

// A style that a group has named, and what its words have said since.
struct StyleUse {
  int32_t number = -1;
  bool inForce = false;
  bool charsOff = false;  // \plain has come
  uint32_t depth = 0;     // of the group that named it
  Said said = 0;
  Said sealed = 0;    // text has come: words about this repeat nothing any more
  Said repeated = 0;  // by the words between the style's name and the text

  void Name(int32_t style, size_t groups);
  void Say(Said what, size_t groups);
  void Plain(size_t groups);
  void EndParagraphFormat();
};

class RtfStyles {
 public:
  enum class Kind : uint8_t { kParagraph, kCharacter, kOther };

  // --- {\stylesheet}
  void Begin() { kind_ = Kind::kParagraph, number_ = 0, base_ = -1; }
  void Number(Kind kind, int32_t number) { kind_ = kind, number_ = number; }
  void BasedOn(int32_t number) { base_ = number; }
  // False where a cap was reached.
  bool Finish(const Look& own);

  // The look that counts besides what the group says; null when it repeats the style's words, or names none.
  const Look* InUse(Kind kind, const StyleUse& use, Said about);

 private:
  struct Style {
    int32_t base = -1;
    Look own;
    std::optional<Look> whole;  // with the styles it is based on
  };
  const Look* Find(Kind kind, int32_t number);

  std::map<std::pair<Kind, int32_t>, Style> styles_;

  // --- Under way
  Kind kind_ = Kind::kParagraph;
  int32_t number_ = 0, base_ = -1;
};

}  // namespace text::rtf
