// Lays out blocks of a document as they are asked for, with the settings of one view.
#pragma once

#include "text/layout/BlockCache.h"
#include "text/layout/LayoutRow.h"
#include "text/layout/ViewLayout.h"
#include "text/outline/ListNumbers.h"

#include <memory>
#include <optional>

namespace text::layout {

class Blocks {
 public:
  explicit Blocks(const Document& document);

  const Document& document() const { return document_; }
  const Content& content() const { return document_.content(); }
  // Grows whenever the text or a setting changed, so that any height may be another.
  uint64_t generation() const { return generation_; }

  // Takes in the document's changes, in order. False when they are not known: everything was dropped.
  bool Update(const std::function<void(const Change&)>& visit);

  void SetWidth(double width);
  void SetObjectHeight(double most);  // pixels; pictures are made smaller than they say
  void SetLinkColor(const QColor& color);
  void SetFont(const QFont& font, double zoom);
  void SetDefaultTab(int twips);
  void SetDefaultStops(std::vector<int> twips);
  void SetPreedit(std::optional<Preedit> preedit);
  void SetCapacity(size_t rows, size_t parts) {
    rows_.SetCapacity(rows);
    parts_.SetCapacity(parts);
  }

  double zoom() const { return fonts_.zoom(); }
  const QFont& font() const { return fonts_.defaultFont(); }
  const std::optional<Preedit>& preedit() const { return preedit_; }
  const FormatFonts& fonts() const { return fonts_; }
  size_t cached() const { return rows_.size(); }
  ListNumbers& numbers() { return numbers_; }

  std::shared_ptr<const LayoutRow> Get(const BlockSpan& span) { return Get(span, false); }
  // Where only heights count: numbers of lists may be old ones.
  std::shared_ptr<const LayoutRow> GetRoughly(const BlockSpan& span) { return Get(span, true); }

 private:
  void Drop();
  void DropAt(Units position);
  std::shared_ptr<const LayoutRow> Get(const BlockSpan& span, bool anyLabel);
  std::shared_ptr<const LayoutRow> LayRow(const BlockSpan& span);
  std::shared_ptr<const LayoutBlock> LayPart(const BlockSpan& span, double width);
  std::shared_ptr<const LayoutBlock> LayBlock(const BlockKey& key);
  BlockKey KeyOf(const BlockSpan& span, double width) const;
  QString LabelOf(const BlockSpan& span);

  const Document& document_;
  std::weak_ptr<TextStore> store_;  // whose formats the looks are made of
  Revision revision_;
  uint64_t generation_ = 1;
  FormatFonts fonts_;
  BlockCache<LayoutRow> rows_;
  BlockCache<LayoutBlock> parts_;  // of tables' rows
  ListNumbers numbers_;
  double width_ = 0;
  double objectHeight_ = kMaxPixels;
  int defaultTab_ = 720;
  std::vector<int> defaultStops_;
  std::optional<Preedit> preedit_;
};

}  // namespace text::layout
