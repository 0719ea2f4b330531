#include "search/frmYesNoAll.h"

#include <QCoreApplication>

#include <cstdlib>

namespace search {

frmYesNoAll::frmYesNoAll(ui::Form& owner) : QuestionForm(owner.widget()) {
  setObjectName(QStringLiteral("frmYesNoAll"));
  setWindowTitle(QCoreApplication::applicationName());
  Label1_ = new ui::Label("Label1", {});
  auto* Command1 = new ui::Button("Command1", tr("&Yes"), [this] { Command1_Click(); });
  auto* Command2 = new ui::Button("Command2", tr("&No"), [this] { Command2_Click(); });
  Command3_ = new ui::Button("Command3", tr("&Cancel"), [this] { Command3_Click(); });
  Command3_->setDefault(true);  // also for Enter in the check box
  chkAll_ = new ui::CheckBox("chkAll", tr("&Apply this choice to all selected"));
  ui::LayOutInRows(*this, {{Label1_}, {Command1, Command2, Command3_}, {chkAll_}});
}

void frmYesNoAll::Prepare(const QString& prompt) {
  Label1_->SetText(prompt);
  Tag.clear();
  Command3_->setFocus();
}

void frmYesNoAll::Answer(const char* code) {
  Tag = code;
  done(code == std::string_view("2") ? 0 : 1);
}

frmYesNoAll& Confirmation::form() {
  if (!form_) form_ = std::make_unique<frmYesNoAll>(*services_.forms().at(0));
  return *form_;
}

int Confirmation::fncYesNoAll(const QString& prompt) {
  if (!form().chkAll().Value()) {
    form().Prepare(prompt);
    services_.dialogs().ShowModal(form());
  }
  return std::atoi(form().Tag.c_str());
}

void Confirmation::AskEach() {
  form().chkAll().setVisible(true);
  form().chkAll().SetValue(false);
}

void Confirmation::AnswerAllYes() {
  form().chkAll().SetValue(true);
  form().Tag = "6";
}

}  // namespace search
