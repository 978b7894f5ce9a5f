#include "ProgrammeTestSupport.h"
#include "programme/Conditions.h"

#include <gtest/gtest.h>

namespace qv {
namespace {

Condition named(const char* nom) {
    Condition c;
    c.Nom = QString::fromLatin1(nom);
    return c;
}

TEST(ProgrammeConditions, AddPlacesACopyByBeforeWithoutElementEight) {
    // before = Count puts it in front of the last line; 0 and anything past
    // Count append.
    const std::pair<int, QStringList> cases[] = {{0, {"A", "B", "C", "X"}},
                                                 {1, {"X", "A", "B", "C"}},
                                                 {3, {"A", "B", "X", "C"}},
                                                 {4, {"A", "B", "C", "X"}}};
    for (const auto& [before, expected] : cases) {
        Conditions conditions;
        for (const char* nom : {"A", "B", "C"})
            conditions.Add(named(nom));
        Condition source = named("X");
        source.setValeur1(0, 0.5);
        source.setValeur1(8, 7.5);
        conditions.Add(source, before);
        source.setValeur1(0, 99.0); // the caller's object is its own
        QStringList names;
        for (const Condition& c : conditions)
            names << c.Nom;
        EXPECT_EQ(names, expected) << before;
        const Condition& copy = *conditions.Item(int(expected.indexOf("X")) + 1);
        EXPECT_EQ(copy.Valeur1(0), 0.5) << before;
        EXPECT_EQ(copy.Valeur1(8), 0.0) << before;
    }
}

} // namespace
} // namespace qv
