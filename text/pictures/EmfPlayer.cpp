// EMF: records of 32-bit numbers.
#include "text/pictures/Metafile.h"
#include "text/pictures/MetafileCanvas.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace text::pictures {
namespace {

constexpr uint32_t kHeader = 1, kEnd = 14;
constexpr uint32_t kSignature = 0x464D4520;  // " EMF"
constexpr uint32_t kStock = 0x80000000u;     // objects that always exist

class EmfPlayer {
 public:
  EmfPlayer(std::string_view bytes, QSize pixels) : all_(bytes), pixels_(pixels), canvas_(pixels) {}

  QImage Run() {
    if (all_.U(0, 4) != kHeader || all_.U(40, 4) != kSignature) return {};
    // The frame is in hundredths of a millimetre; the device's size tells how many of its units that is.
    const double x = all_.I32(72) / (100.0 * std::max(1, all_.I32(80)));
    const double y = all_.I32(76) / (100.0 * std::max(1, all_.I32(84)));
    frame_ = QRectF(QPointF(all_.I32(24) * x, all_.I32(28) * y), QPointF(all_.I32(32) * x, all_.I32(36) * y));
    if (frame_.width() <= 0 || frame_.height() <= 0) frame_ = Rect(all_, 8);
    if (frame_.width() <= 0 || frame_.height() <= 0) return {};
    Map();
    for (size_t at = all_.U(4, 4); at >= 8 && at + 8 <= all_.size();) {
      const uint32_t type = all_.U(at, 4);
      const size_t size = all_.U(at + 4, 4);
      if (size < 8 || type == kEnd || !canvas_.Spend(size / 256)) break;
      Play(type, RecordBytes(all_.From(at, size)));
      at += size;
    }
    return canvas_.Finish();
  }

 private:
  static QPointF Point(const RecordBytes& r, size_t at) { return {double(r.I32(at)), double(r.I32(at + 4))}; }
  static QRectF Rect(const RecordBytes& r, size_t at) { return QRectF(Point(r, at), Point(r, at + 8)).normalized(); }
  static double Real(const RecordBytes& r, size_t at) {
    const double value = std::bit_cast<float>(r.U(at, 4));
    return std::isfinite(value) ? std::clamp(value, -1e6, 1e6) : 0;
  }
  static QTransform Transform(const RecordBytes& r, size_t at) {
    return QTransform(Real(r, at), Real(r, at + 4), Real(r, at + 8), Real(r, at + 12), Real(r, at + 16),
                      Real(r, at + 20));
  }

  void Map() {
    const auto ratio = [](double view, double window) { return window == 0 || view == 0 ? 1 : view / window; };
    const MetafileMapping& map = canvas_.state.mapping;
    const double x = map.scaled ? ratio(map.viewExtent.x(), map.windowExtent.x()) : 1;
    const double y = map.scaled ? ratio(map.viewExtent.y(), map.windowExtent.y()) : 1;
    canvas_.state.toPixels =
        map.world * QTransform::fromTranslate(-map.windowOrigin.x(), -map.windowOrigin.y()) *
        QTransform::fromScale(x, y) *
        QTransform::fromTranslate(map.viewOrigin.x() - frame_.x(), map.viewOrigin.y() - frame_.y()) *
        QTransform::fromScale(pixels_.width() / frame_.width(), pixels_.height() / frame_.height());
  }

