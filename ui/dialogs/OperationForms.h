// What a file operation asks and tells. Names are shown as plain text.
#pragma once

#include "files/operations/FileOperation.h"
#include "ui/dialogs/ModalForm.h"

namespace ui {

class Button;
class CheckBox;

// A name is taken. Escape cancels the operation; Enter loses nothing.
class ConflictForm final : public QuestionForm {
  Q_OBJECT

 public:
  ConflictForm(const files::Conflict& conflict, QWidget* owner);
  files::ConflictAnswer answer() const;

 private:
  files::ConflictChoice choice_ = files::ConflictChoice::kCancel;
  CheckBox* chkAll_;
};

// Something could not be done.
class FailureForm final : public QuestionForm {
  Q_OBJECT

 public:
  FailureForm(const files::OperationFailure& failure, QWidget* owner);
  files::FailureAnswer answer() const;

 private:
  files::FailureChoice choice_ = files::FailureChoice::kCancel;
  CheckBox* chkAll_;
};

// What was done and what was not.
class OperationReportForm final : public ModalForm {
  Q_OBJECT

 public:
  OperationReportForm(const files::OperationOutcome& outcome, QWidget* owner);
};

}  // namespace ui
