#include "ui/desktop/operations/Trash.h"

#include "files/Result.h"

#include <cerrno>
#include <gio/gio.h>
#include <memory>

namespace ui {
namespace {

struct Deleter {
  void operator()(GFile* file) const { g_object_unref(file); }
  void operator()(GError* error) const { g_error_free(error); }
};

int SystemErrorOf(const GError& error) {
  if (error.domain != G_IO_ERROR) return EIO;
  switch (error.code) {
    case G_IO_ERROR_NOT_FOUND:
      return ENOENT;
    case G_IO_ERROR_PERMISSION_DENIED:
      return EACCES;
    case G_IO_ERROR_NO_SPACE:
      return ENOSPC;
    case G_IO_ERROR_READ_ONLY:
      return EROFS;
    case G_IO_ERROR_FILENAME_TOO_LONG:
      return ENAMETOOLONG;
    case G_IO_ERROR_BUSY:
      return EBUSY;
    default:
      return EIO;
  }
}

}  // namespace

std::optional<Trash::Failure> DesktopTrash::Put(const std::string& path) {
  // The library would cut the path at a NUL.
  if (path.find('\0') != std::string::npos) return Failure{false, {path, 5, EINVAL, "Invalid argument"}};
  const std::unique_ptr<GFile, Deleter> file(g_file_new_for_path(path.c_str()));
  GError* raised = nullptr;
  if (g_file_trash(file.get(), nullptr, &raised)) return std::nullopt;
  const std::unique_ptr<GError, Deleter> error(raised);
  const int systemError = SystemErrorOf(*error);
  return Failure{static_cast<bool>(g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_NOT_SUPPORTED)),
                 {path, files::ErrorNumber(systemError), systemError, error->message}};
}

}  // namespace ui
