// Asks what to embed: something new of a listed type, or a file.
#pragma once

#include "files/Result.h"
#include "ui/dialogs/ModalForm.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;

namespace ui {

struct ObjectType;

class InsertObjectForm : public ModalForm {
  Q_OBJECT

 public:
  // `browse` asks for a file and gives an empty path when cancelled.
  InsertObjectForm(const std::vector<ObjectType>& types, std::function<files::Path()> browse, QWidget* owner = nullptr);

  // Which of the types, or nothing when it is a file.
  std::optional<size_t> chosenType() const;
  files::Path chosenFile() const;  // as bytes

  void ChooseType(size_t index);
  void ChooseFile(const files::Path& path);

 private:
  void AddNew(const std::vector<ObjectType>& types);
  void AddFromFile(std::function<files::Path()> browse);
  void Update();

  QRadioButton *new_, *fromFile_;
  QListWidget* types_;
  QLineEdit* file_;
  QPushButton *browse_, *ok_;
  std::string browsed_;  // what was chosen last, whose name may be no text
};

}  // namespace ui
