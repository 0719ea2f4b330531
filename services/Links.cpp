#include "services/Links.h"

#include "ui/PendingEvents.h"
#include "ui/desktop/Shell.h"

#include <QCoreApplication>

#include <algorithm>

namespace services {
namespace {

QString Tr(const char* text) {
  return QCoreApplication::translate("Links", text);
}

// Other schemes may run something, or tell others that the text was read.
bool LeadsSomewhere(const QString& target) {
  const bool known = std::ranges::any_of(
      std::initializer_list<const char*>{"http://", "https://", "mailto:"},
      [&](const char* scheme) { return target.startsWith(QLatin1String(scheme), Qt::CaseInsensitive); });
  constexpr qsizetype kLongest = 2000;  // what does not fit a message cannot be judged
  return known && target.size() <= kLongest &&
         std::ranges::all_of(target, [](QChar c) { return c.isPrint() && !c.isSpace(); });
}

}  // namespace

void FollowLink(Services& services, ui::Form* owner, const QString& target) {
  const ui::CommandScope scope;
  if (!LeadsSomewhere(target)) {
    constexpr qsizetype kShown = 500;
    services.dialogs().ShowMessage(
        owner, {Tr("This link is not opened:\r\n\r\n%1\r\n\r\nOnly http, https and mailto addresses are.")
                    .arg(target.left(kShown)),
                ui::Buttons::kOk, ui::Icon::kInformation});
    return;
  }
  const ui::Answer answer = services.dialogs().ShowMessage(
      owner, {Tr("Open this address?\r\n\r\n%1").arg(target), ui::Buttons::kYesNo, ui::Icon::kQuestion});
  if (answer != ui::Answer::kYes) return;
  if (services.shell().Open(target.toStdString()) > ui::Shell::kLastFailure) return;
  services.dialogs().ShowMessage(owner, {Tr("No application opens this address:\r\n\r\n%1").arg(target)});
}

}  // namespace services
