// Pictures, notes and labels of lists in the text.
#include "LayoutTesting.h"
#include "text/outline/ListNumbers.h"
#include "text/pictures/Metafile.h"
#include "text/pictures/MetafileCanvas.h"
#include "text/pictures/Pictures.h"

#include <QBuffer>

#include <functional>
#include <sstream>

namespace text::layout {
namespace {

using namespace pictures;

std::string Encoded(const QImage& image, const char* format) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, format);
  return bytes.toStdString();
}

std::string RedAndBlue(const char* format) {
  QImage image(40, 20, QImage::Format_RGB32);
  image.fill(Qt::red);
  for (int y = 0; y < 20; ++y) {
    for (int x = 20; x < 40; ++x) image.setPixelColor(x, y, Qt::blue);
  }
  return Encoded(image, format);
}

EmbeddedObject Picture(PictureType type, std::string bytes, int width = 0, int height = 0) {
  EmbeddedObject object;
  object.type = type;
  object.picture = SharedBytes(std::move(bytes));
  object.width = width;
  object.height = height;
  return object;
}

Document WithObject(EmbeddedObject object) {
  RichText text;
  CharFormat chars;
  chars.object = text.formats().Add(std::move(object));
  return text.Add("\uFFFC", {}, chars).Add("next").Finish();
}

struct Shown {
  const char* name;
  EmbeddedObject object;
  double width, height;  // pixels
  bool drawn = true;
};

TEST(Pictures, AreAsLargeAsTheySay) {
  const std::string png = RedAndBlue("png");
  EmbeddedObject cropped = Picture(PictureType::kPng, png);
  cropped.cropRight = 5000;
  EmbeddedObject note;
  note.kind = ObjectKind::kNote;
  const Shown cases[] = {
      {"own size", Picture(PictureType::kPng, png), 40, 20},
      {"said", Picture(PictureType::kPng, png, 1500, 600), 100, 40},
      {"jpeg", Picture(PictureType::kJpeg, RedAndBlue("jpeg")), 40, 20},
      {"dib", Picture(PictureType::kDib, RedAndBlue("bmp").substr(14)), 40, 20},
      {"cropped", cropped, 20, 20},
      {"wider than the text", Picture(PictureType::kPng, png, 15 * 1000, 15 * 500), 292, 146},
      {"damaged", Picture(PictureType::kPng, "\x89PNG and no more", 900, 900), 60, 60, false},
      {"undrawable", Picture(PictureType::kWmf, "not drawn", 1500, 450), 100, 30, false},
  };
  for (const Shown& shown : cases) {
    Document document = WithObject(shown.object);
    TestView view(document, 300, 400);
    const double width = view.CaretRect({Units(1)}).left() - view.CaretRect({Units(0)}).left();
    EXPECT_NEAR(width, shown.width, 1.5) << shown.name;
    const double line = view.TopOf(Units(2)) - 4;
    EXPECT_GE(line, shown.height) << shown.name;
    EXPECT_LE(line, shown.height + 12) << shown.name;
    EXPECT_LT(view.CaretRect({Units(0)}).height(), 25) << "a caret is as high as text: " << shown.name;
    const QImage image = PaintToImage(view);
    const QColor left = image.pixelColor(4 + static_cast<int>(shown.width / 4), 4 + static_cast<int>(shown.height / 2));
    EXPECT_EQ(left.red() > 200 && left.green() < 60, shown.drawn) << shown.name;
    EXPECT_EQ(view.CharacterAt({4 + shown.width / 2, 4 + shown.height / 2}), Units(0)) << shown.name;
  }
}

TEST(Pictures, LyingOrHugeOnesAreFrames) {
  // A head that promises more pixels than are read, with the bytes of a small picture.
  std::string png = RedAndBlue("png");
  png[16] = png[20] = 0x7F;
  QImage scan(7000, 5000, QImage::Format_Mono);
  scan.fill(0);
  FormatTable formats;
  PictureCache cache;
  EXPECT_TRUE(cache.Get(formats, formats.Add(Picture(PictureType::kPng, png)), {100, 100}).isNull());
  EXPECT_TRUE(cache.Get(formats, formats.Add(Picture(PictureType::kJpeg, RedAndBlue("png"))), {9, 9}).isNull())
      << "of another type than it says";
  EXPECT_FALSE(cache.Get(formats, formats.Add(Picture(PictureType::kPng, Encoded(scan, "png"))), {100, 70}).isNull());
  EXPECT_FALSE(cache.Get(formats, formats.Add(Picture(PictureType::kPng, RedAndBlue("png"))), {9, 9}).isNull());
}

