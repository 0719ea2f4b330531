// Hands jobs to other programs: mail, news, FTP, the two siblings, the manual and the home page.
#pragma once

#include "services/OtherPrograms.h"
#include "services/Services.h"
#include "shell/About.h"
#include "shell/help/Help.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace shell {

class ExternalPrograms final : public services::OtherPrograms {
 public:
  // `folder` is the application folder.
  ExternalPrograms(services::Services& services, Help& help, files::Path folder)
      : services_(services), help_(help), folder_(std::move(folder)) {}

  // An address, a program or a document. What cannot be started as a whole and has a "%" is a program with arguments
  // behind a placeholder.
  void StartProtocolApp(const std::string& command);
  // At the start of the program: makes the box with caption and version.
  void PrepareAbout(std::string_view version);

  void mnuIntEmail_Click() override { StartProtocolApp(services_.settings().EmailApp); }
  void mnuIntNews_Click() override { StartProtocolApp(services_.settings().NewsApp); }
  void mnuIntSnews_Click() override { StartProtocolApp(services_.settings().SNewsApp); }
  void mnuIntFTP_Click() override { StartProtocolApp(services_.settings().FTPApp); }
  void mnuVelloraFTP_Click() override;
  void mnuSAR_Click() override;
  void mnuUserManual_Click() override;
  void mnuHTMLTagRef_Click() override;
  void mnuAbout_Click() override;

 private:
  bool OpenWhole(const std::string& command);
  bool Run(const std::string& program, const std::vector<std::string>& arguments);
  void RunSibling(const char* name, const QString& failure);
  void ShowHelpNotice();

  services::Services& services_;
  Help& help_;
  const files::Path folder_;
  std::unique_ptr<About> About_;
};

// The arguments in a line: parted by blanks, those in double quotes whole.
std::vector<std::string> SplitArguments(std::string_view line);

}  // namespace shell
