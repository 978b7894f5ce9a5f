// The trace at the link: what the frame link reports of each transfer, the
// file format and the recorder under several threads.
#include "RecordingDialogs.h"
#include "ScriptedBus.h"
#include "SimulatedBus.h"
#include "device/Device.h"
#include "device/Identity.h"
#include "link/FrameLink.h"
#include "link/ReleasableBus.h"
#include "link/TraceFormat.h"
#include "link/TraceHub.h"
#include "link/TracingBus.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <thread>

namespace qv::test {
namespace {

using D = TransferDirection;
using O = TransferOutcome;

TransferRecord rec(std::int64_t us, D d, QByteArray bytes, int attempt, O outcome,
                   bool checked = true, bool deviceKnown = true) {
    TransferRecord r;
    r.atUs = us;
    r.device = 1509949441;
    r.direction = d;
    r.bytes = std::move(bytes);
    r.attempt = attempt;
    r.outcome = outcome;
    r.checked = checked;
    r.deviceKnown = deviceKnown;
    if (!deviceKnown)
        r.device = 0;
    return r;
}

TEST(TraceFormat, EveryKindOfTransferReadsBackAsWritten) {
    const QByteArray frame = QByteArray::fromHex("FE280000000000000000000000009C3E");
    const std::vector<TransferRecord> cases = {
        rec(12'345'678, D::ToDevice, frame, 1, O::Sent),
        rec(12'367'012, D::FromDevice, QByteArray::fromHex("FE0741D0"), 1, O::Answered),
        rec(12'637'950, D::FromDevice, {}, 2, O::Silence),
        rec(5, D::FromDevice, QByteArray::fromHex("FE0741D1"), 3, O::BadCheck),
        rec(0, D::ToDevice, frame, 1, O::Refused),
        rec(7, D::ToDevice, QByteArray::fromHex("F00000000000000000000000"), 1, O::Sent, false),
        rec(9, D::ToDevice, frame, 0, O::Unknown, true, false),
    };
    for (const TransferRecord& r : cases) {
        const QString line = formatTraceLine(r);
        const auto back = parseTraceLine(line);
        ASSERT_TRUE(back.has_value()) << line.toStdString();
        EXPECT_EQ(*back, r) << line.toStdString();
    }
    EXPECT_EQ(formatTraceLine(cases[1]),
              QStringLiteral("12.367012 < FE 07 41 D0 #1 @1509949441 answered"));
    EXPECT_EQ(formatTraceLine(cases[2]), QStringLiteral("12.637950 < #2 @1509949441 silence"));
}

struct Collector : TraceSink {
    explicit Collector(std::vector<TransferRecord>& into) : into_(into) {}
    void record(const TransferRecord& r) override { into_.push_back(r); }
    std::vector<TransferRecord>& into_;
};

// The frame link's own account of each attempt, against real faults of the
// simulated controller.
class LinkTrace : public ::testing::Test {
protected:
    SimulatedBus sim;
    std::vector<TransferRecord> seen;
    Collector collector{seen};
    TracingBus bus{sim, collector};
    RecordingDialogs dialogs;
    PublicState state;
    FrameLink link{bus, dialogs, state};
    Device device{link, [] { return QStringLiteral("Quorvel Absent"); }};
    std::int32_t id = 0;

    void SetUp() override {
        link.setPause([](int) {});
        sim.setSleep([](int) {});
        SimDeviceConfig config;
        id = sim.addDevice(config);
        state.UsbID = id;
    }

    // "> #1 sent", "< #1 silence", ...
    QStringList steps() const {
        QStringList list;
        for (const TransferRecord& r : seen)
            list << QStringLiteral("%1 #%2 %3%4")
                        .arg(r.direction == D::ToDevice ? ">" : "<")
                        .arg(r.attempt)
                        .arg(outcomeWord(r.outcome))
                        .arg(r.checked ? "" : " raw");
        return list;
    }
};

TEST_F(LinkTrace, EachAttemptIsReportedWithItsNumberAndOutcome) {
    struct Case {
        const char* name;
        std::function<void(SimulatedBus&, std::int32_t)> fault;
        QStringList expected;
    };
    const std::vector<Case> cases = {
        {"clean", [](SimulatedBus&, std::int32_t) {}, {"> #1 sent", "< #1 answered"}},
        {"one lost reply",
         [](SimulatedBus& b, std::int32_t i) { b.dropReplies(i, 1); },
         {"> #1 sent", "< #1 silence", "> #2 sent", "< #2 answered"}},
        {"one corrupt reply",
         [](SimulatedBus& b, std::int32_t i) { b.corruptReplies(i, 1); },
         {"> #1 sent", "< #1 bad-check", "> #2 sent", "< #2 answered"}},
        {"dead",
         [](SimulatedBus& b, std::int32_t i) { b.dropReplies(i, 3); },
         {"> #1 sent", "< #1 silence", "> #2 sent", "< #2 silence", "> #3 sent", "< #3 silence"}},
    };
    for (const Case& c : cases) {
        seen.clear();
        c.fault(sim, id);
        device.LitEEprom(40);
        EXPECT_EQ(steps(), c.expected) << c.name;
        for (const TransferRecord& r : seen)
            EXPECT_EQ(r.device, id) << c.name;
    }
}

TEST(TraceHub, ManyThreadsRecordWholeLinesInTheirOwnOrder) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("hub.trace"));
    TraceHub hub;
    ASSERT_TRUE(hub.openFile(path));
    std::atomic<int> heard{0};
    hub.subscribe([&heard](const TransferRecord&) { ++heard; });
    constexpr int kThreads = 4;
    constexpr int kEach = 500;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&hub, t] {
            for (int i = 0; i < kEach; ++i) {
                TransferRecord r;
                r.atUs = TraceHub::steadyNowUs();
                r.device = t;
                r.attempt = 1;
                r.bytes = QByteArray(16, static_cast<char>(i & 0xFF));
                r.outcome = O::Sent;
                hub.record(r);
            }
        });
    for (auto& t : threads)
        t.join();
    hub.closeFile();
    EXPECT_EQ(heard.load(), kThreads * kEach);

    QString error;
    const auto contents = readTraceFile(path, &error);
    ASSERT_TRUE(contents) << error.toStdString();
    EXPECT_EQ(contents->skippedLines, 0);
    ASSERT_EQ(contents->records.size(), static_cast<size_t>(kThreads * kEach));
    std::vector<int> next(kThreads, 0);
    for (const TransferRecord& r : contents->records) {
        ASSERT_EQ(r.bytes, QByteArray(16, static_cast<char>(next[r.device] & 0xFF)));
        ++next[r.device];
    }
}

} // namespace
} // namespace qv::test
