// Embedded objects within the text.
#include "text/ObjectAt.h"
#include "ui/editing/EditorController.h"
#include "ui/editing/EditorOperation.h"

namespace ui {

using text::Content;
using text::Range;
using text::Units;

bool EditorController::IsEmbeddedObject(Units position) const {
  return text::EmbeddedAt(document_.content(), position) != nullptr;
}

std::optional<Units> EditorController::SelectedObject() const {
  const Range selected = range();
  if (selected.size() > Units(1)) return std::nullopt;
  if (IsEmbeddedObject(selected.begin)) return selected.begin;
  const bool before = selected.empty() && selected.begin > Units(0) && IsEmbeddedObject(selected.begin - Units(1));
  return before ? std::optional(selected.begin - Units(1)) : std::nullopt;
}

// A change of the format alone, so no position moves.
bool EditorController::ReplaceObject(Units position, const Content& fragment) {
  const Range place{position, position + Units(1)};
  if (readOnly_ || !IsEmbeddedObject(position) || !MayChange(place) || fragment.size() == Units(0)) return false;
  const Operation operation(*this);
  const Content& content = document_.content();
  text::CharFormat format = content.formats()[content.CharFormatAt(position)];
  format.object = text::ObjectIdAt(fragment, Units(0));
  const text::CharFormatId id = content.formats().Intern(format);
  document_.SealStep();
  document_.Commit(content.WithCharFormats(place, [id](text::CharFormatId) { return id; }),
                   {position, Units(1), Units(1), true}, text::EditKind::kCommand, selection_);
  document_.SealStep();
  return true;
}

// What is typed behind an object goes on as the text before it.
Content EditorController::InFormatAround(const Content& fragment) const {
  text::FormatTable& formats = document_.formats();
  return fragment.WithCharFormats(fragment.all(), [&](text::CharFormatId id) {
    text::CharFormat format = InsertFormat();
    format.object = formats[id].object;
    return formats.Intern(format);
  });
}

// One step, each behind the one before.
std::optional<Units> EditorController::InsertObjects(const std::vector<Content>& fragments) {
  const Operation operation(*this);
  if (!UserMayChange(range())) return std::nullopt;
  const Units place = range().begin;
  document_.SealStep();
  bool done = !fragments.empty();
  {
    const text::EditGroup oneStep(document_);
    for (const Content& fragment : fragments) done = done && Replace(range(), InFormatAround(fragment));
  }
  document_.SealStep();
  if (!done && !fragments.empty()) host_.Refused();
  return done ? std::optional(place) : std::nullopt;
}

}  // namespace ui
