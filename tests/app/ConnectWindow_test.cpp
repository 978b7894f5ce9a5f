// The connection list over simulated controllers: the lines it refuses or
// turns into the firmware update, and the keys that take a line.
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

} // namespace
} // namespace qv::test
