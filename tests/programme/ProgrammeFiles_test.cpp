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

Conditions twoLines() {
    Conditions conditions;
    Condition first;
    first.Nom = QStringLiteral("Bistable valve-1");
    first.sortie = 3;
    first.Jour = 4;
    first.setValeur1(0, 12.5);
    first.Regulation = true;
    first.Consigne = QStringLiteral("20");
    conditions.Add(first);
    Condition second;
    second.Nom = QStringLiteral("Bistable valve-2");
    second.rang = 1;
    second.Jour = JourPeriode;
    second.Offset = -0.5;
    conditions.Add(second);
    return conditions;
}

// A scratch application folder holding a copy of the shipped config.xml,
// and a programme file made from it with two lines.
class ProgrammeFiles : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString configPath = dir.filePath("config.xml");
    QString prg = dir.filePath("Jardin.prg");
    std::unique_ptr<ConfigDocument> config;

    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        write(configPath, contents(QStringLiteral(QUORVEL_SHIPPED_CONFIG)));
        write(prg, contents(configPath));
        config = std::make_unique<ConfigDocument>(configPath);
    }
};

TEST_F(ProgrammeFiles, ProgrammeGoesThroughConfigXmlInTheWritersOrderAndComesBack) {
    SauveConditions(*config, twoLines());
    Conditions back;
    EXPECT_EQ(LitConditions(*config, back), QStringList({"Bistable valve-1", "Bistable valve-2"}));
    EXPECT_TRUE(*back.Item(2) == *twoLines().Item(2));
    // The rest of the file is still there.
    EXPECT_EQ(Donne_EtatDefautSortie(*config, "English", 0), 0);

    // Every row, the schema row too, has its attributes in the writer's order.
    QXmlStreamReader reader(contents(configPath));
    int rows = 0;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement &&
            reader.name() == QLatin1String("Condition")) {
            QStringList names;
            for (const QXmlStreamAttribute& attribute : reader.attributes())
                names << attribute.name().toString();
            EXPECT_EQ(names, conditionAttributeNames());
            ++rows;
        }
    }
    EXPECT_FALSE(reader.hasError());
    EXPECT_EQ(rows, 3);
}

TEST_F(ProgrammeFiles, AProgrammeFileIsWrittenAndReadWithoutTouchingConfigXml) {
    const QByteArray before = contents(configPath);
    SauveConditions(*config, twoLines(), prg);
    EXPECT_EQ(contents(configPath), before);

    Conditions fromFile;
    EXPECT_EQ(LitConditions(*config, fromFile, prg).size(), 2);
    Conditions fromConfig;
    EXPECT_TRUE(LitConditions(*config, fromConfig).isEmpty());
}

TEST_F(ProgrammeFiles, AFileThatCannotBeReadIsAnErrorAndTheLinesStay) {
    write(dir.filePath("broken.prg"), R"(<Configuration><CONDITIONS><Condition NOM="A">)");
    Conditions conditions = twoLines();
    for (const char* name : {"missing.prg", "broken.prg"}) {
        EXPECT_THROW(LitConditions(*config, conditions, dir.filePath(name)), ConfigError) << name;
        EXPECT_THROW(SauveConditions(*config, conditions, dir.filePath(name)), ConfigError);
        EXPECT_EQ(conditions.Count(), 2);
    }

    // A damaged output list is reported with its file.
    const QString damaged = dir.filePath("damaged.prg");
    write(damaged, "<Configuration><Listes><Traduction Nom=\"English\"><ListeSorties>"
                   "<Ligne><Texte>Valve</Texte><Index>0</Index></Ligne>"
                   "</ListeSorties></Traduction></Listes></Configuration>");
    try {
        Donne_EtatDefautSortie(*config, "English", 0, damaged);
        ADD_FAILURE() << "no error";
    } catch (const ConfigError& error) {
        EXPECT_TRUE(error.text().contains("damaged.prg")) << error.what();
    }
}

// The changed document is the programme file's, and it goes to config.xml;
// without a row nothing is written.
TEST_F(ProgrammeFiles, DefaultStateFromAProgrammeFileLandsInConfigXml) {
    SauveConditions(*config, twoLines(), prg);
    const QByteArray programme = contents(prg);
    const QByteArray before = contents(configPath);

    Sauve_EtatDefautSortie(*config, "English", 9, 1, prg);
    EXPECT_EQ(contents(configPath), before);
    EXPECT_EQ(Donne_EtatDefautSortie(*config, "English", 0, prg), 0);
    Sauve_EtatDefautSortie(*config, "English", 0, 1, prg);
    EXPECT_EQ(contents(prg), programme);
    EXPECT_EQ(Donne_EtatDefautSortie(*config, "English", 0), 1);
    Conditions conditions;
    EXPECT_EQ(LitConditions(*config, conditions).size(), 2);
}

} // namespace
} // namespace qv
