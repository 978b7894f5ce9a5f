#include "config/VbFormat.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace qv {

namespace {

// The magnitude of a finite, non-zero number as its 15 significant digits
// and the count of digits before the separator: 31.9 is "319000000000000"
// and 2, 0.0042 is "420000000000000" and -2.
struct Digits {
    std::string digits;
    int pointPosition = 0;
};

Digits significantDigits(double magnitude) {
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, "%.14e", magnitude);
    Digits d;
    d.digits += buffer[0];
    const char* exponent = buffer + 1;
    if (*exponent == '.') {
        ++exponent;
        while (*exponent >= '0' && *exponent <= '9')
            d.digits += *exponent++;
    }
    d.pointPosition = std::atoi(exponent + 1) + 1; // skips the 'e'
    return d;
}

// Integer and fraction digits of |value| rounded half away from zero to
// `decimals` places; the integer part has no leading zeros (empty for 0)
// and the fraction exactly `decimals` digits.
std::pair<std::string, std::string> roundedParts(double magnitude, int decimals) {
    if (magnitude == 0)
        return {std::string(), std::string(static_cast<size_t>(decimals), '0')};
    Digits d = significantDigits(magnitude);
    const int keep = d.pointPosition + decimals;
    if (keep < 0)
        return {std::string(), std::string(static_cast<size_t>(decimals), '0')};
    if (keep < static_cast<int>(d.digits.size())) {
        const bool up = d.digits[static_cast<size_t>(keep)] >= '5';
        d.digits.resize(static_cast<size_t>(keep));
        if (up) {
            int i = keep - 1;
            while (i >= 0 && d.digits[static_cast<size_t>(i)] == '9')
                d.digits[static_cast<size_t>(i--)] = '0';
            if (i >= 0) {
                ++d.digits[static_cast<size_t>(i)];
            } else {
                d.digits.insert(d.digits.begin(), '1');
                ++d.pointPosition;
            }
        }
    }
    std::string integer;
    std::string fraction;
    if (d.pointPosition <= 0) {
        fraction = std::string(static_cast<size_t>(-d.pointPosition), '0') + d.digits;
    } else if (d.pointPosition >= static_cast<int>(d.digits.size())) {
        integer =
            d.digits + std::string(static_cast<size_t>(d.pointPosition) - d.digits.size(), '0');
    } else {
        integer = d.digits.substr(0, static_cast<size_t>(d.pointPosition));
        fraction = d.digits.substr(static_cast<size_t>(d.pointPosition));
    }
    fraction.resize(static_cast<size_t>(decimals), '0');
    const size_t first = integer.find_first_not_of('0');
    integer = first == std::string::npos ? std::string() : integer.substr(first);
    return {integer, fraction};
}

} // namespace

QString formatVb(double value, const QString& picture, const QLocale& locale) {
    if (!std::isfinite(value))
        return QString();
    int integerZeros = 0;
    int decimalZeros = 0;
    int decimalPlaces = 0;
    bool separator = false;
    for (const QChar c : picture) {
        if (c == QLatin1Char('.')) {
            if (separator)
                continue;
            separator = true;
        } else if (c == QLatin1Char('0') || c == QLatin1Char('#')) {
            if (separator) {
                ++decimalPlaces;
                // A '0' after a '#' in the fraction still forces every
                // place before it.
                if (c == QLatin1Char('0'))
                    decimalZeros = decimalPlaces;
            } else if (c == QLatin1Char('0')) {
                ++integerZeros;
            }
        }
    }

    auto [integer, fraction] = roundedParts(std::fabs(value), decimalPlaces);
    if (static_cast<int>(integer.size()) < integerZeros)
        integer.insert(0, static_cast<size_t>(integerZeros) - integer.size(), '0');
    while (static_cast<int>(fraction.size()) > decimalZeros && fraction.back() == '0')
        fraction.pop_back();

    QString text;
    if (value < 0)
        text += QLatin1Char('-');
    text += QString::fromStdString(integer);
    if (separator)
        text += locale.decimalPoint() + QString::fromStdString(fraction);
    return text;
}

QString vbNumberText(double value, const QLocale& locale) {
    if (!std::isfinite(value))
        return QString();
    if (value == 0)
        return QStringLiteral("0");
    Digits d = significantDigits(std::fabs(value));
    while (d.digits.size() > 1 && d.digits.back() == '0')
        d.digits.pop_back();
    const QString point = locale.decimalPoint();
    QString text = value < 0 ? QStringLiteral("-") : QString();
    const int exponent = d.pointPosition - 1;
    if (exponent >= 15 || exponent < -4) {
        text += QLatin1Char(d.digits[0]);
        if (d.digits.size() > 1)
            text += point + QString::fromStdString(d.digits.substr(1));
        text += QStringLiteral("E%1%2")
                    .arg(exponent < 0 ? QLatin1Char('-') : QLatin1Char('+'))
                    .arg(std::abs(exponent), 2, 10, QLatin1Char('0'));
        return text;
    }
    if (d.pointPosition <= 0) {
        text += QLatin1Char('0') + point + QString(-d.pointPosition, QLatin1Char('0')) +
                QString::fromStdString(d.digits);
    } else if (d.pointPosition >= static_cast<int>(d.digits.size())) {
        text += QString::fromStdString(d.digits) +
                QString(d.pointPosition - static_cast<int>(d.digits.size()), QLatin1Char('0'));
    } else {
        text += QString::fromStdString(d.digits.substr(0, static_cast<size_t>(d.pointPosition))) +
                point +
                QString::fromStdString(d.digits.substr(static_cast<size_t>(d.pointPosition)));
    }
    return text;
}

} // namespace qv
