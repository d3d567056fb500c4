// Every test runs twice: under the C locale and under one with a decimal comma.
#include "core/expect_failure.h"
#include "core/number_locale.h"
#include "core/numbers.h"
#include <cfloat>
#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace quillane {

class Numbers : public testing::TestWithParam<bool> {
    NumberLocale mLocale{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Locales, Numbers, testing::Bool(), [](const auto& suite) {
    return suite.param ? std::string("DecimalComma") : std::string("C");
});

constexpr double kInfinite = std::numeric_limits<double>::infinity();
const double kNan = std::nan("");

struct ParseRow {
    const char* text;
    double value;
};

TEST_P(Numbers, PrefixIsTheNumberATextBeginsWith)
{
    constexpr ParseRow kRows[] = {
        {"", 0},
        {"abc", 0},
        {"12", 12},
        {"12abc", 12},
        {"  12", 12},
        {"\t12", 12},
        {"-7", -7},
        {"+7", 7},
        {"- 7", 0},
        {"1.5", 1.5},
        {"1,5", 1},
        {".5", 0.5},
        {"5.", 5},
        {"-.5x", -0.5},
        {".", 0},
        {"-", 0},
        {"+.", 0},
        {"1e3", 1000},
        {"1E3", 1000},
        {"1e", 1},
        {"1e+", 1},
        {"1e-2", 0.01},
        {"1e3.5", 1000},
        {"1.2.3", 1.2},
        {"2 3", 2},
        {"0x10", 0},
        {"1e999", DBL_MAX},
        {"-1e999", -DBL_MAX},
        {"1e-999", 0},
        {"00012", 12},
        {"100 px", 100},
        {"nan", 0},
        {"inf", 0},
        {"1e99999999999", DBL_MAX},
    };
    for (const ParseRow& row : kRows)
        EXPECT_DOUBLE_EQ(NumericPrefix(row.text), row.value) << row.text;
    EXPECT_EQ(NumericPrefix(QStringLiteral("\u0661\u0662")), 0); // digits of another script
}

TEST_P(Numbers, IntegersRoundToTheNearestAndTiesToTheEvenNeighbour)
{
    struct Row {
        double value;
        qint32 rounded;
    };
    constexpr Row kRows[] = {
        {0, 0},           {0.5, 0},           {1.5, 2},         {2.5, 2},     {-0.5, 0},
        {-1.5, -2},       {-2.5, -2},         {0.49999, 0},     {0.50001, 1}, {2.51, 3},
        {32766.5, 32766}, {-32768.5, -32768}, {32767.4, 32767},
    };
    for (const Row& row : kRows) {
        EXPECT_EQ(ToInt16(row.value), row.rounded) << row.value;
        EXPECT_EQ(ToInt32(row.value), row.rounded) << row.value;
    }
}

TEST_P(Numbers, IntegersBeyondTheirWidthOverflow)
{
    for (double value : {32767.5, 32768.0, -32768.6, -32769.0, 1e300, kInfinite, -kInfinite, kNan})
        EXPECT_EQ(FailureOf([&] { ToInt16(value); }), kFailureOverflow) << value;
    for (double value : {2147483647.5, 2147483648.0, -2147483649.0, 1e300, kInfinite, kNan})
        EXPECT_EQ(FailureOf([&] { ToInt32(value); }), kFailureOverflow) << value;
    EXPECT_EQ(ToInt32(2147483647.4), INT_MAX);
    EXPECT_EQ(ToInt32(-2147483648.5), INT_MIN);
}

TEST_P(Numbers, ATextMustBeANumberAsAWhole)
{
    constexpr ParseRow kRows[] = {
        {"12", 12},   {" 12 ", 12}, {"-0.25", -0.25}, {"+1", 1},   {"1e2", 100}, {"True", -1},
        {"False", 0}, {"true", -1}, {" FALSE ", 0},   {".5", 0.5}, {"5.", 5},    {"\t3\r\n", 3},
    };
    for (const ParseRow& row : kRows)
        EXPECT_DOUBLE_EQ(NumberFromText(row.text), row.value) << row.text;
    for (const char* text : {"", " ", "12a", "1,5", "1.5.2", "one", "1e", "0x10", "--1", "1 2",
                             "nan", "inf", "Truely", "-", "1e+"})
        EXPECT_EQ(FailureOf([&] { NumberFromText(text); }), kFailureType) << text;
    EXPECT_EQ(FailureOf([&] { NumberFromText("1e999"); }), kFailureOverflow);
    EXPECT_EQ(FailureOf([&] { NumberFromText(QString(1 << 20, u'x')); }), kFailureType);
}

TEST_P(Numbers, TextConvertsToEachWidth)
{
    EXPECT_EQ(Int16FromText("32767"), 32767);
    EXPECT_EQ(Int16FromText("2.5"), 2);
    EXPECT_EQ(FailureOf([] { Int16FromText("32768"); }), kFailureOverflow);
    EXPECT_EQ(Int32FromText("-2147483648"), INT_MIN);
    EXPECT_EQ(FailureOf([] { Int32FromText("2147483648"); }), kFailureOverflow);
    EXPECT_EQ(FailureOf([] { Int32FromText("ten"); }), kFailureType);
    EXPECT_FLOAT_EQ(SingleFromText("105.5"), 105.5f);
    EXPECT_EQ(FailureOf([] { SingleFromText("1e39"); }), kFailureOverflow);
    EXPECT_EQ(FailureOf([] { SingleFromText("-1e39"); }), kFailureOverflow);
    EXPECT_EQ(SingleFromText("1e-60"), 0.0f);
}

TEST_P(Numbers, ABooleanIsAWordOrANumber)
{
    for (const char* text : {"True", "true", "-1", "1", "2", "0.1"})
        EXPECT_TRUE(BoolFromText(text)) << text;
    for (const char* text : {"False", "false", "0", "0.0", "-0"})
        EXPECT_FALSE(BoolFromText(text)) << text;
    for (const char* text : {"", "yes", "no", "on"})
        EXPECT_EQ(FailureOf([&] { BoolFromText(text); }), kFailureType) << text;
    EXPECT_EQ(TextFromBool(true), "True");
    EXPECT_EQ(TextFromBool(false), "False");
}

TEST_P(Numbers, IntegerDivisionRoundsItsOperandsAndCutsTheQuotient)
{
    EXPECT_EQ(IntegerDivide(7, 2), 3);
    EXPECT_EQ(IntegerDivide(-7, 2), -3);
    EXPECT_EQ(IntegerDivide(7, -2), -3);
    EXPECT_EQ(IntegerDivide(7.5, 2), 4); // 8 by 2
    EXPECT_EQ(IntegerDivide(6.5, 2), 3); // 6 by 2
    EXPECT_EQ(IntegerDivide(9, 2.5), 4); // 9 by 2
    EXPECT_EQ(IntegerDivide(9, 3.5), 2); // 9 by 4
    EXPECT_EQ(IntegerDivide(0, 5), 0);
    EXPECT_EQ(FailureOf([] { IntegerDivide(1, 0); }), kFailureDivision);
    EXPECT_EQ(FailureOf([] { IntegerDivide(1, 0.5); }), kFailureDivision);
    EXPECT_EQ(FailureOf([] { IntegerDivide(3e9, 1); }), kFailureOverflow);
    EXPECT_EQ(FailureOf([] { IntegerDivide(-2147483648.0, -1); }), kFailureOverflow);
}

TEST_P(Numbers, DoublesHaveAtMostFifteenDigits)
{
    struct Row {
        double value;
        const char* text;
    };
    const Row rows[] = {
        {0, "0"},
        {-0.0, "0"},
        {1, "1"},
        {-1, "-1"},
        {0.1 * 3, "0.3"},
        {0.1, "0.1"},
        {1.0 / 3, "0.333333333333333"},
        {2.0 / 3, "0.666666666666667"},
        {100, "100"},
        {1234.5678, "1234.5678"},
        {-0.001, "-0.001"},
        {0.00001, "0.00001"},
        {0.000001, "1E-06"},
        {0.0000125, "0.0000125"},
        {123456789012345.0, "123456789012345"},
        {999999999999999.0, "999999999999999"},
        {1e15, "1E+15"},
        {1.5e20, "1.5E+20"},
        {1e100, "1E+100"},
        {-2.5e-10, "-2.5E-10"},
        {DBL_MAX, "1.79769313486232E+308"},
        {5e-324, "5E-324"},
        {0.1 + 0.7, "0.8"},
        {72.0, "72"},
        {999999999999999.9, "1E+15"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(TextOf(row.value).toStdString(), row.text);
}

TEST_P(Numbers, DoublesOfFifteenDigitsReadBackTheSame)
{
    for (double value : {0.1, 1e-5, 123.456, 98765.4321, 1e14, -7.25e-4, 3.14159265358979})
        EXPECT_EQ(NumberFromText(TextOf(value)), value);
}

TEST_P(Numbers, SinglesHaveAtMostSevenDigits)
{
    EXPECT_EQ(TextOf(180.0f), "180");
    EXPECT_EQ(TextOf(105.5f), "105.5");
    EXPECT_EQ(TextOf(0.1f), "0.1");
    EXPECT_EQ(TextOf(-0.0f), "0");
    EXPECT_EQ(TextOf(1.0f / 3), "0.3333333");
    EXPECT_EQ(TextOf(16777216.0f), "16777220");
    EXPECT_EQ(TextOf(-1234.567f), "-1234.567");
    EXPECT_EQ(TextOf(FLT_MAX), "3.402823E+38");
}

TEST_P(Numbers, IntegersHaveNoGrouping)
{
    EXPECT_EQ(TextOf(0), "0");
    EXPECT_EQ(TextOf(1234567), "1234567");
    EXPECT_EQ(TextOf(INT_MIN), "-2147483648");
}

TEST_P(Numbers, FormatsRoundTiesAwayFromZero)
{
    struct Row {
        double value;
        const char* format;
        const char* text;
    };
    constexpr Row kRows[] = {
        {0, "0.00", "0.00"},
        {1, "0.00", "1.00"},
        {0.125, "0.00", "0.13"},
        {-0.125, "0.00", "-0.13"},
        {2.675, "0.00", "2.68"}, // a tie as it is written in decimals
        {1.005, "0.00", "1.01"},
        {0.004, "0.00", "0.00"},
        {-0.004, "0.00", "0.00"},
        {0.005, "0.00", "0.01"},
        {9.995, "0.00", "10.00"},
        {0.05, "0.0", "0.1"},
        {2.8, "0.0", "2.8"},
        {5.65, "0.0", "5.7"},
        {0.0005, "0.000", "0.001"},
        {1.23456, "0.0000", "1.2346"},
        {7, "00", "07"},
        {123, "00", "123"},
        {6.5, "00", "07"},
        {42, "00000", "00042"},
        {123456, "00000", "123456"},
        {-42, "00000", "-00042"},
        {7, "000", "007"},
        {3.14159, "000.00", "003.14"},
        {1234.5, "000.00", "1234.50"},
        {0.5, "0", "1"},
        {1.5, "0", "2"},
        {2.5, "0", "3"},
        {-2.5, "0", "-3"},
        {0.4, "0", "0"},
        {0.04, "0", "0"},
        {99.5, "0", "100"},
        {1e15, "0.00", "1000000000000000.00"},
        {1e-20, "0.00", "0.00"},
    };
    for (const Row& row : kRows) {
        EXPECT_EQ(FormatNumber(row.value, QLatin1String(row.format)).toStdString(), row.text)
            << row.value << ' ' << row.format;
    }
}

TEST_P(Numbers, FormatsTakeFiniteValuesAlone)
{
    for (double value : {kInfinite, -kInfinite, kNan})
        EXPECT_EQ(FailureOf([&] { FormatNumber(value, QLatin1String("0.00")); }), kFailureOverflow);
    EXPECT_EQ(FormatNumber(DBL_MAX, QLatin1String("0")).size(), 309);
    EXPECT_EQ(FormatNumber(5e-324, QLatin1String("0.00")), "0.00");
}

TEST_P(Numbers, RoundUpIsTheSmallestIntegerNotBelow)
{
    EXPECT_EQ(RoundUp(0), 0);
    EXPECT_EQ(RoundUp(0.001), 1);
    EXPECT_EQ(RoundUp(2), 2);
    EXPECT_EQ(RoundUp(2.5), 3);
    EXPECT_EQ(RoundUp(-2.5), -2);
    EXPECT_EQ(RoundUp(-0.5), 0);
    EXPECT_EQ(FailureOf([] { RoundUp(2147483647.1); }), kFailureOverflow);
    EXPECT_EQ(FailureOf([] { RoundUp(kNan); }), kFailureOverflow);
}

} // namespace quillane
