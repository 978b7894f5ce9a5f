#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace qv {

// A usage error: the command line does not say what to do. Exit status 2.
struct UsageError {
    QString text;
};

// The words of a command line with options taken out as they are asked for.
class Arguments {
public:
    explicit Arguments(QStringList words) : words_(std::move(words)) {}

    // Removes `--name VALUE` or `--name=VALUE`; nullopt when absent. A
    // missing value is a UsageError.
    std::optional<QString> takeOption(const QString& name);
    // Removes `--name`; true when it was there.
    bool takeFlag(const QString& name);
    // The next positional word, or a UsageError naming what was expected.
    QString takePositional(const QString& what);
    std::optional<QString> takeOptionalPositional();
    // Fails on anything left over, so that a typo is not silently ignored.
    void expectEnd() const;

    const QStringList& remaining() const { return words_; }

private:
    QStringList words_;
};

// A decimal number within [min, max], or a UsageError naming `what`.
long long parseNumber(const QString& text, const QString& what, long long min, long long max);

} // namespace qv
