// quorvel-sim and quorvelctl as a user runs them: simulated controllers in
// one process behind pseudo-terminals, reached over the tty link from
// another, exactly as controllers that present themselves as serial ports.
#include <QDir>
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

TEST_F(QuorvelSimTest, AStopSavesTheStateAndRemovesTheLinksAndTheTraceIsKept) {
    const QString trace = dir.filePath(QStringLiteral("trace.txt"));
    const QString args =
        "--state " + dir.filePath(QStringLiteral("state.json")) + " --trace " + trace;
    start(args, 1);
    const Outcome written = ctl("eeprom write 9 30");
    ASSERT_EQ(written.status, 0) << written.err.toStdString();
    EXPECT_EQ(stop(SIGTERM), 0);
    EXPECT_TRUE(QDir(folder).entryList(QDir::System | QDir::Files).isEmpty());

    QFile traceFile(trace);
    ASSERT_TRUE(traceFile.open(QIODevice::ReadOnly));
    const QString traced = QString::fromUtf8(traceFile.readAll());
    EXPECT_TRUE(traced.contains(QStringLiteral(" > FF 09 1E"))) << traced.toStdString();
    EXPECT_TRUE(traced.contains(QStringLiteral(" < "))) << traced.toStdString();

    // The next run starts from the saved controller; SIGINT stops it too.
    start(args, 1);
    const Outcome read = ctl("eeprom read 9");
    EXPECT_EQ(read.out, QStringLiteral("9 30\n")) << read.err.toStdString();
    EXPECT_EQ(stop(SIGINT), 0);
}

TEST_F(QuorvelSimTest, FaultOptionsReachTheControllers) {
    start("--corrupt 3", 1);
    const Outcome r = ctl("eeprom read 9");
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.err.contains(QStringLiteral("CRC error"))) << r.err.toStdString();
    // Three damaged replies, then the controller is well again.
    const Outcome again = ctl("eeprom read 9");
    EXPECT_EQ(again.status, 0) << again.err.toStdString();
}

TEST_F(QuorvelSimTest, ALateReplyIsNeverTakenForTheNextOne) {
    // Whichever exchange of the run the late reply belongs to, every value
    // read is the one asked for.
    for (const int late : {1, 2, 3, 4, 5}) {
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

TEST_F(QuorvelSimTest, WrongCommandLinesAreRefused) {
    for (const auto& [args, errorContains] : {std::pair{"", "--dir"},
                                              {"--dir /tmp/x --colour red", "colour"},
                                              {"--dir /tmp/x --devices 99", "devices"},
                                              {"stray", "stray"}}) {
        QProcess p;
        p.start(QStringLiteral(QUORVEL_SIM_PATH), words(QString::fromLatin1(args)));
        ASSERT_TRUE(p.waitForFinished(10000));
        EXPECT_EQ(p.exitCode(), 2) << args;
        EXPECT_TRUE(
            QString::fromUtf8(p.readAllStandardError()).contains(QLatin1String(errorContains)))
            << args;
    }
}

TEST(QuorvelctlUsb, WithoutControllersTheListIsEmptyAndTheRunSucceeds) {
    QTemporaryDir dir;
    // An id no device has, so that a controller on the test machine does
    // not change the answer.
    const QString table = dir.filePath(QStringLiteral("ids.conf"));
    QFile file(table);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("1209:0fff\n");
    file.close();
    for (const QString& link : {"usb:ids=" + table, QStringLiteral("usb")}) {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("QUORVEL_USB_IDS"), table);
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(QUORVELCTL_PATH),
                words("--app-dir " + dir.path() + " --link " + link + " devices"));
        ASSERT_TRUE(p.waitForFinished(30000));
        EXPECT_EQ(p.exitCode(), 0) << p.readAllStandardError().toStdString();
        EXPECT_TRUE(p.readAllStandardOutput().isEmpty());
    }
}

} // namespace
