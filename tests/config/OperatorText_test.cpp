#include "config/ConfigDocument.h"
#include "config/OperatorText.h"
#include "link/Bytes.h"

#include <QFile>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

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
        {"a detail that looks like a place stays as it is",
         [] {
             throw Translated<ConfigError>(
                 kUnwritable, {QStringLiteral("/tmp/%2%1.prg"), QStringLiteral("full")});
         },
         french, QStringLiteral("Le fichier /tmp/%2%1.prg ne peut pas être écrit : full")},
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

TEST(OperatorText, FromTheShippedDocumentInTheLanguageAskedFor) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("config.xml"));
    ASSERT_TRUE(QFile::copy(QStringLiteral(QUORVEL_SHIPPED_CONFIG), path));
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
    ConfigDocument config(path);
    const Translated<ConfigError> error(kUnwritable, {QStringLiteral("p"), QStringLiteral("r")});
    EXPECT_EQ(operatorText(error, config, QStringLiteral("Français")),
              QStringLiteral("Le fichier p ne peut pas être écrit : r"));
    EXPECT_EQ(operatorText(error, config, QStringLiteral("English")),
              QStringLiteral("The file p cannot be written: r"));
    // A document that cannot be read leaves the English wording.
    ConfigDocument missing(dir.filePath(QStringLiteral("gone/config.xml")));
    EXPECT_EQ(operatorText(error, missing, QStringLiteral("Français")),
              QStringLiteral("The file p cannot be written: r"));
}

} // namespace
} // namespace qv
