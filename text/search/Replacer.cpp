#include "text/search/Replacer.h"

#include "text/Memory.h"
#include "text/TextStore.h"

#include <algorithm>
#include <new>

namespace text {
namespace {

// Stretches between matches shorter than this are copied: pieces of a few bytes would slow every later search and edit.
constexpr size_t kShare = std::min<size_t>(512, TreeConfig::kMaxPieceBytes / 2);
constexpr size_t kPending = 65536;
// Matches are collected in such numbers, so that the text is still in the cache when it is copied.
constexpr size_t kBatch = 4096;

template <class Id>
Id IdForNewText(FormatTable& formats, Id id) {
  const auto format = ForNewText(formats[id]);
  return format == formats[id] ? id : formats.Intern(format);
}

}  // namespace

Replacer::Replacer(const Content& content, std::string_view replacement)
    : content_(content),
      replacement_(replacement),
      replacementHasBreaks_(replacement.find_first_of("\r\n") != std::string_view::npos),
      builder_(content.store()),
      memory_(FreeMemory()) {}

void Replacer::Replace(int64_t begin, int64_t end) {
  if (count_++ == 0) {
    first_ = {content_.PositionOfByte(Bytes(begin)), content_.PositionOfByte(Bytes(end))};
    taken_ = first_.begin;
    at_ = begin;
    builder_.Append(content_, {Units(0), taken_});
  }
  matches_.push_back({begin, end});
  if (matches_.size() == kBatch) Consume();
}

Replacer::Result Replacer::Finish() {
  if (count_ == 0) return {content_, 0, {}, {}};
  Consume();
  Flush();
  builder_.Append(content_, {taken_, content_.size()});
  return {builder_.Finish(content_.lastParaFormat()), count_, first_, {first_.begin, taken_}};
}

// Deals with the old content up to the last collected match's end.
void Replacer::Consume() {
  if (matches_.empty()) return;
  const Units end = content_.PositionOfByte(Bytes(matches_.back().end));
  pieceBegin_ = at_;
  next_ = 0;
  content_.ForEachPiece({taken_, end}, [this](const PieceView& piece) {
    CopyPiece(piece);
    return true;
  });
  taken_ = end;
  matches_.clear();
}

void Replacer::CopyPiece(const PieceView& piece) {
  const int64_t end = pieceBegin_ + piece.sums.bytes.value();
  if (piece.sums.breaks > Breaks(0)) openParagraph_.reset();
  lastBreak_.reset();
  replacementFormat_ = IdForNewText(content_.formats(), piece.charFormat);
  const auto part = [&](int64_t from, int64_t to) {
    return piece.bytes.substr(static_cast<size_t>(from - pieceBegin_), static_cast<size_t>(to - from));
  };
  for (; next_ < matches_.size() && matches_[next_].begin < end; ++next_) {
    const Match match = matches_[next_];
    if (at_ < match.begin) Copy(part(at_, match.begin), piece);
    PutReplacement(piece, match.begin);
    at_ = match.end;
  }
  if (at_ < end) {
    Copy(part(at_, end), piece);
    at_ = end;
  }
  pieceBegin_ = end;
}

void Replacer::Copy(std::string_view bytes, const PieceView& piece) {
  if (bytes.size() < kShare) {
    Put(bytes, piece.charFormat, piece.paraFormat);
    return;
  }
  Flush();
  builder_.AppendCommitted(bytes.data(), bytes.data() + bytes.size(), piece.charFormat, piece.paraFormat);
}

void Replacer::PutReplacement(const PieceView& piece, int64_t begin) {
  if (replacement_.empty()) return;
  ParaFormatId paragraph = piece.paraFormat;
  if (replacementHasBreaks_) paragraph = IdForNewText(content_.formats(), ParaFormatAt(piece, begin));
  Put(replacement_, replacementFormat_, paragraph);
}

// Of the paragraph that holds the byte, which is in the piece.
ParaFormatId Replacer::ParaFormatAt(const PieceView& piece, int64_t offset) {
  if (!lastBreak_) {
    const size_t last = piece.sums.breaks > Breaks(0) ? piece.bytes.find_last_of("\r\n") : std::string_view::npos;
    lastBreak_ = last == std::string_view::npos ? -1 : pieceBegin_ + static_cast<int64_t>(last);
  }
  if (offset <= *lastBreak_) return piece.paraFormat;
  if (!openParagraph_)
    openParagraph_ = content_.ParaFormatOf(content_.ParagraphAt(content_.PositionOfByte(Bytes(offset))));
  return *openParagraph_;
}

void Replacer::Put(std::string_view bytes, CharFormatId charFormat, ParaFormatId paraFormat) {
  CheckFits(static_cast<int64_t>(bytes.size()));
  // Stray bytes that become neighbours stay characters of their own.
  const bool apart = IsContinuation(bytes.front());
  if (charFormat != charFormat_ || paraFormat != paraFormat_ || apart || pending_.size() >= kPending) Flush();
  if (apart) builder_.Separate();
  charFormat_ = charFormat;
  paraFormat_ = paraFormat;
  pending_.append(bytes);
}

void Replacer::Flush() {
  if (!pending_.empty()) builder_.Append(pending_, charFormat_, paraFormat_);
  pending_.clear();
}

void Replacer::CheckFits(int64_t more) {
  copied_ += more;
  if (copied_ > memory_) throw std::bad_alloc();
}

}  // namespace text
