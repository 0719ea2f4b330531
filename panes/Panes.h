// The windows beside the documents: what the start and the end of the program do with all of them.
#pragma once

#include "panes/Notes.h"
#include "panes/Quotes.h"
#include "panes/TextBlocks.h"

namespace panes {

class Panes {
 public:
  explicit Panes(services::Services& services)
      : services_(services), quotes_(services), notes_(services), textBlocks_(services) {}

  // Opens what the settings name, in the states that they remember. The keyboard stays where it is.
  void StartUp();
  void ActivateLast();  // of those that StartUp has opened
  // What the end of the program asks. False: it is cancelled.
  bool QueryUnload();
  // States and sizes of the open ones, for the settings.
  void RecordStates();
  // Closes them. False: one has to stay.
  bool Unload();

  Quotes& quotes() { return quotes_; }
  Notes& notes() { return notes_; }
  TextBlocks& textBlocks() { return textBlocks_; }

 private:
  services::Services& services_;
  Quotes quotes_;
  Notes notes_;
  TextBlocks textBlocks_;
};

}  // namespace panes
