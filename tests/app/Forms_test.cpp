// Every control that the logic reaches by name must exist on its form under
// that name and be of the kind the translation walks expect; the forms must
// be laid out so that they resize.
#include "AppTestSupport.h"
#include "console/widgets/AboutWindow.h"
#include "console/widgets/MessageBoxDialogs.h"
#include "console/widgets/SplashWindow.h"
#include "device/widgets/FormSelectionWindow.h"
#include "view/MapConsoleView.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLayout>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>

namespace qv::test {
namespace {

using Kind = ConsoleView::Kind;

struct Expected {
    std::string name;
    Kind kind;
};

std::map<QString, Kind> listed(const ConsoleView& view) {
    std::map<QString, Kind> out;
    for (const auto& c : view.controls())
        out[c.name] = c.kind;
    return out;
}

void expectControls(const ConsoleView& view, const std::vector<Expected>& expected) {
    const auto controls = listed(view);
    for (const Expected& e : expected) {
        const auto found = controls.find(QString::fromStdString(e.name));
        ASSERT_NE(found, controls.end()) << "missing control " << e.name;
        EXPECT_EQ(static_cast<int>(found->second), static_cast<int>(e.kind)) << e.name;
    }
}

std::vector<Expected> mainScreenControls() {
    std::vector<Expected> names = {
        {"Lire", Kind::Button},
        {"Ecrire", Kind::Button},
        {"Sortir", Kind::Button},
        {"ProgressBar2", Kind::ProgressBar},
        {"ListeLangues", Kind::ComboBox},
        {"Madate", Kind::DatePicker},
        {"Liste", Kind::ComboBox},
        {"Label16", Kind::Label},
        {"Label17", Kind::Label},
        {"Image1", Kind::Other},
        {"FrameInformations", Kind::Frame},
        {"Version", Kind::Label},
        {"LabelVersion", Kind::Label},
        {"NumeroSerie", Kind::Label},
        {"Label1", Kind::Label},
        {"DateProgrammation", Kind::Label},
        {"Label2", Kind::Label},
        {"txtCurrentTime", Kind::Label},
        {"lblCurrentTime", Kind::Label},
        {"Batterie", Kind::Label},
        {"LabelBatterie", Kind::Label},
        {"VMIN", Kind::Label},
        {"VMAX", Kind::Label},
        {"ProgressBar3", Kind::ProgressBar},
        {"FrameManualActionDelay", Kind::Frame},
        {"ValeurManualAction", Kind::TextBox},
        {"LabelManualActionDelayTime", Kind::Label},
        {"DaylightFrame", Kind::Frame},
        {"EnableDaylightSaving", Kind::CheckBox},
        {"FrameWinter", Kind::Frame},
        {"FrameSummer", Kind::Frame},
        {"DaylightAdjustment", Kind::TextBox},
        {"Labeldelta", Kind::Label},
        {"SetTime", Kind::Button},
        {"FrameMaintenance", Kind::Frame},
        {"Seuilbatterie", Kind::Button},
        {"MinBat", Kind::TextBox},
        {"LabelVBatMin", Kind::Label},
        {"RazCtn", Kind::Button},
        {"Ils", Kind::TextBox},
        {"LabelILS", Kind::Label},
        {"CheckClockSpeed", Kind::CheckBox},
        {"LabelCalibrationHorloge", Kind::Label},
        {"CommandCalibrationCLK", Kind::Button},
        {"ForceBoot", Kind::Button},
        {"Programmer", Kind::Button},
        {"ValeurNumeroSerie", Kind::TextBox},
        {"Label15", Kind::Label},
        {"FrameMonitoringSorties", Kind::Frame},
        {"NomSortie", Kind::Label},
        {"ListeSorties", Kind::ComboBox},
        {"ValeurSortieLogique", Kind::ComboBox},
        {"Activer", Kind::Button},
        {"Continu", Kind::CheckBox},
        {"ArretProgramme", Kind::CheckBox},
        {"ListeEntrees", Kind::ListBox},
        {"FrameMessage", Kind::Frame},
        {"Message", Kind::Label},
        {"MnuMode", Kind::MenuEntry},
        {"mnurapport", Kind::MenuEntry},
        {"nmuBootLoad", Kind::MenuEntry},
        {"mnuPLC", Kind::MenuEntry},
        {"MnuConnect", Kind::MenuEntry},
        {"mnuAide_0", Kind::MenuEntry},
        {"mnuApropos_1", Kind::MenuEntry},
    };
    // Control arrays, one member per index.
    const auto array = [&](const char* name, int count, Kind kind) {
        for (int i = 0; i < count; ++i)
            names.push_back({std::string(name) + "_" + std::to_string(i), kind});
    };
    array("Semaine", 2, Kind::ComboBox);
    array("Mois", 2, Kind::ComboBox);
    array("Jour", 2, Kind::ComboBox);
    array("Heure", 2, Kind::ComboBox);
    array("LabelsemaineEte", 2, Kind::Label);
    array("LabelMoisEte", 2, Kind::Label);
    array("LabelJour", 2, Kind::Label);
    array("Labelheure", 2, Kind::Label);
    array("ctn_text", 5, Kind::TextBox);
    array("Labelctn", 5, Kind::Label);
    array("ValeurHorloge", 3, Kind::TextBox);
    return names;
}

class FormsTest : public WindowFixture {};

TEST_F(FormsTest, MainScreenHasEveryControlUnderItsName) {
    expectControls(window->view(), mainScreenControls());
    EXPECT_EQ(window->objectName(), QStringLiteral("MainScreen"));
    EXPECT_EQ(window->windowTitle(), QStringLiteral("TESSALUK Quorvel"));
    EXPECT_EQ(window->timerEntree().objectName(), QStringLiteral("TimerEntree"));
    EXPECT_EQ(window->timerEntree().interval(), 1000);
    EXPECT_FALSE(window->timerEntree().isActive());
    EXPECT_EQ(window->testTimer().objectName(), QStringLiteral("test"));
    EXPECT_FALSE(window->testTimer().isActive());
}

TEST_F(FormsTest, MainScreenMenusStandInTheirOrder) {
    QStringList titles;
    for (QAction* action : window->menuBar()->actions())
        titles << (action->menu() ? action->menu()->objectName() : action->objectName());
    EXPECT_EQ(titles, (QStringList{QStringLiteral("MnuMode"), QStringLiteral("mnuPLC"),
                                   QStringLiteral("MnuConnect"), QStringLiteral("mnuAide_0")}));
}

TEST_F(FormsTest, EveryFrameIsLaidOutSoThatTheWindowResizes) {
    ASSERT_NE(window->centralWidget()->layout(), nullptr);
    for (QGroupBox* frame : window->findChildren<QGroupBox*>())
        EXPECT_NE(frame->layout(), nullptr) << frame->objectName().toStdString();
    window->show();
    const QSize natural = window->sizeHint();
    window->resize(natural.width() + 300, natural.height() + 200);
    QTest::qWait(20);
    // Frames take the room; no control is drawn outside its parent.
    for (QWidget* w : window->centralWidget()->findChildren<QWidget*>()) {
        if (!w->isVisible() || !w->parentWidget())
            continue;
        EXPECT_TRUE(w->parentWidget()->rect().contains(w->geometry()))
            << w->objectName().toStdString();
    }
}

TEST(ConnectForm, HasItsControls) {
    SimulatedBus bus(demoDevices());
    DeviceRig rig(bus);
    MapConsoleView main;
    ConnectWindow window(rig.device, main, rig.dialogs, {}, {});
    expectControls(window.view(), {{"ListeSorvane", Kind::ListBox},
                                   {"ViewAll", Kind::CheckBox},
                                   {"ExitEtalonnage", Kind::Button}});
    EXPECT_EQ(window.objectName(), QStringLiteral("frmConnect"));
}

TEST(FormSelection, HasItsControlsAndTheCaptionOfProgramme) {
    std::uint8_t config = 0;
    FormSelectionWindow window(config,
                               [](const QString& key) { return key + QStringLiteral("!"); });
    WidgetConsoleView view(&window);
    expectControls(view, {{"TypeeVarlin_0", Kind::OptionButton},
                          {"TypeeVarlin_1", Kind::OptionButton},
                          {"TypeeVarlin_2", Kind::OptionButton},
                          {"Selection", Kind::Button}});
    EXPECT_EQ(view.text(QStringLiteral("Selection")), QStringLiteral("Programme!"));
}

TEST(FormSelection, TheChoiceSetsTheOutputBits) {
    struct Case {
        int choice;
        std::uint8_t before;
        std::uint8_t after;
    };
    const std::vector<Case> cases = {
        {0, 0x00, SORTIES_BISTABLES},
        {0, MASQUE_ALIM_24V, MASQUE_ALIM_24V | SORTIES_BISTABLES},
        {1, 0xFF, SORTIES_4_20MA | MASQUE_ALIM_24V | SORTIES_TOR_24_V},
        {2, SORTIES_BISTABLES, SORTIES_4_20MA | MASQUE_ALIM_24V | SORTIES_ANALOGIQUES_24},
    };
    // Five distinct bits, or the editor could not tell the options apart.
    EXPECT_EQ(SORTIES_BISTABLES | SORTIES_TOR_24_V | SORTIES_ANALOGIQUES_24 | SORTIES_4_20MA |
                  MASQUE_ALIM_24V,
              SORTIES_BISTABLES + SORTIES_TOR_24_V + SORTIES_ANALOGIQUES_24 + SORTIES_4_20MA +
                  MASQUE_ALIM_24V);
    for (const Case& c : cases) {
        std::uint8_t config = c.before;
        FormSelectionWindow window(config, {});
        window.findChild<QRadioButton*>(QStringLiteral("TypeeVarlin_%1").arg(c.choice))
            ->setChecked(true);
        window.findChild<QAbstractButton*>(QStringLiteral("Selection"))->click();
        EXPECT_EQ(config, c.after) << "choice " << c.choice;
        EXPECT_EQ(window.result(), QDialog::Accepted);
    }
}

TEST(Splash, GoesOnItsTimerOnAClickOrOnAKey) {
    struct Case {
        const char* how;
        std::function<void(SplashWindow*)> act;
    };
    const std::vector<Case> cases = {
        {"timer", [](SplashWindow*) { QTest::qWait(120); }},
        {"click",
         [](SplashWindow* s) {
             QTest::mouseClick(s->findChild<QWidget*>(QStringLiteral("Image1")), Qt::LeftButton);
         }},
        {"key", [](SplashWindow* s) { QTest::keyClick(s, Qt::Key_Space); }},
    };
    for (const Case& c : cases) {
        QPointer<SplashWindow> splash = new SplashWindow;
        ASSERT_NE(splash->findChild<QWidget*>(QStringLiteral("Image1")), nullptr);
        splash->showFor(c.how == std::string("timer") ? 50 : 60000);
        EXPECT_TRUE(splash->isVisible()) << c.how;
        c.act(splash.data());
        QTest::qWait(10);
        EXPECT_TRUE(splash.isNull()) << c.how << ": the splash is still there";
        delete splash.data();
    }
}

TEST(About, ShowsTheVersionAndFindsASystemInformationProgram) {
    AboutWindow about;
    WidgetConsoleView view(&about);
    EXPECT_EQ(view.text(QStringLiteral("lblVersion")),
              QStringLiteral("Version ") + QStringLiteral(QUORVEL_VERSION));
    EXPECT_EQ(QString::fromLatin1(QUORVEL_VERSION).split(QLatin1Char('.')).size(), 3);
    EXPECT_TRUE(view.text(QStringLiteral("frmAbout")).startsWith(QStringLiteral("About ")));
    ASSERT_NE(view.find(QStringLiteral("cmdSysInfo")), nullptr);

    QTemporaryDir bin;
    const QString program = bin.filePath(QStringLiteral("kinfocenter"));
    QFile file(program);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\n");
    file.close();
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", bin.path().toLocal8Bit());
    EXPECT_EQ(AboutWindow::findSystemInfo(), program);
    qputenv("PATH", QByteArray("/nonexistent"));
    EXPECT_EQ(AboutWindow::findSystemInfo(), QString());
    qputenv("PATH", path);
}

TEST(MessageBoxes, StyleValuesGiveButtonsAndIcons) {
    struct Case {
        int style;
        QMessageBox::StandardButtons buttons;
        QMessageBox::Icon icon;
    };
    const std::vector<Case> cases = {
        {0, QMessageBox::Ok, QMessageBox::NoIcon},
        {16, QMessageBox::Ok, QMessageBox::Critical},
        {17, QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Critical},
        {36, QMessageBox::Yes | QMessageBox::No, QMessageBox::Question},
        {48, QMessageBox::Ok, QMessageBox::Warning},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(MessageBoxDialogs::buttonsFor(c.style), c.buttons) << c.style;
        EXPECT_EQ(MessageBoxDialogs::iconFor(c.style), c.icon) << c.style;
    }
    EXPECT_EQ(MessageBoxDialogs::answerFor(QMessageBox::Ok), MsgBox::AnswerOk);
    EXPECT_EQ(MessageBoxDialogs::answerFor(QMessageBox::Cancel), MsgBox::AnswerCancel);
    EXPECT_EQ(MessageBoxDialogs::answerFor(QMessageBox::Yes), MsgBox::AnswerYes);
    EXPECT_EQ(MessageBoxDialogs::answerFor(QMessageBox::No), MsgBox::AnswerNo);
}

TEST(MessageBoxes, TheOperatorsAnswerComesBack) {
    MessageBoxDialogs dialogs;
    struct Case {
        int style;
        QMessageBox::StandardButton press;
        int answer;
    };
    const std::vector<Case> cases = {
        {17, QMessageBox::Cancel, MsgBox::AnswerCancel},
        {17, QMessageBox::Ok, MsgBox::AnswerOk},
        {36, QMessageBox::No, MsgBox::AnswerNo},
        {36, QMessageBox::Yes, MsgBox::AnswerYes},
    };
    for (const Case& c : cases) {
        QString title;
        QTimer::singleShot(0, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            title = box->windowTitle();
            box->button(c.press)->click();
        });
        EXPECT_EQ(dialogs.message(QStringLiteral("text"), QString(), c.style), c.answer);
        EXPECT_EQ(title, QStringLiteral("Quorvel")) << "an empty title gives the program's";
    }
}

} // namespace
} // namespace qv::test
