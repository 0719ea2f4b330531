// The user of a test: answers the questions that were announced, in their order, and fails the test at any other.
#pragma once

#include "ui/Dialogs.h"
#include "ui/PendingEvents.h"
#include "ui/dialogs/ModalForm.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <future>
#include <new>
#include <utility>

namespace support {

class ScriptedDialogs final : public ui::Dialogs {
 public:
  ScriptedDialogs() = default;
  ~ScriptedDialogs() override {
    for (const Step& step : steps_) ADD_FAILURE() << "announced but never asked: " << step.what.toStdString();
  }

  // --- The script. `meanwhile`, where given, runs while the question is open.
  void Message(QString text, ui::Buttons buttons, ui::Icon icon, ui::Answer answer,
               std::function<void()> meanwhile = {}) {
    Step step{"message box " + text};
    step.message = {std::move(text), buttons, icon};
    step.answer = answer;
    step.meanwhile = std::move(meanwhile);
    steps_.push_back(std::move(step));
  }
  // Nothing given = Cancel. `check` looks at what the dialog was asked to show.
  void File(std::optional<files::Path> chosen, std::function<void(const ui::FileRequest&)> check = {}) {
    Step step{"file dialog"};
    step.kind = Step::kFile;
    step.file = std::move(chosen);
    step.checkFile = std::move(check);
    steps_.push_back(std::move(step));
  }
  void Font(std::function<std::optional<ui::FontChoice>(ui::FontChoice)> choose) {
    Step step{"font dialog"};
    step.kind = Step::kFont;
    step.choose = std::move(choose);
    steps_.push_back(std::move(step));
  }
  // Nothing given = Cancel. The user may also change the row of own colours.
  void Color(std::optional<int64_t> chosen, std::function<void(int64_t initial, ui::CustomColors&)> act = {}) {
    Step step{"colour dialog"};
    step.kind = Step::kColor;
    step.color = chosen;
    step.actOnColors = std::move(act);
    steps_.push_back(std::move(step));
  }
  void Printer(bool confirmed, std::function<void(const ui::PrinterRequest&, ui::Printer&)> act = {}) {
    Step step{"printer dialog"};
    step.kind = Step::kPrinter;
    step.confirmed = confirmed;
    step.actOnPrinter = std::move(act);
    steps_.push_back(std::move(step));
  }
  // Nothing given = Cancel.
  void Text(QString prompt, QString initial, std::optional<QString> answer) {
    Step step{"input box " + prompt};
    step.kind = Step::kText;
    step.message.text = std::move(prompt);
    step.initial = std::move(initial);
    step.text = std::move(answer);
    steps_.push_back(std::move(step));
  }
  // Receives the open form, sets its controls and closes it by accept() or reject().
  void Modal(std::function<void(ui::ModalForm&)> act) {
    Step step{"modal form"};
    step.kind = Step::kModal;
    step.act = std::move(act);
    steps_.push_back(std::move(step));
  }
  // The next work is cancelled by the user before it begins.
  void CancelNextWork() { cancelNextWork_ = true; }
  // The memory runs out in the next work.
  void FailNextWork() { failNextWork_ = true; }
  // Runs on the user interface's thread once the next work has ended.
  void AfterNextWork(std::function<void()> call) { afterNextWork_ = std::move(call); }

  size_t left() const { return steps_.size(); }

  // --- Dialogs
  ui::Answer ShowMessage(ui::Form*, const ui::Message& shown) override {
    const ui::CommandScope scope;
    Step step;
    const QString title = shown.title.isEmpty() ? QStringLiteral("Quillmark") : shown.title;
    if (!Take(Step::kMessage, "message box [" + title + "] " + shown.text, step)) return ui::Answer::kCancel;
    EXPECT_EQ(shown.text.toStdString(), step.message.text.toStdString());
    EXPECT_EQ(shown.buttons, step.message.buttons) << shown.text.toStdString();
    EXPECT_EQ(shown.icon, step.message.icon) << shown.text.toStdString();
    if (step.meanwhile) step.meanwhile();
    return step.answer;
  }

