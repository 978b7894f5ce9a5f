#pragma once

// Whole-file reads and writes, and a scratch application folder holding a
// writable copy of the shipped config.xml, for the suites that work on files.
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace qv::test {

inline QByteArray readFile(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

inline void writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    ASSERT_EQ(f.write(bytes), bytes.size());
}

#ifdef QUORVEL_SHIPPED_CONFIG
class ScratchAppFolder {
public:
    ScratchAppFolder() {
        writeFile(configPath(), readFile(QStringLiteral(QUORVEL_SHIPPED_CONFIG)));
    }
    QString path() const { return dir_.path(); }
    QString filePath(const QString& name) const { return dir_.filePath(name); }
    QString configPath() const { return filePath(QStringLiteral("config.xml")); }

private:
    QTemporaryDir dir_;
};
#endif

} // namespace qv::test
