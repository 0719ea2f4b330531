// The windows of the program, hidden ones included, in the order in which they were loaded.
#pragma once

#include <QObject>
#include <QString>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

class QWidget;

namespace ui {

enum class WindowState : int { kNormal = 0, kMinimized = 1, kMaximized = 2 };
enum class FormId : int64_t { kNone = 0 };

class Forms;

// A window of the program. Its caption is its own state, as bytes; the title on the screen is derived from it.
class Form {
 public:
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;
  virtual ~Form();

  FormId id() const { return id_; }
  std::string_view name() const { return name_; }  // "frmText"
  const std::string& caption() const { return caption_; }
  void SetCaption(std::string caption);

  virtual QWidget* widget() = 0;  // the owner of its dialogs
  virtual WindowState windowState() const = 0;
  virtual void SetWindowState(WindowState state) = 0;
  virtual void Activate() = 0;
  // Asks what the form has to ask, then unloads it. False: it stays.
  virtual bool Close() = 0;

  // The user's request to close: at once, or after the running command. True when the form has closed.
  bool RequestClose();

 protected:
  Form(Forms& forms, std::string_view name);
  virtual void ShowTitle(const QString& title) = 0;
  Forms& forms() const { return forms_; }
  // Takes the form out of the registry before its object goes.
  void Leave();

 private:
  Forms& forms_;
  FormId id_;
  std::string name_;
  std::string caption_;
  bool closeRequested_ = false;
  bool listed_ = true;
};

// Loops hold ids and look the form up again after every call that may have closed it.
class Forms : public QObject {
  Q_OBJECT

 public:
  size_t count() const { return forms_.size(); }
  Form* at(size_t index) const { return forms_[index]; }
  Form* Find(FormId id) const;  // null when it is gone
  std::vector<FormId> InLoadOrder() const;
  std::vector<FormId> Backwards() const;  // most recently loaded first

  // For what the event loop calls: an exception (out of memory, most likely) goes to the report and no further. False
  // after one.
  bool Guarded(const std::function<void()>& call) const;
  void SetFailureReport(std::function<void(const QString& reason)> report) { report_ = std::move(report); }

 private:
  friend class Form;
  void Report(const char* reason) const noexcept;
  std::vector<Form*> forms_;
  std::function<void(const QString&)> report_;
  int64_t lastId_ = 0;
};

// A caption as a window title: decoded, the toolkit's "[*]" mark taken literally.
QString TitleOf(std::string_view caption);

}  // namespace ui
