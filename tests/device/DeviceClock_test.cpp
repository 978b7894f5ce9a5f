#include "DeviceTestSupport.h"
#include "ScriptedBus.h"
#include "config/DateHelpers.h"
#include "device/DeviceClock.h"

namespace qv {
namespace {

using test::DeviceFixture;

TEST(DeviceClockTest, FrameFieldsComeFromThePcAndTheWeekDayFromThePicker) {
    const QDateTime now(QDate(2026, 12, 31), QTime(23, 59, 59));
    // A Sunday in the picker gives 7, a Monday 1; the picker need not show today.
    EXPECT_EQ(clockFrame(QDate(2026, 11, 22), now, 0),
              (Bytes{1, 7, 23, 59, 59, 31, 12, 26, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(clockFrame(QDate(2026, 11, 23), now, 255),
              (Bytes{1, 1, 23, 59, 59, 31, 12, 26, 255, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(clockFrame(QDate(2026, 11, 21), QDateTime(QDate(2030, 1, 2), QTime(0, 0, 5)), 0),
              (Bytes{1, 6, 0, 0, 5, 2, 1, 30, 0, 0, 0, 0, 0, 0, 0, 0}));

    EXPECT_EQ(driftRatio(1000, 1000, 0), 0);
    EXPECT_DOUBLE_EQ(driftRatio(2000, 1990, 1000), 100);
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

} // namespace
} // namespace qv
