#pragma once

#include <QLocale>
#include <QString>
#include <optional>

// Number and boolean text forms shared by config.xml and the programme files.
// They reproduce the conversions of the runtime the files were first written
// by, so that old files read the same and new files stay readable by it.

namespace qv {

// The locale-independent number text: a blank in place of the sign for zero
// and positive values, "-" otherwise, "." as separator, at most 15
// significant digits, no trailing zeros and no zero before the separator:
// 5 -> " 5", 0.5 -> " .5", -0.5 -> "-.5", 0 -> " 0". Magnitudes from 1E+15
// on and below 1E-04 take the exponent form " 1E+15", " 1E-05", " 1.5E-07".
// Throws qv::OverflowError for infinities and NaN, which have no such form.
QString legacyNumberText(double value);

// Whether the whole text reads as a number, and which: blanks around it are
// allowed, an optional sign, digits with "." or the locale's decimal
// separator, an optional exponent. nullopt for anything else, including an
// empty text and a value out of the double range.
std::optional<double> parseLegacyNumber(const QString& text);
std::optional<double> parseLegacyNumber(const QString& text, const QLocale& locale);

// The number at the front of a text, "." as separator whatever the locale:
// blanks, tabs and line feeds are ignored wherever they stand, reading stops
// at the first character that cannot belong to the number, and a text
// without a number gives 0. " 2.5" -> 2.5, "12abc" -> 12, "abc" -> 0.
// Throws qv::OverflowError for a number beyond the double range.
double legacyLeadingNumber(const QString& text);

// The runtime's text-to-boolean conversion: the words true and false in any
// case, or a number, zero being false. nullopt when the text is neither.
std::optional<bool> parseLegacyBoolean(const QString& text);
std::optional<bool> parseLegacyBoolean(const QString& text, const QLocale& locale);

} // namespace qv
