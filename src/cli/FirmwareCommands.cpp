#include "Commands.h"

#include "firmware/FirmwareCheck.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>

namespace qv {

namespace {

// The checks of the update on a file name, with the boxes' texts, and the
// loader line an accepted file would start. Nothing is started and no
// device is touched.
int runFirmwareCheck(Session& s, Arguments& args) {
    const QString file = args.takePositional(QStringLiteral("FILE"));
    args.expectEnd();
    // The dialog gave a full path, and the checks look at all of it.
    const QString path = QDir::toNativeSeparators(QFileInfo(file).absoluteFilePath());
    const FirmwareVerdict verdict =
        checkFirmwareFile(path, [&s](const QString& key, const QString& init) {
            return s.config->LitMessage(s.language, key, init);
        });
    const QString appDir =
        QDir::toNativeSeparators(QFileInfo(s.config->configPath()).absolutePath());
    const QString line = verdict.accepted ? loaderCommandLine(appDir, s.language, s.state.UsbID,
                                                              path, verdict.versionText)
                                          : QString();

    if (s.json) {
        QJsonObject o{{QStringLiteral("file"), path},
                      {QStringLiteral("accepted"), verdict.accepted},
                      {QStringLiteral("version"), verdict.versionText}};
        if (verdict.accepted)
            o.insert(QStringLiteral("commandLine"), line);
        else
            o.insert(QStringLiteral("message"), verdict.text);
        printJson(o);
    } else if (verdict.accepted) {
        printLine(QStringLiteral("accepted: version %1").arg(verdict.versionText));
        printLine(line);
    } else {
        QString text = verdict.text;
        printLine(text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    }
    return verdict.accepted ? kExitOk : kExitDeviceFailed;
}

} // namespace

const std::vector<CliCommand>& firmwareCommands() {
    static const std::vector<CliCommand> commands = {
        {{QStringLiteral("firmware"), QStringLiteral("check")},
         QStringLiteral("check a firmware file name as the update does; print the loader line"),
         QStringLiteral(
             "firmware check FILE\n"
             "  FILE  a firmware file, QUORVEL_VX.XX.hex; only its full path is looked at\n"
             "  Prints the refusal as the update shows it (exit status 1), or the version and\n"
             "  the loader's command line (exit status 0). USBID is the --device given, else 1."),
         runFirmwareCheck},
    };
    return commands;
}

} // namespace qv
