#include "Arguments.h"

namespace qv {

std::optional<QString> Arguments::takeOption(const QString& name) {
    // One-letter options take one dash (-o FILE), longer ones two.
    const QString flag = (name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name;
    for (int i = 0; i < words_.size(); ++i) {
        if (words_[i] == flag) {
            if (i + 1 >= words_.size())
                throw UsageError{QStringLiteral("option %1 needs a value").arg(flag)};
            const QString value = words_[i + 1];
            words_.remove(i, 2);
            return value;
        }
        if (words_[i].startsWith(flag + QLatin1Char('='))) {
            const QString value = words_[i].mid(flag.size() + 1);
            words_.removeAt(i);
            return value;
        }
    }
    return std::nullopt;
}

bool Arguments::takeFlag(const QString& name) {
    return words_.removeAll(QStringLiteral("--") + name) > 0;
}

std::optional<QString> Arguments::takeOptionalPositional() {
    for (int i = 0; i < words_.size(); ++i) {
        if (!words_[i].startsWith(QStringLiteral("--"))) {
            const QString word = words_[i];
            words_.removeAt(i);
            return word;
        }
    }
    return std::nullopt;
}

QString Arguments::takePositional(const QString& what) {
    auto word = takeOptionalPositional();
    if (!word)
        throw UsageError{QStringLiteral("missing %1").arg(what)};
    return *word;
}

void Arguments::expectEnd() const {
    if (!words_.isEmpty())
        throw UsageError{QStringLiteral("unexpected argument: %1").arg(words_.first())};
}

long long parseNumber(const QString& text, const QString& what, long long min, long long max) {
    bool ok = false;
    const long long value = text.trimmed().toLongLong(&ok, 0);
    if (!ok || value < min || value > max)
        throw UsageError{QStringLiteral("%1 must be a number from %2 to %3, not \"%4\"")
                             .arg(what)
                             .arg(min)
                             .arg(max)
                             .arg(text)};
    return value;
}

} // namespace qv
