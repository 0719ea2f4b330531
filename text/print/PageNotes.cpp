#include "text/print/PageNotes.h"

#include <QPainter>

#include <algorithm>

namespace text::layout {
namespace {

constexpr double kLineWidth = 150;
constexpr double kAbove = 14;      // between the text and the first note, with the line
constexpr double kMostPart = 0.5;  // of a page that notes take from the text

}  // namespace

// Laid out from where the pages before left it.
struct PageNotes::Laid {
  Laid(PageText& noteText, const PageNumbers& numbers, const SetUp& setUp, double height)
      : text(noteText), document(Filled(noteText.content, numbers)), blocks(document) {
    setUp(blocks);
    pages.emplace(blocks, height);
  }
  PageText& text;
  Document document;
  Blocks blocks;
  std::optional<Pages> pages;
  double left = 0;  // of its height
};

PageNotes::PageNotes(const Document& document, const PageTexts& texts, double pageHeight, SetUp setUp)
    : formats_(document.formats()), texts_(texts), pageHeight_(pageHeight), setUp_(std::move(setUp)) {
  const Content& content = document.content();
  if (!content.Summarize(content.all()).anyObject) return;
  Units at(0);
  content.ForEachPiece(content.all(), [&](const PieceView& piece) {
    const ObjectId object = formats_[piece.charFormat].object;
    if (object != ObjectId::kNone && formats_[object].kind == ObjectKind::kNote) {
      notes_.push_back({at, object, nullptr});
    }
    at += piece.sums.units;
    return true;
  });
}

QString PageNotes::MarkOf(ObjectId object) const {
  const auto note = std::find_if(notes_.begin(), notes_.end(), [&](const Note& n) { return n.object == object; });
  return note == notes_.end() ? QStringLiteral("*") : QString::number(note - notes_.begin() + 1);
}

size_t PageNotes::FirstFrom(Units position) const {
  const auto note = std::lower_bound(notes_.begin(), notes_.end(), position,
                                     [](const Note& n, Units place) { return n.position < place; });
  return static_cast<size_t>(note - notes_.begin());
}

std::shared_ptr<PageNotes::Laid> PageNotes::Lay(size_t index) {
  Note& note = notes_[index];
  if (!note.text) note.text = texts_.Note(formats_[note.object]);
  PageNumbers numbers;
  numbers.note = static_cast<int>(index) + 1;
  return std::make_shared<Laid>(*note.text, numbers, setUp_, pageHeight_);
}

double PageNotes::HeightOfNote(size_t index) {
  double& height = notes_[index].height;
  if (height >= 0) return height;
  const auto laid = Lay(index);
  height = 0;
  while (const auto slices = laid->pages->Next()) height += HeightOf(*slices);
  return height;
}

double PageNotes::HeightFor(Range text) {
  const double most = pageHeight_ * kMostPart;
  double height = 0;
  for (const auto& laid : waiting_) height += laid->left;
  for (size_t i = FirstFrom(text.begin); i < notes_.size() && notes_[i].position < text.end && height < most; ++i) {
    height += HeightOfNote(i);
  }
  return height == 0 ? 0 : std::min(most, height + kAbove);
}

std::vector<PageNotes::Part> PageNotes::Take(Range text, double room) {
  for (size_t i = FirstFrom(text.begin); i < notes_.size() && notes_[i].position < text.end; ++i) {
    waiting_.push_back(Lay(i));
    waiting_.back()->left = HeightOfNote(i);
  }
  std::vector<Part> foot;
  for (double height = kAbove; !waiting_.empty();) {
    const std::shared_ptr<Laid> laid = waiting_.front();
    auto slices = laid->pages->Next(room - height, foot.empty());
    if (slices && !slices->empty()) {
      height += HeightOf(*slices);
      laid->left = std::max(0.0, laid->left - HeightOf(*slices));
      foot.push_back({laid, std::move(*slices)});
    }
    if (!laid->pages->done()) break;
    waiting_.pop_front();
  }
  return foot;
}

void PageNotes::Paint(const std::vector<Part>& foot, SlicePainter& painter, QPainter& lines) {
  if (foot.empty()) return;
  double y = pageHeight_;
  for (const Part& part : foot) y -= HeightOf(part.slices);
  lines.fillRect(QRectF(0, y - kAbove / 2, kLineWidth, 1), Qt::black);
  for (const Part& part : foot) {
    painter.Paint(part.slices, y, part.note->document.formats(), part.note->text.pictures);
    y += HeightOf(part.slices);
  }
}

}  // namespace text::layout
