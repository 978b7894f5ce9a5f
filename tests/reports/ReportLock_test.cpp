// The production log is appended to by several processes at once; a block
// never lands inside another.
#include "reports/ReportBlock.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace qv {
namespace {

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
