// Asks for a program when the desktop has none for a document.
#pragma once

#include "services/Services.h"
#include "ui/controls/DialogControls.h"
#include "ui/dialogs/ModalForm.h"

#include <string>

namespace documents {

class frmNoExtApp : public ui::ModalForm {
  Q_OBJECT

 public:
  explicit frmNoExtApp(services::Services& services);

  std::string Tag;  // "A" while it is being shown, then "0" for OK or "1" for Cancel
  ui::TextBox& Text2() { return *Text2_; }
  std::string Program() const { return Text2_->Path(); }

  void Command1_Click(int index);  // 0 OK, 1 Cancel, 2 Browse, 3 Help

 protected:
  void reject() override { Command1_Click(1); }  // Escape and the close box

 private:
  void Browse();

  services::Services& services_;
  ui::PathBox* Text2_;
};

}  // namespace documents
