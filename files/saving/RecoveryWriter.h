// Writes one entry of the recovery folder; inside this room only.
#pragma once

#include "files/Io.h"
#include "files/saving/Recovery.h"

namespace files {

// Begin, write to text(), Finish, perhaps AddPrevious; Keep, or it is gone with the object.
class RecoveryWriter {
 public:
  RecoveryWriter() = default;
  RecoveryWriter(const RecoveryWriter&) = delete;
  RecoveryWriter& operator=(const RecoveryWriter&) = delete;
  ~RecoveryWriter() { Discard(); }

  Status Begin(const Path& recoveryFolder, const Path& originalPath, std::string_view kind);
  bool begun() const { return static_cast<bool>(folder_); }
  int text() const { return text_.get(); }
  const Path& path() const { return path_; }
  // Makes the text durable under its final name.
  Status Finish();
  // Copies `size` bytes of an open file, and makes them durable.
  Status AddPrevious(int file, int64_t size);
  // Leaves the entry for good; the lock lasts as long as what is given back.
  Descriptor Keep();
  void Discard();

 private:
  Error Failed(int error) const;
  Status WriteAbout(const Path& originalPath, std::string_view kind);

  Path path_;
  Descriptor parent_, folder_, text_;
};

}  // namespace files
