// What the records of both kinds of metafiles draw with.
#pragma once

#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

namespace text::pictures {

// Numbers of little-endian bytes; what lies behind the end is 0.
class RecordBytes {
 public:
  explicit RecordBytes(std::string_view bytes) : bytes_(bytes) {}
  size_t size() const { return bytes_.size(); }
  uint32_t U(size_t at, size_t width) const {
    uint32_t value = 0;
    for (size_t i = 0; i < width && at + i < bytes_.size(); ++i) {
      value |= uint32_t{static_cast<unsigned char>(bytes_[at + i])} << (8 * i);
    }
    return value;
  }
  int16_t I16(size_t at) const { return static_cast<int16_t>(U(at, 2)); }
  int32_t I32(size_t at) const { return static_cast<int32_t>(U(at, 4)); }
  std::string_view From(size_t at, size_t length = std::string_view::npos) const {
    return at > bytes_.size() ? std::string_view() : bytes_.substr(at, length);
  }

 private:
  std::string_view bytes_;
};

struct MetafileFont {
  QFont font;
  double height = 0;  // of the letters, in units of the picture; negative heights of the file are made positive
  double turned = 0;  // degrees, counter-clockwise
};
// One slot of the table of objects that records select by number.
using MetafileObject = std::variant<std::monostate, QPen, QBrush, MetafileFont>;

// How the records' coordinates lead to the picture.
struct MetafileMapping {
  QPointF windowOrigin, viewOrigin;
  QPointF windowExtent{1, 1}, viewExtent{1, 1};
  QTransform world;
  bool scaled = false;  // the extents count
};

class MetafileCanvas {
 public:
  explicit MetafileCanvas(QSize pixels);

  struct State {
    QPen pen = QPen(Qt::black);
    QBrush brush = QBrush(Qt::white);
    MetafileFont font;
    QColor textColor = Qt::black, background = Qt::white;
    bool opaque = true;  // what is behind text
    unsigned textAlign = 0;
    Qt::FillRule fill = Qt::OddEvenFill;
    QPointF position;
    MetafileMapping mapping;
    QTransform toPixels;  // of the picture's coordinates, as the mapping says
  };
  State state;
  void Save();
  void Restore(int which);  // the last but ..., or by number from 1

  // --- Objects
  void Put(std::optional<size_t> slot, MetafileObject object);  // the lowest free slot when none is given
  void Select(size_t slot);
  void Select(const MetafileObject& object);
  void Delete(size_t slot);

  // --- Drawing, in the picture's coordinates
  void Draw(const QPainterPath& path, bool filled, bool outlined);
  void DrawText(const QString& text, QPointF at);
  void DrawBitmap(std::string_view dib, const QRectF& to);
  void Clip(const QPainterPath& path);
  // While a path is recorded shapes go into it, and no path is painted.
  void BeginPath() { path_.emplace(); }
  void EndPath();
  void PaintPath(bool filled, bool outlined);
  void ClipToPath();
  void ClosePath();
  // The path that is recorded, if it may grow.
  QPainterPath* recording() { return path_ && path_->elementCount() < kMostElements ? &*path_ : nullptr; }
  bool isRecording() const { return path_.has_value(); }

  // False once too much was drawn, or for too long. Everything costs, by about what it takes to paint.
  bool Spend(double work);
  QImage Finish();

 private:
  static constexpr int kMostElements = 10000;  // of a path
  double WorkOf(const QRectF& pixels, double perPixel) const;

  QImage image_;
  QPainter painter_;
  std::vector<State> saved_;
  int notSaved_ = 0;  // asked for beyond the most
  std::vector<MetafileObject> objects_;
  std::optional<QPainterPath> path_;  // being recorded
  QPainterPath finished_;
  double left_, clocked_;
  std::chrono::steady_clock::time_point end_;
  bool drawn_ = false;
};

// At most 8 million pixels of that shape; the painter makes it larger.
QSize MetafilePixels(QSize pixels);
QColor MetafileColor(uint32_t rgb);
QPen MetafilePen(uint32_t style, double width, uint32_t color);
QBrush MetafileBrush(uint32_t style, uint32_t color);

}  // namespace text::pictures
