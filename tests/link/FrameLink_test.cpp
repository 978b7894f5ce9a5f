#include "RecordingDialogs.h"
#include "ScriptedBus.h"
#include "link/Crc.h"
#include "link/FrameLink.h"

#include <gtest/gtest.h>

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
    struct Case {
        QByteArray data;
        std::uint16_t crc;
    };
    const Case cases[] = {
        {"123456789", 0x4B37},
        {QByteArray(), 0xFFFF},
        // An all-zero buffer is no valid frame: the register starts at all ones.
        {QByteArray(4, '\0'), 0x2400},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(crc16(reinterpret_cast<const std::uint8_t*>(c.data.constData()),
                        static_cast<int>(c.data.size())),
                  c.crc)
            << c.data.toHex().toStdString();
    }
    EXPECT_EQ(CalculeCRC(Bytes{'1', '2', '3', '4', '5', '6', '7', '8', '9'}, 9),
              static_cast<std::int16_t>(0x4B37));
    // A frame followed by its own check bytes, and by trailing zeros, checks to 0.
    const QByteArray frame = ScriptedBus::checked(QByteArray("\xFE\x2A", 2));
    Bytes values(frame.begin(), frame.end());
    for (auto& v : values)
        v = static_cast<unsigned char>(v);
    EXPECT_EQ(CalculeCRC(values, 4), 0);
    EXPECT_EQ(CalculeCRC(values, 8), 0);
}

TEST_F(LinkFixture, ShortRequestIsPaddedBeforeTheCheckValue) {
    bus.replies.push_back(ScriptedBus::checked(QByteArray("\xFE\x05", 2)));
    std::int16_t length = 2;
    Bytes reply;
    ASSERT_TRUE(exchange({0xFE, 40}, length, reply));
    ASSERT_EQ(bus.written.size(), 1u);
    const QByteArray& frame = bus.written[0];
    ASSERT_EQ(frame.size(), 16);
    EXPECT_EQ(frame.left(14), QByteArray("\xFE\x28", 2) + QByteArray(12, '\0'));
    const auto crc = crc16(reinterpret_cast<const std::uint8_t*>(frame.constData()), 14);
    EXPECT_EQ(static_cast<unsigned char>(frame[14]), crc & 0xFF);
    EXPECT_EQ(static_cast<unsigned char>(frame[15]), crc >> 8);
}

TEST_F(LinkFixture, OtherLengthsCarryNoCheckValue) {
    link.OuvreUsb(1);
    link.EcritTrameUsb({0xF0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xAA, 0xBB}, 14);
    link.EcritTrameUsb({0xF0}, 12);
    ASSERT_EQ(bus.written.size(), 2u);
    EXPECT_EQ(bus.written[0].size(), 14);
    EXPECT_EQ(static_cast<unsigned char>(bus.written[0][12]), 0xAA);
    EXPECT_EQ(static_cast<unsigned char>(bus.written[0][13]), 0xBB);
    EXPECT_EQ(bus.written[1], QByteArray("\xF0", 1) + QByteArray(11, '\0'));
}

