// Checks on the config.xml that ships with the tool. The program looks its
// keys up in upper case without their blanks, so a key that differs between
// the languages, or comes twice, only shows up at run time, on a
// technician's PC.
#include <QDomDocument>
#include <QFile>
#include <QSet>
#include <QStringList>
#include <gtest/gtest.h>

#include <vector>

namespace {

QByteArray shippedBytes() {
    QFile file(QStringLiteral(QUORVEL_SHIPPED_CONFIG));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QDomElement root() {
    static const QDomDocument document = [] {
        QDomDocument d;
        d.setContent(shippedBytes());
        return d;
    }();
    return document.documentElement();
}

// How LitMessage compares keys.
QString normalKey(const QString& key) {
    return key.trimmed().toUpper();
}

std::vector<QDomElement> elementChildren(const QDomNode& parent) {
    std::vector<QDomElement> out;
    for (QDomElement e = parent.firstChildElement(); !e.isNull(); e = e.nextSiblingElement())
        out.push_back(e);
    return out;
}

QString languageName(const QDomElement& e) {
    const QDomNamedNodeMap attributes = e.attributes();
    for (int i = 0; i < attributes.count(); ++i)
        if (attributes.item(i).toAttr().name().toUpper() == QLatin1String("NOM"))
            return attributes.item(i).toAttr().value();
    return {};
}

QDomElement language(const QString& sectionName, const QString& name) {
    for (const QDomElement& e : elementChildren(root().firstChildElement(sectionName)))
        if (languageName(e).toUpper() == name.toUpper())
            return e;
    return {};
}

// Key and text of each message.
std::vector<std::pair<QString, QString>> messages(const QString& lang) {
    std::vector<std::pair<QString, QString>> out;
    for (const QDomElement& m : elementChildren(language(QStringLiteral("Messages"), lang))) {
        const auto parts = elementChildren(m);
        out.emplace_back(parts.size() > 0 ? parts[0].text() : QString(),
                         parts.size() > 1 ? parts[1].text() : QString());
    }
    return out;
}

const QStringList kLanguages = {QStringLiteral("English"), QString::fromUtf8("Français")};

TEST(ShippedConfig, BothLanguagesHoldTheSameKeysEachOnce) {
    QSet<QString> keys[2];
    for (int i = 0; i < 2; ++i) {
        for (const auto& [key, text] : messages(kLanguages[i])) {
            EXPECT_FALSE(keys[i].contains(normalKey(key)))
                << kLanguages[i].toStdString() << ": " << key.toStdString();
            keys[i].insert(normalKey(key));
        }
    }
    EXPECT_GT(messages(kLanguages[0]).size(), 100u);
    EXPECT_EQ(messages(kLanguages[0]).size(), messages(kLanguages[1]).size());
    EXPECT_EQ(QStringList(QSet<QString>(keys[0]).subtract(keys[1]).values()), QStringList())
        << "only in English";
    EXPECT_EQ(QStringList(QSet<QString>(keys[1]).subtract(keys[0]).values()), QStringList())
        << "only in French";
}

} // namespace
