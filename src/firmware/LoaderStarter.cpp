#include "LoaderStarter.h"

#include "FirmwareCheck.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <cstdio>

namespace qv {

namespace {

QString withoutTrailingSeparator(QString directory) {
    while (directory.size() > 1 &&
           (directory.endsWith(QLatin1Char('/')) || directory.endsWith(QLatin1Char('\\'))))
        directory.chop(1);
    return directory;
}

bool isWindowsProgram(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    return file.read(2) == "MZ";
}

bool isExecutableFile(const QFileInfo& info) {
    return info.isFile() && info.isExecutable();
}

} // namespace

QStringList loaderArguments(const QString& applicationDirectory, const QString& commandLine) {
    const QString loaderPath =
        withoutTrailingSeparator(applicationDirectory) + QLatin1Char('\\') + kLoaderProgram;
    QString rest;
    if (commandLine.startsWith(loaderPath)) {
        rest = commandLine.mid(loaderPath.size());
    } else {
        const QString trimmed = commandLine.trimmed();
        const qsizetype blank = trimmed.indexOf(QRegularExpression(QStringLiteral("[ \\t]")));
        rest = blank < 0 ? QString() : trimmed.mid(blank);
    }
    static const QRegularExpression blanks(QStringLiteral("[ \\t]+"));
    return rest.split(blanks, Qt::SkipEmptyParts);
}

LoaderPlan planLoaderStart(const QString& applicationDirectory, const QString& commandLine,
                           const std::function<QString(const QString&)>& findExecutable) {
    const QDir directory(applicationDirectory);
    const QStringList arguments = loaderArguments(applicationDirectory, commandLine);
    const QString exe = directory.filePath(kLoaderProgram);
    const QString native = directory.filePath(QFileInfo(kLoaderProgram).completeBaseName());

    if (isExecutableFile(QFileInfo(native)))
        return {LoaderInvocation{native, arguments}, QString()};

    const QFileInfo exeInfo(exe);
    if (!exeInfo.isFile())
        return {std::nullopt, QStringLiteral("no %1 (nor %2) in %3")
                                  .arg(kLoaderProgram, QFileInfo(native).fileName(),
                                       QDir::toNativeSeparators(applicationDirectory))};
    if (isWindowsProgram(exe)) {
        const QString wine = findExecutable ? findExecutable(QStringLiteral("wine")) : QString();
        if (wine.isEmpty())
            return {std::nullopt,
                    QStringLiteral("%1 is a Windows program and wine is not on PATH").arg(exe)};
        return {LoaderInvocation{wine, QStringList{exe} + arguments}, QString()};
    }
    if (isExecutableFile(exeInfo))
        return {LoaderInvocation{exe, arguments}, QString()};
    return {std::nullopt, QStringLiteral("%1 is not executable").arg(exe)};
}

NativeLoaderStarter::NativeLoaderStarter(QString applicationDirectory,
                                         std::function<void(const QString&)> diagnostic)
    : applicationDirectory_(std::move(applicationDirectory)), diagnostic_(std::move(diagnostic)) {
    if (!diagnostic_)
        diagnostic_ = [](const QString& line) {
            std::fprintf(stderr, "quorvel: %s\n", qUtf8Printable(line));
            std::fflush(stderr);
        };
}

void NativeLoaderStarter::start(const QString& commandLine) {
    const LoaderPlan plan =
        planLoaderStart(applicationDirectory_, commandLine,
                        [](const QString& n) { return QStandardPaths::findExecutable(n); });
    if (!plan.invocation) {
        diagnostic_(QStringLiteral("firmware loader not started: %1").arg(plan.problem));
        return;
    }
    if (!QProcess::startDetached(plan.invocation->program, plan.invocation->arguments))
        diagnostic_(QStringLiteral("firmware loader not started: %1 could not be run")
                        .arg(plan.invocation->program));
}

} // namespace qv
