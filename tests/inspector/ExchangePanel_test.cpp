// The panel in a window: a trace saved and opened again.
#include "RecordingDialogs.h"
#include "SimulatedBus.h"
#include "TestFiles.h"
#include "config/ConfigDocument.h"
#include "device/Device.h"
#include "inspector/widgets/ExchangePanel.h"
#include "link/TracingBus.h"

#include <QAbstractItemModel>
#include <QFile>
#include <QHeaderView>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTableView>
#include <gtest/gtest.h>

namespace qv::test {
namespace {

class PanelTest : public ::testing::Test {
protected:
    test::ScratchAppFolder dir;
    QString language = QStringLiteral("English");
    std::unique_ptr<ConfigDocument> config;
    SimulatedBus sim;
    TraceHub hub;
    TracingBus bus{sim, hub};
    RecordingDialogs dialogs;
    PublicState state;
    FrameLink link{bus, dialogs, state};
    Device device{link, [] { return QString(); }};
    QMainWindow window;
    ExchangePanel* panel = nullptr;
    QStringList problems;

    void SetUp() override {
        config = std::make_unique<ConfigDocument>(dir.configPath());
        config->load();
        window.menuBar()->addMenu(QStringLiteral("?"))->setObjectName(QStringLiteral("mnuAide"));
        panel = installExchangePanel(window, hub, *config, [this] { return language; });
        panel->setProblemReporter([this](const QString& text) { problems << text; });
        link.setPause([](int) {});
        sim.setSleep([](int) {});
        state.UsbID = sim.addDevice(SimDeviceConfig{});
    }

    template <typename T> T* child(const char* name) {
        return window.findChild<T*>(QString::fromLatin1(name));
    }
};

TEST_F(PanelTest, ASavedTraceOpensAsTheSameExchanges) {
    sim.dropReplies(state.UsbID, 1);
    device.LitEEprom(40);
    device.LitValeur(2);
    panel->feed().drain();
    const int rows = panel->model().rowCount();
    ASSERT_EQ(rows, 3);
    QStringList before;
    for (int row = 0; row < rows; ++row)
        before << panel->model().at(row).words() + QString::number(panel->model().at(row).attempt);

    const QString path = dir.filePath(QStringLiteral("saved.trace"));
    ASSERT_TRUE(panel->saveTo(path));
    child<QPushButton>("cmdClear")->click();
    EXPECT_EQ(panel->model().rowCount(), 0);
    ASSERT_TRUE(panel->openFrom(path));
    QStringList after;
    for (int row = 0; row < panel->model().rowCount(); ++row)
        after << panel->model().at(row).words() + QString::number(panel->model().at(row).attempt);
    EXPECT_EQ(after.join('\n').toStdString(), before.join('\n').toStdString());
    // An opened trace is looked at still: live exchanges wait behind Pause.
    EXPECT_TRUE(child<QPushButton>("cmdPause")->isChecked());
    device.LitEEprom(16);
    panel->feed().drain();
    EXPECT_EQ(panel->model().rowCount(), rows);

    EXPECT_TRUE(problems.isEmpty());
    EXPECT_FALSE(panel->openFrom(dir.filePath(QStringLiteral("missing.trace"))));
    EXPECT_FALSE(panel->saveTo(dir.filePath(QStringLiteral("no-such-folder/x.trace"))));
    ASSERT_EQ(problems.size(), 2);
    EXPECT_TRUE(problems[0].startsWith(QStringLiteral("The trace cannot be read")));
    EXPECT_EQ(panel->model().rowCount(), rows); // a failed open loses nothing shown
}

} // namespace
} // namespace qv::test
