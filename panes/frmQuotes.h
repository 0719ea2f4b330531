// The window of the quotes: a list that fills it.
#pragma once

#include "services/Services.h"
#include "ui/controls/ChoiceList.h"
#include "ui/frame/PaneForm.h"

namespace panes {

class Quotes;

class frmQuotes : public ui::PaneForm {
  Q_OBJECT

 public:
  frmQuotes(services::Services& services, Quotes& quotes);

  ui::ChoiceList& List1() { return *List1_; }
  bool Close() override;
  void Unload();
  void RecordState();  // for the settings

 private:
  void ConnectList();
  void Form_Resize() override;

  services::Services& services_;
  Quotes& quotes_;
  ui::ChoiceList* List1_;
};

}  // namespace panes
