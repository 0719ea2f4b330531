#include "text/html/HtmlMarkup.h"

#include "text/Content.h"
#include "text/Utf16.h"

#include <array>
#include <cstdio>

namespace text::html {
namespace {

constexpr uint16_t kBodyHalfPoints = 24;

std::string Base64(std::string_view bytes) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const std::string_view three = bytes.substr(i, 3);
    uint32_t bits = 0;
    for (size_t k = 0; k < 3; ++k) bits = bits << 8 | (k < three.size() ? static_cast<uint8_t>(three[k]) : 0);
    for (size_t k = 0; k < 4; ++k) out += k <= three.size() ? kDigits[bits >> (18 - 6 * k) & 63] : '=';
  }
  return out;
}

bool LeadsSomewhere(std::string_view target) {
  constexpr std::string_view kSchemes[] = {"http:", "https:", "mailto:", "ftp:", "file:", "#"};
  for (const std::string_view scheme : kSchemes) {
    if (target.size() <= scheme.size()) continue;
    bool same = true;
    for (size_t i = 0; i < scheme.size(); ++i) same = same && (target[i] | (scheme[i] & 0x20)) == scheme[i];
    if (same) return true;
  }
  return false;
}

}  // namespace

void AppendEscaped(std::string& out, char32_t c) {
  switch (c) {
    case '&':
      out += "&amp;";
      return;
    case '<':
      out += "&lt;";
      return;
    case '>':
      out += "&gt;";
      return;
    case '"':
      out += "&quot;";
      return;
    case 0xFFFC:
      return;
    default:
      break;
  }
  const bool allowed = c == '\t' || (c >= 0x20 && c != 0x7F && !(c >= 0x80 && c < 0xA0) && (c & 0xFFFE) != 0xFFFE);
  if (allowed) AppendUtf8(out, c);
}

// The code point at `i`, which moves behind it; a lone surrogate, and so a stray byte, is U+FFFD.
char32_t NextCodePoint(std::u16string_view text, size_t& i) {
  const char16_t first = text[i++];
  if (first < 0xD800 || first > 0xDFFF) return first;
  if (first > 0xDBFF || i == text.size() || text[i] < 0xDC00 || text[i] > 0xDFFF) return 0xFFFD;
  return 0x10000 + ((first - 0xD800) << 10) + (text[i++] - 0xDC00);
}

std::string Escaped(std::string_view bytes) {
  const std::u16string units = Utf16OfBytes(bytes);
  std::string out;
  for (size_t i = 0; i < units.size();) AppendEscaped(out, NextCodePoint(units, i));
  return out;
}

// A length in points, without trailing zeros, whatever the locale.
std::string Points(int64_t twips) {
  std::string out = twips < 0 ? "-" : "";
  const int64_t size = twips < 0 ? -twips : twips;
  out += std::to_string(size / 20);
  if (const int64_t hundredths = size % 20 * 5) {
    out += '.';
    out += static_cast<char>('0' + hundredths / 10);
    if (hundredths % 10) out += static_cast<char>('0' + hundredths % 10);
  }
  return out + "pt";
}

std::string CssColor(Color color) {
  std::array<char, 8> text{};
  std::snprintf(text.data(), text.size(), "#%02x%02x%02x", color.rgb & 255, (color.rgb >> 8) & 255,
                (color.rgb >> 16) & 255);
  return text.data();
}

// A name as a CSS string that stands in an attribute and, where text is raw, in a style element.
std::string CssFamily(std::string_view name) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const std::u16string units = Utf16OfBytes(name);
  std::string quoted = "'";
  for (size_t i = 0; i < units.size();) {
    const char32_t c = NextCodePoint(units, i);
    if (c == '\'' || c == '"' || c == '\\' || c == '<' || c == '>' || c == '&') {
      quoted += {'\\', kDigits[c >> 4], kDigits[c & 15], ' '};
    } else {
      AppendEscaped(quoted, c);
    }
  }
  return quoted + "'";
}

std::string StyleAttribute(const std::string& style) {
  return style.empty() ? "" : " style=\"" + style + '"';
}

std::string ParagraphStyle(const ParaFormat& format, bool pageBreak, bool saysSide) {
  constexpr std::array<const char*, 4> kAlign = {"left", "right", "center", "justify"};
  // A label's indents are those of the list.
  const bool label = format.bullet || format.list != ListId::kNone;
  std::string style;
  const auto add = [&](const char* property, const std::string& value) {
    style += (style.empty() ? "" : ";") + std::string(property) + ':' + value;
  };
  const Alignment unsaid = format.rightToLeft ? Alignment::kRight : Alignment::kLeft;
  if (saysSide || format.alignment != unsaid) add("text-align", kAlign[static_cast<size_t>(format.alignment)]);
  if (format.leftIndent && !label) add("margin-left", Points(format.leftIndent));
  if (format.rightIndent) add("margin-right", Points(format.rightIndent));
  if (format.firstIndent && !label) add("text-indent", Points(format.firstIndent));
  if (format.spaceBefore) add("margin-top", Points(format.spaceBefore));
  if (format.spaceAfter) add("margin-bottom", Points(format.spaceAfter));
  if (pageBreak) add("break-before", "page");
  return style;
}

Tags TagsOf(const CharFormat& format, const FormatTable& formats, std::string_view defaultFont) {
  Tags tags;
  std::string style;
  const auto add = [&](const std::string& rule) { style += (style.empty() ? "" : ";") + rule; };
  const std::string& family = formats[format.font].name;
  if (!family.empty() && family != defaultFont) add("font-family:" + CssFamily(family));
  if (format.halfPoints != kBodyHalfPoints) add("font-size:" + Points(format.halfPoints * 10));
  if (!format.color.isAuto()) add("color:" + CssColor(format.color));
  if (!format.background.isAuto()) add("background-color:" + CssColor(format.background));
  if (format.flags & kHidden) add("display:none");
  if (const std::string& target = formats[format.link]; LeadsSomewhere(target))
    tags.Add("a", " href=\"" + Escaped(target) + '"');
  if (!style.empty()) tags.Add("span", StyleAttribute(style));
  if (format.flags & kBold) tags.Add("b");
  if (format.flags & kItalic) tags.Add("i");
  if (format.flags & kUnderline) tags.Add("u");
  if (format.flags & kStrikeThru) tags.Add("s");
  if (format.offset) tags.Add(format.offset > 0 ? "sup" : "sub");
  return tags;
}

std::string Picture(const EmbeddedObject& object) {
  const char* type = object.type == PictureType::kPng ? "png" : object.type == PictureType::kJpeg ? "jpeg" : nullptr;
  if (!type) return object.name.empty() ? "" : '[' + Escaped(object.name) + ']';
  std::string style;
  if (object.width > 0 && object.height > 0)
    style = "width:" + Points(object.width) + ";height:" + Points(object.height);
  return "<img alt=\"" + Escaped(object.name) + '"' + StyleAttribute(style) + " src=\"data:image/" + type + ";base64," +
         Base64(object.picture.bytes) + "\">";
}

}  // namespace text::html
