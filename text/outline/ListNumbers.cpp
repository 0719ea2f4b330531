#include "text/outline/ListNumbers.h"

#include "text/outline/SymbolFonts.h"

#include <algorithm>

namespace text::layout {
namespace {

constexpr char16_t kBullet = u'\u2022';

QString Roman(int32_t number) {
  static constexpr std::pair<int, const char*> kDigits[] = {
      {1000, "m"}, {900, "cm"}, {500, "d"}, {400, "cd"}, {100, "c"}, {90, "xc"}, {50, "l"},
      {40, "xl"},  {10, "x"},   {9, "ix"},  {5, "v"},    {4, "iv"},  {1, "i"}};
  QString text;
  for (const auto& [value, digits] : kDigits) {
    for (; number >= value; number -= value) text += QLatin1String(digits);
  }
  return text;
}

// a .. z, aa, bb .. zz, aaa and so on.
QString Letters(int32_t number) {
  constexpr int kMost = 20;
  const int repeats = std::min((number - 1) / 26 + 1, kMost);
  return QString(repeats, QChar(u'a' + (number - 1) % 26));
}

const char* OrdinalEnding(int32_t number) {
  const int last = number % 10;
  if (number / 10 % 10 == 1 || last == 0 || last > 3) return "th";
  return last == 1 ? "st" : last == 2 ? "nd" : "rd";
}

const ListLevel& LevelOf(const List& list, size_t level) {
  return list.levels[std::min(level, list.levels.size() - 1)];
}

QString Spell(const FormatTable& formats, const List& list, const ParaFormat& format, const ListCounts& counts) {
  const ListLevel& level = LevelOf(list, format.listLevel);
  QString text;
  std::string plain;
  const auto flush = [&] { text += QString::fromStdString(std::exchange(plain, {})); };
  for (const char c : level.label) {
    const auto number = static_cast<unsigned char>(c);
    if (number >= kListLevels) {
      plain += c;
      continue;
    }
    flush();
    const ListLevel& of = LevelOf(list, number);
    text += NumberText(of.style, counts.counted >> number & 1 ? counts.counts[number] : of.start);
  }
  flush();
  const Font& font = formats[level.font];
  if (font.charset != kSymbolCharset) return text;
  for (QChar& c : text) c = QChar(UnicodeOfSymbol(font.name, c.unicode()));
  return text;
}

}  // namespace

QString NumberText(NumberStyle style, int32_t number) {
  constexpr int32_t kMostRoman = 4999;
  const bool roman = number > 0 && number <= kMostRoman;
  switch (style) {
    case NumberStyle::kUpperRoman:
      return roman ? Roman(number).toUpper() : QString::number(number);
    case NumberStyle::kLowerRoman:
      return roman ? Roman(number) : QString::number(number);
    case NumberStyle::kUpperLetter:
      return number > 0 ? Letters(number).toUpper() : QString::number(number);
    case NumberStyle::kLowerLetter:
      return number > 0 ? Letters(number) : QString::number(number);
    case NumberStyle::kOrdinal:
      return QString::number(number) + QLatin1String(number > 0 ? OrdinalEnding(number) : "");
    case NumberStyle::kNone:
      return {};
    case NumberStyle::kDecimal:
      break;
  }
  return QString::number(number);
}

ListCounts& ListNumbers::State::Of(ListId list) {
  const auto at =
      std::lower_bound(lists.begin(), lists.end(), list, [](const auto& entry, ListId id) { return entry.first < id; });
  if (at != lists.end() && at->first == list) return at->second;
  return lists.insert(at, {list, {}})->second;
}

// Typing within a paragraph, and formats of characters.
bool ListNumbers::ChangesNoList(const Content& content, const Change& change) const {
  constexpr Breaks kMostCompared(8);
  const Breaks first = content.ParagraphAt(change.position);
  const Breaks was = content_.ParagraphAt(change.position + change.removed);
  const Breaks now = content.ParagraphAt(change.position + change.inserted);
  if (content.store() != content_.store() || was != now || now - first > kMostCompared) return false;
  if (first != now && !change.formatOnly) return false;
  for (Breaks paragraph = first; paragraph <= now; ++paragraph) {
    if (content.ParaFormatOf(paragraph) != content_.ParaFormatOf(paragraph)) return false;
  }
  return true;
}

void ListNumbers::Update(const Content& content, const std::optional<std::vector<Change>>& changes) {
  const bool same = changes && std::all_of(changes->begin(), changes->end(), [&](const Change& change) {
                      return changes->size() == 1 && ChangesNoList(content, change);
                    });
  if (!same) {
    Units position(0);
    if (changes && !changes->empty()) {
      position = std::min_element(changes->begin(), changes->end(), [](const Change& a, const Change& b) {
                   return a.position < b.position;
                 })->position;
    }
    const Breaks touched = content.ParagraphAt(position);
    std::erase_if(checkpoints_, [&](const State& state) { return state.paragraph > touched; });
    if (at_.paragraph > touched) at_ = start_;
  }
  content_ = content;
}

void ListNumbers::Count(const FormatTable& formats, const ParaFormat& format) {
  const ListId id = format.list;
  const ListId previous = std::exchange(at_.previous, id);
  ++at_.paragraph;
  if (id == ListId::kNone) return;
  const List& list = formats[id];
  if (list.levels.empty()) return;
  ListCounts& counts = at_.Of(id);
  if (list.identity == 0 && previous != id) counts = {};
  const size_t level = std::min<size_t>(format.listLevel, kListLevels - 1);
  const auto bit = static_cast<uint16_t>(1u << level);
  int32_t& count = counts.counts[level];
  count = counts.counted & bit ? count + (count < INT32_MAX) : LevelOf(list, level).start;
  counts.counted = static_cast<uint16_t>((counts.counted & (bit - 1)) | bit);
}

void ListNumbers::Walk(const Content& content, Breaks to) {
  const FormatTable& formats = content.formats();
  // With many lists a checkpoint is large; there are fewer then.
  const auto isDue = [this] {
    const int64_t step = std::max<int64_t>(kStep, 4 * static_cast<int64_t>(at_.lists.size()));
    const Breaks last = checkpoints_.empty() ? start_.paragraph : checkpoints_.back().paragraph;
    return (at_.paragraph - last).value() >= step;
  };
  const Range range{content.ParagraphStart(at_.paragraph), content.ParagraphStart(to)};
  content.ForEachPiece(range, [&](const PieceView& piece) {
    if (piece.sums.breaks == Breaks(0)) return true;
    const ParaFormat& format = formats[piece.paraFormat];
    if (format.list == ListId::kNone) {
      at_.paragraph += piece.sums.breaks;
      at_.previous = ListId::kNone;
      if (isDue()) checkpoints_.push_back(at_);
      return true;
    }
    for (int64_t left = piece.sums.breaks.value(); left > 0; --left) {
      Count(formats, format);
      if (isDue()) checkpoints_.push_back(at_);
    }
    return true;
  });
}

const ListNumbers::State& ListNumbers::StateBefore(const Content& content, Breaks paragraph) {
  const auto behind = std::upper_bound(checkpoints_.begin(), checkpoints_.end(), paragraph,
                                       [](Breaks at, const State& state) { return at < state.paragraph; });
  const State& near = behind == checkpoints_.begin() ? start_ : *std::prev(behind);
  if (at_.paragraph > paragraph || at_.paragraph < near.paragraph) at_ = near;
  Walk(content, paragraph);
  return at_;
}

QString ListNumbers::LabelOf(const Content& content, Breaks paragraph, const ParaFormat& format) {
  const FormatTable& formats = content.formats();
  if (format.list == ListId::kNone || formats[format.list].levels.empty()) {
    return format.bullet ? QString(QChar(kBullet)) : QString();
  }
  const List& list = formats[format.list];
  ListCounts counts;
  // A bullet needs no counting.
  const std::string& label = LevelOf(list, format.listLevel).label;
  if (std::any_of(label.begin(), label.end(), [](char c) { return static_cast<unsigned char>(c) < kListLevels; })) {
    StateBefore(content, paragraph);
    Count(formats, format);  // the next one asked for is mostly the following
    counts = at_.Of(format.list);
  }
  const QString text = Spell(formats, list, format, counts);
  return text.isEmpty() && format.bullet ? QString(QChar(kBullet)) : text;
}

void ListNumbers::StartBehind(const Content& whole, Breaks paragraph) {
  ListNumbers counted;
  start_ = counted.StateBefore(whole, paragraph);
  start_.paragraph = Breaks(0);
  at_ = start_;
  checkpoints_.clear();
}

}  // namespace text::layout
