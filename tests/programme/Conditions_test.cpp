#include "ProgrammeTestSupport.h"
#include "programme/Conditions.h"

#include <gtest/gtest.h>

#include <vector>

namespace qv {
namespace {

Condition named(const QString& nom) {
    Condition c;
    c.Nom = nom;
    return c;
}

QStringList namesOf(const Conditions& conditions) {
    QStringList names;
    for (const Condition& c : conditions) {
        names << c.Nom;
    }
    return names;
}

Conditions abc() {
    Conditions conditions;
    for (const char* nom : {"A", "B", "C"}) {
        conditions.Add(named(QString::fromLatin1(nom)));
    }
    return conditions;
}

TEST(ProgrammeConditions, IndexedPropertiesHoldNineElementsAndReportOtherIndices) {
    for (int index : {0, 3, 8}) {
        Condition c;
        EXPECT_TRUE(c.setNumero(index, 1) && c.setOperateur(index, 2) && c.setTempo(index, -3) &&
                    c.setValeur1(index, 4.5) && c.setValeur2(index, -5.5))
            << index;
        EXPECT_EQ(c.Numero(index), 1);
        EXPECT_EQ(c.Operateur(index), 2);
        EXPECT_EQ(c.tempo(index), -3);
        EXPECT_EQ(c.Valeur1(index), 4.5);
        EXPECT_EQ(c.Valeur2(index), -5.5);
        const int other = index == 0 ? 1 : 0;
        EXPECT_EQ(c.Numero(other), 0);
        EXPECT_EQ(c.Valeur2(other), 0.0);
    }
    for (int index : {-1, 9, 10, 255, -32768}) {
        Condition c;
        EXPECT_FALSE(c.setNumero(index, 1)) << index;
        EXPECT_FALSE(c.setOperateur(index, 2)) << index;
        EXPECT_FALSE(c.setTempo(index, -3)) << index;
        EXPECT_FALSE(c.setValeur1(index, 4.5)) << index;
        EXPECT_FALSE(c.setValeur2(index, -5.5)) << index;
        EXPECT_TRUE(c == Condition()) << index;
        EXPECT_EQ(c.Numero(index), std::nullopt);
        EXPECT_EQ(c.Operateur(index), std::nullopt);
        EXPECT_EQ(c.tempo(index), std::nullopt);
        EXPECT_EQ(c.Valeur1(index), std::nullopt);
        EXPECT_EQ(c.Valeur2(index), std::nullopt);
    }
}

TEST(ProgrammeConditions, AddPlacesTheCopyByBefore) {
    struct Case {
        int before;
        QStringList expected;
    };
    const std::vector<Case> cases = {
        {0, {"A", "B", "C", "X"}},  {1, {"X", "A", "B", "C"}}, {2, {"A", "X", "B", "C"}},
        {3, {"A", "B", "X", "C"}}, // before = Count: in front of the last line
        {4, {"A", "B", "C", "X"}}, // before = Count + 1: appended, as with 0
        {99, {"A", "B", "C", "X"}},
    };
    for (const Case& test : cases) {
        Conditions conditions = abc();
        Condition* stored = conditions.Add(named(QStringLiteral("X")), test.before);
        ASSERT_NE(stored, nullptr) << test.before;
        EXPECT_EQ(namesOf(conditions), test.expected) << test.before;
        EXPECT_EQ(stored->Nom, QStringLiteral("X"));
        EXPECT_EQ(stored, conditions.Item(int(test.expected.indexOf(QStringLiteral("X"))) + 1))
            << "Add returns the stored line itself";
    }
}

TEST(ProgrammeConditions, NegativeBeforeIsRefusedUnlessTheCollectionIsEmpty) {
    Conditions conditions = abc();
    EXPECT_EQ(conditions.Add(named(QStringLiteral("X")), -1), nullptr);
    EXPECT_EQ(namesOf(conditions), QStringList({"A", "B", "C"}));

    Conditions empty;
    ASSERT_NE(empty.Add(named(QStringLiteral("X")), -1), nullptr);
    ASSERT_NE(empty.Add(named(QStringLiteral("Y")), 5), nullptr);
    EXPECT_EQ(namesOf(empty), QStringList({"X", "Y"}));
}

TEST(ProgrammeConditions, AddStoresACopyWithoutElementEight) {
    Condition source;
    source.Nom = QStringLiteral("L1");
    source.Valeur = 1.0;
    source.Derivee = true;
    source.integrale = true;
    source.ActionDerivee = QStringLiteral("d");
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
    EXPECT_NE(copy, &source);
    EXPECT_EQ(test::storedFields(*copy), test::storedFields(source));
    EXPECT_TRUE(copy->Derivee);
    EXPECT_TRUE(copy->integrale);
    EXPECT_EQ(copy->ActionDerivee, QStringLiteral("d"));
    EXPECT_EQ(copy->ActionIntegrale, QStringLiteral("i"));
    EXPECT_EQ(copy->Numero(8), 0);
    EXPECT_EQ(copy->Operateur(8), 0);
    EXPECT_EQ(copy->tempo(8), 0);
    EXPECT_EQ(copy->Valeur1(8), 0.0);
    EXPECT_EQ(copy->Valeur2(8), 0.0);

    // The caller's object is its own.
    source.Nom = QStringLiteral("changed");
    source.Valeur = 0.0;
    source.setValeur1(0, 99.0);
    EXPECT_EQ(conditions.Item(1)->Nom, QStringLiteral("L1"));
    EXPECT_EQ(conditions.Item(1)->Valeur, 1.0);
    EXPECT_EQ(conditions.Item(1)->Valeur1(0), 0.5);
}

TEST(ProgrammeConditions, ItemHandsOutTheStoredLine) {
    Conditions conditions = abc();
    conditions.Item(2)->Temporisation = 300;
    EXPECT_EQ(conditions.Item(2)->Temporisation, 300);

    for (int position : {0, -1, 4, 100}) {
        EXPECT_EQ(conditions.Item(position), nullptr) << position;
        EXPECT_EQ(std::as_const(conditions).Item(position), nullptr) << position;
    }
}

TEST(ProgrammeConditions, RemoveMovesLaterLinesUpAndReportsBadPositions) {
    struct Case {
        int position;
        bool removed;
        QStringList expected;
    };
    const std::vector<Case> cases = {
        {1, true, {"B", "C"}},       {2, true, {"A", "C"}},       {3, true, {"A", "B"}},
        {0, false, {"A", "B", "C"}}, {4, false, {"A", "B", "C"}}, {-2, false, {"A", "B", "C"}},
    };
    for (const Case& test : cases) {
        Conditions conditions = abc();
        EXPECT_EQ(conditions.Remove(test.position), test.removed) << test.position;
        EXPECT_EQ(namesOf(conditions), test.expected) << test.position;
        EXPECT_EQ(conditions.Count(), test.expected.size());
    }
}

TEST(ProgrammeConditions, ItemReferenceOutlivesChangesElsewhere) {
    Conditions conditions = abc();
    Condition* c = conditions.Item(3);
    conditions.Remove(1);
    conditions.Add(named(QStringLiteral("X")), 1);
    for (int i = 0; i < 20; ++i) {
        conditions.Add(named(QStringLiteral("Y")));
    }
    EXPECT_EQ(c->Nom, QStringLiteral("C"));
    EXPECT_EQ(conditions.Item(3), c);
}

TEST(ProgrammeConditions, WalkFollowsPositions) {
    Conditions conditions = abc();
    conditions.Add(named(QStringLiteral("X")), 2);
    int position = 1;
    for (Condition& c : conditions) {
        EXPECT_EQ(&c, conditions.Item(position++));
    }
    EXPECT_EQ(position, conditions.Count() + 1);
}

} // namespace
} // namespace qv
