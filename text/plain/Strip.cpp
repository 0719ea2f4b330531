#include "text/plain/Strip.h"

#include "text/Utf16.h"

#include <algorithm>

namespace text {
namespace {

constexpr size_t kReportEvery = 16 << 20;

// Calls visit(bytes) for the whole range; the bytes are at most a block's and hold whole characters.
template <class Visit>
bool ForEachSpan(const Content& content, Range range, const Progress& progress, const Visit& visit) {
  bool goesOn = true;
  size_t done = 0, reportAt = kReportEvery;
  content.ForEachSpan(range, [&](std::string_view span) {
    visit(span);
    done += span.size();
    if (done < reportAt) return true;
    reportAt = done + kReportEvery;
    goesOn = !progress || progress(static_cast<int64_t>(done));
    return goesOn;
  });
  return goesOn && (!progress || progress(static_cast<int64_t>(done)));
}

size_t SizeOf(const Content& content, Range range) {
  return static_cast<size_t>((content.SumsBefore(range.end).bytes - content.SumsBefore(range.begin).bytes).value());
}

class LineJoiner {
 public:
  explicit LineJoiner(std::string& out) : out_(out) {}

  void Put(std::string_view bytes) {
    while (!bytes.empty()) {
      if (carriageReturn_ && bytes.front() == '\n') {
        carriageReturn_ = false;
        spelling_ += '\n';
        bytes.remove_prefix(1);
        continue;
      }
      if (!spelling_.empty()) EndBreak(bytes.front());
      const size_t end = FindBreak(bytes);
      out_ += bytes.substr(0, end);
      lineEmpty_ = lineEmpty_ && end == 0;
      if (end == bytes.size()) return;
      carriageReturn_ = bytes[end] == '\r';
      spelling_ = bytes[end];
      bytes.remove_prefix(end + 1);
    }
  }
  void Finish() {
    if (!spelling_.empty()) EndBreak('\0');
  }

 private:
  // The break before `next` is complete.
  void EndBreak(char next) {
    if (lineEmpty_) {
      out_ += spelling_;
    } else if (next != ' ') {
      out_ += ' ';
    }
    spelling_.clear();
    carriageReturn_ = false;
    lineEmpty_ = true;
  }

  std::string& out_;
  std::string spelling_;         // of a break that what follows has to decide about
  bool carriageReturn_ = false;  // it may go on
  bool lineEmpty_ = true;
};

}  // namespace

std::optional<std::string> JoinedLines(const Content& content, Range range, const Progress& progress) {
  std::string out;
  out.reserve(SizeOf(content, range));
  LineJoiner joiner(out);
  if (!ForEachSpan(content, range, progress, [&](std::string_view bytes) { joiner.Put(bytes); })) return std::nullopt;
  joiner.Finish();
  return out;
}

std::optional<std::string> WithoutCharacter(const Content& content, Range range, char32_t character,
                                            const Progress& progress) {
  std::string out;
  out.reserve(SizeOf(content, range));
  std::string needle;
  AppendUtf8(needle, character);
  const bool isBreak = character == '\r' || character == '\n';
  const auto put = [&](std::string_view bytes) {
    for (size_t at; !isBreak && (at = bytes.find(needle)) != bytes.npos; bytes.remove_prefix(at + needle.size()))
      out += bytes.substr(0, at);
    out += bytes;
  };
  if (!ForEachSpan(content, range, progress, put)) return std::nullopt;
  return out;
}

std::optional<std::string> CollapsedBlanks(const Content& content, Range range, const Progress& progress) {
  std::string out;
  out.reserve(SizeOf(content, range));
  bool inBlanks = true;  // those at the beginning count as if one were there
  const auto put = [&](std::string_view bytes) {
    while (!bytes.empty()) {
      if (inBlanks) {
        bytes.remove_prefix(std::min(bytes.find_first_not_of(' '), bytes.size()));
        if (bytes.empty()) return;
      }
      const size_t end = std::min(bytes.find(' '), bytes.size());
      out += bytes.substr(0, end);
      inBlanks = end < bytes.size();
      if (inBlanks) out += out.ends_with('.') ? "  " : " ";
      bytes.remove_prefix(end);
    }
  };
  if (!ForEachSpan(content, range, progress, put)) return std::nullopt;
  return out;
}

}  // namespace text
