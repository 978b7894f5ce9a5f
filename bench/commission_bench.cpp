// Wall time of `quorvelctl commission` on 1, 4 and 16 simulated controllers,
// with the link's real 10 ms pauses, and its ratio to one controller. The
// controllers are worked with at once, so the target is 16 in under 1.2
// times the time of one. Two runs each: with the window's 5 s wait after the
// restart (as shipped), and with no wait (the exchanges alone).
//
// usage: commission_bench [ROUNDS]   (median of ROUNDS runs, default 3)
#include "config/ConfigDocument.h"
#include "programme/Conditions.h"
#include "programme/ProgrammeStore.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

QString makeProgramme(const QTemporaryDir& dir) {
    const QString prg = dir.filePath(QStringLiteral("site.prg"));
    QFile::copy(QStringLiteral(QUORVEL_SHIPPED_CONFIG), prg);
    QFile::setPermissions(prg, QFile::ReadOwner | QFile::WriteOwner);
    qv::Conditions lines;
    for (std::int16_t jour : {0, 3, 11, 12, 5, 7}) {
        qv::Condition c;
        c.sortie = 3;
        c.Temporisation = 60;
        c.Jour = jour;
        c.Heure = 6;
        c.Minute = 30;
        c.PlageFinJour = jour == 11 ? 11 : 0;
        c.PlageFinHeure = 4;
        c.PlageFinMinute = 21;
        c.Seconde = 3;
        lines.Add(c);
    }
    qv::ConfigDocument file(prg);
    qv::SauveConditions(file, lines);
    return prg;
}

// Seconds of one run, or a negative number when it failed.
double runOnce(const QString& prg, int devices, int restartWaitMs) {
    QTemporaryDir app;
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    QElapsedTimer timer;
    timer.start();
    process.start(QStringLiteral(QUORVELCTL_PATH),
                  {QStringLiteral("--app-dir"), app.path(), QStringLiteral("--link"),
                   QStringLiteral("sim:devices=%1,restartMs=%2")
                       .arg(devices)
                       .arg(std::min(restartWaitMs, 2000)),
                   QStringLiteral("commission"), prg, QStringLiteral("--order"),
                   QStringLiteral("1"), QStringLiteral("--serial-from"), QStringLiteral("1000"),
                   QStringLiteral("--restart-wait"), QString::number(restartWaitMs)});
    process.waitForFinished(-1);
    const double seconds = static_cast<double>(timer.elapsed()) / 1000.0;
    return process.exitCode() == 0 ? seconds : -1;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 3;
    QTemporaryDir dir;
    const QString prg = makeProgramme(dir);
    std::printf("quorvelctl commission, median of %d run(s), real 10 ms pauses\n", rounds);
    for (int wait : {5000, 0}) {
        std::printf("\nwait after the restart: %d ms\n", wait);
        std::printf("%12s %10s %10s\n", "controllers", "seconds", "ratio");
        double one = 0;
        for (int devices : {1, 4, 16}) {
            std::vector<double> times;
            for (int r = 0; r < rounds; ++r)
                times.push_back(runOnce(prg, devices, wait));
            std::sort(times.begin(), times.end());
            const double median = times[times.size() / 2];
            if (times.front() < 0) {
                std::printf("%12d    failed\n", devices);
                return 1;
            }
            if (devices == 1)
                one = median;
            std::printf("%12d %10.2f %10.2f\n", devices, median, median / one);
            std::fflush(stdout);
        }
    }
    return 0;
}
