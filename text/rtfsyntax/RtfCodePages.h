// Bytes of RTF text to UTF-8, by Windows and Mac code page numbers.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

struct UConverter;

namespace text::rtf {

constexpr int kSymbolCodePage = 42;
constexpr int kUtf8CodePage = 65001;

// The code page that a \fcharset means; `ansi` is the document's \ansicpg.
int CodePageOfCharset(int charset, int ansi);

// False for a number that is decoded as 1252 for want of a converter.
bool IsKnownCodePage(int number);

class CodePage {
 public:
  explicit CodePage(int number);  // an unknown number is taken as 1252
  ~CodePage();
  CodePage(const CodePage&) = delete;
  CodePage& operator=(const CodePage&) = delete;

  // Characters may take several bytes: collect them and call Decode.
  int number() const { return number_; }
  bool multiByte() const { return multiByte_; }
  // True when the byte begins a character of two bytes, the second of which may lie below 0x80.
  bool IsLead(uint8_t byte) const { return leads_[byte]; }
  // One byte of a page that is not multi-byte, as UTF-8.
  std::string_view Character(uint8_t byte) const { return {single_[byte].bytes, single_[byte].size}; }
  // Whole characters of a multi-byte page; what is malformed becomes U+FFFD.
  void Decode(std::string_view bytes, std::string& out) const;

 private:
  struct Single {
    uint8_t size = 0;
    char bytes[3] = {};
  };
  void FillSingle();
  void FillLeads(int number);
  void DecodeJohab(std::string_view bytes, std::string& out) const;

  const int number_;
  bool multiByte_ = false;
  void* johab_ = nullptr;  // iconv_t: ICU has no converter for this one, the C library has
  UConverter* converter_ = nullptr;
  std::array<Single, 256> single_{};
  std::array<bool, 256> leads_{};
};

// Those in use, each opened once.
class CodePages {
 public:
  const CodePage& operator[](int number);

 private:
  std::map<int, std::unique_ptr<CodePage>> pages_;
};

}  // namespace text::rtf
