// quorvelctl --trace: the trace written on the tty link against quorvel-sim
// reads as the same words as the simulator's own trace of the run.
#include "CliTestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>

namespace qv::test {
namespace {

QStringList decodedWords(const QString& tracePath) {
    const Outcome run = quorvelctl({QStringLiteral("--json"), QStringLiteral("trace"), tracePath});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    QStringList words;
    const QJsonObject all = QJsonDocument::fromJson(run.out.toUtf8()).object();
    for (const QJsonValue& e : all[QStringLiteral("exchanges")].toArray())
        words << e.toObject()[QStringLiteral("words")].toString();
    return words;
}

TEST(TraceCommand, TheTtyLinksTraceDecodesAsTheSimulatorsOwn) {
    QTemporaryDir dir;
    const QString folder = dir.filePath(QStringLiteral("controllers"));
    const QString simTrace = dir.filePath(QStringLiteral("sim.trace"));
    const QString linkTrace = dir.filePath(QStringLiteral("link.trace"));
    QProcess sim;
    sim.start(QStringLiteral(QUORVEL_SIM_PATH),
              {QStringLiteral("--dir"), folder, QStringLiteral("--serial"), QStringLiteral("1234"),
               QStringLiteral("--trace"), simTrace});
    ASSERT_TRUE(sim.waitForReadyRead(10000)) << sim.readAllStandardError().toStdString();

    const QStringList common = {QStringLiteral("--app-dir"), dir.filePath(QStringLiteral("app")),
                                QStringLiteral("--link"),    QStringLiteral("tty:") + folder + "/*",
                                QStringLiteral("--trace"),   linkTrace};
    for (const QString& command :
         {QStringLiteral("devices"), QStringLiteral("identity"), QStringLiteral("eeprom read 40 3"),
          QStringLiteral("eeprom write 9 30"), QStringLiteral("clock read"),
          QStringLiteral("value read 2")}) {
        const Outcome run = quorvelctl(common + command.split(QLatin1Char(' ')));
        ASSERT_EQ(run.status, 0) << command.toStdString() << ": " << run.err.toStdString();
    }
    ::kill(static_cast<pid_t>(sim.processId()), SIGTERM);
    ASSERT_TRUE(sim.waitForFinished(5000));

    const QStringList fromLink = decodedWords(linkTrace);
    const QStringList fromSim = decodedWords(simTrace);
    EXPECT_GT(fromLink.size(), 10);
    EXPECT_EQ(fromLink.join('\n').toStdString(), fromSim.join('\n').toStdString());
    EXPECT_TRUE(fromLink.contains(QStringLiteral("read EEPROM 40 (counter 1) -> 0")));
    EXPECT_TRUE(fromLink.contains(QStringLiteral("legacy probe -> (silence)")));
    EXPECT_TRUE(fromLink.contains(
        QStringLiteral("write EEPROM 9 (manual action delay, low byte) <- 30 -> 30")));
}

} // namespace
} // namespace qv::test
