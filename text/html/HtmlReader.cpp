#include "text/html/HtmlReader.h"

#include "text/TextStore.h"
#include "text/html/HtmlOutput.h"
#include "text/html/HtmlTag.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <exception>
#include <libxml/HTMLparser.h>
#include <mutex>
#include <new>
#include <vector>

namespace text::html {
namespace {

constexpr size_t kMaxDepth = 1000;  // the parser's work at an element's end grows with it
constexpr int32_t kListStep = 720;  // twips that each level of a list is further in
constexpr int32_t kHanging = 360;   // room for its label
constexpr size_t kMaxPictureBytes = 64 << 20;

// What an element does besides what its attributes say.
enum class Does : uint8_t {
  kNothing,
  kBlock,
  kSkip,  // its text is none
  kLineBreak,
  kRule,
  kBulletList,
  kNumberedList,
  kItem,
  kRow,
  kCell,
  kTable,
  kPicture,
  kLink,
  kFont,
};
struct Tag {
  std::string_view name;
  Does does = Does::kNothing;
  std::string_view style;  // as if it were in its style attribute
};
constexpr Tag kTags[] = {
    {"a", Does::kLink, ""},
    {"address", Does::kBlock, "font-style:italic"},
    {"article", Does::kBlock, ""},
    {"aside", Does::kBlock, ""},
    {"b", Does::kNothing, "font-weight:bold"},
    {"big", Does::kNothing, "font-size:larger"},
    {"blockquote", Does::kBlock, "margin-left:40px;margin-right:40px;margin-bottom:8pt"},
    {"br", Does::kLineBreak, ""},
    {"caption", Does::kBlock, "text-align:center"},
    {"center", Does::kBlock, "text-align:center"},
    {"cite", Does::kNothing, "font-style:italic"},
    {"code", Does::kNothing, "font-family:monospace"},
    {"dd", Does::kBlock, "margin-left:40px"},
    {"del", Does::kNothing, "text-decoration:line-through"},
    {"details", Does::kBlock, ""},
    {"dfn", Does::kNothing, "font-style:italic"},
    {"div", Does::kBlock, ""},
    {"dl", Does::kBlock, ""},
    {"dt", Does::kBlock, ""},
    {"em", Does::kNothing, "font-style:italic"},
    {"fieldset", Does::kBlock, ""},
    {"figcaption", Does::kBlock, ""},
    {"figure", Does::kBlock, ""},
    {"font", Does::kFont, ""},
    {"footer", Does::kBlock, ""},
    {"form", Does::kBlock, ""},
    {"h1", Does::kBlock, "font-size:2em;font-weight:bold;margin-top:12pt;margin-bottom:8pt"},
    {"h2", Does::kBlock, "font-size:1.5em;font-weight:bold;margin-top:12pt;margin-bottom:8pt"},
    {"h3", Does::kBlock, "font-size:1.17em;font-weight:bold;margin-top:12pt;margin-bottom:8pt"},
    {"h4", Does::kBlock, "font-size:1em;font-weight:bold;margin-top:12pt;margin-bottom:8pt"},
    {"h5", Does::kBlock, "font-size:0.83em;font-weight:bold;margin-top:12pt;margin-bottom:8pt"},
    {"h6", Does::kBlock, "font-size:0.67em;font-weight:bold;margin-top:12pt;margin-bottom:8pt"},
    {"head", Does::kSkip, ""},
    {"header", Does::kBlock, ""},
    {"hr", Does::kRule, ""},
    {"i", Does::kNothing, "font-style:italic"},
    {"img", Does::kPicture, ""},
    {"ins", Does::kNothing, "text-decoration:underline"},
    {"kbd", Does::kNothing, "font-family:monospace"},
    {"li", Does::kItem, ""},
    {"main", Does::kBlock, ""},
    {"mark", Does::kNothing, "background-color:yellow"},
    {"nav", Does::kBlock, ""},
    {"noscript", Does::kSkip, ""},
    {"ol", Does::kNumberedList, ""},
    {"option", Does::kSkip, ""},
    {"p", Does::kBlock, "margin-bottom:8pt"},
    {"pre", Does::kBlock, "font-family:monospace;white-space:pre;margin-bottom:8pt"},
    {"s", Does::kNothing, "text-decoration:line-through"},
    {"samp", Does::kNothing, "font-family:monospace"},
    {"script", Does::kSkip, ""},
    {"section", Does::kBlock, ""},
    {"small", Does::kNothing, "font-size:smaller"},
    {"strike", Does::kNothing, "text-decoration:line-through"},
    {"strong", Does::kNothing, "font-weight:bold"},
    {"style", Does::kSkip, ""},
    {"sub", Does::kNothing, "vertical-align:sub"},
    {"summary", Does::kBlock, ""},
    {"sup", Does::kNothing, "vertical-align:super"},
    {"table", Does::kTable, ""},
    {"td", Does::kCell, ""},
    {"template", Does::kSkip, ""},
    {"textarea", Does::kSkip, ""},
    {"th", Does::kCell, "font-weight:bold"},
    {"title", Does::kSkip, ""},
    {"tr", Does::kRow, ""},
    {"tt", Does::kNothing, "font-family:monospace"},
    {"u", Does::kNothing, "text-decoration:underline"},
    {"ul", Does::kBulletList, ""},
    {"var", Does::kNothing, "font-style:italic"},
};
static_assert(std::is_sorted(std::begin(kTags), std::end(kTags),
                             [](const Tag& a, const Tag& b) { return a.name < b.name; }));

const Tag& TagNamed(std::string_view name) {
  static constexpr Tag kUnknown{};
  const auto* found =
      std::lower_bound(std::begin(kTags), std::end(kTags), name, [](const Tag& tag, auto n) { return tag.name < n; });
  return found != std::end(kTags) && found->name == name ? *found : kUnknown;
}

int32_t NumberOf(std::string_view value, int32_t otherwise) {
  int32_t number = otherwise;
  value = Trimmed(value);
  std::from_chars(value.data(), value.data() + value.size(), number);
  return number;
}

std::string DecodeBase64(std::string_view encoded) {
  std::string bytes;
  uint32_t bits = 0;
  int count = 0;
  for (const char c : encoded) {
    uint32_t value = 0;
    if (c >= 'A' && c <= 'Z') {
      value = static_cast<uint32_t>(c - 'A');
    } else if (c >= 'a' && c <= 'z') {
      value = static_cast<uint32_t>(c - 'a' + 26);
    } else if (c >= '0' && c <= '9') {
      value = static_cast<uint32_t>(c - '0' + 52);
    } else if (c == '+' || c == '/') {
      value = c == '+' ? 62 : 63;
    } else {
      continue;
    }
    bits = bits << 6 | value;
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count & 0xFF);
  }
  return bytes;
}

PictureType Sniff(std::string_view bytes) {
  if (bytes.starts_with("\x89PNG\r\n\x1A\n")) return PictureType::kPng;
  if (bytes.starts_with("\xFF\xD8\xFF")) return PictureType::kJpeg;
  return PictureType::kNone;
}

// A page's line breaks are line feeds before anything else is made of it; the parser leaves that to others.
std::string WithLineFeeds(std::string_view page, bool behindReturn) {
  std::string out;
  out.reserve(page.size());
  for (const char c : page) {
    if (c != '\n' || !behindReturn) out += c == '\r' ? '\n' : c;
    behindReturn = c == '\r';
  }
  return out;
}

class Attributes {
 public:
  explicit Attributes(const xmlChar** pairs) : pairs_(pairs) {}
  std::string_view operator[](std::string_view name) const {
    for (const xmlChar** at = pairs_; at && at[0]; at += 2) {
      if (name == reinterpret_cast<const char*>(at[0]))
        return at[1] ? reinterpret_cast<const char*>(at[1]) : std::string_view();
    }
    return {};
  }

