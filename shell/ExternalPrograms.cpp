#include "shell/ExternalPrograms.h"

#include "services/Messages.h"
#include "shell/help/frmHelpCheck.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/Shell.h"

#include <QCoreApplication>

namespace shell {
namespace {

QString Tr(const char* text) {
  return QCoreApplication::translate("ExternalPrograms", text);
}

constexpr size_t kPlaceholder = 3;  // "%1" and the blank behind it

}  // namespace

std::vector<std::string> SplitArguments(std::string_view line) {
  std::vector<std::string> arguments;
  bool quoted = false, begun = false;
  for (const char c : line) {
    const bool parts = c == ' ' && !quoted;
    if (c == '"') quoted = !quoted;
    if (!parts && !begun) arguments.emplace_back();
    begun = !parts;
    if (!parts && c != '"') arguments.back() += c;
  }
  return arguments;
}

bool ExternalPrograms::Run(const std::string& program, const std::vector<std::string>& arguments) {
  std::string named = services::PathOfSetting(program).native();
  if (named.empty()) return false;
  if (named.find('/') != std::string::npos) named = services_.MakeAbsolute(named).native();
  return services_.shell().Run(named, arguments, services_.MakeAbsolute(".")) > ui::Shell::kLastFailure;
}

bool ExternalPrograms::OpenWhole(const std::string& command) {
  if (command.empty()) return false;
  if (!command.starts_with('/') && ui::HasScheme(command))
    return services_.shell().Open(command) > ui::Shell::kLastFailure;
  if (Run(command, {})) return true;
  const files::Path document = services_.MakeAbsolute(services::PathOfSetting(command));
  return services_.shell().Open(document.native()) > ui::Shell::kLastFailure;
}

void ExternalPrograms::StartProtocolApp(const std::string& command) {
  const ui::CommandScope scope;
  if (OpenWhole(command)) return;
  const size_t percent = command.find('%');
  if (percent != std::string::npos && percent > 0) {
    // The character before the placeholder parts it from the program.
    std::string program = command.substr(0, percent - 1);
    if (program.size() > 1 && program.starts_with('"') && program.ends_with('"'))
      program = program.substr(1, program.size() - 2);
    const size_t rest = std::min(percent + kPlaceholder, command.size());
    if (Run(program, SplitArguments(std::string_view(command).substr(rest)))) return;
  }
  services::ShowError(services_.dialogs(), services_.forms().at(0),
                      Tr("Error: There was a problem starting ") + ui::DisplayText(command));
}

void ExternalPrograms::RunSibling(const char* name, const QString& failure) {
  const ui::CommandScope scope;
  const std::string directory = services_.MakeAbsolute(".").native();
  if (!Run(help_.FindDataFile(name).native(), {"," + directory}))
    services::ShowError(services_.dialogs(), services_.forms().at(0), failure);
}

void ExternalPrograms::mnuVelloraFTP_Click() {
  RunSibling("VelloraFTP.exe", Tr("Error: There was a problem running Vellora FTP"));
}
void ExternalPrograms::mnuSAR_Click() {
  RunSibling("Trawlex.exe", Tr("Error: There was a problem running the Trawlex utility"));
}

void ExternalPrograms::mnuUserManual_Click() {
  const ui::CommandScope scope;
  if (!help_.ShowManual()) ShowHelpNotice();
}

// Where no program of the desktop reads such files, the help window does.
void ExternalPrograms::mnuHTMLTagRef_Click() {
  const ui::CommandScope scope;
  const files::Path reference = help_.FindDataFile("Htmlref.chm");
  if (services_.shell().Open(reference.native()) > ui::Shell::kLastFailure) return;
  if (!help_.ShowFile(reference)) ShowHelpNotice();
}

void ExternalPrograms::ShowHelpNotice() {
  frmHelpCheck notice(services_, help_.FindDataFile("hhupd.exe").parent_path());
  services_.dialogs().ShowModal(notice);
}

void ExternalPrograms::PrepareAbout(std::string_view version) {
  About_ = std::make_unique<About>(services_);
  About_->SetProduct(version);
}

void ExternalPrograms::mnuAbout_Click() {
  const ui::CommandScope scope;
  if (About_) services_.dialogs().ShowModal(*About_);
}

}  // namespace shell
