#pragma once

#include "TransferRecord.h"

namespace qv {

// Where the frame link reports each transfer. Implementations are called
// from whatever thread runs the exchange, several at once on a bench with
// one thread per controller, and must return quickly: the call sits inside
// the exchange's timing.
class TraceSink {
public:
    virtual ~TraceSink() = default;
    virtual void record(const TransferRecord& record) = 0;
};

} // namespace qv
