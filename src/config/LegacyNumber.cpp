#include "config/LegacyNumber.h"

#include "link/Bytes.h"

#include <QChar>
#include <cmath>
#include <string>

namespace qv {

namespace {

bool isDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

// The C library's conversions follow the process locale, which an
// application sets from the environment; QByteArray's never do.
// nullopt for a number beyond the double range; one too small for it is 0.
std::optional<double> toDoubleC(const std::string& number) {
    bool ok = false;
    const double value = QByteArray::fromStdString(number).toDouble(&ok);
    if (ok && std::isfinite(value))
        return value;
    if (number.find("e-") != std::string::npos)
        return 0.0;
    return std::nullopt;
}

// Reads `[sign] digits [. digits] [E [sign] digits]` from `s` at `pos` into a
// C-locale string. With `whole`, the text must end there. Returns false when
// there is no digit in the mantissa.
bool scanNumber(const QString& s, qsizetype& pos, QChar separator, std::string& out, bool whole) {
    const qsizetype n = s.size();
    out.clear();
    if (pos < n && (s[pos] == QLatin1Char('+') || s[pos] == QLatin1Char('-'))) {
        if (s[pos] == QLatin1Char('-'))
            out += '-';
        ++pos;
    }
    out += '0'; // so that ".5" and "5." both read as plain decimals
    bool digits = false;
    while (pos < n && isDigit(s[pos])) {
        out += char(s[pos].unicode());
        ++pos;
        digits = true;
    }
    if (pos < n && (s[pos] == QLatin1Char('.') || s[pos] == separator)) {
        out += '.';
        ++pos;
        bool fraction = false;
        while (pos < n && isDigit(s[pos])) {
            out += char(s[pos].unicode());
            ++pos;
            fraction = true;
        }
        if (!fraction)
            out += '0';
        digits = digits || fraction;
    }
    if (!digits)
        return false;
    if (pos < n && (s[pos] == QLatin1Char('e') || s[pos] == QLatin1Char('E'))) {
        qsizetype p = pos + 1;
        std::string exponent = "e";
        if (p < n && (s[p] == QLatin1Char('+') || s[p] == QLatin1Char('-'))) {
            exponent += char(s[p].unicode());
            ++p;
        }
        bool expDigits = false;
        while (p < n && isDigit(s[p])) {
            exponent += char(s[p].unicode());
            ++p;
            expDigits = true;
        }
        // "1E" alone: the reading of the whole text fails, the reading of
        // the front stops before the "E".
        if (expDigits) {
            out += exponent;
            pos = p;
        } else if (whole) {
            return false;
        }
    }
    return !whole || pos == n;
}

QChar decimalSeparatorOf(const QLocale& locale) {
    const QString point = locale.decimalPoint();
    return point.size() == 1 ? point[0] : QLatin1Char('.');
}

} // namespace

QString legacyNumberText(double value) {
    if (!std::isfinite(value))
        throw OverflowError("a number that is not finite has no text form");
    if (value == 0)
        return QStringLiteral(" 0");

    // Fifteen significant digits, as the runtime shows a double: "d.ddd…e±xx".
    // QString::number ignores the C library's numeric locale.
    const QString scientific = QString::number(std::fabs(value), 'e', 14);
    const qsizetype e = scientific.indexOf(QLatin1Char('e'));
    QString digits = scientific.left(1) + scientific.mid(2, e - 2);
    const int exponent = scientific.mid(e + 1).toInt();
    while (digits.size() > 1 && digits.endsWith(QLatin1Char('0')))
        digits.chop(1);

    QString text = value < 0 ? QStringLiteral("-") : QStringLiteral(" ");
    if (exponent < -4 || exponent >= 15) {
        text += digits.left(1);
        if (digits.size() > 1)
            text += QLatin1Char('.') + digits.mid(1);
        text += QStringLiteral("E%1%2")
                    .arg(QLatin1Char(exponent < 0 ? '-' : '+'))
                    .arg(std::abs(exponent), 2, 10, QLatin1Char('0'));
    } else if (exponent >= 0) {
        const qsizetype integerDigits = exponent + 1;
        if (digits.size() <= integerDigits) {
            text += digits + QString(integerDigits - digits.size(), QLatin1Char('0'));
        } else {
            text += digits.left(integerDigits) + QLatin1Char('.') + digits.mid(integerDigits);
        }
    } else {
        text += QLatin1Char('.') + QString(-exponent - 1, QLatin1Char('0')) + digits;
    }
    return text;
}

std::optional<double> parseLegacyNumber(const QString& text) {
    return parseLegacyNumber(text, QLocale());
}

std::optional<double> parseLegacyNumber(const QString& text, const QLocale& locale) {
    const QString trimmed = text.trimmed();
    qsizetype pos = 0;
    std::string number;
    if (!scanNumber(trimmed, pos, decimalSeparatorOf(locale), number, true))
        return std::nullopt;
    return toDoubleC(number);
}

double legacyLeadingNumber(const QString& text) {
    QString compact;
    compact.reserve(text.size());
    for (QChar c : text) {
        if (c != QLatin1Char(' ') && c != QLatin1Char('\t') && c != QLatin1Char('\n') &&
            c != QLatin1Char('\r'))
            compact += c;
    }
    qsizetype pos = 0;
    std::string number;
    if (!scanNumber(compact, pos, QLatin1Char('.'), number, false))
        return 0;
    const auto value = toDoubleC(number);
    if (!value)
        throw OverflowError("the number \"" + text.toStdString() + "\" is out of range");
    return *value;
}

std::optional<bool> parseLegacyBoolean(const QString& text) {
    return parseLegacyBoolean(text, QLocale());
}

std::optional<bool> parseLegacyBoolean(const QString& text, const QLocale& locale) {
    const QString trimmed = text.trimmed();
    if (trimmed.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
        return true;
    if (trimmed.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
        return false;
    if (const auto number = parseLegacyNumber(trimmed, locale))
        return *number != 0;
    return std::nullopt;
}

} // namespace qv
