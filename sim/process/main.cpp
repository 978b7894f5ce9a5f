// quorvel-sim: simulated controllers behind pseudo-terminals, for programs
// that reach controllers as serial ports (quorvelctl --link tty:FOLDER/*).
#include "PtySimulator.h"
#include "SimOptions.h"
#include "SimulatedBus.h"

#include <QStringList>
#include <csignal>
#include <cstdio>
#include <sys/signalfd.h>
#include <unistd.h>

using namespace qv;

namespace {

constexpr int kExitOk = 0;
constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

void printUsage(std::FILE* out) {
    std::fprintf(out,
                 "usage: quorvel-sim --dir FOLDER [--KEY VALUE]...\n"
                 "       quorvel-sim --version\n\n"
                 "Starts simulated controllers, each behind a pseudo-terminal published as\n"
                 "FOLDER/quorvel-0, FOLDER/quorvel-1, ...; prints those paths, one a line, and\n"
                 "serves them until SIGINT or SIGTERM. Reach them with\n"
                 "  quorvelctl --link 'tty:FOLDER/*' COMMAND\n\n"
                 "KEY is any key of --link sim (a flag without a value means 1):\n  %s\n\n"
                 "example: quorvel-sim --dir /tmp/ctl --devices 2 --firmware 2.70 "
                 "--state /tmp/ctl.json --trace /tmp/ctl.trace\n",
                 qUtf8Printable(simOptionsHelp()));
}

struct Command {
    QString folder;
    QStringList simItems; // "key=value"
    bool help = false;
    bool version = false;
    QString error;
};

Command parse(const QStringList& args) {
    Command c;
    for (int i = 0; i < args.size(); ++i) {
        const QString& word = args[i];
        if (word == QLatin1String("--help") || word == QLatin1String("-h")) {
            c.help = true;
            continue;
        }
        if (word == QLatin1String("--version")) {
            c.version = true;
            continue;
        }
        if (!word.startsWith(QLatin1String("--")) || word.size() < 3) {
            c.error = QStringLiteral("unexpected argument \"%1\"").arg(word);
            return c;
        }
        QString key = word.mid(2);
        QString value;
        if (key.contains(QLatin1Char('='))) {
            value = key.section(QLatin1Char('='), 1);
            key = key.section(QLatin1Char('='), 0, 0);
        } else if (i + 1 < args.size() && !args[i + 1].startsWith(QLatin1String("--"))) {
            value = args[++i];
        } else if (key != QLatin1String("dir")) {
            value = QStringLiteral("1");
        }
        if (key == QLatin1String("dir")) {
            c.folder = value;
        } else if (value.contains(QLatin1Char(','))) {
            // The keys travel as one comma-separated text.
            c.error = QStringLiteral("--%1: a value may not contain a comma").arg(key);
            return c;
        } else {
            c.simItems << key + QLatin1Char('=') + value;
        }
    }
    if (!c.help && !c.version && c.folder.isEmpty())
        c.error = QStringLiteral("--dir FOLDER is required");
    return c;
}

} // namespace

int main(int argc, char** argv) {
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);
    const Command command = parse(args);
    if (command.help) {
        printUsage(stdout);
        return kExitOk;
    }
    if (command.version) {
        std::printf("quorvel-sim %s\n", QUORVEL_VERSION);
        return kExitOk;
    }
    if (!command.error.isEmpty()) {
        std::fprintf(stderr, "quorvel-sim: %s\n", qUtf8Printable(command.error));
        printUsage(stderr);
        return kExitUsage;
    }
    QString problem;
    const auto options = parseSimOptions(command.simItems.join(QLatin1Char(',')), &problem);
    if (!options) {
        std::fprintf(stderr, "quorvel-sim: %s\n", qUtf8Printable(problem));
        return kExitUsage;
    }

    // The signals are taken as events of the loop, so that a stop never
    // lands in the middle of a transfer or of a save.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    sigaddset(&stopSignals, SIGHUP);
    sigprocmask(SIG_BLOCK, &stopSignals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    const int stopFd = signalfd(-1, &stopSignals, SFD_CLOEXEC);
    if (stopFd < 0) {
        std::perror("quorvel-sim: signalfd");
        return kExitFailure;
    }

    auto bus = SimulatedBus::fromOptions(*options, &problem);
    if (!bus) {
        std::fprintf(stderr, "quorvel-sim: %s\n", qUtf8Printable(problem));
        return kExitFailure;
    }
    // The terminal's reader waits for the reply; the device must not.
    bus->setReadWait(0);

    PtySimulator simulator(*bus);
    if (!simulator.publish(command.folder, &problem)) {
        simulator.unpublish();
        std::fprintf(stderr, "quorvel-sim: %s\n", qUtf8Printable(problem));
        return kExitFailure;
    }
    for (const QString& link : simulator.links())
        std::printf("%s\n", qUtf8Printable(link));
    std::fflush(stdout);

    const bool served = simulator.run(stopFd, &problem);
    simulator.unpublish();
    int status = kExitOk;
    if (!served) {
        std::fprintf(stderr, "quorvel-sim: %s\n", qUtf8Printable(problem));
        status = kExitFailure;
    }
    if (!options->statePath.isEmpty() && !bus->save(options->statePath, &problem)) {
        std::fprintf(stderr, "quorvel-sim: %s\n", qUtf8Printable(problem));
        status = kExitFailure;
    }
    ::close(stopFd);
    return status;
}
