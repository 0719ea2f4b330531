// The user of a benchmark: says yes to messages, cancels what would have to be chosen.
#pragma once

#include "ui/Dialogs.h"
#include "ui/dialogs/ProgressForm.h"

namespace bench {

class AgreeingDialogs : public ui::Dialogs {
 public:
  ui::Answer ShowMessage(ui::Form*, const ui::Message& message) override {
    return message.buttons == ui::Buttons::kOk ? ui::Answer::kOk : ui::Answer::kYes;
  }
  std::optional<files::Path> PickFile(ui::Form*, const ui::FileRequest&) override { return std::nullopt; }
  std::optional<ui::FontChoice> PickFont(ui::Form*, const ui::FontChoice&, ui::CustomColors&) override {
    return std::nullopt;
  }
  std::optional<int64_t> PickColor(ui::Form*, int64_t, ui::CustomColors&) override { return std::nullopt; }
  bool PickPrinter(ui::Form*, const ui::PrinterRequest&, ui::Printer&) override { return false; }
  std::optional<QString> AskText(ui::Form*, const QString&, const QString&) override { return std::nullopt; }
  bool ShowModal(ui::ModalForm&) override { return false; }
  void RunWork(ui::Form*, const QString&, int64_t, const std::function<void(ui::WorkPort&)>& work) override {
    ui::WorkPort port;
    work(port);
  }
};

// Works as the program does, on another thread.
class WorkingDialogs : public AgreeingDialogs {
 public:
  void RunWork(ui::Form*, const QString& text, int64_t total, const std::function<void(ui::WorkPort&)>& work) override {
    ui::RunBehindProgress(nullptr, text, total, work);
  }
};

}  // namespace bench
