#include "BusFactory.h"

#include "SimOptions.h"
#include "SimulatedBus.h"

namespace qv {

std::unique_ptr<Bus> makeBus(const QString& linkSpec, QString* error) {
    const QString spec = linkSpec.trimmed();
    if (spec == QStringLiteral("sim") || spec.startsWith(QStringLiteral("sim:"))) {
        QString problem;
        const auto options = parseSimOptions(spec.mid(3), &problem);
        if (!options) {
            if (error)
                *error = QStringLiteral("--link %1: %2").arg(spec, problem);
            return nullptr;
        }
        auto bus = SimulatedBus::fromOptions(*options, &problem);
        if (!bus && error)
            *error = QStringLiteral("--link %1: %2").arg(spec, problem);
        return bus;
    }
    if (spec == QStringLiteral("usb")) {
        if (error)
            *error = QStringLiteral("the USB backend is not available in this build yet; "
                                    "use --link sim for simulated controllers");
        return nullptr;
    }
    if (error)
        *error = QStringLiteral("unknown link \"%1\": use usb or sim[:key=value,...]").arg(spec);
    return nullptr;
}

QString linkOptionHelp() {
    return QStringLiteral("--link usb | sim[:key=value,...]\n") + simOptionsHelp();
}

} // namespace qv
