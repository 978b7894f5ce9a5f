// The faults a test or a demonstration puts on one simulated controller.
#include "SimulatedBusCore.h"

namespace qv {

bool SimulatedBus::dropReplies(std::int32_t uniqueId, int count) {
    return core_->changeSlot(uniqueId, [&](auto& slot) { slot.dropNext = std::max(0, count); });
}

bool SimulatedBus::setDropRate(std::int32_t uniqueId, double probability, std::uint32_t seed) {
    return core_->changeSlot(uniqueId, [&](auto& slot) {
        slot.dropRate = std::clamp(probability, 0.0, 1.0);
        slot.rng.seed(seed);
    });
}

bool SimulatedBus::corruptReplies(std::int32_t uniqueId, int count) {
    return core_->changeSlot(uniqueId, [&](auto& slot) { slot.corruptNext = std::max(0, count); });
}

bool SimulatedBus::shortenReplies(std::int32_t uniqueId, int count, int length) {
    return core_->changeSlot(uniqueId, [&](auto& slot) {
        slot.shortNext = std::max(0, count);
        slot.shortLength = std::max(0, length);
    });
}

bool SimulatedBus::delayReply(std::int32_t uniqueId, int nth) {
    return core_->changeSlot(uniqueId,
                             [&](auto& slot) { slot.repliesBeforeLate = std::max(0, nth); });
}

bool SimulatedBus::takeLateArrival(std::int32_t uniqueId) {
    std::lock_guard lock(core_->mutex);
    auto* slot = core_->find(uniqueId);
    if (!slot || slot->lateArrivals == 0)
        return false;
    --slot->lateArrivals;
    return true;
}

void SimulatedBus::setLateDelay(int milliseconds) {
    std::lock_guard lock(core_->mutex);
    core_->lateDelayMs = std::max(0, milliseconds);
}

int SimulatedBus::lateDelay() const {
    std::lock_guard lock(core_->mutex);
    return core_->lateDelayMs;
}

bool SimulatedBus::unplugAfter(std::int32_t uniqueId, int requests) {
    return core_->changeSlot(uniqueId,
                             [&](auto& slot) { slot.unplugAfter = std::max(-1, requests); });
}

bool SimulatedBus::unplug(std::int32_t uniqueId) {
    return modify(uniqueId, [](SimDevice& device) { device.setPlugged(false); });
}

bool SimulatedBus::replug(std::int32_t uniqueId) {
    return core_->changeSlot(uniqueId, [&](auto& slot) {
        if (slot.device.plugged())
            return;
        slot.device.setPlugged(true);
        slot.pending.reset();
        core_->autosave();
    });
}

bool SimulatedBus::restartFromBootloader(std::int32_t uniqueId) {
    return modify(uniqueId, [](SimDevice& device) { device.restartFromBootloader(); });
}

} // namespace qv
