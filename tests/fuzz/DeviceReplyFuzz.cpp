// Replies of a device that answers anything: each reply is one header byte
// (bits 0-5 its length, bit 6 a valid check value appended so that the
// decoding behind the check is reached, bit 7 silence) and its bytes. The
// link checks them, and identity, clock, serial number, memory words and
// the connection list decode them.
#include "FuzzSupport.h"
#include "ScriptedBus.h"
#include "device/Device.h"
#include "device/DeviceClock.h"
#include "device/DeviceSelection.h"
#include "device/Identity.h"
#include "link/Crc.h"
#include "link/FrameLink.h"

#include <QLocale>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>

using namespace qv;

namespace {

std::deque<std::optional<QByteArray>> repliesOf(const std::uint8_t* data, std::size_t size) {
    std::deque<std::optional<QByteArray>> replies;
    std::size_t i = 0;
    while (i < size) {
        const std::uint8_t header = data[i++];
        const std::size_t length = std::min<std::size_t>(header & 0x3F, size - i);
        QByteArray reply(reinterpret_cast<const char*>(data + i), static_cast<qsizetype>(length));
        i += length;
        if (header & 0x80) {
            replies.push_back(std::nullopt);
            continue;
        }
        replies.push_back(header & 0x40 ? test::ScriptedBus::checked(reply) : reply);
    }
    return replies;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::initialiseQt();
    test::ScriptedBus bus;
    bus.count = 2;
    bus.replies = repliesOf(data, size);
    fuzz::SilentDialogs dialogs;
    PublicState state;
    state.UsbID = bus.uniqueId(0);
    FrameLink link(bus, dialogs, state);
    link.setPause([](int) {});
    Device device(link, [] { return QStringLiteral("Quorvel Absent"); });
    const auto key = [](const QString& k) { return k; };

    crc16(data, static_cast<int>(size));
    LitVersionPrincipale(device);
    DeviceSelection selection(device, key);
    selection.setProbeWait([](int) {});
    selection.LitSerieAppareil();
    LitDateEtHeure(device, QLocale(QLocale::French, QLocale::France));
    LitDateEtHeure(device, QLocale(QLocale::English, QLocale::UnitedStates));
    device.LitEEpromlong(33);
    device.LitValeurMot(0);
    selection.RafraichitListe(true);
    return 0;
}
