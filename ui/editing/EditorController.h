// The editor without its window: keys, input methods and commands become edits and selections of a document.
//
// A *user's* operation is refused, with Refused() told to the host, where text is protected or the editor is read-only.
// A program's operation (Replace, PatchChars, ...) minds protection only and returns false.
#pragma once

#include "ui/editing/EditorMove.h"
#include "ui/editing/EditorState.h"

#include <QString>
#include <QVariant>

#include <memory>
#include <string_view>
#include <vector>

class QInputMethodEvent;
class QKeyEvent;

namespace ui {

class EditorMimeData;

class EditorController : public EditorState {
 public:
  using EditorState::EditorState;

  // --- The selection
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
  // An empty paragraph becomes the fragment's last one when that has several, or when it stands for whole ones.
  bool Replace(text::Range range, const text::Content& fragment, bool wholeParagraphs = false);
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
  void BreakParagraph();
  void Erase(bool forward, bool word);
  void Undo() { Swap(false); }
  void Redo() { Swap(true); }
  // To the next or previous cell of a table, whose text is then selected; behind the last one a row is added. False
  // outside of tables.
  bool MoveToCell(bool forward);
  // Tells the host of the object that is selected, or of the link at the caret; false without either.
  bool FollowLink();
  // The place of the embedded object that is selected alone or beside which the caret stands.
  std::optional<text::Units> SelectedObject() const;
  bool IsEmbeddedObject(text::Units position) const;
  // Puts the object that the fragment, of the same store, is in its place; one step, the selection stays. False:
  // protected text is in the way, or there is none.
  bool ReplaceObject(text::Units position, const text::Content& fragment);
  // Objects, as contents of the same store, over the selection, in the format of what is typed there, the caret behind
  // them; the place of the first. Nothing: it was refused.
  std::optional<text::Units> InsertObjects(const std::vector<text::Content>& fragments);
  // The target of the link at a place, empty without one.
  std::string LinkAt(text::Units position) const;
  void Cut();
  void Copy();
  void Paste(bool plain);
  // Inserts the data over the selection: rich text first, unless `plain`.
  void Insert(const QMimeData& data, bool plain);
  void InsertPicture(const QMimeData& data);  // over the selection
  void PublishPrimarySelection();
  std::unique_ptr<EditorMimeData> CopyOfSelection() const;  // for clipboards and drags

  // --- Input methods
  void HandleInputMethod(const QInputMethodEvent& event);
  // All but the rectangles and the font. Surrounding text is at most some hundred units of the caret's paragraph.
  QVariant QueryInputMethod(Qt::InputMethodQuery query) const;
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

  void SetOvertype(bool on);

 private:
  class Operation;
  struct KeyBinding;
  enum class KeyCommand : uint8_t;

  // EditorController.cpp
  void Settle();
  void MapThroughForeignEdits();
  void PlaceCaret(text::Selection selection, text::Bias affinity);
  void Swap(bool redo);
  bool TakesLastFormat(text::Range range, const text::Content& fragment) const;
  void FormatParagraphAt(text::Units position, text::ParaFormatId format);

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

  // EditorObjects.cpp
  text::Content InFormatAround(const text::Content& fragment) const;

  // EditorTables.cpp
  bool KeepsTables(text::Range range) const { return KeepsTables(document_.content(), range); }
  static bool KeepsTables(const text::Content& content, text::Range range);
  text::Content FittedToTables(text::Range range, const text::Content& fragment) const;
  bool LeavesRowMark(text::Range range) const;
  void DropLastRowMark();
  void AddRow(text::Breaks first, text::Breaks last);
  std::optional<text::Content> WithEmptiedCells(text::Range range) const;
  bool EmptyCells(text::Range range);

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
};

}  // namespace ui
