// quorvel: the window of the commissioning tool.
#include "Launcher.h"

#include <QApplication>
#include <QMessageBox>
#include <cstdio>

using namespace qv;

int main(int argc, char** argv) {
    // Read before the application exists, so that --help and --version work
    // without a display.
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const LaunchOptions options = parseLaunchOptions(arguments);
    if (options.help) {
        std::fputs(qUtf8Printable(launchHelp()), stdout);
        return kExitOk;
    }
    if (options.version) {
        std::printf("quorvel %s\n", QUORVEL_VERSION);
        return kExitOk;
    }

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("quorvel"));
    QApplication::setApplicationVersion(QStringLiteral(QUORVEL_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("quorvel"));
    const auto fail = [&](int status, const QString& text) {
        std::fprintf(stderr, "quorvel: %s\n", qUtf8Printable(text));
        // A picture run has no one to read a box.
        if (options.screenshot.isEmpty())
            QMessageBox::critical(nullptr, QStringLiteral("Quorvel"), text);
        return status;
    };
    if (!options.error.isEmpty())
        return fail(kExitUsage, options.error + QStringLiteral("\n\n") + launchHelp());

    Launch launch(options);
    QString error;
    QString warning;
    // config.xml holds every text of the window: without it nothing can be
    // shown but this one box.
    if (!launch.prepareConfiguration(&error))
        return fail(kExitConfiguration, error);
    if (!launch.prepareBus(&error, &warning))
        return fail(kExitUsage, error);
    if (!warning.isEmpty()) {
        std::fprintf(stderr, "quorvel: %s\n", qUtf8Printable(warning));
        if (options.screenshot.isEmpty())
            QMessageBox::warning(nullptr, QStringLiteral("Quorvel"), warning);
    }
    return runLaunch(launch, options);
}
