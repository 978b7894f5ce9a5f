#include "EditorTestSupport.h"

#include "programme/EntryValidation.h"

#include <stdexcept>

namespace qv::test {
namespace {

class ValidationTest : public EditorFixture {
protected:
    void SetUp() override {
        EditorFixture::SetUp();
        editor->Form_Load();
        view.focus.clear();
    }

    void type(const QString& field, const QString& typed) {
        view.setText(field, typed);
        if (field == QLatin1String("ValeurPeriode"))
            editor->ValeurPeriode_Change();
        else
            editor->ValeurTemporisation_Change();
    }
};

// Each case follows the one before in the same box, so a valid entry also
// shows that the last error is cleared at once. The duration is wider than
// what a commit keeps, and accepted silently.
TEST_F(ValidationTest, ValidationOfEachFieldOnADecimalCommaMachine) {
    const QString range255 = "The value must be between 0 and 255";
    const QString range65535 = "The value must be between 0 and 65535";
    const QString notNumber = "The value is not a number";
    const std::pair<QString, QString> period[] = {
        {"256", range255},    {"255", ""}, {"-1", range255},   {"254,5", ""},
        {"255,01", range255}, {" 7 ", ""}, {"2.5", notNumber}, {"0", ""},
        {"", notNumber}};
    const std::pair<QString, QString> duration[] = {{"65536", range65535}, {"65535", ""},
                                                    {"-0,5", range65535},  {"3600,5", ""},
                                                    {"3600.5", notNumber}, {"0", ""}};
    const auto check = [&](const QString& field, const QString& typed, const QString& error) {
        SCOPED_TRACE((field + " '" + typed + '\'').toStdString());
        view.setVisible(field, true);
        view.focus.clear();
        type(field, typed);
        EXPECT_EQ(view.background(field), error.isEmpty() ? kFondValide : kFondErreur);
        EXPECT_EQ(text("Message"), error);
        EXPECT_EQ(view[field].toolTip, error);
        EXPECT_EQ(view.focus, error.isEmpty() ? QString() : field);
        EXPECT_EQ(view.text(field), typed) << "the typed text stays as it is";
    };
    for (const auto& [typed, error] : period)
        check("ValeurPeriode", typed, error);
    for (const auto& [typed, error] : duration)
        check("ValeurTemporisation", typed, error);

    // A hidden box (a week-day line hides the period) gets no focus.
    view.setVisible("ValeurPeriode", false);
    view.focus.clear();
    type("ValeurPeriode", "999");
    EXPECT_EQ(view.background("ValeurPeriode"), kFondErreur);
    EXPECT_EQ(text("Message"), range255);
    EXPECT_EQ(view.focus, QString());
}

TEST_F(ValidationTest, ValidationTextsInFrenchOrWithoutTranslation) {
    main.language = QStringLiteral("Français");
    type("ValeurTemporisation", "70000");
    EXPECT_EQ(text("Message"), "La saisie doit être comprise entre 0 et 65535");

    // A language the document doesn't know: every text is its key, with the
    // blanks doubled.
    main.language = QStringLiteral("Klingon");
    type("ValeurPeriode", "300");
    EXPECT_EQ(text("Message"), "La saisie doit être comprise entre  0  et  255");
    type("ValeurTemporisation", "x");
    EXPECT_EQ(text("Message"), "La saisie n'est pas numérique");
    EXPECT_EQ(view["ValeurTemporisation"].toolTip, "La saisie n'est pas numérique");
}

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

TEST_F(ValidationMainScreenTest, ValidationTextFailureIsSwallowedByTheEditorOnly) {
    const QLocale french(QLocale::French, QLocale::France);
    view.setText("Message", "before");
    view.setText("Box", "999");
    broken = true;

    EXPECT_FALSE(ControleValeur(check(french), "Box", 0, 255));
    EXPECT_EQ(view.background("Box"), kFondErreur);
    EXPECT_EQ(view.text("Message"), "before");
    EXPECT_EQ(view.focus, "Box");

    view.backgrounds.clear();
    EXPECT_THROW(ControleValeur(check(french), "Box", 0.0, 255.0), std::runtime_error);
    EXPECT_EQ(view.background("Box"), kFondErreur);

    // A valid entry needs no text at all.
    view.setText("Box", "9");
    EXPECT_TRUE(ControleValeur(check(french), "Box", 0.0, 255.0));
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
