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
        sim.modify(id, [](SimDevice& d) {
            d.setEeprom(Address::Counters, 7);
            d.setEeprom(Address::DaylightSavingRule, 60);
            d.setEeprom(Address::LogArea + 44, 5);
            d.setIlsInput(1);
            d.setDeviceTime(QDateTime(QDate(2026, 11, 23), QTime(19, 3, 8)), 0);
        });
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
        {"set clock",
         [&](Device& d) { MAH(d, 0, monday.date(), monday); },
         {"set clock Mon 23/11/26 19:03:08"}},
        {"set clock before a programme",
         [&](Device& d) { MAH(d, 255, monday.date(), monday); },
         {"set clock Mon 23/11/26 19:03:08, option 255"}},
        {"begin programme",
         [](Device& d) { d.transact(beginProgrammeFrame(1), ReplyLength::Programme); },
         {"begin programme, default state 1"}},
        {"programme line with its time",
         [](Device& d) {
             d.transact(conditionFrame(line(9), 3), ReplyLength::Programme);
             d.transact(dayTimeFrame(line(9)), ReplyLength::Programme);
         },
         {"programme line 3: output 3, value 1, delay 900 s, day 9",
          "programme line 3 (sub 9): day 9 at 06:30:07"}},
        {"programme range",
         [](Device& d) {
             d.transact(conditionFrame(line(11), 2), ReplyLength::Programme);
             d.transact(rangeEndFrame(line(11)), ReplyLength::Programme);
         },
         {"programme line 2: output 3, value 1, delay 900 s, day 11",
          "programme line 2 (sub 10): until day 11 at 06:15:00"}},
        {"periodic programme line",
         [](Device& d) {
             d.transact(conditionFrame(line(12), 1), ReplyLength::Programme);
             d.transact(periodFrame(line(12)), ReplyLength::Programme);
         },
         {"programme line 1: output 3, value 1, delay 900 s, day 12",
          "programme line 1 (sub 11): from 15/06 at 06:30, every 7 days"}},
        {"manual action",
         [](Device& d) {
             d.transact({Command::ManualAction, 3, 1, 0}, ReplyLength::ManualAction);
             d.transact({Command::ManualAction, 255, 255, 1}, ReplyLength::ManualAction);
         },
         {"manual action: output 3 open, programme running", "manual action: programme stopped"}},
        {"identity",
         [](Device& d) { LitVersionPrincipale(d); },
         {"identity -> Quorvel (12) 2.70 BL V 103, battery 9.0 V"}},
        {"legacy probe on current firmware",
         [this](Device&) {
             bool recognised = false;
             LitVersionAvantV270(link, id, recognised);
         },
         {"legacy probe -> (silence)"}},
        {"read clock", [](Device& d) { LitDateEtHeure(d); }, {"read clock -> 23/11/26 19:03:08"}},
        {"fast clock",
         [](Device& d) {
             d.transact({Command::ClockSpeedCheck, 1, 1}, ReplyLength::ClockSpeedCheck);
             d.transact({Command::ClockSpeedCheck}, ReplyLength::ClockSpeedCheck);
         },
         {"set fast clock on -> 1 (fast)", "read fast clock -> 1 (fast)"}},
        {"reload counters",
         [](Device& d) { d.ForceRelectureCompteur(); },
         {"reload counters -> 1"}},
        // The manual action above has opened the output.
        {"live values",
         [](Device& d) {
             d.LitValeur(LiveValue::IlsInput);
             d.LitValeur(LiveValue::OutputState);
         },
         {"live value 2 (ILS input) -> 1", "live value 0 (output state) -> 1"}},
        {"serial number",
         [](Device& d) { d.LitEEpromlong(Address::SerialNumber); },
         {"read EEPROM 16 (serial number, byte 0) -> 18",
          "read EEPROM 17 (serial number, byte 1) -> 119",
          "read EEPROM 18 (serial number, byte 2) -> 102",
          "read EEPROM 19 (serial number, byte 3) -> 5"}},
        {"the rest of the map",
         [](Device& d) {
             for (int address : {9, 10, 20, 24, 26, 33, 39, 40, 44, 45, 46, 48, 255, 300})
                 d.LitEEprom(address);
         },
         {"read EEPROM 9 (manual action delay, low byte) -> 60",
          "read EEPROM 10 (manual action delay, high byte) -> 0",
          "read EEPROM 20 (programming date, byte 0) -> 0",
          "read EEPROM 24 (default output states) -> 1",
          "read EEPROM 26 (daylight-saving rule, byte 0) -> 60",
          "read EEPROM 33 (clock calibration, byte 0) -> 0",
          "read EEPROM 39 (ILS at last write) -> 0", "read EEPROM 40 (counter 1) -> 7",
          "read EEPROM 44 (counter 5) -> 0", "read EEPROM 45 (battery threshold, low byte) -> 228",
          "read EEPROM 46 (battery threshold, high byte) -> 2",
          "read EEPROM 48 (programme image, byte 0) -> 3", "read EEPROM 255 (boot request) -> 0",
          "read EEPROM 300 (log area, byte 44) -> 5"}},
        {"write",
         [](Device& d) { d.EcritEEprom(9, 30); },
         {"write EEPROM 9 (manual action delay, low byte) <- 30 -> 30"}},
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

