#include "text/layout/TableLayout.h"

#include <algorithm>
#include <cmath>

namespace text::layout {
namespace {

constexpr double kLine = 1;          // a border's width
constexpr double kMinTextWidth = 8;  // pixels
constexpr double kMinCellWidth = 1;  // likewise
constexpr uint8_t kDeepest = 8;      // tables within tables beyond this are shown as paragraphs
constexpr uint8_t kAllSides = TableCell::kLeft | TableCell::kTop | TableCell::kRight | TableCell::kBottom;

double Pixels(int32_t twips, double zoom) {
  return std::clamp(twips / kTwipsPerPixel * zoom, -1e5, 1e5);
}

class RowPlacer {
 public:
  RowPlacer(const Content& content, Range range, double zoom, const LayPart& lay)
      : content_(content), formats_(content.formats()), range_(range), zoom_(zoom), lay_(lay) {}

  // The texts as one row of a table of that level; returns its height.
  double PlaceRow(const CellText* begin, const CellText* end, uint8_t level, RowId below, double x, double y,
                  double width);

  std::vector<RowPart> parts;
  std::vector<CellFrame> frames;

 private:
  struct Cell {
    const CellText* begin;
    const CellText* end;
    bool isEmpty() const { return end - begin == 1 && begin->range.empty(); }
  };
  struct Frame {
    double left, right;
    Color shading;
  };
  std::vector<Cell> CellsOf(const CellText* begin, const CellText* end, uint8_t level) const;
  std::vector<double> EdgesOf(const TableRow& row, size_t cells, double x, double width) const;
  double PlaceTexts(const Cell& cell, uint8_t level, Frame frame, double x, double y, double width);
  double PlaceText(const CellText& text, Frame frame, double x, double y, double width);

