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
