// Plain text out of pasted HTML, for programs that offer nothing else.
#include "ui/editor/EditorClipboard.h"

#include <array>

namespace ui {
namespace {

constexpr QStringView kBlocks[] = {u"p",  u"div", u"br", u"li", u"tr", u"h1",  u"h2",         u"h3",
                                   u"h4", u"h5",  u"h6", u"ul", u"ol", u"pre", u"blockquote", u"table"};
struct Entity {
  QStringView name;
  char16_t character;
};
constexpr Entity kEntities[] = {{u"amp", u'&'}, {u"lt", u'<'}, {u"gt", u'>'}, {u"quot", u'"'}, {u"nbsp", 0xA0}};

// The name of a tag, lower case, without "/"; empty for comments and declarations.
QString TagName(QStringView tag) {
  if (tag.startsWith(u'/')) tag = tag.mid(1);
  qsizetype end = 0;
  while (end < tag.size() && tag.at(end).isLetterOrNumber()) ++end;
  return tag.left(end).toString().toLower();
}

// The entity at the "&", or nothing; `length` is what it takes with both of its ends.
QString EntityAt(QStringView text, qsizetype& length) {
  constexpr qsizetype kLongest = 10;
  const qsizetype end = text.left(kLongest).indexOf(u';');
  if (end < 2) return {};
  const QStringView name = text.mid(1, end - 1);
  length = end + 1;
  for (const Entity& entity : kEntities) {
    if (name == entity.name) return QString(QChar(entity.character));
  }
  if (!name.startsWith(u'#')) return {};
  const bool hex = name.mid(1).startsWith(u'x', Qt::CaseInsensitive);
  bool valid = false;
  const uint code = name.mid(hex ? 2 : 1).toUInt(&valid, hex ? 16 : 10);
  if (!valid || code == 0 || code > 0x10FFFF || QChar::isSurrogate(code)) return {};
  const char32_t character = code;
  return QString::fromUcs4(&character, 1);
}

class HtmlText {
 public:
  explicit HtmlText(QStringView html) : html_(html) {}

  QString Read() {
    while (at_ < html_.size()) {
      const QChar c = html_.at(at_);
      if (c == u'<') {
        ReadTag();
      } else if (c == u'&') {
        ReadEntity();
      } else {
        ++at_;
        Append(c);
      }
    }
    return result_.trimmed();
  }

 private:
  void ReadTag() {
    const bool comment = html_.mid(at_, 4) == u"<!--";
    const qsizetype end = comment ? html_.indexOf(u"-->", at_) : html_.indexOf(u'>', at_);
    if (end < 0) {
      at_ = html_.size();
      return;
    }
    const QStringView tag = html_.mid(at_ + 1, end - at_ - 1);
    at_ = end + (comment ? 3 : 1);
    const QString name = TagName(tag);
    if ((name == u"script" || name == u"style" || name == u"title") && !tag.startsWith(u'/')) SkipPast(name);
    const bool opensOrBreaks = !tag.startsWith(u'/') || name == u"p";
    for (const QStringView block : kBlocks) {
      if (name == block && opensOrBreaks) Break(name == u"br");
    }
    if (name == u"td" && !tag.startsWith(u'/') && !result_.isEmpty() && !result_.endsWith(u'\n')) result_ += u'\t';
  }

  void SkipPast(const QString& name) {
    const qsizetype end = html_.indexOf(QString(QStringLiteral("</") + name), at_, Qt::CaseInsensitive);
    at_ = end < 0 ? html_.size() : end;
  }

  void ReadEntity() {
    qsizetype length = 1;
    const QString entity = EntityAt(html_.mid(at_), length);
    result_ += entity.isEmpty() ? QStringLiteral("&") : entity;
    at_ += entity.isEmpty() ? 1 : length;
  }

  void Append(QChar c) {
    if (!c.isSpace()) {
      result_ += c;
    } else if (!result_.isEmpty() && !result_.back().isSpace()) {
      result_ += u' ';
    }
  }

  void Break(bool always) {
    if (result_.endsWith(u' ')) result_.chop(1);
    if (always || (!result_.isEmpty() && !result_.endsWith(u'\n'))) result_ += u'\n';
  }

  QStringView html_;
  qsizetype at_ = 0;
  QString result_;
};

}  // namespace

QString TextOfHtml(const QString& html) {
  return HtmlText(html).Read();
}

}  // namespace ui
