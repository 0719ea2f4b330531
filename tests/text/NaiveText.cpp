#include "tests/text/NaiveText.h"

#include <array>

namespace text::test {
namespace {

size_t NaiveLength(const std::string& bytes, size_t i) {
  const auto byte = [&](size_t k) { return k < bytes.size() ? static_cast<unsigned char>(bytes[k]) : 0; };
  const auto tail = [&](size_t k) { return (byte(k) & 0xC0) == 0x80; };
  const unsigned a = byte(i), b = byte(i + 1);
  if (a >= 0xC2 && a <= 0xDF && tail(i + 1)) return 2;
  if (a >= 0xE0 && a <= 0xEF && tail(i + 1) && tail(i + 2) && !(a == 0xE0 && b < 0xA0) && !(a == 0xED && b > 0x9F))
    return 3;
  if (a >= 0xF0 && a <= 0xF4 && tail(i + 1) && tail(i + 2) && tail(i + 3) && !(a == 0xF0 && b < 0x90) &&
      !(a == 0xF4 && b > 0x8F))
    return 4;
  return 1;
}

}  // namespace

std::vector<Atom> NaiveText::Parse(const std::string& bytes, CharFormatId chars, ParaFormatId para) {
  std::vector<Atom> atoms;
  for (size_t i = 0; i < bytes.size();) {
    const size_t length = bytes.compare(i, 2, "\r\n") == 0 ? 2 : NaiveLength(bytes, i);
    atoms.push_back({bytes.substr(i, length), chars, ParaFormatId::kDefault});
    if (atoms.back().isBreak()) atoms.back().para = para;
    i += length;
  }
  return atoms;
}

void NaiveText::JoinBreaks() {
  for (size_t i = 0; i + 1 < atoms.size(); ++i) {
    if (atoms[i].bytes != "\r" || atoms[i + 1].bytes != "\n") continue;
    atoms[i].bytes = "\r\n";
    atoms.erase(atoms.begin() + static_cast<ptrdiff_t>(i) + 1);
  }
}

size_t NaiveText::IndexOf(int64_t units, Bias bias) const {
  size_t i = 0;
  for (int64_t at = 0; i < atoms.size() && at < units; at += atoms[i++].units())
    if (bias == Bias::kLeft && at + atoms[i].units() > units) return i;
  return i;
}

int64_t NaiveText::UnitsBefore(size_t index) const {
  int64_t units = 0;
  for (size_t i = 0; i < index; ++i) units += atoms[i].units();
  return units;
}

std::string NaiveText::Bytes() const {
  std::string bytes;
  for (const Atom& atom : atoms) bytes += atom.bytes;
  return bytes;
}

std::u16string NaiveText::Units(bool crLf) const {
  std::u16string units;
  for (const Atom& atom : atoms) {
    const auto byte = [&](size_t k) { return static_cast<char32_t>(static_cast<unsigned char>(atom.bytes[k])); };
    if (atom.isBreak()) {
      units += crLf ? u"\r\n" : u"\n";
    } else if (atom.bytes.size() == 1) {
      units += static_cast<char16_t>(byte(0) < 0x80 ? byte(0) : 0xDC00 + byte(0));
    } else if (atom.bytes.size() == 4) {
      const char32_t c = (byte(0) & 7) << 18 | (byte(1) & 63) << 12 | (byte(2) & 63) << 6 | (byte(3) & 63);
      units += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
      units += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else if (atom.bytes.size() == 2) {
      units += static_cast<char16_t>((byte(0) & 31) << 6 | (byte(1) & 63));
    } else {
      units += static_cast<char16_t>((byte(0) & 15) << 12 | (byte(1) & 63) << 6 | (byte(2) & 63));
    }
  }
  return units;
}

void NaiveText::Replace(int64_t begin, int64_t end, std::vector<Atom> with) {
  const size_t from = IndexOf(begin, Bias::kLeft), to = begin == end ? from : IndexOf(end, Bias::kRight);
  atoms.erase(atoms.begin() + static_cast<ptrdiff_t>(from), atoms.begin() + static_cast<ptrdiff_t>(to));
  atoms.insert(atoms.begin() + static_cast<ptrdiff_t>(from), with.begin(), with.end());
  JoinBreaks();
}

std::string RandomBytes(std::mt19937& random, int characters) {
  static const std::array<std::string, 20> kAlphabet = {"a",
                                                        "b",
                                                        "c",
                                                        "word ",
                                                        " ",
                                                        "\r\n",
                                                        "\n",
                                                        "\r",
                                                        "\xC3\xA9",
                                                        "\xE2\x82\xAC",
                                                        "\xF0\x9F\x98\x80",
                                                        "\xC3",
                                                        "\xA9",
                                                        "\xFF",
                                                        "\xF0\x9F",
                                                        std::string(1, '\0'),
                                                        "\xED\xA0\x80",
                                                        "\xE2\x80\xA8",
                                                        "e\xCC\x81",
                                                        "\t"};
  std::string bytes;
  for (int i = 0; i < characters; ++i) bytes += kAlphabet[random() % kAlphabet.size()];
  return bytes;
}

std::string RandomForeignBytes(std::mt19937& random, int characters) {
  static const std::array<std::string, 10> kCharacters = {
      "\xD0\xBF",     "\xC2\x80",         "\xDF\xBF", "\xE4\xBD\xA0", "\xE0\xA0\x80", "\xED\x9F\xBF",
      "\xEF\xBF\xBF", "\xF0\x9F\x98\x80", " ",        "\r\n"};
  static const std::array<std::string, 6> kOdd = {"\xC1\x80", "\xE0\x80\x80", "\xED\xA0\x80",
                                                  "\xE4\xBD", "\x80",         "\xF5"};
  std::string bytes;
  for (int i = 0; i < characters; ++i) {
    const std::string& repeated = kCharacters[random() % kCharacters.size()];
    for (size_t times = 1 + random() % 20; times > 0; --times, ++i) bytes += repeated;
    if (random() % 4 == 0) bytes += kOdd[random() % kOdd.size()];
  }
  return bytes;
}

}  // namespace text::test
