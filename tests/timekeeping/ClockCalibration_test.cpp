#include "TimekeepingTestSupport.h"
#include "config/DateHelpers.h"
#include "config/VbFormat.h"
#include "timekeeping/ClockCalibration.h"

namespace qv {
namespace {

const QLocale kC = QLocale::c();
const QLocale kFr(QLocale::French, QLocale::France);

class TimekeepingClock : public test::TimekeepingFixture {
protected:
    ClockState clock;
    QDateTime now{QDate(2026, 11, 21), QTime(14, 3, 5)};
    std::unique_ptr<ClockCalibration> calibration;

    void SetUp() override {
        TimekeepingFixture::SetUp();
        makeCalibration(kC);
    }
    void makeCalibration(const QLocale& locale) {
        calibration =
            std::make_unique<ClockCalibration>(view, device, clock, locale, [this] { return now; });
    }
    void setFastClock(bool on) {
        bus.modify(id, [on](SimDevice& d) { d.setFastClock(on); });
    }
};

TEST(TimekeepingCalibrationNumber, FromFrequencyAndBack) {
    struct Case {
        double frequency;
        std::optional<std::int32_t> number;
    };
    const Case cases[] = {{31.9, 319}, {32.1, -321}, {32, 0},  {31, 31},
                          {33, -33},   {16, 1},      {64, -2}, {32.0000000001, std::nullopt}};
    for (const auto& c : cases)
        EXPECT_EQ(ClockCalibration::calibrationNumber(c.frequency), c.number) << c.frequency;

    EXPECT_EQ(ClockCalibration::frequencyOf(0), 32.0);
    EXPECT_DOUBLE_EQ(*ClockCalibration::frequencyOf(-321), 32.1);
    EXPECT_EQ(ClockCalibration::frequencyOf(1), 0.0);
    EXPECT_EQ(ClockCalibration::frequencyOf(-1), std::nullopt);

    // Through the displayed text, a positive number comes back one less and
    // a negative one as itself.
    for (int n : {319, 50, 2, -321, -50, -2}) {
        const QString shown = formatVb(*ClockCalibration::frequencyOf(n), "#.0000", kC);
        EXPECT_EQ(ClockCalibration::calibrationNumber(shown.toDouble()), n > 0 ? n - 1 : n) << n;
    }
}

TEST_F(TimekeepingClock, CalibrateWritesTheNumberAt33) {
    struct Case {
        QString text;
        QLocale locale;
        std::vector<int> bytes; // 33..36 after the click
    };
    // Empty or no number at all reads as 0 and writes nothing, nor does a
    // number beyond 32 bits; a number of the wrong locale, or a leading
    // number, writes 0.
    const std::vector<int> untouched{0xAA, 0xAA, 0xAA, 0xAA}, zero{0, 0, 0, 0};
    const std::vector<int> n319{0x3F, 0x01, 0, 0}, n321{0xBF, 0xFE, 0xFF, 0xFF};
    const Case cases[] = {
        {"31.9", kC, n319},  {"32.1", kC, n321},  {"32", kC, zero},
        {"31,9", kFr, n319}, {"", kC, untouched}, {"abc", kC, untouched},
        {"31.9", kFr, zero}, {"12abc", kC, zero}, {"32.0000000001", kC, untouched}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.toStdString() + " " + c.locale.name().toStdString());
        makeCalibration(c.locale);
        setEeprom(33, {0xAA, 0xAA, 0xAA, 0xAA});
        view.setText("ValeurHorloge_2", c.text);
        calibration->CommandCalibrationCLK_Click();
        EXPECT_EQ(eeprom(33, 4), c.bytes);
    }
    EXPECT_TRUE(dialogs.boxes().empty());
}

TEST_F(TimekeepingClock, DriftAndFrequencyDisplay) {
    const double pc = DateEnSecondes(oleDateFromDateTime(now), -1.0);
    struct Case {
        QString number;
        QLocale locale;
        double device, programmed;
        QString ratio, frequency; // "keep": left as it was
    };
    const Case cases[] = {{"319", kC, pc - 10, pc - 1000, "100", "31.8997"},
                          {"319", kFr, pc - 3, pc - 1000, "333,333333333333", "31,8997"},
                          {"0", kC, pc, pc - 1000, "0", "32.0000"}, // clocks agree: no division
                          {"-321", kC, pc + 5, pc - 5, "-1", "32.1000"},
                          {"1", kC, pc - 1, pc, "0", ".0000"},
                          {"-1", kC, pc - 1, pc - 2, "2", "keep"},
                          {"abc", kC, pc - 1, pc - 2, "keep", "keep"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.number.toStdString());
        makeCalibration(c.locale);
        clock.HeureDevice = c.device;
        clock.DateProgrammationCourante = c.programmed;
        view.setText("ValeurHorloge_0", c.number);
        view.setText("ValeurHorloge_1", "keep");
        view.setText("ValeurHorloge_2", "keep");
        calibration->CalculeDeriveTemps();
        EXPECT_EQ(clock.HeurePC, pc);
        EXPECT_EQ(view.text("ValeurHorloge_1"), c.ratio);
        EXPECT_EQ(view.text("ValeurHorloge_2"), c.frequency);
    }
}

TEST_F(TimekeepingClock, ProgrammingDateStamp) {
    // The true count of seconds before March of a leap year, one day more
    // from 1 March on as the device counts, and beyond 32 bits the stamp stays.
    const std::pair<QDateTime, std::vector<int>> cases[] = {
        {QDateTime(QDate(2024, 2, 28), QTime(12, 0)), {0x40, 0x20, 0xDF, 0x65}},
        {QDateTime(QDate(2024, 3, 1), QTime(0, 0)), {0x00, 0x6C, 0xE2, 0x65}},
        {QDateTime(QDate(2040, 1, 1), QTime(0, 0)), {0x00, 0x6C, 0xE2, 0x65}}};
    for (const auto& [moment, bytes] : cases) {
        now = moment;
        calibration->EcritDateProgrammation();
        EXPECT_EQ(eeprom(20, 4), bytes) << moment.toString().toStdString();
    }
}

} // namespace
} // namespace qv
