// What the writer takes from the file that a document was read from: headers, footers and notes, in its own numbers.
#include "text/rtf/RtfReader.h"
#include "text/rtfwrite/RtfWriter.h"

#include <algorithm>
#include <array>

namespace text::rtf {

namespace {

constexpr std::array<std::string_view, 8> kPageGroups{"header", "headerl", "headerr", "headerf",
                                                      "footer", "footerl", "footerr", "footerf"};

bool IsColorWord(std::string_view word) {
  constexpr std::array<std::string_view, 11> kWords{"cf",     "cb",      "highlight", "chcbpat", "chcfpat", "ulc",
                                                    "brdrcf", "clcbpat", "clcfpat",   "cbpat",   "cfpat"};
  return std::find(kWords.begin(), kWords.end(), word) != kWords.end();
}

// Words about tables of the file that are not written.
bool IsLostWord(std::string_view word) {
  constexpr std::array<std::string_view, 7> kWords{"s", "cs", "ds", "ts", "ls", "ilvl", "af"};
  return std::find(kWords.begin(), kWords.end(), word) != kWords.end();
}

}  // namespace

// The first of each kind: those of the first section.
std::vector<RtfWriter::PageGroup> RtfWriter::PageGroups(std::string_view source) {
  std::vector<PageGroup> groups;
  std::array<bool, kPageGroups.size()> found{};
  RtfTokenizer tokenizer(source);
  bool first = false;
  int depth = 0;
  uint8_t fallbackCount = 1;  // in the file's own group
  for (Token token = tokenizer.Next(); token.kind != TokenKind::kEnd; token = tokenizer.Next()) {
    depth += token.kind == TokenKind::kOpen ? 1 : token.kind == TokenKind::kClose ? -1 : 0;
    if (depth == 1 && token.text == "uc") fallbackCount = static_cast<uint8_t>(std::clamp(token.parameter, 0, 255));
    const bool isFirst = std::exchange(first, token.kind == TokenKind::kOpen);
    if (!isFirst) continue;
    if (token.kind == TokenKind::kSymbol && token.text == "*") tokenizer.SkipGroup();
    if (token.kind != TokenKind::kWord) continue;
    const auto kind = std::find(kPageGroups.begin(), kPageGroups.end(), token.text);
    if (kind == kPageGroups.end()) continue;
    const size_t begin = source.rfind('{', tokenizer.begin());
    tokenizer.SkipGroup();
    const bool closed = tokenizer.position() < source.size();
    if (std::exchange(found[static_cast<size_t>(kind - kPageGroups.begin())], true) || !closed) continue;
    groups.push_back({source.substr(begin, tokenizer.position() + 1 - begin), fallbackCount});
  }
  return groups;
}

bool RtfWriter::IsOfSource(const EmbeddedObject& object) const {
  return properties_.source && object.rtf.owner == properties_.source->bytes && !object.rtf.bytes.empty();
}

void RtfWriter::CollectFromSource(Range range, bool wholeDocument) {
  if (!properties_.source) return;
  const std::string_view source = *properties_.source->bytes;
  if (!LooksLikeRtf(source)) return;
  if (wholeDocument) pageGroups_ = PageGroups(source);
  std::vector<std::string_view> groups;
  for (const PageGroup& group : pageGroups_) groups.push_back(group.bytes);
  content_.ForEachPiece(range, [&](const PieceView& piece) {
    const ObjectId id = formats_[piece.charFormat].object;
    if (id != ObjectId::kNone && formats_[id].kind == ObjectKind::kNote && IsOfSource(formats_[id]))
      groups.push_back(formats_[id].rtf.bytes);
    return true;
  });
  if (groups.empty()) return;
  const std::string_view bytes = source.substr(source.find('{'));
  sourceTables_ = RtfReader(properties_.source->bytes, bytes, content_.store()).ReadTables();
  for (const std::string_view group : groups) {
    RtfTokenizer tokenizer(group);
    for (Token token = tokenizer.Next(); token.kind != TokenKind::kEnd; token = tokenizer.Next()) {
      if (token.kind != TokenKind::kWord) continue;
      if (token.text == "f") CollectFont(SourceFont(token.parameter));
      if (IsColorWord(token.text)) CollectColor(sourceTables_->ColorAt(token.parameter));
    }
  }
}

FontId RtfWriter::SourceFont(int32_t number) const {
  const auto found = sourceTables_->fonts.find(number);
  return found == sourceTables_->fonts.end() ? properties_.defaultFont : content_.formats().Intern(found->second.font);
}

// The word in the numbers of what is written; nothing for one that is left out, and for others the word itself.
std::string RtfWriter::Translated(const Token& token, std::string_view bytes) const {
  if (IsLostWord(token.text)) return bytes.ends_with(' ') ? " " : "";
  int32_t number = token.parameter;
  if (token.text == "f") {
    number = FontNumber(SourceFont(number));
  } else if (IsColorWord(token.text)) {
    number = ColorNumber(sourceTables_->ColorAt(number));
  } else {
    return std::string(bytes);
  }
  return "\\" + std::string(token.text) + std::to_string(number) + (bytes.ends_with(' ') ? " " : "");
}

}  // namespace text::rtf
