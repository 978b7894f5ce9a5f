// Several simulated controllers commissioned at once, in one process, each
// on its own thread and link; the link's pauses are shortened.
#include "ProductionTestSupport.h"
#include "device/MemoryMap.h"
#include "link/FrameLink.h"

#include <QSet>
#include <algorithm>

namespace qv {
namespace {

using test::BenchFolder;
using test::RecordingListener;

// A 16-byte request with its check value, computed here.
QByteArray checked(std::initializer_list<int> bytes) {
    QByteArray frame(16, '\0');
    int i = 0;
    for (int b : bytes)
        frame[i++] = static_cast<char>(b);
    const std::uint16_t crc = crc16(reinterpret_cast<const std::uint8_t*>(frame.constData()), 14);
    frame[14] = static_cast<char>(crc & 0xFF);
    frame[15] = static_cast<char>(crc >> 8);
    return frame;
}

// The requests of one device's trace, in order.
std::vector<QByteArray> requests(const QStringList& trace) {
    std::vector<QByteArray> out;
    for (const QString& line : trace) {
        const QStringList words = line.split(QLatin1Char(' '));
        if (words.size() > 2 && words[1] == QLatin1String(">"))
            out.push_back(QByteArray::fromHex(words.mid(2).join(QString()).toLatin1()));
    }
    return out;
}

// The programme frames of the site programme as the protocol lays them
// out, line by line (command 0x02 aside).
const std::vector<QByteArray> kLineFrames = {
    checked({3, 3, 0, 1, 0, 0, 0, 0, 1, 44, 0}),
    checked({3, 3, 1, 1, 0, 0, 0, 0, 0, 60, 3}),
    checked({31, 9, 3, 6, 30, 0}),
    checked({3, 3, 2, 1, 0, 0, 0, 0, 0, 5, 11}),
    checked({31, 9, 11, 22, 0, 0}),
    checked({31, 10, 11, 23, 45, 30}),
    checked({3, 3, 3, 1, 0, 0, 0, 0, 0, 10, 12}),
    checked({31, 11, 21, 4, 7, 15, 3}),
};

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

    // Every programme frame a device received, from its 0x02 on.
    std::vector<QByteArray> programmeFrames(std::int32_t id) {
        std::vector<QByteArray> frames;
        for (const QByteArray& r : requests(bus.traceLines(id))) {
            const int command = static_cast<std::uint8_t>(r.at(0));
            if (command == Command::BeginProgramme || command == Command::ProgrammeCondition ||
                command == Command::ProgrammeBlock)
                frames.push_back(r);
        }
        return frames;
    }

