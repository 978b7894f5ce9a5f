#pragma once

#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

namespace qv {

// One kind of controller on USB: how it is recognised and which interface
// and endpoints carry the frames.
struct UsbIdEntry {
    std::uint16_t vendor = 0;
    std::uint16_t product = 0;
    int interfaceNumber = 0;
    std::uint8_t outEndpoint = 0x02; // bulk OUT
    std::uint8_t inEndpoint = 0x81;  // bulk IN

    friend bool operator==(const UsbIdEntry&, const UsbIdEntry&) = default;
};

// The table of recognised controllers, in the text form of usb-ids.conf: one
// controller per line, "VVVV:PPPP" in hexadecimal, then optionally
// "interface=N", "out=0xNN" and "in=0xNN"; "#" starts a comment. An empty
// table is an error: a bus that recognises nothing is a mistake, not a choice.
std::optional<std::vector<UsbIdEntry>> parseUsbIds(const QString& text, QString* error = nullptr);

// The table built into the program, the same as the shipped usb-ids.conf.
const std::vector<UsbIdEntry>& defaultUsbIds();

// Where the table comes from, first found wins: the file named by the link
// option, the file named by QUORVEL_USB_IDS, usb-ids.conf beside the
// executable, the installed copy; otherwise the built-in table. A file that
// was named or found but cannot be read or parsed is an error, so that a
// typo never falls back silently to ids that match nothing. `source`
// receives the file used, or "built-in".
std::optional<std::vector<UsbIdEntry>> loadUsbIds(const QString& optionPath, QString* source,
                                                  QString* error);

// The entry that matches a device, or nullptr.
const UsbIdEntry* findUsbId(const std::vector<UsbIdEntry>& table, std::uint16_t vendor,
                            std::uint16_t product);

} // namespace qv
