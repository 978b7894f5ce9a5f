#include "EditorTestSupport.h"
#include "RecordingDialogs.h"
#include "TestFiles.h"
#include "config/ConfigDocument.h"
#include "programme/ProgrammeStore.h"
#include "programme/widgets/ProgrammationWindow.h"

#include <QApplication>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

namespace qv::test {
namespace {

// The window over a scratch config.xml and a main form that answers.
class EditorWindowTest : public ::testing::Test {
protected:
    ScratchAppFolder dir;
    std::unique_ptr<ConfigDocument> config;
    Conditions conditions;
    FakeMainScreen main;
    RecordingDialogs dialogs;
    std::unique_ptr<ProgrammationWindow> window;

    void SetUp() override { config = std::make_unique<ConfigDocument>(dir.configPath()); }

    void open(const QLocale& locale = QLocale(QLocale::English, QLocale::UnitedKingdom)) {
        window.reset();
        window = std::make_unique<ProgrammationWindow>(main, *config, conditions, dialogs);
        window->editor().setLocale(locale);
        window->load();
        window->show();
        QApplication::processEvents();
    }

    template <typename T> T* child(const char* name) {
        T* w = window->findChild<T*>(QString::fromLatin1(name));
        EXPECT_NE(w, nullptr) << name;
        return w;
    }

    void choose(const char* combo, int row) {
        auto* c = child<QComboBox>(combo);
        c->setCurrentIndex(row);
        Q_EMIT c->activated(row);
    }

    void type(const char* edit, const QString& text) {
        auto* e = child<QLineEdit>(edit);
        e->selectAll();
        QTest::keyClick(e, Qt::Key_Backspace);
        QTest::keyClicks(e, text);
    }

