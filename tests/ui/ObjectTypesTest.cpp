// What stands for a file in a text.
#include "ui/desktop/ObjectTypes.h"

#include <QBuffer>
#include <QImage>
#include <gtest/gtest.h>

namespace {

TEST(EmbeddedFile, NamesAreThoseOfAFileAndNothingElse) {
  const std::string longName(300, 'x');
  for (const auto& [name, plain] : std::vector<std::pair<std::string, std::string>>{
           {"a.txt", "a.txt"},
           {"../../.bashrc", "bashrc"},
           {"C:\\dir\\a b.doc", "a b.doc"},
           {"line\nbreak\x7F.txt", "line_break_.txt"},
           {"", "object"},
           {"...", "object"},
           {"/", "object"},
           {longName + ".ods", std::string(116, 'x') + ".ods"},
           {std::string(119, 'x') + "\u00E9.", std::string(119, 'x') + "."}})
    EXPECT_EQ(ui::PlainFileName(name), plain) << name;
}

std::string Picture(QSize size, const char* format) {
  QImage image(size, QImage::Format_RGB32);
  image.fill(Qt::red);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, format);
  return bytes.toStdString();
}

TEST(EmbeddedFile, APictureShowsItselfAndAnythingElseItsCard) {
  const text::EmbeddedObject card =
      ui::FileCard("\u05D0\u05D1\u05D2 with a name of more than two lines of the card.txt");
  EXPECT_EQ(card.type, text::PictureType::kPng);
  struct Case {
    std::string bytes;
    bool itself, same;  // and with its own bytes
    int width, height;  // twips
  };
  const std::string png = Picture({40, 20}, "PNG");
  for (const Case& c :
       std::vector<Case>{{png, true, true, 600, 300},
                         {Picture({40, 20}, "JPG"), true, true, 600, 300},
                         {Picture({40, 20}, "BMP"), true, false, 600, 300},
                         {Picture({2400, 600}, "PNG"), true, true, 9000, 2250},
                         {png.substr(0, 40), false, false, card.width, card.height},
                         {"<svg xmlns='http://www.w3.org/2000/svg'/>", false, false, card.width, card.height},
                         {"", false, false, card.width, card.height}}) {
    const text::EmbeddedObject shown = ui::PictureOfFile(c.bytes, card);
    EXPECT_EQ(shown.picture.bytes == card.picture.bytes, !c.itself) << c.bytes.size();
    EXPECT_EQ(shown.picture.bytes == c.bytes, c.same) << c.bytes.size();
    EXPECT_EQ(shown.width, c.width);
    EXPECT_EQ(shown.height, c.height);
  }
}

}  // namespace
