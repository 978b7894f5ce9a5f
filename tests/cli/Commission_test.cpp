// quorvelctl on several simulated controllers at once: the commission and
// the one-controller commands with --device all or a list.
#include "config/ConfigDocument.h"
#include "programme/Conditions.h"
#include "programme/ProgrammeStore.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace qv {
namespace {

struct Outcome {
    int status = -1;
    QStringList out;
    QString err;
};

class SeveralDevicesTest : public ::testing::Test {
protected:
    QTemporaryDir dir;

    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        const QString prg = programme();
        ASSERT_TRUE(QFile::copy(QStringLiteral(QUORVEL_SHIPPED_CONFIG), prg));
        QFile::setPermissions(prg, QFile::ReadOwner | QFile::WriteOwner);
        Condition c;
        c.sortie = 3;
        c.Temporisation = 300;
        c.Jour = 3;
        c.Heure = 6;
        c.Minute = 30;
        Conditions lines;
        lines.Add(c);
        ConfigDocument file(prg);
        SauveConditions(file, lines);
    }

    QString programme() const { return dir.filePath(QStringLiteral("site.prg")); }

    Outcome run(const QString& sim, const QStringList& args) {
        QProcess process;
        process.start(QStringLiteral(QUORVELCTL_PATH),
                      QStringList{QStringLiteral("--app-dir"), dir.filePath(QStringLiteral("app")),
                                  QStringLiteral("--link"), QStringLiteral("sim:") + sim} +
                          args);
        EXPECT_TRUE(process.waitForFinished(120000));
        QStringList out = QString::fromUtf8(process.readAllStandardOutput()).split(u'\n');
        if (!out.isEmpty() && out.last().isEmpty())
            out.removeLast();
        return {process.exitCode(), out, QString::fromUtf8(process.readAllStandardError())};
    }

    int blocksIn(const QString& log) {
        QFile f(dir.filePath(QStringLiteral("app/") + log));
        if (!f.open(QIODevice::ReadOnly))
            return 0;
        return static_cast<int>(
            f.readAll().count("\r\n------------------------------------------\r\n"));
    }
};

TEST_F(SeveralDevicesTest, CommissionOfFourPrintsALineEachAndASummary) {
    const Outcome o =
        run(QStringLiteral("devices=4,restartMs=0"),
            {QStringLiteral("--device"), QStringLiteral("all"), QStringLiteral("commission"),
             programme(), QStringLiteral("--order"), QStringLiteral("88"),
             QStringLiteral("--serial-from"), QStringLiteral("700"),
             QStringLiteral("--restart-wait"), QStringLiteral("0")});
    ASSERT_EQ(o.status, 0) << o.err.toStdString();
    ASSERT_EQ(o.out.size(), 5) << o.out.join(u'\n').toStdString();
    QStringList serials;
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(o.out[i].contains(QStringLiteral("  ok  "))) << o.out[i].toStdString();
        serials << o.out[i].section(QStringLiteral("serial "), 1).section(u' ', 0, 0);
    }
    serials.sort();
    EXPECT_EQ(serials, (QStringList{QStringLiteral("700"), QStringLiteral("701"),
                                    QStringLiteral("702"), QStringLiteral("703")}));
    EXPECT_EQ(o.out[4], QStringLiteral("4 controller(s): 4 succeeded, 0 failed"));
    EXPECT_EQ(blocksIn(QStringLiteral("88.log")), 4);
    // Not a terminal: plain status lines, one per change.
    EXPECT_TRUE(o.err.contains(QStringLiteral(": [1/7] Full read\n")));
}

