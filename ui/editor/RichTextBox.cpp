#include "ui/editor/RichTextBox.h"

#include "text/rtfwrite/RtfWrite.h"
#include "ui/editing/exchange/EditorClipboard.h"
#include "ui/editor/EditorAccessible.h"
#include "ui/editor/RichTextBoxImpl.h"

#include <QApplication>
#include <QDrag>
#include <QFontMetricsF>
#include <QInputMethod>
#include <QPointer>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyleHints>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace ui {

using text::Bias;
using text::Content;
using text::Range;
using text::SurfaceUnits;
using text::Units;

namespace {

std::u16string_view ViewOf(const QString& text) {
  return {reinterpret_cast<const char16_t*>(text.utf16()), static_cast<size_t>(text.size())};
}

}  // namespace

RichTextBox::RichTextBox(QWidget* parent) : QAbstractScrollArea(parent), impl_(std::make_unique<Impl>(*this)) {
  InstallEditorAccessibility();
  setFocusPolicy(Qt::WheelFocus);
  setAttribute(Qt::WA_InputMethodEnabled);
  setAttribute(Qt::WA_KeyCompression);
  setAcceptDrops(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  viewport()->setCursor(Qt::IBeamCursor);
  viewport()->setMouseTracking(true);
  viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
  viewport()->setAutoFillBackground(false);
  impl_->defaultFont = font();
  impl_->layout.SetMargins(kTextMargin);
  impl_->layout.SetDefaultFont(impl_->defaultFont);
  impl_->layout.SetViewport(viewport()->size());
  impl_->UpdateLinkColor();
  connect(verticalScrollBar(), &QScrollBar::actionTriggered, this,
          [this](int action) { impl_->Guard([&] { impl_->ScrollBarAction(action); }); });
  connect(QGuiApplication::styleHints(), &QStyleHints::cursorFlashTimeChanged, this,
          [this] { impl_->RestartBlinking(); });
  impl_->UpdateScrollBar();
}

RichTextBox::~RichTextBox() = default;

text::Document& RichTextBox::document() {
  return impl_->document;
}
const text::Document& RichTextBox::document() const {
  return impl_->document;
}
void RichTextBox::DocumentEdited() {
  impl_->controller.Sync();
}

// --- The selection

int64_t RichTextBox::SelStart() const {
  return impl_->document.content().ToSurface(impl_->controller.range().begin).value();
}

void RichTextBox::SetSelStart(int64_t start) {
  const Units position = impl_->document.content().FromSurface(SurfaceUnits(start), Bias::kLeft);
  impl_->controller.Select({position, position});
}

int64_t RichTextBox::SelLength() const {
  const Content& content = impl_->document.content();
  const Range range = impl_->controller.range();
  return (content.ToSurface(range.end) - content.ToSurface(range.begin)).value();
}

void RichTextBox::SetSelLength(int64_t length) {
  const Content& content = impl_->document.content();
  const Units begin = impl_->controller.range().begin;
  const int64_t most = content.surfaceSize().value() - content.ToSurface(begin).value();
  const SurfaceUnits end = content.ToSurface(begin) + SurfaceUnits(std::clamp<int64_t>(length, 0, most));
  impl_->controller.Select({begin, content.FromSurface(end, Bias::kRight)});
}

QString RichTextBox::SelText() const {
  const auto text = impl_->document.content().Utf16(impl_->controller.range(), text::BreakAs::kCrLf);
  return QString::fromStdU16String(text);
}

void RichTextBox::SetSelText(const QString& text) {
  impl_->document.SealStep();
  impl_->controller.Replace(impl_->controller.range(),
                            text::BytesOfUtf16(ViewOf(text), impl_->document.properties().lineEnd));
  impl_->document.SealStep();
}

text::Range RichTextBox::SelectedRange() const {
  return impl_->controller.range();
}

bool RichTextBox::ReplaceSelection(std::string_view bytes) {
  const Units begin = impl_->controller.range().begin;
  impl_->document.SealStep();
  const bool replaced = impl_->controller.Replace(impl_->controller.range(), bytes);
  impl_->document.SealStep();
  if (replaced) impl_->controller.Select({begin, impl_->controller.range().end});
  return replaced;
}

QByteArray RichTextBox::SelRTF() const {
  return QByteArray::fromStdString(
      WriteFragment(impl_->document.content(), impl_->controller.range(), rtfProperties()));
}

void RichTextBox::SetSelRTF(const QByteArray& rtfOrText) {
  const std::string_view bytes(rtfOrText.constData(), static_cast<size_t>(rtfOrText.size()));
  const auto fragment = RichFragment(bytes, impl_->document);
  if (!fragment) return SetSelText(QString::fromStdU16String(text::Utf16OfBytes(bytes)));
  impl_->document.SealStep();
  impl_->controller.Replace(impl_->controller.range(), *fragment);
  impl_->document.SealStep();
}

QString RichTextBox::Text() const {
  const Content& content = impl_->document.content();
  return QString::fromStdU16String(content.Utf16(content.all(), text::BreakAs::kCrLf));
}

// --- Commands

bool RichTextBox::CanUndo() const {
  return impl_->document.canUndo() && !impl_->controller.readOnly();
}
bool RichTextBox::CanRedo() const {
  return impl_->document.canRedo() && !impl_->controller.readOnly();
}
void RichTextBox::Undo() {
  impl_->controller.Undo();
}
void RichTextBox::Redo() {
  impl_->controller.Redo();
}
void RichTextBox::Cut() {
  impl_->controller.Cut();
}
void RichTextBox::Copy() {
  impl_->controller.Copy();
}
void RichTextBox::Paste() {
  impl_->controller.Paste(false);
}
void RichTextBox::PastePlainText() {
  impl_->controller.Paste(true);
}
void RichTextBox::DeleteSelection() {
  impl_->controller.Erase(true, false);
}
void RichTextBox::SelectAll() {
  impl_->controller.SelectAll();
  impl_->controller.PublishPrimarySelection();
}
void RichTextBox::ScrollToCaret() {
  impl_->controller.RevealCaret();
}

void RichTextBox::BeforeTyping(std::function<bool(const QString&)> take) {
  impl_->controller.BeforeTyping(std::move(take));
}
bool RichTextBox::TypeOver(const QString& text) {
  return impl_->controller.TypeOver(text);
}
bool RichTextBox::MayTypeOver() {
  return impl_->controller.UserMayReplaceSelection();
}
void RichTextBox::Refuse() {
  impl_->Refused();
}
QRect RichTextBox::CaretRect() const {
  return impl_->layout.CaretRect(impl_->controller.caret()).toRect().translated(viewport()->pos());
}

int64_t RichTextBox::Find(const QString& text, int64_t start, int options) {
  const Content& content = impl_->document.content();
  const auto match = FindIn(content, text, start, options);
  if (!match) return -1;
  const int64_t found = content.ToSurface(match->begin).value();
  if ((options & kFindNoHighlight) == 0) SelectFound(*match);
  return found;
}

std::optional<Range> RichTextBox::FindIn(const Content& content, const QString& text, int64_t start, int options,
                                         const text::SearchProgress& progress) {
  const SurfaceUnits from(std::max<int64_t>(start, 0));
  if (from > content.surfaceSize()) return std::nullopt;
  const text::Searcher searcher(ViewOf(text), {(options & kFindMatchCase) != 0, (options & kFindWholeWord) != 0});
  return searcher.FindNext(content, content.FromSurface(from, Bias::kRight), content.size(), progress);
}

bool RichTextBox::MayReplace(const Content& content, Range range) {
  return EditorController::MayReplace(content, range);
}

void RichTextBox::SelectFound(Range match) {
  constexpr int kLinesAround = 3;
  impl_->controller.Select({match.begin, match.end});
  impl_->controller.RevealCaret(kLinesAround);
}

QRect RichTextBox::SelectionOnScreen() const {
  const Range range = impl_->controller.range();
  QRectF seen;
  if (range.empty()) {
    seen = impl_->layout.CaretRect(impl_->controller.caret());
  } else {
    for (const QRectF& part : impl_->layout.RangeRects(range)) seen |= part;
  }
  const QRect inside = seen.toAlignedRect() & viewport()->rect();
  return inside.isEmpty() ? QRect() : QRect(viewport()->mapToGlobal(inside.topLeft()), inside.size());
}

// --- Content

// Only what names no format of its own takes the default one; as a map over formats this costs nothing for plain text.
Content RichTextBox::Impl::InDefaultFormat(const Content& content) const {
  const text::CharFormatId id = content.formats().Intern(DefaultFormat(content.formats()));
  if (id == text::CharFormatId::kDefault || content.size() == Units(0)) return content;
  return content.WithCharFormats(
      content.all(), [id](text::CharFormatId old) { return old == text::CharFormatId::kDefault ? id : old; });
}

// Names its font, so that the text keeps it when it is saved as rich text or copied.
text::CharFormat RichTextBox::Impl::DefaultFormat(text::FormatTable& formats) const {
  text::CharFormat format;
  if (!defaultFontName.empty()) format.font = formats.Intern(text::Font{.name = defaultFontName});
  format.halfPoints = static_cast<uint16_t>(std::clamp(std::lround(defaultPoints * 2), 1L, 3276L));
  return format;
}

void RichTextBox::Impl::ApplyEmptyFormat() {
  if (document.content().size() > Units(0)) return;
  text::CharFormat format = DefaultFormat(document.formats());
  // A file that names a font for what names none gives it to such text when it is read again.
  if (rich && format.font == text::FontId::kDefault) format.font = controller.rtfProperties().defaultFont;
  document.SetEmptyFormat(document.formats().Intern(format), document.content().lastParaFormat());
}

// What plain text is saved with when it becomes rich.
void RichTextBox::Impl::SetPlainProperties() {
  text::rtf::DocumentProperties properties;
  properties.defaultFont = DefaultFormat(document.formats()).font;
  controller.SetRtfProperties(properties);
}

void RichTextBox::LoadPlain(const text::LoadedText& loaded) {
  impl_->rich = false;
  impl_->document.Reset(impl_->InDefaultFormat(loaded.content), loaded.properties);
  impl_->SetPlainProperties();
  impl_->layout.SetDefaultTab(text::rtf::DocumentProperties().defaultTab);
  impl_->ApplyEmptyFormat();
  impl_->controller.Reset();
}

void RichTextBox::LoadRtf(text::rtf::ReadResult read) {
  impl_->rich = true;
  impl_->document.Reset(std::move(read.content), {});
  impl_->controller.SetRtfProperties(read.properties);
  impl_->layout.SetDefaultTab(read.properties.defaultTab);
  impl_->ApplyEmptyFormat();
  impl_->controller.Reset();
}

bool RichTextBox::isRichText() const {
  return impl_->rich;
}
const text::rtf::DocumentProperties& RichTextBox::rtfProperties() const {
  return impl_->controller.rtfProperties();
}

void RichTextBox::SavesFormatsWhen(std::function<bool()> wanted) {
  impl_->controller.SavesFormatsWhen(std::move(wanted));
}

void RichTextBox::SetPlainOnly(bool on) {
  impl_->controller.SetPlainOnly(on);
}

void RichTextBox::SetDefaultFormat(const QString& fontName, double points) {
  impl_->defaultFont = QFont(fontName);
  impl_->defaultFontName = fontName.toStdString();
  impl_->defaultPoints = points;
  impl_->layout.SetDefaultFont(impl_->defaultFont);
  if (!impl_->rich) impl_->SetPlainProperties();
  impl_->ApplyEmptyFormat();
  impl_->ViewChanged();
}

void RichTextBox::SetDefaultTabStops(std::vector<int> twips) {
  impl_->defaultTabStops = twips;
  impl_->layout.SetDefaultTabStops(std::move(twips));
  impl_->ViewChanged();
}

PrintJob RichTextBox::MakePrintJob(bool selection) const {
  const Range selected = impl_->controller.range();
  PrintJob job{.content = impl_->document.content(), .properties = rtfProperties(), .options = {}};
  job.options.range = selection && !selected.empty() ? selected : job.content.all();
  job.options.defaultFont = impl_->defaultFont;
  job.options.defaultTab = job.properties.defaultTab;
  job.options.defaultStops = impl_->defaultTabStops;
  return job;
}

// --- Appearance

void RichTextBox::SetBackgroundColor(const QColor& color) {
  impl_->background = color;
  impl_->UpdateLinkColor();
  viewport()->update();
}
void RichTextBox::SetBackgroundColor(int64_t color) {
  const int bgr = static_cast<int>(color);
  SetBackgroundColor(color < 0 ? QColor() : QColor(bgr & 0xFF, bgr >> 8 & 0xFF, bgr >> 16 & 0xFF));
}

double RichTextBox::Zoom() const {
  return impl_->layout.zoom();
}

void RichTextBox::SetZoom(double factor) {
  // Steps back and forth lead to the same factor.
  constexpr double kFinest = 1e6;
  impl_->layout.SetZoom(std::round(std::clamp(factor, 0.1, 10.0) * kFinest) / kFinest);
  impl_->ViewChanged();
}

bool RichTextBox::overtype() const {
  return impl_->controller.overtype();
}
void RichTextBox::SetOvertype(bool on) {
  impl_->controller.SetOvertype(on);
}
bool RichTextBox::readOnly() const {
  return impl_->controller.readOnly();
}
void RichTextBox::SetReadOnly(bool on) {
  impl_->controller.SetReadOnly(on);
}

// --- What the controller asks

void RichTextBox::Impl::ViewChanged() {
  UpdateScrollBar();
  RestartBlinking();
  box.viewport()->update();
  box.updateMicroFocus();
}

void RichTextBox::Impl::TextChanged() {
  const Content before = std::exchange(toldContent, document.content());
  const text::Revision since = std::exchange(toldRevision, document.revision());
  if (QAccessible::isActive()) QAccessible::updateAccessibility(EventOfTextChange(box, before, since).get());
  Q_EMIT box.Change();
}

void RichTextBox::Impl::SelectionChanged() {
  if (QAccessible::isActive()) {
    QAccessible::updateAccessibility(EventOfSelectionChange(box, controller.selection()).get());
  }
  Q_EMIT box.SelChange();
}

void RichTextBox::Impl::Refused() {
  QApplication::beep();
}

void RichTextBox::Impl::ResetComposition() {
  if (box.hasFocus()) QGuiApplication::inputMethod()->reset();
}

std::optional<Units> RichTextBox::SelectedObject() const {
  return impl_->controller.SelectedObject();
}
bool RichTextBox::MayChangeObject(Units place) const {
  const EditorController& controller = impl_->controller;
  return !controller.readOnly() && controller.IsEmbeddedObject(place) &&
         MayReplace(impl_->document.content(), {place, place + Units(1)});
}
std::optional<Units> RichTextBox::InsertObjects(const std::vector<Content>& objects) {
  return impl_->controller.InsertObjects(objects);
}
bool RichTextBox::ReplaceObject(Units place, std::string_view rtf) {
  const auto read = text::rtf::ReadFragment(rtf, impl_->document.content().store());
  return impl_->controller.ReplaceObject(place, read.content);
}

void RichTextBox::Impl::OpenObject(Units place) {
  QTimer::singleShot(0, &box, [this, place] { Q_EMIT box.ObjectActivated(place); });
}

void RichTextBox::Impl::StartDrag() {
  auto data = controller.CopyOfSelection();
  const QPointer<RichTextBox> alive(&box);
  constexpr Qt::KeyboardModifiers kAsFile = Qt::ControlModifier | Qt::ShiftModifier;
  const bool asFile = (QGuiApplication::keyboardModifiers() & kAsFile) == kAsFile;
  Q_EMIT box.DragStarting(data.get(), asFile);
  // Whoever heard it may have asked the user something, and the button was let go meanwhile.
  if (!alive || QGuiApplication::mouseButtons() == Qt::NoButton) return;
  data->MarkAs(asFile ? EditorMimeData::Drag::kFile : EditorMimeData::Drag::kText);
  // A target may ask while the pointer is only over it, where no message could be answered.
  struct State {
    bool over = false, refused = false;
  };
  const auto state = std::make_shared<State>();
  data->LimitTo([alive, state] {
    const bool first = !std::exchange(state->refused, true);
    if (first && state->over && alive) QTimer::singleShot(0, alive, [alive] { Q_EMIT alive->DragRefused(); });
  });
  auto* drag = new QDrag(&box);
  drag->setMimeData(data.release());
  dragging = true;
  drag->exec(Qt::CopyAction);
  if (!alive) return;
  dragging = false;
  state->over = true;
  if (state->refused) Q_EMIT box.DragRefused();
}

const QMimeData* RichTextBox::Impl::ClipboardData(QClipboard::Mode mode) {
  return QGuiApplication::clipboard()->mimeData(mode);
}

void RichTextBox::Impl::SetClipboardData(QClipboard::Mode mode, std::unique_ptr<QMimeData> data) {
  QGuiApplication::clipboard()->setMimeData(data.release(), mode);
}

bool RichTextBox::Impl::HasPrimarySelection() {
  return QGuiApplication::clipboard()->supportsSelection();
}

// --- Scroll bar and caret

double RichTextBox::Impl::LineHeight() const {
  return QFontMetricsF(
             text::layout::FontOf(document.formats(), DefaultFormat(document.formats()), defaultFont, layout.zoom()))
      .lineSpacing();
}

void RichTextBox::Impl::UpdateScrollBar() {
  const QScopedValueRollback<bool> syncing(syncingScrollBar, true);
  QScrollBar* bar = box.verticalScrollBar();
  bar->setPageStep(layout.scrollPage());
  bar->setSingleStep(std::max(1, static_cast<int>(LineHeight())));
  bar->setRange(0, layout.scrollMaximum());
  bar->setValue(layout.scrollValue());
}

// Steps are counted in pixels: in a huge text one unit of the bar is many of them.
void RichTextBox::Impl::ScrollBarAction(int action) {
  const double line = LineHeight();
  const double page = std::max(line, layout.viewport().height() - line);
  switch (action) {
    case QAbstractSlider::SliderSingleStepAdd:
      layout.ScrollBy(line);
      break;
    case QAbstractSlider::SliderSingleStepSub:
      layout.ScrollBy(-line);
      break;
    case QAbstractSlider::SliderPageStepAdd:
      layout.ScrollBy(page);
      break;
    case QAbstractSlider::SliderPageStepSub:
      layout.ScrollBy(-page);
      break;
    default:
      return;
  }
  UpdateScrollBar();
  box.verticalScrollBar()->setSliderPosition(layout.scrollValue());
  box.viewport()->update();
}

void RichTextBox::scrollContentsBy(int, int) {
  if (impl_->syncingScrollBar) return;
  impl_->Guard([&] {
    if (verticalScrollBar()->value() != impl_->layout.scrollValue()) {
      impl_->layout.SetScrollValue(verticalScrollBar()->value());
    }
    viewport()->update();
  });
}

void RichTextBox::Impl::RestartBlinking() {
  blinkTimer.stop();
  caretShown = box.hasFocus();
  const int flash = QGuiApplication::styleHints()->cursorFlashTime();
  if (caretShown && flash > 1) blinkTimer.start(flash / 2, &box);
}

void RichTextBox::Impl::RepaintCaret() {
  QRectF rect = layout.CaretRect(controller.caret());
  if (controller.overtype()) rect.setWidth(std::max(rect.width(), 2 * rect.height()));
  constexpr int kLean = 8;  // an italic caret and its rounding
  box.viewport()->update(rect.toAlignedRect().adjusted(-kLean, -1, kLean, 1));
}

void RichTextBox::Impl::UpdateAutoScroll() {
  if (!mouse.wantsAutoScroll()) {
    autoScrollTimer.stop();
  } else if (!autoScrollTimer.isActive()) {
    autoScrollTimer.start(EditorMouse::kAutoScrollInterval, &box);
  }
}

}  // namespace ui