    BenchFolder folder;
    SimulatedBus bus;
    std::vector<std::int32_t> ids;
    CommissionJob job;
    RecordingListener listener;
};

TEST_F(ProductionRunTest, FourAtOnceGetTheProgrammeDistinctSerialsAndWholeReports) {
    const std::vector<CommissionOutcome> outcomes = run(90601000);
    ASSERT_EQ(outcomes.size(), 4u);
    QSet<QString> serialLines;
    for (size_t i = 0; i < outcomes.size(); ++i) {
        SCOPED_TRACE(i);
        const CommissionOutcome& o = outcomes[i];
        EXPECT_TRUE(o.ok) << o.failure.toStdString();
        EXPECT_EQ(o.id, ids[i]);
        const std::int32_t serial = 90601000 + static_cast<std::int32_t>(i);
        EXPECT_EQ(o.serial, serial);
        EXPECT_EQ(o.serialRead, QString::number(serial));
        EXPECT_EQ(bus.device(ids[i])->serialNumber(), static_cast<std::uint32_t>(serial));

        // Through the trace of each: one image begun, then the file's lines.
        const std::vector<QByteArray> frames = programmeFrames(ids[i]);
        ASSERT_EQ(frames.size(), kLineFrames.size() + 1);
        EXPECT_EQ(frames[0].left(2), QByteArray("\x02\x00", 2));
        EXPECT_EQ(std::vector<QByteArray>(frames.begin() + 1, frames.end()), kLineFrames);
        EXPECT_GT(bus.device(ids[i])->restartCount(), 0);
    }

    const auto blocks = test::reportBlocks(folder.logPath(QStringLiteral("4711")));
    ASSERT_EQ(blocks.size(), 4u);
    for (const QStringList& block : blocks) {
        // Whole: from its blank line and dashes to its comment and blank.
        EXPECT_EQ(block.first(), QStringLiteral(" "));
        EXPECT_EQ(block.value(4), QStringLiteral("Order number 4711"));
        EXPECT_EQ(block.value(6), QStringLiteral("Version : Quorvel 2.70"));
        EXPECT_EQ(block.value(block.size() - 2), QStringLiteral("line B"));
        EXPECT_EQ(block.last(), QStringLiteral(" "));
        serialLines.insert(block.value(7));
    }
    EXPECT_EQ(serialLines, (QSet<QString>{QStringLiteral("Serial No. : 90601000"),
                                          QStringLiteral("Serial No. : 90601001"),
                                          QStringLiteral("Serial No. : 90601002"),
                                          QStringLiteral("Serial No. : 90601003")}));

    // Nothing but the report leaves a run: config.xml is as it was.
    QFile shipped(QStringLiteral(QUORVEL_SHIPPED_CONFIG)), used(folder.configPath());
    ASSERT_TRUE(shipped.open(QIODevice::ReadOnly) && used.open(QIODevice::ReadOnly));
    EXPECT_EQ(used.readAll(), shipped.readAll());
    EXPECT_EQ(listener.runsEnded, 1);
    EXPECT_EQ(listener.ended.size(), 4u);
}

TEST_F(ProductionRunTest, OneUnpluggedHalfWayFailsAloneAndTheOthersFinish) {
    // Cases: pulled out during the first read, and during the download.
    struct Case {
        int answered;
        CommissionStep failsAt;
    };
    for (const Case& c : {Case{12, CommissionStep::FullRead}, Case{0, CommissionStep::Download}}) {
        SCOPED_TRACE(c.answered);
        bus.clearTrace();
        for (std::int32_t id : ids)
            bus.replug(id);
        int answered = c.answered;
        if (c.failsAt == CommissionStep::Download) {
            // Everything the first read takes, plus three programme frames.
            const int before = static_cast<int>(requests(bus.traceLines(ids[0])).size());
            run(std::nullopt);
            const auto all = requests(bus.traceLines(ids[0]));
            const auto begin =
                std::find_if(all.begin() + before, all.end(), [](const QByteArray& r) {
                    return static_cast<std::uint8_t>(r.at(0)) == Command::BeginProgramme;
                });
            answered = static_cast<int>(begin - (all.begin() + before)) + 3;
            QFile::remove(folder.logPath(QStringLiteral("4711")));
        }
        bus.unplugAfter(ids[2], answered);
        const std::vector<CommissionOutcome> outcomes = run(100);
        for (size_t i = 0; i < outcomes.size(); ++i) {
            SCOPED_TRACE(i);
            if (i == 2) {
                EXPECT_FALSE(outcomes[i].ok);
                EXPECT_EQ(outcomes[i].reached, c.failsAt);
                EXPECT_EQ(outcomes[i].failure, QStringLiteral("Quorvel not responding (Time Out)"));
            } else {
                EXPECT_TRUE(outcomes[i].ok) << outcomes[i].failure.toStdString();
                EXPECT_EQ(outcomes[i].serial, 100 + static_cast<int>(i));
            }
        }
        EXPECT_EQ(test::reportBlocks(folder.logPath(QStringLiteral("4711"))).size(), 3u);
        QFile::remove(folder.logPath(QStringLiteral("4711")));
    }
}

TEST_F(ProductionRunTest, StopBeforeTheFirstStepTouchesNoController) {
    const auto outcomes = run(1, true);
    for (const CommissionOutcome& o : outcomes) {
        EXPECT_FALSE(o.ok);
        EXPECT_EQ(o.reached, CommissionStep::FullRead);
        EXPECT_EQ(o.failure, QStringLiteral("Stopped"));
    }
    for (std::int32_t id : ids)
        EXPECT_TRUE(bus.traceLines(id).isEmpty());
    EXPECT_FALSE(QFile::exists(folder.logPath(QStringLiteral("4711"))));
}

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
