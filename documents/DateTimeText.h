// The current date or time as it is inserted.
#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace documents {

enum class DateTimeForm { kDateGeneral, kDateLong, kDateMed, kDateShort, kTimeLong, kTimeMed, kTimeShort };

// The general date leaves out a time that is midnight. The medium forms and the short time are the same everywhere
// (16-Nov-26, 08:20 PM, 20:20), the others those of the locale.
QString DateTimeText(DateTimeForm form, const QDateTime& when, const QLocale& locale);

// Of this moment, by the system's regional settings.
QString DateTimeText(DateTimeForm form);

}  // namespace documents
