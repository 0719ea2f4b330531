#include "files/FileUrl.h"

#include <cassert>
#include <unistd.h>

namespace files {

namespace {

constexpr std::string_view kScheme = "file:";

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

bool EqualAsciiCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (Lower(a[i]) != Lower(b[i])) return false;
  }
  return true;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  c = Lower(c);
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

std::optional<std::string> DecodePercent(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      if (text[i] == '\0') return std::nullopt;
      bytes += text[i];
      continue;
    }
    if (text.size() - i < 3) return std::nullopt;
    const int high = HexDigit(text[i + 1]), low = HexDigit(text[i + 2]);
    if (high < 0 || low < 0 || high + low == 0) return std::nullopt;
    bytes += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return bytes;
}

bool IsThisMachine(std::string_view host) {
  if (host.empty() || EqualAsciiCase(host, "localhost")) return true;
  char name[256] = {};
  return gethostname(name, sizeof name - 1) == 0 && name[0] && EqualAsciiCase(host, name);
}

}  // namespace

bool IsFileUrl(std::string_view text) {
  return EqualAsciiCase(text.substr(0, kScheme.size()), kScheme);
}

std::optional<Path> PathFromFileUrl(std::string_view url) {
  if (!IsFileUrl(url)) return std::nullopt;
  url.remove_prefix(kScheme.size());
  if (url.starts_with("//")) {
    url.remove_prefix(2);
    const size_t slash = url.find('/');
    if (slash == std::string_view::npos || !IsThisMachine(url.substr(0, slash))) return std::nullopt;
    url.remove_prefix(slash);
  }
  if (!url.starts_with('/')) return std::nullopt;
  auto bytes = DecodePercent(url);
  if (!bytes) return std::nullopt;
  return Path(*std::move(bytes));
}

std::string FileUrlFromPath(const Path& path) {
  assert(path.is_absolute());
  std::string url = "file://";
  for (const char c : path.native()) {
    const bool plain = (c >= '0' && c <= '9') || (Lower(c) >= 'a' && Lower(c) <= 'z') ||
                       std::string_view("-._~/").find(c) != std::string_view::npos;
    if (plain) {
      url += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      (url += '%') += "0123456789ABCDEF"[byte >> 4];
      url += "0123456789ABCDEF"[byte & 15];
    }
  }
  return url;
}

}  // namespace files
