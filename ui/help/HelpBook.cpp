#include "ui/help/HelpBook.h"

#include "ui/help/HelpHtml.h"

#include <QUrl>

#include <algorithm>
#include <set>

namespace ui {
namespace {

constexpr int kDeepestChapter = 16;
constexpr size_t kHead = 2048;  // bytes of a page that are looked at for where it leads
constexpr size_t kMostChapters = 5000, kMostTopics = 20000;
constexpr qsizetype kMostSearched = 32'000'000;  // characters of all pages together
constexpr qsizetype kLongestText = 20000, kAround = 60;
constexpr size_t kLongestName = 512;  // of an entry, as the format has it
constexpr qsizetype kLongestLink = 4000;
constexpr int kDeepestPath = 8;

// The numbers of the file's tables are little-endian; beyond the end they are nothing.
std::optional<uint32_t> NumberAt(std::string_view bytes, size_t at, size_t size) {
  if (at > bytes.size() || bytes.size() - at < size) return std::nullopt;
  uint32_t number = 0;
  for (size_t i = size; i-- > 0;) number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
  return number;
}

std::string_view TextAt(std::string_view bytes, size_t at) {
  if (at >= bytes.size()) return {};
  bytes.remove_prefix(at);
  return bytes.substr(0, bytes.find('\0'));
}

bool IsPage(std::string_view name) {
  return name.ends_with(".htm") || name.ends_with(".html") || name.ends_with(".xhtml");
}

// "a/../b/./c" as "b/c".
std::string WithoutDots(const std::string& path) {
  std::vector<std::string> parts;
  size_t at = 0;
  while (at <= path.size()) {
    const size_t end = std::min(path.find('/', at), path.size());
    const std::string part = path.substr(at, end - at);
    if (part == ".." && !parts.empty()) parts.pop_back();
    if (part != ".." && part != "." && !part.empty()) parts.push_back(part);
    at = end + 1;
  }
  std::string joined;
  for (const std::string& part : parts) joined += (joined.empty() ? "" : "/") + part;
  return joined;
}

}  // namespace

HelpBook::HelpBook(ChmEntries entries) : entries_(std::move(entries)) {
  ReadSystem();
  ReadTopics();
  ReadContents();
  ReadTexts();
  ReadPages();
  if (Has(start_)) return;
  const auto chapter = std::ranges::find_if(contents_, [this](const HelpChapter& each) { return Has(each.place); });
  if (chapter != contents_.end())
    start_ = chapter->place;
  else if (!pages_.empty())
    start_ = pages_.front().place;
}

const std::string* HelpBook::BytesOf(const std::string& page) const {
  const auto found = entries_.find(page);
  return found == entries_.end() ? nullptr : &found->second;
}

QString HelpBook::PageOf(const HelpPlace& place) const {
  const std::string* const bytes = BytesOf(place.page);
  if (!bytes) return {};
  QString page = DecodePage(*bytes);
  if (IsPage(place.page)) return page;
  return QStringLiteral("<pre>%1</pre>").arg(page.left(kLongestPage).toHtmlEscaped());
}

QString HelpBook::TitleOf(const HelpPlace& place) const {
  const auto chapter =
      std::ranges::find(contents_, place.page, [](const HelpChapter& each) { return each.place.page; });
  if (chapter != contents_.end()) return chapter->title;
  const QString title = IsPage(place.page) ? PageTitle(PageOf(place)) : QString();
  return title.isEmpty() ? QString::fromStdString(place.page) : title;
}

HelpPlace HelpBook::PlaceOf(const QString& target) const {
  return Resolve({}, target).value_or(HelpPlace());
}

std::optional<HelpPlace> HelpBook::Resolve(const std::string& fromPage, const QString& link) const {
  if (link.size() > kLongestLink) return std::nullopt;
  QString path = link.trimmed();
  // "mk:@MSITStore:UM.chm::/page.htm" and "ms-its:UM.chm::/page.htm" are this file's too.
  if (const qsizetype inner = path.indexOf(QLatin1String("::/")); inner >= 0) path = path.mid(inner + 2);
  const qsizetype hash = path.indexOf(u'#');
  const QString anchor = hash < 0 ? QString() : QUrl::fromPercentEncoding(path.mid(hash + 1).toUtf8());
  path = QUrl::fromPercentEncoding(path.left(hash < 0 ? path.size() : hash).toUtf8()).replace(u'\\', u'/');
  if (path.contains(u':')) return std::nullopt;
  if (path.isEmpty()) return HelpPlace{fromPage, anchor};
  const size_t slash = fromPage.rfind('/');
  const std::string folder = path.startsWith(u'/') || slash == std::string::npos ? "" : fromPage.substr(0, slash + 1);
  const HelpPlace place{ChmKey(WithoutDots(folder + path.toStdString())), anchor};
  if (!Has(place)) return std::nullopt;
  return place;
}

// Version, then entries of a code, a length and so many bytes.
void HelpBook::ReadSystem() {
  const std::string* const bytes = BytesOf("#system");
  if (!bytes) return;
  enum Code : uint32_t { kContents = 0, kDefaultTopic = 2, kTitle = 3 };
  for (size_t at = 4; at + 4 <= bytes->size();) {
    const uint32_t code = *NumberAt(*bytes, at, 2), length = *NumberAt(*bytes, at + 2, 2);
    const std::string text(TextAt(std::string_view(*bytes).substr(at + 4, length), 0));
    if (code == kContents) contentsFile_ = ChmKey(text);
    if (code == kDefaultTopic) start_ = PlaceOf(DecodePage(text));
    if (code == kTitle) title_ = DecodePage(text).simplified();
    at += 4 + length;
  }
}

// Some compilers leave the name with the path that it had on their machine.
HelpPlace HelpBook::TopicNamed(const QString& name) const {
  QString rest = QString(name).replace(u'\\', u'/');
  HelpPlace place = PlaceOf(rest);
  for (int i = 0; i < kDeepestPath && place.page.empty() && rest.contains(u'/'); ++i) {
    rest = rest.mid(rest.indexOf(u'/') + 1);
    place = PlaceOf(rest);
  }
  return place;
}

// Pairs of a topic's number and of the place of its page's name among the strings.
void HelpBook::ReadTopics() {
  const std::string* const numbers = BytesOf("#ivb");
  const std::string* const strings = BytesOf("#strings");
  if (!numbers || !strings) return;
  for (size_t at = 4; topics_.size() < kMostTopics; at += 8) {
    const auto number = NumberAt(*numbers, at, 4), name = NumberAt(*numbers, at + 4, 4);
    if (!number || !name) break;
    topics_.emplace_back(*number, TopicNamed(DecodePage(TextAt(*strings, *name).substr(0, kLongestName))));
  }
}

// Lists of objects with parameters, within each other as chapters are.
void HelpBook::ReadContents() {
  const std::string* bytes = BytesOf(contentsFile_);
  if (!bytes) {
    const auto any = std::ranges::find_if(entries_, [](const auto& entry) { return entry.first.ends_with(".hhc"); });
    bytes = any == entries_.end() ? nullptr : &any->second;
  }
  const QString page = bytes ? DecodePage(*bytes) : QString();
  HtmlTokens tokens(page);
  HelpChapter chapter;
  int depth = -1;
  for (HtmlToken token; contents_.size() < kMostChapters && tokens.Next(token);) {
    const bool open = token.kind == HtmlToken::Kind::kOpen;
    if (token.name == QLatin1String("ul")) depth = std::max(depth + (open ? 1 : -1), -1);
    if (token.name == QLatin1String("object") && open) chapter = {std::clamp(depth, 0, kDeepestChapter), {}, {}};
    if (token.name == QLatin1String("param")) {
      const QString name = token.Attribute(QLatin1String("name")), value = token.Attribute(QLatin1String("value"));
      if (name.compare(QLatin1String("Name"), Qt::CaseInsensitive) == 0) chapter.title = value.simplified().left(200);
      if (name.compare(QLatin1String("Local"), Qt::CaseInsensitive) == 0) chapter.place = PlaceOf(value);
    }
    if (token.name == QLatin1String("object") && !open && !chapter.title.isEmpty()) contents_.push_back(chapter);
  }
  if (!contents_.empty()) return;
  for (const auto& [name, ignored] : entries_)
    if (IsPage(name) && contents_.size() < kMostChapters) contents_.push_back({0, TitleOf({name, {}}), {name, {}}});
}

// Lines ".topic N", each followed by its text.
void HelpBook::ReadTexts() {
  for (const auto& [name, bytes] : entries_) {
    if (!name.ends_with(".txt") || !bytes.starts_with(".topic")) continue;
    for (const QString& topic : DecodePage(bytes).remove(u'\r').split(QStringLiteral(".topic"), Qt::SkipEmptyParts)) {
      bool isNumber = false;
      const qsizetype end = topic.indexOf(u'\n');
      const int64_t number = topic.left(end < 0 ? topic.size() : end).trimmed().toLongLong(&isNumber);
      if (isNumber && end >= 0 && texts_.size() < kMostTopics)
        texts_.emplace_back(number, topic.mid(end + 1).trimmed().left(kLongestText));
    }
  }
}

std::optional<HelpPlace> HelpBook::TopicPlace(int64_t number) const {
  const auto found = std::ranges::find(topics_, number, [](const auto& topic) { return topic.first; });
  if (found == topics_.end() || !Has(found->second)) return std::nullopt;
  return LeadsTo(found->second.page).value_or(found->second);
}

// A page may only say which one is meant.
std::optional<HelpPlace> HelpBook::LeadsTo(const std::string& page) const {
  if (!IsPage(page)) return std::nullopt;
  const QString source = DecodePage(std::string_view(*BytesOf(page)).substr(0, kHead));
  HtmlTokens tokens(source);
  for (HtmlToken token; tokens.Next(token) && token.name != QLatin1String("body");) {
    if (token.name != QLatin1String("meta")) continue;
    if (token.Attribute(QLatin1String("http-equiv")).compare(QLatin1String("refresh"), Qt::CaseInsensitive) != 0)
      continue;
    const QString content = token.Attribute(QLatin1String("content"));
    const qsizetype url = content.indexOf(QLatin1String("url="), 0, Qt::CaseInsensitive);
    return url < 0 ? std::nullopt : Resolve(page, content.mid(url + 4));
  }
  return std::nullopt;
}

std::optional<QString> HelpBook::TextOf(int64_t number) const {
  const auto found = std::ranges::find(texts_, number, [](const auto& text) { return text.first; });
  if (found != texts_.end()) return found->second;
  const auto place = TopicPlace(number);
  if (!place) return std::nullopt;
  const QString page = DecodePage(*BytesOf(place->page));
  return (IsPage(place->page) ? PageText(page) : page.trimmed()).left(kLongestText);
}

void HelpBook::ReadPages() {
  std::set<std::string> seen;
  qsizetype total = 0;
  const auto add = [&](const std::string& name) {
    if (!IsPage(name) || !Has({name, {}}) || total > kMostSearched || LeadsTo(name) || !seen.insert(name).second)
      return;
    const HelpPlace place{name, {}};
    const QString text = PageText(PageOf(place));
    total += text.size();
    QString title = TitleOf(place);
    pages_.push_back({place, std::move(title), text, text.toCaseFolded()});
  };
  for (const HelpChapter& chapter : contents_) add(chapter.place.page);
  for (const auto& [name, ignored] : entries_) add(name);
}

std::vector<HelpFound> HelpBook::Search(const QString& words) const {
  const QStringList wanted = words.toCaseFolded().split(u' ', Qt::SkipEmptyParts);
  if (wanted.isEmpty()) return {};
  std::vector<HelpFound> inTitle, inText;
  for (const Searched& page : pages_) {
    const QString title = page.title.toCaseFolded();
    const auto in = [](const QString& text) { return [&text](const QString& word) { return text.contains(word); }; };
    const bool titled = std::ranges::all_of(wanted, in(title));
    if (!titled && !std::ranges::all_of(
                       wanted, [&](const QString& word) { return page.folded.contains(word) || title.contains(word); }))
      continue;
    const qsizetype first = std::max<qsizetype>(page.folded.indexOf(wanted.front()), 0);
    const qsizetype begin = std::max<qsizetype>(first - kAround, 0);
    const QString excerpt = page.text.mid(begin, 2 * kAround).simplified();
    (titled ? inTitle : inText).push_back({page.place, page.title, excerpt});
  }
  inTitle.insert(inTitle.end(), inText.begin(), inText.end());
  inTitle.resize(std::min(inTitle.size(), kMostFound));
  return inTitle;
}

}  // namespace ui
