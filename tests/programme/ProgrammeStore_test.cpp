#include "ProgrammeTestSupport.h"
#include "TestFiles.h"
#include "config/ConfigDocument.h"
#include "programme/ProgrammeStore.h"

#include <gtest/gtest.h>

#include <QDomDocument>
#include <cmath>
#include <limits>
#include <vector>

namespace qv {
namespace {

QDomDocument parse(const QString& xml) {
    QDomDocument document;
    QString error;
    EXPECT_TRUE(document.setContent(xml, &error)) << error.toStdString();
    return document;
}

QDomDocument withRows(const QString& rows) {
    return parse("<Configuration><Conf/><CONDITIONS>" + rows +
                 "</CONDITIONS><NomProgramme>a.prg</NomProgramme></Configuration>");
}

std::vector<QDomElement> rowsOf(const QDomDocument& document) {
    std::vector<QDomElement> rows;
    for (QDomElement row =
             document.documentElement().firstChildElement("CONDITIONS").firstChildElement();
         !row.isNull(); row = row.nextSiblingElement())
        rows.push_back(row);
    return rows;
}

Conditions read(const QDomDocument& document) {
    Conditions conditions;
    LitConditions(document, conditions);
    return conditions;
}

Condition timed(const char* nom, double valeur, std::int16_t temporisation, std::int16_t jour,
                std::array<std::int16_t, 7> time) {
    Condition c;
    c.Nom = QString::fromUtf8(nom);
    c.sortie = 3;
    c.Format = 1;
    c.Valeur = valeur;
    c.Temporisation = temporisation;
    c.Jour = jour;
    std::tie(c.Heure, c.Minute, c.Seconde, c.PlageFinJour, c.PlageFinHeure, c.PlageFinMinute,
             c.PlageFinSeconde) = std::tuple_cat(time);
    return c;
}

// The text fields of the regulation block, in the file's order.
void setRegulationTexts(Condition& c, const std::array<const char*, 9>& texts) {
    QString* fields[] = {&c.Consigne,
                         &c.DeltaAction,
                         &c.DureeAction,
                         &c.FiltreRetour,
                         &c.ConsigneS1,
                         &c.ConsigneS2,
                         &c.PeriodeEchantillonnage,
                         &c.TypeCourbe,
                         &c.RecopieSortie};
    for (size_t i = 0; i < texts.size(); ++i)
        *fields[i] = QString::fromUtf8(texts[i]);
}

// One line of each kind the editor, the upload and old files produce.
std::vector<Condition> linesOfEveryKind() {
    std::vector<Condition> lines = {
        timed("Electro Vanne Bist.-1", 0, 32000, 0, {}),
        timed("Electro Vanne Bist.-2", 1, 3600, 4, {8, 30, 15, 0, 0, 0, 0}),
        timed("Electro Vanne Bist. 1-3", 1, 0, JourPlage, {6, 0, 0, JourPlage, 18, 45, 30}),
        timed("Electro Vanne Bist.-4", 1, 600, JourPeriode, {21, 5, 255, 0, 12, 31, 0})};

    Condition logic = timed("Electro Vanne Bist. 1-5", 2.5, -1, 0, {});
    logic.rang = 5;
    logic.Offset = -0.5;
    logic.RecopieEntree = 6;
    logic.Commentaire = QStringLiteral("Réglage d'été <nuit> & \"jour\"");
    const double values[] = {12, 20, 0.16, -1234.5678, 1e20, 1.5e-7, 65535, -0.001};
    for (int i = 0; i < Condition::SubConditionCount; ++i) {
        logic.setNumero(i, std::uint8_t(i == 7 ? 255 : i));
        logic.setOperateur(i, std::uint8_t(200 + i));
        logic.setTempo(i, std::int16_t(i % 2 ? -32768 + i : 32767 - i));
        logic.setValeur1(i, values[i]);
        logic.setValeur2(i, -values[7 - i]);
    }
    lines.push_back(logic);

    Condition regulation = timed("Régulation", 0, 0, 0, {});
    regulation.sortie = -3;
    regulation.Regulation = true;
    regulation.EntreeConsigne = -2;
    setRegulationTexts(regulation,
                       {"20,5", " 1.5 ", "60", "<3> & 'q'", "18", "22", "10", "lin", "S2"});
    // These four have no place in the file.
    regulation.Derivee = regulation.integrale = true;
    regulation.ActionDerivee = regulation.ActionIntegrale = QStringLiteral("D");
    lines.push_back(regulation);
    return lines;
}

TEST(ProgrammeStore, LinesOfEveryKindComeBackAsTheyWereStoredWhateverTheLocale) {
    for (const QLocale& locale : {QLocale(QLocale::C), QLocale(QLocale::French, QLocale::France)}) {
        SCOPED_TRACE(locale.name().toStdString());
        test::DefaultLocale scoped{locale};
        Conditions conditions;
        for (const Condition& line : linesOfEveryKind())
            conditions.Add(line);
        // Written, turned into text, parsed again and read: what a file gives.
        QDomDocument document = withRows(QString());
        EXPECT_EQ(SauveConditions(document, conditions), 1);
        const Conditions back = read(parse(document.toString()));

        const std::vector<Condition> expected = linesOfEveryKind();
        ASSERT_EQ(back.Count(), int(expected.size()));
        for (int n = 1; n <= back.Count(); ++n) {
            Condition want = expected[size_t(n - 1)];
            want.Derivee = want.integrale = false;
            want.ActionDerivee = want.ActionIntegrale = QString();
            EXPECT_TRUE(*back.Item(n) == want) << want.Nom.toStdString();
            EXPECT_EQ(test::storedFields(*back.Item(n)), test::storedFields(want));
        }
    }
}

TEST(ProgrammeStore, WrittenRowHasEveryAttributeInOrderAndLegacyNumberText) {
    Condition line =
        timed("Electro Vanne Bist.-1", 2.5, 3600, JourPeriode, {8, 30, 7, 11, 5, 21, 9});
    line.rang = 2;
    line.Offset = -0.5;
    line.RecopieEntree = 6;
    for (int i = 0; i < Condition::IndexedSize; ++i) {
        line.setNumero(i, std::uint8_t(10 + i));
        line.setOperateur(i, std::uint8_t(20 + i));
        line.setTempo(i, std::int16_t(-30 - i));
        line.setValeur1(i, 0.5 + i);
        line.setValeur2(i, -1.25 * i);
    }
    line.Regulation = true;
    line.EntreeConsigne = 2;
    setRegulationTexts(line, {"20.5", "1", "60", "3", "18", "22", "10", "lin", "S2"});
    line.Commentaire = QStringLiteral("Arrosage");
    line.Derivee = true;
    line.ActionDerivee = QStringLiteral("not stored");

    const QString expected = QStringLiteral(
        "NOM=\"Electro Vanne Bist.-1\" TAG=\"\" SORTIE=\"3\" RANG=\"2\" FORMAT=\"1\" "
        "VALEUR=\" 2.5\" TEMPORISATION=\"3600\" OFFSET=\"-.5\" JOUR=\"12\" HEURE=\"8\" "
        "MINUTE=\"30\" SECONDE=\"7\" JOURFIN=\"11\" HEUREFIN=\"5\" MINUTEFIN=\"21\" "
        "SECONDEFIN=\"9\" RECOPIEENTREE=\"6\" "
        "NUMERO0=\"10\" NUMERO1=\"11\" NUMERO2=\"12\" NUMERO3=\"13\" NUMERO4=\"14\" "
        "NUMERO5=\"15\" NUMERO6=\"16\" NUMERO7=\"17\" "
        "OPERATEUR0=\"20\" OPERATEUR1=\"21\" OPERATEUR2=\"22\" OPERATEUR3=\"23\" "
        "OPERATEUR4=\"24\" OPERATEUR5=\"25\" OPERATEUR6=\"26\" OPERATEUR7=\"27\" "
        "TEMPORISATION0=\"-30\" TEMPORISATION1=\"-31\" TEMPORISATION2=\"-32\" "
        "TEMPORISATION3=\"-33\" TEMPORISATION4=\"-34\" TEMPORISATION5=\"-35\" "
        "TEMPORISATION6=\"-36\" TEMPORISATION7=\"-37\" "
        "VALEUR10=\" .5\" VALEUR11=\" 1.5\" VALEUR12=\" 2.5\" VALEUR13=\" 3.5\" "
        "VALEUR14=\" 4.5\" VALEUR15=\" 5.5\" VALEUR16=\" 6.5\" VALEUR17=\" 7.5\" "
        "VALEUR20=\" 0\" VALEUR21=\"-1.25\" VALEUR22=\"-2.5\" VALEUR23=\"-3.75\" "
        "VALEUR24=\"-5\" VALEUR25=\"-6.25\" VALEUR26=\"-7.5\" VALEUR27=\"-8.75\" "
        "REGULATION=\"True\" CONSIGNE=\"20.5\" DELTAACTION=\"1\" DUREEACTION=\"60\" "
        "FILTRERETOUR=\"3\" CONSIGNES1=\"18\" CONSIGNES2=\"22\" ENTREECONSIGNE=\"2\" "
        "PERIODEECHANTILLONNAGE=\"10\" TYPECOURBE=\"lin\" RECOPIESORTIE=\"S2\" "
        "COMMENTAIRE=\"Arrosage\"");
    // The schema row is the first line again under another name.
    QString master = expected;
    master.replace("Electro Vanne Bist.-1", "MASTER");

    // Numbers are written the same on every machine, which the round trip
    // above shows.
    Conditions conditions;
    conditions.Add(line);
    QDomDocument document = withRows(QString());
    SauveConditions(document, conditions);
    const std::vector<QDomElement> rows = rowsOf(document);
    ASSERT_EQ(rows.size(), 2u);
    QStringList texts;
    for (const QDomElement& row : rows) {
        EXPECT_EQ(row.tagName(), "Condition");
        EXPECT_EQ(row.attributes().count(), 69) << "nothing beyond the schema is written";
        QStringList parts;
        for (const QString& name : conditionAttributeNames())
            if (row.hasAttribute(name))
                parts << name + "=\"" + row.attribute(name) + '"';
        texts << parts.join(' ');
    }
    EXPECT_EQ(texts, (QStringList{master, expected}));

    // Nothing to save leaves the node empty, without the schema row.
    QDomDocument none = withRows(QStringLiteral("<Condition NOM=\"old\"/>"));
    SauveConditions(none, Conditions());
    EXPECT_TRUE(rowsOf(none).empty());
}

// A short row takes what it lacks from the row before in its node; a row
// without NOM is a line of its own under the name before.
TEST(ProgrammeStore, ShortRowsTakeWhatTheyLackFromTheRowBeforeInTheirNode) {
    const Conditions conditions = read(
        parse(R"(<Configuration><CONDITIONS>)"
              R"(<Condition NOM="MASTER" SORTIE="3" VALEUR=" 1" JOUR="4" HEURE="8" NUMERO0="5")"
              R"( VALEUR10=" 2.5" REGULATION="True" CONSIGNE="20"/>)"
              R"(<Condition NOM="L1"/><Condition NOM="L2" JOUR="5" VALEUR=" 0"/>)"
              R"(<Condition HEURE="9"/><Condition NOM="L4" CONSIGNE=""/>)"
              R"(</CONDITIONS><CONDITIONS><Condition NOM="N1" MINUTE="1"/></CONDITIONS>)"
              R"(</Configuration>)"));
    ASSERT_EQ(conditions.Count(), 5);
    const QStringList expected = {"L1 4 8 1 20", "L2 5 8 0 20", "L2 5 9 0 20", "L4 5 9 0 "};
    for (int n = 1; n <= 4; ++n) {
        const Condition& c = *conditions.Item(n);
        EXPECT_EQ(QStringList({c.Nom, QString::number(c.Jour), QString::number(c.Heure),
                               QString::number(c.Valeur), c.Consigne})
                      .join(' '),
                  expected[n - 1]);
        EXPECT_EQ(c.sortie, 3);
        EXPECT_EQ(c.Valeur1(0), 2.5);
        EXPECT_TRUE(c.Regulation);
    }
    // The next node starts from a fresh line.
    Condition fresh;
    fresh.Nom = QStringLiteral("N1");
    fresh.Minute = 1;
    EXPECT_TRUE(*conditions.Item(5) == fresh);
}

TEST(ProgrammeStore, SchemaRowIsDroppedInAnyCaseButPassesItsValuesOn) {
    // A row without a name of its own is the schema row again.
    const std::pair<const char*, int> cases[] = {
        {R"(<Condition NOM="master" JOUR="6"/>)", 1},
        {R"(<Condition NOM="MASTER " JOUR="6"/>)", 2},
        {R"(<Condition NOM="MASTER2" JOUR="6"/>)", 2},
        {R"(<Condition NOM="Master" JOUR="6"/><Condition HEURE="7"/>)", 1}};
    for (const auto& [rows, count] : cases) {
        SCOPED_TRACE(rows);
        const Conditions conditions =
            read(withRows(QString::fromLatin1(rows) + R"(<Condition NOM="L1"/>)"));
        ASSERT_EQ(conditions.Count(), count);
        EXPECT_EQ(conditions.Item(count)->Nom, "L1");
        EXPECT_EQ(conditions.Item(count)->Jour, 6);
    }
}

// A programme file that is missing or no document is an error naming it,
// and the lines in memory stay.
TEST(ProgrammeStore, AProgrammeFileThatCannotBeReadIsAnErrorAndTheLinesStay) {
    const test::ScratchAppFolder dir;
    test::writeFile(dir.filePath("broken.prg"),
                    R"(<Configuration><CONDITIONS><Condition NOM="A">)");
    const ConfigDocument config(dir.configPath());
    Conditions conditions;
    conditions.Add(timed("L1", 0, 0, 0, {}));
    conditions.Add(timed("L2", 0, 0, 0, {}));
    for (const char* name : {"missing.prg", "broken.prg"}) {
        try {
            LitConditions(config, conditions, dir.filePath(name));
            ADD_FAILURE() << "no error for " << name;
        } catch (const ConfigError& error) {
            EXPECT_TRUE(error.text().contains(name)) << error.what();
        }
        EXPECT_THROW(SauveConditions(config, conditions, dir.filePath(name)), ConfigError);
        EXPECT_EQ(conditions.Count(), 2);
    }
}

} // namespace
} // namespace qv
