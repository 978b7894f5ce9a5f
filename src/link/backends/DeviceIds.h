#pragma once

#include <QByteArray>
#include <cstdint>

namespace qv {

// A device's unique id from a text that names it for good: its serial
// number, or the place where it is plugged. The same text gives the same id
// on every run and every machine (a 32-bit FNV-1a hash), always positive, so
// that an operator can type it, and never 0, 254 or 255, which the device
// list and the link take for "none", "unsupported" and "old firmware".
std::int32_t stableDeviceId(const QByteArray& key);

} // namespace qv
