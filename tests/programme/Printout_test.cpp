#include "EditorTestSupport.h"

#include "programme/DefaultStates.h"
#include "programme/ProgrammePrintout.h"

namespace qv::test {
namespace {

// A page as text: "text | column" for a line with a column item, "v" for a
// move down by half the heading's height.
QStringList pageLines(const ProgrammePrintout& page) {
    QStringList lines;
    for (const PrintoutStep& s : page.steps) {
        if (s.skips > 0)
            lines << QStringLiteral("v").repeated(s.skips);
        else if (s.hasColumn)
            lines << s.text + QStringLiteral(" | ") + s.column;
        else
            lines << s.text;
    }
    return lines;
}

PrintoutTexts englishTexts() {
    PrintoutTexts t;
    t.date = QDate(2026, 3, 10);
    t.nomFichier = "six.prg";
    t.page = "Page";
    t.valeursDefaut = "Default values";
    t.condition = "Condition";
    t.programmationJournaliere = "Daily schedule";
    t.sorties = {"Bistable valve"};
    t.etatsDefaut = {1};
    t.valeursLogiques = {"Closed", "Open"};
    t.jours = {{"No time condition", 0}, {"Every day", 8}, {"Monday to Friday", 9}, {"Monday", 1},
               {"Tuesday", 2},           {"Wednesday", 3}, {"Thursday", 4},         {"Friday", 5},
               {"Saturday", 6},          {"Sunday", 7},    {"Periodic", 12}};
    return t;
}

Condition line(int sortie, double valeur, int jour, int h, int m, int s) {
    Condition c;
    c.sortie = std::int16_t(sortie);
    c.Valeur = valeur;
    c.Jour = std::int16_t(jour);
    c.Heure = std::int16_t(h);
    c.Minute = std::int16_t(m);
    c.Seconde = std::int16_t(s);
    return c;
}

const QString kHeading = QStringLiteral("10/03/2026\tsix.prg - Page : 1");
// The heading and the defaults block, the valve's state left out.
const QStringList kTop = {kHeading, "v", "v", "Default values"};
const QStringList kGap = {"v", "v", "v", "v"};

TEST(PrintoutPage, EmptyProgrammeHasTheHeadingAndTheDefaultsOnly) {
    const ProgrammePrintout page = ImprimeProgrammation(Conditions(), englishTexts());
    EXPECT_EQ(page.heading, kHeading);
    EXPECT_EQ(pageLines(page), kTop + QStringList{"Bistable valve | Open"} + kGap);
}

TEST(PrintoutPage, EveryKindOfLine) {
    Conditions programme;
    // No time: three rows on paper.
    programme.Add(line(3, 1, 0, 0, 0, 0));
    // A week day, with a comment from the device.
    Condition commented = line(3, 0, 1, 8, 5, 0);
    commented.Commentaire = "Morning";
    programme.Add(commented);
    // A range: no row carries 11, so the day of the line before stands.
    Condition range = line(3, 1, JourPlage, 6, 0, 0);
    range.PlageFinHeure = 18;
    range.PlageFinMinute = 30;
    range.PlageFinSeconde = 15;
    programme.Add(range);
    // Periodic: a plain time, the period and the date not shown.
    Condition periodic = line(3, 1, JourPeriode, 6, 30, 7);
    periodic.PlageFinHeure = 2;
    periodic.PlageFinMinute = 15;
    programme.Add(periodic);
    // Never committed: output 0, a value of no row.
    programme.Add(line(0, 4.0, 0, 0, 0, 0));
    // Every day, 23:59:59, with 0.5 rounding to the even Closed.
    programme.Add(line(3, 0.5, 8, 23, 59, 59));

    PrintoutTexts texts = englishTexts();
    texts.etatsDefaut = {0};
    const QStringList lines = pageLines(ImprimeProgrammation(programme, texts));
    EXPECT_EQ(lines.mid(0, 9), kTop + QStringList{"Bistable valve | Closed"} + kGap);
    EXPECT_EQ(
        lines.mid(9).join(" ; "),
        "Condition 1 ;  ; Bistable valve =  | Open ; "
        "Condition 2 ; Morning ; Bistable valve =  | Closed ; "
        "Daily schedule | Monday = 8:5:0 ; "
        "Condition 3 ;  ; Bistable valve =  | Open ; "
        "Daily schedule | Monday = 6:0:0 / 18:30:15 ; "
        "Condition 4 ;  ; Bistable valve =  | Open ; Daily schedule | Periodic = 6:30:7 ; "
        "Condition 5 ;  ; Bistable valve =  |  ; "
        "Condition 6 ;  ; Bistable valve =  | Closed ; Daily schedule | Every day = 23:59:59");
}

TEST(PrintoutPage, OutputNamesOutsideTheListKeepTheNamePrintedLast) {
    PrintoutTexts texts = englishTexts();
    texts.sorties = {"Valve", "Pump"};
    texts.etatsDefaut = {1}; // the second state unread: Close
    Conditions programme;
    programme.Add(line(3, 1, 0, 0, 0, 0));
    programme.Add(line(0, 1, 0, 0, 0, 0));
    programme.Add(line(-1, 0, 0, 0, 0, 0));
    const QStringList lines = pageLines(ImprimeProgrammation(programme, texts));
    EXPECT_EQ(lines.mid(4, 2), (QStringList{"Valve | Open", "Pump | Closed"}));
    EXPECT_EQ(lines.filter(" = "),
              (QStringList{"Pump =  | Open", "Valve =  | Open", "Valve =  | Closed"}));
}

TEST(PrintoutPage, HeadingIsDayFirstWhateverTheLocale) {
    DefaultLocale american(QLocale(QLocale::English, QLocale::UnitedStates));
    PrintoutTexts texts = englishTexts();
    texts.date = QDate(2026, 12, 3);
    texts.nomFichier = QString();
    EXPECT_EQ(ImprimeProgrammation(Conditions(), texts).heading, "03/12/2026\t - Page : 1");
}

TEST(PrintoutLayout, LinesMovesAndColumn32) {
    // A font of 20 units a line, 4 a column, every character 4 wide.
    PrintMetrics metrics{20, 4, [](const QString& t) { return 4.0 * t.size(); }};
    Conditions programme;
    programme.Add(line(3, 1, 8, 7, 0, 0));
    PrintoutTexts texts = englishTexts();
    texts.programmationJournaliere = QString(40, 'x');
    const double col = 31 * 4;
    const std::vector<PlacedText> expected = {
        {0, 0, kHeading},
        {0, 40, "Default values"},
        {0, 60, "Bistable valve"},
        {col, 60, "Open"},
        {0, 120, "Condition 1"},
        // the empty comment takes its line
        {0, 160, "Bistable valve = "},
        {col, 160, "Open"},
        // a first item past column 32 sends the second to the next line
        {0, 180, QString(40, 'x')},
        {col, 200, "Every day = 7:0:0"}};
    EXPECT_EQ(layoutPrintout(ImprimeProgrammation(programme, texts), metrics), expected);

    // Half the heading's height is rounded down: the heading's line, then
    // two moves of 12.
    metrics = {25, 5, [](const QString& t) { return 5.0 * t.size(); }};
    const auto placed = layoutPrintout(ImprimeProgrammation(Conditions(), texts), metrics);
    ASSERT_GE(placed.size(), 2u);
    EXPECT_EQ(placed[1], (PlacedText{0, 25 + 12 + 12, "Default values"}));
}

class PrintoutFromConfig : public EditorFixture {};

TEST_F(PrintoutFromConfig, PrintoutTextsAsAFreshEditorShowsThem) {
    Sauve_EtatDefautSortie(*config, "English", 0, 1);
    const std::array<QString, 5> cases[] = {
        {"English", "Default values", "Daily schedule", "Closed", "Periodic"},
        {"Français", "Valeurs par défaut", "Programmation journalière", "Fermée", "Périodique"}};
    for (const auto& [langue, valeursDefaut, journaliere, close, last] : cases) {
        const PrintoutTexts t =
            printoutTextsFromConfig(*config, langue, "a.prg", QDate(2026, 1, 2));
        EXPECT_EQ(QStringList({t.valeursDefaut, t.programmationJournaliere,
                               t.valeursLogiques.value(0), t.jours.back().text}),
                  QStringList({valeursDefaut, journaliere, close, last}));
        EXPECT_EQ(t.jours.back().itemData, 12);
        EXPECT_EQ(t.etatsDefaut, std::vector<std::int16_t>{1});
    }
}

TEST_F(PrintoutFromConfig, PrintoutFromTheEditorMatchesTheConfigTexts) {
    editor->Form_Load();
    editor->Ajouter_Click();
    editor->ModifierCondition_Click();
    view.setText("NomFichier", "a.prg");
    const ProgrammePrintout fromConfig = ImprimeProgrammation(
        conditions, printoutTextsFromConfig(*config, "English", "a.prg", now.date()));
    EXPECT_EQ(pageLines(editor->contenuImpression()), pageLines(fromConfig));
    EXPECT_EQ(pageLines(fromConfig).size(), 12);
}

} // namespace
} // namespace qv::test
