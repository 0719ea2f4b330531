// The commands of finding, and what they need: the engine, and the dialog from its first use on.
#pragma once

#include "search/FindEngine.h"
#include "search/frmFind.h"

#include <memory>

namespace search {

class Find {
 public:
  explicit Find(services::Services& services);

  void mnuFind_Click() { Open({}); }
  void mnuReplace_Click() { Open("R"); }
  void mnuFindNext_Click();

  FindEngine& engine() { return engine_; }
  frmFind* dialog() { return dialog_.get(); }  // null until a command opens it

 private:
  void Open(std::string tag);

  services::Services& services_;
  FindEngine engine_;
  std::unique_ptr<frmFind> dialog_;
};

}  // namespace search
