// What stands in a text beyond characters: pictures and embedded objects, lists, tables' rows. Values of the store's
// FormatTable, referred to by id. Lengths are twips.
#pragma once

#include "text/Formats.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace text {

// Bytes that somebody keeps alive: a part of a file that was read, or bytes of their own.
struct SharedBytes {
  std::shared_ptr<const std::string> owner;
  std::string_view bytes;
  SharedBytes() = default;
  explicit SharedBytes(std::string own) : owner(std::make_shared<const std::string>(std::move(own))), bytes(*owner) {}
  SharedBytes(std::shared_ptr<const std::string> whole, std::string_view part) : owner(std::move(whole)), bytes(part) {}
};

enum class ObjectKind : uint8_t {
  kPicture,
  kEmbedded,  // of another program, shown by its result picture or a frame with its name
  kNote,      // a footnote or endnote, shown as a mark
};

enum class PictureType : uint8_t { kNone, kPng, kJpeg, kDib, kWmf, kEmf, kMac };

// The character U+FFFC whose format refers to it stands for it.
struct EmbeddedObject {
  ObjectKind kind = ObjectKind::kPicture;
  // The picture as its own file would hold it, sniffed, not believed; a DIB without its file header. kNone: none.
  PictureType type = PictureType::kNone;
  SharedBytes picture;
  int32_t width = 0, height = 0;  // as shown, scaled and cropped; 0 = the picture's own at 96 dots an inch
  // What is cut off each side of the picture, in 1/10000 of its own width or height; negative adds empty space.
  int32_t cropLeft = 0, cropTop = 0, cropRight = 0, cropBottom = 0;
  // UTF-8: an object's class, or the name of the file that it is; a note's text, a picture's description; may be empty.
  std::string name;
  // The group as it was read, "{...}", to be written again anywhere: refers to nothing outside but fonts and colours.
  SharedBytes rtf;
  uint8_t fallbackCount = 1;  // of characters that stand in it behind \uN: \uc where it was read
};

enum class NumberStyle : uint8_t { kDecimal, kUpperRoman, kLowerRoman, kUpperLetter, kLowerLetter, kOrdinal, kNone };

struct ListLevel {
  NumberStyle style = NumberStyle::kDecimal;
  int32_t start = 1;
  // UTF-8; a byte 0 to 8 stands for that level's number. "\0." is "1.", "\0.\1" is "1.1". Without any: a bullet.
  std::string label;
  FontId font = FontId::kDefault;  // of the label; default = that of the paragraph's beginning
  bool operator==(const ListLevel&) const = default;
};

// Paragraphs with the same list are counted together. A list without identity (old style) starts anew behind every
// paragraph that is not of it.
struct List {
  int32_t identity = 0;           // tells two lists of equal levels apart; 0 = none
  std::vector<ListLevel> levels;  // 1 to 9
  bool operator==(const List&) const = default;
};

struct TableCell {
  enum Side : uint8_t { kLeft = 1, kTop = 2, kRight = 4, kBottom = 8 };
  int32_t right = 0;                           // its right edge, from the text area's left edge
  uint8_t borders = 0;                         // Side: which are drawn
  Color shading;                               // automatic = none
  bool joinsLeft = false, joinsAbove = false;  // continues the cell beside or above it
  bool operator==(const TableCell&) const = default;
};

// The definition of a table's row; every paragraph in the row refers to it.
struct TableRow {
  int32_t left = 0;              // left edge of the first cell
  int32_t gap = 0;               // between a cell's edge and its text
  int32_t height = 0;            // at least; negative = exactly; 0 = as high as needed
  uint8_t level = 1;             // 2 and more: in a cell of another table
  std::vector<TableCell> cells;  // at most kMaxCells
  std::string words;             // as they were read ("\trowd ... \cellx1000"), to be written again; may be empty
  bool operator==(const TableRow&) const = default;
};
constexpr size_t kMaxCells = 1024;

}  // namespace text
