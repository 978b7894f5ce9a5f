#include "EditorTestSupport.h"

#include "programme/DefaultStates.h"

#include <QFileInfo>

namespace qv::test {
namespace {

// What a stored line holds of the editor's fields.
struct Fields {
    QString nom;
    int rang, jour, heure, minute, seconde, finHeure, finMinute, temporisation;
    double valeur;
};

void expectFields(const Condition* c, const Fields& f, int line) {
    ASSERT_NE(c, nullptr) << "line " << line;
    SCOPED_TRACE(testing::Message() << "line " << line);
    EXPECT_EQ(c->Nom, f.nom);
    EXPECT_EQ(c->rang, f.rang);
    EXPECT_EQ(c->Jour, f.jour);
    EXPECT_EQ(c->Heure, f.heure);
    EXPECT_EQ(c->Minute, f.minute);
    EXPECT_EQ(c->Seconde, f.seconde);
    EXPECT_EQ(c->PlageFinHeure, f.finHeure);
    EXPECT_EQ(c->PlageFinMinute, f.finMinute);
    EXPECT_EQ(c->Temporisation, f.temporisation);
    EXPECT_EQ(c->Valeur, f.valeur);
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
    void fill(const Edit& e) {
        chooseDay(e.dayRow);
        setStart(e.start);
        setEnd(QDateTime(now.date(), e.end));
        if (!e.period.isEmpty())
            typePeriod(e.period);
        chooseValue(e.valueRow);
        typeDuration(e.duration);
    }

    // No time, a week day, every day past the duration limit, a periodic
    // line, Monday to Friday, and a periodic line at the end of the year.
    const std::vector<Edit> sixLines = {
        {0, QDateTime(now.date(), QTime(0, 0)), QTime(0, 0), {}, 1, QStringLiteral("60")},
        {3, QDateTime(now.date(), QTime(8, 5, 0)), QTime(0, 0), {}, 0, QStringLiteral("3600")},
        {1, QDateTime(now.date(), QTime(23, 59, 59)), QTime(0, 0), {}, 1, QStringLiteral("40000")},
        {10, QDateTime(QDate(2026, 2, 15), QTime(9, 0)), QTime(6, 30), QStringLiteral("7"), 1,
         QStringLiteral("120,4")},
        {2, QDateTime(now.date(), QTime(12, 0, 30)), QTime(0, 0), {}, 0, QStringLiteral("0")},
        {10, QDateTime(QDate(2026, 12, 31), QTime(1, 0)), QTime(21, 15), QStringLiteral("255"), 0,
         QStringLiteral("32000")},
    };
    const std::vector<Fields> sixStored = {
        {QStringLiteral("Bistable valve-1"), 0, 0, 0, 0, 0, 0, 0, 60, 1},
        {QStringLiteral("Bistable valve-2"), 1, 1, 8, 5, 0, 0, 0, 3600, 0},
        {QStringLiteral("Bistable valve-3"), 2, 8, 23, 59, 59, 0, 0, 32000, 1},
        {QStringLiteral("Bistable valve-4"), 3, 12, 6, 30, 7, 2, 15, 120, 1},
        {QStringLiteral("Bistable valve-5"), 4, 9, 12, 0, 30, 0, 0, 0, 0},
        {QStringLiteral("Bistable valve-6"), 5, 12, 21, 15, 255, 12, 31, 32000, 0},
    };

    void editSixLines() {
        editor->Form_Load();
        for (const Edit& e : sixLines) {
            editor->Ajouter_Click();
            fill(e);
        }
        editor->ModifierCondition_Click();
    }

    // Lines as a previous session left them in config.xml.
    void storeLines(const std::vector<Fields>& lines) {
        Conditions c;
        for (const Fields& f : lines) {
            Condition line;
            line.Nom = f.nom;
            line.sortie = 3;
            line.rang = static_cast<std::int16_t>(f.rang);
            line.Jour = static_cast<std::int16_t>(f.jour);
            line.Heure = static_cast<std::int16_t>(f.heure);
            line.Minute = static_cast<std::int16_t>(f.minute);
            line.Seconde = static_cast<std::int16_t>(f.seconde);
            line.PlageFinHeure = static_cast<std::int16_t>(f.finHeure);
            line.PlageFinMinute = static_cast<std::int16_t>(f.finMinute);
            line.Temporisation = static_cast<std::int16_t>(f.temporisation);
            line.Valeur = f.valeur;
            c.Add(line);
        }
        SauveConditions(*config, c);
    }

    const std::vector<Fields> threeLines = {
        {QStringLiteral("Bistable valve-1"), 0, 1, 6, 0, 0, 0, 0, 100, 1},
        {QStringLiteral("Bistable valve-2"), 1, 8, 7, 15, 0, 0, 0, 200, 0},
        {QStringLiteral("Bistable valve-3"), 2, 9, 20, 45, 30, 0, 0, 300, 1},
    };
};

TEST_F(EditorTest, EditorStartTranslatesFillsAndTakesTheDeviceState) {
    main.eeprom[24] = 2;
    editor->Form_Load();

    EXPECT_EQ(text("Programmation"), QStringLiteral("Output programming"));
    EXPECT_EQ(text("Ajouter"), QStringLiteral("Add a condition"));
    EXPECT_EQ(text("LabelPeriode"), QStringLiteral("Period (days)"));
    EXPECT_EQ(text("FrameSortie"), QStringLiteral("Output name"));
    EXPECT_EQ(text("FramevaleursDefaut"), QStringLiteral("Default values"));
    EXPECT_EQ(text("Sorties_0"), QStringLiteral("Bistable valve"));
    // The validation line keeps its own text and no key of its own.
    EXPECT_EQ(text("Message"), QStringLiteral("Message"));
    EXPECT_FALSE(configText().contains(QStringLiteral("<Cle>Message</Cle>")));

    EXPECT_TRUE(view.isChecked(QStringLiteral("Sorties_0")));
    EXPECT_TRUE(view.isEnabled(QStringLiteral("ValeurLogiqueDefaut_0")));
    EXPECT_EQ(rowTexts("ValeurLogiqueDefaut_0"),
              (QStringList{QStringLiteral("Closed"), QStringLiteral("Open")}));
    EXPECT_EQ(rowTexts("ListeValeurLogique"),
              (QStringList{QStringLiteral("Closed"), QStringLiteral("Open")}));
    EXPECT_EQ(row("ListeValeurLogique"), 0);
    // A device byte of 2 is Open, and the selection stores it at once.
    EXPECT_EQ(main.reads, std::vector<int>{24});
    EXPECT_EQ(row("ValeurLogiqueDefaut_0"), 1);
    EXPECT_EQ(storedDefaultState(), QStringLiteral("1"));

    EXPECT_EQ(rowTexts("ListeJours").size(), 11);
    EXPECT_EQ(row("ListeJours"), 0);
    EXPECT_FALSE(view.isVisible(QStringLiteral("HeureFin")));
    EXPECT_FALSE(view.isVisible(QStringLiteral("ValeurPeriode")));
    EXPECT_FALSE(view.isVisible(QStringLiteral("LabelHHMMSS_1")));
    EXPECT_EQ(view.displayFormat(QStringLiteral("HeureDebut")), QStringLiteral("HH:mm:ss"));
    EXPECT_EQ(view.dateTime(QStringLiteral("HeureDebut")), now);
    EXPECT_EQ(view.dateTime(QStringLiteral("HeureFin")), now);
    EXPECT_TRUE(rowTexts("ListeConditions").isEmpty());
    EXPECT_EQ(text("NomFichier"), QString());
    EXPECT_FALSE(editor->EnChargement());
    EXPECT_TRUE(dialogs.boxes().empty());
}

TEST_F(EditorTest, EditorStartInFrenchKeepsTheStateUnderTheFirstLanguage) {
    main.language = QStringLiteral("Français");
    main.eeprom[24] = 1;
    editor->Form_Load();

    EXPECT_EQ(text("Ajouter"), QStringLiteral("Ajouter une condition"));
    EXPECT_EQ(text("LabelPeriode"), QStringLiteral("Période (jours)"));
    EXPECT_EQ(text("Sorties_0"), QStringLiteral("Électrovanne bistable"));
    EXPECT_EQ(rowTexts("ValeurLogiqueDefaut_0"),
              (QStringList{QStringLiteral("Fermée"), QStringLiteral("Ouverte")}));
    EXPECT_EQ(rowTexts("ListeJours").last(), QStringLiteral("Périodique"));
    EXPECT_EQ(storedDefaultState(), QStringLiteral("1"));
    const auto french =
        config->RemplitListe(QStringLiteral("Français"), QStringLiteral("ListeSorties"));
    ASSERT_TRUE(french && !french->empty());
    EXPECT_EQ(french->front().extra, QStringLiteral("0"));
}

TEST_F(EditorTest, EditorCaptionWithoutKeyShowsItsNameOnceThenItsCaption) {
    view.add(QStringLiteral("NouveauBouton"), ConsoleView::Kind::Button);
    view[QStringLiteral("NouveauBouton")].text = QStringLiteral("Nouveau");
    editor->Form_Load();
    // The first lookup stores the design caption and shows the key.
    EXPECT_EQ(text("NouveauBouton"), QStringLiteral("NouveauBouton"));
    EXPECT_TRUE(
        configText().contains(QStringLiteral("<Cle>NouveauBouton</Cle><Texte>Nouveau</Texte>")));

    view[QStringLiteral("NouveauBouton")].text = QStringLiteral("Nouveau");
    editor->ChangeTextes(QStringLiteral("English"), false);
    EXPECT_EQ(text("NouveauBouton"), QStringLiteral("Nouveau"));
}

TEST_F(EditorTest, EditorStartInTimeOutShowsNothingAndStoresClose) {
    Sauve_EtatDefautSortie(*config, QStringLiteral("English"), 0, 1);
    config->EcritValeurXML(QStringLiteral("NomProgramme"), QStringLiteral("old.prg"));
    storeLines({threeLines[0]});
    main.timedOut = true;
    editor->Form_Load();

    EXPECT_TRUE(main.reads.empty());
    EXPECT_TRUE(rowTexts("ListeConditions").isEmpty());
    EXPECT_EQ(conditions.Count(), 0);
    EXPECT_EQ(text("NomFichier"), QString());
    // The state asked for first is that of output 1, which the list hasn't:
    // Close, and the selection stores it.
    EXPECT_EQ(row("ValeurLogiqueDefaut_0"), 0);
    EXPECT_EQ(storedDefaultState(), QStringLiteral("0"));
    // The stored lines stay where they are.
    EXPECT_EQ(stored().Count(), 1);
}

TEST_F(EditorTest, EditorStartWithoutProgrammeNameShowsFalse) {
    QFile f(configPath);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    QString xml = QString::fromUtf8(f.readAll());
    f.close();
    xml.remove(QStringLiteral("<NomProgramme></NomProgramme>"));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(xml.toUtf8());
    f.close();
    editor->Form_Load();
    EXPECT_EQ(text("NomFichier"), QStringLiteral("False"));
}

TEST_F(EditorTest, EditorStartLoadsTheStoredLinesWithoutCommittingThem) {
    storeLines(threeLines);
    Conditions c;
    LitConditions(*config, c);
    c.Item(1)->Commentaire = QStringLiteral("kept");
    c.Item(1)->sortie = 5;
    SauveConditions(*config, c);

    editor->Form_Load();
    EXPECT_EQ(rowTexts("ListeConditions"),
              (QStringList{threeLines[0].nom, threeLines[1].nom, threeLines[2].nom}));
    EXPECT_EQ(row("ListeConditions"), 2);
    EXPECT_EQ(editor->IndexCondition(), 2);
    EXPECT_EQ(conditions.Count(), 3);
    // The last line is on show.
    EXPECT_EQ(text("FrameSortie"), threeLines[2].nom);
    EXPECT_EQ(text("ValeurTemporisation"), QStringLiteral("300"));
    EXPECT_EQ(row("ListeJours"), 2);
    EXPECT_EQ(view.dateTime(QStringLiteral("HeureDebut")).time(), QTime(20, 45, 30));
    EXPECT_EQ(row("ListeValeurLogique"), 1);
    // Selecting rows while filling committed nothing.
    EXPECT_EQ(stored().Item(1)->Commentaire, QStringLiteral("kept"));
    EXPECT_EQ(stored().Item(1)->sortie, 5);
    EXPECT_EQ(text("NomFichier"), QString());
}

TEST_F(EditorTest, EditorSixLinesOfEveryKindAndASeventhRefused) {
    editSixLines();
    ASSERT_TRUE(dialogs.boxes().empty());
    EXPECT_EQ(conditions.Count(), 6);
    EXPECT_EQ(rowTexts("ListeConditions").size(), 6);
    EXPECT_EQ(text("ValeurTemporisation"), QStringLiteral("32000"));
    EXPECT_EQ(view.backgrounds.value(QStringLiteral("ValeurTemporisation")), kFondValide);
    const Conditions lines = stored();
    ASSERT_EQ(lines.Count(), 6);
    for (int i = 0; i < 6; ++i) {
        expectFields(lines.Item(i + 1), sixStored[static_cast<size_t>(i)], i + 1);
        EXPECT_EQ(lines.Item(i + 1)->sortie, 3);
        EXPECT_EQ(lines.Item(i + 1)->Format, 0);
        EXPECT_EQ(lines.Item(i + 1)->PlageFinSeconde, 0);
        EXPECT_EQ(lines.Item(i + 1)->Offset, 0.0);
    }
    // The collection in memory is the one stored.
    for (int i = 1; i <= 6; ++i)
        EXPECT_EQ(storedFields(*conditions.Item(i)), storedFields(*lines.Item(i)));

    // A seventh: nothing added, nothing said, and the shown line not
    // committed either.
    typeDuration(QStringLiteral("5"));
    editor->Ajouter_Click();
    EXPECT_EQ(conditions.Count(), 6);
    EXPECT_EQ(rowTexts("ListeConditions").size(), 6);
    EXPECT_TRUE(dialogs.boxes().empty());
    EXPECT_EQ(stored().Item(6)->Temporisation, 32000);

    // Leaving the line for another commits it first.
    selectLine(0);
    EXPECT_EQ(stored().Item(6)->Temporisation, 5);
    EXPECT_EQ(text("FrameSortie"), QStringLiteral("Bistable valve-1"));
    EXPECT_EQ(text("ValeurTemporisation"), QStringLiteral("60"));
    EXPECT_EQ(row("ListeJours"), 0);
    EXPECT_EQ(row("ListeValeurLogique"), 1);
}

TEST_F(EditorTest, EditorNewLineShowsDayZeroAndKeepsTheValueRow) {
    editor->Form_Load();
    editor->Ajouter_Click();
    chooseValue(1);
    chooseDay(3);
    editor->Ajouter_Click();

    EXPECT_EQ(row("ListeConditions"), 1);
    EXPECT_EQ(row("ListeJours"), 0);
    EXPECT_EQ(row("ListeValeurLogique"), 1);
    EXPECT_EQ(text("ValeurTemporisation"), QStringLiteral("0"));
    EXPECT_EQ(text("FrameSortie"), QStringLiteral("Bistable valve-2"));
    EXPECT_EQ(view.rows(QStringLiteral("ListeConditions"))[1].itemData, 0);
    // Uncommitted: no output, the value of no row.
    const Condition* fresh = conditions.Item(2);
    ASSERT_NE(fresh, nullptr);
    EXPECT_EQ(fresh->sortie, 0);
    EXPECT_EQ(fresh->Valeur, 4.0);
    EXPECT_EQ(fresh->rang, 1);
    // The first line was committed by the second Ajouter.
    EXPECT_EQ(conditions.Item(1)->sortie, 3);
    EXPECT_EQ(conditions.Item(1)->Jour, 1);
}

TEST_F(EditorTest, EditorPeriodicLineShowsTheShortDateFormat) {
    editSixLines();
    selectLine(3);
    EXPECT_EQ(row("ListeJours"), 10);
    EXPECT_EQ(view.displayFormat(QStringLiteral("HeureDebut")), QStringLiteral("dd/MM/yyyy"));
    EXPECT_EQ(text("LabelHHMMSS_0"), QStringLiteral("dd/MM/yyyy"));
    EXPECT_EQ(text("LabelHHMMSS_1"), QStringLiteral("hh:mm"));
    EXPECT_TRUE(view.isVisible(QStringLiteral("LabelHHMMSS_1")));
    EXPECT_TRUE(view.isVisible(QStringLiteral("HeureFin")));
    EXPECT_TRUE(view.isVisible(QStringLiteral("ValeurPeriode")));
    EXPECT_TRUE(view.isVisible(QStringLiteral("LabelPeriode")));
    EXPECT_EQ(view.displayFormat(QStringLiteral("HeureFin")), QStringLiteral("HH:mm"));
    EXPECT_EQ(view.dateTime(QStringLiteral("HeureDebut")).date(), QDate(2026, 2, 15));
    EXPECT_EQ(view.dateTime(QStringLiteral("HeureFin")).time(), QTime(6, 30, 0));
    EXPECT_EQ(text("ValeurPeriode"), QStringLiteral("7"));

    // Back to a week day: the time fields return.
    selectLine(1);
    EXPECT_EQ(view.displayFormat(QStringLiteral("HeureDebut")), QStringLiteral("HH:mm:ss"));
    EXPECT_EQ(text("LabelHHMMSS_0"), QStringLiteral("hh:mm:ss"));
    EXPECT_FALSE(view.isVisible(QStringLiteral("HeureFin")));
    EXPECT_FALSE(view.isVisible(QStringLiteral("ValeurPeriode")));
    EXPECT_EQ(view.dateTime(QStringLiteral("HeureDebut")).time(), QTime(8, 5, 0));
}

TEST_F(EditorTest, EditorDateOfAPeriodicLineFitsTheMonthShownBefore) {
    // 31 December on show, a line starting 15 February: no 31 February on
    // the way.
    editSixLines();
    selectLine(5);
    selectLine(3);
    EXPECT_EQ(view.dateTime(QStringLiteral("HeureDebut")).date(), QDate(2026, 2, 15));
}

TEST_F(EditorTest, EditorDurationIsClampedOrIgnoredAtTheCommit) {
    struct Case {
        QString typed;
        bool committed;
        int stored;
        QString shownAfter;
    };
    const std::vector<Case> cases = {
        {QStringLiteral("40000"), true, 32000, QStringLiteral("32000")},
        {QStringLiteral("65535"), true, 32000, QStringLiteral("32000")},
        {QStringLiteral("-5"), true, 0, QStringLiteral("0")},
        {QStringLiteral("2,5"), true, 2, QStringLiteral("2,5")},
        {QStringLiteral("3,5"), true, 4, QStringLiteral("3,5")},
        {QStringLiteral("2.5"), false, 100, QStringLiteral("2.5")},
        {QStringLiteral("abc"), false, 100, QStringLiteral("abc")},
        {QString(), false, 100, QString()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.typed.toStdString());
        storeLines({threeLines[0]});
        conditions = Conditions();
        reopen();
        typeDuration(c.typed);
        editor->ModifierCondition_Click();
        EXPECT_EQ(stored().Item(1)->Temporisation, c.stored);
        EXPECT_EQ(text("ValeurTemporisation"), c.shownAfter);
        EXPECT_TRUE(dialogs.boxes().empty());
    }
}

TEST_F(EditorTest, EditorPeriodNotNumericOnModifyIsReportedAndTheLineKept) {
    editSixLines();
    selectLine(3);
    typePeriod(QStringLiteral("abc"));
    typeDuration(QStringLiteral("999"));
    editor->ModifierCondition_Click();

    ASSERT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_EQ(dialogs.boxes()[0].text, QStringLiteral("The value is not a number"));
    EXPECT_EQ(dialogs.boxes()[0].title, QStringLiteral("Quorvel"));
    EXPECT_EQ(dialogs.boxes()[0].style, MsgBox::Critical);
    EXPECT_EQ(conditions.Count(), 6);
    expectFields(conditions.Item(4), sixStored[3], 4);
    expectFields(stored().Item(4), sixStored[3], 4);
}

TEST_F(EditorTest, EditorPeriodNotNumericOnLeavingTheLineLosesIt) {
    editSixLines();
    selectLine(3);
    typePeriod(QStringLiteral("abc"));
    selectLine(0);

    // The old form's way: the line left the collection before the fault,
    // its row stays, and nothing more is committed.
    EXPECT_TRUE(dialogs.boxes().empty());
    EXPECT_EQ(conditions.Count(), 5);
    EXPECT_EQ(rowTexts("ListeConditions").size(), 6);
    typeDuration(QStringLiteral("77"));
    editor->ModifierCondition_Click();
    selectLine(1);
    EXPECT_EQ(stored().Count(), 6);
    EXPECT_EQ(stored().Item(1)->Temporisation, 60);
    // Leaving the form saves what the collection holds.
    editor->SortirProgrammation_Click();
    EXPECT_EQ(host.closed, 1);
    EXPECT_EQ(stored().Count(), 5);
}

TEST_F(EditorTest, EditorDeletingALineKeepsTheNumbersAndCommitsIntoTheNextOne) {
    struct Case {
        int deleted;
        QStringList names;
        int selected;
        // Per remaining position: the old line whose fields it holds, and
        // the old line whose name and order it keeps.
        std::vector<std::pair<int, int>> holds;
        int storedCount;
    };
    const std::vector<Case> cases = {
        {0,
         {QStringLiteral("Bistable valve-2"), QStringLiteral("Bistable valve-3")},
         0,
         {{0, 1}, {2, 2}},
         2},
        {1,
         {QStringLiteral("Bistable valve-1"), QStringLiteral("Bistable valve-3")},
         0,
         {{0, 0}, {1, 2}},
         2},
        // The last line: the commit finds no line at its place, and
        // config.xml keeps the three until the form is left.
        {2,
         {QStringLiteral("Bistable valve-1"), QStringLiteral("Bistable valve-2")},
         1,
         {{0, 0}, {1, 1}},
         3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.deleted);
        storeLines(threeLines);
        conditions = Conditions();
        reopen();
        selectLine(c.deleted);
        editor->DetruireCondition_Click();

        EXPECT_EQ(rowTexts("ListeConditions"), c.names);
        EXPECT_EQ(row("ListeConditions"), c.selected);
        ASSERT_EQ(conditions.Count(), 2);
        for (size_t p = 0; p < c.holds.size(); ++p) {
            Fields expected = threeLines[static_cast<size_t>(c.holds[p].first)];
            const Fields& own = threeLines[static_cast<size_t>(c.holds[p].second)];
            expected.nom = own.nom;
            expected.rang = own.rang;
            expectFields(conditions.Item(static_cast<int>(p) + 1), expected,
                         static_cast<int>(p) + 1);
        }
        EXPECT_EQ(stored().Count(), c.storedCount);
        EXPECT_TRUE(dialogs.boxes().empty());
    }
}

TEST_F(EditorTest, EditorDeletingTheLastRowLeavesConfigUntilTheFormIsLeft) {
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
}

TEST_F(EditorTest, EditorSaveAsCopiesConfigAndReadBackRestoresTheProgramme) {
    editSixLines();
    view.setCurrentRow(QStringLiteral("ValeurLogiqueDefaut_0"), 1);
    editor->ValeurLogiqueDefaut_Click(0);
    // Shown but never committed: not in the copy.
    typeDuration(QStringLiteral("4242"));

    const QString prg = dir.filePath(QStringLiteral("six.prg"));
    host.saveAnswers.push_back(prg);
    editor->EnregistrerProg_Click();
    ASSERT_TRUE(dialogs.boxes().empty());
    ASSERT_EQ(host.requests.size(), 1u);
    EXPECT_EQ(host.requests[0].filter, QStringLiteral("Prg (*.prg)|*.prg"));
    EXPECT_EQ(host.requests[0].defaultExt, QStringLiteral("*.prg"));
    EXPECT_EQ(host.requests[0].fileName, QString());
    EXPECT_EQ(QFileInfo(host.requests[0].initDir).canonicalFilePath(),
              QFileInfo(dir.path()).canonicalFilePath());
    EXPECT_EQ(text("NomFichier"), QStringLiteral("six.prg"));
    EXPECT_EQ(config->LitValeurXML(QStringLiteral("NomProgramme")).value_or(QString()),
              QStringLiteral("six.prg"));
    QFile copy(prg);
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(copy.readAll()), configText());
    copy.close();

