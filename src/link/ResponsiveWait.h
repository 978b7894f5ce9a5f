#pragma once

#include "Bus.h"

#include <functional>
#include <memory>

namespace qv {

class FrameLink;

// Every exchange blocks its caller and none may overlap, yet a window must
// keep painting while a sequence of them runs. These helpers keep the caller
// blocked in a local event loop that leaves user input queued, so that
// paint events, the wait cursor and timers still get through. Without an
// application object (command line, plain tests) they simply block.

// Waits `milliseconds` in a local event loop.
void waitResponsively(int milliseconds);

// Runs `work` on a worker thread and returns when it is done; an exception
// thrown by `work` is thrown again here. Callers keep their exchanges from
// interleaving (a timer skips its tick while a sequence runs); should a call
// still come from inside the wait, it runs in place once the work under way
// has finished, so that two transfers never reach the bus at once.
void runResponsively(const std::function<void()>& work);

// A bus whose handles write and read through runResponsively(). Device
// counting, ids and opening stay on the caller's thread: they are quick, and
// a backend may want them there.
class ResponsiveBus : public Bus {
public:
    explicit ResponsiveBus(Bus& inner);

    int deviceCount() override;
    std::int32_t uniqueId(int index) override;
    std::unique_ptr<BusHandle> open(std::int32_t uniqueId) override;
    TraceSink* traceSink() override { return inner_.traceSink(); }

    Bus& inner() { return inner_; }

private:
    Bus& inner_;
};

// Makes the link's 10 ms pause before every write and read a responsive wait.
void makePauseResponsive(FrameLink& link);

} // namespace qv
