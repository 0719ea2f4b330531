// What stands at a place of a text, if that is an object.
#pragma once

#include "text/Content.h"
#include "text/Objects.h"

namespace text {

// kNone for any other character, and behind the end.
inline ObjectId ObjectIdAt(const Content& content, Units place) {
  return place < content.size() ? content.formats()[content.CharFormatAt(place)].object : ObjectId::kNone;
}

// A picture, an embedded object or a note; null for anything else. Lives as long as the content's store.
inline const EmbeddedObject* ObjectAt(const Content& content, Units place) {
  const ObjectId id = ObjectIdAt(content, place);
  return id == ObjectId::kNone ? nullptr : &content.formats()[id];
}

// Null for pictures and notes too.
inline const EmbeddedObject* EmbeddedAt(const Content& content, Units place) {
  const EmbeddedObject* const object = ObjectAt(content, place);
  return object && object->kind == ObjectKind::kEmbedded ? object : nullptr;
}

}  // namespace text
