// The one way to open any path as a document.
#pragma once

#include "documents/DocumentTable.h"
#include "services/Services.h"

#include <string>

namespace documents {

class Opening {
 public:
  Opening(services::Services& services, DocumentTable& table) : services_(services), table_(table) {}

  // Selects the path's line in the project list. Then: brings the window forward that shows the path already, or hands
  // a shortcut (".lnk" at its end, which is taken off when the shortcut itself cannot be opened) to the desktop, or
  // loads the path into a new window.
  void OpenDocument(std::string& path);
  void mnuOpenFile_Click();

 private:
  bool ActivateOpen(const std::string& path);
  void OpenShortcut(std::string& path);

  services::Services& services_;
  DocumentTable& table_;
};

}  // namespace documents
