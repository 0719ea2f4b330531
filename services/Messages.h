// The messages that more than one feature shows.
#pragma once

#include "files/Result.h"
#include "ui/Dialogs.h"

#include <string_view>

namespace services {

// "File: " + path + CR LF + text.
QString FileText(std::string_view path, const QString& text);

// "Error: " + subject + CR LF + the system's text.
QString ErrorText(std::string_view subject, const files::Error& error);

// With an OK button and the exclamation icon.
void ShowError(ui::Dialogs& dialogs, ui::Form* owner, const QString& text);

}  // namespace services
