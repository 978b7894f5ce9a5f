#pragma once

#include "Device.h"

#include <QString>

namespace qv {

// The model name of a hardware code. Only code 12 counts as the model this
// tool serves, although code 6 carries the same name.
QString NomMateriel(int code, bool variante);

// "2.70", or "2.05" when the minor version is below 10 (reply bytes 1, 3, 4).
QString firmwareVersionText(const Bytes& reply);
// The two digits joined as texts: 1 and 3 give "103", 0 and 0 give "00".
QString bootloaderVersionText(const Bytes& reply);

// The unchecked 12-byte probe that only firmware below 2.70 answers. Empty
// text unless the device is of the served model.
QString LitVersionAvantV270(FrameLink& link, std::int32_t usbId, bool& modeleReconnu);

// The connection list's text of a device: "Quorvel : (12) 2.70     BL V 103".
QString LitVersion(FrameLink& link, std::int32_t usbId, bool& modeleReconnu,
                   const QString& absentMessage);

// What the main window shows of the device in use.
struct MainIdentity {
    QString versionCaption;     // "(12) 2.70"
    QString maintenanceCaption; // "Maintenance (Bootloader V103)"
    int batteryRaw = 0;         // ProgressBar3, 0..1023
    QString batteryText;        // volts, "0.0" in the system locale
    bool featureMinor14 = false;
    bool featureMinor20 = false;
    int hardwareCode = 0;
    QString firmwareText;
    QString bootloaderText;
};

// Runs on zeros after a failed exchange, as the window shows them.
MainIdentity LitVersionPrincipale(Device& device);

QString batteryVoltsText(int raw);

} // namespace qv
