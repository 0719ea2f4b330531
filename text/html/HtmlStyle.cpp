#include "text/html/HtmlStyle.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace text::html {
namespace {

constexpr std::string_view kBlanks = " \t\r\n\f";
constexpr double kTwipsPerPixel = 15;
constexpr double kMaxTwips = 31680;  // 22 inches

struct NamedColor {
  std::string_view name;
  uint32_t rgb;  // 0xRRGGBB
};
constexpr NamedColor kColors[] = {
    {"aqua", 0x00FFFF},    {"black", 0x000000},    {"blue", 0x0000FF},      {"brown", 0xA52A2A},
    {"cyan", 0x00FFFF},    {"darkblue", 0x00008B}, {"darkgreen", 0x006400}, {"darkred", 0x8B0000},
    {"fuchsia", 0xFF00FF}, {"gold", 0xFFD700},     {"gray", 0x808080},      {"green", 0x008000},
    {"grey", 0x808080},    {"lime", 0x00FF00},     {"magenta", 0xFF00FF},   {"maroon", 0x800000},
    {"navy", 0x000080},    {"olive", 0x808000},    {"orange", 0xFFA500},    {"pink", 0xFFC0CB},
    {"purple", 0x800080},  {"red", 0xFF0000},      {"silver", 0xC0C0C0},    {"teal", 0x008080},
    {"violet", 0xEE82EE},  {"white", 0xFFFFFF},    {"yellow", 0xFFFF00},
};

Color FromRgb(uint32_t rgb) {
  return Color{(rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16};
}

// A number at the beginning, which is taken off.
std::optional<double> TakeNumber(std::string_view& text) {
  text = Trimmed(text);
  if (text.starts_with('+')) text.remove_prefix(1);
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
  if (error != std::errc() || !std::isfinite(number)) return std::nullopt;
  text.remove_prefix(static_cast<size_t>(end - text.data()));
  return number;
}

std::optional<Color> HexColor(std::string_view digits) {
  uint32_t rgb = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), rgb, 16);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  if (digits.size() == 3) return FromRgb((rgb >> 8 & 15) * 0x110000 | (rgb >> 4 & 15) * 0x1100 | (rgb & 15) * 0x11);
  if (digits.size() == 6) return FromRgb(rgb);
  return std::nullopt;
}

// "255, 0, 0" or "100% 0% 0% / 0.5"; nothing when wholly transparent.
std::optional<Color> FunctionColor(std::string_view arguments) {
  std::array<double, 4> parts{0, 0, 0, 1};
  for (size_t i = 0; i < parts.size(); ++i) {
    auto number = TakeNumber(arguments);
    if (!number) {
      if (i < 3) return std::nullopt;
      break;
    }
    if (arguments.starts_with('%')) {
      *number *= i < 3 ? 2.55 : 0.01;
      arguments.remove_prefix(1);
    }
    parts[i] = *number;
    arguments = Trimmed(arguments);
    if (arguments.starts_with(',') || arguments.starts_with('/')) arguments.remove_prefix(1);
  }
  if (parts[3] <= 0) return std::nullopt;
  uint32_t rgb = 0;
  for (size_t i = 0; i < 3; ++i) rgb = rgb << 8 | static_cast<uint32_t>(std::lround(std::clamp(parts[i], 0.0, 255.0)));
  return FromRgb(rgb);
}

// Twips; percentages and "auto" are nothing.
std::optional<double> Length(std::string_view value, const Look& look) {
  const auto number = TakeNumber(value);
  if (!number) return std::nullopt;
  const std::string unit = Lower(Trimmed(value));
  const double fontTwips = look.chars.halfPoints * 10.0;
  const struct {
    std::string_view name;
    double twips;
  } units[] = {{"px", kTwipsPerPixel}, {"pt", 20},         {"em", fontTwips}, {"rem", 240},         {"in", 1440},
               {"cm", 1440 / 2.54},    {"mm", 144 / 2.54}, {"pc", 240},       {"ex", fontTwips / 2}};
  for (const auto& known : units) {
    if (unit == known.name) return std::clamp(*number * known.twips, -kMaxTwips, kMaxTwips);
  }
  if (unit.empty() && *number == 0) return 0;
  return std::nullopt;
}

