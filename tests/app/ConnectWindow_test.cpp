// The connection list over simulated controllers: what it lists, what a
// choice does to the device state and to the main window's controls.
#include "AppTestSupport.h"
#include "view/MapConsoleView.h"

#include <QListWidget>
#include <QTest>

namespace qv::test {
namespace {

class ConnectTest : public ::testing::Test {
protected:
    std::unique_ptr<SimulatedBus> bus = std::make_unique<SimulatedBus>(demoDevices());
    std::unique_ptr<DeviceRig> rig = std::make_unique<DeviceRig>(*bus);
    MapConsoleView main;
    QStringList updates;
    std::unique_ptr<ConnectWindow> window;

    void SetUp() override { open(); }

    void open() {
        for (const char* c : {"Lire", "Ecrire", "SetTime", "mnuPLC", "nmuBootLoad"})
            main.add(QString::fromLatin1(c), ConsoleView::Kind::Button);
        window = std::make_unique<ConnectWindow>(
            rig->device, main, rig->deviceDialogs,
            [](const QString& key) { return QStringLiteral("[%1]").arg(key.trimmed()); },
            [this](bool demande) { updates << (demande ? "true" : "false"); });
        window->setProbeWait([](int) {});
    }

    std::vector<ConsoleView::Row> lines() {
        return window->view().rows(QStringLiteral("ListeSorvane"));
    }
    void choose(int row) {
        window->view().setCurrentRow(QStringLiteral("ListeSorvane"), row);
        window->ListeSorvane_Click();
    }
    bool enabled(const char* control) { return main.isEnabled(QString::fromLatin1(control)); }
    std::int32_t id(int index) const { return bus->deviceIds()[static_cast<size_t>(index)]; }
};

TEST_F(ConnectTest, ListsTheServedModelWithItsSerialAndOthersOnlyWithViewAll) {
    window->Form_Load();
    ASSERT_EQ(lines().size(), 1u);
    EXPECT_EQ(lines()[0].text, QStringLiteral("Quorvel : (12) 2.70     BL V 103-->1234"));
    EXPECT_EQ(static_cast<std::int32_t>(lines()[0].itemData), id(0));
    EXPECT_EQ(window->NombreUsb(), 2);

    window->view().setChecked(QStringLiteral("ViewAll"), true);
    window->ViewAll_Click();
    ASSERT_EQ(lines().size(), 2u);
    EXPECT_FALSE(lines()[1].text.contains(QStringLiteral("-->"))) << "no serial for other models";
    EXPECT_EQ(static_cast<std::int32_t>(lines()[1].itemData), id(1));
    EXPECT_FALSE(window->EnRafraichissement());
}

TEST_F(ConnectTest, LoadingDisablesTheMainWindowUntilAChoice) {
    for (const char* c : {"Lire", "Ecrire", "SetTime", "mnuPLC"})
        main.setEnabled(QString::fromLatin1(c), true);
    window->Form_Load();
    for (const char* c : {"Lire", "Ecrire", "SetTime", "mnuPLC"})
        EXPECT_FALSE(enabled(c)) << c;
    EXPECT_FALSE(rig->state.bUsbConnected);
}

TEST_F(ConnectTest, TakingADeviceConnectsItAndEnablesTheMainWindow) {
    window->Form_Load();
    choose(0);
    EXPECT_EQ(rig->state.UsbID, id(0));
    EXPECT_TRUE(rig->state.bUsbConnected);
    for (const char* c : {"Lire", "Ecrire", "SetTime", "mnuPLC", "nmuBootLoad"})
        EXPECT_TRUE(enabled(c)) << c;
    EXPECT_EQ(window->result(), QDialog::Accepted);
    EXPECT_TRUE(rig->dialogs.boxes().empty());
}

TEST_F(ConnectTest, CancelLeavesWithoutADeviceButWithTheEditor) {
    rig->state.UsbID = 77;
    window->Form_Load();
    window->ExitEtalonnage_Click();
    EXPECT_TRUE(rig->state.TimeOut);
    EXPECT_FALSE(rig->state.bUsbConnected);
    EXPECT_EQ(rig->state.UsbID, 77) << "the device id in use is kept";
    for (const char* c : {"Lire", "Ecrire", "SetTime"})
        EXPECT_FALSE(enabled(c)) << c;
    EXPECT_TRUE(enabled("mnuPLC"));
    EXPECT_EQ(window->result(), QDialog::Rejected);
}

TEST_F(ConnectTest, TheDeviceInUseIsSelectedAgainWithoutConnecting) {
    rig->state.UsbID = id(0);
    window->Form_Load();
    EXPECT_EQ(window->view().currentRow(QStringLiteral("ListeSorvane")), 0);
    EXPECT_FALSE(rig->state.bUsbConnected);
    EXPECT_NE(window->result(), QDialog::Accepted);
}

TEST_F(ConnectTest, OldFirmwareShowsOnlyTheUpgradeWarningAndOffersTheUpdate) {
    auto configs = demoDevices();
    configs.front().firmware = FirmwareVersion{2, 60};
    bus = std::make_unique<SimulatedBus>(configs);
    rig = std::make_unique<DeviceRig>(*bus);
    open();
    struct Case {
        int answer;
        QStringList updates;
    };
    for (const Case& c :
         {Case{MsgBox::AnswerOk, {QStringLiteral("false")}}, Case{MsgBox::AnswerCancel, {}}}) {
        updates.clear();
        rig->dialogs.clear();
        open();
        window->Form_Load();
        ASSERT_EQ(lines().size(), 1u) << "the current controller is left out";
        EXPECT_TRUE(lines()[0].text.startsWith(
            QStringLiteral("[Warning : you must Upgrade to Firmware V2.70 or higher] ")));
        EXPECT_EQ(lines()[0].itemData, kMarkerOldFirmware);
        rig->dialogs.answerNext(c.answer);
        choose(0);
        ASSERT_EQ(rig->dialogs.boxes().size(), 1u);
        EXPECT_EQ(rig->dialogs.boxes()[0].style, 17);
        EXPECT_EQ(rig->dialogs.boxes()[0].title, QStringLiteral("Quorvel"));
        EXPECT_EQ(updates, c.updates);
        EXPECT_TRUE(rig->state.TimeOut);
        EXPECT_FALSE(rig->state.bUsbConnected);
        EXPECT_TRUE(enabled("nmuBootLoad"));
        EXPECT_EQ(window->result(), QDialog::Accepted);
    }
}

TEST_F(ConnectTest, TheUnsupportedMarkerRefusesTheDevice) {
    window->Form_Load();
    window->view().setRows(QStringLiteral("ListeSorvane"),
                           {{QStringLiteral("?"), static_cast<double>(kMarkerUnsupported)}});
    main.setEnabled(QStringLiteral("nmuBootLoad"), true);
    choose(0);
    ASSERT_EQ(rig->dialogs.boxes().size(), 1u);
    EXPECT_EQ(rig->dialogs.boxes()[0].style, 16);
    EXPECT_EQ(rig->dialogs.boxes()[0].text,
              QStringLiteral("[Unsupported hardware. Please contact Tessaluk]"));
    EXPECT_FALSE(enabled("nmuBootLoad"));
    EXPECT_TRUE(rig->state.TimeOut);
}

TEST_F(ConnectTest, TheOperatorsClickOnALineConnectsOnceShown) {
    window->show();
    // The list fills once the window is on screen.
    for (int i = 0; i < 100 && lines().empty(); ++i)
        QTest::qWait(10);
    ASSERT_EQ(lines().size(), 1u);
    EXPECT_NE(window->result(), QDialog::Accepted) << "filling the list takes no device";
    auto* list = window->findChild<QListWidget*>(QStringLiteral("ListeSorvane"));
    const QRect line = list->visualItemRect(list->item(0));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, line.center());
    EXPECT_EQ(window->result(), QDialog::Accepted);
    EXPECT_EQ(rig->state.UsbID, id(0));
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ConnectTest, TheArrowKeysTakeALineAsAClickDoes) {
    window->show();
    for (int i = 0; i < 100 && lines().empty(); ++i)
        QTest::qWait(10);
    window->view().setChecked(QStringLiteral("ViewAll"), true);
    window->ViewAll_Click();
    ASSERT_EQ(lines().size(), 2u);
    auto* list = window->findChild<QListWidget*>(QStringLiteral("ListeSorvane"));
    list->setFocus();
    list->setCurrentRow(0, QItemSelectionModel::NoUpdate); // where the focus leaves it
    EXPECT_NE(window->result(), QDialog::Accepted) << "the focus alone takes nothing";
    QTest::keyClick(list, Qt::Key_Down);
    EXPECT_EQ(window->result(), QDialog::Accepted);
    EXPECT_EQ(rig->state.UsbID, id(1));
    EXPECT_TRUE(rig->state.bUsbConnected);
}

TEST_F(ConnectTest, ClosingTheWindowRunsNoneOfTheChoice) {
    window->show();
    for (int i = 0; i < 100 && lines().empty(); ++i)
        QTest::qWait(10);
    window->close();
    EXPECT_FALSE(rig->state.bUsbConnected);
    EXPECT_FALSE(rig->state.TimeOut) << "left as the refresh left it";
    EXPECT_FALSE(enabled("Lire"));
    EXPECT_FALSE(enabled("mnuPLC")) << "only Cancel gives the editor back";
}

} // namespace
} // namespace qv::test
