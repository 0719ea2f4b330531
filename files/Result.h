// How the outside world fails: a kind, the path it happened to and the system's own text.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace files {

// A path is bytes; names that are not valid UTF-8 are kept as they are.
using Path = std::filesystem::path;

// The program's error numbers that somebody asks for.
constexpr int kFileNotFound = 53, kPathAccess = 75, kPathNotFound = 76;

struct Error {
  int number =
      0;  // the program's error number: 53 file not found, 75 path/file access error, 70 permission denied, ...
  int systemError = 0;  // errno, 0 when it was no system call
  Path path;
  std::string text;      // the system's text for errno, or our own ("Not a regular file"); UTF-8
  bool damaged = false;  // the file is not as it was; the text names what is left of it
};

// The program's number for an errno of a failed reading, saving or attribute call.
int ErrorNumber(int systemError);
// The error of a failed system call, with the system's text. ENOENT is 76 when the folder that should hold `path` is
// missing, else 53.
Error SystemError(int systemError, Path path);

// A value or an error.
template <class T>
class [[nodiscard]] Result {
 public:
  Result(T value) : state_(std::move(value)) {}
  Result(Error error) : state_(std::move(error)) {}
  explicit operator bool() const { return std::holds_alternative<T>(state_); }
  T& value() & { return std::get<T>(state_); }
  const T& value() const& { return std::get<T>(state_); }
  // Out of a temporary it comes by value, so that a loop over it is safe.
  T value() && { return std::get<T>(std::move(state_)); }
  const Error& error() const { return std::get<Error>(state_); }

 private:
  std::variant<T, Error> state_;
};

// Success, or an error.
class [[nodiscard]] Status {
 public:
  Status() = default;
  Status(Error error) : error_(std::move(error)) {}
  explicit operator bool() const { return !error_; }
  const Error& error() const { return *error_; }

 private:
  std::optional<Error> error_;
};

}  // namespace files
