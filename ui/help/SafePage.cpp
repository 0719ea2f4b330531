// What of a help file's page a view is given, and its words.
#include "ui/help/HelpHtml.h"

#include <QCoreApplication>

#include <algorithm>
#include <iterator>
#include <span>

namespace ui {
namespace {

using Kind = HtmlToken::Kind;

enum Trait : uint8_t { kInline = 0, kBlock = 1, kVoid = 2, kItem = 4, kHolder = 8 };

struct Element {
  QLatin1String name;
  int traits;                  // a holder holds items; an item ends the one before it
  QLatin1String holders = {};  // of an item
};

constexpr Element kElements[] = {
    {QLatin1String("a"), kInline},         {QLatin1String("abbr"), kInline},
    {QLatin1String("address"), kBlock},    {QLatin1String("b"), kInline},
    {QLatin1String("big"), kInline},       {QLatin1String("blockquote"), kBlock},
    {QLatin1String("br"), kVoid},          {QLatin1String("center"), kBlock},
    {QLatin1String("cite"), kInline},      {QLatin1String("code"), kInline},
    {QLatin1String("dd"), kBlock | kItem}, {QLatin1String("dfn"), kInline},
    {QLatin1String("div"), kBlock},        {QLatin1String("dl"), kBlock | kHolder},
    {QLatin1String("dt"), kBlock | kItem}, {QLatin1String("em"), kInline},
    {QLatin1String("h1"), kBlock},         {QLatin1String("h2"), kBlock},
    {QLatin1String("h3"), kBlock},         {QLatin1String("h4"), kBlock},
    {QLatin1String("h5"), kBlock},         {QLatin1String("h6"), kBlock},
    {QLatin1String("hr"), kBlock | kVoid}, {QLatin1String("i"), kInline},
    {QLatin1String("img"), kVoid},         {QLatin1String("kbd"), kInline},
    {QLatin1String("li"), kBlock | kItem}, {QLatin1String("ol"), kBlock | kHolder},
    {QLatin1String("p"), kBlock},          {QLatin1String("pre"), kBlock},
    {QLatin1String("s"), kInline},         {QLatin1String("samp"), kInline},
    {QLatin1String("small"), kInline},     {QLatin1String("span"), kInline},
    {QLatin1String("strong"), kInline},    {QLatin1String("sub"), kInline},
    {QLatin1String("sup"), kInline},       {QLatin1String("table"), kBlock | kHolder},
    {QLatin1String("td"), kBlock | kItem}, {QLatin1String("th"), kBlock | kItem},
    {QLatin1String("tr"), kBlock | kItem}, {QLatin1String("tt"), kInline},
    {QLatin1String("u"), kInline},         {QLatin1String("ul"), kBlock | kHolder},
    {QLatin1String("var"), kInline},
};

const Element* Find(const QString& name) {
  const auto* found = std::ranges::lower_bound(kElements, name, {}, [](const Element& e) { return QString(e.name); });
  return found != std::end(kElements) && name == found->name ? found : nullptr;
}

constexpr QLatin1String kTexts[] = {QLatin1String("align"), QLatin1String("alt"),  QLatin1String("class"),
                                    QLatin1String("dir"),   QLatin1String("href"), QLatin1String("id"),
                                    QLatin1String("name"),  QLatin1String("src"),  QLatin1String("type"),
                                    QLatin1String("valign")};
constexpr QLatin1String kNumbers[] = {
    QLatin1String("border"), QLatin1String("cellpadding"), QLatin1String("cellspacing"), QLatin1String("colspan"),
    QLatin1String("height"), QLatin1String("rowspan"),     QLatin1String("start"),       QLatin1String("width")};
constexpr int kLargestSpan = 50, kLargestNumber = 4000;

bool Holds(std::span<const QLatin1String> names, const QString& name) {
  return std::ranges::any_of(names, [&](QLatin1String each) { return name == each; });
}

// Empty when the attribute is left out.
QString SafeAttribute(const QString& name, const QString& value) {
  QString safe = value;
  if (Holds(kNumbers, name)) {
    const bool percent = value.endsWith(u'%');
    const int most = percent ? 100 : name.endsWith(QLatin1String("span")) ? kLargestSpan : kLargestNumber;
    safe = QString::number(std::clamp((percent ? value.chopped(1) : value).toInt(), 0, most)) +
           (percent ? QStringLiteral("%") : QString());
  } else if (!Holds(kTexts, name) || value.size() > kLargestNumber) {
    return {};
  }
  return QStringLiteral(" %1=\"%2\"").arg(name, safe.toHtmlEscaped());
}

// Of the grid of its table.
int SpannedBy(const HtmlToken& cell) {
  const auto span = [&](QLatin1String name) { return std::clamp(cell.Attribute(name).toInt(), 1, kLargestSpan); };
  return span(QLatin1String("colspan")) * span(QLatin1String("rowspan"));
}

// Writes elements and remembers those that are open.
class Writer {
 public:
  QString Take() {
    while (!open_.empty()) Pop();
    return std::move(page_);
  }
  bool full() const { return page_.size() > kLongestPage; }
  void Text(const QString& text) {
    for (const QChar unit : text) {
      BreakWordBefore(unit);
      unit == u'<' ? page_ += QLatin1String("&lt;") : unit == u'>' ? page_ += QLatin1String("&gt;") : page_ += unit;
      if (full()) return;
    }
  }
  void SayCut() {
    while (!open_.empty()) Pop();
    page_ += QLatin1String("<p><i>") + QCoreApplication::translate("Help", "The rest of the page is left out.") +
             QLatin1String("</i></p>");
  }
  void Open(const Element& element, const HtmlToken& token) {
    if (++elements_ > kMostElements) {
      while (!open_.empty()) Pop();  // what follows is text, and text in a row alone would be lost
      return;
    }
    if (element.traits & (kBlock | kVoid)) inWord_ = 0;
    if (element.traits & kBlock) EndBefore(element);
    const bool table = element.name == QLatin1String("table");
    if (static_cast<int>(open_.size()) >= kDeepestElements || (table && tables_ >= kDeepestTables)) return;
    const bool cell = element.name == QLatin1String("td") || element.name == QLatin1String("th");
    if (cells_ >= kMostCells && (table || cell || element.name == QLatin1String("tr"))) return LeaveTable(cell);
    cells_ += cell;
    if (cell) spanned_ += SpannedBy(token);
    page_ += u'<' + QString(element.name);
    for (const auto& [name, value] : token.attributes)
      if (!cell || spanned_ <= kMostSpanned || !name.endsWith(QLatin1String("span")))
        page_ += SafeAttribute(name, value);
    page_ += u'>';
    if (element.traits & kVoid) return;
    tables_ += table;
    open_.push_back(&element);
  }
  void Close(const Element& element) {
    const auto at = std::find(open_.rbegin(), open_.rend(), &element);
    // The end of an item reaches no further than its list or table.
    const auto holder = std::find_if(open_.rbegin(), at, [&](const Element* each) {
      return (each->traits & kHolder) && !(element.traits & kHolder);
    });
    if (at == open_.rend() || holder != at) return;
    while (open_.back() != &element) Pop();
    Pop();
  }

