#pragma once

#include "TestFiles.h"
#include "config/ConfigDocument.h"
#include "programme/Conditions.h"
#include "programme/ProgrammeStore.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <gtest/gtest.h>

namespace qv::test {

// One quorvelctl run as a technician makes it, in a process of its own.
struct Outcome {
    int status = -1;
    QProcess::ExitStatus exit = QProcess::CrashExit;
    QString out;
    QString err;
    qint64 elapsedMs = 0;

    QStringList lines() const { return out.split(QLatin1Char('\n'), Qt::SkipEmptyParts); }
};

inline Outcome quorvelctl(const QStringList& args, int timeoutMs = 60000) {
    QProcess process;
    QElapsedTimer timer;
    timer.start();
    process.start(QStringLiteral(QUORVELCTL_PATH), args);
    if (!process.waitForFinished(timeoutMs)) {
        ADD_FAILURE() << "quorvelctl " << args.join(QLatin1Char(' ')).toStdString() << " hung";
        process.kill();
        process.waitForFinished();
    }
    return {process.exitCode(), process.exitStatus(),
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError()), timer.elapsed()};
}

// A programme file as the editor saves one: a copy of config.xml with these
// lines.
inline QString programmeFile(const QString& path, const Conditions& lines) {
    writeFile(path, readFile(QStringLiteral(QUORVEL_SHIPPED_CONFIG)));
    SauveConditions(ConfigDocument(path), lines);
    return path;
}

} // namespace qv::test
