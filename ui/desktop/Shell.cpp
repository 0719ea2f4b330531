#include "ui/desktop/Shell.h"

#include "files/AnyCase.h"
#include "files/OpenFile.h"

#include <algorithm>
#include <cctype>
#include <gio/gio.h>
#include <gio/gunixmounts.h>
#include <memory>
#include <optional>
#include <span>

namespace ui {
namespace {

struct Deleter {
  void operator()(gpointer object) const { g_object_unref(object); }
};
template <class T>
using Owned = std::unique_ptr<T, Deleter>;

constexpr int64_t kMaxLinkBytes = 65536;

std::string_view SchemeOf(std::string_view text) {
  return text.substr(0, text.find(':'));
}
bool MayBeLinkedTo(std::string_view address) {
  constexpr std::string_view kSchemes[] = {"http", "https", "mailto"};
  return HasScheme(address) && std::ranges::any_of(kSchemes, [scheme = SchemeOf(address)](std::string_view allowed) {
           return files::SameAnyCase(scheme, allowed);
         });
}

int Launch(GAppInfo* application, const std::string& uri) {
  if (!application) return Shell::kNoApplication;
  GList uris{const_cast<char*>(uri.c_str()), nullptr, nullptr};
  const bool started = g_app_info_launch_uris(application, &uris, nullptr, nullptr);
  return started ? Shell::kStarted : Shell::kNoApplication;
}

int OpenAddress(const std::string& address) {
  std::string scheme(SchemeOf(address));
  std::ranges::transform(scheme, scheme.begin(), [](unsigned char c) { return std::tolower(c); });
  const Owned<GAppInfo> handler(g_app_info_get_default_for_uri_scheme(scheme.c_str()));
  return Launch(handler.get(), address);
}

std::optional<std::string> ReadLink(const std::string& path) {
  auto file = files::OpenForReading(path);
  if (!file) return std::nullopt;
  auto bytes = files::ReadAll(file.value(), kMaxLinkBytes);
  if (!bytes) return std::nullopt;
  return std::move(bytes.value());
}

int OpenFile(const std::string& path) {
  const Owned<GFile> file(g_file_new_for_path(path.c_str()));
  const Owned<GFileInfo> info(
      g_file_query_info(file.get(), G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE, G_FILE_QUERY_INFO_NONE, nullptr, nullptr));
  if (!info) return Shell::kNotFound;
  if (files::EndsWithAnyCase(path, ".url") || files::EndsWithAnyCase(path, ".desktop")) {
    const auto link = ReadLink(path);
    const std::string address = link ? AddressOfLink(*link) : std::string();
    if (!address.empty()) return OpenAddress(address);
  }
  const char* const type = g_file_info_get_content_type(info.get());
  const Owned<GAppInfo> application(type ? g_app_info_get_default_for_type(type, false) : nullptr);
  const std::unique_ptr<char, decltype(&g_free)> uri(g_file_get_uri(file.get()), g_free);
  return Launch(application.get(), uri.get());
}

bool IsOneOf(const char* type, std::span<const char* const> kinds) {
  return std::ranges::any_of(kinds, [type](const char* kind) { return g_content_type_is_a(type, kind); });
}

// Kinds whose applications would run them, or go where they lead.
bool IsProgramOrLink(const char* type) {
  constexpr const char* kKinds[] = {"application/x-ms-dos-executable",
                                    "application/x-msdownload",
                                    "application/vnd.microsoft.portable-executable",
                                    "application/x-msi",
                                    "application/x-ms-shortcut",
                                    "application/x-mswinurl",
                                    "application/x-desktop",
                                    "application/java-archive",
                                    "application/x-java-archive",
                                    "application/x-java-jnlp-file",
                                    "application/vnd.appimage",
                                    "application/x-iso9660-appimage",
                                    "application/vnd.flatpak",
                                    "application/vnd.flatpak.ref",
                                    "application/vnd.snap"};
  // Wine makes types of its own for what it would run.
  constexpr std::string_view kWine = "application/x-wine-extension-";
  return IsOneOf(type, kKinds) || std::string_view(type).starts_with(kWine);
}

// The kinds of scripts belong to these, but so do compiled programs. Of others the application may be what runs them.
bool MayBeRun(const char* type) {
  constexpr const char* kKinds[] = {"application/x-executable", "application/x-sharedlib", "application/x-bat",
                                    "application/x-powershell", "text/x-ms-regedit",       "text/vbscript"};
  return IsOneOf(type, kKinds);
}

// The name that processes of an application have, unless any other program may be called so.
std::string ProgramOf(GAppInfo* application) {
  const char* const executable = application ? g_app_info_get_executable(application) : nullptr;
  const std::string name = executable ? files::Path(executable).filename().native() : std::string();
  constexpr std::string_view kAnything[] = {"sh",   "bash", "env",  "flatpak", "gapplication",
                                            "java", "perl", "wine", "python",  "python3"};
  return std::ranges::count(kAnything, name) > 0 ? std::string() : name;
}

std::string TypeOf(GFile* file) {
  const Owned<GFileInfo> info(
      g_file_query_info(file, G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE, G_FILE_QUERY_INFO_NONE, nullptr, nullptr));
  const char* const type = info ? g_file_info_get_content_type(info.get()) : nullptr;
  return type ? type : "";
}

std::optional<std::string> FindProgram(const std::string& program) {
  for (const std::string& name :
       {program, files::EndsWithAnyCase(program, ".exe") ? program.substr(0, program.size() - 4) : ""}) {
    if (name.empty()) continue;
    const std::unique_ptr<char, decltype(&g_free)> found(g_find_program_in_path(name.c_str()), g_free);
    if (found) return std::string(found.get());
  }
  return std::nullopt;
}

// The program that stands in for one that every desktop of another kind has.
int RunStandIn(const char* type, const std::vector<std::string>& arguments) {
  const Owned<GAppInfo> application(g_app_info_get_default_for_type(type, false));
  if (!application) return Shell::kNoApplication;
  if (arguments.empty()) {
    return g_app_info_launch(application.get(), nullptr, nullptr, nullptr) ? Shell::kStarted : Shell::kNoApplication;
  }
  const Owned<GFile> file(g_file_new_for_path(arguments.front().c_str()));
  const std::unique_ptr<char, decltype(&g_free)> uri(g_file_get_uri(file.get()), g_free);
  return Launch(application.get(), uri.get());
}

}  // namespace

bool HasScheme(std::string_view text) {
  const size_t colon = text.find(':');
  if (colon == std::string_view::npos || colon < 2 || !std::isalpha(static_cast<unsigned char>(text[0]))) return false;
  return std::ranges::all_of(text.substr(0, colon), [](unsigned char c) {
    return c < 0x80 && (std::isalnum(c) || c == '+' || c == '-' || c == '.');
  });
}

std::string AddressOfLink(std::string_view link) {
  if (link.starts_with("\xEF\xBB\xBF")) link.remove_prefix(3);
  bool inside = false;
  while (!link.empty()) {
    std::string_view line = link.substr(0, link.find('\n'));
    link.remove_prefix(std::min(link.size(), line.size() + 1));
    while (line.ends_with('\r') || line.ends_with(' ')) line.remove_suffix(1);
    if (line.starts_with('[')) {
      inside = files::SameAnyCase(line, "[InternetShortcut]") || line == "[Desktop Entry]";
    } else if (inside && files::SameAnyCase(line.substr(0, 4), "URL=")) {
      const std::string_view address = line.substr(4);
      return MayBeLinkedTo(address) ? std::string(address) : std::string();
    }
  }
  return {};
}

int DesktopShell::Open(const std::string& pathOrAddress) {
  if (pathOrAddress.find('\0') != std::string::npos) return kNotFound;
  // A file may be called like an address.
  if (!pathOrAddress.starts_with('/') && HasScheme(pathOrAddress)) return OpenAddress(pathOrAddress);
  return OpenFile(pathOrAddress);
}

int DesktopShell::OpenCopy(const files::Path& path, std::string& program) {
  const Owned<GFile> file(g_file_new_for_path(path.c_str()));
  const std::string type = TypeOf(file.get());
  if (type.empty()) return kNotFound;
  const bool named = files::EndsWithAnyCase(path.native(), ".desktop") || files::EndsWithAnyCase(path.native(), ".url");
  if (named || IsProgramOrLink(type.c_str())) return kAccessDenied;
  const bool script = MayBeRun(type.c_str());
  if (script && !g_content_type_is_a(type.c_str(), "text/plain")) return kAccessDenied;
  const Owned<GAppInfo> application(g_app_info_get_default_for_type(script ? "text/plain" : type.c_str(), false));
  program = ProgramOf(application.get());
  const std::unique_ptr<char, decltype(&g_free)> uri(g_file_get_uri(file.get()), g_free);
  return Launch(application.get(), uri.get());
}

int DesktopShell::Run(const std::string& program, const std::vector<std::string>& arguments,
                      const files::Path& directory) {
  const auto found = FindProgram(program);
  if (!found) {
    if (files::SameAnyCase(program, "Notepad.exe")) return RunStandIn("text/plain", arguments);
    if (files::SameAnyCase(program, "Wordpad.exe")) return RunStandIn("application/rtf", arguments);
    return kNotFound;
  }
  std::vector<char*> argv = {const_cast<char*>(found->c_str())};
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  GError* error = nullptr;
  if (g_spawn_async(directory.empty() ? nullptr : directory.c_str(), argv.data(), nullptr, G_SPAWN_DEFAULT, nullptr,
                    nullptr, nullptr, &error))
    return kStarted;
  const bool missing = g_error_matches(error, G_SPAWN_ERROR, G_SPAWN_ERROR_NOENT);
  g_error_free(error);
  return missing ? kNotFound : kAccessDenied;
}

std::vector<files::Path> DesktopShell::Volumes() {
  std::vector<files::Path> volumes;
  GList* const mounts = g_unix_mounts_get(nullptr);
  for (const GList* each = mounts; each; each = each->next) {
    auto* mount = static_cast<GUnixMountEntry*>(each->data);
    if (g_unix_mount_guess_should_display(mount)) volumes.emplace_back(g_unix_mount_get_mount_path(mount));
  }
  g_list_free_full(mounts, reinterpret_cast<GDestroyNotify>(g_unix_mount_free));
  std::ranges::sort(volumes);
  return volumes;
}

}  // namespace ui
