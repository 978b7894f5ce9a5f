#include "RecordingDialogs.h"
#include "ScriptedBus.h"
#include "link/Crc.h"
#include "link/FrameLink.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <vector>

namespace qv {
namespace {

using test::RecordingDialogs;
using test::ScriptedBus;

struct LinkFixture : ::testing::Test {
    ScriptedBus bus;
    RecordingDialogs dialogs;
    PublicState state;
    FrameLink link{bus, dialogs, state};
    int pauses = 0;

    void SetUp() override {
        link.setPause([this](int ms) {
            EXPECT_EQ(ms, 10);
            ++pauses;
        });
        link.setClock([] { return QDateTime(QDate(2026, 11, 21), QTime(14, 3, 5)); });
    }

    bool exchange(Bytes request, std::int16_t& length, Bytes& reply, bool show = true) {
        return link.EchangeUsb(7, request, 16, reply, length, QStringLiteral("Quorvel Absent"),
                               show, QStringLiteral("Titre"));
    }
};

TEST(CrcTest, KnownCheckValues) {
    const auto crc = [](const QByteArray& data) {
        return crc16(reinterpret_cast<const std::uint8_t*>(data.constData()),
                     static_cast<int>(data.size()));
    };
    EXPECT_EQ(crc("123456789"), 0x4B37);
    // An all-zero buffer is no valid frame: the register starts at all ones.
    EXPECT_EQ(crc(QByteArray(4, '\0')), 0x2400);
    // A frame followed by its own check bytes, and by trailing zeros, checks to 0.
    Bytes values(8, 0);
    const QByteArray frame = ScriptedBus::checked(QByteArray("\xFE\x2A", 2));
    for (int i = 0; i < 4; ++i)
        values[static_cast<size_t>(i)] = static_cast<unsigned char>(frame[i]);
    EXPECT_EQ(CalculeCRC(values, 4), 0);
    EXPECT_EQ(CalculeCRC(values, 8), 0);
}

TEST_F(LinkFixture, ShortRequestIsPaddedBeforeTheCheckValueOtherLengthsCarryNone) {
    bus.replies.push_back(ScriptedBus::checked(QByteArray("\xFE\x05", 2)));
    std::int16_t length = 2;
    Bytes reply;
    ASSERT_TRUE(exchange({0xFE, 40}, length, reply));
    const QByteArray padded = QByteArray("\xFE\x28", 2) + QByteArray(12, '\0');
    EXPECT_EQ(bus.written.at(0), ScriptedBus::checked(padded));

    link.OuvreUsb(1);
    link.EcritTrameUsb({0xF0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xAA, 0xBB}, 14);
    link.EcritTrameUsb({0xF0}, 12);
    ASSERT_EQ(bus.written.size(), 3u);
    EXPECT_EQ(bus.written[1], QByteArray("\xF0", 1) + QByteArray(11, '\0') + "\xAA\xBB");
    EXPECT_EQ(bus.written[2], QByteArray("\xF0", 1) + QByteArray(11, '\0'));
}

// The reply length grows by two per attempt, and the caller sees it.
TEST_F(LinkFixture, AttemptsAndTheGrowingReplyLength) {
    const QByteArray good = ScriptedBus::checked(QByteArray("\xFE\x2A", 2));
    QByteArray corrupt = good;
    corrupt[3] = static_cast<char>(corrupt[3] ^ 0x01);
    struct Case {
        const char* script; // per attempt: L lost, G good, C corrupt, Z all zero
        bool result, timeOut, crcError;
    };
    for (const Case& c : {Case{"G", true, false, false}, Case{"LG", true, false, false},
                          Case{"LLG", true, false, false}, Case{"LLL", false, true, false},
                          Case{"LLC", false, false, true}, Case{"CG", true, false, false},
                          Case{"ZZZ", false, false, true}}) {
        SCOPED_TRACE(c.script);
        const int attempts = static_cast<int>(std::strlen(c.script));
        bus.replies.clear();
        for (int i = 0; i < attempts; ++i) {
            const char a = c.script[i];
            bus.replies.push_back(a == 'L'   ? std::optional<QByteArray>()
                                  : a == 'G' ? good
                                  : a == 'C' ? corrupt
                                             : QByteArray(4, '\0'));
        }
        bus.readLengths.clear();
        dialogs.clear();
        pauses = 0;
        std::int16_t length = 2;
        Bytes reply;
        EXPECT_EQ(exchange({0xFE, 40}, length, reply), c.result);
        EXPECT_EQ(length, 2 + 2 * attempts);
        // What was read, then zeros up to the length reached; zeros alone on failure.
        Bytes expected(static_cast<size_t>(length), 0);
        for (int i = 0; c.result && i < 4; ++i)
            expected[static_cast<size_t>(i)] = static_cast<unsigned char>(good[i]);
        EXPECT_EQ(reply, expected);
        EXPECT_EQ(state.TimeOut, c.timeOut);
        EXPECT_EQ(state.CRCError, c.crcError);
        EXPECT_EQ(pauses, 2 * attempts);
        std::vector<int> lengths;
        for (int i = 0; i < attempts; ++i)
            lengths.push_back(4 + 2 * i);
        EXPECT_EQ(bus.readLengths, lengths);
        ASSERT_EQ(dialogs.boxes().size(), c.result ? 0u : 1u);
        if (!c.result) {
            EXPECT_EQ(dialogs.boxes()[0].text, c.timeOut
                                                   ? QStringLiteral("Quorvel Absent (Time Out)")
                                                   : QStringLiteral("Quorvel Absent (CRC error)"));
            EXPECT_EQ(dialogs.boxes()[0].style, MsgBox::OkOnly);
            EXPECT_TRUE(dialogs.boxes()[0].title.endsWith(QStringLiteral(" Titre")));
            EXPECT_TRUE(dialogs.boxes()[0].title.contains(QStringLiteral("14:03:05")));
        }
    }
}

TEST_F(LinkFixture, NoBoxWhenNotAskedAndTheReplyMayBeTheRequestArray) {
    std::int16_t length = 8;
    Bytes reply;
    EXPECT_FALSE(exchange(Bytes(16, 0), length, reply, false));
    EXPECT_TRUE(state.TimeOut);
    EXPECT_TRUE(dialogs.boxes().empty());

    bus.replies.push_back(ScriptedBus::checked(QByteArray("\xF1\x15\x0B", 3)));
    Bytes frame{0xF1};
    length = 3;
    ASSERT_TRUE(exchange(frame, length, frame));
    EXPECT_EQ(frame.size(), 5u);
    EXPECT_EQ(frame[1], 0x15);
    EXPECT_EQ(bus.written.back()[0], '\xF1');
}

TEST_F(LinkFixture, UnopenableRefusingOrOutOfRangeFailsBeforeAnythingIsRead) {
    for (bool openFails : {true, false}) {
        SCOPED_TRACE(openFails ? "open fails" : "write refused");
        bus.openFails = openFails;
        bus.writeFails = !openFails;
        bus.openedIds.clear();
        dialogs.clear();
        std::int16_t length = 2;
        Bytes reply;
        EXPECT_FALSE(exchange({0xFE, 1}, length, reply));
        EXPECT_TRUE(state.TimeOut);
        EXPECT_EQ(dialogs.boxes().size(), 1u);
        // Two handles per attempt, each open with the id of the moment.
        EXPECT_EQ(bus.openedIds, std::vector<std::int32_t>(6, 7));
    }
    bus.openFails = bus.writeFails = false;
    bus.readLengths.clear();
    std::int16_t length = 2;
    Bytes reply;
    EXPECT_THROW(exchange({0xFF, 256, 1}, length, reply), OverflowError);
    EXPECT_THROW(exchange({0xFF, -1, 1}, length, reply), OverflowError);
    EXPECT_TRUE(bus.written.empty());
    EXPECT_TRUE(bus.readLengths.empty());
}

// A refused write is tried again at once, within the same attempt.
TEST_F(LinkFixture, ARefusedWriteIsCalledAgainBeforeTheRead) {
    bus.writesToRefuse = 2;
    bus.replies.push_back(ScriptedBus::checked(QByteArray("\xFE\x05", 2)));
    std::int16_t length = 2;
    Bytes reply;
    EXPECT_TRUE(exchange({0xFE, 40}, length, reply));
    EXPECT_EQ(bus.written.size(), 1u);
    EXPECT_EQ(length, 4) << "taken at the first attempt";
}

TEST_F(LinkFixture, ReadAfterTimeOutReadsNothing) {
    // The checked read and the raw one alike: a reply that waits is left
    // alone, and the zeroed result of the asked length comes back.
    struct Case {
        const char* name;
        std::function<Bytes()> read;
        Bytes expected;
    };
    std::int16_t length = 2;
    const std::vector<Case> cases = {
        {"checked", [&] { return link.LitReponseUsb(length, QString(), false, 0, QString()); },
         Bytes(4, 0)},
        {"raw", [&] { return link.LitBrutUsb(7, QStringLiteral("m"), true, 0, QString()); },
         Bytes(7, 0)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        bus.replies.clear();
        bus.readLengths.clear();
        dialogs.clear();
        link.OuvreUsb(1);
        state.TimeOut = true;
        bus.replies.push_back(QByteArray("\xF0\x02\x0C\x3C\x00\x00\x00", 7));
        EXPECT_EQ(c.read(), c.expected);
        EXPECT_TRUE(bus.readLengths.empty());
        EXPECT_TRUE(state.TimeOut);
        EXPECT_TRUE(dialogs.boxes().empty());
    }
    EXPECT_EQ(length, 4);
}

TEST_F(LinkFixture, RawReadCopiesAnyBytesAndKeepsTheCheckFlag) {
    state.CRCError = true;
    link.OuvreUsb(1);
    bus.replies.push_back(QByteArray("\xF0\x02\x0C\x3C\x00", 5));
    EXPECT_EQ(link.LitBrutUsb(7, QString(), false, 0, QString()),
              (Bytes{0xF0, 2, 12, 60, 0, 0, 0}));
    EXPECT_FALSE(state.TimeOut);
    EXPECT_TRUE(state.CRCError);
    EXPECT_EQ(link.LitBrutUsb(7, QStringLiteral("m"), true, 0, QStringLiteral("t")), Bytes(7, 0));
    EXPECT_TRUE(state.TimeOut);
    ASSERT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_EQ(dialogs.boxes()[0].title, QStringLiteral("t"));
    // Platform error texts come without their line end.
    EXPECT_FALSE(TexteErreurApi(2).isEmpty());
    EXPECT_FALSE(TexteErreurApi(2).endsWith(QLatin1Char('\n')));
}

} // namespace
} // namespace qv
