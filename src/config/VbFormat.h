#pragma once

#include <QLocale>
#include <QString>

// The number texts of the old runtime that the screens were designed around,
// in the machine's locale: the operators read the values with the same
// digits and the same separator as they always have.

namespace qv {

// A number through a picture of '#' and '0' digit places with at most one
// '.', as the old Format function did: "0.0", "##.##", "#.0000", "00".
//
// A '0' place always shows a digit, a '#' place only a significant one, so
// that "#" gives no zero before the separator (0.75 through "##.##" is
// ",75" with a decimal comma) and "##.##" drops trailing zeros but keeps the
// separator ("7." for 7, "," alone for 0). The integer part is never cut:
// 123 through "00" is "123". Rounding is half away from zero on the
// number's 15-significant-digit decimal form, so 2.675 gives "2.68" through
// "0.00" although its binary value lies below the tie. A negative number
// keeps its sign even when it rounds to zero ("-0.0"), as it always did.
// The decimal separator is the locale's; there are no group separators.
// Other characters in the picture are ignored. Infinities and NaN give an
// empty text.
QString formatVb(double value, const QString& picture, const QLocale& locale = QLocale::system());

// The plain text of a number that a text box got by assignment: up to 15
// significant digits, no trailing zeros, a zero before the separator
// ("0.5", "-0.25"), the locale's separator, and the exponent form from
// 1E+15 up and below 0.0001 ("1E+15", "1.5E-07"). Infinities and NaN give
// an empty text.
QString vbNumberText(double value, const QLocale& locale = QLocale::system());

} // namespace qv
