#include "panes/frmQuotes.h"

#include "panes/Quotes.h"
#include "ui/PathText.h"
#include "ui/PendingEvents.h"
#include "ui/frame/ChildArea.h"

namespace panes {
namespace {

constexpr QSize kFirstSize = {340, 170};
constexpr size_t kMostInToolTip = 4000;

}  // namespace

frmQuotes::frmQuotes(services::Services& services, Quotes& quotes)
    : PaneForm(services.forms(), "frmQuotes", *services.forms().at(0), new ui::ChoiceList),
      services_(services),
      quotes_(quotes),
      List1_(static_cast<ui::ChoiceList*>(content())) {
  List1_->setObjectName(QStringLiteral("List1"));
  List1_->setAccessibleName(tr("Quotes"));
  ConnectList();
  OwnKey("Ctrl+F", [this] { quotes_.mnuFindQuote_Click(); });
  OwnKey("F3", [this] { quotes_.mnuFindNextQuote_Click(); });
  SetSize(kFirstSize);
}

void frmQuotes::ConnectList() {
  List1_->SetToolTips([this](int index) {
    const std::string& quote = List1_->line(index).text;
    return quote.size() <= kMostInToolTip ? ui::ChoiceList::DisplayText(quote) : ui::ShortDisplayText(quote);
  });
  const auto copy = [this] {
    const ui::CommandScope scope;
    services_.forms().Guarded([this] { quotes_.mnuCopyQuote_Click(); });
  };
  connect(List1_, &ui::ListBox::Opened, this, copy);
  connect(List1_, &ui::ChoiceList::CopyRequested, this, copy);
  connect(List1_, &ui::ChoiceList::Picked, this, [this, copy] {
    if (services_.settings().AutoCopy) copy();
  });
  connect(List1_, &ui::ListBox::MenuRequested, this,
          [this](const QPoint& position) { services_.ShowQuotesMenu(position); });
}

void frmQuotes::Form_Resize() {
  MoveToEdges(Qt::RightEdge | Qt::BottomEdge, services_.documentArea().OnScreen());
}

bool frmQuotes::Close() {
  const ui::CommandScope scope;
  Unload();
  return true;
}

void frmQuotes::RecordState() {
  services_.settings().QuotesState = static_cast<int>(windowState());
}

void frmQuotes::Unload() {
  RecordState();
  TakeDown();
  quotes_.Release();
}

}  // namespace panes
