// The settings: the store that keeps texts from one run to the next, its table of keys, and the values in memory.
#pragma once

#include "files/Result.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace services {

constexpr std::string_view kApplicationName = "Quillmark";
constexpr std::string_view kGeneral = "General";
constexpr std::string_view kRecentFiles = "Recent Files";

// Addressed by application name, section and key. Every value is text, as bytes. Reading never fails: what is not there
// is missing. Writing reports nothing; it is tried again with the next write and at the end.
class SettingsStore {
 public:
  using Pairs = std::vector<std::pair<std::string, std::string>>;

  virtual ~SettingsStore() = default;

  // Nothing when the key or its section is missing.
  virtual std::optional<std::string> Find(std::string_view application, std::string_view section,
                                          std::string_view key) const = 0;
  // All of them at once.
  virtual void SaveSettings(std::string_view application, std::string_view section, const Pairs& pairs) = 0;
  // In the order in which the keys were first created; nothing when there is no such section.
  virtual Pairs GetAllSettings(std::string_view application, std::string_view section) const = 0;
  // A value beside the applications.
  virtual std::optional<std::string> FindRootValue(std::string_view name) const = 0;
  virtual void SaveRootValue(std::string_view name, std::string_view value) = 0;

  std::string GetSetting(std::string_view application, std::string_view section, std::string_view key,
                         std::string_view fallback) const {
    return Find(application, section, key).value_or(std::string(fallback));
  }
  void SaveSetting(std::string_view application, std::string_view section, std::string_view key,
                   std::string_view value) {
    SaveSettings(application, section, {{std::string(key), std::string(value)}});
  }
};

struct DefaultFont {
  QString name = QStringLiteral("Courier New");
  double size = 10;
  bool operator==(const DefaultFont&) const = default;
};

struct PadSize {  // twips
  int height = 6780, width = 4230;
  bool operator==(const PadSize&) const = default;
};

constexpr int32_t kSystemWindowColour = -2147483643;
constexpr int kNoState = -1;

// The values in memory, from the start of the program to its end. Member by member what a row of the table says.
struct Settings {
  std::string Extensions;
  DefaultFont Font;
  std::string Tabs;
  int DocBackColor = kSystemWindowColour;  // else 0x00BBGGRR
  bool AutoCopy = false;
  bool SaveWindowState = false;
  int WindowSize = kNoState;  // states: 0 normal, 1 minimised, 2 maximised
  int SaveArrange = kNoState;
  int QuotesState = kNoState;
  int TextState = kNoState;
  int TextBlocksState = kNoState;
  int MyPadState = kNoState;
  PadSize MyPadSize;
  bool TreeDelMethod = false;
  int ToolBarStyle = 1;
  double ListFontSize = 10;
  std::string EmailApp = "mailto:", NewsApp = "news://", SNewsApp = "snews://", FTPApp = "FTP://";
  int PlusImage = 14;
  std::string AutoTagFile;
  bool AutoCompleteAtStartup = true;
  bool TreeSync = false;
  std::string TextBlocks, QuoteFile, NotesFile;
  bool AutoLoadProject = false;
  int MostRecent = 0;
};

enum class SettingsBatch : uint8_t { kFormLoad, kFirstActivation };

// How a key is written: a flag as True or False, a number with a full stop, a pair as two numbers with a comma, a font
// as name, comma, size; texts, paths and lists are bytes.
struct SettingRow {
  using Value = std::variant<bool Settings::*, int Settings::*, double Settings::*, std::string Settings::*,
                             DefaultFont Settings::*, PadSize Settings::*>;
  std::string_view key;
  Value value;
  std::string_view fallback;  // as text
  SettingsBatch batch = SettingsBatch::kFormLoad;
  bool windowState = false;                        // read only when SaveWindowState is on
  double lowest = INT32_MIN, highest = INT32_MAX;  // of a whole or other number; beyond them it does not convert
};

// In the order in which they are read. Keys are unique.
std::span<const SettingRow> SettingTable();
const SettingRow& RowOf(std::string_view key);

std::string ToText(const SettingRow& row, const Settings& settings);
// False, and nothing changed, when the text does not convert.
bool FromText(const SettingRow& row, std::string_view text, Settings& settings);

// A value that is missing or does not convert becomes the default; so do the rows of window states when these are not
// remembered.
void ReadSettings(const SettingsStore& store, SettingsBatch batch, Settings& settings);
// The general section's keys with their values in memory, in this order.
void SaveFromMemory(SettingsStore& store, const Settings& settings, std::span<const std::string_view> keys);

// --- The encodings
std::optional<bool> ReadBoolean(std::string_view text);  // True, False in any case, or a number
std::optional<int> ReadInteger(std::string_view text);
std::optional<double> ReadNumber(std::string_view text);  // finite
std::string WriteNumber(double number);                   // the shortest text that reads back as the same number

// In a path without "/" a "\" separates.
files::Path PathOfSetting(std::string_view text);

// The table of tab stops: the list's positive whole numbers as twips, ascending, each once.
std::vector<int> CreateTabStops(std::string_view list);

}  // namespace services
