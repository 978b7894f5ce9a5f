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

QStringList namesOf(const Conditions& conditions) {
    QStringList names;
    for (const Condition& c : conditions)
        names << c.Nom;
    return names;
}

Conditions abc() {
    Conditions conditions;
    for (const char* nom : {"A", "B", "C"})
        conditions.Add(named(nom));
    return conditions;
}

TEST(ProgrammeConditions, IndexedPropertiesHoldNineElementsAndRefuseOtherIndices) {
    for (int index : {-1, 8, 9}) {
        Condition c;
        const int stored = c.setNumero(index, 1) + c.setOperateur(index, 2) +
                           c.setTempo(index, -3) + c.setValeur1(index, 4.5) +
                           c.setValeur2(index, -5.5);
        const bool inside = index == 8;
        EXPECT_EQ(stored, inside ? 5 : 0) << index;
        EXPECT_EQ(c == Condition(), !inside) << index;
        EXPECT_EQ(c.Valeur2(index), inside ? std::optional(-5.5) : std::nullopt) << index;
        EXPECT_EQ(c.Numero(index), inside ? std::optional<std::uint8_t>(1) : std::nullopt);
    }
}

TEST(ProgrammeConditions, AddPlacesTheCopyByBefore) {
    // before = Count puts it in front of the last line; 0 and anything past
    // Count append; below 0 is refused unless the collection is empty.
    const std::pair<int, QStringList> cases[] = {
        {0, {"A", "B", "C", "X"}}, {1, {"X", "A", "B", "C"}}, {2, {"A", "X", "B", "C"}},
        {3, {"A", "B", "X", "C"}}, {4, {"A", "B", "C", "X"}}, {99, {"A", "B", "C", "X"}},
        {-1, {"A", "B", "C"}}};
    for (const auto& [before, expected] : cases) {
        Conditions conditions = abc();
        Condition* stored = conditions.Add(named("X"), before);
        EXPECT_EQ(namesOf(conditions), expected) << before;
        EXPECT_EQ(stored, conditions.Item(int(expected.indexOf("X")) + 1))
            << "Add returns the stored line itself, or null";
    }
    Conditions empty;
    ASSERT_NE(empty.Add(named("X"), -1), nullptr);
    ASSERT_NE(empty.Add(named("Y"), 5), nullptr);
    EXPECT_EQ(namesOf(empty), QStringList({"X", "Y"}));
}

TEST(ProgrammeConditions, AddStoresACopyWithoutElementEight) {
    Condition source = named("L1");
    source.Derivee = true;
    source.ActionIntegrale = QStringLiteral("i");
    for (int i = 0; i < Condition::IndexedSize; ++i) {
        source.setNumero(i, std::uint8_t(10 + i));
        source.setOperateur(i, std::uint8_t(20 + i));
        source.setTempo(i, std::int16_t(-30 - i));
        source.setValeur1(i, 0.5 + i);
        source.setValeur2(i, -1.25 * i);
    }
    Conditions conditions;
    Condition* copy = conditions.Add(source);
    ASSERT_NE(copy, nullptr);
    Condition expected = source;
    expected.setValeur1(8, 0);
    expected.setValeur2(8, 0);
    expected.setNumero(8, 0);
    expected.setOperateur(8, 0);
    expected.setTempo(8, 0);
    EXPECT_TRUE(*copy == expected);
    // The caller's object is its own.
    source.setValeur1(0, 99.0);
    EXPECT_EQ(conditions.Item(1)->Valeur1(0), 0.5);
}

TEST(ProgrammeConditions, RemoveMovesLaterLinesUpAndReportsBadPositions) {
    const std::pair<int, QStringList> cases[] = {{1, {"B", "C"}},      {2, {"A", "C"}},
                                                 {3, {"A", "B"}},      {0, {"A", "B", "C"}},
                                                 {4, {"A", "B", "C"}}, {-2, {"A", "B", "C"}}};
    for (const auto& [position, expected] : cases) {
        Conditions conditions = abc();
        EXPECT_EQ(conditions.Remove(position), expected.size() == 2) << position;
        EXPECT_EQ(namesOf(conditions), expected) << position;
        EXPECT_EQ(conditions.Count(), expected.size());
    }
}

TEST(ProgrammeConditions, ItemReferenceOutlivesChangesElsewhere) {
    Conditions conditions = abc();
    Condition* c = conditions.Item(3);
    conditions.Remove(1);
    conditions.Add(named("X"), 1);
    for (int i = 0; i < 20; ++i)
        conditions.Add(named("Y"));
    EXPECT_EQ(c->Nom, "C");
    EXPECT_EQ(conditions.Item(3), c);
    EXPECT_EQ(conditions.Item(0), nullptr);
    EXPECT_EQ(std::as_const(conditions).Item(24), nullptr);
    int position = 1;
    for (Condition& line : conditions)
        EXPECT_EQ(&line, conditions.Item(position++));
}

} // namespace
} // namespace qv
