#include "Crc.h"

namespace qv {

std::uint16_t crc16(const std::uint8_t* data, int length) {
    std::uint16_t reg = 0xFFFF;
    for (int i = 0; i < length; ++i) {
        reg ^= data[i];
        for (int bit = 0; bit < 8; ++bit) {
            const bool lowBit = reg & 1;
            reg >>= 1;
            if (lowBit)
                reg ^= 0xA001;
        }
    }
    return reg;
}

std::int16_t CalculeCRC(const Bytes& donnees, int longueur) {
    // Elements past the end of the array count as zero, as in a frame buffer
    // that the read did not fill.
    std::vector<std::uint8_t> buffer(static_cast<size_t>(longueur > 0 ? longueur : 0), 0);
    for (int i = 0; i < longueur && i < static_cast<int>(donnees.size()); ++i)
        buffer[static_cast<size_t>(i)] = toByte(donnees[static_cast<size_t>(i)]);
    return static_cast<std::int16_t>(crc16(buffer.data(), longueur));
}

} // namespace qv