TEST_F(SeveralDevicesTest, AControllerPulledOutFailsAloneAndIsNamed) {
    const Outcome o = run(QStringLiteral("devices=3,restartMs=0,unplugAfter=20,serial=5000"),
                          {QStringLiteral("--json"), QStringLiteral("commission"), programme(),
                           QStringLiteral("--restart-wait"), QStringLiteral("0")});
    EXPECT_EQ(o.status, 1);
    ASSERT_EQ(o.out.size(), 4) << o.out.join(u'\n').toStdString();
    int failures = 0;
    qint64 failedId = 0;
    for (int i = 0; i < 3; ++i) {
        const QJsonObject line = QJsonDocument::fromJson(o.out[i].toUtf8()).object();
        if (!line.value(QStringLiteral("ok")).toBool()) {
            ++failures;
            failedId = line.value(QStringLiteral("id")).toInteger();
            EXPECT_EQ(line.value(QStringLiteral("failure")).toString(),
                      QStringLiteral("Quorvel not responding (Time Out)"));
            EXPECT_EQ(line.value(QStringLiteral("step")).toString(), QStringLiteral("Full read"));
        }
    }
    EXPECT_EQ(failures, 1);
    const QJsonObject summary = QJsonDocument::fromJson(o.out[3].toUtf8()).object();
    EXPECT_EQ(summary.value(QStringLiteral("succeeded")).toInt(), 2);
    EXPECT_EQ(summary.value(QStringLiteral("failed")).toArray().first().toInteger(), failedId);
    EXPECT_EQ(blocksIn(QStringLiteral("report.log")), 2);
}

TEST_F(SeveralDevicesTest, OneControllerCommandsRunOnAListAndLabelTheirOutput) {
    const QString sim = QStringLiteral("devices=3,serial=100,state=%1/sim.json").arg(dir.path());
    const QString first = QString::number(0x5A000001), third = QString::number(0x5A000003);
    Outcome o = run(sim, {QStringLiteral("--device"), third + QLatin1Char(',') + first,
                          QStringLiteral("eeprom"), QStringLiteral("write"), QStringLiteral("30"),
                          QStringLiteral("9")});
    ASSERT_EQ(o.status, 0) << o.err.toStdString();
    EXPECT_EQ(o.out,
              (QStringList{third + QStringLiteral(": 30 9"), first + QStringLiteral(": 30 9")}));

    o = run(sim, {QStringLiteral("--device"), QStringLiteral("all"), QStringLiteral("--json"),
                  QStringLiteral("identity")});
    ASSERT_EQ(o.status, 0) << o.err.toStdString();
    ASSERT_EQ(o.out.size(), 3);
    for (int i = 0; i < 3; ++i) {
        const QJsonObject id = QJsonDocument::fromJson(o.out[i].toUtf8()).object();
        EXPECT_EQ(id.value(QStringLiteral("device")).toInteger(), 0x5A000001 + i);
        EXPECT_EQ(id.value(QStringLiteral("serial")).toString(), QString::number(100 + i));
    }

    // The second was left alone by the write.
    o = run(sim, {QStringLiteral("--device"), QString::number(0x5A000002), QStringLiteral("eeprom"),
                  QStringLiteral("read"), QStringLiteral("30")});
    ASSERT_EQ(o.out.size(), 1);
    EXPECT_NE(o.out[0], QStringLiteral("30 9"));
    o = run(sim, {QStringLiteral("--device"), third, QStringLiteral("eeprom"),
                  QStringLiteral("read"), QStringLiteral("30")});
    EXPECT_EQ(o.out, QStringList{QStringLiteral("30 9")});
}

TEST_F(SeveralDevicesTest, SeveralDevicesAreRefusedWhereTheyMakeNoSense) {
    struct Case {
        QStringList args;
        int status;
    };
    const Case cases[] = {
        {{QStringLiteral("--device"), QStringLiteral("all"), QStringLiteral("clock"),
          QStringLiteral("read")},
         2},
        {{QStringLiteral("--device"), QStringLiteral("1,1"), QStringLiteral("identity")}, 2},
        {{QStringLiteral("--device"), QStringLiteral("all"), QStringLiteral("commission"),
          QStringLiteral("missing.prg")},
         2},
        {{QStringLiteral("commission"), QStringLiteral("x"), QStringLiteral("--serial-from"),
          QStringLiteral("2147483647")},
         2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.join(u' ').toStdString());
        QStringList args = c.args;
        if (args.contains(QStringLiteral("x")))
            args.replace(args.indexOf(QStringLiteral("x")), programme());
        const Outcome o = run(QStringLiteral("devices=2"), args);
        EXPECT_EQ(o.status, c.status) << o.err.toStdString();
        EXPECT_FALSE(o.err.isEmpty());
    }
}

} // namespace
} // namespace qv
