// The notice that the manual could not be shown.
#pragma once

#include "services/Services.h"
#include "ui/controls/DialogControls.h"
#include "ui/dialogs/ModalForm.h"

#include <string>

namespace shell {

class frmHelpCheck final : public ui::ModalForm {
  Q_OBJECT

 public:
  // `folder` is the application folder, where the installer of the help would be.
  frmHelpCheck(services::Services& services, files::Path folder);

  std::string Tag;  // "0" after Install, "1" after Cancel

  void Command1_Click(int index);  // 0 Install, 1 Cancel

 protected:
  bool event(QEvent* event) override;
  void reject() override { Command1_Click(1); }  // Escape and the close box

 private:
  services::Services& services_;
  const files::Path folder_;
  ui::Button* cancel_;
};

}  // namespace shell