TEST(Pictures, SelectedOnesShowIt) {
  Document document = WithObject(Picture(PictureType::kPng, RedAndBlue("png")));
  TestView view(document, 300, 100);
  PaintOptions options;
  const QImage plain = PaintToImage(view, options);
  options.selection = {Units(0), Units(1)};
  EXPECT_NE(PaintToImage(view, options).pixelColor(10, 10), plain.pixelColor(10, 10));
}

// --- Metafiles

std::string Number(uint32_t value, int width) {
  std::string bytes;
  for (int i = 0; i < width; ++i) bytes += static_cast<char>(value >> 8 * i & 255);
  return bytes;
}

std::string WmfRecord(uint32_t function, std::initializer_list<int> words) {
  std::string record = Number(static_cast<uint32_t>(3 + words.size()), 4) + Number(function, 2);
  for (const int word : words) record += Number(static_cast<uint32_t>(word), 2);
  return record;
}

// A red rectangle in the left half, a blue bitmap in the right one.
std::string Wmf() {
  QImage blue(2, 2, QImage::Format_RGB32);
  blue.fill(Qt::blue);
  const std::string dib = Encoded(blue, "bmp").substr(14);
  std::string bitmap = Number(0xCC0020, 4) + Number(0, 2);
  for (const int word : {2, 2, 0, 0, 100, 50, 0, 50}) bitmap += Number(static_cast<uint32_t>(word), 2);
  bitmap += dib;
  return Number(1, 2) + Number(9, 2) + Number(0x300, 2) + std::string(12, '\0') + WmfRecord(0x020B, {0, 0}) +
         WmfRecord(0x020C, {100, 100}) + WmfRecord(0x02FC, {0, 0x00FF, 0, 0}) + WmfRecord(0x012D, {0}) +
         WmfRecord(0x041B, {100, 50, 0, 0}) + Number(static_cast<uint32_t>(3 + bitmap.size() / 2), 4) +
         Number(0x0F43, 2) + bitmap + WmfRecord(0, {});
}

std::string EmfRecord(uint32_t type, std::initializer_list<int> numbers) {
  std::string record = Number(type, 4) + Number(static_cast<uint32_t>(8 + 4 * numbers.size()), 4);
  for (const int number : numbers) record += Number(static_cast<uint32_t>(number), 4);
  return record;
}

// The same rectangle, and a blue polygon of 16-bit points.
std::string Emf() {
  const std::string header =
      EmfRecord(1, {0, 0, 100, 100, 0, 0, 2646, 2646, 0x464D4520, 0x10000, 0, 0, 3, 0, 0, 0, 960, 960, 254, 254});
  std::string polygon = EmfRecord(86, {0, 0, 100, 100, 4, 50 | 0, 100, 100 | 100 << 16, 50 | 100 << 16});
  return header + EmfRecord(39, {1, 0, 0x0000FF, 0}) + EmfRecord(37, {1}) + EmfRecord(43, {0, 0, 50, 100}) +
         EmfRecord(39, {2, 0, 0xFF0000, 0}) + EmfRecord(37, {2}) + polygon + EmfRecord(14, {0, 0, 0});
}

TEST(Metafiles, AreDrawn) {
  for (const auto& [name, image] :
       {std::pair("wmf", DrawWmf(Wmf(), {200, 100})), std::pair("emf", DrawEmf(Emf(), {200, 100}))}) {
    ASSERT_FALSE(image.isNull()) << name;
    EXPECT_EQ(image.pixelColor(50, 50), QColor(Qt::red)) << name;
    EXPECT_EQ(image.pixelColor(150, 50), QColor(Qt::blue)) << name;
  }
  EXPECT_TRUE(DrawWmf("not drawn", {10, 10}).isNull());
  EXPECT_TRUE(DrawEmf(Wmf(), {10, 10}).isNull());
}

TEST(Metafiles, LargeOnesAreDrawnSmaller) {
  const QImage image = DrawEmf(Emf(), {20000, 10000});
  EXPECT_NEAR(double(image.width()) / image.height(), 2, 0.01);
  EXPECT_LE(image.width() * image.height(), 8 << 20);
  EXPECT_EQ(image.pixelColor(image.width() / 4, image.height() / 2), QColor(Qt::red));
}

std::string Repeated(const std::string& record, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += record;
  return all;
}

TEST(Metafiles, StateComesBackFromAnyDepth) {
  const std::string head = Emf().substr(0, Emf().size() - EmfRecord(14, {0, 0, 0}).size());
  const std::string red = EmfRecord(37, {1}), blue = EmfRecord(37, {2}), save = EmfRecord(33, {});
  const QImage image = DrawEmf(head + red + save + blue + Repeated(save, 299) + EmfRecord(34, {-300}) +
                                   EmfRecord(43, {50, 0, 100, 100}) + EmfRecord(14, {0, 0, 0}),
                               {200, 100});
  EXPECT_EQ(image.pixelColor(150, 50), QColor(Qt::red));
}

