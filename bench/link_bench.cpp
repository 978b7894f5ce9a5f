// Median time of one checked transaction (an EEPROM byte read) against a
// simulated controller that answers at once. The floor is the two 10 ms
// pauses of the link; everything above it is our own overhead.
#include "SimulatedBus.h"
#include "device/Device.h"
#include "link/FrameLink.h"

#include <QElapsedTimer>
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
    const int rounds = argc > 1 ? std::max(10, std::atoi(argv[1])) : 200;
    qv::SimulatedBus bus;
    bus.addDevice(qv::SimDeviceConfig{});
    SilentDialogs dialogs;
    qv::PublicState state;
    state.UsbID = bus.uniqueId(0);
    qv::FrameLink link(bus, dialogs, state);
    qv::Device device(link, [] { return QStringLiteral("absent"); });

    std::vector<double> ms;
    ms.reserve(static_cast<size_t>(rounds));
    for (int i = 0; i < rounds; ++i) {
        QElapsedTimer timer;
        timer.start();
        device.LitEEprom(40);
        ms.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        if (state.TimeOut) {
            std::fprintf(stderr, "the simulated controller did not answer\n");
            return 1;
        }
    }
    std::sort(ms.begin(), ms.end());
    const double median = ms[ms.size() / 2];
    std::printf("transactions: %d\nmedian: %.3f ms (floor 20.000 ms, target < 20.5 ms)\n"
                "min: %.3f ms  p90: %.3f ms  max: %.3f ms\n",
                rounds, median, ms.front(), ms[ms.size() * 9 / 10], ms.back());
    return 0;
}
