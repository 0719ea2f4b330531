#include "ui/editor/EditorAccessible.h"

#include "text/Movement.h"
#include "text/pictures/Pictures.h"
#include "ui/editing/exchange/EditorClipboard.h"
#include "ui/editor/ObjectAccessible.h"
#include "ui/editor/RichTextBoxImpl.h"

#include <algorithm>
#include <climits>

namespace ui {

using text::Bias;
using text::Content;
using text::Range;
using text::Units;

namespace {

// Nobody reads out more than this of one change.
constexpr Units kMostTold(4096);

int OffsetOf(Units position) {
  return static_cast<int>(std::min<int64_t>(position.value(), INT_MAX));
}

// Offsets must fit the text, so stray bytes become one unit and objects stay.
QString TextOf(const Content& content, Range range) {
  QString result = QString::fromStdU16String(content.Utf16(range, text::BreakAs::kLf));
  for (qsizetype i = 0; i < result.size(); ++i) {
    const bool pair = result.at(i).isHighSurrogate() && i + 1 < result.size() && result.at(i + 1).isLowSurrogate();
    if (pair) {
      ++i;
    } else if (result.at(i).isSurrogate()) {
      result[i] = QChar::ReplacementCharacter;
    }
  }
  return result;
}

// What would end an attribute is left out.
QString Quotable(QString text) {
  for (const QChar c : {u'"', u';', u'\\'}) text.remove(c);
  return text.simplified();
}

QString FirstOf(const Content& content, Units begin, Units length) {
  return TextOf(content, {begin, content.Snap(begin + std::min(length, kMostTold), Bias::kLeft)});
}

QAccessibleInterface* MakeInterface(const QString&, QObject* object) {
  auto* box = qobject_cast<RichTextBox*>(object);
  return box ? new EditorAccessible(box) : nullptr;
}

}  // namespace

void InstallEditorAccessibility() {
  [[maybe_unused]] static const bool installed = (QAccessible::installFactory(MakeInterface), true);
}

// The text that went away is read from the snapshot that was told last, so this holds only for a single change.
std::unique_ptr<QAccessibleEvent> EventOfTextChange(RichTextBox& box, const Content& before, text::Revision since) {
  const text::Document& document = box.document();
  const auto changes = document.ChangesSince(since);
  if (!changes || changes->size() != 1 || changes->front().formatOnly) {
    return std::make_unique<QAccessibleEvent>(&box, QAccessible::TextAttributeChanged);
  }
  const text::Change& change = changes->front();
  const int offset = OffsetOf(change.position);
  const QString removed = FirstOf(before, change.position, change.removed);
  const QString inserted = FirstOf(document.content(), change.position, change.inserted);
  if (removed.isEmpty()) return std::make_unique<QAccessibleTextInsertEvent>(&box, offset, inserted);
  if (inserted.isEmpty()) return std::make_unique<QAccessibleTextRemoveEvent>(&box, offset, removed);
  return std::make_unique<QAccessibleTextUpdateEvent>(&box, offset, removed, inserted);
}

std::unique_ptr<QAccessibleEvent> EventOfSelectionChange(RichTextBox& box, const text::Selection& selection) {
  const Range range = selection.range();
  const int caret = OffsetOf(selection.caret);
  if (range.empty()) return std::make_unique<QAccessibleTextCursorEvent>(&box, caret);
  auto event = std::make_unique<QAccessibleTextSelectionEvent>(&box, OffsetOf(range.begin), OffsetOf(range.end));
  event->setCursorPosition(caret);
  return event;
}

EditorAccessible::EditorAccessible(RichTextBox* box) : QAccessibleWidget(box, QAccessible::EditableText) {}

EditorAccessible::~EditorAccessible() {
  for (const QAccessible::Id id : children_) {
    if (id != 0) QAccessible::deleteAccessibleInterface(id);
  }
}

// --- Objects

const std::vector<int>& EditorAccessible::Objects() const {
  const text::Revision revision = box().document().revision();
  if (objectsKnown_ && objectsOf_ == revision) return objects_;
  objects_.clear();
  objectsKnown_ = true;
  objectsOf_ = revision;
  const Content& all = content();
  if (!all.Summarize(all.all()).anyObject) return objects_;
  Units at(0);
  all.ForEachPiece(all.all(), [&](const text::PieceView& piece) {
    const bool object = all.formats()[piece.charFormat].object != text::ObjectId::kNone;
    for (Units unit(0); object && unit < piece.sums.units; ++unit) objects_.push_back(OffsetOf(at + unit));
    at += piece.sums.units;
    return objects_.size() < kMostObjects;
  });
  return objects_;
}

int EditorAccessible::OffsetOfObject(int index) const {
  return box().impl_->Guard([&]() -> int {
    const auto& objects = Objects();
    return index >= 0 && index < static_cast<int>(objects.size()) ? objects[static_cast<size_t>(index)] : -1;
  });
}

int EditorAccessible::childCount() const {
  return QAccessibleWidget::childCount() +
         box().impl_->Guard([&]() -> int { return static_cast<int>(Objects().size()); });
}

QAccessibleInterface* EditorAccessible::child(int index) const {
  const int widgets = QAccessibleWidget::childCount();
  if (index < widgets) return QAccessibleWidget::child(index);
  if (OffsetOfObject(index - widgets) < 0) return nullptr;
  const auto object = static_cast<size_t>(index - widgets);
  if (object >= children_.size()) children_.resize(object + 1);
  if (children_[object] == 0) {
    children_[object] =
        QAccessible::registerAccessibleInterface(new ObjectAccessible(&box(), static_cast<int>(object)));
  }
  return QAccessible::accessibleInterface(children_[object]);
}

int EditorAccessible::indexOfChild(const QAccessibleInterface* child) const {
  const auto* object = dynamic_cast<const ObjectAccessible*>(child);
  return object ? QAccessibleWidget::childCount() + object->index() : QAccessibleWidget::indexOfChild(child);
}

QAccessibleInterface* EditorAccessible::childAt(int x, int y) const {
  const int widgets = QAccessibleWidget::childCount();
  const auto under = box().impl_->Guard([&]() -> int {
    const auto place = box().impl_->layout.CharacterAt(box().viewport()->mapFromGlobal(QPoint(x, y)));
    const auto& objects = Objects();
    const int offset = place ? OffsetOf(*place) : -1;
    const auto found = std::lower_bound(objects.begin(), objects.end(), offset);
    return found != objects.end() && *found == offset ? static_cast<int>(found - objects.begin()) + 1 : 0;
  });
  return under > 0 ? child(widgets + under - 1) : QAccessibleWidget::childAt(x, y);
}

RichTextBox& EditorAccessible::box() const {
  return *static_cast<RichTextBox*>(widget());
}
const Content& EditorAccessible::content() const {
  return box().document().content();
}

Units EditorAccessible::UnitsOf(int offset) const {
  // The interface counts from the end with -1 and means the caret with -2.
  if (offset == -1) return content().size();
  if (offset == -2) return box().impl_->controller.selection().caret;
  return content().Snap(Units(offset), Bias::kLeft);
}

Range EditorAccessible::RangeOf(int start, int end) const {
  const Units a = UnitsOf(start), b = UnitsOf(end);
  return a < b ? Range{a, b} : Range{b, a};
}

void* EditorAccessible::interface_cast(QAccessible::InterfaceType type) {
  if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
  if (type == QAccessible::EditableTextInterface) return static_cast<QAccessibleEditableTextInterface*>(this);
  return QAccessibleWidget::interface_cast(type);
}

QAccessible::State EditorAccessible::state() const {
  QAccessible::State state = QAccessibleWidget::state();
  state.multiLine = true;
  state.selectableText = true;
  state.readOnly = box().readOnly();
  state.editable = !box().readOnly();
  return state;
}

QString EditorAccessible::text(QAccessible::Text kind) const {
  QString given = QAccessibleWidget::text(kind);
  if (kind != QAccessible::Name || !given.isEmpty()) return given;
  for (const QWidget* around = box().parentWidget(); around; around = around->parentWidget()) {
    if (!around->windowTitle().isEmpty()) return around->windowTitle();
  }
  return given;
}

// --- Selection and caret

void EditorAccessible::selection(int index, int* start, int* end) const {
  *start = *end = 0;
  if (index != 0 || selectionCount() == 0) return;
  const Range range = box().impl_->controller.range();
  *start = OffsetOf(range.begin);
  *end = OffsetOf(range.end);
}

int EditorAccessible::selectionCount() const {
  return box().impl_->controller.range().empty() ? 0 : 1;
}
void EditorAccessible::addSelection(int start, int end) {
  setSelection(0, start, end);
}

void EditorAccessible::removeSelection(int index) {
  if (index == 0) setCursorPosition(cursorPosition());
}

void EditorAccessible::setSelection(int index, int start, int end) {
  box().impl_->Guard([&] {
    if (index == 0) box().impl_->controller.Select({UnitsOf(start), UnitsOf(end)});
  });
}

int EditorAccessible::cursorPosition() const {
  return OffsetOf(box().impl_->controller.selection().caret);
}

void EditorAccessible::setCursorPosition(int position) {
  box().impl_->Guard([&] {
    const Units place = UnitsOf(position);
    box().impl_->controller.Select({place, place});
  });
}

// --- Text

QString EditorAccessible::text(int start, int end) const {
  return box().impl_->Guard([&]() -> QString {
    const Range range = RangeOf(start, end);
    return TextOf(content(),
                  {range.begin, content().Snap(std::min(range.end, range.begin + Units(kMostGiven)), Bias::kLeft)});
  });
}
int EditorAccessible::characterCount() const {
  return OffsetOf(content().size());
}

Range EditorAccessible::RangeAround(Units position, QAccessible::TextBoundaryType boundary) const {
  const Content& all = content();
  switch (boundary) {
    case QAccessible::CharBoundary:
      return {position, text::NextGrapheme(all, position)};
    case QAccessible::WordBoundary:
      return text::WordAt(all, position);
    case QAccessible::LineBoundary: {
      Range line = box().impl_->layout.LineAt({position, Bias::kRight});
      // The break belongs to the line before it.
      if (line.end == all.ParagraphEnd(all.ParagraphAt(line.end))) line.end = std::min(line.end + Units(1), all.size());
      return line;
    }
    case QAccessible::SentenceBoundary:
    case QAccessible::ParagraphBoundary:
      return text::ParagraphRange(all, position);
    case QAccessible::NoBoundary:
      break;
  }
  return {Units(0), std::min(all.size(), kMostTold)};
}

QString EditorAccessible::Give(Range range, int* start, int* end) const {
  range.end = content().Snap(std::min(range.end, range.begin + Units(kMostGiven)), Bias::kLeft);
  *start = OffsetOf(range.begin);
  *end = OffsetOf(range.end);
  return TextOf(content(), range);
}

QString EditorAccessible::textAtOffset(int offset, QAccessible::TextBoundaryType boundary, int* start, int* end) const {
  *start = *end = 0;
  return box().impl_->Guard([&]() -> QString { return Give(RangeAround(UnitsOf(offset), boundary), start, end); });
}

QString EditorAccessible::textBeforeOffset(int offset, QAccessible::TextBoundaryType boundary, int* start,
                                           int* end) const {
  *start = *end = 0;
  return box().impl_->Guard([&]() -> QString {
    const Units begin = RangeAround(UnitsOf(offset), boundary).begin;
    if (begin == Units(0)) return Give({begin, begin}, start, end);
    Range before = RangeAround(text::PreviousGrapheme(content(), begin), boundary);
    return Give({before.begin, std::min(before.end, begin)}, start, end);
  });
}

QString EditorAccessible::textAfterOffset(int offset, QAccessible::TextBoundaryType boundary, int* start,
                                          int* end) const {
  *start = *end = 0;
  return box().impl_->Guard([&]() -> QString {
    const Units after = RangeAround(UnitsOf(offset), boundary).end;
    if (after == content().size()) return Give({after, after}, start, end);
    return Give(RangeAround(after, boundary), start, end);
  });
}

// --- Places

QRect EditorAccessible::characterRect(int offset) const {
  return box().impl_->Guard([&]() -> QRect {
    auto& layout = box().impl_->layout;
    const Units at = UnitsOf(offset);
    const auto rects = layout.RangeRects({at, text::NextGrapheme(content(), at)});
    const QRectF rect = rects.empty() ? layout.CaretRect({at}) : rects.front();
    return rect.toAlignedRect().translated(box().viewport()->mapToGlobal(QPoint(0, 0)));
  });
}

int EditorAccessible::offsetAtPoint(const QPoint& point) const {
  return box().impl_->Guard([&]() -> int {
    const QPoint local = box().viewport()->mapFromGlobal(point);
    return OffsetOf(box().impl_->layout.HitTest(local).position);
  });
}

void EditorAccessible::scrollToSubstring(int start, int end) {
  box().impl_->Guard([&] {
    auto& layout = box().impl_->layout;
    layout.EnsureVisible({UnitsOf(end)});
    layout.EnsureVisible({UnitsOf(start)});
    box().impl_->ViewChanged();
  });
}

// Where the format of the character at a position begins, within its paragraph and the text that is told at once.
Units EditorAccessible::RunBegin(Units at) const {
  const text::CharFormatId id = content().CharFormatAt(at);
  const Units paragraph = content().ParagraphStart(content().ParagraphAt(at));
  Units begin = std::max(paragraph, content().Snap(at - kMostTold, Bias::kRight)), next = begin;
  content().ForEachPiece({begin, at}, [&](const text::PieceView& piece) {
    next += piece.sums.units;
    if (piece.charFormat != id) begin = next;
    return true;
  });
  return begin;
}

// In the words of the IAccessible2 text attributes.
QString EditorAccessible::attributes(int offset, int* start, int* end) const {
  *start = *end = 0;
  return box().impl_->Guard([&]() -> QString {
    const Units at = UnitsOf(offset);
    *start = *end = OffsetOf(at);
    if (at == content().size()) return {};
    *start = OffsetOf(RunBegin(at));
    const text::Breaks paragraph = content().ParagraphAt(at);
    const text::CharFormatId id = content().CharFormatAt(at);
    Units runEnd = at;
    content().ForEachPiece({at, content().ParagraphEnd(paragraph) + Units(1)}, [&](const text::PieceView& piece) {
      if (piece.charFormat == id) runEnd += piece.sums.units;
      return piece.charFormat == id;
    });
    *end = OffsetOf(runEnd);
    const text::CharFormat& format = content().formats()[id];
    const std::string& name = content().formats()[format.font].name;
    QString result = QStringLiteral("font-size:%1pt;").arg(format.halfPoints / 2.0);
    result += QStringLiteral("font-family:\"%1\";")
                  .arg(name.empty() ? box().impl_->defaultFont.family() : QString::fromStdString(name));
    if (format.flags & text::kBold) result += QStringLiteral("font-weight:bold;");
    if (format.flags & text::kItalic) result += QStringLiteral("font-style:italic;");
    if (format.flags & text::kUnderline)
      result += QStringLiteral("text-underline-style:solid;text-underline-type:single;");
    if (format.flags & text::kStrikeThru) result += QStringLiteral("text-line-through-type:single;");
    const auto& formats = content().formats();
    if (format.object != text::ObjectId::kNone) {
      result += QStringLiteral("object-name:\"%1\";").arg(Quotable(text::pictures::NameOf(formats[format.object])));
    }
    if (format.link != text::LinkId::kNone) {
      result += QStringLiteral("link:\"%1\";").arg(Quotable(QString::fromStdString(formats[format.link])));
    }
    return result;
  });
}

// --- Editing

void EditorAccessible::deleteText(int start, int end) {
  replaceText(start, end, {});
}
void EditorAccessible::insertText(int offset, const QString& text) {
  replaceText(offset, offset, text);
}

void EditorAccessible::replaceText(int start, int end, const QString& text) {
  box().impl_->Guard([&] {
    if (box().readOnly()) return;
    const std::u16string_view units(reinterpret_cast<const char16_t*>(text.utf16()), static_cast<size_t>(text.size()));
    auto& document = box().document();
    document.SealStep();
    box().impl_->controller.Replace(RangeOf(start, end), text::BytesOfUtf16(units, document.properties().lineEnd));
    document.SealStep();
  });
}

}  // namespace ui
