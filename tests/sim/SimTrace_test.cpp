#include "SimTestSupport.h"

#include <QFile>
#include <QTemporaryDir>

namespace qv::test {
namespace {

using SimTrace = SimFixture;

TEST_F(SimTrace, EveryTransferIsOneLineOfTimeDirectionAndHex) {
    const std::int32_t id = add();
    nowMs += 1234;
    ASSERT_TRUE(command(id, {0xFE, 16, 0}).has_value());
    const QString request = QString::fromLatin1(checkedFrame({0xFE, 16, 0}).toHex(' ').toUpper());
    EXPECT_EQ(bus.traceLines(), (QStringList{"1.234 > " + request, "1.234 < FE 00 41 D0"}));
    // Silence adds no line, and a cut read shows what was read.
    auto handle = bus.open(id);
    handle->write(checkedFrame({0x05}));
    handle->read(64);
    EXPECT_EQ(bus.traceLines().size(), 3);
    handle->write(checkedFrame({0xF0}));
    handle->read(2);
    EXPECT_TRUE(bus.traceLines().last().endsWith(QStringLiteral(" < F0 02")));
}

TEST_F(SimTrace, FileGetsTheSameLinesAppended) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("trace.log"));
    {
        QFile existing(path);
        ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
        existing.write("earlier run\n");
    }
    ASSERT_TRUE(bus.setTraceFile(path));
    const std::int32_t id = add();
    command(id, {0xF0});
    command(id, {0xF1});
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QStringList written =
        QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    EXPECT_EQ(written, QStringList{QStringLiteral("earlier run")} + bus.traceLines());

    QString error;
    EXPECT_FALSE(bus.setTraceFile(QStringLiteral("/nonexistent-dir/trace.log"), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("/nonexistent-dir/trace.log")));
}

} // namespace
} // namespace qv::test
