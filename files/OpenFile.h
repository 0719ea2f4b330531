// Opening for reading: only regular files (links followed), refused before a byte is read otherwise.
#pragma once

#include "files/Result.h"

#include <cstdint>
#include <optional>

namespace files {

// What identifies the state of a file on disk, to notice that another program changed it.
struct FileStamp {
  uint64_t device = 0, inode = 0;
  int64_t size = 0;
  int64_t modifiedSeconds = 0, modifiedNanoseconds = 0;
  bool operator==(const FileStamp&) const = default;
};

class InputFile {
 public:
  explicit InputFile(int descriptor, FileStamp stamp) : descriptor_(descriptor), stamp_(stamp) {}
  InputFile(InputFile&& other) noexcept;
  InputFile& operator=(InputFile&& other) noexcept;
  ~InputFile();
  int descriptor() const { return descriptor_; }
  int64_t size() const { return stamp_.size; }
  const FileStamp& stamp() const { return stamp_; }

 private:
  int descriptor_ = -1;
  FileStamp stamp_;
};

// Errors: 53 missing, 76 missing parent or a file where a folder is meant, 70 a folder, not allowed, or not a regular
// file (text "Not a regular file"; never blocks on a FIFO), others by ErrorNumber.
Result<InputFile> OpenForReading(const Path& path);
// Reads to the end, at most `limit` bytes (more is an error). `bytes` is what was read, also before an error.
Status ReadInto(InputFile& file, std::string& bytes, int64_t limit = INT64_MAX);
Result<std::string> ReadAll(InputFile& file, int64_t limit = INT64_MAX);

// Nothing when the file does not exist or cannot be looked at.
std::optional<FileStamp> StampOf(const Path& path);

}  // namespace files
