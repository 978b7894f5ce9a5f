// Several simulated controllers commissioned at once, in one process, each
// on its own thread and link: a stop before the start, the bench's language,
// and the serial numbers handed out.
#include "ProductionTestSupport.h"
#include "link/FrameLink.h"

namespace qv {
namespace {

using test::BenchFolder;
using test::QuietListener;

class ProductionRunTest : public ::testing::Test {
protected:
    void SetUp() override {
        bus.setRestartSilence(0);
        for (int i = 0; i < 4; ++i)
            ids.push_back(bus.addDevice(SimDeviceConfig{}));
        job.programmeFile = folder.programmePath();
        job.order = QStringLiteral("4711");
        job.comment = QStringLiteral("line B");
        job.applicationDirectory = folder.path();
        job.restartWaitMs = 0;
    }

    std::vector<CommissionOutcome> run(std::optional<std::int64_t> serialFrom,
                                       bool stopFirst = false,
                                       const QString& language = QStringLiteral("English")) {
        ProductionRun production(bus, folder.configPath(), language, job, ids, serialFrom);
        production.setLinkSetup([](FrameLink& link) { link.setPause([](int) {}); });
        if (stopFirst)
            production.stop();
        production.start(listener);
        return production.wait();
    }

    BenchFolder folder;
    SimulatedBus bus;
    std::vector<std::int32_t> ids;
    CommissionJob job;
    QuietListener listener;
};

TEST_F(ProductionRunTest, TheReportsAndMessagesAreInTheLanguageOfTheBench) {
    bus.unplugAfter(ids[1], 0);
    const auto outcomes = run(std::nullopt, false, QStringLiteral("Français"));
    EXPECT_TRUE(outcomes[0].ok) << outcomes[0].failure.toStdString();
    EXPECT_EQ(outcomes[1].failure, QStringLiteral("Quorvel absent ou ne répond pas (Time Out)"));
    const auto blocks = test::reportBlocks(folder.logPath(QStringLiteral("4711")));
    ASSERT_EQ(blocks.size(), 3u);
    for (const QStringList& block : blocks)
        EXPECT_EQ(block.value(4), QStringLiteral("N° de commande 4711"));
}

TEST(SerialNumbers, CountUpInListOrderAndNeverOverflow) {
    EXPECT_EQ(serialNumbersFor(3, 7), (std::vector<std::optional<std::int32_t>>{7, 8, 9}));
    EXPECT_EQ(serialNumbersFor(2, std::nullopt),
              (std::vector<std::optional<std::int32_t>>{std::nullopt, std::nullopt}));
    EXPECT_EQ(serialNumbersFor(1, 2147483647).front(), 2147483647);
    EXPECT_THROW(serialNumbersFor(2, 2147483647), std::range_error);
    EXPECT_THROW(serialNumbersFor(1, -1), std::range_error);
}

} // namespace
} // namespace qv
