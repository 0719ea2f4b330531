// The commands that act on the text, and the state that follows the selection.
#include "documents/frmText.h"
#include "ui/desktop/Clipboard.h"

namespace documents {

void frmText::mnuClose_Click() {
  Close();
}
void frmText::mnuCopyPath_Click() {
  ui::SetClipboardPath(caption());
}
void frmText::mnuRefresh_Click() {
  RichTextBox1_->SetSelLength(0);
}

void frmText::mnuUndoItem_Click() {
  RichTextBox1_->Undo();
}
void frmText::mnuRedoItem_Click() {
  RichTextBox1_->Redo();
}
void frmText::mnuCut_Click() {
  RichTextBox1_->Cut();
}
void frmText::mnuCopy_Click() {
  RichTextBox1_->Copy();
}
void frmText::mnuPaste_Click() {
  RichTextBox1_->Paste();
}
// One step over the selection, or a beep where text is protected.
void frmText::InsertAsRichText(const QByteArray& rtfOrText) {
  if (RichTextBox1_->MayTypeOver()) RichTextBox1_->SetSelRTF(rtfOrText);
}

// The clipboard may have lost what the menu was opened for.
void frmText::mnuPasteAsText_Click() {
  const QString text = ui::ClipboardText();
  if (text.isEmpty()) return RichTextBox1_->Refuse();
  InsertAsRichText(text.toUtf8());
}
void frmText::mnuPasteAsRTF_Click() {
  const QByteArray rtf = ui::ClipboardRtf();
  if (rtf.isEmpty()) return RichTextBox1_->Refuse();
  InsertAsRichText(rtf);
}
void frmText::mnuPasteAsLink_Click() {
  const QString text = ui::ClipboardText();
  if (text.isEmpty()) return RichTextBox1_->Refuse();
  const QString link = QStringLiteral("<a href=\"") + text + QStringLiteral("\"></a>");
  InsertAsRichText(link.toUtf8());
}
void frmText::mnuDelete_Click() {
  RichTextBox1_->DeleteSelection();
}
void frmText::mnuSelAll_Click() {
  RichTextBox1_->SelectAll();
}

void frmText::mnuAutoComplete_Click() {
  if (AutoCompleteOn()) Completion_->ShowCompletionPopup();
}

void frmText::InsertDateTime(DateTimeForm form) {
  InsertAsRichText(DateTimeText(form).toUtf8());
}

// The inverse of a mixed state is True.
void frmText::Toggle(std::optional<bool> (ui::RichTextBox::*get)() const, void (ui::RichTextBox::*set)(bool)) {
  (RichTextBox1_->*set)(!(RichTextBox1_->*get)().value_or(false));
}

void frmText::mnuBold_Click() {
  Toggle(&ui::RichTextBox::SelBold, &ui::RichTextBox::SetSelBold);
}
void frmText::mnuItalic_Click() {
  Toggle(&ui::RichTextBox::SelItalic, &ui::RichTextBox::SetSelItalic);
}
void frmText::mnuUnderline_Click() {
  Toggle(&ui::RichTextBox::SelUnderline, &ui::RichTextBox::SetSelUnderline);
}
void frmText::mnuStrikeThru_Click() {
  Toggle(&ui::RichTextBox::SelStrikeThru, &ui::RichTextBox::SetSelStrikeThru);
}

void frmText::mnuEmphasisRemove_Click() {
  const text::EditGroup oneStep(RichTextBox1_->document());
  RichTextBox1_->SetSelBold(false);
  RichTextBox1_->SetSelItalic(false);
  RichTextBox1_->SetSelUnderline(false);
  RichTextBox1_->SetSelStrikeThru(false);
}

void frmText::mnuAlignLeft_Click() {
  RichTextBox1_->SetSelAlignment(0);
}
void frmText::mnuAlignCenter_Click() {
  RichTextBox1_->SetSelAlignment(2);
}
void frmText::mnuAlignRight_Click() {
  RichTextBox1_->SetSelAlignment(1);
}

void frmText::mnuFont_Click() {
  const auto name = RichTextBox1_->SelFontName();
  const auto size = RichTextBox1_->SelFontSize();
  const auto bold = RichTextBox1_->SelBold(), italic = RichTextBox1_->SelItalic();
  const auto strike = RichTextBox1_->SelStrikeThru(), underline = RichTextBox1_->SelUnderline();
  const auto color = RichTextBox1_->SelColor();
  // A dialog for one font cannot show several: the command ends here, without a message.
  if (!name || !size || !bold || !italic || !strike || !underline || !color) return;
  const ui::FontChoice before{*name, *size, *bold, *italic, *strike, *underline, *color};
  const auto chosen = services_.dialogs().PickFont(this, before, services_.customColors());
  if (!chosen || unloaded_) return;
  const text::EditGroup oneStep(RichTextBox1_->document());
  if (chosen->family != before.family) RichTextBox1_->SetSelFontName(chosen->family);
  if (chosen->points != before.points) RichTextBox1_->SetSelFontSize(chosen->points);
  if (chosen->bold != before.bold) RichTextBox1_->SetSelBold(chosen->bold);
  if (chosen->italic != before.italic) RichTextBox1_->SetSelItalic(chosen->italic);
  if (chosen->strikeThru != before.strikeThru) RichTextBox1_->SetSelStrikeThru(chosen->strikeThru);
  if (chosen->underline != before.underline) RichTextBox1_->SetSelUnderline(chosen->underline);
  if (chosen->color != before.color) RichTextBox1_->SetSelColor(chosen->color);
}

void frmText::ShowState() {
  services_.ShowOvertype(RichTextBox1_->overtype());
  LastFontName_.clear();
  LastFontSize_ = 0;
  UpdateSelectionState();
}

void frmText::UpdateSelectionState() {
  const services::SelectionState state{.bold = RichTextBox1_->SelBold(),
                                       .italic = RichTextBox1_->SelItalic(),
                                       .underline = RichTextBox1_->SelUnderline(),
                                       .strikeThru = RichTextBox1_->SelStrikeThru(),
                                       .bullet = RichTextBox1_->SelBullet(),
                                       .protectedText = RichTextBox1_->SelProtected(),
                                       .alignment = RichTextBox1_->SelAlignment()};
  // A mixed state leaves its check mark as it was.
  checks_.Bold = state.bold.value_or(checks_.Bold);
  checks_.Italic = state.italic.value_or(checks_.Italic);
  checks_.Underline = state.underline.value_or(checks_.Underline);
  checks_.StrikeThru = state.strikeThru.value_or(checks_.StrikeThru);
  checks_.Bullet = state.bullet.value_or(checks_.Bullet);
  checks_.Protect = state.protectedText.value_or(checks_.Protect);
  UpdateAlignment(state.alignment);
  UpdateOffsetTool();
  // The main window shows the document in front; this one may be another that a command works on.
  if (table_.Active() != this) return;
  services_.ShowSelectionState(state);
  UpdateFontPanel();
}

void frmText::UpdateAlignment(std::optional<int> alignment) {
  if (!alignment || *alignment < 0 || *alignment > 2) return;
  checks_.AlignLeft = *alignment == 0;
  checks_.AlignRight = *alignment == 1;
  checks_.AlignCenter = *alignment == 2;
}

void frmText::UpdateFontPanel() {
  const auto name = RichTextBox1_->SelFontName();
  const auto size = RichTextBox1_->SelFontSize();
  if (!name || !size || (*name == LastFontName_ && *size == LastFontSize_)) return;
  LastFontName_ = *name;
  LastFontSize_ = *size;
  services_.ShowSelectionFont(*name + QStringLiteral(", ") + QString::number(*size));
}

}  // namespace documents
