#include "text/Formats.h"

namespace text {
namespace {

template <class T>
void Keep(T& field, const std::optional<T>& value) {
  if (value) field = *value;
}

// Equal values stay, different ones become "mixed".
template <class T>
void Meet(std::optional<T>& a, const std::optional<T>& b) {
  if (a != b) a.reset();
}

}  // namespace

CharFormat CharFormatPatch::Apply(CharFormat format) const {
  Keep(format.font, font);
  Keep(format.halfPoints, halfPoints);
  format.flags = static_cast<uint16_t>((format.flags & ~clearFlags) | setFlags);
  Keep(format.color, color);
  Keep(format.background, background);
  Keep(format.offset, offset);
  return format;
}

ParaFormat ParaFormatPatch::Apply(ParaFormat format) const {
  Keep(format.alignment, alignment);
  Keep(format.bullet, bullet);
  Keep(format.rightToLeft, rightToLeft);
  Keep(format.leftIndent, leftIndent);
  Keep(format.firstIndent, firstIndent);
  Keep(format.rightIndent, rightIndent);
  Keep(format.tabs, tabs);
  return format;
}

CharFormat ForNewText(CharFormat beside) {
  beside.flags &= static_cast<uint16_t>(~(kProtected | kHidden));
  beside.object = ObjectId::kNone;
  return beside;
}
ParaFormat ForNewText(ParaFormat paragraph) {
  paragraph.rowMark = RowMark::kNone;
  return paragraph;
}

CharSummary SummaryOf(const CharFormat& format) {
  CharSummary summary;
  summary.any = true;
  summary.allSet = summary.someSet = format.flags;
  summary.font = format.font;
  summary.halfPoints = format.halfPoints;
  summary.color = format.color;
  summary.offset = format.offset;
  summary.anyObject = format.object != ObjectId::kNone;
  return summary;
}

ParaSummary SummaryOf(const ParaFormat& format) {
  return {true,       format.alignment, format.bullet, format.leftIndent, format.firstIndent, format.rightIndent,
          format.tabs};
}

CharSummary Combine(const CharSummary& a, const CharSummary& b) {
  if (!a.any) return b;
  CharSummary both = a;
  if (!b.any) return both;
  both.allSet &= b.allSet;
  both.someSet |= b.someSet;
  Meet(both.font, b.font);
  Meet(both.halfPoints, b.halfPoints);
  Meet(both.color, b.color);
  Meet(both.offset, b.offset);
  both.anyObject = a.anyObject || b.anyObject;
  return both;
}

ParaSummary Combine(const ParaSummary& a, const ParaSummary& b) {
  if (!a.any) return b;
  ParaSummary both = a;
  if (!b.any) return both;
  Meet(both.alignment, b.alignment);
  Meet(both.bullet, b.bullet);
  Meet(both.leftIndent, b.leftIndent);
  Meet(both.firstIndent, b.firstIndent);
  Meet(both.rightIndent, b.rightIndent);
  Meet(both.tabs, b.tabs);
  return both;
}

}  // namespace text
