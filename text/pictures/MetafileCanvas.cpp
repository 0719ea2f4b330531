#include "text/pictures/MetafileCanvas.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QImageReader>

#include <algorithm>
#include <cmath>

namespace text::pictures {
namespace {

constexpr size_t kMostObjects = 4096;
constexpr size_t kMostSaved = 256;
constexpr size_t kMostPoints = 1 << 20;
constexpr int64_t kMostBitmapPixels = 16 << 20;

}  // namespace

QColor MetafileColor(uint32_t rgb) {
  return QColor(rgb & 255, rgb >> 8 & 255, rgb >> 16 & 255);
}

QPen MetafilePen(uint32_t style, double width, uint32_t color) {
  static constexpr Qt::PenStyle kStyles[] = {Qt::SolidLine,   Qt::DashLine,       Qt::DotLine,
                                             Qt::DashDotLine, Qt::DashDotDotLine, Qt::NoPen};
  const uint32_t line = style & 15;
  return QPen(MetafileColor(color), std::abs(width), line < std::size(kStyles) ? kStyles[line] : Qt::SolidLine,
              Qt::RoundCap, Qt::RoundJoin);
}

QBrush MetafileBrush(uint32_t style, uint32_t color) {
  if (style == 1) return QBrush(Qt::NoBrush);
  return QBrush(MetafileColor(color));
}

MetafileCanvas::MetafileCanvas(QSize pixels) : image_(pixels, QImage::Format_ARGB32_Premultiplied), left_(kMostPoints) {
  image_.fill(Qt::transparent);
  painter_.begin(&image_);
  painter_.setRenderHint(QPainter::Antialiasing);
  painter_.setRenderHint(QPainter::SmoothPixmapTransform);
}

bool MetafileCanvas::Spend(size_t points) {
  constexpr size_t kOfARecord = 4;
  left_ -= std::min(left_, points + kOfARecord);
  return left_ > 0;
}

QImage MetafileCanvas::Finish() {
  while (!saved_.empty()) Restore(-1);
  painter_.end();
  return drawn_ ? image_ : QImage();
}

void MetafileCanvas::Save() {
  const bool painter = saved_.size() < kMostSaved;
  if (!painter) return;
  painter_.save();
  saved_.emplace_back(state, painter);
}

void MetafileCanvas::Restore(int which) {
  const auto count = static_cast<int>(saved_.size());
  int target = which < 0 ? count + which : which - 1;
  if (target < 0 || target >= count) return;
  while (static_cast<int>(saved_.size()) > target) {
    painter_.restore();
    state = saved_.back().first;
    saved_.pop_back();
  }
}

void MetafileCanvas::Put(std::optional<size_t> slot, MetafileObject object) {
  if (!slot) {
    const auto free = std::find_if(objects_.begin(), objects_.end(), [](const MetafileObject& held) {
      return std::holds_alternative<std::monostate>(held);
    });
    slot = static_cast<size_t>(free - objects_.begin());
  }
  if (*slot >= kMostObjects) return;
  if (*slot >= objects_.size()) objects_.resize(*slot + 1);
  objects_[*slot] = std::move(object);
}

void MetafileCanvas::Select(size_t slot) {
  if (slot < objects_.size()) Select(objects_[slot]);
}

void MetafileCanvas::Select(const MetafileObject& object) {
  if (const auto* pen = std::get_if<QPen>(&object)) state.pen = *pen;
  if (const auto* brush = std::get_if<QBrush>(&object)) state.brush = *brush;
  if (const auto* font = std::get_if<MetafileFont>(&object)) state.font = *font;
}

void MetafileCanvas::Delete(size_t slot) {
  if (slot < objects_.size()) objects_[slot] = std::monostate();
}

void MetafileCanvas::Draw(const QPainterPath& path, bool filled, bool outlined) {
  if (path_) return path_->addPath(path);
  QPainterPath shape = state.toPixels.map(path);
  shape.setFillRule(state.fill);
  QPen pen = state.pen;
  const double scale = std::sqrt(std::abs(state.toPixels.determinant()));
  pen.setWidthF(std::clamp(pen.widthF() * scale, 1.0, 1e4));
  painter_.setPen(outlined ? pen : QPen(Qt::NoPen));
  painter_.setBrush(filled ? state.brush : QBrush(Qt::NoBrush));
  painter_.drawPath(shape);
  drawn_ = true;
}

void MetafileCanvas::DrawText(const QString& text, QPointF at) {
  constexpr unsigned kCurrent = 1, kRight = 2, kCenter = 6, kBottom = 8, kBaseline = 24;
  const double scale = std::abs(state.toPixels.m22()) + std::abs(state.toPixels.m21());
  const double pixels = std::clamp(state.font.height * scale, 1.0, 2000.0);
  QFont font = state.font.font;
  font.setPixelSize(std::max(1, qRound(pixels)));
  const QFontMetricsF metrics(font, &image_);
  const double width = metrics.horizontalAdvance(text);
  if (state.textAlign & kCurrent) at = state.position;
  double x = 0, y = metrics.ascent();
  if ((state.textAlign & kCenter) == kCenter) {
    x = -width / 2;
  } else if (state.textAlign & kRight) {
    x = -width;
  }
  if ((state.textAlign & kBaseline) == kBaseline) {
    y = 0;
  } else if (state.textAlign & kBottom) {
    y = -metrics.descent();
  }
  painter_.save();
  painter_.translate(state.toPixels.map(at));
  painter_.rotate(-state.font.turned);
  if (state.opaque) painter_.fillRect(QRectF(x, y - metrics.ascent(), width, metrics.height()), state.background);
  painter_.setFont(font);
  painter_.setPen(state.textColor);
  painter_.drawText(QPointF(x, y), text);
  painter_.restore();
  drawn_ = true;
}

void MetafileCanvas::DrawBitmap(std::string_view dib, const QRectF& to) {
  QByteArray bytes = QByteArray::fromRawData(dib.data(), static_cast<qsizetype>(dib.size()));
  QBuffer buffer(&bytes);
  if (dib.empty() || !buffer.open(QIODevice::ReadOnly)) return;
  QImageReader reader(&buffer, "dib");
  const QSize size = reader.size();
  const int64_t count = int64_t{size.width()} * size.height();
  if (count <= 0 || count > kMostBitmapPixels || !Spend(static_cast<size_t>(count) / 64)) return;
  const QImage image = reader.read();
  if (image.isNull()) return;
  painter_.drawImage(state.toPixels.mapRect(to), image);
  drawn_ = true;
}

void MetafileCanvas::Clip(const QPainterPath& path) {
  painter_.setClipPath(state.toPixels.map(path), painter_.hasClipping() ? Qt::IntersectClip : Qt::ReplaceClip);
}

void MetafileCanvas::EndPath() {
  if (path_) finished_ = *path_;
  path_.reset();
}

void MetafileCanvas::PaintPath(bool filled, bool outlined) {
  Draw(finished_, filled, outlined);
}

void MetafileCanvas::ClipToPath() {
  Clip(finished_);
}

void MetafileCanvas::ClosePath() {
  if (path_) path_->closeSubpath();
}

}  // namespace text::pictures
