// The writer's fields, and the groups that stand for U+FFFC.
#include "text/rtfsyntax/RtfFields.h"
#include "text/rtfsyntax/RtfLimits.h"
#include "text/rtfsyntax/RtfPictures.h"
#include "text/rtfsyntax/RtfTokenizer.h"
#include "text/rtfwrite/RtfWriter.h"

#include <algorithm>
#include <array>

namespace text::rtf {

namespace {

constexpr std::string_view kObject = "\uFFFC";
constexpr size_t kHexLine = 64;  // bytes

// By PictureType.
constexpr std::array<std::string_view, 7> kPictureWords = {"",           "pngblip", "jpegblip", "dibitmap0",
                                                           "wmetafile8", "emfblip", "macpict"};

constexpr bool IsMetafile(PictureType type) {
  return type == PictureType::kWmf || type == PictureType::kEmf;
}

// Without the header that only files have.
std::string_view DataOf(const EmbeddedObject& object) {
  std::string_view data = object.picture.bytes;
  if (object.type == PictureType::kWmf && data.starts_with("\xD7\xCD\xC6\x9A"))
    data.remove_prefix(std::min<size_t>(22, data.size()));
  return data;
}

// One direction of a picture as RTF counts it.
struct Side {
  int64_t own = 0, goal = 0, before = 0, after = 0;
};

Side SideOf(const EmbeddedObject& object, int32_t shown, int64_t pixels, int32_t cropBefore, int32_t cropAfter) {
  Side side;
  const int64_t left = std::max(10000 - int64_t{cropBefore} - cropAfter, int64_t{1});
  side.goal = shown > 0 ? int64_t{shown} * 10000 / left : std::min<int64_t>(pixels * kTwipsPerPixel, kMaxLength);
  side.before = side.goal * cropBefore / 10000;
  side.after = side.goal * cropAfter / 10000;
  side.own = IsMetafile(object.type) ? side.goal * 2540 / 1440 : pixels;
  return side;
}

}  // namespace

// A field ends with its group, and so do the formats that began in it.
void RtfWriter::Link(LinkId link) {
  if (link == link_) return;
  if (link_ != LinkId::kNone) {
    words_.Raw("}}");
    chars_ = charsBeforeLink_;
  }
  link_ = LinkId::kNone;
  if (link == LinkId::kNone) return;
  const std::string instruction = LinkInstruction(formats_[link]);
  if (instruction.size() > kMaxInstructionBytes || LinkTarget(instruction).empty()) return;
  link_ = link;
  charsBeforeLink_ = chars_;
  words_.Raw("{\\field{\\*"), words_.Word("fldinst");
  words_.Text(instruction, TextCoding());
  words_.Raw("}{"), words_.Word("fldrslt");
}

void RtfWriter::TextWithObject(std::string_view bytes, const EmbeddedObject& object) {
  for (size_t at; (at = bytes.find(kObject)) != std::string_view::npos && !refused_;) {
    PlainText(bytes.substr(0, at));
    Object(object);
    bytes.remove_prefix(at + kObject.size());
  }
  PlainText(bytes);
}

bool RtfWriter::RunObject(const EmbeddedObject& object) {
  Object(object);
  return !refused_ && sink_(out_);
}

// Groups as they were read say more than the model does; only a note's refers to the tables of its file.
void RtfWriter::Object(const EmbeddedObject& object) {
  if (object.kind == ObjectKind::kNote) return Note(object);
  const bool picture = object.kind == ObjectKind::kPicture;
  const bool raw = object.rtf.bytes.find("\\bin") != std::string_view::npos;
  if (picture && (object.rtf.bytes.empty() || (raw && object.type != PictureType::kNone))) return Picture(object);
  if (IsAttachment(object.rtf.bytes)) {
    words_.Raw("{"), Group(object.rtf.bytes), words_.Raw("\\'ac}");
    return;
  }
  constexpr std::string_view kPicture = "{\\pict";
  // A shape has the description beside its picture.
  const bool described = object.rtf.bytes.find("wzDescription") != std::string_view::npos;
  if (picture && !object.name.empty() && !described && object.rtf.bytes.starts_with(kPicture)) {
    words_.Raw(kPicture), Description(object), Group(object.rtf.bytes.substr(kPicture.size()));
    return;
  }
  if (!object.rtf.bytes.empty()) return Kept(object.rtf.bytes, object.fallbackCount, false);
  words_.Raw("{\\object\\objemb");
  if (object.width > 0) words_.Word("objw", object.width);
  if (object.height > 0) words_.Word("objh", object.height);
  words_.Raw("{\\*"), words_.Word("objclass"), words_.Delimit();
  words_.Name(object.name);
  words_.Raw("}{\\result");
  if (object.type != PictureType::kNone) Picture(object);
  words_.Raw("}}");
}

void RtfWriter::Note(const EmbeddedObject& note) {
  if (sourceTables_ && IsOfSource(note)) return Kept(note.rtf.bytes, note.fallbackCount, true, "\\chftn");
  words_.Raw("\\chftn{"), words_.Word("footnote");
  if (note.rtf.bytes.find("\\ftnalt") != std::string_view::npos) words_.Word("ftnalt");
  words_.Raw("\\pard\\plain{\\super\\chftn}");
  words_.Raw(" ");
  for (std::string_view text = note.name; !text.empty() && !refused_;) {
    const size_t end = text.find('\n');
    words_.Text(text.substr(0, end), TextCoding());
    if (end != std::string_view::npos) words_.Word("par");
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  words_.Raw("}");
}

// Between words that say how many fallbacks its characters have.
void RtfWriter::Kept(std::string_view group, uint8_t fallbackCount, bool translated, std::string_view mark) {
  if (fallbackCount != 1) words_.Word("uc", fallbackCount);
  words_.Raw(mark), Group(group, translated);
  if (fallbackCount != 1) words_.Word("uc", 1);
}

void RtfWriter::Picture(const EmbeddedObject& object) {
  const PixelSize pixels = PixelsOf(object.type, object.picture.bytes);
  const Side across = SideOf(object, object.width, pixels.width, object.cropLeft, object.cropRight);
  const Side down = SideOf(object, object.height, pixels.height, object.cropTop, object.cropBottom);
  const auto number = [this](std::string_view word, int64_t value) {
    if (value != 0) words_.Word(word, value);
  };
  words_.Raw("{"), words_.Word("pict");
  if (object.type != PictureType::kNone) words_.Word(kPictureWords[static_cast<size_t>(object.type)]);
  number("picw", across.own), number("pich", down.own);
  number("picwgoal", across.goal), number("pichgoal", down.goal);
  number("piccropl", across.before), number("piccropr", across.after);
  number("piccropt", down.before), number("piccropb", down.after);
  Description(object);
  words_.Raw("\r\n");
  HexBytes(DataOf(object));
  words_.Raw("}");
}

void RtfWriter::Description(const EmbeddedObject& object) {
  if (object.kind != ObjectKind::kPicture || object.name.empty()) return;
  words_.Raw("{\\*\\picprop{\\sp{\\sn wzDescription}{\\sv ");
  words_.Text(object.name, TextCoding());
  words_.Raw("}}}");
}

void RtfWriter::HexBytes(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  for (; !bytes.empty() && !refused_; bytes.remove_prefix(std::min(kHexLine, bytes.size()))) {
    for (const char c : bytes.substr(0, kHexLine)) {
      const auto byte = static_cast<uint8_t>(c);
      out_ += kDigits[byte >> 4];
      out_ += kDigits[byte & 15];
    }
    words_.Raw("\r\n");
    SendIfLarge();
  }
}

// One or more whole groups, in 7 bits: raw data becomes hex, which is what the data of pictures and objects may be.
void RtfWriter::Group(std::string_view group, bool translated) {
  words_.Begin();
  RtfTokenizer tokenizer(group);
  size_t done = 0;
  const auto copy = [&](size_t end) {
    for (const char c : group.substr(done, end - done)) {
      if (static_cast<uint8_t>(c) >= 0x80) {
        words_.Hex(static_cast<uint8_t>(c));
      } else {
        out_ += c == '\0' ? '\n' : c;  // either ends a word and is no text
      }
    }
    done = end;
    SendIfLarge();
  };
  for (size_t begin = 0; !refused_;) {
    begin = tokenizer.position();
    const Token token = tokenizer.Next();
    if (token.kind == TokenKind::kEnd) break;
    if (translated && token.kind == TokenKind::kWord) {
      begin = tokenizer.begin();
      copy(begin);
      out_ += Translated(token, group.substr(begin, tokenizer.position() - begin));
    } else if (token.kind == TokenKind::kBinary) {
      copy(begin);
      out_ += '\n';  // ends a word
      HexBytes(token.text);
    } else {
      copy(tokenizer.position());
    }
    done = tokenizer.position();
  }
  copy(group.size());
  words_.Begin();
}

}  // namespace text::rtf