 private:
  const xmlChar** pairs_;
};

class HtmlReader {
 public:
  HtmlReader(const std::shared_ptr<TextStore>& store, const CharFormat& base)
      : formats_(store->formats()), output_(store) {
    Element root;
    root.look.chars = base;
    stack_.push_back(root);
  }

  ReadResult Run(std::string_view html) {
    // What stands around the copied part only says how it looks.
    muted_ = html.find("<!--StartFragment-->") != std::string_view::npos;
    for (const char* element : {"html", "body"}) TakeDirection(html, element);
    htmlSAXHandler handler{};
    handler.startElement = [](void* self, const xmlChar* name, const xmlChar** attributes) {
      Guard(self, [&](HtmlReader& r) { r.Start(reinterpret_cast<const char*>(name), Attributes(attributes)); });
    };
    handler.endElement = [](void* self, const xmlChar*) { Guard(self, [](HtmlReader& r) { r.End(); }); };
    handler.characters = handler.ignorableWhitespace = [](void* self, const xmlChar* text, int length) {
      const std::string_view view(reinterpret_cast<const char*>(text), static_cast<size_t>(length));
      Guard(self, [&](HtmlReader& r) { r.Text(view); });
    };
    handler.comment = [](void* self, const xmlChar* text) {
      Guard(self, [&](HtmlReader& r) { r.Comment(reinterpret_cast<const char*>(text)); });
    };
    // No paragraphs and bodies that the page does not have: they would part its text.
    static std::once_flag once;
    std::call_once(once, [] { htmlHandleOmittedElem(0); });
    parser_ = htmlCreatePushParserCtxt(&handler, this, nullptr, 0, nullptr, XML_CHAR_ENCODING_UTF8);
    if (!parser_) throw std::bad_alloc();
    htmlCtxtUseOptions(parser_, HTML_PARSE_RECOVER | HTML_PARSE_NONET | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                                    HTML_PARSE_IGNORE_ENC);
    // Without a root of ours the first element that ends would end the page.
    constexpr std::string_view kRoot = "<html><body>";
    htmlParseChunk(parser_, kRoot.data(), static_cast<int>(kRoot.size()), 0);
    constexpr size_t kPortion = 1 << 16;
    for (size_t at = 0; at < html.size() && !stopped_; at += kPortion) {
      const std::string portion = WithLineFeeds(html.substr(at, kPortion), at > 0 && html[at - 1] == '\r');
      htmlParseChunk(parser_, portion.data(), static_cast<int>(portion.size()), 0);
    }
    if (!stopped_) htmlParseChunk(parser_, nullptr, 0, 1);
    htmlFreeParserCtxt(parser_);
    if (failure_) std::rethrow_exception(failure_);
    return {output_.Finish(), limited_};
  }