    std::vector<QStringList> saved;
    for (const Condition& c : stored())
        saved.push_back(storedFields(c));
    ASSERT_EQ(saved.size(), 6u);
    EXPECT_EQ(stored().Item(6)->Temporisation, 32000);

    // A fresh config.xml, a fresh session, and the file read back.
    ASSERT_TRUE(QFile::remove(configPath));
    ASSERT_TRUE(QFile::copy(QStringLiteral(QUORVEL_SHIPPED_CONFIG), configPath));
    QFile::setPermissions(configPath, QFile::ReadOwner | QFile::WriteOwner);
    conditions = Conditions();
    host.requests.clear();
    reopen();
    ASSERT_EQ(conditions.Count(), 0);
    ASSERT_EQ(storedDefaultState(), QStringLiteral("0"));

    host.openAnswers.push_back(prg);
    editor->LireProg_Click();
    ASSERT_TRUE(dialogs.boxes().empty());
    EXPECT_EQ(text("NomFichier"), QStringLiteral("six.prg"));
    EXPECT_EQ(config->LitValeurXML(QStringLiteral("NomProgramme")).value_or(QString()),
              QStringLiteral("six.prg"));
    EXPECT_EQ(rowTexts("ListeConditions").size(), 6);
    EXPECT_EQ(rowTexts("ListeConditions").last(), QStringLiteral("Bistable valve-6"));
    EXPECT_EQ(row("ListeConditions"), 5);
    ASSERT_EQ(conditions.Count(), 6);
    for (int i = 1; i <= 6; ++i) {
        EXPECT_EQ(storedFields(*conditions.Item(i)), saved[static_cast<size_t>(i - 1)]);
        EXPECT_EQ(storedFields(*stored().Item(i)), saved[static_cast<size_t>(i - 1)]);
    }
    EXPECT_EQ(row("ValeurLogiqueDefaut_0"), 1);
    EXPECT_EQ(storedDefaultState(), QStringLiteral("1"));
    EXPECT_FALSE(editor->EnChargement());
    // The last line read is on show.
    EXPECT_EQ(text("ValeurPeriode"), QStringLiteral("255"));
}

TEST_F(EditorTest, EditorCancelledFileDialogsChangeNothing) {
    editSixLines();
    const QString before = configText();
    view.setText(QStringLiteral("NomFichier"), QStringLiteral("kept.prg"));
    editor->LireProg_Click();
    editor->EnregistrerProg_Click();
    editor->DetruireProg_Click();
    EXPECT_EQ(host.requests.size(), 3u);
    EXPECT_EQ(configText(), before);
    EXPECT_EQ(text("NomFichier"), QStringLiteral("kept.prg"));
    EXPECT_EQ(conditions.Count(), 6);
    EXPECT_TRUE(dialogs.boxes().empty());
}

TEST_F(EditorTest, EditorDeleteProgrammeFileAsksAndForcesTheDelete) {
    editor->Form_Load();
    const QString prg = dir.filePath(QStringLiteral("old.prg"));
    ASSERT_TRUE(QFile::copy(configPath, prg));
    QFile::setPermissions(prg, QFile::ReadOwner);
    view.setText(QStringLiteral("NomFichier"), QStringLiteral("old.prg"));
    const QString before = configText();

    for (const int answer : {MsgBox::AnswerNo, MsgBox::AnswerYes}) {
        SCOPED_TRACE(answer);
        dialogs.clear();
        host.openAnswers.push_back(prg);
        dialogs.answerNext(answer);
        editor->DetruireProg_Click();
        ASSERT_EQ(dialogs.boxes().size(), 1u);
        EXPECT_EQ(dialogs.boxes()[0].text,
                  QStringLiteral("Do you want to delete the file ") + prg + QStringLiteral(" ?"));
        EXPECT_EQ(dialogs.boxes()[0].style, 36);
        EXPECT_EQ(host.requests.back().fileName, QStringLiteral("old.prg"));
        EXPECT_EQ(QFile::exists(prg), answer == MsgBox::AnswerNo);
        EXPECT_EQ(text("NomFichier"),
                  answer == MsgBox::AnswerNo ? QStringLiteral("old.prg") : QString());
    }
    EXPECT_EQ(configText(), before);
}

TEST_F(EditorTest, EditorDefaultStateEverySelectionStoresIt) {
    editor->Form_Load();
    for (const int r : {1, 0, 1}) {
        view.setCurrentRow(QStringLiteral("ValeurLogiqueDefaut_0"), r);
        editor->ValeurLogiqueDefaut_Click(0);
        EXPECT_EQ(storedDefaultState(), QString::number(r));
    }
    editor->Sorties_Click(1);
    EXPECT_FALSE(view.isEnabled(QStringLiteral("ValeurLogiqueDefaut_0")));
    editor->Sorties_Click(0);
    EXPECT_TRUE(view.isEnabled(QStringLiteral("ValeurLogiqueDefaut_0")));
}

TEST_F(EditorTest, EditorLeavingSavesWithoutCommittingTheFields) {
    storeLines({threeLines[0]});
    editor->Form_Load();
    typeDuration(QStringLiteral("555"));
    editor->SortirProgrammation_Click();
    EXPECT_EQ(host.closed, 1);
    EXPECT_EQ(stored().Item(1)->Temporisation, 100);
}

TEST_F(EditorTest, EditorReadingAnUnreadableFileIsReportedAndChangesNothing) {
    editSixLines();
    const QString before = configText();
    const QString bad = dir.filePath(QStringLiteral("bad.prg"));
    QFile f(bad);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("<Configuration><CONDITIONS>");
    f.close();
    host.openAnswers.push_back(bad);
    editor->LireProg_Click();
    ASSERT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_EQ(dialogs.boxes()[0].title, QStringLiteral("Quorvel"));
    EXPECT_TRUE(dialogs.boxes()[0].text.contains(QStringLiteral("bad.prg")));
    EXPECT_EQ(configText(), before);
    EXPECT_EQ(conditions.Count(), 6);
    EXPECT_FALSE(editor->EnChargement());
}

TEST_F(EditorTest, EditorPrintsOnlyWhenAPrinterIsChosen) {
    editSixLines();
    view.setText(QStringLiteral("NomFichier"), QStringLiteral("six.prg"));
    host.printerChosen = false;
    editor->ImprimerProg_Click();
    EXPECT_TRUE(host.printed.empty());
    host.printerChosen = true;
    editor->ImprimerProg_Click();
    ASSERT_EQ(host.printed.size(), 1u);
    EXPECT_EQ(host.printed[0].heading, QStringLiteral("10/03/2026\tsix.prg - Page : 1"));
}

TEST(EditorFileDialog, FilterAndSuffixInQtTerms) {
    const std::vector<std::pair<QString, QString>> filters = {
        {QStringLiteral("Prg (*.prg)|*.prg"), QStringLiteral("Prg (*.prg)")},
        {QStringLiteral("Programmes|*.prg;*.xml"), QStringLiteral("Programmes (*.prg *.xml)")},
        {QStringLiteral("Prg (*.prg)|*.prg|Tous|*.*"), QStringLiteral("Prg (*.prg);;Tous (*.*)")},
        {QString(), QString()},
    };
    for (const auto& [vb, qt] : filters)
        EXPECT_EQ(qtFileFilter(vb), qt) << vb.toStdString();
    EXPECT_EQ(defaultSuffix(QStringLiteral("*.prg")), QStringLiteral("prg"));
    EXPECT_EQ(defaultSuffix(QStringLiteral("prg")), QStringLiteral("prg"));
    EXPECT_EQ(defaultSuffix(QString()), QString());
}

} // namespace
} // namespace qv::test
