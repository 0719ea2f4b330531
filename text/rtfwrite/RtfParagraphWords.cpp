#include "text/rtfwrite/RtfParagraphWords.h"

#include "text/rtfsyntax/RtfKeywords.h"
#include "text/rtfsyntax/RtfLimits.h"
#include "text/rtfsyntax/RtfTokenizer.h"

#include <algorithm>
#include <array>
#include <utility>

namespace text::rtf {

namespace {

constexpr size_t kMostWords = 1000;
constexpr size_t kMostLookedAt = 64;  // for an earlier one of the same name, which counts no more

// Those about borders besides.
// clang-format off
constexpr auto kWords = std::to_array<std::string_view>({
    "absh", "abslock", "absnoovrlp", "absw", "adjustright", "aspalpha", "aspnum", "bgbdiag", "bgcross", "bgdcross",
    "bgdkbdiag", "bgdkcross", "bgdkdcross", "bgdkfdiag", "bgdkhoriz", "bgdkvert", "bgfdiag", "bghoriz", "bgvert",
    "box", "brsp", "cbpat", "cfpat", "collapsed", "contextualspacing", "cufi", "culi", "curi", "dfrmtxtx",
    "dfrmtxty", "dropcapli", "dropcapt", "dxfrtext", "faauto", "facenter", "fafixed", "fahang", "faroman", "favar",
    "frmtxbtlr", "frmtxlrtb", "frmtxlrtbv", "frmtxtbrl", "frmtxtbrlv", "hyphpar", "ilvl", "indmirror", "intbl",
    "itap", "keep", "keepn", "level", "lin", "linkstyles", "lisa", "lisb", "ls", "nocwrap", "noline", "nooverflow",
    "nosnaplinegrid", "nowidctlpar", "nowrap", "nowwrap", "outlinelevel", "overlay", "pagebb", "pararsid", "phcol",
    "phmrg", "phpg", "pnrauth", "posnegx", "posnegy", "posx", "posxc", "posxi", "posxl", "posxo", "posxr", "posy",
    "posyb", "posyc", "posyil", "posyin", "posyout", "posyt", "prauth", "prdate", "pvmrg", "pvpara", "pvpg", "qk",
    "qt", "rin", "s", "saauto", "sbauto", "sbys", "shading", "spv", "subdocument", "tb", "tldot", "tleq", "tlhyph",
    "tlmdot", "tlth", "tlul", "toplinepunct", "tqc", "tqdec", "tqr", "tscfirstcol", "tscfirstrow", "tsclastcol",
    "tsclastrow", "tx", "txbxtwalways", "txbxtwfirst", "txbxtwfirstlast", "txbxtwlast", "txbxtwno", "widctlpar",
    "wraparound", "wrapdefault", "wrapthrough", "wraptight", "yts",
});
// clang-format on
static_assert(std::is_sorted(kWords.begin(), kWords.end()));

bool IsAboutParagraphs(std::string_view word) {
  return word.starts_with("brdr") || std::binary_search(kWords.begin(), kWords.end(), word);
}

// Borders and shading, of which the model knows a part.
bool IsAboutBox(std::string_view word) {
  return word.starts_with("brdr") || word.starts_with("bg") || word == "box" || word == "brsp" || word == "shading" ||
         word == "cfpat" || word == "cbpat";
}

// The kind or leader of the stop that follows.
bool IsAboutStop(std::string_view word) {
  return word.starts_with("tq") || word.starts_with("tl");
}

void Apply(std::string_view word, TabStop& stop) {
  const Keyword* keyword = FindKeyword(word);
  if (keyword && keyword->op == Op::kTabKind) stop.kind = static_cast<TabKind>(keyword->value);
  if (keyword && keyword->op == Op::kTabLeader) stop.leader = static_cast<TabLeader>(keyword->value);
}

bool SameList(const ParaFormat& a, const ParaFormat& b) {
  return a.bullet == b.bullet && a.list == b.list && a.listLevel == b.listLevel;
}

void Say(std::string& words, const Token& token) {
  words += '\\';
  words += token.text;
  if (token.hasParameter) words += std::to_string(token.parameter);
}

}  // namespace

void ParagraphWords::OnGroupEnd() {
  if (groups_.empty()) return;
  first_ = groups_.back().first;
  words_.resize(groups_.back().size);
  groups_.pop_back();
}

void ParagraphWords::OnReset() {
  first_ = groups_.empty() ? 0 : groups_.back().size;
  words_.resize(first_);
}

void ParagraphWords::OnWord(Span span) {
  const std::string_view bytes = source_.substr(span.begin + 1, span.size() - 1);
  const auto letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  const auto name = [&](std::string_view word) {
    return word.substr(0, static_cast<size_t>(std::find_if_not(word.begin(), word.end(), letter) - word.begin()));
  };
  const std::string_view word = name(bytes);
  if (!IsAboutParagraphs(word)) return;
  if (!words_.empty() && words_.back().begin == span.begin) return;
  if (!IsAboutBox(word) && !IsAboutStop(word) && word != "tx" && word != "tb") {
    const size_t here = std::max(first_, groups_.empty() ? 0 : groups_.back().size);
    const size_t lookAt = std::max(here, words_.size() - std::min(words_.size(), kMostLookedAt));
    const auto same = [&](Span before) { return name(source_.substr(before.begin + 1, before.size() - 1)) == word; };
    const auto found = std::find_if(words_.begin() + static_cast<std::ptrdiff_t>(lookAt), words_.end(), same);
    if (found != words_.end()) words_.erase(found);
  }
  words_.push_back(span);
  if (words_.size() - first_ > kMostWords) ++first_;
}

ParagraphWords::Kept ParagraphWords::Replay(const ParaFormat& from, const ParaFormat& to, FormatTable& formats) const {
  Kept kept;
  std::string aboutStop;
  TabStop stop{0};
  Tabs stops;
  kept.box = from.box == to.box;
  const Tabs& wanted = formats[to.tabs];
  for (size_t i = first_; i < words_.size(); ++i) {
    const Token token = RtfTokenizer(source_.substr(words_[i].begin, words_[i].size())).Next();
    const std::string_view word = token.text;
    if (IsAboutStop(word)) {
      Say(aboutStop, token);
      Apply(word, stop);
      continue;
    }
    const bool isStop = word == "tx" || word == "tb";
    const std::string kind = isStop ? std::exchange(aboutStop, {}) : std::string();
    if (isStop) stop.position = ClampLength(token.parameter);
    const TabStop said = isStop ? std::exchange(stop, {0}) : stop;
    if (word == "tx" && !std::binary_search(wanted.begin(), wanted.end(), said)) continue;
    kept.words += kind;
    if (word == "tx") stops.push_back(said);
    const bool ofList = word == "ls" || word == "ilvl";
    if (ofList && !SameList(from, to)) continue;
    if (!kept.box && IsAboutBox(word)) continue;
    // An indent of 0 is not said again, and these would count then.
    const auto counts = [&token](int before, int after) {
      return before != after || (after == 0 && token.parameter != 0);
    };
    if (word == "lin" && counts(from.leftIndent, to.leftIndent)) continue;
    if (word == "rin" && counts(from.rightIndent, to.rightIndent)) continue;
    Say(kept.words, token);
    if (ofList) Say(kept.list, token);
  }
  kept.stops = formats.Intern(stops);
  return kept;
}

}  // namespace text::rtf
