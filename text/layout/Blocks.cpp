#include "text/layout/Blocks.h"

#include "text/layout/TableLayout.h"

namespace text::layout {

Blocks::Blocks(const Document& document)
    : document_(document), store_(document.content().store()), revision_(document.revision()) {
  fonts_.Set(QFont(), 1);
  numbers_.Update(content(), std::nullopt);
}

void Blocks::Drop() {
  rows_.Clear();
  parts_.Clear();
  ++generation_;
}

void Blocks::DropAt(Units position) {
  rows_.DropAt(position);
  parts_.DropAt(position);
}

bool Blocks::Update(const std::function<void(const Change&)>& visit) {
  if (document_.revision() == revision_) return true;
  const auto changes = document_.ChangesSince(revision_);
  revision_ = document_.revision();
  const bool sameStore = store_.lock() == content().store();
  numbers_.Update(content(), sameStore ? changes : std::nullopt);
  if (!changes || !sameStore) {
    Drop();
    fonts_.Forget();
    store_ = content().store();
    preedit_.reset();
    return false;
  }
  ++generation_;
  for (const Change& change : *changes) {
    rows_.Apply(change);
    parts_.Apply(change);
    if (preedit_) preedit_->position = MapPosition(preedit_->position, change, Bias::kRight);
    visit(change);
  }
  if (preedit_) DropAt(preedit_->position);
  return true;
}

void Blocks::SetWidth(double width) {
  if (width == width_) return;
  width_ = width;
  Drop();
}

void Blocks::SetObjectHeight(double most) {
  if (most == objectHeight_) return;
  objectHeight_ = most;
  Drop();
}

void Blocks::SetLinkColor(const QColor& color) {
  if (color == fonts_.linkColor()) return;
  Drop();
  fonts_.SetLinkColor(color);
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
  if (preedit_) DropAt(preedit_->position);
  preedit_ = std::move(preedit);
  if (preedit_) {
    preedit_->position = content().Snap(preedit_->position, Bias::kLeft);
    DropAt(preedit_->position);
  }
  ++generation_;
}

BlockKey Blocks::KeyOf(const BlockSpan& span, double width) const {
  BlockKey key{span, width, content().ParaFormatOf(span.paragraphNumber), false, {}, 0};
  key.around = span.tableRow ? static_cast<uint32_t>(RowJoinedBelow(content(), span))
                             : BoxJoinsOf(content(), span.paragraphNumber);
  if (!span.startsParagraph()) {
    key.rightToLeft = IsParagraphRightToLeft(content(), span.paragraph, content().formats()[key.paragraph]);
  }
  return key;
}

// In a table's row those of all paragraphs: one that changes makes it another row.
QString Blocks::LabelOf(const BlockSpan& span) {
  QString labels;
  if (!span.startsParagraph()) return labels;
  for (Breaks i(0); i <= span.inner; ++i) {
    const Breaks paragraph = span.paragraphNumber + i;
    const ParaFormat& format = content().formats()[content().ParaFormatOf(paragraph)];
    if (format.bullet || format.list != ListId::kNone) labels += numbers_.LabelOf(content(), paragraph, format);
  }
  return labels;
}

std::shared_ptr<const LayoutRow> Blocks::Get(const BlockSpan& span, bool anyLabel) {
  BlockKey key = KeyOf(span, width_);
  if (anyLabel) {
    if (auto row = rows_.Find(key, true)) return row;
  }
  key.label = LabelOf(span);
  if (auto row = rows_.Find(key)) return row;
  auto row = span.tableRow ? LayRow(span) : std::make_shared<const LayoutRow>(LayBlock(key));
  rows_.Put(key, row);
  return row;
}

std::shared_ptr<const LayoutRow> Blocks::LayRow(const BlockSpan& span) {
  return LayTableRow(content(), span, width_, zoom(),
                     [this](const BlockSpan& part, double width) { return LayPart(part, width); });
}

std::shared_ptr<const LayoutBlock> Blocks::LayPart(const BlockSpan& span, double width) {
  BlockKey key = KeyOf(span, width);
  key.label = LabelOf(span);
  if (auto block = parts_.Find(key)) return block;
  auto block = LayBlock(key);
  parts_.Put(key, block);
  return block;
}

std::shared_ptr<const LayoutBlock> Blocks::LayBlock(const BlockKey& key) {
  const BlockSpan& span = key.span;
  const bool holdsPreedit =
      preedit_ && preedit_->position >= span.range.begin &&
      (preedit_->position < span.range.end || (preedit_->position == span.range.end && span.endsParagraph()));
  BlockText text = ReadBlockText(document_, span, holdsPreedit ? &*preedit_ : nullptr, key.label);
  const BlockStyle style{key.width, objectHeight_, defaultTab_, &defaultStops_, &content().formats(), &fonts_};
  return std::make_shared<const LayoutBlock>(std::move(text), style);
}

}  // namespace text::layout
