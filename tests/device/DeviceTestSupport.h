#pragma once

#include "RecordingDialogs.h"
#include "SimulatedBus.h"
#include "device/Device.h"
#include "link/FrameLink.h"

#include <gtest/gtest.h>

namespace qv::test {

struct Controller {
    int hardware = 12;
    FirmwareVersion firmware{2, 70};
    std::optional<std::uint32_t> serial{};
    int battery = 950;

    SimDeviceConfig config() const {
        SimDeviceConfig c;
        c.hardwareCode = hardware;
        c.firmware = firmware;
        c.serial = serial;
        c.battery = battery;
        return c;
    }
};

// The real link and primitives against in-process simulated controllers,
// with the pauses skipped and every box recorded.
class DeviceFixture : public ::testing::Test {
protected:
    SimulatedBus bus;
    RecordingDialogs dialogs;
    PublicState state;
    FrameLink link{bus, dialogs, state};
    Device device{link, [] { return QStringLiteral("Quorvel Absent"); }};

    void SetUp() override {
        link.setPause([](int) {});
        bus.setSleep([](int) {});
    }

    std::int32_t plug(const Controller& controller = {}) {
        const std::int32_t id = bus.addDevice(controller.config());
        state.UsbID = id;
        return id;
    }

    SimDevice sim(std::int32_t id) const { return *bus.device(id); }
};

} // namespace qv::test
