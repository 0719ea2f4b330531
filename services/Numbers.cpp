#include "services/Numbers.h"

#include <charconv>
#include <cmath>
#include <string>

namespace services {
namespace {

bool IsBlank(QChar c) {
  return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

// What a number of this form may consist of, as far as it goes.
std::string Numeral(QStringView text) {
  std::string numeral;
  bool digits = false, point = false, exponent = false;
  for (const QChar c : text) {
    if (IsBlank(c)) continue;
    const bool begins = numeral.empty() || numeral.back() == 'e';
    if (c >= u'0' && c <= u'9') {
      numeral += static_cast<char>(c.unicode());
      digits = true;
    } else if ((c == u'-' || c == u'+') && begins) {
      numeral += static_cast<char>(c.unicode());
    } else if (c == u'.' && !point && !exponent) {
      numeral += '.';
      point = true;
    } else if ((c == u'e' || c == u'E' || c == u'd' || c == u'D') && digits && !exponent) {
      numeral += 'e';
      exponent = true;
    } else {
      break;
    }
  }
  return numeral;
}

}  // namespace

double LeadingNumber(QStringView text) {
  const std::string numeral = Numeral(text);
  const char* begin = numeral.data();
  const char* end = begin + numeral.size();
  if (begin < end && *begin == '+') ++begin;
  double number = 0;
  const auto result = std::from_chars(begin, end, number);
  return result.ec == std::errc() && std::isfinite(number) ? number : 0;
}

}  // namespace services
