// A document: its content, where it came from in bytes, and its history. Not thread-safe; snapshots (content()) are.
#pragma once

#include "text/Content.h"

#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace text {

// Something to keep across edits: where the caret is and where the selection began.
struct Selection {
  Units anchor;
  Units caret;
  constexpr Range range() const { return anchor < caret ? Range{anchor, caret} : Range{caret, anchor}; }
  constexpr bool operator==(const Selection&) const = default;
};

// One replaced stretch, in the positions of the text before it.
struct Change {
  Units position;
  Units removed;
  Units inserted;
  bool formatOnly = false;  // removed == inserted and only formats differ
};

// Where a position of the text before the change lies after it. Inside what was removed it goes to the beginning
// (kLeft) or the end (kRight) of what was inserted.
Units MapPosition(Units position, const Change& change, Bias bias);

// How a file's bytes relate to the engine's (UTF-8) bytes.
enum class Encoding : uint8_t { kUtf8, kWindows1252, kUtf16Le, kUtf16Be };

struct TextProperties {
  Encoding encoding = Encoding::kUtf8;
  bool byteOrderMark = false;
  LineEnd lineEnd = LineEnd::kCrLf;  // the prevailing spelling; new breaks take it
};

// Steps of the same mergeable kind that follow each other without a caret move are undone together.
enum class EditKind : uint8_t { kCommand, kTyping, kDeleting, kBackspacing, kComposing };

// Identifies a revision: grows with every edit, undo and redo.
using Revision = uint64_t;

class Document {
 public:
  Document();
  explicit Document(Content content, TextProperties properties = {});

  const Content& content() const { return content_; }
  const TextProperties& properties() const { return properties_; }
  TextProperties& properties() { return properties_; }
  FormatTable& formats() const { return content_.formats(); }

  // Loads: replaces everything, clears history and the changed state.
  void Reset(Content content, TextProperties properties = {});

  // --- Edits. Each is one history step unless it merges with the one before; `before` is the selection to come back
  // to. Returns where the inserted text stands afterwards (after CR|LF merging).
  Range Replace(Range range, const Content& fragment, EditKind kind, Selection before);
  // Text as engine bytes in one character format; breaks in it take the paragraph format of the range's first
  // paragraph, but end no cell.
  Range Replace(Range range, std::string_view bytes, CharFormatId format, EditKind kind, Selection before);
  void PatchChars(Range range, const CharFormatPatch& patch, Selection before);
  void PatchParagraphs(Range range, const ParaFormatPatch& patch, Selection before);
  // Swaps in a content computed elsewhere (a bulk replacement) as one step. `change` is what covers all differences.
  void Commit(Content content, Change change, EditKind kind, Selection before);
  // Formats applied while loading or showing: no step, no change of the changed state.
  void SetEmptyFormat(CharFormatId chars, ParaFormatId paragraph);  // only while the content is empty
  // The last one set, or that of the text that an edit removed to the last character. Undo and redo bring it back.
  CharFormatId emptyCharFormat() const { return emptyCharFormat_; }
  // A format chosen for the text typed next. The next edit's step takes it along and undoing that step gives it back.
  void SetTypingFormat(std::optional<CharFormatId> format) { typingFormat_ = format; }
  std::optional<CharFormatId> typingFormat() const { return typingFormat_; }

  // --- History
  bool canUndo() const { return current_ > 0; }
  bool canRedo() const { return current_ + 1 < steps_.size(); }
  // Returns the selection to show, or nothing when there is no step. O(changes in the step).
  std::optional<Selection> Undo();
  std::optional<Selection> Redo();
  // The next edit starts a step of its own (a caret move, a save, a focus change).
  void SealStep() { sealed_ = true; }
  // Everything between Begin and End is one step. May nest.
  void BeginGroup() { ++groupDepth_; }
  void EndGroup() { groupOpen_ = --groupDepth_ > 0 && groupOpen_; }

  // --- Changed since saved
  bool changed() const { return forcedChanged_ || steps_[current_].id != savedId_; }
  void SetSaved();  // this very content is what the file holds
  void ForceChanged() { forcedChanged_ = true; }

  // --- For those who derive something
  Revision revision() const { return revision_; }
  // The changes from that revision to now, oldest first, or nothing when they are not known any more.
  std::optional<std::vector<Change>> ChangesSince(Revision revision) const;

 private:
  struct Step {
    uint64_t id = 0;  // of the state that this step leads to
    Content content;  // after it
    Selection before, after;
    std::vector<Change> changes;  // how it was reached from the step before
    EditKind kind = EditKind::kCommand;
    CharFormatId emptyCharFormat = CharFormatId::kDefault;  // after it
    std::optional<CharFormatId> typingFormat;               // before it
  };
  void Record(Content content, Change change, EditKind kind, Selection before);
  bool Merges(const Change& change, EditKind kind) const;
  void Log(const Change& change);

  Content content_;
  TextProperties properties_;
  CharFormatId emptyCharFormat_ = CharFormatId::kDefault;
  std::optional<CharFormatId> typingFormat_;
  std::vector<Step> steps_;  // steps_[0] is the loaded state
  size_t current_ = 0;
  uint64_t nextId_ = 1;
  uint64_t savedId_ = 0;
  bool forcedChanged_ = false;
  bool sealed_ = true;
  int groupDepth_ = 0;
  bool groupOpen_ = false;  // the group's first edit has made its step
  Revision revision_ = 0;
  std::deque<Change> log_;  // the last changes; log_.back() led to revision_
};

// What is edited while it lives is one step, also when an exception ends it.
class EditGroup {
 public:
  explicit EditGroup(Document& document) : document_(document) { document_.BeginGroup(); }
  ~EditGroup() { document_.EndGroup(); }
  EditGroup(const EditGroup&) = delete;
  EditGroup& operator=(const EditGroup&) = delete;

 private:
  Document& document_;
};

}  // namespace text
