#include "TimekeepingTestSupport.h"
#include "timekeeping/DaylightSaving.h"

#include <QDomDocument>

namespace qv {
namespace {

using test::TimekeepingFixture;

// Row positions selected in the rule's lists, summer and winter.
struct Selection {
    int mois[2], semaine[2], jour[2], heure[2];
};
constexpr Selection kDefaults{{2, 9}, {4, 4}, {6, 6}, {2, 3}};

class TimekeepingDaylight : public TimekeepingFixture {
protected:
    QString langue = QStringLiteral("English");
    std::unique_ptr<DaylightSavingRule> rule;

    void SetUp() override {
        TimekeepingFixture::SetUp();
        rule = std::make_unique<DaylightSavingRule>(
            view, device, *config, [this] { return langue; }, QLocale::c());
        rule->DayLightSaving(false, false, true);
    }

    void select(const Selection& s) {
        for (int i = 0; i < 2; ++i) {
            view.setCurrentRow(arrayMember("Mois", i), s.mois[i]);
            view.setCurrentRow(arrayMember("Semaine", i), s.semaine[i]);
            view.setCurrentRow(arrayMember("Jour", i), s.jour[i]);
            view.setCurrentRow(arrayMember("Heure", i), s.heure[i]);
        }
    }
    void expectSelection(const Selection& s) {
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(view.currentRow(arrayMember("Mois", i)), s.mois[i]) << "Mois " << i;
            EXPECT_EQ(view.currentRow(arrayMember("Semaine", i)), s.semaine[i]) << "Semaine " << i;
            EXPECT_EQ(view.currentRow(arrayMember("Jour", i)), s.jour[i]) << "Jour " << i;
            EXPECT_EQ(view.currentRow(arrayMember("Heure", i)), s.heure[i]) << "Heure " << i;
        }
    }
    QString confAttribute(const QString& name) {
        QFile file(configPath);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        QDomDocument document;
        document.setContent(&file);
        return document.documentElement().firstChildElement("Conf").attribute(name);
    }
};

TEST_F(TimekeepingDaylight, InitialisationFillsTheListsAndSelectsTheLastSundays) {
    ASSERT_EQ(view.rows("Mois_1").size(), 12u);
    ASSERT_EQ(view.rows("Semaine_0").size(), 5u);
    // The editor's three leading day rows and its trailing one are gone.
    const auto days = view.rows("Jour_1");
    ASSERT_EQ(days.size(), 7u);
    EXPECT_EQ(days.front().text, "Monday");
    EXPECT_EQ(days.back().text, "Sunday");
    EXPECT_EQ(days.back().itemData, 7);
    const auto hours = view.rows("Heure_0");
    ASSERT_EQ(hours.size(), 24u);
    EXPECT_EQ(hours[23].text, "23");
    EXPECT_EQ(hours[23].itemData, 23);
    expectSelection(kDefaults);
    EXPECT_EQ(view.text("Mois_0"), "March");
    EXPECT_EQ(view.text("Mois_1"), "October");

    // A second initialisation, in another language, piles nothing up and
    // puts the defaults back over the operator's choice.
    select({{0, 0}, {0, 0}, {0, 0}, {0, 0}});
    langue = QStringLiteral("Français");
    rule->DayLightSaving(true, true, true);
    EXPECT_EQ(view.rows("Jour_0").size(), 7u);
    EXPECT_EQ(view.rows("Heure_1").size(), 24u);
    EXPECT_EQ(view.text("Jour_0"), "Dimanche");
    expectSelection(kDefaults);

    // A language without lists keeps the rows, but the day lists still lose
    // their first three and last rows.
    langue = QStringLiteral("Klingon");
    rule->DayLightSaving(false, false, true);
    EXPECT_EQ(view.rows("Mois_0").size(), 12u);
    EXPECT_EQ(view.rows("Jour_0").size(), 3u);
    EXPECT_EQ(view.rows("Jour_0").front().text, "Jeudi");
}

TEST(TimekeepingDaylightByte, PackedByteAndItsRoundingDivision) {
    struct Case {
        int packed, week, day;
    };
    // The week is the byte / 16 rounded half to even, not a shift: the two
    // differ once the low bits pass 7.
    const Case cases[] = {{0x57, 5, 7}, {0x11, 1, 1}, {0xFF, 0, 15}, {0x18, 2, 8},
                          {0x28, 2, 8}, {0x38, 4, 8}, {0x1A, 2, 10}, {0, 0, 0}};
    for (const auto& c : cases) {
        const auto wd = DaylightSavingRule::unpackWeekDay(c.packed);
        EXPECT_EQ(wd.week, c.week) << c.packed;
        EXPECT_EQ(wd.day, c.day) << c.packed;
    }
    EXPECT_EQ(DaylightSavingRule::packWeekDay(5, 7), 87);
    EXPECT_EQ(DaylightSavingRule::packWeekDay(15, 15), 255);
    EXPECT_EQ(DaylightSavingRule::packWeekDay(16, 0), std::nullopt);
    EXPECT_EQ(DaylightSavingRule::packWeekDay(-1, 0), std::nullopt);
}

TEST_F(TimekeepingDaylight, TrouveIndexTakesTheFirstMatchOrLeavesTheSelection) {
    view.setRows("L", {{"a", 4}, {"b", 7}, {"c", 7}});
    view.setCurrentRow("L", 0);
    rule->TrouveIndex(7, "L");
    EXPECT_EQ(view.currentRow("L"), 1);
    rule->TrouveIndex(9, "L");
    EXPECT_EQ(view.currentRow("L"), 1);
    rule->TrouveIndex(4, "Empty");
    EXPECT_EQ(view.currentRow("Empty"), -1);
}

TEST_F(TimekeepingDaylight, EnableCheckBoxDrivesTheFrame) {
    const char* const entries[] = {
        "DaylightAdjustment", "FrameSummer", "FrameWinter", "Mois_0",  "Mois_1", "Semaine_0",
        "Semaine_1",          "Jour_0",      "Jour_1",      "Heure_0", "Heure_1"};
    for (bool checked : {false, true, false}) {
        view.setChecked("EnableDaylightSaving", checked);
        rule->EnableDaylightSaving_Click();
        for (const char* name : entries)
            EXPECT_EQ(view.isEnabled(name), checked) << name;
        EXPECT_TRUE(view.isEnabled("DaylightFrame"));
    }
}

TEST_F(TimekeepingDaylight, ReadFromDevice) {
    struct Case {
        std::array<int, 7> bytes; // 26..32
        Selection before;
        bool checked;
        Selection after;
        const char* why;
    };
    const Case cases[] = {
        {{60, 0x57, 3, 2, 0x57, 10, 3},
         {{0, 0}, {0, 0}, {0, 0}, {0, 0}},
         true,
         kDefaults,
         "the shipped rule"},
        {{0, 0x12, 4, 1, 0x34, 11, 23},
         kDefaults,
         true,
         {{3, 10}, {0, 2}, {1, 3}, {1, 23}},
         "every field"},
        // 255: unchecked; day 15 and week 0 have no row, so both stay.
        {{30, 255, 3, 2, 0x11, 10, 3},
         {{1, 1}, {1, 1}, {1, 1}, {1, 1}},
         false,
         {{2, 9}, {1, 0}, {1, 0}, {2, 3}},
         "rule off"},
        {{30, 0x11, 3, 2, 255, 10, 3},
         kDefaults,
         true,
         {{2, 9}, {0, 4}, {0, 6}, {2, 3}},
         "the winter byte does not decide"},
        {{0, 0x38, 13, 24, 0x18, 0, 3},
         kDefaults,
         true,
         {{2, 9}, {3, 1}, {6, 6}, {2, 3}},
         "unknown values keep the row; week by rounding"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        setEeprom(26, {c.bytes[0], c.bytes[1], c.bytes[2], c.bytes[3], c.bytes[4], c.bytes[5],
                       c.bytes[6]});
        select(c.before);
        view.setChecked("EnableDaylightSaving", !c.checked);
        view.setEnabled("Mois_0", !c.checked);
        rule->DayLightSaving(false, false, false);
        EXPECT_EQ(view.text("DaylightAdjustment"), QString::number(c.bytes[0]));
        EXPECT_EQ(view.isChecked("EnableDaylightSaving"), c.checked);
        EXPECT_EQ(view.isEnabled("Mois_0"), c.checked) << "the change raised the click";
        expectSelection(c.after);
    }
    EXPECT_TRUE(dialogs.boxes().empty());
}

TEST_F(TimekeepingDaylight, WriteToDevice) {
    struct Case {
        Selection selection;
        bool checked;
        QString adjustment;
        std::vector<int> bytes; // 26..32
        const char* why;
    };
    const Case cases[] = {
        {kDefaults, true, "60", {60, 0x57, 3, 2, 0x57, 10, 3}, "defaults"},
        {{{0, 11}, {0, 2}, {0, 3}, {0, 23}}, true, "0", {0, 0x11, 1, 0, 0x34, 12, 23}, "edges"},
        {kDefaults, false, "60", {60, 255, 3, 2, 255, 10, 3}, "off: month and hour still go"},
        {kDefaults, true, "abc", {0xAA, 0x57, 3, 2, 0x57, 10, 3}, "adjustment not a byte"},
        {kDefaults, true, "256", {0xAA, 0x57, 3, 2, 0x57, 10, 3}, "adjustment too large"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        setEeprom(26, {0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA});
        select(c.selection);
        view.setChecked("EnableDaylightSaving", c.checked);
        view.setText("DaylightAdjustment", c.adjustment);
        rule->DayLightSaving(true, false, false);
        EXPECT_EQ(eeprom(26, 7), c.bytes);
    }

    // A list without a selection leaves its byte alone and stops nothing.
    setEeprom(26, {0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA});
    select(kDefaults);
    view.setChecked("EnableDaylightSaving", true);
    view.setText("DaylightAdjustment", "5");
    view.setCurrentRow("Mois_0", -1);
    view.setCurrentRow("Jour_1", -1);
    rule->DayLightSaving(true, false, false);
    EXPECT_EQ(eeprom(26, 7), (std::vector<int>{5, 0x57, 0xAA, 2, 0xAA, 10, 3}));
}

TEST_F(TimekeepingDaylight, DeviceRoundTripAndDeadDevice) {
    const Selection chosen{{5, 0}, {1, 3}, {2, 4}, {22, 1}};
    select(chosen);
    view.setChecked("EnableDaylightSaving", true);
    view.setText("DaylightAdjustment", "45");
    rule->DayLightSaving(true, false, false);
    rule->DayLightSaving(false, false, true);
    view.setText("DaylightAdjustment", "");
    rule->DayLightSaving(false, false, false);
    expectSelection(chosen);
    EXPECT_EQ(view.text("DaylightAdjustment"), "45");

    // Each address is tried in turn: one box per byte.
    bus.unplug(id);
    rule->DayLightSaving(false, false, false);
    EXPECT_EQ(dialogs.boxes().size(), 7u);
    EXPECT_EQ(view.text("DaylightAdjustment"), "0");
}

TEST_F(TimekeepingDaylight, WriteToConfiguration) {
    select({{3, 8}, {0, 4}, {0, 6}, {1, 4}});
    view.setChecked("EnableDaylightSaving", true);
    view.setText("DaylightAdjustment", "30");
    rule->DayLightSaving(true, true, false);
    EXPECT_EQ(confAttribute("DAYLIGHT_SAVING"), " 1");
    EXPECT_EQ(confAttribute("OF_ETE_HIVER"), " 30");
    EXPECT_EQ(confAttribute("OF_MOIS_ETE"), " 4");
    EXPECT_EQ(confAttribute("OF_MOIS_HIVER"), " 9");
    EXPECT_EQ(confAttribute("OF_HEURE_ETE"), " 1");
    EXPECT_EQ(confAttribute("OF_HEURE_HIVER"), " 4");
    EXPECT_EQ(confAttribute("OF_JOUR_ETE"), " 17");
    EXPECT_EQ(confAttribute("OF_JOUR_HIVER"), " 87");

    // Off: the week and day settings keep their values for a later on.
    select(kDefaults);
    view.setChecked("EnableDaylightSaving", false);
    view.setText("DaylightAdjustment", "abc");
    rule->DayLightSaving(true, true, false);
    EXPECT_EQ(confAttribute("DAYLIGHT_SAVING"), " 0");
    EXPECT_EQ(confAttribute("OF_ETE_HIVER"), "abc");
    EXPECT_EQ(confAttribute("OF_MOIS_ETE"), " 3");
    EXPECT_EQ(confAttribute("OF_JOUR_ETE"), " 17");
    EXPECT_EQ(confAttribute("OF_JOUR_HIVER"), " 87");
}

TEST_F(TimekeepingDaylight, ReadFromConfiguration) {
    struct Case {
        QString conf; // attributes of Conf
        bool checked;
        QString adjustment;
        Selection after;
        const char* why;
    };
    const Case cases[] = {
        {R"(DAYLIGHT_SAVING=" 1" OF_ETE_HIVER=" 60" OF_MOIS_ETE=" 4" OF_MOIS_HIVER=" 9"
            OF_HEURE_ETE=" 1" OF_HEURE_HIVER=" 4" OF_JOUR_ETE=" 17" OF_JOUR_HIVER=" 52")",
         true,
         "60",
         {{3, 8}, {0, 2}, {0, 3}, {1, 4}},
         "every field"},
        {R"(DAYLIGHT_SAVING=" 0" OF_ETE_HIVER="abc" OF_MOIS_ETE="13" OF_MOIS_HIVER="x"
            OF_HEURE_ETE="300" OF_HEURE_HIVER="-1" OF_JOUR_ETE="255" OF_JOUR_HIVER="")",
         false, "abc", kDefaults, "nothing that selects a row"},
        {"",
         false,
         "0",
         {{2, 9}, {4, 4}, {6, 6}, {0, 0}},
         "never stored: 0, which only an hour has"},
        {R"(DAYLIGHT_SAVING="yes" OF_ETE_HIVER="1.5" OF_JOUR_ETE="24")",
         false,
         "1.5",
         {{2, 9}, {1, 4}, {6, 6}, {0, 0}},
         "a day of 8 has no row; week 24/16 rounds to 2"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        QFile file(configPath);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QString text = QString::fromUtf8(file.readAll());
        file.close();
        const qsizetype from = text.indexOf("<Conf ");
        const qsizetype to = text.indexOf("/>", from);
        text.replace(from, to - from, "<Conf " + c.conf);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text.toUtf8());
        file.close();

        rule->DayLightSaving(false, false, true);
        view.setChecked("EnableDaylightSaving", !c.checked);
        view.setEnabled("Heure_1", !c.checked);
        rule->DayLightSaving(false, true, false);
        EXPECT_EQ(view.isChecked("EnableDaylightSaving"), c.checked);
        EXPECT_EQ(view.isEnabled("Heure_1"), c.checked);
        EXPECT_EQ(view.text("DaylightAdjustment"), c.adjustment);
        expectSelection(c.after);
    }
}

} // namespace
} // namespace qv
