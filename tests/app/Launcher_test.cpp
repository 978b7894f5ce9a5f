// The command line of the window and the set-up before it opens.
#include "AppTestSupport.h"

#include <QDir>

namespace qv::test {
namespace {

using Demo = LaunchOptions::Demo;

TEST(LaunchOptions, ParsesWhatTheHelpPromises) {
    // What the options give, as "link demo folder", or "error".
    const std::pair<const char*, const char*> cases[] = {
        {"", "usb 0 -"},
        {"--link sim:devices=2", "sim:devices=2 0 -"},
        {"--link=sim", "sim 0 -"},
        {"--app-dir=/tmp/y --demo", "usb 1 /tmp/y"},
        {"--app-dir /tmp/x --demo=old", "usb 2 /tmp/x"},
        {"--demo-old-firmware", "usb 2 -"},
        {"--demo=new", "error"},
        {"--link", "error"},
        {"--demo --link sim", "error"},
        {"extra", "error"},
    };
    for (const auto& [arguments, expected] : cases) {
        const LaunchOptions o =
            parseLaunchOptions(QString::fromLatin1(arguments).split(' ', Qt::SkipEmptyParts));
        const QString got = !o.error.isEmpty() ? QStringLiteral("error")
                                               : QStringLiteral("%1 %2 %3")
                                                     .arg(o.link)
                                                     .arg(static_cast<int>(o.demo))
                                                     .arg(o.appDir.value_or(QStringLiteral("-")));
        EXPECT_EQ(got, QString::fromLatin1(expected)) << arguments;
    }
    EXPECT_TRUE(launchHelp().contains(QStringLiteral("--demo=old")));
}

TEST(Launch, AMalformedConfigurationIsNamedWithItsLine) {
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("config.xml")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<Configuration>\n  <Messages>\n</Configuration>\n");
    file.close();
    LaunchOptions options;
    options.appDir = dir.path();
    Launch launch(options);
    QString error;
    EXPECT_FALSE(launch.prepareConfiguration(&error));
    EXPECT_TRUE(error.contains(QStringLiteral("config.xml"))) << error.toStdString();
    EXPECT_TRUE(error.contains(QStringLiteral("3"))) << "the line: " << error.toStdString();
}

TEST(Launch, TheLinkChoice) {
    QTemporaryDir dir;
    struct Case {
        QString link;
        bool ok;
        bool warned;
        int devices;
    };
    const std::vector<Case> cases = {
        {QStringLiteral("sim:devices=3"), true, false, 3},
        {QStringLiteral("usb:ids=/nonexistent/usb-ids.conf"), true, true, 0},
        {QStringLiteral("serial"), false, false, 0},
        {QStringLiteral("sim:nonsense=1"), false, false, 0},
        {QStringLiteral("tty:/nonexistent/tty*,readWaitMs=1"), true, false, 0},
        {QStringLiteral("tty:/nonexistent/tty*,readWaitMs=0"), false, false, 0},
    };
    for (const Case& c : cases) {
        LaunchOptions options;
        options.link = c.link;
        Launch launch(options);
        QString error, warning;
        const bool ok = launch.prepareBus(&error, &warning);
        EXPECT_EQ(ok, c.ok) << c.link.toStdString() << ": " << error.toStdString();
        EXPECT_EQ(!warning.isEmpty(), c.warned) << c.link.toStdString();
        if (ok) {
            EXPECT_EQ(launch.bus().deviceCount(), c.devices) << c.link.toStdString();
        }
    }
}

TEST(Launch, TheDemonstrationWorksOnAScratchCopyWithTheServicePanelOn) {
    LaunchOptions options;
    options.demo = Demo::Current;
    Launch launch(options);
    QString error, warning;
    ASSERT_TRUE(launch.prepareConfiguration(&error)) << error.toStdString();
    EXPECT_TRUE(launch.configPath().startsWith(QDir::tempPath()))
        << launch.configPath().toStdString();
    EXPECT_TRUE(launch.config().LitMaintenance());
    ASSERT_TRUE(launch.prepareBus(&error, &warning));
    EXPECT_EQ(launch.bus().deviceCount(), 2);
}

} // namespace
} // namespace qv::test
