#include "text/html/HtmlWriter.h"

#include "text/Utf16.h"

#include <cstdio>
#include <vector>

namespace text::html {
namespace {

constexpr uint16_t kBodyHalfPoints = 24;
constexpr size_t kPortion = 1 << 16;
constexpr std::string_view kLineEnd = "<br>";

void AppendEscaped(std::string& out, char32_t c) {
  switch (c) {
    case '&':
      out += "&amp;";
      return;
    case '<':
      out += "&lt;";
      return;
    case '>':
      out += "&gt;";
      return;
    case '"':
      out += "&quot;";
      return;
    case 0xFFFC:
      return;
    default:
      break;
  }
  const bool allowed = c == '\t' || (c >= 0x20 && c != 0x7F && !(c >= 0x80 && c < 0xA0) && (c & 0xFFFE) != 0xFFFE);
  if (allowed) AppendUtf8(out, c);
}

// The code point at `i`, which moves behind it; a lone surrogate, and so a stray byte, is U+FFFD.
char32_t NextCodePoint(std::u16string_view text, size_t& i) {
  const char16_t first = text[i++];
  if (first < 0xD800 || first > 0xDFFF) return first;
  if (first > 0xDBFF || i == text.size() || text[i] < 0xDC00 || text[i] > 0xDFFF) return 0xFFFD;
  return 0x10000 + ((first - 0xD800) << 10) + (text[i++] - 0xDC00);
}

std::string Escaped(std::string_view bytes) {
  const std::u16string units = Utf16OfBytes(bytes);
  std::string out;
  for (size_t i = 0; i < units.size();) AppendEscaped(out, NextCodePoint(units, i));
  return out;
}

// A length in points, without trailing zeros, whatever the locale.
std::string Points(int64_t twips) {
  std::string out = twips < 0 ? "-" : "";
  const int64_t size = twips < 0 ? -twips : twips;
  out += std::to_string(size / 20);
  if (const int64_t hundredths = size % 20 * 5) {
    out += '.';
    out += static_cast<char>('0' + hundredths / 10);
    if (hundredths % 10) out += static_cast<char>('0' + hundredths % 10);
  }
  return out + "pt";
}

std::string CssColor(Color color) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "#%02x%02x%02x", color.rgb & 255, (color.rgb >> 8) & 255,
                (color.rgb >> 16) & 255);
  return text.data();
}

// A name as a CSS string that stands in an attribute and, where text is raw, in a style element.
std::string CssFamily(std::string_view name) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const std::u16string units = Utf16OfBytes(name);
  std::string quoted = "'";
  for (size_t i = 0; i < units.size();) {
    const char32_t c = NextCodePoint(units, i);
    if (c == '\'' || c == '"' || c == '\\' || c == '<' || c == '>' || c == '&') {
      quoted += {'\\', kDigits[c >> 4], kDigits[c & 15], ' '};
    } else {
      AppendEscaped(quoted, c);
    }
  }
  return quoted + "'";
}

std::string StyleAttribute(const std::string& style) {
  return style.empty() ? "" : " style=\"" + style + '"';
}

std::string ParagraphStyle(const ParaFormat& format, bool pageBreak) {
  constexpr std::array<const char*, 4> kAlign = {"", "right", "center", "justify"};
  std::string style;
  const auto add = [&](const char* property, const std::string& value) {
    style += (style.empty() ? "" : ";") + std::string(property) + ':' + value;
  };
  if (format.alignment != Alignment::kLeft) add("text-align", kAlign[static_cast<size_t>(format.alignment)]);
  if (format.leftIndent) add("margin-left", Points(format.leftIndent));
  if (format.rightIndent) add("margin-right", Points(format.rightIndent));
  if (format.firstIndent && !format.bullet) add("text-indent", Points(format.firstIndent));
  if (format.spaceBefore) add("margin-top", Points(format.spaceBefore));
  if (format.spaceAfter) add("margin-bottom", Points(format.spaceAfter));
  if (pageBreak) add("break-before", "page");
  return style;
}

struct Tags {
  std::string open, close;
  void Add(const char* name, const std::string& attributes = {}) {
    open += '<' + std::string(name) + attributes + '>';
    close = "</" + std::string(name) + '>' + close;
  }
};

class Writer {
 public:
  Writer(const Content& content, const Options& options, const ByteSink& sink)
      : content_(content), options_(options), sink_(sink) {}

