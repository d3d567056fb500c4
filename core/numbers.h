#pragma once
// How the program turns numbers into text and back. Independent of the locale in force.
#include <QString>

namespace quillane {

/// The number that a text begins with (blanks, sign, digits, point, exponent); 0 when none.
double NumericPrefix(const QString& text);
/// Nearest integer, ties to the even neighbour; Failure kFailureOverflow outside the width.
qint16 ToInt16(double value);
qint32 ToInt32(double value);
/// Text as a number: the whole text must be one (blanks around it allowed), "True" and
/// "False" count as -1 and 0; else Failure kFailureType.
double NumberFromText(const QString& text);
qint16 Int16FromText(const QString& text);
qint32 Int32FromText(const QString& text);
float SingleFromText(const QString& text);
/// "True", "False" or a number (not 0 is true); else Failure kFailureType.
bool BoolFromText(const QString& text);
QString TextFromBool(bool value); ///< "True" or "False"

/// Quotient cut towards zero of the operands rounded to integers (ties to even);
/// Failure kFailureDivision for a zero divisor.
qint32 IntegerDivide(double dividend, double divisor);

/// Shortest decimal text that reads back as the same value, at most 15 significant digits for
/// a double and 7 for a single: 0.1 * 3 reads "0.3". No exponent between 1e-5 and 1e15.
QString TextOf(double value);
QString TextOf(float value);
QString TextOf(qint32 value);

/// Applies a format of '0' digits ("0.00", "00000", "000.00"): at least so many integer digits,
/// exactly so many decimals, ties away from zero. Failure kFailureOverflow for no finite value.
QString FormatNumber(double value, QLatin1String format);

/// The smallest integer not below value.
qint32 RoundUp(double value);

} // namespace quillane
