// Replace All. The texts are computed first, all of them on another thread; then the steps are gone through as if they
// had just been taken.
#include "search/FindEngine.h"
#include "ui/Hourglass.h"
#include "ui/PendingEvents.h"
#include "ui/editor/RichTextBox.h"

#include <QCoreApplication>
#include <QPointer>

namespace search {

// What is done in a document before Close() is one undo step.
class FindEngine::UndoSteps {
 public:
  UndoSteps() = default;
  UndoSteps(const UndoSteps&) = delete;
  UndoSteps& operator=(const UndoSteps&) = delete;
  ~UndoSteps() { Close(); }

  void Open(ui::RichTextBox* box) {
    for (const QPointer<ui::RichTextBox>& open : open_)
      if (open == box) return;
    open_.emplace_back(box);
    box->document().BeginGroup();
  }
  void Close() {
    for (const QPointer<ui::RichTextBox>& box : open_)
      if (box) box->document().EndGroup();
    open_.clear();
  }

 private:
  std::vector<QPointer<ui::RichTextBox>> open_;
};

FindEngine::Pass FindEngine::PassFromHere() const {
  const ui::RichTextBox& box = *Active();
  return {services_.ActiveSlot(),
          box.document().properties().lineEnd,
          {box.document().content(), box.SelStart(), LastFoundPos, NewSearch}};
}

// In the order of the steps: the text from the caret on, the other documents, and the first one again.
FindEngine::Plan FindEngine::MakePlan() {
  Plan plan = {PassFromHere()};
  const Pass first = plan.front();
  if (SelectionIsSearchText()) {
    const text::Content& content = first.loop.content;
    const text::SurfaceUnits begin(first.loop.selStart), end = begin + text::SurfaceUnits(SearchText.size());
    plan.front().loop.replaceFirst = {content.FromSurface(begin, text::Bias::kLeft),
                                      content.FromSurface(end, text::Bias::kRight)};
  }
  if (!SearchAllDocuments) return plan;
  for (int slot = NextSlot(first.slot, first.slot); slot != first.slot; slot = NextSlot(slot, first.slot)) {
    const text::Document& document = services_.EditorOf(slot)->document();
    plan.push_back({slot, document.properties().lineEnd, {document.content()}});
  }
  plan.push_back(first);
  return plan;
}

// False: cancelled.
bool FindEngine::RunPlan(Plan& plan, const QString& replacement) {
  int64_t total = 0;
  for (const Pass& pass : plan) total += pass.loop.content.sums().bytes.value();
  const QString text = QCoreApplication::translate("Find", "Replacing");
  return Work(text, total, [&](const text::SearchProgress& progress) {
    int64_t before = 0;
    const Pass& first = plan.front();
    for (Pass& pass : plan) {
      const int64_t bytes = pass.loop.content.sums().bytes.value();
      if (&pass != &first && pass.slot == first.slot) pass.loop = {first.result.content};
      const ReplaceRun run(SearchText, Options(), replacement, pass.lineEnd);
      auto result = run.Run(pass.loop, [&](int64_t done) { return progress(before + done); });
      if (!result) return;
      pass.result = std::move(*result);
      before += bytes;
    }
  });
}

bool FindEngine::Fits(const Pass& pass) const {
  return pass.slot == services_.ActiveSlot() && Active()->document().content().SameAs(pass.loop.content);
}

void FindEngine::Apply(const Pass& pass, UndoSteps& steps) {
  ui::RichTextBox* box = Active();
  const LoopResult& result = pass.result;
  if (!result.content.SameAs(pass.loop.content)) {
    steps.Open(box);
    box->document().Commit(result.content, result.change, text::EditKind::kCommand,
                           {result.first.begin, result.first.end});
    box->DocumentEdited();
  }
  if (result.selection) {
    const int64_t begin = result.content.ToSurface(result.selection->begin).value();
    box->SetSelStart(begin);
    box->SetSelLength(result.content.ToSurface(result.selection->end).value() - begin);
  }
  if (!result.lastFound) return;
  LastFoundPos = *result.lastFound;
  NewSearch = false;
}

void FindEngine::ReplaceAll(const QString& replacement, const std::function<void(int64_t count)>& show) {
  const ui::CommandScope scope;
  const ui::Hourglass hourglass;
  FindAllStartDoc = 0;
  if (!Active()) return;
  Plan plan = MakePlan();
  if (!RunPlan(plan, replacement)) return;
  UndoSteps steps;
  int64_t count = 0;
  size_t next = 0;
  for (int64_t result = kOtherDocument; result == kOtherDocument;) {
    // An input method may have delivered text, or a document may have gone meanwhile.
    while (next == plan.size() || !Fits(plan[next])) {
      if (!Active()) return;
      plan = {PassFromHere()};
      next = 0;
      if (!RunPlan(plan, replacement)) return;
    }
    const Pass& pass = plan[next++];
    Apply(pass, steps);
    if (pass.result.count > 0) show(count += pass.result.count);
    if (next == plan.size()) steps.Close();
    result = GoOn();
  }
}

}  // namespace search
