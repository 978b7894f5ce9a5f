// quorvelctl --trace and `trace FILE`: the trace written on the tty link
// against quorvel-sim reads as the same words as the simulator's own trace
// of the run, and a saved trace prints decoded with its summary.
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>

namespace {

struct CtlRun {
    int status = -1;
    QString out;
    QString err;
};

CtlRun quorvelctl(const QStringList& args) {
    QProcess p;
    p.start(QStringLiteral(QUORVELCTL_PATH), args);
    EXPECT_TRUE(p.waitForFinished(60000));
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

QStringList decodedWords(const QString& tracePath) {
    const CtlRun run = quorvelctl({QStringLiteral("--json"), QStringLiteral("trace"), tracePath});
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
        const CtlRun run = quorvelctl(common + command.split(QLatin1Char(' ')));
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

TEST(TraceCommand, ASavedTracePrintsDecodedWithItsSummary) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("customer.trace"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("0.010000 > FE 28 00 00 00 00 00 00 00 00 00 00 00 00 34 17 #1 @5 sent\n"
               "0.021000 < FE 07 00 13 #1 @5 bad-check\n"
               "0.031000 > FE 28 00 00 00 00 00 00 00 00 00 00 00 00 34 17 #2 @5 sent\n"
               "0.042000 < FE 07 00 12 #2 @5 answered\n");
    file.close();
    const CtlRun text = quorvelctl({QStringLiteral("trace"), path});
    ASSERT_EQ(text.status, 0) << text.err.toStdString();
    const QStringList lines = text.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 4) << text.out.toStdString();
    EXPECT_TRUE(lines[0].contains(QStringLiteral("#1  bad-check")));
    EXPECT_TRUE(
        lines[0].endsWith(QStringLiteral("read EEPROM 40 (counter 1) -> (bad check value)")));
    EXPECT_TRUE(lines[1].endsWith(QStringLiteral("read EEPROM 40 (counter 1) -> 7")));
    EXPECT_EQ(lines[2], QStringLiteral("exchanges: 1, failures: 0, retries: 1"));
    EXPECT_EQ(lines[3], QStringLiteral("time in pauses: 40.0 ms, time on the wire: 2.0 ms"));

    const CtlRun missing =
        quorvelctl({QStringLiteral("trace"), dir.filePath(QStringLiteral("none"))});
    EXPECT_EQ(missing.status, 2);
    EXPECT_TRUE(missing.err.contains(QStringLiteral("cannot read the trace")));
}

} // namespace