  const Content& content_;
  const FormatTable& formats_;
  Range range_;
  double zoom_;
  const LayPart& lay_;
};

std::vector<RowPlacer::Cell> RowPlacer::CellsOf(const CellText* begin, const CellText* end, uint8_t level) const {
  std::vector<Cell> cells;
  const CellText* from = begin;
  for (const CellText* text = begin; text != end; ++text) {
    if (text->level != level || text->mark == RowMark::kNone) continue;
    cells.push_back({from, text + 1});
    from = text + 1;
  }
  if (from != end) cells.push_back({from, end});
  return cells;
}

// Ascending, one more than there are cells, within the width.
std::vector<double> RowPlacer::EdgesOf(const TableRow& row, size_t cells, double x, double width) const {
  std::vector<double> edges{0};
  if (row.cells.empty()) {
    for (size_t i = 1; i <= cells; ++i) edges.push_back(width * static_cast<double>(i) / static_cast<double>(cells));
  } else {
    const double left = Pixels(row.left, zoom_);
    // Where a row begins left of the text area all of it moves to the right.
    edges[0] = std::max(0.0, left);
    const double shift = edges[0] - left;
    for (const TableCell& cell : row.cells) {
      edges.push_back(std::max(edges.back() + kMinCellWidth, Pixels(cell.right, zoom_) + shift));
    }
    const double last = edges.back() - edges[edges.size() - 2];
    while (edges.size() <= cells) edges.push_back(edges.back() + last);
  }
  const double scale = std::min(1.0, (width - kLine) / std::max(1.0, edges.back()));
  for (double& edge : edges) edge = std::round(x + edge * scale);
  return edges;
}

// A cell is continued where the row below has one of the same edges that says so.
bool IsContinued(const TableRow& row, size_t first, size_t last, const TableRow& below) {
  constexpr int32_t kAlmost = 30;
  const auto near = [](int32_t a, int32_t b) { return std::abs(a - b) <= kAlmost; };
  if (last >= row.cells.size()) return false;
  const auto leftOf = [](const TableRow& of, size_t cell) { return cell == 0 ? of.left : of.cells[cell - 1].right; };
  for (size_t i = 0; i < below.cells.size(); ++i) {
    if (!below.cells[i].joinsAbove || !near(leftOf(below, i), leftOf(row, first))) continue;
    size_t end = i;
    while (end + 1 < below.cells.size() && below.cells[end + 1].joinsLeft) ++end;
    if (near(below.cells[end].right, row.cells[last].right)) return true;
  }
  return false;
}

// Of one or several cells that are joined side by side.
CellFrame FrameOf(const TableCell& first, const TableCell& last, bool continued) {
  const auto borders = static_cast<uint8_t>((first.borders & ~TableCell::kRight) | (last.borders & TableCell::kRight));
  const auto hidden =
      static_cast<uint8_t>((first.joinsAbove ? TableCell::kTop : 0) | (continued ? TableCell::kBottom : 0));
  return {QRectF(), static_cast<uint8_t>(borders & ~hidden), static_cast<uint8_t>(kAllSides & ~borders & ~hidden),
          first.shading};
}

double RowPlacer::PlaceRow(const CellText* begin, const CellText* end, uint8_t level, RowId below, double x, double y,
                           double width) {
  const std::vector<Cell> cells = CellsOf(begin, end, level);
  const CellText* definition = std::find_if(begin, end, [&](const CellText& text) { return text.level == level; });
  const TableRow& row = formats_[(definition == end ? begin : definition)->row];
  const std::vector<double> edges = EdgesOf(row, cells.size(), x, width);
  const auto definitionOf = [&](size_t cell) {
    return cell < row.cells.size() ? row.cells[cell] : row.cells.empty() ? TableCell{0, kAllSides, {}} : TableCell{};
  };
  double height = std::max(0.0, std::abs(Pixels(row.height, zoom_)));
  height = std::min(height, kMaxPixels);
  const size_t firstFrame = frames.size(), count = edges.size() - 1;
  for (size_t i = 0; i < count;) {
    size_t next = i + 1;
    while (next < count && definitionOf(next).joinsLeft) ++next;
    const Frame frame{edges[i], edges[next], definitionOf(i).shading};
    const double gap = std::min(Pixels(std::max(0, row.gap), zoom_), (frame.right - frame.left) / 4);
    const double textWidth = std::max(kMinTextWidth, frame.right - frame.left - 2 * gap - kLine);
    double bottom = y + kLine;
    for (size_t cell = i; cell < std::min(next, cells.size()); ++cell) {
      // What is left of a joined cell is mostly its mark; it takes no room.
      const bool ghost = cell > i && cells[cell].isEmpty();
      const double textEnd =
          PlaceTexts(cells[cell], level, frame, frame.left + gap + kLine, ghost ? y + kLine : bottom, textWidth);
      if (!ghost) bottom = textEnd;
    }
    height = std::max(height, bottom - y + kLine);
    const bool continued = below != RowId::kNone && IsContinued(row, i, next - 1, formats_[below]);
    frames.push_back(FrameOf(definitionOf(i), definitionOf(next - 1), continued));
    frames.back().rect = QRectF(frame.left, y, frame.right - frame.left, 0);
    i = next;
  }
  height = std::ceil(height);
  for (size_t i = firstFrame; i < frames.size(); ++i) {
    if (frames[i].rect.height() == 0) frames[i].rect.setHeight(height);
  }
  return y + height;
}

// One below the other: paragraphs, and the rows of tables within.
double RowPlacer::PlaceTexts(const Cell& cell, uint8_t level, Frame frame, double x, double y, double width) {
  for (const CellText* text = cell.begin; text != cell.end;) {
    if (text->level <= level || level >= kDeepest) {
      y = PlaceText(*text++, frame, x, y, width);
      continue;
    }
    const CellText* end = text;
    uint8_t inner = text->level;
    for (; end != cell.end && end->level > level; ++end) inner = std::min(inner, end->level);
    const CellText* rowEnd = std::find_if(text, end, [&](const CellText& candidate) {
      return candidate.level == inner && candidate.mark == RowMark::kRowEnd;
    });
    if (rowEnd != end) end = rowEnd + 1;
    const bool another = end != cell.end && end->level == inner;
    y = PlaceRow(text, end, inner, another ? end->row : RowId::kNone, x, y, width);
    text = end;
  }
  return y;
}

double RowPlacer::PlaceText(const CellText& text, Frame frame, double x, double y, double width) {
  for (const BlockSpan& span : SegmentsOf(content_, text.range, text.paragraph)) {
    RowPart part;
    part.block = lay_(span, width);
    part.begin = static_cast<int>((span.range.begin - range_.begin).value());
    part.end = static_cast<int>((span.range.end - range_.begin).value());
    part.x = x;
    part.y = y;
    part.left = frame.left;
    part.right = frame.right;
    part.behind = frame.shading;
    y += part.block->height();
    parts.push_back(std::move(part));
  }
  return y;
}

}  // namespace

RowId RowJoinedBelow(const Content& content, const BlockSpan& row) {
  const Breaks next = row.paragraphNumber + row.inner + Breaks(1);
  if (next > content.breaks()) return RowId::kNone;
  const RowId below = content.formats()[content.ParaFormatOf(next)].row;
  const auto& cells = content.formats()[below].cells;
  return std::any_of(cells.begin(), cells.end(), [](const TableCell& cell) { return cell.joinsAbove; }) ? below
                                                                                                        : RowId::kNone;
}

std::shared_ptr<const LayoutRow> LayTableRow(const Content& content, const BlockSpan& span, double width, double zoom,
                                             const LayPart& lay) {
  const RowParagraphs row{span.paragraphNumber, span.paragraphNumber + span.inner};
  const std::vector<CellText> texts = CellTexts(content, row);
  uint8_t level = texts.front().level;
  for (const CellText& text : texts) level = std::min(level, text.level);
  RowPlacer placer(content, span.range, zoom, lay);
  const RowId below = RowJoinedBelow(content, span);
  const double height = placer.PlaceRow(texts.data(), texts.data() + texts.size(), level, below, 0, 0, width);
  return std::make_shared<const LayoutRow>(std::move(placer.parts), std::move(placer.frames), height);
}

}  // namespace text::layout
