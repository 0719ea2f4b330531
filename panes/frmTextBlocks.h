// The window of the text blocks. What is typed there is never written.
#pragma once

#include "panes/TextPane.h"

namespace panes {

class TextBlocks;

class frmTextBlocks : public TextPane {
  Q_OBJECT

 public:
  frmTextBlocks(services::Services& services, TextBlocks& blocks);

  void MyShow(const files::Path& path, ui::Keyboard keyboard);
  bool Close() override;
  void Unload();
  void RecordState();  // for the settings

 private:
  void CopyBlock();

  TextBlocks& blocks_;
};

}  // namespace panes
