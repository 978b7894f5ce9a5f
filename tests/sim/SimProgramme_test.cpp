#include "SimTestSupport.h"

#include <vector>

namespace qv::test {
namespace {

class SimProgramme : public SimFixture {
protected:
    void SetUp() override {
        SimFixture::SetUp();
        id = add();
    }

    void send(std::initializer_list<int> bytes) {
        const auto reply = command(id, bytes);
        ASSERT_TRUE(reply.has_value()) << "frame refused: " << std::data(bytes)[0];
        EXPECT_EQ(reply->size(), 10);
    }

    std::vector<int> image(int from, int to) const {
        std::vector<int> bytes;
        const auto device = bus.device(id);
        for (int a = from; a < to; ++a)
            bytes.push_back(device->eeprom(a));
        return bytes;
    }

    auto eeprom() const { return bus.device(id)->eepromBytes(); }

    std::int32_t id = 0;
};

// One line of each kind, as the download sends them: no time, a week day, a
// range, a periodic line.
TEST_F(SimProgramme, OneLineOfEachKindLaysOutTheImageExactly) {
    send({0x02, 0, 5});
    // Jour 0: valve 3, value 7, delay 300 (high byte first on the wire).
    send({0x03, 3, 0, 7, 0, 0, 0, 0, 1, 44, 0});
    // Jour 2 at 08:15:30, delay 10, value not sent.
    send({0x03, 3, 1, 0, 0, 0, 0, 0, 0, 10, 2});
    send({0x1F, 9, 2, 8, 15, 30});
    // Range 06:00:00 to 18:30:00, value 12, delay 60.
    send({0x03, 3, 2, 12, 0, 0, 0, 0, 0, 60, 11});
    send({0x1F, 9, 11, 6, 0, 0});
    send({0x1F, 10, 11, 18, 30, 0});
    // Periodic: first run on 15 April at 07:45, every 3 days, delay 258.
    send({0x03, 3, 3, 0, 0, 0, 0, 0, 1, 2, 12});
    send({0x1F, 11, 15, 4, 7, 45, 3});

    EXPECT_EQ(bus.device(id)->eeprom(SimDevice::kDefaultStatesAddress), 5);
    const std::vector<int> expected = {
        // line 1 at 48: no terms, no range
        3, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0, 44, 1,
        // line 2 at 61: one day term
        3, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10, 0, 9, 0, 2, 8, 15, 30, 0, 0, 0, 0,
        // line 3 at 84: range flag, start and end entries
        3, 0, 1, 12, 0, 0, 0, 0, 0, 0, 0, 60, 0, 9, 1, 6, 0, 0, 0, 0, 0, 0, 9, 0, 18, 30, 0, 0, 0,
        0, 0,
        // line 4 at 115: one periodic term
        3, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 1, 11, 0, 15, 4, 7, 45, 3, 0, 0, 0,
        // end mark at 138
        255};
    EXPECT_EQ(image(48, 139), expected);
    EXPECT_EQ(image(139, 256), std::vector<int>(117, 0));
}

TEST_F(SimProgramme, BeginStartsAnEmptyImageOverAnOldOneAndTermsAreCounted) {
    send({0x02, 0, 1});
    send({0x03, 3, 0, 7, 0, 0, 0, 0, 0, 5, 0});
    send({0x02, 0, 0});
    EXPECT_EQ(image(48, 49), std::vector<int>{255});
    EXPECT_EQ(bus.device(id)->eeprom(SimDevice::kDefaultStatesAddress), 0);
    send({0x03, 4, 0, 9, 0, 0, 0, 0, 0, 6, 0});
    EXPECT_EQ(image(48, 62), (std::vector<int>{4, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 6, 0, 255}));
    send({0x1F, 9, 1, 8, 0, 0});
    send({0x1F, 9, 3, 9, 0, 0});
    send({0x1F, 11, 1, 1, 6, 0, 7});
    EXPECT_EQ(bus.device(id)->eeprom(49), 3);
    EXPECT_EQ(bus.device(id)->eeprom(48 + 13 + 30), 255);
}

// 12 plain lines (156 bytes) and 5 terms (50 bytes) fill 48..253 and put the
// end mark on 254, the last address before the boot request.
TEST_F(SimProgramme, ImageMayEndJustBeforeTheBootRequestAndNoFurther) {
    send({0x02, 0, 0});
    for (int line = 0; line < 12; ++line)
        send({0x03, 3, line, 0, 0, 0, 0, 0, 0, 1, 1});
    for (int term = 0; term < 5; ++term)
        send({0x1F, 9, 1, term, 0, 0});
    EXPECT_EQ(bus.device(id)->eeprom(254), 255);
    const auto full = eeprom();

    const std::vector<std::pair<const char*, QByteArray>> refused = {
        {"line", checkedFrame({0x03, 3, 12, 0, 0, 0, 0, 0, 0, 1, 0})},
        {"day term", checkedFrame({0x1F, 9, 1, 0, 0, 0})},
        {"range start", checkedFrame({0x1F, 9, 11, 0, 0, 0})},
        {"range end", checkedFrame({0x1F, 10, 11, 0, 0, 0})},
        {"periodic term", checkedFrame({0x1F, 11, 1, 1, 0, 0, 1})},
    };
    for (const auto& [what, frame] : refused) {
        EXPECT_FALSE(transfer(id, frame).has_value()) << what;
        EXPECT_EQ(eeprom(), full) << what;
    }
    EXPECT_EQ(bus.device(id)->eeprom(SimDevice::kBootAddress), 0);
    EXPECT_FALSE(bus.device(id)->inBootloader());
}

// 15 lines end at 243: a 13-byte line would overflow, a 10-byte term puts
// the mark on 253. 13 lines, two terms and a range start leave the mark on
// 246: the 9-byte range end would put it on 255, the boot request itself.
TEST_F(SimProgramme, BlocksThatWouldOverflowOrHitTheBootRequestAreRefusedWhole) {
    send({0x02, 0, 0});
    for (int line = 0; line < 15; ++line)
        send({0x03, 3, line, 0, 0, 0, 0, 0, 0, 1, 0});
    const auto before = eeprom();
    EXPECT_FALSE(command(id, {0x03, 3, 15, 0, 0, 0, 0, 0, 0, 1, 0}).has_value());
    EXPECT_EQ(eeprom(), before);
    send({0x1F, 9, 1, 0, 0, 0});
    EXPECT_EQ(bus.device(id)->eeprom(253), 255);

    send({0x02, 0, 0});
    for (int line = 0; line < 13; ++line)
        send({0x03, 3, line, 0, 0, 0, 0, 0, 0, 1, 1});
    send({0x1F, 9, 1, 8, 0, 0});
    send({0x1F, 9, 2, 8, 0, 0});
    send({0x1F, 9, 11, 6, 0, 0});
    EXPECT_EQ(bus.device(id)->eeprom(246), 255);
    EXPECT_FALSE(command(id, {0x1F, 10, 11, 18, 0, 0}).has_value());
    EXPECT_EQ(bus.device(id)->eeprom(246), 255);
    EXPECT_EQ(bus.device(id)->eeprom(SimDevice::kBootAddress), 0);
    EXPECT_FALSE(bus.device(id)->inBootloader());
}

TEST_F(SimProgramme, FramesOutOfSequenceGetNoAnswer) {
    // No download begun since the device started.
    EXPECT_FALSE(command(id, {0x03, 3, 0, 0, 0, 0, 0, 0, 0, 1, 0}).has_value());
    send({0x02, 0, 0});
    // A block before any line.
    EXPECT_FALSE(command(id, {0x1F, 9, 1, 0, 0, 0}).has_value());
    send({0x03, 3, 0, 0, 0, 0, 0, 0, 0, 1, 0});
    EXPECT_FALSE(command(id, {0x1F, 12, 1, 0, 0, 0}).has_value()) << "unknown sub-command";
    // A restart closes the download.
    EXPECT_FALSE(command(id, {0x00}).has_value());
    nowMs += 5000;
    EXPECT_FALSE(command(id, {0x03, 3, 1, 0, 0, 0, 0, 0, 0, 1, 0}).has_value());
    EXPECT_EQ(image(48, 62), (std::vector<int>{3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 255}));
}

} // namespace
} // namespace qv::test