 private:
  // Neither entities nor pairs are torn. An entity counts as one unit once it has ended as such.
  void BreakWordBefore(QChar unit) {
    const bool begins = unit == u'&', inside = inEntity_ > 0 && !begins;
    inWord_ = unit.isSpace() ? 0 : inWord_ + 1;
    const bool torn = inside || unit.isLowSurrogate();
    if (inWord_ > kLongestWord + (torn ? kLongestEntity : 0)) {
      page_ += u' ';
      inWord_ = 1;
    }
    if (begins) atEntity_ = inWord_;
    if (inside && unit == u';') inWord_ = atEntity_;
    inEntity_ = begins ? kLongestEntity : unit == u';' || unit.isSpace() ? 0 : std::max(inEntity_ - 1, 0);
  }
  // What follows is text: that of a row without cells would be lost.
  void LeaveTable(bool cell) {
    while (tables_ > 0) Pop();
    page_ += cell ? QLatin1String(" ") : QLatin1String("<br>");
  }
  // A paragraph ends where a block begins; an item where the next one does.
  void EndBefore(const Element& element) {
    const auto isRow = [](const Element* each) { return each->name == QLatin1String("tr"); };
    if (element.traits & kItem) {
      size_t keep = open_.size();
      while (keep > 0 && !(open_[keep - 1]->traits & kHolder)) --keep;
      const bool cell = element.name == QLatin1String("td") || element.name == QLatin1String("th");
      if (keep > 0 && cell && keep < open_.size() && isRow(open_[keep])) ++keep;
      if (keep > 0) {
        while (open_.size() > keep) Pop();
      }
      return;
    }
    const auto paragraph = std::find_if(open_.rbegin(), open_.rend(), [](const Element* each) {
      return (each->traits & (kHolder | kItem)) || each->name == QLatin1String("p");
    });
    if (paragraph == open_.rend() || (*paragraph)->name != QLatin1String("p")) return;
    const Element* const p = *paragraph;
    while (open_.back() != p) Pop();
    Pop();
  }
  void Pop() {
    page_ += QLatin1String("</") + QString(open_.back()->name) + u'>';
    tables_ -= open_.back()->name == QLatin1String("table");
    open_.pop_back();
  }

