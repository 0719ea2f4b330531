// The questions as the desktop asks them.
#pragma once

#include "ui/Dialogs.h"

namespace ui {

class QtDialogs final : public Dialogs {
 public:
  Answer ShowMessage(Form* owner, const Message& message) override;
  std::optional<files::Path> PickFile(Form* owner, const FileRequest& request) override;
  std::optional<FontChoice> PickFont(Form* owner, const FontChoice& initial, CustomColors& custom) override;
  std::optional<int64_t> PickColor(Form* owner, int64_t initial, CustomColors& custom) override;
  bool PickPrinter(Form* owner, const PrinterRequest& request, Printer& printer) override;
  std::optional<QString> AskText(Form* owner, const QString& prompt, const QString& initial) override;
  bool ShowModal(ModalForm& form) override;
  void RunWork(Form* owner, const QString& text, int64_t total, const std::function<void(WorkPort&)>& work) override;
};

}  // namespace ui
