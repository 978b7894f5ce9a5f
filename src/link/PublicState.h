#pragma once

#include <cstdint>

namespace qv {

// The state that the main window owns and every layer reads: the failure
// flags of the last exchange and the device in use.
struct PublicState {
    bool TimeOut = false;  // the last read brought no byte
    bool CRCError = false; // the last reply failed its check value
    std::int32_t UsbID = 1;
    bool bUsbConnected = false;
    std::uint8_t HardWareConfig = 0;
};

// Booleans reach bytes and files in the legacy 16-bit form: true is -1.
constexpr std::int16_t toLegacyBoolean(bool value) {
    return value ? -1 : 0;
}
constexpr bool fromLegacyBoolean(std::int32_t value) {
    return value != 0;
}

} // namespace qv
