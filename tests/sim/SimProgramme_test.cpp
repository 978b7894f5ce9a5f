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

    auto eeprom() const { return bus.device(id)->eepromBytes(); }

    std::int32_t id = 0;
};

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

} // namespace
} // namespace qv::test