  // The points of a record: `wide` of 32 bits each.
  QPolygonF Points(const RecordBytes& r, size_t at, size_t count, bool wide) {
    QPolygonF points;
    if (!canvas_.Spend(count)) return points;
    const size_t size = wide ? 8 : 4;
    for (size_t i = 0; i < count && at + size * (i + 1) <= r.size(); ++i) {
      const size_t p = at + size * i;
      points << (wide ? Point(r, p) : QPointF(r.I16(p), r.I16(p + 2)));
    }
    return points;
  }
  static void Curves(QPainterPath& path, const QPolygonF& points, qsizetype from) {
    for (qsizetype i = from; i + 2 < points.size(); i += 3) path.cubicTo(points[i], points[i + 1], points[i + 2]);
  }
  // Goes on from the current position, also within a path that is recorded.
  void Continue(const QPolygonF& points, bool curves) {
    if (points.isEmpty()) return;
    QPainterPath own;
    QPainterPath* recorded = canvas_.recording();
    QPainterPath& path = recorded ? *recorded : own;
    if (!recorded && canvas_.isRecording()) return;
    if (!recorded || path.elementCount() == 0 || path.currentPosition() != canvas_.state.position) {
      path.moveTo(canvas_.state.position);
    }
    if (curves) {
      Curves(path, points, 0);
    } else {
      for (const QPointF& point : points) path.lineTo(point);
    }
    canvas_.state.position = points.back();
    if (!recorded) canvas_.Draw(own, false, true);
  }
  void Poly(const QPolygonF& points, bool closed, bool curves) {
    if (points.isEmpty()) return;
    QPainterPath path;
    if (curves) {
      path.moveTo(points.front());
      Curves(path, points, 1);
    } else {
      path.addPolygon(points);
    }
    if (closed) path.closeSubpath();
    canvas_.Draw(path, closed, true);
  }
  void PolyPoly(const RecordBytes& r, bool closed, bool wide) {
    const size_t count = std::min<size_t>(r.U(24, 4), r.size() / 4);
    QPainterPath path;
    for (size_t i = 0, at = 32 + 4 * count; i < count; ++i) {
      const size_t points = std::min<size_t>(r.U(32 + 4 * i, 4), r.size());
      path.addPolygon(Points(r, at, points, wide));
      if (closed) path.closeSubpath();
      at += points * (wide ? 8 : 4);
    }
    canvas_.Draw(path, closed, true);
  }
  void Text(const RecordBytes& r, bool wide) {
    const size_t length = std::min<size_t>(r.U(44, 4), r.size());
    const std::string_view bytes = r.From(r.U(48, 4), length * (wide ? 2 : 1));
    if (bytes.empty() || !canvas_.Spend(length)) return;
    QString text;
    const RecordBytes units(bytes);
    for (size_t i = 0; i < bytes.size() / (wide ? 2 : 1); ++i) {
      text += QChar(static_cast<char16_t>(wide ? units.U(2 * i, 2) : units.U(i, 1)));
    }
    canvas_.DrawText(text, Point(r, 36));
  }
  void CreateFont(const RecordBytes& r) {
    MetafileFont font;
    QString name;
    for (size_t i = 0; i < 32 && r.U(40 + 2 * i, 2) != 0; ++i) name += QChar(static_cast<char16_t>(r.U(40 + 2 * i, 2)));
    font.font.setFamily(name);
    const double height = std::abs(static_cast<double>(r.I32(12)));
    font.height = height == 0 ? 12 : height;
    font.turned = r.I32(20) / 10.0;
    font.font.setBold(r.I32(28) >= 600);
    font.font.setItalic(r.U(32, 1));
    font.font.setUnderline(r.U(33, 1));
    font.font.setStrikeOut(r.U(34, 1));
    canvas_.Put(r.U(8, 4), font);
  }
  void Select(uint32_t number) {
    if (!(number & kStock)) return canvas_.Select(size_t{number});
    static const QBrush brushes[] = {Qt::white, Qt::lightGray, Qt::gray, Qt::darkGray, Qt::black, QBrush(Qt::NoBrush)};
    const uint32_t stock = number & ~kStock;
    if (stock < std::size(brushes)) return canvas_.Select(brushes[stock]);
    if (stock == 6) canvas_.Select(QPen(Qt::white));
    if (stock == 7) canvas_.Select(QPen(Qt::black));
    if (stock == 8) canvas_.Select(QPen(Qt::NoPen));
  }
  // A header and its bits, wherever they stand in the record, become one DIB.
  void Bitmap(const RecordBytes& r, size_t offsets, const QRectF& to) {
    const std::string_view header = r.From(r.U(offsets, 4), r.U(offsets + 4, 4));
    const std::string_view bits = r.From(r.U(offsets + 8, 4), r.U(offsets + 12, 4));
    if (!header.empty() && !bits.empty()) canvas_.DrawBitmap(std::string(header) + std::string(bits), to);
  }
  void Play(uint32_t type, const RecordBytes& r);
  bool PlayMapping(uint32_t type, const RecordBytes& r);
  bool PlayState(uint32_t type, const RecordBytes& r);
  bool PlayPoints(uint32_t type, const RecordBytes& r);
  void PlayShape(uint32_t type, const RecordBytes& r);

