// The command line of the window and the set-up before it opens.
#include "AppTestSupport.h"

#include <QDir>

namespace qv::test {
namespace {

using Demo = LaunchOptions::Demo;

TEST(LaunchOptions, ParsesWhatTheHelpPromises) {
    struct Case {
        QStringList arguments;
        QString link;
        Demo demo;
        std::optional<QString> appDir;
        bool error;
    };
    const std::vector<Case> cases = {
        {{}, QStringLiteral("usb"), Demo::None, std::nullopt, false},
        {{QStringLiteral("--link"), QStringLiteral("sim:devices=2")},
         QStringLiteral("sim:devices=2"),
         Demo::None,
         std::nullopt,
         false},
        {{QStringLiteral("--link=sim")}, QStringLiteral("sim"), Demo::None, std::nullopt, false},
        {{QStringLiteral("--app-dir"), QStringLiteral("/tmp/x")},
         QStringLiteral("usb"),
         Demo::None,
         QStringLiteral("/tmp/x"),
         false},
        {{QStringLiteral("--app-dir=/tmp/y"), QStringLiteral("--demo")},
         QStringLiteral("usb"),
         Demo::Current,
         QStringLiteral("/tmp/y"),
         false},
        {{QStringLiteral("--demo=old")},
         QStringLiteral("usb"),
         Demo::OldFirmware,
         std::nullopt,
         false},
        {{QStringLiteral("--demo-old-firmware")},
         QStringLiteral("usb"),
         Demo::OldFirmware,
         std::nullopt,
         false},
        {{QStringLiteral("--demo=new")}, QStringLiteral("usb"), Demo::None, std::nullopt, true},
        {{QStringLiteral("--link")}, QString(), Demo::None, std::nullopt, true},
        {{QStringLiteral("--demo"), QStringLiteral("--link"), QStringLiteral("sim")},
         QStringLiteral("sim"),
         Demo::Current,
         std::nullopt,
         true},
        {{QStringLiteral("extra")}, QStringLiteral("usb"), Demo::None, std::nullopt, true},
    };
    for (const Case& c : cases) {
        const LaunchOptions o = parseLaunchOptions(c.arguments);
        const std::string what = c.arguments.join(QLatin1Char(' ')).toStdString();
        EXPECT_EQ(!o.error.isEmpty(), c.error) << what << ": " << o.error.toStdString();
        if (c.error)
            continue;
        EXPECT_EQ(o.link, c.link) << what;
        EXPECT_EQ(o.demo, c.demo) << what;
        EXPECT_EQ(o.appDir, c.appDir) << what;
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

TEST(Launch, AFolderThatCannotHoldTheConfigurationIsReported) {
    QTemporaryDir dir;
    const QString notAFolder = dir.filePath(QStringLiteral("file"));
    QFile(notAFolder).open(QIODevice::WriteOnly);
    LaunchOptions options;
    options.appDir = notAFolder;
    Launch launch(options);
    QString error;
    EXPECT_FALSE(launch.prepareConfiguration(&error));
    EXPECT_TRUE(error.contains(notAFolder)) << error.toStdString();
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
    ASSERT_NE(launch.simulatedBus(), nullptr);
    EXPECT_EQ(launch.bus().deviceCount(), 2);
}

TEST(DemoBus, HoldsAProgrammedQuorvelAndAnotherModel) {
    for (const bool old : {false, true}) {
        const auto bus = makeDemoBus(old);
        const auto ids = bus->deviceIds();
        ASSERT_EQ(ids.size(), 2u);
        const SimDevice quorvel = *bus->device(ids[0]);
        EXPECT_EQ(quorvel.hardwareCode(), 12);
        EXPECT_EQ(quorvel.firmware().number(), old ? 260 : 270);
        EXPECT_EQ(quorvel.serialNumber(), 90601234u);
        // The end mark of an empty image stands right at its start.
        EXPECT_EQ(quorvel.eeprom(SimDevice::kImageStart) == SimDevice::kEndMark, old)
            << (old ? "old firmware gets no programme" : "a programme is stored");
        EXPECT_NE(bus->device(ids[1])->hardwareCode(), 12);
    }
}

} // namespace
} // namespace qv::test
