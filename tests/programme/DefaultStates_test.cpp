#include "ProgrammeTestSupport.h"
#include "config/ConfigDocument.h"
#include "programme/DefaultStates.h"

#include <gtest/gtest.h>

#include <QDomDocument>
#include <vector>

namespace qv {
namespace {

// Two languages, each with its own copy of the outputs list; the state is
// the fourth child of a row.
const char* const kLists = R"(<Configuration>
  <Messages><Langue Nom="English"><Message><Cle>Close</Cle><Texte>Close</Texte></Message></Langue></Messages>
  <Listes>
    <Langue Nom="Francais">
      <ListeSorties>
        <Ligne><Texte>Vanne</Texte><Index>0</Index><Valeur>3</Valeur><Etat>1</Etat></Ligne>
      </ListeSorties>
    </Langue>
    <Langue NOM="English">
      <ListeJours>
        <Ligne><Texte>Monday</Texte><Index>0</Index><Valeur>4</Valeur><Etat>7</Etat></Ligne>
      </ListeJours>
      <listesorties>
        <Ligne><Texte>Valve</Texte><Index>0</Index><Valeur>3</Valeur><Etat>0</Etat></Ligne>
        <Ligne><Texte>Pump</Texte><Index> 1 </Index><Valeur>4</Valeur><Etat>1</Etat></Ligne>
        <Ligne><Texte>Again</Texte><Index>1</Index><Valeur>4</Valeur><Etat>5</Etat></Ligne>
      </listesorties>
    </Langue>
  </Listes>
</Configuration>)";

QDomDocument parse(const QString& xml) {
    QDomDocument document;
    QString error;
    EXPECT_TRUE(document.setContent(xml, &error)) << error.toStdString();
    return document;
}

QDomDocument lists() {
    return parse(QString::fromUtf8(kLists));
}

TEST(ProgrammeDefaultStates, StateIsFoundByLanguageAndOutputNumber) {
    struct Case {
        const char* langue;
        std::int16_t index;
        std::int16_t expected;
    };
    const std::vector<Case> cases = {
        {"English", 0, 0},
        {"English", 1, 1}, // first row of that number, its blanks
                           // notwithstanding
        {"ENGLISH", 1, 1},
        {"english", 1, 1},
        {"Francais", 0, 1},
        {"English", 2, 0},  // no such output
        {"Deutsch", 0, 0},  // no such language
        {"English ", 0, 0}, // the language is not trimmed
    };
    const QDomDocument document = lists();
    for (const Case& test : cases) {
        EXPECT_EQ(Donne_EtatDefautSortie(document, QString::fromLatin1(test.langue), test.index),
                  test.expected)
            << test.langue << ' ' << test.index;
    }
}

TEST(ProgrammeDefaultStates, NoListMeansStateZero) {
    for (const char* xml : {"<Configuration/>", "<Configuration><Listes/></Configuration>",
                            "<Configuration><Listes><Langue Nom=\"English\"/></Listes>"
                            "</Configuration>"}) {
        EXPECT_EQ(
            Donne_EtatDefautSortie(parse(QString::fromLatin1(xml)), QStringLiteral("English"), 0),
            0)
            << xml;
    }
    EXPECT_EQ(Donne_EtatDefautSortie(QDomDocument(), QStringLiteral("English"), 0), 0);
}

TEST(ProgrammeDefaultStates, SavingWritesTheFirstMatchingRowOfThatLanguageOnly) {
    QDomDocument document = lists();
    EXPECT_TRUE(Sauve_EtatDefautSortie(document, QStringLiteral("english"), 1, 0));
    EXPECT_EQ(Donne_EtatDefautSortie(document, QStringLiteral("English"), 1), 0);
    EXPECT_TRUE(Sauve_EtatDefautSortie(document, QStringLiteral("English"), 0, -1));
    EXPECT_EQ(Donne_EtatDefautSortie(document, QStringLiteral("English"), 0), -1);
    EXPECT_EQ(Donne_EtatDefautSortie(document, QStringLiteral("Francais"), 0), 1);

    const QDomElement outputs = document.documentElement()
                                    .firstChildElement(QStringLiteral("Listes"))
                                    .lastChildElement()
                                    .lastChildElement();
    QStringList states;
    for (QDomElement row = outputs.firstChildElement(); !row.isNull();
         row = row.nextSiblingElement()) {
        states << row.lastChildElement().text();
    }
    EXPECT_EQ(states, QStringList({"-1", "0", "5"}));
}

TEST(ProgrammeDefaultStates, SavingWithoutARowChangesNothing) {
    for (const char* langue : {"English", "Deutsch"}) {
        QDomDocument document = lists();
        const QString before = document.toString();
        EXPECT_FALSE(Sauve_EtatDefautSortie(document, QString::fromLatin1(langue), 7, 1));
        EXPECT_EQ(document.toString(), before);
    }
}

TEST(ProgrammeDefaultStates, DamagedRowsAreReported) {
    const QString shortRow = QStringLiteral(
        "<Configuration><Listes><Langue Nom=\"English\"><ListeSorties>"
        "%1<Ligne><Texte>Valve</Texte><Index>0</Index><Valeur>3</Valeur><Etat>%2</Etat></Ligne>"
        "</ListeSorties></Langue></Listes></Configuration>");
    struct Case {
        const char* before;
        const char* state;
        bool throws;
    };
    const std::vector<Case> cases = {
        {"", "1", false},
        {"<Ligne><Texte>x</Texte><Index>5</Index><Valeur>3</Valeur></Ligne>", "1", true},
        {"<Ligne/>", "1", true},
        {"", "abc", true},
        {"", "", true},
        {"", "40000", true},
        {"", "1.0", false},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(std::string(test.before) + " / " + test.state);
        QDomDocument document =
            parse(shortRow.arg(QString::fromLatin1(test.before), QString::fromLatin1(test.state)));
        if (test.throws) {
            EXPECT_THROW(Donne_EtatDefautSortie(document, QStringLiteral("English"), 0),
                         ConfigError);
        } else {
            EXPECT_EQ(Donne_EtatDefautSortie(document, QStringLiteral("English"), 0), 1);
        }
    }
    // Only a row that the walk reaches has to be whole.
    QDomDocument later = parse(shortRow.arg(QString(), QStringLiteral("1")));
    QDomElement list =
        later.documentElement().firstChildElement().firstChildElement().firstChildElement();
    list.appendChild(later.createElement(QStringLiteral("Ligne")));
    EXPECT_EQ(Donne_EtatDefautSortie(later, QStringLiteral("English"), 0), 1);
    EXPECT_THROW(Donne_EtatDefautSortie(later, QStringLiteral("English"), 1), ConfigError);
    EXPECT_THROW(Sauve_EtatDefautSortie(later, QStringLiteral("English"), 1, 1), ConfigError);
}

} // namespace
} // namespace qv
