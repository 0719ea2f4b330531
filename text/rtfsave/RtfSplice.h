// Saves an edited document into the file that it was read from: what was not edited is copied, byte by byte, what was
// is written at its place. Or writes all of its text again.
//
// The reader runs over the file once more and tells what each part of it became. Deleted text leaves its bytes out and
// nothing else; new text is written in groups, so that the state around it stays what the file says. The format of a
// paragraph is that in force at its end, so words for it stand before that end and are taken back behind it.
#pragma once

#include "text/ContentDiff.h"
#include "text/rtf/Rtf.h"
#include "text/rtf/RtfReader.h"
#include "text/rtf/RtfWatcher.h"
#include "text/rtfsave/RtfCursor.h"
#include "text/rtfsave/RtfSpliceOutput.h"
#include "text/rtfsave/RtfSplicePlace.h"
#include "text/rtfsave/RtfSpliceTables.h"
#include "text/rtfwrite/RtfWords.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace text::rtf {

class RtfSplice : private RtfWatcher {
 public:
  // What is written again. All text means that which was not edited, too: every character that is spelled in a code
  // page or by a number, but for blanks, numbers past U+FFFF, and U+2028 and what could not be told, with the bytes
  // that were told together with it.
  enum class Scope : uint8_t { kEdits, kAllText };

  // `wanted` is of the store of source.content, and the same content where all text is written again.
  RtfSplice(const Source& source, const Content& wanted, Scope scope = Scope::kEdits);
  // The new file. What it means must be checked: RTF has no words for some edits, and files break rules. Empty when
  // `progress`, in bytes of the source, said to stop.
  std::string Run(const Progress& progress = {});

 private:
  // A part of the old content and what it is to become; in order and without holes on both sides.
  struct Edit {
    enum class Kind : uint8_t { kSame, kReformat, kReplace };
    Range before, after;
    Kind kind = Kind::kSame;
  };

  using Reach = SpliceReach;
  using Place = SplicePlace;
  using Deviation = SpliceDeviation;
  // Text in a new format, whose bytes went one after the other; it is written in one when something else comes.
  struct Reformatted {
    Place place;
    size_t end = 0;
    Units upTo;
  };
  struct OpenField {
    uint32_t group;
    SpliceOutput::Place at;
    Units before;
    bool used = false;  // something in it remains
  };

  // --- RtfSplice.cpp: the walk
  void OnText(Span span, std::string_view utf8, Text kind) override;
  void OnFallback(Span span, bool complete) override;
  void OnBreak(Span span, bool joins) override;
  void OnLabel(Span span) override;
  void OnOldPicture(Span span) override;
  void OnGroup(size_t begin) override;
  void OnGroupEnd(size_t end) override;
  void OnField(size_t begin) override;
  void OnParagraphWord(Span span, bool reset) override;
  void OnUnknownWord(Span span) override { paragraphWords_.OnWord(span); }
  void OnTableEnd(Table table, size_t end) override;
  void OnEnd(size_t offset) override;

  void MakeEdits(const Progress& progress);
  const Edit& CurrentEdit();
  Units Mapped(Units position) const { return edits_[edit_].after.begin + (position - edits_[edit_].before.begin); }
  void SlideInsertion();
  void MoveAcrossTables();
  bool IsInRow(const Content& content, Units at) const;
  bool IsCoded(Span span, std::string_view utf8) const;
  bool Touch(size_t end, size_t begin) const;
  void Piece(Span span, Units units, Text kind);
  void TornPiece(Span span, Units units);
  void Part(Span span, Units units, Text kind);
  void Reformat(Span span, Units units);
  void EndRewrite();
  void Drop(Span span);
  void ReplaceHere(size_t offset, const Edit& edit);
  void Forget(const SpliceOutput::Place& cut);
  void Keep(Span span, Units units, Text kind);
  // Writes what is new up to there; false when no place allows it yet.
  bool Flush(size_t here, Units upTo, bool beforeBreak);
  bool ContinuesLast();
  bool Allows(const InForce& state, Range wanted) const;
  void FlushWholeParagraphs(Units upTo);
  Reach ReachHere(size_t offset);
  Place Here(size_t offset);
  bool IsOpen(uint32_t group) const;
  void Remember(size_t end, bool isBreak);
  void MarkUsed();

