#include "text/rtfsave/RtfSpliceTables.h"

#include "text/rtfsyntax/RtfCharacters.h"
#include "text/rtfsyntax/RtfTokenizer.h"
#include "text/rtfwrite/RtfWords.h"

#include <algorithm>
#include <array>

namespace text::rtf {

namespace {

constexpr int32_t kHighestNumber = 1 << 30;  // leaves room for new ones

bool IsFontWord(std::string_view word) {
  constexpr std::array<std::string_view, 6> kWords{"f", "af", "deff", "adeff", "pnf", "cchs"};
  return std::find(kWords.begin(), kWords.end(), word) != kWords.end() || word.starts_with("stshf");
}

bool IsColorWord(std::string_view word) {
  return word.find("cf") != std::string_view::npos || word.find("cb") != std::string_view::npos ||
         word == "highlight" || word == "ulc";
}

}  // namespace

// Words in pictures' data and the like count too; that costs a number.
SpliceTables::Highest& SpliceTables::InUse() {
  if (inUse_) return *inUse_;
  Highest highest;
  highest.font = std::clamp(tables_.defaultFont, 0, kHighestNumber);
  RtfTokenizer tokenizer(source_);
  for (Token token = tokenizer.Next(); token.kind != TokenKind::kEnd; token = tokenizer.Next()) {
    if (token.kind != TokenKind::kWord) continue;
    if (token.text == "listid") highest.listIds.insert(token.parameter);
    if (token.parameter <= 0) continue;
    if (token.text == "ls") highest.list = std::max(highest.list, std::min(token.parameter, kHighestNumber));
    if (IsFontWord(token.text)) highest.font = std::max(highest.font, std::min(token.parameter, kHighestNumber));
    if (IsColorWord(token.text) && token.parameter < static_cast<int32_t>(kMaxColors))
      highest.color = std::max(highest.color, token.parameter);
  }
  return inUse_.emplace(highest);
}

void SpliceTables::KnowFonts() {
  if (generation_ == tables_.fontGeneration) return;
  generation_ = tables_.fontGeneration;
  fonts_.clear();
  for (const auto& [number, entry] : tables_.fonts) fonts_.emplace(formats_.Intern(entry.font), number);
}

int32_t SpliceTables::Number(FontId font) {
  if (font == FontId::kDefault) return tables_.defaultFont;
  KnowFonts();
  if (const auto found = fonts_.find(font); found != fonts_.end()) return found->second;
  const auto [place, isNew] = ownFonts_.try_emplace(font, 0);
  if (!isNew) return place->second;
  place->second = InUse().font + static_cast<int32_t>(ownFonts_.size());
  RtfWords(newFonts_).FontEntry(place->second, formats_[font]);
  return place->second;
}

int32_t SpliceTables::Number(Color color) {
  const auto& colors = tables_.colors;
  if (color.isAuto()) {
    const auto found = std::find_if(colors.begin(), colors.end(), [](Color c) { return c.isAuto(); });
    if (colors.empty()) return 0;
    return found == colors.end() ? NewColor(std::nullopt) : static_cast<int32_t>(found - colors.begin());
  }
  const uint32_t rgb = color.rgb & 0xFFFFFF;
  // The first one means "none" as a background.
  for (size_t i = 1; i < colors.size(); ++i)
    if (colors[i].rgb == rgb) return static_cast<int32_t>(i);
  return NewColor(rgb);
}

int32_t SpliceTables::NewColor(std::optional<uint32_t> rgb) {
  const auto [place, isNew] = ownColors_.try_emplace(rgb, 0);
  if (!isNew) return place->second;
  const int32_t defined = static_cast<int32_t>(tables_.colors.size()) + openColor_;
  const int32_t first = std::max({defined, InUse().color + 1, 1});
  if (newColors_.empty()) newColors_.assign(static_cast<size_t>(first - defined), ';');
  place->second = first + static_cast<int32_t>(ownColors_.size()) - 1;
  RtfWords(newColors_).ColorEntry(rgb ? Color{*rgb} : Color{});
  return place->second;
}

void SpliceTables::ColorTableEnds(std::string_view table) {
  const size_t last = table.find_last_not_of(" \t\r\n");
  openColor_ = last != std::string_view::npos && table[last] != ';' && !table.ends_with("\\colortbl");
}

int32_t SpliceTables::Number(ListId list) {
  const auto [place, isNew] = ownLists_.try_emplace(list, 0);
  if (!isNew) return place->second;
  Highest& inUse = InUse();
  int32_t id = formats_[list].identity;
  while (id == 0 || !inUse.listIds.insert(id).second) id = static_cast<int32_t>(static_cast<uint32_t>(id) + 1);
  place->second = inUse.list + static_cast<int32_t>(ownLists_.size());
  TableNumbers numbers;
  numbers.font = [this](FontId font) { return Number(font); };
  RtfWords(newLists_).ListEntry(formats_[list], id, formats_, numbers);
  RtfWords(newOverrides_).OverrideEntry(id, place->second);
  return place->second;
}

std::string SpliceTables::New(RtfWatcher::Table table) const {
  switch (table) {
    case RtfWatcher::Table::kFonts:
      return newFonts_;
    case RtfWatcher::Table::kColors:
      return openColor_ && !newColors_.empty() ? ";" + newColors_ : newColors_;
    case RtfWatcher::Table::kLists:
      return newLists_;
    case RtfWatcher::Table::kOverrides:
      return newOverrides_;
  }
  return {};
}

std::string SpliceTables::OwnTable(RtfWatcher::Table table) const {
  constexpr std::array<std::string_view, 4> kBegins{"{\\fonttbl", "{\\colortbl", "{\\*\\listtable",
                                                    "{\\*\\listoverridetable"};
  const std::string entries = New(table);
  return entries.empty() ? entries : std::string(kBegins[static_cast<size_t>(table)]) + entries + "}";
}

size_t EndOfHeader(std::string_view source) {
  constexpr std::array<std::string_view, 14> kWords{"rtf",       "ansi",     "mac",    "pc",    "pca",
                                                    "ansicpg",   "uc",       "deff",   "adeff", "deflang",
                                                    "deflangfe", "adeflang", "fbidis", "urtf"};
  RtfTokenizer tokenizer(source);
  tokenizer.Next();
  while (true) {
    const size_t end = tokenizer.position();
    const Token token = tokenizer.Next();
    const bool known =
        token.kind == TokenKind::kWord &&
        (std::find(kWords.begin(), kWords.end(), token.text) != kWords.end() || token.text.starts_with("stshf"));
    if (!known) return end;
  }
}

}  // namespace text::rtf
