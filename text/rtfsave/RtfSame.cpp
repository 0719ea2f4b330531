#include "text/rtfsave/RtfSame.h"

#include "text/TextStore.h"
#include "text/Utf16.h"
#include "text/rtfsyntax/RtfCharacters.h"
#include "text/rtfsyntax/RtfLimits.h"
#include "text/rtfwrite/RtfWords.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <unordered_map>
#include <vector>

namespace text::rtf {

namespace {

constexpr int64_t kBetweenReports = 1 << 20;

// Text without a break, or a break.
struct Part {
  std::string_view bytes;
  bool isBreak = false;
  CharFormatId chars = CharFormatId::kDefault;
  ParaFormatId paragraph = ParaFormatId::kDefault;
};

bool IsClean(std::string_view bytes) {
  constexpr uint64_t kOnes = 0x0101010101010101, kTops = 0x8080808080808080;
  for (size_t at = 0; at < bytes.size();) {
    if (uint64_t eight = 0; at + sizeof eight <= bytes.size()) {
      std::memcpy(&eight, bytes.data() + at, sizeof eight);
      // The top bits of bytes past ASCII, or of those that a 1 is taken from in vain.
      if (((eight | (eight - kOnes)) & kTops) == 0) {
        at += sizeof eight;
        continue;
      }
    }
    if (bytes[at] == '\0') return false;
    const int length =
        static_cast<unsigned char>(bytes[at]) < 0x80 ? 1 : Utf8Length(bytes.data() + at, bytes.data() + bytes.size());
    if (length == 0) return false;
    at += static_cast<size_t>(length);
  }
  return true;
}

// A content from its beginning to its end, as RTF would hold it.
class Parts {
 public:
  explicit Parts(const Content& content) : content_(content) { pieces_.reserve(kPiecesAtOnce); }

  // The next part, cut to at most `most` bytes of text.
  bool Next(Part& part) {
    while (rest_.empty()) {
      if (piece_ == pieces_.size() && !Fetch()) return false;
      Begin(pieces_[piece_++]);
    }
    const size_t end = breaks_ ? FindBreak(rest_) : rest_.size();
    part = {rest_.substr(0, end), end == 0, chars_, paragraph_};
    if (end == 0) part.bytes = rest_.substr(0, rest_.starts_with("\r\n") ? 2 : 1);
    rest_.remove_prefix(part.bytes.size());
    return true;
  }

 private:
  static constexpr size_t kPiecesAtOnce = 256;

  bool Fetch() {
    piece_ = 0;
    pieces_.clear();
    content_.ForEachPiece({at_, content_.size()}, [this](const PieceView& piece) {
      pieces_.push_back(piece);
      at_ += piece.sums.units;
      return pieces_.size() < kPiecesAtOnce;
    });
    return !pieces_.empty();
  }

  void Begin(const PieceView& piece) {
    rest_ = piece.bytes;
    chars_ = piece.charFormat;
    paragraph_ = piece.paraFormat;
    breaks_ = piece.sums.breaks.value() > 0;
    if (IsClean(rest_)) return;
    clean_.clear();
    for (std::string_view bytes = piece.bytes; !bytes.empty();)
      if (const char32_t c = TakeCharacter(bytes)) AppendUtf8(clean_, c);
    rest_ = clean_;
  }

  const Content& content_;
  Units at_{0};  // behind the pieces that were fetched
  std::vector<PieceView> pieces_;
  size_t piece_ = 0;
  std::string_view rest_;
  std::string clean_;
  bool breaks_ = false;
  CharFormatId chars_ = CharFormatId::kDefault;
  ParaFormatId paragraph_ = ParaFormatId::kDefault;
};

class Comparison {
 public:
  Comparison(const FormatTable& a, FontId aDefault, const FormatTable& b, FontId bDefault)
      : a_(a), b_(b), aDefault_(aDefault), bDefault_(bDefault) {}

  bool SameChars(CharFormatId a, CharFormatId b, bool isBreak) {
    const auto [place, isNew] = chars_.try_emplace(Key(a, b) * 2 + isBreak, false);
    if (isNew) place->second = CompareChars(a_[a], b_[b], isBreak);
    return place->second;
  }
  bool SameParagraphs(ParaFormatId a, ParaFormatId b) {
    const auto [place, isNew] = paragraphs_.try_emplace(Key(a, b), false);
    if (isNew) place->second = CompareParagraphs(a_[a], b_[b]);
    return place->second;
  }

 private:
  template <class Id>
  static uint64_t Key(Id a, Id b) {
    return static_cast<uint64_t>(a) << 32 | static_cast<uint64_t>(b);
  }

  bool CompareChars(const CharFormat& aFormat, const CharFormat& bFormat, bool isBreak) const {
    CharFormat a = Writable(aFormat), b = Writable(bFormat);
    if (!SameFonts(a_[a.font == FontId::kDefault ? aDefault_ : a.font],
                   b_[b.font == FontId::kDefault ? bDefault_ : b.font]))
      return false;
    if (!isBreak && (a_[a.link] != b_[b.link] || !SameObjects(a.object, b.object))) return false;
    for (CharFormat* format : {&a, &b}) {
      format->font = FontId::kDefault;
      format->link = LinkId::kNone;
      format->object = ObjectId::kNone;
      for (Color* color : {&format->color, &format->background})
        if (!color->isAuto()) color->rgb &= 0xFFFFFF;
    }
    return a == b;
  }

