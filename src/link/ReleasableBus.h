#pragma once

#include "Bus.h"

#include <atomic>

namespace qv {

// A bus that the program can let go of while a sequence still runs on it:
// once released, no handle opens any more, so the sequence under way ends
// at its next exchange (as with a device unplugged, but without a box:
// nobody is left to read it) instead of holding the program open.
class ReleasableBus : public Bus {
public:
    explicit ReleasableBus(Bus& inner) : inner_(inner) {}

    void release() { released_ = true; }
    bool released() const { return released_; }
    Bus& inner() { return inner_; }

    int deviceCount() override { return released_ ? 0 : inner_.deviceCount(); }
    std::int32_t uniqueId(int index) override { return inner_.uniqueId(index); }
    std::unique_ptr<BusHandle> open(std::int32_t uniqueId) override {
        return released_ ? nullptr : inner_.open(uniqueId);
    }
    TraceSink* traceSink() override { return inner_.traceSink(); }

private:
    Bus& inner_;
    std::atomic<bool> released_{false};
};

} // namespace qv
