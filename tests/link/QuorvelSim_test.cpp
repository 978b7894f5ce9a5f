// quorvel-sim and quorvelctl as a user runs them: simulated controllers in
// one process behind pseudo-terminals, reached over the tty link from
// another, exactly as controllers that present themselves as serial ports.
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <csignal>
#include <gtest/gtest.h>

namespace {

struct Outcome {
    int status = -1;
    QProcess::ExitStatus exit = QProcess::CrashExit;
    QString out;
    QString err;
};

// A command line written as one text, its words split at the spaces.
QStringList words(const QString& line) {
    return line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

class QuorvelSimTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString folder = dir.filePath(QStringLiteral("controllers"));
    std::unique_ptr<QProcess> sim;

    void TearDown() override {
        if (sim && sim->state() != QProcess::NotRunning) {
            sim->kill();
            sim->waitForFinished(5000);
        }
    }

    // Starts quorvel-sim and waits for it to print its `count` links.
    QStringList start(const QString& args, int count) {
        sim = std::make_unique<QProcess>();
        sim->start(QStringLiteral(QUORVEL_SIM_PATH), words("--dir " + folder + " " + args));
        EXPECT_TRUE(sim->waitForStarted(5000));
        QStringList links;
        QElapsedTimer timer;
        timer.start();
        while (links.size() < count && timer.elapsed() < 10000) {
            if (!sim->canReadLine() && !sim->waitForReadyRead(1000))
                continue;
            while (sim->canReadLine())
                links << QString::fromUtf8(sim->readLine()).trimmed();
        }
        EXPECT_EQ(links.size(), count) << sim->readAllStandardError().toStdString();
        return links;
    }

    std::unique_ptr<QProcess> startCtl(const QString& args) {
        auto p = std::make_unique<QProcess>();
        p->start(
            QStringLiteral(QUORVELCTL_PATH),
            words(QStringLiteral("--app-dir %1 --link tty:%2/* ").arg(dir.path(), folder) + args));
        return p;
    }

    Outcome ctl(const QString& args) {
        auto p = startCtl(args);
        EXPECT_TRUE(p->waitForFinished(60000));
        return {p->exitCode(), p->exitStatus(), QString::fromUtf8(p->readAllStandardOutput()),
                QString::fromUtf8(p->readAllStandardError())};
    }

    // Stops quorvel-sim as an operator would.
    int stop(int signal) {
        ::kill(static_cast<pid_t>(sim->processId()), signal);
        EXPECT_TRUE(sim->waitForFinished(5000));
        EXPECT_EQ(sim->exitStatus(), QProcess::NormalExit);
        return sim->exitCode();
    }
};

TEST_F(QuorvelSimTest, TheCommandLineSeesTheControllersAsItSeesHardware) {
    const QStringList links = start("--devices 2 --serial 1234", 2);
    ASSERT_EQ(links, QStringList({folder + "/quorvel-0", folder + "/quorvel-1"}));
    for (const QString& l : links)
        EXPECT_TRUE(QFileInfo(l).symLinkTarget().startsWith(QStringLiteral("/dev/pts/")));

    const Outcome devices = ctl("--json devices");
    ASSERT_EQ(devices.status, 0) << devices.err.toStdString();
    const QJsonArray lines = QJsonDocument::fromJson(devices.out.toUtf8()).array();
    ASSERT_EQ(lines.size(), 2) << devices.out.toStdString();
    EXPECT_EQ(lines[0].toObject()["text"].toString(), "Quorvel : (12) 2.70     BL V 103-->1234");
    EXPECT_EQ(lines[1].toObject()["text"].toString(), "Quorvel : (12) 2.70     BL V 103-->1235");

    const Outcome identity =
        ctl("--device " + QString::number(lines[1].toObject()["id"].toInteger()) + " identity");
    ASSERT_EQ(identity.status, 0) << identity.err.toStdString();
    EXPECT_TRUE(identity.out.contains(QStringLiteral("Version:     (12) 2.70")));
    EXPECT_TRUE(identity.out.contains(QStringLiteral("Serial:      1235")));

    const Outcome memory = ctl("eeprom read 16 4");
    ASSERT_EQ(memory.status, 0) << memory.err.toStdString();
    EXPECT_EQ(memory.out, QStringLiteral("16 210\n17 4\n18 0\n19 0\n"));
}

TEST_F(QuorvelSimTest, ALateReplyIsNeverTakenForTheNextOne) {
    // Whichever exchange of the run the late reply belongs to, every value
    // read is the one asked for.
    for (const int late : {1, 3}) {
        SCOPED_TRACE(late);
        start(QStringLiteral("--serial 1234 --late %1 --lateMs 400").arg(late), 1);
        const Outcome memory = ctl("eeprom read 16 4");
        ASSERT_EQ(memory.status, 0) << memory.err.toStdString();
        EXPECT_EQ(memory.out, QStringLiteral("16 210\n17 4\n18 0\n19 0\n"));
        EXPECT_EQ(stop(SIGTERM), 0);
    }
}

TEST_F(QuorvelSimTest, AControllerProcessKilledMidExchangeGivesTimeOutNotAHang) {
    const QString trace = dir.filePath(QStringLiteral("trace.txt"));
    start("--trace " + trace, 1);
    auto reading = startCtl("eeprom read 0 300");
    ASSERT_TRUE(reading->waitForStarted(5000));
    // Let a few exchanges through, then pull the plug without warning.
    const auto exchanges = [&] {
        QFile file(trace);
        return file.open(QIODevice::ReadOnly) ? file.readAll().count('\n') / 2 : 0;
    };
    QElapsedTimer timer;
    timer.start();
    while (exchanges() < 10 && timer.elapsed() < 10000)
        QThread::msleep(10);
    ASSERT_GE(exchanges(), 10);
    sim->kill();
    ASSERT_TRUE(sim->waitForFinished(5000));
    timer.restart();
    ASSERT_TRUE(reading->waitForFinished(15000));
    EXPECT_LT(timer.elapsed(), 5000);
    EXPECT_EQ(reading->exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(reading->exitCode(), 1);
    const QString err = QString::fromUtf8(reading->readAllStandardError());
    EXPECT_TRUE(err.contains(QStringLiteral("(Time Out)"))) << err.toStdString();
    const auto out = reading->readAllStandardOutput().count('\n');
    EXPECT_GE(out, 5);
    EXPECT_LT(out, 300);

    // The links it left behind lead nowhere: no device, and no wait.
    const Outcome after = ctl("devices");
    EXPECT_EQ(after.status, 0);
    EXPECT_TRUE(after.out.isEmpty()) << after.out.toStdString();
}

} // namespace
