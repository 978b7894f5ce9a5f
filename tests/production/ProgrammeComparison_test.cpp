// What the check after the read-back counts as the same programme.
#include "ProductionTestSupport.h"
#include "production/ProgrammeComparison.h"

#include <functional>

namespace qv {
namespace {

TEST(ProgrammeComparison, OnlyWhatTheDownloadCarriesCounts) {
    struct Case {
        const char* what;
        std::function<void(Condition&)> change;
        int line; // the line changed: 0 when the change must go unnoticed
    };
    const Case cases[] = {
        {"name", [](Condition& c) { c.Nom = QStringLiteral("other"); }, 0},
        {"comment", [](Condition& c) { c.Commentaire = QStringLiteral("x"); }, 0},
        {"logic", [](Condition& c) { c.setOperateur(0, 4); }, 0},
        {"format (taken from the output list)", [](Condition& c) { c.Format = 7; }, 0},
        {"output", [](Condition& c) { c.sortie = 4; }, 2},
        {"value", [](Condition& c) { c.Valeur = 2; }, 2},
        {"delay", [](Condition& c) { c.Temporisation = 301; }, 1},
        {"day", [](Condition& c) { c.Jour = 4; }, 2},
        {"hour", [](Condition& c) { c.Heure = 7; }, 2},
        {"range end", [](Condition& c) { c.PlageFinSeconde = 31; }, 3},
        {"first run of a periodic line", [](Condition& c) { c.PlageFinMinute = 22; }, 4},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const Conditions sent = test::siteProgramme();
        Conditions read = test::siteProgramme();
        c.change(*read.Item(c.line == 0 ? 2 : c.line));
        EXPECT_EQ(programmeDifference(sent, read), c.line);
    }
}

TEST(ProgrammeComparison, AValueTheFormatDoesNotSendIsNotCompared) {
    Conditions sent;
    sent.Add(test::programmeLine(0, 0, 0, 0, 1));
    sent.Item(1)->Format = 2;
    Conditions read;
    read.Add(test::programmeLine(0, 0, 0, 0, 1));
    read.Item(1)->Valeur = 99;
    EXPECT_EQ(programmeDifference(sent, read), 0);
    sent.Item(1)->Format = 0;
    EXPECT_EQ(programmeDifference(sent, read), 1);
}

TEST(ProgrammeComparison, AMissingOrExtraLineIsACountDifference) {
    Conditions shorter = test::siteProgramme();
    shorter.Remove(4);
    EXPECT_EQ(programmeDifference(test::siteProgramme(), shorter), -1);
    EXPECT_EQ(programmeDifference(shorter, test::siteProgramme()), -1);
    EXPECT_EQ(programmeDifference(Conditions{}, Conditions{}), 0);
}

} // namespace
} // namespace qv
