// Counts the paragraphs of lists and spells their labels.
//
// What was counted is kept at checkpoints. An edit throws those behind it away, unless it changed no paragraph's list,
// so a number near the last one that was asked for costs a walk of some hundred paragraphs at most.
#pragma once

#include "text/Document.h"

#include <QString>

#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace text::layout {

constexpr size_t kListLevels = 9;

struct ListCounts {
  std::array<int32_t, kListLevels> counts{};
  uint16_t counted = 0;  // bit per level
};

class ListNumbers {
 public:
  // The changes lead from the content that was seen last to this one; nothing when they are not known.
  void Update(const Content& content, const std::optional<std::vector<Change>>& changes);
  // The paragraph's label as it is shown, empty without one.
  QString LabelOf(const Content& content, Breaks paragraph, const ParaFormat& format);
  // Of a text that is the end of a longer one: what was counted before its beginning.
  void StartBehind(const Content& whole, Breaks paragraph);

 private:
  // Everything counted before a paragraph.
  struct State {
    Breaks paragraph;
    ListId previous = ListId::kNone;                   // of the paragraph before
    std::vector<std::pair<ListId, ListCounts>> lists;  // ascending
    ListCounts& Of(ListId list);
  };
  static constexpr int64_t kStep = 256;  // paragraphs between checkpoints, at least

  bool ChangesNoList(const Content& content, const Change& change) const;
  const State& StateBefore(const Content& content, Breaks paragraph);
  void Walk(const Content& content, Breaks to);
  void Count(const FormatTable& formats, const ParaFormat& format);

  Content content_;
  State start_;
  std::vector<State> checkpoints_;  // ascending by paragraph
  State at_;                        // where the last walk ended
};

// Shown for the level's number in its style: 4, IV, iv, D, d, 4th.
QString NumberText(NumberStyle style, int32_t number);

}  // namespace text::layout
