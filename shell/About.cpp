#include "shell/About.h"

#include "services/Messages.h"
#include "ui/desktop/Shell.h"

#include <cstdlib>

namespace shell {
namespace {

constexpr const char* kPages[] = {QUILLMARK_HOME_PAGE, QUILLMARK_HOME_PAGE "support/"};

}  // namespace

About::About(services::Services& services) : ModalForm(services.forms().at(0)->widget()), services_(services) {
  setObjectName(QStringLiteral("About"));
  Label1_ = new ui::Label("Label1", {});
  auto* what = new ui::Label("Label2", tr("An editor for plain text, HTML and rich text."));
  std::vector<std::vector<ui::Control*>> rows = {{Label1_}, {what}};
  const QString names[] = {tr("Home page:"), tr("Help and news:")};
  for (int i = 0; i < 2; ++i) {
    const QString number = QString::number(i);
    auto* name = new ui::Label(qPrintable(QStringLiteral("Label3(%1)").arg(number)), names[i]);
    auto* page = new ui::Label(qPrintable(QStringLiteral("Label4(%1)").arg(number)), QString::fromLatin1(kPages[i]));
    page->setWordWrap(false);
    auto* go = new ui::Button(qPrintable(QStringLiteral("Command2(%1)").arg(number)), tr("Go"),
                              [this, i] { Command2_Click(i); });
    go->setAutoDefault(false);
    go->setAccessibleName(tr("Go to %1").arg(page->text()));
    rows.push_back({name, page, go});
  }
  auto* ok = new ui::Button("Command1", tr("OK"), [this] { accept(); });
  ok->setDefault(true);
  rows.push_back({ok});
  ui::LayOutInRows(*this, rows);
  ok->setFocus();
}

void About::SetProduct(std::string_view version) {
  const std::string text(version);
  const size_t dot = text.find('.');
  const int major = std::atoi(text.c_str()), minor = dot == std::string::npos ? 0 : std::atoi(text.c_str() + dot + 1);
  setWindowTitle(tr("About Quillmark"));
  Label1_->SetText(QStringLiteral("Quillmark %1.%2").arg(major).arg(minor, 2, 10, QLatin1Char('0')));
  setAccessibleDescription(Label1_->text());
}

void About::Command2_Click(int index) {
  if (services_.shell().Open(kPages[index]) > ui::Shell::kLastFailure) return;
  services::ShowError(services_.dialogs(), services_.forms().at(0),
                      tr("An error occurred when trying to open your browser.  Check your availiable memory, and make "
                         "sure there is an application associated with .html files."));
}

}  // namespace shell
