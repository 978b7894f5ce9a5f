#pragma once

#include <QByteArray>
#include <cstdint>
#include <memory>

namespace qv {

class TraceSink;

// One open channel to a device. Every frame exchange opens two of these (one
// to write, one to read) and closes them again, so implementations must allow
// several handles on one device at once.
class BusHandle {
public:
    virtual ~BusHandle() = default;

    // One transfer, blocking. False when the device refused it.
    virtual bool write(const QByteArray& transfer) = 0;

    // Waits a bounded time for one transfer and returns at most maxLength of
    // its bytes; returns nothing when the device stays silent.
    virtual QByteArray read(int maxLength) = 0;

    // Abandons whatever is pending on the handle. Harmless when nothing is.
    virtual void cancel() {}

    // The platform error code of the last call on this handle, 0 when none.
    virtual int lastError() const { return 0; }
};

// The set of attached devices. Ids are stable for a device across calls and
// across refreshes; an index is only meaningful within one pass.
class Bus {
public:
    virtual ~Bus() = default;
    virtual int deviceCount() = 0;
    virtual std::int32_t uniqueId(int index) = 0;
    // A new handle on that device, or nullptr when it cannot be opened.
    virtual std::unique_ptr<BusHandle> open(std::int32_t uniqueId) = 0;
    // Where the frame link reports the transfers made over this bus; none
    // by default. A bus that wraps another must pass on the inner one's.
    virtual TraceSink* traceSink() { return nullptr; }
};

} // namespace qv
