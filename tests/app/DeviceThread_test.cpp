// The window over a slow simulated controller (a silent read waits 250 ms,
// as on USB), with its real timers and its real device thread: no exchange
// ever runs inside another, the write cycle's wait is the device's five
// seconds, a click made during a sequence runs after it, and closing in the
// middle of one ends cleanly.
#include "AppTestSupport.h"

#include <QAbstractButton>
#include <QAction>
#include <QCheckBox>
#include <QTest>

namespace qv::test {
namespace {

constexpr int kSlowReadMs = 250;

class DeviceThreadTest : public WindowFixture {
protected:
    std::unique_ptr<WatchedBus> watched;

    void SetUp() override {
        bus->setReadWait(kSlowReadMs);
        watched = std::make_unique<WatchedBus>(*bus);
        make(true, watched.get());
        startWindow();
        ASSERT_EQ(text("NumeroSerie"), QStringLiteral("90601234"));
        ASSERT_LE(watched->mostLive, 2);
    }
    void TearDown() override {
        WindowFixture::TearDown();
        watched.reset();
    }

    void click(const char* name) {
        auto* button = window->findChild<QAbstractButton*>(QString::fromLatin1(name));
        ASSERT_NE(button, nullptr) << name;
        QTest::mouseClick(button, Qt::LeftButton);
    }
    QStringList requests() const {
        QStringList sent;
        for (const QString& line : bus->traceLines())
            if (line.contains(QLatin1String(" > ")))
                sent << line.section(QLatin1Char(' '), 2, 4);
        return sent;
    }
};

TEST_F(DeviceThreadTest, ConnectReopenedTwentyTimesDuringTheContinuousReadNeverNestsAnExchange) {
    window->timerEntree().setInterval(100);
    window->findChild<QCheckBox*>(QStringLiteral("Continu"))->click();
    ASSERT_TRUE(settle(*window));
    ASSERT_TRUE(window->timerEntree().isActive());
    connectRow = -1;
    window->setConnectionScript([this](ConnectWindow& list) {
        ++connections;
        list.setProbeWait([](int) {});
        // Cancel as soon as the list is there: the ticks go on meanwhile.
        list.Form_Load();
        window->afterJobs([list = QPointer<ConnectWindow>(&list)] {
            if (list)
                list->ExitEtalonnage_Click();
        });
    });
    bus->clearTrace();
    auto* connect = window->findChild<QAction*>(QStringLiteral("MnuConnect"));
    for (int i = 0; i < 20; ++i) {
        const int before = connections;
        connect->trigger();
        for (int wait = 0; wait < 500 && connections == before; ++wait)
            QTest::qWait(10);
        ASSERT_GT(connections, before) << "opening " << i;
        ASSERT_TRUE(settle(*window));
    }
    EXPECT_EQ(connections, 21);
    EXPECT_LE(watched->mostLive, 2) << "an exchange ran inside another";

    // On the trace: a request that got no answer was followed by the next
    // one only after the whole read wait, never during it.
    QStringList lines = bus->traceLines();
    int unanswered = 0;
    for (int i = 0; i + 1 < lines.size(); ++i) {
        if (!lines[i].contains(QLatin1String(" > ")) ||
            !lines[i + 1].contains(QLatin1String(" > ")))
            continue;
        ++unanswered;
        const double gap = lines[i + 1].section(QLatin1Char(' '), 0, 0).toDouble() -
                           lines[i].section(QLatin1Char(' '), 0, 0).toDouble();
        EXPECT_GE(gap, (kSlowReadMs - 5) / 1000.0) << lines[i].toStdString();
    }
    EXPECT_GT(unanswered, 20) << "the legacy probes of the list went unanswered";
    EXPECT_TRUE(window->timerEntree().isActive()) << "the cycle went on throughout";
    EXPECT_TRUE(rig->dialogs.boxes().empty()) << rig->dialogs.boxes().front().text.toStdString();
}

TEST_F(DeviceThreadTest, ActivateThenWriteWaitsTheDevicesFiveSeconds) {
    click("Activer");
    ASSERT_TRUE(settle(*window));
    EXPECT_TRUE(window->testTimer().isActive()) << "the 80 ms ticks of Activate";
    rig->dialogs.clear();
    click("Ecrire");
    ASSERT_TRUE(settle(*window, 20000));
    const auto& boxes = rig->dialogs.boxes();
    ASSERT_EQ(boxes.size(), 2u) << "the question, then the end";
    EXPECT_EQ(boxes[1].text, QStringLiteral("Programming complete"));
    EXPECT_GE(boxes[1].shownAtMs - boxes[0].shownAtMs, 5000)
        << "the box came before the device was back";
    EXPECT_LT(boxes[1].shownAtMs - boxes[0].shownAtMs, 8000);
    EXPECT_TRUE(window->view().isEnabled(QStringLiteral("Sortir")));
}

TEST_F(DeviceThreadTest, AClickDuringAFullReadRunsAfterIt) {
    bus->clearTrace();
    click("Lire");
    const QStringList one = [&] {
        EXPECT_TRUE(settle(*window));
        return requests();
    }();
    ASSERT_GT(one.size(), 20);

    bus->clearTrace();
    click("Lire");
    QTest::qWait(50); // the first read is under way
    click("Lire");
    ASSERT_TRUE(settle(*window));
    // Two whole reads, one after the other; the clock frame of each read
    // says a different second, so only the commands are compared.
    const auto commands = [](QStringList frames) {
        for (QString& f : frames)
            f = f.left(2);
        return frames;
    };
    EXPECT_EQ(commands(requests()), commands(one + one));
    EXPECT_LE(watched->mostLive, 2);
}

TEST_F(DeviceThreadTest, ClosingDuringAFullReadEndsCleanly) {
    click("Lire");
    QTest::qWait(100);
    ASSERT_FALSE(window->worker().idle()) << "the read is under way";
    QElapsedTimer clock;
    clock.start();
    EXPECT_TRUE(window->close());
    EXPECT_LT(clock.elapsed(), 2000) << "the read was let go at its next exchange";
    EXPECT_TRUE(window->worker().stopping());
    EXPECT_TRUE(window->worker().idle());
    EXPECT_EQ(watched->live, 0) << "the link was closed";
    const auto sent = requests().size();
    QTest::qWait(300);
    EXPECT_EQ(requests().size(), sent) << "nothing talks to the device after the close";
}

} // namespace
} // namespace qv::test
