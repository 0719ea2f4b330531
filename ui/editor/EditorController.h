// The editor without its window: keys, input methods and commands become edits and selections of a document.
//
// A *user's* operation is refused, with Refused() told to the host, where text is protected or the editor is read-only.
// A program's operation (Replace, PatchChars, ...) minds protection only and returns false.
#pragma once

#include "text/Document.h"
#include "text/layout/ViewLayout.h"
#include "text/rtf/Rtf.h"
#include "ui/editor/EditorHost.h"
#include "ui/editor/EditorMove.h"

#include <QString>
#include <QVariant>

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

class QInputMethodEvent;
class QKeyEvent;

namespace ui {

// Pixels around the text; so much also stays free around the caret, so that the ends of the text come into view whole.
constexpr double kTextMargin = 4;

// A bullet hangs by that many twips; the first line's position stays. Without: no number either.
text::ParaFormat WithBullet(text::ParaFormat format, int bulletIndent);
text::ParaFormat WithoutBullet(text::ParaFormat format);

class EditorMimeData;

class EditorController {
 public:
  EditorController(text::Document& document, text::layout::ViewLayout& layout, EditorHost& host);

  // --- The selection
  const text::Selection& selection() const { return selection_; }
  text::Range range() const { return selection_.range(); }
  text::layout::CaretPlace caret() const { return {selection_.caret, affinity_}; }
  // A caret move: ends the typing step and drops the format remembered for the next text. Clamps.
  void Select(text::Selection selection, text::Bias affinity = text::Bias::kRight);
  void SelectAll() { Select({text::Units(0), document_.content().size()}); }
  void Move(EditorMove move, bool extend);
  // Scrolls so that the caret shows with that many lines around it.
  void RevealCaret(int contextLines = 0);
  // Takes in edits that were made to the document directly. Told like any other change.
  void Sync();
  // After a load: caret to the start, everything told.
  void Reset();

  // --- Edits by the program; the caret goes behind the new text. False: protected text is in the way.
  bool Replace(text::Range range, std::string_view bytes, text::EditKind kind = text::EditKind::kCommand);
  bool Replace(text::Range range, const text::Content& fragment);
  // Whether a range that is not empty could be replaced.
  static bool MayReplace(const text::Content& content, text::Range range) {
    return (content.Summarize(range).someSet & text::kProtected) == 0 && KeepsTables(content, range);
  }

  // --- The user's edits
  bool HandleKey(QKeyEvent& event);              // false: not a key of the editor
  static bool IsOwnKey(const QKeyEvent& event);  // also when a menu has it as a shortcut
  void Type(const QString& text);
  // As one step of its own, over the selection but never over what stands behind it. False: it was refused.
  bool TypeOver(const QString& text);
  bool UserMayReplaceSelection() { return UserMayChange(range()); }  // false: it was refused
  // Asked before text that is typed goes in. True: it has been dealt with, and perhaps the editor is gone.
  void BeforeTyping(std::function<bool(const QString& text)> take) { beforeTyping_ = std::move(take); }
  void BreakParagraph();
  void Erase(bool forward, bool word);
  void Undo() { Swap(false); }
  void Redo() { Swap(true); }
  // To the next or previous cell of a table, whose text is then selected; behind the last one a row is added. False
  // outside of tables.
  bool MoveToCell(bool forward);
  // Tells the host of the link at the caret; false without one.
  bool FollowLink();
  // The target of the link at a place, empty without one.
  std::string LinkAt(text::Units position) const;
  void Cut();
  void Copy();
  void Paste(bool plain);
  // Inserts the data over the selection: rich text first, unless `plain`.
  void Insert(const QMimeData& data, bool plain);
  void PublishPrimarySelection();

  // --- Input methods
  void HandleInputMethod(const QInputMethodEvent& event);
  // All but the rectangles and the font. Surrounding text is at most some hundred units of the caret's paragraph.
  QVariant QueryInputMethod(Qt::InputMethodQuery query) const;
  bool composing() const { return composing_; }
  // The text composed so far goes in as it is; the input method is told to forget it.
  void FinishComposition();

  // --- Formats. Protected text takes no format but protection itself, and a paragraph
  // with protected text takes none.
  text::CharSummary CharState() const;  // of the selection, or of the text typed next
  text::ParaSummary ParagraphState() const;
  text::CharFormat InsertFormat() const;
  bool PatchChars(const text::CharFormatPatch& patch);  // with an empty selection: for the text typed next
  bool PatchParagraphs(const text::ParaFormatPatch& patch);
  // Where the new format depends on the old one; called once for each different format.
  bool MapParagraphs(const std::function<text::ParaFormat(text::ParaFormat)>& map);