TEST(Metafiles, APathThatPaintsItselfDoesNotGrow) {
  const std::string fill = EmfRecord(62, {0, 0, 0, 0}), box = EmfRecord(43, {0, 0, 50, 100});
  const std::string head = Emf().substr(0, Emf().size() - EmfRecord(14, {0, 0, 0}).size());
  const std::string round = EmfRecord(59, {}) + fill + fill + box + EmfRecord(60, {});
  EXPECT_FALSE(DrawEmf(head + Repeated(round, 60) + fill + EmfRecord(14, {0, 0, 0}), {200, 100}).isNull());
}

// What each kind of drawing costs is bounded: all of it ends long before a file does.
TEST(Metafiles, WorkIsBounded) {
  QPainterPath full, tangle, tooLong;
  full.addRect(-1e6, -1e6, 2e6, 2e6);
  for (int i = 0; i < 5000; ++i) tangle.lineTo(i * 7919 % 1000, i * 104729 % 1000);
  for (int i = 0; i < 20000; ++i) tooLong.lineTo(i, i);
  QImage dot(1, 1, QImage::Format_RGB32);
  dot.fill(Qt::blue);
  const std::string dib = Encoded(dot, "bmp").substr(14);
  const std::function<void(MetafileCanvas&)> drawings[] = {
      [&](MetafileCanvas& canvas) { canvas.Draw(full, true, false); },
      [&](MetafileCanvas& canvas) { canvas.Draw(tangle, true, true); },
      [&](MetafileCanvas& canvas) { canvas.Draw(tooLong, true, true); },
      [&](MetafileCanvas& canvas) { canvas.DrawBitmap(dib, QRectF(-1e6, -1e6, 2e6, 2e6)); },
      [&](MetafileCanvas& canvas) {
        canvas.state.font.height = 1e6;
        canvas.DrawText(QString(100, u'W'), {0, 0});
      },
      [&](MetafileCanvas& canvas) { canvas.Clip(tangle); },
  };
  for (size_t i = 0; i < std::size(drawings); ++i) {
    MetafileCanvas canvas({1000, 1000});
    int times = 0;
    while (canvas.Spend(0) && times < 400000) {
      drawings[i](canvas);
      ++times;
    }
    EXPECT_LT(times, 400000) << i;
  }
}

// --- Lists

struct Spelled {
  NumberStyle style;
  int32_t number;
  const char* text;
};

TEST(Lists, NumbersInEveryStyle) {
  for (const Spelled& c : {Spelled{NumberStyle::kDecimal, 12, "12"},
                           {NumberStyle::kUpperRoman, 1994, "MCMXCIV"},
                           {NumberStyle::kLowerRoman, 4, "iv"},
                           {NumberStyle::kLowerRoman, 5000, "5000"},
                           {NumberStyle::kUpperLetter, 27, "AA"},
                           {NumberStyle::kLowerLetter, 26, "z"},
                           {NumberStyle::kLowerLetter, 0, "0"},
                           {NumberStyle::kOrdinal, 11, "11th"},
                           {NumberStyle::kOrdinal, 22, "22nd"},
                           {NumberStyle::kNone, 3, ""}}) {
    EXPECT_EQ(NumberText(c.style, c.number), c.text);
  }
}

using namespace std::string_literals;

// A paragraph per word: "-" none, else the list's letter and the level. Old style lists are in capitals.
std::vector<std::string> LabelsOf(const std::string& words) {
  RichText text;
  List list;
  list.levels = {{NumberStyle::kDecimal, 1, "\0."s},
                 {NumberStyle::kDecimal, 1, "\0.\1"s},
                 {NumberStyle::kLowerLetter, 3, "(\2)"s}};
  std::istringstream in(words);
  std::string word;
  int64_t paragraphs = 0;
  for (; in >> word; ++paragraphs) {
    ParaFormat format;
    if (word != "-") {
      list.identity = word[0] >= 'a' ? word[0] : 0;
      format.list = text.formats().Intern(list);
      format.listLevel = static_cast<uint8_t>(word[1] - '0');
    }
    text.Add("p", format);
  }
  Document document = text.Finish();
  ListNumbers numbers;
  numbers.Update(document.content(), std::nullopt);
  std::vector<std::string> labels;
  for (int64_t i = 0; i < paragraphs; ++i) {
    const ParaFormat& format = document.formats()[document.content().ParaFormatOf(Breaks(i))];
    labels.push_back(numbers.LabelOf(document.content(), Breaks(i), format).toStdString());
  }
  return labels;
}

