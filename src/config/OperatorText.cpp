#include "OperatorText.h"

#include "ConfigDocument.h"
#include "link/Bytes.h"

namespace qv {

namespace {

// One pass over the wording, so that a detail holding "%2" (a path may) is
// never taken for a place of its own.
QString filled(const QString& wording, const QStringList& details) {
    QString result;
    for (qsizetype i = 0; i < wording.size(); ++i) {
        const QChar c = wording[i];
        if (c == QLatin1Char('%') && i + 1 < wording.size() && wording[i + 1].isDigit()) {
            const int place = wording[i + 1].digitValue();
            if (place >= 1 && place <= details.size()) {
                result += details[place - 1];
                ++i;
                continue;
            }
        }
        result += c;
    }
    return result;
}

} // namespace

QString TranslatableText::in(const TextLookup& lookup) const {
    QString wording = lookup ? lookup(key_) : key_;
    // A document whose text has lost a place for a detail still tells it.
    if (wording.isEmpty())
        wording = key_;
    return filled(wording, details_);
}

QString TranslatableText::english() const {
    return filled(key_, details_);
}

QString operatorText(const std::exception& e, const TextLookup& lookup) {
    if (const auto* text = dynamic_cast<const TranslatableText*>(&e))
        return text->in(lookup);
    // The old program's own run-time error, where a number did not fit its
    // type; what did not fit is for the developer, not the operator.
    if (dynamic_cast<const OverflowError*>(&e)) {
        const QString key = QStringLiteral("Overflow");
        const QString text = lookup ? lookup(key) : QString();
        return text.isEmpty() ? key : text;
    }
    return QString::fromStdString(e.what());
}

QString operatorText(const std::exception& e, ConfigDocument& config, const QString& langue) {
    return operatorText(e, [&](const QString& key) {
        try {
            return config.LitMessage(langue, key, key);
        } catch (const std::exception&) {
            return key;
        }
    });
}

} // namespace qv
