// What stands at a place of a text, if that is an object.
#pragma once

#include "text/Content.h"
#include "text/Objects.h"

namespace text {

// kNone for any other character, and behind the end.
inline ObjectId ObjectIdAt(const Content& content, Units place) {
  if (place >= content.size()) return ObjectId::kNone;
  const ObjectId id = content.formats()[content.CharFormatAt(place)].object;
  const bool stands = id != ObjectId::kNone && content.Utf16({place, place + Units(1)}) == u"\uFFFC";
  return stands ? id : ObjectId::kNone;
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
