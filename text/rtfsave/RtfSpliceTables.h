// Numbers of fonts and colours in the tables of a file, and what must be added to these.
#pragma once

#include "text/FormatTable.h"
#include "text/rtf/RtfTables.h"
#include "text/rtf/RtfWatcher.h"
#include "text/rtfwrite/RtfWords.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace text::rtf {

class SpliceTables {
 public:
  // `tables` grow while the file is read.
  SpliceTables(std::string_view source, FormatTable& formats, const Tables& tables)
      : source_(source), formats_(formats), tables_(tables) {}

  int32_t Number(FontId font);
  int32_t Number(Color color);
  // Of a list that the file does not have.
  int32_t Number(ListId list);

  // The bytes of the file's colour table, without its closing brace.
  void ColorTableEnds(std::string_view table);
  // What the file's tables take in before their closing brace.
  std::string New(RtfWatcher::Table table) const;
  // Tables of their own for what the file has none for.
  std::string OwnTable(RtfWatcher::Table table) const;

 private:
  struct Highest {
    int32_t font = -1, color = -1, list = kOldLists;
    std::set<int32_t> listIds;
  };
  Highest& InUse();
  void KnowFonts();
  int32_t NewColor(std::optional<uint32_t> rgb);

  std::string_view source_;
  FormatTable& formats_;
  const Tables& tables_;
  uint32_t generation_ = 0;  // of the table that fonts_ is about
  std::map<FontId, int32_t> fonts_, ownFonts_;
  std::map<std::optional<uint32_t>, int32_t> ownColors_;
  bool openColor_ = false;  // the file's last entry lacks its semicolon
  std::optional<Highest> inUse_;
  std::map<ListId, int32_t> ownLists_;
  std::string newFonts_, newColors_, newLists_, newOverrides_;
};

// Where a table may stand in a file that has none: behind the words about the whole document.
size_t EndOfHeader(std::string_view source);

}  // namespace text::rtf
