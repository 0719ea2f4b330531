// A help file as a reader sees it: contents, pages, topics by number, texts, search.
#pragma once

#include "ui/desktop/ChmFile.h"

#include <QString>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ui {

// A page, and perhaps a place in it.
struct HelpPlace {
  std::string page;  // its key in the book
  QString anchor;
  bool operator==(const HelpPlace&) const = default;
};

struct HelpChapter {
  int depth = 0;
  QString title;
  HelpPlace place;  // no page: a heading alone
};

struct HelpFound {
  HelpPlace place;
  QString title;
  QString excerpt;  // words around the first match, in one line
};

// Nothing here trusts the file: numbers beyond it are nothing, and tables, names and pages have their greatest sizes.
// Making one reads all of its pages and may take a second; any thread.
class HelpBook {
 public:
  explicit HelpBook(ChmEntries entries);

  const QString& title() const { return title_; }  // may be empty
  const HelpPlace& start() const { return start_; }
  const std::vector<HelpChapter>& contents() const { return contents_; }

  bool Has(const HelpPlace& place) const { return entries_.contains(place.page); }
  const std::string* BytesOf(const std::string& page) const;  // null: there is no such file
  QString PageOf(const HelpPlace& place) const;               // decoded, as it stands; plain text as a page
  QString TitleOf(const HelpPlace& place) const;
  // What a link or picture on a page names; nothing when that lies outside the file.
  std::optional<HelpPlace> Resolve(const std::string& fromPage, const QString& link) const;

  std::optional<HelpPlace> TopicPlace(int64_t number) const;
  // Of a small window: a text of its own, else the words of the topic of that number.
  std::optional<QString> TextOf(int64_t number) const;

  // The pages that hold all of the words, in any case and as parts of words too; those with all of them in the title
  // first, then in the order of the contents; kMostFound at most.
  std::vector<HelpFound> Search(const QString& words) const;
  static constexpr size_t kMostFound = 200;

 private:
  struct Searched {
    HelpPlace place;
    QString title, text, folded;
  };

  void ReadSystem();
  void ReadTopics();
  void ReadContents();
  void ReadTexts();
  void ReadPages();
  HelpPlace PlaceOf(const QString& target) const;
  HelpPlace TopicNamed(const QString& name) const;
  std::optional<HelpPlace> LeadsTo(const std::string& page) const;

  ChmEntries entries_;
  QString title_;
  std::string contentsFile_;
  HelpPlace start_;
  std::vector<HelpChapter> contents_;
  std::vector<std::pair<int64_t, HelpPlace>> topics_;
  std::vector<std::pair<int64_t, QString>> texts_;
  std::vector<Searched> pages_;
};

}  // namespace ui
