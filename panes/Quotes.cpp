#include "panes/Quotes.h"

#include "files/OpenFile.h"
#include "panes/QuotesFile.h"
#include "ui/Hourglass.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/desktop/Clipboard.h"

#include <QCoreApplication>
#include <QRandomGenerator>

namespace panes {
namespace {

QString Tr(const char* text) {
  return QCoreApplication::translate("Quotes", text);
}

std::string ErrorLine(const files::Error& error, const files::Path& path) {
  return Tr("Error: ").toStdString() + path.native() + " : " + std::to_string(error.number);
}

}  // namespace

void Quotes::mnuLoadQuotes_Click() {
  const ui::CommandScope scope;
  const bool visible = pane_ && pane_->isShown();
  const files::Path chosen =
      services_.ShowOpenDialog({.owner = services_.forms().at(0),
                                .defaultExtension = ".txt",
                                .filter = QStringLiteral("Text Files (*.TXT)|*.TXT|All Files|*.*"),
                                .flags = services::kFileMustExist + services::kHideReadOnly,
                                .title = Tr("Select a quotes or tagline file"),
                                .initialFile = visible ? files::Path(pane_->caption()) : files::Path()});
  if (!chosen.empty()) LoadQuotesFile(chosen);
}

void Quotes::LoadQuotesFile(const files::Path& path, ui::Keyboard keyboard) {
  const ui::CommandScope scope;
  const ui::Hourglass hourglass;
  ReadQuotes read;
  const auto stamp = files::StampOf(path);
  services_.dialogs().RunWork(
      services_.forms().at(0), Tr("Opening %1").arg(ui::DisplayText(path.native())), stamp ? stamp->size : 0,
      [&](ui::WorkPort& port) { read = ReadQuotesFile(path, [&port](int64_t done) { return port.Report(done); }); });
  if (read.cancelled) return;
  std::vector<ui::ListLine> lines(read.quotes.size());
  for (size_t i = 0; i < lines.size(); ++i) lines[i].text = std::move(read.quotes[i]);
  for (const auto& error : {read.couldNotBeOpened, read.couldNotBeRead})
    if (error) lines.push_back({ErrorLine(*error, path)});
  if (!pane_) pane_ = std::make_unique<frmQuotes>(services_, *this);
  pane_->List1().SetLines(std::move(lines));
  pane_->SetCaption(path.native());
  Toggle(!read.couldNotBeOpened);
  if (pane_) pane_->Show(keyboard);
  ui::LetPendingEventsRun();
  if (pane_ && keyboard == ui::Keyboard::kTake) pane_->List1().setFocus();
}

void Quotes::Release() {
  closed_.Take(std::move(pane_));
  Toggle(false);
}

void Quotes::Toggle(bool loaded) {
  loaded_ = loaded;
  services_.ToggleQuotesOptions(loaded);
}

void Quotes::mnuFindQuote_Click() {
  const ui::CommandScope scope;
  if (!loaded_) return;
  // The keyboard goes back to where it was.
  ui::Form* owner = pane_->widget()->isActiveWindow() ? static_cast<ui::Form*>(pane_.get()) : services_.forms().at(0);
  const auto answer = services_.dialogs().AskText(owner, Tr("Input the search string"), QuoteSearchText_);
  if (!answer || answer->isEmpty()) return;
  QuoteSearchText_ = *answer;
  QuoteSearchIndex_ = -1;
  mnuFindNextQuote_Click();
}

void Quotes::mnuFindNextQuote_Click() {
  const ui::CommandScope scope;
  if (QuoteSearchText_.isEmpty()) return mnuFindQuote_Click();
  if (!loaded_) return;
  const ui::Hourglass hourglass;
  const int count = pane_->List1().count();
  QuoteSearchIndex_ = FindFrom(QuoteSearchIndex_ < count - 1 ? QuoteSearchIndex_ + 1 : 0);
  if (QuoteSearchIndex_ < count) Show(QuoteSearchIndex_);
}

int Quotes::FindFrom(int index) const {
  const ui::ChoiceList& list = pane_->List1();
  const auto holds = [&](const std::string& quote) {
    return QString::fromUtf8(quote.data(), static_cast<qsizetype>(quote.size()))
        .contains(QuoteSearchText_, Qt::CaseInsensitive);
  };
  while (index < list.count() && !holds(list.line(index).text)) ++index;
  return index;
}

void Quotes::Show(int index) {
  pane_->List1().Choose(index);
  pane_->List1().ScrollToTop(index);
}

void Quotes::mnuRandom_Click() {
  const ui::CommandScope scope;
  if (!loaded_ || pane_->List1().count() == 0) return;
  Show(QRandomGenerator::global()->bounded(pane_->List1().count()));
}

void Quotes::mnuCopyQuote_Click() {
  if (!pane_ || pane_->List1().Choice() < 0) return;
  ui::SetClipboardText(pane_->List1().line(pane_->List1().Choice()).text);
}

}  // namespace panes
