#include "text/FormatTable.h"

#include <algorithm>
#include <string_view>

namespace text {
namespace {

constexpr size_t Mix(size_t seed, size_t value) {
  return (seed ^ value) * 0x9E3779B97F4A7C15ull + (seed << 6) + (seed >> 2);
}

template <class... T>
size_t HashOf(const T&... values) {
  size_t seed = 0;
  ((seed = Mix(seed, static_cast<size_t>(values))), ...);
  return seed ^ (seed >> 29);
}

size_t Hash(const Font& f) {
  return HashOf(std::hash<std::string>()(f.name), f.charset, f.family);
}

size_t Hash(const CharFormat& f) {
  return HashOf(f.font, f.halfPoints, f.flags, f.color.rgb, f.background.rgb, f.offset, f.object, f.link);
}

size_t Hash(const ParaFormat& f) {
  return HashOf(f.alignment, f.bullet, f.rightToLeft, f.leftIndent, f.firstIndent, f.rightIndent, f.spaceBefore,
                f.spaceAfter, f.lineSpacing, f.lineSpacingMultiple, f.tabs, f.list, f.listLevel, f.row, f.rowMark,
                f.box.borders, f.box.width, f.box.space, f.box.color.rgb, f.box.shading.rgb);
}

size_t Hash(const Tabs& tabs) {
  size_t seed = tabs.size();
  for (const TabStop& tab : tabs) seed = Mix(seed, HashOf(tab.position, tab.kind, tab.leader));
  return seed;
}

size_t Hash(const List& list) {
  size_t seed = HashOf(list.identity, list.levels.size());
  for (const ListLevel& level : list.levels)
    seed = Mix(seed, HashOf(level.style, level.start, std::hash<std::string>()(level.label), level.font));
  return seed;
}

size_t Hash(const TableRow& row) {
  size_t seed = HashOf(row.left, row.gap, row.height, row.level, std::hash<std::string>()(row.words));
  for (const TableCell& cell : row.cells) seed = Mix(seed, HashOf(cell.right, cell.borders, cell.shading.rgb));
  return seed;
}

size_t Hash(const std::string& link) {
  return std::hash<std::string>()(link);
}

// The id of the value, which is put in when it is new.
template <class Id, class T>
Id InternIn(std::mutex& mutex, StableVector<T>& values, std::unordered_multimap<size_t, uint32_t>& index,
            const T& value) {
  const std::lock_guard lock(mutex);
  const size_t hash = Hash(value);
  const auto [first, last] = index.equal_range(hash);
  for (auto it = first; it != last; ++it)
    if (values[it->second] == value) return static_cast<Id>(it->second);
  const auto id = static_cast<uint32_t>(values.Append(value));
  index.emplace(hash, id);
  return static_cast<Id>(id);
}

}  // namespace

FormatTable::FormatTable() {
  Intern(Font{});
  Intern(CharFormat{});
  Intern(ParaFormat{});
  Intern(Tabs{});
  Intern(List{});
  Intern(TableRow{});
  InternLink({});
  Add({});
}

FontId FormatTable::Intern(const Font& font) {
  return InternIn<FontId>(mutex_, fonts_, fontIndex_, font);
}

CharFormatId FormatTable::Intern(const CharFormat& format) {
  return InternIn<CharFormatId>(mutex_, chars_, charIndex_, format);
}

ParaFormatId FormatTable::Intern(const ParaFormat& format) {
  return InternIn<ParaFormatId>(mutex_, paras_, paraIndex_, format);
}

TabsId FormatTable::Intern(const Tabs& tabs) {
  Tabs sorted = tabs;
  std::sort(sorted.begin(), sorted.end());
  const auto samePlace = [](const TabStop& a, const TabStop& b) { return a.position == b.position; };
  sorted.erase(std::unique(sorted.begin(), sorted.end(), samePlace), sorted.end());
  if (sorted.size() > kMaxTabs) sorted.erase(sorted.begin() + kMaxTabs, sorted.end());
  return InternIn<TabsId>(mutex_, tabs_, tabsIndex_, sorted);
}

ListId FormatTable::Intern(const List& list) {
  return InternIn<ListId>(mutex_, lists_, listIndex_, list);
}

RowId FormatTable::Intern(const TableRow& row) {
  return InternIn<RowId>(mutex_, rows_, rowIndex_, row);
}

LinkId FormatTable::InternLink(const std::string& target) {
  return InternIn<LinkId>(mutex_, links_, linkIndex_, target);
}

ObjectId FormatTable::Add(EmbeddedObject object) {
  std::lock_guard lock(mutex_);
  return static_cast<ObjectId>(objects_.Append(std::move(object)));
}

}  // namespace text
