// The completion list of one document window.
#pragma once

#include "autocomplete/AutoComplete.h"
#include "services/Completion.h"
#include "ui/controls/completion/CompletionBox.h"

#include <QObject>
#include <QPointer>

namespace autocomplete {

class Completion final : public QObject, public services::Completion {
 public:
  Completion(services::Services& services, const AutoComplete& autoComplete, ui::RichTextBox& editor);
  ~Completion() override;

  void Fill() override;
  void ShowCompletionPopup() override;

 private:
  bool TakeTyped(const QString& text);
  bool SelectFragment();
  void Accept(QChar key);
  void Cancel();
  void Close();
  bool alive() const { return RichTextBox1_ && Combo1_; }

  services::Services& services_;
  const AutoComplete& autoComplete_;
  QPointer<ui::RichTextBox> RichTextBox1_;
  QPointer<ui::CompletionBox> Combo1_;
  bool primed_ = false;  // the fragment was typed into the list
  bool busy_ = false;    // the selection and the text change by what is done here
};

}  // namespace autocomplete
