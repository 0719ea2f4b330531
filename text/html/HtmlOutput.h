// Turns text as a page has it into paragraphs: collapses white space, drops empty blocks, gathers a table's row until
// its cells are known.
#pragma once

#include "text/Content.h"
#include "text/html/HtmlStyle.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace text::html {

class HtmlOutput {
 public:
  explicit HtmlOutput(const std::shared_ptr<TextStore>& store);

  void Text(std::string_view utf8, const Look& look);
  void LineBreak(const Look& look);
  void Object(EmbeddedObject object, const Look& look);
  // What follows stands in a paragraph of its own.
  void EndParagraph();

  void BeginRow();
  // Ends the cell before it. A cell that spans others is followed by empty ones that join it.
  void BeginCell(int span);
  void EndRow();
  bool inRow() const { return inRow_; }

  Content Finish();

 private:
  struct Item {
    std::string bytes;
    CharFormat chars;
    std::optional<ParaFormat> ends;  // the paragraph that it ends; bytes are a break then
  };

  void Preserved(std::string_view utf8, const Look& look);
  void Put(std::string_view bytes, const Look& look);
  void PutBreak(ParaFormat paragraph);
  void Send(Item item);
  void Write(const Item& item);
  void EndCell(RowMark mark);
  void PutJoined();

  FormatTable& formats_;
  ContentBuilder builder_;
  // --- The paragraph under way
  bool begun_ = false;      // something stands in it
  bool space_ = false;      // white space that counts when more follows
  int lineBreaks_ = 0;      // likewise
  CharFormat spaceFormat_;  // of both
  CharFormat chars_;        // of its last text
  ParaFormat paragraph_;    // as its first text had it
  bool owesBreak_ = false;  // paragraph_ is complete; its break is put when more follows
  // --- The row under way
  bool inRow_ = false;
  std::vector<TableCell> cells_;
  int joined_ = 0;  // cells that the last one spans besides its own
  std::vector<Item> row_;
};

}  // namespace text::html
