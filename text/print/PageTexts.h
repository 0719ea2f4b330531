// What a document prints on its pages besides its text: headers, footers, notes.
#pragma once

#include "text/Document.h"
#include "text/pictures/Pictures.h"
#include "text/print/PageSetup.h"
#include "text/rtf/Rtf.h"

#include <array>
#include <memory>
#include <string>
#include <string_view>

namespace text::layout {

// A text whose fields are filled in for each page, with the pictures that were painted in it.
struct PageText {
  Content content;
  pictures::PictureCache pictures;
};

struct PageNumbers {
  int page = 1, pages = 1;
  int note = 0;
};

class PageTexts {
 public:
  // From the file that the document was read from; without one there are none. The first section's count for all.
  PageTexts(const rtf::DocumentProperties& properties, const PageWords& words);

  // Null where a page has none.
  PageText* Header(int page) const { return Of(0, page); }
  PageText* Footer(int page) const { return Of(1, page); }
  // Whether any of them says how many pages there are.
  bool countPages() const { return countPages_; }
  // The text of a note's group, or of its name.
  std::unique_ptr<PageText> Note(const EmbeddedObject& note) const;

 private:
  enum Side { kAll, kLeft, kRight, kFirst };
  void Find(std::string_view bytes);
  bool Keep(std::string_view name, std::string_view group);
  std::unique_ptr<PageText> Read(std::string_view group) const;
  PageText* Of(size_t which, int page) const;

  PageWords words_;
  std::string head_;  // what a part of the file needs to be read: its code page, fonts, colours, lists
  std::array<std::array<std::unique_ptr<PageText>, 4>, 2> texts_;  // headers and footers by Side
  std::array<std::array<std::string_view, 4>, 2> groups_;
  bool countPages_ = false;
};

// A document of the text with its fields filled in.
Document Filled(const Content& text, const PageNumbers& numbers);

}  // namespace text::layout
