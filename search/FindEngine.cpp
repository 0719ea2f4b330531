#include "search/FindEngine.h"

#include "services/Messages.h"
#include "ui/PendingEvents.h"
#include "ui/editor/RichTextBox.h"
#include "ui/frame/ChildArea.h"

#include <QCoreApplication>

namespace search {
namespace {

QString Tr(const char* text) {
  return QCoreApplication::translate("Find", text);
}

// So many units are searched at once, in a few milliseconds.
constexpr int64_t kAtOnce = 4 << 20;

// A search text may be a whole page.
QString Shown(QString text) {
  constexpr qsizetype kHalf = 500;
  if (text.size() > 3 * kHalf) text = text.first(kHalf) + QStringLiteral("\u2026") + text.last(kHalf);
  for (qsizetype i = 0; i < text.size(); ++i) {
    const bool pair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
    if (pair) {
      ++i;
    } else if (text[i].isSurrogate()) {
      text[i] = QChar::ReplacementCharacter;
    }
  }
  return text;
}

}  // namespace

int FindEngine::Options() const {
  return (MatchCase != 0 ? ui::kFindMatchCase : 0) | (MatchWholeWord != 0 ? ui::kFindWholeWord : 0);
}

// Runs work on another thread. False: cancelled.
bool FindEngine::Work(const QString& text, int64_t total,
                      const std::function<void(const text::SearchProgress&)>& work) {
  bool cancelled = false;
  services_.dialogs().RunWork(asking_(), text, total, [&](ui::WorkPort& port) {
    work([&port](int64_t bytes) { return port.Report(bytes); });
    cancelled = port.cancelled();
  });
  return !cancelled;
}

// --- The search step

int64_t FindEngine::FindNext() {
  int64_t result = kOtherDocument;
  while (result == kOtherDocument) result = FindInDocument();
  ui::Form* document = services_.forms().Find(services_.documentArea().current());
  if (result >= 0 && document && document->windowState() == ui::WindowState::kMinimized)
    document->SetWindowState(ui::WindowState::kNormal);
  return result;
}

int64_t FindEngine::FindInDocument() {
  const ui::CommandScope scope;
  ui::RichTextBox* box = Active();
  if (!box) return kNoMore;
  bool cancelled = false;
  const auto match = Find(NextStart(box->SelStart(), LastFoundPos, NewSearch), cancelled);
  box = Active();
  if (cancelled || !box) return kNoMore;
  if (!match) return GoOn();
  box->SelectFound(*match);
  return EndStep(box->SelStart());
}

std::optional<text::Range> FindEngine::Find(int64_t start, bool& cancelled) {
  while (const ui::RichTextBox* box = Active()) {
    const text::Content content = box->document().content();
    if (content.surfaceSize().value() - start <= kAtOnce)
      return ui::RichTextBox::FindIn(content, SearchText, start, Options());
    std::optional<text::Range> match;
    cancelled = !Work(Tr("Searching"), content.sums().bytes.value(), [&](const text::SearchProgress& progress) {
      match = ui::RichTextBox::FindIn(content, SearchText, start, Options(), progress);
    });
    box = Active();
    // An input method may have delivered text meanwhile.
    if (cancelled || (box && box->document().content().SameAs(content))) return match;
  }
  return std::nullopt;
}

// The next open document, round the table; `start` itself, even if it has been closed.
int FindEngine::NextSlot(int slot, int start) const {
  do {
    slot = slot < services_.DocumentSlots() ? slot + 1 : 1;
  } while (!services_.EditorOf(slot) && slot != start);
  return slot;
}

// What a step does when there is no match (any more) in the active document.
int64_t FindEngine::GoOn() {
  int64_t result = kNoMore;
  const int slot = services_.ActiveSlot();
  if (!SearchAllDocuments || slot == FindAllStartDoc) {
    ShowNotFound();
  } else {
    if (FindAllStartDoc == 0) FindAllStartDoc = slot;
    const int next = NextSlot(slot, FindAllStartDoc);
    // A free one: the document in which the search began has been closed.
    if (services_.EditorOf(next)) {
      FocusFromFindAll = true;
      services_.SetFocusFromFindAll(next);
      FocusFromFindAll = false;
      if (services_.ActiveSlot() == next) result = kOtherDocument;
    }
  }
  if (ui::RichTextBox* box = Active()) box->SetSelStart(0);
  return EndStep(result);
}

int64_t FindEngine::EndStep(int64_t result) {
  ui::LetPendingEventsRun();
  const ui::RichTextBox* box = Active();
  LastFoundPos = box ? box->SelStart() : 0;
  NewSearch = false;
  return result;
}

void FindEngine::ShowNotFound() {
  const QString text = Tr("Cannot find any (more) occurrences of\r\n\"%1\"");
  services_.dialogs().ShowMessage(asking_(), {text.arg(Shown(SearchText)), ui::Buttons::kOk, ui::Icon::kNone});
}

// --- Replacing

bool FindEngine::SelectionIsSearchText() {
  const ui::RichTextBox* box = Active();
  return box && box->SelLength() == SearchText.size() && box->SelText() == SearchText;
}

}  // namespace search
