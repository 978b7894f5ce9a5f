#include "TracingBus.h"

namespace qv {

TracingBus::TracingBus(std::unique_ptr<Bus> inner, TraceSink& sink)
    : inner_(std::move(inner)), sink_(sink) {}

} // namespace qv
