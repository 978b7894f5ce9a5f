#pragma once

#include "SimulatedBus.h"
#include "link/Crc.h"

#include <QByteArray>
#include <QDateTime>
#include <gtest/gtest.h>
#include <initializer_list>
#include <optional>

namespace qv::test {

// A 16-byte request with its check value, the rest of the bytes zero. The
// check value is computed here, not by the model's own helper.
inline QByteArray checkedFrame(std::initializer_list<int> bytes) {
    QByteArray frame(16, '\0');
    int i = 0;
    for (int b : bytes)
        frame[i++] = static_cast<char>(b);
    const std::uint16_t crc = crc16(reinterpret_cast<const std::uint8_t*>(frame.constData()), 14);
    frame[14] = static_cast<char>(crc & 0xFF);
    frame[15] = static_cast<char>(crc >> 8);
    return frame;
}

inline int at(const QByteArray& bytes, int index) {
    return static_cast<std::uint8_t>(bytes.at(index));
}

inline SimDeviceConfig firmware(const char* version) {
    SimDeviceConfig config;
    config.firmware = *FirmwareVersion::parse(QString::fromLatin1(version));
    return config;
}

// A bus with a hand-driven clock, so that nothing sleeps and a restart's
// silence ends when the test says so.
class SimFixture : public ::testing::Test {
protected:
    void SetUp() override {
        nowMs = QDateTime(QDate(2026, 3, 14), QTime(9, 30, 0)).toMSecsSinceEpoch();
        bus.setClock([this] { return nowMs; });
        bus.setSleep([](int) { ADD_FAILURE() << "the simulator slept"; });
    }

    std::int32_t add(SimDeviceConfig config = {}) {
        const std::int32_t id = bus.addDevice(config);
        EXPECT_NE(id, 0);
        return id;
    }

    // One raw transfer and the read that follows; nullopt for silence.
    std::optional<QByteArray> transfer(std::int32_t id, const QByteArray& request) {
        auto handle = bus.open(id);
        if (!handle || !handle->write(request))
            return std::nullopt;
        const QByteArray reply = handle->read(64);
        return reply.isEmpty() ? std::nullopt : std::optional<QByteArray>(reply);
    }

    std::optional<QByteArray> command(std::int32_t id, std::initializer_list<int> bytes) {
        return transfer(id, checkedFrame(bytes));
    }
    // The reply's first payload byte, -1 for silence.
    int answer(std::int32_t id, std::initializer_list<int> bytes) {
        const auto reply = command(id, bytes);
        return reply && reply->size() > 1 ? at(*reply, 1) : -1;
    }

    qint64 nowMs = 0;
    SimulatedBus bus;
};

} // namespace qv::test
