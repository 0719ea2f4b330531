// Tools of the file room's tests: scratch folders, children with fewer rights, injected failures.
#pragma once

#include "files/saving/AtomicSave.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace files {

// A fresh folder that anybody may enter, removed with the object. On a real disk, so that attributes work, or where it
// is quickest.
class ScratchFolder {
 public:
  enum class Place { kDisk, kMemory };
  explicit ScratchFolder(Place place = Place::kDisk);
  ~ScratchFolder();
  const Path& path() const { return path_; }
  Path operator/(const Path& name) const { return path_ / name; }

 private:
  Path path_;
};

void Put(const Path& path, std::string_view bytes);
std::string Get(const Path& path);                     // "<none>" when it cannot be read
std::vector<std::string> NamesIn(const Path& folder);  // sorted
struct stat StatusOf(const Path& path);
// Bytes that differ everywhere, so that a piece in the wrong place shows.
std::string Pattern(size_t size, uint32_t seed = 1);
// "" for success, else "number text".
std::string Outcome(const Status& status);
std::string Outcome(const Result<FileStamp>& result);
Result<FileStamp> Save(const Path& target, const Path& stateFolder, std::string_view bytes);

// What went wrong in a child, as text, since its expectations are not this process's.
class Checks {
 public:
  template <class A, class B>
  void Equal(const char* what, const A& expected, const B& actual) {
    if (!(expected == actual)) text_ << what << ": expected " << expected << ", got " << actual << "\n";
  }
  void True(const char* what, bool holds) { Equal(what, true, holds); }
  // For long texts: says only that they differ.
  void SameBytes(const char* what, const std::string& expected, const std::string& actual);
  std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_;
};

// Runs `body` in a forked child and returns what it returns; a child that dies says how. "SKIP ..." means that the
// system did not permit the set-up.
using ChildBody = std::function<std::string()>;
std::string InChild(const ChildBody& body);
// The same without root's rights: as uid and gid 65534 when this process is root.
std::string AsNobody(const ChildBody& body);
// The same with a small volume mounted on `folder`, which is gone with the child.
std::string WithSmallVolume(const Path& folder, int kilobytes, const ChildBody& body);

// From now on this process's system call number `call` fails with `error`, always or when its argument number
// `argument` is at least `least` (exactly `least` when `exact`). False when the system does not permit it.
bool FailCall(int call, int error, int argument = -1, uint32_t least = 0, bool exact = false);

// Expects success of a child, or skips the test with the child's reason.
#define EXPECT_CHILD(result)                                          \
  do {                                                                \
    const std::string childResult = (result);                         \
    if (childResult.starts_with("SKIP")) GTEST_SKIP() << childResult; \
    EXPECT_EQ("", childResult);                                       \
  } while (false)

}  // namespace files
