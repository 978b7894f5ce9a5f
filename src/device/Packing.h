#pragma once

#include "link/Bytes.h"

#include <QLocale>
#include <QString>
#include <array>
#include <cstdint>
#include <span>

// Converters between the operator's numbers and the device's bytes. Their
// rounding, sign and overflow rules are those the firmware and the files
// written so far were made with, faults included; change none of them.
// Every conversion that does not fit throws qv::OverflowError.

namespace qv {

// Rounds to the nearest integer, ties to the even one (2.5 -> 2, 3.5 -> 4,
// -2.5 -> -2), as every numeric conversion of the legacy tool did.
double roundHalfEven(double value);

// The number as a 32-bit (16-bit) integer, rounded half to even. Throws
// OverflowError outside the range and for NaN.
std::int32_t toInt32Checked(double value);
std::int16_t toInt16Checked(double value);

// Low and high byte of the 16-bit two's-complement form of the value rounded
// half to even: -1 -> 255/255, -256 -> 0/255, -32768 -> 0/128. An argument
// in -0.5..0 gives 0 for both. OctetFort throws from 65536 on and below
// -65536 (its byte would be 256 or more, or negative); both throw when the
// rounded value does not fit in 32 bits.
int OctetFaible(double valeur);
int OctetFort(double valeur);

// The same for EEPROM addresses. Their extra guard (a result of 256 or more
// in the negative branch becomes 0) can never fire; it is kept so that the
// pair stays separate from the value pair should either change.
int OctetFaibleAdresse(double valeur);
int OctetFortAdresse(double valeur);

// [low, high] of a 16-bit value; a negative one is taken as value + 65536.
// A non-negative value's elements outside 0..255 become 0 (65536 and above
// give high 0 instead of an error); a value below -65536 keeps its
// out-of-range elements, which fail where they are turned into bytes.
// Throws when value (+ 65536) rounded does not fit in 32 bits.
std::array<long long, 2> DecoupeMot(double valeur);

// [byte 0 .. byte 3], lowest first, of a 32-bit value; a negative one is
// taken as value + 2^32. A non-negative value's elements outside 0..255
// become 0. The elements are computed as doubles and rounded half to even
// here, where the frame would have rounded them; one that does not fit a
// long long is clamped, which keeps it out of the byte range. Throws for
// NaN and infinities.
std::array<long long, 4> DecoupeLong(double valeur);

// The 32-bit value of exactly four bytes, lowest first; any other count
// gives 0. Throws when the sum, less 2^32 if above 2147483647, does not fit.
std::int32_t AssembleLong(std::span<const long long> octets);

// A 16-bit word read from memory: high * 256 + low, minus 65536 above
// 32767. Throws when the result does not fit in 32 bits.
std::int32_t assembleWord(long long low, long long high);

// The decimal separator of `locale` as one character.
QString SysSepDecM(const QLocale& locale = QLocale::system());

// The version number in the caption of the version label, "-" read as the
// decimal separator; 3.13 when the caption is not a number, which it never
// is in the form "(12) 2.70" the identity read gives it.
double Valeur_Version(const QString& caption, const QLocale& locale = QLocale::system());

// The two halves of a scale text "zero,full": ComposanteZero is the first
// half when there are exactly two and it is numeric, else 0; ComposanteCent
// the second half when there are two, else the whole text, 0 when not
// numeric. "12" is therefore a full scale of 12 with a zero of 0.
double ComposanteZero(const QString& texte, const QLocale& locale = QLocale::system());
double ComposanteCent(const QString& texte, const QLocale& locale = QLocale::system());

} // namespace qv
