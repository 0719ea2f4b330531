#include "ui/editing/exchange/EditorClipboard.h"

#include "text/TextStore.h"
#include "text/html/HtmlReader.h"
#include "text/html/HtmlWriter.h"
#include "text/pictures/Pictures.h"
#include "text/rtfwrite/RtfWrite.h"
#include "ui/editing/EditorController.h"
#include "ui/editing/EditorOperation.h"
#include "ui/editing/Guarded.h"
#include "ui/editing/exchange/DroppedFiles.h"

#include <QBuffer>
#include <QCursor>
#include <QDebug>
#include <QGuiApplication>
#include <QImage>

#include <algorithm>
#include <map>

namespace ui {

using text::CharFormat;
using text::CharFormatId;
using text::Content;
using text::ContentBuilder;
using text::LineEnd;
using text::ParaFormat;
using text::ParaFormatId;
using text::PieceView;
using text::Range;

namespace {

constexpr QChar kObject(0xFFFC);
const QString kPlainType = QStringLiteral("text/plain");
const QString kUriList = QStringLiteral("text/uri-list");
const QString kHtmlType = QStringLiteral("text/html");
const QString kPngType = QStringLiteral("image/png");
const QString kImageType = QStringLiteral("application/x-qt-image");
// Beside a drag's data: which of them the user means.
const QString kDragType = QStringLiteral("application/x-quillmark-drag");
const QString kRtfTypes[] = {QStringLiteral("text/rtf"), QStringLiteral("application/rtf")};

bool IsRtfType(const QString& type) {
  return type == kRtfTypes[0] || type == kRtfTypes[1];
}

std::string_view SpellingOf(LineEnd lineEnd) {
  switch (lineEnd) {
    case LineEnd::kCrLf:
      return "\r\n";
    case LineEnd::kLf:
      return "\n";
    case LineEnd::kCr:
      return "\r";
  }
  return "\n";
}

std::string WithLineEnds(std::string_view bytes, LineEnd lineEnd) {
  std::string result;
  result.reserve(bytes.size());
  const std::string_view spelling = SpellingOf(lineEnd);
  for (size_t i = 0; i < bytes.size();) {
    const size_t end = std::min(bytes.find_first_of("\r\n", i), bytes.size());
    result += bytes.substr(i, end - i);
    if (end == bytes.size()) break;
    result += spelling;
    i = end + (bytes.substr(end, 2) == "\r\n" ? 2 : 1);
  }
  return result;
}

// Formats of one table interned in another.
class FormatMapper {
 public:
  FormatMapper(const text::FormatTable& from, text::FormatTable& to) : from_(from), to_(to) {}

  CharFormatId operator()(CharFormatId id) {
    const auto [entry, added] = chars_.try_emplace(id);
    if (added) {
      CharFormat format = from_[id];
      format.font = to_.Intern(from_[format.font]);
      format.object = format.object == text::ObjectId::kNone ? format.object : to_.Add(from_[format.object]);
      format.link = to_.InternLink(from_[format.link]);
      entry->second = to_.Intern(format);
    }
    return entry->second;
  }
  ParaFormatId operator()(ParaFormatId id) {
    const auto [entry, added] = paras_.try_emplace(id);
    if (added) {
      ParaFormat format = from_[id];
      format.tabs = to_.Intern(text::Tabs(from_[format.tabs]));
      format.list = to_.Intern(ListOf(format.list));
      format.row = to_.Intern(text::TableRow(from_[format.row]));
      entry->second = to_.Intern(format);
    }
    return entry->second;
  }

 private:
  text::List ListOf(text::ListId id) {
    text::List list = from_[id];
    for (text::ListLevel& level : list.levels) level.font = to_.Intern(from_[level.font]);
    return list;
  }

