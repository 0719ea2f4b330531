#include "ui/editor/ObjectAccessible.h"

#include "text/pictures/Pictures.h"
#include "ui/editor/EditorAccessible.h"
#include "ui/editor/RichTextBox.h"

namespace ui {

ObjectAccessible::ObjectAccessible(RichTextBox* box, int index) : box_(box), index_(index) {}

QAccessibleInterface* ObjectAccessible::parent() const {
  return box_ ? QAccessible::queryAccessibleInterface(box_.data()) : nullptr;
}

int ObjectAccessible::Offset() const {
  const auto* editor = dynamic_cast<const EditorAccessible*>(parent());
  return editor ? editor->OffsetOfObject(index_) : -1;
}

const text::EmbeddedObject* ObjectAccessible::Shown() const {
  const int offset = Offset();
  if (offset < 0) return nullptr;
  const text::Content& content = box_->document().content();
  const text::ObjectId id = content.formats()[content.CharFormatAt(text::Units(offset))].object;
  return id == text::ObjectId::kNone ? nullptr : &content.formats()[id];
}

bool ObjectAccessible::isValid() const {
  return Shown() != nullptr;
}

QString ObjectAccessible::text(QAccessible::Text kind) const {
  const text::EmbeddedObject* shown = Shown();
  if (!shown) return {};
  if (kind == QAccessible::Name) return text::pictures::NameOf(*shown);
  if (kind == QAccessible::Description) return QString::fromStdString(shown->name).simplified();
  return {};
}

QRect ObjectAccessible::rect() const {
  const int offset = Offset();
  return offset < 0 ? QRect() : parent()->textInterface()->characterRect(offset);
}

QAccessible::Role ObjectAccessible::role() const {
  const text::EmbeddedObject* shown = Shown();
  return shown && shown->kind == text::ObjectKind::kNote ? QAccessible::Note : QAccessible::Graphic;
}

QAccessible::State ObjectAccessible::state() const {
  QAccessible::State state;
  const QAccessibleInterface* editor = parent();
  if (!isValid() || !editor) {
    state.invalid = true;
  } else {
    state.offscreen = !editor->rect().intersects(rect());
    state.invisible = editor->state().invisible;
    state.readOnly = true;
  }
  return state;
}

}  // namespace ui
