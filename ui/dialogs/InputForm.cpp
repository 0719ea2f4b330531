#include "ui/dialogs/InputForm.h"

#include "ui/controls/DialogControls.h"

#include <QCoreApplication>

namespace ui {

InputForm::InputForm(const QString& prompt, const QString& initial, QWidget* owner) : ModalForm(owner) {
  setObjectName(QStringLiteral("InputForm"));
  setWindowTitle(QCoreApplication::applicationName());
  auto* Label1 = new Label("Label1", prompt);
  Text1_ = new TextBox("Text1");
  Text1_->setAccessibleName(prompt);
  Text1_->SetText(initial);
  Text1_->selectAll();
  auto* Command1 = new Button("Command1", tr("OK"), [this] { accept(); });
  auto* Command2 = new Button("Command2", tr("Cancel"), [this] { reject(); });
  Command1->setDefault(true);
  LayOutInRows(*this, {{Label1}, {Text1_}, {Command1, Command2}});
}

QString InputForm::text() const {
  return Text1_->Text();
}

}  // namespace ui
