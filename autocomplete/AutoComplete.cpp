#include "autocomplete/AutoComplete.h"

#include "autocomplete/WordFile.h"
#include "services/Messages.h"
#include "text/Content.h"
#include "ui/Hourglass.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"

#include <QCoreApplication>

namespace autocomplete {
namespace {

constexpr size_t kEntriesOfAnEmptyFile = 999;

QString Tr(const char* text) {
  return QCoreApplication::translate("AutoComplete", text);
}

QString NoFileMarker() {
  return {QChar(u'\0')};
}

}  // namespace

AutoComplete::AutoComplete(services::Services& services) : services_(services) {
  SetWords({NoFileMarker()});
}

void AutoComplete::SetWords(std::vector<QString> words) {
  AutoCompleteWords_ = std::make_shared<const ui::CompletionEntries>(std::move(words));
}

bool AutoComplete::noFileLoaded() const {
  return AutoCompleteWords_->entries().front() == NoFileMarker();
}

void AutoComplete::StartUp() {
  if (!AutoCompleteFile().empty())
    LoadAutoCompleteFile(services_.MakeAbsolute(services::PathOfSetting(AutoCompleteFile())));
  ui::LetPendingEventsRun();
  if (services_.settings().AutoCompleteAtStartup) mnuAutoCompleteToggle_Click();
}

void AutoComplete::LoadAutoCompleteFile(const files::Path& path) {
  ReadWords read;
  {
    const ui::Hourglass hourglass;
    read = ReadWordFile(path);
  }
  if (read.couldNotBeOpened) {
    const QString shown = QString::fromStdU16String(text::Utf16OfBytes(path.native()));
    return SetWords(
        {Tr("Error: ") + shown + QStringLiteral(" : ") + QString::fromStdString(read.couldNotBeOpened->text)});
  }
  if (read.entries.empty()) read.entries.resize(kEntriesOfAnEmptyFile, QStringLiteral(""));
  SetWords(std::move(read.entries));
  if (!read.couldNotBeRead) return;
  services_.dialogs().ShowMessage(
      services_.forms().at(0), {.text = ui::ShortDisplayText(path.native()) + QStringLiteral("\r\n") + Tr("Error: ") +
                                        QString::fromStdString(read.couldNotBeRead->text),
                                .buttons = ui::Buttons::kOk,
                                .icon = ui::Icon::kNone});
}

void AutoComplete::mnuOpenAutoComplete_Click() {
  const ui::CommandScope scope;
  const files::Path chosen =
      services_.ShowOpenDialog({.owner = services_.forms().at(0),
                                .defaultExtension = ".txt",
                                .filter = QStringLiteral("Text Files (*.TXT)|*.TXT|All Files|*.*"),
                                .flags = services::kFileMustExist + services::kHideReadOnly,
                                .title = Tr("Select an Auto-Complete file"),
                                .initialFile = services::PathOfSetting(AutoCompleteFile())});
  if (!chosen.empty()) LoadAutoCompleteFile(chosen);
  services_.RefreshAllDocuments();
}

void AutoComplete::mnuAutoCompleteToggle_Click() {
  const ui::CommandScope scope;
  if (noFileLoaded()) {
    services::ShowError(services_.dialogs(), services_.forms().at(0),
                        Tr("No Auto-Complete file has been loaded.  Please click 'Help' for more information"));
    return;
  }
  AutoCompleteOn_ = !AutoCompleteOn_;
  services_.ShowAutoComplete();
  services_.RefreshAllDocuments();
}

}  // namespace autocomplete