  const text::FormatTable& from_;
  text::FormatTable& to_;
  std::map<CharFormatId, CharFormatId> chars_;
  std::map<ParaFormatId, ParaFormatId> paras_;
};

// The range rebuilt for the target's store with the target's line ends.
Content Rebuilt(const Content& source, Range range, const text::Document& target) {
  ContentBuilder builder(target.content().store());
  FormatMapper mapped(source.formats(), target.formats());
  const bool sameStore = source.store() == target.content().store();
  const LineEnd lineEnd = target.properties().lineEnd;
  source.ForEachPiece(range, [&](const PieceView& piece) {
    const auto bytes =
        piece.sums.breaks > text::Breaks(0) ? WithLineEnds(piece.bytes, lineEnd) : std::string(piece.bytes);
    // Stray bytes of two pieces stay two characters.
    if ((static_cast<unsigned char>(bytes.front()) & 0xC0) == 0x80) builder.Separate();
    builder.Append(bytes, sameStore ? piece.charFormat : mapped(piece.charFormat),
                   sameStore ? piece.paraFormat : mapped(piece.paraFormat));
    return true;
  });
  const ParaFormatId last = source.ParaFormatOf(source.ParagraphAt(range.end));
  return builder.Finish(sameStore ? last : mapped(last));
}

}  // namespace

// --- Given to others

namespace {

// The ends of a table's cells, which are breaks, become tabs.
void PutTabsBetweenCells(const Content& content, Range range, QString& shown) {
  if (!content.formats().hasRows()) return;
  qsizetype begin = 0;
  content.ForEachPiece(range, [&](const PieceView& piece) {
    const auto end = begin + static_cast<qsizetype>(piece.sums.units.value());
    const bool cells = content.formats()[piece.paraFormat].rowMark == text::RowMark::kCellEnd;
    for (qsizetype i = begin; cells && i < end; ++i)
      if (shown.at(i) == u'\n') shown[i] = u'\t';
    begin = end;
    return true;
  });
}

}  // namespace

QString PlainTextForOthers(const Content& content, Range range) {
  QString result = QString::fromStdU16String(content.Utf16(range, text::BreakAs::kLf));
  PutTabsBetweenCells(content, range, result);
  for (qsizetype i = 0; i < result.size(); ++i) {
    if (result.at(i).isHighSurrogate() && i + 1 < result.size() && result.at(i + 1).isLowSurrogate()) {
      ++i;
    } else if (result.at(i).isSurrogate()) {
      result[i] = QChar::ReplacementCharacter;
    }
  }
  if (content.Summarize(range).anyObject) result.remove(kObject);
  return result;
}

namespace {

QByteArray HtmlOf(const Content& content, const text::rtf::DocumentProperties& properties) {
  QByteArray html;
  const std::string& font = content.formats()[properties.defaultFont].name;
  text::html::Write(content, {.title = {}, .defaultFont = font}, [&](std::string_view part) {
    html.append(part.data(), static_cast<qsizetype>(part.size()));
    return true;
  });
  return html;
}

}  // namespace

EditorMimeData::EditorMimeData(Content content, Range range, text::rtf::DocumentProperties properties, As as)
    : content_(std::move(content)), range_(range), properties_(std::move(properties)), as_(as) {
  const text::FormatTable& table = content_.formats();
  const text::ObjectId object = table[content_.CharFormatAt(range_.begin)].object;
  const bool alone = range_.size() == text::Units(1) && object != text::ObjectId::kNone;
  if (alone && table[object].type != text::PictureType::kNone) picture_ = &table[object];
}

QStringList EditorMimeData::ImageTypes() const {
  QStringList types{kPngType};
  const char* own = text::pictures::MimeTypeOf(*picture_);
  if (own && kPngType != QLatin1String(own)) types.append(QLatin1String(own));
  return types << kImageType;
}

QVariant EditorMimeData::ImageData(const QString& mimeType) const {
  const char* own = text::pictures::MimeTypeOf(*picture_);
  if (own && mimeType == QLatin1String(own)) {
    return QByteArray(picture_->picture.bytes.data(), static_cast<qsizetype>(picture_->picture.bytes.size()));
  }
  const QImage image = text::pictures::ImageOf(*picture_);
  if (image.isNull() || mimeType == kImageType) return image;
  QByteArray png;
  QBuffer buffer(&png);
  const bool written = buffer.open(QIODevice::WriteOnly) && image.save(&buffer, "PNG");
  return written ? png : QByteArray();
}

namespace {

constexpr text::Units kMuch(1 << 20);

// A target may ask for all of a huge text.
class BusyPointer {
 public:
  explicit BusyPointer(bool shown) : shown_(shown) {
    if (shown_) QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  }
  ~BusyPointer() {
    if (shown_) QGuiApplication::restoreOverrideCursor();
  }
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;

