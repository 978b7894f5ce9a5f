#include "config/ConfigDocument.h"
#include "config/OperatorText.h"
#include "link/Bytes.h"

#include <functional>
#include <gtest/gtest.h>

namespace qv {
namespace {

const QString kUnwritable = QStringLiteral("The file %1 cannot be written: %2");

QString french(const QString& key) {
    if (key == kUnwritable)
        return QStringLiteral("Le fichier %1 ne peut pas être écrit : %2");
    if (key == QLatin1String("Overflow"))
        return QStringLiteral("Dépassement de capacité");
    return QString();
}

TEST(OperatorText, TranslatedWhereTheFailureCarriesItsKey) {
    struct Case {
        const char* what;
        std::function<void()> fail;
        TextLookup lookup;
        QString text;
    };
    const Case cases[] = {
        {"a configuration failure in French",
         [] {
             throw Translated<ConfigError>(
                 kUnwritable, {QStringLiteral("/a/b.prg"), QStringLiteral("Permission denied")});
         },
         french, QStringLiteral("Le fichier /a/b.prg ne peut pas être écrit : Permission denied")},
        {"no lookup: the English wording",
         [] {
             throw Translated<OperatorError>(kUnwritable,
                                             {QStringLiteral("x"), QStringLiteral("y")});
         },
         {},
         QStringLiteral("The file x cannot be written: y")},
        {"a document without the key: the English wording",
         [] {
             throw Translated<OperatorError>(QStringLiteral("The printer could not be started."));
         },
         french, QStringLiteral("The printer could not be started.")},
        {"a number that did not fit", [] { throw OverflowError("value 256 does not fit"); }, french,
         QStringLiteral("Dépassement de capacité")},
        {"anything else as it stands", [] { throw std::runtime_error("plain"); }, french,
         QStringLiteral("plain")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        try {
            c.fail();
            ADD_FAILURE() << "nothing thrown";
        } catch (const std::exception& e) {
            EXPECT_EQ(operatorText(e, c.lookup), c.text);
        }
    }
    // The English text stays what() for logs and the command line, and the
    // error is still caught as what it is.
    try {
        throw Translated<ConfigError>(kUnwritable, {QStringLiteral("p"), QStringLiteral("r")});
    } catch (const ConfigError& e) {
        EXPECT_EQ(e.text(), QStringLiteral("The file p cannot be written: r"));
    }
}

} // namespace
} // namespace qv
