// WMF: records of 16-bit numbers, the arguments mostly in reverse order.
#include "text/pictures/Metafile.h"
#include "text/pictures/MetafileCanvas.h"

#include <algorithm>
#include <cmath>

namespace text::pictures {
namespace {

constexpr uint32_t kPlaceable = 0x9AC6CDD7u;

class WmfPlayer {
 public:
  WmfPlayer(std::string_view bytes, QSize pixels) : all_(bytes), pixels_(pixels), canvas_(pixels) {
    mapping().windowExtent = {0, 0};  // the whole picture
  }

  QImage Run() {
    size_t at = 0;
    if (all_.U(0, 4) == kPlaceable) {
      const QPointF origin(all_.I16(6), all_.I16(8));
      mapping().windowOrigin = origin;
      mapping().windowExtent = {all_.I16(10) - origin.x(), all_.I16(12) - origin.y()};
      at = 22;
    }
    const size_t header = 2 * size_t{all_.U(at + 2, 2)};
    if (all_.U(at, 2) > 2 || header < 18) return {};
    Map();
    for (at += header; at + 6 <= all_.size();) {
      const size_t size = 2 * size_t{all_.U(at, 4)};
      const uint32_t function = all_.U(at + 4, 2);
      if (size < 6 || function == 0 || !canvas_.Spend(size / 256)) break;
      Play(function, RecordBytes(all_.From(at + 6, size - 6)));
      at += size;
    }
    return canvas_.Finish();
  }

 private:
  MetafileMapping& mapping() { return canvas_.state.mapping; }
  void Map() {
    const QPointF origin = mapping().windowOrigin, extent = mapping().windowExtent;
    const double width = extent.x() == 0 ? pixels_.width() : extent.x();
    const double height = extent.y() == 0 ? pixels_.height() : extent.y();
    canvas_.state.toPixels = QTransform::fromTranslate(-origin.x(), -origin.y()) *
                             QTransform::fromScale(pixels_.width() / width, pixels_.height() / height);
  }
  // The n-th argument counted from the end, as a function's are written.
  static QPointF Point(const RecordBytes& r, size_t at) { return {double(r.I16(at + 2)), double(r.I16(at))}; }
  static QRectF Rect(const RecordBytes& r, size_t at) {
    return QRectF(QPointF(r.I16(at + 6), r.I16(at + 4)), QPointF(r.I16(at + 2), r.I16(at))).normalized();
  }
  QPolygonF Points(const RecordBytes& r, size_t at, size_t count) {
    QPolygonF polygon;
    if (!canvas_.Spend(count)) return polygon;
    for (size_t i = 0; i < count && at + 4 * i + 4 <= r.size(); ++i) {
      polygon << QPointF(r.I16(at + 4 * i), r.I16(at + 4 * i + 2));
    }
    return polygon;
  }
  void Polygon(const QPolygonF& points, bool closed) {
    QPainterPath path;
    path.addPolygon(points);
    if (closed) path.closeSubpath();
    canvas_.Draw(path, closed, true);
  }
  void PolyPolygon(const RecordBytes& r) {
    const size_t count = std::min<size_t>(r.U(0, 2), r.size() / 2);
    QPainterPath path;
    for (size_t i = 0, at = 2 + 2 * count; i < count; ++i) {
      const size_t points = r.U(2 + 2 * i, 2);
      path.addPolygon(Points(r, at, points));
      path.closeSubpath();
      at += 4 * points;
    }
    canvas_.Draw(path, true, true);
  }
  // Where an arc begins and how far it goes, counter-clockwise.
  void Arc(const RecordBytes& r, bool filled, bool pie) {
    const QRectF box = Rect(r, 8);
    if (box.isEmpty()) return;
    const auto angle = [&](QPointF p) {
      return std::atan2(-(p.y() - box.center().y()) / box.height(), (p.x() - box.center().x()) / box.width()) * 180 /
             3.14159265358979;
    };
    const double from = angle(Point(r, 4));
    double sweep = angle(Point(r, 0)) - from;
    if (sweep <= 0) sweep += 360;
    QPainterPath path;
    pie ? path.moveTo(box.center()) : path.arcMoveTo(box, from);
    path.arcTo(box, from, sweep);
    if (filled) path.closeSubpath();
    canvas_.Draw(path, filled, true);
  }
  void Text(const RecordBytes& r, size_t at, size_t length, QPointF where) {
    const std::string_view bytes = r.From(at, length);
    if (!bytes.empty() && canvas_.Spend(bytes.size())) {
      canvas_.DrawText(QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size())), where);
    }
  }
  void CreateFont(const RecordBytes& r) {
    MetafileFont font;
    const std::string_view name = r.From(18, 32);
    font.font.setFamily(
        QString::fromLatin1(name.data(), static_cast<qsizetype>(std::min(name.find('\0'), name.size()))));
    font.height = std::abs(r.I16(0)) == 0 ? 12 : std::abs(r.I16(0));
    font.turned = r.I16(4) / 10.0;
    font.font.setBold(r.U(8, 2) >= 600);
    font.font.setItalic(r.U(10, 1));
    font.font.setUnderline(r.U(11, 1));
    font.font.setStrikeOut(r.U(12, 1));
    canvas_.Put({}, font);
  }
  void Play(uint32_t function, const RecordBytes& r);
  bool PlayShape(uint32_t function, const RecordBytes& r);
  bool PlayBitmap(uint32_t function, const RecordBytes& r);

