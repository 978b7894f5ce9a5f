#pragma once

#include "Bytes.h"

#include <cstdint>

namespace qv {

// CRC-16 with polynomial 0xA001 (reflected), start 0xFFFF, no final
// inversion. Over a frame including its own check bytes the result is 0.
std::int16_t CalculeCRC(const Bytes& donnees, int longueur);
std::uint16_t crc16(const std::uint8_t* data, int length);

} // namespace qv
