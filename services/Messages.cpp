#include "services/Messages.h"

#include "ui/PathText.h"

#include <QCoreApplication>

namespace services {

QString FileText(std::string_view path, const QString& text) {
  return QCoreApplication::translate("Messages", "File: ") + ui::DisplayText(path) + QStringLiteral("\r\n") + text;
}

QString ErrorText(std::string_view subject, const files::Error& error) {
  return QCoreApplication::translate("Messages", "Error: ") + ui::DisplayText(subject) + QStringLiteral("\r\n") +
         QString::fromStdString(error.text);
}

void ShowError(ui::Dialogs& dialogs, ui::Form* owner, const QString& text) {
  dialogs.ShowMessage(owner, {.text = text, .buttons = ui::Buttons::kOk, .icon = ui::Icon::kExclamation});
}

}  // namespace services
