// Text composed by an input method: shown at the caret, in the document only when committed.
#include "ui/editing/EditorController.h"
#include "ui/editing/EditorOperation.h"

#include <QInputMethodEvent>
#include <QTextFormat>

#include <algorithm>

namespace ui {

using text::Bias;
using text::Content;
using text::EditKind;
using text::Range;
using text::Units;

namespace {

constexpr Units kSurrounding(256);

// What an input method may know of the text: the caret's paragraph, cut around the caret.
Range Surroundings(const Content& content, Units caret) {
  const text::Breaks paragraph = content.ParagraphAt(caret);
  return {std::max(content.ParagraphStart(paragraph), content.Snap(caret - kSurrounding, Bias::kLeft)),
          std::min(content.ParagraphEnd(paragraph), content.Snap(caret + kSurrounding, Bias::kRight))};
}

QString TextOf(const Content& content, Range range) {
  return QString::fromStdU16String(content.Utf16(range, text::BreakAs::kLf));
}

}  // namespace

void EditorController::HandleInputMethod(const QInputMethodEvent& event) {
  const bool typed = !event.commitString().isEmpty() && event.preeditString().isEmpty() && !event.replacementLength();
  if (typed && !composing_ && beforeTyping_ && beforeTyping_(event.commitString())) return;
  const Operation operation(*this);
  const bool edits =
      !event.commitString().isEmpty() || !event.preeditString().isEmpty() || event.replacementLength() > 0;
  if (edits && !UserMayChange(range())) {
    composing_ = true;  // so that the input method is told to forget it
    return DropComposition();
  }
  // The composition ends or goes on by this event; it is not to be reset meanwhile.
  composing_ = false;
  layout_.SetPreedit(std::nullopt);
  if (!event.preeditString().isEmpty() && !range().empty()) Erase(true, false);
  if (!event.commitString().isEmpty() || event.replacementLength() > 0) Commit(event);
  Compose(event);
}

// What was composed so far stays as text: who clicks elsewhere or leaves the window has not taken it back.
void EditorController::FinishComposition() {
  if (!composing_) return;
  const Operation operation(*this);
  const QString composed = layout_.preedit() ? layout_.preedit()->text : QString();
  DropComposition();
  if (!composed.isEmpty()) Type(composed);
}

void EditorController::Commit(const QInputMethodEvent& event) {
  if (event.replacementLength() > 0) {
    const Content& content = document_.content();
    const Range known = Surroundings(content, selection_.caret);
    const Units wanted = selection_.caret + Units(event.replacementStart());
    const Units begin = content.Snap(std::clamp(wanted, known.begin, known.end), Bias::kLeft);
    const Units end =
        content.Snap(std::clamp(wanted + Units(event.replacementLength()), begin, known.end), Bias::kRight);
    if (!UserMayChange({begin, end})) return;
    Replace({begin, end}, {}, EditKind::kTyping);
  }
  if (!event.commitString().isEmpty()) Type(event.commitString());
}

// Offsets as in ImSurroundingText; the caret goes to the end, which may lie before the start.
void EditorController::SelectSurrounding(int start, int length) {
  const Content& content = document_.content();
  const Range known = Surroundings(content, selection_.caret);
  const auto within = [&](int64_t offset) {
    return content.Snap(std::clamp(known.begin + Units(offset), known.begin, known.end), Bias::kLeft);
  };
  document_.SealStep();
  PlaceCaret({within(start), within(int64_t{start} + length)}, Bias::kRight);
}

void EditorController::Compose(const QInputMethodEvent& event) {
  text::layout::Preedit preedit{selection_.caret, event.preeditString(), -1, {}};
  preedit.cursor = static_cast<int>(preedit.text.size());
  for (const QInputMethodEvent::Attribute& attribute : event.attributes()) {
    if (attribute.type == QInputMethodEvent::Cursor) {
      preedit.cursor = attribute.length > 0 ? attribute.start : -1;
    } else if (attribute.type == QInputMethodEvent::TextFormat) {
      const auto format = qvariant_cast<QTextFormat>(attribute.value).toCharFormat();
      if (format.isValid()) preedit.formats.append({attribute.start, attribute.length, format});
    } else if (attribute.type == QInputMethodEvent::Selection) {
      SelectSurrounding(attribute.start, attribute.length);
      preedit.position = selection_.caret;
    }
  }
  if (preedit.formats.isEmpty()) {
    QTextCharFormat underlined;
    underlined.setFontUnderline(true);
    preedit.formats.append({0, static_cast<int>(preedit.text.size()), underlined});
  }
  composing_ = !preedit.text.isEmpty();
  if (composing_) layout_.SetPreedit(std::move(preedit));
  if (composing_) affinity_ = Bias::kLeft;
  reveal_ = reveal_ || composing_;
}

QVariant EditorController::QueryInputMethod(Qt::InputMethodQuery query) const {
  const Content& content = document_.content();
  const Range known = Surroundings(content, selection_.caret);
  const auto within = [known](Units position) {
    return static_cast<int>((std::clamp(position, known.begin, known.end) - known.begin).value());
  };
  switch (query) {
    case Qt::ImEnabled:
      return !readOnly_;
    case Qt::ImHints:
      return int(Qt::ImhMultiLine);
    case Qt::ImReadOnly:
      return readOnly_;
    case Qt::ImCursorPosition:
      return within(selection_.caret);
    case Qt::ImAnchorPosition:
      return within(selection_.anchor);
    case Qt::ImAbsolutePosition:
      return QVariant::fromValue<qlonglong>(selection_.caret.value());
    case Qt::ImSurroundingText:
      return TextOf(content, known);
    case Qt::ImTextBeforeCursor:
      return TextOf(content, {known.begin, selection_.caret});
    case Qt::ImTextAfterCursor:
      return TextOf(content, {selection_.caret, known.end});
    case Qt::ImCurrentSelection: {
      const Range selected = range();
      return TextOf(content,
                    {std::max(selected.begin, known.begin), std::max(known.begin, std::min(selected.end, known.end))});
    }
    default:
      return {};
  }
}

}  // namespace ui
