#pragma once

#include <QByteArray>
#include <stdexcept>
#include <string>
#include <vector>

namespace qv {

// Device data: numbers indexed from 0, each one byte on the wire. They stay
// numbers until a frame is built, so that an out-of-range value is caught
// there and not silently wrapped.
using Bytes = std::vector<long long>;

// A number that does not fit where it must go (a byte of a frame, a 32-bit
// count). Reported to the operator; never wrapped silently.
class OverflowError : public std::range_error {
public:
    explicit OverflowError(const std::string& what) : std::range_error(what) {}
};

// The byte form of one value, or OverflowError outside 0..255.
unsigned char toByte(long long value);

// Frame bytes for the first `length` elements, zero-padded.
QByteArray toTransfer(const Bytes& values, int length);

Bytes fromTransfer(const QByteArray& transfer);

} // namespace qv
