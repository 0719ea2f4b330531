// Copying, moving and deleting files and folders for the user, questions, progress and report included.
#pragma once

#include <string>
#include <vector>

namespace ui {

class Form;

// Calls are made on the user interface's thread and return when everything is over; other events run meanwhile, so look
// everything up again afterwards. Paths are absolute and need no separator at the end. The user has been asked (before
// deleting, when names meet, when something fails) and been told of what failed when a call returns: what was not done
// is named in a list. An exception (out of memory) passes through after the work has stopped.
class FileOperations {
 public:
  static constexpr int kAborted = 7;

  struct Result {
    int error = 0;  // 0: everything was done, or left out by the user's wish; kAborted; or the program's number of
                    // the last failure, as files::Error has it
    bool aborted = false;  // the user cancelled: no further message. `error` is kAborted then.
    bool succeeded() const { return error == 0; }
    bool operator==(const Result&) const = default;
  };

  virtual ~FileOperations() = default;

  // Asks for confirmation first. `toTrash`: where there is no trash for an item the user is asked whether to delete it
  // for good. Symbolic links are deleted themselves, never what they lead to, and no other volume mounted below is
  // entered. What lies below another item of the list goes with it.
  virtual Result Delete(Form* owner, const std::vector<std::string>& paths, bool toTrash) = 0;

  // Into `folder`, under their own names. Symbolic links are copied as links; mode, times and extended attributes are
  // kept. Nothing is copied into itself.
  virtual Result Copy(Form* owner, const std::vector<std::string>& paths, const std::string& folder) = 0;

  // Renames within a volume; across volumes copies everything first and then deletes what was copied and has not
  // changed since.
  virtual Result Move(Form* owner, const std::vector<std::string>& paths, const std::string& folder) = 0;

  // The move of another program's drag, which was answered "copy": always copies completely before anything is
  // deleted.
  virtual Result CopyThenDelete(Form* owner, const std::vector<std::string>& paths, const std::string& folder) = 0;
};

}  // namespace ui
