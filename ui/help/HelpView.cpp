#include "ui/help/HelpView.h"

#include "ui/help/HelpHtml.h"

#include <QBuffer>
#include <QEvent>
#include <QImageReader>
#include <QResizeEvent>
#include <QScrollBar>
#include <QUrl>

namespace ui {
namespace {

constexpr int64_t kMostPixels = 16'000'000;
constexpr int kMargin = 14, kSmallest = -4, kLargest = 16, kMostMarks = 500;
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
  document()->setDocumentMargin(kMargin);
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
  document()->setDefaultStyleSheet(QStringLiteral("h1 { font-size: x-large; margin-top: 0px; margin-bottom: 10px; }"
                                                  "h2 { font-size: large; margin-top: 20px; margin-bottom: 6px; }"
                                                  "h3 { font-size: medium; margin-top: 14px; margin-bottom: 4px; }"
                                                  "p, dd { margin-top: 6px; margin-bottom: 6px; }"
                                                  "li { margin-top: 3px; margin-bottom: 3px; }"
                                                  "table { margin-top: 6px; margin-bottom: 10px; border-collapse: "
                                                  "collapse; border-style: solid; border-color: %1; }"
                                                  "kbd, code, pre, tt { font-family: monospace; }"
                                                  "a { color: %2; }"
                                                  ".menu { font-weight: bold; } .msg { font-style: italic; }")
                                       .arg(frame.name(), palette().color(QPalette::Link).name()));
}

void HelpView::Show(const HelpBook& book, const HelpPlace& place) {
  setExtraSelections({});
  marked_.clear();
  if (book_ != &book || place_.page != place.page || page_.isEmpty()) {
    book_ = &book;
    place_ = place;
    page_ = SafePage(book.PageOf(place));
    widest_ = 0;
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
  Forget();
  setPlainText(text);
}

void HelpView::Forget() {
  book_ = nullptr;
  page_.clear();
  marked_.clear();
  clear();
}

void HelpView::Mark(const QStringList& words) {
  marked_ = words;
  QTextCursor first = MarkAll();
  if (first.isNull()) return;
  first.setPosition(first.selectionStart());
  setTextCursor(first);
}

// The first one is given back.
QTextCursor HelpView::MarkAll() {
  QList<QTextEdit::ExtraSelection> marks;
  QTextCursor first;
  for (const QString& word : marked_) {
    for (QTextCursor at = document()->find(word); !at.isNull() && marks.size() < kMostMarks;
         at = document()->find(word, at)) {
      if (first.isNull() || at.selectionStart() < first.selectionStart()) first = at;
      QTextEdit::ExtraSelection mark;
      mark.cursor = at;
      mark.format.setBackground(palette().brush(QPalette::Highlight));
      mark.format.setForeground(palette().brush(QPalette::HighlightedText));
      marks.push_back(mark);
    }
  }
  setExtraSelections(marks);
  return first;
}

void HelpView::Zoom(int steps) {
  const int wanted = steps == 0 ? 0 : std::clamp(zoomed_ + steps, kSmallest, kLargest);
  zoomIn(wanted - zoomed_);
  zoomed_ = wanted;
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
  QImage picture = bytes ? PictureOf(*bytes) : QImage();
  if (picture.isNull()) {
    picture = QImage(1, 1, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
  }
  widest_ = std::max(widest_, picture.width());
  const int room = RoomForPictures();
  return picture.width() > room ? picture.scaledToWidth(room, Qt::SmoothTransformation) : picture;
}

int HelpView::RoomForPictures() const {
  const int bar = verticalScrollBar()->isVisible() ? 0 : verticalScrollBar()->sizeHint().width();
  return std::max(viewport()->width() - bar - 2 * kMargin, 100);
}

void HelpView::LayOutAgain() {
  const int scrolled = verticalScrollBar()->value();
  const int anchor = textCursor().anchor(), position = textCursor().position();
  setHtml(page_);
  QTextCursor cursor = textCursor();
  cursor.setPosition(anchor);
  cursor.setPosition(position, QTextCursor::KeepAnchor);
  setTextCursor(cursor);
  MarkAll();
  verticalScrollBar()->setValue(scrolled);
}

void HelpView::resizeEvent(QResizeEvent* event) {
  QTextBrowser::resizeEvent(event);
  const int was = event->oldSize().width() - 2 * kMargin, is = event->size().width() - 2 * kMargin;
  if (!page_.isEmpty() && std::min(was, is) < widest_ && was != is) LayOutAgain();
}

void HelpView::changeEvent(QEvent* event) {
  QTextBrowser::changeEvent(event);
  if (event->type() != QEvent::PaletteChange || page_.isEmpty()) return;
  SetLook();
  LayOutAgain();
}

}  // namespace ui
