#include "EditorTestSupport.h"

#include "programme/DefaultStates.h"

#include <QFileInfo>

namespace qv::test {
namespace {

// Line n as the editor stores it: the valve's output, the time fields, the
// duration and the value of the chosen row.
Condition editorLine(int n, int jour, std::array<int, 5> time, int temporisation, double valeur) {
    Condition c;
    c.Nom = QStringLiteral("Bistable valve-%1").arg(n);
    c.rang = std::int16_t(n - 1);
    c.sortie = 3;
    c.Jour = std::int16_t(jour);
    std::tie(c.Heure, c.Minute, c.Seconde, c.PlageFinHeure, c.PlageFinMinute) =
        std::tuple_cat(time);
    c.Temporisation = std::int16_t(temporisation);
    c.Valeur = valeur;
    return c;
}

// One line as the operator fills it in.
struct Edit {
    int dayRow;
    QDateTime start;
    QTime end;
    QString period;
    int valueRow;
    QString duration;
};

class EditorTest : public EditorFixture {
protected:
    // No time, a week day, every day past the duration limit, a periodic
    // line, Monday to Friday, and a periodic line at the end of the year.
    const std::vector<Edit> sixLines = {
        {0, QDateTime(now.date(), QTime(0, 0)), QTime(0, 0), {}, 1, "60"},
        {3, QDateTime(now.date(), QTime(8, 5, 0)), QTime(0, 0), {}, 0, "3600"},
        {1, QDateTime(now.date(), QTime(23, 59, 59)), QTime(0, 0), {}, 1, "40000"},
        {10, QDateTime(QDate(2026, 2, 15), QTime(9, 0)), QTime(6, 30), "7", 1, "120,4"},
        {2, QDateTime(now.date(), QTime(12, 0, 30)), QTime(0, 0), {}, 0, "0"},
        {10, QDateTime(QDate(2026, 12, 31), QTime(1, 0)), QTime(21, 15), "255", 0, "32000"}};
    const std::vector<Condition> sixStored = {editorLine(1, 0, {}, 60, 1),
                                              editorLine(2, 1, {8, 5, 0, 0, 0}, 3600, 0),
                                              editorLine(3, 8, {23, 59, 59, 0, 0}, 32000, 1),
                                              editorLine(4, 12, {6, 30, 7, 2, 15}, 120, 1),
                                              editorLine(5, 9, {12, 0, 30, 0, 0}, 0, 0),
                                              editorLine(6, 12, {21, 15, 255, 12, 31}, 32000, 0)};
    const std::vector<Condition> threeLines = {editorLine(1, 1, {6, 0, 0, 0, 0}, 100, 1),
                                               editorLine(2, 8, {7, 15, 0, 0, 0}, 200, 0),
                                               editorLine(3, 9, {20, 45, 30, 0, 0}, 300, 1)};

    void editSixLines() {
        editor->Form_Load();
        for (const Edit& e : sixLines) {
            editor->Ajouter_Click();
            chooseDay(e.dayRow);
            view.setDateTime("HeureDebut", e.start);
            view.setDateTime("HeureFin", QDateTime(now.date(), e.end));
            if (!e.period.isEmpty())
                typePeriod(e.period);
            chooseValue(e.valueRow);
            typeDuration(e.duration);
        }
        editor->ModifierCondition_Click();
    }

