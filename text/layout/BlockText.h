// The text of one layout block as it is shown.
#pragma once

#include "text/Document.h"
#include "text/outline/Segments.h"

#include <QString>
#include <QTextLayout>

#include <vector>

namespace text::layout {

struct Preedit;

// Text of one character format; offsets into the shown text.
struct BlockRun {
  int begin = 0;
  int end = 0;
  CharFormatId format = CharFormatId::kDefault;
};

// Shown text has one unit for each of the document's, so offsets are the same, but for what an input method composes:
// that is inserted at preeditBegin.
struct BlockText {
  QString text;
  std::vector<BlockRun> runs;                       // in order, covering the text
  std::vector<int> objects;                         // offsets of embedded objects
  std::vector<int> pageBreaks;                      // offsets of form feeds, shown as line separators
  CharFormatId endFormat = CharFormatId::kDefault;  // for a text without any character
  ParaFormat paragraph;
  QString label;  // of the list, in the indent; not text
  bool startsParagraph = true;
  bool endsParagraph = true;
  bool rightToLeft = false;  // the paragraph's direction
  uint8_t boxJoins = 0;      // BoxJoin
  bool mixed = false;        // some character may be shown right to left
  bool tabs = false;
  int preeditBegin = -1;
  int preeditLength = 0;
  QList<QTextLayout::FormatRange> preeditFormats;  // offsets into the shown text
};

BlockText ReadBlockText(const Document& document, const BlockSpan& span, const Preedit* preedit,
                        const QString& label = {});

// By the format, else by the first strong character within the first units of the paragraph.
bool IsParagraphRightToLeft(const Content& content, Range paragraph, const ParaFormat& format);

}  // namespace text::layout
