#pragma once

#include <QString>
#include <QStringList>
#include <optional>

// The application directory: the folder that holds config.xml, the programme
// files and the reports. The legacy program used the folder of its
// executable, which an installed program cannot write to; the folder is
// therefore chosen as follows, first match wins:
//
//  1. `--app-dir DIR` on the command line. DIR is created when missing, and
//     seeded with the shipped config.xml when it holds none.
//  2. The executable's folder, when it holds a config.xml: a portable copy,
//     or the build tree.
//  3. A per-user folder (~/.local/share/quorvel, or under $XDG_DATA_HOME),
//     seeded once with the installed config.xml.

namespace qv {

struct AppDirOption {
    std::optional<QString> directory; // the last `--app-dir` given, if any
    QStringList remaining;            // the arguments without the option
    QString error;                    // set when `--app-dir` lacks its folder
};

// Finds `--app-dir DIR` and `--app-dir=DIR` in a command line.
AppDirOption parseAppDirOption(const QStringList& arguments);

struct AppDirectorySources {
    std::optional<QString> explicitDirectory;
    QString executableDirectory;
    QString userDirectory;
    // Installed copies of config.xml to seed a new folder from, in order of
    // preference; the first that exists is taken.
    QStringList installedConfigs;
};

// The sources of this process: the executable's folder, the per-user folder,
// and `<exe dir>/../share/quorvel/config.xml` and QUORVEL_INSTALLED_CONFIG
// (when the build defines it) as installed copies.
AppDirectorySources defaultAppDirectorySources(std::optional<QString> explicitDirectory = {});

struct AppDirectoryResult {
    QString directory; // absolute; holds a config.xml when ok()
    QString error;     // why no folder could be used, for the operator

    bool ok() const { return error.isEmpty(); }
    QString configPath() const { return directory + QStringLiteral("/config.xml"); }
};

AppDirectoryResult resolveAppDirectory(const AppDirectorySources& sources);

// The whole choice for a command line (program name first, as
// QCoreApplication::arguments() gives it).
AppDirectoryResult resolveAppDirectory(const QStringList& arguments);

} // namespace qv
