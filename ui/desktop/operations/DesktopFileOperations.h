// File operations on a thread behind a progress, asked and told about by the program's dialogs.
#pragma once

#include "files/operations/FileOperation.h"
#include "ui/Dialogs.h"
#include "ui/desktop/operations/FileOperations.h"
#include "ui/desktop/operations/Trash.h"

#include <memory>

namespace ui {

class DesktopFileOperations final : public FileOperations {
 public:
  using Paths = std::vector<std::string>;

  explicit DesktopFileOperations(Dialogs& dialogs, std::unique_ptr<Trash> trash = std::make_unique<DesktopTrash>());

  Result Delete(Form* owner, const Paths& paths, bool toTrash) override;
  Result Copy(Form* owner, const Paths& paths, const std::string& folder) override;
  Result Move(Form* owner, const Paths& paths, const std::string& folder) override;
  Result CopyThenDelete(Form* owner, const Paths& paths, const std::string& folder) override;

 private:
  bool Confirms(Form* owner, const QString& text, bool forGood);
  // What the trash could not take for want of one goes to `left`.
  files::OperationOutcome PutIntoTrash(Form* owner, const Paths& paths, Paths& left);
  Result Trashed(Form* owner, const Paths& paths);
  files::OperationOutcome Run(Form* owner, files::FileOperation operation);
  // `single`: of one item that was asked about if it failed.
  Result Report(Form* owner, const files::OperationOutcome& outcome, bool single);

  Dialogs& dialogs_;
  const std::unique_ptr<Trash> trash_;
};

}  // namespace ui