 private:
  struct Element {
    Look look;
    Does does = Does::kNothing;
    bool ownsRow = false;   // the row of a table that is in no other
    bool labelled = false;  // an item whose first paragraph was begun
    ListId list = ListId::kNone;
    bool bullets = false;
    uint8_t listDepth = 0;
    int tableDepth = 0;
    // Of the paragraphs of its text, which words within a paragraph do not turn round.
    Alignment alignment = Alignment::kLeft;
    bool rightToLeft = false;

    void TakeSide() {
      alignment = look.paragraph.alignment;
      rightToLeft = look.paragraph.rightToLeft;
    }
  };

  // No exception may pass through the parser, which is C.
  template <class Work>
  static void Guard(void* self, const Work& work) {
    auto& reader = *static_cast<HtmlReader*>(self);
    if (reader.stopped_) return;
    try {
      work(reader);
    } catch (...) {
      reader.failure_ = std::current_exception();
      reader.Stop();
    }
  }

  // The parser drops these elements for those of its own root.
  void TakeDirection(std::string_view html, std::string_view element) {
    Element& root = stack_.front();
    Look said = root.look;
    ApplyProperty("direction", FirstAttribute(html, element, "dir"), formats_, said);
    ApplyStyle(FirstAttribute(html, element, "style"), formats_, said);
    root.look.paragraph.rightToLeft = said.paragraph.rightToLeft;
    AlignToSide(root.look);
    root.TakeSide();
  }

