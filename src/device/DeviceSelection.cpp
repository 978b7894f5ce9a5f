#include "DeviceSelection.h"

#include "Identity.h"
#include "MemoryMap.h"
#include "Packing.h"

#include <chrono>
#include <thread>

namespace qv {

DeviceSelection::DeviceSelection(Device& device, MessageLookup message)
    : device_(device), message_(std::move(message)),
      probeWait_([](int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }) {}

void DeviceSelection::setProbeWait(std::function<void(int)> wait) {
    probeWait_ = std::move(wait);
}

DeviceList DeviceSelection::RafraichitListe(bool toutAfficher) {
    PublicState& state = device_.state();
    FrameLink& link = device_.link();
    Bus& bus = link.bus();
    const std::int32_t savedId = state.UsbID;
    DeviceList list;
    list.NombreUsb = bus.deviceCount();

    for (int index = 0; index < list.NombreUsb; ++index) {
        state.UsbID = bus.uniqueId(index);
        state.TimeOut = false;
        bool modeleReconnu = false;
        const QString text = LitVersionAvantV270(link, state.UsbID, modeleReconnu);
        probeWait_(kProbeWaitMs);
        if (text.isEmpty() || state.TimeOut || !modeleReconnu)
            continue;
        list.lines.push_back(
            {message_(QStringLiteral("Warning : you must Upgrade to Firmware V2.70 or higher ")) +
                 QLatin1Char(' ') + text,
             kMarkerOldFirmware});
        if (savedId == kMarkerOldFirmware)
            list.selectedRow = static_cast<int>(list.lines.size()) - 1;
        list.oldFirmwareFound = true;
    }
    if (list.oldFirmwareFound) {
        if (savedId != 0)
            state.UsbID = savedId;
        return list;
    }

    for (int index = 0; index < list.NombreUsb; ++index) {
        state.UsbID = bus.uniqueId(index);
        state.TimeOut = false;
        bool modeleReconnu = false;
        QString serial;
        const QString text = LitVersion(link, state.UsbID, modeleReconnu, device_.absentMessage());
        if (!state.TimeOut && modeleReconnu)
            serial = LitSerieAppareil();
        if (state.TimeOut)
            continue;
        if (!toutAfficher && !modeleReconnu)
            continue;
        const std::int32_t id = bus.uniqueId(index);
        list.lines.push_back({serial.isEmpty() ? text : text + QStringLiteral("-->") + serial, id});
        if (savedId == id)
            list.selectedRow = static_cast<int>(list.lines.size()) - 1;
    }
    if (savedId != 0)
        state.UsbID = savedId;
    return list;
}

QString DeviceSelection::LitSerieAppareil() {
    std::vector<long long> bytes(4);
    for (int i = 0; i < 4; ++i) {
        bytes[static_cast<size_t>(i)] = device_.LitEEprom(Address::SerialNumber + i);
        if (device_.state().TimeOut)
            return QString();
    }
    return QString::number(AssembleLong(bytes));
}

} // namespace qv
