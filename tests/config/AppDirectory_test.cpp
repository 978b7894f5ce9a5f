#include "config/AppDirectory.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace qv {
namespace {

TEST(AppDirOptionParsing, FindsTheFolderAndKeepsTheRest) {
    struct Case {
        QStringList arguments;
        std::optional<QString> directory;
        QStringList remaining;
        bool error;
    };
    const QString q = QStringLiteral("quorvel");
    for (const Case& c : std::vector<Case>{
             {{q}, std::nullopt, {q}, false},
             {{q, "--app-dir", "/data/q", "read"}, "/data/q", {q, "read"}, false},
             {{q, "read", "--app-dir=/data/q"}, "/data/q", {q, "read"}, false},
             {{q, "--app-dir=/a", "--app-dir", "/b"}, "/b", {q}, false}, // the last one wins
             {{q, "--app-dir"}, std::nullopt, {q}, true},
             {{q, "--app-dir="}, std::nullopt, {q}, true},
             {{q, "--app-directory", "x"}, std::nullopt, {q, "--app-directory", "x"}, false}}) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        const AppDirOption option = parseAppDirOption(c.arguments);
        EXPECT_EQ(option.directory, c.directory);
        EXPECT_EQ(option.remaining, c.remaining);
        EXPECT_EQ(!option.error.isEmpty(), c.error);
    }
}

void writeAll(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
}

QByteArray readAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

class AppDirectoryTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        ASSERT_TRUE(QDir().mkpath(exeDir));
        writeAll(installed, "installed");
        sources.executableDirectory = exeDir;
        sources.userDirectory = userDir;
        sources.installedConfigs = {root.filePath("missing/config.xml"), installed};
    }

    // The folder chosen and the config it then holds.
    std::pair<QString, QByteArray> resolve() {
        const AppDirectoryResult r = resolveAppDirectory(sources);
        EXPECT_TRUE(r.ok()) << r.error.toStdString();
        return {r.directory, readAll(r.configPath())};
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
    writeAll(userDir + "/config.xml", "mine");
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

TEST_F(AppDirectoryTest, AConfigBesideTheProgramMakesItPortable) {
    writeAll(exeDir + "/config.xml", "portable");
    EXPECT_EQ(resolve(), std::make_pair(exeDir, QByteArray("portable")));
    EXPECT_FALSE(QFileInfo::exists(userDir));
}

TEST_F(AppDirectoryTest, AnExplicitFolderWinsAndIsCreatedAndSeeded) {
    // Seeded from the installed copy when the program has none beside it.
    sources.explicitDirectory = root.filePath("a");
    EXPECT_EQ(resolve(), std::make_pair(root.filePath("a"), QByteArray("installed")));
    // From the program's own copy when it has one; a folder's own config stays.
    writeAll(exeDir + "/config.xml", "shipped");
    sources.explicitDirectory = root.filePath("chosen/deep");
    EXPECT_EQ(resolve(), std::make_pair(root.filePath("chosen/deep"), QByteArray("shipped")));
    writeAll(root.filePath("own/config.xml"), "own");
    sources.explicitDirectory = root.filePath("own");
    EXPECT_EQ(resolve().second, "own");

    const QString file = root.filePath("plain");
    writeAll(file, "x");
    sources.explicitDirectory = file;
    const AppDirectoryResult r = resolveAppDirectory(sources);
    EXPECT_FALSE(r.ok());
    EXPECT_TRUE(r.error.contains(file)) << r.error.toStdString();
    EXPECT_EQ(readAll(file), "x");
}

TEST(AppDirectoryArguments, TheCommandLineIsParsedAndUsed) {
    const AppDirectoryResult missing = resolveAppDirectory(QStringList{"quorvel", "--app-dir"});
    EXPECT_FALSE(missing.ok());
    EXPECT_TRUE(missing.error.contains("--app-dir"));

    QTemporaryDir root;
    const QString chosen = root.filePath("chosen");
    writeAll(chosen + "/config.xml", "<Configuration/>");
    const AppDirectoryResult r = resolveAppDirectory(QStringList{"quorvel", "--app-dir", chosen});
    ASSERT_TRUE(r.ok()) << r.error.toStdString();
    EXPECT_EQ(r.directory, chosen);
}

} // namespace
} // namespace qv
