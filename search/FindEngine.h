// Finds and replaces in the active document and, on demand, in all open ones. Outlasts the find dialog.
//
// Positions are the editor's: surface units, from 0.
#pragma once

#include "search/ReplaceRun.h"
#include "services/Services.h"

#include <functional>
#include <vector>

namespace search {

class FindEngine {
 public:
  // `asking` gives the window that messages belong to.
  FindEngine(services::Services& services, std::function<ui::Form*()> asking)
      : services_(services), asking_(std::move(asking)) {}

  QString SearchText;
  QString ReplaceText;  // what was left in the dialog's box
  int MatchCase = 0;    // the values of the dialog's boxes
  int MatchWholeWord = 0;
  bool SearchAllDocuments = false;
  bool NewSearch = false;    // text or options have changed since the last step
  int64_t LastFoundPos = 0;  // where the last step left the caret
  int FindAllStartDoc = 0;   // the slot in which a search of all documents began, 0 = none
  bool FocusFromFindAll = false;

  static constexpr int64_t kNoMore = -1;         // the user has been told, if there was anything to tell
  static constexpr int64_t kOtherDocument = -2;  // another document is active now: run the step again

  // One search step: the position of the match, now selected, or one of these two.
  int64_t FindInDocument();
  // Steps until there is a match or there are no more.
  int64_t FindNext();
  // Whether the selection is the search text to the letter.
  bool SelectionIsSearchText();
  // Replaces from the active document's caret on all that the steps find. The count goes to `show` whenever it has
  // grown. Cancelled, nothing has been changed.
  void ReplaceAll(const QString& replacement, const std::function<void(int64_t count)>& show);

 private:
  struct Pass {
    int slot = 0;
    text::LineEnd lineEnd = text::LineEnd::kCrLf;
    Loop loop = {};
    LoopResult result = {};
  };
  using Plan = std::vector<Pass>;
  class UndoSteps;

  ui::RichTextBox* Active() const { return services_.EditorOf(services_.ActiveSlot()); }
  int Options() const;
  int NextSlot(int slot, int start) const;
  std::optional<text::Range> Find(int64_t start, bool& cancelled);
  int64_t GoOn();
  int64_t EndStep(int64_t result);
  void ShowNotFound();
  // FindEngineReplace.cpp
  Pass PassFromHere() const;
  Plan MakePlan();
  bool RunPlan(Plan& plan, const QString& replacement);
  bool Fits(const Pass& pass) const;
  void Apply(const Pass& pass, UndoSteps& steps);
  bool Work(const QString& text, int64_t total, const std::function<void(const text::SearchProgress&)>& work);

  services::Services& services_;
  const std::function<ui::Form*()> asking_;
};

}  // namespace search