 private:
  bool shown_;
};

}  // namespace

// What somebody added to a drag (files, for instance) comes behind our own.
QStringList EditorMimeData::formats() const {
  QStringList own;
  if (!isPlain()) own << kRtfTypes[0] << kRtfTypes[1];
  if (as_ == As::kRtfAndHtml) own.append(kHtmlType);
  own.append(picture_ ? ImageTypes() : QStringList(kPlainType));
  return own + QMimeData::formats();
}

bool EditorMimeData::hasFormat(const QString& mimeType) const {
  return formats().contains(mimeType);
}

QVariant EditorMimeData::Convert(const QString& mimeType, QMetaType type) const {
  if (picture_ && ImageTypes().contains(mimeType)) return ImageData(mimeType);
  if (mimeType == kPlainType) return PlainTextForOthers(content_, range_);
  if (IsRtfType(mimeType) && !isPlain()) return QByteArray::fromStdString(WriteFragment(content_, range_, properties_));
  if (mimeType == kHtmlType && as_ == As::kRtfAndHtml) return HtmlOf(content_.Slice(range_), properties_);
  return QMimeData::retrieveData(mimeType, type);
}

namespace {

// As the toolkit sends it; an image at most as a bitmap.
qint64 SizeOf(const QVariant& data) {
  if (data.typeId() == QMetaType::QByteArray) return data.toByteArray().size();
  if (data.typeId() == QMetaType::QImage) return data.value<QImage>().sizeInBytes();
  const QString text = data.toString();
  return text.size() > kMostDragged ? text.size() : text.toUtf8().size();
}

}  // namespace

QVariant EditorMimeData::retrieveData(const QString& mimeType, QMetaType type) const {
  const auto convert = [&]() -> QVariant {
    // What is surely too long need not be converted to know.
    const bool limited = refused_ && mimeType != kUriList && mimeType != kDragType && hasFormat(mimeType);
    if (!limited) return Convert(mimeType, type);
    QVariant data = range_.size() > text::Units(kMostDragged) ? QVariant() : Convert(mimeType, type);
    if (data.isValid() && SizeOf(data) <= kMostDragged) return data;
    refused_();
    return {};
  };
  const BusyPointer busy(range_.size() > kMuch && QGuiApplication::instance());
  // Another program asks, perhaps long after the copying: it gets nothing.
  return Guarded(convert, [](const QString& reason) { qWarning() << "The copied text cannot be given:" << reason; });
}

// --- Taken from others

bool HasRichText(const QMimeData& data) {
  return data.hasFormat(kRtfTypes[0]) || data.hasFormat(kRtfTypes[1]);
}

bool HasText(const QMimeData& data) {
  return HasRichText(data) || data.hasText() || data.hasHtml();
}

bool HasAnyText(const QMimeData& data) {
  return HasText(data) || data.hasImage();
}

void EditorMimeData::MarkAs(Drag drag) {
  setData(kDragType, drag == Drag::kFile ? "file" : "text");
}

EditorMimeData::Drag EditorMimeData::DragOf(const QMimeData& data) {
  if (!data.hasFormat(kDragType)) return Drag::kForeign;
  return data.data(kDragType) == "file" ? Drag::kFile : Drag::kText;
}

std::optional<Content> RichFragment(std::string_view rtf, const text::Document& target) {
  if (!text::rtf::LooksLikeRtf(rtf)) return std::nullopt;
  text::rtf::ReadResult read = text::rtf::ReadFragment(rtf, target.content().store());
  if (!read.isRtf) return std::nullopt;
  if (target.properties().lineEnd == LineEnd::kCrLf) return std::move(read.content);
  return Rebuilt(read.content, read.content.all(), target);
}

std::optional<Content> RichFragment(const QMimeData& data, const text::Document& target) {
  if (const auto* own = qobject_cast<const EditorMimeData*>(&data)) {
    if (own->isPlain()) return std::nullopt;
    // Bytes that are no characters survive only this way.
    if (own->content().store() == target.content().store()) return own->content().Slice(own->range());
    return Rebuilt(own->content(), own->range(), target);
  }
  for (const QString& type : kRtfTypes) {
    if (!data.hasFormat(type)) continue;
    const QByteArray rtf = data.data(type);
    if (auto fragment = RichFragment(std::string_view(rtf.constData(), static_cast<size_t>(rtf.size())), target)) {
      return fragment;
    }
  }
  return std::nullopt;
}

std::optional<Content> HtmlFragment(const QMimeData& data, const text::Document& target, const CharFormat& around) {
  if (!data.hasHtml()) return std::nullopt;
  const auto [page, limited] = text::html::Read(data.html().toUtf8().toStdString(), target.content().store(), around);
  // Rather all of the text, or nothing, than the look of its beginning.
  if (page.size() == text::Units(0) || limited) return std::nullopt;
  return target.properties().lineEnd == LineEnd::kCrLf ? page : Rebuilt(page, page.all(), target);
}

// The text beside a picture of a page is where it came from.
bool IsAddress(const QString& text) {
  const QString trimmed = text.trimmed();
  return (trimmed.startsWith(u"http://") || trimmed.startsWith(u"https://")) && !trimmed.contains(u' ') &&
         !trimmed.contains(u'\n');
}

std::optional<Content> PictureFragment(const QMimeData& data, const text::Document& target, CharFormat around) {
  if (!data.hasImage()) return std::nullopt;
  constexpr qsizetype kMaxBytes = 64 << 20;
  text::EmbeddedObject object;
  object.type = text::PictureType::kPng;
  QByteArray bytes = data.data(kPngType);
  // What is lossless is taken before JPEG, which a program may offer of the same picture beside it.
  const QStringList types = data.formats();
  const bool lossless = std::any_of(types.begin(), types.end(), [](const QString& type) {
    return type == u"image/bmp" || type == u"image/tiff" || type == u"image/x-bmp" || type == u"image/webp";
  });
  if (bytes.isEmpty() && !lossless) {
    bytes = data.data(QStringLiteral("image/jpeg"));
    if (!bytes.isEmpty()) object.type = text::PictureType::kJpeg;
  }
  if (bytes.isEmpty()) {
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::WriteOnly) || !data.imageData().value<QImage>().save(&buffer, "PNG")) {
      return std::nullopt;
    }
  }
  if (bytes.size() > kMaxBytes) return std::nullopt;
  object.picture = text::SharedBytes(bytes.toStdString());
  around.object = target.formats().Add(std::move(object));
  ContentBuilder builder(target.content().store());
  builder.Append("\xEF\xBF\xBC", target.formats().Intern(around));
  return builder.Finish();
}

