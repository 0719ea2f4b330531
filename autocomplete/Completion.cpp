#include "autocomplete/Completion.h"

#include "autocomplete/Fragment.h"
#include "ui/PendingEvents.h"

#include <QScopedValueRollback>

namespace autocomplete {

Completion::Completion(services::Services& services, const AutoComplete& autoComplete, ui::RichTextBox& editor)
    : services_(services), autoComplete_(autoComplete), RichTextBox1_(&editor), Combo1_(new ui::CompletionBox(editor)) {
  editor.BeforeTyping([this](const QString& text) { return TakeTyped(text); });
  connect(Combo1_, &ui::CompletionBox::Accepted, this,
          [this](QChar key) { services_.forms().Guarded([&] { Accept(key); }); });
  connect(Combo1_, &ui::CompletionBox::Cancelled, this, [this] { services_.forms().Guarded([&] { Cancel(); }); });
  // The fragment is what was selected when the list opened. Whoever selects or writes something else has left it.
  const auto left = [this] {
    if (!busy_) Close();
  };
  connect(&editor, &ui::RichTextBox::SelChange, this, left);
  connect(&editor, &ui::RichTextBox::Change, this, left);
}

Completion::~Completion() {
  if (RichTextBox1_) RichTextBox1_->BeforeTyping({});
}

void Completion::Fill() {
  if (!alive()) return;
  if (!autoComplete_.AutoCompleteOn()) return Close();
  Combo1_->SetEntries(autoComplete_.AutoCompleteWords());
}

bool Completion::TakeTyped(const QString& text) {
  if (text != QLatin1String("<") || !autoComplete_.AutoCompleteOn()) return false;
  const ui::CommandScope scope;
  if (RichTextBox1_->TypeOver(text)) ShowCompletionPopup();
  return true;
}

// As the fragment an existing selection stays as it is. False: it could not be replaced.
bool Completion::SelectFragment() {
  const QScopedValueRollback busy(busy_, true);
  if (RichTextBox1_->SelLength() == 0) {
    const text::Content content = RichTextBox1_->document().content();
    const text::Units caret = content.FromSurface(text::SurfaceUnits(RichTextBox1_->SelStart()), text::Bias::kLeft);
    const text::Range fragment = FragmentBefore(content, caret);
    if (!fragment.empty()) {
      RichTextBox1_->SetSelStart(content.ToSurface(fragment.begin).value());
      RichTextBox1_->SetSelLength(fragment.size().value());
    }
  }
  return RichTextBox1_->MayTypeOver();
}

void Completion::ShowCompletionPopup() {
  if (!alive()) return;
  const ui::CommandScope scope;
  if (Combo1_->isOpen()) return Combo1_->ToggleDropDown();
  RichTextBox1_->ScrollToCaret();
  const bool own = RichTextBox1_->SelLength() > 0;
  if (!SelectFragment()) return own ? Close() : Cancel();
  QString fragment;
  if (RichTextBox1_->SelLength() <= kMostFragment) fragment = RichTextBox1_->SelText();
  primed_ = !fragment.isEmpty() && FitsIntoLine(fragment);
  Combo1_->Open(primed_ ? fragment : QString());
  ui::LetPendingEventsRun();
}

void Completion::Accept(QChar key) {
  if (!alive() || !Combo1_->isOpen()) return;
  const ui::CommandScope scope;
  QString text = Combo1_->Text();
  if (key == QLatin1Char('>') && !text.endsWith(key)) text += key;
  // A fragment that the list did not show is not taken away by its empty line.
  if (text.isEmpty() && !primed_) return Cancel();
  const QScopedValueRollback busy(busy_, true);
  if (!RichTextBox1_->TypeOver(text)) return Cancel();
  Close();
}

void Completion::Cancel() {
  if (!alive()) return;
  const QScopedValueRollback busy(busy_, true);
  Close();
  const int64_t length = RichTextBox1_->SelLength();
  if (length > 0) RichTextBox1_->SetSelStart(RichTextBox1_->SelStart() + length);
}

void Completion::Close() {
  if (Combo1_) Combo1_->Close();
}

}  // namespace autocomplete
