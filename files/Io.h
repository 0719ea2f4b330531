// Descriptors and whole reads and writes; inside this room only. Errors are errno values, 0 for success.
#pragma once

#include "files/OpenFile.h"

#include <csignal>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace files {

// Owns an open descriptor.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(other.Release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor() { Close(); }
  explicit operator bool() const { return number_ >= 0; }
  int get() const { return number_; }
  int Release();
  int Close();

 private:
  int number_ = -1;
};

// While it lives a write past the file-size limit fails with EFBIG in this thread instead of ending the program. Other
// threads and started programs keep their own way with the signal.
class FileSizeSignalBlock {
 public:
  FileSizeSignalBlock();
  ~FileSizeSignalBlock();
  FileSizeSignalBlock(const FileSizeSignalBlock&) = delete;
  FileSizeSignalBlock& operator=(const FileSizeSignalBlock&) = delete;

 private:
  sigset_t before_;
  bool blocked_ = false;
};

// True when the path cannot be handed to the system as it is: a NUL in it would cut it to the name of another file.
bool HasNul(const Path& path);

struct Transfer {
  int64_t bytes = 0;  // how much got there, also when it failed
  int error = 0;
};
Transfer WriteFully(int descriptor, std::string_view bytes, int64_t offset);
// Copies [begin, end) to the same place of another file. A source that ends early is EIO.
Transfer CopyRange(int from, int to, int64_t begin, int64_t end);

int SyncFile(int descriptor);
// Makes names in the folder durable; when it may not be read, by syncing the whole volume that the file is on. File
// systems that cannot sync a folder count as success.
int SyncFolder(int folder, int fileInIt);
int SyncFolder(const Path& folder);

// Creates a file with an unpredictable name in an open folder (O_PATH will do) and opens it for reading and writing.
struct UniqueFile {
  Descriptor descriptor;
  std::string name;
  int error = 0;
};
UniqueFile CreateUnique(int folder, std::string_view prefix, mode_t mode);
// Sixteen unpredictable hexadecimal digits.
std::string RandomName();

FileStamp StampOf(const struct stat& status);

// Gathers small writes and passes big ones through.
class BufferedWriter {
 public:
  BufferedWriter() = default;
  explicit BufferedWriter(int descriptor) : descriptor_(descriptor) {}
  bool Write(std::string_view bytes);
  bool Flush();
  int error() const { return error_; }
  int64_t size() const { return written_ + static_cast<int64_t>(used_); }

 private:
  bool Put(std::string_view bytes);

  int descriptor_ = -1;
  std::unique_ptr<char[]> buffer_;
  size_t used_ = 0;
  int64_t written_ = 0;
  int64_t flushing_ = 0;  // the disk was asked to begin with everything before this
  int error_ = 0;
};

}  // namespace files
