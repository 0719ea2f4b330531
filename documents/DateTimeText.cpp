#include "documents/DateTimeText.h"

namespace documents {
namespace {

// Many locales end the long time with the zone, which the time of this place does not need.
QString WithoutZone(const QString& format) {
  QString result;
  bool quoted = false;
  for (const QChar c : format) {
    if (c == u'\'') quoted = !quoted;
    if (quoted || c != u't') result += c;
  }
  result.remove(QLatin1String("()"));
  return result.trimmed();
}

QString LongTime(const QTime& time, const QLocale& locale) {
  return locale.toString(time, WithoutZone(locale.timeFormat(QLocale::LongFormat)));
}

}  // namespace

QString DateTimeText(DateTimeForm form, const QDateTime& when, const QLocale& locale) {
  const QDate date = when.date();
  const QTime time = when.time();
  switch (form) {
    case DateTimeForm::kDateGeneral: {
      const QString day = locale.toString(date, QLocale::ShortFormat);
      const bool midnight = QTime(time.hour(), time.minute(), time.second()) == QTime(0, 0);
      return midnight ? day : day + QLatin1Char(' ') + LongTime(time, locale);
    }
    case DateTimeForm::kDateLong:
      return locale.toString(date, QLocale::LongFormat);
    case DateTimeForm::kDateMed:
      return QLocale::c().toString(date, QStringLiteral("dd-MMM-yy"));
    case DateTimeForm::kDateShort:
      return locale.toString(date, QLocale::ShortFormat);
    case DateTimeForm::kTimeLong:
      return LongTime(time, locale);
    case DateTimeForm::kTimeMed:
      return QLocale::c().toString(time, QStringLiteral("hh:mm AP"));
    case DateTimeForm::kTimeShort:
      return QLocale::c().toString(time, QStringLiteral("HH:mm"));
  }
  return {};
}

QString DateTimeText(DateTimeForm form) {
  return DateTimeText(form, QDateTime::currentDateTime(), QLocale::system());
}

}  // namespace documents
