#include "metadata/exif_date.h"

#include <gtest/gtest.h>

namespace quillane {

TEST(FormatExifDateTime, AfternoonIsTwelveHoursLess)
{
    EXPECT_EQ(FormatExifDateTime("2003:01:05 13:07:09"), "Jan 05,2003  1:07:09 PM");
    EXPECT_EQ(FormatExifDateTime("2003:01:05 23:07:09"), "Jan 05,2003  11:07:09 PM");
}

TEST(FormatExifDateTime, HoursAtTheirEdges)
{
    const std::pair<const char*, const char*> hours[] = {
        {"00", "0:07:09 AM"},  {"09", "9:07:09 AM"}, {"10", "10:07:09 AM"}, {"11", "11:07:09 AM"},
        {"12", "12:07:09 PM"}, {"13", "1:07:09 PM"}, {"23", "11:07:09 PM"}, {"24", "12:07:09 PM"},
    };
    for (const auto& [hour, text] : hours) {
        EXPECT_EQ(FormatExifDateTime(QStringLiteral("2003:01:05 %1:07:09").arg(hour)),
                  QStringLiteral("Jan 05,2003  ") + text)
            << hour;
    }
}

TEST(FormatExifDateTime, EveryMonthHasItsName)
{
    const char* const names[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                 "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    for (int month = 1; month <= 12; ++month) {
        const QString value =
            QStringLiteral("2003:%1:05 10:07:09").arg(month, 2, 10, QLatin1Char('0'));
        EXPECT_EQ(FormatExifDateTime(value).left(3), names[month - 1]);
    }
}

TEST(FormatExifDateTime, OtherMonthDigitsStay)
{
    EXPECT_EQ(FormatExifDateTime("2003:13:05 10:07:09"), "13 05,2003  10:07:09 AM");
    EXPECT_EQ(FormatExifDateTime("2003: 1:05 10:07:09"), " 1 05,2003  10:07:09 AM");
    EXPECT_EQ(FormatExifDateTime("2003:00:05 10:07:09"), "00 05,2003  10:07:09 AM");
}

TEST(FormatExifDateTime, IsCutByPositionWhateverStandsThere)
{
    EXPECT_EQ(FormatExifDateTime(""), " ,  :: AM");
    EXPECT_EQ(FormatExifDateTime("2003"), " ,2003  :: AM");
    EXPECT_EQ(FormatExifDateTime("    :  :     :  :  "), "     ,       :  :   AM");
    EXPECT_EQ(FormatExifDateTime("2003-01-05T13.07.09Z"), "Jan 05,2003  1:07:09 PM");
    EXPECT_EQ(FormatExifDateTime("2003:01:05 ab:07:09"), "Jan 05,2003  b:07:09 AM");
}

TEST(FormatExifDate, DigitsWithSlashes)
{
    EXPECT_EQ(FormatExifDate("2003:01:05 13:07:09"), "01/05/2003");
    EXPECT_EQ(FormatExifDate("2003:13:05"), "13/05/2003");
    EXPECT_EQ(FormatExifDate(""), "//");
}

} // namespace quillane
