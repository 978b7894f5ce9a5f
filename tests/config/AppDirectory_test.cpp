#include "config/AppDirectory.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace qv {
namespace {

struct OptionCase {
    QStringList arguments;
    std::optional<QString> directory;
    QStringList remaining;
    bool error;
};

class AppDirOptionParsing : public ::testing::TestWithParam<OptionCase> {};

TEST_P(AppDirOptionParsing, FindsTheFolderAndKeepsTheRest) {
    const auto& c = GetParam();
    const AppDirOption option = parseAppDirOption(c.arguments);
    EXPECT_EQ(option.directory, c.directory);
    EXPECT_EQ(option.remaining, c.remaining);
    EXPECT_EQ(!option.error.isEmpty(), c.error) << option.error.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, AppDirOptionParsing,
    ::testing::Values(
        OptionCase{{"quorvel"}, std::nullopt, {"quorvel"}, false},
        OptionCase{
            {"quorvel", "--app-dir", "/data/q", "read"}, "/data/q", {"quorvel", "read"}, false},
        OptionCase{{"quorvel", "read", "--app-dir=/data/q"}, "/data/q", {"quorvel", "read"}, false},
        OptionCase{{"quorvel", "--app-dir=/a", "--app-dir", "/b"}, "/b", {"quorvel"}, false},
        OptionCase{{"quorvel", "--app-dir=a b"}, "a b", {"quorvel"}, false},
        OptionCase{{"quorvel", "--app-dir"}, std::nullopt, {"quorvel"}, true},
        OptionCase{{"quorvel", "--app-dir="}, std::nullopt, {"quorvel"}, true},
        OptionCase{{"quorvel", "--app-directory", "x"},
                   std::nullopt,
                   {"quorvel", "--app-directory", "x"},
                   false}));

void writeAll(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(f.write(bytes), bytes.size());
}

QByteArray readAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

class AppDirectoryTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(root.isValid());
        exeDir = root.filePath("bin");
        userDir = root.filePath("home/.local/share/quorvel");
        installed = root.filePath("share/quorvel/config.xml");
        ASSERT_TRUE(QDir().mkpath(exeDir));
        ASSERT_TRUE(QDir().mkpath(QFileInfo(installed).path()));
        writeAll(installed, "<Configuration>installed</Configuration>");
        sources.executableDirectory = exeDir;
        sources.userDirectory = userDir;
        sources.installedConfigs = {root.filePath("missing/config.xml"), installed};
    }

    QTemporaryDir root;
    QString exeDir;
    QString userDir;
    QString installed;
    AppDirectorySources sources;
};

TEST_F(AppDirectoryTest, AConfigBesideTheProgramMakesItPortable) {
    writeAll(exeDir + "/config.xml", "<Configuration>portable</Configuration>");
    const AppDirectoryResult result = resolveAppDirectory(sources);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(result.directory, exeDir);
    EXPECT_FALSE(QFileInfo::exists(userDir));
}

TEST_F(AppDirectoryTest, OtherwiseTheUserFolderIsSeededOnceFromTheInstalledCopy) {
    AppDirectoryResult result = resolveAppDirectory(sources);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(result.directory, userDir);
    EXPECT_EQ(readAll(result.configPath()), "<Configuration>installed</Configuration>");

    // The user's own changes are never overwritten by a later start.
    writeAll(result.configPath(), "<Configuration>mine</Configuration>");
    result = resolveAppDirectory(sources);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(readAll(result.configPath()), "<Configuration>mine</Configuration>");
}

TEST_F(AppDirectoryTest, WithNothingToSeedFromTheErrorSaysSoAndNoConfigIsMade) {
    sources.installedConfigs = {root.filePath("missing/config.xml")};
    const AppDirectoryResult result = resolveAppDirectory(sources);
    EXPECT_FALSE(result.ok());
    EXPECT_TRUE(result.error.contains(userDir)) << result.error.toStdString();
    EXPECT_TRUE(result.error.contains("missing/config.xml")) << result.error.toStdString();
    EXPECT_FALSE(QFileInfo::exists(userDir + "/config.xml"));
}

TEST_F(AppDirectoryTest, AnExplicitFolderWinsAndIsCreatedAndSeededFromTheProgramsCopy) {
    writeAll(exeDir + "/config.xml", "<Configuration>shipped</Configuration>");
    sources.explicitDirectory = root.filePath("chosen/deep");
    const AppDirectoryResult result = resolveAppDirectory(sources);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(result.directory, root.filePath("chosen/deep"));
    EXPECT_EQ(readAll(result.configPath()), "<Configuration>shipped</Configuration>");
}

TEST_F(AppDirectoryTest, AnExplicitFolderWithItsOwnConfigIsLeftAsItIs) {
    const QString chosen = root.filePath("chosen");
    ASSERT_TRUE(QDir().mkpath(chosen));
    writeAll(chosen + "/config.xml", "<Configuration>own</Configuration>");
    sources.explicitDirectory = chosen;
    const AppDirectoryResult result = resolveAppDirectory(sources);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(readAll(result.configPath()), "<Configuration>own</Configuration>");
}

TEST_F(AppDirectoryTest, AnExplicitFolderFallsBackOnTheInstalledCopy) {
    sources.explicitDirectory = root.filePath("chosen");
    const AppDirectoryResult result = resolveAppDirectory(sources);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(readAll(result.configPath()), "<Configuration>installed</Configuration>");
}

TEST_F(AppDirectoryTest, AnExplicitPathThatIsAFileIsAnError) {
    const QString file = root.filePath("plain");
    writeAll(file, "x");
    sources.explicitDirectory = file;
    const AppDirectoryResult result = resolveAppDirectory(sources);
    EXPECT_FALSE(result.ok());
    EXPECT_TRUE(result.error.contains(file)) << result.error.toStdString();
    EXPECT_EQ(readAll(file), "x");
}

TEST(AppDirectoryArguments, AMissingFolderAfterTheOptionIsReported) {
    const AppDirectoryResult result = resolveAppDirectory(QStringList{"quorvel", "--app-dir"});
    EXPECT_FALSE(result.ok());
    EXPECT_TRUE(result.error.contains("--app-dir"));
}

TEST(AppDirectoryArguments, TheFolderGivenOnTheCommandLineIsUsed) {
    QTemporaryDir root;
    ASSERT_TRUE(root.isValid());
    const QString chosen = root.filePath("chosen");
    ASSERT_TRUE(QDir().mkpath(chosen));
    writeAll(chosen + "/config.xml", "<Configuration/>");
    const AppDirectoryResult result =
        resolveAppDirectory(QStringList{"quorvel", "--app-dir", chosen});
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
    EXPECT_EQ(result.directory, chosen);
}

} // namespace
} // namespace qv
