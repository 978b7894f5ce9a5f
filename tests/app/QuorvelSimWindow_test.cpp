// The window as `quorvel --link tty:FOLDER/*` opens it, over controllers that
// quorvel-sim serves behind pseudo-terminals in a process of its own: the
// connection list, the first read, and the controller process killed while
// the window is talking to it.
#include "AppTestSupport.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QProcess>
#include <QTest>
#include <QTimer>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace qv::test {
namespace {

// Ends the run loudly instead of letting a stuck exchange hang it.
class Watchdog {
public:
    explicit Watchdog(std::chrono::seconds limit)
        : thread_([this, limit] {
              std::unique_lock lock(mutex_);
              if (!done_.wait_for(lock, limit, [this] { return finished_; })) {
                  std::fprintf(stderr, "QuorvelSimWindow: the test hung\n");
                  std::abort();
              }
          }) {}
    ~Watchdog() {
        {
            std::lock_guard lock(mutex_);
            finished_ = true;
        }
        done_.notify_one();
        thread_.join();
    }

private:
    std::mutex mutex_;
    std::condition_variable done_;
    bool finished_ = false;
    std::thread thread_;
};

class QuorvelSimWindowTest : public ::testing::Test {
protected:
    Watchdog watchdog{std::chrono::seconds(120)};
    QTemporaryDir dir;
    QString folder = dir.filePath(QStringLiteral("controllers"));
    QString trace = dir.filePath(QStringLiteral("trace.txt"));
    QProcess sim;
    RecordingDialogs dialogs;
    std::unique_ptr<Launch> launch;
    MainScreenWindow* window = nullptr;
    std::vector<ConsoleView::Row> listed;

    void SetUp() override {
        sim.start(QStringLiteral(QUORVEL_SIM_PATH),
                  {QStringLiteral("--dir"), folder, QStringLiteral("--serial"),
                   QStringLiteral("5678"), QStringLiteral("--trace"), trace});
        ASSERT_TRUE(sim.waitForStarted(5000));
        QElapsedTimer timer;
        timer.start();
        while (!sim.canReadLine() && timer.elapsed() < 10000)
            sim.waitForReadyRead(500);
        ASSERT_TRUE(sim.canReadLine()) << sim.readAllStandardError().toStdString();

        scratchConfig(dir);
        const LaunchOptions options =
            parseLaunchOptions({QStringLiteral("--app-dir"), dir.path(), QStringLiteral("--link"),
                                QStringLiteral("tty:%1/*").arg(folder)});
        ASSERT_TRUE(options.error.isEmpty()) << options.error.toStdString();
        launch = std::make_unique<Launch>(options);
        QString error, warning;
        ASSERT_TRUE(launch->prepareConfiguration(&error)) << error.toStdString();
        ASSERT_TRUE(launch->prepareBus(&error, &warning)) << error.toStdString();
        EXPECT_TRUE(warning.isEmpty()) << warning.toStdString();
        launch->setDialogs(dialogs);
        window = &launch->makeWindow();
    }

    void TearDown() override {
        launch.reset();
        if (sim.state() != QProcess::NotRunning) {
            sim.kill();
            sim.waitForFinished(5000);
        }
    }

    // Starts the window; the operator takes the first line of the real,
    // modal connection list once it is filled (or leaves it after 20 s).
    void start() {
        QElapsedTimer clock;
        clock.start();
        QTimer picker;
        QObject::connect(&picker, &QTimer::timeout, [&] {
            auto* list = qobject_cast<ConnectWindow*>(QApplication::activeModalWidget());
            if (!list)
                return;
            const auto rows = list->view().rows(QStringLiteral("ListeSorvane"));
            if (!rows.empty()) {
                listed = rows;
                list->view().setCurrentRow(QStringLiteral("ListeSorvane"), 0);
                list->ListeSorvane_Click();
            } else if (clock.elapsed() > 20000) {
                list->ExitEtalonnage_Click();
            }
        });
        picker.start(50);
        window->start();
        while (!window->isVisible() && clock.elapsed() < 60000)
            QTest::qWait(20);
        ASSERT_TRUE(settle(*window));
    }

    QString text(const char* control) { return window->view().text(QString::fromLatin1(control)); }

    qsizetype exchanges() const {
        QFile file(trace);
        return file.open(QIODevice::ReadOnly) ? file.readAll().count(" > ") : 0;
    }

