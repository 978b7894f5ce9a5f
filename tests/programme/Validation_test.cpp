#include "EditorTestSupport.h"

#include "programme/EntryValidation.h"

#include <stdexcept>

namespace qv::test {
namespace {

// The main form's check, over a plain view.
class ValidationMainScreenTest : public ::testing::Test {
protected:
    FakeEditorView view;
    QMap<QString, QString> texts = {{"La saisie doit être comprise entre ", "Between"},
                                    {" et ", "and"},
                                    {"La saisie n'est pas numérique", "Not a number"}};
    bool broken = false;

    EntryCheck check(const QLocale& locale) {
        return EntryCheck{view, view,
                          [this](const QString& key) {
                              if (broken)
                                  throw std::runtime_error("config.xml unreadable");
                              return texts.value(key, key);
                          },
                          locale};
    }
};

TEST_F(ValidationMainScreenTest, ValidationLimitsAsDecimalsInTheLocale) {
    const QLocale fr(QLocale::French, QLocale::France);
    const QLocale en(QLocale::English, QLocale::UnitedKingdom);
    const std::tuple<QLocale, QString, QString> cases[] = {{fr, "7,2", ""},
                                                           {fr, "2,5", ""},
                                                           {fr, "13", "Between 2,5 and 12,25"},
                                                           {en, "13", "Between 2.5 and 12.25"},
                                                           {en, "7.2", ""},
                                                           {en, "7,2", "Not a number"}};
    for (const auto& [locale, typed, explanation] : cases) {
        SCOPED_TRACE((locale.name() + ' ' + typed).toStdString());
        view.setText("MinBat", typed);
        EXPECT_EQ(ControleValeur(check(locale), "MinBat", 2.5, 12.25), explanation.isEmpty());
        EXPECT_EQ(view.background("MinBat"), explanation.isEmpty() ? kFondValide : kFondErreur);
        EXPECT_EQ(view.text("Message"), explanation);
        EXPECT_EQ(view["MinBat"].toolTip, explanation);
    }
}

TEST(ValidationVers420, CurrentLoopScaling) {
    struct Case {
        double min, max, valeur;
        std::optional<double> expected;
    };
    // Ties go to even; a range of nothing has no answer.
    const Case cases[] = {{0, 100, 50, 12}, {0, 100, 0, 4},    {0, 100, 100, 20},
                          {0, 16, 1.5, 6},  {0, 16, 2.5, 6},   {100, 0, 25, 16},
                          {-50, 50, 0, 12}, {0, 100, 200, 36}, {10, 10, 5, std::nullopt}};
    for (const Case& c : cases)
        EXPECT_EQ(Vers420(c.min, c.max, c.valeur), c.expected)
            << c.min << ".." << c.max << " at " << c.valeur;
}

} // namespace
} // namespace qv::test
