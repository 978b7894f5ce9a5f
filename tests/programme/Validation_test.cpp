#include "EditorTestSupport.h"

#include "programme/EntryValidation.h"

#include <stdexcept>

namespace qv::test {
namespace {

constexpr std::uint32_t rgb(int r, int g, int b) {
    return static_cast<std::uint32_t>((r << 16) | (g << 8) | b);
}

TEST(ValidationColours, WhiteAndTheRedOfTheOldForms) {
    EXPECT_EQ(kFondValide, rgb(255, 255, 255));
    EXPECT_EQ(kFondErreur, rgb(250, 100, 100));
}

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

TEST_F(ValidationTest, ValidationOfEachFieldOnADecimalCommaMachine) {
    struct Case {
        const char* field;
        QString typed;
        bool valid;
        QString explanation;
    };
    const QString periodRange = QStringLiteral("The value must be between 0 and 255");
    const QString durationRange = QStringLiteral("The value must be between 0 and 65535");
    const QString notNumber = QStringLiteral("The value is not a number");
    const std::vector<Case> cases = {
        {"ValeurPeriode", QStringLiteral("0"), true, {}},
        {"ValeurPeriode", QStringLiteral("255"), true, {}},
        {"ValeurPeriode", QStringLiteral("254,5"), true, {}},
        {"ValeurPeriode", QStringLiteral(" 7 "), true, {}},
        {"ValeurPeriode", QStringLiteral("256"), false, periodRange},
        {"ValeurPeriode", QStringLiteral("-1"), false, periodRange},
        {"ValeurPeriode", QStringLiteral("255,01"), false, periodRange},
        {"ValeurPeriode", QStringLiteral("2.5"), false, notNumber},
        {"ValeurPeriode", QString(), false, notNumber},
        {"ValeurPeriode", QStringLiteral("abc"), false, notNumber},
        {"ValeurTemporisation", QStringLiteral("0"), true, {}},
        // Wider than what a commit keeps, and accepted without a word.
        {"ValeurTemporisation", QStringLiteral("40000"), true, {}},
        {"ValeurTemporisation", QStringLiteral("65535"), true, {}},
        {"ValeurTemporisation", QStringLiteral("3600,5"), true, {}},
        {"ValeurTemporisation", QStringLiteral("65536"), false, durationRange},
        {"ValeurTemporisation", QStringLiteral("-0,5"), false, durationRange},
        {"ValeurTemporisation", QStringLiteral("3600.5"), false, notNumber},
        {"ValeurTemporisation", QStringLiteral("12s"), false, notNumber},
    };
    for (const Case& c : cases) {
        const QString field = QString::fromLatin1(c.field);
        SCOPED_TRACE((field + QStringLiteral(" '") + c.typed + QLatin1Char('\'')).toStdString());
        view.setVisible(field, true);
        view.focus.clear();
        type(field, c.typed);
        EXPECT_EQ(view.background(field), c.valid ? kFondValide : kFondErreur);
        EXPECT_EQ(text("Message"), c.explanation);
        EXPECT_EQ(view[field].toolTip, c.explanation);
        EXPECT_EQ(view.focus, c.valid ? QString() : field);
        // The typed text stays as it is.
        EXPECT_EQ(view.text(field), c.typed);
    }
}

TEST_F(ValidationTest, ValidationCorrectingClearsEverythingAtOnce) {
    view.setVisible(QStringLiteral("ValeurPeriode"), true);
    type(QStringLiteral("ValeurPeriode"), QStringLiteral("256"));
    ASSERT_EQ(view.background(QStringLiteral("ValeurPeriode")), kFondErreur);
    type(QStringLiteral("ValeurPeriode"), QStringLiteral("25"));
    EXPECT_EQ(view.background(QStringLiteral("ValeurPeriode")), kFondValide);
    EXPECT_EQ(text("Message"), QString());
    EXPECT_EQ(view[QStringLiteral("ValeurPeriode")].toolTip, QString());
}

TEST_F(ValidationTest, ValidationHiddenBoxGetsNoFocus) {
    // A week-day line hides the period.
    ASSERT_FALSE(view.isVisible(QStringLiteral("ValeurPeriode")));
    type(QStringLiteral("ValeurPeriode"), QStringLiteral("999"));
    EXPECT_EQ(view.background(QStringLiteral("ValeurPeriode")), kFondErreur);
    EXPECT_EQ(text("Message"), QStringLiteral("The value must be between 0 and 255"));
    EXPECT_EQ(view.focus, QString());
}

TEST_F(ValidationTest, ValidationWithoutTranslationShowsTheKeysDoubledBlanks) {
    // A language the document doesn't know: every text is its key.
    main.language = QStringLiteral("Klingon");
    view.setVisible(QStringLiteral("ValeurPeriode"), true);
    type(QStringLiteral("ValeurPeriode"), QStringLiteral("300"));
    EXPECT_EQ(text("Message"), QStringLiteral("La saisie doit être comprise entre  0  et  255"));
    type(QStringLiteral("ValeurTemporisation"), QStringLiteral("x"));
    EXPECT_EQ(text("Message"), QStringLiteral("La saisie n'est pas numérique"));
    EXPECT_EQ(view[QStringLiteral("ValeurTemporisation")].toolTip,
              QStringLiteral("La saisie n'est pas numérique"));
}

TEST_F(ValidationTest, ValidationInFrench) {
    main.language = QStringLiteral("Français");
    type(QStringLiteral("ValeurTemporisation"), QStringLiteral("70000"));
    EXPECT_EQ(text("Message"), QStringLiteral("La saisie doit être comprise entre 0 et 65535"));
}

// The main form's check, over a plain view.
class ValidationMainScreenTest : public ::testing::Test {
protected:
    FakeEditorView view;
    QMap<QString, QString> texts = {
        {QStringLiteral("La saisie doit être comprise entre "), QStringLiteral("Between")},
        {QStringLiteral(" et "), QStringLiteral("and")},
        {QStringLiteral("La saisie n'est pas numérique"), QStringLiteral("Not a number")},
    };
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
    struct Case {
        QLocale locale;
        QString typed;
        bool valid;
        QString explanation;
    };
    const QLocale french(QLocale::French, QLocale::France);
    const QLocale english(QLocale::English, QLocale::UnitedKingdom);
    const std::vector<Case> cases = {
        {french, QStringLiteral("7,2"), true, {}},
        {french, QStringLiteral("2,5"), true, {}},
        {french, QStringLiteral("13"), false, QStringLiteral("Between 2,5 and 12,25")},
        {english, QStringLiteral("13"), false, QStringLiteral("Between 2.5 and 12.25")},
        {english, QStringLiteral("7.2"), true, {}},
        {english, QStringLiteral("7,2"), false, QStringLiteral("Not a number")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE((c.locale.name() + QLatin1Char(' ') + c.typed).toStdString());
        view.setText(QStringLiteral("MinBat"), c.typed);
        const bool result = ControleValeur(check(c.locale), QStringLiteral("MinBat"), 2.5, 12.25);
        EXPECT_EQ(result, c.valid);
        EXPECT_EQ(view.background(QStringLiteral("MinBat")), c.valid ? kFondValide : kFondErreur);
        EXPECT_EQ(view.text(QStringLiteral("Message")), c.explanation);
        EXPECT_EQ(view[QStringLiteral("MinBat")].toolTip, c.explanation);
    }
}

TEST_F(ValidationMainScreenTest, ValidationTextFailureIsSwallowedByTheEditorOnly) {
    const QLocale french(QLocale::French, QLocale::France);
    view.setText(QStringLiteral("Message"), QStringLiteral("before"));
    view.setText(QStringLiteral("Box"), QStringLiteral("999"));
    broken = true;

    EXPECT_FALSE(ControleValeur(check(french), QStringLiteral("Box"), 0, 255));
    EXPECT_EQ(view.background(QStringLiteral("Box")), kFondErreur);
    EXPECT_EQ(view.text(QStringLiteral("Message")), QStringLiteral("before"));
    EXPECT_EQ(view.focus, QStringLiteral("Box"));

    view.backgrounds.clear();
    EXPECT_THROW(ControleValeur(check(french), QStringLiteral("Box"), 0.0, 255.0),
                 std::runtime_error);
    EXPECT_EQ(view.background(QStringLiteral("Box")), kFondErreur);

    // A valid entry needs no text at all.
    view.setText(QStringLiteral("Box"), QStringLiteral("9"));
    EXPECT_TRUE(ControleValeur(check(french), QStringLiteral("Box"), 0.0, 255.0));
}

TEST(ValidationVers420, CurrentLoopScaling) {
    struct Case {
        double min, max, valeur;
        std::optional<double> expected;
    };
    const std::vector<Case> cases = {
        {0, 100, 50, 12}, {0, 100, 0, 4},   {0, 100, 100, 20}, {0, 16, 0.5, 4},
        {0, 16, 1.5, 6},  {0, 16, 2.5, 6}, // ties to even
        {100, 0, 25, 16}, {-50, 50, 0, 12}, {0, 100, 200, 36}, {10, 10, 5, std::nullopt},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Vers420(c.min, c.max, c.valeur), c.expected)
            << c.min << ".." << c.max << " at " << c.valeur;
}

} // namespace
} // namespace qv::test
