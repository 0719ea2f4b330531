// A document laid out for a viewport: only what is near the visible part is shaped, everything else is estimated.
// Knows no widget; paints into any painter. All rectangles and points are logical pixels in viewport coordinates.
#pragma once

#include "text/Document.h"

#include <QColor>
#include <QFont>
#include <QPalette>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QTextLayout>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QPainter;

namespace text::layout {

class BlockPainter;

// A caret place: at a line wrap the same position stands at the end of one line (kLeft) and the start of the next
// (kRight).
struct CaretPlace {
  Units position;
  Bias affinity = Bias::kRight;
};

// Text that an input method composes, shown at a position but not part of the document.
struct Preedit {
  Units position;
  QString text;
  int cursor = -1;  // in the preedit text; -1 = hidden
  QList<QTextLayout::FormatRange> formats;
};

struct PaintOptions {
  QPalette palette;   // text, base, highlight come from here; automatic colours follow it
  QColor background;  // invalid = palette's base
  Selection selection;
  bool selectionActive = true;  // the control has the focus
  bool showCaret = false;
  Bias caretAffinity = Bias::kRight;
  bool overtype = false;                      // block caret
  bool printing = false;                      // without what only helps while editing
  CharFormat caretFormat;                     // of the text typed next; the caret leans when italic
  std::function<QString(ObjectId)> noteMark;  // what is shown for a note; "*" without
};

class ViewLayout {
 public:
  // The document must outlive the layout. Paragraphs longer than about 8K units are laid out in segments.
  explicit ViewLayout(const Document& document);
  ~ViewLayout();

  // --- Settings. Each keeps the text at the top of the viewport where it is.
  void SetViewport(QSizeF size);
  void SetZoom(double factor);             // 0.1 .. 10; 1 = 15 twips a pixel
  void SetDefaultFont(const QFont& font);  // for formats with the default font
  void SetMargins(double margin);          // around the text, pixels
  void SetDefaultTab(int twips);           // between tab stops that no format sets; 720 at first
  // Stops behind a paragraph's own; behind the last of them the regular distance goes on. Any order; at most 1000.
  void SetDefaultTabStops(std::vector<int> twips);
  void SetLinkColor(const QColor& color);  // of links whose format has no colour
  QSizeF viewport() const;
  double zoom() const;

  // Takes in what changed in the document since the last call. Every function below does this first by itself.
  // The view does not jump: the text at its top stays unless it was removed.
  void Update();

  // --- Scrolling. Heights above and below are estimates that are corrected without moving the text shown.
  // The scroll bar's range is 0 .. scrollMaximum() (at most 2^30), one page being scrollPage().
  int scrollMaximum();
  int scrollPage();
  int scrollValue();
  void SetScrollValue(int value);
  // Moves the text by exactly so many pixels (positive = further down), stopping at both ends. Returns what it moved.
  double ScrollBy(double pixels);
  // Scrolls as little as needed so that the place with some context is visible; for one in the text's first line, to
  // the text's top if that keeps it visible. Returns true when it scrolled.
  bool EnsureVisible(CaretPlace place, double contextPixels = 0);
  // The first and last position that are at least partly visible.
  Range VisibleRange();

  // --- Geometry
  QRectF CaretRect(CaretPlace place);  // far outside the viewport for a place that is not near it
  CaretPlace HitTest(QPointF point);   // always a valid place, the nearest one
  bool IsOnText(QPointF point);        // the point is really over a character
  // The character really under a point, or nothing.
  std::optional<Units> CharacterAt(QPointF point);
  // The rectangles that the range covers within the viewport.
  std::vector<QRectF> RangeRects(Range range);

  // --- Lines, anywhere in the document
  Range LineAt(CaretPlace place);  // without the break; of the visual line
  // The place `lines` visual lines further down (negative: up) nearest to x; stays in the first or last line at the
  // ends.
  CaretPlace MoveByLines(CaretPlace place, int64_t lines, double x);
  // One character to the visual left or right, through right-to-left runs as they are seen.
  CaretPlace MoveVisually(CaretPlace place, bool right);
  bool IsRightToLeft(Breaks paragraph);

  // --- Painting
  void SetPreedit(std::optional<Preedit> preedit);
  const std::optional<Preedit>& preedit() const;
  void Paint(QPainter& painter, const QRectF& clip, const PaintOptions& options);

  // How many layout blocks are held; for tests of the bound.
  size_t cachedBlocks() const;

 private:
  void PaintCaret(BlockPainter& painter, const PaintOptions& options);

  struct Impl;
  std::unique_ptr<Impl> impl_;
};

// The format's font at that zoom; the document's default family when it names none. A charset-2 font is a symbol font.
QFont FontOf(const FormatTable& formats, const CharFormat& format, const QFont& defaultFont, double zoom);

}  // namespace text::layout
