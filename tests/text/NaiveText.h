// A model of a document that is too simple to be wrong: a list of characters with their formats.
#pragma once

#include "text/Document.h"
#include "text/TextStore.h"

#include <random>
#include <string>
#include <vector>

namespace text::test {

struct Atom {
  std::string bytes;  // one character, stray byte or line break
  CharFormatId chars = CharFormatId::kDefault;
  ParaFormatId para = ParaFormatId::kDefault;  // of a break
  bool isBreak() const { return bytes[0] == '\r' || bytes[0] == '\n'; }
  int64_t units() const { return bytes.size() == 4 ? 2 : 1; }
  bool operator==(const Atom&) const = default;
};

class NaiveText {
 public:
  std::vector<Atom> atoms;
  ParaFormatId last = ParaFormatId::kDefault;

  static std::vector<Atom> Parse(const std::string& bytes, CharFormatId chars, ParaFormatId para);
  // Joins every CR with a LF behind it.
  void JoinBreaks();
  size_t IndexOf(int64_t units, Bias bias) const;  // of the atom at the position
  int64_t UnitsBefore(size_t index) const;
  int64_t size() const { return UnitsBefore(atoms.size()); }
  std::string Bytes() const;
  std::u16string Units(bool crLf) const;

  void Replace(int64_t begin, int64_t end, std::vector<Atom> with);
};

// Text with every kind of character the engine treats specially.
std::string RandomBytes(std::mt19937& random, int characters);
// Long stretches of characters of several bytes, now and then something that looks like one and is none.
std::string RandomForeignBytes(std::mt19937& random, int characters);

}  // namespace text::test
