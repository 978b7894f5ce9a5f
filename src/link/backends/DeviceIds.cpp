#include "DeviceIds.h"

namespace qv {

std::int32_t stableDeviceId(const QByteArray& key) {
    std::uint32_t hash = 2166136261u;
    for (const char c : key) {
        hash ^= static_cast<std::uint8_t>(c);
        hash *= 16777619u;
    }
    std::uint32_t id = hash & 0x7FFFFFFFu;
    // Three values out of two billion are moved aside; a clash with another
    // device's id is no likelier than any other.
    if (id == 0 || id == 254 || id == 255)
        id |= 0x40000000u;
    return static_cast<std::int32_t>(id);
}

} // namespace qv
