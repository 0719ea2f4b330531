// Reads RTF in one pass: a token at a time, group states on a stack. Handlers lie in a file for each kind of word.
#pragma once

#include "text/rtf/Rtf.h"
#include "text/rtf/RtfFormats.h"
#include "text/rtf/RtfOutput.h"
#include "text/rtf/RtfRows.h"
#include "text/rtf/RtfState.h"
#include "text/rtf/RtfWatcher.h"
#include "text/rtfsyntax/RtfCodePages.h"
#include "text/rtfsyntax/RtfTokenizer.h"

namespace text::rtf {

class RtfReader {
 public:
  // The bytes begin at the first brace and belong to the owner.
  RtfReader(std::shared_ptr<const std::string> owner, std::string_view bytes, const std::shared_ptr<TextStore>& store);
  ReadResult Run(bool fragment, const Progress& progress);

  // Reads what was read before, in the same store, and only tells the watcher. False when cancelled.
  bool Watch(RtfWatcher& watcher, const Progress& progress = {});
  // Reads for the sake of the tables alone.
  const Tables& ReadTables();
  InForce inForce();
  // False where text is none of the document's.
  bool inBody() const { return stack_.back().mode == Mode::kBody; }
  int32_t NumberOf(ListId list) { return inForce_.NumberOf(list); }
  const Tables& tables() { return inForce_.tables(); }

 private:
  struct Field {
    std::string instruction;
    bool tooLong = false;
    std::optional<LinkId> link;  // of its result, once asked for
    int64_t textBefore = 0;      // the output's count at its beginning
    size_t begin = 0;
  };

  // --- RtfReader.cpp: groups and text
  void Handle(const Token& token);
  void SetMode(Mode mode);
  void OpenGroup();
  void CloseGroup();
  void Word(const Token& token);
  void Text(std::string_view ascii);
  void RawBytes(std::string_view bytes);
  bool EndAttachment(Span span);
  void Hex(int32_t value);
  const CodePage& Page();
  void Byte(uint8_t byte);
  void FlushBytes();
  void FlushSurrogate();
  void Emit(std::string_view utf8);
  void EmitBody(std::string_view utf8);
  void Anchor(EmbeddedObject object);
  void RememberTail();
  void SawText();
  GroupState& state() { return stack_.back(); }

  // --- RtfWatch.cpp
  Span SpanOf(std::string_view part) const;
  void TellSkipped(int32_t units, Span span);
  void TellText(std::string_view utf8);
  void TellBreak(bool joins);
  void TellObject(const EmbeddedObject& object);
  void TellClosing();
  void TellParagraphWord(bool reset);
  Span ThisGroup() const;

  // --- RtfProperties.cpp: flags, toggles and values
  void Property(const Keyword& word, const Token& token);
  void DocumentProperty(const Keyword& word, const Token& token);
  bool CharacterProperty(const Keyword& word, bool on, int32_t number);
  bool ParagraphProperty(const Keyword& word, int32_t number);
  bool IndentProperty(const Keyword& word, int32_t number);
  bool TabProperty(const Keyword& word, int32_t number);
  bool TableProperty(const Keyword& word, int32_t number);
  bool OtherParagraphProperty(const Keyword& word, int32_t number);
  void RowWord(const Keyword& word, int32_t number);
  bool BoxWord(const Keyword& word, int32_t number, Color color);
  void RecordRow(const Keyword* word, const Token& token);
  void KeepHeaderWord(const Keyword& word, const Token& token);
  void AddTab(int32_t position);
  void OtherIndent(Said about, int32_t number, bool& inForce, int32_t& indent);
  bool StyleProperty(const Keyword& word, int32_t number);
  void Say(Said said);
  CharFormatId CurrentChars() { return inForce_.Chars(state()); }
  CharFormatId CharsOfBreak() { return inForce_.CharsOfBreak(state()); }
  ParaFormatId CurrentParagraph() { return inForce_.Paragraph(state()); }

  // --- RtfSymbols.cpp: symbols and \u
  void ControlSymbol(char symbol);
  void Symbol(const Keyword& word);
  void EndCell(uint8_t level);
  void EndRow(uint8_t level);
  void Character(char32_t character);
  void Paragraph();
  void Unicode(int32_t number);

  // --- RtfDestinations.cpp: what groups hold
  void Destination(const Keyword& word);
  bool OpenTable(Op op);
  bool OpenList(Op op);
  bool OpenText(Op op);
  void Skip() { tokenizer_.SkipGroup(); }
  void KeepGroup();
  void Enter(Mode mode, Opened opened);
  void BeginStyle();
  void OpenField();
  void OpenResult();
  void CloseField();
  void OpenNote();
  void CloseNote();
  void Picture();
  void Object();
  void Attachment();
  SharedBytes WholeGroup() const;
  void OpenUnicodeAlternative();

  // --- RtfTables.cpp: the header's tables
  void FontWord(const Keyword& word, int32_t number);
  void FontText(std::string_view utf8);
  void FinishFont();
  void ColorWord(const Keyword& word, int32_t number);
  void ColorText(std::string_view text);
  void LimitUnless(bool whole);

  std::shared_ptr<const std::string> owner_;
  std::string_view bytes_;
  RtfTokenizer tokenizer_;
  RtfOutput output_;
  FormatTable& formats_;
  RtfFormats inForce_{formats_};
  RtfLists& lists_ = inForce_.lists();
  ReadResult result_;

  // --- What the watcher is told of
  RtfWatcher* watcher_ = nullptr;
  Span span_;  // of what is under way
  RtfWatcher::Text spanKind_ = RtfWatcher::Text::kWhole;
  Span pendingSpan_, surrogateSpan_;  // of pendingBytes_ and highSurrogate_
  bool fallbackCounts_ = false;       // the last \u was told

  // --- Groups
  std::vector<GroupState> stack_;
  size_t tooDeep_ = 0;         // open groups past kMaxDepth
  size_t groupBegin_ = 0;      // of the innermost group just opened
  bool firstWord_ = false;     // nothing but \* has come in this group
  bool starred_ = false;       // \* has
  uint8_t boxSides_ = 0;       // ParaBox::Side: what the next words about borders are about
  bool recordingRow_ = false;  // only words since \trowd
  bool done_ = false;
  bool cut_ = false;  // the file ended before its groups

  // --- Text under way
  std::string pendingBytes_;  // of a multi-byte code page
  const CodePage* pendingPage_ = nullptr;
  bool expectTrail_ = false;
  std::string decoded_;    // scratch
  int32_t skipUnits_ = 0;  // what is left of a \u's fallback
  char32_t highSurrogate_ = 0;
  size_t tailDepth_ = 0;  // where the last text stood; 0 = its paragraph format is remembered
  ParaFormatId tailParagraph_ = ParaFormatId::kDefault;
  uint8_t tailLevel_ = 0;  // of tables

  // --- Document
  RtfRows rows_{formats_};
  bool sawText_ = false;

  // --- Table entries under way
  std::optional<int32_t> fontNumber_;
  FontEntry font_;
  Color color_;
  std::vector<Field> fields_;
  std::optional<FontId> symbolFont_;  // that a field gives its character
  std::string noteText_, shapeName_;
  size_t noteBegin_ = 0;
  size_t descriptionScan_ = kMaxDescriptionScan;
  size_t attachmentEnds_ = 0;     // in the group of this depth, with the character that stands for one
  bool sawShapePicture_ = false;  // {\*\shppict}, whose like for old readers is to follow
};

}  // namespace text::rtf