  // --- RtfSpliceParagraphs.cpp
  void EndParagraph(Span span, const ParaFormat* from, const ParaFormat* to, std::optional<CharFormatId> chars);
  // The output's paragraph format at a place, the deviation before it ended.
  ParaFormat Settled(const Reach& here, const ParaFormat& state);
  void LeadLastParagraph(size_t offset, bool needsBreak);
  void CopyBreak(Span span, std::optional<CharFormatId> chars);
  void LeadTo(const Reach& here, const ParaFormat& from, const ParaFormat& to);
  void Deviate(const Reach& here, const ParaFormat& format, const ParaFormat& original);
  std::string WordsFor(const ParaFormat& from, const ParaFormat& to);
  std::string WordsAfresh(const ParaFormat& to, const ParagraphWords::Kept& kept, const ParaFormat& style);
  std::string WordsAgain(const ParaFormat& format);
  std::string CharWordsBesideStyle();

  // --- RtfSpliceText.cpp: what is new
  void Insert(const Place& place, Units upTo);
  void InsertText(std::string_view utf8, CharFormatId id);
  void InsertBreak(CharFormatId id, const ParaFormat& wanted);
  void FindRows(const std::vector<PieceView>& pieces);
  std::string RowWords(RowId row);
  void InsertObject(ObjectId id);
  std::string_view WithMark(std::string_view note) const;
  void EndInsertedParagraphs(const SpliceOutput::Place& at, bool beforeRow);
  void OpenRun(CharFormatId id);
  void CloseRun();
  std::string CharLead(const InForce& state, const CharFormat& to);
  TableNumbers Numbers();
  TableNumbers NumbersFor(const ParaFormat& format);
  TextCoding CodingFor(const CharFormat& format) const;

  const Scope scope_;
  std::string_view bytes_;  // from the first brace on
  const Content& before_;
  const Content& after_;
  RtfCursor beforeCursor_{before_}, afterCursor_{after_};
  FormatTable& formats_;
  RtfReader reader_;
  SpliceOutput output_;
  SpliceTables tables_;
  std::shared_ptr<const std::string> sourceBytes_;
  std::vector<Edit> edits_;
  size_t edit_ = 0;
  Units read_{0};     // of before_
  Units written_{0};  // of after_

  std::vector<uint32_t> groups_;  // numbers of the open ones
  uint32_t lastGroup_ = 0;
  uint32_t paragraphWord_ = 0;
  std::vector<OpenField> fields_;
  SpliceOutput::Place ownTables_;
  std::array<std::optional<SpliceOutput::Place>, 4> tablesEnd_;  // by Table
  size_t untoldEnd_ = 0;                                         // behind bytes that were kept as no character
  size_t openEnd_ = 0;                                           // behind a character whose fallback has not come
  std::optional<Place> last_;    // behind the last text that was kept, if something new may follow
  std::optional<Place> middle_;  // behind a field that ended since
  std::optional<Reformatted> rewrite_;
  bool dropped_ = false;       // the last thing that was read
  bool droppedBreak_ = false;  // the last break
  bool sawClosing_ = false;    // the \par that closes the document
  bool keptEnd_ = false;       // the last of before_ is the last of after_

  std::optional<Reach> paragraphBegin_, paragraphGroup_;
  bool atParagraphBegin_ = true;
  std::optional<Deviation> deviation_;
  ParagraphWords paragraphWords_{bytes_};

  // --- Under way in Insert
  std::string inserted_;
  RtfWords words_{inserted_};
  const Place* place_ = nullptr;
  std::optional<CharFormatId> run_;
  std::string_view runEnd_;  // what closes it
  bool bare_ = false;        // text needs no group
  bool mayTear_ = false;     // readers that know no UTF-8 may take a byte for the second half of what stands before
  TextCoding coding_;
  size_t paragraphAt_ = 0;  // in inserted_
  std::optional<ParaFormat> paragraph_;
  std::vector<RowId> rows_;  // of the outermost tables, that are put in whole
  size_t row_ = 0;
  // The table that is left is the one whose words were in force at the place.
  bool rowBegins_ = true, nestedRowEnded_ = false, leftTable_ = false;
};

}  // namespace text::rtf
