// quorvelctl: the command-line face of the tool. It runs the same device
// sequences as the window, for scripts, production benches and diagnosis.
#include "Arguments.h"
#include "Commands.h"
#include "MultiDevice.h"
#include "Session.h"
#include "config/AppDirectory.h"
#include "link/TracingBus.h"
#include "linkoption/BusFactory.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QGuiApplication>
#include <cstdio>
#include <memory>

using namespace qv;

namespace {

void printUsage(std::FILE* out) {
    std::fputs("usage: quorvelctl [--app-dir DIR] [--link LINK] [--device ID|ID,ID,...|all]\n"
               "                  [--json] [--yes] [--trace FILE] COMMAND [ARGS] [--help]\n"
               "       quorvelctl --version\n\n"
               "LINK is usb (the default), tty:PATTERN for controllers seen as serial ports\n"
               "(tty:/dev/ttyACM*), or sim[:key=value,...] for simulated controllers, for\n"
               "example sim:devices=2,state=/tmp/sim.json (see README).\n"
               "ID is a device id as `devices --json` prints it; by default the first device.\n"
               "--trace FILE appends every transfer to FILE (see `trace FILE`).\n\n"
               "identity, clock set, eeprom write, programme download and report run on\n"
               "several controllers at once with --device ID,ID,... or --device all.\n\n"
               "commands:\n",
               out);
    for (const auto* list :
         {&deviceCommands(), &programmeCommands(), &printCommands(), &configCommands(),
          &firmwareCommands(), &reportCommands(), &traceCommands(), &productionCommands()}) {
        for (const CliCommand& c : *list)
            std::fprintf(out, "  %-20s %s\n", qUtf8Printable(c.words.join(QLatin1Char(' '))),
                         qUtf8Printable(c.summary));
    }
}

// Commands that work on files alone run without opening a link.
bool needsDevice(const CliCommand& command) {
    const QString first = command.words.first();
    return first != QLatin1String("message") && first != QLatin1String("config") &&
           first != QLatin1String("trace") && first != QLatin1String("firmware") &&
           command.words != QStringList{QStringLiteral("programme"), QStringLiteral("show")} &&
           !needsGuiApplication(command);
}

const CliCommand* findCommand(QStringList& words) {
    const CliCommand* best = nullptr;
    for (const auto* list :
         {&deviceCommands(), &programmeCommands(), &printCommands(), &configCommands(),
          &firmwareCommands(), &reportCommands(), &traceCommands(), &productionCommands()}) {
        for (const CliCommand& c : *list) {
            if (words.size() >= c.words.size() && words.mid(0, c.words.size()) == c.words &&
                (!best || c.words.size() > best->words.size()))
                best = &c;
        }
    }
    if (best)
        words.remove(0, best->words.size());
    return best;
}

struct GlobalOptions {
    std::optional<QString> appDir;
    QString link;
    std::optional<QString> device;
    std::optional<QString> trace;
    bool json = false;
    bool yes = false;
    bool help = false;
    bool version = false;
    QStringList rest; // the command and its arguments
};

GlobalOptions takeGlobalOptions(const QStringList& words) {
    Arguments globals(words);
    GlobalOptions o;
    o.appDir = globals.takeOption(QStringLiteral("app-dir"));
    o.link = globals.takeOption(QStringLiteral("link")).value_or(QStringLiteral("usb"));
    o.device = globals.takeOption(QStringLiteral("device"));
    o.trace = globals.takeOption(QStringLiteral("trace"));
    o.json = globals.takeFlag(QStringLiteral("json"));
    o.yes = globals.takeFlag(QStringLiteral("yes"));
    o.help = globals.takeFlag(QStringLiteral("help")) || globals.takeFlag(QStringLiteral("h"));
    o.version = globals.takeFlag(QStringLiteral("version"));
    o.rest = globals.remaining();
    return o;
}

// Decided before any application object exists, from the raw words; a
// command line that does not parse gets the plain one and fails there.
bool wantsGuiApplication(const QStringList& words) {
    try {
        QStringList rest = takeGlobalOptions(words).rest;
        const CliCommand* command = findCommand(rest);
        return command && needsGuiApplication(*command);
    } catch (const UsageError&) {
        return false;
    }
}

int run(QStringList words) {
    const GlobalOptions globals = takeGlobalOptions(words);
    const auto& appDirOption = globals.appDir;
    const QString& linkSpec = globals.link;
    const auto& deviceOption = globals.device;
    const bool json = globals.json;
    const bool yes = globals.yes;
    const bool help = globals.help;

    if (globals.version) {
        std::printf("quorvelctl %s\n", QUORVEL_VERSION);
        return kExitOk;
    }
    QStringList rest = globals.rest;
    if (rest.isEmpty()) {
        printUsage(help ? stdout : stderr);
        return help ? kExitOk : kExitUsage;
    }
    const CliCommand* command = findCommand(rest);
    if (!command)
        throw UsageError{QStringLiteral("unknown command: %1").arg(rest.join(QLatin1Char(' ')))};
    if (help) {
        std::printf("usage: quorvelctl [global options] %s\n  %s\n", qUtf8Printable(command->usage),
                    qUtf8Printable(command->summary));
        return kExitOk;
    }

    Session session;
    session.json = json;
    // A saved trace is read without config.xml or a device.
    if (command->words.first() == QLatin1String("trace")) {
        Arguments traceArgs(rest);
        return command->run(session, traceArgs);
    }
    const AppDirectoryResult appDir = resolveAppDirectory(defaultAppDirectorySources(appDirOption));
    if (!appDir.ok()) {
        std::fprintf(stderr, "quorvelctl: %s\n", qUtf8Printable(appDir.error));
        return kExitConfiguration;
    }
    session.config = std::make_unique<ConfigDocument>(appDir.configPath());
    session.config->load(); // a missing or malformed file stops here, before any device work
    session.applicationDirectory = QFileInfo(appDir.configPath()).absolutePath();
    session.deviceOption = deviceOption;
    session.yes = yes;
    const bool several = namesSeveralDevices(deviceOption);
    if (several && !runsOnSeveralDevices(*command) &&
        command->words.first() != QLatin1String("commission"))
        throw UsageError{QStringLiteral("%1 works on one controller; --device all and lists are "
                                        "for identity, clock set, eeprom write, programme "
                                        "download, report and commission")
                             .arg(command->words.join(QLatin1Char(' ')))};

    // The device in use also goes into the firmware loader's line, which is
    // checked without a device.
    if (deviceOption && !several)
        session.state.UsbID = static_cast<std::int32_t>(
            parseNumber(*deviceOption, QStringLiteral("ID"), INT32_MIN, INT32_MAX));

    Arguments commandArgs(rest);
    if (!needsDevice(*command))
        return command->run(session, commandArgs);

    QString busError;
    session.bus = makeBus(linkSpec, &busError);
    if (!session.bus)
        throw UsageError{busError};
    if (globals.trace) {
        session.trace = std::make_unique<TraceHub>();
        QString traceError;
        if (!session.trace->openFile(*globals.trace, &traceError))
            throw UsageError{traceError};
        session.bus = std::make_unique<TracingBus>(std::move(session.bus), *session.trace);
    }
    session.dialogs = std::make_unique<StderrDialogs>(yes);
    session.link = std::make_unique<FrameLink>(*session.bus, *session.dialogs, session.state);
    session.device = std::make_unique<Device>(
        *session.link, [&session] { return session.message(QStringLiteral("Quorvel Absent")); });
    if (several && runsOnSeveralDevices(*command))
        return runOnDevices(session, *command, rest, devicesNamed(deviceOption, *session.bus));
    if (!deviceOption && session.bus->deviceCount() > 0)
        session.state.UsbID = session.bus->uniqueId(0);

    const int status = command->run(session, commandArgs);
    // Whatever a command made of a failed exchange, the run did not go
    // through cleanly.
    return status == kExitOk && session.dialogs->exchangeFailed() ? kExitDeviceFailed : status;
}

} // namespace

int main(int argc, char** argv) {
    QStringList raw;
    for (int i = 1; i < argc; ++i)
        raw << QString::fromLocal8Bit(argv[i]);
    std::unique_ptr<QCoreApplication> app;
    if (wantsGuiApplication(raw)) {
        // A PDF needs fonts, not a screen: with no display to talk to, the
        // offscreen platform does, unless the caller chose one.
        if (qEnvironmentVariableIsEmpty("DISPLAY") &&
            qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
            qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        app = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        app = std::make_unique<QCoreApplication>(argc, argv);
    }
    QCoreApplication::setApplicationName(QStringLiteral("quorvel"));
    QStringList words = QCoreApplication::arguments();
    words.removeFirst();
    try {
        return run(words);
    } catch (const UsageError& e) {
        std::fprintf(stderr, "quorvelctl: %s\n(see quorvelctl --help)\n", qUtf8Printable(e.text));
        return kExitUsage;
    } catch (const ConfigError& e) {
        std::fprintf(stderr, "quorvelctl: %s\n", qUtf8Printable(e.text()));
        return kExitConfiguration;
    } catch (const OverflowError& e) {
        std::fprintf(stderr, "quorvelctl: a value does not fit: %s\n", e.what());
        return kExitUsage;
    }
}
