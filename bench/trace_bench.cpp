// What writing the exchange trace costs a transaction: the median time of
// an EEPROM byte read against a simulated controller, with the real 10 ms
// pauses, plain and through the trace (a file line per transfer, flushed).
// The two run in alternating blocks so that the machine's drift hits both.
// Target: traced under 1.02 times plain.
#include "SimulatedBus.h"
#include "device/Device.h"
#include "link/FrameLink.h"
#include "link/TraceHub.h"
#include "link/TracingBus.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <vector>

namespace {
class SilentDialogs : public qv::Dialogs {
public:
    int message(const QString&, const QString&, int) override { return qv::MsgBox::AnswerOk; }
};

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}
} // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::max(20, std::atoi(argv[1])) : 300;
    constexpr int kBlock = 10;
    qv::SimulatedBus sim;
    sim.addDevice(qv::SimDeviceConfig{});
    QTemporaryDir dir;
    qv::TraceHub hub;
    const QString path = dir.filePath(QStringLiteral("bench.trace"));
    if (!hub.openFile(path)) {
        std::fprintf(stderr, "cannot write %s\n", qUtf8Printable(path));
        return 1;
    }
    qv::TracingBus traced(sim, hub);
    SilentDialogs dialogs;
    qv::PublicState state;
    state.UsbID = sim.uniqueId(0);
    qv::FrameLink plainLink(sim, dialogs, state);
    qv::FrameLink tracedLink(traced, dialogs, state);
    qv::Device plain(plainLink, [] { return QStringLiteral("absent"); });
    qv::Device withTrace(tracedLink, [] { return QStringLiteral("absent"); });

    std::vector<double> plainMs, tracedMs;
    for (int i = 0; i < rounds; ++i) {
        const bool useTrace = (i / kBlock) % 2 == 1;
        QElapsedTimer timer;
        timer.start();
        (useTrace ? withTrace : plain).LitEEprom(40);
        (useTrace ? tracedMs : plainMs).push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        if (state.TimeOut) {
            std::fprintf(stderr, "the simulated controller did not answer\n");
            return 1;
        }
    }
    const double p = median(plainMs);
    const double t = median(tracedMs);
    std::printf("transactions: %d plain, %d traced (trace file %s)\n"
                "median plain: %.3f ms  traced: %.3f ms  ratio: %.4f (target < 1.02)\n",
                static_cast<int>(plainMs.size()), static_cast<int>(tracedMs.size()),
                qUtf8Printable(path), p, t, t / p);
    return t / p < 1.02 ? 0 : 2;
}
