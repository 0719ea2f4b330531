// Footnotes: at the foot of the page that their mark is on. What does not fit there goes on at the next page's foot.
#pragma once

#include "text/print/PageTexts.h"
#include "text/print/Pages.h"
#include "text/print/SlicePainter.h"

#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace text::layout {

class PageNotes {
 public:
  // Sets up blocks for a text as the document's are.
  using SetUp = std::function<void(Blocks& blocks)>;
  PageNotes(const Document& document, const PageTexts& texts, double pageHeight, SetUp setUp);

  bool any() const { return !notes_.empty(); }
  QString MarkOf(ObjectId object) const;
  // How much of a page's height its foot takes if its text goes from one place to another.
  double HeightFor(Range text);
  // Something is left for the next page.
  bool leftOver() const { return !waiting_.empty(); }
  // The next page's foot: the text's notes and what is left of others, in so much height.
  struct Laid;
  struct Part {
    std::shared_ptr<Laid> note;
    std::vector<PageSlice> slices;
  };
  std::vector<Part> Take(Range text, double room);
  void Paint(const std::vector<Part>& foot, SlicePainter& painter, QPainter& lines);

 private:
  struct Note {
    Units position;
    ObjectId object;
    std::unique_ptr<PageText> text;
    double height = -1;  // not known yet
  };
  std::shared_ptr<Laid> Lay(size_t note);
  double HeightOfNote(size_t note);
  size_t FirstFrom(Units position) const;

  const FormatTable& formats_;
  const PageTexts& texts_;
  double pageHeight_;
  SetUp setUp_;
  std::vector<Note> notes_;  // in order
  std::deque<std::shared_ptr<Laid>> waiting_;
};

}  // namespace text::layout
