#include "ProgrammeTestSupport.h"
#include "config/ConfigDocument.h"
#include "programme/DefaultStates.h"

#include <gtest/gtest.h>

#include <QDomDocument>

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
    // The first row of that number, its blanks notwithstanding; the language
    // in any case but not trimmed; no such output or language is 0.
    const std::tuple<const char*, std::int16_t, std::int16_t> cases[] = {
        {"English", 0, 0}, {"English", 1, 1}, {"english", 1, 1}, {"Francais", 0, 1},
        {"English", 2, 0}, {"Deutsch", 0, 0}, {"English ", 0, 0}};
    const QDomDocument document = lists();
    for (const auto& [langue, index, expected] : cases)
        EXPECT_EQ(Donne_EtatDefautSortie(document, langue, index), expected)
            << langue << ' ' << index;
    for (const char* xml :
         {"<Configuration/>", "<Configuration><Listes/></Configuration>",
          R"(<Configuration><Listes><Langue Nom="English"/></Listes></Configuration>)"})
        EXPECT_EQ(Donne_EtatDefautSortie(parse(xml), "English", 0), 0) << xml;
    EXPECT_EQ(Donne_EtatDefautSortie(QDomDocument(), "English", 0), 0);
}

TEST(ProgrammeDefaultStates, SavingWritesTheFirstMatchingRowOfThatLanguageOnly) {
    QDomDocument document = lists();
    EXPECT_TRUE(Sauve_EtatDefautSortie(document, "english", 1, 0));
    EXPECT_TRUE(Sauve_EtatDefautSortie(document, "English", 0, -1));
    EXPECT_EQ(Donne_EtatDefautSortie(document, "English", 0), -1);
    EXPECT_EQ(Donne_EtatDefautSortie(document, "Francais", 0), 1);
    QStringList states;
    const QDomElement outputs = document.documentElement()
                                    .firstChildElement("Listes")
                                    .lastChildElement()
                                    .lastChildElement();
    for (QDomElement row = outputs.firstChildElement(); !row.isNull();
         row = row.nextSiblingElement())
        states << row.lastChildElement().text();
    EXPECT_EQ(states, QStringList({"-1", "0", "5"}));

    // Without a row nothing changes.
    for (const char* langue : {"English", "Deutsch"}) {
        const QString before = document.toString();
        EXPECT_FALSE(Sauve_EtatDefautSortie(document, langue, 7, 1));
        EXPECT_EQ(document.toString(), before);
    }
}

TEST(ProgrammeDefaultStates, DamagedRowsAreReported) {
    const QString shortRow = QStringLiteral(
        "<Configuration><Listes><Langue Nom=\"English\"><ListeSorties>"
        "%1<Ligne><Texte>Valve</Texte><Index>0</Index><Valeur>3</Valeur><Etat>%2</Etat></Ligne>"
        "</ListeSorties></Langue></Listes></Configuration>");
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"", "1", false},
        {"<Ligne><Texte>x</Texte><Index>5</Index><Valeur>3</Valeur></Ligne>", "1", true},
        {"<Ligne/>", "1", true},
        {"", "abc", true},
        {"", "40000", true},
        {"", "1.0", false}};
    for (const auto& [before, state, throws] : cases) {
        SCOPED_TRACE(std::string(before) + " / " + state);
        QDomDocument document = parse(shortRow.arg(before, state));
        if (throws)
            EXPECT_THROW(Donne_EtatDefautSortie(document, "English", 0), ConfigError);
        else
            EXPECT_EQ(Donne_EtatDefautSortie(document, "English", 0), 1);
    }
    // Only a row that the walk reaches has to be whole.
    QDomDocument later = parse(shortRow.arg(QString(), QStringLiteral("1")));
    QDomElement list =
        later.documentElement().firstChildElement().firstChildElement().firstChildElement();
    list.appendChild(later.createElement("Ligne"));
    EXPECT_EQ(Donne_EtatDefautSortie(later, "English", 0), 1);
    EXPECT_THROW(Donne_EtatDefautSortie(later, "English", 1), ConfigError);
    EXPECT_THROW(Sauve_EtatDefautSortie(later, "English", 1, 1), ConfigError);
}

} // namespace
} // namespace qv
