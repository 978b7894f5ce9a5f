#include "SimTestSupport.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace qv::test {
namespace {

using SimTrace = SimLinkFixture;

const QRegularExpression kLine(QStringLiteral("^(\\d+\\.\\d{3}) ([<>])((?: [0-9A-F]{2})+)$"));

QByteArray lineBytes(const QString& line) {
    const auto match = kLine.match(line);
    return QByteArray::fromHex(match.captured(3).toLatin1());
}

TEST_F(SimTrace, EveryTransferIsOneLineOfTimeDirectionAndHex) {
    const std::int32_t id = add();
    nowMs += 1234;
    ASSERT_TRUE(command(id, {0xFE, 16, 0}).has_value());
    const QStringList lines = bus.traceLines();
    ASSERT_EQ(lines.size(), 2);
    const QByteArray request = checkedFrame({0xFE, 16, 0});
    EXPECT_EQ(lines[0],
              QStringLiteral("1.234 > ") + QString::fromLatin1(request.toHex(' ').toUpper()));
    EXPECT_EQ(lines[1], QStringLiteral("1.234 < ") +
                            QString::fromLatin1(
                                withCheckValue(QByteArray::fromHex("fe00")).toHex(' ').toUpper()));
}

TEST_F(SimTrace, FramesOfAWholeSessionCarryTheirCheckValue) {
    const std::int32_t id = add();
    SimDeviceConfig old;
    old.firmware = *FirmwareVersion::parse(QStringLiteral("2.60"));
    const std::int32_t oldId = add(old);
    bus.dropReplies(id, 1);
    bus.corruptReplies(oldId, 1);
    for (const Bytes& request : std::vector<Bytes>{
             {0xF0}, {0x01, 1, 2, 3, 4, 5, 6, 26}, {0xFE, 0, 1}, {0xFF, 16, 9}, {0xF3}})
        exchange(id, request, request[0] == 0xF0 ? 9 : 8);
    exchange(oldId, {0xF0}, 9);
    link.OuvreUsb(oldId);
    link.EcritBrutUsb({0xF0}, 12);
    link.LitBrutUsb(7, QString(), false, 0, QString());
    link.FermeUsb();

    const QStringList lines = bus.traceLines();
    int frames = 0;
    int replies = 0;
    for (const QString& line : lines) {
        SCOPED_TRACE(line.toStdString());
        ASSERT_TRUE(kLine.match(line).hasMatch());
        const QByteArray bytes = lineBytes(line);
        if (line.contains(QLatin1Char('>')) && bytes.size() == 16) {
            ++frames;
            const std::uint16_t crc =
                crc16(reinterpret_cast<const std::uint8_t*>(bytes.constData()), 14);
            EXPECT_EQ(at(bytes, 14), crc & 0xFF);
            EXPECT_EQ(at(bytes, 15), crc >> 8);
        }
        if (line.contains(QLatin1Char('<')))
            ++replies;
    }
    EXPECT_GE(frames, 8);
    EXPECT_GE(replies, 6);
    EXPECT_TRUE(lines.last().startsWith(QStringLiteral("0.000 < F0 02 0C 3C")));
}

TEST_F(SimTrace, SilenceAddsNoLineAndACutReadShowsWhatWasRead) {
    const std::int32_t id = add();
    auto handle = bus.open(id);
    handle->write(checkedFrame({0x05}));
    handle->read(64);
    EXPECT_EQ(bus.traceLines().size(), 1);
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
}

TEST_F(SimTrace, UnwritableTraceFileIsAClearError) {
    QString error;
    EXPECT_FALSE(bus.setTraceFile(QStringLiteral("/nonexistent-dir/trace.log"), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("/nonexistent-dir/trace.log")));
}

} // namespace
} // namespace qv::test
