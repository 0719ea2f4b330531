#include "ui/help/HelpHtml.h"

#include <QStringDecoder>

#include <algorithm>
#include <array>

namespace ui {
namespace {

constexpr qsizetype kMostAttributes = 30;

QStringDecoder DecoderOf(std::string_view bytes) {
  const std::string_view head = bytes.substr(0, 2048);
  const size_t at = head.find("charset=");
  if (at != std::string_view::npos) {
    std::string_view charset = head.substr(at + 8);
    while (charset.starts_with('"') || charset.starts_with('\'')) charset.remove_prefix(1);
    charset = charset.substr(0, charset.find_first_of("\"'> ;/"));
    QStringDecoder decoder(std::string(charset).c_str());
    if (decoder.isValid()) return decoder;
  }
  QStringDecoder decoder("windows-1252");
  return decoder.isValid() ? std::move(decoder) : QStringDecoder(QStringDecoder::Latin1);
}

bool IsNameEnd(QChar c) {
  return c.isSpace() || c == u'>' || c == u'/';
}

struct Entity {
  QLatin1String name;
  char16_t character;
};
constexpr Entity kEntities[] = {
    {QLatin1String("amp"), u'&'},        {QLatin1String("lt"), u'<'},         {QLatin1String("gt"), u'>'},
    {QLatin1String("quot"), u'"'},       {QLatin1String("apos"), u'\''},      {QLatin1String("nbsp"), u'\u00A0'},
    {QLatin1String("copy"), u'\u00A9'},  {QLatin1String("reg"), u'\u00AE'},   {QLatin1String("ndash"), u'\u2013'},
    {QLatin1String("mdash"), u'\u2014'}, {QLatin1String("lsquo"), u'\u2018'}, {QLatin1String("rsquo"), u'\u2019'},
    {QLatin1String("ldquo"), u'\u201C'}, {QLatin1String("rdquo"), u'\u201D'}, {QLatin1String("hellip"), u'\u2026'},
    {QLatin1String("bull"), u'\u2022'},  {QLatin1String("szlig"), u'\u00DF'}, {QLatin1String("rarr"), u'\u2192'},
};

QString CharacterOf(QStringView entity) {
  if (entity.startsWith(u'#')) {
    const bool hex = entity.mid(1).startsWith(u'x', Qt::CaseInsensitive);
    const uint code = entity.mid(hex ? 2 : 1).toUInt(nullptr, hex ? 16 : 10);
    const char32_t character = code;
    return code > 0 && code <= 0x10FFFF && !QChar::isSurrogate(code) ? QString::fromUcs4(&character, 1) : QString();
  }
  const auto* found =
      std::ranges::find(kEntities, entity, [](const Entity& each) { return QStringView(QString(each.name)); });
  return found == std::end(kEntities) ? QString() : QString(QChar(found->character));
}

}  // namespace

QString DecodePage(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  const QByteArrayView view(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QStringDecoder utf8(QStringDecoder::Utf8);
  QString page = utf8.decode(view);
  if (!utf8.hasError()) return page;
  return DecoderOf(bytes).decode(view);
}

QString HtmlToken::Attribute(QLatin1String wanted) const {
  for (const auto& [each, value] : attributes)
    if (each == wanted) return value;
  return {};
}

bool HtmlTokens::Next(HtmlToken& token) {
  while (at_ < page_.size()) {
    token = {};
    if (page_[at_] != u'<') {
      const qsizetype end = page_.indexOf(u'<', at_);
      token.text = page_.mid(at_, (end < 0 ? page_.size() : end) - at_).toString();
      at_ += token.text.size();
      return true;
    }
    const QStringView rest = page_.mid(at_);
    if (rest.startsWith(QLatin1String("<!--"))) {
      SkipTo(QLatin1String("-->"));
    } else if (rest.startsWith(QLatin1String("<!")) || rest.startsWith(QLatin1String("<?"))) {
      SkipTo(QLatin1String(">"));
    } else if (rest.size() > 1 && (rest[1].isLetter() || rest[1] == u'/')) {
      if (Tag(token)) return true;
    } else {
      token.text = QStringLiteral("&lt;");
      ++at_;
      return true;
    }
  }
  return false;
}

void HtmlTokens::SkipTo(QLatin1String end) {
  const qsizetype found = page_.indexOf(end, at_, Qt::CaseInsensitive);
  at_ = found < 0 ? page_.size() : found + end.size();
}

// False for what is passed over with its contents.
bool HtmlTokens::Tag(HtmlToken& token) {
  const bool close = page_[at_ + 1] == u'/';
  const qsizetype begin = at_ + (close ? 2 : 1);
  at_ = begin;
  while (at_ < page_.size() && !IsNameEnd(page_[at_])) ++at_;
  token.kind = close ? HtmlToken::Kind::kClose : HtmlToken::Kind::kOpen;
  token.name = page_.mid(begin, at_ - begin).toString().toLower();
  Attributes(token);
  if (close) return true;
  if (token.name == QLatin1String("script")) return SkipTo(QLatin1String("</script>")), false;
  if (token.name == QLatin1String("style")) return SkipTo(QLatin1String("</style>")), false;
  return true;
}

// Ends behind the tag's ">".
void HtmlTokens::Attributes(HtmlToken& token) {
  while (at_ < page_.size() && page_[at_] != u'>') {
    if (page_[at_].isSpace() || page_[at_] == u'/' || page_[at_] == u'=') {
      ++at_;
      continue;
    }
    qsizetype begin = at_;
    while (at_ < page_.size() && !IsNameEnd(page_[at_]) && page_[at_] != u'=') ++at_;
    const QString attribute = page_.mid(begin, at_ - begin).toString().toLower();
    while (at_ < page_.size() && page_[at_].isSpace()) ++at_;
    QString value;
    if (at_ < page_.size() && page_[at_] == u'=') {
      ++at_;
      while (at_ < page_.size() && page_[at_].isSpace()) ++at_;
      const QChar quote = at_ < page_.size() && (page_[at_] == u'"' || page_[at_] == u'\'') ? page_[at_] : QChar();
      begin = quote.isNull() ? at_ : ++at_;
      while (at_ < page_.size() && (quote.isNull() ? !page_[at_].isSpace() && page_[at_] != u'>' : page_[at_] != quote))
        ++at_;
      value = DecodeEntities(page_.mid(begin, at_ - begin).toString());
      if (!quote.isNull() && at_ < page_.size()) ++at_;
    }
    if (static_cast<qsizetype>(token.attributes.size()) < kMostAttributes)
      token.attributes.emplace_back(attribute, value);
  }
  at_ = std::min(at_ + 1, page_.size());
}

QString DecodeEntities(const QString& text) {
  QString decoded;
  qsizetype done = 0;
  for (qsizetype at = text.indexOf(u'&'); at >= 0; at = text.indexOf(u'&', at + 1)) {
    constexpr qsizetype kLongestEntity = 10;
    const qsizetype end = text.mid(at, kLongestEntity).indexOf(u';');
    const QString character = end < 0 ? QString() : CharacterOf(QStringView(text).mid(at + 1, end - 1));
    if (character.isEmpty()) continue;
    decoded += text.mid(done, at - done) + character;
    done = at + end + 1;
  }
  return decoded + text.mid(done);
}

}  // namespace ui
