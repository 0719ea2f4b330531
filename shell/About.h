// Says what this program is and where its home page is.
#pragma once

#include "services/Services.h"
#include "ui/controls/DialogControls.h"
#include "ui/dialogs/ModalForm.h"

#include <string_view>

namespace shell {

class About final : public ui::ModalForm {
  Q_OBJECT

 public:
  explicit About(services::Services& services);

  // Caption and label; the version's second number has two digits there.
  void SetProduct(std::string_view version);
  ui::Label& Label1() { return *Label1_; }
  void Command2_Click(int index);  // 0, 1: opens that page

 private:
  services::Services& services_;
  ui::Label* Label1_;
};

}  // namespace shell
