// Rich Text Format, version 1.9.1: writing content that has no file of its own.
#pragma once

#include "text/rtf/Rtf.h"

#include <string>

namespace text::rtf {

// Writes 7-bit RTF with CR LF between paragraphs, in pieces of about 64 KB. False when the sink refused. Reading it back
// gives the same text and formats, but for: breaks, which all become CR LF; stray bytes, which become the Windows-1252
// characters they stand for; offsets, which RTF counts in steps of 10 twips; lengths past a million twips; kept words
// and objects. Writing what was read back gives the same bytes.
bool WriteAnew(const Content& content, const DocumentProperties& properties, const ByteSink& sink);
// The last paragraph is closed by \par only when its break lies in the range.
std::string WriteFragment(const Content& content, Range range, const DocumentProperties& properties);

}  // namespace text::rtf
