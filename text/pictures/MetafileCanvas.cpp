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
constexpr double kMostWork = 1 << 20;
constexpr double kMostMilliseconds = 500;
constexpr double kFinePath = 100000;  // pixels; longer ones are painted without smooth edges, which would take seconds
constexpr int64_t kMostBitmapPixels = 16 << 20;

// As pixels are crossed, in both directions.
double LengthOf(const QPainterPath& path) {
  double length = 0;
  for (int i = 1; i < path.elementCount(); ++i) {
    const QPointF step = QPointF(path.elementAt(i)) - QPointF(path.elementAt(i - 1));
    length += std::abs(step.x()) + std::abs(step.y());
  }
  return length;
}

}  // namespace

QSize MetafilePixels(QSize pixels) {
  constexpr double kMost = 8 << 20;
  const double scale = std::min(1.0, std::sqrt(kMost / pixels.width() / pixels.height()));
  return {std::max(1, int(pixels.width() * scale)), std::max(1, int(pixels.height() * scale))};
}

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

// Larger pictures may take longer: those for paper.
MetafileCanvas::MetafileCanvas(QSize pixels) : image_(pixels, QImage::Format_ARGB32_Premultiplied) {
  const double count = double(pixels.width()) * pixels.height();
  left_ = kMostWork + count / 4;
  clocked_ = left_ * 0.9;
  end_ = std::chrono::steady_clock::now() + std::chrono::milliseconds(int64_t(kMostMilliseconds + count / 16384));
  image_.fill(Qt::transparent);
  painter_.begin(&image_);
  painter_.setRenderHint(QPainter::Antialiasing);
  painter_.setRenderHint(QPainter::SmoothPixmapTransform);
}

bool MetafileCanvas::Spend(double work) {
  constexpr double kOfARecord = 4;
  left_ = std::max(0.0, left_ - work - kOfARecord);
  // What costs little is drawn however slow the machine is.
  if (left_ < clocked_ && std::chrono::steady_clock::now() > end_) left_ = 0;
  return left_ > 0;
}

double MetafileCanvas::WorkOf(const QRectF& pixels, double perPixel) const {
  const QRectF seen = pixels & QRectF(image_.rect());
  return seen.width() * seen.height() * perPixel;
}

QImage MetafileCanvas::Finish() {
  while (!saved_.empty()) Restore(-1);
  painter_.end();
  return drawn_ ? image_ : QImage();
}

void MetafileCanvas::Save() {
  if (saved_.size() >= kMostSaved) {
    ++notSaved_;
    return;
  }
  painter_.save();
  saved_.push_back(state);
}

void MetafileCanvas::Restore(int which) {
  const auto held = static_cast<int>(saved_.size()), count = held + notSaved_;
  const int target = which < 0 ? count + std::max(which, -count - 1) : which - 1;
  if (target < 0 || target >= count) return;
  notSaved_ = std::max(0, target - held);
  while (static_cast<int>(saved_.size()) > target) {
    painter_.restore();
    state = saved_.back();
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
  if (path.elementCount() > kMostElements) return;
  if (path_) {
    if (path_->elementCount() + path.elementCount() <= kMostElements) path_->addPath(path);
    return;
  }
  QPainterPath shape = state.toPixels.map(path);
  shape.setFillRule(state.fill);
  QPen pen = state.pen;
  const double scale = std::sqrt(std::abs(state.toPixels.determinant()));
  const double widest = image_.width() + image_.height();
  pen.setWidthF(std::clamp(pen.widthF() * scale, 1.0, widest));
  double length = LengthOf(shape);
  if (outlined) length = 3 * length + 3 * shape.elementCount() * pen.widthF();
  if (!Spend(length / 4 + WorkOf(shape.boundingRect(), 1.0 / 4096))) return;
  if (length > kFinePath) pen.setStyle(pen.style() == Qt::NoPen ? Qt::NoPen : Qt::SolidLine);
  painter_.setRenderHint(QPainter::Antialiasing, length <= kFinePath);
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
  constexpr qsizetype kMostLetters = 4096;
  const QFontMetricsF metrics(font, &image_);
  if (text.size() > kMostLetters) return;
  const double width = metrics.horizontalAdvance(text);
  const double work = std::min(width * pixels, 1.0 * image_.width() * image_.height()) / 256;
  if (!Spend(static_cast<double>(text.size()) * 16 + work)) return;
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
  if (count <= 0 || count > kMostBitmapPixels || !Spend(static_cast<double>(count) / 64)) return;
  const QRectF target = state.toPixels.mapRect(to);
  if (!Spend(WorkOf(target, 1.0 / 256))) return;
  const QImage image = reader.read();
  if (image.isNull()) return;
  painter_.drawImage(target, image);
  drawn_ = true;
}

void MetafileCanvas::Clip(const QPainterPath& path) {
  constexpr int kMostOfAClip = 1000;
  QPainterPath shape = state.toPixels.map(path);
  if (shape.elementCount() > kMostOfAClip) {
    const QRectF around = shape.boundingRect();
    shape.clear();
    shape.addRect(around);
  }
  if (!Spend(LengthOf(shape) / 4)) return;
  painter_.setClipPath(shape, painter_.hasClipping() ? Qt::IntersectClip : Qt::ReplaceClip);
}

void MetafileCanvas::EndPath() {
  if (path_) finished_ = *path_;
  path_.reset();
}

void MetafileCanvas::PaintPath(bool filled, bool outlined) {
  if (!path_) Draw(finished_, filled, outlined);
}

void MetafileCanvas::ClipToPath() {
  Clip(finished_);
}

void MetafileCanvas::ClosePath() {
  if (path_) path_->closeSubpath();
}

}  // namespace text::pictures
