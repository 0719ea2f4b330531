// Numbers as users type them.
#pragma once

#include <QStringView>

namespace services {

// The number that the text begins with: blanks anywhere in it are passed over, the decimal point is "." whatever the
// locale, and reading stops at the first character that cannot go on; 0 without a number. Always finite.
double LeadingNumber(QStringView text);

}  // namespace services
