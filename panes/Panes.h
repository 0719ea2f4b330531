// The windows beside the documents: what the start and the end of the program do with all of them.
#pragma once

#include "panes/Quotes.h"

namespace panes {

class Panes {
 public:
  explicit Panes(services::Services& services) : services_(services), quotes_(services) {}

  // Opens what the settings name, in the states that they remember.
  void StartUp();
  // Records the states of the open ones and closes them.
  void Unload();

  Quotes& quotes() { return quotes_; }

 private:
  services::Services& services_;
  Quotes quotes_;
};

}  // namespace panes
