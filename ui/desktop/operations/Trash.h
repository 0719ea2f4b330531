// The desktop's trash.
#pragma once

#include "files/operations/FileOperation.h"

#include <optional>
#include <string>

namespace ui {

class Trash {
 public:
  struct Failure {
    bool noTrash = false;  // there is none for this place: only deleting for good is left
    files::OperationFailure what;
  };

  virtual ~Trash() = default;
  // Puts the item, a link itself, into the trash. From any thread.
  virtual std::optional<Failure> Put(const std::string& path) = 0;
};

// Of the folder of the user, or of the volume.
class DesktopTrash final : public Trash {
 public:
  std::optional<Failure> Put(const std::string& path) override;
};

}  // namespace ui
