// Documents and views for the layout's tests.
#pragma once

#include "text/layout/ViewLayout.h"

#include <QFont>
#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace text::layout {

inline const char* const kHebrew = "\u05E9\u05DC\u05D5\u05DD \u05E2\u05D5\u05DC\u05DD \u05DE\u05D4";
inline const char* const kArabic = "\u0645\u0631\u062D\u0628\u0627 \u0628\u0627\u0644\u0639\u0627\u0644\u0645";

inline Content MakeContent(std::string_view bytes) {
  ContentBuilder builder(Content().store());
  builder.Append(bytes);
  return builder.Finish();
}

// Paragraph by paragraph, each with formats of its own; the last one added has no break.
class RichText {
 public:
  RichText() : store_(Content().store()), formats_(Content(store_).formats()), builder_(store_) {}
  FormatTable& formats() { return formats_; }
  RichText& Add(std::string_view text, const ParaFormat& paragraph = {}, const CharFormat& chars = {}) {
    if (any_) builder_.Append("\n", CharFormatId::kDefault, last_);
    any_ = true;
    last_ = formats_.Intern(paragraph);
    builder_.Append(text, formats_.Intern(chars));
    return *this;
  }
  // The cells of a row, "|" between paragraphs of one.
  RichText& AddRow(const std::vector<std::string>& cells, const TableRow& row) {
    ParaFormat format;
    format.row = formats_.Intern(row);
    for (const std::string& cell : cells) {
      for (size_t at = 0; at <= cell.size();) {
        const size_t end = std::min(cell.find('|', at), cell.size());
        const bool last = &cell == &cells.back();
        format.rowMark = end < cell.size() ? RowMark::kNone : last ? RowMark::kRowEnd : RowMark::kCellEnd;
        Add(std::string_view(cell).substr(at, end - at), format);
        at = end + 1;
      }
    }
    return *this;
  }
  Document Finish() { return Document(builder_.Finish(last_)); }

 private:
  std::shared_ptr<TextStore> store_;
  FormatTable& formats_;
  ContentBuilder builder_;
  ParaFormatId last_ = ParaFormatId::kDefault;
  bool any_ = false;
};

inline TableRow MakeRow(std::initializer_list<int> rights, int left = 0) {
  TableRow row;
  row.left = left;
  row.gap = 75;
  for (const int right : rights) row.cells.push_back({right, TableCell::kLeft | TableCell::kTop, {}});
  return row;
}

inline Document MakeDocument(std::string_view bytes) {
  return Document(MakeContent(bytes));
}

inline std::string Repeated(std::string_view piece, int times) {
  std::string text;
  text.reserve(piece.size() * static_cast<size_t>(times));
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

// Paragraphs that differ in length and text.
inline std::string Paragraphs(int count, int longest = 30) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += "paragraph " + std::to_string(i) + ":";
    for (int word = 0; word < i * 7 % (longest + 1); ++word) text += " w" + std::to_string(word * i % 97);
    text += "\n";
  }
  return text;
}

struct TestView : ViewLayout {
  explicit TestView(const Document& document, double width = 300, double height = 200) : ViewLayout(document) {
    QFont font("DejaVu Sans");
    SetDefaultFont(font);
    SetMargins(4);
    SetViewport({width, height});
  }
  // How high the line of a position stands in the viewport.
  double TopOf(Units position) { return CaretRect({position}).top(); }
};

inline void Insert(Document& document, Units at, std::string_view bytes) {
  document.Replace({at, at}, bytes, CharFormatId::kDefault, EditKind::kCommand, {at, at});
}
inline void Remove(Document& document, Range range) {
  document.Replace(range, std::string_view(), CharFormatId::kDefault, EditKind::kCommand, {range.begin, range.end});
}

inline QImage PaintToImage(ViewLayout& view, PaintOptions options = {}) {
  QImage image(view.viewport().toSize(), QImage::Format_RGB32);
  image.fill(Qt::magenta);
  QPainter painter(&image);
  view.Paint(painter, QRectF(QPointF(), view.viewport()), options);
  return image;
}

}  // namespace text::layout