  QString page_;
  std::vector<const Element*> open_;
  int elements_ = 0, tables_ = 0, cells_ = 0, spanned_ = 0;
  static constexpr int kLongestEntity = 12;
  int inEntity_ = 0;
  qsizetype inWord_ = 0, atEntity_ = 0;
};

}  // namespace

QString SafePage(const QString& page) {
  HtmlTokens tokens(page);
  Writer writer;
  bool inTitle = false;
  for (HtmlToken token; !writer.full() && tokens.Next(token);) {
    if (token.name == QLatin1String("title")) inTitle = token.kind == Kind::kOpen;
    const Element* const element = Find(token.name);
    if (token.kind == Kind::kText && !inTitle) writer.Text(token.text);
    if (element && token.kind == Kind::kOpen) writer.Open(*element, token);
    if (element && token.kind == Kind::kClose) writer.Close(*element);
  }
  if (writer.full()) writer.SayCut();
  return writer.Take();
}

QString PageText(const QString& page) {
  HtmlTokens tokens(page);
  QString text;
  bool inTitle = false;
  for (HtmlToken token; text.size() < kLongestPage && tokens.Next(token);) {
    if (token.name == QLatin1String("title")) inTitle = token.kind == Kind::kOpen;
    if (token.kind == Kind::kText && !inTitle) text += DecodeEntities(token.text).replace(u'\n', u' ');
    const Element* const element = Find(token.name);
    const bool ends = element && (element->traits & kBlock || element->name == QLatin1String("br"));
    if (ends && !text.isEmpty() && !text.endsWith(u'\n')) text += u'\n';
  }
  QStringList lines;
  for (const QString& line : text.split(u'\n'))
    if (const QString words = line.simplified(); !words.isEmpty()) lines += words;
  return lines.join(u'\n');
}

QString PageTitle(const QString& page) {
  HtmlTokens tokens(page);
  QString title;
  bool inTitle = false;
  for (HtmlToken token; tokens.Next(token);) {
    if (token.name == QLatin1String("title")) inTitle = token.kind == Kind::kOpen;
    if (token.name == QLatin1String("body") || (!inTitle && !title.isEmpty())) break;
    if (inTitle && token.kind == Kind::kText) title += DecodeEntities(token.text);
  }
  return title.simplified();
}

}  // namespace ui
