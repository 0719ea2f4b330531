// Files kept as objects of the class "Package".
#include "tests/rtf/EditedDocument.h"
#include "text/rtfsyntax/RtfPackage.h"
#include "text/rtfwrite/RtfWrite.h"

#include <gtest/gtest.h>

namespace text::rtf {
namespace {

EmbeddedObject Dot() {
  static constexpr char kPng[] =
      "\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\1\0\0\0\1\10\0\0\0\0:~\x9bU\0\0\0\nIDATx\x9c"
      "c`\0\0\0\2\0\1\xe2!\xbc"
      "3\0\0\0\0IEND\xae"
      "B`\x82";
  EmbeddedObject dot;
  dot.type = PictureType::kPng;
  dot.width = dot.height = 300;
  dot.picture = SharedBytes(std::string(kPng, sizeof kPng - 1));
  return dot;
}

const EmbeddedObject* OnlyObject(const Content& content) {
  const ObjectId id = content.formats()[content.CharFormatAt(Units(0))].object;
  return content.size() > Units(0) && id != ObjectId::kNone ? &content.formats()[id] : nullptr;
}

class Named : public testing::TestWithParam<const char*> {};

TEST_P(Named, ComesBackAsItWas) {
  std::string bytes;
  for (int i = 0; i < 70'000; ++i) bytes += static_cast<char>(i * 7);
  for (const std::string& held : {std::string(), std::string("{\\}\r\n\0x", 7), bytes}) {
    const std::string group = PackageGroup(GetParam(), held, Dot());
    const auto package = ReadPackage(group);
    ASSERT_TRUE(package);
    EXPECT_EQ(package->name, GetParam());
    EXPECT_EQ(package->bytes, held);
    const ReadResult read = ReadNew("{\\rtf1 " + group + "}");
    const EmbeddedObject* object = OnlyObject(read.content);
    ASSERT_TRUE(object);
    EXPECT_EQ(object->name, GetParam());
    EXPECT_EQ(object->type, PictureType::kPng);
    EXPECT_EQ(object->width, 300);
    const ReadResult again = ReadNew(Written(read));
    ASSERT_TRUE(OnlyObject(again.content));
    EXPECT_EQ(ReadPackage(OnlyObject(again.content)->rtf.bytes)->bytes, held) << "through the writer";
  }
}

INSTANTIATE_TEST_SUITE_P(Package, Named,
                         testing::Values("a.txt", "caf\u00E9 {1} \\ \u20AC.odt", "\u05D0\u05D1.png",
                                         "\U0001F600 %20;.x"));

TEST(Package, ANameThatOnlyTheDataHoldIsFound) {
  std::string group = PackageGroup("caf\u00E9.ods", "x", Dot());
  group.erase(group.find("{\\*\\objname"), group.find("{\\*\\objdata") - group.find("{\\*\\objname"));
  EXPECT_EQ(OnlyObject(ReadNew("{\\rtf1 " + group + "}").content)->name, "caf\u00E9.ods");
  EXPECT_EQ(PackageLabel(group), "caf\u00E9.ods");
}

TEST(Package, SomethingStandsBeforeOneThatBeginsATextAndIsReadAsNothing) {
  const std::string group = PackageGroup("a.txt", "x", Dot());
  const auto marks = [](const std::string& rtf) {
    const size_t object = rtf.find("{\\object");
    return rtf.substr(0, object).find("bkmkstart") != std::string::npos;
  };
  const ReadResult first = ReadNew("{\\rtf1 " + group + "}"), second = ReadNew("{\\rtf1 x" + group + "}");
  EXPECT_TRUE(marks(Written(first)));
  EXPECT_FALSE(marks(Written(second)));
  EXPECT_EQ(Written(ReadNew(Written(first))), Written(first));
  EXPECT_EQ(ReadNew(Written(first)).content.size(), Units(1));
  // Put into a file that was read.
  for (const int64_t at : {0, 1}) {
    Edited edited("{\\rtf1\\b text\\par}");
    const Content object = ReadFragment("{\\rtf1 " + group + "}", edited.content.store()).content;
    edited.content = edited.content.WithReplaced({Units(at), Units(at)}, object);
    const std::string saved = edited.Saved();
    EXPECT_NE(saved.find("{\\object"), std::string::npos) << saved;
    EXPECT_TRUE(saved.starts_with("{\\rtf1\\b"));
    EXPECT_EQ(marks(saved), at == 0);
  }
}

TEST(Package, ThePictureIsShownAsLargeAndCutOffAsWanted) {
  EmbeddedObject shown = Dot();
  shown.width = 600, shown.height = 150;
  shown.cropLeft = 1000, shown.cropRight = 1500, shown.cropBottom = 5000;
  const EmbeddedObject read = *OnlyObject(ReadNew("{\\rtf1 " + PackageGroup("a.png", "x", shown) + "}").content);
  EXPECT_EQ(read.width, 600);
  EXPECT_EQ(read.height, 150);
  EXPECT_EQ(read.cropLeft, 1000);
  EXPECT_EQ(read.cropRight, 1500);
  EXPECT_EQ(read.cropTop, 0);
  EXPECT_EQ(read.cropBottom, 5000);
}

TEST(Package, WhatIsNoneOrDamagedIsNothing) {
  const std::string group = PackageGroup("name", "some bytes", Dot());
  const size_t data = group.find("objdata") + 9, end = group.find('}', data);
  for (size_t size = 0; size < end - data; ++size) {
    const auto cut = ReadPackage(group.substr(0, data + size) + "}}");
    // The names behind are not needed.
    EXPECT_EQ(cut ? cut->bytes : "some bytes", "some bytes") << size;
  }
  EXPECT_FALSE(ReadPackage(group.substr(0, data + 40) + "}}"));
  const auto with = [&](size_t byte, const char* hex) { return std::string(group).replace(data + 2 * byte, 2, hex); };
  EXPECT_FALSE(ReadPackage(with(4, "01"))) << "linked";
  EXPECT_FALSE(ReadPackage(with(12, "51"))) << "another class";
  EXPECT_FALSE(ReadPackage("{\\object\\objemb{\\*\\objclass Package}}"));
  largestNew = 0;
  for (size_t byte = 0; byte < 80; ++byte) static_cast<void>(ReadPackage(with(byte, "ff")));
  EXPECT_LT(largestNew, 100'000u) << "no size is believed";
}

}  // namespace
}  // namespace text::rtf
