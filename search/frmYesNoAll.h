// Yes, No or Cancel for each item of a batch, with one answer for the rest of it.
#pragma once

#include "services/Services.h"
#include "ui/controls/DialogControls.h"
#include "ui/dialogs/ModalForm.h"

#include <memory>
#include <string>

namespace search {

// Hidden between questions, never destroyed: chkAll and Tag keep their values.
class frmYesNoAll : public ui::QuestionForm {
  Q_OBJECT

 public:
  explicit frmYesNoAll(ui::Form& owner);

  std::string Tag;  // the code of the last answer as decimal text; empty while the form is open

  // Made ready for the next question.
  void Prepare(const QString& prompt);

  ui::Label& Label1() { return *Label1_; }
  ui::CheckBox& chkAll() { return *chkAll_; }
  void Command1_Click() { Answer("6"); }
  void Command2_Click() { Answer("7"); }
  void Command3_Click() { Answer("2"); }

 protected:
  void reject() override { Command3_Click(); }  // Escape and the close box

 private:
  void Answer(const char* code);

  ui::Label* Label1_;
  ui::Button* Command3_;
  ui::CheckBox* chkAll_;
};

class Confirmation {
 public:
  explicit Confirmation(services::Services& services) : services_(services) {}

  // 6 = Yes, 7 = No, 2 = Cancel, 0 = nothing was answered yet.
  int fncYesNoAll(const QString& prompt);
  // Before the first item: each is asked, until the box for all is ticked.
  void AskEach();
  // Before the first item: all are answered with Yes, and none is asked.
  void AnswerAllYes();

 private:
  frmYesNoAll& form();

  services::Services& services_;
  std::unique_ptr<frmYesNoAll> form_;
};

}  // namespace search
