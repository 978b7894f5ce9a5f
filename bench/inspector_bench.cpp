// The window while exchanges pour in: the exchange panel open with 100,000
// rows already in it, one device thread reading an EEPROM byte again and
// again with the real 10 ms pauses, and a second thread recording transfers
// as fast as a bench of controllers would (--flood transfers a second).
// Reports the median transaction time against the 20 ms floor (target
// under 1.02 times) and the longest stall of the user-interface thread,
// as the largest gap between ticks of a 5 ms timer (target under 50 ms).
// The device thread alternates blocks of plain transactions (no trace at
// all) with traced ones, so that the machine's load hits both alike; with
// a third argument "nopanel" the window has no panel: the stall that the
// machine alone causes.
#include "SimulatedBus.h"
#include "device/Device.h"
#include "inspector/widgets/ExchangePanel.h"
#include "link/FrameLink.h"
#include "link/TraceHub.h"
#include "link/TracingBus.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QMainWindow>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

namespace {
class SilentDialogs : public qv::Dialogs {
public:
    int message(const QString&, const QString&, int) override { return qv::MsgBox::AnswerOk; }
};

std::vector<qv::Exchange> filler(int count) {
    std::vector<qv::Exchange> rows(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        qv::Exchange& e = rows[static_cast<size_t>(i)];
        e.atUs = i * 20'000LL;
        e.device = 1509949441;
        e.deviceKnown = true;
        e.requestText =
            QStringLiteral("read EEPROM %1 (log area, byte %2)").arg(256 + i % 256).arg(i % 256);
        e.replyText = QString::number(i % 251);
        e.durationUs = 10'200;
    }
    return rows;
}
} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int rounds = argc > 1 ? std::max(20, std::atoi(argv[1])) : 250;
    const int flood = argc > 2 ? std::max(0, std::atoi(argv[2])) : 2'000;
    const bool withPanel = !(argc > 3 && QByteArray(argv[3]) == "nopanel");

    QTemporaryDir dir;
    const QString configPath = dir.filePath(QStringLiteral("config.xml"));
    QFile::copy(QStringLiteral(QUORVEL_SHIPPED_CONFIG), configPath);
    QFile::setPermissions(configPath, QFile::ReadOwner | QFile::WriteOwner);
    qv::ConfigDocument config(configPath);
    config.load();

    qv::SimulatedBus sim;
    sim.addDevice(qv::SimDeviceConfig{});
    qv::TraceHub hub;
    hub.openFile(dir.filePath(QStringLiteral("bench.trace")));
    qv::TracingBus bus(sim, hub);

    QMainWindow window;
    window.resize(1000, 700);
    qv::ExchangePanel* panel = nullptr;
    if (withPanel) {
        panel =
            qv::installExchangePanel(window, hub, config, [] { return QStringLiteral("English"); });
        panel->show();
        panel->model().append(filler(panel->model().capacity()));
        panel->table().scrollToBottom();
    }
    window.show();
    QCoreApplication::processEvents();

    // The user-interface thread's heartbeat.
    QElapsedTimer clock;
    clock.start();
    qint64 lastTick = clock.elapsed();
    qint64 longestGap = 0;
    QTimer heartbeat;
    heartbeat.setInterval(5);
    QObject::connect(&heartbeat, &QTimer::timeout, [&] {
        const qint64 now = clock.elapsed();
        longestGap = std::max(longestGap, now - lastTick);
        lastTick = now;
    });
    heartbeat.start();

    std::atomic<bool> done{false};
    std::vector<double> ms, plainMs;
    std::thread deviceThread([&] {
        SilentDialogs dialogs;
        qv::PublicState state;
        state.UsbID = sim.uniqueId(0);
        qv::FrameLink link(bus, dialogs, state);
        qv::FrameLink plainLink(sim, dialogs, state);
        qv::Device device(link, [] { return QStringLiteral("absent"); });
        qv::Device plain(plainLink, [] { return QStringLiteral("absent"); });
        for (int i = 0; i < 2 * rounds; ++i) {
            const bool traced = (i / 10) % 2 == 0;
            QElapsedTimer timer;
            timer.start();
            (traced ? device : plain).LitEEprom(256 + i % 256);
            (traced ? ms : plainMs).push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        }
        done = true;
    });
    std::atomic<long long> flooded{0};
    std::thread floodThread([&] {
        // Paired transfers of other controllers, at `flood` a second.
        qv::TransferRecord request;
        request.device = 42;
        request.attempt = 1;
        request.outcome = qv::TransferOutcome::Sent;
        request.bytes = QByteArray::fromHex("FE280000000000000000000000003417");
        qv::TransferRecord reply = request;
        reply.direction = qv::TransferDirection::FromDevice;
        reply.outcome = qv::TransferOutcome::Answered;
        reply.bytes = QByteArray::fromHex("FE070012");
        QElapsedTimer pace;
        pace.start();
        while (!done && flood > 0) {
            const long long due = pace.nsecsElapsed() * flood / 1'000'000'000LL;
            while (flooded < due) {
                request.atUs = reply.atUs = qv::TraceHub::steadyNowUs();
                hub.record(flooded % 2 == 0 ? request : reply);
                ++flooded;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    while (!done)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    deviceThread.join();
    floodThread.join();
    const double seconds = static_cast<double>(clock.elapsed()) / 1000.0;
    if (panel)
        panel->feed().drain();

    std::sort(ms.begin(), ms.end());
    std::sort(plainMs.begin(), plainMs.end());
    const double median = ms[ms.size() / 2];
    const double plainMedian = plainMs[plainMs.size() / 2];
    std::printf("rows in the panel: %d\n"
                "traced transactions: %d, median %.3f ms = %.4f x the 20 ms floor "
                "(target < 1.02)\n"
                "  min %.3f  p90 %.3f  max %.3f ms\n"
                "plain transactions in the same run: median %.3f ms = %.4f x the floor; "
                "traced / plain = %.4f\n"
                "transfers recorded by the flood thread: %lld in %.1f s\n"
                "longest stall of the user-interface thread: %lld ms (target < 50 ms)\n",
                panel ? panel->model().rowCount() : 0, static_cast<int>(ms.size()), median,
                median / 20.0, ms.front(), ms[ms.size() * 9 / 10], ms.back(), plainMedian,
                plainMedian / 20.0, median / plainMedian, flooded.load(), seconds, longestGap);
    return median / 20.0 < 1.02 && longestGap < 50 ? 0 : 2;
}
