#include "text/html/HtmlWriter.h"

#include "text/html/HtmlBlocks.h"
#include "text/html/HtmlMarkup.h"

namespace text::html {
namespace {

constexpr size_t kPortion = 1 << 16;
constexpr std::string_view kLineEnd = "<br>";
constexpr char32_t kObject = 0xFFFC;

class Writer {
 public:
  Writer(const Content& content, const Options& options, const ByteSink& sink)
      : content_(content), options_(options), sink_(sink), blocks_(content.formats(), out_) {}

  bool Run() {
    Head();
    content_.ForEachPiece(content_.all(), [this](const PieceView& piece) {
      Piece(piece);
      return ok_;
    });
    // What follows the last break is a paragraph only if there is something, or nothing else.
    if (!runs_.empty() || pageBreak_ || content_.size() == Units(0))
      EndParagraph(content_.formats()[content_.lastParaFormat()]);
    blocks_.CloseAll();
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
    out_ +=
        " }\np, ul, ol { margin: 0; white-space: pre-wrap }\n"
        "table { border-collapse: collapse }\n</style>\n</head>\n<body>\n";
  }

  void Piece(const PieceView& piece) {
    const std::u16string units = Utf16OfBytes(piece.bytes);
    std::string run;
    for (size_t i = 0; i < units.size() && ok_;) {
      const char32_t c = NextCodePoint(units, i);
      if (c == '\n') {
        EndRun(run, piece.charFormat);
        EndParagraph(content_.formats()[piece.paraFormat]);
        ++paragraph_;
      } else if (c == '\f') {
        EndRun(run, piece.charFormat);
        if (!runs_.empty() || pageBreak_) EndPage();
        pageBreak_ = true;
      } else if (c == 0x2028 || c == 0x2029) {
        run += kLineEnd;
      } else if (c == kObject) {
        run += Picture(content_.formats()[content_.formats()[piece.charFormat].object]);
      } else {
        AppendEscaped(run, c);
      }
    }
    EndRun(run, piece.charFormat);
  }

  void EndRun(std::string& run, CharFormatId format) {
    if (run.empty()) return;
    const Tags tags = TagsOf(content_.formats()[format], content_.formats(), options_.defaultFont);
    if (!runs_.empty() && open_.open == tags.open) {
      runs_.insert(runs_.size() - open_.close.size(), run);
    } else {
      runs_ += tags.open + run + tags.close;
      open_ = tags;
    }
    lineEmpty_ = run.ends_with(kLineEnd);
    run.clear();
  }

  // In the middle of a paragraph.
  void EndPage() {
    ParaFormat format = content_.formats()[content_.ParaFormatOf(Breaks(paragraph_))];
    format.rowMark = RowMark::kNone;
    EndParagraph(format);
  }

  void EndParagraph(const ParaFormat& format) {
    const char* name = blocks_.Open(format, runs_.empty());
    if (name) {
      const bool saysSide = blocks_.inTurnedItem();
      const char* direction = format.rightToLeft ? " dir=\"rtl\"" : saysSide ? " dir=\"ltr\"" : "";
      out_ += '<' + std::string(name) + direction + StyleAttribute(ParagraphStyle(format, pageBreak_, saysSide)) + '>';
      out_ += runs_;
      // The last line break of an element shows nothing unless something follows.
      if (lineEmpty_) out_ += kLineEnd;
      // An item stays open: the lists in it stand inside.
      out_ += std::string_view(name) == "p" ? "</p>\n" : "\n";
    }
    blocks_.Close(format);
    runs_.clear();
    open_ = {};
    pageBreak_ = false;
    lineEmpty_ = true;
    if (out_.size() >= kPortion) Flush();
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
  HtmlBlocks blocks_;
  bool ok_ = true;
};

}  // namespace

bool Write(const Content& content, const Options& options, const ByteSink& sink) {
  return Writer(content, options, sink).Run();
}

}  // namespace text::html
