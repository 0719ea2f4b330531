// The dialog for finding and replacing. It stays open beside the text.
#pragma once

#include "search/FindEngine.h"
#include "ui/controls/ComboBox.h"
#include "ui/controls/DialogControls.h"
#include "ui/dialogs/ModelessForm.h"

#include <array>

namespace search {

class frmFind : public ui::ModelessForm {
  Q_OBJECT

 public:
  frmFind(services::Services& services, FindEngine& engine);

  std::string Tag;  // "R": opened for replacing

  // Shows it with texts and options as the engine and the selection have them.
  void Open(std::string tag);
  // Cancel: hides it.
  bool Close() override;
  // Moves aside when it covers what is selected.
  void UncoverSelection();

  ui::ComboBox& Combo1(size_t index) { return *Combo1_[index]; }  // 0 find, 1 replace
  ui::Label& Label2() { return *Label2_; }
  ui::Label& Label3() { return *Label3_; }
  ui::CheckBox& chkCase() { return *chkCase_; }
  ui::CheckBox& chkWhole() { return *chkWhole_; }
  ui::OptionButton& Option1(size_t index) { return *Option1_[index]; }  // 0 current document, 1 all documents
  ui::Button& cmdFind() { return *cmdFind_; }
  ui::Button& cmdReplace() { return *cmdReplace_; }
  ui::Button& cmdReplaceAll() { return *cmdReplaceAll_; }
  ui::Button& cmdcancel() { return *cmdcancel_; }

 private:
  void MakeControls();
  ui::Button* MakeButton(const char* name, const QString& caption, void (frmFind::*click)());
  void Form_Activate() override;
  void Combo1_Change();
  void Option_Click();
  void Option1_Click(int index);
  void cmdFind_Click();
  void cmdReplace_Click();
  void cmdReplaceAll_Click();
  void cmdcancel_Click();
  void EnableReplacing(bool enabled);
  void SetEnabled(bool enabled);
  bool HasDocument();
  void FindAndShow();
  void AddToSearchHistory();

  services::Services& services_;
  FindEngine& engine_;
  bool FindActivated_ = false;  // the controls have been set up since it was shown
  std::array<ui::ComboBox*, 2> Combo1_;
  ui::Label *Label1_, *Label2_, *Label3_;
  ui::CheckBox *chkCase_, *chkWhole_;
  std::array<ui::OptionButton*, 2> Option1_;
  ui::Button *cmdFind_, *cmdReplace_, *cmdReplaceAll_, *cmdcancel_;
};

}  // namespace search
