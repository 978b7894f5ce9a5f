#include "DeviceTestSupport.h"
#include "ScriptedBus.h"
#include "config/DateHelpers.h"
#include "device/DeviceClock.h"

namespace qv {
namespace {

using test::DeviceFixture;

TEST(ClockFrameTest, FieldsComeFromThePcAndTheWeekDayFromThePicker) {
    struct Case {
        QDate madate;
        QDateTime now;
        int option;
        std::array<int, 9> bytes;
    };
    const Case cases[] = {
        // A Sunday in the picker gives 7, a Monday 1.
        {QDate(2026, 11, 22),
         QDateTime(QDate(2026, 12, 31), QTime(23, 59, 59)),
         0,
         {1, 7, 23, 59, 59, 31, 12, 26, 0}},
        {QDate(2026, 11, 23),
         QDateTime(QDate(2026, 12, 31), QTime(23, 59, 59)),
         255,
         {1, 1, 23, 59, 59, 31, 12, 26, 255}},
        // The picker need not show today: both sources are kept.
        {QDate(2026, 11, 21),
         QDateTime(QDate(2030, 1, 2), QTime(0, 0, 5)),
         0,
         {1, 6, 0, 0, 5, 2, 1, 30, 0}},
    };
    for (const auto& c : cases) {
        const Bytes frame = clockFrame(c.madate, c.now, c.option);
        ASSERT_EQ(frame.size(), 16u);
        for (size_t i = 0; i < 9; ++i)
            EXPECT_EQ(frame[i], c.bytes[i]) << "byte " << i;
        for (size_t i = 9; i < 16; ++i)
            EXPECT_EQ(frame[i], 0);
    }
}

TEST(DeviceDateTest, RegionalOrderWithFallback) {
    const QLocale french(QLocale::French, QLocale::France);
    const QLocale us(QLocale::English, QLocale::UnitedStates);
    EXPECT_EQ(parseDeviceDate(21, 11, 26, french), QDate(2026, 11, 21));
    // "21/11/26" read month first fails and falls back to day first.
    EXPECT_EQ(parseDeviceDate(21, 11, 26, us), QDate(2026, 11, 21));
    EXPECT_EQ(parseDeviceDate(3, 4, 26, us), QDate(2026, 3, 4));
    EXPECT_EQ(parseDeviceDate(1, 1, 30, french), QDate(1930, 1, 1));
    EXPECT_EQ(parseDeviceDate(0, 0, 0, french), std::nullopt);
}

TEST_F(DeviceFixture, SetThenReadTheClock) {
    const auto id = plug();
    const QDateTime now = QDateTime::currentDateTime();
    MAH(device, 0, now.date(), now);
    EXPECT_FALSE(state.TimeOut);
    EXPECT_EQ(sim(id).lastTimeOption(), 0);
    const auto reading = LitDateEtHeure(device, QLocale(QLocale::French, QLocale::France));
    ASSERT_TRUE(reading.has_value());
    EXPECT_TRUE(reading->caption.contains(QStringLiteral(" - ")));
    ASSERT_TRUE(reading->heureDevice.has_value());
    const double expected = DateEnSecondes(oleDateFromDateTime(now), -1.0);
    EXPECT_NEAR(*reading->heureDevice, expected, 3.0);
}

TEST(DeviceClockTest, AllZeroReplyShowsZerosAndGivesNoTime) {
    test::ScriptedBus bus;
    test::RecordingDialogs dialogs;
    PublicState state;
    FrameLink link(bus, dialogs, state);
    link.setPause([](int) {});
    Device device(link, [] { return QStringLiteral("absent"); });
    bus.replies.push_back(test::ScriptedBus::checked(QByteArray(7, '\0')));
    const auto reading = LitDateEtHeure(device);
    ASSERT_TRUE(reading.has_value());
    EXPECT_EQ(reading->caption, QStringLiteral("00/00/00 - 00:00:00"));
    EXPECT_FALSE(reading->heureDevice.has_value());
    // A device that does not answer leaves the caption as it was.
    EXPECT_FALSE(LitDateEtHeure(device).has_value());
    EXPECT_TRUE(state.TimeOut);
}

TEST(DriftRatioTest, ZeroWhenClocksAgree) {
    EXPECT_EQ(driftRatio(1000, 1000, 0), 0);
    EXPECT_DOUBLE_EQ(driftRatio(1000, 990, 0), 100);
    EXPECT_DOUBLE_EQ(driftRatio(2000, 1990, 1000), 100);
}

} // namespace
} // namespace qv
