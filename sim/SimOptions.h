#pragma once

#include "SimDevice.h"

#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

namespace qv {

// What `--link sim:key=value,...` asks for. The device-shaping keys
// (devices, firmware, hardware, serial, bootloader, battery, demo) only count
// when no state file exists yet: a saved controller keeps what it was.
struct SimOptions {
    int devices = 1;
    FirmwareVersion firmware;
    int hardware = 12;
    std::optional<std::uint32_t> serial; // of the first device; the next get serial+1, ...
    BootloaderVersion bootloader;
    int battery = 950;
    bool demo = false; // a current controller and one of another model

    QString statePath;    // loaded when it exists, created otherwise
    bool autosave = true; // save to statePath after every change
    QString tracePath;

    // Faults, applied to every device, fresh on every start.
    int drop = 0;        // the next N replies are lost
    double dropRate = 0; // each reply lost with this probability
    std::uint32_t seed = 1;
    int corrupt = 0;     // the next N replies carry a wrong check value
    int shortCount = 0;  // the next N replies are cut ...
    int shortLength = 3; // ... to this many bytes
    // The Nth reply (from 1; 0 for none) comes late: after the read that
    // waits for it has given up, and over a terminal lateMs after its
    // request, beyond the link's read wait.
    int late = 0;
    int lateMs = 400;
    // When given: the first N devices unplugged, the others plugged.
    std::optional<int> unplugged;
    // When given: the last device answers N requests, then is unplugged.
    std::optional<int> unplugAfter;

    int restartMs = SimDevice::kDefaultRestartSilenceMs;
    int readWaitMs = 0; // how long a read waits on a silent device
};

// Parses the text after "sim" of a --link argument ("devices=2,firmware=2.60");
// a leading "sim" or ":" is accepted too. Empty text gives the defaults.
// On an unknown key or a bad value: nullopt and a message naming it.
std::optional<SimOptions> parseSimOptions(const QString& text, QString* error = nullptr);

// The keys parseSimOptions accepts, for help texts.
QString simOptionsHelp();

// The controllers that the options describe, ids left to the bus.
std::vector<SimDeviceConfig> deviceConfigs(const SimOptions& options);

// A ready-made set for demonstrations: a current controller with serial
// 1234 and a controller of another model (hardware code 4).
std::vector<SimDeviceConfig> demoDevices();

} // namespace qv
