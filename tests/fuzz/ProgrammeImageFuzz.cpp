// A programme image as a controller's memory may hold it, from address 48,
// read back through the real link from a simulated controller, then stored
// as an upload stores it. Whatever the image, the read ends, and what it
// gives can be stored and loaded again.
#include "FuzzSupport.h"
#include "SimulatedBus.h"
#include "config/XmlGuard.h"
#include "config/XmlWriter.h"
#include "device/Device.h"
#include "link/FrameLink.h"
#include "programme/ProgrammeStore.h"
#include "programme/ProgrammeUpload.h"

#include <cstddef>
#include <cstdint>

using namespace qv;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::initialiseQt();
    SimulatedBus bus;
    bus.setSleep([](int) {});
    const std::int32_t id = bus.addDevice(SimDeviceConfig{});
    bus.modify(id, [&](SimDevice& device) {
        for (std::size_t i = 0; i < size && 48 + i < 512; ++i)
            device.setEeprom(48 + static_cast<int>(i), data[i]);
    });
    fuzz::SilentDialogs dialogs;
    PublicState state;
    state.UsbID = id;
    FrameLink link(bus, dialogs, state);
    link.setPause([](int) {});
    Device device(link, [] { return QStringLiteral("Quorvel Absent"); });

    const ProgrammeLu read = LitProgramme(
        device, [](const QString& key) { return key; },
        [](int position) -> std::optional<double> {
            return position == 3 ? std::optional<double>(0) : std::nullopt;
        });
    if (!read.conditions)
        return 0;

    // The programme store touches the CONDITIONS node only; the rest of
    // config.xml is beside the point here.
    QDomDocument document;
    document.setContent(QByteArrayLiteral("<Configuration><CONDITIONS/></Configuration>"));
    SauveConditions(document, *read.conditions);
    QString error;
    const auto written = writeXmlDocument(document, &error);
    if (!written) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(error));
        fuzz::finding("an uploaded programme cannot be stored");
    }
    QDomDocument again;
    if (checkDocument(*written) || !again.setContent(*written))
        fuzz::finding("an uploaded programme does not load again");
    Conditions lines;
    LitConditions(again, lines);
    if (lines.Count() != read.conditions->Count())
        fuzz::finding("an uploaded programme loads with another number of lines");
    return 0;
}
