// The command of the text blocks, and their pane while it is open.
#pragma once

#include "panes/frmTextBlocks.h"

#include <memory>

namespace panes {

class TextBlocks {
 public:
  explicit TextBlocks(services::Services& services) : services_(services) {}

  void MyShow(const files::Path& path, ui::Keyboard keyboard = ui::Keyboard::kTake);
  void mnuTextBlocksOpen_Click();

  frmTextBlocks* pane() { return pane_.get(); }  // null while none is loaded
  void Release();                                // by the pane, which has closed

 private:
  services::Services& services_;
  std::unique_ptr<frmTextBlocks> pane_;
  ui::ClosedPanes closed_;
};

}  // namespace panes