  void Start(std::string_view name, const Attributes& attributes) {
    if (stack_.size() > kMaxDepth) {
      limited_ = true;
      return Stop();
    }
    stack_.push_back(stack_.back());
    Element& element = stack_.back();
    element.ownsRow = false;
    const Tag& tag = TagNamed(name);
    element.does = tag.does;
    if (IsBlock(tag.does)) BeginBlock(element, tag);
    ApplyStyle(tag.style, formats_, element.look);
    Apply(element, attributes);
    if (const auto align = attributes["align"]; !align.empty() && IsBlock(tag.does))
      ApplyProperty("text-align", align, formats_, element.look);
    if (const auto direction = attributes["dir"]; !direction.empty())
      ApplyProperty("direction", direction, formats_, element.look);
    ApplyStyle(attributes["style"], formats_, element.look);
    AlignToSide(element.look);
    if (IsBlock(tag.does)) element.TakeSide();
  }

  static bool IsBlock(Does does) {
    return does == Does::kBlock || does == Does::kRule || does == Does::kBulletList || does == Does::kNumberedList ||
           does == Does::kItem || does == Does::kRow || does == Does::kCell || does == Does::kTable;
  }

  // Margins of the block around are inside it, those above and below are its own.
  void BeginBlock(Element& element, const Tag& tag) {
    output_.EndParagraph();
    if (tag.does == Does::kItem) return;
    element.look.paragraph.spaceBefore = element.look.paragraph.spaceAfter = 0;
  }

  void Apply(Element& element, const Attributes& attributes) {
    switch (element.does) {
      case Does::kSkip:
        element.look.hidden = true;
        return;
      case Does::kLineBreak:
        if (!muted_) output_.LineBreak(LookOfText());
        return;
      case Does::kRule:
        return Text("\xE2\x80\x94\xE2\x80\x94\xE2\x80\x94");
      case Does::kBulletList:
      case Does::kNumberedList:
        return BeginList(element, attributes);
      case Does::kItem:
        element.labelled = false;
        return;
      case Does::kTable:
        ++element.tableDepth;
        ResetParagraph(element.look);
        return;
      case Does::kRow:
        element.ownsRow = element.tableDepth == 1 && !output_.inRow() && !muted_;
        if (element.ownsRow) output_.BeginRow();
        return;
      case Does::kCell:
        if (element.tableDepth == 1 && output_.inRow()) output_.BeginCell(NumberOf(attributes["colspan"], 1));
        return;
      case Does::kPicture:
        return Picture(attributes);
      case Does::kLink:
        return SetLink(attributes["href"], element.look);
      case Does::kFont:
        return SetFontElement(attributes, element.look);
      case Does::kNothing:
      case Does::kBlock:
        return;
    }
  }

  // A table stands for itself but for its direction.
  static void ResetParagraph(Look& look) {
    const bool rightToLeft = look.paragraph.rightToLeft;
    look.paragraph = {};
    look.paragraph.rightToLeft = rightToLeft;
    look.side = Look::Side::kStart;
  }

  void BeginList(Element& element, const Attributes& attributes) {
    element.bullets = element.does == Does::kBulletList;
    element.listDepth = static_cast<uint8_t>(std::min(element.listDepth + 1, 9));
    element.look.paragraph.leftIndent = element.listDepth * kListStep;
    element.look.paragraph.firstIndent = -kHanging;
    element.labelled = true;  // text directly in a list has no label
    element.list = ListId::kNone;
    if (element.bullets) return;
    static std::atomic<int32_t> lists = 1 << 30;  // above what files use
    List list;
    list.identity = ++lists;
    ListLevel level;
    const std::string_view type = attributes["type"];
    if (type == "a") level.style = NumberStyle::kLowerLetter;
    if (type == "A") level.style = NumberStyle::kUpperLetter;
    if (type == "i") level.style = NumberStyle::kLowerRoman;
    if (type == "I") level.style = NumberStyle::kUpperRoman;
    for (uint8_t depth = 0; depth < element.listDepth; ++depth) {
      level.label = std::string(1, static_cast<char>(depth)) + ".";
      list.levels.push_back(level);
    }
    list.levels.back().start = std::clamp(NumberOf(attributes["start"], 1), 0, 32767);
    element.list = formats_.Intern(list);
  }

