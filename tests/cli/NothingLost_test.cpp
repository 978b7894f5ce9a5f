// Failed exchanges, programmes the frames cannot carry, every kind of line
// there and back, and hostile documents, tried through quorvelctl as a technician would: each run
// is a separate process against a simulated controller kept in a state file, and what counts is the
// exit status, the message, and that config.xml and the controller's memory hold what they should
// afterwards.
#include "CliTestSupport.h"
#include "ProgrammeLines.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace qv::test {
namespace {

Condition line(std::int16_t jour, std::int16_t heure) {
    return programmeLine(jour, heure, 15, 0, 300);
}

class NothingLost : public ::testing::Test {
protected:
    ScratchAppFolder dir;

    QString config() const { return dir.configPath(); }
    QString state() const { return dir.filePath(QStringLiteral("sim.json")); }

    Outcome run(const QStringList& args, const QString& faults = QString(), int timeoutMs = 60000) {
        QString link = QStringLiteral("sim:restartMs=0,state=%1").arg(state());
        if (!faults.isEmpty())
            link += QLatin1Char(',') + faults;
        return quorvelctl(
            QStringList{QStringLiteral("--app-dir"), dir.path(), QStringLiteral("--link"), link} +
                args,
            timeoutMs);
    }

    // The controller's whole memory, as its state file keeps it.
    QString memory() const {
        const QJsonObject root = QJsonDocument::fromJson(readFile(state())).object();
        return root.value(QStringLiteral("devices"))
            .toArray()
            .at(0)
            .toObject()
            .value(QStringLiteral("eeprom"))
            .toString();
    }

    QString programmeFile(const QString& name, const Conditions& lines) {
        return test::programmeFile(dir.filePath(name), lines);
    }

