// Where the user says which buttons of a toolbar show, in which order and how they are parted.
#pragma once

#include "ui/dialogs/ModalForm.h"
#include "ui/frame/ToolBar.h"

class QListWidget;
class QListWidgetItem;

namespace ui {

class Button;

// The toolbar is as it was until its owner arranges it by places().
class CustomizeForm final : public ModalForm {
  Q_OBJECT

 public:
  CustomizeForm(const ToolBar& bar, QWidget* owner);
  std::vector<ToolBarPlace> places() const;

 private:
  void LayOut();
  void Fill(const std::vector<ToolBarPlace>& places);
  QListWidgetItem* MakeItem(const ToolBarPlace& place) const;
  void Move(int by);
  void AddSeparator();
  void RemoveSeparator();
  void ShowWhatCanBeDone();

  const ToolBar& bar_;
  QListWidget* List1_;
  Button* cmdUp_;
  Button* cmdDown_;
  Button* cmdAdd_;
  Button* cmdRemove_;
  Button* cmdReset_;
};

}  // namespace ui
