#include "Bytes.h"

namespace qv {

unsigned char toByte(long long value) {
    if (value < 0 || value > 255)
        throw OverflowError("value " + std::to_string(value) + " does not fit in a byte");
    return static_cast<unsigned char>(value);
}

QByteArray toTransfer(const Bytes& values, int length) {
    QByteArray transfer(length, '\0');
    for (int i = 0; i < length && i < static_cast<int>(values.size()); ++i)
        transfer[i] = static_cast<char>(toByte(values[static_cast<size_t>(i)]));
    return transfer;
}

Bytes fromTransfer(const QByteArray& transfer) {
    Bytes values;
    values.reserve(static_cast<size_t>(transfer.size()));
    for (char c : transfer)
        values.push_back(static_cast<unsigned char>(c));
    return values;
}

} // namespace qv
