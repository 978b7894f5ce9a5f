#include "TestFiles.h"
#include "config/AppDirectory.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace qv {
namespace {

using test::readFile;
using test::writeFile;

class AppDirectoryTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        ASSERT_TRUE(QDir().mkpath(exeDir));
        writeFile(installed, "installed");
        sources.executableDirectory = exeDir;
        sources.userDirectory = userDir;
        sources.installedConfigs = {root.filePath("missing/config.xml"), installed};
    }

    // The folder chosen and the config it then holds.
    std::pair<QString, QByteArray> resolve() {
        const AppDirectoryResult r = resolveAppDirectory(sources);
        EXPECT_TRUE(r.ok()) << r.error.toStdString();
        return {r.directory, readFile(r.configPath())};
    }

    QTemporaryDir root;
    QString exeDir = root.filePath("bin");
    QString userDir = root.filePath("home/.local/share/quorvel");
    QString installed = root.filePath("share/quorvel/config.xml");
    AppDirectorySources sources;
};

TEST_F(AppDirectoryTest, TheUserFolderIsSeededOnceFromTheInstalledCopy) {
    EXPECT_EQ(resolve(), std::make_pair(userDir, QByteArray("installed")));
    // The user's own changes are never overwritten by a later start.
    writeFile(userDir + "/config.xml", "mine");
    EXPECT_EQ(resolve().second, "mine");

    // With nothing to seed from, the error names both places and no config is made.
    sources.installedConfigs = {root.filePath("missing/config.xml")};
    sources.userDirectory = root.filePath("other");
    const AppDirectoryResult r = resolveAppDirectory(sources);
    EXPECT_FALSE(r.ok());
    EXPECT_TRUE(r.error.contains(sources.userDirectory)) << r.error.toStdString();
    EXPECT_TRUE(r.error.contains("missing/config.xml")) << r.error.toStdString();
    EXPECT_FALSE(QFileInfo::exists(sources.userDirectory + "/config.xml"));
}

} // namespace
} // namespace qv
