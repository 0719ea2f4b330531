// The commands of the quotes, and their window from the first loaded file on.
#pragma once

#include "panes/frmQuotes.h"

#include <memory>

namespace panes {

class Quotes {
 public:
  explicit Quotes(services::Services& services) : services_(services) {}

  void LoadQuotesFile(const files::Path& path, ui::Keyboard keyboard = ui::Keyboard::kTake);

  void mnuLoadQuotes_Click();
  void mnuFindQuote_Click();
  void mnuFindNextQuote_Click();
  void mnuRandom_Click();
  void mnuCopyQuote_Click();

  frmQuotes* pane() { return pane_.get(); }  // null until a file is loaded, and after it was closed
  void Release();                            // by the pane, which has closed

 private:
  void Toggle(bool loaded);
  // At it or behind it; count() = none.
  int FindFrom(int index) const;
  void Show(int index);

  services::Services& services_;
  QString QuoteSearchText_;
  int QuoteSearchIndex_ = -1;  // of the quote that was examined last
  bool loaded_ = false;        // what is listed are quotes
  std::unique_ptr<frmQuotes> pane_;
  ui::ClosedPanes closed_;
};

}  // namespace panes
