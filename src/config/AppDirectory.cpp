#include "config/AppDirectory.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace qv {

namespace {

const QString configName = QStringLiteral("config.xml");

bool hasConfig(const QString& directory) {
    return QFileInfo(QDir(directory).filePath(configName)).isFile();
}

QString executableDirectory() {
    if (QCoreApplication::instance())
        return QCoreApplication::applicationDirPath();
    // Without an application object (tools, tests) the kernel still knows.
    return QFileInfo(QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath())
        .absolutePath();
}

// Copies the first existing candidate into `directory` as config.xml; the
// copy is written beside and renamed, so an interrupted seeding leaves no
// half file that would later be taken for a configuration.
QString seed(const QString& directory, const QStringList& candidates) {
    for (const QString& candidate : candidates) {
        if (!QFileInfo(candidate).isFile())
            continue;
        QFile source(candidate);
        if (!source.open(QIODevice::ReadOnly))
            return QStringLiteral("Cannot read %1: %2").arg(candidate, source.errorString());
        const QByteArray bytes = source.readAll();
        const QString target = QDir(directory).filePath(configName);
        QSaveFile file(target);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() ||
            !file.commit()) {
            return QStringLiteral("Cannot create %1 from %2: %3")
                .arg(target, candidate, file.errorString());
        }
        return {};
    }
    if (candidates.isEmpty())
        return QStringLiteral("%1 holds no config.xml, and no installed one is known to "
                              "copy into it")
            .arg(directory);
    return QStringLiteral("%1 holds no config.xml, and none of the installed ones (%2) "
                          "exists to copy into it")
        .arg(directory, candidates.join(QStringLiteral(", ")));
}

AppDirectoryResult useOrSeed(const QString& directory, const QStringList& candidates) {
    AppDirectoryResult result;
    result.directory = QDir(directory).absolutePath();
    const QFileInfo info(result.directory);
    if (info.exists() && !info.isDir()) {
        result.error = QStringLiteral("%1 is not a folder").arg(result.directory);
        return result;
    }
    if (!QDir().mkpath(result.directory)) {
        result.error = QStringLiteral("Cannot create the folder %1").arg(result.directory);
        return result;
    }
    if (!hasConfig(result.directory))
        result.error = seed(result.directory, candidates);
    return result;
}

} // namespace

AppDirOption parseAppDirOption(const QStringList& arguments) {
    static const QString option = QStringLiteral("--app-dir");
    AppDirOption result;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == option) {
            if (i + 1 >= arguments.size() || arguments[i + 1].isEmpty()) {
                result.error = QStringLiteral("--app-dir needs a folder");
                continue;
            }
            result.directory = arguments[++i];
        } else if (argument.startsWith(option + QLatin1Char('='))) {
            const QString value = argument.mid(option.size() + 1);
            if (value.isEmpty()) {
                result.error = QStringLiteral("--app-dir needs a folder");
                continue;
            }
            result.directory = value;
        } else {
            result.remaining.append(argument);
        }
    }
    return result;
}

AppDirectorySources defaultAppDirectorySources(std::optional<QString> explicitDirectory) {
    AppDirectorySources sources;
    sources.explicitDirectory = std::move(explicitDirectory);
    sources.executableDirectory = executableDirectory();
    const QString dataHome = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (!dataHome.isEmpty())
        sources.userDirectory = QDir(dataHome).filePath(QStringLiteral("quorvel"));
    sources.installedConfigs.append(QDir::cleanPath(
        sources.executableDirectory + QStringLiteral("/../share/quorvel/") + configName));
#ifdef QUORVEL_INSTALLED_CONFIG
    sources.installedConfigs.append(QStringLiteral(QUORVEL_INSTALLED_CONFIG));
#endif
    return sources;
}

AppDirectoryResult resolveAppDirectory(const AppDirectorySources& sources) {
    if (sources.explicitDirectory) {
        // The copy beside the executable is the one shipped with it, and in
        // the build tree the only one there is.
        QStringList candidates;
        if (!sources.executableDirectory.isEmpty())
            candidates.append(QDir(sources.executableDirectory).filePath(configName));
        candidates.append(sources.installedConfigs);
        return useOrSeed(*sources.explicitDirectory, candidates);
    }
    if (!sources.executableDirectory.isEmpty() && hasConfig(sources.executableDirectory)) {
        AppDirectoryResult result;
        result.directory = QDir(sources.executableDirectory).absolutePath();
        return result;
    }
    if (sources.userDirectory.isEmpty()) {
        AppDirectoryResult result;
        result.error = QStringLiteral("No config.xml beside the program, and no per-user folder "
                                      "to keep one in; give one with --app-dir");
        return result;
    }
    return useOrSeed(sources.userDirectory, sources.installedConfigs);
}

AppDirectoryResult resolveAppDirectory(const QStringList& arguments) {
    const AppDirOption option = parseAppDirOption(arguments);
    if (!option.error.isEmpty()) {
        AppDirectoryResult result;
        result.error = option.error;
        return result;
    }
    return resolveAppDirectory(defaultAppDirectorySources(option.directory));
}

} // namespace qv
