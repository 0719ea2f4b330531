// Lists as files define them: the list tables, and the numbering that old writers put into every paragraph.
#pragma once

#include "text/FormatTable.h"
#include "text/rtfsyntax/RtfCodePages.h"
#include "text/rtfsyntax/RtfKeywords.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace text::rtf {

constexpr int32_t kBulletKind = 23;  // \levelnfc of a bullet

// What a paragraph says of its label.
struct ListUse {
  bool bullet = false;
  ListId list = ListId::kNone;
  uint8_t level = 0;
  std::optional<int32_t> leftIndent, firstIndent;  // that the level gives
};

// What a font number of the file means.
struct LabelFont {
  FontId id = FontId::kDefault;
  bool symbol = false;
  const CodePage* codePage = nullptr;
};
using LabelFonts = std::function<LabelFont(int32_t)>;

class RtfLists {
 public:
  explicit RtfLists(FormatTable& formats) : formats_(formats) {}

  // --- {\*\listtable} and {\*\listoverridetable}. False where a cap was reached.
  void BeginList() { level_ = nullptr, list_ = {}, listId_.reset(); }
  bool BeginLevel(bool overrides);
  void Word(const Keyword& word, int32_t number, bool overrides);
  // Text of the label; `raw` is a byte that was written as \'hh.
  void LevelText(std::string_view utf8);
  void LevelByte(uint8_t raw);
  bool FinishList();
  void BeginOverride() { level_ = nullptr, override_ = {}, listId_.reset(), overrideNumber_.reset(); }
  void BeginOverrideLevel() { ++override_.levelCount; }
  bool FinishOverride();

  // --- {\*\pn}
  void BeginNumbering() { numbering_ = {}; }
  void NumberingWord(const Keyword& word, int32_t number);
  void NumberingText(std::string_view utf8, bool before);
  int32_t numberingFont() const { return numbering_.font; }  // -1: none
  ListUse FinishNumbering(const LabelFonts& fonts);

  // An \ls that means the list; 0 for none.
  int32_t NumberOf(ListId list, const LabelFonts& fonts);
  // What \ls and \ilvl mean; nothing when \ls is not defined.
  std::optional<ListUse> Find(int32_t number, int32_t level, const LabelFonts& fonts);

 private:
  struct Level {
    int32_t kind = 0;  // \levelnfc
    int32_t start = 1;
    int32_t font = -1;
    std::optional<int32_t> leftIndent, firstIndent;
    std::string label;  // a raw byte b past 0x7F as U+F000 + b
    bool counted = false;
  };
  struct Override {
    int32_t list = 0;
    size_t levelCount = 0;
    std::map<size_t, int32_t> starts;
    std::map<size_t, Level> levels;
  };
  struct Numbering {
    PnKind kind = PnKind::kNone;
    NumberStyle style = NumberStyle::kDecimal;
    int32_t start = 1;
    int32_t font = -1;
    std::string before, after;
  };

  ListLevel LevelOf(const Level& level, const LabelFonts& fonts);
  ListUse UseOf(List list, uint8_t level, bool shown);
  bool IsUsualBullet(const ListLevel& level) const;

  FormatTable& formats_;
  std::map<int32_t, std::vector<Level>> lists_;  // by \listid
  std::map<int32_t, Override> overrides_;        // by \ls
  std::map<std::pair<int32_t, int32_t>, ListUse> found_;
  std::map<ListId, int32_t> numbers_;
  bool numbersKnown_ = false;

  // --- Under way
  std::vector<Level> list_;
  Override override_;
  Level* level_ = nullptr;
  Level ignored_;  // past the cap
  std::optional<int32_t> listId_, overrideNumber_;
  Numbering numbering_;
};

// True when its label holds no number.
bool IsBullet(const ListLevel& level);

}  // namespace text::rtf
