#include "text/html/HtmlOutput.h"

#include "text/TextStore.h"
#include "text/Utf16.h"

#include <algorithm>

namespace text::html {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\f";
constexpr std::string_view kSoftBreak = "\xE2\x80\xA8";
constexpr std::string_view kObject = "\xEF\xBF\xBC";
constexpr int32_t kTextWidth = 9000;  // of a table, twips
constexpr int kMaxLineBreaks = 1000;

TableCell BorderedCell() {
  TableCell cell;
  cell.borders = TableCell::kLeft | TableCell::kTop | TableCell::kRight | TableCell::kBottom;
  return cell;
}

}  // namespace

HtmlOutput::HtmlOutput(const std::shared_ptr<TextStore>& store) : formats_(store->formats()), builder_(store) {}

void HtmlOutput::Text(std::string_view utf8, const Look& look) {
  if (look.hidden) return;
  if (look.preserved) return Preserved(utf8, look);
  while (!utf8.empty()) {
    const size_t begin = utf8.find_first_not_of(kBlanks);
    if (begin != 0 && !space_ && begun_ && lineBreaks_ == 0) {
      space_ = true;
      spaceFormat_ = look.chars;
    }
    if (begin == utf8.npos) return;
    const size_t end = std::min(utf8.find_first_of(kBlanks, begin), utf8.size());
    Put(utf8.substr(begin, end - begin), look);
    utf8.remove_prefix(end);
  }
}

void HtmlOutput::Preserved(std::string_view utf8, const Look& look) {
  while (!utf8.empty()) {
    const size_t end = FindBreak(utf8);
    if (end > 0) Put(utf8.substr(0, end), look);
    if (end == utf8.size()) return;
    // The one directly behind <pre> does not count.
    if (begun_ || lineBreaks_ > 0 || end > 0) LineBreak(look);
    utf8.remove_prefix(end + (utf8.substr(end).starts_with("\r\n") ? 2 : 1));
  }
}

void HtmlOutput::LineBreak(const Look& look) {
  if (look.hidden) return;
  if (!begun_ && lineBreaks_ == 0) {
    Put({}, look);
    begun_ = false;
  }
  space_ = false;
  spaceFormat_ = look.chars;
  lineBreaks_ = std::min(lineBreaks_ + 1, kMaxLineBreaks);
}

void HtmlOutput::Object(EmbeddedObject object, const Look& look) {
  if (look.hidden) return;
  Look of = look;
  of.chars.object = formats_.Add(std::move(object));
  Put(kObject, of);
  chars_.object = ObjectId::kNone;
}

// Also begins the paragraph if need be, and pays what was held back.
void HtmlOutput::Put(std::string_view bytes, const Look& look) {
  if (!begun_ && lineBreaks_ == 0) {
    if (inRow_ && cells_.empty()) BeginCell(1);
    if (owesBreak_) PutBreak(paragraph_);
    paragraph_ = look.paragraph;
  }
  owesBreak_ = false;
  begun_ = true;
  chars_ = look.chars;
  if (space_) Send({" ", spaceFormat_, {}});
  space_ = false;
  std::string softBreaks;
  for (; lineBreaks_ > 0; --lineBreaks_) softBreaks += kSoftBreak;
  if (!softBreaks.empty()) Send({std::move(softBreaks), spaceFormat_, {}});
  if (!bytes.empty()) Send({std::string(bytes), look.chars, {}});
}

void HtmlOutput::EndParagraph() {
  if (!begun_ && lineBreaks_ == 0) return;
  // The last of the line breaks is the block's own end.
  std::string text;
  for (; lineBreaks_ > 1; --lineBreaks_) text += kSoftBreak;
  if (!text.empty()) Send({std::move(text), chars_, {}});
  lineBreaks_ = 0;
  begun_ = space_ = false;
  owesBreak_ = true;
}

void HtmlOutput::PutBreak(ParaFormat paragraph) {
  CharFormat chars = chars_;
  chars.object = ObjectId::kNone;
  chars.link = LinkId::kNone;
  owesBreak_ = false;
  Send({"\r\n", chars, paragraph});
}

void HtmlOutput::BeginRow() {
  EndParagraph();
  if (owesBreak_) PutBreak(paragraph_);
  inRow_ = true;
}

void HtmlOutput::BeginCell(int span) {
  if (cells_.size() >= kMaxCells) return;
  if (!cells_.empty()) EndCell(RowMark::kCellEnd);
  PutJoined();
  paragraph_ = {};
  joined_ = std::clamp(span, 1, static_cast<int>(kMaxCells - cells_.size())) - 1;
  cells_.push_back(BorderedCell());
}

// The cells that the last one spans, but for the end of the last of them.
void HtmlOutput::PutJoined() {
  for (; joined_ > 0; --joined_) {
    TableCell cell = BorderedCell();
    cell.joinsLeft = true;
    cells_.push_back(cell);
    EndCell(RowMark::kCellEnd);
  }
}

void HtmlOutput::EndCell(RowMark mark) {
  EndParagraph();
  ParaFormat paragraph = paragraph_;
  paragraph.rowMark = mark;
  PutBreak(paragraph);
}

void HtmlOutput::EndRow() {
  if (!inRow_) return;
  if (!cells_.empty()) {
    if (joined_ > 0) {
      EndCell(RowMark::kCellEnd);
      --joined_;
      PutJoined();
      cells_.push_back(BorderedCell());
      cells_.back().joinsLeft = true;
    }
    EndCell(RowMark::kRowEnd);
    TableRow definition;
    definition.gap = 108;
    const auto count = static_cast<int32_t>(cells_.size());
    for (int32_t i = 0; i < count; ++i) cells_[static_cast<size_t>(i)].right = kTextWidth / count * (i + 1);
    definition.cells = std::move(cells_);
    const RowId row = formats_.Intern(definition);
    for (Item& item : row_) {
      if (item.ends) item.ends->row = row;
      Write(item);
    }
  }
  cells_.clear();
  row_.clear();
  paragraph_ = {};
  inRow_ = false;
}

void HtmlOutput::Send(Item item) {
  if (inRow_) {
    row_.push_back(std::move(item));
  } else {
    Write(item);
  }
}

void HtmlOutput::Write(const Item& item) {
  const ParaFormatId paragraph = item.ends ? formats_.Intern(*item.ends) : ParaFormatId::kDefault;
  builder_.Append(item.bytes, formats_.Intern(item.chars), paragraph);
}

Content HtmlOutput::Finish() {
  EndParagraph();
  EndRow();
  return builder_.Finish(formats_.Intern(paragraph_));
}

}  // namespace text::html