    // Lines as a previous session left them in config.xml, and the editor
    // opened over them.
    void storeLines(const std::vector<Condition>& lines) {
        Conditions c;
        for (const Condition& line : lines)
            c.Add(line);
        SauveConditions(*config, c);
    }
    void reopenOver(const std::vector<Condition>& lines) {
        storeLines(lines);
        conditions = Conditions();
        reopen();
    }
};

TEST_F(EditorTest, EditorStartTranslatesFillsAndTakesTheDeviceState) {
    main.eeprom[24] = 2;
    editor->Form_Load();
    EXPECT_EQ(text("Programmation"), "Output programming");
    EXPECT_EQ(text("Sorties_0"), "Bistable valve");
    // The validation line keeps its own text and no key of its own.
    EXPECT_EQ(text("Message"), "Message");
    EXPECT_FALSE(configText().contains("<Cle>Message</Cle>"));
    EXPECT_EQ(rowTexts("ValeurLogiqueDefaut_0"), (QStringList{"Closed", "Open"}));
    EXPECT_EQ(rowTexts("ListeJours").size(), 11);
    EXPECT_FALSE(view.isVisible("ValeurPeriode"));
    EXPECT_EQ(view.dateTime("HeureDebut"), now);
    EXPECT_TRUE(dialogs.boxes().empty());

    // A device byte of 2 is Open, and the selection stores it at once; so
    // does every later selection.
    EXPECT_EQ(main.reads, std::vector<int>{24});
    EXPECT_EQ(row("ValeurLogiqueDefaut_0"), 1);
    EXPECT_EQ(storedDefaultState(), "1");
    view.setCurrentRow("ValeurLogiqueDefaut_0", 0);
    editor->ValeurLogiqueDefaut_Click(0);
    EXPECT_EQ(storedDefaultState(), "0");
    editor->Sorties_Click(1);
    EXPECT_FALSE(view.isEnabled("ValeurLogiqueDefaut_0"));
}

TEST_F(EditorTest, EditorStartInFrenchKeepsTheStateUnderTheFirstLanguage) {
    main.language = QStringLiteral("Français");
    main.eeprom[24] = 1;
    editor->Form_Load();
    EXPECT_EQ(text("Ajouter"), "Ajouter une condition");
    EXPECT_EQ(rowTexts("ValeurLogiqueDefaut_0"), (QStringList{"Fermée", "Ouverte"}));
    EXPECT_EQ(storedDefaultState(), "1");
    const auto french = config->RemplitListe("Français", "ListeSorties");
    ASSERT_TRUE(french && !french->empty());
    EXPECT_EQ(french->front().extra, "0");
}

TEST_F(EditorTest, EditorStartInTimeOutShowsNothingAndStoresClose) {
    Sauve_EtatDefautSortie(*config, "English", 0, 1);
    config->EcritValeurXML("NomProgramme", "old.prg");
    storeLines({threeLines[0]});
    main.timedOut = true;
    editor->Form_Load();
    // Nothing read nor shown. The state asked for is that of output 1, which
    // the list hasn't: Close, and the selection stores it.
    EXPECT_TRUE(main.reads.empty());
    EXPECT_EQ(conditions.Count(), 0);
    EXPECT_EQ(text("NomFichier"), QString());
    EXPECT_EQ(storedDefaultState(), "0");
    EXPECT_EQ(stored().Count(), 1);
}

TEST_F(EditorTest, EditorStartWithoutProgrammeNameShowsFalse) {
    QString xml = configText();
    ASSERT_TRUE(xml.contains("<NomProgramme></NomProgramme>"));
    xml.remove("<NomProgramme></NomProgramme>");
    QFile f(configPath);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(xml.toUtf8());
    f.close();
    editor->Form_Load();
    EXPECT_EQ(text("NomFichier"), "False");
}

TEST_F(EditorTest, EditorStartLoadsTheStoredLinesWithoutCommittingThem) {
    std::vector<Condition> lines = threeLines;
    lines[0].Commentaire = QStringLiteral("kept");
    lines[0].sortie = 5;
    storeLines(lines);
    editor->Form_Load();
    EXPECT_EQ(rowTexts("ListeConditions"),
              (QStringList{"Bistable valve-1", "Bistable valve-2", "Bistable valve-3"}));
    // The last line is on show, and filling committed nothing.
    EXPECT_EQ(editor->IndexCondition(), 2);
    EXPECT_EQ(text("ValeurTemporisation"), "300");
    EXPECT_EQ(row("ListeJours"), 2);
    EXPECT_EQ(view.dateTime("HeureDebut").time(), QTime(20, 45, 30));
    EXPECT_EQ(row("ListeValeurLogique"), 1);
    EXPECT_EQ(storedFields(*stored().Item(1)), storedFields(lines[0]));
}

TEST_F(EditorTest, EditorSixLinesOfEveryKindAndASeventhRefused) {
    editSixLines();
    ASSERT_TRUE(dialogs.boxes().empty());
    EXPECT_EQ(rowTexts("ListeConditions").size(), 6);
    EXPECT_EQ(text("ValeurTemporisation"), "32000");
    EXPECT_EQ(view.backgrounds.value("ValeurTemporisation"), kFondValide);
    const Conditions lines = stored();
    ASSERT_EQ(lines.Count(), 6);
    ASSERT_EQ(conditions.Count(), 6);
    for (int i = 1; i <= 6; ++i) {
        EXPECT_EQ(storedFields(*lines.Item(i)), storedFields(sixStored[size_t(i - 1)]));
        EXPECT_EQ(storedFields(*conditions.Item(i)), storedFields(*lines.Item(i)));
    }

    // A seventh: nothing added, nothing said, the shown line not committed.
    typeDuration("5");
    editor->Ajouter_Click();
    EXPECT_EQ(conditions.Count(), 6);
    EXPECT_EQ(rowTexts("ListeConditions").size(), 6);
    EXPECT_TRUE(dialogs.boxes().empty());
    EXPECT_EQ(stored().Item(6)->Temporisation, 32000);

    // Leaving the line for another commits it first.
    selectLine(0);
    EXPECT_EQ(stored().Item(6)->Temporisation, 5);
    EXPECT_EQ(text("FrameSortie"), "Bistable valve-1");
    EXPECT_EQ(text("ValeurTemporisation"), "60");
    EXPECT_EQ(row("ListeValeurLogique"), 1);
}

TEST_F(EditorTest, EditorNewLineShowsDayZeroAndKeepsTheValueRow) {
    editor->Form_Load();
    editor->Ajouter_Click();
    chooseValue(1);
    chooseDay(3);
    editor->Ajouter_Click();
    EXPECT_EQ(row("ListeJours"), 0);
    EXPECT_EQ(row("ListeValeurLogique"), 1);
    EXPECT_EQ(text("ValeurTemporisation"), "0");
    // The second Ajouter committed the first line; the new one has no
    // output and the value of no row.
    ASSERT_EQ(conditions.Count(), 2);
    EXPECT_EQ(storedFields(*conditions.Item(1)), storedFields(editorLine(1, 1, {}, 0, 1)));
    Condition fresh = editorLine(2, 0, {}, 0, 4);
    fresh.sortie = 0;
    EXPECT_EQ(storedFields(*conditions.Item(2)), storedFields(fresh));
}

TEST_F(EditorTest, EditorPeriodicLineShowsDateFieldsThatFitTheMonth) {
    editSixLines();
    // From 31 December to a line starting 15 February: no 31 February on
    // the way.
    selectLine(5);
    selectLine(3);
    EXPECT_EQ(row("ListeJours"), 10);
    EXPECT_EQ(view.displayFormat("HeureDebut"), "dd/MM/yyyy");
    EXPECT_TRUE(view.isVisible("ValeurPeriode"));
    EXPECT_EQ(view.dateTime("HeureDebut").date(), QDate(2026, 2, 15));
    EXPECT_EQ(view.dateTime("HeureFin").time(), QTime(6, 30, 0));
    EXPECT_EQ(text("ValeurPeriode"), "7");
    // Back to a week day: the time fields return.
    selectLine(1);
    EXPECT_EQ(view.displayFormat("HeureDebut"), "HH:mm:ss");
    EXPECT_FALSE(view.isVisible("ValeurPeriode"));
    EXPECT_EQ(view.dateTime("HeureDebut").time(), QTime(8, 5, 0));
}

TEST_F(EditorTest, EditorDurationIsClampedOrIgnoredAtTheCommit) {
    // Only text of the machine's locale is committed, rounded half to even;
    // a clamped value is shown as stored.
    const std::tuple<QString, int, QString> cases[] = {{"65535", 32000, "32000"}, {"-5", 0, "0"},
                                                       {"2,5", 2, "2,5"},         {"3,5", 4, "3,5"},
                                                       {"2.5", 100, "2.5"},       {"", 100, ""}};
    for (const auto& [typed, temporisation, shown] : cases) {
        SCOPED_TRACE(typed.toStdString());
        reopenOver({threeLines[0]});
        typeDuration(typed);
        editor->ModifierCondition_Click();
        EXPECT_EQ(stored().Item(1)->Temporisation, temporisation);
        EXPECT_EQ(text("ValeurTemporisation"), shown);
        EXPECT_TRUE(dialogs.boxes().empty());
    }
}

TEST_F(EditorTest, EditorPeriodNotNumericIsReportedOnModifyAndLosesTheLineOnLeaving) {
    editSixLines();
    selectLine(3);
    typePeriod("abc");
    typeDuration("999");
    editor->ModifierCondition_Click();
    ASSERT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_EQ(dialogs.boxes()[0].text, "The value is not a number");
    EXPECT_EQ(dialogs.boxes()[0].title, "Quorvel");
    EXPECT_EQ(dialogs.boxes()[0].style, MsgBox::Critical);
    EXPECT_EQ(storedFields(*conditions.Item(4)), storedFields(sixStored[3]));
    EXPECT_EQ(storedFields(*stored().Item(4)), storedFields(sixStored[3]));

    // The old form's way: the line leaves the collection before the fault,
    // its row stays, and nothing more is committed.
    selectLine(0);
    EXPECT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_EQ(conditions.Count(), 5);
    EXPECT_EQ(rowTexts("ListeConditions").size(), 6);
    typeDuration("77");
    editor->ModifierCondition_Click();
    selectLine(1);
    EXPECT_EQ(stored().Count(), 6);
    EXPECT_EQ(stored().Item(1)->Temporisation, 60);
    // Leaving the form saves what the collection holds.
    editor->SortirProgrammation_Click();
    EXPECT_EQ(host.closed, 1);
    EXPECT_EQ(stored().Count(), 5);
}

// Each remaining line keeps the fields of one old line and the name and order
// of another. Deleting the last line, the commit finds no line at its place,
// and config.xml keeps the three until the form is left.
TEST_F(EditorTest, EditorDeletingALineKeepsTheNumbersAndCommitsIntoTheNextOne) {
    // deleted; fields and name of line 1, then of line 2; selected; stored
    const std::array<int, 7> cases[] = {
        {0, 0, 1, 2, 2, 0, 2}, {1, 0, 0, 1, 2, 0, 2}, {2, 0, 0, 1, 1, 1, 3}};
    for (const auto& [deleted, fields1, name1, fields2, name2, selected, storedCount] : cases) {
        SCOPED_TRACE(deleted);
        reopenOver(threeLines);
        selectLine(deleted);
        editor->DetruireCondition_Click();
        EXPECT_EQ(row("ListeConditions"), selected);
        ASSERT_EQ(conditions.Count(), 2);
        const std::pair<int, int> holds[] = {{fields1, name1}, {fields2, name2}};
        for (int p = 0; p < 2; ++p) {
            Condition expected = threeLines[size_t(holds[p].first)];
            expected.Nom = threeLines[size_t(holds[p].second)].Nom;
            expected.rang = threeLines[size_t(holds[p].second)].rang;
            EXPECT_EQ(storedFields(*conditions.Item(p + 1)), storedFields(expected));
            EXPECT_EQ(rowTexts("ListeConditions").value(p), expected.Nom);
        }
        EXPECT_EQ(stored().Count(), storedCount);
        EXPECT_TRUE(dialogs.boxes().empty());
    }
}

TEST_F(EditorTest, EditorLeavingSavesTheCollectionWithoutCommittingTheFields) {
    storeLines({threeLines[0]});
    editor->Form_Load();
    editor->DetruireCondition_Click();
    EXPECT_TRUE(rowTexts("ListeConditions").isEmpty());
    EXPECT_EQ(conditions.Count(), 0);
    EXPECT_EQ(stored().Count(), 1);
    // Nothing selected: nothing to delete.
    editor->DetruireCondition_Click();
    editor->SortirProgrammation_Click();
    EXPECT_EQ(stored().Count(), 0);
    EXPECT_EQ(host.closed, 1);

    reopenOver({threeLines[0]});
    typeDuration("555");
    editor->SortirProgrammation_Click();
    EXPECT_EQ(stored().Item(1)->Temporisation, 100);
}

TEST_F(EditorTest, EditorSaveAsCopiesConfigAndReadBackRestoresTheProgramme) {
    editSixLines();
    view.setCurrentRow("ValeurLogiqueDefaut_0", 1);
    editor->ValeurLogiqueDefaut_Click(0);
    typeDuration("4242"); // shown but never committed: not in the copy
    const QString prg = dir.filePath("six.prg");
    host.saveAnswers.push_back(prg);
    editor->EnregistrerProg_Click();
    ASSERT_TRUE(dialogs.boxes().empty());
    ASSERT_EQ(host.requests.size(), 1u);
    EXPECT_EQ(host.requests[0].filter, "Prg (*.prg)|*.prg");
    EXPECT_EQ(QFileInfo(host.requests[0].initDir).canonicalFilePath(),
              QFileInfo(dir.path()).canonicalFilePath());
    EXPECT_EQ(text("NomFichier"), "six.prg");
    QFile copy(prg);
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(copy.readAll()), configText());

