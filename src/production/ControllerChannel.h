#pragma once

#include "ChannelDialogs.h"
#include "config/ConfigDocument.h"
#include "device/Device.h"
#include "link/FrameLink.h"
#include "link/PublicState.h"

#include <QTemporaryDir>
#include <cstdint>
#include <functional>
#include <memory>

namespace qv {

class Bus;

// Everything one controller is worked with while others are worked with at
// the same time: its own public state, link and device primitives over the
// shared bus, its own message boxes, and its own copy of config.xml. The
// exchanges of one channel never overlap because one thread drives it;
// channels of different controllers run side by side.
//
// config.xml is copied, not shared: the full read stores the programme it
// reads and lookups may add keys, and each controller may do so freely on
// its copy. Nothing of a copy is written back; only reports leave a run.
class ControllerChannel {
public:
    // Throws ConfigError when config.xml cannot be copied or read.
    ControllerChannel(Bus& bus, std::int32_t id, const QString& configPath, QString language,
                      std::function<void(const QString&)> forwardMessages = {});
    ~ControllerChannel();
    ControllerChannel(const ControllerChannel&) = delete;
    ControllerChannel& operator=(const ControllerChannel&) = delete;

    std::int32_t id() const { return state_.UsbID; }
    PublicState& state() { return state_; }
    FrameLink& link() { return *link_; }
    Device& device() { return *device_; }
    ChannelDialogs& dialogs() { return dialogs_; }
    ConfigDocument& config() { return *config_; }
    const QString& language() const { return language_; }
    QString message(const QString& key);

    // True when the last exchange failed (its box has been recorded).
    bool failed() const { return state_.TimeOut || state_.CRCError; }

private:
    QTemporaryDir scratch_;
    QString language_;
    std::unique_ptr<ConfigDocument> config_;
    PublicState state_;
    ChannelDialogs dialogs_;
    std::unique_ptr<FrameLink> link_;
    std::unique_ptr<Device> device_;
};

} // namespace qv
