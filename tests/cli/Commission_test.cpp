// quorvelctl on several simulated controllers at once: the commission and
// the one-controller commands with --device all or a list.
#include "CliTestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace qv::test {
namespace {

class SeveralDevicesTest : public ::testing::Test {
protected:
    QTemporaryDir dir;

    void SetUp() override {
        Condition c;
        c.sortie = 3, c.Temporisation = 300, c.Jour = 3, c.Heure = 6, c.Minute = 30;
        Conditions lines;
        lines.Add(c);
        programmeFile(programme(), lines);
    }

    QString programme() const { return dir.filePath(QStringLiteral("site.prg")); }

    // The lines quorvelctl printed, and how it ended.
    std::pair<Outcome, QStringList> run(const QString& sim, const QStringList& args) {
        const Outcome o =
            quorvelctl(QStringList{QStringLiteral("--app-dir"), dir.filePath(QStringLiteral("app")),
                                   QStringLiteral("--link"), QStringLiteral("sim:") + sim} +
                           args,
                       120000);
        return {o, o.lines()};
    }

    int blocksIn(const QString& log) {
        QFile f(dir.filePath(QStringLiteral("app/") + log));
        if (!f.open(QIODevice::ReadOnly))
            return 0;
        return static_cast<int>(
            f.readAll().count("\r\n------------------------------------------\r\n"));
    }
};

TEST_F(SeveralDevicesTest, AControllerPulledOutFailsAloneAndIsNamed) {
    const auto [o, out] = run(QStringLiteral("devices=3,restartMs=0,unplugAfter=20,serial=5000"),
                              {QStringLiteral("--json"), QStringLiteral("commission"), programme(),
                               QStringLiteral("--restart-wait"), QStringLiteral("0")});
    EXPECT_EQ(o.status, 1);
    ASSERT_EQ(out.size(), 4) << out.join(u'\n').toStdString();
    int failures = 0;
    qint64 failedId = 0;
    for (int i = 0; i < 3; ++i) {
        const QJsonObject line = QJsonDocument::fromJson(out[i].toUtf8()).object();
        if (!line.value(QStringLiteral("ok")).toBool()) {
            ++failures;
            failedId = line.value(QStringLiteral("id")).toInteger();
            EXPECT_EQ(line.value(QStringLiteral("failure")).toString(),
                      QStringLiteral("Quorvel not responding (Time Out)"));
            EXPECT_EQ(line.value(QStringLiteral("step")).toString(), QStringLiteral("Full read"));
        }
    }
    EXPECT_EQ(failures, 1);
    const QJsonObject summary = QJsonDocument::fromJson(out[3].toUtf8()).object();
    EXPECT_EQ(summary.value(QStringLiteral("succeeded")).toInt(), 2);
    EXPECT_EQ(summary.value(QStringLiteral("failed")).toArray().first().toInteger(), failedId);
    EXPECT_EQ(blocksIn(QStringLiteral("report.log")), 2);
}

TEST_F(SeveralDevicesTest, OneControllerCommandsRunOnAListAndLabelTheirOutput) {
    const QString sim = QStringLiteral("devices=3,serial=100,state=%1/sim.json").arg(dir.path());
    const QString first = QString::number(0x5A000001), third = QString::number(0x5A000003);
    const auto [o, out] = run(sim, {QStringLiteral("--device"), third + QLatin1Char(',') + first,
                                    QStringLiteral("eeprom"), QStringLiteral("write"),
                                    QStringLiteral("30"), QStringLiteral("9")});
    ASSERT_EQ(o.status, 0) << o.err.toStdString();
    EXPECT_EQ(out,
              (QStringList{third + QStringLiteral(": 30 9"), first + QStringLiteral(": 30 9")}));

    // The second was left alone by the write.
    const auto read = [&](const QString& device) {
        return run(sim, {QStringLiteral("--device"), device, QStringLiteral("eeprom"),
                         QStringLiteral("read"), QStringLiteral("30")})
            .second;
    };
    EXPECT_NE(read(QString::number(0x5A000002)), QStringList{QStringLiteral("30 9")});
    EXPECT_EQ(read(third), QStringList{QStringLiteral("30 9")});
}

} // namespace
} // namespace qv::test
