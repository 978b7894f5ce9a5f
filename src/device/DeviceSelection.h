#pragma once

#include "Device.h"

#include <QString>
#include <functional>
#include <vector>

namespace qv {

// Item data of connection-list lines that are not device ids. A device whose
// id is one of these would be taken for the marker; the values are kept.
constexpr std::int32_t kMarkerOldFirmware = 255;
constexpr std::int32_t kMarkerUnsupported = 254;

struct DeviceListLine {
    QString text;
    std::int32_t itemData = 0;
};

struct DeviceList {
    std::vector<DeviceListLine> lines;
    int selectedRow = -1; // the line of the id that was in use, if listed
    int NombreUsb = 0;
    bool oldFirmwareFound = false;
};

// The two passes that fill the connection list. The first probes every
// device for old firmware (and waits a second after each probe, which old
// devices need); if one answers, only old devices are listed.
class DeviceSelection {
public:
    using MessageLookup = std::function<QString(const QString& key)>;

    DeviceSelection(Device& device, MessageLookup message);

    // Replaces the one-second wait of the first pass (tests only).
    void setProbeWait(std::function<void(int milliseconds)> wait);

    // Restores UsbID at its end (unless it was 0), so that leaving the list
    // keeps the device in use.
    DeviceList RafraichitListe(bool toutAfficher);

    // The serial number at 16..19 as decimal text; empty at the first failure.
    QString LitSerieAppareil();

    static constexpr int kProbeWaitMs = 1000;

private:
    Device& device_;
    MessageLookup message_;
    std::function<void(int)> probeWait_;
};

} // namespace qv
