// A programme image as a controller's memory may hold it, from address 48,
// read back through the real link from a simulated controller, then stored
// as an upload stores it. Whatever the image, the read ends, and what it
// gives can be stored and loaded again.
#include "FuzzSupport.h"
#include "SimulatedBus.h"
#include "config/ConfigDocument.h"
#include "config/XmlWriter.h"
#include "device/Device.h"
#include "link/FrameLink.h"
#include "programme/ProgrammeStore.h"
#include "programme/ProgrammeUpload.h"

#include <QFile>
#include <cstddef>
#include <cstdint>

using namespace qv;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::initialiseQt();
    static const QByteArray shipped = [] {
        QFile file(QStringLiteral(QUORVEL_SHIPPED_CONFIG));
        if (!file.open(QIODevice::ReadOnly))
            fuzz::finding("the shipped config.xml cannot be read");
        return file.readAll();
    }();

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

    QDomDocument document;
    document.setContent(shipped);
    SauveConditions(document, *read.conditions);
    QString error;
    const auto written = writeXmlDocument(document, &error);
    if (!written) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(error));
        fuzz::finding("an uploaded programme cannot be stored");
    }
    Conditions again;
    try {
        LitConditions(ConfigDocument(fuzz::writeScratch(QStringLiteral("config.xml"), *written)),
                      again);
    } catch (const ConfigError& e) {
        std::fprintf(stderr, "%s\n", e.what());
        fuzz::finding("an uploaded programme does not load again");
    }
    if (again.Count() != read.conditions->Count())
        fuzz::finding("an uploaded programme loads with another number of lines");
    return 0;
}
