// The bench window against simulated controllers on the offscreen platform,
// in English and in French: the real threads and the queued signals, the link's pauses shortened
// (except for the pictures of the documentation, made at the real pace).
#include "ProductionTestSupport.h"
#include "RecordingDialogs.h"
#include "link/FrameLink.h"
#include "production/widgets/BenchWindow.h"
#include "production/widgets/ProductionBench.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

namespace qv {
namespace {

// Runs the event loop until `done` holds or the time is up; QTRY_* would
// report to QTest, not to the test here.
template <typename F> bool eventually(F done, int timeoutMs) {
    QElapsedTimer timer;
    timer.start();
    while (!done()) {
        if (timer.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QTest::qSleep(5);
    }
    return true;
}

class BenchWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        bus.setRestartSilence(0);
        for (int i = 0; i < 8; ++i)
            ids.push_back(bus.addDevice(SimDeviceConfig{}));
    }

    std::unique_ptr<BenchWindow> open(const QString& language, bool realPace = false) {
        auto window = std::make_unique<BenchWindow>(bus, config, dialogs, language);
        if (!realPace) {
            window->setLinkSetup([](FrameLink& link) { link.setPause([](int) {}); });
            window->setRestartWait(0);
        }
        window->show();
        window->refresh();
        return window;
    }

    template <typename T> T* child(QWidget& window, const char* name) {
        return window.findChild<T*>(QString::fromLatin1(name));
    }
    QTableWidget* table(QWidget& w) { return child<QTableWidget>(w, "ListeControleurs"); }
    bool everyIdentityShown(QWidget& w) {
        for (int row = 0; row < table(w)->rowCount(); ++row)
            if (cell(w, row, 1) != QStringLiteral("Quorvel"))
                return false;
        return true;
    }
    QString cell(QWidget& w, int row, int column) {
        auto* item = table(w)->item(row, column);
        return item ? item->text() : QString();
    }
    void fill(QWidget& w, const QString& serial) {
        child<QLineEdit>(w, "Fichier")->setText(folder.programmePath());
        child<QLineEdit>(w, "Commande")->setText(QStringLiteral("900"));
        child<QLineEdit>(w, "PremiereSerie")->setText(serial);
    }

