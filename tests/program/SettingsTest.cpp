// The table of settings, and how their values are written.
#include "services/Settings.h"

#include <QLocale>
#include <gtest/gtest.h>

#include <clocale>
#include <locale>
#include <map>
#include <set>

using services::Settings;
using services::SettingsBatch;

namespace {

class MemoryStore final : public services::SettingsStore {
 public:
  std::map<std::string, std::string> general;  // of the one section that is used here
  std::vector<std::string> written;

  std::optional<std::string> Find(std::string_view application, std::string_view section,
                                  std::string_view key) const override {
    EXPECT_EQ(application, "Quillmark");
    EXPECT_EQ(section, "General");
    const auto found = general.find(std::string(key));
    return found == general.end() ? std::nullopt : std::optional(found->second);
  }
  void SaveSettings(std::string_view application, std::string_view section, const Pairs& pairs) override {
    EXPECT_EQ(application, "Quillmark");
    EXPECT_EQ(section, "General");
    for (const auto& [key, value] : pairs) {
      general[key] = value;
      written.push_back(key);
    }
  }
  Pairs GetAllSettings(std::string_view, std::string_view) const override { return {}; }
  std::optional<std::string> FindRootValue(std::string_view) const override { return std::nullopt; }
  void SaveRootValue(std::string_view, std::string_view) override {}
};

Settings ReadAll(const MemoryStore& store, bool remembersStates = true) {
  MemoryStore copy = store;
  if (remembersStates) copy.general["SaveWindowState"] = "True";
  Settings settings;
  services::ReadSettings(copy, SettingsBatch::kFormLoad, settings);
  services::ReadSettings(copy, SettingsBatch::kFirstActivation, settings);
  return settings;
}

// What a stored text is, after reading, as text again. The row's default stands for a text that does not convert.
struct Row {
  const char* key;
  std::string byDefault;
  std::vector<std::pair<std::string, std::string>> good;
  std::vector<std::string> bad;
  SettingsBatch batch = SettingsBatch::kFormLoad;
  bool windowState = false;
};

using Pairs = std::vector<std::pair<std::string, std::string>>;
const Pairs kBooleans = {{"True", "True"}, {"False", "False"}, {"tRUE", "True"}, {"FALSE", "False"},
                         {"0", "False"},   {"1", "True"},      {"-1", "True"},   {"0.0", "False"},
                         {"0.5", "True"},  {" True ", "True"}};
const std::vector<std::string> kNoBooleans = {"", "yes", "Tru", "True!", "0x1", "1,0"};
const Pairs kIntegers = {{"0", "0"}, {"1", "1"}, {"+2", "2"}, {" 2\n", "2"}};
const std::vector<std::string> kNoIntegers = {
    "", "abc", "1.5", "1,5", "2x", "0x2", "+-1", "- 1", "99999999999999999999"};
const Pairs kTexts = {{"", ""}, {" as typed ", " as typed "}, {"\xFF/\xC3\xA9\n", "\xFF/\xC3\xA9\n"}};

std::vector<std::string> And(std::vector<std::string> all, std::initializer_list<const char*> more) {
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

std::vector<Row> Rows() {
  constexpr auto kLater = SettingsBatch::kFirstActivation;
  const auto state = [](const char* key) {
    return Row{key, "-1", kIntegers, And(kNoIntegers, {"3", "-2"}), SettingsBatch::kFormLoad, true};
  };
  return {
      {"Extensions", "", {{".txt, .htm*", ".txt, .htm*"}}, {}},
      {"Font",
       "Courier New,10",
       {{"Arial,12.5", "Arial,12.5"},
        {"Courier New,10", "Courier New,10"},
        {"A B, 8.25", "A B,8.25"},
        {"\xC3\x89t\xC3\xA9,1638", "\xC3\x89t\xC3\xA9,1638"}},
       {"", "Arial", "Arial,", ",12", "Arial,x", "Arial,12,5", "Arial,0", "Arial,-3", "Arial,1639", "Arial,1e3",
        "Arial,nan"}},
      {"Tabs", "", {{"720, 1440", "720, 1440"}}, {}},
      {"rtbBackColor",
       "-2147483643",
       {{"0", "0"}, {"255", "255"}, {"16777215", "16777215"}, {"-2147483643", "-2147483643"}},
       And(kNoIntegers, {"-1", "16777216", "-2147483642", "#ffffff"})},
      {"AutoCopy", "False", kBooleans, kNoBooleans},
      state("WindowSize"),
      state("SaveArrange"),
      state("QuotesState"),
      state("TextState"),
      state("TextBlocksState"),
      state("MyPadState"),
      {"MyPadSize",
       "6780,4230",
       {{"5000,3000", "5000,3000"}, {" 1 , 2 ", "1,2"}},
       {"", "5000", "5000,", ",3000", "5000,3000,1", "0,3000", "5000,-1", "a,b", "5000;3000", "5000.5,3000"},
       SettingsBatch::kFormLoad,
       true},
      {"TreeDelMethod", "False", kBooleans, kNoBooleans},
      {"ToolBarStyle", "1", {{"0", "0"}, {"1", "1"}, {"7", "7"}, {"-1", "-1"}}, kNoIntegers},
      {"ListFontSize",
       "10",
       {{"8.25", "8.25"}, {"10", "10"}, {"+9.0", "9"}, {"1638", "1638"}},
       {"", "abc", "8,25", "0", "-1", "1639", "1e2", "inf", "nan", "0x10", "10pt"}},
      {"EmailApp", "mailto:", kTexts, {}},
      {"NewsApp", "news://", kTexts, {}},
      {"SNewsApp", "snews://", kTexts, {}},
      {"FTPApp", "FTP://", kTexts, {}},
      {"PlusImage", "14", {{"12", "12"}, {"14", "14"}, {"3", "3"}}, kNoIntegers, kLater},
      {"AutoTagFile", "", kTexts, {}, kLater},
      {"AutoCompleteAtStartup", "True", kBooleans, kNoBooleans, kLater},
      {"TreeSync", "False", kBooleans, kNoBooleans, kLater},
      {"TextBlocks", "", kTexts, {}, kLater},
      {"QuoteFile", "", kTexts, {}, kLater},
      {"NotesFile", "", kTexts, {}, kLater},
      {"AutoLoadProject", "False", kBooleans, kNoBooleans, kLater},
      {"Most Recent", "0", {{"0", "0"}, {"1", "1"}, {"5", "5"}}, And(kNoIntegers, {"6", "-1"}), kLater},
  };
}

void ExpectEveryRow() {
  for (const Row& expected : Rows()) {
    SCOPED_TRACE(expected.key);
    const services::SettingRow& row = services::RowOf(expected.key);
    EXPECT_EQ(row.batch, expected.batch);
    EXPECT_EQ(row.windowState, expected.windowState);
    EXPECT_EQ(services::ToText(row, Settings()), expected.byDefault);
    EXPECT_EQ(services::ToText(row, ReadAll({})), expected.byDefault);
    MemoryStore store;
    for (const auto& [stored, read] : expected.good) {
      store.general[expected.key] = stored;
      EXPECT_EQ(services::ToText(row, ReadAll(store)), read) << stored;
      EXPECT_EQ(services::ToText(row, ReadAll(store, false)), expected.windowState ? expected.byDefault : read);
    }
    for (const std::string& stored : expected.bad) {
      store.general[expected.key] = stored;
      EXPECT_EQ(services::ToText(row, ReadAll(store)), expected.byDefault) << stored;
    }
  }
}

TEST(SettingsTest, EveryRow) {
  std::set<std::string> keys = {"SaveWindowState"};
  for (const Row& row : Rows()) keys.insert(row.key);
  EXPECT_EQ(keys.size(), services::SettingTable().size());
  for (const services::SettingRow& row : services::SettingTable()) EXPECT_TRUE(keys.contains(std::string(row.key)));
  ExpectEveryRow();
}

TEST(SettingsTest, EveryRowWhereNumbersHaveACommaForAPoint) {
  struct Commas : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::string before = std::setlocale(LC_ALL, nullptr);
  std::setlocale(LC_ALL, "de_DE.UTF-8");  // where the system has it
  const std::locale streams = std::locale::global(std::locale(std::locale(), new Commas));
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  ExpectEveryRow();
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
  std::locale::global(streams);
  std::setlocale(LC_ALL, before.c_str());
}

TEST(SettingsTest, WindowStatesAreReadOnlyWhenTheyAreRemembered) {
  for (const auto& [stored, remembers] : kBooleans) {
    MemoryStore store;
    store.general = {{"SaveWindowState", stored}, {"TextState", "2"}, {"MyPadSize", "5000,3000"}};
    const Settings settings = ReadAll(store, false);
    EXPECT_EQ(settings.SaveWindowState, remembers == "True") << stored;
    EXPECT_EQ(settings.TextState, remembers == "True" ? 2 : -1) << stored;
    EXPECT_EQ(settings.MyPadSize.height, remembers == "True" ? 5000 : 6780) << stored;
  }
}

TEST(SettingsTest, TheSecondBatchIsReadLater) {
  MemoryStore store;
  store.general = {{"Tabs", "720"}, {"TreeSync", "True"}};
  Settings settings;
  services::ReadSettings(store, SettingsBatch::kFormLoad, settings);
  EXPECT_EQ(settings.Tabs, "720");
  EXPECT_FALSE(settings.TreeSync);
  services::ReadSettings(store, SettingsBatch::kFirstActivation, settings);
  EXPECT_TRUE(settings.TreeSync);
}

TEST(SettingsTest, SavingWritesTheKeysInTheirOrder) {
  MemoryStore store;
  Settings settings;
  settings.AutoCopy = true;
  settings.Font = {"Arial", 12.5};
  constexpr std::string_view kKeys[] = {"Font", "AutoCopy", "MyPadSize", "ListFontSize"};
  services::SaveFromMemory(store, settings, kKeys);
  EXPECT_EQ(store.written, (std::vector<std::string>{"Font", "AutoCopy", "MyPadSize", "ListFontSize"}));
  EXPECT_EQ(store.general["Font"], "Arial,12.5");
  EXPECT_EQ(store.general["AutoCopy"], "True");
}

TEST(SettingsTest, NumbersReadBackAsTheSame) {
  for (const double number : {0.0, 0.1, 8.25, 1.0 / 3, 1e-7, 123456789.5, 1e300, -2.5})
    EXPECT_EQ(services::ReadNumber(services::WriteNumber(number)), number);
}

TEST(SettingsTest, TabStops) {
  const struct {
    const char* list;
    std::vector<int> stops;
  } rows[] = {
      {"", {}},
      {"720", {720}},
      {"720,1440, 2160", {720, 1440, 2160}},
      {"1440 720\r\n\t2160", {720, 1440, 2160}},
      {"720,,720,", {720}},
      {"0,-5,abc,7.5,31681,99999999999", {}},
      {"31680", {31680}},
  };
  for (const auto& row : rows) EXPECT_EQ(services::CreateTabStops(row.list), row.stops) << row.list;
}

}  // namespace
