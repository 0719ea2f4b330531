// The list of drives: the folders that volumes are mounted at. It can be used as soon as it holds one.
#pragma once

#include <QComboBox>

#include <functional>
#include <string>
#include <vector>

namespace ui {

class DriveBox : public QComboBox {
  Q_OBJECT

 public:
  explicit DriveBox(QWidget* parent = nullptr);

  // Asked for when the list is about to be used; what was chosen stays chosen while it is there.
  void SetDrives(std::vector<std::string> drives);
  void SetRefresh(std::function<void()> refresh) { refresh_ = std::move(refresh); }

  std::string drive() const;  // the chosen one, as bytes
  void Choose(const std::string& drive);

 Q_SIGNALS:
  void Chosen();  // by the user, from the event loop and outside of commands

 protected:
  void showPopup() override;
  void focusInEvent(QFocusEvent* event) override;

 private:
  std::vector<std::string> drives_;
  std::function<void()> refresh_;
};

}  // namespace ui
