// The faults a test or a demonstration puts on one simulated controller.
#include "SimulatedBusCore.h"

namespace qv {

bool SimulatedBus::dropReplies(std::int32_t uniqueId, int count) {
    std::lock_guard lock(core_->mutex);
    auto* slot = core_->find(uniqueId);
    if (slot)
        slot->dropNext = std::max(0, count);
    return slot != nullptr;
}

bool SimulatedBus::setDropRate(std::int32_t uniqueId, double probability, std::uint32_t seed) {
    std::lock_guard lock(core_->mutex);
    auto* slot = core_->find(uniqueId);
    if (slot) {
        slot->dropRate = std::clamp(probability, 0.0, 1.0);
        slot->rng.seed(seed);
    }
    return slot != nullptr;
}

bool SimulatedBus::corruptReplies(std::int32_t uniqueId, int count) {
    std::lock_guard lock(core_->mutex);
    auto* slot = core_->find(uniqueId);
    if (slot)
        slot->corruptNext = std::max(0, count);
    return slot != nullptr;
}

bool SimulatedBus::shortenReplies(std::int32_t uniqueId, int count, int length) {
    std::lock_guard lock(core_->mutex);
    auto* slot = core_->find(uniqueId);
    if (slot) {
        slot->shortNext = std::max(0, count);
        slot->shortLength = std::max(0, length);
    }
    return slot != nullptr;
}

bool SimulatedBus::delayReply(std::int32_t uniqueId, int nth) {
    std::lock_guard lock(core_->mutex);
    auto* slot = core_->find(uniqueId);
    if (slot)
        slot->repliesBeforeLate = std::max(0, nth);
    return slot != nullptr;
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
    std::lock_guard lock(core_->mutex);
    auto* slot = core_->find(uniqueId);
    if (slot)
        slot->unplugAfter = std::max(-1, requests);
    return slot != nullptr;
}

bool SimulatedBus::unplug(std::int32_t uniqueId) {
    return modify(uniqueId, [](SimDevice& device) { device.setPlugged(false); });
}

bool SimulatedBus::replug(std::int32_t uniqueId) {
    std::lock_guard lock(core_->mutex);
    auto* slot = core_->find(uniqueId);
    if (!slot)
        return false;
    if (!slot->device.plugged()) {
        slot->device.setPlugged(true);
        slot->pending.reset();
        core_->autosave();
    }
    return true;
}

bool SimulatedBus::restartFromBootloader(std::int32_t uniqueId) {
    return modify(uniqueId, [](SimDevice& device) { device.restartFromBootloader(); });
}

} // namespace qv
