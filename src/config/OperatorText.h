#pragma once

#include <QString>
#include <QStringList>
#include <exception>
#include <functional>
#include <stdexcept>

// Failures that end in a box carry their text as config.xml keys it, so that
// the box speaks the language in use: the English wording, with %1, %2...
// standing for the details (a path, the system's reason), and the details.
// what() stays the English text, for logs and the command line. Places go
// from %1 to %9.

namespace qv {

using TextLookup = std::function<QString(const QString& key)>;

class TranslatableText {
public:
    TranslatableText(QString key, QStringList details)
        : key_(std::move(key)), details_(std::move(details)) {}
    virtual ~TranslatableText() = default;

    const QString& key() const { return key_; }
    const QStringList& details() const { return details_; }
    // The wording that `lookup` gives for the key, details filled in.
    QString in(const TextLookup& lookup) const;
    QString english() const;

private:
    QString key_;
    QStringList details_;
};

// A failure the operator is told of that is neither a configuration nor a
// report failure: a printer that does not start, a file that stays.
class OperatorError : public std::runtime_error {
public:
    explicit OperatorError(const QString& message) : std::runtime_error(message.toStdString()) {}
    QString text() const { return QString::fromStdString(what()); }
};

// An error of type `Error` (constructible from its English text) that can
// also be told in the language in use.
template <typename Error> class Translated : public Error, public TranslatableText {
public:
    explicit Translated(const QString& key, const QStringList& details = {})
        : Error(TranslatableText(key, details).english()), TranslatableText(key, details) {}
};

class ConfigDocument;

// What a box says of `e`: its translation when it carries one, the text of
// "Overflow" for a number that did not fit, otherwise its text as it stands.
QString operatorText(const std::exception& e, const TextLookup& lookup);
// The same with the texts of config.xml in `langue`. A document that cannot
// be read (often the very failure being told) leaves the English wording.
QString operatorText(const std::exception& e, ConfigDocument& config, const QString& langue);

} // namespace qv