// The reply length grows by two per attempt, and the caller sees it.
TEST_F(LinkFixture, AttemptsAndTheGrowingReplyLength) {
    const QByteArray good = ScriptedBus::checked(QByteArray("\xFE\x2A", 2));
    const QByteArray corrupt = [&] {
        QByteArray c = good;
        c[3] = static_cast<char>(c[3] ^ 0x01);
        return c;
    }();
    struct Case {
        const char* name;
        std::vector<std::optional<QByteArray>> script;
        bool result;
        std::int16_t finalLength;
        bool timeOut;
        bool crcError;
        const char* box; // nullptr: no box
        Bytes reply;
    };
    const Case cases[] = {
        {"clean",
         {good},
         true,
         4,
         false,
         false,
         nullptr,
         {0xFE, 0x2A, good[2] & 0xFF, good[3] & 0xFF}},
        {"one lost",
         {std::nullopt, good},
         true,
         6,
         false,
         false,
         nullptr,
         {0xFE, 0x2A, good[2] & 0xFF, good[3] & 0xFF, 0, 0}},
        {"two lost",
         {std::nullopt, std::nullopt, good},
         true,
         8,
         false,
         false,
         nullptr,
         {0xFE, 0x2A, good[2] & 0xFF, good[3] & 0xFF, 0, 0, 0, 0}},
        {"three lost",
         {std::nullopt, std::nullopt, std::nullopt},
         false,
         8,
         true,
         false,
         "Quorvel Absent (Time Out)",
         Bytes(8, 0)},
        {"corrupt on third",
         {std::nullopt, std::nullopt, corrupt},
         false,
         8,
         false,
         true,
         "Quorvel Absent (CRC error)",
         Bytes(8, 0)},
        {"corrupt then good",
         {corrupt, good},
         true,
         6,
         false,
         false,
         nullptr,
         {0xFE, 0x2A, good[2] & 0xFF, good[3] & 0xFF, 0, 0}},
        {"all zero reply",
         {QByteArray(4, '\0'), QByteArray(4, '\0'), QByteArray(4, '\0')},
         false,
         8,
         false,
         true,
         "Quorvel Absent (CRC error)",
         Bytes(8, 0)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        bus.replies.assign(c.script.begin(), c.script.end());
        bus.readLengths.clear();
        dialogs.clear();
        pauses = 0;
        std::int16_t length = 2;
        Bytes reply;
        EXPECT_EQ(exchange({0xFE, 40}, length, reply), c.result);
        EXPECT_EQ(length, c.finalLength);
        EXPECT_EQ(reply, c.reply);
        EXPECT_EQ(state.TimeOut, c.timeOut);
        EXPECT_EQ(state.CRCError, c.crcError);
        const int attempts = static_cast<int>(c.script.size());
        EXPECT_EQ(pauses, 2 * attempts);
        ASSERT_EQ(static_cast<int>(bus.readLengths.size()), attempts);
        for (int i = 0; i < attempts; ++i)
            EXPECT_EQ(bus.readLengths[static_cast<size_t>(i)], 4 + 2 * i);
        if (c.box) {
            ASSERT_EQ(dialogs.boxes().size(), 1u);
            EXPECT_EQ(dialogs.boxes()[0].text, QString::fromUtf8(c.box));
            EXPECT_EQ(dialogs.boxes()[0].style, MsgBox::OkOnly);
            EXPECT_TRUE(dialogs.boxes()[0].title.endsWith(QStringLiteral(" Titre")));
            EXPECT_TRUE(dialogs.boxes()[0].title.contains(QStringLiteral("14:03:05")));
        } else {
            EXPECT_TRUE(dialogs.boxes().empty());
        }
    }
}

TEST_F(LinkFixture, NoBoxWhenNotAsked) {
    std::int16_t length = 8;
    Bytes reply;
    EXPECT_FALSE(exchange(Bytes(16, 0), length, reply, false));
    EXPECT_TRUE(state.TimeOut);
    EXPECT_TRUE(dialogs.boxes().empty());
}

TEST_F(LinkFixture, ReplyMayBeTheRequestArray) {
    bus.replies.push_back(ScriptedBus::checked(QByteArray("\xF1\x15\x0B", 3)));
    Bytes frame{0xF1};
    std::int16_t length = 3;
    ASSERT_TRUE(exchange(frame, length, frame));
    EXPECT_EQ(frame.size(), 5u);
    EXPECT_EQ(frame[1], 0x15);
    EXPECT_EQ(bus.written.at(0)[0], '\xF1');
}

TEST_F(LinkFixture, UnopenableOrRefusingDeviceTimesOut) {
    for (bool openFails : {true, false}) {
        SCOPED_TRACE(openFails ? "open fails" : "write refused");
        bus.openFails = openFails;
        bus.writeFails = !openFails;
        bus.replies.clear();
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
}

TEST_F(LinkFixture, ValueOutsideAByteFailsBeforeAnythingIsSent) {
    std::int16_t length = 2;
    Bytes reply;
    EXPECT_THROW(exchange({0xFF, 256, 1}, length, reply), OverflowError);
    EXPECT_THROW(exchange({0xFF, -1, 1}, length, reply), OverflowError);
    EXPECT_TRUE(bus.written.empty());
}

TEST_F(LinkFixture, ReadAfterTimeOutReadsNothing) {
    link.OuvreUsb(1);
    state.TimeOut = true;
    bus.replies.push_back(ScriptedBus::checked(QByteArray("\x01\x02", 2)));
    std::int16_t length = 2;
    const Bytes result = link.LitReponseUsb(length, QString(), false, 0, QString());
    EXPECT_EQ(length, 4);
    EXPECT_EQ(result, Bytes(4, 0));
    EXPECT_TRUE(bus.readLengths.empty());
}

TEST_F(LinkFixture, RawReadCopiesAnyBytesAndKeepsTheCheckFlag) {
    state.CRCError = true;
    link.OuvreUsb(1);
    bus.replies.push_back(QByteArray("\xF0\x02\x0C\x3C\x00", 5));
    const Bytes r = link.LitBrutUsb(7, QString(), false, 0, QString());
    EXPECT_EQ(r, (Bytes{0xF0, 2, 12, 60, 0, 0, 0}));
    EXPECT_FALSE(state.TimeOut);
    EXPECT_TRUE(state.CRCError);
    const Bytes silent = link.LitBrutUsb(7, QStringLiteral("m"), true, 0, QStringLiteral("t"));
    EXPECT_EQ(silent, Bytes(7, 0));
    EXPECT_TRUE(state.TimeOut);
    ASSERT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_EQ(dialogs.boxes()[0].title, QStringLiteral("t"));
}

TEST(ErrorTextTest, PlatformTextWithoutLineEnd) {
    const QString text = TexteErreurApi(2);
    EXPECT_FALSE(text.isEmpty());
    EXPECT_FALSE(text.endsWith(QLatin1Char('\n')));
}

} // namespace
} // namespace qv
