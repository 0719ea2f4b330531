#include "files/Attributes.h"
#include "files/Io.h"

#include <clocale>
#include <cwctype>

namespace files {

namespace {

// One character of UTF-8 at the beginning of `bytes`, and how many bytes it takes; a byte that begins none has length
// 0.
struct Character {
  char32_t code = 0;
  size_t length = 0;
};

Character Decode(std::string_view bytes) {
  const auto at = [&](size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned lead = at(0);
  if (lead < 0x80) return {lead, 1};
  const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) return {};
  char32_t code = lead & (0x7Fu >> length);
  for (size_t i = 1; i < length; ++i) {
    if ((at(i) & 0xC0) != 0x80) return {};
    code = code << 6 | (at(i) & 0x3F);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (code < kSmallest[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return {};
  return {code, length};
}

void Encode(char32_t code, std::string& out) {
  if (code < 0x80) {
    out += static_cast<char>(code);
    return;
  }
  const int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
  constexpr unsigned kLead[] = {0, 0xC0, 0xE0, 0xF0};
  out += static_cast<char>(kLead[more] | code >> (6 * more));
  for (int i = more - 1; i >= 0; --i) out += static_cast<char>(0x80 | (code >> (6 * i) & 0x3F));
}

char32_t Fold(char32_t code) {
  if (code < 0x80) return code >= 'A' && code <= 'Z' ? code + 32 : code;
  // Not the user's locale: paths must compare alike for everybody.
  static const locale_t everybody = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  if (!everybody) return code;
  const wint_t folded = towlower_l(towupper_l(static_cast<wint_t>(code), everybody), everybody);
  // The dotless i, the long s and the Kelvin sign are letters of their own.
  return folded < 0x80 ? code : static_cast<char32_t>(folded);
}

// The file itself, or the link when it leads nowhere.
bool Look(const Path& path, struct stat& status) {
  return !HasNul(path) && (stat(path.c_str(), &status) == 0 || lstat(path.c_str(), &status) == 0);
}

}  // namespace

std::string PathKey(const Path& path) {
  return NameKey(path.native());
}

std::string NameKey(std::string_view bytes) {
  std::string key;
  key.reserve(bytes.size());
  for (size_t i = 0; i < bytes.size();) {
    if (static_cast<unsigned char>(bytes[i]) < 0x80) {
      key += static_cast<char>(Fold(static_cast<unsigned char>(bytes[i++])));
      continue;
    }
    const Character character = Decode(bytes.substr(i));
    if (character.length == 0) {
      key += bytes[i++];
    } else {
      Encode(Fold(character.code), key);
      i += character.length;
    }
  }
  return key;
}

bool SamePath(const Path& a, const Path& b) {
  if (a.native() == b.native()) return true;
  if (PathKey(a) != PathKey(b)) return false;
  struct stat first, second;
  if (!Look(a, first) || !Look(b, second)) return true;
  return first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

}  // namespace files
