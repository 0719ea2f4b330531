// The messages and questions that more than one feature shows.
#pragma once

#include "services/Services.h"

#include <string_view>

namespace services {

// "File: " + path + CR LF + text.
QString FileText(std::string_view path, const QString& text);

// "Error: " + subject + CR LF + the system's text.
QString ErrorText(std::string_view subject, const files::Error& error);

// With an OK button and the exclamation icon.
void ShowError(ui::Dialogs& dialogs, ui::Form* owner, const QString& text);

// There is no document for a command of documents.
void ShowNoDocument(Services& services);

// "Select a document to open"; the path is empty when cancelled.
files::Path AskForDocument(Services& services, const PathFilter& filter);

}  // namespace services
