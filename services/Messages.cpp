#include "services/Messages.h"

#include "ui/PathText.h"

#include <QCoreApplication>

namespace services {

QString FileText(std::string_view path, const QString& text) {
  return QCoreApplication::translate("Messages", "File: ") + ui::ShortDisplayText(path) + QStringLiteral("\r\n") + text;
}

QString ErrorText(std::string_view subject, const files::Error& error) {
  return QCoreApplication::translate("Messages", "Error: ") + ui::ShortDisplayText(subject) + QStringLiteral("\r\n") +
         QString::fromStdString(error.text);
}

void ShowError(ui::Dialogs& dialogs, ui::Form* owner, const QString& text) {
  dialogs.ShowMessage(owner, {.text = text, .buttons = ui::Buttons::kOk, .icon = ui::Icon::kExclamation});
}

void ShowNoDocument(Services& services) {
  ShowError(services.dialogs(), services.forms().at(0),
            QCoreApplication::translate(
                "Messages", "Error: No document has been selected.  Please select a document, and then try again."));
}

files::Path AskForDocument(Services& services, const PathFilter& filter) {
  return services.ShowOpenDialog({.owner = services.forms().at(0),
                                  .defaultExtension = filter.extension,
                                  .filter = services.documentFilter(),
                                  .flags = kCreatePrompt + kHideReadOnly,
                                  .title = QCoreApplication::translate("Messages", "Select a document to open"),
                                  .filterIndex = filter.index});
}

}  // namespace services
