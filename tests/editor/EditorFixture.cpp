#include "tests/editor/EditorFixture.h"

#include <QKeySequence>

#include <algorithm>
#include <stdexcept>

namespace ui::test {

Marked ParseMarked(std::string marked) {
  const size_t anchor = marked.find('[');
  const size_t caret = marked.find('|');
  if (caret == std::string::npos) throw std::logic_error("no caret in " + marked);
  if (anchor == std::string::npos) {
    marked.erase(caret, 1);
    return {marked, caret, caret};
  }
  marked.erase(std::max(anchor, caret), 1).erase(std::min(anchor, caret), 1);
  return {marked, anchor - (caret < anchor), caret - (anchor < caret)};
}

Editor::Editor(const std::string& marked, text::LineEnd lineEnd, QSizeF viewport) {
  const Marked parsed = ParseMarked(marked);
  text::ContentBuilder builder(document.content().store());
  builder.Append(parsed.bytes);
  text::TextProperties properties;
  properties.lineEnd = lineEnd;
  document.Reset(builder.Finish(), properties);
  layout.SetViewport(viewport);
  controller.Reset();
  controller.Select({At(parsed.anchor), At(parsed.caret)});
  host = RecordingHost();
}

text::Units Editor::At(size_t byte) const {
  return document.content().PositionOfByte(text::Bytes(static_cast<int64_t>(byte)));
}

Editor& Editor::Press(const std::string& keys) {
  const QString all = QString::fromStdString(keys);
  for (qsizetype at = 0; at < all.size();) {
    if (all.at(at) == u'\'') {
      const qsizetype end = all.indexOf(u'\'', at + 1);
      for (const char32_t c : all.mid(at + 1, end - at - 1).toUcs4()) {
        Send(Qt::Key_unknown, Qt::NoModifier, QString::fromUcs4(&c, 1));
      }
      at = end + 1;
    } else {
      const qsizetype end = std::max(all.indexOf(u' ', at), qsizetype(-1));
      const QString name = all.mid(at, end < 0 ? -1 : end - at);
      if (!name.isEmpty()) PressKey(name);
      at = end < 0 ? all.size() : end + 1;
    }
  }
  return *this;
}

void Editor::PressKey(const QString& name) {
  const QKeySequence sequence = QKeySequence::fromString(name, QKeySequence::PortableText);
  if (sequence.count() != 1 || sequence[0].key() == Qt::Key_unknown) {
    throw std::logic_error("unknown key " + name.toStdString());
  }
  const QKeyCombination key = sequence[0];
  Send(key.key(), key.keyboardModifiers(), key.key() == Qt::Key_Tab ? QStringLiteral("\t") : QString());
}

void Editor::Send(int key, Qt::KeyboardModifiers modifiers, const QString& text) {
  QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
  event.setTimestamp(clock);
  clock += 100;
  controller.HandleKey(event);
}

std::string Editor::Shown() const {
  const text::Content& content = document.content();
  const auto byteOf = [&](text::Units at) { return static_cast<size_t>(content.SumsBefore(at).bytes.value()); };
  std::string shown = content.ByteString(content.all());
  const size_t anchor = byteOf(controller.selection().anchor);
  const size_t caret = byteOf(controller.selection().caret);
  if (anchor == caret) return shown.insert(caret, "|");
  if (anchor > caret) return shown.insert(anchor, "[").insert(caret, "|");
  return shown.insert(caret, "|").insert(anchor, "[");
}

std::string Editor::Flagged(text::CharFlag flag) const {
  std::string flagged;
  bool inside = false;
  const text::Content& content = document.content();
  content.ForEachPiece(content.all(), [&](const text::PieceView& piece) {
    const bool has = (content.formats()[piece.charFormat].flags & flag) != 0;
    if (inside && !has) flagged += ",";
    if (has) flagged += piece.bytes;
    inside = has;
    return true;
  });
  return inside ? flagged + "," : flagged;
}

}  // namespace ui::test