void SetFlag(Look& look, CharFlag flag, bool on) {
  look.chars.flags = static_cast<uint16_t>(on ? look.chars.flags | flag : look.chars.flags & ~flag);
}

void SetWeight(std::string_view value, Look& look) {
  std::string_view rest = value;
  if (const auto number = TakeNumber(rest)) return SetFlag(look, kBold, *number >= 600);
  if (value == "bold" || value == "bolder") SetFlag(look, kBold, true);
  if (value == "normal" || value == "lighter") SetFlag(look, kBold, false);
}

void SetFontSize(std::string_view value, Look& look) {
  constexpr std::pair<std::string_view, double> kSizes[] = {{"xx-small", 7}, {"x-small", 7.5}, {"small", 10},
                                                            {"medium", 12},  {"large", 13.5},  {"x-large", 18},
                                                            {"xx-large", 24}};
  for (const auto& [name, points] : kSizes) {
    if (value == name) return SetHalfPoints(points * 2, look);
  }
  if (value == "smaller") return SetHalfPoints(look.chars.halfPoints / 1.2, look);
  if (value == "larger") return SetHalfPoints(look.chars.halfPoints * 1.2, look);
  std::string_view rest = value;
  if (const auto number = TakeNumber(rest); number && rest == "%")
    return SetHalfPoints(look.chars.halfPoints * *number / 100, look);
  if (const auto twips = Length(value, look); twips && *twips > 0) SetHalfPoints(*twips / 10, look);
}

void SetVerticalAlign(std::string_view value, Look& look) {
  if (value != "super" && value != "sub") return;
  const int size = look.chars.halfPoints;
  look.chars.offset = value == "super" ? size * 10 / 3 : -size * 10 / 6;
  SetHalfPoints(size * 2 / 3.0, look);
}

void SetAlignment(std::string_view value, Look& look) {
  if (value == "start") look.side = Look::Side::kStart;
  if (value == "end") look.side = Look::Side::kEnd;
  constexpr std::pair<std::string_view, Alignment> kAlignments[] = {{"left", Alignment::kLeft},
                                                                    {"right", Alignment::kRight},
                                                                    {"center", Alignment::kCenter},
                                                                    {"justify", Alignment::kJustify}};
  for (const auto& [name, alignment] : kAlignments) {
    if (value != name) continue;
    look.paragraph.alignment = alignment;
    look.side = Look::Side::kSaid;
  }
}

void SetDecoration(std::string_view value, Look& look) {
  if (value.starts_with("none")) look.chars.flags &= static_cast<uint16_t>(~(kUnderline | kStrikeThru));
  if (value.find("underline") != std::string_view::npos) SetFlag(look, kUnderline, true);
  if (value.find("line-through") != std::string_view::npos) SetFlag(look, kStrikeThru, true);
}

// The page's own black on white is what "automatic" means here; said as numbers it would be unreadable on dark
// desktops.
void SetColor(std::string_view value, Look& look) {
  if (const auto color = ColorOf(value)) look.chars.color = color->rgb == 0 ? Color{} : *color;
}

void SetBackground(std::string_view value, Look& look) {
  const auto color = ColorOf(value);
  if (color) look.chars.background = color->rgb == 0xFFFFFF ? Color{} : *color;
}

void SetMargins(std::string_view values, Look& look) {
  std::array<std::optional<double>, 4> sides;  // top, right, bottom, left
  size_t count = 0;
  while (count < 4 && !(values = Trimmed(values)).empty()) {
    const size_t end = std::min(values.find_first_of(kBlanks), values.size());
    sides[count++] = Length(values.substr(0, end), look);
    values.remove_prefix(end);
  }
  if (count == 0) return;
  if (count < 2) sides[1] = sides[0];
  if (count < 3) sides[2] = sides[0];
  if (sides[0]) look.paragraph.spaceBefore = std::max(0, static_cast<int32_t>(*sides[0]));
  if (sides[2]) look.paragraph.spaceAfter = std::max(0, static_cast<int32_t>(*sides[2]));
}

void SetLength(std::string_view value, const Look& look, int32_t& target, int32_t least) {
  if (const auto twips = Length(value, look)) target = std::max(least, static_cast<int32_t>(std::lround(*twips)));
}

}  // namespace

std::string Lower(std::string_view ascii) {
  std::string lower(ascii);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
  return lower;
}

