// A new file made of stretches of an old one and of new bytes, which may also be put in where something was written
// before.
#pragma once

#include "text/rtf/RtfWatcher.h"

#include <string>
#include <string_view>
#include <vector>

namespace text::rtf {

class SpliceOutput {
 public:
  // Stays where it is, whatever is put in elsewhere.
  struct Place {
    size_t slot = 0;
    size_t at = 0;  // in its new bytes
  };

  explicit SpliceOutput(std::string_view source) : source_(source) {}

  // Copies up to an offset of the source, or passes it over. What lies before is done with and is not touched.
  void CopyTo(size_t offset);
  void DropTo(size_t offset);
  size_t position() const { return from_; }
  // Behind what was written so far; new bytes put in there stand before all that is written later.
  Place Here();
  void Append(std::string_view bytes);
  void Insert(const Place& place, std::string_view bytes);
  // Behind all the new bytes of the place.
  void InsertLast(const Place& place, std::string_view bytes);
  size_t BytesAt(const Place& place) const { return slots_[place.slot].bytes.size(); }
  // Takes back all that was written from the place on.
  void CutTo(const Place& place);

  // Everything, with a space where a control word would otherwise run on into what follows it.
  std::string Joined() const;

 private:
  // New bytes, then a stretch of the source.
  struct Slot {
    std::string bytes;
    Span span;
  };

  std::string_view source_;
  size_t from_ = 0;  // up to here the source is done with
  std::vector<Slot> slots_{1};
};

// Puts whole tokens in, with a space where their last word would run on into what follows.
void PutIn(std::string& text, size_t at, std::string_view bytes);

// True when the bytes end in a control word without the space that would end it.
bool EndsInWord(std::string_view bytes);

}  // namespace text::rtf
