// quorvelctl report: a full read of a simulated controller, then the block.
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct Outcome {
    int status = -1;
    QString out;
    QString err;
};

class ReportCommandTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString link;

    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        link = QStringLiteral("sim:devices=1,serial=90601234,restartMs=0,state=%1/sim.json")
                   .arg(dir.path());
    }

    Outcome run(const QStringList& args) {
        QProcess process;
        process.start(
            QStringLiteral(QUORVELCTL_PATH),
            QStringList{QStringLiteral("--app-dir"), dir.path(), QStringLiteral("--link"), link} +
                args);
        EXPECT_TRUE(process.waitForFinished(60000));
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    QStringList lines(const QString& path) const {
        QFile f(path);
        if (!f.open(QIODevice::ReadOnly))
            return {};
        QStringList l = QString::fromLatin1(f.readAll()).split(QStringLiteral("\r\n"));
        if (!l.isEmpty() && l.last().isEmpty())
            l.removeLast();
        return l;
    }
};

TEST_F(ReportCommandTest, ReportCommandAppendsWhatAFullReadShows) {
    const QStringList args{QStringLiteral("report"), QStringLiteral("--order"),
                           QStringLiteral("1234"), QStringLiteral("--comment"),
                           QStringLiteral("bench 3")};
    const Outcome first = run(args);
    ASSERT_EQ(first.status, 0) << first.err.toStdString();
    const QString path = QDir(dir.path()).filePath(QStringLiteral("1234.log"));
    EXPECT_EQ(first.out, QStringLiteral("report appended to %1\n").arg(path));
    ASSERT_EQ(run(args).status, 0);

    const QStringList l = lines(path);
    ASSERT_EQ(l.size() % 2, 0);
    const int half = static_cast<int>(l.size()) / 2;
    EXPECT_EQ(l[1], QStringLiteral("------------------------------------------"));
    EXPECT_EQ(l[half + 1], QStringLiteral("------------------------------------------"));
    EXPECT_EQ(l[4], QStringLiteral("Order number 1234"));
    EXPECT_EQ(l[6], QStringLiteral("Version : Quorvel 2.70"));
    EXPECT_TRUE(l[7].endsWith(QStringLiteral(" : 90601234"))) << l[7].toStdString();
    EXPECT_EQ(l[half - 3], QStringLiteral("Bistable valve:Closed"));
    EXPECT_EQ(l[half - 2], QStringLiteral("bench 3"));
}

TEST_F(ReportCommandTest, ReportCommandFileAndOrderOptions) {
    const QString other = QDir(dir.path()).filePath(QStringLiteral("elsewhere.txt"));
    EXPECT_EQ(run({QStringLiteral("report"), QStringLiteral("--order"), QStringLiteral("1"),
                   QStringLiteral("--file"), other})
                  .status,
              0);
    EXPECT_EQ(lines(other).value(4), QStringLiteral("Order number 1"));
    EXPECT_FALSE(QFile::exists(QDir(dir.path()).filePath(QStringLiteral("1.log"))));

    EXPECT_EQ(
        run({QStringLiteral("report"), QStringLiteral("--order="), QStringLiteral("--comment=")})
            .status,
        0);
    EXPECT_EQ(lines(QDir(dir.path()).filePath(QStringLiteral("report.log"))).value(4),
              QStringLiteral("Order number "));

    const Outcome missing = run({QStringLiteral("report")});
    EXPECT_EQ(missing.status, 2);
    EXPECT_TRUE(missing.err.contains(QStringLiteral("You must enter an order number")))
        << missing.err.toStdString();
}

} // namespace
