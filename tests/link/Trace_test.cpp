// The trace file: each kind of transfer reads back as it was written.
#include "link/TraceFormat.h"

#include <gtest/gtest.h>

namespace qv::test {
namespace {

using D = TransferDirection;
using O = TransferOutcome;

TransferRecord rec(std::int64_t us, D d, QByteArray bytes, int attempt, O outcome,
                   bool checked = true, bool deviceKnown = true) {
    TransferRecord r;
    r.atUs = us;
    r.device = 1509949441;
    r.direction = d;
    r.bytes = std::move(bytes);
    r.attempt = attempt;
    r.outcome = outcome;
    r.checked = checked;
    r.deviceKnown = deviceKnown;
    if (!deviceKnown)
        r.device = 0;
    return r;
}

TEST(TraceFormat, EveryKindOfTransferReadsBackAsWritten) {
    const QByteArray frame = QByteArray::fromHex("FE280000000000000000000000009C3E");
    const std::vector<TransferRecord> cases = {
        rec(12'345'678, D::ToDevice, frame, 1, O::Sent),
        rec(12'367'012, D::FromDevice, QByteArray::fromHex("FE0741D0"), 1, O::Answered),
        rec(12'637'950, D::FromDevice, {}, 2, O::Silence),
        rec(5, D::FromDevice, QByteArray::fromHex("FE0741D1"), 3, O::BadCheck),
        rec(0, D::ToDevice, frame, 1, O::Refused),
        rec(7, D::ToDevice, QByteArray::fromHex("F00000000000000000000000"), 1, O::Sent, false),
        rec(9, D::ToDevice, frame, 0, O::Unknown, true, false),
    };
    for (const TransferRecord& r : cases) {
        const QString line = formatTraceLine(r);
        const auto back = parseTraceLine(line);
        ASSERT_TRUE(back.has_value()) << line.toStdString();
        EXPECT_EQ(*back, r) << line.toStdString();
    }
    EXPECT_EQ(formatTraceLine(cases[1]),
              QStringLiteral("12.367012 < FE 07 41 D0 #1 @1509949441 answered"));
    EXPECT_EQ(formatTraceLine(cases[2]), QStringLiteral("12.637950 < #2 @1509949441 silence"));
}

} // namespace
} // namespace qv::test
