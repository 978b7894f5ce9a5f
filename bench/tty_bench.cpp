// Median time of one checked transaction (an EEPROM byte read) over the tty
// link against quorvel-sim, a separate process behind a pseudo-terminal: the
// way to controllers that present themselves as serial ports. The floor is
// the two 10 ms pauses of the link; the target is under 21 ms.
#include "device/Device.h"
#include "link/FrameLink.h"
#include "linkoption/BusFactory.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

namespace {
class SilentDialogs : public qv::Dialogs {
public:
    int message(const QString&, const QString&, int) override { return qv::MsgBox::AnswerOk; }
};
} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const int rounds = argc > 1 ? std::max(10, std::atoi(argv[1])) : 200;
    QTemporaryDir dir;
    QProcess sim;
    sim.start(QStringLiteral(QUORVEL_SIM_PATH), {QStringLiteral("--dir"), dir.path()});
    if (!sim.waitForReadyRead(10000) || !sim.canReadLine()) {
        std::fprintf(stderr, "quorvel-sim did not start: %s\n",
                     sim.readAllStandardError().constData());
        return 1;
    }
    const QString link = QString::fromUtf8(sim.readLine()).trimmed();

    QString error;
    auto bus = qv::makeBus(QStringLiteral("tty:") + link, &error);
    if (!bus || bus->deviceCount() != 1) {
        std::fprintf(stderr, "no controller at %s: %s\n", qUtf8Printable(link),
                     qUtf8Printable(error));
        return 1;
    }
    SilentDialogs dialogs;
    qv::PublicState state;
    state.UsbID = bus->uniqueId(0);
    qv::FrameLink frameLink(*bus, dialogs, state);
    qv::Device device(frameLink, [] { return QStringLiteral("absent"); });

    std::vector<double> ms;
    ms.reserve(static_cast<size_t>(rounds));
    for (int i = 0; i < rounds; ++i) {
        QElapsedTimer timer;
        timer.start();
        device.LitEEprom(40);
        ms.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        if (state.TimeOut || state.CRCError) {
            std::fprintf(stderr, "the simulated controller did not answer\n");
            return 1;
        }
    }
    sim.terminate();
    sim.waitForFinished(5000);
    std::sort(ms.begin(), ms.end());
    const double median = ms[ms.size() / 2];
    std::printf("transactions over a pseudo-terminal: %d\n"
                "median: %.3f ms (floor 20.000 ms, target < 21 ms)\n"
                "min: %.3f ms  p90: %.3f ms  max: %.3f ms\n",
                rounds, median, ms.front(), ms[ms.size() * 9 / 10], ms.back());
    return median < 21.0 ? 0 : 2;
}
