#include "services/Settings.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <charconv>
#include <cmath>

namespace services {
namespace {

constexpr double kLargestFont = 1638;
constexpr int kWidestTabStop = 31680;  // 22 inches

constexpr auto kLater = SettingsBatch::kFirstActivation;

// Keys of window states: -1 leaves a window as it is.
constexpr SettingRow State(std::string_view key, int Settings::*value) {
  return {.key = key, .value = value, .fallback = "-1", .windowState = true, .lowest = -1, .highest = 2};
}

// clang-format off
constexpr SettingRow kTable[] = {
  {.key = "Extensions", .value = &Settings::Extensions, .fallback = ""},
  {.key = "Font", .value = &Settings::Font, .fallback = "Courier New,10"},
  {.key = "Tabs", .value = &Settings::Tabs, .fallback = ""},
  {.key = "rtbBackColor", .value = &Settings::DocBackColor, .fallback = "-2147483643", .lowest = kSystemWindowColour, .highest = 0xFFFFFF},
  {.key = "AutoCopy", .value = &Settings::AutoCopy, .fallback = "False"},
  {.key = "SaveWindowState", .value = &Settings::SaveWindowState, .fallback = "False"},
  State("WindowSize", &Settings::WindowSize),
  State("SaveArrange", &Settings::SaveArrange),
  State("QuotesState", &Settings::QuotesState),
  State("TextState", &Settings::TextState),
  State("TextBlocksState", &Settings::TextBlocksState),
  State("MyPadState", &Settings::MyPadState),
  {.key = "MyPadSize", .value = &Settings::MyPadSize, .fallback = "6780,4230", .windowState = true, .lowest = 1},
  {.key = "TreeDelMethod", .value = &Settings::TreeDelMethod, .fallback = "False"},
  {.key = "ToolBarStyle", .value = &Settings::ToolBarStyle, .fallback = "1"},
  {.key = "ListFontSize", .value = &Settings::ListFontSize, .fallback = "10", .lowest = 1, .highest = kLargestFont},
  {.key = "EmailApp", .value = &Settings::EmailApp, .fallback = "mailto:"},
  {.key = "NewsApp", .value = &Settings::NewsApp, .fallback = "news://"},
  {.key = "SNewsApp", .value = &Settings::SNewsApp, .fallback = "snews://"},
  {.key = "FTPApp", .value = &Settings::FTPApp, .fallback = "FTP://"},
  {.key = "PlusImage", .value = &Settings::PlusImage, .fallback = "14", .batch = kLater},
  {.key = "AutoTagFile", .value = &Settings::AutoTagFile, .fallback = "", .batch = kLater},
  {.key = "AutoCompleteAtStartup", .value = &Settings::AutoCompleteAtStartup, .fallback = "True", .batch = kLater},
  {.key = "TreeSync", .value = &Settings::TreeSync, .fallback = "False", .batch = kLater},
  {.key = "TextBlocks", .value = &Settings::TextBlocks, .fallback = "", .batch = kLater},
  {.key = "QuoteFile", .value = &Settings::QuoteFile, .fallback = "", .batch = kLater},
  {.key = "NotesFile", .value = &Settings::NotesFile, .fallback = "", .batch = kLater},
  {.key = "AutoLoadProject", .value = &Settings::AutoLoadProject, .fallback = "False", .batch = kLater},
  {.key = "Most Recent", .value = &Settings::MostRecent, .fallback = "0", .batch = kLater, .lowest = 0, .highest = 5},
};
// clang-format on

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

template <class T, class... Format>
std::optional<T> Parse(std::string_view text, Format... format) {
  text = Trimmed(text);
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  T value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, format...);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// What stands before and behind the first comma.
std::optional<std::pair<std::string_view, std::string_view>> SplitAtComma(std::string_view text) {
  const size_t comma = text.find(',');
  if (comma == std::string_view::npos) return std::nullopt;
  return std::pair(text.substr(0, comma), text.substr(comma + 1));
}

bool Fits(const SettingRow& row, double number) {
  return number >= row.lowest && number <= row.highest;
}

std::optional<int> IntegerOf(const SettingRow& row, std::string_view text) {
  const auto number = ReadInteger(text);
  return number && Fits(row, *number) ? number : std::nullopt;
}

std::optional<int> ColourOf(const SettingRow& row, std::string_view text) {
  const auto colour = IntegerOf(row, text);
  return colour && *colour < 0 && *colour != kSystemWindowColour ? std::nullopt : colour;
}

std::optional<DefaultFont> FontOf(std::string_view text) {
  const auto parts = SplitAtComma(text);
  if (!parts || Trimmed(parts->first).empty()) return std::nullopt;
  const auto size = ReadNumber(parts->second);
  if (!size || *size < 1 || *size > kLargestFont) return std::nullopt;
  return DefaultFont{QString::fromUtf8(parts->first.data(), static_cast<qsizetype>(parts->first.size())), *size};
}

std::optional<PadSize> SizeOf(const SettingRow& row, std::string_view text) {
  const auto parts = SplitAtComma(text);
  if (!parts) return std::nullopt;
  const auto height = IntegerOf(row, parts->first), width = IntegerOf(row, parts->second);
  if (!height || !width) return std::nullopt;
  return PadSize{*height, *width};
}

template <class T>
bool Take(std::optional<T> read, T& value) {
  if (read) value = std::move(*read);
  return read.has_value();
}

}  // namespace

std::span<const SettingRow> SettingTable() {
  return kTable;
}

const SettingRow& RowOf(std::string_view key) {
  const auto* row = std::ranges::find(kTable, key, &SettingRow::key);
  assert(row != std::end(kTable));
  return *row;
}

std::string ToText(const SettingRow& row, const Settings& settings) {
  return std::visit(Overloaded{
                        [&](bool Settings::*value) { return std::string(settings.*value ? "True" : "False"); },
                        [&](int Settings::*value) { return std::to_string(settings.*value); },
                        [&](double Settings::*value) { return WriteNumber(settings.*value); },
                        [&](std::string Settings::*value) { return settings.*value; },
                        [&](DefaultFont Settings::*value) {
                          return (settings.*value).name.toStdString() + "," + WriteNumber((settings.*value).size);
                        },
                        [&](PadSize Settings::*value) {
                          return std::to_string((settings.*value).height) + "," +
                                 std::to_string((settings.*value).width);
                        },
                    },
                    row.value);
}

bool FromText(const SettingRow& row, std::string_view text, Settings& settings) {
  return std::visit(
      Overloaded{
          [&](bool Settings::*value) { return Take(ReadBoolean(text), settings.*value); },
          [&](int Settings::*value) {
            const bool colour = value == &Settings::DocBackColor;
            return Take(colour ? ColourOf(row, text) : IntegerOf(row, text), settings.*value);
          },
          [&](double Settings::*value) {
            const auto number = ReadNumber(text);
            return Take(number && Fits(row, *number) ? number : std::nullopt, settings.*value);
          },
          [&](std::string Settings::*value) { return Take(std::optional(std::string(text)), settings.*value); },
          [&](DefaultFont Settings::*value) { return Take(FontOf(text), settings.*value); },
          [&](PadSize Settings::*value) { return Take(SizeOf(row, text), settings.*value); },
      },
      row.value);
}

void ReadSettings(const SettingsStore& store, SettingsBatch batch, Settings& settings) {
  for (const SettingRow& row : kTable) {
    if (row.batch != batch) continue;
    std::optional<std::string> stored;
    if (!row.windowState || settings.SaveWindowState) stored = store.Find(kApplicationName, kGeneral, row.key);
    if (stored && FromText(row, *stored, settings)) continue;
    [[maybe_unused]] const bool converts = FromText(row, row.fallback, settings);
    assert(converts);
  }
}

void SaveFromMemory(SettingsStore& store, const Settings& settings, std::span<const std::string_view> keys) {
  SettingsStore::Pairs pairs;
  for (const std::string_view key : keys) pairs.emplace_back(key, ToText(RowOf(key), settings));
  store.SaveSettings(kApplicationName, kGeneral, pairs);
}

std::optional<bool> ReadBoolean(std::string_view text) {
  std::string lower(Trimmed(text));
  std::ranges::transform(lower, lower.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; });
  if (lower == "true") return true;
  if (lower == "false") return false;
  const auto number = ReadNumber(lower);
  return number ? std::optional(*number != 0) : std::nullopt;
}

