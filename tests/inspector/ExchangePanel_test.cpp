// The panel in a window: View > Exchanges, captions from config.xml in both
// languages, the filter, and a trace saved and opened again.
#include "RecordingDialogs.h"
#include "SimulatedBus.h"
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
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace qv::test {
namespace {

class PanelTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
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
        const QString path = dir.filePath(QStringLiteral("config.xml"));
        ASSERT_TRUE(QFile::copy(QStringLiteral(QUORVEL_SHIPPED_CONFIG), path));
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        config = std::make_unique<ConfigDocument>(path);
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

    QString header(int column) {
        return panel->table().model()->headerData(column, Qt::Horizontal).toString();
    }
};

TEST_F(PanelTest, ViewExchangesOpensTheHiddenPanel) {
    auto* view = child<QMenu>("mnuView");
    ASSERT_NE(view, nullptr);
    // Placed before the last menu, the window's "?".
    EXPECT_EQ(window.menuBar()->actions().last()->menu()->objectName(), QStringLiteral("mnuAide"));
    QAction* exchanges = child<QAction>("mnuExchanges");
    ASSERT_NE(exchanges, nullptr);
    EXPECT_TRUE(view->actions().contains(exchanges));
    window.show();
    EXPECT_FALSE(panel->isVisible());
    exchanges->trigger();
    EXPECT_TRUE(panel->isVisible());
    exchanges->trigger();
    EXPECT_FALSE(panel->isVisible());
}

TEST_F(PanelTest, CaptionsFollowTheLanguage) {
    struct Case {
        const char* language;
        const char* view;
        const char* clear;
        const char* time;
        const char* answered;
    };
    device.LitEEprom(40);
    panel->feed().drain();
    const Case cases[] = {{"English", "View", "Clear", "Time", "answered"},
                          {"Français", "Affichage", "Effacer", "Heure", "répondu"}};
    for (const Case& c : cases) {
        language = QString::fromUtf8(c.language);
        panel->retranslate();
        EXPECT_EQ(child<QMenu>("mnuView")->title(), QString::fromUtf8(c.view));
        EXPECT_EQ(child<QPushButton>("cmdClear")->text(), QString::fromUtf8(c.clear));
        EXPECT_EQ(header(ExchangeTableModel::Time), QString::fromUtf8(c.time));
        EXPECT_EQ(panel->table().model()->index(0, ExchangeTableModel::Status).data().toString(),
                  QString::fromUtf8(c.answered));
    }
}

TEST_F(PanelTest, TheFilterNarrowsTheList) {
    for (int address : {40, 41, 16})
        device.LitEEprom(address);
    panel->feed().drain();
    child<QLineEdit>("txtFilter")->setText(QStringLiteral("COUNTER"));
    EXPECT_EQ(panel->table().model()->rowCount(), 2);
    child<QLineEdit>("txtFilter")->clear();
    EXPECT_EQ(panel->table().model()->rowCount(), 3);
}

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