  bool Run() {
    Head();
    content_.ForEachPiece(content_.all(), [this](const PieceView& piece) {
      Piece(piece);
      return ok_;
    });
    // What follows the last break is a paragraph only if there is something, or nothing else.
    if (!runs_.empty() || pageBreak_ || content_.size() == Units(0)) EndParagraph(content_.lastParaFormat());
    SetInList(false);
    out_ += "</body>\n</html>\n";
    Flush();
    return ok_;
  }

 private:
  void Head() {
    out_ += "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>";
    out_ += Escaped(options_.title);
    out_ += "</title>\n<style>\nbody { font-size: 12pt";
    if (!options_.defaultFont.empty()) out_ += "; font-family: " + CssFamily(options_.defaultFont);
    out_ += " }\np, ul { margin: 0; white-space: pre-wrap }\n</style>\n</head>\n<body>\n";
  }

  void Piece(const PieceView& piece) {
    const std::u16string units = Utf16OfBytes(piece.bytes);
    std::string run;
    for (size_t i = 0; i < units.size() && ok_;) {
      const char32_t c = NextCodePoint(units, i);
      if (c == '\n') {
        EndRun(run, piece.charFormat);
        EndParagraph(piece.paraFormat);
        ++paragraph_;
      } else if (c == '\f') {
        EndRun(run, piece.charFormat);
        if (!runs_.empty() || pageBreak_) EndParagraph(content_.ParaFormatOf(Breaks(paragraph_)));
        pageBreak_ = true;
      } else if (c == 0x2028 || c == 0x2029) {
        run += kLineEnd;
      } else {
        AppendEscaped(run, c);
      }
    }
    EndRun(run, piece.charFormat);
  }

  void EndRun(std::string& run, CharFormatId format) {
    if (run.empty()) return;
    const Tags tags = TagsOf(content_.formats()[format]);
    if (!runs_.empty() && open_.open == tags.open) {
      runs_.insert(runs_.size() - open_.close.size(), run);
    } else {
      runs_ += tags.open + run + tags.close;
      open_ = tags;
    }
    lineEmpty_ = run.ends_with(kLineEnd);
    run.clear();
  }

  Tags TagsOf(const CharFormat& format) const {
    Tags tags;
    std::string style;
    const auto add = [&](const std::string& rule) { style += (style.empty() ? "" : ";") + rule; };
    const std::string& family = content_.formats()[format.font].name;
    if (!family.empty() && family != options_.defaultFont) add("font-family:" + CssFamily(family));
    if (format.halfPoints != kBodyHalfPoints) add("font-size:" + Points(format.halfPoints * 10));
    if (!format.color.isAuto()) add("color:" + CssColor(format.color));
    if (!format.background.isAuto()) add("background-color:" + CssColor(format.background));
    if (format.flags & kHidden) add("display:none");
    if (!style.empty()) tags.Add("span", StyleAttribute(style));
    if (format.flags & kBold) tags.Add("b");
    if (format.flags & kItalic) tags.Add("i");
    if (format.flags & kUnderline) tags.Add("u");
    if (format.flags & kStrikeThru) tags.Add("s");
    if (format.offset) tags.Add(format.offset > 0 ? "sup" : "sub");
    return tags;
  }

  void EndParagraph(ParaFormatId id) {
    const ParaFormat& format = content_.formats()[id];
    SetInList(format.bullet);
    const char* name = format.bullet ? "li" : "p";
    out_ += '<' + std::string(name) + (format.rightToLeft ? " dir=\"rtl\"" : "") +
            StyleAttribute(ParagraphStyle(format, pageBreak_)) + '>';
    out_ += runs_;
    // The last line break of an element shows nothing unless something follows.
    if (lineEmpty_) out_ += kLineEnd;
    out_ += "</" + std::string(name) + ">\n";
    runs_.clear();
    open_ = {};
    pageBreak_ = false;
    lineEmpty_ = true;
    if (out_.size() >= kPortion) Flush();
  }

  void SetInList(bool inList) {
    if (inList == inList_) return;
    out_ += inList ? "<ul>\n" : "</ul>\n";
    inList_ = inList;
  }

  void Flush() {
    ok_ = ok_ && sink_(out_);
    out_.clear();
  }

  const Content& content_;
  const Options& options_;
  const ByteSink& sink_;
  std::string out_;
  int64_t paragraph_ = 0;   // breaks so far
  std::string runs_;        // the paragraph so far
  Tags open_;               // of its last run
  bool lineEmpty_ = true;   // nothing stands in its last line
  bool pageBreak_ = false;  // comes before it
  bool inList_ = false, ok_ = true;
};

}  // namespace

bool Write(const Content& content, const Options& options, const ByteSink& sink) {
  return Writer(content, options, sink).Run();
}

}  // namespace text::html