namespace {

// Stray bytes stay as they are; objects are nothing, and the ends of cells tabs.
std::string OwnPlainBytes(const Content& content, Range range, LineEnd lineEnd) {
  const text::FormatTable& formats = content.formats();
  std::string plain;
  content.ForEachPiece(range, [&](const PieceView& piece) {
    const bool object = formats[piece.charFormat].object != text::ObjectId::kNone;
    const bool cells = formats[piece.paraFormat].rowMark == text::RowMark::kCellEnd;
    if (cells) {
      std::string part = WithLineEnds(piece.bytes, LineEnd::kLf);
      std::replace(part.begin(), part.end(), '\n', '\t');
      plain += part;
    } else if (!object) {
      plain += piece.bytes;
    }
    return true;
  });
  return WithLineEnds(plain, lineEnd);
}

}  // namespace

std::optional<std::string> PlainBytes(const QMimeData& data, LineEnd lineEnd) {
  if (const auto* own = qobject_cast<const EditorMimeData*>(&data)) {
    return OwnPlainBytes(own->content(), own->range(), lineEnd);
  }
  QString plain;
  if (data.hasText()) {
    plain = data.text();
  } else if (data.hasHtml()) {
    const auto page = text::html::Read(data.html().toUtf8().toStdString(), std::make_shared<text::TextStore>());
    if (!page.limited) plain = PlainTextForOthers(page.content, page.content.all());
  }
  if (plain.isEmpty()) return std::nullopt;
  return text::BytesOfUtf16({reinterpret_cast<const char16_t*>(plain.utf16()), static_cast<size_t>(plain.size())},
                            lineEnd);
}