  // --- Settings
  bool overtype() const { return overtype_; }
  void SetOvertype(bool on);
  bool readOnly() const { return readOnly_; }
  void SetReadOnly(bool on) { readOnly_ = on; }
  void SetRtfProperties(const text::rtf::DocumentProperties& properties) { rtfProperties_ = properties; }
  const text::rtf::DocumentProperties& rtfProperties() const { return rtfProperties_; }

  // Asked at every paste: only what is saved with its formats takes those of an HTML page, and pictures. Not set: yes.
  void SavesFormatsWhen(std::function<bool()> saves) { savesFormats_ = std::move(saves); }
  std::unique_ptr<EditorMimeData> CopyOfSelection() const;  // for clipboards and drags

  text::Document& document() { return document_; }
  const text::Document& document() const { return document_; }
  text::layout::ViewLayout& layout() { return layout_; }
  EditorHost& host() { return host_; }

 private:
  class Operation;
  struct Told {  // what the host knows
    text::Selection selection;
    text::Revision revision = 0;
    std::optional<text::CharFormat> remembered;
    bool operator==(const Told&) const = default;
  };
  struct KeyBinding;
  enum class KeyCommand : uint8_t;

  // EditorController.cpp
  Told Now() const { return {selection_, document_.revision(), remembered_}; }
  void Settle();
  void MapThroughForeignEdits();
  void PlaceCaret(text::Selection selection, text::Bias affinity);
  void Swap(bool redo);

  // EditorEditing.cpp
  bool MayChange(text::Range range) const;
  bool UserMayChange(text::Range range);
  text::CharFormat FormatFor(text::Range range) const;
  bool IsWithinLink(text::Units position) const;
  text::Range OvertypeRange(const QString& text) const;
  void StayBesideWhatIsBefore();
  void DropComposition();
  void KeepFormatForNextText();
  bool EmptiesParagraph(text::Range erased) const;
  bool LeaveList();
  bool BackspaceRemovesBullet();

  // EditorTables.cpp
  bool KeepsTables(text::Range range) const { return KeepsTables(document_.content(), range); }
  static bool KeepsTables(const text::Content& content, text::Range range);
  text::Content FittedToTables(text::Range range, const text::Content& fragment) const;
  bool LeavesRowMark(text::Range range) const;
  void DropLastRowMark();
  void AddRow(text::Breaks first, text::Breaks last);

  // EditorMovement.cpp
  text::layout::CaretPlace Target(EditorMove move);
  text::layout::CaretPlace CollapseTarget(bool right);
  text::layout::CaretPlace PageTarget(bool down);
  text::Units WordTarget(bool right) const;
  text::Units ParagraphTarget(bool down) const;
  bool CaretParagraphIsRightToLeft() const;
  double GoalX();

  // EditorKeys.cpp
  static const KeyBinding* FindBinding(const QKeyEvent& event);
  void Run(KeyCommand command);
  void NoteTypingPause(const QKeyEvent& event);

  // EditorFormats.cpp
  text::Range ParagraphsOfSelection() const;
  bool MayFormatParagraphs() const;

  // EditorInputMethod.cpp
  void Commit(const QInputMethodEvent& event);
  void Compose(const QInputMethodEvent& event);
  void SelectSurrounding(int start, int length);

  text::Document& document_;
  text::layout::ViewLayout& layout_;
  EditorHost& host_;
  text::Selection selection_;
  text::Bias affinity_ = text::Bias::kRight;
  std::optional<double> goalX_;                 // of a run of vertical moves
  std::optional<text::CharFormat> remembered_;  // for the text typed next
  text::rtf::DocumentProperties rtfProperties_;
  bool SavesFormats() const { return !savesFormats_ || savesFormats_(); }

  std::function<bool()> savesFormats_;
  std::function<bool(const QString&)> beforeTyping_;
  text::Revision seenRevision_ = 0;  // selection_ is of this revision
  Told told_;
  int depth_ = 0;  // of nested operations
  bool reveal_ = false;
  bool overtype_ = false;
  bool readOnly_ = false;
  bool composing_ = false;
  unsigned long long lastKeyTime_ = 0;
};

}  // namespace ui
