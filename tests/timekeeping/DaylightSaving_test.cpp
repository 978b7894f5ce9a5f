#include "TimekeepingTestSupport.h"
#include "timekeeping/DaylightSaving.h"

#include <QDomDocument>

namespace qv {
namespace {

// Rows selected in Mois_0, Mois_1, Semaine_0, Semaine_1, Jour_0, Jour_1,
// Heure_0 and Heure_1: summer, then winter, of each list.
using Selection = std::array<int, 8>;
constexpr Selection kDefaults{2, 9, 4, 4, 6, 6, 2, 3};
const char* const kLists[] = {"Mois", "Semaine", "Jour", "Heure"};

// What the check box enables.
const char* const kRuleEntries[] = {"DaylightAdjustment", "FrameSummer", "FrameWinter", "Mois_0",
                                    "Semaine_1",          "Jour_0",      "Heure_1"};

// The rule's attributes of Conf, in this order.
const char* const kConf[] = {"DAYLIGHT_SAVING", "OF_ETE_HIVER",   "OF_MOIS_ETE", "OF_MOIS_HIVER",
                             "OF_HEURE_ETE",    "OF_HEURE_HIVER", "OF_JOUR_ETE", "OF_JOUR_HIVER"};

class TimekeepingDaylight : public test::TimekeepingFixture {
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
        for (int i = 0; i < 8; ++i)
            view.setCurrentRow(arrayMember(kLists[i / 2], i % 2), s[size_t(i)]);
    }
    Selection selection() const {
        Selection s;
        for (int i = 0; i < 8; ++i)
            s[size_t(i)] = view.currentRow(arrayMember(kLists[i / 2], i % 2));
        return s;
    }
    QStringList conf() const {
        QFile file(configPath);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        QDomDocument document;
        document.setContent(&file);
        const QDomElement element = document.documentElement().firstChildElement("Conf");
        QStringList values;
        for (const char* name : kConf)
            values << element.attribute(name);
        return values;
    }
};

TEST_F(TimekeepingDaylight, InitialisationFillsTheListsAndSelectsTheLastSundays) {
    EXPECT_EQ(view.rows("Mois_1").size(), 12u);
    EXPECT_EQ(view.rows("Semaine_0").size(), 5u);
    // The editor's three leading day rows and its trailing one are gone.
    const auto days = view.rows("Jour_1");
    ASSERT_EQ(days.size(), 7u);
    EXPECT_EQ(days.front().text, "Monday");
    EXPECT_EQ(days.back().text, "Sunday");
    EXPECT_EQ(days.back().itemData, 7);
    ASSERT_EQ(view.rows("Heure_0").size(), 24u);
    EXPECT_EQ(view.rows("Heure_0")[23].itemData, 23);
    EXPECT_EQ(selection(), kDefaults);
    EXPECT_EQ(view.text("Mois_0"), "March");
    EXPECT_EQ(view.text("Mois_1"), "October");

    // Again, in another language: nothing piles up and the defaults return.
    select({});
    langue = QStringLiteral("Français");
    rule->DayLightSaving(true, true, true);
    EXPECT_EQ(view.rows("Jour_0").size(), 7u);
    EXPECT_EQ(view.rows("Heure_1").size(), 24u);
    EXPECT_EQ(view.text("Jour_0"), "Dimanche");
    EXPECT_EQ(selection(), kDefaults);

    // A language without lists keeps the rows, but the day lists still lose
    // their first three and last rows.
    langue = QStringLiteral("Klingon");
    rule->DayLightSaving(false, false, true);
    EXPECT_EQ(view.rows("Mois_0").size(), 12u);
    ASSERT_EQ(view.rows("Jour_0").size(), 3u);
    EXPECT_EQ(view.rows("Jour_0").front().text, "Jeudi");
}

TEST(TimekeepingDaylightByte, PackedByteAndItsRoundingDivision) {
    // The week is the byte / 16 rounded half to even, not a shift: the two
    // differ once the low bits pass 7.
    const std::array<int, 3> cases[] = {{0x57, 5, 7}, {0xFF, 0, 15}, {0x18, 2, 8},
                                        {0x28, 2, 8}, {0x38, 4, 8},  {0, 0, 0}};
    for (const auto& [packed, week, day] : cases) {
        const auto wd = DaylightSavingRule::unpackWeekDay(packed);
        EXPECT_EQ(std::make_pair(wd.week, wd.day), std::make_pair(week, day)) << packed;
    }
    EXPECT_EQ(DaylightSavingRule::packWeekDay(5, 7), 87);
    EXPECT_EQ(DaylightSavingRule::packWeekDay(15, 15), 255);
    EXPECT_EQ(DaylightSavingRule::packWeekDay(16, 0), std::nullopt);
    EXPECT_EQ(DaylightSavingRule::packWeekDay(-1, 0), std::nullopt);
}

TEST_F(TimekeepingDaylight, ReadFromDevice) {
    struct Case {
        std::array<int, 7> bytes; // 26..32
        Selection before;
        bool checked;
        Selection after;
    };
    // 255 in the summer byte is off, the winter byte does not decide; a value
    // without a row (day 15, week 0, month 13) keeps the row; the week is
    // rounded, 0x38 / 16 to 4.
    const Case cases[] = {
        {{60, 0x57, 3, 2, 0x57, 10, 3}, {}, true, kDefaults},
        {{0, 0x12, 4, 1, 0x34, 11, 23}, kDefaults, true, {3, 10, 0, 2, 1, 3, 1, 23}},
        {{30, 255, 3, 2, 0x11, 10, 3}, {1, 1, 1, 1, 1, 1, 1, 1}, false, {2, 9, 1, 0, 1, 0, 2, 3}},
        {{30, 0x11, 3, 2, 255, 10, 3}, kDefaults, true, {2, 9, 0, 4, 0, 6, 2, 3}},
        {{0, 0x38, 13, 24, 0x18, 0, 3}, kDefaults, true, {2, 9, 3, 1, 6, 6, 2, 3}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.bytes[1]);
        setEeprom(26, {c.bytes[0], c.bytes[1], c.bytes[2], c.bytes[3], c.bytes[4], c.bytes[5],
                       c.bytes[6]});
        select(c.before);
        view.setChecked("EnableDaylightSaving", !c.checked);
        for (const char* entry : kRuleEntries)
            view.setEnabled(entry, !c.checked);
        rule->DayLightSaving(false, false, false);
        EXPECT_EQ(view.text("DaylightAdjustment"), QString::number(c.bytes[0]));
        EXPECT_EQ(view.isChecked("EnableDaylightSaving"), c.checked);
        for (const char* entry : kRuleEntries)
            EXPECT_EQ(view.isEnabled(entry), c.checked) << entry << ": the change raised the click";
        EXPECT_EQ(selection(), c.after);
    }
    EXPECT_TRUE(dialogs.boxes().empty());
}

TEST_F(TimekeepingDaylight, WriteToDevice) {
    struct Case {
        Selection selection;
        bool checked;
        QString adjustment;
        std::vector<int> bytes; // 26..32
    };
    // Off: month and hour still go. An adjustment that is no byte is left.
    const Case cases[] = {{kDefaults, true, "60", {60, 0x57, 3, 2, 0x57, 10, 3}},
                          {{0, 11, 0, 2, 0, 3, 0, 23}, true, "0", {0, 0x11, 1, 0, 0x34, 12, 23}},
                          {kDefaults, false, "60", {60, 255, 3, 2, 255, 10, 3}},
                          {kDefaults, true, "abc", {0xAA, 0x57, 3, 2, 0x57, 10, 3}},
                          {kDefaults, true, "256", {0xAA, 0x57, 3, 2, 0x57, 10, 3}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.adjustment.toStdString());
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
    view.setText("DaylightAdjustment", "5");
    view.setCurrentRow("Mois_0", -1);
    view.setCurrentRow("Jour_1", -1);
    rule->DayLightSaving(true, false, false);
    EXPECT_EQ(eeprom(26, 7), (std::vector<int>{5, 0x57, 0xAA, 2, 0xAA, 10, 3}));
}

TEST_F(TimekeepingDaylight, DeadDeviceReadsAsZeroWithOneBoxPerByte) {
    bus.unplug(id);
    rule->DayLightSaving(false, false, false);
    EXPECT_EQ(dialogs.boxes().size(), 7u);
    EXPECT_EQ(view.text("DaylightAdjustment"), "0");
}

TEST_F(TimekeepingDaylight, WriteToConfiguration) {
    select({3, 8, 0, 4, 0, 6, 1, 4});
    view.setChecked("EnableDaylightSaving", true);
    view.setText("DaylightAdjustment", "30");
    rule->DayLightSaving(true, true, false);
    EXPECT_EQ(conf(), (QStringList{" 1", " 30", " 4", " 9", " 1", " 4", " 17", " 87"}));

    // Off: the week and day settings keep their values for a later on.
    select(kDefaults);
    view.setChecked("EnableDaylightSaving", false);
    view.setText("DaylightAdjustment", "abc");
    rule->DayLightSaving(true, true, false);
    EXPECT_EQ(conf(), (QStringList{" 0", "abc", " 3", " 10", " 2", " 3", " 17", " 87"}));
}

TEST_F(TimekeepingDaylight, ReadFromConfiguration) {
    struct Case {
        QString conf; // attributes of Conf
        bool checked;
        QString adjustment;
        Selection after;
    };
    // Nothing stored reads as 0, which only an hour has; a day of 8 has no
    // row; week 24 / 16 rounds to 2.
    const Case cases[] = {
        {R"(DAYLIGHT_SAVING=" 1" OF_ETE_HIVER=" 60" OF_MOIS_ETE=" 4" OF_MOIS_HIVER=" 9"
            OF_HEURE_ETE=" 1" OF_HEURE_HIVER=" 4" OF_JOUR_ETE=" 17" OF_JOUR_HIVER=" 52")",
         true,
         "60",
         {3, 8, 0, 2, 0, 3, 1, 4}},
        {R"(DAYLIGHT_SAVING=" 0" OF_ETE_HIVER="abc" OF_MOIS_ETE="13" OF_MOIS_HIVER="x"
            OF_HEURE_ETE="300" OF_HEURE_HIVER="-1" OF_JOUR_ETE="255" OF_JOUR_HIVER="")",
         false, "abc", kDefaults},
        {"", false, "0", {2, 9, 4, 4, 6, 6, 0, 0}},
        {R"(DAYLIGHT_SAVING="yes" OF_ETE_HIVER="1.5" OF_JOUR_ETE="24")",
         false,
         "1.5",
         {2, 9, 1, 4, 6, 6, 0, 0}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.conf.toStdString());
        QFile file(configPath);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        QString text = QString::fromUtf8(file.readAll());
        const qsizetype from = text.indexOf("<Conf ");
        text.replace(from, text.indexOf("/>", from) - from, "<Conf " + c.conf);
        file.resize(0);
        file.write(text.toUtf8());
        file.close();

        rule->DayLightSaving(false, false, true);
        view.setChecked("EnableDaylightSaving", !c.checked);
        view.setEnabled("Heure_1", !c.checked);
        rule->DayLightSaving(false, true, false);
        EXPECT_EQ(view.isChecked("EnableDaylightSaving"), c.checked);
        EXPECT_EQ(view.isEnabled("Heure_1"), c.checked);
        EXPECT_EQ(view.text("DaylightAdjustment"), c.adjustment);
        EXPECT_EQ(selection(), c.after);
    }
}

} // namespace
} // namespace qv