  static bool SameFonts(const Font& a, const Font& b) {
    return CleanFontName(a.name) == CleanFontName(b.name) && a.charset == b.charset &&
           std::min<uint8_t>(a.family, 7) == std::min<uint8_t>(b.family, 7);
  }

  bool SameObjects(ObjectId a, ObjectId b) const {
    if (a == ObjectId::kNone || b == ObjectId::kNone) return a == b;
    const EmbeddedObject &x = a_[a], &y = b_[b];
    return x.kind == y.kind && (x.kind == ObjectKind::kPicture || x.name == y.name) && x.type == y.type &&
           x.picture.bytes == y.picture.bytes && SameSize(x.width, y.width) && SameSize(x.height, y.height);
  }

  // One that was not said becomes the picture's own; crops are rounded.
  static bool SameSize(int32_t wanted, int32_t read) {
    return wanted <= 0 || std::abs(wanted - read) <= kTwipsPerPixel;
  }

  bool CompareParagraphs(const ParaFormat& aFormat, const ParaFormat& bFormat) {
    ParaFormat a = aFormat, b = bFormat;
    if (Stops(a_[a.tabs]) != Stops(b_[b.tabs])) return false;
    if ((a.list == ListId::kNone) != (b.list == ListId::kNone) || !SameLists(a_[a.list], b_[b.list])) return false;
    if ((a.row == RowId::kNone) != (b.row == RowId::kNone)) return false;
    if (a.row != RowId::kNone && !SameRows(a_[a.row], b_[b.row])) return false;
    for (ParaFormat* format : {&a, &b}) {
      if (format->list == ListId::kNone) format->listLevel = 0;
      format->tabs = TabsId::kNone;
      format->list = ListId::kNone;
      format->row = RowId::kNone;
      for (int32_t* length : {&format->leftIndent, &format->firstIndent, &format->rightIndent, &format->spaceBefore,
                              &format->spaceAfter, &format->lineSpacing})
        *length = ClampLength(*length);
    }
    return a == b;
  }

  bool SameLists(const List& a, const List& b) {
    const auto same = [this](const ListLevel& x, const ListLevel& y) {
      return x.style == y.style && x.start == y.start && x.label == y.label && SameFonts(a_[x.font], b_[y.font]);
    };
    return SameIdentities(a.identity, b.identity) &&
           std::equal(a.levels.begin(), a.levels.end(), b.levels.begin(), b.levels.end(), same);
  }

  // Which number tells a list apart does not matter.
  bool SameIdentities(int32_t a, int32_t b) {
    if (a == 0 || b == 0) return a == b;
    return aIdentities_.try_emplace(a, b).first->second == b && bIdentities_.try_emplace(b, a).first->second == a;
  }

  static Tabs Stops(const Tabs& tabs) {
    Tabs stops;
    for (TabStop stop : tabs) {
      stop.position = ClampLength(stop.position);
      if (stop.position >= 0 && (stops.empty() || stops.back().position != stop.position)) stops.push_back(stop);
    }
    return stops;
  }

  static bool SameRows(TableRow a, TableRow b) {
    a.words.clear(), b.words.clear();
    return a == b;
  }

  const FormatTable &a_, &b_;
  const FontId aDefault_, bDefault_;
  std::unordered_map<uint64_t, bool> chars_, paragraphs_;
  std::unordered_map<int32_t, int32_t> aIdentities_, bIdentities_;
};

}  // namespace

bool MeansTheSame(const Content& wanted, FontId wantedDefault, const Content& read, FontId readDefault,
                  const Progress& progress) {
  Comparison comparison(wanted.formats(), wantedDefault, read.formats(), readDefault);
  Parts aParts(wanted), bParts(read);
  Part a, b;
  int64_t done = 0, reportAt = kBetweenReports;
  while (true) {
    if (done >= reportAt) {
      if (progress && !progress(done)) return false;
      reportAt = done + kBetweenReports;
    }
    const bool aMore = !a.bytes.empty() || aParts.Next(a), bMore = !b.bytes.empty() || bParts.Next(b);
    if (!aMore || !bMore) {
      return aMore == bMore && comparison.SameParagraphs(wanted.lastParaFormat(), read.lastParaFormat());
    }
    if (a.isBreak != b.isBreak || !comparison.SameChars(a.chars, b.chars, a.isBreak)) return false;
    if (a.isBreak) {
      if (!comparison.SameParagraphs(a.paragraph, b.paragraph)) return false;
      ++done;
      a.bytes = b.bytes = {};
      continue;
    }
    const size_t common = std::min(a.bytes.size(), b.bytes.size());
    if (a.bytes.substr(0, common) != b.bytes.substr(0, common)) return false;
    a.bytes.remove_prefix(common);
    b.bytes.remove_prefix(common);
    done += static_cast<int64_t>(common);
  }
}

}  // namespace text::rtf
