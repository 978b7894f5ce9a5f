// quorvelctl firmware check: the update's checks without a device.
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct Outcome {
    int status = -1;
    QString out;
    QString err;
};

Outcome quorvelctl(const QString& appDir, const QStringList& args) {
    QProcess process;
    process.start(QStringLiteral(QUORVELCTL_PATH),
                  QStringList{QStringLiteral("--app-dir"), appDir} + args);
    EXPECT_TRUE(process.waitForFinished(30000));
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

TEST(FirmwareCommand, FirmwareCheckTellsAcceptedFromRefused) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString app = QDir(dir.path()).absolutePath();
    struct Case {
        QString file;
        int status;
        QString out;
    };
    const Case cases[] = {
        {QStringLiteral("/fw/QUORVEL_V2.70.hex"), 0,
         QStringLiteral("accepted: version 270\n") + app +
             QStringLiteral("\\LOADSTAGE_K_V318.exe LANGUE=English "
                            ";device=quorvel;try_both;USBID=42;prg=/fw/QUORVEL_V2.70.hex;"
                            "firmware=270\n")},
        {QStringLiteral("/fw/QUORVEL_V2.69.hex"), 1,
         QStringLiteral("/fw/QUORVEL_V2.69.hex : \nThis version is lower than 2.70. You need "
                        "QUORVEL_V2.70.hex or a later version.\n")},
        {QStringLiteral("/fw/quorvel.hex"), 1,
         QStringLiteral("/fw/quorvel.hex : \nInvalid file name: the firmware file must be named "
                        "QUORVEL_VX.XX.hex\n")},
    };
    for (const Case& c : cases) {
        const Outcome r =
            quorvelctl(app, {QStringLiteral("--device"), QStringLiteral("42"),
                             QStringLiteral("firmware"), QStringLiteral("check"), c.file});
        EXPECT_EQ(r.status, c.status) << r.err.toStdString();
        EXPECT_EQ(r.out, c.out);
    }
    const Outcome json =
        quorvelctl(app, {QStringLiteral("--json"), QStringLiteral("firmware"),
                         QStringLiteral("check"), QStringLiteral("/fw/QUORVEL_V10.05.hex")});
    const QJsonObject o = QJsonDocument::fromJson(json.out.toUtf8()).object();
    EXPECT_TRUE(o[QStringLiteral("accepted")].toBool());
    EXPECT_EQ(o[QStringLiteral("version")].toString(), QStringLiteral("1005"));
    EXPECT_TRUE(o[QStringLiteral("commandLine")].toString().contains(QStringLiteral("USBID=1;")));
}

} // namespace
