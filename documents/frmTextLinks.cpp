// Links in the text.
#include "documents/frmText.h"
#include "services/Services.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/Shell.h"

#include <algorithm>

namespace documents {
namespace {

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

// What a link shows may be anything, so its target is shown in full before it is opened.
void frmText::FollowLink(const QString& target) {
  const ui::CommandScope scope;
  if (!LeadsSomewhere(target)) {
    constexpr qsizetype kShown = 500;
    services_.dialogs().ShowMessage(
        this, {tr("This link is not opened:\r\n\r\n%1\r\n\r\nOnly http, https and mailto addresses are.")
                   .arg(target.left(kShown)),
               ui::Buttons::kOk, ui::Icon::kInformation});
    return;
  }
  const ui::Answer answer = services_.dialogs().ShowMessage(
      this, {tr("Open this address?\r\n\r\n%1").arg(target), ui::Buttons::kYesNo, ui::Icon::kQuestion});
  if (answer != ui::Answer::kYes) return;
  if (services_.shell().Open(target.toStdString()) > ui::Shell::kLastFailure) return;
  services_.dialogs().ShowMessage(this, {tr("No application opens this address:\r\n\r\n%1").arg(target)});
}

}  // namespace documents
