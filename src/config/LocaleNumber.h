#pragma once

#include <QLocale>
#include <QString>
#include <optional>

namespace qv {

// The "is it numeric" test of every entry box, and the value it reads.
//
// Accepted: exactly what `locale` itself parses as a number (its decimal
// separator, its sign characters, its group separator where the grouping is
// well formed, an exponent), with blanks allowed around it. Nothing else: on
// a machine with a decimal comma "2,5" is numeric and "2.5" is not, which is
// what the operators have always seen. The number options of `locale` apply,
// so a caller may forbid group separators with QLocale::RejectGroupSeparator.
//
// Rejected: an empty or blank text, infinities and NaN (their words parse in
// Qt but were never numbers to the operators), and the odd forms of the old
// runtime's test that nobody types into a box (hexadecimal "&H", a
// parenthesised negative, a currency sign).
std::optional<double> parseLocaleNumber(const QString& text,
                                        const QLocale& locale = QLocale::system());

} // namespace qv
