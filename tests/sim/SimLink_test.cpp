#include "SimTestSupport.h"

#include <atomic>
#include <thread>
#include <vector>

namespace qv::test {
namespace {

using SimLink = SimLinkFixture;

TEST_F(SimLink, EveryCommandPassesTheLinksCheckOnTheFirstAttempt) {
    struct Case {
        Bytes request;
        int n;
    };
    const std::vector<Case> cases = {
        {{0x01, 6, 9, 30, 0, 14, 3, 26, 0}, 8},
        {{0x02, 0, 1}, 8},
        {{0x03, 3, 0, 7, 0, 0, 0, 0, 1, 44, 12}, 8},
        {{0x1F, 11, 15, 4, 7, 45, 3}, 8},
        {{0x04, 3, 1, 0}, 8},
        {{0xF0}, 9},
        {{0xF1}, 7},
        {{0xF3, 1, 1}, 2},
        {{0xFB, 0, 0, 0, 1}, 2},
        {{0xFC, 2}, 2},
        {{0xFE, 44, 1}, 2},
        {{0xFF, 16, 210}, 2},
    };
    const std::int32_t id = add();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.request[0]);
        const auto reply = exchange(id, c.request, c.n);
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(reply->size(), static_cast<size_t>(c.n + 2)) << "one attempt only";
        EXPECT_EQ((*reply)[0], c.request[0]);
        EXPECT_EQ(CalculeCRC(*reply, c.n + 2), 0);
    }
    EXPECT_TRUE(dialogs.boxes().empty());
}

TEST_F(SimLink, RestartFrameLooksLikeALostDeviceToTheLink) {
    const std::int32_t id = add();
    EXPECT_FALSE(exchange(id, Bytes(16, 0), 8).has_value());
    EXPECT_TRUE(state.TimeOut);
    EXPECT_EQ(bus.device(id)->restartCount(), 1) << "the retries came during the silence";
    nowMs += SimDevice::kDefaultRestartSilenceMs;
    EXPECT_TRUE(exchange(id, {0xF0}, 9).has_value());
}

TEST_F(SimLink, LegacyProbeThroughTheRawCalls) {
    SimDeviceConfig old;
    old.firmware = *FirmwareVersion::parse(QStringLiteral("2.60"));
    const std::int32_t oldId = add(old);
    const std::int32_t currentId = add();
    const Bytes probe{0xF0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

    link.OuvreUsb(oldId);
    link.EcritBrutUsb(probe, 12);
    const Bytes reply = link.LitBrutUsb(7, QString(), false, 0, QString());
    link.FermeUsb();
    EXPECT_FALSE(state.TimeOut);
    EXPECT_EQ(reply, (Bytes{0xF0, 2, 12, 60, 0, 0x03, 0xB6}));

    link.OuvreUsb(currentId);
    link.EcritBrutUsb(probe, 12);
    link.LitBrutUsb(7, QString(), false, 0, QString());
    link.FermeUsb();
    EXPECT_TRUE(state.TimeOut);
}

TEST_F(SimLink, FaultsMeetTheLinksRetries) {
    struct Case {
        const char* what;
        std::function<void(SimulatedBus&, std::int32_t)> fault;
        bool ok;
        bool timeOut;
        bool crcError;
        int length; // the caller's reply length after the call
    };
    const std::vector<Case> cases = {
        {"one lost reply", [](SimulatedBus& b, std::int32_t i) { b.dropReplies(i, 1); }, true,
         false, false, 6},
        {"two lost replies", [](SimulatedBus& b, std::int32_t i) { b.dropReplies(i, 2); }, true,
         false, false, 8},
        {"three lost replies", [](SimulatedBus& b, std::int32_t i) { b.dropReplies(i, 3); }, false,
         true, false, 8},
        {"one corrupt reply", [](SimulatedBus& b, std::int32_t i) { b.corruptReplies(i, 1); }, true,
         false, false, 6},
        {"three corrupt replies", [](SimulatedBus& b, std::int32_t i) { b.corruptReplies(i, 3); },
         false, false, true, 8},
        {"one short reply", [](SimulatedBus& b, std::int32_t i) { b.shortenReplies(i, 1, 3); },
         true, false, false, 6},
        {"three short replies", [](SimulatedBus& b, std::int32_t i) { b.shortenReplies(i, 3, 2); },
         false, false, true, 8},
        {"every reply lost", [](SimulatedBus& b, std::int32_t i) { b.setDropRate(i, 1.0, 7); },
         false, true, false, 8},
        {"unplugged", [](SimulatedBus& b, std::int32_t i) { b.unplug(i); }, false, true, false, 8},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::int32_t id = add();
        c.fault(bus, id);
        Bytes reply;
        std::int16_t length = 2;
        const bool ok = link.EchangeUsb(id, {0xFE, 16, 0}, 16, reply, length,
                                        QStringLiteral("Absent"), true, QString());
        EXPECT_EQ(ok, c.ok);
        EXPECT_EQ(state.TimeOut, c.timeOut);
        EXPECT_EQ(state.CRCError, c.crcError);
        EXPECT_EQ(length, c.length);
        EXPECT_EQ(dialogs.boxes().size(), c.ok ? 0u : 1u);
        if (c.ok) {
            EXPECT_EQ(reply[0], 0xFE);
        }
        dialogs.clear();
    }
}

TEST_F(SimLink, ExchangesOnAWorkerThreadWhileTheMainThreadChangesDevices) {
    const std::int32_t worked = add();
    const std::int32_t touched = add();
    std::atomic<int> answered{0};
    std::thread worker([&] {
        RecordingDialogs workerDialogs;
        PublicState workerState;
        FrameLink workerLink(bus, workerDialogs, workerState);
        workerLink.setPause([](int) {});
        for (int i = 0; i < 300; ++i) {
            Bytes reply;
            std::int16_t length = 2;
            if (workerLink.EchangeUsb(worked, {0xFF, 100, i & 0xFF}, 16, reply, length, QString(),
                                      false, QString()) &&
                reply[1] == (i & 0xFF))
                ++answered;
        }
    });
    for (int i = 0; i < 300; ++i) {
        bus.modify(touched, [i](SimDevice& d) { d.setBattery(i); });
        EXPECT_EQ(bus.device(touched)->battery(), i);
        bus.deviceCount();
    }
    worker.join();
    EXPECT_EQ(answered.load(), 300);
}

} // namespace
} // namespace qv::test