  RecordBytes all_;
  QSize pixels_;
  MetafileCanvas canvas_;
};

void WmfPlayer::Play(uint32_t function, const RecordBytes& r) {
  auto& state = canvas_.state;
  switch (function) {
    case 0x020B:
      mapping().windowOrigin = Point(r, 0);
      return Map();
    case 0x020C:
      mapping().windowExtent = Point(r, 0);
      return Map();
    case 0x001E:
      return canvas_.Save();
    case 0x0127:
      return canvas_.Restore(r.I16(0));
    case 0x0102:
      state.opaque = r.U(0, 2) != 1;
      return;
    case 0x0106:
      state.fill = r.U(0, 2) == 2 ? Qt::WindingFill : Qt::OddEvenFill;
      return;
    case 0x0201:
      state.background = MetafileColor(r.U(0, 4));
      return;
    case 0x0209:
      state.textColor = MetafileColor(r.U(0, 4));
      return;
    case 0x012E:
      state.textAlign = r.U(0, 2);
      return;
    case 0x0214:
      state.position = Point(r, 0);
      return;
    case 0x02FA:
      return canvas_.Put({}, MetafilePen(r.U(0, 2), r.I16(2), r.U(6, 4)));
    case 0x02FC:
      return canvas_.Put({}, MetafileBrush(r.U(0, 2), r.U(2, 4)));
    case 0x02FB:
      return CreateFont(r);
    case 0x00F7:
    case 0x06FF:
    case 0x01F9:
    case 0x0142:
      return canvas_.Put({}, QBrush(Qt::lightGray));  // palettes, regions and patterns take a number too
    case 0x012D:
      return canvas_.Select(size_t{r.U(0, 2)});
    case 0x01F0:
      return canvas_.Delete(r.U(0, 2));
    default:
      if (!PlayShape(function, r)) PlayBitmap(function, r);
  }
}

bool WmfPlayer::PlayShape(uint32_t function, const RecordBytes& r) {
  QPainterPath path;
  switch (function) {
    case 0x0213:
      path.moveTo(canvas_.state.position);
      path.lineTo(canvas_.state.position = Point(r, 0));
      return canvas_.Draw(path, false, true), true;
    case 0x041B:
      path.addRect(Rect(r, 0));
      return canvas_.Draw(path, true, true), true;
    case 0x0418:
      path.addEllipse(Rect(r, 0));
      return canvas_.Draw(path, true, true), true;
    case 0x061C:
      path.addRoundedRect(Rect(r, 4), r.I16(2) / 2.0, r.I16(0) / 2.0);
      return canvas_.Draw(path, true, true), true;
    case 0x0416:
      path.addRect(Rect(r, 0));
      return canvas_.Clip(path), true;
    case 0x0324:
    case 0x0325:
      return Polygon(Points(r, 2, r.U(0, 2)), function == 0x0324), true;
    case 0x0538:
      return PolyPolygon(r), true;
    case 0x0817:
      return Arc(r, false, false), true;
    case 0x081A:
      return Arc(r, true, true), true;
    case 0x0830:
      return Arc(r, true, false), true;
    case 0x0521: {
      const size_t length = r.U(0, 2);
      return Text(r, 2, length, Point(r, 2 + length + length % 2)), true;
    }
    case 0x0A32: {
      const bool boxed = (r.U(6, 2) & 6) != 0;
      return Text(r, boxed ? 16 : 8, r.U(4, 2), Point(r, 0)), true;
    }
    default:
      return false;
  }
}

bool WmfPlayer::PlayBitmap(uint32_t function, const RecordBytes& r) {
  const auto box = [&](size_t at) {
    return QRectF(r.I16(at + 6), r.I16(at + 4), r.I16(at + 2), r.I16(at)).normalized();
  };
  switch (function) {
    case 0x0F43:
      return canvas_.DrawBitmap(r.From(22), box(14)), true;
    case 0x0B41:
      return canvas_.DrawBitmap(r.From(20), box(12)), true;
    case 0x0940:
      return canvas_.DrawBitmap(r.From(16), box(8)), true;
    case 0x0D33:
      return canvas_.DrawBitmap(r.From(18), box(10)), true;
    default:
      return false;
  }
}

}  // namespace

QImage DrawWmf(std::string_view bytes, QSize pixels) {
  if (bytes.size() < 18 || pixels.isEmpty()) return {};
  return WmfPlayer(bytes, MetafilePixels(pixels)).Run();
}

}  // namespace text::pictures
