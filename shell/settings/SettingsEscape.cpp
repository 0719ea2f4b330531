#include "shell/settings/SettingsEscape.h"

#include <array>
#include <cstdint>

namespace shell {
namespace {

constexpr std::string_view kHex = "0123456789ABCDEF";

void AppendEscaped(std::string& text, unsigned char byte) {
  text += "\\x";
  text += kHex[byte >> 4];
  text += kHex[byte & 15];
}

bool IsEscape(std::string_view text) {
  return text.size() >= 4 && text[0] == '\\' && text[1] == 'x' && kHex.find(text[2]) != std::string_view::npos &&
         kHex.find(text[3]) != std::string_view::npos;
}

struct Lead {
  unsigned char first, last;  // the range of the leading byte,
  size_t length;
  unsigned char low, high;  // and of the one behind it
};
constexpr std::array<Lead, 9> kLeads = {{{0x00, 0x7F, 1, 0, 0},
                                         {0xC2, 0xDF, 2, 0x80, 0xBF},
                                         {0xE0, 0xE0, 3, 0xA0, 0xBF},
                                         {0xE1, 0xEC, 3, 0x80, 0xBF},
                                         {0xED, 0xED, 3, 0x80, 0x9F},
                                         {0xEE, 0xEF, 3, 0x80, 0xBF},
                                         {0xF0, 0xF0, 4, 0x90, 0xBF},
                                         {0xF1, 0xF3, 4, 0x80, 0xBF},
                                         {0xF4, 0xF4, 4, 0x80, 0x8F}}};

// The bytes of the UTF-8 character at the beginning (Unicode, table 3-7); 0 when there is none.
size_t CharacterLength(std::string_view bytes) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(bytes[i]); };
  for (const Lead& lead : kLeads) {
    if (byte(0) < lead.first || byte(0) > lead.last) continue;
    if (bytes.size() < lead.length) return 0;
    if (lead.length > 1 && (byte(1) < lead.low || byte(1) > lead.high)) return 0;
    for (size_t i = 2; i < lead.length; ++i)
      if (byte(i) < 0x80 || byte(i) > 0xBF) return 0;
    return lead.length;
  }
  return 0;
}

}  // namespace

std::string EscapeBytes(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const size_t length = IsEscape(bytes) ? 0 : CharacterLength(bytes);
    if (length == 0) {
      AppendEscaped(text, static_cast<unsigned char>(bytes.front()));
      bytes.remove_prefix(1);
    } else {
      text += bytes.substr(0, length);
      bytes.remove_prefix(length);
    }
  }
  return text;
}

std::string UnescapeBytes(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  while (!text.empty()) {
    if (IsEscape(text)) {
      bytes += static_cast<char>(kHex.find(text[2]) * 16 + kHex.find(text[3]));
      text.remove_prefix(4);
    } else {
      bytes += text.front();
      text.remove_prefix(1);
    }
  }
  return bytes;
}

}  // namespace shell
