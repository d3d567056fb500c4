#include "metadata/exif_date.h"

#include "core/numbers.h"

namespace quillane {

namespace {

/// The parts of YYYY:MM:DD HH:MM:SS.
struct ExifDateParts {
    explicit ExifDateParts(const QString& value)
        : year(value.left(4)),
          month(value.mid(5, 2)),
          day(value.mid(8, 2)),
          hour(value.mid(11, 2)),
          minute(value.mid(14, 2)),
          second(value.mid(17, 2))
    { }
    QString year, month, day, hour, minute, second;
};

/// "Jan" to "Dec" for "01" to "12"; other digits stay as they are.
QString ExifMonthName(const QString& month)
{
    constexpr const char* kNames[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    for (int i = 0; i < 12; ++i) {
        if (month == QStringLiteral("%1").arg(i + 1, 2, 10, QLatin1Char('0'))) {
            return QString::fromLatin1(kNames[i]);
        }
    }
    return month;
}

} // namespace

QString FormatExifDateTime(const QString& value)
{
    ExifDateParts parts(value);
    const double hour = NumericPrefix(parts.hour);
    const QString suffix = hour < 12 ? QStringLiteral("AM") : QStringLiteral("PM");
    if (hour < 10) {
        parts.hour = parts.hour.mid(1, 1);
    } else if (hour >= 12 && parts.hour != QLatin1String("12")) {
        parts.hour = TextOf(hour - 12);
    }
    return ExifMonthName(parts.month) + u' ' + parts.day + u',' + parts.year + QLatin1String("  ")
        + parts.hour + u':' + parts.minute + u':' + parts.second + u' ' + suffix;
}

QString FormatExifDate(const QString& value)
{
    const ExifDateParts parts(value);
    return parts.month + u'/' + parts.day + u'/' + parts.year;
}

} // namespace quillane
