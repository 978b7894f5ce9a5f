#pragma once

// What the fuzz targets share: a scratch folder for the documents that the
// tool only reads from files, dialogs that answer OK, and the stop that
// turns a broken promise of the code into a finding.
#include "link/Dialogs.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QFile>
#include <QString>
#include <QTemporaryDir>
#include <cstdio>
#include <cstdlib>

namespace qv::fuzz {

// Qt wants an application object for its locale and file services.
inline void initialiseQt() {
    static int argc = 1;
    static char name[] = "quorvel-fuzz";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
}

// In memory where the system offers it: every save is synced to the disk,
// which would otherwise cost more than the parsing under test.
inline const QTemporaryDir& scratch() {
    static const QTemporaryDir dir(QFile::exists(QStringLiteral("/dev/shm"))
                                       ? QStringLiteral("/dev/shm/quorvel-fuzz-XXXXXX")
                                       : QString());
    return dir;
}

inline QString writeScratch(const QString& name, const QByteArray& bytes) {
    const QString path = scratch().filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        std::abort();
    return path;
}

[[noreturn]] inline void finding(const char* what) {
    std::fprintf(stderr, "finding: %s\n", what);
    std::abort();
}

class SilentDialogs : public Dialogs {
public:
    int message(const QString&, const QString&, int style) override {
        return (style & 7) == MsgBox::YesNo ? MsgBox::AnswerYes : MsgBox::AnswerOk;
    }
};

} // namespace qv::fuzz
