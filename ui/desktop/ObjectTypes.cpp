#include "ui/desktop/ObjectTypes.h"

#include "ui/PathText.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <gio/gio.h>
#include <memory>

namespace ui {
namespace {

struct Deleter {
  void operator()(gpointer object) const { g_object_unref(object); }
};

struct Blank {
  const char* type;
  const char* ending;
  const char* name;
  const char* resource;  // of data/objects/; null: an empty file
};
constexpr Blank kBlanks[] = {
    {"application/vnd.oasis.opendocument.text", "odt", QT_TRANSLATE_NOOP("ObjectTypes", "Text document"), "blank.odt"},
    {"application/vnd.oasis.opendocument.spreadsheet", "ods", QT_TRANSLATE_NOOP("ObjectTypes", "Spreadsheet"),
     "blank.ods"},
    {"application/vnd.oasis.opendocument.presentation", "odp", QT_TRANSLATE_NOOP("ObjectTypes", "Presentation"),
     "blank.odp"},
    {"application/vnd.oasis.opendocument.graphics", "odg", QT_TRANSLATE_NOOP("ObjectTypes", "Drawing"), "blank.odg"},
    {"image/png", "png", QT_TRANSLATE_NOOP("ObjectTypes", "Picture"), "blank.png"},
    {"image/svg+xml", "svg", QT_TRANSLATE_NOOP("ObjectTypes", "Vector picture"), "blank.svg"},
    {"application/rtf", "rtf", QT_TRANSLATE_NOOP("ObjectTypes", "Rich text"), "blank.rtf"},
    {"text/html", "html", QT_TRANSLATE_NOOP("ObjectTypes", "Web page"), "blank.html"},
    {"text/csv", "csv", QT_TRANSLATE_NOOP("ObjectTypes", "Table of plain text"), nullptr},
    {"text/plain", "txt", QT_TRANSLATE_NOOP("ObjectTypes", "Plain text"), nullptr},
};

QString ApplicationOf(const char* type) {
  const std::unique_ptr<GAppInfo, Deleter> application(g_app_info_get_default_for_type(type, false));
  return application ? QString::fromUtf8(g_app_info_get_display_name(application.get())) : QString();
}

std::string ResourceBytes(const char* name) {
  if (!name) return {};
  QFile file(QLatin1String(":/objects/") + QLatin1String(name));
  return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

// One level, no hidden files.
void AddTemplates(std::vector<ObjectType>& types) {
  const char* const folder = g_get_user_special_dir(G_USER_DIRECTORY_TEMPLATES);
  // Without a folder of its own the home folder is given.
  if (!folder || g_strcmp0(folder, g_get_home_dir()) == 0) return;
  constexpr size_t kMost = 200;
  std::vector<files::Path> found;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end && found.size() < kMost;
       entry.increment(error))
    if (entry->is_regular_file(error) && !entry->path().filename().native().starts_with('.'))
      found.push_back(entry->path());
  std::ranges::sort(found);
  for (const files::Path& path : found) {
    const std::unique_ptr<char, decltype(&g_free)> type(
        g_content_type_guess(path.filename().c_str(), nullptr, 0, nullptr), g_free);
    QString application = ApplicationOf(type.get());
    if (!application.isEmpty())
      types.push_back({DisplayText(path.stem().native()), std::move(application), path.filename().native(), {}, path});
  }
}

}  // namespace

std::vector<ObjectType> InstalledObjectTypes() {
  std::vector<ObjectType> types;
  AddTemplates(types);
  for (const Blank& blank : kBlanks) {
    QString application = ApplicationOf(blank.type);
    if (application.isEmpty()) continue;
    const QString name = QCoreApplication::translate("ObjectTypes", blank.name);
    types.push_back(
        {name, std::move(application), name.toStdString() + "." + blank.ending, ResourceBytes(blank.resource), {}});
  }
  return types;
}

std::string PlainFileName(std::string_view name) {
  constexpr size_t kMost = 120;
  const size_t folder = name.find_last_of("/\\");
  std::string plain(folder == std::string_view::npos ? name : name.substr(folder + 1));
  for (char& c : plain)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '_';
  plain.erase(0, plain.find_first_not_of(". "));
  if (plain.size() > kMost) {
    // The ending says what it is.
    const size_t dot = plain.rfind('.');
    std::string ending = dot != std::string::npos && plain.size() - dot <= 20 ? plain.substr(dot) : std::string();
    size_t size = kMost - ending.size();
    while (size > 0 && (static_cast<unsigned char>(plain[size]) & 0xC0) == 0x80) --size;
    plain = plain.substr(0, size) + ending;
  }
  return plain.empty() ? "object" : plain;
}

}  // namespace ui
