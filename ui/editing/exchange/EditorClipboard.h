// Text to and from the clipboard and drags: text/plain, text/rtf and application/rtf, text/html; a picture that stands
// alone also as image/png, with its own bytes if they are of another type.
#pragma once

#include "text/Document.h"
#include "text/rtf/Rtf.h"

#include <QMimeData>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <string>

namespace ui {

// A stretch of text offered to other programs. Holds a snapshot; nothing is converted before somebody asks for it.
class EditorMimeData : public QMimeData {
  Q_OBJECT

 public:
  enum class As { kPlain, kRtf, kRtfAndHtml };  // besides as text

  EditorMimeData(text::Content content, text::Range range, text::rtf::DocumentProperties properties, As as);
  QStringList formats() const override;
  bool hasFormat(const QString& mimeType) const override;

  const text::Content& content() const { return content_; }
  text::Range range() const { return range_; }
  bool isPlain() const { return as_ == As::kPlain; }
  // For a drag: other programs get nothing that is longer than kMostDragged, and the call is made instead.
  void LimitTo(std::function<void()> refused) { refused_ = std::move(refused); }
  // What of a drag is meant by the user; kForeign: it comes from another kind of program. Any editor's drag is known,
  // also another copy's of this program.
  enum class Drag { kForeign, kText, kFile };
  void MarkAs(Drag drag);
  static Drag DragOf(const QMimeData& data);

 protected:
  QVariant retrieveData(const QString& mimeType, QMetaType type) const override;

 private:
  QStringList ImageTypes() const;
  QVariant ImageData(const QString& mimeType) const;
  QVariant Convert(const QString& mimeType, QMetaType type) const;
  text::Content content_;
  text::Range range_;
  text::rtf::DocumentProperties properties_;
  As as_;
  std::function<void()> refused_;                  // none: there is no limit
  const text::EmbeddedObject* picture_ = nullptr;  // that is all of the range
};

// As other programs get it: breaks as LF, U+FFFD for a stray byte, an object as nothing.
QString PlainTextForOthers(const text::Content& content, text::Range range);

bool HasRichText(const QMimeData& data);
bool HasText(const QMimeData& data);     // of any kind
bool HasAnyText(const QMimeData& data);  // or a picture
bool IsAddress(const QString& text);     // of a page, alone

// The data's rich text made for that document's store and line ends; nothing when it has none.
std::optional<text::Content> RichFragment(const QMimeData& data, const text::Document& target);
// The same for RTF bytes; nothing when they are not RTF.
std::optional<text::Content> RichFragment(std::string_view rtf, const text::Document& target);
// The data's page, if it has one with any text, or its picture, whatever is beside it. What the data does not say looks
// like `around`.
std::optional<text::Content> HtmlFragment(const QMimeData& data, const text::Document& target,
                                          const text::CharFormat& around);
std::optional<text::Content> PictureFragment(const QMimeData& data, const text::Document& target,
                                             text::CharFormat around);
// The data's text as engine bytes with those line ends; nothing when it has none.
std::optional<std::string> PlainBytes(const QMimeData& data, text::LineEnd lineEnd);

}  // namespace ui
