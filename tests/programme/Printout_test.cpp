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
    t.nomFichier = QStringLiteral("six.prg");
    t.page = QStringLiteral("Page");
    t.valeursDefaut = QStringLiteral("Default values");
    t.condition = QStringLiteral("Condition");
    t.programmationJournaliere = QStringLiteral("Daily schedule");
    t.sorties = {QStringLiteral("Bistable valve")};
    t.etatsDefaut = {1};
    t.valeursLogiques = {QStringLiteral("Closed"), QStringLiteral("Open")};
    const std::vector<std::pair<const char*, double>> jours = {
        {"No time condition", 0}, {"Every day", 8}, {"Monday to Friday", 9}, {"Monday", 1},
        {"Tuesday", 2},           {"Wednesday", 3}, {"Thursday", 4},         {"Friday", 5},
        {"Saturday", 6},          {"Sunday", 7},    {"Periodic", 12}};
    for (const auto& [text, code] : jours)
        t.jours.push_back({QString::fromUtf8(text), code});
    return t;
}

Condition line(int sortie, double valeur, int jour, int h, int m, int s,
               const QString& commentaire = QString()) {
    Condition c;
    c.sortie = static_cast<std::int16_t>(sortie);
    c.Valeur = valeur;
    c.Jour = static_cast<std::int16_t>(jour);
    c.Heure = static_cast<std::int16_t>(h);
    c.Minute = static_cast<std::int16_t>(m);
    c.Seconde = static_cast<std::int16_t>(s);
    c.Commentaire = commentaire;
    return c;
}

const QString kHeading = QStringLiteral("10/03/2026\tsix.prg - Page : 1");

TEST(PrintoutPage, EmptyProgrammeHasTheHeadingAndTheDefaultsOnly) {
    const ProgrammePrintout page = ImprimeProgrammation(Conditions(), englishTexts());
    EXPECT_EQ(page.heading, kHeading);
    EXPECT_EQ(pageLines(page),
              (QStringList{kHeading, QStringLiteral("v"), QStringLiteral("v"),
                           QStringLiteral("Default values"),
                           QStringLiteral("Bistable valve | Open"), QStringLiteral("v"),
                           QStringLiteral("v"), QStringLiteral("v"), QStringLiteral("v")}));
}

TEST(PrintoutPage, EveryKindOfLine) {
    Conditions programme;
    // No time: three rows on paper.
    programme.Add(line(3, 1, 0, 0, 0, 0));
    // A week day, with a comment from the device.
    programme.Add(line(3, 0, 1, 8, 5, 0, QStringLiteral("Morning")));
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
    EXPECT_EQ(pageLines(ImprimeProgrammation(programme, texts)),
              (QStringList{
                  kHeading,
                  QStringLiteral("v"),
                  QStringLiteral("v"),
                  QStringLiteral("Default values"),
                  QStringLiteral("Bistable valve | Closed"),
                  QStringLiteral("v"),
                  QStringLiteral("v"),
                  QStringLiteral("v"),
                  QStringLiteral("v"),
                  QStringLiteral("Condition 1"),
                  QString(),
                  QStringLiteral("Bistable valve =  | Open"),
                  QStringLiteral("Condition 2"),
                  QStringLiteral("Morning"),
                  QStringLiteral("Bistable valve =  | Closed"),
                  QStringLiteral("Daily schedule | Monday = 8:5:0"),
                  QStringLiteral("Condition 3"),
                  QString(),
                  QStringLiteral("Bistable valve =  | Open"),
                  QStringLiteral("Daily schedule | Monday = 6:0:0 / 18:30:15"),
                  QStringLiteral("Condition 4"),
                  QString(),
                  QStringLiteral("Bistable valve =  | Open"),
                  QStringLiteral("Daily schedule | Periodic = 6:30:7"),
                  QStringLiteral("Condition 5"),
                  QString(),
                  QStringLiteral("Bistable valve =  | "),
                  QStringLiteral("Condition 6"),
                  QString(),
                  QStringLiteral("Bistable valve =  | Closed"),
                  QStringLiteral("Daily schedule | Every day = 23:59:59"),
              }));
}

TEST(PrintoutPage, OutputNamesOutsideTheListKeepTheNamePrintedLast) {
    PrintoutTexts texts = englishTexts();
    texts.sorties = {QStringLiteral("Valve"), QStringLiteral("Pump")};
    texts.etatsDefaut = {1}; // the second state unread: Close
    Conditions programme;
    programme.Add(line(3, 1, 0, 0, 0, 0));
    programme.Add(line(0, 1, 0, 0, 0, 0));
    programme.Add(line(-1, 0, 0, 0, 0, 0));
    const QStringList lines = pageLines(ImprimeProgrammation(programme, texts));
    EXPECT_EQ(lines.mid(4, 2),
              (QStringList{QStringLiteral("Valve | Open"), QStringLiteral("Pump | Closed")}));
    const QStringList outputs = lines.filter(QStringLiteral(" = "));
    EXPECT_EQ(outputs,
              (QStringList{QStringLiteral("Pump =  | Open"), QStringLiteral("Valve =  | Open"),
                           QStringLiteral("Valve =  | Closed")}));
}

