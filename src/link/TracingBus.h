#pragma once

#include "Bus.h"
#include "TraceSink.h"

#include <memory>

namespace qv {

// Any bus, traced: the frame link over it reports every transfer, with its
// attempt and outcome, to `sink`. Nothing on the wire changes.
class TracingBus : public Bus {
public:
    TracingBus(std::unique_ptr<Bus> inner, TraceSink& sink);
    // The same over a bus that the caller keeps.
    TracingBus(Bus& inner, TraceSink& sink);

    int deviceCount() override { return inner_.deviceCount(); }
    std::int32_t uniqueId(int index) override { return inner_.uniqueId(index); }
    std::unique_ptr<BusHandle> open(std::int32_t uniqueId) override {
        return inner_.open(uniqueId);
    }
    TraceSink* traceSink() override { return &sink_; }

    Bus& inner() { return inner_; }

private:
    std::unique_ptr<Bus> owned_;
    Bus& inner_;
    TraceSink& sink_;
};

} // namespace qv
