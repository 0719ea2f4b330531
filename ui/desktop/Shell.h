// Opening things with the desktop's programs, and starting programs. Never through a shell's command line.
#pragma once

#include "files/Result.h"

#include <string>
#include <string_view>
#include <vector>

namespace ui {

class Shell {
 public:
  // What the calls give back: above kLastFailure the program is being started.
  static constexpr int kNotFound = 2;
  static constexpr int kAccessDenied = 5;
  static constexpr int kNoApplication = 31;
  static constexpr int kLastFailure = 32;
  static constexpr int kStarted = 33;

  virtual ~Shell() = default;

  // A text with a scheme goes to the scheme's handler, a file or folder (an absolute path) to the default application
  // of its type. Of a .url or .desktop link the address is opened, if it is http, https or mailto. What is opened is
  // never run itself, whatever its mode. The program begins in the folder where this one was started: the desktop's
  // library sets no other.
  virtual int Open(const std::string& pathOrAddress) = 0;

  // The same for a file that came out of a document: nothing is done with programs, and with links to anything. Scripts
  // go to the default application of plain text, which runs none. `program`: the name of what was started, if one tells
  // it from others.
  virtual int OpenCopy(const files::Path& file, std::string& program) = 0;

  // Starts a program that the user or a setting names: a path, or a name on PATH, with or without ".exe" at its end.
  // "Notepad.exe" and "Wordpad.exe", when they are not on PATH, are the default programs for plain and for rich text.
  virtual int Run(const std::string& program, const std::vector<std::string>& arguments,
                  const files::Path& directory) = 0;

  // Where the volumes are mounted that a file manager would show, besides "/".
  virtual std::vector<files::Path> Volumes() = 0;
};

class DesktopShell final : public Shell {
 public:
  int Open(const std::string& pathOrAddress) override;
  int OpenCopy(const files::Path& file, std::string& program) override;
  int Run(const std::string& program, const std::vector<std::string>& arguments, const files::Path& directory) override;
  std::vector<files::Path> Volumes() override;
};

// "mailto:somebody", "https://...": letters, digits and "+-." before a colon, at least two of them.
bool HasScheme(std::string_view text);

// The address in the bytes of a .url or .desktop link; empty when there is none or it is not http, https or mailto.
std::string AddressOfLink(std::string_view link);

}  // namespace ui