// --- The controller's commands

std::unique_ptr<EditorMimeData> EditorController::CopyOfSelection() const {
  using As = EditorMimeData::As;
  const As as = plainOnly_ ? As::kPlain : SavesFormats() ? As::kRtfAndHtml : As::kRtf;
  return std::make_unique<EditorMimeData>(document_.content(), range(), rtfProperties_, as);
}

void EditorController::Copy() {
  if (range().empty()) return;
  host_.SetClipboardData(QClipboard::Clipboard, CopyOfSelection());
}

void EditorController::Cut() {
  const Operation operation(*this);
  if (range().empty() || (!WithEmptiedCells(range()) && !UserMayChange(range()))) return;
  Copy();
  Erase(true, false);
}

void EditorController::Paste(bool plain) {
  const QMimeData* data = host_.ClipboardData(QClipboard::Clipboard);
  if (data) Insert(*data, plain);
}

void EditorController::Insert(const QMimeData& data, bool plain) {
  const Operation operation(*this);
  if (!HasAnyText(data) || !UserMayChange(range())) return;
  document_.SealStep();
  plain |= plainOnly_;
  std::optional<Content> fragment;
  if (!plain) fragment = RichFragment(data, document_);
  const bool formats = !plain && SavesFormats();
  bool wholeParagraphs = false;
  if (formats && !fragment) {
    const text::CharFormat here = InsertFormat();
    text::CharFormat around;
    around.font = here.font;
    around.halfPoints = here.halfPoints;
    fragment = HtmlFragment(data, document_, around);
    // Else the page is words and says nothing of where they stand.
    wholeParagraphs = fragment && fragment->lastParaFormat() != ParaFormatId::kDefault;
  }
  if (formats && !fragment && (!data.hasText() || (data.hasImage() && IsAddress(data.text()))))
    fragment = PictureFragment(data, document_, InsertFormat());
  const auto bytes = fragment ? std::nullopt : PlainBytes(data, document_.properties().lineEnd);
  // A plain file takes a picture only for want of text; before it is saved the user is asked.
  if (!plain && !fragment && !bytes) fragment = PictureFragment(data, document_, InsertFormat());
  if (fragment) {
    Replace(range(), *fragment, wholeParagraphs);
  } else if (bytes) {
    Replace(range(), *bytes);
  } else {
    host_.Refused();
  }
  document_.SealStep();
}

void EditorController::InsertPicture(const QMimeData& data) {
  const Operation operation(*this);
  if (!UserMayChange(range())) return;
  document_.SealStep();
  const auto fragment = PictureFragment(data, document_, InsertFormat());
  if (fragment) Replace(range(), *fragment);
  if (!fragment) host_.Refused();
  document_.SealStep();
}

void EditorController::PublishPrimarySelection() {
  if (range().empty() || !host_.HasPrimarySelection()) return;
  host_.SetClipboardData(QClipboard::Selection, CopyOfSelection());
}

}  // namespace ui
