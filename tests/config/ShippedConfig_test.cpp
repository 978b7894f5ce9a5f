// Checks on the config.xml that ships with the tool. The program looks its
// keys up in upper case without their blanks, so a key that differs between
// the languages, or comes twice, only shows up at run time, on a
// technician's PC.
#include <QDomDocument>
#include <QFile>
#include <QSet>
#include <QStringList>
#include <gtest/gtest.h>

#include <map>

namespace {

// The keys of each language's messages, as LitMessage compares them, with
// the keys found twice.
struct LanguageKeys {
    QSet<QString> keys;
    QStringList twice;
};

std::map<QString, LanguageKeys> shippedKeys() {
    QFile file(QStringLiteral(QUORVEL_SHIPPED_CONFIG));
    QDomDocument document;
    if (!file.open(QIODevice::ReadOnly) || !document.setContent(file.readAll()))
        return {};
    std::map<QString, LanguageKeys> out;
    const QDomElement messages = document.documentElement().firstChildElement("Messages");
    for (QDomElement l = messages.firstChildElement(); !l.isNull(); l = l.nextSiblingElement()) {
        LanguageKeys& language = out[l.attribute("Nom")];
        for (QDomElement m = l.firstChildElement(); !m.isNull(); m = m.nextSiblingElement()) {
            const QString key = m.firstChildElement().text().trimmed().toUpper();
            if (language.keys.contains(key))
                language.twice << key;
            language.keys.insert(key);
        }
    }
    return out;
}

TEST(ShippedConfig, BothLanguagesHoldTheSameKeysEachOnce) {
    auto languages = shippedKeys();
    const LanguageKeys& english = languages[QStringLiteral("English")];
    const LanguageKeys& french = languages[QString::fromUtf8("Français")];
    EXPECT_GT(english.keys.size(), 100);
    const auto joined = [](const auto& keys) { return QStringList(keys).join(", ").toStdString(); };
    EXPECT_EQ(joined(english.twice), "");
    EXPECT_EQ(joined(french.twice), "");
    EXPECT_EQ(joined(QSet<QString>(english.keys).subtract(french.keys).values()), "")
        << "only in English";
    EXPECT_EQ(joined(QSet<QString>(french.keys).subtract(english.keys).values()), "")
        << "only in French";
}

} // namespace
