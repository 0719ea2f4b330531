#include "text/rtfsave/RtfSpliceOutput.h"

#include "text/rtfwrite/RtfWords.h"

namespace text::rtf {

namespace {

bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsSpecial(char c) {
  return c == '\\' || c == '{' || c == '}';
}

// How many digits are missing at the end, of a character that is spelled by two.
size_t MissingDigits(std::string_view bytes) {
  for (const size_t missing : {1, 2}) {
    const size_t size = 4 - missing;
    if (bytes.size() < size || bytes.substr(bytes.size() - size, 2) != "\\'") continue;
    if (missing == 1 && IsSpecial(bytes.back())) continue;
    const std::string_view before = bytes.substr(0, bytes.size() - size);
    const size_t slashes = before.size() - 1 - before.find_last_not_of('\\');
    if (slashes % 2 == 0) return missing;
  }
  return 0;
}

// With what keeps the bytes from becoming part of what stands before: a space behind a word, and behind \' and less
// than two digits, which mean nothing, others that mean nothing. What stands before `last` was joined to what begins
// there, and is not looked at; returns where these bytes begin.
size_t Join(std::string& out, std::string_view bytes, size_t last = 0) {
  if (bytes.empty()) return last;
  const std::string_view before = std::string_view(out).substr(last);
  const bool space = ContinuesWord(bytes) && EndsInWord(before);
  const size_t missing = IsSpecial(bytes.front()) ? 0 : MissingDigits(before);
  if (space) out += ' ';
  out.append(missing, 'x');
  const size_t begin = out.size();
  out += bytes;
  return begin;
}

}  // namespace

bool EndsInWord(std::string_view bytes) {
  size_t at = bytes.size();
  while (at > 0 && IsDigit(bytes[at - 1])) --at;
  if (at > 0 && at < bytes.size() && bytes[at - 1] == '-') --at;
  const size_t letters = at;
  while (at > 0 && IsLetter(bytes[at - 1])) --at;
  size_t slashes = 0;
  while (slashes < at && bytes[at - 1 - slashes] == '\\') ++slashes;
  return at < letters && slashes % 2 == 1;
}

void PutIn(std::string& text, size_t at, std::string_view bytes) {
  if (EndsInWord(bytes) && ContinuesWord(std::string_view(text).substr(at))) text.insert(at, " ");
  text.insert(at, bytes);
}

void SpliceOutput::CopyTo(size_t offset) {
  if (offset <= from_) return;
  Span& last = slots_.back().span;
  if (last.end == from_ && last.begin < last.end) {
    last.end = offset;
  } else if (last.begin == last.end) {
    last = {from_, offset};
  } else {
    slots_.push_back({{}, {from_, offset}});
  }
  from_ = offset;
}

void SpliceOutput::DropTo(size_t offset) {
  if (offset > from_) from_ = offset;
}

SpliceOutput::Place SpliceOutput::Here() {
  slots_.emplace_back();
  return {slots_.size() - 1, 0};
}

void SpliceOutput::Append(std::string_view bytes) {
  if (slots_.back().span.size() > 0) slots_.emplace_back();
  Join(slots_.back().bytes, bytes);
}

void SpliceOutput::Insert(const Place& place, std::string_view bytes) {
  PutIn(slots_[place.slot].bytes, place.at, bytes);
}

void SpliceOutput::InsertLast(const Place& place, std::string_view bytes) {
  Join(slots_[place.slot].bytes, bytes);
}

void SpliceOutput::CutTo(const Place& place) {
  slots_.resize(place.slot + 1);
  slots_.back().bytes.resize(place.at);
  slots_.back().span = {};
}

std::string SpliceOutput::Joined() const {
  size_t size = 0;
  for (const Slot& slot : slots_) size += slot.bytes.size() + slot.span.size() + 1;
  std::string out;
  out.reserve(size);
  size_t end = 0;  // of what was copied last, with nothing new behind it
  size_t last = 0;
  for (const Slot& slot : slots_) {
    if (!slot.bytes.empty()) end = source_.size() + 1;
    last = Join(out, slot.bytes, last);
    if (slot.span.size() == 0) continue;
    const std::string_view copied = source_.substr(slot.span.begin, slot.span.size());
    if (slot.span.begin == end) {
      out += copied;
    } else {
      last = Join(out, copied, last);
    }
    end = slot.span.end;
  }
  return out;
}

}  // namespace text::rtf
