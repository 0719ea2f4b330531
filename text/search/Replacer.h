// Builds the content in which matches are replaced, in one pass. Internal to text/.
#pragma once

#include "text/Content.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace text {

class Replacer {
 public:
  Replacer(const Content& content, std::string_view replacement);

  // The next match, as byte offsets of the content. Throws std::bad_alloc when the result would not fit.
  void Replace(int64_t begin, int64_t end);

  struct Result {
    Content content;
    int64_t count;
    Range first;     // match, in the old content
    Range replaced;  // of the old content, from the first match's begin to the last one's end
  };
  Result Finish();

 private:
  struct Match {
    int64_t begin, end;
  };

  void Consume();
  void CopyPiece(const PieceView& piece);
  void Copy(std::string_view bytes, const PieceView& piece);
  void PutReplacement(const PieceView& piece, int64_t begin);
  void Put(std::string_view bytes, CharFormatId charFormat, ParaFormatId paraFormat);
  void Flush();
  void CheckFits(int64_t more);
  ParaFormatId ParaFormatAt(const PieceView& piece, int64_t offset);

  const Content& content_;
  const std::string_view replacement_;
  const bool replacementHasBreaks_;
  ContentBuilder builder_;

  std::vector<Match> matches_;                 // found, not replaced yet
  size_t next_ = 0;                            // of them
  int64_t at_ = 0;                             // the byte up to which the old content has been dealt with
  Units taken_;                                // the same as a position
  int64_t pieceBegin_ = 0;                     // of the piece being copied
  CharFormatId replacementFormat_{};           // for matches that begin in the piece
  std::optional<int64_t> lastBreak_;           // where the piece's last break is, -1 without one
  std::optional<ParaFormatId> openParagraph_;  // the format of the paragraph that has not ended in this piece
  Range first_;
  int64_t count_ = 0;

  // A stretch of one pair of formats that waits to be appended.
  std::string pending_;
  CharFormatId charFormat_{};
  ParaFormatId paraFormat_{};
  int64_t memory_;  // free at the beginning
  int64_t copied_ = 0;
};

}  // namespace text
