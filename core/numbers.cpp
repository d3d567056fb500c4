#include "core/numbers.h"
#include "core/failure.h"
#include <QByteArray>
#include <algorithm>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string_view>

namespace quillane {

namespace {

constexpr int kDoubleDigits = 15;
constexpr int kSingleDigits = 7;
// Decimal exponents of the first digit between which no exponent is written.
constexpr int kLowestPlain = -5;
constexpr int kHighestPlain = 14;

bool IsDigit(QStringView text, qsizetype at)
{
    return at < text.size() && text[at] >= u'0' && text[at] <= u'9';
}

bool IsBlank(QChar unit)
{
    return unit == u' ' || (unit >= u'\t' && unit <= u'\r');
}

qsizetype SkipBlanks(QStringView text, qsizetype at)
{
    while (at < text.size() && IsBlank(text[at]))
        ++at;
    return at;
}

// The end of the number that begins at `at`; `at` itself when none begins there.
qsizetype NumberEnd(QStringView text, qsizetype at)
{
    const qsizetype begin = at;
    if (at < text.size() && (text[at] == u'+' || text[at] == u'-'))
        ++at;
    qsizetype digits = 0;
    for (; IsDigit(text, at); ++at)
        ++digits;
    if (at < text.size() && text[at] == u'.') {
        qsizetype behind = at + 1;
        for (; IsDigit(text, behind); ++behind)
            ++digits;
        if (digits > 0)
            at = behind;
    }
    if (digits == 0)
        return begin;
    if (at < text.size() && (text[at] == u'e' || text[at] == u'E')) {
        qsizetype exponent = at + 1;
        if (exponent < text.size() && (text[exponent] == u'+' || text[exponent] == u'-'))
            ++exponent;
        if (IsDigit(text, exponent)) {
            while (IsDigit(text, exponent))
                ++exponent;
            at = exponent;
        }
    }
    return at;
}

// Infinite when the number is beyond the range of a double; 0 below its smallest.
double ValueOf(QStringView number)
{
    static const locale_t kPlain = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(number.toLatin1().constData(), nullptr, kPlain);
}

template <typename Integer> Integer RoundToWidth(double value)
{
    const double rounded = std::nearbyint(value); // the default mode: ties to even
    if (!(rounded >= std::numeric_limits<Integer>::min()
          && rounded <= std::numeric_limits<Integer>::max()))
        throw Failure(kFailureOverflow, QStringLiteral("The number is too large."));
    return Integer(rounded);
}

// A value as decimal digits d.ddd times ten to the exponent.
struct Decimal {
    bool negative = false;
    QByteArray digits; // without zeros at the end; empty for zero
    int exponent = 0;
};

// Reads "-d.ddde+xx", the form that to_chars writes.
Decimal ParseScientific(std::string_view text)
{
    Decimal decimal;
    const size_t mark = text.find('e');
    for (const char unit : text.substr(0, mark)) {
        if (unit == '-')
            decimal.negative = true;
        else if (unit != '.')
            decimal.digits += unit;
    }
    const std::string_view exponent = text.substr(mark + (text[mark + 1] == '+' ? 2 : 1));
    std::from_chars(exponent.data(), exponent.data() + exponent.size(), decimal.exponent);
    while (decimal.digits.endsWith('0'))
        decimal.digits.chop(1);
    if (decimal.digits.isEmpty())
        decimal = {};
    return decimal;
}

// The shortest digits that read back as the same value, or `most` digits where those are more.
template <typename Floating> Decimal DigitsOf(Floating value, int most)
{
    char text[64];
    auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::scientific).ptr;
    Decimal decimal = ParseScientific({text, size_t(end - text)});
    if (decimal.digits.size() > most) {
        end =
            std::to_chars(text, text + sizeof text, value, std::chars_format::scientific, most - 1)
                .ptr;
        decimal = ParseScientific({text, size_t(end - text)});
    }
    return decimal;
}

QString PlainText(const Decimal& decimal)
{
    QByteArray text = decimal.negative ? "-" : "";
    const auto count = int(decimal.digits.size());
    if (decimal.exponent < 0) {
        text += "0." + QByteArray(-decimal.exponent - 1, '0') + decimal.digits;
    } else if (decimal.exponent + 1 >= count) {
        text += decimal.digits + QByteArray(decimal.exponent + 1 - count, '0');
    } else {
        text += decimal.digits.first(decimal.exponent + 1) + '.'
            + decimal.digits.sliced(decimal.exponent + 1);
    }
    return QString::fromLatin1(text);
}

QString ExponentText(const Decimal& decimal)
{
    QByteArray text = decimal.negative ? "-" : "";
    text += decimal.digits.first(1);
    if (decimal.digits.size() > 1)
        text += '.' + decimal.digits.sliced(1);
    const QByteArray exponent = QByteArray::number(std::abs(decimal.exponent));
    text += decimal.exponent < 0 ? "E-" : "E+";
    text += exponent.rightJustified(2, '0');
    return QString::fromLatin1(text);
}

template <typename Floating> QString ShortestText(Floating value, int most)
{
    if (std::isnan(value))
        return QStringLiteral("NaN");
    if (std::isinf(value))
        return value < 0 ? QStringLiteral("-Infinity") : QStringLiteral("Infinity");
    const Decimal decimal = DigitsOf(value, most);
    if (decimal.digits.isEmpty())
        return QStringLiteral("0");
    const bool plain = decimal.exponent >= kLowestPlain && decimal.exponent <= kHighestPlain;
    return plain ? PlainText(decimal) : ExponentText(decimal);
}

// Adds one to the last digit of a run of decimal digits; a carry makes it one digit longer.
void CountUp(QByteArray& digits)
{
    for (qsizetype at = digits.size() - 1; at >= 0; --at) {
        if (digits[at] != '9') {
            digits[at] = char(digits[at] + 1);
            return;
        }
        digits[at] = '0';
    }
    digits.prepend('1');
}

} // namespace

