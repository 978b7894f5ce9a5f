// The longest stall of the user-interface thread while the device thread
// works: a 10 ms heartbeat timer on the window's thread, and the largest gap
// between two of its ticks, during a full read, a write cycle with a
// six-line programme, and 20 openings of the connection list. Against the
// demonstration controllers with reads that wait 250 ms for a silent
// device, as on USB, and the link's real 10 ms pauses. Target: under 50 ms.
#include "Launcher.h"
#include "SimulatedBus.h"
#include "console/widgets/ConnectWindow.h"
#include "link/DeviceWorker.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace qv;

namespace {

class AgreeingDialogs : public Dialogs {
public:
    int message(const QString&, const QString&, int) override { return MsgBox::AnswerOk; }
};

// Gaps between the ticks of a 10 ms timer on this thread.
class Heartbeat {
public:
    Heartbeat() {
        QObject::connect(&timer_, &QTimer::timeout, [this] {
            const qint64 now = clock_.nsecsElapsed();
            if (last_ >= 0)
                gaps_.push_back(static_cast<double>(now - last_) / 1e6);
            last_ = now;
        });
        timer_.setTimerType(Qt::PreciseTimer);
    }
    void start() {
        gaps_.clear();
        last_ = -1;
        clock_.start();
        timer_.start(10);
    }
    void stop() { timer_.stop(); }
    double longest() const {
        return gaps_.empty() ? 0 : *std::max_element(gaps_.begin(), gaps_.end());
    }
    size_t ticks() const { return gaps_.size(); }

private:
    QTimer timer_;
    QElapsedTimer clock_;
    qint64 last_ = -1;
    std::vector<double> gaps_;
};

// Runs this thread's events until `done` holds.
void pumpUntil(const std::function<bool()>& done) {
    while (!done())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

// Waits until the window's jobs are over, this thread running meanwhile.
void settle(MainScreenWindow& window) {
    for (;;) {
        bool done = false;
        window.afterJobs([&done] { done = true; });
        pumpUntil([&] { return done; });
        QCoreApplication::processEvents();
        if (window.worker().idle())
            return;
    }
}

Conditions sixLines() {
    Conditions conditions;
    for (int i = 0; i < 6; ++i) {
        Condition line;
        line.Nom = QStringLiteral("Line %1").arg(i + 1);
        line.sortie = 3;
        line.Valeur = static_cast<std::int16_t>(i % 2);
        line.Temporisation = static_cast<std::int16_t>(60 * (i + 1));
        line.Jour = static_cast<std::int16_t>(3 + i % 5);
        line.Heure = static_cast<std::int16_t>(6 + i);
        conditions.Add(line);
    }
    return conditions;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    LaunchOptions options;
    options.demo = LaunchOptions::Demo::Current;
    Launch launch(options);
    QString error, warning;
    if (!launch.prepareConfiguration(&error) || !launch.prepareBus(&error, &warning)) {
        std::fprintf(stderr, "ui_stall_bench: %s\n", qUtf8Printable(error));
        return 1;
    }
    launch.config().EcritValeurXML(QStringLiteral("Splash"), QStringLiteral("False"));
    launch.simulatedBus()->setReadWait(250);
    AgreeingDialogs dialogs;
    launch.setDialogs(dialogs);
    MainScreenWindow& window = launch.makeWindow();

    // The operator takes the Quorvel at the start, and cancels the list
    // every other time.
    bool take = true;
    int openings = 0;
    window.setConnectionScript([&](ConnectWindow& list) {
        ++openings;
        list.Form_Load();
        window.afterJobs([&, list = QPointer<ConnectWindow>(&list)] {
            if (!list)
                return;
            if (take && !list->view().rows(QStringLiteral("ListeSorvane")).empty()) {
                list->view().setCurrentRow(QStringLiteral("ListeSorvane"), 0);
                list->ListeSorvane_Click();
            } else {
                list->ExitEtalonnage_Click();
            }
        });
    });
    window.start();
    pumpUntil([&] { return window.isVisible(); });
    settle(window);

    Heartbeat heartbeat;
    struct Result {
        const char* what;
        double longest;
        double seconds;
        size_t ticks;
    };
    std::vector<Result> results;
    const auto measure = [&](const char* what, const std::function<void()>& act) {
        QElapsedTimer clock;
        clock.start();
        heartbeat.start();
        act();
        settle(window);
        heartbeat.stop();
        results.push_back({what, heartbeat.longest(), static_cast<double>(clock.elapsed()) / 1000,
                           heartbeat.ticks()});
    };

    measure("full read", [&] { window.post(&MainScreenLogic::Lire_Click); });
    launch.worker().post([&] { launch.conditions() = sixLines(); });
    measure("write cycle, six lines", [&] { window.post(&MainScreenLogic::Ecrire_Click); });
    take = false;
    measure("20 openings of Connect", [&] {
        for (int i = 0; i < 20; ++i) {
            const int before = openings;
            window.findChild<QAction*>(QStringLiteral("MnuConnect"))->trigger();
            pumpUntil([&] { return openings > before; });
            settle(window);
        }
    });

    std::printf("longest stall of the user-interface thread (10 ms heartbeat), target < 50 ms\n");
    bool ok = true;
    for (const Result& r : results) {
        std::printf("  %-26s %6.1f ms   (%zu ticks over %.1f s)\n", r.what, r.longest, r.ticks,
                    r.seconds);
        ok = ok && r.longest < 50;
    }
    window.close();
    return ok ? 0 : 1;
}