    // The controller and config.xml both hold `lines`, sent cleanly.
    void holding(const Conditions& lines) {
        const QString prg = programmeFile(QStringLiteral("first.prg"), lines);
        const Outcome r = run({QStringLiteral("--yes"), QStringLiteral("programme"),
                               QStringLiteral("download"), prg});
        ASSERT_EQ(r.status, 0) << r.err.toStdString();
    }
};

const QStringList kCheckFaults{QStringLiteral("corrupt=3"), QStringLiteral("short=3")};

// The clock frame is the first exchange of a download; its reply fails the
// check three times. The rest goes, but the run did not go through cleanly.
TEST_F(NothingLost, DownloadWhoseFrameFailsItsCheckExitsOneAndSaysWhat) {
    Conditions lines;
    for (std::int16_t n = 1; n <= 4; ++n)
        lines.Add(line(n, n));
    const QString prg = programmeFile(QStringLiteral("site.prg"), lines);
    for (const QString& fault : kCheckFaults) {
        SCOPED_TRACE(fault.toStdString());
        holding({});
        const QString before = memory();
        const Outcome r = run(
            {QStringLiteral("--yes"), QStringLiteral("programme"), QStringLiteral("download"), prg},
            fault);
        EXPECT_EQ(r.status, 1) << r.out.toStdString();
        EXPECT_TRUE(r.err.contains(QStringLiteral("Quorvel not responding (CRC error)")))
            << r.err.toStdString();
        EXPECT_TRUE(r.out.contains(QStringLiteral("4 of 4 line(s) sent"))) << r.out.toStdString();
        EXPECT_TRUE(r.out.contains(QStringLiteral("not confirmed (CRC error): the clock")))
            << r.out.toStdString();
        // The lines themselves went: the controller's image changed, and
        // config.xml took the file as the operator asked.
        EXPECT_NE(memory(), before);
        EXPECT_EQ(ConfigDocument(config()).LitValeurXML(QStringLiteral("NomProgramme")),
                  QStringLiteral("site.prg"));
    }
}

// The first read of the image fails its check: taken as a 0 it used to
// become a line the controller does not hold, stored over the operator's.
TEST_F(NothingLost, UploadWithAFailedReadStoresNothing) {
    Conditions lines;
    lines.Add(line(3, 6));
    lines.Add(line(JourPlage, 22));
    holding(lines);
    const QString copy = dir.filePath(QStringLiteral("copy.prg"));
    writeFile(copy, "<Configuration><CONDITIONS/></Configuration>\n");
    for (const QString& fault : kCheckFaults) {
        SCOPED_TRACE(fault.toStdString());
        const QByteArray configBefore = readFile(config());
        const QString memoryBefore = memory();
        const Outcome r =
            run({QStringLiteral("programme"), QStringLiteral("upload"), QStringLiteral("-o"), copy},
                fault);
        EXPECT_EQ(r.status, 1) << r.out.toStdString();
        EXPECT_TRUE(r.err.contains(QStringLiteral("(CRC error)"))) << r.err.toStdString();
        EXPECT_TRUE(r.out.contains(QStringLiteral("nothing stored: config.xml and copy.prg "
                                                  "unchanged")))
            << r.out.toStdString();
        EXPECT_EQ(readFile(config()), configBefore);
        EXPECT_EQ(readFile(copy), QByteArray("<Configuration><CONDITIONS/></Configuration>\n"));
        EXPECT_EQ(memory(), memoryBefore);
    }
    // Without the fault the same command stores the controller's lines.
    const Outcome clean = run({QStringLiteral("programme"), QStringLiteral("upload")});
    EXPECT_EQ(clean.status, 0) << clean.err.toStdString();
    Conditions stored;
    LitConditions(ConfigDocument(config()), stored);
    EXPECT_EQ(stored.Count(), 2);
}

// A value that no frame can carry is found before anything changes, and
// named by its line and field.
TEST_F(NothingLost, ProgrammeThatCannotBeSentChangesNothing) {
    holding({});
    struct Case {
        void (*spoil)(Condition&);
        const char* says;
    };
    const Case cases[] = {
        {[](Condition& c) { c.Jour = 13; }, "line 2, field JOUR: 13"},
        {[](Condition& c) { c.sortie = 300; }, "line 2, field SORTIE: 300"},
        {[](Condition& c) { c.Minute = 256; }, "line 2, field MINUTE: 256"},
        {[](Condition& c) { c.Jour = JourPeriode, c.PlageFinHeure = 999; },
         "line 2, field HEUREFIN: 999"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.says);
        Conditions lines;
        lines.Add(line(1, 8));
        Condition bad = line(2, 9);
        c.spoil(bad);
        lines.Add(bad);
        lines.Add(line(3, 10));
        const QString prg = programmeFile(QStringLiteral("bad.prg"), lines);
        const QByteArray configBefore = readFile(config());
        const QByteArray stateBefore = readFile(state());
        const Outcome r = run({QStringLiteral("--yes"), QStringLiteral("programme"),
                               QStringLiteral("download"), prg});
        EXPECT_EQ(r.status, 4) << r.err.toStdString();
        EXPECT_TRUE(r.err.contains(QString::fromUtf8(c.says))) << r.err.toStdString();
        EXPECT_TRUE(r.err.contains(QStringLiteral("nothing sent"))) << r.err.toStdString();
        EXPECT_EQ(readFile(config()), configBefore);
        // Not a frame went: not even the clock's.
        EXPECT_EQ(readFile(state()), stateBefore);
        QFile::remove(prg);
    }
}

// Every kind of line goes to the controller and comes back as it went: what
// the frames carry of each kind, and nothing they do not.
TEST_F(NothingLost, EveryKindOfLineGoesThereAndBack) {
    const auto make = [](std::int16_t jour, std::int16_t h, std::int16_t m, std::int16_t s,
                         std::int16_t endH, std::int16_t endM, std::int16_t endS) {
        Condition c = line(jour, h);
        c.Minute = m, c.Seconde = s;
        c.PlageFinHeure = endH, c.PlageFinMinute = endM, c.PlageFinSeconde = endS;
        if (jour == JourPlage || jour == JourPeriode)
            c.PlageFinJour = jour;
        return c;
    };
    Conditions sent;
    sent.Add(make(0, 0, 0, 0, 0, 0, 0));             // no time condition
    sent.Add(make(3, 6, 30, 0, 0, 0, 0));            // Wednesday 06:30
    sent.Add(make(JourPlage, 22, 0, 0, 23, 45, 30)); // a range
    sent.Add(make(JourPeriode, 7, 15, 3, 4, 21, 0)); // every 3 days from 21/4
    holding(sent);
    const QString back = dir.filePath(QStringLiteral("back.prg"));
    const Outcome r =
        run({QStringLiteral("programme"), QStringLiteral("upload"), QStringLiteral("-o"), back});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.out.contains(QStringLiteral("range 22:00:00-23:45:30"))) << r.out.toStdString();
    Conditions received;
    LitConditions(ConfigDocument(back), received);
    const auto carried = [](const Condition& c) {
        const bool timed = c.Jour != 0, ends = c.Jour == JourPlage || c.Jour == JourPeriode;
        return QList<int>{c.sortie,
                          int(c.Valeur),
                          c.Temporisation,
                          c.Jour,
                          timed ? c.Heure : 0,
                          timed ? c.Minute : 0,
                          timed ? c.Seconde : 0,
                          ends ? c.PlageFinHeure : 0,
                          ends ? c.PlageFinMinute : 0,
                          c.Jour == JourPlage ? c.PlageFinSeconde : 0};
    };
    ASSERT_EQ(received.Count(), sent.Count());
    for (int n = 1; n <= sent.Count(); ++n)
        EXPECT_EQ(carried(*received.Item(n)), carried(*sent.Item(n))) << "line " << n;
    EXPECT_EQ(ConfigDocument(back).LitValeurXML(QStringLiteral("NomProgramme")),
              QStringLiteral("back.prg"));
}

// A document that is no configuration at all is refused before anything
// reads it, with the place where it goes wrong, and never written back.
TEST_F(NothingLost, HostileConfigurationIsRefusedWhereItGoesWrong) {
    const QByteArray foreign = QByteArray(readFile(config()))
                                   .replace("<Configuration>", "<Programme>")
                                   .replace("</Configuration>", "</Programme>");
    writeFile(config(), foreign);
    const Outcome r = run({QStringLiteral("message"), QStringLiteral("Lire")});
    EXPECT_EQ(r.status, 3) << r.out.toStdString();
    EXPECT_TRUE(r.err.contains(QStringLiteral("\"%1\" is refused: the root element is <Programme>, "
                                              "not <Configuration> (line ")
                                   .arg(config())))
        << r.err.toStdString();
    EXPECT_EQ(readFile(config()), foreign);
    EXPECT_FALSE(QFile::exists(state()));
}

} // namespace
} // namespace qv::test
