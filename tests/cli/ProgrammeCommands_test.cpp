// A programme file goes to a simulated controller and comes back, through
// quorvelctl runs as a technician would make them.
#include "config/ConfigDocument.h"
#include "programme/Conditions.h"
#include "programme/ProgrammeStore.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace qv {
namespace {

Condition line(std::int16_t jour, std::initializer_list<std::int16_t> time,
               std::initializer_list<std::int16_t> end = {}) {
    Condition c;
    c.Nom = QStringLiteral("Line");
    c.sortie = 3;
    c.Format = 0;
    c.Valeur = 1;
    c.Temporisation = 300;
    c.Jour = jour;
    auto t = time.begin();
    c.Heure = *t++;
    c.Minute = *t++;
    c.Seconde = *t;
    if (end.size() == 3) {
        auto e = end.begin();
        c.PlageFinJour = jour;
        c.PlageFinHeure = *e++;
        c.PlageFinMinute = *e++;
        c.PlageFinSeconde = *e;
    }
    return c;
}

class ProgrammeCommandsTest : public ::testing::Test {
protected:
    QTemporaryDir dir;

    int run(QStringList args, QString* out = nullptr) {
        QStringList all{QStringLiteral("--app-dir"), dir.path(), QStringLiteral("--link"),
                        QStringLiteral("sim:restartMs=0,state=%1/sim.json").arg(dir.path())};
        all << args;
        QProcess process;
        process.start(QStringLiteral(QUORVELCTL_PATH), all);
        EXPECT_TRUE(process.waitForFinished(60000));
        if (out)
            *out = QString::fromUtf8(process.readAllStandardOutput());
        EXPECT_TRUE(process.exitCode() == 0) << process.readAllStandardError().toStdString();
        return process.exitCode();
    }
};

TEST_F(ProgrammeCommandsTest, EveryKindOfLineGoesThereAndBack) {
    // A programme file is a copy of config.xml with its lines.
    const QString prg = dir.filePath(QStringLiteral("site.prg"));
    ASSERT_TRUE(QFile::copy(QStringLiteral(QUORVEL_SHIPPED_CONFIG), prg));
    QFile::setPermissions(prg, QFile::ReadOwner | QFile::WriteOwner);
    Conditions sent;
    sent.Add(line(0, {0, 0, 0}));                        // no time condition
    sent.Add(line(3, {6, 30, 0}));                       // Wednesday 06:30
    sent.Add(line(JourPlage, {22, 0, 0}, {23, 45, 30})); // a range
    sent.Add(line(JourPeriode, {7, 15, 3}, {4, 21, 0})); // every 3 days from 21/4
    {
        ConfigDocument file(prg);
        SauveConditions(file, sent);
    }

    ASSERT_EQ(run({QStringLiteral("--yes"), QStringLiteral("programme"), QStringLiteral("download"),
                   prg}),
              0);
    const QString back = dir.filePath(QStringLiteral("back.prg"));
    QString table;
    ASSERT_EQ(
        run({QStringLiteral("programme"), QStringLiteral("upload"), QStringLiteral("-o"), back},
            &table),
        0);
    EXPECT_TRUE(table.contains(QStringLiteral("range 22:00:00-23:45:30"))) << table.toStdString();

    Conditions received;
    LitConditions(ConfigDocument(back), received);
    ASSERT_EQ(received.Count(), sent.Count());
    for (int n = 1; n <= sent.Count(); ++n) {
        SCOPED_TRACE(n);
        const Condition& a = *sent.Item(n);
        const Condition& b = *received.Item(n);
        // What the download carries comes back unchanged.
        EXPECT_EQ(b.sortie, a.sortie);
        EXPECT_EQ(b.Valeur, a.Valeur);
        EXPECT_EQ(b.Temporisation, a.Temporisation);
        EXPECT_EQ(b.Jour, a.Jour);
        if (a.Jour != 0) {
            EXPECT_EQ(b.Heure, a.Heure);
            EXPECT_EQ(b.Minute, a.Minute);
            EXPECT_EQ(b.Seconde, a.Seconde);
        }
        if (a.Jour == JourPlage || a.Jour == JourPeriode) {
            EXPECT_EQ(b.PlageFinHeure, a.PlageFinHeure);
            EXPECT_EQ(b.PlageFinMinute, a.PlageFinMinute);
        }
        if (a.Jour == JourPlage) {
            EXPECT_EQ(b.PlageFinSeconde, a.PlageFinSeconde);
        }
    }

    // The copy names itself and is well-formed for the field's tools.
    EXPECT_EQ(ConfigDocument(back).LitValeurXML(QStringLiteral("NomProgramme")),
              QStringLiteral("back.prg"));
    QProcess xmllint;
    xmllint.start(QStringLiteral("xmllint"), {QStringLiteral("--noout"), back});
    if (xmllint.waitForStarted(5000)) {
        ASSERT_TRUE(xmllint.waitForFinished(10000));
        EXPECT_EQ(xmllint.exitCode(), 0) << xmllint.readAllStandardError().toStdString();
    }
}

} // namespace
} // namespace qv
