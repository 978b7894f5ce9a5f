#include "ProgrammeTestSupport.h"
#include "config/ConfigDocument.h"
#include "programme/DefaultStates.h"
#include "programme/ProgrammeStore.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QXmlStreamReader>

namespace qv {
namespace {

QByteArray contents(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

void write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(bytes);
}

// A scratch application folder holding a copy of the shipped config.xml.
class ProgrammeFiles : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir_.isValid());
        write(configPath(), contents(QStringLiteral(QUORVEL_SHIPPED_CONFIG)));
    }

    QString configPath() const { return dir_.filePath(QStringLiteral("config.xml")); }
    QString path(const char* name) const { return dir_.filePath(QString::fromLatin1(name)); }

    QTemporaryDir dir_;
};

Conditions twoLines() {
    Conditions conditions;
    Condition first;
    first.Nom = QStringLiteral("Bistable valve-1");
    first.sortie = 3;
    first.Valeur = 1.0;
    first.Temporisation = 3600;
    first.Jour = 4;
    first.Heure = 8;
    first.Minute = 30;
    first.setValeur1(0, 12.5);
    first.Regulation = true;
    first.Consigne = QStringLiteral("20");
    conditions.Add(first);
    Condition second;
    second.Nom = QStringLiteral("Bistable valve-2");
    second.sortie = 3;
    second.rang = 1;
    second.Jour = JourPeriode;
    second.Seconde = 3;
    second.PlageFinHeure = 6;
    second.PlageFinMinute = 15;
    second.Offset = -0.5;
    conditions.Add(second);
    return conditions;
}

// Attribute names of each "Condition" element of a file, in file order.
std::vector<QStringList> rowAttributeOrder(const QByteArray& xml) {
    std::vector<QStringList> rows;
    QXmlStreamReader reader(xml);
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && reader.name() == QLatin1String("Condition")) {
            QStringList names;
            for (const QXmlStreamAttribute& attribute : reader.attributes()) {
                names << attribute.name().toString();
            }
            rows.push_back(names);
        }
        if (reader.hasError()) {
            ADD_FAILURE() << reader.errorString().toStdString();
            break;
        }
    }
    return rows;
}

TEST_F(ProgrammeFiles, ProgrammeGoesThroughConfigXmlAndComesBack) {
    const ConfigDocument config(configPath());
    const Conditions lines = twoLines();
    SauveConditions(config, lines);

    Conditions back;
    EXPECT_EQ(LitConditions(config, back), QStringList({"Bistable valve-1", "Bistable valve-2"}));
    ASSERT_EQ(back.Count(), 2);
    for (int n = 1; n <= 2; ++n) {
        EXPECT_EQ(test::storedFields(*back.Item(n)), test::storedFields(*lines.Item(n)));
    }
    // The rest of the file is still there.
    EXPECT_EQ(Donne_EtatDefautSortie(config, QStringLiteral("English"), 0), 0);
}

TEST_F(ProgrammeFiles, RowsKeepTheirAttributeOrderInTheFile) {
    const ConfigDocument config(configPath());
    SauveConditions(config, twoLines());
    const std::vector<QStringList> rows = rowAttributeOrder(contents(configPath()));
    ASSERT_EQ(rows.size(), 3u);
    for (const QStringList& names : rows) {
        EXPECT_EQ(names, conditionAttributeNames());
    }
}

TEST_F(ProgrammeFiles, AProgrammeFileIsWrittenAndReadWithoutTouchingConfigXml) {
    const ConfigDocument config(configPath());
    const QString prg = path("Jardin.prg");
    write(prg, contents(configPath()));
    const QByteArray before = contents(configPath());

    SauveConditions(config, twoLines(), prg);
    EXPECT_EQ(contents(configPath()), before);

    Conditions fromFile;
    EXPECT_EQ(LitConditions(config, fromFile, prg).size(), 2);
    Conditions fromConfig;
    EXPECT_TRUE(LitConditions(config, fromConfig).isEmpty());
}

TEST_F(ProgrammeFiles, AFileThatCannotBeReadIsAnErrorAndTheLinesStay) {
    const ConfigDocument config(configPath());
    write(path("broken.prg"), "<Configuration><CONDITIONS><Condition NOM=\"A\"></CONDITIONS>");
    Conditions conditions = twoLines();
    for (const char* name : {"missing.prg", "broken.prg"}) {
        EXPECT_THROW(LitConditions(config, conditions, path(name)), ConfigError) << name;
        EXPECT_THROW(SauveConditions(config, conditions, path(name)), ConfigError) << name;
        EXPECT_EQ(conditions.Count(), 2);
    }
}

TEST_F(ProgrammeFiles, DefaultStateIsReadAndWrittenInConfigXml) {
    const ConfigDocument config(configPath());
    Sauve_EtatDefautSortie(config, QStringLiteral("English"), 0, 1);
    EXPECT_EQ(Donne_EtatDefautSortie(config, QStringLiteral("ENGLISH"), 0), 1);
    EXPECT_EQ(Donne_EtatDefautSortie(config, QStringLiteral("FRANÇAIS"), 0), 0)
        << "the other languages keep their copy";
    Sauve_EtatDefautSortie(config, QStringLiteral("English"), 0, 0);
    EXPECT_EQ(Donne_EtatDefautSortie(config, QStringLiteral("English"), 0), 0);
}

TEST_F(ProgrammeFiles, DefaultStateFromAProgrammeFileLandsInConfigXml) {
    const ConfigDocument config(configPath());
    const QString prg = path("Jardin.prg");
    write(prg, contents(configPath()));
    SauveConditions(config, twoLines(), prg);
    const QByteArray programme = contents(prg);

    EXPECT_EQ(Donne_EtatDefautSortie(config, QStringLiteral("English"), 0, prg), 0);
    Sauve_EtatDefautSortie(config, QStringLiteral("English"), 0, 1, prg);
    // The changed document is the programme file's, and it goes to config.xml.
    EXPECT_EQ(contents(prg), programme);
    EXPECT_EQ(Donne_EtatDefautSortie(config, QStringLiteral("English"), 0), 1);
    Conditions conditions;
    EXPECT_EQ(LitConditions(config, conditions).size(), 2);
}

TEST_F(ProgrammeFiles, DefaultStateWithoutARowWritesTheFileAsItWas) {
    const ConfigDocument config(configPath());
    const QString prg = path("Jardin.prg");
    write(prg, contents(configPath()));
    SauveConditions(config, twoLines(), prg);
    const QByteArray before = contents(configPath());

    Sauve_EtatDefautSortie(config, QStringLiteral("English"), 9, 1, prg);
    EXPECT_EQ(contents(configPath()), before);
    Conditions conditions;
    EXPECT_EQ(LitConditions(config, conditions, prg).size(), 2);
    EXPECT_EQ(Donne_EtatDefautSortie(config, QStringLiteral("English"), 0, prg), 0);
}

TEST_F(ProgrammeFiles, ADamagedOutputListIsReportedWithItsFile) {
    const ConfigDocument config(configPath());
    write(path("damaged.prg"), "<Configuration><Listes><Traduction Nom=\"English\"><ListeSorties>"
                               "<Ligne><Texte>Valve</Texte><Index>0</Index></Ligne>"
                               "</ListeSorties></Traduction></Listes></Configuration>");
    try {
        Donne_EtatDefautSortie(config, QStringLiteral("English"), 0, path("damaged.prg"));
        ADD_FAILURE() << "no error";
    } catch (const ConfigError& error) {
        EXPECT_TRUE(error.text().contains(QStringLiteral("damaged.prg"))) << error.what();
    }
}

} // namespace
} // namespace qv
