// Every command of the set, built by the real primitives and decoded from
// what the frame link reported: the words an operator reads in the
// exchange trace.
#include "DeviceTestSupport.h"
#include "device/DeviceClock.h"
#include "device/ExchangeLog.h"
#include "device/Identity.h"
#include "device/MemoryMap.h"
#include "link/TraceFormat.h"
#include "link/TracingBus.h"
#include "programme/ProgrammeDownload.h"

namespace qv::test {
namespace {

struct Collector : TraceSink {
    std::vector<TransferRecord> records;
    void record(const TransferRecord& r) override { records.push_back(r); }
};

class FrameWords : public ::testing::Test {
protected:
    SimulatedBus sim;
    Collector collector;
    TracingBus bus{sim, collector};
    RecordingDialogs dialogs;
    PublicState state;
    FrameLink link{bus, dialogs, state};
    Device device{link, [] { return QStringLiteral("Quorvel Absent"); }};
    std::int32_t id = 0;

    void SetUp() override {
        link.setPause([](int) {});
        sim.setSleep([](int) {});
        sim.setClock(
            [] { return QDateTime(QDate(2026, 11, 23), QTime(19, 3, 8)).toMSecsSinceEpoch(); });
        SimDeviceConfig config;
        config.serial = 90601234;
        id = sim.addDevice(config);
        state.UsbID = id;
    }

    QStringList words() {
        QStringList list;
        for (const Exchange& e : assembleExchanges(collector.records))
            list << e.words();
        collector.records.clear();
        return list;
    }
};

Condition line(int jour) {
    Condition c;
    c.sortie = 3;
    c.Valeur = 1;
    c.Temporisation = 900;
    c.Jour = jour;
    c.Heure = 6;
    c.Minute = 30;
    c.PlageFinJour = 11;
    c.PlageFinHeure = 6;   // month of a periodic line
    c.PlageFinMinute = 15; // day of the month of a periodic line
    c.Seconde = 7;
    return c;
}

TEST_F(FrameWords, EveryCommandDecodesToItsWords) {
    const QDateTime monday(QDate(2026, 11, 23), QTime(19, 3, 8));
    struct Row {
        const char* name;
        std::function<void(Device&)> run;
        QStringList expected;
    };
    const std::vector<Row> rows = {
        {"set clock before a programme",
         [&](Device& d) { MAH(d, 255, monday.date(), monday); },
         {"set clock Mon 23/11/26 19:03:08, option 255"}},
        {"begin programme",
         [](Device& d) { d.transact(beginProgrammeFrame(1), ReplyLength::Programme); },
         {"begin programme, default state 1"}},
        {"periodic programme line",
         [](Device& d) {
             d.transact(conditionFrame(line(12), 1), ReplyLength::Programme);
             d.transact(periodFrame(line(12)), ReplyLength::Programme);
         },
         {"programme line 1: output 3, value 1, delay 900 s, day 12",
          "programme line 1 (sub 11): from 15/06 at 06:30, every 7 days"}},
        {"identity",
         [](Device& d) { LitVersionPrincipale(d); },
         {"identity -> Quorvel (12) 2.70 BL V 103, battery 9.0 V"}},
        {"serial number",
         [](Device& d) { d.LitEEpromlong(Address::SerialNumber); },
         {"read EEPROM 16 (serial number, byte 0) -> 18",
          "read EEPROM 17 (serial number, byte 1) -> 119",
          "read EEPROM 18 (serial number, byte 2) -> 102",
          "read EEPROM 19 (serial number, byte 3) -> 5"}},
        // Last: the controller then stays silent while it restarts, and the
        // link tries three times.
        {"restart",
         [](Device& d) { d.ResetDevice(); },
         {"restart -> (silence)", "restart -> (silence)", "restart -> (silence)"}},
    };
    for (const Row& row : rows) {
        row.run(device);
        EXPECT_EQ(words().join('\n').toStdString(), row.expected.join('\n').toStdString())
            << row.name;
    }
}

TEST(FrameDecoder, ARequestWithAWrongCheckValueSaysSo) {
    QByteArray frame = QByteArray::fromHex("FE280000000000000000000000000000");
    EXPECT_EQ(describeRequest(frame), "read EEPROM 40 (counter 1) [bad check value]");
    EXPECT_FALSE(checkValueGood(frame));
    EXPECT_EQ(describeRequest(QByteArray::fromHex("42")), "1 bytes unchecked");
}

} // namespace
} // namespace qv::test