    test::BenchFolder folder;
    ConfigDocument config{folder.configPath()};
    test::RecordingDialogs dialogs;
    SimulatedBus bus;
    std::vector<std::int32_t> ids;
};

TEST_F(BenchWindowTest, EightControllersRunAtOnceAndEachRowEndsWithItsSerial) {
    auto window = open(QStringLiteral("English"));
    ASSERT_EQ(table(*window)->rowCount(), 8);
    ASSERT_TRUE(eventually([&] { return everyIdentityShown(*window); }, 10000));
    EXPECT_EQ(cell(*window, 0, 0), QString::number(ids[0]));
    EXPECT_EQ(cell(*window, 0, 2), QStringLiteral("2.70"));

    fill(*window, QStringLiteral("3000"));
    QTest::mouseClick(child<QPushButton>(*window, "Demarrer"), Qt::LeftButton);
    // The click returns while the controllers work.
    EXPECT_TRUE(window->running());
    EXPECT_FALSE(child<QPushButton>(*window, "Demarrer")->isEnabled());
    EXPECT_TRUE(child<QPushButton>(*window, "Arreter")->isEnabled());
    ASSERT_TRUE(eventually([&] { return !window->running(); }, 60000));

    for (int row = 0; row < 8; ++row) {
        SCOPED_TRACE(row);
        EXPECT_TRUE(cell(*window, row, 4).startsWith(QStringLiteral("Succeeded (")));
        EXPECT_EQ(cell(*window, row, 3), QString::number(3000 + row));
        auto* bar = qobject_cast<QProgressBar*>(table(*window)->cellWidget(row, 5));
        ASSERT_TRUE(bar);
        EXPECT_EQ(bar->value(), bar->maximum());
        EXPECT_EQ(bus.device(ids[static_cast<size_t>(row)])->serialNumber(), 3000u + row);
    }
    EXPECT_EQ(child<QLabel>(*window, "Resume")->text(), QStringLiteral("8 succeeded, 0 failed"));
    EXPECT_EQ(test::reportBlocks(folder.logPath(QStringLiteral("900"))).size(), 8u);
    EXPECT_TRUE(dialogs.boxes().empty());
}

TEST_F(BenchWindowTest, AFrenchBenchReportsAndFailsInFrench) {
    auto window = open(QStringLiteral("Français"));
    ASSERT_TRUE(eventually([&] { return everyIdentityShown(*window); }, 10000));
    bus.unplugAfter(ids[1], 0);
    fill(*window, QString());
    ASSERT_TRUE(window->start());
    ASSERT_TRUE(eventually([&] { return !window->running(); }, 60000));
    EXPECT_TRUE(
        cell(*window, 1, 4).contains(QStringLiteral("Quorvel absent ou ne répond pas (Time Out)")))
        << cell(*window, 1, 4).toStdString();
    const auto blocks = test::reportBlocks(folder.logPath(QStringLiteral("900")));
    ASSERT_EQ(blocks.size(), 7u);
    for (const QStringList& block : blocks)
        EXPECT_EQ(block.value(4), QStringLiteral("N° de commande 900"));
}

TEST_F(BenchWindowTest, ClosingDuringARunStopsItAndReturnsOnceTheLinesHaveEnded) {
    int closed = 0;
    auto* window = new BenchWindow(bus, config, dialogs, QStringLiteral("English"));
    window->setRestartWait(60000); // the lines are held in the wait after the restart
    window->setLinkSetup([](FrameLink& link) { link.setPause([](int) {}); });
    window->setOnClosed([&closed] { ++closed; });
    window->setAttribute(Qt::WA_DeleteOnClose);
    QPointer<BenchWindow> alive(window);
    window->show();
    window->refresh();
    fill(*window, QString());
    ASSERT_TRUE(window->start());
    ASSERT_TRUE(
        eventually([&] { return cell(*window, 0, 4) == QStringLiteral("Restart"); }, 20000));
    window->close();
    EXPECT_EQ(closed, 0); // still ending its lines
    ASSERT_TRUE(eventually([&] { return closed == 1; }, 10000));
    ASSERT_TRUE(eventually([&] { return alive.isNull(); }, 5000));
}

// The pictures of the documentation, when QUORVEL_SCREENSHOT_DIR names a folder.
TEST_F(BenchWindowTest, Screenshot) {
    const QString folderName = qEnvironmentVariable("QUORVEL_SCREENSHOT_DIR");
    if (folderName.isEmpty())
        GTEST_SKIP() << "QUORVEL_SCREENSHOT_DIR not set";
    bus.setRestartSilence(2000);
    bus.unplugAfter(ids[5], 12);
    for (size_t i = 0; i < ids.size(); ++i)
        bus.modify(ids[i], [i](SimDevice& d) { d.setSerialNumber(90601200 + i); });
    for (const QString& language : {QStringLiteral("English"), QStringLiteral("Français")}) {
        auto window = open(language, true);
        window->resize(820, 420);
        ASSERT_TRUE(eventually([&] { return everyIdentityShown(*window); }, 10000));
        fill(*window, QStringLiteral("90601300"));
        ASSERT_TRUE(window->start());
        QTest::qWait(1800);
        const QString name = language == QStringLiteral("English") ? QStringLiteral("bench-en.png")
                                                                   : QStringLiteral("bench-fr.png");
        const QString path = QDir(folderName).filePath(name);
        EXPECT_TRUE(window->grab().save(path)) << path.toStdString();
        std::printf("saved %s\n", qUtf8Printable(path));
        window->stop();
        ASSERT_TRUE(eventually([&] { return !window->running(); }, 20000));
        bus.replug(ids[5]);
        bus.unplugAfter(ids[5], 12);
        QTest::qWait(2500); // the restarted controllers come back
    }
}

} // namespace
} // namespace qv
