#include "config/Windows1252.h"

#include <QList>

namespace qv {

namespace {

// 0x80 to 0x9F; 0 where the code page has no character.
constexpr char16_t kHighHalf[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char16_t decoded(unsigned char byte) {
    if (byte >= 0x80 && byte < 0xA0 && kHighHalf[byte - 0x80] != 0)
        return kHighHalf[byte - 0x80];
    return byte;
}

char encoded(char32_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return static_cast<char>(c);
    for (int i = 0; i < 32; ++i) {
        const char32_t stands = kHighHalf[i] != 0 ? kHighHalf[i] : char32_t(0x80 + i);
        if (c == stands)
            return static_cast<char>(0x80 + i);
    }
    return '?';
}

bool xmlCharacter(char16_t c) {
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xFFFD);
}

} // namespace

QString decodeWindows1252(const QByteArray& bytes) {
    QString text;
    text.reserve(bytes.size());
    for (const char byte : bytes)
        text.append(QChar(decoded(static_cast<unsigned char>(byte))));
    return text;
}

QByteArray encodeWindows1252(const QString& text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const char32_t c : text.toUcs4())
        bytes.append(encoded(c));
    return bytes;
}

QString xmlStorable(const QString& text) {
    QString safe;
    safe.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            safe.append(c);
            safe.append(text[++i]);
        } else if (c.isSurrogate() || !xmlCharacter(c.unicode())) {
            safe.append(QLatin1Char('?'));
        } else {
            safe.append(c);
        }
    }
    return safe;
}

} // namespace qv
