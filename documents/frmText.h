// The window of one document.
#pragma once

#include "documents/DateTimeText.h"
#include "documents/DocumentReader.h"
#include "documents/DocumentTable.h"
#include "documents/DocumentWriter.h"
#include "documents/Origin.h"
#include "ui/editor/RichTextBox.h"
#include "ui/frame/ChildWindow.h"

class QMimeData;

namespace ui {
class OffsetTool;
struct ObjectType;
}  // namespace ui

namespace documents {

enum class SaveOutcome { kSaved, kFailed, kCancelled };

// The check marks of the Format menu, as of the selection's last single values.
struct FormatChecks {
  bool Bold = false, Italic = false, Underline = false, StrikeThru = false;
  bool Bullet = false, Protect = false, SelCharOffset = false;
  bool AlignLeft = true, AlignCenter = false, AlignRight = false;
};

class frmText : public ui::ChildForm {
  Q_OBJECT

 public:
  frmText(services::Services& services, DocumentTable& table, int slot);
  ~frmText() override;

  int slot() const { return slot_; }
  std::string Tag() const { return std::to_string(slot_); }
  ui::RichTextBox& RichTextBox1() { return *RichTextBox1_; }
  const FormatChecks& checks() const { return checks_; }
  services::Completion& completion() { return *Completion_; }
  bool AutoCompleteOn() const { return services_.AutoCompleteOn(); }

  void MyShow();
  // Toolbar, check marks and status bar as of this document's selection.
  void ShowState();

  // --- For the load step
  void SetDefaultFormat();  // only while the window is empty
  void TakeIn(ReadDocument read);
  void MarkRecovered(const files::RecoveryEntry& entry);
  void SetUnchanged();
  void ForceChanged();

  // --- Closing, in two steps so that the end of the program can ask all windows before the first one goes
  bool Close() override;
  bool QueryUnload();  // asks about changed text; false = the window stays
  // Asks again about text that came since. False when the answer was Cancel, or when a text that could not be saved
  // could not be rescued either.
  bool Unload();
  // Writes a changed text to the recovery folder, without a question or a message, at any moment; for an end that
  // nobody can be asked about. The text counts as kept until it is saved or given up.
  std::optional<files::Error> KeepText();

  // --- File
  SaveOutcome mnuSaveFile_Click();
  SaveOutcome mnuSaveFileAs_Click();
  void mnuClose_Click();
  void mnuAddFile_Click();
  void mnuPrint_Click();
  void mnuCopyPath_Click();
  void mnuRefresh_Click();
  void mnuViewFile_Click();

  // --- Edit
  void mnuUndoItem_Click();
  void mnuRedoItem_Click();
  void mnuCut_Click();
  void mnuCopy_Click();
  void mnuPaste_Click();
  void mnuPasteAsText_Click();
  void mnuPasteAsRTF_Click();
  void mnuPasteAsLink_Click();
  void mnuDelete_Click();
  void mnuSelAll_Click();
  void mnuAutoComplete_Click();
  void InsertDateTime(DateTimeForm form);
  void mnuObjInsert_Click();
  void mnuRCObjOpen_Click();                             // the object that is selected
  bool KeepsObjects() const { return !SavesAsPlain(); }  // in its file
  bool ObjectSelected() const { return RichTextBox1_->SelectedObject().has_value(); }

  // --- Format
  void mnuBold_Click();
  void mnuItalic_Click();
  void mnuUnderline_Click();
  void mnuStrikeThru_Click();
  void mnuEmphasisRemove_Click();
  void mnuAlignLeft_Click();
  void mnuAlignCenter_Click();
  void mnuAlignRight_Click();
  void mnuIndentLeft_Click();
  void mnuIndentHang_Click();
  void mnuIndentRight_Click();
  void mnuBullet_Click();
  void mnuFont_Click();
  void mnuSelCharOffset_Click();
  void mnuProtect_Click();

  // --- Strip
  void mnuStrip_Click();
  void mnuStripBlanks_Click();
  void mnuStripASCII_Click();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  enum class Go { kOn, kSaveAs, kStop, kFailed };
  struct Saving;

  void ConnectEditor();
  void InsertAsRichText(const QByteArray& rtfOrText);
  void InsertNewObject(const ui::ObjectType& type);
  void InsertFiles(const std::vector<std::string>& paths);
  void ShowFileErrors(const std::vector<files::Error>& errors);
  void OpenObject(text::Units place);
  void AddFileToDrag(QMimeData& data, bool asFile);
  SaveOutcome RenameUntitledAndSaveAs();
  SaveOutcome SaveAttributed(int attributes);
  SaveOutcome Write(const Saving& saving);
  void Saved(const files::FileStamp& stamp, const DocumentBytes& written);
  SaveOutcome ReportSaveError(const files::Error& error, int attributes);
  SaveOutcome Follow(Go go);
  DocumentBytes BytesToSave(const text::Content& content, const text::TextProperties& properties, bool plain) const;
  Go AskReadOnly();
  Go AskChangedOnDisk();
  Go AskFormat(Saving& saving);
  Go AskNotRtf();
  Go AskLoss(Saving& saving);
  Go AskObjects(const text::Content& content);
  Go AskEncoding(Saving& saving);
  Go Ask(const QString& text, ui::Buttons buttons, ui::Icon icon);
  bool WriteRecovery();
  bool IsAsAsked() const;
  RescuedText TextToRescue() const;
  void TakeName(const files::Path& chosen);
  bool SavesAsPlain() const;
  void Toggle(std::optional<bool> (ui::RichTextBox::*get)() const, void (ui::RichTextBox::*set)(bool));
  std::optional<double> AskCentimeters(const QString& prompt, double& remembered);
  void AskIndent(const QString& prompt, double& remembered, void (ui::RichTextBox::*set)(int));
  void UpdateOffsetTool();
  using Stripper = std::optional<std::string>(const text::Content&, text::Range, const text::Progress&);
  void Strip(const std::function<Stripper>& strip);
  // Runs work behind a progress; the error when memory ran out.
  std::optional<files::Error> Work(const QString& text, int64_t total, const std::function<void(ui::WorkPort&)>& work);
  void UpdateSelectionState();
  void UpdateAlignment(std::optional<int> alignment);
  void UpdateFontPanel();
  files::Path path() const { return files::Path(caption()); }

  services::Services& services_;
  DocumentTable& table_;
  const int slot_;
  ui::RichTextBox* RichTextBox1_;
  std::unique_ptr<services::Completion> Completion_;  // with Combo1
  Origin origin_;
  FormatChecks checks_;
  // What was answered last in this window.
  double BulletIndentCm_ = 0, HangingIndentCm_ = 0, LeftIndentCm_ = 0, RightIndentCm_ = 0;
  QString StripCode_;
  ui::OffsetTool* offsetTool_ = nullptr;       // the editor's
  std::optional<text::EditGroup> offsetDrag_;  // one undo step
  QString LastFontName_;
  double LastFontSize_ = 0;
  std::optional<text::Content> asked_;  // the text that the close prompt was about
  bool unloaded_ = false;
  bool rescue_ = false;  // the save that the closing asked for did not happen
  bool asking_ = false;  // the close prompt is open
};

}  // namespace documents
