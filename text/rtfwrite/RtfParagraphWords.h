// The words about paragraphs that are in force at a place of a file: what a \pard that is put in there would undo.
#pragma once

#include "text/FormatTable.h"
#include "text/rtf/RtfWatcher.h"

#include <string>
#include <string_view>
#include <vector>

namespace text::rtf {

class ParagraphWords {
 public:
  explicit ParagraphWords(std::string_view source) : source_(source) {}

  void OnGroup() { groups_.push_back({first_, words_.size()}); }
  void OnGroupEnd();
  void OnReset();
  // Any word of the body; one that is about something else is passed over. The oldest go where there are too many.
  void OnWord(Span span);

  // What to say again behind \pard when the format in force becomes another one: every word that has no place in the
  // model, in its order and spelling, the list's words while the list stays, and the tab stops that stay, with their
  // kinds and leaders.
  struct Kept {
    std::string words;
    std::string list;  // those of the list among them
    bool box = false;  // the box stays, and its words are among them
    TabsId stops = TabsId::kNone;
  };
  Kept Replay(const ParaFormat& from, const ParaFormat& to, FormatTable& formats) const;

 private:
  struct Group {
    size_t first, size;  // of the group around
  };

  std::string_view source_;
  std::vector<Group> groups_;
  std::vector<Span> words_;
  size_t first_ = 0;  // those from here on are in force
};

}  // namespace text::rtf
