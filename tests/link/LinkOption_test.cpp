#include "linkoption/BusFactory.h"

#include <gtest/gtest.h>

namespace qv {
namespace {

// A wait of 0 would end every read at once: the controller would never be
// heard.
TEST(LinkOption, ReadWaitsRunFromOneMillisecondToAMinute) {
    const std::pair<const char*, bool> cases[] = {{"0", false},     {"1", true},   {"60000", true},
                                                  {"60001", false}, {"-5", false}, {"soon", false}};
    for (const auto& [wait, accepted] : cases) {
        QString error;
        const auto bus = makeBus(QStringLiteral("tty:/nonexistent/quorvel-*,readWaitMs=%1")
                                     .arg(QString::fromLatin1(wait)),
                                 &error);
        EXPECT_EQ(bus != nullptr, accepted) << wait;
        EXPECT_EQ(error.contains(QStringLiteral("readWaitMs")), !accepted) << error.toStdString();
    }
}

} // namespace
} // namespace qv
