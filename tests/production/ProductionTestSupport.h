#pragma once

#include "ProgrammeLines.h"
#include "SimulatedBus.h"
#include "TestFiles.h"
#include "config/ConfigDocument.h"
#include "production/ProductionRun.h"
#include "programme/Conditions.h"
#include "programme/ProgrammeStore.h"

#include <QDir>
#include <QFile>
#include <QStringList>
#include <gtest/gtest.h>

namespace qv::test {

// The blocks of a production log, split at their dashed line.
inline std::vector<QStringList> reportBlocks(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromLatin1(file.readAll()).split(QStringLiteral("\r\n"));
    std::vector<QStringList> blocks;
    for (int i = 0; i < lines.size(); ++i) {
        if (lines[i] == QStringLiteral("------------------------------------------")) {
            // The blank line before the dashes opens the new block.
            if (!blocks.empty())
                blocks.back().removeLast();
            blocks.emplace_back();
            blocks.back() << lines[i - 1];
        }
        if (!blocks.empty())
            blocks.back() << lines[i];
    }
    if (!blocks.empty() && blocks.back().last().isEmpty())
        blocks.back().removeLast(); // after the last line end
    return blocks;
}

// The application folder of a bench: the shipped config.xml and a
// programme file made of it.
class BenchFolder {
public:
    BenchFolder() {
        writeFile(programmePath(), readFile(configPath()));
        SauveConditions(ConfigDocument(programmePath()), siteProgramme());
    }
    QString path() const { return dir.path(); }
    QString configPath() const { return dir.configPath(); }
    QString programmePath() const { return dir.filePath(QStringLiteral("site.prg")); }
    QString logPath(const QString& order) const {
        return dir.filePath(order + QStringLiteral(".log"));
    }

private:
    ScratchAppFolder dir;
};

} // namespace qv::test
