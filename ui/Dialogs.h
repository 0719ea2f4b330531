// Every question to the user, behind one interface that tests can script. All texts are plain text.
#pragma once

#include "files/Result.h"

#include <QString>

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace ui {

class Form;
class ModalForm;
class Printer;

enum class Icon { kNone, kInformation, kQuestion, kExclamation };
enum class Buttons { kOk, kYesNo, kYesNoCancel };
enum class Answer : int { kOk = 1, kCancel = 2, kYes = 6, kNo = 7 };

struct Message {
  QString text;  // lines end in CR LF
  Buttons buttons = Buttons::kOk;
  Icon icon = Icon::kExclamation;
  QString title = {};       // empty = the application's
  bool noIsPreset = false;  // Enter says No: what is asked about cannot be undone
};

struct FileFilter {
  QString description;  // ".txt"
  QString pattern;      // "*.txt", several joined by ";"
};

struct FileRequest {
  bool save = false;
  QString title;  // empty = the desktop's own
  std::vector<FileFilter> filters;
  int filterIndex = 1;     // from 1
  files::Path folder;      // where to begin; empty = wherever the desktop begins
  files::Path name;        // proposed, without a folder
  bool keepLinks = false;  // a chosen link is given back itself
};

struct FontChoice {
  QString family;
  double points = 10;
  bool bold = false, italic = false, strikeThru = false, underline = false;
  int64_t color = -1;  // 0x00BBGGRR; -1 = automatic
  bool plain = false;  // of no interest is anything but family and size
  bool operator==(const FontChoice&) const = default;
};

// The row of the user's own colours in the colour dialog, 0x00BBGGRR each.
using CustomColors = std::array<int64_t, 16>;

struct PrinterRequest {
  bool pages = true;       // a range of pages may be chosen
  bool selection = false;  // the selection may be chosen, and is at first
};

// What work on another thread tells and hears. Safe from any thread.
class WorkPort {
 public:
  // Reports how much is done; false asks the work to stop.
  bool Report(int64_t done) {
    done_.store(done, std::memory_order_relaxed);
    return !cancelled_.load(std::memory_order_relaxed);
  }
  int64_t done() const { return done_.load(std::memory_order_relaxed); }
  bool cancelled() const { return cancelled_.load(std::memory_order_relaxed); }
  void Cancel() { cancelled_.store(true, std::memory_order_relaxed); }
  // What is being worked on, for a line of the progress.
  void ShowDetail(QString detail) {
    const std::lock_guard lock(mutex_);
    detail_ = std::move(detail);
  }
  QString detail() const {
    const std::lock_guard lock(mutex_);
    return detail_;
  }

 private:
  std::atomic<int64_t> done_ = 0;
  std::atomic<bool> cancelled_ = false;
  mutable std::mutex mutex_;
  QString detail_;
};

class Dialogs {
 public:
  virtual ~Dialogs() = default;

  virtual Answer ShowMessage(Form* owner, const Message& message) = 0;
  // The chosen path with its bytes, unchecked: whether it exists is the caller's question. Nothing on Cancel.
  virtual std::optional<files::Path> PickFile(Form* owner, const FileRequest& request) = 0;
  // `custom` is changed by a colour that was chosen on the way, also when the font is not.
  virtual std::optional<FontChoice> PickFont(Form* owner, const FontChoice& initial, CustomColors& custom) = 0;
  // 0x00BBGGRR. Nothing on Cancel, and `custom` as it was.
  virtual std::optional<int64_t> PickColor(Form* owner, int64_t initial, CustomColors& custom) = 0;
  // Sets the printer up as the user wants it. False on Cancel, and the printer as it was.
  virtual bool PickPrinter(Form* owner, const PrinterRequest& request, Printer& printer) = 0;
  // One line of text; the answer may be empty. Nothing on Cancel.
  virtual std::optional<QString> AskText(Form* owner, const QString& prompt, const QString& initial) = 0;
  // Runs the form until it is closed and says whether it was accepted.
  virtual bool ShowModal(ModalForm& form) = 0;
  // Runs `work` on another thread and returns when it has ended; what it throws is thrown here. After half a second a
  // progress with Cancel is shown. `total` = what Report counts up to, 0 = unknown.
  virtual void RunWork(Form* owner, const QString& text, int64_t total, const std::function<void(WorkPort&)>& work) = 0;
};

}  // namespace ui