std::string_view Trimmed(std::string_view ascii) {
  const size_t begin = ascii.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return ascii.substr(begin, ascii.find_last_not_of(kBlanks) + 1 - begin);
}

std::optional<Color> ColorOf(std::string_view value) {
  const std::string lower = Lower(Trimmed(value));
  std::string_view text = lower;
  if (text.starts_with('#')) return HexColor(text.substr(1));
  if (text.starts_with("rgb")) {
    const size_t open = text.find('(');
    return open == std::string_view::npos ? std::nullopt : FunctionColor(text.substr(open + 1));
  }
  for (const NamedColor& named : kColors) {
    if (text == named.name) return FromRgb(named.rgb);
  }
  return std::nullopt;
}

void SetFont(std::string_view family, FormatTable& formats, Look& look) {
  std::string_view name = Trimmed(family.substr(0, family.find(',')));
  if (name.size() > 1 && (name.front() == '"' || name.front() == '\'') && name.back() == name.front())
    name = name.substr(1, name.size() - 2);
  constexpr size_t kLongest = 100;
  if (name.empty() || name.size() > kLongest || name.front() == '-' || name == "inherit") return;
  const std::string lower = Lower(name);
  if (lower == "monospace") name = "Courier New";
  if (lower == "serif") name = "Times New Roman";
  if (lower == "sans-serif" || lower == "system-ui") name = "Arial";
  look.chars.font = formats.Intern(Font{std::string(name), 1, 0});
}

void SetHalfPoints(double halfPoints, Look& look) {
  look.chars.halfPoints = static_cast<uint16_t>(std::clamp(std::lround(halfPoints), 2L, 3276L));
}

void AlignToSide(Look& look) {
  if (look.side == Look::Side::kSaid) return;
  const bool right = look.paragraph.rightToLeft == (look.side == Look::Side::kStart);
  look.paragraph.alignment = right ? Alignment::kRight : Alignment::kLeft;
}

void ApplyProperty(std::string_view name, std::string_view value, FormatTable& formats, Look& look) {
  if (name == "font-family") return SetFont(value, formats, look);
  const std::string lower = Lower(value);
  if (name == "font-weight") return SetWeight(lower, look);
  if (name == "font-style") return SetFlag(look, kItalic, lower == "italic" || lower.starts_with("oblique"));
  if (name == "text-decoration" || name == "text-decoration-line") return SetDecoration(lower, look);
  if (name == "color") return SetColor(lower, look);
  if (name == "background-color" || name == "background") return SetBackground(lower, look);
  if (name == "font-size") return SetFontSize(lower, look);
  if (name == "vertical-align") return SetVerticalAlign(lower, look);
  if (name == "text-align") return SetAlignment(lower, look);
  if (name == "direction" && (lower == "rtl" || lower == "ltr")) look.paragraph.rightToLeft = lower == "rtl";
  if (name == "white-space") look.preserved = lower.starts_with("pre") || lower == "break-spaces";
  if (name == "display" && lower == "none") look.hidden = true;
  if (name == "text-indent") return SetLength(lower, look, look.paragraph.firstIndent, -31680);
  if (name == "margin-left") return SetLength(lower, look, look.paragraph.leftIndent, 0);
  if (name == "margin-right") return SetLength(lower, look, look.paragraph.rightIndent, 0);
  if (name == "margin-top") return SetLength(lower, look, look.paragraph.spaceBefore, 0);
  if (name == "margin-bottom") return SetLength(lower, look, look.paragraph.spaceAfter, 0);
  if (name == "margin") return SetMargins(lower, look);
}

void ApplyStyle(std::string_view declarations, FormatTable& formats, Look& look) {
  while (!declarations.empty()) {
    const size_t end = std::min(declarations.find(';'), declarations.size());
    const std::string_view one = declarations.substr(0, end);
    declarations.remove_prefix(std::min(end + 1, declarations.size()));
    const size_t colon = one.find(':');
    if (colon == std::string_view::npos) continue;
    std::string_view value = Trimmed(one.substr(colon + 1));
    if (value.ends_with("!important")) value = Trimmed(value.substr(0, value.size() - 10));
    ApplyProperty(Lower(Trimmed(one.substr(0, colon))), value, formats, look);
  }
}

}  // namespace text::html