  void Picture(const Attributes& attributes) {
    if (muted_) return;
    const std::string_view source = attributes["src"];
    const size_t comma = source.substr(0, 100).find(";base64,");
    EmbeddedObject object;
    if (source.starts_with("data:image/") && comma != std::string_view::npos &&
        source.size() / 4 * 3 < kMaxPictureBytes) {
      object.picture = SharedBytes(DecodeBase64(source.substr(comma + 8)));
      object.type = Sniff(object.picture.bytes);
    }
    if (object.type == PictureType::kNone) return output_.Text(attributes["alt"], LookOfText());
    constexpr int32_t kMaxPixels = 2000;
    object.width = std::clamp(NumberOf(attributes["width"], 0), 0, kMaxPixels) * 15;
    object.height = std::clamp(NumberOf(attributes["height"], 0), 0, kMaxPixels) * 15;
    if (object.width == 0 || object.height == 0) object.width = object.height = 0;
    object.name = attributes["alt"];
    output_.Object(std::move(object), LookOfText());
    MarkLabelled();
  }

  // A target relative to a page that nobody knows leads nowhere.
  void SetLink(std::string_view target, Look& look) {
    constexpr size_t kLongest = 4096;
    target = Trimmed(target);
    const size_t colon = target.find(':');
    if (colon == std::string_view::npos || colon == 0 || target.find_first_of("/?#") < colon ||
        target.size() > kLongest)
      return;
    look.chars.link = formats_.InternLink(std::string(target));
  }

  void SetFontElement(const Attributes& attributes, Look& look) {
    SetFont(attributes["face"], formats_, look);
    if (const auto color = attributes["color"]; !color.empty()) ApplyProperty("color", color, formats_, look);
    std::string_view size = attributes["size"];
    if (size.empty()) return;
    constexpr std::array kPoints{7.5, 10.0, 12.0, 13.5, 18.0, 24.0, 36.0};
    const bool relative = size.front() == '+' || size.front() == '-';
    const int32_t number = NumberOf(size.starts_with('+') ? size.substr(1) : size, 3) + (relative ? 3 : 0);
    const double points = kPoints[static_cast<size_t>(std::clamp(number, 1, 7) - 1)];
    SetHalfPoints(relative ? points / 12 * stack_.front().look.chars.halfPoints : points * 2, look);
  }

  void End() {
    if (stack_.size() == 1) return;
    const Element element = stack_.back();
    stack_.pop_back();
    if (IsBlock(element.does)) output_.EndParagraph();
    if (element.ownsRow) output_.EndRow();
  }

  void Text(std::string_view text) {
    if (muted_) return;
    output_.Text(text, LookOfText());
    if (Trimmed(text).empty()) return;
    MarkLabelled();
  }

  // The first paragraph of an item has its label, the others only stand as far in.
  Look LookOfText() {
    Look look = stack_.back().look;
    look.paragraph.alignment = stack_.back().alignment;
    look.paragraph.rightToLeft = stack_.back().rightToLeft;
    const Element* item = Item();
    if (!item) return look;
    if (item->labelled) {
      look.paragraph.firstIndent = 0;
    } else {
      look.paragraph.bullet = item->bullets;
      look.paragraph.list = item->list;
      look.paragraph.listLevel = static_cast<uint8_t>(item->listDepth - 1);
    }
    return look;
  }

  Element* Item() {
    const auto around = std::find_if(stack_.rbegin(), stack_.rend(), [](const Element& element) {
      return element.does == Does::kItem || element.does == Does::kCell || element.does == Does::kBulletList ||
             element.does == Does::kNumberedList;
    });
    const bool isItem = around != stack_.rend() && around->does == Does::kItem && around->listDepth > 0;
    return isItem ? &*around : nullptr;
  }
  void MarkLabelled() {
    if (Element* item = Item()) item->labelled = true;
  }

  void Comment(std::string_view text) {
    if (text == "StartFragment") muted_ = false;
    if (text == "EndFragment") muted_ = true;
  }

  void Stop() {
    stopped_ = true;
    xmlStopParser(parser_);
  }

  FormatTable& formats_;
  HtmlOutput output_;
  std::vector<Element> stack_;
  htmlParserCtxtPtr parser_ = nullptr;
  bool muted_ = false;
  bool stopped_ = false, limited_ = false;
  std::exception_ptr failure_;
};

}  // namespace

ReadResult Read(std::string_view utf8, const std::shared_ptr<TextStore>& store, const CharFormat& base) {
  return HtmlReader(store, base).Run(utf8);
}

}  // namespace text::html