    // Three lines of a session before, the last one periodic.
    void storeProgramme() {
        Conditions c;
        const auto add = [&](int jour, int h, int m, int s, int finH, int finM, int duree,
                             double valeur) {
            Condition line;
            line.Nom = QStringLiteral("Bistable valve-%1").arg(c.Count() + 1);
            line.sortie = 3;
            line.rang = static_cast<std::int16_t>(c.Count());
            line.Jour = static_cast<std::int16_t>(jour);
            line.Heure = static_cast<std::int16_t>(h);
            line.Minute = static_cast<std::int16_t>(m);
            line.Seconde = static_cast<std::int16_t>(s);
            line.PlageFinHeure = static_cast<std::int16_t>(finH);
            line.PlageFinMinute = static_cast<std::int16_t>(finM);
            line.Temporisation = static_cast<std::int16_t>(duree);
            line.Valeur = valeur;
            c.Add(line);
        };
        add(9, 7, 30, 0, 0, 0, 900, 1);
        add(1, 19, 0, 0, 0, 0, 600, 0);
        add(JourPeriode, 5, 45, 3, 4, 20, 1800, 1);
        SauveConditions(*config, c);
        config->EcritValeurXML(QStringLiteral("NomProgramme"), QStringLiteral("garden.prg"));
    }
};

TEST_F(EditorWindowTest, EditorWindowEditsSavesAndPrintsThroughItsControls) {
    main.eeprom[24] = 2; // the device's 2 is Open too
    open();
    EXPECT_EQ(child<QComboBox>("ValeurLogiqueDefaut_0")->currentText(), QStringLiteral("Open"));

    child<QPushButton>("Ajouter")->click();
    EXPECT_EQ(child<QListWidget>("ListeConditions")->count(), 1);
    choose("ListeJours", 10);
    EXPECT_FALSE(child<QDateTimeEdit>("HeureFin")->isHidden());
    EXPECT_FALSE(child<QLineEdit>("ValeurPeriode")->isHidden());
    EXPECT_EQ(child<QDateTimeEdit>("HeureDebut")->displayFormat(), QStringLiteral("dd/MM/yyyy"));
    EXPECT_TRUE(child<QDateTimeEdit>("HeureDebut")->calendarPopup());

    type("ValeurPeriode", QStringLiteral("300"));
    auto* period = child<QLineEdit>("ValeurPeriode");
    EXPECT_EQ(period->palette().color(QPalette::Base), QColor(250, 100, 100));
    EXPECT_EQ(child<QLabel>("Message")->text(),
              QStringLiteral("The value must be between 0 and 255"));
    EXPECT_EQ(period->toolTip(), QStringLiteral("The value must be between 0 and 255"));
    type("ValeurPeriode", QStringLiteral("7"));
    EXPECT_EQ(period->palette().color(QPalette::Base), QColor(Qt::white));
    EXPECT_EQ(child<QLabel>("Message")->text(), QString());

    child<QDateTimeEdit>("HeureDebut")->setDate(QDate(2026, 4, 20));
    child<QDateTimeEdit>("HeureFin")->setTime(QTime(5, 45));
    choose("ListeValeurLogique", 1);
    type("ValeurTemporisation", QStringLiteral("1800"));
    child<QPushButton>("ModifierCondition")->click();
    ASSERT_EQ(conditions.Count(), 1);
    const Condition& line = *conditions.Item(1);
    EXPECT_EQ(line.Jour, JourPeriode);
    EXPECT_EQ(line.Seconde, 7);
    EXPECT_EQ(line.Heure, 5);
    EXPECT_EQ(line.Minute, 45);
    EXPECT_EQ(line.PlageFinHeure, 4);
    EXPECT_EQ(line.PlageFinMinute, 20);
    EXPECT_EQ(line.Temporisation, 1800);
    EXPECT_EQ(line.Valeur, 1);

    const QString prg = dir.filePath(QStringLiteral("window.prg"));
    std::vector<bool> asked;
    window->setFileChooser([&](const FileDialogRequest&, bool save) {
        asked.push_back(save);
        return prg;
    });
    child<QPushButton>("EnregistrerProg")->click();
    EXPECT_TRUE(QFile::exists(prg));
    EXPECT_EQ(child<QLineEdit>("NomFichier")->text(), QStringLiteral("window.prg"));
    EXPECT_EQ(asked, std::vector<bool>{true});

    const QString pdf = dir.filePath(QStringLiteral("window.pdf"));
    window->setPdfChooser([&] { return pdf; });
    child<QPushButton>("ImprimerPdf")->click();
    EXPECT_GT(QFileInfo(pdf).size(), 0);
    EXPECT_TRUE(dialogs.boxes().empty());

    child<QPushButton>("SortirProgrammation")->click();
    EXPECT_EQ(window->result(), QDialog::Accepted);
}

TEST_F(EditorWindowTest, EditorWindowTakesSixLinesAtMostAndSaysNothingOfTheSeventh) {
    open();
    for (int i = 0; i < 7; ++i)
        child<QPushButton>("Ajouter")->click();
    EXPECT_EQ(child<QListWidget>("ListeConditions")->count(), 6);
    EXPECT_EQ(conditions.Count(), 6);
    EXPECT_TRUE(dialogs.boxes().empty());
}

// The old form's ways: a duration past the word is taken and stored as
// 32000, moving to another line commits the shown one first, deleting the
// first of three leaves the names of lines 2 and 3, and a new line shows
// day row 0 with the value row as it was.
TEST_F(EditorWindowTest, EditorWindowKeepsTheOldFormsWays) {
    storeProgramme();
    open();
    auto* list = child<QListWidget>("ListeConditions");
    ASSERT_EQ(list->count(), 3);
    list->setCurrentRow(0);
    type("ValeurTemporisation", QStringLiteral("40000"));
    EXPECT_EQ(child<QLabel>("Message")->text(), QString());
    list->setCurrentRow(1);
    EXPECT_EQ(conditions.Item(1)->Temporisation, 32000);

    list->setCurrentRow(0);
    child<QPushButton>("DetruireCondition")->click();
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(list->item(0)->text(), QStringLiteral("Bistable valve-2"));
    EXPECT_EQ(list->item(1)->text(), QStringLiteral("Bistable valve-3"));

    choose("ListeValeurLogique", 1);
    child<QPushButton>("Ajouter")->click();
    EXPECT_EQ(child<QComboBox>("ListeJours")->currentIndex(), 0);
    EXPECT_EQ(child<QComboBox>("ListeValeurLogique")->currentIndex(), 1);
    EXPECT_TRUE(dialogs.boxes().empty());
}

// A cancelled file dialog changes nothing.
TEST_F(EditorWindowTest, EditorWindowCancelledFileDialogsChangeNothing) {
    storeProgramme();
    open();
    const QByteArray before = readFile(dir.configPath());
    window->setFileChooser([](const FileDialogRequest&, bool) { return QString(); });
    child<QPushButton>("LireProg")->click();
    child<QPushButton>("EnregistrerProg")->click();
    EXPECT_EQ(child<QLineEdit>("NomFichier")->text(), QStringLiteral("garden.prg"));
    EXPECT_EQ(child<QListWidget>("ListeConditions")->count(), 3);
    EXPECT_EQ(readFile(dir.configPath()), before);
    EXPECT_TRUE(dialogs.boxes().empty());
}

// A controller in time-out at the start shows no lines and no file name.
TEST_F(EditorWindowTest, EditorWindowInTimeOutShowsNothing) {
    storeProgramme();
    main.timedOut = true;
    open();
    EXPECT_EQ(child<QListWidget>("ListeConditions")->count(), 0);
    EXPECT_EQ(child<QLineEdit>("NomFichier")->text(), QString());
    EXPECT_TRUE(main.reads.empty());
}

} // namespace
} // namespace qv::test