  RecordBytes all_;
  QSize pixels_;
  QRectF frame_;  // in the device's units
  MetafileCanvas canvas_;
};

void EmfPlayer::Play(uint32_t type, const RecordBytes& r) {
  if (PlayMapping(type, r)) return Map();
  if (!PlayState(type, r) && !PlayPoints(type, r)) PlayShape(type, r);
}

bool EmfPlayer::PlayMapping(uint32_t type, const RecordBytes& r) {
  MetafileMapping& map = canvas_.state.mapping;
  switch (type) {
    case 9:
      return map.windowExtent = Point(r, 8), true;
    case 10:
      return map.windowOrigin = Point(r, 8), true;
    case 11:
      return map.viewExtent = Point(r, 8), true;
    case 12:
      return map.viewOrigin = Point(r, 8), true;
    case 17:
      return map.scaled = r.U(8, 4) >= 7, true;
    case 35:
      return map.world = Transform(r, 8), true;
    case 36: {
      const uint32_t mode = r.U(32, 4);
      const QTransform change = Transform(r, 8);
      map.world = mode == 1 ? QTransform() : mode == 2 ? change * map.world : mode == 3 ? map.world * change : change;
      return true;
    }
    default:
      return false;
  }
}

bool EmfPlayer::PlayState(uint32_t type, const RecordBytes& r) {
  auto& state = canvas_.state;
  switch (type) {
    case 18:
      return state.opaque = r.U(8, 4) != 1, true;
    case 19:
      return state.fill = r.U(8, 4) == 2 ? Qt::WindingFill : Qt::OddEvenFill, true;
    case 22:
      return state.textAlign = r.U(8, 4), true;
    case 24:
      return state.textColor = MetafileColor(r.U(8, 4)), true;
    case 25:
      return state.background = MetafileColor(r.U(8, 4)), true;
    case 27:
      return state.position = Point(r, 8), true;
    case 33:
      return canvas_.Save(), true;
    case 34:
      return canvas_.Restore(r.I32(8)), true;
    case 37:
      return Select(r.U(8, 4)), true;
    case 38:
      return canvas_.Put(r.U(8, 4), MetafilePen(r.U(12, 4), r.I32(16), r.U(24, 4))), true;
    case 39:
      return canvas_.Put(r.U(8, 4), MetafileBrush(r.U(12, 4), r.U(16, 4))), true;
    case 40:
      return canvas_.Delete(r.U(8, 4)), true;
    case 82:
      return CreateFont(r), true;
    case 95:
      return canvas_.Put(r.U(8, 4), MetafilePen(r.U(28, 4), r.I32(32), r.U(40, 4))), true;
    default:
      return false;
  }
}

bool EmfPlayer::PlayPoints(uint32_t type, const RecordBytes& r) {
  // The records of 16-bit points follow those of 32 in the same order.
  const bool wide = type < 85;
  const uint32_t kind = wide ? type : type - 83;
  const auto points = [&] { return Points(r, 28, std::min<size_t>(r.U(24, 4), r.size()), wide); };
  if (type >= 85 ? type > 91 : type < 2 || type > 8) return false;
  switch (kind) {
    case 2:
      return Poly(points(), false, true), true;
    case 3:
      return Poly(points(), true, false), true;
    case 4:
      return Poly(points(), false, false), true;
    case 5:
      return Continue(points(), true), true;
    case 6:
      return Continue(points(), false), true;
    case 7:
      return PolyPoly(r, false, wide), true;
    default:
      return PolyPoly(r, true, wide), true;
  }
}

void EmfPlayer::PlayShape(uint32_t type, const RecordBytes& r) {
  QPainterPath path;
  switch (type) {
    case 30:
      path.addRect(Rect(r, 8));
      return canvas_.Clip(path);
    case 42:
      path.addEllipse(Rect(r, 8));
      return canvas_.Draw(path, true, true);
    case 43:
      path.addRect(Rect(r, 8));
      return canvas_.Draw(path, true, true);
    case 44:
      path.addRoundedRect(Rect(r, 8), r.I32(24) / 2.0, r.I32(28) / 2.0);
      return canvas_.Draw(path, true, true);
    case 54:
      return Continue(QPolygonF{Point(r, 8)}, false);
    case 59:
      return canvas_.BeginPath();
    case 60:
      return canvas_.EndPath();
    case 61:
      return canvas_.ClosePath();
    case 62:
    case 63:
    case 64:
      return canvas_.PaintPath(type != 64, type != 62);
    case 67:
      return canvas_.ClipToPath();
    case 76:
      return Bitmap(r, 84, QRectF(Point(r, 24), QSizeF(r.I32(32), r.I32(36))).normalized());
    case 77:
      return Bitmap(r, 84, QRectF(Point(r, 24), QSizeF(r.I32(32), r.I32(36))).normalized());
    case 81:
      return Bitmap(r, 48, QRectF(Point(r, 24), QSizeF(r.I32(72), r.I32(76))).normalized());
    case 83:
    case 84:
      return Text(r, type == 84);
    default:
      return;
  }
}

}  // namespace

QImage DrawEmf(std::string_view bytes, QSize pixels) {
  if (bytes.size() < 88 || pixels.isEmpty()) return {};
  return EmfPlayer(bytes, MetafilePixels(pixels)).Run();
}

}  // namespace text::pictures