    // Kills quorvel-sim without warning once `more` requests went out.
    void killAfter(QTimer& watcher, qsizetype more) {
        const qsizetype from = exchanges();
        QObject::connect(&watcher, &QTimer::timeout, [this, from, more] {
            if (sim.state() != QProcess::NotRunning && exchanges() >= from + more)
                sim.kill();
        });
        watcher.start(5);
    }

    bool timedOut() const {
        for (const auto& box : dialogs.boxes())
            if (box.text.contains(QStringLiteral("(Time Out)")))
                return true;
        return false;
    }

    // The window still answers: a click goes through and a timer fires.
    void expectAlive() {
        EXPECT_TRUE(window->isVisible());
        bool fired = false;
        QTimer::singleShot(10, [&] { fired = true; });
        QTest::qWait(100);
        EXPECT_TRUE(fired);
        auto* continu = window->findChild<QCheckBox*>(QStringLiteral("Continu"));
        EXPECT_TRUE(continu->isEnabled());
        EXPECT_TRUE(window->close()) << "no sequence is left holding the window";
    }
};

TEST_F(QuorvelSimWindowTest, TheListShowsTheSimulatedQuorvelAndTakingItReadsIt) {
    start();
    ASSERT_EQ(listed.size(), 1u);
    EXPECT_TRUE(listed[0].text.contains(QStringLiteral("Quorvel")));
    EXPECT_TRUE(listed[0].text.contains(QStringLiteral("(12) 2.70")));
    EXPECT_TRUE(listed[0].text.endsWith(QStringLiteral("5678"))) << listed[0].text.toStdString();
    EXPECT_TRUE(launch->device().state().bUsbConnected);
    EXPECT_EQ(text("NumeroSerie"), QStringLiteral("5678"));
    EXPECT_EQ(text("ValeurNumeroSerie"), QStringLiteral("5678"));
    EXPECT_EQ(text("Version"), QStringLiteral("(12) 2.70"));
    EXPECT_GT(exchanges(), 20) << "a full read went over the pseudo-terminal";
    EXPECT_TRUE(dialogs.boxes().empty()) << dialogs.boxes().front().text.toStdString();
}

TEST_F(QuorvelSimWindowTest, KilledDuringTheContinuousCycleTheCycleStopsWithTimeOut) {
    start();
    ASSERT_EQ(text("NumeroSerie"), QStringLiteral("5678"));
    window->timerEntree().setInterval(20);
    window->findChild<QCheckBox*>(QStringLiteral("Continu"))->click();
    ASSERT_TRUE(settle(*window));
    ASSERT_TRUE(window->timerEntree().isActive());
    QTimer killer;
    killAfter(killer, 30);
    QElapsedTimer clock;
    clock.start();
    while ((sim.state() != QProcess::NotRunning || window->timerEntree().isActive()) &&
           clock.elapsed() < 30000)
        QTest::qWait(20);
    ASSERT_EQ(sim.state(), QProcess::NotRunning) << "the cycle never ran 30 exchanges";
    EXPECT_FALSE(window->timerEntree().isActive());
    EXPECT_FALSE(window->view().isChecked(QStringLiteral("Continu")));
    EXPECT_TRUE(timedOut());
    EXPECT_LT(clock.elapsed(), 20000);
    const auto boxes = dialogs.boxes().size();
    QTest::qWait(300);
    EXPECT_EQ(dialogs.boxes().size(), boxes) << "a stopped cycle asks nothing more";
    expectAlive();
}

TEST_F(QuorvelSimWindowTest, KilledDuringAReadTheReadEndsWithTimeOut) {
    start();
    ASSERT_EQ(text("NumeroSerie"), QStringLiteral("5678"));
    QTimer killer;
    killAfter(killer, 5);
    int ticks = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] { ++ticks; });
    ticker.start(50);
    QElapsedTimer clock;
    clock.start();
    QTest::mouseClick(window->findChild<QAbstractButton*>(QStringLiteral("Lire")), Qt::LeftButton);
    ASSERT_TRUE(settle(*window, 60000));
    ASSERT_EQ(sim.state(), QProcess::NotRunning) << "the read ended before the kill";
    EXPECT_TRUE(timedOut());
    EXPECT_LT(clock.elapsed(), 60000);
    EXPECT_GT(ticks, 2) << "the window ran while the link waited";
    EXPECT_FALSE(window->timerEntree().isActive());
    expectAlive();
}

} // namespace
} // namespace qv::test
