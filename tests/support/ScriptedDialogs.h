// The user of a test: answers the questions that were announced, in their order, and fails the test at any other.
#pragma once

#include "ui/Dialogs.h"
#include "ui/PendingEvents.h"
#include "ui/dialogs/ModalForm.h"

#include <gtest/gtest.h>

#include <any>
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
  void Message(const QString& text, ui::Buttons buttons, ui::Icon icon, ui::Answer answer,
               std::function<void()> meanwhile = {}) {
    Announce<ui::Answer(const ui::Message&)>("message box " + text, [=](const ui::Message& shown) {
      EXPECT_EQ(shown.text.toStdString(), text.toStdString());
      EXPECT_EQ(shown.buttons, buttons) << text.toStdString();
      EXPECT_EQ(shown.icon, icon) << text.toStdString();
      if (meanwhile) meanwhile();
      return answer;
    });
  }
  // Whose text is only partly known.
  void AnyMessage(std::function<ui::Answer(const ui::Message&)> answer) {
    Announce<ui::Answer(const ui::Message&)>("message box", std::move(answer));
  }
  // Nothing given = Cancel. `check` looks at what the dialog was asked to show.
  void File(std::optional<files::Path> chosen, std::function<void(const ui::FileRequest&)> check = {}) {
    Announce<std::optional<files::Path>(const ui::FileRequest&)>("file dialog", [=](const ui::FileRequest& request) {
      if (check) check(request);
      return chosen;
    });
  }
  void Font(std::function<std::optional<ui::FontChoice>(const ui::FontChoice&)> choose) {
    Announce<std::optional<ui::FontChoice>(const ui::FontChoice&)>("font dialog", std::move(choose));
  }
  // Nothing given = Cancel. The user may also change the row of own colours.
  void Color(std::optional<int64_t> chosen, std::function<void(int64_t initial, ui::CustomColors&)> act = {}) {
    Announce<std::optional<int64_t>(int64_t, ui::CustomColors&)>("colour dialog", [=](int64_t initial, auto& custom) {
      if (act) act(initial, custom);
      return chosen;
    });
  }
  void Printer(bool confirmed, std::function<void(const ui::PrinterRequest&, ui::Printer&)> act = {}) {
    Announce<bool(const ui::PrinterRequest&, ui::Printer&)>("printer dialog", [=](const auto& request, auto& printer) {
      if (act) act(request, printer);
      return confirmed;
    });
  }
  void Text(const QString& prompt, const QString& initial, std::optional<QString> answer) {
    Announce<std::optional<QString>(const QString&, const QString&)>(
        "input box " + prompt, [=](const QString& shown, const QString& proposed) {
          EXPECT_EQ(shown.toStdString(), prompt.toStdString());
          EXPECT_EQ(proposed.toStdString(), initial.toStdString()) << prompt.toStdString();
          return answer;
        });
  }
  // Receives the open form, sets its controls and closes it by accept() or reject().
  void Modal(std::function<void(ui::ModalForm&)> act) { Announce<void(ui::ModalForm&)>("modal form", std::move(act)); }
  // Whatever else is asked by a message box is answered so.
  void AnswerTheRest(ui::Answer answer) { rest_ = answer; }
  // The next work is cancelled by the user before it begins.
  void CancelNextWork() { cancelNextWork_ = true; }
  // The memory runs out in the next work.
  void FailNextWork() { failNextWork_ = true; }
  // Runs on the user interface's thread once the next work has ended.
  void AfterNextWork(std::function<void()> call) { afterNextWork_ = std::move(call); }
  size_t left() const { return steps_.size(); }
  // From now on nothing is announced: every question is noted and cancelled.
  void NoteAll() { noted_.emplace(); }
  std::vector<std::string> TakeNoted() { return std::exchange(noted_.value(), {}); }
  ui::Message last;  // that was shown

  // --- Dialogs
  ui::Answer ShowMessage(ui::Form*, const ui::Message& shown) override {
    if (steps_.empty() && rest_) return *rest_;
    const QString title = shown.title.isEmpty() ? QStringLiteral("Quillmark") : shown.title;
    last = shown;
    const auto answer = Take<ui::Answer(const ui::Message&)>("message box [" + title + "] " + shown.text);
    return answer ? answer(shown) : ui::Answer::kCancel;
  }
  std::optional<files::Path> PickFile(ui::Form*, const ui::FileRequest& request) override {
    const QString what = (request.save ? "save dialog [" : "open dialog [") + request.title + "] ";
    const auto answer =
        Take<std::optional<files::Path>(const ui::FileRequest&)>(what + QString::fromStdString(request.name.native()));
    return answer ? answer(request) : std::nullopt;
  }
  std::optional<ui::FontChoice> PickFont(ui::Form*, const ui::FontChoice& initial, ui::CustomColors&) override {
    const auto answer = Take<std::optional<ui::FontChoice>(const ui::FontChoice&)>("font dialog " + initial.family);
    return answer ? answer(initial) : std::nullopt;
  }
  std::optional<int64_t> PickColor(ui::Form*, int64_t initial, ui::CustomColors& custom) override {
    const auto answer = Take<std::optional<int64_t>(int64_t, ui::CustomColors&)>("colour dialog");
    return answer ? answer(initial, custom) : std::nullopt;
  }
  bool PickPrinter(ui::Form*, const ui::PrinterRequest& request, ui::Printer& printer) override {
    const auto answer = Take<bool(const ui::PrinterRequest&, ui::Printer&)>("printer dialog");
    return answer && answer(request, printer);
  }
  std::optional<QString> AskText(ui::Form*, const QString& prompt, const QString& initial) override {
    const auto answer = Take<std::optional<QString>(const QString&, const QString&)>("input box " + prompt);
    return answer ? answer(prompt, initial) : std::nullopt;
  }
  bool ShowModal(ui::ModalForm& form) override {
    if (const auto act = Take<void(ui::ModalForm&)>("modal form [" + form.windowTitle() + "]")) act(form);
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
    QString what;
    std::any answer;  // a function; its type tells the kind of question
  };
  template <class Signature>
  void Announce(const QString& what, std::function<Signature> answer) {
    steps_.push_back({what, std::any(std::move(answer))});
  }
  // Runs inside a command, as every dialog does; null when something else was announced.
  template <class Signature>
  std::function<Signature> Take(const QString& asked) {
    if (noted_) {
      noted_->push_back(asked.toStdString());
      return {};
    }
    const auto* answer = steps_.empty() ? nullptr : std::any_cast<std::function<Signature>>(&steps_.front().answer);
    if (!answer) {
      ADD_FAILURE() << "unannounced: " << asked.toStdString()
                    << (steps_.empty() ? "" : "\nwhere this was announced: " + steps_.front().what.toStdString());
      return {};
    }
    const std::function<Signature> taken = *answer;
    steps_.pop_front();
    return [taken](auto&&... arguments) {
      const ui::CommandScope scope;
      return taken(std::forward<decltype(arguments)>(arguments)...);
    };
  }

  std::deque<Step> steps_;
  std::optional<ui::Answer> rest_;
  std::optional<std::vector<std::string>> noted_;
  bool cancelNextWork_ = false, failNextWork_ = false;
  std::function<void()> afterNextWork_;
};

}  // namespace support