double NumericPrefix(const QString& text)
{
    const qsizetype begin = SkipBlanks(text, 0);
    const qsizetype end = NumberEnd(text, begin);
    if (end == begin)
        return 0;
    constexpr double kLargest = std::numeric_limits<double>::max();
    return std::clamp(ValueOf(QStringView(text).sliced(begin, end - begin)), -kLargest, kLargest);
}

qint16 ToInt16(double value)
{
    return RoundToWidth<qint16>(value);
}

qint32 ToInt32(double value)
{
    return RoundToWidth<qint32>(value);
}

double NumberFromText(const QString& text)
{
    const qsizetype begin = SkipBlanks(text, 0);
    const qsizetype end = NumberEnd(text, begin);
    if (end > begin && SkipBlanks(text, end) == text.size()) {
        const double value = ValueOf(QStringView(text).sliced(begin, end - begin));
        if (std::isinf(value))
            throw Failure(kFailureOverflow, QStringLiteral("The number is too large."));
        return value;
    }
    const QStringView word = QStringView(text).trimmed();
    if (word.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
        return -1;
    if (word.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
        return 0;
    throw Failure(kFailureType, QStringLiteral("\"%1\" is not a number.").arg(text.left(40)));
}

qint16 Int16FromText(const QString& text)
{
    return ToInt16(NumberFromText(text));
}

qint32 Int32FromText(const QString& text)
{
    return ToInt32(NumberFromText(text));
}

float SingleFromText(const QString& text)
{
    const double value = NumberFromText(text);
    if (std::abs(value) > double(std::numeric_limits<float>::max()))
        throw Failure(kFailureOverflow, QStringLiteral("The number is too large."));
    return float(value);
}

bool BoolFromText(const QString& text)
{
    return NumberFromText(text) != 0;
}

QString TextFromBool(bool value)
{
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

qint32 IntegerDivide(double dividend, double divisor)
{
    const qint32 whole = ToInt32(dividend);
    const qint32 by = ToInt32(divisor);
    if (by == 0)
        throw Failure(kFailureDivision, QStringLiteral("Division by zero."));
    const qint64 quotient = qint64(whole) / by; // of 64 bits: -2^31 by -1 overflows 32
    return ToInt32(double(quotient));
}

QString TextOf(double value)
{
    return ShortestText(value, kDoubleDigits);
}

QString TextOf(float value)
{
    return ShortestText(value, kSingleDigits);
}

QString TextOf(qint32 value)
{
    return QString::number(value);
}

QString FormatNumber(double value, QLatin1String format)
{
    if (!std::isfinite(value))
        throw Failure(kFailureOverflow, QStringLiteral("The number is too large."));
    const qsizetype point = format.indexOf(QLatin1Char('.'));
    const qsizetype decimals = point < 0 ? 0 : format.size() - point - 1;
    const qsizetype places = point < 0 ? format.size() : point;

    // All digits down to the last wanted one, as one whole number.
    const Decimal decimal = DigitsOf(value, kDoubleDigits);
    const qsizetype wanted = decimal.digits.isEmpty() ? 0 : decimal.exponent + 1 + decimals;
    QByteArray digits;
    if (wanted >= decimal.digits.size()) {
        digits = decimal.digits + QByteArray(wanted - decimal.digits.size(), '0');
    } else if (wanted >= 0) {
        digits = decimal.digits.first(wanted);
        if (decimal.digits[wanted] >= '5')
            CountUp(digits);
    }
    const bool zero = digits.isEmpty() || digits.count('0') == digits.size();
    digits = digits.rightJustified(places + decimals, '0');

    QString text = QString::fromLatin1(digits);
    if (decimals > 0)
        text.insert(text.size() - decimals, u'.');
    if (decimal.negative && !zero)
        text.prepend(u'-');
    return text;
}

qint32 RoundUp(double value)
{
    return ToInt32(std::ceil(value));
}

} // namespace quillane
