#include "text/rtfsyntax/RtfCodePages.h"

#include "text/Utf16.h"
#include "text/rtfsyntax/RtfCharacters.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <iconv.h>
#include <vector>

namespace text::rtf {

namespace {

struct NamedPage {
  int number;
  const char* icuName;  // null: not one of ICU's
};

// The Arabic, Hebrew and Thai Mac pages have no converter; the letters of those named here stand at the same places.
constexpr NamedPage kPages[] = {
    {437, "ibm-437"},
    {708, "ibm-1089"},
    {720, "ibm-720"},
    {737, "ibm-737"},
    {775, "ibm-775"},
    {819, "ISO-8859-1"},
    {850, "ibm-850"},
    {852, "ibm-852"},
    {855, "ibm-855"},
    {857, "ibm-857"},
    {858, "ibm-858"},
    {860, "ibm-860"},
    {861, "ibm-861"},
    {862, "ibm-862"},
    {863, "ibm-863"},
    {864, "ibm-864"},
    {865, "ibm-865"},
    {866, "ibm-866"},
    {869, "ibm-869"},
    {874, "windows-874-2000"},
    {932, "windows-31j"},
    {936, "windows-936-2000"},
    {949, "windows-949-2000"},
    {950, "windows-950-2000"},
    {1250, "windows-1250"},
    {1251, "windows-1251"},
    {1252, "windows-1252"},
    {1253, "windows-1253"},
    {1254, "windows-1254"},
    {1255, "windows-1255"},
    {1256, "windows-1256"},
    {1257, "windows-1257"},
    {1258, "windows-1258"},
    {1361, nullptr},
    {10000, "macos-0_2-10.2"},
    {10001, "windows-31j"},
    {10002, "windows-950-2000"},
    {10003, "windows-949-2000"},
    {10004, "ibm-1089"},
    {10005, "windows-1255"},
    {10006, "macos-6_2-10.4"},
    {10007, "macos-7_3-10.2"},
    {10008, "windows-936-2000"},
    {10021, "windows-874-2000"},
    {10029, "macos-29-10.2"},
    {10081, "macos-35-10.2"},
    {20866, "KOI8-R"},
    {21866, "KOI8-U"},
    {28592, "ISO-8859-2"},
    {28595, "ISO-8859-5"},
    {28597, "ISO-8859-7"},
    {28599, "ISO-8859-9"},
    {28605, "ISO-8859-15"},
    {kUtf8CodePage, "UTF-8"},
};

struct CharsetPage {
  int charset;
  int codePage;
};

constexpr CharsetPage kCharsets[] = {
    {0, 1252},   {2, kSymbolCodePage}, {77, 10000}, {78, 10001}, {79, 10003}, {80, 10008}, {81, 10002}, {83, 10005},
    {84, 10004}, {85, 10006},          {86, 10081}, {87, 10021}, {88, 10029}, {89, 10007}, {128, 932},  {129, 949},
    {130, 1361}, {134, 936},           {136, 950},  {161, 1253}, {162, 1254}, {163, 1258}, {177, 1255}, {178, 1256},
    {186, 1257}, {204, 1251},          {222, 874},  {238, 1250}, {254, 437},  {255, 850},
};

void* const kNoIconv = reinterpret_cast<void*>(-1);

// The converter's own substitute is U+001A for some pages.
void Substitute(const void*, UConverterToUnicodeArgs* arguments, const char*, int32_t, UConverterCallbackReason reason,
                UErrorCode* error) {
  if (reason > UCNV_IRREGULAR) return;
  constexpr UChar kReplacement = 0xFFFD;
  *error = U_ZERO_ERROR;
  ucnv_cbToUWriteUChars(arguments, &kReplacement, 1, 0, error);
}

UConverter* Open(const char* name) {
  UErrorCode error = U_ZERO_ERROR;
  UConverter* converter = ucnv_open(name, &error);
  if (U_FAILURE(error)) return nullptr;
  ucnv_setToUCallBack(converter, Substitute, nullptr, nullptr, nullptr, &error);
  return converter;
}

const NamedPage* FindPage(int number) {
  const auto* page =
      std::find_if(std::begin(kPages), std::end(kPages), [=](const auto& p) { return p.number == number; });
  return page == std::end(kPages) ? nullptr : page;
}

// The page's own number may stand for a Mac page that is decoded as its Windows sister.
int DoubleByteBase(int number) {
  switch (number) {
    case 10001:
      return 932;
    case 10002:
      return 950;
    case 10003:
      return 949;
    case 10008:
      return 936;
    default:
      return number;
  }
}

}  // namespace

int CodePageOfCharset(int charset, int ansi) {
  for (const CharsetPage& entry : kCharsets)
    if (entry.charset == charset) return entry.codePage;
  return ansi;
}

bool IsKnownCodePage(int number) {
  return number == kSymbolCodePage || FindPage(number);
}

CodePage::CodePage(int number) : number_(number) {
  if (number == kSymbolCodePage) {
    for (int i = 0x20; i < 0x100; ++i) {
      std::string utf8;
      AppendUtf8(utf8, 0xF000 + static_cast<char32_t>(i));
      single_[i].size = static_cast<uint8_t>(utf8.copy(single_[i].bytes, 3));
    }
    return;
  }
  FillLeads(DoubleByteBase(number));
  if (number == 1361) {
    johab_ = iconv_open("UTF-8", "JOHAB");
    return;
  }
  if (const NamedPage* page = FindPage(number)) converter_ = Open(page->icuName);
  if (!converter_) {
    multiByte_ = false;
    converter_ = Open("windows-1252");
  }
  if (!multiByte_) FillSingle();
}

CodePage::~CodePage() {
  if (converter_) ucnv_close(converter_);
  if (johab_ && johab_ != kNoIconv) iconv_close(johab_);
}

void CodePage::FillSingle() {
  for (int i = 0; i < 256; ++i) {
    const char byte = static_cast<char>(i);
    UChar units[4] = {static_cast<UChar>(i)};
    UErrorCode error = U_ZERO_ERROR;
    int32_t count = 1;
    if (i >= 0x80) count = converter_ ? ucnv_toUChars(converter_, units, 4, &byte, 1, &error) : 1;
    const char32_t character = U_SUCCESS(error) && count == 1 ? units[0] : 0xFFFD;
    std::string utf8;
    AppendUtf8(utf8, character);
    single_[i].size = static_cast<uint8_t>(utf8.copy(single_[i].bytes, 3));
  }
}

void CodePage::FillLeads(int number) {
  const auto mark = [this](int from, int to) {
    multiByte_ = true;
    std::fill(leads_.begin() + from, leads_.begin() + to + 1, true);
  };
  if (number == 932) mark(0x81, 0x9F), mark(0xE0, 0xFC);
  if (number == 936 || number == 949 || number == 950) mark(0x81, 0xFE);
  if (number == 1361) mark(0x84, 0xD3), mark(0xD8, 0xDE), mark(0xE0, 0xF9);
  if (number == kUtf8CodePage) multiByte_ = true;
}

void CodePage::Decode(std::string_view bytes, std::string& out) const {
  if (johab_) return DecodeJohab(bytes, out);
  std::vector<UChar> units(bytes.size() + 8);
  UErrorCode error = U_ZERO_ERROR;
  const int32_t count = ucnv_toUChars(converter_, units.data(), static_cast<int32_t>(units.size()), bytes.data(),
                                      static_cast<int32_t>(bytes.size()), &error);
  if (U_FAILURE(error)) return AppendUtf8(out, 0xFFFD);
  for (int32_t i = 0; i < count;) {
    UChar32 character = 0;
    const UChar* const begin = units.data();
    U16_NEXT(begin, i, count, character);
    AppendUtf8(out, static_cast<char32_t>(character));
  }
}

void CodePage::DecodeJohab(std::string_view bytes, std::string& out) const {
  if (johab_ == kNoIconv) return AppendUtf8(out, 0xFFFD);
  char* in = const_cast<char*>(bytes.data());
  size_t left = bytes.size();
  while (left > 0) {
    char buffer[256];
    char* to = buffer;
    size_t room = sizeof buffer;
    const size_t result = iconv(johab_, &in, &left, &to, &room);
    out.append(buffer, to);
    if (result != static_cast<size_t>(-1) || to != buffer) continue;
    AppendUtf8(out, 0xFFFD);  // a malformed or cut character
    ++in, --left;
  }
}

const CodePage& CodePages::operator[](int number) {
  if (const auto found = pages_.find(number); found != pages_.end()) return *found->second;
  if (!IsKnownCodePage(number)) number = 1252;
  auto& page = pages_[number];
  if (!page) page = std::make_unique<CodePage>(number);
  return *page;
}

}  // namespace text::rtf
