#include "text/layout/Blocks.h"

namespace text::layout {

Blocks::Blocks(const Document& document)
    : document_(document), store_(document.content().store()), revision_(document.revision()) {
  fonts_.Set(QFont(), 1);
}

void Blocks::Drop() {
  cache_.Clear();
  ++generation_;
}

bool Blocks::Update(const std::function<void(const Change&)>& visit) {
  if (document_.revision() == revision_) return true;
  const auto changes = document_.ChangesSince(revision_);
  revision_ = document_.revision();
  const bool sameStore = store_.lock() == content().store();
  if (!changes || !sameStore) {
    Drop();
    fonts_.Forget();
    store_ = content().store();
    preedit_.reset();
    return false;
  }
  ++generation_;
  for (const Change& change : *changes) {
    cache_.Apply(change);
    if (preedit_) preedit_->position = MapPosition(preedit_->position, change, Bias::kRight);
    visit(change);
  }
  if (preedit_) cache_.DropAt(preedit_->position);
  return true;
}

void Blocks::SetWidth(double width) {
  if (width == width_) return;
  width_ = width;
  Drop();
}

void Blocks::SetFont(const QFont& font, double zoom) {
  if (font == fonts_.defaultFont() && zoom == fonts_.zoom()) return;
  Drop();
  fonts_.Set(font, zoom);
}

void Blocks::SetDefaultTab(int twips) {
  if (twips == defaultTab_) return;
  defaultTab_ = twips;
  Drop();
}

void Blocks::SetDefaultStops(std::vector<int> twips) {
  if (twips == defaultStops_) return;
  defaultStops_ = std::move(twips);
  Drop();
}

void Blocks::SetPreedit(std::optional<Preedit> preedit) {
  if (preedit_) cache_.DropAt(preedit_->position);
  preedit_ = std::move(preedit);
  if (preedit_) {
    preedit_->position = content().Snap(preedit_->position, Bias::kLeft);
    cache_.DropAt(preedit_->position);
  }
  ++generation_;
}

std::shared_ptr<const LayoutBlock> Blocks::Get(const BlockSpan& span) {
  BlockKey key{span, content().ParaFormatOf(span.paragraphNumber)};
  const FormatTable& formats = content().formats();
  if (!span.startsParagraph())
    key.rightToLeft = IsParagraphRightToLeft(content(), span.paragraph, formats[key.paragraph]);
  if (auto block = cache_.Find(key)) return block;
  const bool holdsPreedit =
      preedit_ && preedit_->position >= span.range.begin &&
      (preedit_->position < span.range.end || (preedit_->position == span.range.end && span.endsParagraph()));
  BlockText text = ReadBlockText(document_, span, holdsPreedit ? &*preedit_ : nullptr);
  const BlockStyle style{width_, defaultTab_, &defaultStops_, &formats, &fonts_};
  auto block = std::make_shared<const LayoutBlock>(std::move(text), style);
  cache_.Put(key, block);
  return block;
}

}  // namespace text::layout
