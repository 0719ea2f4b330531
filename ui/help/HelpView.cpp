#include "ui/help/HelpView.h"

#include "ui/help/HelpHtml.h"

#include <QBuffer>
#include <QEvent>
#include <QImageReader>
#include <QScrollBar>
#include <QUrl>

namespace ui {
namespace {

constexpr int64_t kMostPixels = 16'000'000;
constexpr const char* kPictures[] = {"png", "jpeg", "gif", "bmp"};

QImage PictureOf(const std::string& bytes) {
  QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&data);
  QImageReader reader(&buffer);
  const QByteArray format = reader.format();
  if (std::none_of(std::begin(kPictures), std::end(kPictures), [&](const char* each) { return format == each; }))
    return {};
  const QSize size = reader.size();
  if (!size.isValid() || int64_t{size.width()} * size.height() > kMostPixels) return {};
  return reader.read();
}

}  // namespace

HelpView::HelpView(QWidget* parent) : QTextBrowser(parent) {
  setOpenLinks(false);
  setOpenExternalLinks(false);
  setUndoRedoEnabled(false);
  document()->setDocumentMargin(14);
  setTextInteractionFlags(Qt::TextBrowserInteraction | Qt::TextSelectableByKeyboard);
  connect(this, &QTextBrowser::anchorClicked, this,
          [this](const QUrl& url) { Q_EMIT LinkClicked(url.toString(QUrl::FullyEncoded)); });
  SetLook();
}

// No colours of the page's own, so that it reads on a dark desktop as well.
void HelpView::SetLook() {
  QColor frame = palette().color(QPalette::Text);
  const QColor base = palette().color(QPalette::Base);
  frame = QColor((frame.red() + 2 * base.red()) / 3, (frame.green() + 2 * base.green()) / 3,
                 (frame.blue() + 2 * base.blue()) / 3);
  document()->setDefaultStyleSheet(
      QStringLiteral("h1 { font-size: x-large; margin-top: 0px; margin-bottom: 10px; }"
                     "h2 { font-size: large; margin-top: 20px; margin-bottom: 6px; }"
                     "h3 { font-size: medium; margin-top: 14px; margin-bottom: 4px; }"
                     "p, dd { margin-top: 6px; margin-bottom: 6px; }"
                     "li { margin-top: 3px; margin-bottom: 3px; }"
                     "table { margin-top: 6px; margin-bottom: 10px; border-collapse: collapse; border-color: %1; }"
                     "kbd, code, pre, tt { font-family: monospace; }"
                     "a { color: %2; }"
                     ".menu { font-weight: bold; } .msg { font-style: italic; }")
          .arg(frame.name(), palette().color(QPalette::Link).name()));
}

void HelpView::Show(const HelpBook& book, const HelpPlace& place) {
  book_ = &book;
  if (place_.page != place.page || page_.isEmpty()) {
    place_ = place;
    page_ = SafePage(book.PageOf(place));
    setHtml(page_);
  }
  place_ = place;
  if (place.anchor.isEmpty()) {
    verticalScrollBar()->setValue(0);
  } else {
    scrollToAnchor(place.anchor);
  }
}

void HelpView::ShowText(const QString& text) {
  book_ = nullptr;
  page_.clear();
  setPlainText(text);
}

bool HelpView::FindText(const QString& text, bool backward) {
  if (text.isEmpty()) return false;
  const QTextDocument::FindFlags flags = backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
  if (find(text, flags)) return true;
  const QTextCursor before = textCursor();
  moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
  if (find(text, flags)) return true;
  setTextCursor(before);
  return false;
}

QVariant HelpView::loadResource(int type, const QUrl& name) {
  // Where nothing is given back the toolkit goes on to look among the files of the system.
  if (type != QTextDocument::ImageResource || !book_) return QByteArray("");
  const auto place = book_->Resolve(place_.page, name.toString(QUrl::FullyEncoded));
  const std::string* const bytes = place ? book_->BytesOf(place->page) : nullptr;
  const QImage picture = bytes ? PictureOf(*bytes) : QImage();
  return picture.isNull() ? QImage(1, 1, QImage::Format_ARGB32_Premultiplied) : picture;
}

void HelpView::changeEvent(QEvent* event) {
  QTextBrowser::changeEvent(event);
  if (event->type() != QEvent::PaletteChange || page_.isEmpty()) return;
  SetLook();
  const int scrolled = verticalScrollBar()->value();
  setHtml(page_);
  verticalScrollBar()->setValue(scrolled);
}

}  // namespace ui
