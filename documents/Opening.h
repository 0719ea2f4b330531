// The one way to open any path as a document.
#pragma once

#include "documents/DocumentTable.h"
#include "services/Services.h"

#include <string>

namespace documents {

class Opening {
 public:
  Opening(services::Services& services, DocumentTable& table) : services_(services), table_(table) {}

  // Brings the window forward that shows the path already, else loads it into a new one.
  void OpenDocument(std::string& path);
  void mnuOpenFile_Click();

 private:
  bool ActivateOpen(const std::string& path);

  services::Services& services_;
  DocumentTable& table_;
};

}  // namespace documents
