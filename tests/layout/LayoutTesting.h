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
