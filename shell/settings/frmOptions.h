// The Preferences dialog: every setting that a user chooses, on seven tabs.
#pragma once

#include "services/Services.h"
#include "ui/controls/ColorButton.h"
#include "ui/controls/TabStrip.h"
#include "ui/dialogs/ModalForm.h"

#include <array>
#include <initializer_list>
#include <string>

namespace shell {

constexpr size_t kInternetPrograms = 4;

// Hidden between uses, never destroyed: the tab stays the one that was seen last. The fields are what the program uses
// only after they were read back.
class frmOptions final : public ui::ModalForm {
  Q_OBJECT

 public:
  explicit frmOptions(services::Services& services);

  std::string Tag;  // "A" until it is shown, then "0" for OK or "1" for Cancel

  void Fill(const services::Settings& settings);
  // The fields trimmed where they are no paths; an Internet program that is empty becomes its default.
  void ReadBack(services::Settings& settings) const;

  // 0 OK, 1 Cancel, 2 Fonts, 4 Colors, 5 Help, 3 and 6 to 8 browse for a data file, 9 to 12 for an Internet program.
  void Command1_Click(int index);

 protected:
  bool event(QEvent* event) override;
  void reject() override { Command1_Click(1); }  // Escape and the close box

 private:
  ui::Button* Command1(int index, const QString& caption);
  void MakeProjectTab();
  void MakeTreeTab();
  void MakeQuotesTab();
  void MakeFileTabs();
  void MakeInternetTab();
  void AddFileRow(int tab, const QString& caption, ui::PathBox& box, int button);

  void PickFont();
  void PickColor();
  void BrowseForFile(int index);
  void BrowseForProgram(int index);

  services::Services& services_;
  ui::TabStrip* TabStrip1_;
  ui::TextBox* Text1_;  // extensions
  ui::TextBox* Text3_;  // tab stops
  ui::Label* Label1_;   // the font's name
  ui::Label* Label3_;   // and size
  ui::ColorButton* Colors_;
  ui::CheckBox* Check1_;  // copies quotes
  ui::CheckBox* Check2_;  // loads the most recent project
  ui::CheckBox* Check3_;  // remembers window states
  ui::CheckBox* Check4_;  // synchronises the tree
  ui::CheckBox* Check5_;  // auto-complete at start-up
  std::array<ui::OptionButton*, 2> optDelete_;
  ui::PathBox* Text2_;  // quotes
  ui::PathBox* Text4_;  // notes
  ui::PathBox* Text5_;  // text blocks
  ui::PathBox* Text6_;  // auto-complete
  std::array<ui::PathBox*, kInternetPrograms> Text7_;
};

}  // namespace shell