TEST_F(FrameWords, OldFirmwareAnswersTheLegacyProbe) {
    sim.modify(id, [](SimDevice& d) { d.setFirmware(FirmwareVersion{2, 60}); });
    bool recognised = false;
    LitVersionAvantV270(link, id, recognised);
    EXPECT_EQ(words().join('\n').toStdString(), "legacy probe -> Quorvel (12) 2.60");
}

TEST_F(FrameWords, ACorruptReplyIsFlaggedAndItsRetryMatchedToTheSameRequest) {
    sim.corruptReplies(id, 1);
    device.LitEEprom(Address::Counters);
    const std::vector<Exchange> live = assembleExchanges(collector.records);
    ASSERT_EQ(live.size(), 2u);
    EXPECT_EQ(live[0].status, ExchangeStatus::BadCheck);
    EXPECT_EQ(live[0].attempt, 1);
    EXPECT_EQ(live[0].words(), "read EEPROM 40 (counter 1) -> (bad check value)");
    EXPECT_EQ(live[1].status, ExchangeStatus::Answered);
    EXPECT_EQ(live[1].attempt, 2);
    EXPECT_EQ(summarize(live).exchanges, 1);
    EXPECT_EQ(summarize(live).retries, 1);
    EXPECT_EQ(summarize(live).failures, 0);

    // The same transfers in the simulator's old form, without attempts or
    // outcomes: the check value and the retry are found from the bytes.
    QString old;
    for (TransferRecord r : collector.records) {
        r.attempt = 0;
        r.outcome = TransferOutcome::Unknown;
        r.deviceKnown = false;
        old += formatTraceLine(r) + QLatin1Char('\n');
    }
    const std::vector<Exchange> inferred = assembleExchanges(parseTraceText(old).records);
    ASSERT_EQ(inferred.size(), 2u);
    EXPECT_EQ(inferred[0].status, ExchangeStatus::BadCheck);
    EXPECT_EQ(inferred[1].attempt, 2);
    EXPECT_EQ(inferred[1].words(), "read EEPROM 40 (counter 1) -> 7");
}

TEST(FrameDecoder, ARequestWithAWrongCheckValueSaysSo) {
    QByteArray frame = QByteArray::fromHex("FE280000000000000000000000000000");
    EXPECT_EQ(describeRequest(frame), "read EEPROM 40 (counter 1) [bad check value]");
    EXPECT_FALSE(checkValueGood(frame));
    EXPECT_EQ(describeRequest(QByteArray::fromHex("42")), "1 bytes unchecked");
}

TEST(TraceSummary, FailuresRetriesPausesAndWire) {
    // Three exchanges on one device: clean; lost once; lost for good.
    const QString text =
        QStringLiteral("0.010000 > FE 28 00 00 00 00 00 00 00 00 00 00 00 00 34 17 #1 @5 sent\n"
                       "0.021000 < FE 07 00 12 #1 @5 answered\n"
                       "0.031000 > F0 00 00 00 00 00 00 00 00 00 00 00 00 00 5B F1 #1 @5 sent\n"
                       "0.291000 < #1 @5 silence\n"
                       "0.301000 > F0 00 00 00 00 00 00 00 00 00 00 00 00 00 5B F1 #2 @5 sent\n"
                       "0.312000 < F0 02 0C 46 00 03 B6 01 03 ED B8 #2 @5 answered\n"
                       "0.322000 > F1 00 00 00 00 00 00 00 00 00 00 00 00 00 5B 30 #1 @5 sent\n"
                       "0.582000 < #1 @5 silence\n"
                       "0.592000 > F1 00 00 00 00 00 00 00 00 00 00 00 00 00 5B 30 #2 @5 sent\n"
                       "0.852000 < #2 @5 silence\n"
                       "0.862000 > F1 00 00 00 00 00 00 00 00 00 00 00 00 00 5B 30 #3 @5 sent\n"
                       "1.122000 < #3 @5 silence\n");
    const std::vector<Exchange> exchanges = assembleExchanges(parseTraceText(text).records);
    ASSERT_EQ(exchanges.size(), 6u);
    const TraceSummary s = summarize(exchanges);
    EXPECT_EQ(s.exchanges, 3);
    EXPECT_EQ(s.retries, 3);
    EXPECT_EQ(s.failures, 1);
    EXPECT_EQ(s.pauseUs, 6 * 20'000);
    // Each attempt's span less the pause before its read.
    EXPECT_EQ(s.wireUs, 1'000 + 250'000 + 1'000 + 3 * 250'000);
    // A trace saved again from its exchanges reads back the same.
    std::vector<TransferRecord> again;
    for (const Exchange& e : exchanges)
        for (const TransferRecord& r : transfersOf(e))
            again.push_back(r);
    EXPECT_EQ(again, parseTraceText(text).records);
}

} // namespace
} // namespace qv::test
