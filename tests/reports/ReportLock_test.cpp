// The production log is appended to by several controllers' threads and by
// several processes at once; a block never lands inside another.
#include "reports/ReportBlock.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <thread>

namespace qv {
namespace {

TEST(ReportLock, ManyThreadsAppendingGiveWholeBlocks) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("2.log"));
    QStringList block;
    for (int i = 0; i < 200; ++i)
        block << QStringLiteral("line %1 ").arg(i).repeated(40);
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&, t] {
            QStringList mine = block;
            for (QString& line : mine)
                line.prepend(QString::number(t));
            for (int n = 0; n < 5; ++n)
                appendReport(path, mine);
        });
    for (auto& t : threads)
        t.join();
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromLatin1(f.readAll()).split(QStringLiteral("\r\n"));
    ASSERT_EQ(lines.size(), 8 * 5 * 200 + 1);
    for (int start = 0; start + 200 <= lines.size() - 1; start += 200) {
        const QChar owner = lines[start].front();
        for (int i = 0; i < 200; ++i)
            ASSERT_EQ(lines[start + i], owner + block[i]) << start + i;
    }
}

TEST(ReportLock, TwoReportProcessesAtOnceGiveTwoWholeBlocks) {
    QTemporaryDir dir;
    QList<QProcess*> processes;
    for (int i = 0; i < 2; ++i) {
        auto* p = new QProcess;
        processes << p;
        p->start(QStringLiteral(QUORVELCTL_PATH),
                 {QStringLiteral("--app-dir"), dir.path(), QStringLiteral("--link"),
                  QStringLiteral("sim:devices=1,serial=%1").arg(90601000 + i),
                  QStringLiteral("report"), QStringLiteral("--order"), QStringLiteral("55"),
                  QStringLiteral("--comment"), QStringLiteral("process %1").arg(i)});
    }
    for (QProcess* p : processes) {
        EXPECT_TRUE(p->waitForFinished(60000));
        EXPECT_EQ(p->exitCode(), 0) << p->readAllStandardError().toStdString();
        delete p;
    }
    QFile f(QDir(dir.path()).filePath(QStringLiteral("55.log")));
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromLatin1(f.readAll()).split(QStringLiteral("\r\n"));
    ASSERT_EQ(lines.size() % 2, 1);
    const int half = static_cast<int>(lines.size()) / 2;
    QStringList comments;
    for (int b = 0; b < 2; ++b) {
        EXPECT_EQ(lines[b * half], QStringLiteral(" "));
        EXPECT_EQ(lines[b * half + 1],
                  QStringLiteral("------------------------------------------"));
        EXPECT_EQ(lines[b * half + 4], QStringLiteral("Order number 55"));
        comments << lines[b * half + half - 2];
    }
    comments.sort();
    EXPECT_EQ(comments, (QStringList{QStringLiteral("process 0"), QStringLiteral("process 1")}));
}

} // namespace
} // namespace qv
