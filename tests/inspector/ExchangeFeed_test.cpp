// The inspector's model and feed: a bounded ring, and rows that arrive from
// device threads through the trace hub, shown by the window's timer.
#include "RecordingDialogs.h"
#include "SimulatedBus.h"
#include "device/Device.h"
#include "inspector/ExchangeFeed.h"
#include "inspector/ExchangeTableModel.h"
#include "link/TracingBus.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <gtest/gtest.h>
#include <thread>

namespace qv::test {
namespace {

Exchange numbered(int n) {
    Exchange e;
    e.atUs = n;
    e.requestText = QStringLiteral("row %1").arg(n);
    return e;
}

std::vector<Exchange> batch(int first, int count) {
    std::vector<Exchange> rows;
    for (int i = 0; i < count; ++i)
        rows.push_back(numbered(first + i));
    return rows;
}

TEST(ExchangeTableModel, KeepsTheNewestRowsUpToItsCapacity) {
    struct Case {
        const char* name;
        std::vector<int> batchSizes;
        int rows;
        int oldest;
    };
    const std::vector<Case> cases = {
        {"below", {2, 2}, 4, 0},
        {"exactly full", {5}, 5, 0},
        {"over by one", {3, 3}, 5, 1},
        {"one batch larger than the ring", {12}, 5, 7},
        {"many turns", {4, 4, 4, 4, 4}, 5, 15},
    };
    for (const Case& c : cases) {
        ExchangeTableModel model(5);
        int next = 0;
        for (int size : c.batchSizes) {
            model.append(batch(next, size));
            next += size;
        }
        ASSERT_EQ(model.rowCount(), c.rows) << c.name;
        for (int row = 0; row < c.rows; ++row)
            EXPECT_EQ(model.at(row).requestText, QStringLiteral("row %1").arg(c.oldest + row))
                << c.name;
    }
}

TEST(ExchangeTableModel, TheFilterFindsTextInAnyColumnAsShown) {
    ExchangeTableModel model;
    std::vector<Exchange> rows = batch(0, 3);
    rows[0].durationUs = 12'345;
    rows[1].status = ExchangeStatus::Silence;
    rows[2].device = 4711;
    rows[2].deviceKnown = true;
    model.append(rows);
    ExchangeFilter filter;
    filter.setSourceModel(&model);
    const std::vector<std::pair<QString, int>> cases = {
        {"", 3}, {"ROW 1", 1}, {"silence", 1}, {"4711", 1}, {"12.3", 1}, {"nothing like it", 0}};
    for (const auto& [text, count] : cases) {
        filter.setText(text);
        EXPECT_EQ(filter.rowCount(), count) << text.toStdString();
    }
    // Durations read in milliseconds.
    EXPECT_EQ(model.data(model.index(0, ExchangeTableModel::Duration), Qt::DisplayRole).toString(),
              QStringLiteral("12.3"));
}

// Controllers read from several threads at once, as on a production bench.
class LiveFeed : public ::testing::Test {
protected:
    SimulatedBus sim;
    TraceHub hub;
    TracingBus bus{sim, hub};
    ExchangeTableModel model;

    void SetUp() override {
        sim.setSleep([](int) {});
    }

    void readFromThreads(int threads, int readsEach) {
        std::vector<std::int32_t> ids;
        for (int t = 0; t < threads; ++t)
            ids.push_back(sim.addDevice(SimDeviceConfig{}));
        std::vector<std::thread> workers;
        for (std::int32_t id : ids)
            workers.emplace_back([this, id, readsEach] {
                RecordingDialogs dialogs;
                PublicState state;
                state.UsbID = id;
                FrameLink link(bus, dialogs, state);
                link.setPause([](int) {});
                Device device(link, [] { return QString(); });
                for (int i = 0; i < readsEach; ++i)
                    device.LitEEprom(40 + i % 5);
            });
        for (auto& w : workers)
            w.join();
    }

    bool waitForRows(int rows) {
        QElapsedTimer timer;
        timer.start();
        while (model.rowCount() < rows && timer.elapsed() < 5000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return model.rowCount() == rows;
    }
};

TEST_F(LiveFeed, RowsFromSeveralDeviceThreadsAllArriveMatched) {
    ExchangeFeed feed(hub, model);
    readFromThreads(4, 250);
    ASSERT_TRUE(waitForRows(1000)) << model.rowCount();
    std::map<std::int32_t, int> perDevice;
    for (int row = 0; row < model.rowCount(); ++row) {
        const Exchange& e = model.at(row);
        ++perDevice[e.device];
        EXPECT_EQ(e.status, ExchangeStatus::Answered);
        EXPECT_EQ(e.attempt, 1);
        EXPECT_TRUE(e.words().startsWith(QStringLiteral("read EEPROM 4")));
        EXPECT_TRUE(e.words().endsWith(QStringLiteral("-> 0")));
    }
    EXPECT_EQ(perDevice.size(), 4u);
    for (const auto& [device, count] : perDevice)
        EXPECT_EQ(count, 250);
}

TEST_F(LiveFeed, PauseHoldsTheRowsAndClearEmpties) {
    ExchangeFeed feed(hub, model);
    feed.setPaused(true);
    readFromThreads(1, 20);
    feed.drain();
    EXPECT_EQ(model.rowCount(), 0);
    feed.setPaused(false);
    EXPECT_EQ(model.rowCount(), 20);
    feed.clear();
    EXPECT_EQ(model.rowCount(), 0);
    readFromThreads(1, 3);
    feed.drain();
    EXPECT_EQ(model.rowCount(), 3);
}

TEST_F(LiveFeed, AFeedThatIsGoneHearsNothingMore) {
    { ExchangeFeed feed(hub, model); }
    readFromThreads(1, 5); // would touch a dead queue if still subscribed
    QCoreApplication::processEvents();
    EXPECT_EQ(model.rowCount(), 0);
}

} // namespace
} // namespace qv::test