TEST(Lists, AreCountedByListAndLevel) {
  using Labels = std::vector<std::string>;
  EXPECT_EQ(LabelsOf("a0 a0 - a0"), (Labels{"1.", "2.", "", "3."}));
  EXPECT_EQ(LabelsOf("a0 a1 a1 a0 a1"), (Labels{"1.", "1.1", "1.2", "2.", "2.1"}));
  EXPECT_EQ(LabelsOf("a0 b0 a0 b0"), (Labels{"1.", "1.", "2.", "2."}));
  EXPECT_EQ(LabelsOf("A0 A0 - A0"), (Labels{"1.", "2.", "", "1."}));
  EXPECT_EQ(LabelsOf("a1 a2 a2 a0"), (Labels{"1.1", "(c)", "(d)", "1."}));
}

// Far down a long list the numbers are right after edits anywhere, as if counted anew.
TEST(Lists, NumbersFollowEdits) {
  RichText text;
  List list{1, {{NumberStyle::kDecimal, 1, "\0."s}}};
  ParaFormat item;
  item.list = text.formats().Intern(list);
  for (int i = 0; i < 3000; ++i) text.Add("x", i % 50 == 49 ? ParaFormat{} : item);
  Document document = text.Finish();
  ListNumbers numbers;
  numbers.Update(document.content(), std::nullopt);
  const auto label = [&](ListNumbers& of, int64_t paragraph) {
    const ParaFormat& format = document.formats()[document.content().ParaFormatOf(Breaks(paragraph))];
    return of.LabelOf(document.content(), Breaks(paragraph), format).toStdString();
  };
  EXPECT_EQ(label(numbers, 2998), "2940.");
  uint32_t state = 7;
  for (int edit = 0; edit < 200; ++edit) {
    state = state * 1664525u + 1013904223u;
    const Revision before = document.revision();
    const Units at(state / 65536 % static_cast<uint32_t>(document.content().size().value() - 2));
    if (edit % 4 == 0) {
      Insert(document, at, "\n");
    } else if (edit % 4 == 1) {
      Remove(document, {at, at + Units(2)});
    } else if (edit % 4 == 2) {
      Insert(document, at, "yy");
    } else {
      document.Undo();
    }
    numbers.Update(document.content(), document.ChangesSince(before));
    ListNumbers anew;
    anew.Update(document.content(), std::nullopt);
    for (const int64_t paragraph : {2900, 1500 + edit, 10, 700}) {
      ASSERT_EQ(label(numbers, paragraph), label(anew, paragraph)) << "edit " << edit << " paragraph " << paragraph;
    }
  }
}

TEST(Lists, LabelsStandInTheIndentAndChangeWithEditsAbove) {
  RichText text;
  ParaFormat item;
  item.list = text.formats().Intern(List{1, {{NumberStyle::kDecimal, 1, "\0."s}}});
  item.leftIndent = 720;
  item.firstIndent = -360;
  for (int i = 0; i < 12; ++i) text.Add("item", item);
  Document document = text.Finish();
  TestView view(document, 300, 400);
  EXPECT_NEAR(view.CaretRect({Units(0)}).left() - 4, 48, 1);
  const auto ink = [&](int paragraph) {
    const QRectF caret = view.CaretRect({Units(5 * paragraph)});
    return PaintToImage(view).copy(QRect(4, static_cast<int>(caret.top()), 44, static_cast<int>(caret.height())));
  };
  const QImage second = ink(1), third = ink(2);
  EXPECT_NE(second, third);
  Remove(document, {Units(0), Units(5)});
  EXPECT_EQ(ink(1), second) << "what was the third item is the second";
}

TEST(Lists, LabelsStandBesideTheLineWhereverItBegins) {
  for (const bool rightToLeft : {false, true}) {
    for (const Alignment alignment : {Alignment::kLeft, Alignment::kCenter, Alignment::kRight}) {
      RichText text;
      ParaFormat item;
      item.bullet = true;
      item.leftIndent = 360;
      item.firstIndent = -360;
      item.alignment = alignment;
      item.rightToLeft = rightToLeft;
      text.Add(rightToLeft ? "\u05D0\u05D1" : "item", item);
      Document document = text.Finish();
      TestView view(document, 300, 100);
      const QRectF caret = view.CaretRect({Units(0)});
      const QImage line = PaintToImage(view);
      const auto isInk = [&](int x) {
        for (int y = static_cast<int>(caret.top()); y < caret.bottom(); ++y)
          if (qGray(line.pixel(x, y)) < 128) return true;
        return false;
      };
      const int step = rightToLeft ? 1 : -1, edge = static_cast<int>(caret.left()) + 2 * step;
      int gap = 0;
      while (gap < 30 && !isInk(edge + gap * step)) ++gap;
      SCOPED_TRACE(testing::Message() << rightToLeft << " " << static_cast<int>(alignment));
      EXPECT_GT(gap, 2);
      EXPECT_LT(gap, 24);
    }
  }
}

}  // namespace
}  // namespace text::layout
