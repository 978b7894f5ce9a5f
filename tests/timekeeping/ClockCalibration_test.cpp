#include "TimekeepingTestSupport.h"
#include "config/DateHelpers.h"
#include "config/VbFormat.h"
#include "timekeeping/ClockCalibration.h"

#include <cmath>

namespace qv {
namespace {

using test::TimekeepingFixture;

const QLocale kC = QLocale::c();
const QLocale kFrench(QLocale::French, QLocale::France);

class TimekeepingClock : public TimekeepingFixture {
protected:
    ClockState clock;
    QDateTime now{QDate(2026, 11, 21), QTime(14, 3, 5)};
    QLocale locale = kC;
    std::unique_ptr<ClockCalibration> calibration;

    void SetUp() override {
        TimekeepingFixture::SetUp();
        makeCalibration();
    }
    void makeCalibration() {
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
    EXPECT_DOUBLE_EQ(*ClockCalibration::frequencyOf(2), 16.0);
    EXPECT_EQ(ClockCalibration::frequencyOf(1), 0.0);
    EXPECT_EQ(ClockCalibration::frequencyOf(-1), std::nullopt);

    // Through the displayed text, a positive number comes back one less and
    // a negative one as itself.
    for (int n : {319, 100, 50, 7, 2, -321, -319, -100, -50, -7, -2}) {
        const QString shown = formatVb(*ClockCalibration::frequencyOf(n), "#.0000", kC);
        const auto back = ClockCalibration::calibrationNumber(shown.toDouble());
        EXPECT_EQ(back, n > 0 ? n - 1 : n) << n << " shown as " << shown.toStdString();
    }
}

TEST_F(TimekeepingClock, CalibrateWritesTheNumberAt33) {
    struct Case {
        QString text;
        QLocale locale;
        std::vector<int> bytes; // 33..36 after the click; 0xAA: untouched
    };
    const std::vector<int> untouched{0xAA, 0xAA, 0xAA, 0xAA};
    const Case cases[] = {
        {"31.9", kC, {0x3F, 0x01, 0, 0}},
        {"32.1", kC, {0xBF, 0xFE, 0xFF, 0xFF}},
        {"32", kC, {0, 0, 0, 0}},
        {"31,9", kFrench, {0x3F, 0x01, 0, 0}},
        {"", kC, untouched},
        {"0", kC, untouched},
        {"0.0000", kC, untouched},
        {"abc", kC, untouched},          // reads as 0
        {"31.9", kFrench, {0, 0, 0, 0}}, // not a number there, reads as 31.9
        {"12abc", kC, {0, 0, 0, 0}},
        {"32.0000000001", kC, untouched}, // beyond 32 bits
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.toStdString() + " " + c.locale.name().toStdString());
        locale = c.locale;
        makeCalibration();
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
        double heureDevice, programmation;
        QString ratio, frequency; // "keep": left as it was
    };
    const Case cases[] = {
        {"319", kC, pc - 10, pc - 1000, "100", "31.8997"},
        {"319", kFrench, pc - 3, pc - 1000, "333,333333333333", "31,8997"},
        {"0", kC, pc, pc - 1000, "0", "32.0000"}, // clocks agree: no division
        {"-321", kC, pc + 5, pc - 5, "-1", "32.1000"},
        {"1", kC, pc - 1, pc, "0", ".0000"},
        {"-1", kC, pc - 1, pc - 2, "2", "keep"},
        {"abc", kC, pc - 1, pc - 2, "keep", "keep"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.number.toStdString());
        locale = c.locale;
        makeCalibration();
        clock.HeureDevice = c.heureDevice;
        clock.DateProgrammationCourante = c.programmation;
        view.setText("ValeurHorloge_0", c.number);
        view.setText("ValeurHorloge_1", "keep");
        view.setText("ValeurHorloge_2", "keep");
        calibration->CalculeDeriveTemps();
        EXPECT_EQ(clock.HeurePC, pc);
        EXPECT_EQ(view.text("ValeurHorloge_1"), c.ratio);
        EXPECT_EQ(view.text("ValeurHorloge_2"), c.frequency);
    }
}

TEST_F(TimekeepingClock, MesureHorlogeReadsAndWritesTheFastClock) {
    struct Case {
        bool simBefore;
        bool ecriture;
        bool box;
        int result;
        bool simAfter;
        const char* frame;
    };
    const Case cases[] = {
        {true, false, false, 1, true, "F3 00 00"},
        {false, false, true, 0, false, "F3 00 00"},
        {false, true, true, 1, true, "F3 01 01"},
        {true, true, false, 0, false, "F3 01 00"},
    };
    for (const auto& c : cases) {
        setFastClock(c.simBefore);
        view.setChecked("CheckClockSpeed", c.box);
        bus.clearTrace();
        EXPECT_EQ(calibration->MesureHorloge(c.ecriture), c.result);
        EXPECT_EQ(sim(id).fastClock(), c.simAfter);
        EXPECT_EQ(sent("F3"), QStringList{c.frame});
    }
}

TEST_F(TimekeepingClock, ReadCycleSendsAChangedBoxBack) {
    struct Case {
        bool sim, boxBefore;
        bool changed;
        QStringList frames;
    };
    const Case cases[] = {
        {true, false, true, {"F3 00 00", "F3 01 01"}},
        {false, true, true, {"F3 00 00", "F3 01 00"}},
        {true, true, false, {"F3 00 00"}},
        {false, false, false, {"F3 00 00"}},
    };
    for (const auto& c : cases) {
        setFastClock(c.sim);
        view.setChecked("CheckClockSpeed", c.boxBefore);
        bus.clearTrace();
        EXPECT_EQ(calibration->LitVitesseHorloge(), c.changed);
        EXPECT_EQ(view.isChecked("CheckClockSpeed"), c.sim);
        EXPECT_EQ(sent("F3"), c.frames);
        EXPECT_EQ(sim(id).fastClock(), c.sim);
    }

    // The operator's click sends the box as it stands.
    view.setChecked("CheckClockSpeed", true);
    calibration->CheckClockSpeed_Click();
    EXPECT_TRUE(sim(id).fastClock());

    // A dead device reads as 0: the box drops, and the write back fails too.
    bus.unplug(id);
    EXPECT_TRUE(calibration->LitVitesseHorloge());
    EXPECT_FALSE(view.isChecked("CheckClockSpeed"));
    EXPECT_EQ(dialogs.boxes().size(), 2u);
}

TEST_F(TimekeepingClock, CalibrationNumberAndDeviceTimeOnScreen) {
    setEeprom(33, {0xBF, 0xFE, 0xFF, 0xFF});
    calibration->LitValeurTimer();
    EXPECT_EQ(view.text("ValeurHorloge_0"), "-321");

    const QDateTime deviceTime(QDate(2026, 11, 21), QTime(14, 3, 5));
    const qint64 frozen = bus.now();
    bus.setClock([frozen] { return frozen; });
    bus.modify(id, [&](SimDevice& d) { d.setDeviceTime(deviceTime, frozen); });
    locale = kFrench;
    makeCalibration();
    calibration->LitDateEtHeure();
    EXPECT_EQ(view.text("txtCurrentTime"), "21/11/26 - 14:03:05");
    EXPECT_EQ(clock.HeureDevice, DateEnSecondes(oleDateFromDateTime(deviceTime), -1.0));

    // A failed read leaves both as they were.
    bus.unplug(id);
    clock.HeureDevice = 42;
    calibration->LitDateEtHeure();
    EXPECT_EQ(view.text("txtCurrentTime"), "21/11/26 - 14:03:05");
    EXPECT_EQ(clock.HeureDevice, 42);
}

TEST_F(TimekeepingClock, ProgrammingDateStamp) {
    struct Case {
        QDateTime now;
        std::vector<int> bytes; // 20..23
    };
    const Case cases[] = {
        // The true count of seconds before March of a leap year...
        {QDateTime(QDate(2024, 2, 28), QTime(12, 0)), {0x40, 0x20, 0xDF, 0x65}},
        // ...and one day more from 1 March on, as the device counts.
        {QDateTime(QDate(2024, 3, 1), QTime(0, 0)), {0x00, 0x6C, 0xE2, 0x65}},
        // Beyond what 32 bits count: the stamp stays.
        {QDateTime(QDate(2040, 1, 1), QTime(0, 0)), {0x00, 0x6C, 0xE2, 0x65}},
    };
    for (const auto& c : cases) {
        now = c.now;
        calibration->EcritDateProgrammation();
        EXPECT_EQ(eeprom(20, 4), c.bytes) << c.now.toString().toStdString();
    }
}

} // namespace
} // namespace qv
