// The elements around paragraphs: lists, tables, rows and cells, opened and closed as the paragraphs go by.
#pragma once

#include "text/FormatTable.h"

#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace text::html {

class HtmlBlocks {
 public:
  HtmlBlocks(const FormatTable& formats, std::string& out) : formats_(formats), out_(out) {}

  // Before and behind a paragraph. Open returns the name of its element, null when it is left out: what continues a
  // wide cell and is empty.
  const char* Open(const ParaFormat& format, bool empty);
  void Close(const ParaFormat& format);
  void CloseAll();
  // True for an item in another whose direction or alignment is not the common one, and which it would take over.
  bool inTurnedItem() const { return lists_.size() > 1 && lists_[lists_.size() - 2].turned; }

 private:
  struct OpenList {
    ListId list;
    bool bullets;
    bool turned;  // its open item, or one around
  };
  void OpenCell(const TableRow& row, bool empty);
  void SetLists(const ParaFormat& format);
  void PushList(const ParaFormat& format, uint8_t level);
  void PopList();

  const FormatTable& formats_;
  std::string& out_;
  std::vector<OpenList> lists_;  // an item is open in each
  std::map<std::pair<ListId, uint8_t>, int32_t> numbers_;
  bool inTable_ = false, inRow_ = false, inCell_ = false, skipsCell_ = false;
  size_t cell_ = 0;
};

}  // namespace text::html
