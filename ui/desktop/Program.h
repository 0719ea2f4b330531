// The toolkit's application object and its event loop.
#pragma once

#include <functional>
#include <memory>
#include <optional>

class QApplication;

namespace ui {

class KeyOrder;

class Program {
 public:
  // Without a display the process ends here with one line and status 1.
  Program(const char* name, const char* version);
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // Until Quit, and not at all when that came before. Gives its status back.
  int Run();
  void Quit(int status = 0);
  // Runs the call when all that is waiting to be painted has been. An exception out of it ends the program, status 1.
  void AfterPainting(std::function<void()> call);

 private:
  int argc_ = 1;
  char name_[16] = "quillmark";
  char* argv_[2] = {name_, nullptr};
  std::unique_ptr<QApplication> application_;
  std::unique_ptr<KeyOrder> keyOrder_;
  std::optional<int> status_;
};

}  // namespace ui
