#include "text/rtfsyntax/RtfFields.h"

#include "text/plain/Encodings.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace text::rtf {

namespace {

constexpr std::string_view kBlanks = " \t\n";

std::string_view Trimmed(std::string_view text) {
  const size_t begin = text.find_first_not_of(kBlanks);
  return begin == std::string_view::npos ? std::string_view() : text.substr(begin);
}

bool TakeName(std::string_view& instruction, std::string_view name) {
  const bool begins = instruction.size() >= name.size() &&
                      std::equal(name.begin(), name.end(), instruction.begin(),
                                 [](char a, char b) { return a == (b >= 'a' && b <= 'z' ? b - 'a' + 'A' : b); });
  if (begins) instruction.remove_prefix(name.size());
  return begins;
}

// In quotes a backslash makes the quote or backslash behind it an ordinary character.
std::string TakeQuoted(std::string_view& rest) {
  std::string argument;
  size_t at = 1;
  for (; at < rest.size() && rest[at] != '"'; ++at) {
    const bool escapes = rest[at] == '\\' && at + 1 < rest.size() && (rest[at + 1] == '\\' || rest[at + 1] == '"');
    if (escapes) ++at;
    argument += rest[at];
  }
  rest.remove_prefix(std::min(at + 1, rest.size()));
  return argument;
}

std::string TakeArgument(std::string_view& rest) {
  rest = Trimmed(rest);
  if (rest.starts_with('"')) return TakeQuoted(rest);
  const std::string argument(rest.substr(0, rest.find_first_of(kBlanks)));
  rest.remove_prefix(argument.size());
  return argument;
}

}  // namespace

SymbolField ParseSymbol(std::string_view instruction) {
  SymbolField field;
  std::string_view rest = Trimmed(instruction);
  if (!TakeName(rest, "SYMBOL")) return field;
  rest = Trimmed(rest);
  const bool hexadecimal = rest.starts_with("0x") || rest.starts_with("0X");
  if (hexadecimal) rest.remove_prefix(2);
  uint32_t number = 0;
  const auto parsed = std::from_chars(rest.data(), rest.data() + rest.size(), number, hexadecimal ? 16 : 10);
  if (parsed.ec != std::errc()) return field;
  const bool unicode = rest.find("\\u") != std::string_view::npos;
  if (const size_t at = rest.find("\\f"); at != std::string_view::npos) {
    const std::string_view name = Trimmed(rest.substr(at + 2));
    if (name.starts_with('"')) field.font = name.substr(1, name.find('"', 1) - 1);
  }
  const bool byte = !unicode && number <= 0xFF;
  const bool ofText = byte && field.font.empty() && number >= ' ';
  field.character = ofText ? FromWindows1252(static_cast<unsigned char>(number)) : byte ? 0xF000 + number : number;
  return field;
}

std::string LinkTarget(std::string_view instruction) {
  std::string_view rest = Trimmed(instruction);
  if (!TakeName(rest, "HYPERLINK")) return {};
  std::string target, mark;
  for (rest = Trimmed(rest); !rest.empty(); rest = Trimmed(rest)) {
    const bool isSwitch = rest.size() >= 2 && rest[0] == '\\' && rest[1] != '\\';
    if (!isSwitch) {
      std::string argument = TakeArgument(rest);
      if (target.empty()) target = std::move(argument);
      continue;
    }
    const char name = rest[1];
    rest.remove_prefix(2);
    if (name == 'l') {
      mark = TakeArgument(rest);
    } else if (name == 'o' || name == 't') {
      TakeArgument(rest);
    }
  }
  if (!mark.empty()) target += '#' + mark;
  std::erase_if(target, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
  return target;
}

std::string LinkInstruction(std::string_view target) {
  std::string instruction = "HYPERLINK ";
  if (target.starts_with('#')) instruction += "\\l ", target.remove_prefix(1);
  instruction += '"';
  for (const char c : target) {
    if (c == '\\' || c == '"') instruction += '\\';
    instruction += c;
  }
  return instruction + '"';
}

}  // namespace text::rtf
