// The pages of help files, which may hold anything: their tokens, and what of them a view is given.
#pragma once

#include <QString>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ui {

// UTF-8 if it is that, else as the page says, else Windows-1252.
QString DecodePage(std::string_view bytes);

struct HtmlToken {
  enum class Kind { kText, kOpen, kClose };
  Kind kind = Kind::kText;
  QString name;  // of an element, in lower case
  QString text;  // as it stands, entities and all
  std::vector<std::pair<QString, QString>> attributes;
  QString Attribute(QLatin1String name) const;  // empty when it is missing
};

// Comments, declarations and the contents of scripts and style sheets are passed over. What is open at the end is text.
class HtmlTokens {
 public:
  explicit HtmlTokens(QStringView page) : page_(page) {}
  bool Next(HtmlToken& token);  // false at the end

 private:
  bool Tag(HtmlToken& token);
  void Attributes(HtmlToken& token);
  void SkipTo(QLatin1String end);

  QStringView page_;
  qsizetype at_ = 0;
};

// Entities replaced by their characters.
QString DecodeEntities(const QString& text);

// The page as a view gets it: known elements and attributes only, closed where they must be, no deeper, wider and
// longer than the toolkit lays out in about a second. A page that is cut says so at its end.
QString SafePage(const QString& page);
constexpr int kDeepestElements = 60, kDeepestTables = 3, kMostElements = 20000;
constexpr int kMostCells = 2000, kMostSpanned = 4000;  // of all tables together; cells beyond are text
constexpr qsizetype kLongestPage = 500'000, kLongestWord = 1000;

// The words of the page, for searching and for a small window; blocks part lines.
QString PageText(const QString& page);
QString PageTitle(const QString& page);  // empty when it has none

}  // namespace ui
