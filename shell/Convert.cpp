#include "shell/Convert.h"

#include "files/saving/AtomicSave.h"
#include "text/html/HtmlWriter.h"
#include "text/plain/PlainText.h"
#include "text/rtf/Rtf.h"
#include "text/rtfsave/RtfSave.h"
#include "text/rtfwrite/RtfWrite.h"
#include "ui/desktop/Pdf.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <exception>
#include <optional>
#include <unistd.h>

namespace shell {
namespace {

enum class Format { kText, kHtml, kRtf, kPdf };
constexpr uint16_t kPlainHalfPoints = 20;
constexpr const char* kPlainFont = "Courier New";

std::optional<Format> FormatOf(const files::Path& path) {
  std::string extension = path.extension().native();
  std::ranges::transform(extension, extension.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  if (extension == ".txt") return Format::kText;
  if (extension == ".html" || extension == ".htm") return Format::kHtml;
  if (extension == ".rtf") return Format::kRtf;
  if (extension == ".pdf") return Format::kPdf;
  return std::nullopt;
}

std::string Line(const files::Path& path, const std::string& text) {
  return path.native() + ": " + text;
}

// Copies to the end of the descriptor; a read error is left in `error`.
bool CopyBytes(int descriptor, const files::ByteSink& sink, int& error) {
  std::string buffer(1 << 20, '\0');
  for (;;) {
    const ssize_t got = read(descriptor, buffer.data(), buffer.size());
    if (got == 0) return true;
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) error = errno;
    if (got < 0 || !sink(std::string_view(buffer.data(), static_cast<size_t>(got)))) return false;
  }
}

// As the window shows plain text that is saved as rich text.
text::Content InPlainFont(const text::Content& content, text::rtf::DocumentProperties& properties) {
  text::FormatTable& formats = content.formats();
  properties.defaultFont = formats.Intern(text::Font{.name = kPlainFont, .charset = 0, .family = 3});
  text::CharFormat format;
  format.font = properties.defaultFont;
  format.halfPoints = kPlainHalfPoints;
  const text::CharFormatId id = formats.Intern(format);
  return content.WithCharFormats(content.all(), [id](text::CharFormatId) { return id; });
}

class Conversion {
 public:
  Conversion(const files::Path& in, const files::Path& out, const files::Path& recoveryFolder)
      : in_(in), out_(out), recoveryFolder_(recoveryFolder) {}

  Converted Run() {
    std::string error = Do();
    return {std::move(error), std::move(note_)};
  }

 private:
  std::string Do() {
    const auto from = FormatOf(in_), to = FormatOf(out_);
    if (!from || *from == Format::kPdf) return Line(in_, "cannot read this format (.txt, .html and .rtf)");
    if (!to) return Line(out_, "cannot write this format (.txt, .html, .rtf and .pdf)");
    auto file = files::OpenForReading(in_);
    if (!file) return Line(in_, file.error().text);
    if (*from == Format::kRtf) return FromRtf(file.value(), *to);
    if (*to == Format::kRtf || *to == Format::kPdf) return FromPlain(file.value(), *to);
    return Save([&](const files::ByteSink& sink) { return CopyBytes(file.value().descriptor(), sink, readError_); });
  }

  std::string FromRtf(files::InputFile& file, Format to) {
    auto bytes = files::ReadAll(file);
    if (!bytes) return Line(in_, bytes.error().text);
    text::rtf::ReadResult read;
    if (!bytes.value().empty()) {
      read = text::rtf::Read(std::move(bytes.value()), text::Content().store());
      if (!read.isRtf) return Line(in_, "is not rich text, although its name says so");
      if (read.limited && to != Format::kRtf)
        note_ = Line(in_, "holds more than this program reads; some of it was left out");
    }
    return Save([&](const files::ByteSink& sink) { return WriteRich(read, to, sink); });
  }

  bool WriteRich(const text::rtf::ReadResult& read, Format to, const files::ByteSink& sink) {
    switch (to) {
      case Format::kText:
        return text::WritePlainText(read.content, {}, sink, {.fromRichText = true});
      case Format::kRtf:
        return Rewrite(read, sink);
      case Format::kPdf:
        return WritePages(read.content, read.properties, sink);
      case Format::kHtml:
        break;
    }
    const std::string& font = read.content.formats()[read.properties.defaultFont].name;
    return text::html::Write(read.content, {.title = in_.stem().native(), .defaultFont = font}, sink);
  }

  bool Rewrite(const text::rtf::ReadResult& read, const files::ByteSink& sink) {
    const text::rtf::Saved saved = text::rtf::Rewrite(read.content, read.properties);
    if (saved.bytes) return sink(*saved.bytes);
    if (read.properties.source)
      note_ =
          Line(in_, "could not be written in its own groups and words; only what this program knows of it was written");
    return text::rtf::WriteAnew(read.content, read.properties, sink);
  }

  bool WritePages(const text::Content& content, const text::rtf::DocumentProperties& properties,
                  const files::ByteSink& sink) const {
    return ui::WritePdf(text::Document(content), properties, in_.stem().native(), sink);
  }

  std::string FromPlain(files::InputFile& file, Format to) {
    const text::LoadedText loaded = text::ReadPlainText(file.descriptor());
    if (loaded.error) return Line(in_, files::SystemError(loaded.error, in_).text);
    text::rtf::DocumentProperties properties;
    const text::Content content = InPlainFont(loaded.content, properties);
    return Save([&](const files::ByteSink& sink) {
      return to == Format::kPdf ? WritePages(content, properties, sink) : text::rtf::Write(content, properties, sink);
    });
  }

  std::string Save(const files::ByteProducer& write) {
    const auto saved = files::SaveAtomically(out_, recoveryFolder_, write);
    if (readError_) return Line(in_, files::SystemError(readError_, in_).text);
    return saved ? std::string() : Line(out_, saved.error().text);
  }

  const files::Path& in_;
  const files::Path& out_;
  const files::Path& recoveryFolder_;
  int readError_ = 0;
  std::string note_;
};

}  // namespace

Converted Convert(const files::Path& in, const files::Path& out, const files::Path& recoveryFolder) {
  try {
    return Conversion(in, out, recoveryFolder).Run();
  } catch (const std::exception& failure) {
    return {Line(in, failure.what()), {}};
  }
}

std::string OneLine(const std::string& text) {
  std::string line = text;
  for (char& c : line)
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
  return line;
}

}  // namespace shell