TEST(PrintoutPage, HeadingIsDayFirstWhateverTheLocale) {
    DefaultLocale american(QLocale(QLocale::English, QLocale::UnitedStates));
    PrintoutTexts texts = englishTexts();
    texts.date = QDate(2026, 12, 3);
    texts.nomFichier = QString();
    EXPECT_EQ(ImprimeProgrammation(Conditions(), texts).heading,
              QStringLiteral("03/12/2026\t - Page : 1"));
}

TEST(PrintoutLayout, LinesMovesAndColumn32) {
    // A font of 20 units a line, 4 a column, every character 4 wide.
    PrintMetrics metrics{20, 4, [](const QString& t) { return 4.0 * t.size(); }};
    Conditions programme;
    programme.Add(line(3, 1, 8, 7, 0, 0));
    PrintoutTexts texts = englishTexts();
    texts.programmationJournaliere = QString(40, QLatin1Char('x'));
    const double col = 31 * 4;
    const std::vector<PlacedText> expected = {
        {0, 0, kHeading},
        {0, 40, QStringLiteral("Default values")},
        {0, 60, QStringLiteral("Bistable valve")},
        {col, 60, QStringLiteral("Open")},
        {0, 120, QStringLiteral("Condition 1")},
        // the empty comment takes its line
        {0, 160, QStringLiteral("Bistable valve = ")},
        {col, 160, QStringLiteral("Open")},
        // a first item past column 32 sends the second to the next line
        {0, 180, QString(40, QLatin1Char('x'))},
        {col, 200, QStringLiteral("Every day = 7:0:0")},
    };
    EXPECT_EQ(layoutPrintout(ImprimeProgrammation(programme, texts), metrics), expected);
}

TEST(PrintoutLayout, HalfHeightIsRoundedDown) {
    PrintMetrics metrics{25, 5, [](const QString& t) { return 5.0 * t.size(); }};
    const auto placed = layoutPrintout(ImprimeProgrammation(Conditions(), englishTexts()), metrics);
    ASSERT_GE(placed.size(), 2u);
    // The heading's line, then two moves of 12.
    EXPECT_EQ(placed[1].y, 25 + 12 + 12);
    EXPECT_EQ(placed[1].text, QStringLiteral("Default values"));
}

class PrintoutFromConfig : public EditorFixture {};

TEST_F(PrintoutFromConfig, PrintoutTextsAsAFreshEditorShowsThem) {
    struct Case {
        QString langue;
        QString valeursDefaut, journaliere, close, last;
    };
    const std::vector<Case> cases = {
        {QStringLiteral("English"), QStringLiteral("Default values"),
         QStringLiteral("Daily schedule"), QStringLiteral("Closed"), QStringLiteral("Periodic")},
        {QStringLiteral("Français"), QStringLiteral("Valeurs par défaut"),
         QStringLiteral("Programmation journalière"), QStringLiteral("Fermée"),
         QStringLiteral("Périodique")},
    };
    Sauve_EtatDefautSortie(*config, QStringLiteral("English"), 0, 1);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.langue.toStdString());
        const PrintoutTexts t =
            printoutTextsFromConfig(*config, c.langue, QStringLiteral("a.prg"), QDate(2026, 1, 2));
        EXPECT_EQ(t.valeursDefaut, c.valeursDefaut);
        EXPECT_EQ(t.programmationJournaliere, c.journaliere);
        EXPECT_EQ(t.condition, QStringLiteral("Condition"));
        EXPECT_EQ(t.page, QStringLiteral("Page"));
        ASSERT_EQ(t.valeursLogiques.size(), 2);
        EXPECT_EQ(t.valeursLogiques[0], c.close);
        ASSERT_EQ(t.sorties.size(), 1);
        EXPECT_EQ(t.etatsDefaut, std::vector<std::int16_t>{1});
        ASSERT_EQ(t.jours.size(), 11u);
        EXPECT_EQ(t.jours.back().text, c.last);
        EXPECT_EQ(t.jours.back().itemData, 12);
    }
}

TEST_F(PrintoutFromConfig, PrintoutFromTheEditorMatchesTheConfigTexts) {
    editor->Form_Load();
    editor->Ajouter_Click();
    editor->ModifierCondition_Click();
    view.setText(QStringLiteral("NomFichier"), QStringLiteral("a.prg"));
    const ProgrammePrintout fromEditor = editor->contenuImpression();
    const ProgrammePrintout fromConfig = ImprimeProgrammation(
        conditions, printoutTextsFromConfig(*config, QStringLiteral("English"),
                                            QStringLiteral("a.prg"), now.date()));
    EXPECT_EQ(pageLines(fromEditor), pageLines(fromConfig));
    EXPECT_EQ(pageLines(fromEditor).size(), 12);
}

} // namespace
} // namespace qv::test
