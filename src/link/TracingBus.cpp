#include "TracingBus.h"

namespace qv {

TracingBus::TracingBus(std::unique_ptr<Bus> inner, TraceSink& sink)
    : owned_(std::move(inner)), inner_(*owned_), sink_(sink) {}

TracingBus::TracingBus(Bus& inner, TraceSink& sink) : inner_(inner), sink_(sink) {}

} // namespace qv
