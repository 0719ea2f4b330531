#include "text/rtfsave/RtfCursor.h"

#include "text/TextStore.h"
#include "text/Utf16.h"

#include <algorithm>

namespace text::rtf {

namespace {

constexpr size_t kPiecesAtOnce = 64;
constexpr Units kFar{4096};

}  // namespace

const PieceView& RtfCursor::PieceAt(Units at) {
  at = std::clamp(at, Units(0), std::max(Units(0), content_.size() - Units(1)));
  if (pieces_.empty() || at < pieceBegin_) Fetch(at);
  while (at >= pieceBegin_ + pieces_[piece_].sums.units) {
    if (piece_ + 1 == pieces_.size()) {
      Fetch(at);
      break;
    }
    pieceBegin_ += pieces_[piece_++].sums.units;
    at_ = pieceBegin_, byte_ = 0;
  }
  return pieces_[piece_];
}

void RtfCursor::Fetch(Units at) {
  pieces_.clear();
  piece_ = byte_ = 0;
  pieceBegin_ = at_ = at;
  content_.ForEachPiece({at, content_.size()}, [this](const PieceView& piece) {
    pieces_.push_back(piece);
    return pieces_.size() < kPiecesAtOnce;
  });
  if (pieces_.empty()) pieces_.push_back({});
}

const std::vector<PieceView>& RtfCursor::Pieces(Range range) {
  cut_.clear();
  if (range.size() > kFar) {
    content_.ForEachPiece(range, [this](const PieceView& piece) {
      cut_.push_back(piece);
      return true;
    });
    return cut_;
  }
  for (Units at = range.begin; at < range.end; at = at_) {
    PieceAt(at);
    if (at < at_ || at_ + kFar < at) Fetch(at);
    StepTo(at);
    const PieceView& piece = pieces_[piece_];
    const size_t from = byte_;
    const Sums sums = StepTo(std::min(range.end, pieceBegin_ + piece.sums.units));
    if (byte_ == from) break;
    cut_.push_back({piece.bytes.substr(from, byte_ - from), sums, piece.charFormat, piece.paraFormat});
  }
  return cut_;
}

// Within the current piece.
Sums RtfCursor::StepTo(Units end) {
  const std::string_view bytes = pieces_[piece_].bytes;
  Sums sums;
  const Units begin = at_;
  while (at_ < end && byte_ < bytes.size()) {
    const char c = bytes[byte_];
    const bool ascii = static_cast<unsigned char>(c) < 0x80;
    const int length = ascii ? 1 : Utf8Length(bytes.data() + byte_, bytes.data() + bytes.size());
    if (c == '\r' || c == '\n') sums.breaks += Breaks(1);
    byte_ += c == '\r' && bytes.substr(byte_ + 1).starts_with('\n') ? 2 : static_cast<size_t>(std::max(length, 1));
    at_ += Units(length == 4 ? 2 : 1);
  }
  sums.units = at_ - begin;
  return sums;
}

}  // namespace text::rtf