std::optional<int> ReadInteger(std::string_view text) {
  return Parse<int>(text);
}

std::optional<double> ReadNumber(std::string_view text) {
  const auto number = Parse<double>(text, std::chars_format::fixed);
  return number && std::isfinite(*number) ? number : std::nullopt;
}

std::string WriteNumber(double number) {
  std::array<char, 512> text;  // the longest fixed notation has some 330 characters
  const auto [end, error] = std::to_chars(text.begin(), text.end(), number, std::chars_format::fixed);
  assert(error == std::errc());
  return {text.begin(), end};
}

files::Path PathOfSetting(std::string_view text) {
  std::string path(text);
  if (path.find('/') == std::string::npos) std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

std::vector<int> CreateTabStops(std::string_view list) {
  constexpr std::string_view kSeparators = ", \t\r\n";
  std::vector<int> stops;
  for (size_t begin = 0; begin < list.size();) {
    const size_t end = std::min(list.find_first_of(kSeparators, begin), list.size());
    const auto stop = ReadInteger(list.substr(begin, end - begin));
    if (stop && *stop > 0 && *stop <= kWidestTabStop) stops.push_back(*stop);
    begin = end + 1;
  }
  std::ranges::sort(stops);
  stops.erase(std::unique(stops.begin(), stops.end()), stops.end());
  return stops;
}

}  // namespace services
