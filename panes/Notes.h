// The commands of the notes, and their pad while it is open.
#pragma once

#include "panes/frmMyPad.h"

#include <memory>

namespace panes {

class Notes {
 public:
  explicit Notes(services::Services& services) : services_(services) {}

  void MyShow(const files::Path& path, ui::Keyboard keyboard = ui::Keyboard::kTake);
  void mnuNotesOpen_Click();
  void mnuNotesSave_Click();

  frmMyPad* pad() { return pad_.get(); }  // null while none is loaded
  void Release();                         // by the pad, which has closed

 private:
  services::Services& services_;
  std::unique_ptr<frmMyPad> pad_;
  ui::ClosedPanes closed_;
};

}  // namespace panes