    // A fresh config.xml, a fresh session, and the file read back.
    ASSERT_TRUE(QFile::remove(configPath));
    ASSERT_TRUE(QFile::copy(QStringLiteral(QUORVEL_SHIPPED_CONFIG), configPath));
    QFile::setPermissions(configPath, QFile::ReadOwner | QFile::WriteOwner);
    conditions = Conditions();
    reopen();
    ASSERT_EQ(storedDefaultState(), "0");
    host.openAnswers.push_back(prg);
    editor->LireProg_Click();
    ASSERT_TRUE(dialogs.boxes().empty());
    EXPECT_EQ(config->LitValeurXML("NomProgramme").value_or(QString()), "six.prg");
    EXPECT_EQ(rowTexts("ListeConditions").size(), 6);
    ASSERT_EQ(conditions.Count(), 6);
    for (int i = 1; i <= 6; ++i) {
        EXPECT_EQ(storedFields(*conditions.Item(i)), storedFields(sixStored[size_t(i - 1)]));
        EXPECT_EQ(storedFields(*stored().Item(i)), storedFields(sixStored[size_t(i - 1)]));
    }
    EXPECT_EQ(storedDefaultState(), "1");
    EXPECT_FALSE(editor->EnChargement());
    EXPECT_EQ(text("ValeurPeriode"), "255"); // the last line read is on show
}

TEST_F(EditorTest, EditorCancelledDialogsAndAnUnreadableFileChangeNothing) {
    editSixLines();
    const QString before = configText();
    view.setText("NomFichier", "kept.prg");
    editor->LireProg_Click();
    editor->EnregistrerProg_Click();
    editor->DetruireProg_Click();
    host.printerChosen = false;
    editor->ImprimerProg_Click();
    EXPECT_EQ(host.requests.size(), 3u);
    EXPECT_TRUE(host.printed.empty());
    EXPECT_TRUE(dialogs.boxes().empty());
    EXPECT_EQ(text("NomFichier"), "kept.prg");

    // A file that is no document is reported.
    QFile bad(dir.filePath("bad.prg"));
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly));
    bad.write("<Configuration><CONDITIONS>");
    bad.close();
    host.openAnswers.push_back(bad.fileName());
    editor->LireProg_Click();
    ASSERT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_TRUE(dialogs.boxes()[0].text.contains("bad.prg"));
    EXPECT_FALSE(editor->EnChargement());
    EXPECT_EQ(configText(), before);
    EXPECT_EQ(conditions.Count(), 6);
}

