#include "SimTestSupport.h"

#include <atomic>
#include <thread>
#include <vector>

namespace qv::test {
namespace {

using SimLink = SimLinkFixture;

// Every command that answers, in an order that is valid for the programme
// frames: the reply has N payload bytes and its check value, and echoes the
// command byte, so the link takes it on its first attempt.
TEST_F(SimLink, EveryCommandPassesTheLinksCheckOnTheFirstAttempt) {
    const std::vector<std::pair<Bytes, int>> cases = {
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
    for (const auto& [request, n] : cases) {
        SCOPED_TRACE(request[0]);
        const auto reply = exchange(id, request, n);
        ASSERT_TRUE(reply.has_value());
        EXPECT_EQ(reply->size(), static_cast<size_t>(n + 2)) << "one attempt only";
        EXPECT_EQ((*reply)[0], request[0]);
        EXPECT_EQ(CalculeCRC(*reply, n + 2), 0);
    }
    EXPECT_TRUE(dialogs.boxes().empty());
}

TEST_F(SimLink, FaultsMeetTheLinksRetries) {
    struct Case {
        const char* what;
        char fault; // d: drop, c: corrupt, s: shorten, u: unplug
        int count;
        bool ok, timeOut, crcError;
        int length; // the caller's reply length after the call
    };
    for (const Case& c : {Case{"one lost reply", 'd', 1, true, false, false, 6},
                          Case{"two lost replies", 'd', 2, true, false, false, 8},
                          Case{"three lost replies", 'd', 3, false, true, false, 8},
                          Case{"one corrupt reply", 'c', 1, true, false, false, 6},
                          Case{"three corrupt replies", 'c', 3, false, false, true, 8},
                          Case{"three short replies", 's', 3, false, false, true, 8},
                          Case{"unplugged", 'u', 0, false, true, false, 8}}) {
        SCOPED_TRACE(c.what);
        const std::int32_t id = add();
        if (c.fault == 'd')
            bus.dropReplies(id, c.count);
        else if (c.fault == 'c')
            bus.corruptReplies(id, c.count);
        else if (c.fault == 's')
            bus.shortenReplies(id, c.count, 2);
        else
            bus.unplug(id);
        Bytes reply;
        std::int16_t length = 2;
        EXPECT_EQ(link.EchangeUsb(id, {0xFE, 16, 0}, 16, reply, length, QStringLiteral("Absent"),
                                  true, QString()),
                  c.ok);
        EXPECT_EQ(state.TimeOut, c.timeOut);
        EXPECT_EQ(state.CRCError, c.crcError);
        EXPECT_EQ(length, c.length);
        EXPECT_EQ(dialogs.boxes().size(), c.ok ? 0u : 1u);
        EXPECT_TRUE(!c.ok || reply[0] == 0xFE);
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
