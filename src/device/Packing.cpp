#include "Packing.h"

#include "config/LocaleNumber.h"

#include <QStringList>
#include <cmath>
#include <limits>
#include <string>

namespace qv {

namespace {

std::string describe(double value) {
    return std::to_string(value);
}

int checkedByte(long long value, double argument) {
    if (value < 0 || value > 255)
        throw OverflowError("byte " + std::to_string(value) + " of " + describe(argument) +
                            " out of range");
    return static_cast<int>(value);
}

int lowByte(double valeur, bool adresse) {
    const long long x = toInt32Checked(valeur);
    if (!(valeur < 0))
        return checkedByte(x % 256, valeur);
    if (x == 0)
        return 0;
    // % keeps the sign of x, like the old runtime's Mod.
    const long long r = x % 256;
    long long result = r != 0 ? r + 256 : 0;
    if (adresse && result >= 256)
        result = 0;
    return checkedByte(result, valeur);
}

int highByte(double valeur, bool adresse) {
    const long long x = toInt32Checked(valeur);
    if (!(valeur < 0))
        return checkedByte(x / 256, valeur);
    // Without this, -0.4 would round to 0 and give 0 + 256.
    if (x == 0)
        return 0;
    long long result = static_cast<long long>(std::floor(static_cast<double>(x) / 256.0)) + 256;
    if (adresse && result >= 256)
        result = 0;
    return checkedByte(result, valeur);
}

// Elements of DecoupeLong stay numbers until a frame needs them; one too
// large for a long long only has to stay out of the byte range.
long long clampedInteger(double value) {
    constexpr double limit = 4611686018427387904.0; // 2^62
    const double rounded = roundHalfEven(value);
    if (rounded >= limit)
        return static_cast<long long>(limit);
    if (rounded <= -limit)
        return -static_cast<long long>(limit);
    return static_cast<long long>(rounded);
}

} // namespace

double roundHalfEven(double value) {
    if (!std::isfinite(value))
        return value;
    const double nearest = std::round(value); // ties away from zero
    if (std::fabs(nearest - value) == 0.5)
        return 2.0 * std::round(value / 2.0);
    return nearest;
}

std::int32_t toInt32Checked(double value) {
    const double rounded = roundHalfEven(value);
    if (!(rounded >= -2147483648.0 && rounded <= 2147483647.0))
        throw OverflowError(describe(value) + " does not fit in 32 bits");
    return static_cast<std::int32_t>(rounded);
}

std::int16_t toInt16Checked(double value) {
    const double rounded = roundHalfEven(value);
    if (!(rounded >= -32768.0 && rounded <= 32767.0))
        throw OverflowError(describe(value) + " does not fit in 16 bits");
    return static_cast<std::int16_t>(rounded);
}

int OctetFaible(double valeur) {
    return lowByte(valeur, false);
}
int OctetFort(double valeur) {
    return highByte(valeur, false);
}
int OctetFaibleAdresse(double valeur) {
    return lowByte(valeur, true);
}
int OctetFortAdresse(double valeur) {
    return highByte(valeur, true);
}

std::array<long long, 2> DecoupeMot(double valeur) {
    const bool negatif = valeur < 0;
    const double r = negatif ? valeur + 65536.0 : valeur;
    // The low byte goes through a 32-bit conversion: this is what throws
    // for values far out of the 16-bit range. The high byte does not round.
    const long long bas = toInt32Checked(r) % 256;
    const long long haut = static_cast<long long>(std::trunc(r / 256.0));
    std::array<long long, 2> octets{bas, haut};
    if (!negatif) {
        for (long long& octet : octets) {
            if (octet < 0 || octet > 255)
                octet = 0;
        }
    }
    return octets;
}

std::array<long long, 4> DecoupeLong(double valeur) {
    if (!std::isfinite(valeur))
        throw OverflowError(describe(valeur) + " cannot be split into bytes");
    const bool negatif = valeur < 0;
    double r = negatif ? valeur + 4294967296.0 : valeur;
    std::array<double, 4> elements{};
    elements[3] = std::trunc(r / 16777216.0);
    r -= elements[3] * 16777216.0;
    elements[2] = std::trunc(r / 65536.0);
    r -= elements[2] * 65536.0;
    elements[1] = std::trunc(r / 256.0);
    r -= elements[1] * 256.0;
    elements[0] = r;
    // Compared as doubles, before any rounding: 255.7 is above 255 and
    // becomes 0 here rather than rounding to 256 later.
    if (!negatif) {
        for (double& element : elements) {
            if (element < 0 || element > 255)
                element = 0;
        }
    }
    std::array<long long, 4> octets{};
    for (size_t i = 0; i < octets.size(); ++i)
        octets[i] = clampedInteger(elements[i]);
    return octets;
}

std::int32_t AssembleLong(std::span<const long long> octets) {
    if (octets.size() != 4)
        return 0;
    double somme = static_cast<double>(octets[3]) * 16777216.0 +
                   static_cast<double>(octets[2]) * 65536.0 +
                   static_cast<double>(octets[1]) * 256.0 + static_cast<double>(octets[0]);
    if (somme > 2147483647.0)
        somme -= 4294967296.0;
    return toInt32Checked(somme);
}

std::int32_t assembleWord(long long low, long long high) {
    long long mot = 0;
    if (__builtin_mul_overflow(high, 256LL, &mot) || __builtin_add_overflow(mot, low, &mot))
        throw OverflowError("word of bytes " + std::to_string(low) + ", " + std::to_string(high) +
                            " out of range");
    if (mot > 32767)
        mot -= 65536;
    if (mot < std::numeric_limits<std::int32_t>::min() ||
        mot > std::numeric_limits<std::int32_t>::max())
        throw OverflowError("word " + std::to_string(mot) + " does not fit in 32 bits");
    return static_cast<std::int32_t>(mot);
}

QString SysSepDecM(const QLocale& locale) {
    // Qt has no monetary decimal separator of its own; its currency texts use
    // the ordinary one, and so do the locales the tool runs under.
    return locale.decimalPoint().left(1);
}

double Valeur_Version(const QString& caption, const QLocale& locale) {
    QString texte = caption;
    texte.replace(QStringLiteral("-"), SysSepDecM(locale));
    return parseLocaleNumber(texte, locale).value_or(3.13);
}

double ComposanteZero(const QString& texte, const QLocale& locale) {
    const QStringList parties = texte.split(QLatin1Char(','));
    if (parties.size() == 2)
        return parseLocaleNumber(parties[0], locale).value_or(0.0);
    return 0.0;
}

double ComposanteCent(const QString& texte, const QLocale& locale) {
    const QStringList parties = texte.split(QLatin1Char(','));
    const QString& valeur = parties.size() == 2 ? parties[1] : texte;
    return parseLocaleNumber(valeur, locale).value_or(0.0);
}

} // namespace qv