  std::optional<files::Path> PickFile(ui::Form*, const ui::FileRequest& request) override {
    const ui::CommandScope scope;
    Step step;
    const QString what = request.save ? "save dialog " : "open dialog ";
    if (!Take(Step::kFile, what + QString::fromStdString(request.name.native()), step)) return std::nullopt;
    if (step.checkFile) step.checkFile(request);
    return step.file;
  }

  std::optional<ui::FontChoice> PickFont(ui::Form*, const ui::FontChoice& initial, ui::CustomColors&) override {
    Step step;
    if (!Take(Step::kFont, "font dialog " + initial.family, step)) return std::nullopt;
    return step.choose(initial);
  }

  std::optional<int64_t> PickColor(ui::Form*, int64_t initial, ui::CustomColors& custom) override {
    Step step;
    if (!Take(Step::kColor, "colour dialog", step)) return std::nullopt;
    if (step.actOnColors) step.actOnColors(initial, custom);
    return step.color;
  }

  bool PickPrinter(ui::Form*, const ui::PrinterRequest& request, ui::Printer& printer) override {
    Step step;
    if (!Take(Step::kPrinter, "printer dialog", step)) return false;
    if (step.actOnPrinter) step.actOnPrinter(request, printer);
    return step.confirmed;
  }

  std::optional<QString> AskText(ui::Form*, const QString& prompt, const QString& initial) override {
    const ui::CommandScope scope;
    Step step;
    if (!Take(Step::kText, "input box " + prompt, step)) return std::nullopt;
    EXPECT_EQ(prompt.toStdString(), step.message.text.toStdString());
    EXPECT_EQ(initial.toStdString(), step.initial.toStdString()) << prompt.toStdString();
    return step.text;
  }

  bool ShowModal(ui::ModalForm& form) override {
    Step step;
    if (!Take(Step::kModal, "modal form [" + form.windowTitle() + "]", step)) return false;
    step.act(form);
    return form.result() == QDialog::Accepted;
  }

  void RunWork(ui::Form*, const QString&, int64_t, const std::function<void(ui::WorkPort&)>& work) override {
    ui::WorkPort port;
    if (std::exchange(cancelNextWork_, false)) port.Cancel();
    const bool fails = std::exchange(failNextWork_, false);
    std::async(std::launch::async, [&] { fails ? throw std::bad_alloc() : work(port); }).get();
    if (auto call = std::exchange(afterNextWork_, {})) call();
  }

 private:
  struct Step {
    enum Kind { kMessage, kFile, kFont, kColor, kPrinter, kText, kModal };
    QString what = {};
    Kind kind = kMessage;
    ui::Message message = {};
    ui::Answer answer = ui::Answer::kCancel;
    std::function<void()> meanwhile = {};
    std::optional<files::Path> file = {};
    std::function<void(const ui::FileRequest&)> checkFile = {};
    std::function<std::optional<ui::FontChoice>(ui::FontChoice)> choose = {};
    std::optional<int64_t> color = {};
    std::function<void(int64_t, ui::CustomColors&)> actOnColors = {};
    bool confirmed = false;
    std::function<void(const ui::PrinterRequest&, ui::Printer&)> actOnPrinter = {};
    QString initial = {};
    std::optional<QString> text = {};
    std::function<void(ui::ModalForm&)> act = {};
  };

  bool Take(Step::Kind kind, const QString& asked, Step& step) {
    if (steps_.empty() || steps_.front().kind != kind) {
      ADD_FAILURE() << "unannounced: " << asked.toStdString()
                    << (steps_.empty() ? "" : "\nwhere this was announced: " + steps_.front().what.toStdString());
      return false;
    }
    step = std::move(steps_.front());
    steps_.pop_front();
    return true;
  }

  std::deque<Step> steps_;
  bool cancelNextWork_ = false, failNextWork_ = false;
  std::function<void()> afterNextWork_;
};

}  // namespace support