TEST_F(EditorTest, EditorDeleteProgrammeFileAsksAndForcesTheDelete) {
    editor->Form_Load();
    const QString prg = dir.filePath("old.prg");
    ASSERT_TRUE(QFile::copy(configPath, prg));
    QFile::setPermissions(prg, QFile::ReadOwner);
    view.setText("NomFichier", "old.prg");
    const QString before = configText();

    for (const int answer : {MsgBox::AnswerNo, MsgBox::AnswerYes}) {
        dialogs.clear();
        host.openAnswers.push_back(prg);
        dialogs.answerNext(answer);
        editor->DetruireProg_Click();
        ASSERT_EQ(dialogs.boxes().size(), 1u);
        EXPECT_EQ(dialogs.boxes()[0].text, "Do you want to delete the file " + prg + " ?");
        EXPECT_EQ(dialogs.boxes()[0].style, 36);
        EXPECT_EQ(host.requests.back().fileName, "old.prg");
        EXPECT_EQ(QFile::exists(prg), answer == MsgBox::AnswerNo);
        EXPECT_EQ(text("NomFichier"), answer == MsgBox::AnswerNo ? "old.prg" : QString());
    }
    EXPECT_EQ(configText(), before);
}

TEST(EditorFileDialog, FilterAndSuffixInQtTerms) {
    const std::pair<QString, QString> filters[] = {
        {"Prg (*.prg)|*.prg", "Prg (*.prg)"},
        {"Programmes|*.prg;*.xml", "Programmes (*.prg *.xml)"},
        {"Prg (*.prg)|*.prg|Tous|*.*", "Prg (*.prg);;Tous (*.*)"},
        {QString(), QString()}};
    for (const auto& [vb, qt] : filters)
        EXPECT_EQ(qtFileFilter(vb), qt) << vb.toStdString();
    EXPECT_EQ(defaultSuffix("*.prg"), "prg");
    EXPECT_EQ(defaultSuffix("prg"), "prg");
    EXPECT_EQ(defaultSuffix(QString()), QString());
}

} // namespace
} // namespace qv::test
