// Goes through a content from its beginning to its end. Each question costs what lies between it and the one before,
// where Content finds every place anew.
#pragma once

#include "text/Content.h"

#include <vector>

namespace text::rtf {

class RtfCursor {
 public:
  explicit RtfCursor(const Content& content) : content_(content) {}

  // Of the character or break at a position; of the last one at the end.
  CharFormatId CharsAt(Units at) { return PieceAt(at).charFormat; }
  // Of the paragraph that a break ends.
  ParaFormatId ParagraphAt(Units at) { return PieceAt(at).paraFormat; }
  // What ForEachPiece gives, of whose sums only units and breaks are told. Good until the next call.
  const std::vector<PieceView>& Pieces(Range range);

 private:
  const PieceView& PieceAt(Units at);
  void Fetch(Units at);
  Sums StepTo(Units end);

  const Content& content_;
  std::vector<PieceView> pieces_, cut_;
  size_t piece_ = 0;
  Units pieceBegin_{0};  // of the current one
  Units at_{0};          // how far this was cut, and the byte there
  size_t byte_ = 0;
};

}  // namespace text::rtf
