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

} // namespace
} // namespace qv
